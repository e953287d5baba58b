#ifndef TQLABEL_TOOL_BASE_TEXT_TREE_H
#define TQLABEL_TOOL_BASE_TEXT_TREE_H

// Lines of "name: value", indented by their depth.

#include <fmt/color.h>

#include <cstdio>
#include <string_view>

namespace tq::tool {

class Tree {
 public:
  Tree(std::FILE* out, bool colored)
      : out_(out), name_(colored ? fmt::text_style(fmt::emphasis::bold) : fmt::text_style()) {}

  // What is printed while the branch lives stands one step deeper.
  class Branch {
   public:
    explicit Branch(Tree& tree) : tree_(tree) { ++tree_.depth_; }
    Branch(const Branch&) = delete;
    Branch& operator=(const Branch&) = delete;
    Branch(Branch&&) = delete;
    Branch& operator=(Branch&&) = delete;
    ~Branch() { --tree_.depth_; }

   private:
    Tree& tree_;
  };

  void line(std::string_view name, std::string_view value) {
    fmt::print(out_, "{:{}}{}: {}\n", "", depth_ * kStep, fmt::styled(name, name_), value);
  }
  [[nodiscard]] Branch branch(std::string_view name) {
    fmt::print(out_, "{:{}}{}:\n", "", depth_ * kStep, fmt::styled(name, name_));
    return Branch(*this);
  }
  [[nodiscard]] Branch branch(std::string_view name, std::string_view value) {
    line(name, value);
    return Branch(*this);
  }

 private:
  static constexpr int kStep = 2;

  std::FILE* out_;
  fmt::text_style name_;
  int depth_ = 0;
};

}  // namespace tq::tool

#endif
