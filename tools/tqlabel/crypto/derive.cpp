#include "crypto/derive.h"

#include <openssl/kdf.h>

#include <string_view>
#include <utility>

#include "base/text.h"
#include "crypto/stream.h"

namespace tq::tool {
namespace {

// HKDF with SHA-256 and without a salt (RFC 5869).
Secret derive(const Secret& key, std::string_view purpose) {
  const Bytes info = bytes_of(purpose);
  const auto info_size = static_cast<int>(info.size());
  const KeyContext context(EVP_PKEY_CTX_new_id(EVP_PKEY_HKDF, nullptr));
  Secret derived(kKeySize);
  std::size_t length = derived.size();
  require(context && EVP_PKEY_derive_init(context.get()) == 1 &&
              EVP_PKEY_CTX_set_hkdf_md(context.get(), EVP_sha256()) == 1 &&
              EVP_PKEY_CTX_set1_hkdf_key(context.get(), key.data(), static_cast<int>(key.size())) ==
                  1 &&
              EVP_PKEY_CTX_add1_hkdf_info(context.get(), info.data(), info_size) == 1 &&
              EVP_PKEY_derive(context.get(), derived.data(), &length) == 1,
          "HKDF-SHA-256");
  return derived;
}

}  // namespace

FileKeys derive_keys(Secret file_key) {
  FileKeys keys;
  keys.body_encryption = derive(file_key, "tqlabel body encryption");
  keys.body_authentication = derive(file_key, "tqlabel body authentication");
  keys.content_encryption = derive(file_key, "tqlabel content encryption");
  keys.content_authentication = derive(file_key, "tqlabel content authentication");
  keys.file = std::move(file_key);
  return keys;
}

FileKeys make_keys() {
  Secret file_key(kKeySize);
  fill_randomly(file_key);
  return derive_keys(std::move(file_key));
}

}  // namespace tq::tool
