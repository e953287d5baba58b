#ifndef TQ_DER_LABEL_HEAD_H
#define TQ_DER_LABEL_HEAD_H

// The head of a label. The version text stands second in every layout, and what follows it hangs on
// the version: "6.0" signs before it encrypts, "1.1" moves both behind the times and adds an
// issuer.

#include "crypto/envelopes.h"
#include "crypto/signatures.h"

namespace tq {

constexpr bool in_message(const Scope& scope) { return scope.message; }

inline constexpr auto kHeadSign = ready<Part::kHeadSignNode>(
    either<in_message>(nested<&Head::headSign, kSignerInput>, nested<&Head::headSign, kSign>));
inline constexpr auto kHeadEncrypt =
    ready<Part::kEncryptHeadNode>(nested<&Head::encryptHead, kEncryptHead>);

inline constexpr auto kHeadFront = run(printable<&Head::label>, printable<&Head::versionText>);
inline constexpr auto kHeadRest11 = run(
    nested<&Head::issuer, kName>, integer_octets<&Head::serialNum>, timestamp<&Head::createTime>,
    timestamp<&Head::modifyTime>, octets<&Head::custom>, kHeadEncrypt, kHeadSign);
inline constexpr auto kHeadRest60 =
    run(octets<&Head::custom>, kHeadSign, kHeadEncrypt, integer_octets<&Head::serialNum>,
        timestamp<&Head::createTime>, timestamp<&Head::modifyTime>);
inline constexpr auto kHeadRest = either<in_11>(kHeadRest11, kHeadRest60);
inline constexpr auto kHead = record(kHeadFront, kHeadRest);

// Whether a head can be written: its version is known and its version text says the same.
[[nodiscard]] bool can_write_head(const TqLabelHandle& label, const Head& head);

// Reads a head and with it the version of its label.
[[nodiscard]] bool read_head(Head& head, TqLabelHandle& label, bool views, der::Cursor& in);

// Signature and encryption head come encoded.
std::int32_t EncodeHead(const TqLabelHandle* label, const Head* head, const ANYBUF* signature,
                        const ANYBUF* encrypt_head, ANYBUF** slot);
std::int32_t DecodeHead(const ANYBUF* element, Head* head, TqLabelHandle* label);

// The head of a label, and the head of its signature message.
std::int32_t EncodeHeadD(const TqLabelHandle* label, ANYBUF** slot);
std::int32_t GetMHead(const TqLabelHandle* label, ANYBUF** slot);

// Releases what the head owns; null is accepted.
void FreeHead(Head* head);

}  // namespace tq

#endif
