#include "crypto/names.h"

#include <algorithm>

#include "der/schema/tagged.h"

namespace tq {
namespace {

constexpr der::Octet kEmailType[] = {0x2a, 0x86, 0x48, 0x86, 0xf7, 0x0d, 0x01, 0x09, 0x01};
constexpr std::uint32_t kShortTypeLength = 3;
// Last octets of the attribute types CN, C, L, ST, O and OU. SN is read but not written.
constexpr der::Octet kShortTypes[] = {3, 6, 7, 8, 10, 11};

// The tag that an attribute's value is written with, or 0 for an attribute that cannot be written.
der::Octet value_tag(const X509Name& attribute) {
  const ANYBUF& type = attribute.type;
  if (equal_bytes(type, kEmailType, sizeof kEmailType)) return der::kIa5String;
  if (type.length != kShortTypeLength || type.data == nullptr ||
      std::ranges::find(kShortTypes, type.data[2]) == std::end(kShortTypes)) {
    return 0;
  }
  switch (attribute.value.type) {
    case der::kUtf8String:
    case der::kPrintableString:
      return der::kPrintableString;
    case der::kIa5String:
    case der::kBmpString:
      return static_cast<der::Octet>(attribute.value.type);
    default:
      return 0;
  }
}

// The lengths within one relative name, from the inside out: cheap enough to be formed again when
// writing, so that a name keeps one length in the plan however many attributes it has.
struct RelativeName {
  std::uint64_t pair;  // content of the SEQUENCE
  std::uint64_t set;   // content of the SET

  explicit RelativeName(const X509Name& attribute)
      : pair(der::element_size(attribute.type.length) + der::element_size(attribute.value.length)),
        set(der::element_size(pair)) {}
};

[[nodiscard]] bool read_type(X509Name& attribute, const Scope& scope, der::Cursor& in) {
  der::Element type;
  return in.take(der::kObjectId, type) && Octets<der::kObjectId>::read(type, attribute.type, scope);
}

[[nodiscard]] bool read_value(X509Name& attribute, const Scope& scope, der::Cursor& in) {
  const der::Octet tag = in.peek();
  if (tag != der::kUtf8String && tag != der::kPrintableString && tag != der::kIa5String &&
      tag != der::kBmpString) {
    return false;
  }
  der::Element value;
  return in.take(tag, value) && store(attribute.value, value.content(), value.length, tag, scope);
}

}  // namespace

bool AttributeSchema::plan_element(const X509Name& attribute, const Scope& /*scope*/,
                                   der::Plan& plan) {
  plan.add(RelativeName(attribute).set);
  return value_tag(attribute) != 0 && has_its_bytes(attribute.value);
}

void AttributeSchema::write_element(const X509Name& attribute, const Scope& /*scope*/,
                                    der::Writer& out) {
  const RelativeName lengths(attribute);
  out.header(der::kSet, static_cast<std::uint32_t>(lengths.set));
  out.header(der::kSequence, static_cast<std::uint32_t>(lengths.pair));
  Octets<der::kObjectId>::write(attribute.type, out);
  out.header(value_tag(attribute), attribute.value.length);
  out.octets(attribute.value.data, attribute.value.length);
}

bool AttributeSchema::read_element(X509Name& attribute, const Scope& scope, der::Cursor& in) {
  der::Element set;
  der::Element pair;
  if (!in.take(der::kSet, set)) return false;
  der::Cursor attributes(set);
  if (!attributes.take(der::kSequence, pair) || !attributes.finish()) return false;
  der::Cursor inside(pair);
  return read_type(attribute, scope, inside) && read_value(attribute, scope, inside) &&
         inside.finish();
}

bool is_empty(const X509Name& first) {
  return first.type.length == 0 && first.value.length == 0 && first.next == nullptr;
}

std::int32_t EncodeX509Name(const X509Name* first, ANYBUF** slot) {
  return encode(kName, first, slot);
}
std::int32_t DecodeX509Name(const ANYBUF* element, X509Name* first) {
  return decode(kName, element, first);
}

std::int32_t EncodeDName(const X509Name* attribute, ANYBUF** slot) {
  return encode(kAttribute, attribute, slot);
}
std::int32_t DecodeX509NameDer(const ANYBUF* element, X509Name* attribute) {
  return decode(kAttribute, element, attribute);
}

std::int32_t EncodeX509NameDer(const ANYBUF* chain, ANYBUF** slot) {
  return encode_chain(kSequenceOfNodes, chain, slot);
}

std::int32_t DecodeDName(const ANYBUF* chain, X509Name* attribute) {
  if (chain == nullptr || chain->data == nullptr || chain->next == nullptr ||
      chain->next->data == nullptr || attribute == nullptr) {
    return -1;
  }
  der::Cursor type(chain->data, chain->length);
  der::Cursor value(chain->next->data, chain->next->length);
  const bool read = read_type(*attribute, {}, type) && read_value(*attribute, {}, value);
  return read ? 0 : -1;
}

void FreeX509Name(X509Name* first) { release(kName, first); }

}  // namespace tq
