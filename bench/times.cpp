// Times, by Google Benchmark; run it with random interleaving, so that what disturbs the machine
// disturbs all alike.

#include <benchmark/benchmark.h>

#include <cstdio>

#include "fields.h"
#include "operations.h"

int main(int argc, char** argv) try {
  using namespace tq::bench;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  const std::vector<Sample> labels = samples(Extent::kAll);
  const std::vector<Operation> timed = operations(labels, Extent::kAll);
  for (const Operation& operation : timed) {
    benchmark::RegisterBenchmark(operation.name.c_str(), [&operation](benchmark::State& state) {
      for (auto _ : state) operation.run();
      state.counters["bytes"] = static_cast<double>(operation.sample->bytes.size());
      state.counters["entries"] = operation.sample->entries;
    });
  }
  register_fields();
  benchmark::RunSpecifiedBenchmarks();
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
