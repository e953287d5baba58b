#include "sealed/body.h"

#include <algorithm>

#include "base/failure.h"
#include "crypto/stream.h"

namespace tq::tool {
namespace {

constexpr std::size_t kSumSize = Sum{}.size();

Sum authenticator(Bytes head, Bytes iv_and_ciphertext, const FileKeys& keys) {
  Hmac mac(keys.body_authentication);
  mac.update(head);
  mac.update(iv_and_ciphertext);
  return mac.finish();
}

}  // namespace

std::size_t sealed_body_size(std::size_t size) {
  return kBlockSize + encrypted_size(size) + kSumSize;
}

std::vector<std::uint8_t> seal_body(Bytes head, Bytes body, const FileKeys& keys) {
  std::vector<std::uint8_t> sealed(sealed_body_size(body.size()));
  Iv iv;
  fill_randomly(iv);
  std::ranges::copy(iv, sealed.begin());
  Cbc cipher(keys.body_encryption, iv, Cbc::Direction::kEncrypt);
  std::uint8_t* at = sealed.data() + kBlockSize;
  at += cipher.update(body, at);
  std::size_t length = 0;
  require(cipher.finish(at, length), "AES-256-CBC");
  const Bytes covered = {sealed.data(), sealed.size() - kSumSize};
  std::ranges::copy(authenticator(head, covered, keys), sealed.end() - kSumSize);
  return sealed;
}

Secret open_body(Bytes head, Bytes sealed, const FileKeys& keys) {
  const Failure refused = {.status = Status::kCrypto,
                           .why = "head or body of the label is not what was sealed"};
  if (sealed.size() < sealed_body_size(0)) throw refused;
  const Bytes covered = sealed.first(sealed.size() - kSumSize);
  if (!are_equal(authenticator(head, covered, keys), sealed.last(kSumSize))) throw refused;
  Iv iv;
  std::ranges::copy(covered.first(kBlockSize), iv.begin());
  Cbc cipher(keys.body_encryption, iv, Cbc::Direction::kDecrypt);
  Secret body(covered.size());
  const std::size_t length = cipher.update(covered.subspan(kBlockSize), body.data());
  std::size_t rest = 0;
  if (!cipher.finish(body.data() + length, rest)) throw refused;
  body.resize(length + rest);
  return body;
}

}  // namespace tq::tool
