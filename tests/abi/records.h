#ifndef TQ_TESTS_ABI_RECORDS_H
#define TQ_TESTS_ABI_RECORDS_H

// Records of lists and markings as values: a test compares what it put in with what comes back.
// Inputs own the bytes that their C record points to.

#include <array>
#include <memory>
#include <optional>

#include "abi/support.h"

namespace tq::abi {

inline constexpr const char* kFamily[] = {"1.1", "1.1.1", "1.1.2"};  // versions with envelopes
inline constexpr std::uint32_t kHighBits = 0x5A5A5A00;               // above an 8-bit argument

// No bytes, but not null.
inline std::uint8_t* pointer(Bytes& bytes) {
  static std::uint8_t none = 0;
  return bytes.empty() ? &none : bytes.data();
}

// A buffer that the library made: there is a zero behind it.
inline Bytes made(const void* data, std::uint32_t length) {
  if (data == nullptr) {
    EXPECT_EQ(length, 0U);
    return {};
  }
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  EXPECT_EQ(bytes[length], 0);
  return {bytes, bytes + length};
}

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

struct Privileges {
  Bytes data = kSubject;
  std::array<std::uint8_t, 4> flags = {1, 0, 1, 0};
  std::array<std::uint32_t, 4> numbers = {11, 22, 33, 44};  // the second one counts reads
  std::vector<std::pair<std::uint16_t, std::uint32_t>> pairs;
  bool operator==(const Privileges&) const = default;
};

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
  for (const auto& [type, value] : from.pairs) {
    PrivilegeEntry entry;
    std::memset(&entry, 0, sizeof entry);  // the padding as well
    entry.type = type;
    entry.value = value;
    entries.push_back(entry);
  }
  return {pointer(from.data),
          size32(from.data),
          from.flags[0],
          from.numbers[0],
          from.numbers[1],
          from.flags[1],
          from.flags[2],
          from.flags[3],
          from.numbers[2],
          from.numbers[3],
          static_cast<std::uint32_t>(entries.size()),
          entries.data()};
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
class Room {
 public:
  Room() : alg_(32, 0xEE), serial_(255, 0xEE), key_(300, 0xEE), data_(300, 0xEE) {
    std::memset(entries_, 0xEE, sizeof entries_);
    std::memset(names_, 0xEE, sizeof names_);
    envelope = {alg_.data(), 32, serial_.data(), 255, key_.data(), 300, &issuer};
    privilege.data = data_.data();
    privilege.dataLen = 300;
    privilege.entries = entries_;
    privilege.entryCount = 30;
  }
  explicit Room(const Recipient& to) : Room() {
    const Issuer name(to.issuer);
    std::copy(name.get()->entries, name.get()->entries + name.get()->count, names_);
    issuer.count = name.get()->count;
    std::copy(to.serial.begin(), to.serial.end(), serial_.begin());
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
    out.privileges.flags = {privilege.flag1, privilege.flag2, privilege.flag3, privilege.flag4};
    out.privileges.numbers = {privilege.number1, privilege.readCount, privilege.number3,
                              privilege.number4};
    for (std::uint32_t i = 0; i < privilege.entryCount; ++i) {
      out.privileges.pairs.emplace_back(privilege.entries[i].type, privilege.entries[i].value);
    }
    return out;
  }

 private:
  Bytes alg_, serial_, key_, data_;
  PrivilegeEntry entries_[30];
  PJCertIssuerEntry names_[10];

 public:
  PJCertIssuer issuer{names_, 0, 10};
  EnvelopeInfo envelope{};
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

// The serial numbers of a list in its order, as they stand in the encoded label.
inline std::vector<Bytes> serials_in(const Element& list, bool of_body, const char* version) {
  std::vector<Bytes> serials;
  if (list.tag == 0x05) return serials;
  for (const Element& entry : list.children.at(0).children) {
    const Element& envelope = of_body ? entry.children.at(0) : entry;
    serials.push_back(envelope.children.at(is_60(version) ? 0 : 1).content);
  }
  return serials;
}
inline Element& head_list(Element& tree, const char* version) {
  Element& head = tree.children.at(0);
  return is_60(version) ? head.children.at(4).children.at(2) : head.children.at(7).children.at(3);
}
inline Element& body_list(Element& tree, const char* version) {
  return tree.children.at(1).children.at(is_multi_sign(version) ? 1 : 2);
}
inline std::vector<Bytes> head_serials(TqLabel label, const char* version) {
  Element tree = parse(encode(label));
  return serials_in(head_list(tree, version), false, version);
}
inline std::vector<Bytes> body_serials(TqLabel label, const char* version) {
  Element tree = parse(encode(label));
  return serials_in(body_list(tree, version), true, version);
}

// A "6.0" label with envelopes in head and body; no function adds them. Serial numbers from 1.
inline Bytes label_60_with_envelopes(std::uint8_t count) {
  Label label;
  fill(label, "6.0");
  Bytes of_head;
  Bytes of_body;
  for (std::uint8_t i = 1; i <= count; ++i) {
    const Bytes envelope =
        tlv(0x30, join(join(tlv(0x02, {i}), tlv(0x13, text("sm2"))), tlv(0x04, pattern(16, i))));
    const Bytes rights = tlv(0x30, join(kSubject, hex("01 01 FF  02 01 0B  02 01 16  01 01 00"
                                                      "01 01 FF  01 01 00  02 01 21  02 01 2C"
                                                      "05 00")));
    of_head = join(of_head, envelope);
    of_body = join(of_body, tlv(0x30, join(envelope, rights)));
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

template <class Record, std::int32_t (*kFree)(Record*)>
struct Freed {
  void operator()(Record* record) const { EXPECT_EQ(kFree(record), 0); }
};
inline std::int32_t free_mark(WaterMark* mark) {
  const std::int32_t result = FreetWaterMarkInfo(mark);
  Asn1Free(mark->text);
  Asn1Free(mark);
  return result;
}
inline std::int32_t free_log(LogInfo* log) {
  FreeLog(log);
  return 0;
}
using OwnedMark = std::unique_ptr<WaterMark, Freed<WaterMark, free_mark>>;
using OwnedStamp = std::unique_ptr<StampRecord, Freed<StampRecord, FreeStampA>>;
using OwnedFinger = std::unique_ptr<Finger, Freed<Finger, FreeFingerPrintInfo>>;
using OwnedLog = std::unique_ptr<LogInfo, Freed<LogInfo, free_log>>;

template <class Owned, class Get>
Owned take(TqLabel label, Get getter) {
  typename Owned::element_type* record = nullptr;
  const std::int32_t result = getter(label, &record);
  EXPECT_EQ(result == 0, record != nullptr);
  return Owned(record);
}

struct MarkInput {
  Bytes data1 = pattern(9, 2);
  Bytes data2 = pattern(4, 3);
  std::string words = "ab";
  WaterMark record{data1.data(), 9, data2.data(), 4, 7, 8, words.data(), 99, 1400000000};

  MarkInput() = default;
  MarkInput(const MarkInput&) = delete;
  MarkInput& operator=(const MarkInput&) = delete;
};

struct StampInput {
  Bytes name = text("stamp");
  Bytes bits = pattern(8, 4);
  Bytes seal_name = text("a seal");
  Bytes seal_data = pattern(21, 5);
  Bytes seal_element = hex("04 02 AA BB");
  Bytes seal_bits = pattern(3, 6);
  Bytes meta_element = hex("30 03 02 01 09");
  Bytes meta_text1 = text("meta 1");
  Bytes meta_text2 = text("the meta 2");
  std::string text1 = "first";
  std::string text2 = "second!";
  Bytes data = text("third text");
  StampRecord record{
      name.data(),
      5,
      {seal_name.data(),
       6,
       {meta_element.data(), 5, 1100000000, meta_text1.data(), 6, 1200000000, 1300000000,
        meta_text2.data(), 10},
       9,
       seal_data.data(),
       21,
       seal_element.data(),
       4,
       seal_bits.data(),
       3},
      {text1.data(), 99, {1, 0x80000000, 3, 4}, text2.data(), 99, 1500000000, data.data(), 10},
      bits.data(),
      8};

  StampInput() = default;
  StampInput(const StampInput&) = delete;
  StampInput& operator=(const StampInput&) = delete;
};

struct FingerInput {
  Bytes sys[3] = {pattern(5, 7), pattern(6, 8), pattern(7, 9)};
  Bytes values[3] = {hex("30 03 02 01 01"), hex("30 00"), hex("30 03 02 01 03")};
  FingerEntry entries[3] = {{values[0].data(), 5, {1, 0, 0, 0, 0, 0, 0, 0, 1}},
                            {values[1].data(), 2, {0, 1, 0, 0, 0, 0, 0, 1, 0}},
                            {values[2].data(), 5, {1, 1, 1, 1, 1, 1, 1, 1, 1}}};
  Finger record{sys[0].data(), 5, sys[1].data(), 6, sys[2].data(), 7, 0xFFFFFFFF, {3, entries}};

  FingerInput() = default;
  FingerInput(const FingerInput&) = delete;
  FingerInput& operator=(const FingerInput&) = delete;
};

struct Log {
  std::uint32_t number = 0;
  Bytes text1 = text("opened");
  std::vector<Issuer::Attribute> issuer = {{kCommonName, 19, text("Log")}};
  Bytes array1 = hex("00 C4");
  Bytes array2 = hex("01");
  std::uint64_t time = 1500000000;
  std::uint32_t value = 0x80000000;
  Bytes text2 = text("read only");
  bool operator==(const Log&) const = default;
};
inline LogInfo view(Log& log, Issuer& issuer) {
  return {log.number,          pointer(log.text1),  size32(log.text1),
          &issuer.record(),    pointer(log.array1), size32(log.array1),
          pointer(log.array2), size32(log.array2),  log.time,
          log.value,           pointer(log.text2),  size32(log.text2)};
}
inline std::int32_t add_log(TqLabel label, Log log) {
  Issuer issuer(log.issuer);
  const LogInfo info = view(log, issuer);
  return AddLog(label, &info);
}
inline std::optional<Log> log_at(TqLabel label, std::uint32_t position) {
  const auto getter = [&](TqLabel from, LogInfo** out) { return GetLog(from, position, out); };
  const auto log = take<OwnedLog>(label, getter);
  if (!log) return std::nullopt;
  return Log{log->number,
             made(log->text1, log->text1Len),
             attributes_of(log->issuer),
             made(log->array1, log->array1Len),
             made(log->array2, log->array2Len),
             log->time,
             log->value,
             made(log->text2, log->text2Len)};
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
