#include <gtest/gtest.h>

#include <ctime>
#include <sstream>

#include "core/model/buffer.h"
#include "unit/support/allocations.h"
#include "unit/support/bytes.h"

namespace tq::test {
namespace {

// What a primitive makes; nothing where it fails, which it does without an effect.
template <class Set>
Bytes made(Set set) {
  ANYBUF* slot = nullptr;
  const std::int32_t result = set(&slot);
  EXPECT_EQ(result == 0, slot != nullptr);
  const Node owner(slot);
  return slot == nullptr ? Bytes{} : bytes_of(slot);
}

// What a primitive reads, or the value as it was; a failure must not change it.
template <class Value>
Value read(std::int32_t (*get)(const ANYBUF*, Value*), const Bytes& bytes, Value untouched) {
  Input element(bytes);
  Value value = untouched;
  return get(element.node(), &value) == 0 || value == untouched ? value
                                                                : static_cast<Value>(~untouched);
}

constexpr std::uint32_t kUntouched = 0xC0FFEE;

TEST(Integer, HasOneFormPerValue) {
  constexpr std::uint32_t kValues[] = {0,        0x7F,     0x80,       0x7FFF,     0x8000,
                                       0x7FFFFF, 0x800000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  const std::uint32_t* value = kValues;
  for (const Bytes& bytes :
       hexes("02 01 00|02 01 7F|02 02 00 80|02 02 7F FF|02 03 00 80 00|02 03 7F FF FF"
             "|02 04 00 80 00 00|02 04 7F FF FF FF|02 05 00 80 00 00 00|02 05 00 FF FF FF FF")) {
    EXPECT_EQ(made([&](ANYBUF** slot) { return QZAsn1SetInteger(*value, slot); }), bytes);
    // What lies behind the element is ignored.
    EXPECT_EQ(read(QZAsn1GetInteger, concat(bytes, hex("FF FF")), kUntouched), *value++);
  }
  for (const Bytes& bad :
       hexes("|02|02 00|02 01|02 01 80|02 01 FF|02 02 FF 7F|02 02 00 00|02 02 00 7F|02 03 00 00 80"
             "|02 04 FF FF FF FF|02 05 00 7F FF FF FF|02 05 01 00 00 00 00|02 06 00 00 80 00 00 00"
             "|02 06 00 80 00 00 00 00|22 01 00|82 01 00|03 01 00|02 81 01 00|02 02 01")) {
    EXPECT_EQ(read(QZAsn1GetInteger, bad, kUntouched), kUntouched) << ::testing::PrintToString(bad);
  }
}

TEST(Boolean, IsAllOnesOrNone) {
  for (const std::uint8_t value : hex("00 01 02 FF")) {
    const Bytes bytes = made([=](ANYBUF** slot) { return QZAsn1SetBoolean(value, slot); });
    EXPECT_EQ(bytes, hex(value != 0 ? "01 01 FF" : "01 01 00"));
    EXPECT_EQ(read<std::uint8_t>(QZAsn1GetBoolean, bytes, 9), value != 0 ? 1 : 0);
  }
  for (const Bytes& bad : hexes("01 00|01 01 01|01 01 FE|01 01 7F|01 02 FF FF|01 02 00 00|21 01 FF"
                                "|02 01 00|01 01")) {
    EXPECT_EQ(read<std::uint8_t>(QZAsn1GetBoolean, bad, 9), 9) << ::testing::PrintToString(bad);
  }
  EXPECT_EQ(made(QZAsn1SetNull), hex("05 00"));
}

TEST(Primitives, RefuseNullArgumentsAndLengthsWithoutBytes) {
  std::uint32_t value = kUntouched;
  const ANYBUF no_bytes = view_of(nullptr, 3, 0);
  EXPECT_EQ(QZAsn1GetInteger(nullptr, &value), -1);
  EXPECT_EQ(QZAsn1GetInteger(&no_bytes, &value), -1);
  EXPECT_EQ(QZAsn1GetInteger(Input(hex("02 01 05")).node(), nullptr), -1);
  EXPECT_EQ(Asn1memcpy(nullptr, nullptr, 0), nullptr);  // where there is nothing to do
  EXPECT_EQ(Asn1memset(nullptr, 1, 0), nullptr);
  EXPECT_EQ(Asn1memcmp(nullptr, nullptr, 0), 0);
}

// Types whose content passes through unchanged.
struct Kind {
  std::uint8_t tag;
  std::int32_t (*get)(const ANYBUF*, ANYBUF**);
  std::int32_t (*set)(const ANYBUF*, ANYBUF**);
  Bytes front;  // content octets in front of the string itself
};
const Kind kKinds[] = {{0x02, QZAsn1GetIntegerArray, QZAsn1SetIntegerArray, {}},
                       {0x03, QZAsn1GetBitString, QZAsn1SetBitString, {0}},
                       {0x04, QZAsn1GetOctetString, QZAsn1SetOctetString, {}},
                       {0x06, QZAsn1GetObjectIdPJ, QZAsn1SetObjectIdPJ, {}},
                       {0x13, QZAsn1GetPrintableString, QZAsn1SetPrintableString, {}},
                       {0x16, QZAsn1GetIa5String, QZAsn1SetIa5String, {}},
                       {0x1E, QZAsn1GetBmpString, QZAsn1SetBmpString, {}}};

TEST(String, CarriesItsOctetsUnchangedBothWays) {
  for (const Kind& kind : kKinds) {
    for (const std::size_t length : {0U, 1U, 126U, 127U, 128U, 255U, 256U, 65535U, 65536U}) {
      const Bytes content(length, 0xF9);
      Input input(content);
      const Bytes element = made([&](ANYBUF** slot) { return kind.set(input.node(), slot); });
      EXPECT_EQ(element, tlv(kind.tag, concat(kind.front, content)));
      Input longer(concat(element, hex("FF FF")));
      ANYBUF* read = nullptr;
      ASSERT_EQ(kind.get(longer.node(), &read), 0);
      const Node owner(read);
      EXPECT_EQ(bytes_of(read), content);
      EXPECT_EQ(read->data == nullptr, length == 0);
      EXPECT_EQ(read->type, kind.tag);
    }
  }
}

TEST(String, RefusesOtherElementsAndLengthsThatAreTooLong) {
  std::uint8_t octet = 0;
  ANYBUF no_bytes = view_of(nullptr, 2, 0);
  ANYBUF huge = view_of(&octet, UINT32_MAX - 5, 0);
  ANYBUF wraps = view_of(&octet, UINT32_MAX, 0);
  ANYBUF* slot = nullptr;
  const std::size_t calls = allocations().calls;
  for (const Kind& kind : kKinds) {
    for (unsigned tag = 0; tag < 0x100; ++tag) {
      const Bytes element = tlv(static_cast<std::uint8_t>(tag), concat(kind.front, hex("41")));
      const Bytes cut(element.begin(), element.end() - 1);
      EXPECT_EQ(kind.get(Input(tag == kind.tag ? cut : element).node(), &slot), -1) << tag;
    }
    EXPECT_EQ(kind.get(&no_bytes, &slot), -1);
    for (const ANYBUF* bad : {&no_bytes, &huge, &wraps}) EXPECT_EQ(kind.set(bad, &slot), -1);
  }
  for (const Bytes& bits : hexes("03 00|03 01 01|03 02 01 80|03 02 07 80|03 02 08 00")) {
    EXPECT_EQ(QZAsn1GetBitString(Input(bits).node(), &slot), -1);
  }
  EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(allocations().calls, calls);
}

std::uint64_t read_time(std::string_view characters) {
  return read<std::uint64_t>(QZAsn1GetGeneralizedTime, tlv(0x18, text(characters)), kUntouched);
}
Bytes time_element(std::uint64_t seconds) {
  return made([=](ANYBUF** slot) { return QZAsn1SetGeneralizedTime(seconds, slot); });
}

// Every day of one whole cycle of 400 years and every 29th after it, each at another hour, against
// the C library.
TEST(Time, AgreesWithTheCalendarOfTheCLibrary) {
  constexpr std::uint64_t kLast = 253402300799;
  const auto check = [](std::uint64_t seconds) {
    const auto when = static_cast<std::time_t>(seconds);
    std::tm parts{};
    char characters[32];
    ASSERT_NE(gmtime_r(&when, &parts), nullptr);
    ASSERT_EQ(std::strftime(characters, sizeof characters, "%Y%m%d%H%M%SZ", &parts), 15U);
    ASSERT_EQ(time_element(seconds), tlv(0x18, text(characters)));
    ASSERT_EQ(read_time(characters), seconds);
  };
  const std::uint64_t step = quick() ? 97 : 1;
  for (std::uint64_t day = 0; day <= kLast / 86400; day += day < 146097 ? step : 29 * step) {
    check(day * 86400 + day * 7919 % 86400);
  }
  check(kLast);
  EXPECT_EQ(time_element(kLast + 1), Bytes{});
}

TEST(Time, RefusesWhatIsNoDateAndEveryOtherForm) {
  std::istringstream bad(
      "19691231235959Z 00000101000000Z 20230001000000Z 20231301000000Z 20230100000000Z "
      "20230132000000Z 20230431000000Z 20230631000000Z 20230931000000Z 20231131000000Z "
      "20230229000000Z 21000229000000Z 20240230000000Z 20230101240000Z 20230101006000Z "
      "20230101000060Z 20240229123456 202402291234Z 20240229123456ZZ 240229123456Z "
      "20240229123456+0000 20240229123456.5Z");
  for (std::string word; bad >> word;) EXPECT_EQ(read_time(word), kUntouched) << word;
  const std::string good = "20240229123456Z";
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (const char wrong : {'/', ':', ' ', 'A', '\0', '\x80', 'z', '-'}) {
      std::string changed = good;
      changed[at] = wrong;
      EXPECT_EQ(read_time(changed), kUntouched) << at << ' ' << wrong;
    }
  }
  for (const std::uint8_t tag : hex("17 38 98 13")) {
    EXPECT_EQ(read<std::uint64_t>(QZAsn1GetGeneralizedTime, tlv(tag, text(good)), 9), 9U);
  }
}

}  // namespace
}  // namespace tq::test
