#ifndef TQLABEL_TOOL_FORMAT_JSON_H
#define TQLABEL_TOOL_FORMAT_JSON_H

// Labels as JSON and back. An object has the fields of its record under the names of the schema:
//
//   INTEGER of 32 bits      number
//   BOOLEAN                 true or false
//   time                    "2026-11-22T22:58:25Z", or null for one that is not set
//   text                    string, or {"hex": "..."} where it is not UTF-8
//   octets, long INTEGER    string of hexadecimal digits; of a BIT STRING those of its whole octets
//   OBJECT IDENTIFIER       dotted number, or a name that the library knows
//   name                    list of {"type", "tag", "value"}, the value as a text
//   list                    list; [] is NULL on the wire
//   what is left out        null
//   what is behind the last known element of a record: "ignored", a list of elements
//
// {"der": "..."} may stand for any element and gives its bytes as they are; elements of which the
// format does not say the kind always come so.

#include <nlohmann/json.hpp>
#include <vector>

#include "format/item.h"

namespace tq::tool {

using Json = nlohmann::ordered_json;

inline constexpr const char* kLabelForm = "tqlabel/label/1";

// Head, body and padding, so that from_json() gives the same bytes.
[[nodiscard]] Json to_json(const Label& label);
[[nodiscard]] Json to_json(const Item& item);

// Reads JSON that is nested no deeper than a label is and has each key once.
[[nodiscard]] Json parse_json(Bytes text, const std::string& file);

// The label that the JSON describes. What it cannot be is a Failure with the JSON pointer to it.
// "form", where there is one, must be kLabelForm; "notes" is for readers and not looked at.
[[nodiscard]] std::vector<std::uint8_t> from_json(const Json& json, const std::string& file);

}  // namespace tq::tool

#endif
