// Markings that are released in part, decoded from elsewhere or lack their entries.

#include <span>

#include "abi/records.h"

namespace tq::abi {
namespace {

TEST(WaterMark, IsReleasedButForTextAndRecord) {
  const Label label;
  const Filled<WaterMark> given;
  ASSERT_EQ(SetWaterMarkInfo(label, &given.record), 0);
  const auto mark = take<WaterMark>(GetWaterMarkInfo, label);
  EXPECT_EQ(FreetWaterMarkInfo(mark.get()), 0);
  EXPECT_STREQ(mark->text, given.record.text);
  EXPECT_TRUE(mark->data1 == nullptr && mark->data2 == nullptr);
}

TEST(Records, OfADecodedLabelMayBeLargerThanCallersAreTold) {
  Label label;
  fill(label, "1.1");
  const Filled<StampRecord> input;
  ASSERT_EQ(SetStampInfo(label, &input.record), 0);
  Element tree = parse(encode(label));
  Element& seal = marking(tree, "1.1", 0)->children.at(1);
  const Bytes element = tlv(0x30, tlv(0x04, pattern(300)));
  seal.children.at(1).children.at(0) = parse(element);
  seal.children.at(2).content = {0x12, 0x34, 0x56};
  tree.children[1].children[6].children[2].content = text("21060207062820Z");  // 2^32 + 4
  const Label decoded = decode(tree.der());
  ASSERT_TRUE(decoded);
  std::uint8_t none = 0;
  FileCreatorInfo creator{&none, 0, &none, 0, 9};
  EXPECT_EQ(GetFileIdentify(decoded, &creator), 0);
  EXPECT_EQ(creator.time, 4U);
  const auto stamp = take<StampRecord>(GetStampInfo, decoded);
  EXPECT_EQ(stamp->seal.type, 0x56);
  EXPECT_EQ(stamp->seal.meta.elementLen, element.size() & 0xFF);
  EXPECT_TRUE(std::ranges::equal(element, std::span(stamp->seal.meta.element, element.size())))
      << "all of it is there";
  EXPECT_EQ(encode(decoded), tree.der());

  // Without its optional elements.
  seal.children.erase(seal.children.begin() + 4);
  seal.children.at(1).children.erase(seal.children.at(1).children.begin());
  const Label lacking = decode(tree.der());
  ASSERT_TRUE(lacking);
  const auto less = take<StampRecord>(GetStampInfo, lacking);
  EXPECT_TRUE(less->seal.element == nullptr && less->seal.meta.element == nullptr);
  EXPECT_EQ(encode(lacking), tree.der());
}

TEST(FingerPrints, HaveTwoFlagsThatCallersDoNotSee) {
  Label label;
  fill(label, "1.1.1");
  Filled<Finger> input;
  input.record.list.count = 1;
  std::ranges::fill(input.record.list.entries[0].action, std::uint8_t{1});
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
  const auto finger = take<Finger>(GetFingerPrintInfo, decoded);
  ASSERT_EQ(finger->list.count, 1U);
  const FingerEntry& out = finger->list.entries[0];
  EXPECT_EQ(Bytes(out.action, out.action + 9), (Bytes{1, 1, 0, 1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(out.valueLen, 0U);
}

TEST(FingerPrints, WithoutEntriesFailButKeepTheSystemInformation) {
  for (const char* version : kVersions) {
    SCOPED_TRACE(version);
    Label label;
    fill(label, version);
    const Filled<Finger> earlier;
    ASSERT_EQ(SetFingerPrintInfo(label, &earlier.record), 0);
    Filled<Finger> empty(2);
    empty.record.list.count = 0;
    EXPECT_EQ(SetFingerPrintInfo(label, &empty.record), -1);
    const Label decoded = decode(encode(label));
    for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
      const auto finger = take<Finger>(GetFingerPrintInfo, each);
      EXPECT_EQ(describe(*finger).str(), describe(empty.record).str());
      EXPECT_EQ(finger->list.entries, nullptr);
    }
    Element tree = parse(encode(label));
    EXPECT_EQ(marking(tree, version, 2)->children.at(1).der(), hex("05 00"));
    empty.record.list = {1, nullptr};
    EXPECT_EQ(SetFingerPrintInfo(label, &empty.record), -1);
  }
}

}  // namespace
}  // namespace tq::abi
