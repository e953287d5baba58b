// Sizes of a label's parts against sums done by hand, and what tells padding from encoded bytes.

#include "abi/records.h"

namespace tq::abi {
namespace {

// The fields in their order, so that a failure shows which.
std::vector<std::uint32_t> listed(const LabelSizeInfo& sizes) {
  std::vector<std::uint32_t> fields(sizeof sizes / sizeof(std::uint32_t));
  std::memcpy(fields.data(), &sizes, sizeof sizes);
  return fields;
}
LabelSizeInfo sizes_of(TqLabel label) {
  LabelSizeInfo sizes{};
  EXPECT_EQ(LabCalSize(label, &sizes), 0);
  return sizes;
}

// Every part holds something; names are { C, CN } with attribute types of 3 octets.
void fill_sized(TqLabel label, const char* version) {
  fill(label, version);
  set(label, SetCustom, pattern(40));
  set(label, SetBodySignCert, kBodyCert);
  set(label, SetBodySigVal, pattern(64));
  if (is_multi_sign(version)) {
    EXPECT_EQ(add_signer(label, true, "sm3WithSM2Encryption", kHeadCert, pattern(70)), 0);
  }
  Bytes second = pattern(13);
  EXPECT_EQ(GLSetFileNo(label, "No. 1"), 0);
  const FileCreatorInfo creator{nullptr, 0, second.data(), 13, 5};
  EXPECT_EQ(SetBodyFileCreator(label, &creator), 0);
  set(label, SetFileName, pattern(9));
  set(label, GLSetFileTitle, pattern(255));
  for (const std::uint32_t length : {1U, 300U, 0U}) {
    Bytes value = pattern(length);
    EXPECT_EQ(AddExtendValue(label, length, pointer(value), length), 0);
  }
  Log log;  // texts of 6 and 9, arrays of 2 and 1, a name of one attribute of 3 bytes
  EXPECT_EQ(add_log(label, log), 0);
  log.issuer = recipient(1, "four").issuer;
  log.text1 = pattern(300);
  EXPECT_EQ(add_log(label, log), 0);
  MarkInput mark;  // 9, 4 and "ab"
  EXPECT_EQ(SetWaterMarkInfo(label, &mark.record), 0);
  StampInput stamp;
  EXPECT_EQ(SetStampInfo(label, &stamp.record), 0);
  FingerInput finger;
  EXPECT_EQ(SetFingerPrintInfo(label, &finger.record), 0);
  if (is_60(version)) return;
  EXPECT_EQ(add_to_head(label, {recipient(1, "CA")}), 0);
  EXPECT_EQ(add_to_head(label, {recipient(2, "Other CA"), text("RSA"), pattern(200)}), 0);
  EXPECT_EQ(add_to_body(label, {recipient(1, "CA")}), 0);
  EXPECT_EQ(add_to_body(label, {recipient(2, "Other CA"), text("RSA"), pattern(200)},
                        {tlv(0x30, pattern(20)), {}, {}, {{1, 2}, {3, 4}}}),
            0);
}

constexpr std::uint32_t kCreator = 13;
constexpr std::uint32_t kFileNo = 5 + 1;
constexpr std::uint32_t kExtensions = (1 + 11) + (300 + 11) + (0 + 11) + 12;
constexpr std::uint32_t kLogs =
    ((3 + 3 + 4) + 6 + 2 + 1 + 9 + 38) + ((3 + 2 + 4) + (3 + 4 + 4) + 300 + 2 + 1 + 9 + 38) + 12;
constexpr std::uint32_t kMark = 9 + 4 + (2 + 1) + 41;
// name, bits; seal name, data, element, bits; meta element and texts; the three texts
constexpr std::uint32_t kStamp =
    5 + 8 + (6 + 21 + 4 + 3) + (5 + 6 + 10) + ((5 + 1) + (7 + 1) + 10) + 125;
constexpr std::uint32_t kHeadEnvelopes = (3 + 2 + 8) + (3 + 2 + 8) + (3 + 2 + 8) + (3 + 8 + 8);
constexpr std::uint32_t kBodyEnvelopes = (154 + (3 + 2 + 4) + (3 + 2 + 4) + (7 + 28 + 7) + 4) +
                                         (154 + (3 + 2 + 4) + (3 + 8 + 4) + (22 + 37 + 7) + 4) + 8;

TEST(LabCalSize, AddsUpTheParts) {
  const std::pair<const char*, LabelSizeInfo> cases[] = {
      // the names of the algorithms as they are: 23 and 11
      {"6.0",
       {40, 23, 10, 6, 1500, 11, 0, 0, 64, 2, kStamp, kMark, 0, kCreator, kFileNo, 9, 255,
        kExtensions, kLogs}},
      // their identifiers: 9 and 9
      {"1.1",
       {40, 9, 10, 6, 1500, 9, 2, kHeadEnvelopes, 64, kBodyEnvelopes, kStamp, kMark, 0, kCreator,
        kFileNo, 9, 255, kExtensions, kLogs}},
      {"1.1.1",
       {40, 9, 10, 6, 1500, 9, 2, kHeadEnvelopes, 64, kBodyEnvelopes, kStamp, kMark, 0, kCreator,
        kFileNo, 9, 255, kExtensions, kLogs}},
      // two signers instead: certificate, identifier and value of each
      {"1.1.2",
       {40, 0, (6 + 9 + 32) + (10 + 8 + 70), 6, 1500, 9, 2, kHeadEnvelopes, 64, kBodyEnvelopes,
        kStamp, kMark, 0, kCreator, kFileNo, 9, 255, kExtensions, kLogs}},
  };
  for (const auto& [version, expected] : cases) {
    SCOPED_TRACE(version);
    Label label;
    fill_sized(label, version);
    EXPECT_EQ(listed(sizes_of(label)), listed(expected));
    LabelSizeInfo decoded = expected;
    if (is_multi_sign(version)) decoded.bodySignCertLen = decoded.bodySignValueLen = 0;
    if (is_60(version)) {  // has no names: an empty attribute in their place
      decoded.logSize -= (3 + 3) + (3 + 2) + (3 + 4 + 4);
    }
    EXPECT_EQ(listed(sizes_of(decode(encode(label)))), listed(decoded));
  }
}

TEST(LabCalSize, CountsAnEnvelopesEmptyName) {
  const Label label = decode(label_60_with_envelopes(3));
  const LabelSizeInfo sizes = sizes_of(label);
  EXPECT_EQ(sizes.headEnvelopeCount, 3U);
  EXPECT_EQ(sizes.headEnvelopeSize, 3U * (0 + 0 + 8));
  EXPECT_EQ(sizes.bodyEnvelopeSize, 3U * (154 + (0 + 0 + 4) + (7 + 28 + 7) + 4) + 8);
}

TEST(LabCalSize, OfEmptyLabelsCountsMarkingsThatWouldBeWritten) {
  for (const char* version : {"", "6.0", "1.1", "1.1.1", "1.1.2"}) {
    Label label;
    if (*version != '\0') set(label, GLSetVersion, text(version));
    LabelSizeInfo expected{};
    expected.reserve = 1500;
    expected.bodyEnvelopeSize = 2;
    expected.stampSize = is_multi_sign(version) ? 0 : 125;
    expected.waterMarkSize = is_multi_sign(version) ? 0 : 41;
    EXPECT_EQ(listed(sizes_of(label)), listed(expected)) << version;
  }
}

TEST(LabCalSize, AddsToTheSizeOfHeadEnvelopesAndReplacesEverythingElse) {
  for (const char* version : kFamily) {
    Label label;
    fill_sized(label, version);
    LabelSizeInfo sizes;
    std::memset(&sizes, 0x11, sizeof sizes);
    EXPECT_EQ(LabCalSize(label, &sizes), 0);
    LabelSizeInfo expected = sizes_of(label);
    expected.headEnvelopeSize += 0x11111111;
    EXPECT_EQ(listed(sizes), listed(expected));
    EXPECT_EQ(LabCalSize(label, nullptr), -1);
    EXPECT_EQ(LabCalSize(nullptr, &sizes), -1);
    EXPECT_EQ(listed(sizes), listed(expected));
    sizes.headEnvelopeSize = UINT32_MAX - kHeadEnvelopes;
    EXPECT_EQ(LabCalSize(label, &sizes), 0);
    EXPECT_EQ(sizes.headEnvelopeSize, UINT32_MAX);
    EXPECT_EQ(LabCalSize(label, &sizes), -1) << "no sum of 32 bits";
  }
}

TEST(LabCalSize, StopsAtTheHundredAndFirstEnvelopeOfTheHead) {
  for (const char* version : kFamily) {
    Label label;
    fill(label, version);
    set(label, SetCustom, pattern(3));
    for (std::uint8_t i = 1; i <= 100; ++i) ASSERT_EQ(add_to_head(label, {recipient(i)}), 0);
    LabelSizeInfo sizes = sizes_of(label);
    EXPECT_EQ(sizes.headEnvelopeCount, 100U);
    EXPECT_EQ(sizes.headEnvelopeSize, 100U * (3 + 2 + 8 + 3 + 2 + 8));
    ASSERT_EQ(add_to_head(label, {recipient(50)}), 0) << "a replacement";
    EXPECT_EQ(LabCalSize(label, &sizes), 0);
    ASSERT_EQ(add_to_head(label, {recipient(101)}), 0);
    sizes = {};
    EXPECT_EQ(LabCalSize(label, &sizes), -1);
    EXPECT_EQ(sizes.customLen, 3U) << "stored before the count";
    EXPECT_EQ(sizes.cipher, 9U);
    EXPECT_EQ(sizes.reserve, 0U) << "stored after it";
    const Label decoded = decode(encode(label));
    ASSERT_TRUE(decoded) << "the label itself is all right";
    EXPECT_EQ(LabCalSize(decoded, &sizes), -1);
  }
}

TEST(HavePadded, LooksForAThirdElementOnly) {
  const std::tuple<const char*, std::int32_t, std::uint32_t> cases[] = {
      {"30 04 05 00 05 00", 0, 0},
      {"30 06 05 00 05 00 04 00", 0, 1},
      {"30 08 05 00 05 00 04 00 04 00", 0, 1},
      {"30 04 05 00 05 00 04 00", 0, 0},  // behind the label
      {"30 02 05 00", -1, 7},
      {"30 00", -1, 7},
      {"31 04 05 00 05 00", -1, 7},
      {"30 06 05 00 05 00 04 01", -1, 7},
      {"30 05 05 00 05 00", -1, 7},
  };
  for (const auto& [digits, result, expected] : cases) {
    const Bytes der = hex(digits);
    std::uint32_t flag = 7;
    EXPECT_EQ(HavePadded(der.data(), size32(der), &flag), result) << digits;
    EXPECT_EQ(flag, expected) << digits;
  }
}

}  // namespace
}  // namespace tq::abi
