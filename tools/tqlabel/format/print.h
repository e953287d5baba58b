#ifndef TQLABEL_TOOL_FORMAT_PRINT_H
#define TQLABEL_TOOL_FORMAT_PRINT_H

// Items as text.

#include "base/text_tree.h"
#include "format/item.h"

namespace tq::tool {

// One line that says what the item holds; of records and lists how many entries.
[[nodiscard]] std::string show_value(const Item& item);

struct PrintOptions {
  const std::uint8_t* offsets_from = nullptr;  // the file, to add where each element lies
};

// The item and all that is in it.
void print(Tree& tree, const Item& item, const PrintOptions& options);

}  // namespace tq::tool

#endif
