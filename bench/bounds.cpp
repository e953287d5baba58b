// Measures every entry point on every worst input of its form: time and memory, as JSON on standard
// output; under callgrind instructions instead, at two sizes. Fails where an entry point takes what
// it should refuse or refuses what it should take, which would measure nothing.

#include <time.h>
#include <valgrind/callgrind.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "allocations.h"
#include "bounds/entry_points.h"

namespace {

using namespace tq::bench;

// Thrice, since what disturbs one measurement may last as long as it.
const std::vector<std::size_t> kTimedSizes = {1 << 20, 1 << 20, 1 << 20};
const std::vector<std::size_t> kCountedSizes = {64 << 10, 256 << 10};
const bool kCounting = [] { return RUNNING_ON_VALGRIND != 0; }();
constexpr double kBatch = 1e6;  // ns, so that the clock does not count
constexpr int kBatches = 7;

// While instructions are counted, each block comes from the front of this room and none is taken
// back: what the C library does with released blocks hangs on how many there are and were.
alignas(std::max_align_t) std::byte room[64 << 20];
constinit std::size_t room_used = 0;

// Of this thread only, since other programs run beside it.
double now() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

double batch(const Call& call, int runs) {
  const double start = now();
  for (int i = 0; i < runs; ++i) call();
  return now() - start;
}

// The least of several batches: what disturbs only adds.
double nanoseconds(const Call& call) {
  int runs = 1;
  double time = batch(call, runs);
  for (; time < kBatch && runs < 1 << 20; time = batch(call, runs)) runs *= 2;
  for (int i = 0; i < kBatches; ++i) time = std::min(time, batch(call, runs));
  return time / runs;
}

void count_instructions(const std::string& name, const Call& call) {
  CALLGRIND_START_INSTRUMENTATION;
  CALLGRIND_ZERO_STATS;
  call();
  CALLGRIND_DUMP_STATS_AT(name.c_str());
  CALLGRIND_STOP_INSTRUMENTATION;
}

void print_measured(const std::string& name, const EntryPoint& entry, const WorstInput& input,
                    const Call& call) {
  static const char* separator = "[";
  const Allocated allocated = allocated_by([&] { call(); });
  std::printf("%s\n{\"name\": \"%s\", \"taken\": %s, \"bytes\": %zu, \"ns\": %.0f, ", separator,
              name.c_str(), input.gets >= entry.needs ? "true" : "false", input.bytes.size(),
              nanoseconds(call));
  std::printf("\"peak\": %zu, \"largest\": %zu, \"most\": %g}", allocated.peak, allocated.largest,
              entry.peak);
  separator = ",";
}

void measure(const EntryPoint& entry, const WorstInput& input, std::size_t size) {
  room_used = 0;
  const Call call = entry.prepare(input);
  if (!call) return;
  const std::string name = entry.group + '|' + entry.name + '|' + input.name + '|' +
                           std::to_string(input.form) + '|' + std::to_string(size);
  if (call() != (input.gets >= entry.needs)) throw std::runtime_error(name + ": unexpected answer");
  if (kCounting) {
    count_instructions(name, call);
  } else {
    print_measured(name, entry, input, call);
  }
}

}  // namespace

extern "C" {

void* Asn1Malloc(std::size_t size) {
  if (!kCounting) return std::malloc(size);
  constexpr std::size_t kAlign = alignof(std::max_align_t);
  if (size > sizeof room - room_used) return nullptr;
  void* const block = room + room_used;
  room_used += (size + kAlign) / kAlign * kAlign;  // never nothing
  return block;
}

void Asn1Free(void* block) {
  if (!kCounting) std::free(block);
}

}  // extern "C"

int main() try {
  const std::vector<EntryPoint> entries = entry_points();
  for (const std::size_t size : kCounting ? kCountedSizes : kTimedSizes) {
    const std::vector<WorstInput> inputs = worst_inputs(size);
    for (const EntryPoint& entry : entries) {
      for (const WorstInput& input : inputs) {
        if (entry.takes(input)) measure(entry, input, size);
      }
    }
  }
  if (!kCounting) std::printf("\n]\n");
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
