#include "format/reader.h"

namespace tq::tool {
namespace {

// The version text stands second in every layout; it says how the rest is to be read.
Layout read_version(Reader& reader, der::Cursor label) {
  const PathStep head = reader.at("head");
  der::Cursor in = reader.enter(reader.take(der::kSequence, label));
  {
    const PathStep first = reader.at("label");
    reader.take(der::kPrintableString, in);
  }
  const PathStep second = reader.at("versionText");
  const der::Element text = reader.take(der::kPrintableString, in);
  TqLabelHandle version{};
  if (!read_version_text(view_of(text.content(), text.length, 0), version)) {
    reader.fail(Fault::What::kUnknownVersion, "no format version that is known", text);
  }
  return layout_of(version);
}

void read_elements(Bytes file, Label& label) {
  Reader reader(file.data(), {});
  if (file.empty()) reader.fail(Fault::What::kMissing, "empty");
  if (file[0] != der::kSequence) {
    reader.fail(Fault::What::kWrongType, "not a label: it does not begin with a SEQUENCE");
  }
  der::Cursor outside(file.data(), file.size());
  label.file = file;
  label.root = {.kind = Kind::kRecord, .element = reader.next(outside, "a SEQUENCE")};
  der::Cursor in = reader.enter(label.root.element);

  label.layout = read_version(reader, in);
  reader.set_layout(label.layout);
  reader.enter(label.root.element);
  const auto member = [&](std::string_view name, auto read) {
    const PathStep step = reader.at(name);
    label.root.children.push_back(read());
  };
  member("head", [&] { return reader.element(kHead, "head", in); });
  label.sealed = in.peek() == der::kOctetString;
  member("body", [&]() -> Item {
    if (!label.sealed) return reader.element(kBody, "body", in);
    return {.name = "body", .kind = Kind::kSealed, .element = reader.next(in, "a body")};
  });
  member("padding", [&]() -> Item {
    if (in.peek() != der::kOctetString) return {.name = "padding"};
    return {.name = "padding", .kind = Kind::kPadding, .element = reader.next(in, "padding")};
  });
  reader.ignored(label.root, in);
}

}  // namespace

std::optional<Fault> read_label(Bytes file, Label& label) {
  try {
    read_elements(file, label);
    return std::nullopt;
  } catch (Fault& fault) {
    return std::move(fault);
  }
}

std::optional<Fault> read_body(Bytes bytes, const Layout& layout, Item& body) {
  Reader reader(bytes.data(), {.layout = layout});
  try {
    const PathStep step = reader.at("body");
    der::Cursor in(bytes.data(), bytes.size());
    body = reader.element(kBody, "body", in);
    return std::nullopt;
  } catch (Fault& fault) {
    return std::move(fault);
  }
}

}  // namespace tq::tool
