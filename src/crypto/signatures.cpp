#include "crypto/signatures.h"

#include "crypto/algorithms.h"
#include "crypto/blob.h"

namespace tq {
namespace {

// A certificate where one must stand: of another kind of element the reader keeps nothing.
using PlainCertificate = Raw<&Sign::certificate, RawRule::kLenient, is_sequence>;
using WrappedCertificate = Octets<der::kOctetString>;

[[nodiscard]] bool parse_blob(const ANYBUF& blob, IdentitySignature& signature) {
  BlobReader in(blob);
  if (!in.prefixed(signature.identity) || !in.prefixed(signature.s1)) return false;
  signature.s2 = in.rest();
  return true;
}

[[nodiscard]] bool make_blob(const IdentitySignature& signature, ANYBUF& blob) {
  const std::uint64_t length = std::uint64_t{signature.identity.length} + signature.s1.length +
                               signature.s2.length + 2 * sizeof(std::uint32_t);
  if (length > UINT32_MAX) return false;
  Block<std::uint8_t> bytes = make_zeroed<std::uint8_t>(length);
  if (!bytes) return false;
  BlobWriter out(bytes.get());
  out.prefixed(signature.identity);
  out.prefixed(signature.s1);
  out.bytes(signature.s2);
  adopt(blob, std::move(bytes), static_cast<std::uint32_t>(length), 0);
  return true;
}

// The identity-based form as a schema of its own: its record is the blob.
struct IdentitySignatureBlob {
  using Record = ANYBUF;

  [[nodiscard]] static bool plan_element(const ANYBUF& blob, const Scope& scope, der::Plan& plan) {
    IdentitySignature parts{};
    return parse_blob(blob, parts) &&
           decltype(kIdentitySignature)::plan_element(parts, scope, plan);
  }
  static der::Writer write_element(const ANYBUF& blob, const Scope& scope, der::Writer out) {
    IdentitySignature parts{};
    static_cast<void>(parse_blob(blob, parts));  // as the plan has seen
    return decltype(kIdentitySignature)::write_element(parts, scope, out);
  }
  [[nodiscard]] static bool read_element(ANYBUF& blob, const Scope& /*scope*/, der::Cursor& in) {
    IdentitySignature parts{};
    return decltype(kIdentitySignature)::read_element(parts, {.views = true}, in) &&
           make_blob(parts, blob);
  }
};

// The algorithm that stands behind the certificate, without taking it.
[[nodiscard]] bool look_ahead(const Scope& scope, der::Cursor in, ANYBUF& algorithm) {
  der::Element certificate;
  der::Element element;
  if (!in.next(certificate) ||
      !in.take(scope.layout.v11 ? der::kObjectId : der::kPrintableString, element)) {
    return false;
  }
  algorithm = view_of(element.content(), element.length, 0);
  return true;
}

}  // namespace

bool SignerCertificate::plan(const Sign& sign, const Scope& scope, der::Plan& plan) {
  if (is_identity_signature(sign.algorithm)) {
    return IdentitySignatureBlob::plan_element(sign.certificate, scope, plan);
  }
  if (sign.algorithm.length != 0) return PlainCertificate::plan(sign, scope, plan);
  plan.add(der::element_size(sign.certificate.length));
  return has_its_bytes(sign.certificate);
}

der::Writer SignerCertificate::write(const Sign& sign, const Scope& scope, der::Writer out) {
  if (is_identity_signature(sign.algorithm)) {
    return IdentitySignatureBlob::write_element(sign.certificate, scope, out);
  }
  if (sign.algorithm.length != 0) return PlainCertificate::write(sign, scope, out);
  const std::uint64_t wrapped = der::element_size(sign.certificate.length);
  out.header(der::kSequence, static_cast<std::uint32_t>(wrapped));
  return WrappedCertificate::write(sign.certificate, out);
}

bool SignerCertificate::read(Sign& sign, const Scope& scope, der::Cursor& in) {
  ANYBUF algorithm{};
  if (!look_ahead(scope, in, algorithm)) return false;
  if (is_identity_signature(algorithm)) {
    return IdentitySignatureBlob::read_element(sign.certificate, scope, in);
  }
  if (algorithm.length != 0) return PlainCertificate::read(sign, scope, in);
  der::Element sequence;
  der::Element octets;
  if (!in.take(der::kSequence, sequence)) return false;
  der::Cursor inside(sequence);
  return inside.take(der::kOctetString, octets) && inside.finish() &&
         WrappedCertificate::read(octets, sign.certificate, scope);
}

std::int32_t EncodeSign(const TqLabelHandle* label, const Sign* sign, ANYBUF** slot) {
  return encode_versioned(kSign, label, sign, slot);
}
std::int32_t DecodeSign(const ANYBUF* element, Sign* sign, const TqLabelHandle* label) {
  return decode_versioned(kSign, element, sign, label);
}

std::int32_t GetMSign(const TqLabelHandle* label, const Sign* sign, ANYBUF** slot) {
  return encode_versioned(kSignerInput, label, sign, slot);
}

std::int32_t EncodeMultiSign(const TqLabelHandle* label, const Sign* first, ANYBUF** slot) {
  return encode_versioned(kMultiSign, label, first, slot);
}
std::int32_t DecodeMultiSign(const ANYBUF* element, Sign* first, const TqLabelHandle* label) {
  return decode_versioned(kMultiSign, element, first, label);
}

std::int32_t EncodeIBCSign(const ANYBUF* blob, ANYBUF** slot) {
  return encode(IdentitySignatureBlob{}, blob, slot);
}
std::int32_t DecodeIBCSign(const ANYBUF* element, ANYBUF* blob) {
  return decode(IdentitySignatureBlob{}, element, blob);
}

void FreeSign(Sign* sign) { release(kSign, sign); }
void FreeMultiSign(Sign* first) { release(kMultiSign, first); }

}  // namespace tq
