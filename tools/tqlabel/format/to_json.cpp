#include <fmt/format.h>

#include "format/json.h"
#include "format/values.h"

namespace tq::tool {
namespace {

Json raw(const Item& item) { return {{"der", hexadecimal(item.bytes())}}; }

// A text that is not UTF-8 could not come back as it was.
Json text_json(Bytes text) {
  if (is_utf8(text)) return std::string(text.begin(), text.end());
  return {{"hex", hexadecimal(text)}};
}

Json time_json(std::uint64_t seconds) { return seconds == 0 ? Json() : Json(show_time(seconds)); }

Json object_id_json(const Item& item) {
  if (item.element.length == 0) return "";
  const std::string number = dotted(item.content());
  return number.empty() ? raw(item) : Json(number);
}

Json attribute_json(const Item& item) {
  const Attribute parts = attribute_of(item);
  const std::string type = dotted(parts.type);
  if (type.empty() || !item.exact) return raw(item);
  const Json value = parts.tag == der::kBmpString ? Json{{"hex", hexadecimal(parts.value)}}
                                                  : text_json(parts.value);
  return {{"type", type}, {"tag", type_name(parts.tag)}, {"value", value}};
}

Json list_json(const Item& list) {
  Json json = Json::array();
  for (const Item& entry : list.children) json.push_back(to_json(entry));
  return json;
}

Json record_json(const Item& record) {
  Json json = Json::object();
  for (const Item& child : record.children) {
    if (child.kind == Kind::kIgnored) {
      json["ignored"].push_back(hexadecimal(child.bytes()));
    } else {
      json[std::string(child.name)] = to_json(child);
    }
  }
  return json;
}

Json padding_json(Bytes padding) {
  return is_zero(padding) ? Json(padding.size()) : Json(hexadecimal(padding));
}

}  // namespace

Json to_json(const Item& item) {
  if (!item.exact) return raw(item);
  switch (item.kind) {
    case Kind::kRecord:
      return record_json(item);
    case Kind::kList:
    case Kind::kName:
    case Kind::kValues:
      return list_json(item);
    case Kind::kAttribute:
      return attribute_json(item);
    case Kind::kInteger:
      return item.integer();
    case Kind::kBoolean:
      return item.content()[0] != 0;
    case Kind::kTime:
      return time_json(item.seconds());
    case Kind::kText:
      return text_json(item.content());
    case Kind::kOctets:
    case Kind::kSealed:
    case Kind::kNumber:
      return hexadecimal(item.content());
    case Kind::kBits:
      return hexadecimal(item.content().subspan(1));
    case Kind::kObjectId:
      return object_id_json(item);
    case Kind::kPadding:
      return padding_json(item.content());
    case Kind::kElement:
    case Kind::kIgnored:
      return raw(item);
    case Kind::kAbsent:
      return nullptr;
  }
  return nullptr;
}

Json to_json(const Label& label) {
  Json json = {{"form", kLabelForm}};
  json.update(to_json(label.root));
  return json;
}

}  // namespace tq::tool
