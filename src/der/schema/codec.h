#ifndef TQ_DER_SCHEMA_CODEC_H
#define TQ_DER_SCHEMA_CODEC_H

// How one value becomes one element. Each codec has the value's type, the element's tag, a plan
// that also says whether the value can be written at all, a writer, and a reader of an element
// whose tag has been checked.

#include <cstdint>

#include "asn1/writer.h"
#include "core/model/buffer.h"
#include "core/model/layout.h"

namespace tq {

struct ReadyParts;

// What a call knows about the label whose records it reads or writes.
struct Scope {
  Layout layout = {};
  bool message = false;  // writing the signature message: the head signature without its value
  bool views = false;    // reading bytes that will outlive the record: fields need no copies
  const ReadyParts* ready = nullptr;  // writing: parts that the caller has encoded
  const ANYBUF* sealed = nullptr;     // writing: the encrypted body that stands for the plain one
  bool padded = false;                // writing: the padding follows the body
};

inline Scope scope_of(const TqLabelHandle& label) { return {.layout = layout_of(label)}; }

// Stores content octets in a field, which must be empty.
[[nodiscard, gnu::always_inline]] inline bool store(ANYBUF& field, const der::Octet* bytes,
                                                    std::uint32_t length, std::uint32_t type,
                                                    const Scope& scope) {
  if (!scope.views) return replace(field, bytes, length, type);
  field.data = length == 0 ? nullptr : const_cast<der::Octet*>(bytes);
  field.length = length;
  field.form = ASN1_FORM_VIEW;
  field.type = type;
  return true;
}

// A field that has a length but no bytes is what an allocation that failed has left.
inline bool has_its_bytes(const ANYBUF& field) {
  return field.data != nullptr || field.length == 0;
}

struct Integer32 {
  using Value = std::uint32_t;
  static constexpr der::Octet kTag = der::kInteger;
  [[nodiscard]] static bool plan(Value value, der::Plan& plan) {
    plan.add(der::integer_length(value));
    return true;
  }
  static der::Writer write(Value value, der::Writer out) {
    out.integer(value);
    return out;
  }
  [[nodiscard]] static bool read(const der::Element& element, Value& value,
                                 const Scope& /*scope*/) {
    return der::read_integer(element, value);
  }
};

struct Boolean {
  using Value = std::uint8_t;
  static constexpr der::Octet kTag = der::kBoolean;
  [[nodiscard]] static bool plan(Value /*value*/, der::Plan& plan) {
    plan.add(1);
    return true;
  }
  static der::Writer write(Value value, der::Writer out) {
    out.boolean(value != 0);
    return out;
  }
  [[nodiscard]] static bool read(const der::Element& element, Value& value,
                                 const Scope& /*scope*/) {
    return der::read_boolean(element, value);
  }
};

struct Time {
  using Value = std::uint64_t;
  static constexpr der::Octet kTag = der::kGeneralizedTime;
  [[nodiscard]] static bool plan(Value seconds, der::Plan& plan) {
    plan.add(der::kTimeLength);
    return seconds <= der::kLastTime;
  }
  static der::Writer write(Value seconds, der::Writer out) {
    out.time(seconds);
    return out;
  }
  [[nodiscard]] static bool read(const der::Element& element, Value& value,
                                 const Scope& /*scope*/) {
    return der::read_time(element, value);
  }
};

// Content octets that pass through unchanged.
template <der::Tag TagOctet>
struct Octets {
  using Value = ANYBUF;
  static constexpr der::Octet kTag = TagOctet;
  [[nodiscard]] static bool plan(const ANYBUF& field, der::Plan& plan) {
    plan.add(field.length);
    return has_its_bytes(field);
  }
  static der::Writer write(const ANYBUF& field, der::Writer out) {
    out.element(kTag, field.data, field.length);
    return out;
  }
  [[nodiscard]] static bool read(const der::Element& element, ANYBUF& field, const Scope& scope) {
    return store(field, element.content(), element.length, der::type_word(kTag), scope);
  }
};

// A BIT STRING of whole octets, kept without the octet that counts the unused bits.
struct Bits {
  using Value = ANYBUF;
  static constexpr der::Octet kTag = der::kBitString;
  [[nodiscard]] static bool plan(const ANYBUF& field, der::Plan& plan) {
    plan.add(std::uint64_t{field.length} + 1);
    return has_its_bytes(field) && field.length != UINT32_MAX;
  }
  static der::Writer write(const ANYBUF& field, der::Writer out) {
    out.header(kTag, field.length + 1);
    out.octet(0);
    out.octets(field.data, field.length);
    return out;
  }
  [[nodiscard]] static bool read(const der::Element& element, ANYBUF& field, const Scope& scope) {
    return der::has_whole_octets(element) &&
           store(field, element.content() + 1, element.length - 1, der::type_word(kTag), scope);
  }
};

}  // namespace tq

#endif
