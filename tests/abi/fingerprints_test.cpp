// The fingerprint record: its list is turned round by a set, and nine of eleven flags are callers'.

#include "abi/records.h"

namespace tq::abi {
namespace {

OwnedFinger finger_of(TqLabel label) { return take<OwnedFinger>(label, GetFingerPrintInfo); }

void expect_reversed(const Finger& finger, const Finger& in) {
  const auto same = [](const std::uint8_t* out, std::uint32_t length, const std::uint8_t* put,
                       std::uint32_t put_length) {
    EXPECT_EQ(made(out, length), Bytes(put, put + put_length));
  };
  same(finger.sys1, finger.sys1Len, in.sys1, in.sys1Len);
  same(finger.sys2, finger.sys2Len, in.sys2, in.sys2Len);
  same(finger.sys3, finger.sys3Len, in.sys3, in.sys3Len);
  EXPECT_EQ(finger.sysValue, in.sysValue);
  ASSERT_EQ(finger.list.count, in.list.count);
  for (std::uint32_t i = 0; i < in.list.count; ++i) {
    const FingerEntry& out = finger.list.entries[i];
    const FingerEntry& put = in.list.entries[in.list.count - 1 - i];
    same(out.value, out.valueLen, put.value, put.valueLen);
    EXPECT_EQ(Bytes(out.action, out.action + 9), Bytes(put.action, put.action + 9)) << i;
  }
}

TEST(FingerPrints, ComeBackInReverseFromTheLabelAndFromItsBytes) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    FingerInput input;
    for (const std::uint32_t count : {3U, 1U, 2U}) {
      input.record.list.count = count;
      input.record.sys2Len = count;
      ASSERT_EQ(SetFingerPrintInfo(label, &input.record), 0);
      const Label decoded = decode(encode(label));
      ASSERT_TRUE(decoded);
      expect_reversed(*finger_of(label), input.record);
      expect_reversed(*finger_of(decoded), input.record);
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

TEST(FingerPrints, NeedTheirBuffers) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    const Bytes before = encode(label);
    FingerInput input;
    EXPECT_EQ(SetFingerPrintInfo(nullptr, &input.record), -1);
    EXPECT_EQ(SetFingerPrintInfo(label, nullptr), -1);
    Finger* out = nullptr;
    EXPECT_EQ(GetFingerPrintInfo(nullptr, &out), -1);
    EXPECT_EQ(GetFingerPrintInfo(label, nullptr), -1);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(FreeFingerPrintInfo(nullptr), 0);
    EXPECT_EQ(encode(label), before);
    for (const auto member : {&Finger::sys1, &Finger::sys2, &Finger::sys3}) {
      Label other;
      fill(other, version);
      Finger lacking = input.record;
      lacking.*member = nullptr;
      EXPECT_EQ(SetFingerPrintInfo(other, &lacking), -1);
      Element tree = parse(encode(other));
      EXPECT_NE(marking(tree, version, 2), nullptr) << "it counts as set";
    }
    Finger no_array = input.record;
    no_array.list.entries = nullptr;
    EXPECT_EQ(SetFingerPrintInfo(label, &no_array), -1);
    EXPECT_EQ(finger_of(label)->sysValue, input.record.sysValue) << "what came before is stored";
    input.entries[1].value = nullptr;
    EXPECT_EQ(SetFingerPrintInfo(label, &input.record), -1);
    EXPECT_TRUE(decode(encode(label)));
  }
}

}  // namespace
}  // namespace tq::abi
