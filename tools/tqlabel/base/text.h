#ifndef TQLABEL_TOOL_BASE_TEXT_H
#define TQLABEL_TOOL_BASE_TEXT_H

// Texts from files, made fit to be shown: what a terminal would act on, what cannot be seen and
// what is no text becomes an escape, so that two texts that differ never look the same.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tq::tool {

using Bytes = std::span<const std::uint8_t>;

[[nodiscard]] inline Bytes bytes_of(std::string_view text) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): characters are octets here
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

[[nodiscard]] inline std::string_view characters_of(Bytes bytes) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): and octets compare as characters
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

enum class Encoding { kUtf8, kUtf16BigEndian };

// The text with escapes; a backslash goes before each of the characters of `specials`. Of a long
// text only the beginning is given, followed by a remark.
[[nodiscard]] std::string escaped(Bytes text, Encoding encoding, std::string_view specials);

[[nodiscard]] bool is_utf8(Bytes text);

// The escaped text within quotes, or "none" for an empty text.
[[nodiscard]] std::string quoted(Bytes text);

// A name of a file as it may stand in a message.
[[nodiscard]] std::string escaped_path(std::string_view path);

}  // namespace tq::tool

#endif
