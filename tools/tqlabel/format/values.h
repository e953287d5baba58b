#ifndef TQLABEL_TOOL_FORMAT_VALUES_H
#define TQLABEL_TOOL_FORMAT_VALUES_H

// The values of fields, as texts of one line. An empty value is "none" throughout.

#include "base/text.h"
#include "format/item.h"

namespace tq::tool {

[[nodiscard]] std::string show_size(std::size_t size);

// Length and SHA-256: for what is compared, not read.
[[nodiscard]] std::string show_digest(Bytes bytes);

// Hexadecimal, or the digest of what is too long for that.
[[nodiscard]] std::string show_bytes(Bytes bytes);

// ISO 8601 in UTC, or "not set".
[[nodiscard]] std::string show_time(std::uint64_t seconds);

// Name and dotted number of an identifier, given its content octets; of unknown ones the number.
[[nodiscard]] std::string show_object_id(Bytes octets);

[[nodiscard]] bool is_zero(Bytes bytes);

// How many octets of padding there are.
[[nodiscard]] std::string show_padding(Bytes padding);

// The attributes of a distinguished name in the order in which they are stored.
[[nodiscard]] std::string show_name(const Item& name);
[[nodiscard]] std::string show_attribute(const Item& attribute);

// Type and value of an attribute.
struct Attribute {
  Bytes type;
  der::Octet tag = 0;  // of the value
  Bytes value;
};
[[nodiscard]] Attribute attribute_of(const Item& attribute);

[[nodiscard]] std::string sha256_hex(Bytes bytes);

// Hexadecimal digits.
[[nodiscard]] std::string hexadecimal(Bytes bytes);

// The number of an identifier with dots, or an empty text where the octets are none.
[[nodiscard]] std::string dotted(Bytes octets);

// The library's own name for an identifier, or null.
[[nodiscard]] const char* known_name(Bytes octets);

}  // namespace tq::tool

#endif
