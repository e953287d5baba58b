#ifndef TQLABEL_TOOL_BASE_PATH_STEP_H
#define TQLABEL_TOOL_BASE_PATH_STEP_H

#include <string>
#include <string_view>

namespace tq::tool {

// Lengthens a path for as long as it lives.
class PathStep {
 public:
  PathStep(std::string& path, std::string_view more) : path_(path), length_(path.size()) {
    path += more;
  }
  PathStep(const PathStep&) = delete;
  PathStep& operator=(const PathStep&) = delete;
  PathStep(PathStep&&) = delete;
  PathStep& operator=(PathStep&&) = delete;
  ~PathStep() { path_.resize(length_); }

 private:
  std::string& path_;
  std::size_t length_;
};

}  // namespace tq::tool

#endif
