// Single fields: what each setter takes, what each getter gives back, and what a failed call leaves
// as it was.

#include "abi/model.h"

namespace tq::abi {
namespace {

TEST(ByteFields, TakeTheLengthsOfTheirRuleAndKeepTheOldBytesOtherwise) {
  std::vector<ByteRule> rules(std::begin(kBytes), std::end(kBytes));
  rules.push_back({"version", GLSetVersion, widened<GLGetVersion>, false, 0xFF, 1, 128});
  for (const ByteRule& rule : rules) {
    SCOPED_TRACE(rule.name);
    Label label;
    Bytes stored = pattern(32, 9);
    set(label, rule.set, stored);
    for (const std::uint32_t length :
         {1U, 48U, 96U, 127U, 128U, 129U, 160U, 255U, 256U, 65536U, 0x12340005U, 0x123400FFU, 0U}) {
      if (length > 65536 && rule.counted != 0xFF) continue;
      Bytes bytes = pattern(length & 0xFFFFF, length);
      bytes.push_back(0);
      EXPECT_EQ(rule.set(label, bytes.data(), length), rule.takes(length) ? 0 : -1) << length;
      if (rule.takes(length)) stored.assign(bytes.begin(), bytes.begin() + (length & rule.counted));
      bytes.assign(bytes.size(), 0);  // the field has a copy of its own
      EXPECT_EQ(get(label, rule.get), stored) << length;
    }
    // No bytes at all clear the custom field and no other.
    set(label, rule.set, pattern(32));
    const bool clears = rule.set == SetCustom;
    EXPECT_EQ(rule.set(label, nullptr, 0), clears ? 0 : -1);
    EXPECT_EQ(get(label, rule.get), clears ? Bytes{} : pattern(32));
  }
}

TEST(ScalarFields, WriteNoTimesWithoutATextAndTakeTheLow8OfFeedbackBits) {
  Label label;
  fill(label, "1.1");
  for (const auto& rule : kTimes) {
    if (rule.set == nullptr) continue;
    EXPECT_EQ(rule.set(label, kLastSecond + 1), 0);
    EXPECT_TRUE(encode(label).empty());
    EXPECT_EQ(rule.set(label, kLastSecond), 0);
    EXPECT_FALSE(encode(label).empty());
  }
  EXPECT_EQ(SetHeadFeedBackBits(label, 0x80), 0);
  const Bytes der = encode(label);
  EXPECT_EQ(SetHeadFeedBackBits(label, 0x12345680), 0);
  EXPECT_EQ(encode(label), der);
}

TEST(EightBitGetters, RefuseWhatADecodedLabelHoldsBeyond255Bytes) {
  Label label;
  fill_fields(label, "1.1");
  Element tree = parse(encode(label));
  Element& content = tree.children[1].children[7];
  ASSERT_EQ(content.children[3].content, text("plan.txt"));
  content.children[3].content = pattern(256);
  content.children[4].content = pattern(255);
  tree.children[0].children[0].content = pattern(129);
  const Bytes der = tree.der();
  const Label decoded = decode(der);
  std::uint8_t buffer[256] = {7};
  std::uint8_t length = 255;
  EXPECT_EQ(GetFileName(decoded, nullptr, &length), -1);
  EXPECT_EQ(GetFileName(decoded, buffer, &length), -1);
  EXPECT_EQ(length, 255);
  EXPECT_EQ(get(decoded, widened<GLGetFileTitle>), pattern(255));
  EXPECT_EQ(GetLable(der.data(), size32(der), buffer), -1) << "room for 128 bytes";
  EXPECT_EQ(buffer[0], 7);
}

TEST(GetStringLength, CountsTheTerminator) {
  EXPECT_EQ(GetStringLength("ab"), 3U);
  EXPECT_EQ(GetStringLength(nullptr), 0U);
}

// A text of three characters leaves the sub-version, an unknown one everything. File align sizes
// ask for five characters, or for a text that begins like no version.
TEST(Versions, EncodeWhatTheirLastTextSays) {
  const std::tuple<std::string, bool, bool> cases[] = {
      {"6.0", false, false},   {"1.1", false, false},
      {"1.1.1", true, true},   {"1.1.2", true, true},
      {"1xyz", false, false},  {"9.9", false, true},
      {"1.1.22", false, true}, {std::string("1.1.2\0x", 7), false, true}};
  for (const auto& [version, encodes, aligns] : cases) {
    SCOPED_TRACE(version);
    Label label;
    fill(label, "1.1.2");
    set(label, SetBodySignCert, kBodyCert);
    set(label, GLSetVersion, text(version));
    EXPECT_EQ(!encode(label).empty(), encodes);
    EXPECT_EQ(SetFileAlignSize(label, 4096) == 0, aligns);
    std::uint32_t size = 1;
    EXPECT_EQ(GetFileAlignSize(label, &size), 0);
    EXPECT_EQ(size, aligns ? 4096U : 0U);
  }
}

}  // namespace
}  // namespace tq::abi
