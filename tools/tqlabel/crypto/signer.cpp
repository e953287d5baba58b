#include "crypto/signer.h"

#include <openssl/ec.h>
#include <openssl/err.h>

#include <string_view>

namespace tq::tool {
namespace {

using Ecdsa = Owned<ECDSA_SIG, ECDSA_SIG_free>;
using Context = Owned<EVP_MD_CTX, EVP_MD_CTX_free>;

constexpr std::size_t kNumberSize = 32;

// SM2 signs under an identity; this is the one that everybody uses.
constexpr std::string_view kIdentity = "1234567812345678";

bool set_identity(EVP_PKEY_CTX* context, KeyKind kind) {
  return kind == KeyKind::kRsa ||
         EVP_PKEY_CTX_set1_id(context, kIdentity.data(), kIdentity.size()) == 1;
}

const char* digest_of(KeyKind kind) { return kind == KeyKind::kSm2 ? "SM3" : "SHA256"; }

std::vector<std::uint8_t> raw_of(Bytes der) {
  const unsigned char* at = der.data();
  const Ecdsa parsed(d2i_ECDSA_SIG(nullptr, &at, static_cast<long>(der.size())));
  std::vector<std::uint8_t> raw(2 * kNumberSize);
  constexpr int kSize = kNumberSize;
  require(
      parsed && BN_bn2binpad(ECDSA_SIG_get0_r(parsed.get()), raw.data(), kSize) == kSize &&
          BN_bn2binpad(ECDSA_SIG_get0_s(parsed.get()), raw.data() + kNumberSize, kSize) == kSize,
      "an SM2 signature");
  return raw;
}

std::vector<std::uint8_t> der_of(Bytes raw) {
  if (raw.size() != 2 * kNumberSize) return {};
  const Ecdsa made(ECDSA_SIG_new());
  BIGNUM* r = BN_bin2bn(raw.data(), static_cast<int>(kNumberSize), nullptr);
  BIGNUM* s = BN_bin2bn(raw.data() + kNumberSize, static_cast<int>(kNumberSize), nullptr);
  require(made && r != nullptr && s != nullptr && ECDSA_SIG_set0(made.get(), r, s) == 1,
          "an SM2 signature");
  std::vector<std::uint8_t> der(static_cast<std::size_t>(i2d_ECDSA_SIG(made.get(), nullptr)));
  unsigned char* at = der.data();
  i2d_ECDSA_SIG(made.get(), &at);
  return der;
}

}  // namespace

const char* signature_name(KeyKind kind) {
  return kind == KeyKind::kSm2 ? "sm3WithSM2Encryption" : "sha256WithRSAEncryption";
}

std::vector<std::uint8_t> sign(Bytes message, const Party& signer) {
  const Context context(EVP_MD_CTX_new());
  EVP_PKEY_CTX* parameters = nullptr;
  std::size_t length = 0;
  require(context &&
              EVP_DigestSignInit_ex(context.get(), &parameters, digest_of(signer.kind), nullptr,
                                    nullptr, signer.private_key.get(), nullptr) == 1 &&
              set_identity(parameters, signer.kind) &&
              EVP_DigestSign(context.get(), nullptr, &length, message.data(), message.size()) == 1,
          "signing", signer.file);
  std::vector<std::uint8_t> value(length);
  require(EVP_DigestSign(context.get(), value.data(), &length, message.data(), message.size()) == 1,
          "signing", signer.file);
  value.resize(length);
  return signer.kind == KeyKind::kSm2 ? raw_of(value) : value;
}

bool is_signed(Bytes message, Bytes signature, const Party& signer) {
  std::vector<std::uint8_t> der;
  if (signer.kind == KeyKind::kSm2) signature = der = der_of(signature);
  const Context context(EVP_MD_CTX_new());
  EVP_PKEY_CTX* parameters = nullptr;
  const bool verified =
      context &&
      EVP_DigestVerifyInit_ex(context.get(), &parameters, digest_of(signer.kind), nullptr, nullptr,
                              signer.public_key.get(), nullptr) == 1 &&
      set_identity(parameters, signer.kind) &&
      EVP_DigestVerify(context.get(), signature.data(), signature.size(), message.data(),
                       message.size()) == 1;
  ERR_clear_error();
  return verified;
}

}  // namespace tq::tool
