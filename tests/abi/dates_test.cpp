// The three deadlines around the present.

#include <ctime>

#include "abi/records.h"

namespace tq::abi {
namespace {

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

TEST(Dates, OfAnEmptyLabelNeverPassAndNullHandlesFail) {
  const Label label;
  for (const auto check : {CheckLabelDate, CheckAbolishDate, CheckDestroyDate}) {
    EXPECT_EQ(check(label), 0);
    EXPECT_EQ(check(nullptr), -1);
  }
  EXPECT_EQ(AbolishSF(nullptr), -1);
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
