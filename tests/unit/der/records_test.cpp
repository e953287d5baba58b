// The exact form of each record.

#include <gtest/gtest.h>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

constexpr std::uint64_t kTime = 951782400;
const Bytes kTimeElement = tlv(0x18, text("20000229000000Z"));
const Bytes kEpochElement = tlv(0x18, text("19700101000000Z"));

template <auto& S>
using OwnedBy = Owned<std::remove_cvref_t<decltype(S)>>;

// Checks that a record has this form, and that the form gives a record that has it again.
template <class Record>
void expect_form(std::int32_t (*encoder)(const Record*, ANYBUF**),
                 std::int32_t (*decoder)(const ANYBUF*, Record*), const Record& record,
                 const Bytes& expected) {
  EXPECT_EQ(encoded(encoder, &record), expected);
  Record read{};
  ASSERT_TRUE(decodes(decoder, expected, &read));
  EXPECT_EQ(encoded(encoder, static_cast<const Record*>(&read)), expected);
}

TEST(FileAlign, WritesLabelSizeFirst) {
  const FileAlignAttr record = {.fileAlignSize = 16, .fileUnEffectSize = 3, .labelAlignSize = 512};
  const Bytes expected = hex("30 0A 02 02 02 00 02 01 10 02 01 03");
  expect_form(EncodeFileAlignAttr, DecodeFileAlignAttr, record, expected);
  FileAlignAttr read{};
  ASSERT_TRUE(decodes(DecodeFileAlignAttr, expected, &read));
  EXPECT_EQ(read.fileAlignSize, 16U);
  EXPECT_EQ(read.fileUnEffectSize, 3U);
  EXPECT_EQ(read.labelAlignSize, 512U);
}

TEST(AlgorithmPair, IsTwoIntegers) {
  expect_form(EncodeAlgorithmAtrr, DecodeAlgAtrr, {1, UINT32_MAX},
              hex("30 0A 02 01 01 02 05 00 FF FF FF FF"));
}

TEST(Extend, IsTypeAndValue) {
  const NoLeaks no_leaks;
  OwnedBy<kExtend> read;
  ASSERT_TRUE(decodes(DecodeExtend, hex("30 06 02 01 80 04 01 61"), &read.record) == false);
  ASSERT_TRUE(decodes(DecodeExtend, hex("30 07 02 02 00 80 04 01 61"), &read.record));
  EXPECT_EQ(read.record.extendType, 0x80U);
  EXPECT_EQ(content(read.record.extendValue), text("a"));
  const Extend* const record = &read.record;
  EXPECT_EQ(encoded(EncodeExtend, record), hex("30 07 02 02 00 80 04 01 61"));
}

TEST(FileCreator, IsTwoTextsAndATime) {
  const Bytes expected = sequence(hex("13 02 6E 6F 13 00"), kTimeElement);
  const BodyFileCreator record = {field("no"), {}, kTime};
  EXPECT_EQ(encoded(EncodeBodyFileCreator, &record), expected);
  OwnedBy<kFileCreator> read;
  ASSERT_TRUE(decodes(DecodeIdentifier, expected, &read.record));
  EXPECT_EQ(content(read.record.creatorStr1), text("no"));
  EXPECT_EQ(read.record.creatorTime, kTime);
}

TEST(SysInfo, IsThreeStringsAndANumber) {
  const Bytes expected = hex("30 0B 04 00 04 01 32 04 01 33 02 01 04");
  const BsysInfo record = {{}, field("2"), field("3"), 4};
  EXPECT_EQ(encoded(EncodeBSysInfo, &record), expected);
  OwnedBy<kSysInfo> read;
  ASSERT_TRUE(decodes(DecodeBsysInfo, expected, &read.record));
  EXPECT_EQ(content(read.record.sysInfo3), text("3"));
  EXPECT_EQ(read.record.sysInfoValue, 4U);
}

const Bytes kContentChildren[] = {hex("02 01 01"),
                                  hex("02 01 02"),
                                  hex("02 01 03"),
                                  hex("13 04 6E 61 6D 65"),
                                  hex("13 05 74 69 74 6C 65"),
                                  kTimeElement,
                                  kEpochElement,
                                  tlv(0x18, text("99991231235959Z")),
                                  tlv(0x18, text("20000301000000Z"))};

Bytes content_element(std::size_t children, const Bytes& behind = {}) {
  Bytes all;
  for (std::size_t i = 0; i < children; ++i) all = join(all, kContentChildren[i]);
  return sequence(all, behind);
}

TEST(Content, HasNineElementsInOrder) {
  const ContentAtrr record = {
      1, 2, 3, field("name"), field("title"), kTime, 0, 253402300799, kTime + 86400};
  EXPECT_EQ(encoded(EncodeContentAtrr, &record), content_element(9));
  OwnedBy<kContent> read;
  ASSERT_TRUE(decodes(DecodeContenAtrr, content_element(9), &read.record));
  EXPECT_EQ(read.record.intAttr3, 3U);
  EXPECT_EQ(content(read.record.strAttr2), text("title"));
  EXPECT_EQ(read.record.time1, kTime);
  EXPECT_EQ(read.record.time4, kTime + 86400);

  ContentAtrr late = record;
  late.time3 = 253402300800;  // the year 10000
  EXPECT_EQ(encoded(EncodeContentAtrr, &late), std::nullopt);
  ContentAtrr without_bytes = record;
  without_bytes.strAttr1.data = nullptr;
  EXPECT_EQ(encoded(EncodeContentAtrr, &without_bytes), std::nullopt);
  EXPECT_EQ(EncodeContentAtrr(&record, nullptr), -1);
  EXPECT_EQ(encoded(EncodeContentAtrr, static_cast<const ContentAtrr*>(nullptr)), std::nullopt);
}

TEST(Content, KeepsWhatItHasReadBeforeAnElementIsMissing) {
  for (std::size_t children = 0; children < 9; ++children) {
    OwnedBy<kContent> read;
    EXPECT_FALSE(decodes(DecodeContenAtrr, content_element(children), &read.record)) << children;
    EXPECT_EQ(content(read.record.strAttr1), children > 3 ? text("name") : Bytes{});
    EXPECT_EQ(content(read.record.strAttr2), children > 4 ? text("title") : Bytes{});
  }
  EXPECT_EQ(DecodeContenAtrr(nullptr, nullptr), -1);
}

TEST(Content, IgnoresElementsBehindItsLastIfTheyAreElements) {
  OwnedBy<kContent> read;
  for (const char* bad : {"05", "1F 00", "05 00 05", "04 02 00", "30 80 00 00", "00 00", "24 00"}) {
    EXPECT_FALSE(decodes(DecodeContenAtrr, content_element(9, hex(bad)), &read.record)) << bad;
    FreeContentAtrr(&read.record);
  }
  EXPECT_TRUE(decodes(DecodeContenAtrr, content_element(9, hex("05 00 30 03 02 01 01 A5 00")),
                      &read.record));
}

// The three markings, each filled so that its element is known.

const Bytes kWaterMarkElement =
    sequence(hex("04 01 31 04 01 32 30 06 02 01 03 02 01 04 13 01 74"), kTimeElement);

WaterMarkInfo water_mark() { return {0, field("1"), field("2"), {3, 4}, field("t"), kTime}; }

const Bytes kMetaElement = hex("30 00");
const Bytes kMetaRest =
    concat(kTimeElement, hex("13 01 31"), kEpochElement, kTimeElement, hex("13 01 32"));

MetaInfo meta() { return {field(kMetaElement), kTime, field("1"), 0, kTime, field("2")}; }

const Bytes kSealElement = hex("A7 02 05 00");
const Bytes kSealFront =
    concat(hex("13 01 6E"), sequence(kMetaElement, kMetaRest), hex("02 01 05 04 01 64"));
const Bytes kSealBits = hex("03 02 00 62");

SealInfo seal() { return {field("n"), meta(), 5, field("d"), field(kSealElement), field("b")}; }

const Bytes kStampTextElement = sequence(
    hex("13 01 31 02 01 0A 02 01 0B 02 01 0C 02 01 0D 13 01 32"), kTimeElement, hex("13 01 33"));

StampInfo stamp_text() { return {field("1"), {10, 11, 12, 13}, field("2"), kTime, field("3")}; }

const Bytes kStampElement = sequence(hex("13 01 73"), sequence(kSealFront, kSealElement, kSealBits),
                                     kStampTextElement, hex("03 01 00"));

StampAttr stamp() { return {0, field("s"), seal(), stamp_text(), {}}; }

const Bytes kActionElement =
    hex("30 23 30 00"
        " 01 01 FF 01 01 00 01 01 00 01 01 00 01 01 00 01 01 00 01 01 00 01 01 00 01 01 00 01 01 00"
        " 01 01 FF");
const Bytes kFingerPrintElement =
    sequence(hex("30 09 04 00 04 00 04 00 02 01 07"), sequence(tlv(0x31, kActionElement)));

ActionList action() { return {field(kMetaElement), {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2}, nullptr}; }

template <class Record, class Encoder>
void expect_marking(Encoder encoder, Record record, std::uint8_t tag, const Bytes& element) {
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    const bool tagged = version.text == "1.1.2";
    record.present = 1;
    EXPECT_EQ(encoded(encoder, &label, &record), tagged ? tlv(tag, element) : element);
    record.present = 0;
    EXPECT_EQ(encoded(encoder, &label, &record), tagged ? Bytes{} : element);
  }
  TqLabelHandle label = label_of(k112);
  Input earlier(hex("00"));
  ANYBUF* slot = earlier.node();
  EXPECT_EQ(encoder(&label, &record, &slot), 0);
  EXPECT_EQ(slot, nullptr);  // left out
  EXPECT_EQ(encoder(&label, &record, nullptr), -1);
  EXPECT_EQ(encoder(nullptr, &record, &slot), -1);
  EXPECT_EQ(encoder(&label, static_cast<const Record*>(nullptr), &slot), -1);
  label = label_of(kUnknown);
  EXPECT_EQ(encoded(encoder, &label, &record), std::nullopt);
}

TEST(Marking, HasATagAndMayBeLeftOutInTheLastVersionOnly) {
  expect_marking(EncodeStampAttr, stamp(), 0xA0, kStampElement);
  expect_marking(EncodeWaterMarkInfo, water_mark(), 0xA1, kWaterMarkElement);
  ActionList entry = action();
  const FingerPrint finger_print = {0, {{}, {}, {}, 7}, &entry};
  expect_marking(EncodeFingerPrint, finger_print, 0xA2, kFingerPrintElement);
}

TEST(Marking, IsReadWithoutItsTagAndLeavesPresenceAlone) {
  OwnedBy<kStamp> stamped;
  OwnedBy<kWaterMark> marked;
  OwnedBy<kFingerPrint> fingered;
  EXPECT_FALSE(decodes(DecodeStampAtrr, tlv(0xA0, kStampElement), &stamped.record));
  EXPECT_FALSE(decodes(DecodeWaterMark, tlv(0xA1, kWaterMarkElement), &marked.record));
  EXPECT_FALSE(decodes(DecodeFingerPrint, tlv(0xA2, kFingerPrintElement), &fingered.record));
  ASSERT_TRUE(decodes(DecodeStampAtrr, kStampElement, &stamped.record));
  ASSERT_TRUE(decodes(DecodeWaterMark, kWaterMarkElement, &marked.record));
  ASSERT_TRUE(decodes(DecodeFingerPrint, kFingerPrintElement, &fingered.record));
  EXPECT_EQ(stamped.record.present + marked.record.present + fingered.record.present, 0U);
  EXPECT_EQ(content(stamped.record.sealInfo.sealBits), text("b"));
  EXPECT_EQ(stamped.record.stampInfo.stampValue[3], 13U);
  EXPECT_EQ(marked.record.markAlg.algParam, 4U);
  ASSERT_NE(fingered.record.fingerPrintList, nullptr);
  EXPECT_EQ(fingered.record.fingerPrintList->action[0], 1);
  EXPECT_EQ(fingered.record.fingerPrintList->action[10], 1);
}

TEST(StampText, HasFourNumbersInIndexOrder) {
  const StampInfo record = stamp_text();
  EXPECT_EQ(encoded(EncodeStampInfo, &record), kStampTextElement);
  const Bytes three =
      sequence(hex("13 00 02 01 0A 02 01 0B 02 01 0C 13 00"), kTimeElement, hex("13 00"));
  OwnedBy<kStampText> read;
  EXPECT_FALSE(decodes(DecodeStampInfo, three, &read.record));
  EXPECT_EQ(read.record.stampValue[2], 12U);
}

// Elements that a reader takes when they are there, and a writer writes when they are not empty.

TEST(Meta, MayBeginWithASequence) {
  MetaInfo record = meta();
  EXPECT_EQ(encoded(EncodeMetaInfo, &record), sequence(kMetaElement, kMetaRest));
  record.metaElement = {};
  EXPECT_EQ(encoded(EncodeMetaInfo, &record), sequence(kMetaRest));
  const Bytes refused[] = {hex("31 00"), hex("04 00"), hex("30 00 00"), hex("30 01"), hex("30")};
  for (const Bytes& bytes : refused) {
    record.metaElement = field(bytes);
    EXPECT_EQ(encoded(EncodeMetaInfo, &record), std::nullopt) << ::testing::PrintToString(bytes);
    OwnedBy<kMeta> read;
    EXPECT_FALSE(decodes(DecodeMetalInfo, sequence(bytes, kMetaRest), &read.record));
  }
  OwnedBy<kMeta> with;
  ASSERT_TRUE(decodes(DecodeMetalInfo, sequence(kMetaElement, kMetaRest), &with.record));
  EXPECT_EQ(content(with.record.metaElement), kMetaElement);
  OwnedBy<kMeta> without;
  ASSERT_TRUE(decodes(DecodeMetalInfo, sequence(kMetaRest), &without.record));
  EXPECT_EQ(without.record.metaElement.length, 0U);
  EXPECT_EQ(without.record.metaTime1, kTime);
  OwnedBy<kMeta> twice;
  EXPECT_FALSE(
      decodes(DecodeMetalInfo, sequence(kMetaElement, kMetaElement, kMetaRest), &twice.record));
}

TEST(Seal, MayHoldAnyElementBeforeItsBits) {
  SealInfo record = seal();
  for (const char* any : {"05 00", "30 00", "04 01 00", "80 00", "A7 02 05 00", "61 01 00"}) {
    const Bytes element = hex(any);
    record.sealElement = field(element);
    const Bytes expected = sequence(kSealFront, element, kSealBits);
    EXPECT_EQ(encoded(EncodeSealInfo, &record), expected);
    OwnedBy<kSeal> read;
    ASSERT_TRUE(decodes(DecodeSealInfo, expected, &read.record));
    EXPECT_EQ(content(read.record.sealElement), element);
    EXPECT_EQ(content(read.record.sealBits), text("b"));
  }
  record.sealElement = {};
  EXPECT_EQ(encoded(EncodeSealInfo, &record), sequence(kSealFront, kSealBits));
  record.sealElement = field(kSealBits);  // would be read back as the bits themselves
  EXPECT_EQ(encoded(EncodeSealInfo, &record), std::nullopt);
  OwnedBy<kSeal> bits_twice;
  ASSERT_TRUE(decodes(DecodeSealInfo, sequence(kSealFront, kSealBits, hex("03 02 00 63")),
                      &bits_twice.record));
  EXPECT_EQ(bits_twice.record.sealElement.length, 0U);
  EXPECT_EQ(content(bits_twice.record.sealBits), text("b"));
  for (const Bytes& rest : {Bytes{}, hex("05 00"), hex("05 00 04 00"), hex("1F 00 03 01 00")}) {
    OwnedBy<kSeal> read;
    EXPECT_FALSE(decodes(DecodeSealInfo, sequence(kSealFront, rest), &read.record));
  }
}

TEST(Action, HasElevenFlagsAndASubjectBeforeThem) {
  const ActionList record = action();
  EXPECT_EQ(encoded(EncodeActionList, &record), kActionElement);
  Bytes flags;
  for (int i = 0; i < 10; ++i) flags = join(flags, hex("01 01 FF"));
  OwnedBy<kAction> read;
  EXPECT_FALSE(decodes(DecodeActionList, sequence(flags), &read.record));
  EXPECT_FALSE(decodes(DecodeActionList, sequence(flags, hex("01 01 01")), &read.record));
  EXPECT_FALSE(decodes(DecodeActionList, sequence(flags, hex("01 00")), &read.record));
  EXPECT_FALSE(
      decodes(DecodeActionList, sequence(hex("31 00"), flags, hex("01 01 FF")), &read.record));
  for (const Bytes& last : {hex("01 01 00"), hex("01 01 00 01 01 FF")}) {  // a twelfth is ignored
    OwnedBy<kAction> good;
    ASSERT_TRUE(decodes(DecodeActionList, sequence(flags, last), &good.record));
    EXPECT_EQ(good.record.actionSubject.length, 0U);
    EXPECT_EQ(good.record.action[9], 1);
    EXPECT_EQ(good.record.action[10], 0);
    const ActionList* const again = &good.record;
    EXPECT_EQ(encoded(EncodeActionList, again), sequence(flags, hex("01 01 00")));
  }
}

const Bytes kPrivilegeValues =
    hex("01 01 FF 02 01 01 02 01 02 01 01 00 01 01 FF 01 01 00 02 01 03 02 01 04");

OPrivilege privilege(const Bytes& subject) {
  return {field(subject), 1, 1, 2, 0, 1, 0, 3, 4, nullptr};
}

TEST(Privilege, IsOfASequenceOrAnIdentifier) {
  const struct {
    const char* subject;
    bool good;
  } cases[] = {{"", false},         {"04 01 2A", false},     {"31 00", false},
               {"05 00", false},    {"A0 00", false},        {"06 01 2A 00", false},
               {"06 02 2A", false}, {"06 01 2A", true},      {"06 00", true},
               {"30 00", true},     {"30 03 04 01 00", true}};
  TqLabelHandle label = label_of(k11);
  for (const auto& one : cases) {
    const Bytes subject = hex(one.subject);
    const OPrivilege record = privilege(subject);
    const Bytes element = sequence(subject, kPrivilegeValues);
    EXPECT_EQ(encoded(EncodeOPrivilege, &label, &record),
              one.good ? std::optional(element) : std::nullopt)
        << one.subject;
    const NoLeaks no_leaks;
    {
      OwnedBy<kPrivilege> read;
      EXPECT_EQ(decodes(DecodeOPrivilege, element, &read.record, &label), one.good) << one.subject;
      if (one.good) {
        EXPECT_EQ(content(read.record.priSubject), subject);
      }
    }
    EXPECT_TRUE(no_leaks.hold());
  }
}

TEST(Privilege, EndsWithItsPairsOrAsTheVersionHasIt) {
  const Bytes subject = hex("06 01 2A");
  const Bytes pairs = hex("30 12 31 10 30 06 02 01 01 02 01 02 30 06 02 01 03 02 01 04");
  ExtPri second = {3, 4, nullptr};
  ExtPri first = {1, 2, &second};
  const struct {
    const Version& version;
    const char* list;
    bool good;
    std::size_t count;
  } cases[] = {
      {k60, "", false, 0},      {k60, "05 01 00", false, 0}, {k60, "31 00", false, 0},
      {k60, "30 00", false, 0}, {k11, "05 00", false, 0},    {k112, "05 00", false, 0},
      {k11, "31 00", false, 0}, {k60, "05 00", true, 0},     {k11, "", true, 0},
      {k112, "", true, 0},
  };
  for (const auto& one : cases) {
    TqLabelHandle label = label_of(one.version);
    OwnedBy<kPrivilege> read;
    EXPECT_EQ(decodes(DecodeOPrivilege, sequence(subject, kPrivilegeValues, hex(one.list)),
                      &read.record, &label),
              one.good)
        << one.version.text << ' ' << one.list;
  }
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    OPrivilege record = privilege(subject);
    const Bytes none = version.text == "6.0" ? hex("05 00") : Bytes{};
    EXPECT_EQ(encoded(EncodeOPrivilege, &label, &record),
              sequence(subject, kPrivilegeValues, none));
    EXPECT_EQ(encoded(EncodeExPrivilegeList, &label, static_cast<ExtPri*>(nullptr)), none);
    record.extPriList = &first;
    const Bytes expected = sequence(subject, kPrivilegeValues, pairs);
    EXPECT_EQ(encoded(EncodeOPrivilege, &label, &record), expected);
    EXPECT_EQ(encoded(EncodeExPrivilegeList, &label, &first), pairs);
    OwnedBy<kPrivilege> read;
    ASSERT_TRUE(decodes(DecodeOPrivilege, sequence(subject, kPrivilegeValues, pairs, hex("04 00")),
                        &read.record, &label));
    EXPECT_EQ(read.record.priValue4, 4U);
    ASSERT_NE(read.record.extPriList, nullptr);
    EXPECT_EQ(read.record.extPriList->priValue, 2U);
    ASSERT_NE(read.record.extPriList->next, nullptr);
    EXPECT_EQ(read.record.extPriList->next->priType, 3U);
    EXPECT_EQ(read.record.extPriList->next->next, nullptr);
  }
  TqLabelHandle unknown = label_of(kUnknown);
  const OPrivilege record = privilege(subject);
  OPrivilege read{};
  EXPECT_EQ(encoded(EncodeOPrivilege, &unknown, &record), std::nullopt);
  EXPECT_EQ(encoded(EncodeExPrivilegeList, &unknown, &first), std::nullopt);
  EXPECT_FALSE(
      decodes(DecodeOPrivilege, sequence(subject, kPrivilegeValues, pairs), &read, &unknown));
}

TEST(Privilege, SizeIsEstimatedFromSubjectAndList) {
  ExtPri pair{};
  OPrivilege record{};
  std::uint32_t size = 0;
  EXPECT_EQ(CalcPrivilege(nullptr, &size), -1);
  EXPECT_EQ(CalcPrivilege(&record, nullptr), -1);
  record.priSubject.length = UINT32_MAX - 34;  // the sum does not fit any more
  EXPECT_EQ(CalcPrivilege(&record, &size), -1);
  record.priSubject.length = 100;
  ASSERT_EQ(CalcPrivilege(&record, &size), 0);
  EXPECT_EQ(size, 135U);
  record.extPriList = &pair;
  ASSERT_EQ(CalcPrivilege(&record, &size), 0);
  EXPECT_EQ(size, 144U);
}

}  // namespace
}  // namespace tq::test
