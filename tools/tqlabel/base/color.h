#ifndef TQLABEL_TOOL_BASE_COLOR_H
#define TQLABEL_TOOL_BASE_COLOR_H

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace tq::tool {

enum class Color { kAuto, kAlways, kNever };

// Whether what goes there is to be coloured: if nobody has said so, a terminal is, unless the
// environment has NO_COLOR (https://no-color.org).
[[nodiscard]] inline bool is_colored(Color color, std::FILE* out) {
  if (color != Color::kAuto) return color == Color::kAlways;
  return std::getenv("NO_COLOR") == nullptr && ::isatty(::fileno(out)) == 1;
}

}  // namespace tq::tool

#endif
