// Adding and finding the envelopes of a label.

#include "access/envelope.h"

#include "access/field.h"
#include "crypto/algorithms.h"
#include "crypto/recipients.h"

namespace tq {
namespace {

using HeadEnvelope = std::unique_ptr<ENVELOPE, Releaser<FreeDigitEnvolop>>;
using BodyEnvelope = std::unique_ptr<BDigitEnvolope, Releaser<FreeEncryptBody>>;

Recipient recipient_of(const EnvelopeInfo& info) {
  return {info.serial, info.serialLen, info.issuer};
}

template <class Node>
[[nodiscard]] std::int32_t have_envelope(TqLabel label, Node*& first, const std::uint8_t* serial,
                                         std::uint32_t serial_length, const PJCertIssuer* issuer,
                                         void** previous) {
  Node** link = nullptr;
  const Lookup answer = find(*label, first, {serial, low8(serial_length), issuer}, link);
  if (answer != kFound) return answer;
  Node* before = nullptr;
  for (Node* node = first; node != *link; node = node->next) before = node;
  *previous = before;
  return answer;
}

[[nodiscard]] bool fill(ENVELOPE& envelope, const EnvelopeInfo& info) {
  std::uint8_t octets[kObjectIdRoom];
  std::uint32_t length = sizeof octets;
  return replace(envelope.serial, info.serial, info.serialLen, der::kInteger) &&
         SflAlg2OID(info.alg, info.algLen, 0, 0, octets, &length) == 0 &&
         replace(envelope.algorithm, octets, length, der::kObjectId) &&
         replace(envelope.encryptedKey, info.key, info.keyLen, der::kOctetString) &&
         ConvertIssuerName2PJCertIssuer(info.issuer, &envelope.issuer) == 0;
}

// The list holds the entries in reverse: each goes to the front.
[[nodiscard]] bool fill_pairs(ExtPri*& first, const PrivilegeInfo& info) {
  if (info.entryCount != 0 && info.entries == nullptr) return false;
  for (std::uint32_t i = 0; i < info.entryCount; ++i) {
    ExtPri* pair = make_zeroed<ExtPri>().release();
    if (pair == nullptr) return false;
    // The type with its padding: callers zero it, and it is carried whole.
    std::memcpy(&pair->priType, &info.entries[i], sizeof pair->priType);
    pair->priValue = info.entries[i].value;
    push_front(first, pair);
  }
  return true;
}

[[nodiscard]] bool fill(OPrivilege& privilege, const PrivilegeInfo& info) {
  each_value(privilege, info, [](auto& stored, const auto& given) { stored = given; });
  return replace(privilege.priSubject, info.data, info.dataLen, der::type_word(der::kSequence)) &&
         fill_pairs(privilege.extPriList, info);
}

}  // namespace
}  // namespace tq

std::int32_t HaveTheEnvelopeFromHEnv(TqLabel label, const std::uint8_t* serial,
                                     std::uint32_t serialLen, const PJCertIssuer* issuer,
                                     void** previous) {
  if (label == nullptr || previous == nullptr) return -1;
  return tq::have_envelope(label, label->head.encryptHead.envelopes, serial, serialLen, issuer,
                           previous);
}

std::int32_t HaveTheEnvelopeFromBEnv(TqLabel label, const std::uint8_t* serial,
                                     std::uint32_t serialLen, const PJCertIssuer* issuer,
                                     void** previous) {
  if (label == nullptr || previous == nullptr) return -1;
  return tq::have_envelope(label, label->body.bodyEnvelopes, serial, serialLen, issuer, previous);
}

// The earlier envelope of the recipient goes first: after a failure the label has neither.
std::int32_t AddEnvelopeToHead(TqLabel label, const EnvelopeInfo* envelope) {
  if (label == nullptr || envelope == nullptr) return -1;
  tq::ENVELOPE*& first = label->head.encryptHead.envelopes;
  tq::ENVELOPE** link = nullptr;
  const tq::Lookup answer = tq::find(*label, first, tq::recipient_of(*envelope), link);
  if (answer == tq::kLookupFailed) return -1;
  if (answer == tq::kFound) tq::FreeDigitEnvolop(tq::unlink(link));
  tq::HeadEnvelope made(tq::make_zeroed<tq::ENVELOPE>().release());
  if (!made || !tq::fill(*made, *envelope)) return -1;
  tq::push_front(first, made.release());
  return 0;
}

std::int32_t ADDigitEnvlopeToBody(TqLabel label, const EnvelopeInfo* envelope,
                                  const PrivilegeInfo* privilege) {
  if (label == nullptr || envelope == nullptr || privilege == nullptr || envelope->key == nullptr) {
    return -1;
  }
  tq::BDigitEnvolope*& first = label->body.bodyEnvelopes;
  tq::BDigitEnvolope** link = nullptr;
  const tq::Lookup answer = tq::find(*label, first, tq::recipient_of(*envelope), link);
  if (answer == tq::kLookupFailed) return -1;
  if (answer == tq::kFound) tq::FreeEncryptBody(tq::unlink(link));
  tq::BodyEnvelope made(tq::make_zeroed<tq::BDigitEnvolope>().release());
  if (!made || !tq::fill(made->envelope, *envelope) || !tq::fill(made->privilege, *privilege)) {
    return -1;
  }
  tq::push_front(first, made.release());
  return 0;
}
