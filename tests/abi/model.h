#ifndef TQ_TESTS_ABI_MODEL_H
#define TQ_TESTS_ABI_MODEL_H

// What a label should hold after any sequence of calls, as plain values: what a setter stores, what
// a version does not write, and what the getters must give back.

#include <algorithm>
#include <ostream>
#include <sstream>
#include <tuple>

#include "abi/support.h"

namespace tq::abi {

// One line per value, so that two labels that differ show where.
class Report {
 public:
  template <class Value>
  Report& operator()(const char* name, const Value& value) {
    out_ << name << ": ";
    print(value);
    out_ << '\n';
    return *this;
  }
  [[nodiscard]] std::string str() const { return out_.str(); }

 private:
  void print(const Bytes& bytes) {
    static constexpr const char* kDigits = "0123456789abcdef";
    for (const std::uint8_t octet : bytes) out_ << kDigits[octet >> 4] << kDigits[octet & 15];
  }
  void print(const std::vector<Issuer::Attribute>& name) {
    for (const auto& [type, tag, value] : name) {
      print(type);
      out_ << '=' << tag << ':';
      print(value);
      out_ << ' ';
    }
  }
  void print(const std::string& text) { out_ << text; }
  void print(std::uint64_t number) { out_ << number; }

  std::ostringstream out_;
};

template <class Byte>
Bytes bytes_of(const Byte* data, std::size_t length) {
  return data == nullptr ? Bytes(length, 0) : Bytes(data, data + length);
}

using Name = std::vector<Issuer::Attribute>;

// A search for few attributes finds every name that has them; string types do not count.
inline bool covers(const Name& name, const Name& asked) {
  return std::all_of(asked.begin(), asked.end(), [&](const Issuer::Attribute& one) {
    return std::any_of(name.begin(), name.end(), [&](const Issuer::Attribute& each) {
      return each.type == one.type && each.value == one.value;
    });
  });
}

struct Person {
  Bytes serial;
  Name issuer;
};

struct Envelope {
  Person person;
  std::string algorithm;
  Bytes key;
  Bytes subject;                      // of the body's, as what follows
  std::vector<std::uint32_t> values;  // from the first flag to the fourth number
  std::vector<std::pair<std::uint16_t, std::uint32_t>> pairs;
};
constexpr std::size_t kReadCount = 2;  // among the values

struct Signer {
  std::string algorithm;
  Bytes value;
  Bytes cert;
};
struct LogEntry {
  std::string values;
  Name issuer;
};
struct Extension {
  std::uint32_t type;
  Bytes value;
};

enum class Kind { kText, kAny, kElement, kUnits };
struct ByteRule {
  const char* name;
  Setter set;
  Getter get;
  Kind kind;
  bool body;
};
enum ByteIndex : std::size_t {
  kSerial = 1,
  kHeadCertificate = 3,
  kName = 5,
  kTitle,
  kBodyCertificate,
  kBodySign
};
inline constexpr ByteRule kBytes[] = {
    {"label", SetLabel, widened<GetLabel>, Kind::kText, false},
    {"serial", SetHeadSerialNum, widened<GetHeadSerialNum>, Kind::kText, false},
    {"custom", SetCustom, GetCustom, Kind::kAny, false},
    {"head certificate", SetHeadSignCert, GetHeadSignCert, Kind::kElement, false},
    {"head signature", SetHeadSignValue, GetHeadSignValue, Kind::kAny, false},
    {"file name", SetFileName, widened<GetFileName>, Kind::kAny, true},
    {"file title", GLSetFileTitle, widened<GLGetFileTitle>, Kind::kAny, true},
    {"body certificate", SetBodySignCert, GetBodySignCert, Kind::kElement, true},
    {"body signature", SetBodySigVal, GetBodySigVal, Kind::kUnits, true},
};

struct NumberRule {
  const char* name;
  std::int32_t (*set)(TqLabel, std::uint32_t);
  std::int32_t (*get)(TqLabel, std::uint32_t*);
};
constexpr std::size_t kFileAlign = 3;  // and what follows
inline constexpr NumberRule kNumbers[] = {
    {"file type", GLSetFileType, GLGetFileType},
    {"secrecy", SetFileSecc, GetFileSecc},
    {"file size", GLSetFileSize, GLGetFileSize},
    {"file align size", SetFileAlignSize, GetFileAlignSize},
    {"uneffective size", SetFileUnEffectSize, GetFileUnEffectSize},
    {"label align size", SetLabelAlignSize, GetLabelAlignSize},
};

struct TimeRule {
  const char* name;
  std::int32_t (*set)(TqLabel, std::uint64_t);  // null: the present, by a call of its own
  std::int32_t (*get)(TqLabel, std::uint64_t*);
};
enum TimeIndex : std::size_t {
  kCreated,
  kHeadModified,
  kModified,
  kExpires,
  kDestroyed,
  kAbolished
};
inline constexpr TimeRule kTimes[] = {
    {"created", nullptr, GetHeadCreateTime},
    {"head modified", SetHeadModifyTime, GetHeadModifyTime},
    {"modified", SetModifyTime, GetModifyTime},
    {"expires", SetExpired, GetExpired},
    {"destroyed", SetDestroyTime, GetDestroyTime},
    {"abolished", nullptr, GetAbolishTime},
};

// Markings are kept as what describes them: a getter hands out what a setter took.
inline std::string describe(const WaterMark& mark) {
  return Report()("data 1", bytes_of(mark.data1, mark.data1Len))(
             "data 2", bytes_of(mark.data2, mark.data2Len))("alg", mark.alg)(
             "param", mark.algParam)("text", bytes_of(mark.text, mark.textLen))("time", mark.time)
      .str();
}
inline std::string describe(const Finger& finger) {
  Report report;
  report("sys 1", bytes_of(finger.sys1, finger.sys1Len))("sys 2",
                                                         bytes_of(finger.sys2, finger.sys2Len))(
      "sys 3", bytes_of(finger.sys3, finger.sys3Len))("sys value", finger.sysValue);
  for (std::uint32_t i = 0; i < finger.list.count; ++i) {
    const FingerEntry& entry = finger.list.entries[i];
    report("finger", bytes_of(entry.value, entry.valueLen))("flags", bytes_of(entry.action, 9));
  }
  return report.str();
}
inline std::string describe(const StampRecord& record) {
  const auto& [name, nameLen, seal, stamp, bits, bitsLen] = record;
  const Meta& meta = seal.meta;
  Report report;
  report("stamp name", bytes_of(name, nameLen))("stamp bits", bytes_of(bits, bitsLen));
  report("seal name", bytes_of(seal.name, seal.nameLen))("seal type", seal.type);
  report("seal data", bytes_of(seal.data, seal.dataLen));
  report("seal element", bytes_of(seal.element, seal.elementLen));
  report("seal bits", bytes_of(seal.bits, seal.bitsLen))("meta time 1", meta.time1);
  report("meta element", bytes_of(meta.element, meta.elementLen))("meta time 2", meta.time2);
  report("meta text 1", bytes_of(meta.text1, meta.text1Len))("meta time 3", meta.time3);
  report("meta text 2", bytes_of(meta.text2, meta.text2Len))("stamp time", stamp.time);
  report("stamp text 1", bytes_of(stamp.text1, stamp.text1Len));
  report("stamp text 2", bytes_of(stamp.text2, stamp.text2Len));
  report("stamp text 3", bytes_of(stamp.data, stamp.dataLen));
  for (const std::uint32_t value : stamp.value) report("stamp value", value);
  return report.str();
}
inline std::string describe(const LogInfo& log) {
  return Report()("number", log.number)("text 1", bytes_of(log.text1, log.text1Len))(
             "array 1", bytes_of(log.array1, log.array1Len))(
             "array 2", bytes_of(log.array2, log.array2Len))("time", log.time)("value", log.value)(
             "text 2", bytes_of(log.text2, log.text2Len))
      .str();
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
  std::vector<Envelope> head_envelopes;
  // The body:
  std::vector<Envelope> body_envelopes;
  std::vector<LogEntry> logs;
  std::vector<Extension> extensions;
  std::vector<Signer> signers;
  Bytes file_number;  // with its terminating zero
  Bytes creator;
  std::uint32_t creator_time = 0;
  std::string water_mark = describe(WaterMark{});
  std::string stamp = describe(StampRecord{});
  std::string finger = describe(Finger{});

  [[nodiscard]] bool v11() const { return !is_60(version); }
  [[nodiscard]] bool multi() const { return is_multi_sign(version); }

  [[nodiscard]] bool head_encodes() const {
    return (is_60(version) || !issuer.empty()) &&
           (sign_algorithm.empty() || !bytes[kHeadCertificate].empty());
  }
  [[nodiscard]] bool body_encodes() const { return multi() || !bytes[kBodyCertificate].empty(); }

  // What comes back from encoded bytes: what the version writes, as it writes it.
  [[nodiscard]] Model written() const {
    Model copy = *this;
    if (is_60(version)) {
      copy.feedback_bits = 0;
      for (LogEntry& log : copy.logs) log.issuer.clear();
    }
    if (!is_aligned(version)) std::fill(copy.numbers + kFileAlign, std::end(copy.numbers), 0U);
    if (multi()) copy.bytes[kBodyCertificate] = copy.bytes[kBodySign] = {};
    const auto print = [](Name& name) {
      for (auto& attribute : name) {
        if (attribute.tag == 12) attribute.tag = 19;
      }
    };
    print(copy.issuer);
    for (auto* list : {&copy.head_envelopes, &copy.body_envelopes}) {
      for (Envelope& each : *list) print(each.person.issuer);
    }
    for (LogEntry& log : copy.logs) print(log.issuer);
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

  [[nodiscard]] static auto find(std::vector<Envelope>& list, const Person& person) {
    return std::find_if(list.begin(), list.end(), [&](const Envelope& each) {
      return each.person.serial == person.serial && covers(each.person.issuer, person.issuer);
    });
  }
};

// What the two of them have in common to say: the model of itself, the label through its getters.
inline std::string describe(const Model& model) {
  Report report;
  report("version", model.version)("issuer", model.issuer)("sign algorithm", model.sign_algorithm);
  report("cipher", model.cipher)("feedback bits", model.feedback_bits);
  for (std::size_t i = 0; i < std::size(kBytes); ++i) report(kBytes[i].name, model.bytes[i]);
  for (std::size_t i = 0; i < std::size(kNumbers); ++i) report(kNumbers[i].name, model.numbers[i]);
  for (std::size_t i = 0; i < std::size(kTimes); ++i) report(kTimes[i].name, model.times[i]);
  report("file number", model.file_number)("creator", model.creator);
  report("creator time", model.creator_time)("water mark", model.water_mark);
  report("stamp", model.stamp)("finger", model.finger);
  for (const LogEntry& log : model.logs) report("log", log.values)("by", log.issuer);
  for (const Extension& each : model.extensions) report("type", each.type)("value", each.value);
  for (const Signer& signer : model.signers)
    report("cert", signer.cert)("signed", signer.value)("by", signer.algorithm);
  return report.str();
}

}  // namespace tq::abi

#endif
