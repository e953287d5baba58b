#ifndef TQ_CRYPTO_SIGNATURES_H
#define TQ_CRYPTO_SIGNATURES_H

// Signature records, the multi-signature and the identity-based signature.

#include "der/schema/list.h"

namespace tq {

// The parts of an identity-based signature. In memory a certificate field holds them as one blob:
// length and bytes of the identity, length and bytes of s1 (lengths as 32 bits, little-endian), s2.
struct IdentitySignature {
  ANYBUF identity;
  ANYBUF s1;
  ANYBUF s2;
};

inline constexpr auto kIdentitySignature =
    record(printable<&IdentitySignature::identity>, octets<&IdentitySignature::s1>,
           octets<&IdentitySignature::s2>);

// The first element of a signature. Its form hangs on the algorithm, which stands behind it: the
// parts of an identity-based signature; the certificate itself; or, without an algorithm,
// SEQUENCE { OCTET STRING }.
struct SignerCertificate {
  using Record = Sign;
  static constexpr std::size_t kElements = 1;
  static constexpr std::string_view kName = member_name<&Sign::certificate>();

  [[nodiscard]] static bool plan(const Sign& sign, const Scope& scope, der::Plan& plan);
  static der::Writer write(const Sign& sign, const Scope& scope, der::Writer out);
  [[nodiscard]] static bool read(Sign& sign, const Scope& scope, der::Cursor& in);
  static void release(Sign& sign) { clear(sign.certificate); }
  [[nodiscard]] static std::uint64_t buffers(const Sign& sign) { return sign.certificate.length; }
};

inline constexpr auto kSigner = run(
    SignerCertificate{}, either<in_11>(object_id<&Sign::algorithm>, printable<&Sign::algorithm>));
// What a signer signs of his own: the signature without its value.
inline constexpr auto kSignerInput = record(kSigner);
inline constexpr auto kSign = record(kSigner, bits<&Sign::value>);

inline constexpr auto kMultiSign = chained(kSign);

std::int32_t EncodeSign(const TqLabelHandle* label, const Sign* sign, ANYBUF** slot);
std::int32_t DecodeSign(const ANYBUF* element, Sign* sign, const TqLabelHandle* label);
std::int32_t GetMSign(const TqLabelHandle* label, const Sign* sign, ANYBUF** slot);
std::int32_t EncodeMultiSign(const TqLabelHandle* label, const Sign* first, ANYBUF** slot);
std::int32_t DecodeMultiSign(const ANYBUF* element, Sign* first, const TqLabelHandle* label);

// Between the blob of an identity-based signature and its SEQUENCE.
std::int32_t EncodeIBCSign(const ANYBUF* blob, ANYBUF** slot);
std::int32_t DecodeIBCSign(const ANYBUF* element, ANYBUF* blob);

// Releases the buffers of one record, of the record and all behind it; null is accepted.
void FreeSign(Sign* sign);
void FreeMultiSign(Sign* first);

}  // namespace tq

#endif
