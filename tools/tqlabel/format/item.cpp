#include "format/item.h"

#include <fmt/format.h>

#include <algorithm>

namespace tq::tool {

const Item* Item::find(std::string_view child) const {
  const auto found = std::ranges::find(children, child, &Item::name);
  return found == children.end() ? nullptr : &*found;
}

std::uint32_t Item::integer() const {
  std::uint32_t value = 0;
  static_cast<void>(der::read_integer(element, value));
  return value;
}

std::uint64_t Item::seconds() const {
  std::uint64_t value = 0;
  static_cast<void>(der::read_time(element, value));
  return value;
}

Failure Fault::failure(const std::string& file) const {
  return {.status = Status::kMalformed,
          .why = why,
          .file = file,
          .field = path,
          .at = at,
          .advice = "tqlabel lint says more"};
}

Label label_in(Bytes bytes, const std::string& file) {
  Label label;
  const std::optional<Fault> fault = read_label(bytes, label);
  if (fault) throw fault->failure(file);
  return label;
}

std::string type_name(der::Octet tag) {
  switch (tag) {
    case der::kBoolean:
      return "BOOLEAN";
    case der::kInteger:
      return "INTEGER";
    case der::kBitString:
      return "BIT STRING";
    case der::kOctetString:
      return "OCTET STRING";
    case der::kNull:
      return "NULL";
    case der::kObjectId:
      return "OBJECT IDENTIFIER";
    case der::kUtf8String:
      return "UTF8String";
    case der::kPrintableString:
      return "PrintableString";
    case der::kIa5String:
      return "IA5String";
    case der::kGeneralizedTime:
      return "GeneralizedTime";
    case der::kBmpString:
      return "BMPString";
    case der::kSequence:
      return "SEQUENCE";
    case der::kSet:
      return "SET";
    default:
      break;
  }
  if ((tag & der::kClassBits) != (der::kContext0 & der::kClassBits)) {
    return fmt::format("type 0x{:02X}", tag);
  }
  return fmt::format("[{}]", tag & der::kNumberBits);
}

std::string child_path(const std::string& parent, const Item& child, std::size_t number) {
  if (child.name.empty()) return fmt::format("{}[{}]", parent, number + 1);
  return parent.empty() ? std::string(child.name) : fmt::format("{}.{}", parent, child.name);
}

}  // namespace tq::tool
