#ifndef TQ_TESTS_ABI_RECORDS_H
#define TQ_TESTS_ABI_RECORDS_H

// The records that callers share with the library. Each names its fields once, for visitors that
// fill it, say what it holds, and take its buffers away one by one; envelopes are plain values.

#include <cstring>
#include <list>
#include <optional>
#include <random>
#include <tuple>

#include "abi/support.h"

namespace tq::abi {

inline constexpr const char* kFamily[] = {"1.1", "1.1.1", "1.1.2"};  // versions with envelopes
inline constexpr std::uint32_t kHighBits = 0x5A5A5A00;               // above an 8-bit argument
inline constexpr std::uint64_t kLastSecond = 253402300799;           // of the year 9999

// No bytes, but not null.
inline std::uint8_t* pointer(Bytes& bytes) {
  static std::uint8_t none = 0;
  return bytes.empty() ? &none : bytes.data();
}

struct Whole {};  // marks a buffer that holds one element

template <class Function>
void visit(WaterMark& mark, Function&& f) {
  f(mark.data1, mark.data1Len), f(mark.data2, mark.data2Len), f(mark.text, mark.textLen);
  f(mark.alg), f(mark.algParam), f(mark.time);
}
// Buffers in the order in which the library asks for them.
template <class Function>
void visit(StampRecord& record, Function&& f) {
  Seal& seal = record.seal;
  Meta& meta = seal.meta;
  Stamp& stamp = record.stamp;
  f(record.name, record.nameLen), f(record.bits, record.bitsLen), f(seal.data, seal.dataLen);
  f(seal.element, seal.elementLen, Whole()), f(meta.element, meta.elementLen, Whole());
  f(meta.text1, meta.text1Len), f(meta.text2, meta.text2Len), f(stamp.text1, stamp.text1Len);
  f(stamp.text2, stamp.text2Len), f(stamp.data, stamp.dataLen);
  f(seal.name, seal.nameLen), f(seal.bits, seal.bitsLen);
  std::uint32_t type = seal.type;
  f(type), seal.type = static_cast<std::uint8_t>(type);
  f(meta.time1), f(meta.time2), f(meta.time3), f(stamp.time);
  for (std::uint32_t& value : stamp.value) f(value);
}
template <class Function>
void visit(Finger& finger, Function&& f) {
  f(finger.sys1, finger.sys1Len), f(finger.sys2, finger.sys2Len), f(finger.sys3, finger.sys3Len);
  f(finger.sysValue);
  for (std::uint32_t i = 0; i < finger.list.count; ++i) {
    f(finger.list.entries[i].value, finger.list.entries[i].valueLen, Whole());
    for (std::uint8_t& flag : finger.list.entries[i].action) f(flag);
  }
}
template <class Function>
void visit(LogInfo& log, Function&& f) {
  f(log.text1, log.text1Len), f(log.array1, log.array1Len), f(log.array2, log.array2Len);
  f(log.text2, log.text2Len), f(log.number), f(log.time), f(log.value);
}
template <class Function>
void visit(ContentAttrInfo& info, Function&& f) {
  f(info.fileName, info.fileNameLen), f(info.fileTitle, info.fileTitleLen);
  f(info.fileType), f(info.secrecy), f(info.fileSize);
  f(info.modifyTime), f(info.expiryTime), f(info.abolishTime), f(info.destroyTime);
}

// A record that is filled at random, with the bytes that it points to.
template <class Record>
class Filled {
 public:
  explicit Filled(std::uint32_t seed = 1) : random_(seed) {
    if constexpr (std::is_same_v<Record, Finger>) record.list = {1 + seed % 3, entries_};
    if constexpr (std::is_same_v<Record, LogInfo>) record.issuer = &issuer_.record();
    visit(record, *this);
  }
  Filled(const Filled&) = delete;
  Filled& operator=(const Filled&) = delete;

  void operator()(std::uint8_t*& data, std::uint32_t& length) {
    keep(data, length, pattern(1 + below(below(4) == 0 ? 255 : 40), below(26)));
  }
  template <class Length>
  void operator()(std::uint8_t*& data, Length& length, Whole /*element*/) {
    keep(data, length, tlv(0x30, tlv(0x04, pattern(below(200)))));
  }
  void operator()(char*& data, std::uint32_t& length) {  // stored with its terminator
    keep(data, length, concat(pattern(below(20)), Bytes{0}));
  }
  void operator()(std::uint8_t& flag) { flag = below(2) != 0; }
  void operator()(std::uint32_t& number) { number = below(UINT32_MAX); }
  void operator()(std::uint64_t& time) { time = below(2) != 0 ? below(3) : kLastSecond - below(3); }

  Record record{};

 private:
  std::uint32_t below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(random_() * limit >> 32);
  }
  template <class Byte, class Length>
  void keep(Byte*& data, Length& length, Bytes bytes) {
    length = static_cast<Length>(bytes.size());
    data = reinterpret_cast<Byte*>(kept_.emplace_back(std::move(bytes)).data());
  }

  std::mt19937 random_;
  std::list<Bytes> kept_;
  FingerEntry entries_[3] = {};
  Issuer issuer_{{{kCommonName, 19, text("Log")}}};
};

// Values as lines of text, so that two that differ show where.
class Report {
 public:
  template <class... Values>
  void line(const char* name, const Values&... values) {
    text_ += name;
    (print(values), ...);
    text_ += '\n';
  }
  [[nodiscard]] const std::string& str() const { return text_; }

 private:
  void print(const std::string& text) { text_ += ' ' + text; }
  void print(std::uint64_t number) { print(std::to_string(number)); }
  void print(const Bytes& bytes) {
    text_ += ' ';
    for (const std::uint8_t octet : bytes) {
      text_ += {"0123456789abcdef"[octet >> 4], "0123456789abcdef"[octet & 15]};
    }
  }
  void print(const Name& name) {
    for (const auto& [type, tag, value] : name) print(type), print(tag), print(value);
  }

  std::string text_;
};

// What a record says, and how many bytes its buffers hold.
struct Said : Report {
  template <class Byte, class Length>
  void operator()(Byte* data, Length length, Whole /*element*/ = {}) {
    line("buffer", data == nullptr ? Bytes(length) : Bytes(data, data + length));
    size += length;
  }
  void operator()(std::uint64_t value) { line("value", value); }

  std::uint32_t size = 0;
};
template <class Record>
Said describe(Record record) {
  Said said;
  visit(record, said);
  return said;
}

// What getters make. There is a zero behind each buffer, and none without bytes but those of a log.
struct Released {
  void operator()(WaterMark* mark) const {
    EXPECT_EQ(FreetWaterMarkInfo(mark), 0);
    Asn1Free(mark->text);
    Asn1Free(mark);
  }
  void operator()(StampRecord* stamp) const { EXPECT_EQ(FreeStampA(stamp), 0); }
  void operator()(Finger* finger) const { EXPECT_EQ(FreeFingerPrintInfo(finger), 0); }
  void operator()(LogInfo* log) const { FreeLog(log); }
};
template <class Record>
struct CheckMade {
  template <class Byte, class Length>
  void operator()(Byte* data, Length length, Whole /*element*/ = {}) const {
    const bool none = length == 0 && !std::is_same_v<Record, LogInfo>;
    EXPECT_EQ(data == nullptr, none);
    EXPECT_TRUE(none || sizeof length == 1 || data[length] == 0);
  }
  void operator()(std::uint64_t /*value*/) const {}
};
template <class Record, class Get, class... At>
std::unique_ptr<Record, Released> take(Get getter, TqLabel label, At... at) {
  Record* record = nullptr;
  const bool done = getter(label, at..., &record) == 0;
  EXPECT_EQ(done, record != nullptr);
  if (record != nullptr) visit(*record, CheckMade<Record>());
  return std::unique_ptr<Record, Released>(record);
}

// Envelopes

inline const Bytes kSubject = hex("30 05 04 03 61 62 63");

struct Recipient {
  Bytes serial;
  std::vector<Issuer::Attribute> issuer;
  bool operator==(const Recipient&) const = default;
};
inline Recipient recipient(std::uint8_t serial, const char* common_name = "CA") {
  return {{serial}, {{kCountry, 19, text("CN")}, {kCommonName, 19, text(common_name)}}};
}

struct HeadEnvelope {
  Recipient to;
  Bytes alg = text("SM2");
  Bytes key = pattern(16);
  bool operator==(const HeadEnvelope&) const = default;
};

// The values of a privilege beside its bytes and its pairs.
template <class Info>
auto values_of(Info& info) {
  return std::tie(info.flag1, info.number1, info.readCount, info.flag2, info.flag3, info.flag4,
                  info.number3, info.number4);
}
using Flag = std::uint8_t;
using Number = std::uint32_t;
struct Privileges {
  Bytes data = kSubject;
  std::tuple<Flag, Number, Number, Flag, Flag, Flag, Number, Number> values = {1, 11, 22, 0,
                                                                               1, 0,  33, 44};
  std::vector<std::pair<std::uint16_t, std::uint32_t>> pairs;
  bool operator==(const Privileges&) const = default;
};
constexpr std::size_t kReadCount = 2;  // among the values

struct BodyEnvelope {
  HeadEnvelope envelope;
  Privileges privileges;
  bool operator==(const BodyEnvelope&) const = default;
};

inline EnvelopeInfo view(HeadEnvelope& envelope, Issuer& issuer) {
  return {pointer(envelope.alg),
          static_cast<std::uint8_t>(envelope.alg.size()),
          pointer(envelope.to.serial),
          static_cast<std::uint8_t>(envelope.to.serial.size()),
          pointer(envelope.key),
          size32(envelope.key),
          &issuer.record()};
}
inline PrivilegeInfo view(Privileges& from, std::vector<PrivilegeEntry>& entries) {
  entries.resize(from.pairs.size());
  // The padding as well, which copies of a value need not have.
  if (!entries.empty()) std::memset(entries.data(), 0, entries.size() * sizeof entries[0]);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    std::tie(entries[i].type, entries[i].value) = from.pairs[i];
  }
  PrivilegeInfo info{};
  info.data = pointer(from.data);
  info.dataLen = size32(from.data);
  values_of(info) = from.values;
  info.entryCount = static_cast<std::uint32_t>(entries.size());
  info.entries = entries.data();
  return info;
}

inline std::int32_t add_to_head(TqLabel label, HeadEnvelope envelope) {
  Issuer issuer(envelope.to.issuer);
  const EnvelopeInfo info = view(envelope, issuer);
  return AddEnvelopeToHead(label, &info);
}
inline std::int32_t add_to_body(TqLabel label, HeadEnvelope envelope, Privileges privileges = {}) {
  Issuer issuer(envelope.to.issuer);
  std::vector<PrivilegeEntry> entries;
  const EnvelopeInfo info = view(envelope, issuer);
  const PrivilegeInfo rights = view(privileges, entries);
  return ADDigitEnvlopeToBody(label, &info, &rights);
}

// Room for one envelope of a body: addressed to a recipient, or for whatever comes.
struct Room {
  Room() {
    std::memset(pairs, 0xEE, sizeof pairs);
    privilege.data = data.data();
    privilege.dataLen = size32(data);
    privilege.entries = pairs;
    privilege.entryCount = 30;
  }
  explicit Room(const Recipient& to) : Room() {
    const Issuer name(to.issuer);
    issuer.count = name.get()->count;
    std::copy_n(name.get()->entries, issuer.count, names);
    std::ranges::copy(to.serial, serial.begin());
    envelope.serialLen = static_cast<std::uint8_t>(to.serial.size());
  }
  Room(const Room&) = delete;
  Room& operator=(const Room&) = delete;

  [[nodiscard]] BodyEnvelope taken() const {
    BodyEnvelope out;
    out.envelope.to.serial = {envelope.serial, envelope.serial + envelope.serialLen};
    if (envelope.issuer != nullptr) out.envelope.to.issuer = attributes_of(envelope.issuer);
    out.envelope.alg = {envelope.alg, envelope.alg + envelope.algLen};
    out.envelope.key = {envelope.key, envelope.key + envelope.keyLen};
    out.privileges.data = {privilege.data, privilege.data + privilege.dataLen};
    out.privileges.values = values_of(privilege);
    for (std::uint32_t i = 0; i < privilege.entryCount; ++i) {
      out.privileges.pairs.emplace_back(privilege.entries[i].type, privilege.entries[i].value);
    }
    return out;
  }

  Bytes alg = Bytes(32, 0xEE);
  Bytes serial = Bytes(255, 0xEE);
  Bytes key = Bytes(350, 0xEE);
  Bytes data = Bytes(350, 0xEE);
  PrivilegeEntry pairs[30];
  PJCertIssuerEntry names[10]{};
  PJCertIssuer issuer{names, 0, 10};
  EnvelopeInfo envelope{alg.data(), 32, serial.data(), 255, key.data(), 350, &issuer};
  PrivilegeInfo privilege{};
};

inline std::optional<BodyEnvelope> from_body(TqLabel label, const Recipient& to) {
  Room room(to);
  if (GetEnvelopeFromBody(label, &room.envelope, &room.privilege) != 0) return std::nullopt;
  return room.taken();
}
inline std::optional<HeadEnvelope> from_head(TqLabel label, const Recipient& to) {
  Room room(to);
  if (GetEnvelopeFromHead(label, &room.envelope) != 0) return std::nullopt;
  return room.taken().envelope;
}

inline Element& head_list(Element& tree, const char* version) {
  Element& head = tree.children.at(0);
  return is_60(version) ? head.children.at(4).children.at(2) : head.children.at(7).children.at(3);
}
inline Element& body_list(Element& tree, const char* version) {
  return tree.children.at(1).children.at(is_multi_sign(version) ? 1 : 2);
}
// A "6.0" label with envelopes in head and body; no function adds them. Serial numbers from 1.
inline Bytes label_60_with_envelopes(std::uint8_t count) {
  Label label;
  fill(label, "6.0");
  Bytes of_head;
  Bytes of_body;
  for (std::uint8_t i = 1; i <= count; ++i) {
    const Bytes envelope =
        tlv(0x30, concat(tlv(0x02, {i}), tlv(0x13, text("sm2")), tlv(0x04, pattern(16, i))));
    const Bytes rights = tlv(0x30, concat(kSubject, hex("01 01 FF  02 01 0B  02 01 16  01 01 00"
                                                        "01 01 FF  01 01 00  02 01 21  02 01 2C"
                                                        "05 00")));
    of_head = concat(of_head, envelope);
    of_body = concat(of_body, tlv(0x30, concat(envelope, rights)));
  }
  Element tree = parse(encode(label));
  head_list(tree, "6.0") = parse(tlv(0x30, tlv(0x31, of_head)));
  body_list(tree, "6.0") = parse(tlv(0x30, tlv(0x31, of_body)));
  return tree.der();
}

// A marking of an encoded label: 0 the stamp, 1 the watermark, 2 the fingerprints. Null where
// "1.1.2" leaves it out.
inline Element* marking(Element& tree, const char* version, std::uint8_t which) {
  std::vector<Element>& body = tree.children.at(1).children;
  if (!is_multi_sign(version)) return &body.at(3U + which);
  for (std::size_t i = 2; body.at(i).tag != 0x30; ++i) {
    if (body[i].tag == 0xA0 + which) return &body[i].children.at(0);
  }
  return nullptr;
}

inline std::int32_t add_log(TqLabel label, std::uint32_t number) {
  Filled<LogInfo> log;
  log.record.number = number;
  return AddLog(label, &log.record);
}

// On top of the fields every record and every list, with two entries where two fit. The lists are
// in the order that DER has for sets.
inline void fill_records(TqLabel label, const char* version) {
  fill_fields(label, version);
  for (const std::uint8_t i : Bytes{2, 1}) {  // lists grow at the front
    EXPECT_EQ(add_log(label, i), 0);
    EXPECT_EQ(AddExtendValue(label, i, pattern(16).data(), 16), 0);
    if (is_60(version)) continue;
    const HeadEnvelope envelope{{{i}, {{kCommonName, 19, text("A")}}}};
    const Privileges rights{kSubject, {1, 10, 20, 0, 1, 0, 30, 40}, {{5, 6}, {3, 4}}};
    EXPECT_EQ(add_to_head(label, envelope) | add_to_body(label, envelope, rights), 0);
  }
  const Filled<WaterMark> mark;
  const Filled<StampRecord> stamp;
  const Filled<Finger> finger;
  finger.record.list.entries[1] = finger.record.list.entries[0];
  EXPECT_EQ(SetWaterMarkInfo(label, &mark.record) | SetStampInfo(label, &stamp.record), 0);
  EXPECT_EQ(SetFingerPrintInfo(label, &finger.record), 0);
}
inline Label full_label(const char* version) {
  Label label;
  fill_records(label, version);
  return label;
}

inline std::uint32_t counted(TqLabel label, std::int32_t (*how)(TqLabel, std::uint32_t*)) {
  std::uint32_t count = 0xABCDEF;
  EXPECT_EQ(how(label, &count), 0);
  return count;
}

inline Bytes extension(TqLabel label, std::uint32_t type) {
  std::uint32_t length = 0;
  if (GetExtendValue(label, type, nullptr, &length) != 0) return text("none");
  Bytes value(length + 1, 0xEE);
  length = 0;  // it is not looked at
  EXPECT_EQ(GetExtendValue(label, type, value.data(), &length), 0);
  EXPECT_EQ(length + 1, value.size());
  EXPECT_EQ(value.back(), 0xEE);
  value.pop_back();
  return value;
}

}  // namespace tq::abi

#endif
