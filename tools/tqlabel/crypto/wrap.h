#ifndef TQLABEL_TOOL_CRYPTO_WRAP_H
#define TQLABEL_TOOL_CRYPTO_WRAP_H

#include "crypto/party.h"
#include "crypto/secret.h"

namespace tq::tool {

// What a label calls the wrapping for keys of that kind.
[[nodiscard]] const char* wrapping_name(KeyKind kind);

// A file key for one recipient alone: RSAES-OAEP with SHA-256, or SM2.
[[nodiscard]] std::vector<std::uint8_t> wrap(const Secret& key, const Party& recipient);

[[nodiscard]] Secret unwrap(Bytes wrapped, const Party& recipient);

}  // namespace tq::tool

#endif
