// The signatures of the body: value and certificate, or the chain of a "1.1.2" label.

#include "access/signature.h"

#include <utility>

#include "access/copy.h"
#include "core/model/layout.h"
#include "crypto/signatures.h"

namespace tq {
namespace {

// Callers provide as many bytes for a name, and an algorithm is stored in as many.
constexpr std::uint32_t kNameRoom = 64;
// Signature values are taken in whole units only.
constexpr std::uint32_t kValueUnit = 32;

constexpr auto kSignValue = [](TqLabelHandle& label) -> ANYBUF& {
  return label.body.bodySignValue;
};
constexpr auto kSignCert = [](TqLabelHandle& label) -> ANYBUF& { return label.body.bodySignCert; };

// The name of the first signer's algorithm, or the empty text.
void copy_algorithm_name(const ANYBUF& algorithm, char* buffer) {
  char name[kNameRoom] = {};
  if (SflOID2Alg(algorithm.data, algorithm.length, name, nullptr, nullptr) == -1) *name = '\0';
  std::memcpy(buffer, name, std::strlen(name) + 1);
}

void copy_head_algorithm_name(TqLabel label, char* buffer) {
  std::uint32_t length = kNameRoom - 1;
  if (GetHeadSignAlg(label, as_octets(buffer), &length) != 0) length = 0;
  buffer[length] = '\0';
}

bool is_complete(const SignAttribute& attribute) {
  return attribute.cert != nullptr && attribute.value != nullptr && attribute.algName != nullptr;
}

// An incomplete attribute makes an empty record, which is no failure; no memory is.
[[nodiscard]] bool make_signer(const SignAttribute& attribute, Sign& sign) {
  if (!is_complete(attribute) || SetMultiSignAttribute(&sign, &attribute) == 0) return true;
  FreeSign(&sign);
  return false;
}

[[nodiscard]] bool append_signer(Sign& first, const SignAttribute& attribute) {
  Block<Sign> made = make_zeroed<Sign>();
  if (!made || !make_signer(attribute, *made)) return false;
  Sign* last = &first;
  while (last->next != nullptr) last = last->next;
  last->next = made.release();
  return true;
}

[[nodiscard]] bool replace_signers(Sign& first, const SignAttribute& attribute) {
  Sign made = {};
  if (!make_signer(attribute, made)) return false;
  FreeMultiSign(&first);
  first = made;
  return true;
}

// A certificate or a value that its own setter would refuse is passed over. Both are copied before
// either is stored.
[[nodiscard]] bool set_single_signer(TqLabel label, const SignAttribute& attribute) {
  const bool has_cert = attribute.cert != nullptr && attribute.certLen != 0;
  const bool has_value = attribute.valueLen % kValueUnit == 0;
  ANYBUF cert{};
  if (has_cert &&
      !replace(cert, attribute.cert, attribute.certLen, der::type_word(der::kSequence))) {
    return false;
  }
  if (has_value && SetBodySigVal(label, attribute.value, attribute.valueLen) != 0) {
    clear(cert);
    return false;
  }
  if (has_cert) {
    clear(kSignCert(*label));
    kSignCert(*label) = cert;
  }
  return true;
}

}  // namespace

std::int32_t SetMultiSignAttribute(Sign* sign, const SignAttribute* attribute) {
  if (sign == nullptr || attribute == nullptr || !is_complete(*attribute)) return -1;
  FreeSign(sign);
  Block<std::uint8_t> algorithm = make_zeroed<std::uint8_t>(kNameRoom);
  if (!algorithm) return -1;
  std::uint32_t length = kNameRoom;  // stays for a name that is not known
  static_cast<void>(SflAlg2OID(as_octets(attribute->algName),
                               GetStringLength(attribute->algName) - 1, 0, 0, algorithm.get(),
                               &length));
  adopt(sign->algorithm, std::move(algorithm), length, der::kObjectId);
  const bool stored = replace(sign->certificate, attribute->cert, attribute->certLen,
                              der::type_word(der::kSequence)) &&
                      replace(sign->value, attribute->value, attribute->valueLen, der::kBitString);
  return stored ? 0 : -1;
}

}  // namespace tq

std::int32_t SetBodySignCert(TqLabel label, const std::uint8_t* cert, std::uint32_t certLen) {
  if (certLen == 0) return -1;
  return tq::set_bytes(label, tq::kSignCert, tq::der::kSequence, cert, certLen);
}
std::int32_t GetBodySignCert(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  return tq::get_bytes(label, tq::kSignCert, buffer, length);
}

std::int32_t SetBodySigVal(TqLabel label, const std::uint8_t* value, std::uint32_t valueLen) {
  if (valueLen % tq::kValueUnit != 0) return -1;
  return tq::set_bytes(label, tq::kSignValue, tq::der::kBitString, value, valueLen);
}
std::int32_t GetBodySigVal(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  return tq::get_bytes(label, tq::kSignValue, buffer, length);
}

// An attribute that cannot be stored as it is has never been a failure to callers.
std::int32_t SetBodySignAttr(TqLabel label, std::int32_t append, const SignAttribute* attribute) {
  if (label == nullptr || attribute == nullptr) return -1;
  tq::Sign& first = label->body.multiSign;
  bool done = true;
  if (tq::layout_of(*label).multi_sign) {
    done =
        append == 0 ? tq::replace_signers(first, *attribute) : tq::append_signer(first, *attribute);
  } else if (attribute->value != nullptr) {
    done = tq::set_single_signer(label, *attribute);
  }
  return done ? 0 : -1;
}

std::int32_t GetBodySignAttr(TqLabel label, SignAttribute* attribute) {
  if (label == nullptr || attribute == nullptr) return -1;
  if (tq::layout_of(*label).multi_sign) {
    const tq::Sign& first = label->body.multiSign;
    tq::copy_unchecked(first.certificate, attribute->cert, attribute->certLen);
    tq::copy_unchecked(first.value, attribute->value, attribute->valueLen);
    if (attribute->algName != nullptr) {
      tq::copy_algorithm_name(first.algorithm, attribute->algName);
    }
    return 0;
  }
  static_cast<void>(GetBodySignCert(label, attribute->cert, &attribute->certLen));
  static_cast<void>(GetBodySigVal(label, attribute->value, &attribute->valueLen));
  if (attribute->algName != nullptr) tq::copy_head_algorithm_name(label, attribute->algName);
  return 0;
}

std::int32_t FileHaveSigned(TqLabel label, const std::uint8_t* bytes, std::uint32_t length) {
  if (label == nullptr) return -1;
  ANYBUF& first = label->body.multiSign.certificate;
  if (!tq::layout_of(*label).multi_sign || first.length != 0) return 1;
  if (bytes == nullptr || length == 0) return -1;
  const bool stored = tq::replace(first, bytes, length, tq::der::type_word(tq::der::kSequence));
  return stored ? 0 : -1;
}
