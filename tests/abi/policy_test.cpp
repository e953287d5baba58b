// Who may open a file, asked from encoded bytes, and until when.

#include <ctime>

#include "abi/records.h"

namespace tq::abi {
namespace {

TEST(HavePrivilege, FailsForBytesThatAreNoLabel) {
  const std::uint8_t serial = 1;
  const Issuer issuer(recipient(1).issuer);
  const auto answers = [&](const Bytes& der, std::int32_t length) {
    return std::pair(HavePrivilege(der.data(), length, &serial, kHighBits | 1),
                     HavePrivilegeOfHead(der.data(), length, &serial, kHighBits | 1, issuer.get()));
  };
  for (const char* version : kVersions) {
    Bytes der = label_60_with_envelopes(1);
    if (!is_60(version)) {
      Label label;
      fill(label, version);
      ASSERT_EQ(add_to_head(label, {recipient(1)}), 0);
      der = encode(label);
    }
    Element opaque = parse(der);
    opaque.children[1] = {0x05, {}, {}};  // what is behind the head does not matter
    for (const Bytes& bytes : {der, opaque.der(), concat(der, hex("30 84"))}) {
      EXPECT_EQ(answers(bytes, static_cast<std::int32_t>(bytes.size())),
                std::pair(0, is_60(version) ? 0 : 1));
    }
    Element headless = parse(der);
    headless.children.pop_back();  // but something must be there
    for (const Bytes& bytes : {headless.der(), hex("30 04 05 00 05 00"), hex("30 00")}) {
      EXPECT_EQ(answers(bytes, static_cast<std::int32_t>(bytes.size())), std::pair(-1, -1));
    }
    for (const std::int32_t length :
         {static_cast<std::int32_t>(der.size()) - 1, 0, -1, INT32_MIN}) {
      EXPECT_EQ(answers(der, length), std::pair(-1, -1));
    }
  }
}

// What is long past or far away, random calls ask. Runs until it has kept within one second.
TEST(Dates, PassASecondAfterTheDeadline) {
  for (const bool passed : {false, true}) {
    for (std::time_t now = -1; std::time(nullptr) != now;) {
      now = std::time(nullptr);
      const Label expiring;
      const Label abolished;
      ContentAttrInfo content{};
      content.abolishTime = static_cast<std::uint64_t>(now) - (passed ? 1 : 0);
      EXPECT_EQ(SetExpired(expiring, content.abolishTime), 0);
      EXPECT_EQ(SetDestroyTime(expiring, content.abolishTime), 0);
      EXPECT_EQ(SetContentAtrr(abolished, &content), 0);
      const bool all = CheckLabelDate(expiring) == 0 && CheckDestroyDate(expiring) == 0 &&
                       CheckLabelDate(abolished) == 0 && CheckAbolishDate(abolished) == 0;
      const bool none = CheckLabelDate(expiring) != 0 && CheckDestroyDate(expiring) != 0 &&
                        CheckLabelDate(abolished) != 0 && CheckAbolishDate(abolished) != 0;
      EXPECT_TRUE((passed ? none : all) || std::time(nullptr) != now);
    }
  }
}

}  // namespace
}  // namespace tq::abi
