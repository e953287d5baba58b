#ifndef TQLABEL_TOOL_FORMAT_PARSE_H
#define TQLABEL_TOOL_FORMAT_PARSE_H

// Values from texts that people write. Each says whether the text is one.

#include <cstdint>
#include <string_view>
#include <vector>

namespace tq::tool {

[[nodiscard]] bool from_hexadecimal(std::string_view digits, std::vector<std::uint8_t>& bytes);

// A dotted number, or a name that the library knows, to the content octets of an identifier.
[[nodiscard]] bool from_object_id(std::string_view text, std::vector<std::uint8_t>& octets);

// "2026-11-22T22:58:25Z", or "2026-11-22" for its first second, to seconds since 1970.
[[nodiscard]] bool parse_time(std::string_view text, std::uint64_t& seconds);

}  // namespace tq::tool

#endif
