// What the libraries share between labels is nothing: run this under ThreadSanitizer.

#include <latch>
#include <thread>

#include "abi/random_calls.h"

namespace tq::abi {
namespace {

TEST(DistinctLabels, AreUsedFromDistinctThreadsWithoutLocks) {
  constexpr std::uint32_t kThreads = 8;
  constexpr int kSteps = 1000;
  std::latch start(kThreads);  // without it the first may be done before the last begins
  std::vector<std::thread> threads;
  for (std::uint32_t seed = 0; seed < kThreads; ++seed) {
    threads.emplace_back([seed, &start] {
      Driver driver(kVersions[seed % std::size(kVersions)], Choices(seed));
      start.arrive_and_wait();
      for (int step = 0; step < kSteps; ++step) driver.step();
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace tq::abi
