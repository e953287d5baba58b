#ifndef TQLABEL_TOOL_FORMAT_ITEM_H
#define TQLABEL_TOOL_FORMAT_ITEM_H

// A label as a tree of named elements, each where it lies in the file. Everything that shows,
// compares or checks a label works on this tree.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "asn1/der.h"
#include "base/failure.h"
#include "base/text.h"
#include "core/model/layout.h"

namespace tq::tool {

enum class Kind {
  kRecord,     // named children
  kList,       // children without names; none where NULL stands for it
  kName,       // a distinguished name; the children are its attributes
  kAttribute,  // a relative name of one attribute
  kValues,     // several values of one field; no element of its own
  kInteger,
  kBoolean,
  kTime,
  kText,
  kOctets,
  kNumber,  // an INTEGER of any length
  kObjectId,
  kBits,
  kSealed,  // the encrypted body
  kPadding,
  kElement,  // of a kind that the format leaves open
  kIgnored,  // an element behind the last one that is known
  kAbsent,   // left out
};

struct Item {
  std::string_view name = {};  // from the schema; empty for entries of a list
  Kind kind = Kind::kAbsent;
  der::Element element = {};  // of kAbsent and kValues there is none
  std::vector<Item> children = {};
  // Whether names and values say all of it. If not, only the bytes do: an attribute with more than
  // one pair, a marking that comes twice, logs under another tag.
  bool exact = true;

  [[nodiscard]] Bytes bytes() const { return {element.start, element.size()}; }
  // Of kInteger and kTime, whose elements have been read before.
  [[nodiscard]] std::uint32_t integer() const;
  [[nodiscard]] std::uint64_t seconds() const;
  [[nodiscard]] Bytes content() const { return {element.content(), element.length}; }
  // The child of that name, or null.
  [[nodiscard]] const Item* find(std::string_view child) const;
};

// What keeps bytes from being a label, and where.
struct Fault {
  enum class What { kNotDer, kMissing, kWrongType, kBadValue, kUnknownVersion };
  What what = What::kNotDer;
  std::string path = {};
  std::size_t at = 0;  // byte within the file
  std::string why = {};

  [[nodiscard]] Failure failure(const std::string& file) const;
};

struct Label {
  Bytes file;  // the label and perhaps what is behind it; must outlive the rest
  Item root;   // head, body, padding
  tq::Layout layout;
  bool sealed = false;  // the body is encrypted

  [[nodiscard]] Bytes bytes() const { return root.bytes(); }
  [[nodiscard]] const Item& head() const { return root.children[0]; }
  [[nodiscard]] const Item& body() const { return root.children[1]; }
  [[nodiscard]] const Item& padding() const { return root.children[2]; }
  [[nodiscard]] std::size_t offset_of(const Item& item) const {
    return static_cast<std::size_t>(item.element.start - file.data());
  }
};

// Splits the label at the front of a file. It succeeds exactly where the library decodes the label,
// or its head if the body is encrypted; otherwise the answer is what is wrong with it.
[[nodiscard]] std::optional<Fault> read_label(Bytes file, Label& label);

// The same; a fault is thrown as the failure of the file.
[[nodiscard]] Label label_in(Bytes bytes, const std::string& file);

// The same for a body that was decrypted from a label of this layout.
[[nodiscard]] std::optional<Fault> read_body(Bytes bytes, const tq::Layout& layout, Item& body);

// "PrintableString", "SEQUENCE", "[0]", ...
[[nodiscard]] std::string type_name(der::Octet tag);

// "body.logs[1]": the path of a child, given that of its parent. Entries are counted from 1.
[[nodiscard]] std::string child_path(const std::string& parent, const Item& child,
                                     std::size_t number);

// Calls the function with path and item for the item and all that is in it, parents first.
template <class Function>
void walk(const Item& item, Function function, const std::string& path = {}) {
  function(path, item);
  std::size_t number = 0;
  for (const Item& child : item.children) walk(child, function, child_path(path, child, number++));
}

}  // namespace tq::tool

#endif
