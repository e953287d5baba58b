// Watermark and stamp, and what setting a marking does to the encoded label.

#include "abi/records.h"

namespace tq::abi {
namespace {

OwnedStamp stamp_of(TqLabel label) { return take<OwnedStamp>(label, GetStampInfo); }

OwnedFinger finger_of(TqLabel label) { return take<OwnedFinger>(label, GetFingerPrintInfo); }

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
      {"name", [](StampRecord& in) { in.name = nullptr; }, -1, 0},
      {"bits", [](StampRecord& in) { in.bits = nullptr; }, -1, 0},
      {"seal data", [](StampRecord& in) { in.seal.data = nullptr; }, -1, 1},
      {"seal element", [](StampRecord& in) { in.seal.element = nullptr; }, -1, 1},
      {"meta element", [](StampRecord& in) { in.seal.meta.element = nullptr; }, -1, 2},
      {"meta text 1", [](StampRecord& in) { in.seal.meta.text1 = nullptr; }, -1, 2},
      {"meta text 2", [](StampRecord& in) { in.seal.meta.text2 = nullptr; }, -1, 2},
      {"text 1", [](StampRecord& in) { in.stamp.text1 = nullptr; }, 0, 3},
      {"text 2", [](StampRecord& in) { in.stamp.text2 = nullptr; }, 0, 3},
      {"data", [](StampRecord& in) { in.stamp.data = nullptr; }, 0, 3},
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

TEST(FingerPrints, HaveTwoFlagsThatCallersDoNotSee) {
  Label label;
  fill(label, "1.1.1");
  FingerInput input;
  input.record.list = {1, &input.entries[2]};  // all nine flags
  ASSERT_EQ(SetFingerPrintInfo(label, &input.record), 0);
  Element tree = parse(encode(label));
  Element& entry = marking(tree, "1.1.1", 2)->children.at(1).children.at(0).children.at(0);
  ASSERT_EQ(entry.children.size(), 12U);
  for (std::size_t flag = 0; flag < 11; ++flag) {
    EXPECT_EQ(entry.children[flag + 1].der(), flag < 9 ? hex("01 01 FF") : hex("01 01 00"));
  }
  entry.children[10].content = entry.children[11].content = {0xFF};
  entry.children[3].content = {0x00};
  entry.children.erase(entry.children.begin());  // the subject may be missing
  const Label decoded = decode(tree.der());
  ASSERT_TRUE(decoded);
  const OwnedFinger finger = finger_of(decoded);
  ASSERT_EQ(finger->list.count, 1U);
  const FingerEntry& out = finger->list.entries[0];
  EXPECT_EQ(Bytes(out.action, out.action + 9), (Bytes{1, 1, 0, 1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(out.valueLen, 0U);
}

TEST(FingerPrints, WithoutEntriesFailButKeepTheSystemInformation) {
  for (const char* version : kVersions) {
    SCOPED_TRACE(version);
    for (const bool earlier : {false, true}) {
      Label label;
      fill(label, version);
      FingerInput input;
      if (earlier) {
        ASSERT_EQ(SetFingerPrintInfo(label, &input.record), 0);
      }
      Bytes other = pattern(12, 20);
      input.record.sys1 = other.data();
      input.record.sys1Len = 12;
      input.record.sysValue = 6;
      input.record.list.count = 0;
      EXPECT_EQ(SetFingerPrintInfo(label, &input.record), -1);
      const Label decoded = decode(encode(label));
      ASSERT_TRUE(decoded);
      for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
        const OwnedFinger finger = finger_of(each);
        EXPECT_EQ(made(finger->sys1, finger->sys1Len), other);
        EXPECT_EQ(finger->sysValue, 6U);
        EXPECT_EQ(finger->list.count, 0U);
        EXPECT_EQ(finger->list.entries, nullptr);
      }
      Element tree = parse(encode(label));
      ASSERT_NE(marking(tree, version, 2), nullptr) << "it counts as set";
      EXPECT_EQ(marking(tree, version, 2)->children.at(1).der(), hex("05 00"));
    }
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
  std::uint8_t none = 0;
  FileCreatorInfo out{&none, 0, &none, 0, 9};
  EXPECT_EQ(GetFileIdentify(decoded, &out), 0);
  EXPECT_EQ(out.time, 4U);
  EXPECT_EQ(encode(decoded), tree.der());
}

}  // namespace
}  // namespace tq::abi
