#ifndef TQ_ACCESS_COPY_H
#define TQ_ACCESS_COPY_H

// Between the fields of records and the pointer and length pairs of caller records.

#include "access/field.h"

namespace tq {

// A copy of a field's bytes for the caller, with a zero byte behind them that the length does not
// count; null when there is no memory.
[[nodiscard]] inline std::uint8_t* duplicate(const ANYBUF& field) {
  auto* bytes = static_cast<std::uint8_t*>(Asn1Malloc(std::size_t{field.length} + 1));
  if (bytes == nullptr) return nullptr;
  if (field.length != 0) std::memcpy(bytes, field.data, field.length);
  bytes[field.length] = 0;
  return bytes;
}

// Copies a field that is there into the caller's buffer, whose size is not known, or into a new one
// where the caller has none. A field that is not there changes nothing.
template <class Byte, class Length>
[[nodiscard]] bool copy_to_caller(const ANYBUF& field, Byte*& buffer, Length& length) {
  if (field.data == nullptr) return true;
  if (buffer == nullptr) {
    buffer = static_cast<Byte*>(static_cast<void*>(duplicate(field)));
    if (buffer == nullptr) return false;
  } else {
    std::memcpy(buffer, field.data, field.length);
  }
  length = static_cast<Length>(field.length);
  return true;
}

// Copies without a capacity, for callers who know the size; without a buffer only the length.
inline void copy_unchecked(const ANYBUF& field, std::uint8_t* buffer, std::uint32_t& length) {
  if (buffer != nullptr && field.length != 0) std::memcpy(buffer, field.data, field.length);
  length = field.length;
}

// A text is stored with its terminator, a null one as an empty field.
[[nodiscard]] inline bool replace_text(ANYBUF& field, const char* text) {
  return replace(field, text, text == nullptr ? 0 : std::strlen(text) + 1, der::kPrintableString);
}

template <class Byte>
void free_buffer(Byte*& buffer) {
  Asn1Free(buffer);
  buffer = nullptr;
}

}  // namespace tq

#endif
