#include "base/failure.h"

#include <fmt/format.h>

#include <cstdio>

#include "base/text.h"

namespace tq::tool {

std::string message_of(const Failure& failure) {
  std::string text;
  if (!failure.file.empty()) text += escaped_path(failure.file) + ": ";
  text += escaped_path(failure.field);
  if (failure.at) {
    text += fmt::format("{}at byte 0x{:X}", failure.field.empty() ? "" : " ", *failure.at);
  }
  if (!failure.field.empty() || failure.at) text += ": ";
  text += failure.why;
  if (!failure.advice.empty()) text += "; " + failure.advice;
  return text;
}

void report(const Failure& failure) { fmt::print(stderr, "tqlabel: {}\n", message_of(failure)); }

}  // namespace tq::tool
