// The bounds of docs/security.md: what the entry points allocate for the inputs that cost most.

#include "abi/support.h"
#include "bounds/entry_points.h"
#include "unit/support/allocations.h"

namespace tq::abi {
namespace {

using bench::Call;
using bench::EntryPoint;
using bench::Gets;
using bench::kFixed;
using bench::WorstInput;
using test::NoLeaks;
using test::Peak;

std::size_t input_size() { return quick() ? 8U << 10 : 64U << 10; }

// Makes each call on each input and hands what it took to the check.
template <class Check>
void each_call(Check check) {
  const std::vector<WorstInput> inputs = bench::worst_inputs(input_size());
  for (const EntryPoint& entry : bench::entry_points()) {
    for (const WorstInput& input : inputs) {
      if (!entry.takes(input)) continue;
      const Call call = entry.prepare(input);
      if (!call) continue;
      SCOPED_TRACE(entry.name + ": " + input.name);
      const NoLeaks no_leaks;
      const Peak peak;
      EXPECT_EQ(call(), input.gets >= entry.needs);
      EXPECT_TRUE(no_leaks.hold());
      check(entry, input, peak);
    }
  }
}

TEST(Bounds, AreAskedOfInputsOfFullSize) {
  for (const WorstInput& input : bench::worst_inputs(input_size())) {
    if (input.name.starts_with("nothing")) continue;
    EXPECT_GE(input.bytes.size() + 64, input_size()) << input.name;
  }
}

TEST(Bounds, LiveBytesAreAtMostTheDocumentedMultipleOfTheInput) {
  each_call([](const EntryPoint& entry, const WorstInput& input, const Peak& peak) {
    EXPECT_LE(static_cast<double>(peak.bytes()),
              entry.peak * static_cast<double>(input.bytes.size()) + kFixed);
  });
}

TEST(Bounds, NoBlockIsLargerThanTheInput) {
  each_call([](const EntryPoint& /*entry*/, const WorstInput& input, const Peak& peak) {
    EXPECT_LE(peak.largest(), input.bytes.size() + kFixed);
  });
}

TEST(Bounds, InputsOfMalformedElementsGetNoMemory) {
  each_call([](const EntryPoint& /*entry*/, const WorstInput& input, const Peak& peak) {
    EXPECT_TRUE(input.gets != Gets::kNowhere || peak.bytes() <= kFixed) << peak.bytes();
  });
}

}  // namespace
}  // namespace tq::abi
