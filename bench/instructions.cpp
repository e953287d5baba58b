// Runs each operation once between two marks of callgrind, which counts it by name: run it under
// valgrind --tool=callgrind --instr-atstart=no.

#include <valgrind/callgrind.h>

#include <cstdio>

#include "operations.h"

int main() try {
  using namespace tq::bench;
  const std::vector<Sample> labels = samples(Extent::kQuick);
  for (const Operation& operation : operations(labels, Extent::kQuick)) {
    for (int i = 0; i < 3; ++i) operation.run();  // symbols bound, free lists filled
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    operation.run();
    CALLGRIND_DUMP_STATS_AT(operation.name.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
  }
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
