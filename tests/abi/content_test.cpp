// The content fields and the file creator as whole records.

#include "abi/records.h"

namespace tq::abi {
namespace {

struct ContentInput {
  Bytes name = pattern(20, 1);
  Bytes title = pattern(300, 2);  // more than an 8-bit getter takes
  ContentAttrInfo record{1, UINT32_MAX, 3, name.data(), 20, title.data(), 300, 11, 12, 13, 14};

  ContentInput() = default;
  ContentInput(const ContentInput&) = delete;
  ContentInput& operator=(const ContentInput&) = delete;
};

void expect_content(TqLabel label, const ContentAttrInfo& in) {
  Bytes name(301, 0xEE);
  Bytes title(301, 0xEE);
  ContentAttrInfo out{9, 9, 9, name.data(), 0, title.data(), 0, 9, 9, 9, 9};  // no capacities
  ASSERT_EQ(GetContentAtrr(label, &out), 0);
  const auto padded = [](const std::uint8_t* from, std::uint32_t length) {
    Bytes bytes(from, from + length);
    bytes.resize(301, 0xEE);
    return bytes;
  };
  EXPECT_EQ(out.fileNameLen, in.fileNameLen);
  EXPECT_EQ(out.fileTitleLen, in.fileTitleLen);
  EXPECT_EQ(name, padded(in.fileName, in.fileNameLen));
  EXPECT_EQ(title, padded(in.fileTitle, in.fileTitleLen));
  EXPECT_EQ(out.fileType, in.fileType);
  EXPECT_EQ(out.secrecy, in.secrecy);
  EXPECT_EQ(out.fileSize, in.fileSize);
  EXPECT_EQ(out.modifyTime, in.modifyTime);
  EXPECT_EQ(out.expiryTime, in.expiryTime);
  EXPECT_EQ(out.abolishTime, in.abolishTime);
  EXPECT_EQ(out.destroyTime, in.destroyTime);
}

TEST(SetContentAtrr, WorksOnceAndHoldsWhatTheSingleFieldsHold) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    expect_content(label, {});
    ContentInput input;
    ASSERT_EQ(SetContentAtrr(label, &input.record), 0);
    const Label decoded = decode(encode(label));
    ASSERT_TRUE(decoded);
    for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
      expect_content(each, input.record);
      ContentInput other;
      other.record.fileType = 77;
      other.record.fileNameLen = 1;
      EXPECT_EQ(SetContentAtrr(each, &other.record), -1);
      expect_content(each, input.record);
      EXPECT_EQ(get(each, widened<GetFileName>), input.name);
      std::uint64_t time = 0;
      EXPECT_EQ(GetModifyTime(each, &time), 0);
      EXPECT_EQ(time, 11U);
      EXPECT_EQ(GetExpired(each, &time), 0);
      EXPECT_EQ(time, 12U);
      EXPECT_EQ(GetAbolishTime(each, &time), 0);
      EXPECT_EQ(time, 13U);
      EXPECT_EQ(GetDestroyTime(each, &time), 0);
      EXPECT_EQ(time, 14U);
      EXPECT_EQ(counted(each, GLGetFileType), 1U);
      EXPECT_EQ(counted(each, GetFileSecc), UINT32_MAX);
      EXPECT_EQ(counted(each, GLGetFileSize), 3U);
    }
  }
}

TEST(SetContentAtrr, FailsWhereANameOrATitleIsSet) {
  for (const Setter setter : {Setter{SetFileName}, Setter{GLSetFileTitle}}) {
    Label label;
    set(label, setter, text("x"));
    ASSERT_EQ(GLSetFileType(label, 5), 0);
    ContentInput input;
    EXPECT_EQ(SetContentAtrr(label, &input.record), -1);
    EXPECT_EQ(counted(label, GLGetFileType), 5U);
    EXPECT_EQ(get(label, widened<GetFileName>).size() + get(label, widened<GLGetFileTitle>).size(),
              1U);
  }
}

TEST(SetContentAtrr, CanBeCalledAgainAfterAFailure) {
  Label label;
  ASSERT_EQ(GLSetFileSize(label, 5), 0);
  ContentInput input;
  EXPECT_EQ(SetContentAtrr(nullptr, &input.record), -1);
  EXPECT_EQ(SetContentAtrr(label, nullptr), -1);
  for (const auto member : {&ContentAttrInfo::fileName, &ContentAttrInfo::fileTitle}) {
    ContentAttrInfo lacking = input.record;
    lacking.*member = nullptr;
    EXPECT_EQ(SetContentAtrr(label, &lacking), -1);
    ContentAttrInfo unchanged{};
    unchanged.fileSize = 5;
    expect_content(label, unchanged);
  }
  ContentAttrInfo nameless = input.record;
  nameless.fileName = nullptr;
  nameless.fileNameLen = 0;
  EXPECT_EQ(SetContentAtrr(label, &nameless), 0) << "no bytes, no pointer";
  expect_content(label, nameless);
  ContentAttrInfo out = input.record;
  EXPECT_EQ(GetContentAtrr(nullptr, &out), -1);
  EXPECT_EQ(GetContentAtrr(label, nullptr), -1);
  for (const auto member : {&ContentAttrInfo::fileName, &ContentAttrInfo::fileTitle}) {
    ContentAttrInfo lacking = input.record;
    lacking.*member = nullptr;
    EXPECT_EQ(GetContentAtrr(label, &lacking), -1);
    EXPECT_EQ(lacking.fileNameLen, 20U);
  }
}

void expect_creator(TqLabel label, std::string_view str1, std::string_view str2,
                    std::uint32_t time) {
  Bytes one(40, 0xEE);
  Bytes two(40, 0xEE);
  FileCreatorInfo out{one.data(), 0, two.data(), 0, ~time};
  ASSERT_EQ(GetFileIdentify(label, &out), 0);
  EXPECT_EQ(one[out.str1Len], 0xEE);
  EXPECT_EQ(two[out.str2Len], 0xEE);
  one.resize(out.str1Len);
  two.resize(out.str2Len);
  EXPECT_EQ(one, text(str1));
  EXPECT_EQ(two, text(str2));
  EXPECT_EQ(out.time, time);
}

TEST(SetBodyFileCreator, KeepsATextWhereTheNewOneHasNoLength) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    expect_creator(label, "", "", 0);
    Bytes a = text("first");
    Bytes b = text("second");
    const auto store = [&](std::uint32_t a_length, std::uint32_t b_length, std::uint32_t time) {
      const FileCreatorInfo in{a.data(), a_length, b.data(), b_length, time};
      EXPECT_EQ(SetBodyFileCreator(label, &in), 0);
      return decode(encode(label));
    };
    expect_creator(store(5, 6, UINT32_MAX), "first", "second", UINT32_MAX);
    expect_creator(store(0, 3, 1), "first", "sec", 1);
    expect_creator(store(2, 0, 2), "fi", "sec", 2);
    expect_creator(store(0, 0, 0), "fi", "sec", 0);
    EXPECT_EQ(GLSetFileNo(label, "N1"), 0);
    expect_creator(label, {"N1", 3}, "sec", 0);

    const Bytes before = encode(label);
    FileCreatorInfo in{nullptr, 1, b.data(), 6, 9};
    EXPECT_EQ(SetBodyFileCreator(label, &in), -1);
    in = {a.data(), 5, nullptr, 1, 9};
    EXPECT_EQ(SetBodyFileCreator(label, &in), -1);
    EXPECT_EQ(SetBodyFileCreator(nullptr, &in), -1);
    EXPECT_EQ(SetBodyFileCreator(label, nullptr), -1);
    EXPECT_EQ(encode(label), before);
    EXPECT_EQ(GetFileIdentify(label, &in), -1) << "no room for the second text";
    in = {nullptr, 7, b.data(), 7, 9};
    EXPECT_EQ(GetFileIdentify(label, &in), -1);
    EXPECT_EQ(GetFileIdentify(nullptr, &in), -1);
    EXPECT_EQ(GetFileIdentify(label, nullptr), -1);
    EXPECT_EQ(in.time, 9U);
  }
}

TEST(SetBodyFileCreator, TimeOfADecodedRecordIsHandedOutInItsLow32Bits) {
  Label label;
  fill(label, "1.1");
  Element tree = parse(encode(label));
  Element& creator = tree.children[1].children[6];
  ASSERT_EQ(creator.children[2].content, text("19700101000000Z"));
  creator.children[2].content = text("21060207062820Z");  // 2^32 + 4
  const Label decoded = decode(tree.der());
  ASSERT_TRUE(decoded);
  expect_creator(decoded, "", "", 4);
  EXPECT_EQ(encode(decoded), tree.der());
}

}  // namespace
}  // namespace tq::abi
