// Who may open a file: asked from encoded bytes, taken away, and counted.

#include "abi/records.h"

namespace tq::abi {
namespace {

std::int32_t by_serial(const Bytes& der, Bytes serial) {
  return HavePrivilege(der.data(), static_cast<std::int32_t>(der.size()), pointer(serial),
                       kHighBits | size32(serial));
}
std::int32_t by_recipient(const Bytes& der, Recipient to) {
  const Issuer issuer(to.issuer);
  return HavePrivilegeOfHead(der.data(), static_cast<std::int32_t>(der.size()), pointer(to.serial),
                             kHighBits | size32(to.serial), issuer.get());
}
std::int32_t remove(TqLabel label, Recipient to) {
  const Issuer issuer(to.issuer);
  return DelPrivilegeFromLabel(label, pointer(to.serial), kHighBits | size32(to.serial),
                               issuer.get());
}
std::int32_t count_reads(TqLabel label, Recipient to, std::uint32_t count) {
  const Issuer issuer(to.issuer);
  return SetAlreadyReadCountsToLabel(label, pointer(to.serial), kHighBits | size32(to.serial),
                                     issuer.get(), count);
}

// The same label in every shape; what is behind the head does not matter, but something must be.
std::vector<Bytes> shapes(TqLabel label) {
  const Bytes plain = encode(label);
  Element odd = parse(plain);
  odd.children[1] = {0x05, {}, {}};
  return {plain, encode(label, EncodeLabelPad), encode_sealed(label, pattern(200)), odd.der(),
          join(plain, hex("30 84"))};
}

TEST(HavePrivilege, AnswersZeroForYesAndHavePrivilegeOfHeadOne) {
  struct Question {
    Recipient to;
    std::int32_t serial;     // of HavePrivilege
    std::int32_t recipient;  // of HavePrivilegeOfHead
  };
  const Question questions[] = {
      {recipient(1, "A"), 0, 1}, {recipient(1, "B"), 0, 1},
      {recipient(1, "C"), 0, 0}, {recipient(2, "A"), 0, 1},
      {recipient(2, "B"), 0, 0}, {recipient(3, "A"), -1, 0},
      {{{0, 1}, {}}, -1, 0},     {{{}, {}}, -1, 0},
      {{{1}, {}}, 0, 1},  // an issuer of no attributes
  };
  for (const char* version : kFamily) {
    Label label;
    fill(label, version);
    for (const Recipient& to : {recipient(1, "A"), recipient(1, "B"), recipient(2, "A")}) {
      ASSERT_EQ(add_to_head(label, {to}), 0);
    }
    ASSERT_EQ(add_to_body(label, {recipient(3, "A")}), 0);  // the body does not count
    for (const Bytes& der : shapes(label)) {
      for (const Question& each : questions) {
        EXPECT_EQ(by_serial(der, each.to.serial), each.serial);
        EXPECT_EQ(by_recipient(der, each.to), each.recipient);
      }
    }
  }
}

TEST(HavePrivilege, FindsSerialsButNoRecipientsIn60) {
  const Bytes der = label_60_with_envelopes(2);
  EXPECT_EQ(by_serial(der, {2}), 0);
  EXPECT_EQ(by_serial(der, {3}), -1);
  for (const Recipient& to : {recipient(1), recipient(2), recipient(3), Recipient{{1}, {}}}) {
    EXPECT_EQ(by_recipient(der, to), 0);
  }
}

TEST(HavePrivilege, DoesNotAskFurtherWithoutACipher) {
  for (const char* version : kVersions) {
    for (const bool cipher : {false, true}) {
      Label label;
      fill(label, version, cipher);
      for (const Bytes& der : shapes(label)) {
        EXPECT_EQ(by_serial(der, {1}), cipher ? -1 : 0);
        EXPECT_EQ(by_recipient(der, recipient(1)), 0);
      }
      if (is_60(version)) continue;
      ASSERT_EQ(add_to_head(label, {recipient(1)}), 0);
      EXPECT_EQ(by_serial(encode(label), {1}), 0);
      EXPECT_EQ(by_recipient(encode(label), recipient(1)), cipher ? 1 : 0);
    }
  }
}

TEST(HavePrivilege, FailsForBytesThatAreNoLabel) {
  for (const char* version : kVersions) {
    Bytes der = label_60_with_envelopes(1);
    if (!is_60(version)) {
      Label label;
      fill(label, version);
      ASSERT_EQ(add_to_head(label, {recipient(1)}), 0);
      der = encode(label);
    }
    EXPECT_EQ(by_serial(der, {1}), 0) << "all right so far";
    Element tree = parse(der);
    tree.children.pop_back();
    Element unknown = parse(der);
    unknown.children[0].children[1].content = text("7.0");
    Element broken = parse(der);
    broken.children[0].children.pop_back();
    const Bytes shorter(der.begin(), der.end() - 1);
    for (const Bytes& bytes : {tree.der(), unknown.der(), broken.der(), shorter, hex("30 00"),
                               hex("30 04 05 00 05 00"), hex("31 00"), hex("00")}) {
      EXPECT_EQ(by_serial(bytes, {1}), -1);
      EXPECT_EQ(by_recipient(bytes, recipient(1)), -1);
    }
    const std::uint8_t serial = 1;
    const Issuer issuer(recipient(1).issuer);
    const auto length = static_cast<std::int32_t>(der.size());
    for (const std::int32_t bad : {0, -1, INT32_MIN}) {
      EXPECT_EQ(HavePrivilege(der.data(), bad, &serial, 1), -1);
      EXPECT_EQ(HavePrivilegeOfHead(der.data(), bad, &serial, 1, issuer.get()), -1);
    }
    EXPECT_EQ(HavePrivilege(nullptr, length, &serial, 1), -1);
    EXPECT_EQ(HavePrivilege(der.data(), length, nullptr, 1), -1);
    EXPECT_EQ(HavePrivilege(der.data(), length, nullptr, 0), -1);
    EXPECT_EQ(HavePrivilegeOfHead(nullptr, length, &serial, 1, issuer.get()), -1);
    EXPECT_EQ(HavePrivilegeOfHead(der.data(), length, nullptr, 1, issuer.get()), 0);
    EXPECT_EQ(HavePrivilegeOfHead(der.data(), length, &serial, 1, nullptr), 0);
  }
}

TEST(DelPrivilegeFromLabel, RemovesTheRecipientFromBothLists) {
  for (const char* version : kFamily) {
    SCOPED_TRACE(version);
    Label label;
    fill(label, version);
    for (const std::uint8_t serial : Bytes{1, 2, 3, 4}) {
      ASSERT_EQ(add_to_head(label, {recipient(serial)}), 0);
      ASSERT_EQ(add_to_body(label, {recipient(serial)}), 0);
    }
    // The middle, the end, the front, the only one.
    std::vector<Bytes> left = {{4}, {3}, {2}, {1}};
    for (const std::uint8_t serial : Bytes{2, 1, 4, 3}) {
      EXPECT_EQ(remove(label, recipient(serial)), 0);
      std::erase(left, Bytes{serial});
      EXPECT_EQ(head_serials(label, version), left);
      EXPECT_EQ(body_serials(label, version), left);
      EXPECT_EQ(remove(label, recipient(serial)), -1) << "removed already";
    }
  }
}

TEST(DelPrivilegeFromLabel, LooksInTheHeadFirst) {
  for (const char* version : kFamily) {
    Label label;
    fill(label, version);
    const std::uint8_t serial = 1;
    const Issuer issuer(recipient(1).issuer);
    ASSERT_EQ(add_to_body(label, {recipient(1)}), 0);
    ASSERT_EQ(add_to_head(label, {recipient(2)}), 0);
    const Bytes before = encode(label);
    EXPECT_EQ(remove(label, recipient(1)), -1) << "in the body only";
    EXPECT_EQ(remove(label, recipient(2, "other")), -1);
    EXPECT_EQ(DelPrivilegeFromLabel(nullptr, &serial, 1, issuer.get()), -1);
    EXPECT_EQ(DelPrivilegeFromLabel(label, nullptr, 1, issuer.get()), -1);
    EXPECT_EQ(DelPrivilegeFromLabel(label, &serial, 1, nullptr), -1);
    EXPECT_EQ(encode(label), before);
    EXPECT_EQ(remove(label, recipient(2)), -1) << "in the head only";
    EXPECT_TRUE(head_serials(label, version).empty());
    EXPECT_EQ(body_serials(label, version), (std::vector<Bytes>{{1}}));
  }
}

TEST(DelPrivilegeFromLabel, TakesTheFirstMatchOfEachList) {
  Label label;
  fill(label, "1.1");
  for (const char* name : {"A", "B"}) ASSERT_EQ(add_to_head(label, {recipient(1, name)}), 0);
  for (const char* name : {"B", "A"}) ASSERT_EQ(add_to_body(label, {recipient(1, name)}), 0);
  EXPECT_EQ(remove(label, {{1}, {{kCountry, 19, text("CN")}}}), 0);
  EXPECT_TRUE(from_head(label, recipient(1, "A")));
  EXPECT_FALSE(from_head(label, recipient(1, "B")));
  EXPECT_TRUE(from_body(label, recipient(1, "B")));
  EXPECT_FALSE(from_body(label, recipient(1, "A")));
}

TEST(ReadCounts, ReplaceTheCountOfOneRecipient) {
  for (const char* version : kFamily) {
    Label label;
    fill(label, version);
    for (const std::uint8_t serial : Bytes{1, 2, 3}) {
      ASSERT_EQ(add_to_body(label, {recipient(serial)}), 0);
      ASSERT_EQ(add_to_head(label, {recipient(serial)}), 0);
    }
    for (const std::uint32_t count : {0U, UINT32_MAX, 0U, 7U}) {
      EXPECT_EQ(count_reads(label, recipient(2), count), 0);
      const Label decoded = decode(encode(label));
      ASSERT_TRUE(decoded);
      for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
        Privileges expected;
        EXPECT_EQ(from_body(each, recipient(1)).value().privileges, expected);
        EXPECT_EQ(from_body(each, recipient(3)).value().privileges, expected);
        expected.numbers[1] = count;
        EXPECT_EQ(from_body(each, recipient(2)).value().privileges, expected);
      }
    }
    const Bytes before = encode(label);
    const std::uint8_t serial = 2;
    const Issuer issuer(recipient(2).issuer);
    EXPECT_EQ(count_reads(label, recipient(4), 1), -1);
    EXPECT_EQ(count_reads(label, recipient(2, "other"), 1), -1);
    EXPECT_EQ(SetAlreadyReadCountsToLabel(nullptr, &serial, 1, issuer.get(), 1), -1);
    EXPECT_EQ(SetAlreadyReadCountsToLabel(label, nullptr, 1, issuer.get(), 1), -1);
    EXPECT_EQ(SetAlreadyReadCountsToLabel(label, &serial, 1, nullptr, 1), -1);
    EXPECT_EQ(encode(label), before);
  }
}

TEST(Privileges, AreNotEditedOutsideThe11Family) {
  const Bytes der = label_60_with_envelopes(2);
  Label decoded = decode(der);
  ASSERT_TRUE(decoded);
  const Label bare;
  for (const TqLabel label : {TqLabel{decoded}, TqLabel{bare}}) {
    EXPECT_EQ(remove(label, recipient(1)), -1);
    EXPECT_EQ(remove(label, {{1}, {}}), -1);
    EXPECT_EQ(count_reads(label, recipient(1), 9), -1);
    EXPECT_EQ(count_reads(label, {{1}, {}}, 9), -1);
  }
  EXPECT_EQ(encode(decoded), der);
}

}  // namespace
}  // namespace tq::abi
