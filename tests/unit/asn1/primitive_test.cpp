#include <gtest/gtest.h>
#include <tqasn1/asn1.h>

#include "unit/support/allocations.h"
#include "unit/support/bytes.h"

namespace tq::asn1 {
namespace {

using test::Bytes;
using test::bytes_of;
using test::Chain;
using test::hex;
using test::Input;

constexpr std::uint32_t kUntouched = 0xC0FFEE;

TEST(Integer, HasOneFormPerValue) {
  const struct {
    std::uint32_t value;
    const char* bytes;
  } cases[] = {
      {0, "02 01 00"},
      {1, "02 01 01"},
      {0x7F, "02 01 7F"},
      {0x80, "02 02 00 80"},
      {0xFF, "02 02 00 FF"},
      {0x100, "02 02 01 00"},
      {0x7FFF, "02 02 7F FF"},
      {0x8000, "02 03 00 80 00"},
      {0x7FFFFF, "02 03 7F FF FF"},
      {0x800000, "02 04 00 80 00 00"},
      {0x7FFFFFFF, "02 04 7F FF FF FF"},
      {0x80000000, "02 05 00 80 00 00 00"},
      {0xFFFFFFFF, "02 05 00 FF FF FF FF"},
  };
  for (const auto& one : cases) {
    ANYBUF* made = nullptr;
    ASSERT_EQ(QZAsn1SetInteger(one.value, &made), 0);
    const Chain owner(made);
    EXPECT_EQ(bytes_of(made), hex(one.bytes));
    EXPECT_EQ(made->type, 2U);
    std::uint32_t value = kUntouched;
    EXPECT_EQ(QZAsn1GetInteger(made, &value), 0) << one.bytes;
    EXPECT_EQ(value, one.value);
  }
}

TEST(Integer, RefusesWhatIsNegativeLongerThanNeededOrTooLarge) {
  for (const char* bytes : {"",
                            "02",
                            "02 00",
                            "02 01",
                            "02 01 80",
                            "02 01 FF",
                            "02 02 FF 7F",
                            "02 02 00 00",
                            "02 02 00 7F",
                            "02 03 00 00 80",
                            "02 04 FF FF FF FF",
                            "02 05 00 7F FF FF FF",
                            "02 05 01 00 00 00 00",
                            "02 06 00 00 80 00 00 00",
                            "02 06 00 80 00 00 00 00",
                            "22 01 00",
                            "82 01 00",
                            "03 01 00",
                            "02 81 01 00",
                            "02 02 01"}) {
    std::uint32_t value = kUntouched;
    EXPECT_EQ(QZAsn1GetInteger(Input(hex(bytes)).node(), &value), -1) << bytes;
    EXPECT_EQ(value, kUntouched) << bytes;
  }
}

TEST(Boolean, IsAllOnesOrNone) {
  for (const unsigned value : {0U, 1U, 2U, 0xFFU}) {
    ANYBUF* made = nullptr;
    ASSERT_EQ(QZAsn1SetBoolean(static_cast<std::uint8_t>(value), &made), 0);
    const Chain owner(made);
    EXPECT_EQ(bytes_of(made), hex(value != 0 ? "01 01 FF" : "01 01 00"));
    std::uint8_t read = 9;
    EXPECT_EQ(QZAsn1GetBoolean(made, &read), 0);
    EXPECT_EQ(read, value != 0 ? 1 : 0);
  }
  for (const char* bytes : {"01 00", "01 01 01", "01 01 FE", "01 01 7F", "01 02 FF FF",
                            "01 02 00 00", "21 01 FF", "02 01 00", "01 01"}) {
    std::uint8_t read = 9;
    EXPECT_EQ(QZAsn1GetBoolean(Input(hex(bytes)).node(), &read), -1) << bytes;
    EXPECT_EQ(read, 9) << bytes;
  }
}

TEST(Null, HasNoContent) {
  ANYBUF* made = nullptr;
  ASSERT_EQ(QZAsn1SetNull(&made), 0);
  const Chain owner(made);
  EXPECT_EQ(bytes_of(made), hex("05 00"));
  EXPECT_EQ(made->type, 5U);
}

TEST(Primitives, IgnoreWhatLiesBehindTheElement) {
  std::uint32_t value = kUntouched;
  EXPECT_EQ(QZAsn1GetInteger(Input(hex("02 01 05 FF FF")).node(), &value), 0);
  EXPECT_EQ(value, 5U);
  std::uint8_t flag = 9;
  EXPECT_EQ(QZAsn1GetBoolean(Input(hex("01 01 FF 00")).node(), &flag), 0);
  EXPECT_EQ(flag, 1);
}

TEST(Primitives, RefuseNullArgumentsAndTrees) {
  Input integer(hex("02 01 05"));
  std::uint32_t value = kUntouched;
  std::uint64_t time = kUntouched;
  std::uint8_t flag = 9;
  EXPECT_EQ(QZAsn1GetInteger(nullptr, &value), -1);
  EXPECT_EQ(QZAsn1GetInteger(integer.node(), nullptr), -1);
  EXPECT_EQ(QZAsn1GetBoolean(nullptr, &flag), -1);
  EXPECT_EQ(QZAsn1GetGeneralizedTime(nullptr, &time), -1);
  EXPECT_EQ(QZAsn1SetInteger(1, nullptr), -1);
  EXPECT_EQ(QZAsn1SetBoolean(1, nullptr), -1);
  EXPECT_EQ(QZAsn1SetNull(nullptr), -1);
  EXPECT_EQ(QZAsn1SetGeneralizedTime(0, nullptr), -1);
  ANYBUF no_bytes{};
  no_bytes.length = 3;
  EXPECT_EQ(QZAsn1GetInteger(&no_bytes, &value), -1);
  EXPECT_EQ(QZAsn1GetBoolean(&no_bytes, &flag), -1);
  EXPECT_EQ(QZAsn1GetGeneralizedTime(&no_bytes, &time), -1);
  EXPECT_EQ(value, kUntouched);
}

TEST(Primitives, MakeOneBlockEach) {
  const auto once = [](std::int32_t (*set)(ANYBUF**)) {
    return test::fail_each_allocation([=] {
      ANYBUF* made = nullptr;
      const std::int32_t result = set(&made);
      EXPECT_EQ(result == 0, made != nullptr);
      DIFreeAnybuf(made);
      return result == 0;
    });
  };
  EXPECT_EQ(once([](ANYBUF** made) { return QZAsn1SetInteger(UINT32_MAX, made); }), 1U);
  EXPECT_EQ(once([](ANYBUF** made) { return QZAsn1SetBoolean(1, made); }), 1U);
  EXPECT_EQ(once([](ANYBUF** made) { return QZAsn1SetGeneralizedTime(0, made); }), 1U);
  EXPECT_EQ(once([](ANYBUF** made) { return QZAsn1SetNull(made); }), 1U);
}

TEST(Memory, DoesNothingWithNothing) {
  EXPECT_EQ(Asn1memcpy(nullptr, nullptr, 0), nullptr);
  EXPECT_EQ(Asn1memset(nullptr, 1, 0), nullptr);
  EXPECT_EQ(Asn1memcmp(nullptr, nullptr, 0), 0);
}

TEST(Memory, WorksOnUnsignedOctets) {
  Bytes to = hex("00 00 00 00");
  EXPECT_EQ(Asn1memcpy(to.data(), hex("01 7F 80").data(), 3), to.data());
  EXPECT_EQ(to, hex("01 7F 80 00"));
  EXPECT_LT(Asn1memcmp(to.data() + 1, to.data() + 2, 1), 0);
  EXPECT_GT(Asn1memcmp(to.data() + 2, to.data() + 1, 2), 0);
  EXPECT_EQ(Asn1memset(to.data(), 0x1FE, 2), to.data());
  EXPECT_EQ(to, hex("FE FE 80 00"));
}

}  // namespace
}  // namespace tq::asn1
