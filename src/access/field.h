#ifndef TQ_ACCESS_FIELD_H
#define TQ_ACCESS_FIELD_H

// The rules that all field accessors share. A field is named by a function from a label to a
// reference; the accessors themselves are one line each.

#include "asn1/der.h"
#include "core/model/buffer.h"
#include "core/model/chain.h"
#include "core/model/records.h"

namespace tq {

// What an 8-bit argument is, whatever the register holds above it.
constexpr std::uint8_t low8(std::uint32_t value) { return static_cast<std::uint8_t>(value); }

template <class FieldOf, class Value>
[[nodiscard]] std::int32_t set_value(TqLabel label, FieldOf field_of, Value value) {
  if (label == nullptr) return -1;
  field_of(*label) = value;
  return 0;
}

template <class FieldOf, class Value>
[[nodiscard]] std::int32_t get_value(TqLabel label, FieldOf field_of, Value* value) {
  if (label == nullptr || value == nullptr) return -1;
  *value = static_cast<Value>(field_of(*label));
  return 0;
}

template <class FieldOf>
[[nodiscard]] std::int32_t set_bytes(TqLabel label, FieldOf field_of, der::Octet tag,
                                     const std::uint8_t* bytes, std::uint32_t length) {
  if (label == nullptr || bytes == nullptr) return -1;
  return replace(field_of(*label), bytes, length, der::type_word(tag)) ? 0 : -1;
}

// For the fields that hold 1 to 128 bytes.
template <class FieldOf>
[[nodiscard]] std::int32_t set_text(TqLabel label, FieldOf field_of, der::Octet tag,
                                    const std::uint8_t* bytes, std::uint32_t length) {
  const std::uint8_t counted = low8(length);
  if (counted == 0 || counted > kTextLimit) return -1;
  return set_bytes(label, field_of, tag, bytes, counted);
}

template <class FieldOf, class Length>
[[nodiscard]] std::int32_t get_bytes(TqLabel label, FieldOf field_of, std::uint8_t* buffer,
                                     Length* length) {
  return label == nullptr ? -1 : copy_out(field_of(*label), buffer, length);
}

template <class Record>
[[nodiscard]] std::int32_t get_count(const Record* first, std::uint32_t* answer) {
  if (answer == nullptr) return -1;
  *answer = count(first);
  return 0;
}

}  // namespace tq

#endif
