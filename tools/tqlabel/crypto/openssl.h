#ifndef TQLABEL_TOOL_CRYPTO_OPENSSL_H
#define TQLABEL_TOOL_CRYPTO_OPENSSL_H

#include <openssl/evp.h>

#include <memory>
#include <string>

#include "core/model/buffer.h"

namespace tq::tool {

template <class T, auto Release>
using Owned = std::unique_ptr<T, Releaser<Release>>;

using Key = Owned<EVP_PKEY, EVP_PKEY_free>;
using KeyContext = Owned<EVP_PKEY_CTX, EVP_PKEY_CTX_free>;

// Throws unless it was done: what was attempted, with OpenSSL's reason.
void require(bool done, const std::string& what, const std::string& file = {});

}  // namespace tq::tool

#endif
