#ifndef TQLABEL_TOOL_SEALED_FORMAT_H
#define TQLABEL_TOOL_SEALED_FORMAT_H

// The numbers of the sealed file; docs/sealed-file.md says what they are for.

#include <array>
#include <cstdint>
#include <string_view>

#include "format/handle.h"

namespace tq::tool {

inline constexpr std::string_view kVersion = "1.1.2";
inline constexpr std::string_view kCipher = "AES.256.CBC";

// The size of the label is a multiple of the unit. What it may be bounds the memory that a hostile
// file costs.
inline constexpr std::size_t kLabelUnit = 4096;
inline constexpr std::size_t kMostLabel = std::size_t{16} << 20;
inline constexpr std::uint32_t kContentUnit = 16;

enum Extension : std::uint32_t {
  kContentSum = 4097,  // length and SHA-256 of what was sealed
  kContentTag = 4098,  // authenticator of what it became
};

inline constexpr std::size_t kNumberSize = 8;

// Numbers stand with their most significant byte first.
inline std::array<std::uint8_t, kNumberSize> big_endian(std::uint64_t number) {
  std::array<std::uint8_t, kNumberSize> bytes = {};
  for (std::size_t i = bytes.size(); i-- > 0; number >>= 8) {
    bytes[i] = static_cast<std::uint8_t>(number);
  }
  return bytes;
}

inline std::uint64_t from_big_endian(const std::uint8_t* bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < kNumberSize; ++i) number = number << 8 | bytes[i];
  return number;
}

}  // namespace tq::tool

#endif
