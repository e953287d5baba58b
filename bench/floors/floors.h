#ifndef TQ_BENCH_FLOORS_FLOORS_H
#define TQ_BENCH_FLOORS_FLOORS_H

// The least that the work can cost: straight code for this one format.

#include "codec.h"
#include "floors/record.h"

namespace tq::bench::floors {

void* walk(Version version, std::span<const std::uint8_t> bytes);
void* block(Version version, std::span<const std::uint8_t> bytes);
void* own(Version version, std::span<const std::uint8_t> bytes);
std::size_t write(Version version, const void* decoded, std::span<std::uint8_t> buffer);

void release_nothing(Version version, void* decoded);
void release_blocks(Version version, void* decoded);
void release_fields(Version version, void* decoded);

}  // namespace tq::bench::floors

#endif
