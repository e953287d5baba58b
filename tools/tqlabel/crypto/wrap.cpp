#include "crypto/wrap.h"

#include <openssl/err.h>
#include <openssl/rsa.h>

#include "base/failure.h"
#include "crypto/stream.h"

namespace tq::tool {
namespace {

bool set_padding(EVP_PKEY_CTX* context, KeyKind kind) {
  return kind == KeyKind::kSm2 ||
         (EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_OAEP_PADDING) == 1 &&
          EVP_PKEY_CTX_set_rsa_oaep_md(context, EVP_sha256()) == 1 &&
          EVP_PKEY_CTX_set_rsa_mgf1_md(context, EVP_sha256()) == 1);
}

}  // namespace

const char* wrapping_name(KeyKind kind) { return kind == KeyKind::kSm2 ? "SM2" : "RSA"; }

std::vector<std::uint8_t> wrap(const Secret& key, const Party& recipient) {
  const KeyContext context(EVP_PKEY_CTX_new(recipient.public_key.get(), nullptr));
  std::size_t length = 0;
  require(context && EVP_PKEY_encrypt_init(context.get()) == 1 &&
              set_padding(context.get(), recipient.kind) &&
              EVP_PKEY_encrypt(context.get(), nullptr, &length, key.data(), key.size()) == 1,
          "wrapping the key", recipient.file);
  std::vector<std::uint8_t> wrapped(length);
  require(EVP_PKEY_encrypt(context.get(), wrapped.data(), &length, key.data(), key.size()) == 1,
          "wrapping the key", recipient.file);
  wrapped.resize(length);
  return wrapped;
}

// Whatever is wrong with the wrapped key, the answer is the same.
Secret unwrap(Bytes wrapped, const Party& recipient) {
  const KeyContext context(EVP_PKEY_CTX_new(recipient.private_key.get(), nullptr));
  require(context && EVP_PKEY_decrypt_init(context.get()) == 1 &&
              set_padding(context.get(), recipient.kind),
          "unwrapping the key");
  Secret key(wrapped.size() + kKeySize);
  std::size_t length = key.size();
  const bool done =
      EVP_PKEY_decrypt(context.get(), key.data(), &length, wrapped.data(), wrapped.size()) == 1 &&
      length == kKeySize;
  ERR_clear_error();
  if (!done) throw Failure{.status = Status::kCrypto, .why = "the key does not unwrap"};
  key.resize(kKeySize);
  return key;
}

}  // namespace tq::tool
