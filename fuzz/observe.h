#ifndef TQ_FUZZ_OBSERVE_H
#define TQ_FUZZ_OBSERVE_H

// A label as all of its getters show it.

#include <map>

#include "support.h"

namespace tq::fuzz {

using Seen = std::map<std::string, Bytes>;

struct BytesRule {
  const char* name;
  Getter get;
};
inline constexpr BytesRule kBytes[] = {
    {"label", wide<GetLabel>},
    {"serial", wide<GetHeadSerialNum>},
    {"custom", GetCustom},
    {"head cert", GetHeadSignCert},
    {"head signature", GetHeadSignValue},
    {"file name", wide<GetFileName>},
    {"file title", wide<GLGetFileTitle>},
    {"body cert", GetBodySignCert},
    {"body signature", GetBodySigVal},
};
template <class Value>
struct ValueRule {
  const char* name;
  std::int32_t (*get)(TqLabel, Value*);
};
inline constexpr ValueRule<std::uint32_t> kNumbers[] = {
    {"file type", GLGetFileType},         {"secrecy", GetFileSecc},
    {"file size", GLGetFileSize},         {"file align", GetFileAlignSize},
    {"uneffective", GetFileUnEffectSize}, {"label align", GetLabelAlignSize},
};
inline constexpr ValueRule<std::uint64_t> kTimes[] = {
    {"head modified", GetHeadModifyTime},
    {"modified", GetModifyTime},
    {"expires", GetExpired},
    {"destroyed", GetDestroyTime},
    {"created", GetHeadCreateTime},
    {"abolished", GetAbolishTime},
};

// Values in a row: numbers, and bytes with their length.
struct Span {
  const void* data;
  std::size_t size;
};
inline void add(Bytes& row, std::uint64_t value) { row += std::to_string(value) + ' '; }
inline void add(Bytes& row, Span span) {
  add(row, span.size);
  if (span.data != nullptr) row.append(static_cast<const char*>(span.data), span.size);
}
inline void add(Bytes& row, const Bytes& bytes) { add(row, Span{bytes.data(), bytes.size()}); }
template <class... Values>
Bytes row_of(const Values&... values) {
  Bytes row;
  (add(row, values), ...);
  return row;
}

// Records as they are set and as they are handed out. String types that are written as another one
// count as that.
inline Bytes describe(const PJCertIssuer* issuer) {
  Bytes row;
  for (std::uint32_t i = 0; issuer != nullptr && i < issuer->count; ++i) {
    const PJCertIssuerEntry& entry = issuer->entries[i];
    const std::uint32_t tag = entry.typeLen != 3 ? 22 : entry.valueTag == 12 ? 19 : entry.valueTag;
    row += row_of(Span{entry.type, entry.typeLen}, tag, Span{entry.value, entry.valueLen});
  }
  return row;
}
inline Bytes describe(const WaterMark& mark) {
  return row_of(Span{mark.data1, mark.data1Len}, Span{mark.data2, mark.data2Len}, mark.alg,
                mark.algParam, Span{mark.text, mark.textLen}, mark.time);
}
inline Bytes describe(const StampRecord& record) {
  const auto& [name, nameLen, seal, stamp, bits, bitsLen] = record;
  const Meta& meta = seal.meta;
  return row_of(Span{name, nameLen}, Span{seal.name, seal.nameLen}, Span{bits, bitsLen},
                Span{meta.element, meta.elementLen}, meta.time1, Span{meta.text1, meta.text1Len},
                meta.time2, meta.time3, Span{meta.text2, meta.text2Len}, seal.type,
                Span{seal.data, seal.dataLen}, Span{seal.element, seal.elementLen},
                Span{seal.bits, seal.bitsLen}, Span{stamp.text1, stamp.text1Len},
                Span{stamp.value, sizeof stamp.value}, Span{stamp.text2, stamp.text2Len},
                stamp.time, Span{stamp.data, stamp.dataLen});
}
inline Bytes describe(const Finger& finger) {
  Bytes row = row_of(Span{finger.sys1, finger.sys1Len}, Span{finger.sys2, finger.sys2Len},
                     Span{finger.sys3, finger.sys3Len}, finger.sysValue);
  for (std::uint32_t i = 0; i < finger.list.count; ++i) {
    const FingerEntry& entry = finger.list.entries[i];
    row += row_of(Span{entry.value, entry.valueLen}, Span{entry.action, sizeof entry.action});
  }
  return row;
}
inline Bytes describe(const LogInfo& log) {  // without its issuer
  return row_of(log.number, Span{log.text1, log.text1Len}, Span{log.array1, log.array1Len},
                Span{log.array2, log.array2Len}, log.time, log.value,
                Span{log.text2, log.text2Len});
}
// An envelope in parts: not every getter hands out all of them.
enum Part : std::size_t { kAlgorithm, kKey, kSubject, kRest };
inline std::vector<Bytes> describe(const EnvelopeInfo& envelope, const PrivilegeInfo& rights) {
  Bytes rest = row_of(Span{envelope.serial, envelope.serialLen}, describe(envelope.issuer),
                      rights.flag1, rights.number1, rights.readCount, rights.flag2, rights.flag3,
                      rights.flag4, rights.number3, rights.number4);
  for (std::uint32_t i = 0; i < rights.entryCount; ++i) {
    rest += row_of(rights.entries[i].type, rights.entries[i].value);
  }
  return {row_of(Span{envelope.alg, envelope.algLen}), row_of(Span{envelope.key, envelope.keyLen}),
          row_of(Span{rights.data, rights.dataLen}), rest};
}
inline Bytes joined(const std::vector<Bytes>& parts) {
  Bytes all;
  for (const Bytes& part : parts) all += part;
  return all;
}

// What the caller of a getter of envelopes brings.
struct Room {
  Room(std::size_t serial_size, std::size_t key_size, std::size_t data_size, std::size_t count)
      : alg(block(32)),
        serial(block(serial_size)),
        key(block(key_size)),
        data(block(data_size)),
        pairs(std::make_unique<PrivilegeEntry[]>(count)) {
    const auto narrow = [](std::size_t size) { return static_cast<std::uint32_t>(size); };
    envelope = {
        alg.get(),        32,     serial.get(), static_cast<std::uint8_t>(serial_size), key.get(),
        narrow(key_size), &issuer};
    rights.data = data.get();
    rights.dataLen = narrow(data_size);
    rights.entries = pairs.get();
    rights.entryCount = narrow(count);
  }
  // The room for the envelope of a recipient; `size` bytes hold any field.
  Room(const Bytes& who, const PJCertIssuer& name, std::size_t size)
      : Room(255, size, size, size / 8 + 1) {
    std::copy(who.begin(), who.end(), serial.get());
    envelope.serialLen = static_cast<std::uint8_t>(who.size());
    std::copy_n(name.entries, name.count, entries);
    issuer.count = name.count;
  }

  std::unique_ptr<std::uint8_t[]> alg, serial, key, data;
  std::unique_ptr<PrivilegeEntry[]> pairs;
  PJCertIssuerEntry entries[10] = {};
  PJCertIssuer issuer{entries, 0, 10};
  EnvelopeInfo envelope{};
  PrivilegeInfo rights{};
};

// What a search for a recipient finds.
inline void find(TqLabel label, const Bytes& serial, const PJCertIssuer& issuer, std::size_t size,
                 Seen& seen) {
  const Bytes who = row_of(serial, describe(&issuer));
  Room head(serial, issuer, size);
  Room body(serial, issuer, size);
  void* previous = nullptr;
  if (HaveTheEnvelopeFromHEnv(label, u8(serial), size32(serial), &issuer, &previous) == 1 &&
      GetEnvelopeFromHead(label, &head.envelope) == 0) {
    const auto parts = describe(head.envelope, head.rights);
    seen["head of " + who] = parts[kAlgorithm] + parts[kKey];
  }
  if (HaveTheEnvelopeFromBEnv(label, u8(serial), size32(serial), &issuer, &previous) != 1) return;
  if (GetEnvelopeFromBody(label, &body.envelope, &body.rights) != 0) return;
  const auto parts = describe(body.envelope, body.rights);
  seen["body of " + who] = joined(parts);
  const auto subject = fetch([&](std::uint8_t* to, std::uint32_t* length) {
    return GetCertByIssuerAndSerial(label, u8(serial), size32(serial), &issuer, to, length);
  });
  require(subject && row_of(*subject) == parts[kSubject], "both getters of a subject agree");
}

class Observer {
 public:
  Observer(TqLabel label, std::size_t size) : label_(label), size_(size) {
    put("version", get(label, wide<GLGetVersion>));
    for (const BytesRule& rule : kBytes) put(rule.name, get(label, rule.get));
    for (const auto& rule : kNumbers) value(rule, std::uint32_t{0});
    for (const auto& rule : kTimes) value(rule, std::uint64_t{0});
    head();
    file();
    markings();
    for (std::uint32_t i = 0, n = count("log", GetLogCout); i < n; ++i) log(i);
    for (std::uint32_t i = 0, n = count("extension", GetExtendCount); i < n; ++i) extension(i);
    for (std::uint32_t i = 0, n = count("envelope", GetDigitEnvlopeCountFromBody); i < n; ++i) {
      envelope(i);
    }
    signers();
    (void)(CheckLabelDate(label) + CheckDestroyDate(label) + CheckAbolishDate(label));
  }
  [[nodiscard]] Seen& seen() { return seen_; }

 private:
  void put(const char* name, const std::optional<Bytes>& bytes) {
    seen_[name] = bytes.value_or("none");
  }
  void put(const char* name, std::uint32_t i, const Bytes& row) {
    seen_[name + (' ' + std::to_string(i))] = row;
  }
  template <class Rule, class Value>
  void value(const Rule& rule, Value value) {
    require(rule.get(label_, &value) == 0, rule.name);
    seen_[rule.name] = row_of(value);
  }
  // Positions are linear: of a long list the front has to do.
  std::uint32_t count(const Bytes& name, std::int32_t (*getter)(TqLabel, std::uint32_t*)) {
    std::uint32_t number = 0;
    require(getter(label_, &number) == 0, "a list is counted");
    seen_[name + "s"] = row_of(number);
    return std::min(number, 40U);
  }

  void head() {
    std::uint8_t bits = 0;
    require(GetHeadFeedBackBits(label_, &bits) == 0, "feedback bits are handed out");
    seen_["feedback bits"] = row_of(bits);
    seen_["encrypted"] = row_of(LabelBodyNeedEnc(label_) == 1);
    put("sign algorithm", get(label_, GetHeadSignAlg));
    put("cipher", fetch([&](std::uint8_t* to, std::uint32_t* length) {
          return widened(
              [&](std::uint8_t* size) { return GetEncryptHead(label_, to, size, &bits); }, length);
        }));
    std::uint8_t length = 0;
    PJCertIssuer* issuer = nullptr;
    (void)GetCertSerialAndIssuerToHead(label_, nullptr, &length, &issuer);
    seen_["issuer"] = describe(issuer);
    FreeIssuerName(issuer);
  }

  // These getters look at no capacity.
  void file() {
    LabelSizeInfo sizes{};
    if (LabCalSize(label_, &sizes) != 0) return;
    seen_["sizes"] = row_of(Span{&sizes, sizeof sizes});
    const auto first = block(sizes.fileNoLen);
    const auto second = block(sizes.creatorStr2Len);
    FileCreatorInfo creator{first.get(), 0, second.get(), 0, 0};
    require(GetFileIdentify(label_, &creator) == 0, "the creator is handed out");
    seen_["creator"] = row_of(Span{first.get(), creator.str1Len},
                              Span{second.get(), creator.str2Len}, creator.time);
    Bytes number(sizes.fileNoLen + std::size_t{1}, '\0');
    require(GLGetFileNo(label_, number.data()) == 0, "the file number is handed out");
    const auto name = block(sizes.fileNameLen);
    const auto title = block(sizes.fileTitleLen);
    ContentAttrInfo content{0, 0, 0, name.get(), 0, title.get(), 0, 0, 0, 0, 0};
    require(GetContentAtrr(label_, &content) == 0, "the content is handed out");
    seen_["content"] =
        row_of(content.fileType, content.secrecy, content.fileSize,
               Span{name.get(), content.fileNameLen}, Span{title.get(), content.fileTitleLen},
               content.modifyTime, content.expiryTime, content.abolishTime, content.destroyTime);
  }

  template <class Record>
  Record* described(const char* name, std::int32_t (*getter)(TqLabel, Record**)) {
    Record* record = nullptr;
    require(getter(label_, &record) == 0, "a marking is handed out");
    seen_[name] = describe(*record);
    return record;
  }
  void markings() {
    WaterMark* const mark = described("water mark", GetWaterMarkInfo);
    FreetWaterMarkInfo(mark);
    Asn1Free(mark->text);
    Asn1Free(mark);
    FreeStampA(described("stamp", GetStampInfo));
    FreeFingerPrintInfo(described("finger", GetFingerPrintInfo));
  }

  void log(std::uint32_t i) {
    LogInfo* log = nullptr;
    if (GetLog(label_, i, &log) != 0) return;  // a name with no room in an issuer
    put("log", i, describe(*log) + describe(log->issuer));
    FreeLog(log);
  }

  void extension(std::uint32_t i) {
    std::uint32_t type = 0;
    std::uint32_t length = 0;
    require(GetExtend(label_, i, &type, nullptr, &length) == 0, "an extension has a length");
    const auto bytes = block(length);
    require(GetExtend(label_, i, &type, bytes.get(), &length) == 0, "an extension is there");
    put("extension", i, row_of(type, Span{bytes.get(), length}));
    require(GetExtendValue(label_, type, nullptr, &length) == 0, "its type has a newest one");
    const auto newest = block(length);
    require(GetExtendValue(label_, type, newest.get(), &length) == 0, "which is there");
    seen_.emplace("type " + row_of(type), row_of(Span{newest.get(), length}));
  }

  void envelope(std::uint32_t i) {
    const auto position = static_cast<std::int32_t>(i);
    Room room(255, size_, size_, size_ / 8 + 1);
    const auto& [info, rights] = std::tie(room.envelope, room.rights);
    if (GetDigitEnvlope(label_, position, &room.envelope, &room.rights) != 0) return;
    put("envelope", i, joined(describe(info, rights)));
    Room exact(info.serialLen, info.keyLen, rights.dataLen, rights.entryCount);
    require(GetDigitEnvlope(label_, position, &exact.envelope, &exact.rights) == 0,
            "an envelope fits the room that it said");
    find(label_, {info.serial, info.serial + info.serialLen}, room.issuer, size_, seen_);
  }

  void signers() {
    SignEnum* signers = nullptr;
    require(CreateEmurateSign(label_, &signers) == 0, "signers are enumerated");
    for (std::uint32_t i = 0; i < 40 && signer(signers, i); ++i) {
    }
    DestroySignEmura(signers);
  }
  bool signer(SignEnum* signers, std::uint32_t i) {
    SignAttribute next{};
    if (GetNextSign(signers, &next) != 0) return false;
    const auto value = block(next.valueLen);
    const auto cert = block(next.certLen);
    const auto bytes = [&](const SignAttribute& from) {
      return row_of(Span{value.get(), from.valueLen}, Span{cert.get(), from.certLen});
    };
    if (i == 0) {
      char name[64] = {};
      SignAttribute first{name, value.get(), next.valueLen, cert.get(), next.certLen};
      require(GetBodySignAttr(label_, &first) == 0, "the first signature is handed out");
      seen_["first signer"] = bytes(first) + name;
    }
    next.value = value.get();
    next.cert = cert.get();
    if (GetNextSign(signers, &next) != 0) return false;  // no name in the head
    put("signer", i, bytes(next) + next.algName);
    const auto message = fetch([&](std::uint8_t* buffer, std::uint32_t* length) {
      MultiSignData request{cert.get(), next.certLen, buffer, *length};
      const std::int32_t result = GetMultiSignData(label_, &request);
      *length = request.dataLen;
      return result;
    });
    put("message", i, message.value_or("none"));
    return true;
  }

  TqLabel label_;
  std::size_t size_;  // holds any field of the label
  Seen seen_;
};

inline Seen observe(TqLabel label, std::size_t size) {
  return std::move(Observer(label, size).seen());
}

inline void require_same(const Seen& one, const Seen& other, const char* what) {
  for (const auto& [side, rest] : {std::pair(&one, &other), std::pair(&other, &one)}) {
    for (const auto& [name, value] : *side) {
      const auto twin = rest->find(name);
      if (twin != rest->end() && twin->second == value) continue;
      std::fprintf(stderr, "%s: %s\n", name.c_str(), value.c_str());
    }
  }
  require(one == other, what);
}

}  // namespace tq::fuzz

#endif
