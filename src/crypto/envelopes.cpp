#include "crypto/envelopes.h"

#include "crypto/algorithms.h"

namespace tq {
namespace {

using PlainKey = Octets<der::kOctetString>;

// In "6.0" the field holds a name, which can never be the identifier.
bool is_identity_based(const ENVELOPE& envelope, const Scope& scope) {
  return scope.layout.v11 && is_identity_wrapping(envelope.algorithm);
}

}  // namespace

bool WrappedKey::plan(const ENVELOPE& envelope, const Scope& scope, der::Plan& plan) {
  return is_identity_based(envelope, scope)
             ? IdentityKeyBlob::plan_element(envelope.encryptedKey, scope, plan)
             : PlainKey::plan(envelope.encryptedKey, plan);
}

der::Writer WrappedKey::write(const ENVELOPE& envelope, const Scope& scope, der::Writer out) {
  return is_identity_based(envelope, scope)
             ? IdentityKeyBlob::write_element(envelope.encryptedKey, scope, out)
             : PlainKey::write(envelope.encryptedKey, out);
}

bool WrappedKey::read(ENVELOPE& envelope, const Scope& scope, der::Cursor& in) {
  if (is_identity_based(envelope, scope)) {
    return IdentityKeyBlob::read_element(envelope.encryptedKey, scope, in);
  }
  der::Element key;
  return in.take(PlainKey::kTag, key) && PlainKey::read(key, envelope.encryptedKey, scope);
}

std::int32_t EncodeENVELOPE(const TqLabelHandle* label, const ENVELOPE* record, ANYBUF** slot) {
  return encode_versioned(kEnvelope, label, record, slot);
}
std::int32_t DecodeENVELOPE(const ANYBUF* element, ENVELOPE* record, const TqLabelHandle* label) {
  return decode_versioned(kEnvelope, element, record, label);
}

std::int32_t EncodeDigitEnvolop_F(const TqLabelHandle* label, ENVELOPE* first, ANYBUF** slot) {
  return encode_versioned(kHeadEnvelopes, label, &first, slot);
}
std::int32_t DecodeDigitEnvolop(const ANYBUF* element, ENVELOPE** first,
                                const TqLabelHandle* label) {
  return decode_versioned(kHeadEnvelopes, element, first, label);
}

std::int32_t EncodeBDigitEnvolope_F(const TqLabelHandle* label, const BDigitEnvolope* record,
                                    ANYBUF** slot) {
  return encode_versioned(kBodyEnvelope, label, record, slot);
}
std::int32_t DecodeBDigitEnvolope(const ANYBUF* element, BDigitEnvolope* record,
                                  const TqLabelHandle* label) {
  return decode_versioned(kBodyEnvelope, element, record, label);
}

std::int32_t EncodeEncryptBody_F(const TqLabelHandle* label, BDigitEnvolope* first, ANYBUF** slot) {
  return encode_versioned(kBodyEnvelopes, label, &first, slot);
}
std::int32_t DecodeEncryptBody(const ANYBUF* element, BDigitEnvolope** first,
                               const TqLabelHandle* label) {
  return decode_versioned(kBodyEnvelopes, element, first, label);
}

std::int32_t EncodeEncryptHead(const TqLabelHandle* label, const EncryptHead* record,
                               const ANYBUF* envelopes, ANYBUF** slot) {
  if (label == nullptr || envelopes == nullptr) return -1;
  ReadyParts parts;
  parts[Part::kHeadEnvelopesNode] = envelopes;
  Scope scope = scope_of(*label);
  scope.ready = &parts;
  return scope.layout.known() ? encode(kEncryptHead, record, slot, scope) : -1;
}
std::int32_t DecodeEncryptHead(const ANYBUF* element, EncryptHead* record,
                               const TqLabelHandle* label) {
  return decode_versioned(kEncryptHead, element, record, label);
}

std::int32_t EncodeDigitEnvolop(const TqLabelHandle* /*label*/, const ANYBUF* chain,
                                ANYBUF** slot) {
  return encode_chain(kListOfNodes, chain, slot);
}
std::int32_t EncodeBDigitEnvolope(const TqLabelHandle* /*label*/, const ANYBUF* chain,
                                  ANYBUF** slot) {
  return encode_chain(kSequenceOfNodes, chain, slot);
}
std::int32_t EncodeEncryptBody(const TqLabelHandle* /*label*/, const ANYBUF* chain, ANYBUF** slot) {
  return encode_chain(kListOfNodes, chain, slot);
}

void FreeENVELOPE(ENVELOPE* record) { release(kEnvelope, record); }
void FreeDigitEnvolop(ENVELOPE* first) { release_list<decltype(kHeadEnvelopes)::Entry>(first); }
void FreeBDigitEnvolope(BDigitEnvolope* record) { release(kBodyEnvelope, record); }
void FreeEncryptBody(BDigitEnvolope* first) {
  release_list<decltype(kBodyEnvelopes)::Entry>(first);
}
void FreeEncryptHead(EncryptHead* record) { release(kEncryptHead, record); }

std::int32_t GetSequenceData(const ANYBUF* element, std::uint8_t* buffer, std::uint32_t* length) {
  if (element == nullptr || element->data == nullptr || element->length < 2) return -1;
  const std::uint32_t header = 2 + (element->data[1] & 0x7FU);
  if (element->length < header) return -1;
  return copy_out(element->data + header, element->length - header, buffer, length);
}

}  // namespace tq
