#ifndef TQLABEL_TOOL_CRYPTO_DERIVE_H
#define TQLABEL_TOOL_CRYPTO_DERIVE_H

#include "base/text.h"
#include "crypto/secret.h"

namespace tq::tool {

// The key of a file, which its recipients are given, and the four that are used in its place.
struct FileKeys {
  Secret file;
  Secret body_encryption;
  Secret body_authentication;
  Secret content_encryption;
  Secret content_authentication;
};

[[nodiscard]] FileKeys derive_keys(Secret file_key);

// The same of a new random key.
[[nodiscard]] FileKeys make_keys();

}  // namespace tq::tool

#endif
