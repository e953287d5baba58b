#ifndef TQLABEL_TOOL_COMMANDS_EACH_FILE_H
#define TQLABEL_TOOL_COMMANDS_EACH_FILE_H

// Commands that take several files.

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "base/failure.h"
#include "base/text.h"

namespace tq::tool {

// A line that says how far it has come, for who waits at a terminal and does not see the output.
class ProgressLine {
 public:
  explicit ProgressLine(std::size_t total)
      : total_(total),
        is_shown_(total > 1 && ::isatty(STDERR_FILENO) == 1 && ::isatty(STDOUT_FILENO) != 1) {}
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ProgressLine(ProgressLine&&) = delete;
  ProgressLine& operator=(ProgressLine&&) = delete;
  ~ProgressLine() { clear(); }

  void next(const std::string& path) {
    ++done_;
    if (is_shown_) fmt::print(stderr, "\r[{}/{}] {}\x1B[K", done_, total_, escaped_path(path));
  }
  void clear() const {
    if (is_shown_) fmt::print(stderr, "\r\x1B[K");
  }

 private:
  std::size_t total_;
  std::size_t done_ = 0;
  bool is_shown_;
};

// Calls a function with each path. A file that fails is reported, and of all the worst status
// counts.
template <class Function>
[[nodiscard]] Status for_each_file(const std::vector<std::string>& paths, Function function) {
  ProgressLine progress(paths.size());
  Status worst = Status::kYes;
  for (const std::string& path : paths) {
    progress.next(path);
    try {
      worst = std::max(worst, function(path));
    } catch (const Failure& failure) {
      progress.clear();
      report(failure);
      worst = std::max(worst, failure.status);
    }
  }
  return worst;
}

}  // namespace tq::tool

#endif
