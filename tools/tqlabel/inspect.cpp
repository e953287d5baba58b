#include "inspect.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "input.h"
#include "schema_printer.h"

namespace tq::tool {
namespace {

// A label that has been read: where its parts lie, and the handle with its fields.
struct Label {
  Bytes file;
  Bytes whole;
  Bytes head_element;
  Bytes body;  // the whole element, or what is in the OCTET STRING
  std::optional<Bytes> padding;
  bool sealed = false;
  PeekedHead head;
  LabelOwner opened;  // none when the body is sealed
};

Bytes content_of(const der::Element& element) { return {element.content(), element.length}; }

std::size_t offset_behind(Bytes file, const der::Element& element) {
  return static_cast<std::size_t>(element.start - file.data()) + element.size();
}

// Splits the file; true when it has the elements of a label.
bool split(Bytes file, Label& label) {
  Outline parts;
  der::Element whole;
  const auto length = static_cast<std::uint32_t>(file.size());
  if (!outline(file.data(), length, parts) || !parts.has_body ||
      !der::read_outermost(file.data(), length, der::kSequence, whole)) {
    return false;
  }
  label.file = file;
  label.whole = file.first(offset_behind(file, whole));
  label.head_element = {parts.head.start, parts.head.size()};
  label.sealed = parts.body.tag() == der::kOctetString;
  label.body = label.sealed ? content_of(parts.body) : Bytes(parts.body.start, parts.body.size());
  if (!parts.has_padding) return true;
  const Bytes rest = label.whole.subspan(offset_behind(file, parts.body));
  der::Cursor in(rest.data(), rest.size());
  der::Element padding;
  if (!in.next(padding)) return false;
  label.padding = content_of(padding);
  return true;
}

// Reads the label in a file; the answer is what is wrong with it, or null.
const char* read_label(Bytes file, Label& label) {
  if (file.empty()) return "the file is empty";
  if (file[0] != der::kSequence) return "not a label: it does not begin with a SEQUENCE";
  if (!split(file, label)) return "not a label: no SEQUENCE of head and body, or cut short";
  if (!label.head.read(file.data(), static_cast<std::int64_t>(file.size()),
                       PeekedHead::Body::kRequired)) {
    return "the head does not decode, or its format version is not known";
  }
  if (label.sealed) return nullptr;
  TqLabel handle = nullptr;
  if (DecodeLabel(file.data(), static_cast<std::uint32_t>(file.size()), &handle) != 0) {
    return "the body does not decode";
  }
  label.opened.reset(handle);
  return nullptr;
}

std::string show_shape(const Label& label) {
  if (label.sealed) return label.padding ? "padded encrypted" : "encrypted";
  return label.padding ? "padded" : "plain";
}

std::string show_padding(Bytes padding) {
  const bool zero = std::ranges::all_of(padding, [](std::uint8_t octet) { return octet == 0; });
  return show_size(padding.size()) + (zero ? "" : ", not all of them zero");
}

void print_summary(Tree& tree, Label& label) {
  tree.line("shape", show_shape(label));
  tree.line("format version", quoted(bytes_of(label.head.head().versionText)));
  tree.line("size", show_size(label.whole.size()));
  tree.line("head size", show_size(label.head_element.size()));
  tree.line(label.sealed ? "encrypted body size" : "body size", show_size(label.body.size()));
  if (label.padding) tree.line("padding", show_padding(*label.padding));
  const std::size_t behind = label.file.size() - label.whole.size();
  if (behind != 0) tree.line("behind the label", show_size(behind));
}

void print_label(Tree& tree, Label& label) {
  print_summary(tree, label);
  const Scope scope = scope_of(label.head.label());
  SchemaPrinter printer(tree, scope);
  printer.element(kHead, "head", label.head.head());
  if (label.sealed) {
    tree.line("encrypted body", show_digest(label.body));
  } else {
    printer.element(kBody, "body", label.opened->body);
  }
}

Status complain(const std::string& path, std::string_view what, Status status) {
  fmt::print(stderr, "tqlabel: {}: {}\n", escaped_path(path), what);
  return status;
}

Status inspect_file(Tree& tree, const std::string& path) {
  std::vector<std::uint8_t> bytes;
  std::string error;
  if (!read_input(path, bytes, error)) return complain(path, error, Status::kUnreadable);
  Label label;
  const char* fault = read_label(bytes, label);
  if (fault != nullptr) return complain(path, fault, Status::kUndecodable);
  print_label(tree, label);
  return Status::kOk;
}

}  // namespace

Status inspect(const std::vector<std::string>& paths) {
  Tree tree(stdout);
  if (paths.size() == 1) return inspect_file(tree, paths.front());
  Status worst = Status::kOk;
  for (const std::string& path : paths) {
    const Tree::Branch inside = tree.branch(escaped_path(path));
    worst = std::max(worst, inspect_file(tree, path));
  }
  return worst;
}

}  // namespace tq::tool
