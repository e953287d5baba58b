// Reading the envelopes of a label into caller buffers.

#include <algorithm>

#include "access/envelope.h"
#include "access/field.h"
#include "crypto/algorithms.h"
#include "crypto/issuers.h"
#include "crypto/recipients.h"

namespace tq {
namespace {

enum Answer : std::int32_t { kCopied = 0, kTooSmall = 1, kRefused = -1 };

// Room for the pairs of a caller who brings none.
constexpr std::uint32_t kPairRoom = 20;

struct AlgorithmName {
  char text[kAlgorithmNameRoom] = {};
  std::uint8_t length = 0;

  [[nodiscard]] bool look_up(const ANYBUF& algorithm) {
    if (SflOID2Alg(algorithm.data, algorithm.length, text, nullptr, nullptr) != 0) return false;
    length = static_cast<std::uint8_t>(std::strlen(text));
    return true;
  }
};

template <class Length>
[[nodiscard]] Answer copy_buffer(const ANYBUF& field, std::uint8_t* buffer, Length& length) {
  return copy_out(field, buffer, &length) == 0 ? kCopied : kTooSmall;
}

// The room that is asked for is that of the stored identifier, also where its name is what is
// written: callers who provide for the longest name never notice.
[[nodiscard]] Answer copy_algorithm(const Layout& layout, const ANYBUF& algorithm,
                                    EnvelopeInfo& info) {
  if (info.algLen < algorithm.length) return kTooSmall;
  if (layout.v60) return copy_buffer(algorithm, info.alg, info.algLen);
  AlgorithmName name;
  if (!name.look_up(algorithm)) return kRefused;
  std::memcpy(info.alg, name.text, name.length);
  info.algLen = name.length;
  return kCopied;
}

[[nodiscard]] Answer copy_issuer(const X509Name& name, EnvelopeInfo& info) {
  Issuer made = make_issuer(name);
  if (!made) return kRefused;
  if (info.issuer == nullptr) {
    info.issuer = made.release();
    return kCopied;
  }
  PJCertIssuer& given = *info.issuer;
  if (given.capacity < made->count || (given.entries == nullptr && made->count != 0)) {
    return kRefused;
  }
  std::copy_n(made->entries, made->count, given.entries);
  given.count = made->count;
  return kCopied;
}

[[nodiscard]] Answer copy_pairs(const ExtPri* pair, PrivilegeInfo& info) {
  std::uint32_t room = info.entryCount;
  if (info.entries == nullptr) {
    info.entries = make_zeroed<PrivilegeEntry>(kPairRoom).release();
    if (info.entries == nullptr) return kRefused;
    room = kPairRoom;
  }
  std::uint32_t count = 0;
  for (; pair != nullptr; pair = pair->next) {
    if (count == room) return kRefused;
    PrivilegeEntry& entry = info.entries[count++];
    entry.type = static_cast<std::uint16_t>(pair->priType);
    entry.value = pair->priValue;
  }
  info.entryCount = count;
  return kCopied;
}

[[nodiscard]] Answer copy_privilege(const OPrivilege& privilege, PrivilegeInfo& info) {
  const Answer answer = copy_buffer(privilege.priSubject, info.data, info.dataLen);
  if (answer != kCopied) return answer;
  each_value(privilege, info, [](const auto& stored, auto& given) { given = stored; });
  return copy_pairs(privilege.extPriList, info);
}

}  // namespace

std::int32_t GetBDigitEnv(TqLabel label, const BDigitEnvolope* record, EnvelopeInfo* envelope,
                          PrivilegeInfo* privilege) {
  if (label == nullptr || record == nullptr || envelope == nullptr || privilege == nullptr ||
      envelope->alg == nullptr || envelope->key == nullptr || envelope->serial == nullptr ||
      privilege->data == nullptr) {
    return -1;
  }
  const Layout layout = layout_of(*label);
  if (!layout.known()) return -1;
  const ENVELOPE& stored = record->envelope;
  Answer answer = copy_algorithm(layout, stored.algorithm, *envelope);
  if (answer == kCopied) answer = copy_buffer(stored.encryptedKey, envelope->key, envelope->keyLen);
  if (answer == kCopied && layout.v11) answer = copy_issuer(stored.issuer, *envelope);
  if (answer == kCopied) answer = copy_buffer(stored.serial, envelope->serial, envelope->serialLen);
  return answer == kCopied ? copy_privilege(record->privilege, *privilege) : answer;
}

}  // namespace tq

std::int32_t GetEnvelopeFromHead(TqLabel label, EnvelopeInfo* envelope) {
  if (label == nullptr || envelope == nullptr) return -1;
  tq::ENVELOPE** link = nullptr;
  const tq::Recipient recipient = {envelope->serial, envelope->serialLen, envelope->issuer};
  if (tq::find(*label, label->head.encryptHead.envelopes, recipient, link) != tq::kFound) return -1;
  const tq::ENVELOPE& found = **link;
  tq::AlgorithmName name;
  if (envelope->issuer->capacity < tq::count_attributes(found.issuer)) return -1;
  const bool copies = envelope->alg != nullptr && envelope->key != nullptr;
  if (copies && envelope->keyLen < found.encryptedKey.length) return -1;
  if (!name.look_up(found.algorithm)) return -1;
  if (!copies) {
    envelope->keyLen = found.encryptedKey.length;
    envelope->algLen = static_cast<std::uint8_t>(name.length + 1);  // room for a terminator
    return 0;
  }
  if (envelope->algLen < name.length) return -1;
  std::memcpy(envelope->alg, name.text, name.length);
  envelope->algLen = name.length;
  return tq::copy_out(found.encryptedKey, envelope->key, &envelope->keyLen);
}

std::int32_t GetEnvelopeFromBody(TqLabel label, EnvelopeInfo* envelope, PrivilegeInfo* privilege) {
  if (label == nullptr || envelope == nullptr || privilege == nullptr) return -1;
  if (label->body.bodyEnvelopes == nullptr) return 1;
  tq::BDigitEnvolope** link = nullptr;
  const tq::Recipient recipient = {envelope->serial, envelope->serialLen, envelope->issuer};
  if (tq::find(*label, label->body.bodyEnvelopes, recipient, link) != tq::kFound) return -1;
  return tq::GetBDigitEnv(label, *link, envelope, privilege) == 0 ? 0 : -1;
}

// The last record of the list is never served.
std::int32_t GetDigitEnvlope(TqLabel label, std::int32_t index, EnvelopeInfo* envelope,
                             PrivilegeInfo* privilege) {
  if (label == nullptr || envelope == nullptr || privilege == nullptr || index < 0) return -1;
  const tq::BDigitEnvolope* record =
      *tq::link_at(label->body.bodyEnvelopes, static_cast<std::uint32_t>(index));
  if (record == nullptr || record->next == nullptr) return -1;
  return tq::GetBDigitEnv(label, record, envelope, privilege) == 0 ? 0 : -1;
}

std::int32_t GetCertByIssuerAndSerial(TqLabel label, const std::uint8_t* serial,
                                      std::uint32_t serialLen, const PJCertIssuer* issuer,
                                      std::uint8_t* buffer, std::uint32_t* length) {
  if (label == nullptr || serial == nullptr || length == nullptr || issuer == nullptr) return 0;
  tq::BDigitEnvolope** link = nullptr;
  const tq::Recipient recipient = {serial, tq::low8(serialLen), issuer};
  if (tq::find(*label, label->body.bodyEnvelopes, recipient, link) != tq::kFound) return -1;
  return tq::copy_out((*link)->privilege.priSubject, buffer, length);
}
