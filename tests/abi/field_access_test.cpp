// Single fields: what each setter takes, what each getter gives back, and what a failed call leaves
// as it was.

#include <tuple>

#include "abi/support.h"

namespace tq::abi {
namespace {

bool any_length(std::uint32_t /*length*/) { return true; }
bool to_128(std::uint32_t length) { return length >= 1 && length <= 128; }
bool not_empty(std::uint32_t length) { return length != 0; }
bool whole_units(std::uint32_t length) { return length % 32 == 0; }

struct ByteField {
  const char* name;
  Setter set;
  Getter get;
  bool (*accepts)(std::uint32_t length);
  std::uint32_t counted = 0xFFFFFFFF;  // of the length argument
};
constexpr ByteField kByteFields[] = {
    {"Label", SetLabel, widened<GetLabel>, to_128, 0xFF},
    {"Version", GLSetVersion, widened<GLGetVersion>, to_128, 0xFF},
    {"SerialNum", SetHeadSerialNum, widened<GetHeadSerialNum>, to_128, 0xFF},
    {"FileName", SetFileName, widened<GetFileName>, any_length, 0xFF},
    {"FileTitle", GLSetFileTitle, widened<GLGetFileTitle>, any_length, 0xFF},
    {"Custom", SetCustom, GetCustom, any_length},
    {"HeadSignCert", SetHeadSignCert, GetHeadSignCert, any_length},
    {"HeadSignValue", SetHeadSignValue, GetHeadSignValue, any_length},
    {"BodySignCert", SetBodySignCert, GetBodySignCert, not_empty},
    {"BodySigVal", SetBodySigVal, GetBodySigVal, whole_units},
};

TEST(ByteFields, TakeTheLengthsOfTheirRuleAndKeepTheOldBytesOtherwise) {
  for (const ByteField& field : kByteFields) {
    SCOPED_TRACE(field.name);
    Label label;
    Bytes stored = pattern(32, 9);
    set(label, field.set, stored);
    for (const std::uint32_t length :
         {1U, 48U, 96U, 127U, 128U, 129U, 160U, 255U, 256U, 65536U, 0x12340005U, 0x123400FFU, 0U}) {
      if (length > 65536 && field.counted != 0xFF) continue;
      Bytes bytes = pattern(length & 0xFFFFF, length);
      bytes.push_back(0);
      const std::uint32_t counted = length & field.counted;
      const bool accepted = field.accepts(counted);
      EXPECT_EQ(field.set(label, bytes.data(), length), accepted ? 0 : -1) << length;
      if (accepted) stored.assign(bytes.begin(), bytes.begin() + counted);
      bytes.assign(bytes.size(), 0);  // the field has a copy of its own
      EXPECT_EQ(get(label, field.get), stored) << length;
    }
    EXPECT_EQ(field.set(nullptr, kHeadCert.data(), 32), -1);
    EXPECT_EQ(field.set(label, nullptr, 32), -1);
    EXPECT_EQ(get(label, field.get), stored);
    set(label, field.set, pattern(32));
    // No bytes at all clear the custom field and no other.
    const bool clears = field.set == SetCustom;
    EXPECT_EQ(field.set(label, nullptr, 0), clears ? 0 : -1);
    EXPECT_EQ(get(label, field.get), clears ? Bytes{} : pattern(32));
  }
}

TEST(Outputs, AnswerSizeQueriesExactAndShortBuffersAndNullPointers) {
  Label label;
  fill_fields(label, "1.1.1");
  const auto check = [&](Getter getter) {
    EXPECT_FALSE(get(label, getter).empty());  // holds it to the rules of buffers
    std::uint8_t octet = 0xEE;
    std::uint32_t length = 1;
    EXPECT_EQ(getter(nullptr, &octet, &length), -1);
    EXPECT_EQ(getter(nullptr, nullptr, &length), -1);
    EXPECT_EQ(getter(label, &octet, nullptr), -1);
    EXPECT_EQ(getter(label, nullptr, nullptr), -1);
    EXPECT_EQ(length + octet, 1U + 0xEE);
  };
  for (const Getter getter : {EncodeLabel, EncodeLabelPad, EncodeBodyPlaint, GetSignatureMessage,
                              sealed<EncodeLabelEncrypted>, sealed<EncodeLabelPadEncrypted>}) {
    check(getter);
    EXPECT_TRUE(encode(Label(), getter).empty()) << "a handle without a version";
  }
  check(GetHeadSignAlg);
  for (const ByteField& field : kByteFields) check(field.get);
}

template <class Value>
struct ValueField {
  std::int32_t (*set)(TqLabel, Value);
  std::int32_t (*get)(TqLabel, Value*);
};
constexpr ValueField<std::uint32_t> kNumbers[] = {
    {GLSetFileType, GLGetFileType},       {SetFileSecc, GetFileSecc},
    {GLSetFileSize, GLGetFileSize},       {SetFileUnEffectSize, GetFileUnEffectSize},
    {SetFileAlignSize, GetFileAlignSize}, {SetLabelAlignSize, GetLabelAlignSize}};
constexpr ValueField<std::uint64_t> kTimes[] = {{SetHeadModifyTime, GetHeadModifyTime},
                                                {SetModifyTime, GetModifyTime},
                                                {SetExpired, GetExpired},
                                                {SetDestroyTime, GetDestroyTime}};

TEST(ScalarFields, RefuseNullPointersAndWriteNoTimesWithoutAText) {
  Label label;
  fill(label, "1.1");
  std::uint32_t number = 9;
  std::uint64_t seconds = 9;
  std::uint8_t bits = 9;
  const auto refuses = [&](auto getter, auto* value) {
    EXPECT_EQ(getter(nullptr, value), -1);
    EXPECT_EQ(getter(label, nullptr), -1);
    EXPECT_EQ(*value, 9U);
  };
  for (const auto& field : kNumbers) {
    EXPECT_EQ(field.set(nullptr, 1), -1);
    refuses(field.get, &number);
  }
  for (const auto& field : kTimes) {
    EXPECT_EQ(field.set(nullptr, 1), -1);
    refuses(field.get, &seconds);
    EXPECT_EQ(field.set(label, 253402300800), 0);
    EXPECT_TRUE(encode(label).empty());
    EXPECT_EQ(field.set(label, 253402300799), 0);
    EXPECT_FALSE(encode(label).empty());
  }
  refuses(GetHeadCreateTime, &seconds);
  refuses(GetAbolishTime, &seconds);
  refuses(GetHeadFeedBackBits, &bits);
  EXPECT_EQ(SetHeadFeedBackBits(label, 0x80), 0);
  const Bytes der = encode(label);
  EXPECT_EQ(SetHeadFeedBackBits(label, 0x12345680), 0);
  EXPECT_EQ(encode(label), der) << "the low 8 bits";
  EXPECT_EQ(GetHeadFeedBackBits(label, &bits), 0);
  EXPECT_EQ(bits, 0x80);
  EXPECT_EQ(SetHeadCreateTime(nullptr) & SetFileAlignSize(Label(), 1), -1);
  EXPECT_EQ(SetHeadFeedBackBits(nullptr, 1) & SetLabelPadSize(nullptr, 1), -1);
  refuses(GetExtendCount, &number);
  refuses(GetDigitEnvlopeCountFromBody, &number);
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

TEST(FileNo, IsATextWithItsTerminatorInMemoryAndOnTheWire) {
  Label label;
  char buffer[8] = "xxxxxxx";
  EXPECT_EQ(GLSetFileNo(label, "AB"), 0);
  EXPECT_EQ(GLSetFileNo(nullptr, "AB"), -1);
  EXPECT_EQ(GLSetFileNo(label, nullptr), -1);
  EXPECT_EQ(GLGetFileNo(nullptr, buffer), -1);
  EXPECT_EQ(GLGetFileNo(label, nullptr), -1);
  EXPECT_EQ(GLGetFileNo(label, buffer), 0);
  EXPECT_EQ(std::string(buffer, 8), std::string("AB\0xxxx\0", 8));
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
