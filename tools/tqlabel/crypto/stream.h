#ifndef TQLABEL_TOOL_CRYPTO_STREAM_H
#define TQLABEL_TOOL_CRYPTO_STREAM_H

// What works on bytes as they pass: AES-256-CBC, HMAC-SHA-256 and SHA-256.

#include <array>

#include "base/text.h"
#include "crypto/openssl.h"
#include "crypto/secret.h"

namespace tq::tool {

inline constexpr std::size_t kKeySize = 32;
inline constexpr std::size_t kBlockSize = 16;  // of the cipher, and of its IV

using Sum = std::array<std::uint8_t, 32>;  // a digest or an authenticator
using Iv = std::array<std::uint8_t, kBlockSize>;

// What the cipher makes of so many bytes: there is always padding (PKCS #7).
constexpr std::uint64_t encrypted_size(std::uint64_t size) {
  return size / kBlockSize * kBlockSize + kBlockSize;
}

class Cbc {
 public:
  enum class Direction : int { kDecrypt = 0, kEncrypt = 1 };

  Cbc(Bytes key, const Iv& iv, Direction direction);

  // Both give the number of bytes written, which is up to a block more than came in.
  [[nodiscard]] std::size_t update(Bytes in, std::uint8_t* out);
  // Nothing where the padding is wrong.
  [[nodiscard]] bool finish(std::uint8_t* out, std::size_t& length);

 private:
  Owned<EVP_CIPHER_CTX, EVP_CIPHER_CTX_free> context_;
};

class Hmac {
 public:
  explicit Hmac(Bytes key);

  void update(Bytes bytes);
  [[nodiscard]] Sum finish();

 private:
  Owned<EVP_MAC_CTX, EVP_MAC_CTX_free> context_;
};

class Sha256 {
 public:
  Sha256();

  void update(Bytes bytes);
  [[nodiscard]] Sum finish();

 private:
  Owned<EVP_MD_CTX, EVP_MD_CTX_free> context_;
};

// In a time that does not depend on the bytes.
[[nodiscard]] bool are_equal(Bytes left, Bytes right);

void fill_randomly(std::span<std::uint8_t> bytes);

}  // namespace tq::tool

#endif
