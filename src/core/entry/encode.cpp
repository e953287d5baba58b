#include "core/entry/label.h"

namespace tq {
namespace {

[[nodiscard]] std::int32_t encode_label(const TqLabelHandle* label, const Scope& scope,
                                        std::uint8_t* buffer, std::uint32_t* length) {
  if (length == nullptr || !can_write_head(*label, label->head)) return -1;
  return encode_out(kLabel, *label, scope, buffer, length);
}

[[nodiscard]] std::int32_t encode_sealed(const TqLabelHandle* label, const std::uint8_t* body,
                                         std::uint32_t body_length, bool padded,
                                         std::uint8_t* buffer, std::uint32_t* length) {
  if (label == nullptr || body == nullptr) return -1;
  const ANYBUF sealed = view_of(body, body_length, der::kOctetString);
  Scope scope = scope_of(*label);
  scope.sealed = &sealed;
  scope.padded = padded;
  return encode_label(label, scope, buffer, length);
}

// Links the nodes for as long as it takes to wrap them.
[[nodiscard]] std::int32_t wrap_parts(ANYBUF& head, ANYBUF& body, ANYBUF* pad, ANYBUF** slot) {
  const OnExit unlink([&, after_head = head.next, after_body = body.next] {
    head.next = after_head;
    body.next = after_body;
  });
  head.next = &body;
  body.next = pad;
  return encode_chain(kSequenceOfNodes, &head, slot);
}

}  // namespace

std::int32_t EncodeLabel_F(const TqLabelHandle* label, ANYBUF* head, ANYBUF* body, ANYBUF** slot) {
  if (label == nullptr || head == nullptr || body == nullptr) return -1;
  return wrap_parts(*head, *body, nullptr, slot);
}

std::int32_t EncodeLabelPad_F(const TqLabelHandle* label, ANYBUF* head, ANYBUF* body,
                              const ANYBUF* pad, ANYBUF** slot) {
  if (label == nullptr || head == nullptr || body == nullptr) return -1;
  ANYBUF* made = nullptr;
  if (QZAsn1SetOctetString(pad, &made) != 0) return -1;
  const Node padding(made);
  return wrap_parts(*head, *body, padding.get(), slot);
}

}  // namespace tq

std::int32_t EncodeLabel(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  return label == nullptr ? -1 : tq::encode_label(label, tq::scope_of(*label), buffer, length);
}

std::int32_t EncodeLabelPad(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  if (label == nullptr) return -1;
  tq::Scope scope = tq::scope_of(*label);
  scope.padded = true;
  return tq::encode_label(label, scope, buffer, length);
}

std::int32_t EncodeLabelEncrypted(TqLabel label, const std::uint8_t* body, std::uint32_t bodyLen,
                                  std::uint8_t* buffer, std::uint32_t* length) {
  return tq::encode_sealed(label, body, bodyLen, false, buffer, length);
}

std::int32_t EncodeLabelPadEncrypted(TqLabel label, const std::uint8_t* body, std::uint32_t bodyLen,
                                     std::uint8_t* buffer, std::uint32_t* length) {
  return tq::encode_sealed(label, body, bodyLen, true, buffer, length);
}

std::int32_t EncodeBodyPlaint(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  if (label == nullptr || length == nullptr) return -1;
  const tq::Scope scope = tq::scope_of(*label);
  if (!scope.layout.known()) return -1;
  return tq::encode_out(tq::kBody, label->body, scope, buffer, length);
}

std::int32_t GetSignatureMessage(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  if (label == nullptr) return -1;
  tq::Scope scope = tq::scope_of(*label);
  scope.message = true;
  return tq::encode_label(label, scope, buffer, length);
}
