#ifndef TQ_ASN1_NODE_H
#define TQ_ASN1_NODE_H

// How the primitives make nodes, and the two shapes that all of them have: read one element into a
// value, build one element from a value.

#include <tqasn1/asn1.h>

#include <cstddef>
#include <cstdint>

#include "asn1/writer.h"

namespace tq::asn1 {

inline constexpr std::int32_t kDone = 0;
inline constexpr std::int32_t kFail = -1;

// A block for a node and for bytes behind it, its words set for a node that stands alone.
[[nodiscard]] inline ANYBUF* new_node(std::uint32_t form, std::uint32_t type,
                                      std::size_t bytes = 0) {
  auto* node = static_cast<ANYBUF*>(Asn1Malloc(sizeof(ANYBUF) + bytes));
  if (node != nullptr) *node = {nullptr, 0, 0, form, type, nullptr, nullptr};
  return node;
}

// A node with room for its bytes behind it; without bytes it points to none.
[[nodiscard]] inline ANYBUF* new_inline(std::uint32_t length, std::uint32_t type) {
  ANYBUF* node = new_node(ASN1_FORM_INLINE, type, length);
  if (node == nullptr || length == 0) return node;
  node->data = static_cast<der::Octet*>(static_cast<void*>(node + 1));
  node->length = length;
  return node;
}

// A node for an element that lies within the bytes of another node.
[[nodiscard]] inline ANYBUF* new_view(const ANYBUF& around, const der::Element& element) {
  ANYBUF* node = new_node(ASN1_FORM_VIEW, der::type_word(element.tag()));
  if (node == nullptr) return nullptr;
  node->data = around.data + (element.start - around.data);
  node->length = element.size();
  return node;
}

// A node with a copy of the bytes in a block of its own; without bytes it has no such block.
[[nodiscard]] inline ANYBUF* new_owned(const der::Octet* bytes, std::uint32_t length,
                                       std::uint32_t type) {
  ANYBUF* node = new_node(ASN1_FORM_OWNED, type);
  if (node == nullptr || length == 0) return node;
  node->data = static_cast<der::Octet*>(Asn1Malloc(length));
  if (node->data == nullptr) {
    Asn1Free(node);
    return nullptr;
  }
  Asn1memcpy(node->data, bytes, length);
  node->length = length;
  return node;
}

template <class Value>
[[nodiscard]] std::int32_t read(der::Octet tag, bool (*content)(const der::Element&, Value&),
                                const ANYBUF* element, Value* value) {
  der::Element found;
  const bool good = element != nullptr && value != nullptr &&
                    der::read_outermost(element->data, element->length, tag, found) &&
                    content(found, *value);
  return good ? kDone : kFail;
}

// Builds an encoded element; `write` writes all of it, the header included.
template <class Write>
[[nodiscard]] std::int32_t build(der::Octet tag, std::uint64_t content, ANYBUF** element,
                                 Write write) {
  const std::uint64_t size = der::element_size(content);
  if (element == nullptr || size > UINT32_MAX) return kFail;
  ANYBUF* node = new_inline(static_cast<std::uint32_t>(size), der::type_word(tag));
  if (node == nullptr) return kFail;
  der::Writer out(node->data);
  write(out);
  *element = node;
  return kDone;
}

}  // namespace tq::asn1

#endif
