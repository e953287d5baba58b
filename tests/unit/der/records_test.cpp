// What a round trip cannot show of the exact form of records and lists.

#include <gtest/gtest.h>

#include "unit/support/labels.h"

namespace tq::test {
namespace {

const Bytes kEpoch = tlv(0x18, text("19700101000000Z"));

TEST(Seal, MayHoldAnyElementBeforeItsBits) {
  const Bytes front =
      concat(hex("13 00"), sequence(kEpoch, hex("13 00"), kEpoch, kEpoch, hex("13 00")),
             hex("02 01 00 04 00"));
  const Bytes bits = hex("03 02 00 62");
  SealInfo record{};
  record.sealBits = field("b");
  for (const Bytes& element : hexes("|05 00|30 00|04 01 00|80 00|A7 02 05 00|61 01 00")) {
    record.sealElement = field(element);
    const Bytes expected = sequence(front, element, bits);
    EXPECT_EQ(encoded(EncodeSealInfo, &record), expected);
    OwnedBy<kSeal> read;
    ASSERT_TRUE(decodes(DecodeSealInfo, expected, &read.record));
    EXPECT_EQ(content(read.record.sealElement), element);
    EXPECT_EQ(content(read.record.sealBits), text("b"));
  }
  record.sealElement = field(bits);  // would be read back as the bits themselves
  EXPECT_EQ(encoded(EncodeSealInfo, &record), std::nullopt);
  for (const Bytes& rest : hexes("|05 00|05 00 04 00|1F 00 03 01 00")) {
    OwnedBy<kSeal> read;
    EXPECT_FALSE(decodes(DecodeSealInfo, sequence(front, rest), &read.record));
  }
}

TEST(Privilege, IsOfASequenceOrAnIdentifierAndEndsAsItsVersionHasIt) {
  const Bytes values =
      hex("01 01 FF 02 01 01 02 01 02 01 01 00 01 01 FF 01 01 00 02 01 03 02 01 04");
  const auto reads = [&](const Version& version, const Bytes& subject, const Bytes& list) {
    TqLabelHandle label = label_of(version);
    OwnedBy<kPrivilege> read;
    return decodes(DecodeOPrivilege, sequence(subject, values, list), &read.record, &label);
  };
  const TqLabelHandle label = label_of(k11);
  std::size_t index = 0;
  for (const Bytes& subject :
       hexes("06 01 2A|06 00|30 00|30 03 04 01 00||04 01 2A|31 00|05 00|A0 00"
             "|06 01 2A 00|06 02 2A")) {
    const bool good = index++ < 4;
    const OPrivilege record = {field(subject), 1, 1, 2, 0, 1, 0, 3, 4, nullptr};
    EXPECT_EQ(encoded(EncodeOPrivilege, &label, &record),
              good ? std::optional(sequence(subject, values)) : std::nullopt);
    EXPECT_EQ(reads(k11, subject, {}), good) << index;
  }
  const Bytes subject = hex("30 00");
  for (const Version& version : kVersions) {
    const bool v60 = version.text == "6.0";
    EXPECT_EQ(reads(version, subject, {}), !v60);
    EXPECT_EQ(reads(version, subject, hex("05 00")), v60);
  }
}

TEST(Privilege, HasNoEstimateAboveThirtyTwoBits) {
  ExtPri pair{};
  for (const auto& [list, beside] : {std::pair{static_cast<ExtPri*>(nullptr), 35U}, {&pair, 44U}}) {
    OPrivilege record{};
    std::uint32_t size = 0;
    record.extPriList = list;
    record.priSubject.length = UINT32_MAX - beside;
    EXPECT_EQ(CalcPrivilege(&record, &size), 0);
    EXPECT_EQ(size, UINT32_MAX);
    ++record.priSubject.length;
    EXPECT_EQ(CalcPrivilege(&record, &size), -1);
    EXPECT_EQ(size, UINT32_MAX);
  }
}

TEST(Lists, OfReadyNodesAreWrappedAndStayTheCallers) {
  Input first(hex("30 03 02 01 01"));
  Input second(hex("05 00"));
  first.node()->next = second.node();
  const ANYBUF* const chain = first.node();
  const TqLabelHandle* const none = nullptr;
  const Bytes both = hex("30 03 02 01 01 05 00");
  for (auto* wrapper : {EncodeExtendAtrr, EncodeLogAtrr, EncodeExtPriviList, EncodeDigitEnvolop,
                        EncodeEncryptBody}) {
    EXPECT_EQ(encoded(wrapper, none, static_cast<const ANYBUF*>(nullptr)), std::nullopt);
    EXPECT_EQ(encoded(wrapper, none, chain), sequence(tlv(0x31, both)));
  }
  EXPECT_EQ(encoded(EncodeBDigitEnvolope, none, chain), sequence(both));
  EXPECT_EQ(encoded(EncodeX509NameDer, chain), sequence(both));
  EXPECT_EQ(first.node()->next, second.node());
  const TqLabelHandle unknown = label_of({"2.0", 0});
  EXPECT_EQ(encoded(EncodeLogAtrr_F, &unknown, static_cast<Log*>(nullptr)), std::nullopt);
}

}  // namespace
}  // namespace tq::test
