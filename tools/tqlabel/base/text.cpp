#include "base/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace tq::tool {
namespace {

// More of one text than a reader would read; a hostile file may bring gigabytes.
constexpr std::size_t kShownBytes = 1024;

struct Character {
  std::uint32_t code = 0;
  std::size_t length = 0;  // in the text; 0 where the bytes are no character
};

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

// Controls of both kinds, what changes the direction of writing, and what has no width.
constexpr Range kHidden[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0xAD, 0xAD},
                             {0x61C, 0x61C},   {0x180E, 0x180E}, {0x200B, 0x200F},
                             {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFE00, 0xFE0F},
                             {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE01EF}};

bool is_hidden(std::uint32_t code) {
  return std::ranges::any_of(
      kHidden, [&](const Range& range) { return range.first <= code && code <= range.last; });
}

bool is_surrogate(std::uint32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

Character utf8_character(Bytes text) {
  constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const std::uint32_t first = text[0];
  if (first < 0x80) return {first, 1};
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC0 || first > 0xF4 || text.size() < length) return {};
  std::uint32_t code = first & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((text[i] & 0xC0) != 0x80) return {};
    code = code << 6 | (text[i] & 0x3FU);
  }
  if (code < kSmallest[length] || code > 0x10FFFF || is_surrogate(code)) return {};
  return {code, length};
}

std::uint32_t utf16_unit(Bytes text) {
  return static_cast<std::uint32_t>(text[0]) << 8 | std::uint32_t{text[1]};
}

Character utf16_character(Bytes text) {
  if (text.size() < 2) return {};
  const std::uint32_t high = utf16_unit(text);
  if (!is_surrogate(high)) return {high, 2};
  if (high >= 0xDC00 || text.size() < 4) return {};
  const std::uint32_t low = utf16_unit(text.subspan(2));
  if (low < 0xDC00 || low > 0xDFFF) return {};
  return {0x10000 + ((high - 0xD800) << 10 | (low - 0xDC00)), 4};
}

void append_utf8(std::string& out, std::uint32_t code) {
  const auto put = [&](std::uint32_t octet) { out += static_cast<char>(octet); };
  if (code < 0x80) return put(code);
  const int following = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
  put((0xFF00U >> (following + 1) & 0xFFU) | code >> (6 * following));
  for (int i = following; i-- > 0;) put(0x80 | (code >> (6 * i) & 0x3F));
}

void append_character(std::string& out, std::uint32_t code, std::string_view specials) {
  if (code >= 0x80 && is_hidden(code)) {
    fmt::format_to(std::back_inserter(out), "\\u{{{:x}}}", code);
  } else if (is_hidden(code)) {
    fmt::format_to(std::back_inserter(out), "\\x{:02x}", code);
  } else {
    if (code < 0x80 && specials.find(static_cast<char>(code)) != specials.npos) out += '\\';
    append_utf8(out, code);
  }
}

}  // namespace

std::string escaped(Bytes text, Encoding encoding, std::string_view specials) {
  std::string out;
  std::size_t at = 0;
  while (at < std::min(text.size(), kShownBytes)) {
    const Bytes rest = text.subspan(at);
    const Character character =
        encoding == Encoding::kUtf8 ? utf8_character(rest) : utf16_character(rest);
    if (character.length == 0) {
      fmt::format_to(std::back_inserter(out), "\\x{:02x}", rest[0]);
    } else {
      append_character(out, character.code, specials);
    }
    at += std::max<std::size_t>(character.length, 1);
  }
  if (at < text.size()) {
    fmt::format_to(std::back_inserter(out), "\\... ({} of {} bytes)", at, text.size());
  }
  return out;
}

bool is_utf8(Bytes text) {
  while (!text.empty()) {
    const std::size_t length = utf8_character(text).length;
    if (length == 0) return false;
    text = text.subspan(length);
  }
  return true;
}

std::string quoted(Bytes text) {
  return text.empty() ? "none" : fmt::format("\"{}\"", escaped(text, Encoding::kUtf8, "\"\\"));
}

std::string escaped_path(std::string_view path) {
  return escaped(bytes_of(path), Encoding::kUtf8, "\\");
}

}  // namespace tq::tool
