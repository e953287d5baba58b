#ifndef TQ_DER_SCHEMA_TAGGED_H
#define TQ_DER_SCHEMA_TAGGED_H

// Elements around elements: EXPLICIT tags and wrappers of what is already encoded.

#include "der/schema/schema.h"

namespace tq {

constexpr bool always(const Scope& /*scope*/) { return true; }

// One more constructed element around another, where the version has it. Reading is left to whoever
// looks for the tag: the schema itself reads what is inside.
template <der::Tag TagOctet, Condition Holds, class Inner>
struct Wrapped : Inner {
  using Record = typename Inner::Record;
  static constexpr der::Octet kTag = TagOctet;

  [[nodiscard]] static bool plan_element(const Record& record, const Scope& scope,
                                         der::Plan& plan) {
    if (!Holds(scope)) return Inner::plan_element(record, scope, plan);
    der::Plan::Open open;
    if (!plan.open(open) || !Inner::plan_element(record, scope, plan)) return false;
    plan.close(open);
    return true;
  }
  static der::Writer write_element(const Record& record, const Scope& scope, der::Writer out) {
    if (Holds(scope)) out.open(TagOctet);
    return Inner::write_element(record, scope, out);
  }
};

template <der::Tag TagOctet, Condition Holds = always, class Inner>
consteval auto wrapped(Inner /*inner*/) {
  return Wrapped<TagOctet, Holds, Inner>{};
}

// A list that has a tag of its own in "1.1" and is left out there when it is empty.
template <der::Tag TagOctet, class Inner>
struct TaggedList : Wrapped<TagOctet, in_11, Inner> {
  using Record = typename Inner::Record;
  using Tagged = Wrapped<TagOctet, in_11, Inner>;

  static bool absent(const Record& first, const Scope& scope) {
    return first == nullptr && scope.layout.v11;
  }
  [[nodiscard]] static bool plan_element(const Record& first, const Scope& scope, der::Plan& plan) {
    return absent(first, scope) || Tagged::plan_element(first, scope, plan);
  }
  static der::Writer write_element(const Record& first, const Scope& scope, der::Writer out) {
    return absent(first, scope) ? out : Tagged::write_element(first, scope, out);
  }
};

template <der::Tag TagOctet, class Inner>
consteval auto tagged_list(Inner /*inner*/) {
  return TaggedList<TagOctet, Inner>{};
}

// A marking: tagged in "1.1.2", where one that was never set is left out; elsewhere always there.
template <der::Tag TagOctet, class Inner>
struct Marking : Wrapped<TagOctet, in_multi_sign, Inner> {
  using Record = typename Inner::Record;
  using Tagged = Wrapped<TagOctet, in_multi_sign, Inner>;

  static bool absent(const Record& record, const Scope& scope) {
    return scope.layout.multi_sign && record.present == 0;
  }
  [[nodiscard]] static bool plan_element(const Record& record, const Scope& scope,
                                         der::Plan& plan) {
    return absent(record, scope) || Tagged::plan_element(record, scope, plan);
  }
  static der::Writer write_element(const Record& record, const Scope& scope, der::Writer out) {
    return absent(record, scope) ? out : Tagged::write_element(record, scope, out);
  }
};

template <der::Tag TagOctet, class Inner>
consteval auto marking(Inner /*inner*/) {
  return Marking<TagOctet, Inner>{};
}

// Writes a marking to a node of its own; one that is left out gives null.
template <class S>
[[nodiscard]] std::int32_t encode_marking(S schema, const TqLabelHandle* label,
                                          const typename S::Record* record, ANYBUF** slot) {
  if (label == nullptr || record == nullptr || slot == nullptr) return -1;
  const Scope scope = scope_of(*label);
  if (!scope.layout.known()) return -1;
  if (!S::absent(*record, scope)) return encode(schema, record, slot, scope);
  *slot = nullptr;
  return 0;
}

// A chain of nodes that hold whole elements; a node of no bytes adds nothing.
struct Chain {
  using Record = const ANYBUF*;

  [[nodiscard]] static bool plan_element(const ANYBUF* node, const Scope& /*scope*/,
                                         der::Plan& plan) {
    for (; node != nullptr; node = node->next) {
      if (!has_its_bytes(*node)) return false;
      plan.add_whole(node->length);
    }
    return true;
  }
  static der::Writer write_element(const ANYBUF* node, const Scope& /*scope*/, der::Writer out) {
    for (; node != nullptr; node = node->next) out.octets(node->data, node->length);
    return out;
  }
};

inline constexpr auto kSequenceOfNodes = wrapped<der::kSequence>(Chain{});
inline constexpr auto kSetOfNodes = wrapped<der::kSet>(Chain{});
// The form that all lists have.
inline constexpr auto kListOfNodes = wrapped<der::kSequence>(kSetOfNodes);

// Wraps a chain, which stays the caller's; it must not be empty.
template <class S>
[[nodiscard]] std::int32_t encode_chain(S schema, const ANYBUF* chain, ANYBUF** slot) {
  return chain == nullptr ? -1 : encode(schema, &chain, slot);
}

}  // namespace tq

#endif
