// What a round trip cannot show of the exact form of records and lists.

#include <gtest/gtest.h>

#include "unit/support/labels.h"

namespace tq::test {
namespace {

const Bytes kEpoch = tlv(0x18, text("19700101000000Z"));

TEST(FileAlign, WritesLabelSizeFirst) {
  const FileAlignAttr record = {.fileAlignSize = 16, .fileUnEffectSize = 3, .labelAlignSize = 512};
  EXPECT_EQ(encoded(EncodeFileAlignAttr, &record), hex("30 0A 02 02 02 00 02 01 10 02 01 03"));
}

TEST(FileCreator, HasNoTimeBehindTheLastOne) {
  BodyFileCreator record = {{}, {}, der::kLastTime};
  EXPECT_TRUE(encoded(EncodeBodyFileCreator, &record));
  ++record.creatorTime;
  EXPECT_FALSE(encoded(EncodeBodyFileCreator, &record));
}

template <class Record, class Encoder>
void expect_marking(Encoder encoder, std::uint8_t tag) {
  Record record{};
  const TqLabelHandle plain = label_of(k60);
  const Bytes element = *encoded(encoder, &plain, &record);
  for (const Version& version : kVersions) {
    const TqLabelHandle label = label_of(version);
    const bool tagged = version.text == "1.1.2";
    record.present = 1;
    EXPECT_EQ(encoded(encoder, &label, &record), tagged ? tlv(tag, element) : element);
    record.present = 0;
    EXPECT_EQ(encoded(encoder, &label, &record), tagged ? Bytes{} : element);
  }
}

TEST(Marking, HasATagAndMayBeLeftOutInTheLastVersionOnly) {
  expect_marking<StampAttr>(EncodeStampAttr, 0xA0);
  expect_marking<WaterMarkInfo>(EncodeWaterMarkInfo, 0xA1);
  expect_marking<FingerPrint>(EncodeFingerPrint, 0xA2);
}

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

TEST(Lists, HaveFormsOfTheirOwnInEachVersionWhenEmptyAndTagged) {
  Extend extend = {1, {}, nullptr};
  const Bytes type = hex("55 04 06");
  Log log{};
  log.logName = {field(type, 6), field("CN"), nullptr};
  const Bytes extends = hex("30 09 31 07 30 05 02 01 01 04 00");
  const Bytes name = hex("30 0D 31 0B 30 09 06 03 55 04 06 13 02 43 4E");
  for (const Version& version : kVersions) {
    const TqLabelHandle label = label_of(version);
    const bool v60 = version.text == "6.0";
    const Bytes none = v60 ? hex("05 00") : Bytes{};
    EXPECT_EQ(encoded(EncodeExtendAtrr_F, &label, static_cast<Extend*>(nullptr)), none);
    EXPECT_EQ(encoded(EncodeLogAtrr_F, &label, static_cast<Log*>(nullptr)), none);
    EXPECT_EQ(encoded(EncodeExPrivilegeList, &label, static_cast<ExtPri*>(nullptr)), none);
    EXPECT_EQ(encoded(EncodeDigitEnvolop_F, &label, static_cast<ENVELOPE*>(nullptr)), hex("05 00"));
    EXPECT_EQ(encoded(EncodeExtendAtrr_F, &label, &extend), v60 ? extends : tlv(0xA0, extends));
    const Bytes entry = sequence(hex("02 01 00 13 00"), v60 ? Bytes{} : name, hex("02 00 02 00"),
                                 kEpoch, hex("02 01 00 13 00"));
    const Bytes logs = sequence(tlv(0x31, entry));
    EXPECT_EQ(encoded(EncodeLogAtrr_F, &label, &log), v60 ? logs : tlv(0xA1, logs));
  }
  const TqLabelHandle unknown = label_of(kUnknown);
  EXPECT_EQ(encoded(EncodeExtendAtrr_F, &unknown, &extend), std::nullopt);
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
}

}  // namespace
}  // namespace tq::test
