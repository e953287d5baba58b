// The enumerator that gives every recipient of a label a new key.

#include "crypto/algorithms.h"
#include "crypto/issuers.h"
#include "crypto/recipients.h"

struct DigitEnvolopEnum {
  tq::BDigitEnvolope* first;
  tq::BDigitEnvolope* current;  // null when all have been given their keys
  tq::BDigitEnvolope* next;
  TqLabel label;
};

namespace tq {
namespace {

template <class Node>
void reverse(Node*& first) {
  Node* reversed = nullptr;
  while (first != nullptr) push_front(reversed, unlink(&first));
  first = reversed;
}

}  // namespace
}  // namespace tq

std::int32_t CreatEmurateDigitEnvolop(DigitEnvolopEnum** enumerator, TqLabel label) {
  if (enumerator == nullptr || label == nullptr || label->body.bodyEnvelopes == nullptr) return -1;
  tq::Block<DigitEnvolopEnum> made = tq::make_zeroed<DigitEnvolopEnum>();
  if (!made) return -1;
  tq::BDigitEnvolope*& first = label->body.bodyEnvelopes;
  tq::reverse(first);
  *made = {first, first, first, label};
  // The head's envelopes are made anew from the body's, one by one.
  tq::FreeDigitEnvolop(label->head.encryptHead.envelopes);
  label->head.encryptHead.envelopes = nullptr;
  *enumerator = made.release();
  return 0;
}

std::int32_t GetCurrentDigitEnvolop(DigitEnvolopEnum* enumerator, std::uint8_t* buffer,
                                    std::uint32_t* length) {
  if (enumerator == nullptr || enumerator->current == nullptr) return -1;
  if (tq::copy_out(enumerator->current->privilege.priSubject, buffer, length) != 0) return -1;
  if (buffer != nullptr) enumerator->next = enumerator->current->next;
  return 0;
}

// 0, as everywhere, is the good answer: there is one more.
std::int32_t HaveNextDigitEnvolop(DigitEnvolopEnum* enumerator) {
  if (enumerator == nullptr) return -1;
  return enumerator->next != nullptr ? 0 : 1;
}

std::int32_t SetCurrentEmuEnvolop(DigitEnvolopEnum* enumerator, const std::uint8_t* headKey,
                                  std::uint32_t headKeyLen, const std::uint8_t* bodyKey,
                                  std::uint32_t bodyKeyLen) {
  if (enumerator == nullptr || enumerator->current == nullptr || bodyKey == nullptr) return -1;
  tq::ENVELOPE& envelope = enumerator->current->envelope;
  tq::clear(envelope.encryptedKey);  // the old key goes in any case
  if (!tq::replace(envelope.encryptedKey, bodyKey, bodyKeyLen, tq::der::kOctetString)) return -1;
  char name[tq::kAlgorithmNameRoom] = {};
  if (SflOID2Alg(envelope.algorithm.data, envelope.algorithm.length, name, nullptr, nullptr) != 0 ||
      envelope.serial.length > UINT8_MAX) {
    return -1;
  }
  const tq::Issuer issuer = tq::make_issuer(envelope.issuer);
  if (!issuer) return -1;
  std::uint8_t none = 0;  // stands for a serial number without octets
  EnvelopeInfo info = {};
  info.alg = tq::as_octets(name);
  info.algLen = static_cast<std::uint8_t>(std::strlen(name));
  info.serial = envelope.serial.length == 0 ? &none : envelope.serial.data;
  info.serialLen = static_cast<std::uint8_t>(envelope.serial.length);
  info.key = const_cast<std::uint8_t*>(headKey);  // an input of the call that takes it
  info.keyLen = headKeyLen;
  info.issuer = issuer.get();
  if (AddEnvelopeToHead(enumerator->label, &info) != 0) return -1;
  enumerator->current = enumerator->next;
  return 0;
}
