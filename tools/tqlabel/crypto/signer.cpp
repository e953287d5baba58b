#include "crypto/signer.h"

#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/params.h>

namespace tq::tool {
namespace {

using Ecdsa = Owned<ECDSA_SIG, ECDSA_SIG_free>;
using Context = Owned<EVP_MD_CTX, EVP_MD_CTX_free>;

constexpr std::size_t kNumberSize = 32;

// SM2 signs under an identity; this is the one that everybody uses.
const OSSL_PARAM* parameters_for(KeyKind kind) {
  static char identity[] = "1234567812345678";
  static const OSSL_PARAM sm2[] = {
      OSSL_PARAM_construct_octet_string(OSSL_PKEY_PARAM_DIST_ID, identity, sizeof identity - 1),
      OSSL_PARAM_END};
  return kind == KeyKind::kSm2 ? sm2 : nullptr;
}

const char* digest_of(KeyKind kind) { return kind == KeyKind::kSm2 ? "SM3" : "SHA256"; }

std::vector<std::uint8_t> raw_of(Bytes der) {
  const unsigned char* at = der.data();
  const Ecdsa parsed(d2i_ECDSA_SIG(nullptr, &at, static_cast<long>(der.size())));
  std::vector<std::uint8_t> raw(2 * kNumberSize);
  constexpr int kSize = kNumberSize;
  require(parsed && BN_bn2binpad(ECDSA_SIG_get0_r(parsed.get()), raw.data(), kSize) == kSize &&
              BN_bn2binpad(ECDSA_SIG_get0_s(parsed.get()), raw.data() + kNumberSize, kSize) ==
                  kSize,
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
  std::size_t length = 0;
  require(context &&
              EVP_DigestSignInit_ex(context.get(), nullptr, digest_of(signer.kind), nullptr,
                                    nullptr, signer.private_key.get(),
                                    parameters_for(signer.kind)) == 1 &&
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
  const bool verified =
      context &&
      EVP_DigestVerifyInit_ex(context.get(), nullptr, digest_of(signer.kind), nullptr, nullptr,
                              signer.public_key.get(), parameters_for(signer.kind)) == 1 &&
      EVP_DigestVerify(context.get(), signature.data(), signature.size(), message.data(),
                       message.size()) == 1;
  ERR_clear_error();
  return verified;
}

}  // namespace tq::tool
