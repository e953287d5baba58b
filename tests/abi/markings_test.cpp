// Watermark and stamp, and what setting a marking does to the encoded label.

#include "abi/records.h"

namespace tq::abi {
namespace {

OwnedMark mark_of(TqLabel label) { return take<OwnedMark>(label, GetWaterMarkInfo); }
OwnedStamp stamp_of(TqLabel label) { return take<OwnedStamp>(label, GetStampInfo); }

void expect_same(const WaterMark& mark, const WaterMark& in) {
  EXPECT_EQ(made(mark.data1, mark.data1Len), Bytes(in.data1, in.data1 + in.data1Len));
  EXPECT_EQ(made(mark.data2, mark.data2Len), Bytes(in.data2, in.data2 + in.data2Len));
  EXPECT_EQ(mark.alg, in.alg);
  EXPECT_EQ(mark.algParam, in.algParam);
  EXPECT_EQ(mark.textLen, in.text == nullptr ? 0 : std::strlen(in.text) + 1);
  if (in.text != nullptr) {
    EXPECT_STREQ(mark.text, in.text);
  }
  EXPECT_EQ(mark.time, in.time);
}

// As a stamp comes back: all but the second text, which has a rule of its own.
void expect_same(const StampRecord& stamp, const StampRecord& in) {
  const auto same = [](const std::uint8_t* out, std::uint32_t length, const std::uint8_t* put,
                       std::uint32_t put_length) {
    EXPECT_EQ(made(out, length), Bytes(put, put + put_length));
  };
  same(stamp.name, stamp.nameLen, in.name, in.nameLen);
  same(stamp.bits, stamp.bitsLen, in.bits, in.bitsLen);
  const Seal& seal = in.seal;
  same(stamp.seal.name, stamp.seal.nameLen, seal.name, seal.nameLen);
  same(stamp.seal.data, stamp.seal.dataLen, seal.data, seal.dataLen);
  same(stamp.seal.element, stamp.seal.elementLen, seal.element, seal.elementLen);
  same(stamp.seal.bits, stamp.seal.bitsLen, seal.bits, seal.bitsLen);
  EXPECT_EQ(stamp.seal.type, seal.type);
  const Meta& meta = stamp.seal.meta;
  same(meta.element, meta.elementLen, seal.meta.element, seal.meta.elementLen);
  same(meta.text1, meta.text1Len, seal.meta.text1, seal.meta.text1Len);
  same(meta.text2, meta.text2Len, seal.meta.text2, seal.meta.text2Len);
  EXPECT_EQ(meta.time1, seal.meta.time1);
  EXPECT_EQ(meta.time2, seal.meta.time2);
  EXPECT_EQ(meta.time3, seal.meta.time3);
  EXPECT_STREQ(stamp.stamp.text1, in.stamp.text1);
  EXPECT_EQ(stamp.stamp.text1Len, std::strlen(in.stamp.text1) + 1);
  EXPECT_EQ(stamp.stamp.text2Len, std::strlen(in.stamp.text2) + 1);
  same(stamp.stamp.data, stamp.stamp.dataLen, in.stamp.data, in.stamp.dataLen);
  EXPECT_EQ(stamp.stamp.time, in.stamp.time);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(stamp.stamp.value[i], in.stamp.value[i]);
}

TEST(WaterMark, ComesBackFromTheLabelAndFromItsBytes) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    MarkInput first;
    ASSERT_EQ(SetWaterMarkInfo(label, &first.record), 0);
    expect_same(*mark_of(label), first.record);
    EXPECT_EQ(mark_of(label)->textLen, 3U);
    // A whole new one in its place: longer, shorter, without a text.
    Bytes longer = pattern(300);
    std::uint8_t nothing = 0;
    std::string words;
    const WaterMark others[] = {
        {longer.data(), 300, longer.data(), 1, UINT32_MAX, 0, words.data(), 0, 1},
        {&nothing, 0, longer.data(), 2, 0, 0, nullptr, 5, 0}};
    for (const WaterMark& other : others) {
      ASSERT_EQ(SetWaterMarkInfo(label, &other), 0);
      const Label decoded = decode(encode(label));
      ASSERT_TRUE(decoded);
      expect_same(*mark_of(label), other);
      expect_same(*mark_of(decoded), other);
    }
  }
}

TEST(WaterMark, NeedsItsData) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    const Bytes before = encode(label);
    MarkInput input;
    EXPECT_EQ(SetWaterMarkInfo(nullptr, &input.record), -1);
    EXPECT_EQ(SetWaterMarkInfo(label, nullptr), -1);
    for (const auto member : {&WaterMark::data1, &WaterMark::data2}) {
      WaterMark lacking = input.record;
      lacking.*member = nullptr;
      EXPECT_EQ(SetWaterMarkInfo(label, &lacking), -1);
    }
    EXPECT_EQ(encode(label), before);
    WaterMark* mark = nullptr;
    EXPECT_EQ(GetWaterMarkInfo(nullptr, &mark), -1);
    EXPECT_EQ(GetWaterMarkInfo(label, nullptr), -1);
    EXPECT_EQ(mark, nullptr);
  }
}

TEST(WaterMark, IsReleasedButForTextAndRecord) {
  Label label;
  MarkInput input;
  ASSERT_EQ(SetWaterMarkInfo(label, &input.record), 0);
  WaterMark* mark = nullptr;
  ASSERT_EQ(GetWaterMarkInfo(label, &mark), 0);
  EXPECT_EQ(FreetWaterMarkInfo(mark), 0);
  EXPECT_STREQ(mark->text, "ab");
  EXPECT_EQ(mark->time, 1400000000U);
  EXPECT_EQ(FreetWaterMarkInfo(mark), 0) << "the data are cleared";
  Asn1Free(mark->text);
  Asn1Free(mark);
  EXPECT_EQ(FreetWaterMarkInfo(nullptr), 0);
}

TEST(Stamp, ComesBackFromTheLabelAndFromItsBytes) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    StampInput input;
    for (int round = 0; round < 2; ++round) {
      ASSERT_EQ(SetStampInfo(label, &input.record), 0);
      const Label decoded = decode(encode(label));
      ASSERT_TRUE(decoded);
      expect_same(*stamp_of(label), input.record);
      expect_same(*stamp_of(decoded), input.record);
      // The next round replaces it by one with all that may be empty or missing.
      input.record.nameLen = 0;
      input.record.seal.name = nullptr;
      input.record.seal.nameLen = 0;
      input.record.seal.bits = nullptr;
      input.record.seal.bitsLen = 0;
      input.record.seal.elementLen = 0;
      input.record.seal.meta.elementLen = 0;
      input.record.seal.meta.text1Len = 0;
      input.record.stamp.value[0] = UINT32_MAX;
    }
  }
}

TEST(Stamp, SecondTextHasTheLengthOfItsOwnAndTheBytesOfTheData) {
  const std::pair<std::string, Bytes> cases[] = {{"seven..", text("0123456789")},
                                                 {"exact", text("012345")},
                                                 {"longer than the data", text("0123")},
                                                 {"", text("0123")},
                                                 {"no data", Bytes{}}};
  for (auto [words, data] : cases) {
    SCOPED_TRACE(words);
    Label label;
    fill(label, "1.1.2");
    StampInput input;
    input.record.stamp.text2 = words.data();
    input.record.stamp.data = pointer(data);
    input.record.stamp.dataLen = size32(data);
    ASSERT_EQ(SetStampInfo(label, &input.record), 0);
    Bytes expected = data;
    expected.resize(words.size() + 1);
    const OwnedStamp stamp = stamp_of(label);
    EXPECT_EQ(made(stamp->stamp.text2, stamp->stamp.text2Len), expected);
    EXPECT_EQ(made(stamp->stamp.data, stamp->stamp.dataLen), data);
    Element tree = parse(encode(label));
    const Element* proper = &marking(tree, "1.1.2", 0)->children.at(2);
    EXPECT_EQ(proper->children.at(5).content, expected);
  }
}

TEST(Stamp, LacksWhatComesBehindAMissingBuffer) {
  struct Case {
    const char* missing;
    void (*drop)(StampRecord&);  // with its length: the pointer counts
    std::int32_t result;
    int stored;  // 0 nothing, 1 name and bits, 2 the seal, 3 the meta record, 4 the stamp proper
  };
  const Case cases[] = {
      {"name",
       [](StampRecord& in) {
         in.name = nullptr;
         in.nameLen = 0;
       },
       -1, 0},
      {"bits",
       [](StampRecord& in) {
         in.bits = nullptr;
         in.bitsLen = 0;
       },
       -1, 0},
      {"seal data",
       [](StampRecord& in) {
         in.seal.data = nullptr;
         in.seal.dataLen = 0;
       },
       -1, 1},
      {"seal element",
       [](StampRecord& in) {
         in.seal.element = nullptr;
         in.seal.elementLen = 0;
       },
       -1, 1},
      {"meta element",
       [](StampRecord& in) {
         in.seal.meta.element = nullptr;
         in.seal.meta.elementLen = 0;
       },
       -1, 2},
      {"meta text 1",
       [](StampRecord& in) {
         in.seal.meta.text1 = nullptr;
         in.seal.meta.text1Len = 0;
       },
       -1, 2},
      {"meta text 2",
       [](StampRecord& in) {
         in.seal.meta.text2 = nullptr;
         in.seal.meta.text2Len = 0;
       },
       -1, 2},
      {"text 1", [](StampRecord& in) { in.stamp.text1 = nullptr; }, 0, 3},
      {"text 2", [](StampRecord& in) { in.stamp.text2 = nullptr; }, 0, 3},
      {"data",
       [](StampRecord& in) {
         in.stamp.data = nullptr;
         in.stamp.dataLen = 0;
       },
       0, 3},
  };
  for (const char* version : kVersions) {
    for (const Case& each : cases) {
      SCOPED_TRACE(testing::Message() << version << " without " << each.missing);
      Label label;
      fill(label, version);
      const Bytes before = encode(label);
      StampInput input;
      each.drop(input.record);
      EXPECT_EQ(SetStampInfo(label, &input.record), each.result);
      Element tree = parse(encode(label));
      if (each.stored == 0) {
        EXPECT_EQ(tree.der(), before);
        continue;
      }
      // A new label: nothing earlier shows through.
      const Element* written = marking(tree, version, 0);
      ASSERT_NE(written, nullptr) << "it counts as set";
      EXPECT_EQ(written->children[0].content, input.name);
      const OwnedStamp stamp = stamp_of(label);
      EXPECT_EQ(made(stamp->name, stamp->nameLen), input.name);
      EXPECT_EQ(made(stamp->seal.data, stamp->seal.dataLen),
                each.stored > 1 ? input.seal_data : Bytes{});
      EXPECT_EQ(made(stamp->seal.meta.text2, stamp->seal.meta.text2Len),
                each.stored > 2 ? input.meta_text2 : Bytes{});
      EXPECT_EQ(stamp->stamp.time, 0U);
      EXPECT_EQ(stamp->stamp.text1, nullptr);
      EXPECT_EQ(stamp->stamp.data, nullptr);
    }
  }
  // The stamp proper stays as it was.
  Label label;
  StampInput input;
  ASSERT_EQ(SetStampInfo(label, &input.record), 0);
  StampInput second;
  second.record.stamp.data = nullptr;
  second.record.stamp.time = 1;
  second.record.seal.type = 10;
  ASSERT_EQ(SetStampInfo(label, &second.record), 0);
  EXPECT_EQ(stamp_of(label)->stamp.time, 1500000000U);
  EXPECT_EQ(stamp_of(label)->seal.type, 10);
  EXPECT_EQ(SetStampInfo(nullptr, &input.record), -1);
  EXPECT_EQ(SetStampInfo(label, nullptr), -1);
  StampRecord* out = nullptr;
  EXPECT_EQ(GetStampInfo(nullptr, &out), -1);
  EXPECT_EQ(GetStampInfo(label, nullptr), -1);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(FreeStampA(nullptr), 0);
}

TEST(Stamp, OfADecodedLabelMayBeLargerThanItsRecordTells) {
  Label label;
  fill(label, "1.1");
  StampInput input;
  ASSERT_EQ(SetStampInfo(label, &input.record), 0);
  Element tree = parse(encode(label));
  Element& seal = marking(tree, "1.1", 0)->children.at(1);
  const Bytes element = tlv(0x30, tlv(0x04, pattern(300)));
  seal.children.at(1).children.at(0) = parse(element);
  ASSERT_EQ(seal.children.at(2).der(), hex("02 01 09"));
  seal.children.at(2).content = {0x12, 0x34, 0x56};
  const Label decoded = decode(tree.der());
  ASSERT_TRUE(decoded);
  const OwnedStamp stamp = stamp_of(decoded);
  EXPECT_EQ(stamp->seal.type, 0x56);
  EXPECT_EQ(stamp->seal.meta.elementLen, element.size() & 0xFF);
  EXPECT_EQ(made(stamp->seal.meta.element, size32(element)), element) << "all of it is there";
  EXPECT_EQ(encode(decoded), tree.der());

  // Without its optional elements.
  seal.children.erase(seal.children.begin() + 4);
  seal.children.at(1).children.erase(seal.children.at(1).children.begin());
  const Label lacking = decode(tree.der());
  ASSERT_TRUE(lacking);
  EXPECT_EQ(stamp_of(lacking)->seal.element, nullptr);
  EXPECT_EQ(stamp_of(lacking)->seal.meta.element, nullptr);
  EXPECT_EQ(encode(lacking), tree.der());
}

TEST(Markings, ThatAreUnsetAreReadAsEmptyRecords) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    const Label decoded = decode(encode(label));
    const Label bare;
    const TqLabel handles[] = {label, decoded, bare};
    for (std::size_t i = 0; i < std::size(handles); ++i) {
      const OwnedMark mark = mark_of(handles[i]);
      EXPECT_EQ(mark->data1Len + mark->data2Len + mark->textLen, 0U);
      EXPECT_EQ(mark->time, 0U);
      const OwnedStamp stamp = stamp_of(handles[i]);
      EXPECT_EQ(stamp->nameLen + stamp->bitsLen + stamp->stamp.text2Len + stamp->seal.elementLen,
                0U);
      EXPECT_EQ(stamp->seal.meta.time3, 0U);
      const OwnedFinger finger = take<OwnedFinger>(handles[i], GetFingerPrintInfo);
      EXPECT_EQ(finger->sys1Len + finger->sys2Len + finger->sys3Len + finger->list.count, 0U);
      EXPECT_EQ(finger->list.entries, nullptr);
      if (i == 1) continue;  // was read from elements that were written, though empty
      EXPECT_EQ(mark->data1, nullptr);
      EXPECT_EQ(mark->text, nullptr);
      EXPECT_EQ(stamp->name, nullptr);
      EXPECT_EQ(stamp->stamp.text1, nullptr);
      EXPECT_EQ(stamp->seal.meta.element, nullptr);
      EXPECT_EQ(finger->sys1, nullptr);
    }
  }
}

TEST(Markings, AreLeftOutOf112UntilTheyAreSetAndNowhereElse) {
  for (const char* version : kVersions) {
    for (unsigned chosen = 0; chosen < 8; ++chosen) {
      SCOPED_TRACE(testing::Message() << version << " " << chosen);
      Label label;
      fill(label, version);
      const std::size_t before = parse(encode(label)).children[1].children.size();
      StampInput stamp;
      MarkInput mark;
      FingerInput finger;
      if ((chosen & 4) != 0) {
        EXPECT_EQ(SetFingerPrintInfo(label, &finger.record), 0);
      }
      if ((chosen & 2) != 0) {
        EXPECT_EQ(SetWaterMarkInfo(label, &mark.record), 0);
      }
      if ((chosen & 1) != 0) {
        EXPECT_EQ(SetStampInfo(label, &stamp.record), 0);
      }
      const Bytes der = encode(label);
      Element tree = parse(der);
      std::vector<std::uint8_t> tags;
      for (const Element& child : tree.children[1].children) {
        if (child.tag != 0x30) tags.push_back(child.tag);
      }
      std::vector<std::uint8_t> expected;
      if (is_multi_sign(version)) {
        for (std::uint8_t which = 0; which < 3; ++which) {
          if ((chosen & 1U << which) != 0) expected.push_back(0xA0 + which);
        }
        std::erase(tags, 0x05);  // the empty list of envelopes
        EXPECT_EQ(tags, expected);
        EXPECT_EQ(tree.children[1].children.size(), before + expected.size());
      } else {
        EXPECT_EQ(tree.children[1].children.size(), before);
      }
      const Label decoded = decode(der);
      ASSERT_TRUE(decoded);
      EXPECT_EQ(encode(decoded), der) << "what was set stays set";
    }
  }
}

}  // namespace
}  // namespace tq::abi
