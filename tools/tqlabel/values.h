#ifndef TQLABEL_TOOL_VALUES_H
#define TQLABEL_TOOL_VALUES_H

// The values of fields, as texts of one line. An empty value is "none" throughout.

#include <tqlabel/label.h>

#include "text.h"

namespace tq::tool {

inline Bytes bytes_of(const ANYBUF& field) {
  return field.data == nullptr ? Bytes() : Bytes(field.data, field.length);
}

[[nodiscard]] std::string show_size(std::size_t size);

// Length and SHA-256: for what is compared, not read.
[[nodiscard]] std::string show_digest(Bytes bytes);

// Hexadecimal, or the digest of what is too long for that.
[[nodiscard]] std::string show_bytes(Bytes bytes);

// ISO 8601 in UTC, or "not set".
[[nodiscard]] std::string show_time(std::uint64_t seconds);

// Name and dotted number of an identifier, given its content octets; of unknown ones the number.
[[nodiscard]] std::string show_object_id(Bytes octets);

// An element of any kind, given with its header.
[[nodiscard]] std::string show_element(Bytes element);

// The attributes of a distinguished name in the order in which they are stored.
[[nodiscard]] std::string show_name(const X509Name& first);

}  // namespace tq::tool

#endif
