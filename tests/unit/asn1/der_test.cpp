#include "asn1/der.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "unit/support/allocations.h"
#include "unit/support/bytes.h"

namespace tq::der {
namespace {

using test::Bytes;
using test::hex;
using test::join;
using test::tlv;
using test::zeros;

bool is_read(const Bytes& bytes) {
  Cursor cursor(bytes.data(), bytes.size());
  Element element;
  return cursor.next(element);
}

TEST(Header, RefusesEveryMalformedLength) {
  const struct {
    const char* what;
    Bytes bytes;
  } cases[] = {
      {"nothing", {}},
      {"a tag alone", hex("04")},
      {"content missing", hex("04 01")},
      {"content cut short", hex("04 03 00 00")},
      {"indefinite, primitive", hex("04 80 00 00")},
      {"indefinite, constructed", hex("30 80 00 00")},
      {"one octet announced, none there", hex("04 81")},
      {"one octet for 0", hex("04 81 00")},
      {"one octet for 127", join(hex("04 81 7F"), zeros(0x7F))},
      {"two octets announced, one there", hex("04 82 01")},
      {"two octets for 128", join(hex("04 82 00 80"), zeros(0x80))},
      {"two octets for 255", join(hex("04 82 00 FF"), zeros(0xFF))},
      {"three octets for 65535", join(hex("04 83 00 FF FF"), zeros(0xFFFF))},
      {"four octets for 256", join(hex("04 84 00 00 01 00"), zeros(0x100))},
      {"four octets for 2^24 - 1", join(hex("04 84 00 FF FF FF"), zeros(0xFFFFFF))},
      {"more than there is", join(hex("04 84 FF FF FF FF"), zeros(16))},
      {"a sum that wraps around 32 bits", join(hex("04 84 FF FF FF FA"), zeros(16))},
      {"five octets", join(hex("04 85 01 00 00 00 80"), zeros(0x80))},
      {"five octets, the first of them 0", join(hex("04 85 00 00 00 00 80"), zeros(0x80))},
      {"127 octets", join(hex("04 FF"), Bytes(127, 1))},
  };
  for (const auto& one : cases) EXPECT_FALSE(is_read(one.bytes)) << one.what;
}

TEST(Header, ReadsTheShortestFormOfEachLengthAndNoOctetLess) {
  for (const std::uint32_t length :
       {0U, 1U, 127U, 128U, 255U, 256U, 65535U, 65536U, 16777215U, 16777216U}) {
    Bytes bytes = tlv(kOctetString, zeros(length));
    Cursor cursor(bytes.data(), bytes.size());
    Element element;
    ASSERT_TRUE(cursor.next(element)) << length;
    EXPECT_TRUE(cursor.at_end());
    EXPECT_EQ(element.length, length);
    EXPECT_EQ(element.size(), bytes.size());
    EXPECT_EQ(element_size(length), bytes.size());
    EXPECT_TRUE(is_one_element(bytes.data(), bytes.size()));
    EXPECT_FALSE(is_one_element(bytes.data(), bytes.size() - 1)) << length;
    bytes.push_back(0);
    EXPECT_FALSE(is_one_element(bytes.data(), bytes.size())) << length;
  }
}

TEST(Header, TakesTheOneOctetTagsOfDerOnly) {
  std::string refused;
  for (unsigned tag = 0; tag < 0x100; ++tag) {
    if (is_read({static_cast<Octet>(tag), 0})) continue;
    refused += "0123456789ABCDEF"[tag / 16];
    refused += "0123456789ABCDEF"[tag % 16];
    refused += ' ';
  }
  EXPECT_EQ(refused,
            "00 10 11 1F "                                                    // primitive
            "20 21 22 23 24 25 26 27 28 29 2A 2B 2C 2D 2E 2F "                // constructed
            "32 33 34 35 36 37 38 39 3A 3B 3C 3D 3E 3F 5F 7F 9F BF DF FF ");  // high numbers
}

TEST(Header, KeepsOtherClassesApartFromUniversalTypes) {
  EXPECT_EQ(type_word(kSequence), 16U);
  EXPECT_EQ(type_word(kSet), 17U);
  EXPECT_EQ(type_word(kBmpString), 30U);
  EXPECT_EQ(type_word(kContext2), 0xA2U);
  EXPECT_EQ(type_word(0x82), 0x82U);
  EXPECT_EQ(type_word(0x70), 0x70U);
}

TEST(Cursor, StaysWhereItIsWhenAnElementIsNotTheOneToTake) {
  const Bytes bytes = hex("02 01 07  A0 00");
  Cursor cursor(bytes.data(), bytes.size());
  Element element;
  EXPECT_FALSE(cursor.take(kOctetString, element));
  EXPECT_EQ(element.start, nullptr);
  ASSERT_TRUE(cursor.take(kInteger, element));
  EXPECT_EQ(*element.content(), 7);
  EXPECT_EQ(cursor.peek(), kContext0);
  EXPECT_TRUE(cursor.finish());
  EXPECT_EQ(cursor.peek(), 0);
  EXPECT_FALSE(cursor.next(element));
}

TEST(Cursor, FinishesOverWholeElementsOnly) {
  const Bytes bytes = hex("05 00  04 02 00");
  EXPECT_TRUE(Cursor(bytes.data(), 2).finish());
  EXPECT_FALSE(Cursor(bytes.data(), bytes.size()).finish());
}

// A shape of constructed elements, planned and written.
template <class Plan_, class Write>
Bytes planned(Plan_ shape, Write write) {
  Plan plan(Plan::Keep::kLengths);
  EXPECT_TRUE(shape(plan));
  Plan total(Plan::Keep::kTotalOnly);
  EXPECT_TRUE(shape(total));
  EXPECT_TRUE(plan.fits());
  EXPECT_EQ(plan.total(), total.total());
  Bytes bytes(plan.total());
  Writer out(bytes.data(), plan);
  write(out);
  EXPECT_EQ(out.at(), bytes.data() + bytes.size());
  return bytes;
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

Bytes nested(std::size_t depth, std::uint32_t length) {
  return planned([=](Plan& plan) { return plan_nested(plan, depth, length); },
                 [=](Writer& out) {
                   for (std::size_t i = 0; i < depth; ++i) out.open(kSequence);
                   out.header(kOctetString, length);
                   out.octets(zeros(length).data(), length);
                 });
}

Bytes expect_nested(std::size_t depth, std::uint32_t length) {
  Bytes bytes = tlv(kOctetString, zeros(length));
  for (; depth-- > 0;) bytes = tlv(kSequence, bytes);
  return bytes;
}

TEST(Plan, CountsHeadersWhereContentsCrossALengthForm) {
  for (const std::uint32_t edge : {0x80U, 0x100U, 0x10000U}) {
    for (std::uint32_t length = edge - 20; length < edge + 4; ++length) {
      EXPECT_EQ(nested(4, length), expect_nested(4, length)) << length;
    }
  }
}

// 256 lengths lie in the plan, 512 in its first block: both seams, with one to spare either way.
TEST(Plan, HoldsMoreNestedElementsThanItHasRoomFor) {
  for (const std::size_t depth : {255U, 256U, 257U, 767U, 768U, 769U, 2000U}) {
    EXPECT_EQ(nested(depth, 3), expect_nested(depth, 3)) << depth;
  }
}

TEST(Plan, HoldsMoreSiblingsThanItHasRoomFor) {
  constexpr std::uint32_t kCount = 2000;
  const auto shape = [](Plan& plan) {
    Plan::Open list;
    if (!plan.open(list)) return false;
    for (std::uint32_t i = 0; i < kCount; ++i) {
      Plan::Open item;
      if (!plan.open(item)) return false;
      plan.add(integer_length(i));
      plan.add_whole(i % 3);
      plan.close(item);
    }
    plan.close(list);
    return true;
  };
  const Bytes made = planned(shape, [](Writer& out) {
    out.open(kSet);
    for (std::uint32_t i = 0; i < kCount; ++i) {
      out.open(kSequence);
      out.integer(i);
      for (std::uint32_t octet = 0; octet < i % 3; ++octet) out.octet(0x55);
    }
  });
  Bytes content;
  for (std::uint32_t i = 0; i < kCount; ++i) {
    Bytes value{static_cast<Octet>(i)};
    if (i >= 0x80) value.insert(value.begin(), static_cast<Octet>(i >> 8));
    const Bytes item = tlv(kSequence, join(tlv(kInteger, value), Bytes(i % 3, 0x55)));
    content.insert(content.end(), item.begin(), item.end());
  }
  EXPECT_EQ(made, tlv(kSet, content));
}

TEST(Plan, AllocatesOnlyForWhatItHasNoRoomForAndFailsCleanly) {
  const auto attempt = [](std::size_t depth) {
    Plan plan(Plan::Keep::kLengths);
    return plan_nested(plan, depth, 1);
  };
  EXPECT_EQ(test::fail_each_allocation([&] { return attempt(256); }), 0U);
  EXPECT_EQ(test::fail_each_allocation([&] { return attempt(257); }), 1U);
  EXPECT_EQ(test::fail_each_allocation([&] { return attempt(2000); }), 3U);
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

TEST(Writer, WritesValuesOfThePlannedSize) {
  const Bytes made = planned(
      [](Plan& plan) {
        for (const std::uint64_t length : {5U, 1U, 1U, 15U, 0U}) plan.add(length);
        return true;
      },
      [](Writer& out) {
        out.integer(0x80000000);
        out.boolean(true);
        out.boolean(false);
        out.time(1);
        out.null();
      });
  EXPECT_EQ(made, hex("02 05 00 80 00 00 00  01 01 FF  01 01 00"
                      "18 0F 31 39 37 30 30 31 30 31 30 30 30 30 30 31 5A  05 00"));
}

}  // namespace
}  // namespace tq::der
