#ifndef TQ_CRYPTO_NAMES_H
#define TQ_CRYPTO_NAMES_H

// Distinguished names: X.501 Names with one attribute per relative name, as chains of attributes.

#include "der/schema/list.h"

namespace tq {

// RelativeDistinguishedName ::= SET { SEQUENCE { type OBJECT IDENTIFIER, value string } }
// Of a SET that is read only the first attribute counts.
struct AttributeSchema {
  using Record = X509Name;

  [[nodiscard]] static bool plan_element(const X509Name& attribute, const Scope& scope,
                                         der::Plan& plan);
  static der::Writer write_element(const X509Name& attribute, const Scope& scope, der::Writer out);
  [[nodiscard]] static bool read_element(X509Name& attribute, const Scope& scope, der::Cursor& in);
  static void release(X509Name& attribute) {
    clear(attribute.type);
    clear(attribute.value);
  }
  // The sizes of names are estimated by rules of their own.
  [[nodiscard]] static std::uint64_t buffers(const X509Name& /*attribute*/) { return 0; }
};

inline constexpr AttributeSchema kAttribute{};
inline constexpr auto kName = chained(kAttribute);
// Names stand in most records: their loops are made once, where the attribute's functions are seen.
extern template struct Chained<AttributeSchema>;

// Whether the attribute chain holds nothing at all, as one that was never set.
[[nodiscard]] bool is_empty(const X509Name& first);

std::int32_t EncodeX509Name(const X509Name* first, ANYBUF** slot);
std::int32_t DecodeX509Name(const ANYBUF* element, X509Name* first);
// One relative name.
std::int32_t EncodeDName(const X509Name* attribute, ANYBUF** slot);
std::int32_t DecodeX509NameDer(const ANYBUF* element, X509Name* attribute);
// Wraps a chain of relative names, which stays the caller's.
std::int32_t EncodeX509NameDer(const ANYBUF* chain, ANYBUF** slot);
// Reads type and value from two nodes, one behind the other.
std::int32_t DecodeDName(const ANYBUF* chain, X509Name* attribute);

// Releases what the first attribute owns and the attributes behind it; null is accepted.
void FreeX509Name(X509Name* first);

}  // namespace tq

#endif
