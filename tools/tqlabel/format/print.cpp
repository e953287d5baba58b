#include "format/print.h"

#include <fmt/format.h>

#include <optional>

#include "format/certificate.h"
#include "format/values.h"

namespace tq::tool {
namespace {

std::string show_values(const Item& item) {
  std::string text;
  for (const Item& value : item.children) {
    if (!text.empty()) text += ", ";
    text += show_value(value);
  }
  return text;
}

std::string show_count(const Item& list) {
  const std::size_t count = list.children.size();
  return count == 0 ? "none" : fmt::format("{} {}", count, count == 1 ? "entry" : "entries");
}

// What an element of any kind holds; a certificate is shown as one by its caller.
std::string show_any(const Item& item) {
  const der::Octet tag = item.element.tag();
  if (tag == der::kObjectId) return show_object_id(item.content());
  return show_bytes(tag == der::kOctetString ? item.content() : item.bytes());
}

std::string show_place(const Item& item, const PrintOptions& options) {
  if (options.offsets_from == nullptr || item.element.start == nullptr) return {};
  return fmt::format("@0x{:X}+{}", item.element.start - options.offsets_from, item.element.size());
}

void print_certificate(Tree& tree, const Item& item) {
  const std::optional<Certificate> certificate = read_certificate(item.bytes());
  if (!certificate) return;
  tree.line("subject", certificate->subject);
  tree.line("issuer", certificate->issuer);
  tree.line("valid", certificate->not_before + " to " + certificate->not_after);
}

void print_named(Tree& tree, std::string_view name, const Item& item, const PrintOptions& options) {
  std::string line = show_value(item);
  const std::string place = show_place(item, options);
  if (!place.empty()) line += (line.empty() ? "" : "  ") + place;
  const Tree::Branch inside = line.empty() ? tree.branch(name) : tree.branch(name, line);
  if (item.kind == Kind::kElement) print_certificate(tree, item);
  if (item.kind != Kind::kRecord && item.kind != Kind::kList) return;
  std::size_t number = 0;
  for (const Item& child : item.children) {
    ++number;
    child.name.empty() ? print_named(tree, fmt::format("[{}]", number), child, options)
                       : print_named(tree, child.name, child, options);
  }
}

}  // namespace

std::string show_value(const Item& item) {
  switch (item.kind) {
    case Kind::kRecord:
      return {};
    case Kind::kList:
      return show_count(item);
    case Kind::kName:
      return show_name(item);
    case Kind::kAttribute:
      return show_attribute(item);
    case Kind::kValues:
      return show_values(item);
    case Kind::kInteger:
      return fmt::to_string(item.integer());
    case Kind::kBoolean:
      return item.content()[0] != 0 ? "yes" : "no";
    case Kind::kTime:
      return show_time(item.seconds());
    case Kind::kText:
      return quoted(item.content());
    case Kind::kOctets:
    case Kind::kNumber:
      return show_bytes(item.content());
    case Kind::kObjectId:
      return show_object_id(item.content());
    case Kind::kBits:
      return show_digest(item.content().subspan(1));
    case Kind::kSealed:
      return "encrypted, " + show_bytes(item.content());
    case Kind::kPadding:
      return show_padding(item.content());
    case Kind::kElement:
      return show_any(item);
    case Kind::kIgnored:
      return show_bytes(item.bytes());
    case Kind::kAbsent:
      return "absent";
  }
  return {};
}

void print(Tree& tree, const Item& item, const PrintOptions& options) {
  print_named(tree, item.name, item, options);
}

}  // namespace tq::tool
