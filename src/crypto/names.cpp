#include "crypto/names.h"

#include "der/schema/tagged.h"

namespace tq {
namespace {

constexpr der::Octet kEmailType[] = {0x2a, 0x86, 0x48, 0x86, 0xf7, 0x0d, 0x01, 0x09, 0x01};
constexpr std::uint32_t kShortTypeLength = 3;

// A set of small numbers.
template <class... Numbers>
consteval std::uint32_t set_of(Numbers... numbers) {
  return ((1U << numbers) | ...);
}
constexpr bool holds(std::uint32_t set, std::uint32_t number) {
  return number < 32 && (set >> number & 1) != 0;
}

// Last octets of the attribute types CN, C, L, ST, O and OU. SN is read but not written.
constexpr std::uint32_t kShortTypes = set_of(3, 6, 7, 8, 10, 11);
constexpr std::uint32_t kStringTypes =
    set_of(der::kUtf8String, der::kPrintableString, der::kIa5String, der::kBmpString);

[[nodiscard]] inline bool can_write(const X509Name& attribute) {
  const ANYBUF& type = attribute.type;
  if (type.length == kShortTypeLength && type.data != nullptr) {
    return holds(kShortTypes, type.data[2]) && holds(kStringTypes, attribute.value.type) &&
           has_its_bytes(attribute.value);
  }
  return equal_bytes(type, kEmailType, sizeof kEmailType) && has_its_bytes(attribute.value);
}

// The tag that the value of an attribute that can be written is written with.
der::Octet value_tag(const X509Name& attribute) {
  if (attribute.type.length != kShortTypeLength) return der::kIa5String;
  return attribute.value.type == der::kUtf8String ? der::Octet{der::kPrintableString}
                                                  : static_cast<der::Octet>(attribute.value.type);
}

// The lengths within one relative name, from the inside out: cheap enough to be formed again when
// writing, so that a name keeps one length in the plan however many attributes it has.
struct RelativeName {
  std::uint64_t pair;  // content of the SEQUENCE
  std::uint64_t set;   // content of the SET

  explicit RelativeName(const X509Name& attribute) {
    constexpr std::uint64_t kHeader = der::header_size(0);
    pair = std::uint64_t{attribute.type.length} + attribute.value.length + 2 * kHeader;
    set = pair + kHeader;
    if (set < 0x80) return;  // then every length within is short as well
    pair = der::element_size(attribute.type.length) + der::element_size(attribute.value.length);
    set = der::element_size(pair);
  }
};

// Type and value, each at the front of its cursor.
[[nodiscard, gnu::always_inline]] inline bool read_pair(X509Name& attribute, const Scope& scope,
                                                        der::Cursor& types, der::Cursor& values) {
  der::Element type;
  der::Element value;
  return types.take(der::kObjectId, type) && holds(kStringTypes, values.peek()) &&
         values.take(values.peek(), value) &&
         store(attribute.type, type.content(), type.length, der::type_word(der::kObjectId),
               scope) &&
         store(attribute.value, value.content(), value.length, value.tag(), scope);
}

}  // namespace

inline bool AttributeSchema::plan_element(const X509Name& attribute, const Scope& /*scope*/,
                                          der::Plan& plan) {
  plan.add(RelativeName(attribute).set);
  return can_write(attribute);
}

inline der::Writer AttributeSchema::write_element(const X509Name& attribute, const Scope& /*scope*/,
                                                  der::Writer out) {
  const RelativeName lengths(attribute);
  out.header(der::kSet, static_cast<std::uint32_t>(lengths.set));
  out.header(der::kSequence, static_cast<std::uint32_t>(lengths.pair));
  if (attribute.type.length == kShortTypeLength) {  // as nearly all are: no call is needed
    out.header(der::kObjectId, kShortTypeLength);
    out.octets(attribute.type.data, kShortTypeLength);
  } else {
    out.element(der::kObjectId, attribute.type.data, attribute.type.length);
  }
  out.element(value_tag(attribute), attribute.value.data, attribute.value.length);
  return out;
}

inline bool AttributeSchema::read_element(X509Name& attribute, const Scope& scope,
                                          der::Cursor& in) {
  der::Element set;
  der::Element pair;
  if (!in.take(der::kSet, set)) return false;
  der::Cursor attributes(set);
  if (!attributes.take(der::kSequence, pair) || !attributes.finish()) return false;
  der::Cursor inside(pair);
  return read_pair(attribute, scope, inside, inside) && inside.finish();
}

template struct Chained<AttributeSchema>;

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
  return read_pair(*attribute, {}, type, value) ? 0 : -1;
}

void FreeX509Name(X509Name* first) { release(kName, first); }

}  // namespace tq
