#include "lint/rules.h"

namespace tq::tool {
namespace {

Code code_of(Fault::What what) {
  switch (what) {
    case Fault::What::kNotDer:
      return Code::kNotDer;
    case Fault::What::kMissing:
      return Code::kMissing;
    case Fault::What::kWrongType:
      return Code::kWrongType;
    case Fault::What::kBadValue:
      return Code::kBadValue;
    case Fault::What::kUnknownVersion:
      return Code::kVersion;
  }
  return Code::kNotDer;
}

}  // namespace

std::optional<Place> place_at(const Label& label, std::string_view path) {
  Place place{std::string(path), &label.root};
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('.'), path.size());
    place.item = place->find(path.substr(0, end));
    if (place.item == nullptr || place->element.start == nullptr) return std::nullopt;
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return place;
}

Findings lint(Bytes file) {
  Findings out(file);
  Label label;
  if (std::optional<Fault> fault = read_label(file, label)) {
    out.add(code_of(fault->what), fault->at, std::move(fault->path), std::move(fault->why));
    return out;
  }
  walk(label.root, [&](const std::string& path, const Item& item) {
    if (item.element.start != nullptr) check_element({path, &item}, out);
  });
  check_fields(label, out);
  check_recipients(label, out);
  check_encoding(label, out);
  out.sort();
  return out;
}

}  // namespace tq::tool
