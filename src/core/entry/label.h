#ifndef TQ_CORE_ENTRY_LABEL_H
#define TQ_CORE_ENTRY_LABEL_H

// Whole labels: SEQUENCE { head, body or encrypted body, padding }.

#include "der/label/body.h"
#include "der/label/head.h"

namespace tq {

constexpr bool in_padded(const Scope& scope) { return scope.padded; }

// The second element: the body, or the OCTET STRING that holds it encrypted.
struct BodyOrSealed : Nested<&TqLabelHandle::body, std::remove_cvref_t<decltype(kBody)>> {
  using Plain = Nested<&TqLabelHandle::body, std::remove_cvref_t<decltype(kBody)>>;
  using Sealed = Octets<der::kOctetString>;

  [[nodiscard]] static bool plan(const TqLabelHandle& label, const Scope& scope, der::Plan& plan) {
    return scope.sealed == nullptr ? Plain::plan(label, scope, plan)
                                   : Sealed::plan(*scope.sealed, plan);
  }
  static der::Writer write(const TqLabelHandle& label, const Scope& scope, der::Writer out) {
    return scope.sealed == nullptr ? Plain::write(label, scope, out)
                                   : Sealed::write(*scope.sealed, out);
  }
};

inline constexpr auto kLabel = record(nested<&TqLabelHandle::head, kHead>, BodyOrSealed{},
                                      when<in_padded>(octets<&TqLabelHandle::pad>));

using LabelOwner = std::unique_ptr<TqLabelHandle, Releaser<FreeHandleLabel>>;

// The elements of an encoded label where they lie; the padding is what stands third.
struct Outline {
  der::Element head;
  der::Element body;
  bool has_body = false;
  bool has_padding = false;
};

// Splits an encoded label, which must have a first element at least.
[[nodiscard]] bool outline(const std::uint8_t* der, std::uint32_t length, Outline& outline);

// The head of an encoded label, read in place for as long as the answer to one question takes. The
// label's other elements are not looked at.
class PeekedHead {
 public:
  PeekedHead() = default;
  PeekedHead(const PeekedHead&) = delete;
  PeekedHead& operator=(const PeekedHead&) = delete;
  PeekedHead(PeekedHead&&) = delete;
  PeekedHead& operator=(PeekedHead&&) = delete;
  ~PeekedHead() { FreeHead(&label_.head); }

  enum class Body : bool { kNotAsked, kRequired };

  [[nodiscard]] bool read(const std::uint8_t* der, std::int64_t length, Body body);

  // A label that has the head and its version, but no body.
  [[nodiscard]] TqLabelHandle& label() { return label_; }
  [[nodiscard]] const Head& head() const { return label_.head; }

 private:
  TqLabelHandle label_ = {};
};

// Nodes of whole labels from nodes of their parts, which stay the caller's.
std::int32_t EncodeLabel_F(const TqLabelHandle* label, ANYBUF* head, ANYBUF* body, ANYBUF** slot);
std::int32_t EncodeLabelPad_F(const TqLabelHandle* label, ANYBUF* head, ANYBUF* body,
                              const ANYBUF* pad, ANYBUF** slot);

}  // namespace tq

#endif
