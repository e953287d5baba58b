#ifndef TQ_CRYPTO_ISSUERS_H
#define TQ_CRYPTO_ISSUERS_H

// Between attribute chains and the callers' flat issuer record.

#include <tqlabel/label.h>

#include "core/model/buffer.h"

namespace tq {

inline constexpr std::uint32_t kIssuerCapacity = 10;

// Number of attributes of a name; one that was never set has none.
[[nodiscard]] std::uint64_t count_attributes(const X509Name& first);

using Issuer = std::unique_ptr<PJCertIssuer, Releaser<FreeIssuerName>>;

// A flat copy of the name, or null when it has no room for it or there is no memory.
[[nodiscard]] Issuer make_issuer(const X509Name& name);

}  // namespace tq

#endif
