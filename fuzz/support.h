#ifndef TQ_FUZZ_SUPPORT_H
#define TQ_FUZZ_SUPPORT_H

#include <tqlabel/label.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace tq::fuzz {

using Bytes = std::string;  // has a zero behind it, as the buffers that the library makes

inline std::uint8_t* u8(Bytes& bytes) { return reinterpret_cast<std::uint8_t*>(bytes.data()); }
inline const std::uint8_t* u8(const Bytes& bytes) {
  return reinterpret_cast<const std::uint8_t*>(bytes.data());
}
inline std::uint32_t size32(const Bytes& bytes) { return static_cast<std::uint32_t>(bytes.size()); }

inline constexpr const char* kVersions[] = {"6.0", "1.1", "1.1.1", "1.1.2"};

inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

struct LabelFreed {
  void operator()(TqLabel label) const { FreeHandleLabel(label); }
};
using Label = std::unique_ptr<std::remove_pointer_t<TqLabel>, LabelFreed>;

inline Label make_label(const Bytes& version) {
  Label label(GetHandleLabel());
  require(GLSetVersion(label.get(), u8(version), size32(version)) == 0, "a version is stored");
  return label;
}
inline Label decode(const Bytes& der) {
  TqLabel label = nullptr;
  require(DecodeLabel(u8(der), size32(der), &label) == 0, "what was encoded decodes");
  return Label(label);
}

// A block of this very size, so that the sanitizer sees a byte too many.
inline auto block(std::size_t size) { return std::make_unique<std::uint8_t[]>(size); }

// Asks for the length, then for the bytes, and with too little room for them, too.
template <class Call>
std::optional<Bytes> fetch(Call call) {
  std::uint32_t size = 0;
  if (call(nullptr, &size) != 0) return std::nullopt;
  const auto room = block(size);
  std::uint32_t length = size;
  require(call(room.get(), &length) == 0 && length == size, "size query and fill agree");
  if (size != 0) {
    const std::int32_t result = call(block(--length).get(), &length);
    require(result == -1 && length == size - 1, "a short buffer fails and leaves the length");
  }
  return Bytes(room.get(), room.get() + size);
}
using Getter = std::int32_t (*)(TqLabel, std::uint8_t*, std::uint32_t*);
inline std::optional<Bytes> get(TqLabel label, Getter getter) {
  return fetch([&](std::uint8_t* to, std::uint32_t* size) { return getter(label, to, size); });
}

// A getter of an 8-bit length as one of 32 bits.
template <class Call>
std::int32_t widened(Call call, std::uint32_t* length) {
  auto narrow = static_cast<std::uint8_t>(*length);
  const std::int32_t result = call(&narrow);
  if (result == 0) *length = narrow;
  return result;
}
template <std::int32_t (*kGet)(TqLabel, std::uint8_t*, std::uint8_t*)>
std::int32_t wide(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  return widened([&](std::uint8_t* narrow) { return kGet(label, buffer, narrow); }, length);
}

}  // namespace tq::fuzz

#endif
