// Random calls from a few seeds. A failure names its seed and step; TQLABEL_SEED=N replays that
// seed.

#include "abi/random_calls.h"

namespace tq::abi {
namespace {

constexpr std::uint32_t kStepsPerSeed = 200;
constexpr std::uint32_t kSeeds = 6;

class RandomCalls : public testing::TestWithParam<const char*> {};

TEST_P(RandomCalls, LeaveInALabelWhatTheirModelHolds) {
  const char* const asked = std::getenv("TQLABEL_SEED");
  const std::uint32_t first = asked == nullptr ? 1 : static_cast<std::uint32_t>(std::atoi(asked));
  const std::uint32_t seeds = asked != nullptr || quick() ? 1 : kSeeds;
  for (std::uint32_t seed = first; seed < first + seeds; ++seed) {
    Driver driver(GetParam(), Choices(seed));
    for (std::uint32_t step = 0; step < kStepsPerSeed; ++step) {
      SCOPED_TRACE("TQLABEL_SEED=" + std::to_string(seed) + ", step " + std::to_string(step));
      driver.step();
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EachVersion, RandomCalls, testing::ValuesIn(kVersions));

}  // namespace
}  // namespace tq::abi
