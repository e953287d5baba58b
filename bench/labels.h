#ifndef TQ_BENCH_LABELS_H
#define TQ_BENCH_LABELS_H

// The sample labels. Their bytes are the same in every run, so that counts can be compared.

#include <cstdint>
#include <string>
#include <vector>

#include "codec.h"

namespace tq::bench {

struct Sample {
  std::string name;
  Version version;
  std::uint32_t entries;  // of its lists
  std::vector<std::uint8_t> bytes;
};

// Nobody but the owner; under 1 KB.
Sample small_label();
// Three recipients, a certificate, stamp, watermark, five logs, three extensions; about 6 KB.
Sample typical_label(Version version);
// 1,000 recipients in the body and 10,000 logs.
Sample large_label();
// A typical "1.1.1" label but for its logs.
Sample label_with_logs(std::uint32_t logs);

}  // namespace tq::bench

#endif
