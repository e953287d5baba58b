#include <gtest/gtest.h>
#include <tqasn1/asn1.h>

#include <ctime>
#include <string>
#include <string_view>

#include "unit/support/bytes.h"

namespace tq::asn1 {
namespace {

using test::Bytes;
using test::Chain;
using test::Input;

constexpr std::uint64_t kUntouched = 0xC0FFEE;

std::int32_t read(std::string_view text, std::uint64_t& seconds) {
  Input element(test::tlv(0x18, Bytes(text.begin(), text.end())));
  return QZAsn1GetGeneralizedTime(element.node(), &seconds);
}

std::string write(std::uint64_t seconds) {
  ANYBUF* made = nullptr;
  if (QZAsn1SetGeneralizedTime(seconds, &made) != 0) return "failed";
  const Chain owner(made);
  const Bytes bytes = test::bytes_of(made);
  const std::string text(bytes.begin() + 2, bytes.end());
  EXPECT_EQ(bytes, test::tlv(0x18, Bytes(text.begin(), text.end())));
  return text;
}

TEST(Time, KnowsItsDates) {
  const struct {
    std::uint64_t seconds;
    const char* text;
  } cases[] = {
      {0, "19700101000000Z"},           {59, "19700101000059Z"},
      {86399, "19700101235959Z"},       {86400, "19700102000000Z"},
      {68169600, "19720229000000Z"},    {951782400, "20000229000000Z"},
      {951868800, "20000301000000Z"},   {2147483648, "20380119031408Z"},
      {4107542399, "21000228235959Z"},  {4107542400, "21000301000000Z"},
      {13574563200, "24000229000000Z"}, {253402300799, "99991231235959Z"},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(write(one.seconds), one.text);
    std::uint64_t seconds = kUntouched;
    EXPECT_EQ(read(one.text, seconds), 0) << one.text;
    EXPECT_EQ(seconds, one.seconds) << one.text;
  }
}

// Every day of one whole cycle of 400 years and every 29th after it, each at another hour, against
// the C library.
TEST(Time, AgreesWithTheCalendarOfTheCLibrary) {
  for (std::uint64_t day = 0; day <= 253402300799 / 86400; day += day < 146097 ? 1 : 29) {
    const std::uint64_t seconds = day * 86400 + day * 7919 % 86400;
    const auto when = static_cast<std::time_t>(seconds);
    std::tm parts{};
    char text[32];
    ASSERT_NE(gmtime_r(&when, &parts), nullptr);
    ASSERT_EQ(std::strftime(text, sizeof text, "%Y%m%d%H%M%SZ", &parts), 15U);
    ASSERT_EQ(write(seconds), text);
    std::uint64_t back = kUntouched;
    ASSERT_EQ(read(text, back), 0) << text;
    ASSERT_EQ(back, seconds) << text;
  }
}

TEST(Time, RefusesDatesThatAreNone) {
  for (const char* text :
       {"19691231235959Z", "00000101000000Z", "20230001000000Z", "20231301000000Z",
        "20230100000000Z", "20230132000000Z", "20230431000000Z", "20230631000000Z",
        "20230931000000Z", "20231131000000Z", "20230229000000Z", "21000229000000Z",
        "22000229000000Z", "20240230000000Z", "20230101240000Z", "20230101006000Z",
        "20230101000060Z"}) {
    std::uint64_t seconds = kUntouched;
    EXPECT_EQ(read(text, seconds), -1) << text;
    EXPECT_EQ(seconds, kUntouched);
  }
}

TEST(Time, RefusesEveryOtherCharacterAndForm) {
  const std::string good = "20240229123456Z";
  std::uint64_t seconds = kUntouched;
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (const char wrong : {'/', ':', ' ', 'A', '\0', '\x80', 'z', '-'}) {
      std::string text = good;
      text[at] = wrong;
      EXPECT_EQ(read(text, seconds), -1) << at << ' ' << wrong;
    }
  }
  for (const char* text : {"", "20240229123456", "202402291234Z", "20240229123456ZZ",
                           "20240229123456.5Z", "20240229123456+0000", "240229123456Z"}) {
    EXPECT_EQ(read(text, seconds), -1) << text;
  }
  EXPECT_EQ(seconds, kUntouched);
}

TEST(Time, RefusesOtherTypesAndTimesPastTheEnd) {
  std::uint64_t seconds = kUntouched;
  const std::string_view text = "20240229123456Z";
  for (const unsigned tag : {0x17U, 0x38U, 0x98U, 0x13U}) {
    Input element(test::tlv(static_cast<std::uint8_t>(tag), Bytes(text.begin(), text.end())));
    EXPECT_EQ(QZAsn1GetGeneralizedTime(element.node(), &seconds), -1) << tag;
  }
  EXPECT_EQ(seconds, kUntouched);
  EXPECT_EQ(write(253402300800), "failed");
  EXPECT_EQ(write(UINT64_MAX), "failed");
}

}  // namespace
}  // namespace tq::asn1
