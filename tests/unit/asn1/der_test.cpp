#include <gtest/gtest.h>

#include "asn1/writer.h"
#include "unit/support/allocations.h"
#include "unit/support/bytes.h"

namespace tq::test {
namespace {

using der::Plan;

bool is_read(const Bytes& bytes) {
  der::Cursor cursor(bytes.data(), bytes.size());
  der::Element element;
  return cursor.next(element);
}

TEST(Header, RefusesEveryMalformedLength) {
  // Nothing, a tag alone, content or octets of the length that are missing.
  for (const Bytes& bad : hexes("|04|04 01|04 03 00 00|04 81|04 82 01|04 84 FF FF FF FF 00 00")) {
    EXPECT_FALSE(is_read(bad)) << ::testing::PrintToString(bad);
  }
  // Indefinite, longer than needed, of more than four octets, and sums that wrap around.
  for (const Bytes& bad : hexes(
           "04 80|30 80|04 81 00|04 81 7F|04 82 00 80|04 82 00 FF|04 83 00 FF FF|04 84 00 00 01 00"
           "|04 84 00 FF FF FF|04 84 FF FF FF FA|04 85 01 00 00 00 80|04 85 00 00 00 00 80|04 "
           "FF")) {
    EXPECT_FALSE(is_read(concat(bad, Bytes(1U << 24)))) << ::testing::PrintToString(bad);
  }
}

TEST(Header, ReadsTheShortestFormOfEachLengthAndNoOctetLess) {
  for (const std::uint32_t length :
       {0U, 1U, 127U, 128U, 255U, 256U, 65535U, 65536U, 16777215U, 16777216U}) {
    Bytes bytes = tlv(der::kOctetString, Bytes(length));
    der::Cursor cursor(bytes.data(), bytes.size());
    der::Element element;
    ASSERT_TRUE(cursor.next(element) && cursor.at_end()) << length;
    EXPECT_EQ(element.length, length);
    EXPECT_EQ(der::element_size(length), bytes.size());
    EXPECT_TRUE(der::is_one_element(bytes.data(), bytes.size()));
    EXPECT_FALSE(der::is_one_element(bytes.data(), bytes.size() - 1)) << length;
    bytes.push_back(0);
    EXPECT_FALSE(der::is_one_element(bytes.data(), bytes.size())) << length;
  }
}

TEST(Header, TakesTheOneOctetTagsOfDerOnly) {
  Bytes refused;
  for (unsigned tag = 0; tag < 0x100; ++tag) {
    const auto octet = static_cast<der::Octet>(tag);
    if (!is_read({octet, 0})) refused.push_back(octet);
  }
  EXPECT_EQ(refused, hex("00 10 11 1F "                                      // primitive
                         "20 21 22 23 24 25 26 27 28 29 2A 2B 2C 2D 2E 2F "  // constructed
                         "32 33 34 35 36 37 38 39 3A 3B 3C 3D 3E 3F 5F 7F 9F BF DF FF"));
}

bool plan_nested(Plan& plan, std::size_t depth, std::uint32_t length) {
  std::vector<Plan::Open> open(depth);
  for (Plan::Open& level : open) {
    if (!plan.open(level)) return false;
  }
  plan.add(length);
  for (; depth-- > 0;) plan.close(open[depth]);
  return true;
}

void expect_nested(std::size_t depth, std::uint32_t length) {
  Plan plan(Plan::Keep::kLengths);
  Plan total(Plan::Keep::kTotalOnly);
  ASSERT_TRUE(plan_nested(plan, depth, length) && plan_nested(total, depth, length));
  EXPECT_EQ(plan.total(), total.total());
  Bytes made(plan.total());
  der::Writer out(made.data(), plan);
  Bytes expected = tlv(der::kOctetString, Bytes(length));
  for (std::size_t i = 0; i < depth; ++i) {
    out.open(der::kSequence);
    expected = sequence(expected);
  }
  out.header(der::kOctetString, length);
  out.octets(Bytes(length).data(), length);
  ASSERT_EQ(made, expected) << depth << ", " << length;
}

TEST(Plan, CountsHeadersWhereContentsCrossALengthForm) {
  for (const std::uint32_t edge : {0x80U, 0x100U, 0x10000U}) {
    for (std::uint32_t length = edge - 20; length < edge + 4; ++length) expect_nested(4, length);
  }
}

// 256 lengths lie in the plan, 512 in its first block: both seams, with one to spare either way.
TEST(Plan, HoldsMoreLengthsThanItHasRoomForAndFailsCleanly) {
  for (const std::size_t depth : {255U, 256U, 257U, 767U, 768U, 769U, 2000U}) {
    expect_nested(depth, 3);
  }
  const auto attempt = [](std::size_t depth) {
    return fail_each_allocation([=] {
      Plan plan(Plan::Keep::kLengths);
      return plan_nested(plan, depth, 1);
    });
  };
  EXPECT_EQ(attempt(256), 0U);
  EXPECT_EQ(attempt(257), 1U);
  EXPECT_EQ(attempt(2000), 3U);
}

TEST(Plan, FitsUpToThirtyTwoBitsOfTotal) {
  Plan plan(Plan::Keep::kTotalOnly);
  Plan::Open open;
  ASSERT_TRUE(plan.open(open));
  plan.add_whole(UINT32_MAX - 6);
  plan.close(open);
  EXPECT_TRUE(plan.fits());
  plan.add_whole(1);
  EXPECT_FALSE(plan.fits());
}

}  // namespace
}  // namespace tq::test
