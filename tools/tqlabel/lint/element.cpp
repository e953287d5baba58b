// What a single element says.

#include <fmt/format.h>

#include "crypto/names.h"
#include "format/values.h"
#include "lint/rules.h"

namespace tq::tool {
namespace {

// The child of that number, from 0; none has no start.
der::Element child(const der::Element& parent, std::size_t number) {
  der::Cursor in(parent);
  der::Element element;
  for (std::size_t i = 0; i <= number; ++i) {
    if (!in.next(element)) return {};
  }
  return element;
}

// The SEQUENCE around the SET of a list, which may have a tag around it.
der::Element inside_tag(const Item& list) {
  return list.element.tag() == der::kSequence ? list.element : child(list.element, 0);
}

// Structure.

void report_ignored(const Place& place, const der::Element& element, Findings& out) {
  if (element.start == nullptr) return;
  out.add(Code::kIgnored, place, element.start,
          fmt::format("{} behind the last element that is known: it is passed over",
                      type_name(element.tag())));
}

void ignored(const Place& place, Findings& out) {
  if (place->kind == Kind::kIgnored) report_ignored(place, place->element, out);
  if (place->exact) return;
  if (place->kind == Kind::kList) report_ignored(place, child(inside_tag(*place), 1), out);
  if (place->kind == Kind::kAttribute) {
    report_ignored(place, child(place->element, 1), out);
    report_ignored(place, child(child(place->element, 0), 2), out);
  }
}

void repeated_marking(const Place& place, Findings& out) {
  if (place.path != "body" || place->exact) return;
  const std::vector<Item>& items = place->children;
  for (auto item = items.begin(); item != items.end(); ++item) {
    const auto next = std::ranges::find(item + 1, items.end(), item->name, &Item::name);
    if (item->kind == Kind::kIgnored || next == items.end()) continue;
    out.add(Code::kMarkingTwice, {child_path(place.path, *item, 0), &*item},
            "replaced by a second one, which follows");
  }
}

void logs_tag(const Place& place, Findings& out) {
  const der::Octet tag = place->element.tag();
  if (place.path != "body.logs" || tag == der::kContext1 || (tag & der::kClassBits) == 0) return;
  out.add(Code::kLogsTag, place, type_name(tag) + " in place of [1]");
}

void set_order(const Place& place, Findings& out) {
  if (place->kind != Kind::kList || place->children.empty()) return;
  const der::Element set = child(inside_tag(*place), 0);
  if (set.start == nullptr || set.tag() != der::kSet) return;
  const auto later =
      std::ranges::adjacent_find(place->children, [](const Item& left, const Item& right) {
        return std::ranges::lexicographical_compare(right.bytes(), left.bytes());
      });
  if (later == place->children.end()) return;
  out.add(Code::kSetOrder, place,
          fmt::format("the SET is not sorted: entry {} belongs behind the next",
                      later - place->children.begin() + 1));
}

// Whether all that is inside is DER. Every header is passed once, however deep it lies.
const der::Octet* first_that_is_not_der(const der::Element& outer) {
  std::vector<der::Cursor> around;
  der::Cursor in(outer);
  const der::Octet* at = outer.content();
  while (true) {
    while (in.at_end() && !around.empty()) {
      in = around.back();
      around.pop_back();
    }
    if (in.at_end()) return nullptr;
    der::Element element;
    if (!in.next(element)) return at;
    at = element.content() + element.length;
    if ((element.tag() & der::kConstructedBit) == 0) continue;
    at = element.content();
    if (!in.at_end()) around.push_back(in);
    in = der::Cursor(element);
  }
}

void opaque(const Place& place, Findings& out) {
  if (place->kind != Kind::kElement || (place->element.tag() & der::kConstructedBit) == 0) return;
  const der::Octet* at = first_that_is_not_der(place->element);
  if (at != nullptr) out.add(Code::kOpaque, place, at, "what is inside is no DER from here on");
}

// Texts.

bool is_printable(der::Octet octet) {
  constexpr std::string_view kOthers = " '()+,-./:=?";
  const der::Octet letter = octet | 0x20;
  return (letter >= 'a' && letter <= 'z') || (octet >= '0' && octet <= '9') ||
         kOthers.find(static_cast<char>(octet)) != std::string_view::npos;
}

bool is_ascii(der::Octet octet) { return octet < 0x80; }

// Reports the first zero byte, and the first byte that the type does not have.
void octets_of_type(const Place& place, Bytes text, der::Octet tag, Findings& out) {
  const auto zero = std::ranges::find(text, 0);
  if (zero != text.end()) {
    out.add(Code::kZeroByte, place, &*zero,
            "a zero byte, where programs in C take the text to end");
  }
  const auto accepts = tag == der::kPrintableString ? is_printable : is_ascii;
  const auto other =
      std::ranges::find_if(text, [&](der::Octet octet) { return octet != 0 && !accepts(octet); });
  if (other == text.end()) return;
  out.add(Code::kCharacters, place, &*other,
          fmt::format("0x{:02X} is no character of {}", *other, type_name(tag)));
}

// Two octets each, and no halves of pairs.
bool is_bmp(Bytes text) {
  if (text.size() % 2 != 0) return false;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    if ((text[i] & 0xF8U) == 0xD8) return false;
  }
  return true;
}

// Those that the library's own setters store with a zero at the end, or with several.
constexpr std::string_view kTerminated[] = {"fileNo", "markText", "stampText1", "stampText2"};

void text(const Place& place, Findings& out) {
  if (place->kind != Kind::kText) return;
  Bytes bytes = place->content();
  if (std::ranges::find(kTerminated, place->name) != std::end(kTerminated)) {
    while (!bytes.empty() && bytes.back() == 0) bytes = bytes.first(bytes.size() - 1);
  }
  octets_of_type(place, bytes, der::kPrintableString, out);
}

void attribute_text(const Place& place, Findings& out) {
  if (place->kind != Kind::kAttribute) return;
  const Attribute parts = attribute_of(*place);
  if (parts.tag == der::kPrintableString || parts.tag == der::kIa5String) {
    octets_of_type(place, parts.value, parts.tag, out);
  } else if (parts.tag == der::kBmpString ? !is_bmp(parts.value) : !is_utf8(parts.value)) {
    out.add(Code::kCharacters, place, parts.value.data(), "no text in " + type_name(parts.tag));
  }
}

void unterminated(const Place& place, Findings& out) {
  const Bytes bytes = place->content();
  if (place->name != "fileNo" || bytes.empty() || bytes.back() == 0) return;
  out.add(Code::kUnterminated, place, "the file number has no zero at its end");
}

// Names.

void large_name(const Place& place, Findings& out) {
  if (place->kind != Kind::kName) return;
  const bool fits =
      place->children.size() <= 10 && std::ranges::all_of(place->children, [](const Item& item) {
        const Attribute parts = attribute_of(item);
        return parts.type.size() <= sizeof PJCertIssuerEntry::type &&
               parts.value.size() <= sizeof PJCertIssuerEntry::value;
      });
  if (!fits) out.add(Code::kLargeName, place, "a name with no room in the record for callers");
}

void written_name(const Place& place, Findings& out) {
  if (place->kind != Kind::kAttribute || !place->exact) return;
  const Bytes read = place->bytes();
  const ANYBUF whole = view_of(read.data(), place->element.size(), 0);
  X509Name attribute{};
  ANYBUF* made = nullptr;
  const bool decoded = DecodeX509NameDer(&whole, &attribute) == 0;
  const OnExit release([&] { FreeX509Name(&attribute); });
  if (!decoded || EncodeDName(&attribute, &made) != 0) {
    out.add(Code::kUnwritableName, place, "no attribute that the library writes");
    return;
  }
  const Node written(made);
  if (std::ranges::equal(read, Bytes(written->data, written->length))) return;
  out.add(Code::kWrittenOtherwise, place,
          type_name(attribute_of(*place).tag) + ", which is written as another type");
}

// Values.

void number(const Place& place, Findings& out) {
  if (place->kind != Kind::kNumber) return;
  const Bytes octets = place->content();
  const auto redundant = [&] {
    return octets.size() > 1 &&
           ((octets[0] == 0 && octets[1] < 0x80) || (octets[0] == 0xFF && octets[1] >= 0x80));
  };
  if (octets.empty()) {
    out.add(Code::kNumber, place, "an INTEGER of no octets");
  } else if (redundant()) {
    out.add(Code::kNumber, place, "an INTEGER that is not the shortest of its value");
  } else if (place->name.starts_with("serial") && octets[0] >= 0x80) {
    out.add(Code::kNumber, place, "a serial number below zero");
  }
}

void algorithm(const Place& place, Findings& out) {
  const Item* found = place->kind == Kind::kRecord ? place->find("algorithm") : nullptr;
  if (found == nullptr || found->kind != Kind::kObjectId) return;
  // Only an envelope must have one.
  const bool is_none = found->content().empty() && place->find("encryptedKey") == nullptr;
  if (is_none || known_name(found->content()) != nullptr) return;
  out.add(Code::kUnknownAlgorithm, {child_path(place.path, *found, 0), found},
          "an algorithm without a name: " + show_object_id(found->content()));
}

void certificate(const Place& place, Findings& out) {
  const der::Octet tag = place->element.tag();
  if (place->name != "certificate" && place->name != "bodySignCert") return;
  if (tag == der::kSequence) return;
  out.add(Code::kNoCertificate, place, type_name(tag) + " in place of a certificate");
}

void extension_type(const Place& place, Findings& out) {
  if (place->name != "extendType" || place->integer() <= 0xFFFF) return;
  out.add(Code::kStuckExtension, place, fmt::format("type {} cannot be removed", place->integer()));
}

// Sizes and values that functions of the library stop at.

struct Limit {
  Code code;
  std::string_view name;  // of the element, or its path where others have the name
  std::uint64_t (*measure)(const Item&);
  std::uint64_t most;
  const char* what;
};

std::uint64_t size_of(const Item& item) { return item.content().size(); }
std::uint64_t element_size_of(const Item& item) { return item.bytes().size(); }
std::uint64_t entries_of(const Item& item) { return item.children.size(); }
std::uint64_t integer_of(const Item& item) { return item.integer(); }
std::uint64_t seconds_of(const Item& item) { return item.seconds(); }
// What is left of whole units of 32, behind the octet that counts the unused bits.
std::uint64_t odd_bytes_of(const Item& item) { return (item.content().size() - 1) % 32; }

constexpr const char* kLong = "bytes are not handed out";
constexpr const char* kRefused = "bytes are refused by the setter";
constexpr const char* kCut = "bytes are handed out in part";
constexpr const char* kLow = "is handed out cut off";

constexpr Limit kLimits[] = {
    {Code::kLongField, "label", size_of, 255, kLong},
    {Code::kLongField, "serialNum", size_of, 255, kLong},
    {Code::kLongField, "serial", size_of, 255, kLong},
    {Code::kLongField, "fileName", size_of, 255, kLong},
    {Code::kLongField, "fileTitle", size_of, 255, kLong},
    {Code::kLongField, "head.encryptHead.algorithm", size_of, 255, kLong},
    {Code::kRefusedSize, "label", size_of, 128, kRefused},
    {Code::kRefusedSize, "serialNum", size_of, 128, kRefused},
    {Code::kRefusedSize, "bodySignValue", odd_bytes_of, 0, "bytes too many for whole units of 32"},
    {Code::kCutOff, "logText1", size_of, 255, kCut},
    {Code::kCutOff, "logArray1", size_of, 255, kCut},
    {Code::kCutOff, "logArray2", size_of, 255, kCut},
    {Code::kCutOff, "metaElement", element_size_of, 255, kCut},
    {Code::kCutOff, "feedBackBits", integer_of, 0xFF, kLow},
    {Code::kCutOff, "sealType", integer_of, 0xFF, kLow},
    {Code::kCutOff, "priType", integer_of, 0xFFFF, kLow},
    {Code::kCutOff, "creatorTime", seconds_of, 0xFFFFFFFF, kLow},
    {Code::kLongList, "head.encryptHead.envelopes", entries_of, 100,
     "envelopes are more than LabCalSize() counts"},
    {Code::kLongList, "extPriList", entries_of, 20,
     "pairs are more than GetEnvelopeFromBody() makes room for"},
};

void limits(const Place& place, Findings& out) {
  for (const Limit& limit : kLimits) {
    if (limit.name != place->name && limit.name != place.path) continue;
    const std::uint64_t measure = limit.measure(*place);
    if (measure <= limit.most) continue;
    out.add(limit.code, place, fmt::format("{} {}", measure, limit.what));
    return;  // one limit includes the next
  }
}

constexpr void (*kRules[])(const Place&, Findings&) = {
    ignored, repeated_marking, logs_tag,     set_order,      opaque,
    text,    attribute_text,   unterminated, large_name,     written_name,
    number,  algorithm,        certificate,  extension_type, limits};

}  // namespace

void check_element(const Place& place, Findings& out) {
  for (const auto rule : kRules) rule(place, out);
}

}  // namespace tq::tool
