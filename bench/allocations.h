#ifndef TQ_BENCH_ALLOCATIONS_H
#define TQ_BENCH_ALLOCATIONS_H

// Counts what is allocated, whoever asks for it: the malloc of a program that has allocations.cpp
// stands in front of the C library's.

#include <cstddef>
#include <functional>

namespace tq::bench {

struct Allocated {
  std::size_t calls = 0;
  std::size_t peak = 0;     // the most bytes that were live at once, beyond those that were before
  std::size_t largest = 0;  // block
};

Allocated allocated_by(const std::function<void()>& run);

}  // namespace tq::bench

#endif
