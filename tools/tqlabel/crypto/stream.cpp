#include "crypto/stream.h"

#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/params.h>
#include <openssl/rand.h>

namespace tq::tool {

Cbc::Cbc(Bytes key, const Iv& iv, Direction direction) : context_(EVP_CIPHER_CTX_new()) {
  require(context_ && EVP_CipherInit_ex2(context_.get(), EVP_aes_256_cbc(), key.data(), iv.data(),
                                         static_cast<int>(direction), nullptr) == 1,
          "AES-256-CBC");
}

std::size_t Cbc::update(Bytes in, std::uint8_t* out) {
  int length = 0;
  require(
      EVP_CipherUpdate(context_.get(), out, &length, in.data(), static_cast<int>(in.size())) == 1,
      "AES-256-CBC");
  return static_cast<std::size_t>(length);
}

bool Cbc::finish(std::uint8_t* out, std::size_t& length) {
  int written = 0;
  const bool done = EVP_CipherFinal_ex(context_.get(), out, &written) == 1;
  ERR_clear_error();
  length = static_cast<std::size_t>(written);
  return done;
}

Hmac::Hmac(Bytes key) {
  const Owned<EVP_MAC, EVP_MAC_free> mac(EVP_MAC_fetch(nullptr, OSSL_MAC_NAME_HMAC, nullptr));
  context_.reset(EVP_MAC_CTX_new(mac.get()));
  char digest[] = "SHA256";
  const OSSL_PARAM parameters[] = {
      OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, digest, 0), OSSL_PARAM_END};
  require(context_ && EVP_MAC_init(context_.get(), key.data(), key.size(), parameters) == 1,
          "HMAC-SHA-256");
}

void Hmac::update(Bytes bytes) {
  require(EVP_MAC_update(context_.get(), bytes.data(), bytes.size()) == 1, "HMAC-SHA-256");
}

Sum Hmac::finish() {
  Sum sum;
  std::size_t length = 0;
  require(EVP_MAC_final(context_.get(), sum.data(), &length, sum.size()) == 1, "HMAC-SHA-256");
  return sum;
}

Sha256::Sha256() : context_(EVP_MD_CTX_new()) {
  require(context_ && EVP_DigestInit_ex2(context_.get(), EVP_sha256(), nullptr) == 1, "SHA-256");
}

void Sha256::update(Bytes bytes) {
  require(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()) == 1, "SHA-256");
}

Sum Sha256::finish() {
  Sum sum;
  require(EVP_DigestFinal_ex(context_.get(), sum.data(), nullptr) == 1, "SHA-256");
  return sum;
}

bool are_equal(Bytes left, Bytes right) {
  return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

void fill_randomly(std::span<std::uint8_t> bytes) {
  require(RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) == 1, "random bytes");
}

}  // namespace tq::tool
