// Counts what each operation allocates. Prints JSON.

#include <cstdio>

#include "allocations.h"
#include "operations.h"

int main() try {
  using namespace tq::bench;
  const std::vector<Sample> labels = samples(Extent::kAll);
  const char* separator = "{";
  for (const Operation& operation : operations(labels, Extent::kAll)) {
    operation.run();  // what is made once and kept
    const Allocated allocated = allocated_by(operation.run);
    std::printf("%s\n  \"%s\": {\"allocations\": %zu, \"peak\": %zu}", separator,
                operation.name.c_str(), allocated.calls, allocated.peak);
    separator = ",";
  }
  std::printf("\n}\n");
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
