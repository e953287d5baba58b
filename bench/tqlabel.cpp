#include <tqlabel/label.h>

#include "codec.h"

namespace tq::bench {
namespace {

void* decode(Version /*version*/, std::span<const std::uint8_t> label) {
  TqLabel decoded = nullptr;
  const auto length = static_cast<std::uint32_t>(label.size());
  return DecodeLabel(label.data(), length, &decoded) == 0 ? decoded : nullptr;
}

void release(Version /*version*/, void* decoded) { FreeHandleLabel(static_cast<TqLabel>(decoded)); }

std::size_t encode(Version /*version*/, const void* decoded, std::span<std::uint8_t> buffer) {
  auto* const label = static_cast<TqLabel>(const_cast<void*>(decoded));
  auto length = static_cast<std::uint32_t>(buffer.size());
  return EncodeLabel(label, buffer.data(), &length) == 0 ? length : 0;
}

}  // namespace

const Codec kTqlabel = {"tqlabel", decode, release, encode};

}  // namespace tq::bench
