#ifndef TQLABEL_TOOL_LINT_FINDINGS_H
#define TQLABEL_TOOL_LINT_FINDINGS_H

// What lint has found in one label.

#include <algorithm>
#include <map>
#include <vector>

#include "format/item.h"
#include "lint/codes.h"

namespace tq::tool {

// An item where it stands.
struct Place {
  std::string path;
  const Item* item = nullptr;

  [[nodiscard]] const Item& operator*() const { return *item; }
  [[nodiscard]] const Item* operator->() const { return item; }
};

struct Finding {
  std::size_t at = 0;  // byte within the file
  std::string path;
  Code code = Code::kNotDer;
  std::string message;
};

class Findings {
 public:
  // Of one code and label no more are kept, so that a hostile label does not drown the rest.
  static constexpr std::size_t kMost = 100;

  explicit Findings(Bytes file) : file_(file) {}

  void add(Code code, std::size_t at, std::string path, std::string message) {
    if (++counts_[code] <= kMost) list_.push_back({at, std::move(path), code, std::move(message)});
  }
  void add(Code code, const Place& place, const der::Octet* at, std::string message) {
    add(code, static_cast<std::size_t>(at - file_.data()), place.path, std::move(message));
  }
  void add(Code code, const Place& place, std::string message) {
    add(code, place, place->element.start, std::move(message));
  }

  [[nodiscard]] bool has(Code code) const { return counts_.contains(code); }
  [[nodiscard]] const std::vector<Finding>& list() const { return list_; }
  // How many there are of each code, those that were not kept included.
  [[nodiscard]] const std::map<Code, std::size_t>& counts() const { return counts_; }

  void sort() {
    std::ranges::stable_sort(list_, {}, [](const Finding& f) { return std::pair(f.at, f.code); });
  }

 private:
  Bytes file_;
  std::vector<Finding> list_;
  std::map<Code, std::size_t> counts_;
};

}  // namespace tq::tool

#endif
