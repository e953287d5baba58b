#ifndef TQ_CRYPTO_RECIPIENTS_H
#define TQ_CRYPTO_RECIPIENTS_H

// A recipient is a certificate, by its serial number and its issuer; head and body each have a list
// of envelopes, one per recipient.

#include "core/model/chain.h"
#include "core/model/layout.h"
#include "crypto/envelopes.h"

namespace tq {

struct Recipient {
  const std::uint8_t* serial;
  std::uint8_t serial_length;
  const PJCertIssuer* issuer;
};

inline const ENVELOPE& envelope_of(const ENVELOPE& node) { return node; }
inline const ENVELOPE& envelope_of(const BDigitEnvolope& node) { return node.envelope; }

inline bool is_for(const ENVELOPE& envelope, const Recipient& recipient) {
  return equal_bytes(envelope.serial, recipient.serial, recipient.serial_length) &&
         X509NameCmp(&envelope.issuer, recipient.issuer) == 0;
}

// The answers of a lookup, as the interface gives them.
enum Lookup : std::int32_t { kLookupFailed = -1, kNotFound = 0, kFound = 1 };

// The link to the first envelope of the recipient: what to change in order to take it out. Only
// "1.1" labels can be asked, and only with an issuer.
template <class Node>
[[nodiscard]] Lookup find(const TqLabelHandle& label, Node*& first, const Recipient& recipient,
                          Node**& link) {
  if (!layout_of(label).v11 || recipient.serial == nullptr || recipient.issuer == nullptr) {
    return kLookupFailed;
  }
  for (Node** at = &first; *at != nullptr; at = &(*at)->next) {
    if (!is_for(envelope_of(**at), recipient)) continue;
    link = at;
    return kFound;
  }
  return kNotFound;
}

}  // namespace tq

#endif
