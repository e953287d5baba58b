#ifndef TQ_TESTS_ABI_MODEL_H
#define TQ_TESTS_ABI_MODEL_H

// What a label should hold after any sequence of calls, as plain values: what a setter stores, what
// a version does not write, and what the getters must give back.

#include <numeric>
#include <tuple>

#include "abi/records.h"

namespace tq::abi {

// A byte field and the lengths that its setter takes.
struct ByteRule {
  const char* name;
  Setter set;
  Getter get;
  bool body;
  std::uint32_t counted = UINT32_MAX;  // of the length argument
  std::uint32_t least = 0;
  std::uint32_t most = UINT32_MAX;
  std::uint32_t unit = 1;

  [[nodiscard]] bool takes(std::uint32_t length) const {
    const std::uint32_t bytes = length & counted;
    return bytes >= least && bytes <= most && bytes % unit == 0;
  }
};
enum ByteIndex : std::size_t {
  kSerial = 1,
  kHeadCertificate = 3,
  kName = 5,
  kTitle,
  kCertificate,
  kSignature
};
inline constexpr ByteRule kBytes[] = {
    {"label", SetLabel, widened<GetLabel>, false, 0xFF, 1, 128},
    {"serial", SetHeadSerialNum, widened<GetHeadSerialNum>, false, 0xFF, 1, 128},
    {"custom", SetCustom, GetCustom, false},
    {"head certificate", SetHeadSignCert, GetHeadSignCert, false},
    {"head signature", SetHeadSignValue, GetHeadSignValue, false},
    {"file name", SetFileName, widened<GetFileName>, true, 0xFF},
    {"file title", GLSetFileTitle, widened<GLGetFileTitle>, true, 0xFF},
    {"body certificate", SetBodySignCert, GetBodySignCert, true, UINT32_MAX, 1},
    {"body signature", SetBodySigVal, GetBodySigVal, true, UINT32_MAX, 0, UINT32_MAX, 32},
};

template <class Value>
struct ValueRule {
  std::int32_t (*set)(TqLabel, Value);  // null: the present, by a call of its own
  std::int32_t (*get)(TqLabel, Value*);
};
constexpr std::size_t kFileAlign = 3;  // and what follows
inline constexpr ValueRule<std::uint32_t> kNumbers[] = {
    {GLSetFileType, GLGetFileType},
    {SetFileSecc, GetFileSecc},
    {GLSetFileSize, GLGetFileSize},
    {SetFileAlignSize, GetFileAlignSize},
    {SetFileUnEffectSize, GetFileUnEffectSize},
    {SetLabelAlignSize, GetLabelAlignSize},
};
enum TimeIndex : std::size_t {
  kCreated,
  kHeadModified,
  kModified,
  kExpires,
  kAbolished,
  kDestroyed
};
inline constexpr ValueRule<std::uint64_t> kTimes[] = {
    {nullptr, GetHeadCreateTime},   {SetHeadModifyTime, GetHeadModifyTime},
    {SetModifyTime, GetModifyTime}, {SetExpired, GetExpired},
    {nullptr, GetAbolishTime},      {SetDestroyTime, GetDestroyTime},
};

// A search for few attributes finds every name that has them; string types do not count.
inline bool covers(const Name& name, const Name& asked) {
  return std::ranges::all_of(asked, [&](const Issuer::Attribute& one) {
    return std::ranges::any_of(name, [&](const Issuer::Attribute& each) {
      return each.type == one.type && each.value == one.value;
    });
  });
}

inline HeadEnvelope& envelope_of(HeadEnvelope& envelope) { return envelope; }
inline HeadEnvelope& envelope_of(BodyEnvelope& envelope) { return envelope.envelope; }
template <class Envelope>
Recipient& recipient_of(Envelope& envelope) {
  return envelope_of(envelope).to;
}

struct Signer {
  std::string algorithm;
  Bytes value;
  Bytes cert;
};
struct LogEntry {
  Said said;
  Name issuer;
};
struct Extension {
  std::uint32_t type;
  Bytes value;
};

// The estimates count so many bytes for each attribute of a name, also for one that is empty.
inline std::uint32_t name_size(const Name& name, std::uint32_t each) {
  std::size_t sum = name.empty() ? each : 0;
  for (const auto& [type, tag, value] : name) sum += type.size() + value.size() + each;
  return static_cast<std::uint32_t>(sum);
}
// What an algorithm is stored as: its name in "6.0", otherwise an identifier of so many octets.
inline std::uint32_t stored_size(const std::string& algorithm, bool v60) {
  if (v60 || algorithm.empty()) return static_cast<std::uint32_t>(algorithm.size());
  return algorithm == "SM4" ? 7 : algorithm == "sm3WithSM2Encryption" ? 8 : 9;
}

struct Model {
  std::string version;
  Bytes bytes[std::size(kBytes)];
  std::uint32_t numbers[std::size(kNumbers)] = {};
  std::uint64_t times[std::size(kTimes)] = {};
  Name issuer;
  std::string sign_algorithm;  // as it is handed out
  std::string cipher;          // likewise
  std::uint32_t feedback_bits = 0;
  std::vector<HeadEnvelope> head_envelopes;
  // The body:
  std::vector<BodyEnvelope> body_envelopes;
  std::vector<LogEntry> logs;
  std::vector<Extension> extensions;
  std::vector<Signer> signers;
  Bytes file_number;  // with its terminating zero
  Bytes creator;
  std::uint32_t creator_time = 0;
  Said water_mark = describe(WaterMark{});
  Said stamp = describe(StampRecord{});
  Said finger = describe(Finger{});

  [[nodiscard]] bool v60() const { return is_60(version); }
  [[nodiscard]] bool multi() const { return is_multi_sign(version); }

  [[nodiscard]] bool head_encodes() const {
    return (v60() || !issuer.empty()) &&
           (sign_algorithm.empty() || !bytes[kHeadCertificate].empty());
  }
  [[nodiscard]] bool body_encodes() const { return multi() || !bytes[kCertificate].empty(); }

  // What comes back from encoded bytes: what the version writes, as it writes it.
  [[nodiscard]] Model written() const {
    Model copy = *this;
    if (v60()) copy.feedback_bits = 0;
    if (!is_aligned(version)) std::fill(copy.numbers + kFileAlign, std::end(copy.numbers), 0U);
    if (multi()) copy.bytes[kCertificate] = copy.bytes[kSignature] = {};
    const auto print = [](Name& name) {
      for (auto& attribute : name) {
        if (attribute.tag == 12) attribute.tag = 19;
        if (attribute.type == kEmail) attribute.tag = 22;
      }
    };
    print(copy.issuer);
    for (auto& each : copy.head_envelopes) print(recipient_of(each).issuer);
    for (auto& each : copy.body_envelopes) print(recipient_of(each).issuer);
    for (LogEntry& log : copy.logs) v60() ? log.issuer.clear() : print(log.issuer);
    return copy;
  }

  [[nodiscard]] Model with_empty_body() const {
    Model none;
    none.version = version;
    return with_body_of(none);
  }

  // The same head around another body.
  [[nodiscard]] Model with_body_of(const Model& other) const {
    Model copy = other;
    for (std::size_t i = 0; i < std::size(kBytes); ++i) {
      if (!kBytes[i].body) copy.bytes[i] = bytes[i];
    }
    std::copy(times, times + kModified, copy.times);
    std::tie(copy.issuer, copy.sign_algorithm, copy.cipher, copy.feedback_bits,
             copy.head_envelopes) =
        std::tie(issuer, sign_algorithm, cipher, feedback_bits, head_envelopes);
    return copy;
  }

  template <class Envelope>
  [[nodiscard]] static auto find(std::vector<Envelope>& list, const Recipient& to) {
    return std::ranges::find_if(list, [&](Envelope& each) {
      return recipient_of(each).serial == to.serial && covers(recipient_of(each).issuer, to.issuer);
    });
  }

  // The estimates of the label's parts: their bytes, and so many beside them.
  [[nodiscard]] LabelSizeInfo sizes() const {
    const auto sum = [](const auto& list, std::uint32_t some, auto size) {
      return std::accumulate(list.begin(), list.end(), list.empty() ? 0U : some,
                             [&](std::uint32_t so_far, auto& each) { return so_far + size(each); });
    };
    const auto marking = [this](const Said& said, std::uint32_t beside) {
      return multi() && said.size == 0 ? 0 : said.size + beside;
    };
    LabelSizeInfo sizes{};
    sizes.reserve = 1500;
    sizes.customLen = size32(bytes[2]);
    sizes.cipher = stored_size(cipher, v60());
    sizes.headSignAlgLen = multi() ? 0 : stored_size(sign_algorithm, v60());
    sizes.headSignLen = multi()
                            ? sum(signers, 0,
                                  [](const Signer& each) {
                                    return size32(each.cert) + stored_size(each.algorithm, false) +
                                           size32(each.value);
                                  })
                            : size32(bytes[kHeadCertificate]);
    sizes.headEnvelopeCount = static_cast<std::uint32_t>(head_envelopes.size());
    sizes.headEnvelopeSize = sum(
        head_envelopes, 0, [](const HeadEnvelope& each) { return name_size(each.to.issuer, 8); });
    sizes.bodyEnvelopeSize =
        body_envelopes.empty() ? 2 : sum(body_envelopes, 8, [](const BodyEnvelope& each) {
          return 154 + 4 + name_size(each.envelope.to.issuer, 4) + size32(each.privileges.data) +
                 7 + (each.privileges.pairs.empty() ? 28U : 37U);
        });
    sizes.bodySignCertLen = size32(bytes[kCertificate]);
    sizes.bodySignValueLen = size32(bytes[kSignature]);
    sizes.stampSize = marking(stamp, 125);
    sizes.waterMarkSize = marking(water_mark, 41);
    sizes.creatorStr2Len = size32(creator);
    sizes.fileNoLen = size32(file_number);
    sizes.fileNameLen = size32(bytes[kName]);
    sizes.fileTitleLen = size32(bytes[kTitle]);
    sizes.extendSize =
        sum(extensions, 12, [](const Extension& each) { return size32(each.value) + 11; });
    sizes.logSize = sum(logs, 12, [](const LogEntry& each) {
      return name_size(each.issuer, 4) + each.said.size + 38;
    });
    return sizes;
  }
};

// The fields in their order, so that a failure shows which.
inline std::vector<std::uint32_t> listed(const LabelSizeInfo& sizes) {
  std::vector<std::uint32_t> fields(sizeof sizes / sizeof(std::uint32_t));
  std::memcpy(fields.data(), &sizes, sizeof sizes);
  return fields;
}
inline LabelSizeInfo sizes_of(TqLabel label) {
  LabelSizeInfo sizes{};
  EXPECT_EQ(LabCalSize(label, &sizes), 0);
  return sizes;
}

// What the two of them have in common to say: the model of itself, the label through its getters.
inline std::string describe(const Model& model) {
  Report report;
  report.line("version", model.version);
  report.line("issuer", model.issuer);
  report.line("algorithms", model.sign_algorithm, model.cipher, model.feedback_bits);
  for (std::size_t i = 0; i < std::size(kBytes); ++i) report.line(kBytes[i].name, model.bytes[i]);
  for (const std::uint32_t number : model.numbers) report.line("number", number);
  for (const std::uint64_t time : model.times) report.line("time", time);
  report.line("creator", model.file_number, model.creator, model.creator_time);
  for (const Said* said : {&model.water_mark, &model.stamp, &model.finger}) {
    report.line("marking", said->str());
  }
  for (const LogEntry& log : model.logs) report.line("log", log.said.str(), log.issuer);
  for (const Extension& each : model.extensions) report.line("extension", each.type, each.value);
  for (const Signer& each : model.signers)
    report.line("signer", each.algorithm, each.value, each.cert);
  return report.str();
}

}  // namespace tq::abi

#endif
