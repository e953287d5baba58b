// Single fields: what each setter takes, what each getter gives back, and what a failed call leaves
// as it was.

#include <ctime>

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
  std::uint32_t counted_bits;  // of the length argument
  bool (*accepts)(std::uint32_t length);
};

constexpr ByteField kByteFields[] = {
    {"Label", SetLabel, widened<GetLabel>, 8, to_128},
    {"Version", GLSetVersion, widened<GLGetVersion>, 8, to_128},
    {"SerialNum", SetHeadSerialNum, widened<GetHeadSerialNum>, 8, to_128},
    {"FileName", SetFileName, widened<GetFileName>, 8, any_length},
    {"FileTitle", GLSetFileTitle, widened<GLGetFileTitle>, 8, any_length},
    {"Custom", SetCustom, GetCustom, 32, any_length},
    {"HeadSignCert", SetHeadSignCert, GetHeadSignCert, 32, any_length},
    {"HeadSignValue", SetHeadSignValue, GetHeadSignValue, 32, any_length},
    {"BodySignCert", SetBodySignCert, GetBodySignCert, 32, not_empty},
    {"BodySigVal", SetBodySigVal, GetBodySigVal, 32, whole_units},
};

class ByteFields : public testing::TestWithParam<ByteField> {
 protected:
  Label label_;
};

TEST_P(ByteFields, TakeTheLengthsOfTheirRuleAndKeepTheOldBytesOtherwise) {
  const ByteField& field = GetParam();
  Bytes stored = pattern(32, 9);
  set(label_, field.set, stored);
  for (const std::uint32_t length :
       {1U, 31U, 96U, 127U, 128U, 129U, 160U, 255U, 256U, 65536U, 0U}) {
    SCOPED_TRACE(length);
    Bytes bytes = pattern(length + 1, length);
    const std::uint32_t counted = field.counted_bits == 8 ? length & 0xFF : length;
    const bool accepted = field.accepts(counted);
    EXPECT_EQ(field.set(label_, bytes.data(), length), accepted ? 0 : -1);
    if (accepted) stored.assign(bytes.begin(), bytes.begin() + counted);
    bytes.assign(bytes.size(), 0);  // the field has a copy of its own
    EXPECT_EQ(get(label_, field.get), stored);
  }
}

TEST_P(ByteFields, OfEightBitLengthsIgnoreTheHighBits) {
  const ByteField& field = GetParam();
  if (field.counted_bits != 8) return;
  const Bytes bytes = pattern(255);
  std::size_t stored = 0;
  for (const std::uint32_t counted : {1U, 128U, 129U, 255U}) {
    const bool accepted = field.accepts(counted);
    EXPECT_EQ(field.set(label_, bytes.data(), 0x12345600 | counted), accepted ? 0 : -1);
    if (accepted) stored = counted;
    EXPECT_EQ(get(label_, field.get).size(), stored);
  }
  const bool takes_none = field.accepts(0);
  EXPECT_EQ(field.set(label_, bytes.data(), 0x12345600), takes_none ? 0 : -1);
  EXPECT_EQ(get(label_, field.get).size(), takes_none ? 0 : stored);
}

TEST_P(ByteFields, RefuseNullPointers) {
  const ByteField& field = GetParam();
  const Bytes bytes = pattern(32);
  Bytes buffer(32);
  std::uint32_t length = 32;
  set(label_, field.set, bytes);
  EXPECT_EQ(field.set(nullptr, bytes.data(), 32), -1);
  EXPECT_EQ(field.set(label_, nullptr, 32), -1);
  EXPECT_EQ(field.get(nullptr, buffer.data(), &length), -1);
  EXPECT_EQ(field.get(nullptr, nullptr, &length), -1);
  EXPECT_EQ(field.get(label_, buffer.data(), nullptr), -1);
  EXPECT_EQ(field.get(label_, nullptr, nullptr), -1);
  EXPECT_EQ(length, 32U);
  EXPECT_EQ(get(label_, field.get), bytes);
  // No bytes at all clear the custom field and no other.
  const bool clears = field.set == SetCustom;
  EXPECT_EQ(field.set(label_, nullptr, 0), clears ? 0 : -1);
  EXPECT_EQ(get(label_, field.get), clears ? Bytes{} : bytes);
}

INSTANTIATE_TEST_SUITE_P(Each, ByteFields, testing::ValuesIn(kByteFields),
                         [](const auto& each) { return std::string(each.param.name); });

struct NumberField {
  const char* name;
  std::int32_t (*set)(TqLabel, std::uint32_t);
  std::int32_t (*get)(TqLabel, std::uint32_t*);
};
constexpr NumberField kNumbers[] = {
    {"FileType", GLSetFileType, GLGetFileType},
    {"FileSecc", SetFileSecc, GetFileSecc},
    {"FileSize", GLSetFileSize, GLGetFileSize},
    {"FileAlignSize", SetFileAlignSize, GetFileAlignSize},
    {"FileUnEffectSize", SetFileUnEffectSize, GetFileUnEffectSize},
    {"LabelAlignSize", SetLabelAlignSize, GetLabelAlignSize},
};
struct TimeField {
  const char* name;
  std::int32_t (*set)(TqLabel, std::uint64_t);
  std::int32_t (*get)(TqLabel, std::uint64_t*);
};
constexpr TimeField kTimes[] = {
    {"HeadModifyTime", SetHeadModifyTime, GetHeadModifyTime},
    {"ModifyTime", SetModifyTime, GetModifyTime},
    {"Expired", SetExpired, GetExpired},
    {"DestroyTime", SetDestroyTime, GetDestroyTime},
};

// Distinct values in all of them at once: a field that shares its place with another shows.
TEST(ScalarFields, HoldTheirOwnValueAndSurviveEncoding) {
  for (const std::uint32_t base : {0U, 0x7FFFFFFEU, 0xFFFFFFF0U}) {
    Label label;
    fill(label, "1.1.2");
    std::uint32_t number = base;
    for (const NumberField& field : kNumbers) EXPECT_EQ(field.set(label, number++), 0);
    std::uint64_t seconds = base;
    for (const TimeField& field : kTimes) EXPECT_EQ(field.set(label, seconds++), 0);
    const Label decoded = decode(encode(label));
    ASSERT_TRUE(decoded);
    for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
      number = base;
      for (const NumberField& field : kNumbers) {
        std::uint32_t value = ~number;
        EXPECT_EQ(field.get(each, &value), 0) << field.name;
        EXPECT_EQ(value, number++) << field.name;
      }
      seconds = base;
      for (const TimeField& field : kTimes) {
        std::uint64_t value = ~seconds;
        EXPECT_EQ(field.get(each, &value), 0) << field.name;
        EXPECT_EQ(value, seconds++) << field.name;
      }
    }
  }
}

TEST(ScalarFields, RefuseNullPointers) {
  Label label;
  std::uint32_t number = 0;
  std::uint64_t seconds = 0;
  std::uint8_t bits = 0;
  for (const NumberField& field : kNumbers) {
    EXPECT_EQ(field.set(nullptr, 1), -1) << field.name;
    EXPECT_EQ(field.get(nullptr, &number), -1) << field.name;
    EXPECT_EQ(field.get(label, nullptr), -1) << field.name;
  }
  for (const TimeField& field : kTimes) {
    EXPECT_EQ(field.set(nullptr, 1), -1) << field.name;
    EXPECT_EQ(field.get(nullptr, &seconds), -1) << field.name;
    EXPECT_EQ(field.get(label, nullptr), -1) << field.name;
  }
  for (const auto get_time : {GetHeadCreateTime, GetAbolishTime}) {
    EXPECT_EQ(get_time(nullptr, &seconds), -1);
    EXPECT_EQ(get_time(label, nullptr), -1);
  }
  EXPECT_EQ(SetHeadCreateTime(nullptr), -1);
  EXPECT_EQ(SetHeadFeedBackBits(nullptr, 1), -1);
  EXPECT_EQ(GetHeadFeedBackBits(nullptr, &bits), -1);
  EXPECT_EQ(GetHeadFeedBackBits(label, nullptr), -1);
  for (const auto count : {GetLogCout, GetExtendCount, GetDigitEnvlopeCountFromBody}) {
    EXPECT_EQ(count(nullptr, &number), -1);
    EXPECT_EQ(count(label, nullptr), -1);
  }
}

TEST(ScalarFields, KeepWholeTimesInMemoryButEncodeOnlyThoseWithAText) {
  Label label;
  fill(label, "6.0");
  for (const TimeField& field : kTimes) {
    std::uint64_t value = 0;
    EXPECT_EQ(field.set(label, UINT64_MAX), 0);
    EXPECT_EQ(field.get(label, &value), 0);
    EXPECT_EQ(value, UINT64_MAX);
    EXPECT_TRUE(encode(label).empty()) << field.name;
    EXPECT_EQ(field.set(label, 253402300799), 0);
    EXPECT_FALSE(encode(label).empty()) << field.name;
  }
}

TEST(ScalarFields, CreateTimeIsTheTimeOfTheCall) {
  Label label;
  std::uint64_t created = 1;
  EXPECT_EQ(GetHeadCreateTime(label, &created), 0);
  EXPECT_EQ(created, 0U);
  const auto before = static_cast<std::uint64_t>(std::time(nullptr));
  EXPECT_EQ(SetHeadCreateTime(label), 0);
  EXPECT_EQ(GetHeadCreateTime(label, &created), 0);
  EXPECT_GE(created, before);
  EXPECT_LE(created, static_cast<std::uint64_t>(std::time(nullptr)));
}

TEST(ScalarFields, FeedBackBitsAreEightBitsInMemoryAndAreLostIn60) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    std::uint8_t bits = 1;
    EXPECT_EQ(SetHeadFeedBackBits(label, 0x12345680), 0);
    EXPECT_EQ(GetHeadFeedBackBits(label, &bits), 0);
    EXPECT_EQ(bits, 0x80);
    const Label decoded = decode(encode(label));
    EXPECT_EQ(GetHeadFeedBackBits(decoded, &bits), 0);
    EXPECT_EQ(bits, is_60(version) ? 0 : 0x80);
  }
}

TEST(FileAlignSize, IsForLabelsOfFiveCharacterVersions) {
  const std::pair<const char*, std::int32_t> cases[] = {
      {"6.0", -1}, {"1.1", -1}, {"1.1.1", 0}, {"1.1.2", 0}, {"6", -1}, {"1xyz", -1}, {"7.0", 0}};
  Label none;
  EXPECT_EQ(SetFileAlignSize(none, 1), -1);
  for (const auto& [version, expected] : cases) {
    Label label;
    set(label, GLSetVersion, text(version));
    EXPECT_EQ(SetFileAlignSize(label, 4096), expected) << version;
    std::uint32_t size = 1;
    EXPECT_EQ(GetFileAlignSize(label, &size), 0);
    EXPECT_EQ(size, expected == 0 ? 4096U : 0U) << version;
  }
}

TEST(FileAlignSize, StandsBehindTheLabelAlignSizeOnTheWire) {
  Label label;
  fill_fields(label, "1.1.1");
  const Element tree = parse(encode(label));
  // INTEGER 512, INTEGER 4096, INTEGER 17
  EXPECT_EQ(tree.children[1].children.back().der(),
            hex("30 0B  02 02 02 00  02 02 10 00  02 01 11"));
}

TEST(FileNo, IsATextWithItsTerminatorInMemoryAndOnTheWire) {
  Label label;
  fill(label, "6.0");
  char buffer[8] = "xxxxxxx";
  EXPECT_EQ(GLGetFileNo(label, buffer), 0);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(GLSetFileNo(nullptr, "AB"), -1);
  EXPECT_EQ(GLSetFileNo(label, nullptr), -1);
  EXPECT_EQ(GLGetFileNo(nullptr, buffer), -1);
  EXPECT_EQ(GLGetFileNo(label, nullptr), -1);
  for (const char* number : {"LONGER", "AB", ""}) {
    EXPECT_EQ(GLSetFileNo(label, number), 0);
    const Bytes der = encode(label);
    const Label decoded = decode(der);
    for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
      std::memset(buffer, 'x', sizeof buffer);
      EXPECT_EQ(GLGetFileNo(each, buffer), 0);
      EXPECT_STREQ(buffer, number);
      EXPECT_EQ(buffer[std::strlen(number) + 1], 'x');
    }
    const Element creator = parse(der).children[1].children[6];
    EXPECT_EQ(creator.children[0].content, text({number, std::strlen(number) + 1}));
  }
}

TEST(EightBitGetters, RefuseWhatADecodedLabelHoldsBeyond255Bytes) {
  Label label;
  fill_fields(label, "1.1");
  Element tree = parse(encode(label));
  Element& content = tree.children[1].children[7];
  ASSERT_EQ(content.children[3].content, text("plan.txt"));
  content.children[3].content = pattern(256);
  content.children[4].content = pattern(255);
  const Label decoded = decode(tree.der());
  ASSERT_TRUE(decoded);
  Bytes buffer(255, 0xEE);
  std::uint8_t length = 255;
  EXPECT_EQ(GetFileName(decoded, nullptr, &length), -1);
  EXPECT_EQ(GetFileName(decoded, buffer.data(), &length), -1);
  EXPECT_EQ(length, 255);
  EXPECT_EQ(buffer, Bytes(255, 0xEE));
  EXPECT_EQ(get(decoded, widened<GLGetFileTitle>), pattern(255));
  EXPECT_EQ(encode(decoded), tree.der());
}

TEST(Helpers, AnswerForTextsAndEmptyHandles) {
  EXPECT_EQ(GetStringLength(nullptr), 0U);
  EXPECT_EQ(GetStringLength(""), 1U);
  EXPECT_EQ(GetStringLength("ab"), 3U);
  EXPECT_EQ(VerifySignCertConsistent(), 0);
  EXPECT_EQ(SetCipherAndMode(), 0);
  FreeHandleLabel(nullptr);
  Label label;
  for (const auto count : {GetLogCout, GetExtendCount, GetDigitEnvlopeCountFromBody}) {
    std::uint32_t number = 9;
    EXPECT_EQ(count(label, &number), 0);
    EXPECT_EQ(number, 0U);
  }
  for (const auto how : {EncodeLabel, EncodeLabelPad, EncodeBodyPlaint, GetSignatureMessage}) {
    EXPECT_TRUE(encode(label, how).empty()) << "a handle without a version";
  }
}

// What a label takes itself for shows in FileHaveSigned, which acts on "1.1.2" alone.
TEST(Versions, ShortTextsLeaveTheSubVersionAndUnknownOnesEverything) {
  const std::uint8_t signature[] = {0x30, 0x00};
  const auto acts_as_112 = [&](TqLabel label) { return FileHaveSigned(label, signature, 2) == 0; };
  struct Case {
    std::vector<std::string> texts;
    bool is_112;
    bool encodes;
  };
  const Case cases[] = {
      {{"6.0"}, false, true},
      {{"6.0", "1.1.2"}, true, true},
      {{"6.0", "1.1.2", "1.1"}, true, false},
      {{"1.1.2", "6.0"}, false, false},
      {{"1.1.2", "1.1.1"}, false, true},
      {{"1.1", "9.9"}, false, false},
      {{"1.1.2", "1.1.3"}, true, false},
      {{"1.1.2", "1.1.22"}, true, false},
      {{std::string("1.1.2\0x", 7)}, true, false},
      {{"6.0 "}, false, false},
      {{"1.1.2", std::string(128, '1')}, true, false},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.texts.back());
    Label label;
    for (const std::string& version : each.texts) set(label, GLSetVersion, text(version));
    EXPECT_EQ(fill_bare(label), each.texts.front() == "6.0 " ? -1 : 0);
    set(label, SetBodySignCert, kBodyCert);
    EXPECT_EQ(get(label, widened<GLGetVersion>), text(each.texts.back()));
    EXPECT_EQ(!encode(label).empty(), each.encodes);
    EXPECT_EQ(acts_as_112(label), each.is_112);
  }
}

}  // namespace
}  // namespace tq::abi
