#ifndef TQLABEL_TOOL_LINT_RULES_H
#define TQLABEL_TOOL_LINT_RULES_H

#include <optional>

#include "lint/findings.h"

namespace tq::tool {

// Everything that there is to say of the label at the front of a file, in the order of its bytes.
// Takes linear time, but for sorting. What keeps a label from decoding is the only finding then.
[[nodiscard]] Findings lint(Bytes file);

// Its rules, by topic.
void check_element(const Place& place, Findings& out);
void check_fields(const Label& label, Findings& out);
void check_recipients(const Label& label, Findings& out);
void check_encoding(const Label& label, Findings& out);  // after the others

// For rules: "body.content.expiryTime". Nothing where there is no such element.
[[nodiscard]] std::optional<Place> place_at(const Label& label, std::string_view path);

// Bytes as what can be sorted.
inline std::string_view key_of(Bytes bytes) {
  return {static_cast<const char*>(static_cast<const void*>(bytes.data())), bytes.size()};
}

// Calls the function with the entries of a list, if it is there.
template <class Function>
void for_entries(const Label& label, std::string_view path, Function function) {
  const std::optional<Place> list = place_at(label, path);
  if (!list) return;
  std::size_t number = 0;
  for (const Item& entry : (*list)->children) {
    function(Place{child_path(list->path, entry, number++), &entry});
  }
}

}  // namespace tq::tool

#endif
