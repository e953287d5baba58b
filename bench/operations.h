#ifndef TQ_BENCH_OPERATIONS_H
#define TQ_BENCH_OPERATIONS_H

// What is measured, in time, instructions or memory: one operation on one sample label.

#include <functional>
#include <vector>

#include "labels.h"

namespace tq::bench {

// The samples of a measurement; the larger ones are left out where each run is costly.
enum class Extent { kAll, kQuick };
std::vector<Sample> samples(Extent extent);

struct Operation {
  std::string name;  // operation/label/codec
  const Sample* sample;
  std::function<void()> run;
};

// Each codec's decode (with release) and encode of each sample, and this library's size queries.
// The samples must outlive what is returned. Throws where a codec does not give back the bytes.
std::vector<Operation> operations(const std::vector<Sample>& samples, Extent extent);

}  // namespace tq::bench

#endif
