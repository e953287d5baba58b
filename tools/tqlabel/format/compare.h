#ifndef TQLABEL_TOOL_FORMAT_COMPARE_H
#define TQLABEL_TOOL_FORMAT_COMPARE_H

// What differs between two labels, field by field.

#include "format/item.h"

namespace tq::tool {

struct Change {
  std::string path;              // in the second label; of what is gone, in the first
  const Item* before = nullptr;  // null for what has come
  const Item* after = nullptr;   // null for what has gone
};

// Entries of lists are matched by what they are about: recipient, type, signer. A list in another
// order, with nothing else to say of it, is a change of the list.
[[nodiscard]] std::vector<Change> compare(const Item& before, const Item& after);

}  // namespace tq::tool

#endif
