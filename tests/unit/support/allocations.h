#ifndef TQ_TESTS_SUPPORT_ALLOCATIONS_H
#define TQ_TESTS_SUPPORT_ALLOCATIONS_H

// The allocator pair of a test program, in front of the libraries' own. It counts, it fails on
// request, fills what it hands out and what it takes back with junk, and aborts the program when a
// block is not its own, was released before or was written past its end.

#include <gtest/gtest.h>

#include <cstddef>

namespace tq::test {

struct Allocations {
  std::size_t blocks = 0;  // live
  std::size_t bytes = 0;   // live
  std::size_t calls = 0;   // since the start of the program, failed ones included
};

[[nodiscard]] Allocations allocations();

// Fails the n-th allocation from now on, counted from 1, and no other, until the end of the scope.
// At most one at a time.
class FailNth {
 public:
  explicit FailNth(std::size_t n);
  FailNth(const FailNth&) = delete;
  FailNth& operator=(const FailNth&) = delete;
  ~FailNth();

  [[nodiscard]] bool happened() const;
};

// Whether exactly the blocks of the time of its making are live.
class NoLeaks {
 public:
  [[nodiscard]] bool hold() const {
    const Allocations now = allocations();
    return now.blocks == before_.blocks && now.bytes == before_.bytes;
  }

 private:
  Allocations before_ = allocations();
};

// The most that was allocated since it was made. At most one at a time.
class Peak {
 public:
  Peak();

  [[nodiscard]] std::size_t bytes() const;  // live at once, beyond those of the time of its making
  [[nodiscard]] std::size_t largest() const;  // block

 private:
  std::size_t before_ = allocations().bytes;
};

// Runs the attempt once for each of its allocations, with that one failing, and then once without
// a failure. The attempt answers whether it succeeded, which it must when nothing fails and must
// not otherwise, and leaves nothing allocated either way. Returns the number of allocations.
template <class Attempt>
std::size_t fail_each_allocation(Attempt attempt) {
  for (std::size_t n = 1;; ++n) {
    const NoLeaks no_leaks;
    const FailNth failure(n);
    const bool succeeded = attempt();
    EXPECT_EQ(succeeded, !failure.happened()) << "allocation " << n;
    EXPECT_TRUE(no_leaks.hold()) << "allocation " << n;
    if (!failure.happened() || ::testing::Test::HasFailure()) return n - 1;
  }
}

}  // namespace tq::test

#endif
