// Bytes as calls of the interface, which must leave in a label what their model holds.

#include <cstdlib>

#include "abi/random_calls.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tq::abi;
  if (size == 0) return 0;
  Driver driver(kVersions[data[0] % std::size(kVersions)], Choices({data + 1, size - 1}));
  while (!driver.used_up()) {
    driver.step();
    // Outside of a test, an expectation that failed has only been printed.
    if (testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed()) std::abort();
  }
  return 0;
}
