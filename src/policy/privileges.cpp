// Who may open a file, and how often he has.

#include "core/entry/label.h"
#include "crypto/recipients.h"

namespace tq {
namespace {

bool has_serial(const ENVELOPE& envelope, const std::uint8_t* serial, std::uint8_t length) {
  return equal_bytes(envelope.serial, serial, length);
}

}  // namespace
}  // namespace tq

// The issuer is not asked for, nor the version.
std::int32_t HavePrivilege(const std::uint8_t* der, std::int32_t derLen, const std::uint8_t* serial,
                           std::uint32_t serialLen) {
  tq::PeekedHead peeked;
  if (serial == nullptr || !peeked.read(der, derLen, tq::PeekedHead::Body::kRequired)) return -1;
  if (LabelBodyNeedEnc(&peeked.label()) != 1) return 0;
  const tq::ENVELOPE* envelope = peeked.head().encryptHead.envelopes;
  for (; envelope != nullptr; envelope = envelope->next) {
    if (tq::has_serial(*envelope, serial, static_cast<std::uint8_t>(serialLen))) return 0;
  }
  return -1;
}

std::int32_t HavePrivilegeOfHead(const std::uint8_t* der, std::int32_t derLen,
                                 const std::uint8_t* serial, std::uint32_t serialLen,
                                 const PJCertIssuer* issuer) {
  tq::PeekedHead peeked;
  if (!peeked.read(der, derLen, tq::PeekedHead::Body::kRequired)) return -1;
  if (LabelBodyNeedEnc(&peeked.label()) != 1) return 0;
  void* previous = nullptr;
  return HaveTheEnvelopeFromHEnv(&peeked.label(), serial, serialLen, issuer, &previous) == 1 ? 1
                                                                                             : 0;
}

// The head's envelope goes first and stays gone when the body turns out to have none.
std::int32_t DelPrivilegeFromLabel(TqLabel label, const std::uint8_t* serial,
                                   std::uint32_t serialLen, const PJCertIssuer* issuer) {
  if (label == nullptr) return -1;
  const tq::Recipient recipient = {serial, static_cast<std::uint8_t>(serialLen), issuer};
  tq::ENVELOPE** in_head = nullptr;
  if (tq::find(*label, label->head.encryptHead.envelopes, recipient, in_head) != tq::kFound) {
    return -1;
  }
  tq::FreeDigitEnvolop(tq::unlink(in_head));
  tq::BDigitEnvolope** in_body = nullptr;
  if (tq::find(*label, label->body.bodyEnvelopes, recipient, in_body) != tq::kFound) return -1;
  tq::FreeEncryptBody(tq::unlink(in_body));
  return 0;
}

std::int32_t SetAlreadyReadCountsToLabel(TqLabel label, const std::uint8_t* serial,
                                         std::uint32_t serialLen, const PJCertIssuer* issuer,
                                         std::uint32_t count) {
  if (label == nullptr) return -1;
  const tq::Recipient recipient = {serial, static_cast<std::uint8_t>(serialLen), issuer};
  tq::BDigitEnvolope** link = nullptr;
  if (tq::find(*label, label->body.bodyEnvelopes, recipient, link) != tq::kFound) return -1;
  (*link)->privilege.priValue2 = count;
  return 0;
}
