// Walking the signatures of the body, and what each of a chain of signers signs.

#include "access/field.h"
#include "core/model/layout.h"
#include "crypto/signatures.h"

struct SignEnum {
  TqLabel label;
  const ANYBUF* certificate;  // of the next signature; null when there are no more
  const ANYBUF* value;
  const tq::Sign* following;
  char* last_name;  // handed out with the last signature
};

namespace tq {
namespace {

// Callers rely on as many bytes behind a name.
constexpr std::uint32_t kNameRoom = 64;

void move_to(SignEnum& enumerator, const Sign* sign) {
  enumerator.certificate = sign == nullptr ? nullptr : &sign->certificate;
  enumerator.value = sign == nullptr ? nullptr : &sign->value;
  enumerator.following = sign == nullptr ? nullptr : sign->next;
}

// The name of the head's algorithm: it stands for every entry, whatever an entry's own.
[[nodiscard]] Block<char> make_name(TqLabel label) {
  Block<char> name = make_zeroed<char>(kNameRoom);
  std::uint32_t length = kNameRoom - 1;
  if (!name || GetHeadSignAlg(label, as_octets(name.get()), &length) != 0) {
    return nullptr;
  }
  return name;
}

bool is_certificate(const Sign& sign, const MultiSignData& request) {
  return equal_bytes(sign.certificate, request.cert, request.certLen);
}

}  // namespace
}  // namespace tq

std::int32_t CreateEmurateSign(TqLabel label, SignEnum** enumerator) {
  if (label == nullptr || enumerator == nullptr) return -1;
  tq::Block<SignEnum> made = tq::make_zeroed<SignEnum>();
  if (!made) return -1;
  made->label = label;
  if (tq::layout_of(*label).multi_sign) {
    tq::move_to(*made, &label->body.multiSign);
  } else {
    made->certificate = &label->body.bodySignCert;
    made->value = &label->body.bodySignValue;
  }
  *enumerator = made.release();
  return 0;
}

std::int32_t GetNextSign(SignEnum* enumerator, SignAttribute* attribute) {
  if (enumerator == nullptr || attribute == nullptr) return -1;
  if (enumerator->certificate == nullptr) return 1;
  Asn1Free(enumerator->last_name);
  enumerator->last_name = nullptr;
  const ANYBUF& certificate = *enumerator->certificate;
  const ANYBUF& value = *enumerator->value;
  if (attribute->value != nullptr && attribute->cert != nullptr) {
    if (attribute->certLen < certificate.length || attribute->valueLen < value.length) return -1;
    tq::Block<char> name = tq::make_name(enumerator->label);
    if (!name) return -1;
    if (certificate.length != 0) {
      std::memcpy(attribute->cert, certificate.data, certificate.length);
    }
    if (value.length != 0) std::memcpy(attribute->value, value.data, value.length);
    attribute->algName = enumerator->last_name = name.release();
    tq::move_to(*enumerator, enumerator->following);
  }
  attribute->certLen = certificate.length;
  attribute->valueLen = value.length;
  return 0;
}

std::int32_t DestroySignEmura(SignEnum* enumerator) {
  if (enumerator != nullptr) Asn1Free(enumerator->last_name);
  return DestroyEmura(enumerator);
}

std::int32_t DestroyEmura(void* enumerator) {
  Asn1Free(enumerator);
  return 0;
}

std::int32_t GetMultiSignData(TqLabel label, MultiSignData* request) {
  if (label == nullptr || request == nullptr) return -1;
  const tq::Scope scope = tq::scope_of(*label);
  tq::Sign& first = label->body.multiSign;
  // The first signer signs no earlier signature.
  if (!scope.layout.multi_sign ||
      (request->cert != nullptr && tq::is_certificate(first, *request))) {
    request->dataLen = 0;
    return 0;
  }
  tq::Sign* last = &first;
  while (last->next != nullptr &&
         (request->cert == nullptr || !tq::is_certificate(*last->next, *request))) {
    last = last->next;
  }
  // The chain is cut behind the last signature that is covered, for as long as it is encoded.
  tq::Sign* const cut = last->next;
  last->next = nullptr;
  const std::int32_t result =
      tq::encode_out(tq::kMultiSign, first, scope, request->data, &request->dataLen);
  last->next = cut;
  return result;
}
