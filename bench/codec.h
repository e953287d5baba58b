#ifndef TQ_BENCH_CODEC_H
#define TQ_BENCH_CODEC_H

// What the benchmarks compare: ways to read a label into memory and to write it back.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tq::bench {

enum class Version { k60, k111, k112 };

// Functions that a codec does not have are null. Each codec is one object of static storage.
struct Codec {
  std::string_view name;
  // Reads a label into whatever the codec makes of one, or gives null.
  void* (*decode)(Version version, std::span<const std::uint8_t> label);
  void (*release)(Version version, void* decoded);
  // Writes what was decoded into the buffer and gives the bytes written, or 0.
  std::size_t (*encode)(Version version, const void* decoded, std::span<std::uint8_t> buffer);
};

// This library, through its public interface.
extern const Codec kTqlabel;

// What users would pick instead, each working from docs/label.asn1.
extern const Codec kOpenssl;
extern const Codec kTasn1;
extern const Codec kAsn1c;

// The least that the work can cost: code written by hand for this one format.
extern const Codec kWalk;   // passes over all elements once and keeps nothing: decode only
extern const Codec kBlock;  // one block for the label's bytes and one for each list entry
extern const Codec kOwn;    // that, and one block for each byte field

inline constexpr const Codec* kGeneral[] = {&kOpenssl, &kTasn1, &kAsn1c};
inline constexpr const Codec* kFloors[] = {&kWalk, &kBlock, &kOwn};

}  // namespace tq::bench

#endif
