#ifndef TQLABEL_TOOL_CRYPTO_SIGNER_H
#define TQLABEL_TOOL_CRYPTO_SIGNER_H

#include "crypto/party.h"

namespace tq::tool {

// What a label calls the signatures of keys of that kind.
[[nodiscard]] const char* signature_name(KeyKind kind);

// PKCS #1 v1.5 with SHA-256 for RSA; SM3 with the usual identity for SM2, as r and s of 32 bytes.
[[nodiscard]] std::vector<std::uint8_t> sign(Bytes message, const Party& signer);

[[nodiscard]] bool is_signed(Bytes message, Bytes signature, const Party& signer);

}  // namespace tq::tool

#endif
