// Who may open a file: asked from encoded bytes, taken away, and until when.

#include <ctime>

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

TEST(Privileges, TakeTheLow8BitsOfASerialLength) {
  Label label;
  fill(label, "1.1");
  ASSERT_EQ(add_to_head(label, {recipient(1)}), 0);
  ASSERT_EQ(add_to_body(label, {recipient(1)}), 0);
  const std::uint8_t serial = 1;
  const Issuer issuer(recipient(1).issuer);
  std::uint32_t length = 0;
  EXPECT_EQ(GetCertByIssuerAndSerial(label, &serial, 0x12345601, issuer.get(), nullptr, &length),
            0);
  EXPECT_EQ(SetAlreadyReadCountsToLabel(label, &serial, 0x12345601, issuer.get(), 7), 0);
  EXPECT_EQ(DelPrivilegeFromLabel(label, &serial, 0x12345601, issuer.get()), 0);
}

std::uint64_t present() { return static_cast<std::uint64_t>(std::time(nullptr)); }

// Runs until it has kept within one second.
template <class Within>
void within_a_second(Within run) {
  for (int tries = 0; tries < 100; ++tries) {
    const std::uint64_t now = present();
    const testing::AssertionResult result = run(now);
    if (present() != now) continue;
    EXPECT_TRUE(result);
    return;
  }
  FAIL() << "no run took less than a second";
}

enum class Deadline { kExpiry, kAbolition, kDestruction };

Label with_deadline(Deadline which, std::uint64_t time) {
  Label label;
  ContentAttrInfo content{};
  content.expiryTime = which == Deadline::kExpiry ? time : 0;
  content.abolishTime = which == Deadline::kAbolition ? time : 0;
  content.destroyTime = which == Deadline::kDestruction ? time : 0;
  EXPECT_EQ(SetContentAtrr(label, &content), 0);
  return label;
}

TEST(Dates, PassASecondAfterTheDeadlineAndOnlyWhereItCounts) {
  constexpr std::uint64_t kNever = 0;
  const std::pair<std::uint64_t, bool> fixed[] = {{kNever, false},
                                                  {1, true},
                                                  {1U << 31U, false},
                                                  {std::uint64_t{1} << 63U, false},
                                                  {UINT64_MAX, false}};
  const std::pair<std::int64_t, bool> relative[] = {{-86400, true}, {-2, true}, {-1, true},
                                                    {0, false},     {1, false}, {86400, false}};
  for (const Deadline which : {Deadline::kExpiry, Deadline::kAbolition, Deadline::kDestruction}) {
    const auto agrees = [&](std::uint64_t time, bool passed) {
      const Label label = with_deadline(which, time);
      const std::int32_t due = passed ? -1 : 0;
      const bool destruction = which == Deadline::kDestruction;
      return CheckLabelDate(label) == (destruction ? 0 : due) &&
             CheckAbolishDate(label) == (which == Deadline::kAbolition ? due : 0) &&
             CheckDestroyDate(label) == (destruction ? due : 0);
    };
    const int number = static_cast<int>(which);
    for (const auto& [time, passed] : fixed) {
      EXPECT_TRUE(agrees(time, passed)) << number << ": " << time;
    }
    for (const auto& [offset, passed] : relative) {
      within_a_second([&, &by = offset, &is = passed](std::uint64_t now) {
        const std::uint64_t time = now + static_cast<std::uint64_t>(by);
        return (agrees(time, is) ? testing::AssertionSuccess() : testing::AssertionFailure())
               << number << ": " << by << " s from now";
      });
    }
  }
}

TEST(Dates, EndAtOnceWhenTheFileIsAbolished) {
  for (const char* version : kVersions) {
    for (const std::uint64_t destroy : {std::uint64_t{0}, std::uint64_t{1}}) {
      Label label;
      fill(label, version);
      ASSERT_EQ(SetDestroyTime(label, destroy), 0);
      within_a_second([&](std::uint64_t now) {
        std::uint64_t time = 0;
        const bool set = AbolishSF(label) == 0 && GetAbolishTime(label, &time) == 0;
        return set && time == now - 1 ? testing::AssertionSuccess() : testing::AssertionFailure();
      });
      const Label decoded = decode(encode(label));
      ASSERT_TRUE(decoded);
      for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
        EXPECT_EQ(CheckAbolishDate(each), -1);
        EXPECT_EQ(CheckLabelDate(each), -1);
        EXPECT_EQ(CheckDestroyDate(each), destroy == 0 ? 0 : -1);
      }
    }
  }
}

}  // namespace
}  // namespace tq::abi
