#ifndef TQ_CRYPTO_ENVELOPES_H
#define TQ_CRYPTO_ENVELOPES_H

// Digital envelopes, in the head and in the body, and the encryption head.

#include "crypto/identity_key.h"
#include "crypto/names.h"
#include "der/records/privilege.h"
#include "der/schema/part.h"

namespace tq {

// The wrapped key. Its form hangs on the algorithm before it: the parts of an identity-based key,
// or an OCTET STRING.
struct WrappedKey {
  using Record = ENVELOPE;
  static constexpr std::size_t kElements = 1;
  static constexpr std::string_view kName = member_name<&ENVELOPE::encryptedKey>();

  [[nodiscard]] static bool plan(const ENVELOPE& envelope, const Scope& scope, der::Plan& plan);
  static der::Writer write(const ENVELOPE& envelope, const Scope& scope, der::Writer out);
  [[nodiscard]] static bool read(ENVELOPE& envelope, const Scope& scope, der::Cursor& in);
  static void release(ENVELOPE& envelope) { clear(envelope.encryptedKey); }
  [[nodiscard]] static std::uint64_t buffers(const ENVELOPE& envelope) {
    return envelope.encryptedKey.length;
  }
};

inline constexpr auto kEnvelope = record(
    when<in_11>(nested<&ENVELOPE::issuer, kName>), integer_octets<&ENVELOPE::serial>,
    either<in_11>(object_id<&ENVELOPE::algorithm>, printable<&ENVELOPE::algorithm>), WrappedKey{});

inline constexpr auto kHeadEnvelopes = list_of<AlwaysNull>(kEnvelope);

inline constexpr auto kBodyEnvelope = record(nested<&BDigitEnvolope::envelope, kEnvelope>,
                                             nested<&BDigitEnvolope::privilege, kPrivilege>);

inline constexpr auto kBodyEnvelopes = list_of<AlwaysNull>(kBodyEnvelope);

inline constexpr auto kEncryptHead =
    record(either<in_11>(object_id<&EncryptHead::algorithm>, printable<&EncryptHead::algorithm>),
           integer<&EncryptHead::mode>, when<in_11>(integer<&EncryptHead::feedBackBits>),
           ready<Part::kHeadEnvelopesNode>(nested<&EncryptHead::envelopes, kHeadEnvelopes>));

std::int32_t EncodeENVELOPE(const TqLabelHandle* label, const ENVELOPE* record, ANYBUF** slot);
std::int32_t DecodeENVELOPE(const ANYBUF* element, ENVELOPE* record, const TqLabelHandle* label);
std::int32_t EncodeDigitEnvolop_F(const TqLabelHandle* label, ENVELOPE* first, ANYBUF** slot);
std::int32_t DecodeDigitEnvolop(const ANYBUF* element, ENVELOPE** first,
                                const TqLabelHandle* label);
std::int32_t EncodeBDigitEnvolope_F(const TqLabelHandle* label, const BDigitEnvolope* record,
                                    ANYBUF** slot);
std::int32_t DecodeBDigitEnvolope(const ANYBUF* element, BDigitEnvolope* record,
                                  const TqLabelHandle* label);
std::int32_t EncodeEncryptBody_F(const TqLabelHandle* label, BDigitEnvolope* first, ANYBUF** slot);
std::int32_t DecodeEncryptBody(const ANYBUF* element, BDigitEnvolope** first,
                               const TqLabelHandle* label);
// The envelopes come encoded and are required.
std::int32_t EncodeEncryptHead(const TqLabelHandle* label, const EncryptHead* record,
                               const ANYBUF* envelopes, ANYBUF** slot);
std::int32_t DecodeEncryptHead(const ANYBUF* element, EncryptHead* record,
                               const TqLabelHandle* label);

// Wrap chains of encoded elements, which stay the caller's. The label is not used.
std::int32_t EncodeDigitEnvolop(const TqLabelHandle* label, const ANYBUF* chain, ANYBUF** slot);
std::int32_t EncodeBDigitEnvolope(const TqLabelHandle* label, const ANYBUF* chain, ANYBUF** slot);
std::int32_t EncodeEncryptBody(const TqLabelHandle* label, const ANYBUF* chain, ANYBUF** slot);

// Each releases what is owned and clears the pointers to it; null is accepted.
void FreeENVELOPE(ENVELOPE* record);
void FreeDigitEnvolop(ENVELOPE* first);
void FreeBDigitEnvolope(BDigitEnvolope* record);
void FreeEncryptBody(BDigitEnvolope* first);
void FreeEncryptHead(EncryptHead* record);

// Copies the content of an element whose length has the long form; of a shorter one it takes the
// length octet for the number of further length octets.
std::int32_t GetSequenceData(const ANYBUF* element, std::uint8_t* buffer, std::uint32_t* length);

}  // namespace tq

#endif
