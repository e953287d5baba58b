#include "core/entry/sizes.h"

#include "der/label/body.h"

namespace tq {
namespace {

// What the estimates count for the elements around the bytes.
constexpr std::uint32_t kReserve = 1500;
constexpr std::uint32_t kMostHeadEnvelopes = 100;
constexpr std::uint32_t kHeadNameAttribute = 8;
constexpr std::uint32_t kNameAttribute = 4;
constexpr std::uint32_t kNoBodyEnvelopes = 2;
constexpr std::uint32_t kBodyEnvelopeFields = 154 + 4;
constexpr std::uint32_t kBodyEnvelopeList = 8;
constexpr std::uint32_t kExtendFields = 11;
constexpr std::uint32_t kLogFields = 38;
constexpr std::uint32_t kFingerFields = 11;
constexpr std::uint32_t kNoActions = 10;
constexpr std::uint32_t kActionFields = 37;
constexpr std::uint32_t kList = 12;
constexpr std::uint32_t kStampFields = 125;
constexpr std::uint32_t kWaterMarkFields = 41;

[[nodiscard]] std::int32_t store_size(std::uint64_t sum, std::uint32_t* size) {
  if (size == nullptr || sum > UINT32_MAX) return -1;
  *size = static_cast<std::uint32_t>(sum);
  return 0;
}

// Every attribute of a name counts, the first also when it is empty.
std::uint64_t name_size(const X509Name& first, std::uint32_t per_attribute) {
  std::uint64_t sum = 0;
  for (const X509Name* attribute = &first; attribute != nullptr; attribute = attribute->next) {
    sum += std::uint64_t{attribute->type.length} + attribute->value.length + per_attribute;
  }
  return sum;
}

// The markings share one rule: 0 for one that the label leaves out.
template <class S>
[[nodiscard]] std::int32_t marking_size(S /*schema*/, const TqLabelHandle* label,
                                        const typename S::Record* record, std::uint64_t beside,
                                        std::uint32_t* size) {
  const bool absent = S::absent(*record, scope_of(*label));
  return store_size(absent ? 0 : S::buffers(*record) + beside, size);
}

[[nodiscard]] std::int32_t head_envelope_sizes(const ENVELOPE* envelope, LabelSizeInfo& sizes) {
  std::uint64_t sum = sizes.headEnvelopeSize;  // added to what the caller has in the field
  std::uint32_t count = 0;
  for (; envelope != nullptr && count <= kMostHeadEnvelopes; envelope = envelope->next) {
    sum += name_size(envelope->issuer, kHeadNameAttribute);
    ++count;
  }
  if (store_size(sum, &sizes.headEnvelopeSize) != 0 || count > kMostHeadEnvelopes) return -1;
  sizes.headEnvelopeCount = count;
  return 0;
}

[[nodiscard]] std::int32_t body_sizes(const TqLabelHandle* label, LabelSizeInfo& sizes) {
  const Body& body = label->body;
  sizes.bodySignValueLen = body.bodySignValue.length;
  sizes.bodySignCertLen = body.bodySignCert.length;
  sizes.creatorStr2Len = body.fileCreator.creatorStr2.length;
  sizes.fileNoLen = body.fileCreator.creatorStr1.length;
  if (CalcBDSize(body.bodyEnvelopes, &sizes.bodyEnvelopeSize) != 0) return -1;
  sizes.reserve = kReserve;
  if (CalcStampSize(label, &body.stamp, &sizes.stampSize) != 0 ||
      CalWaterSize(label, &body.waterMark, &sizes.waterMarkSize) != 0) {
    return -1;
  }
  sizes.fingerPrintSize = 0;  // never reported, whatever there is: callers rely on it
  if (CalcExtendSize(body.extends, &sizes.extendSize) != 0 ||
      CalcLogSize(body.logs, &sizes.logSize) != 0) {
    return -1;
  }
  sizes.fileNameLen = body.content.strAttr1.length;
  sizes.fileTitleLen = body.content.strAttr2.length;
  return 0;
}

}  // namespace

std::int32_t CalcSignAttrSize(const TqLabelHandle* label, LabelSizeInfo* sizes) {
  if (label == nullptr || sizes == nullptr) return -1;
  if (layout_of(*label).multi_sign) {
    sizes->headSignAlgLen = 0;
    return store_size(decltype(kMultiSign)::buffers(label->body.multiSign), &sizes->headSignLen);
  }
  sizes->headSignAlgLen = label->head.headSign.algorithm.length;
  sizes->headSignLen = label->head.headSign.certificate.length;
  return 0;
}

std::int32_t CalcBDSize(const BDigitEnvolope* first, std::uint32_t* size) {
  if (first == nullptr) return store_size(kNoBodyEnvelopes, size);
  std::uint64_t sum = kBodyEnvelopeList;
  for (; first != nullptr; first = first->next) {
    std::uint32_t privilege = 0;
    if (CalcPrivilege(&first->privilege, &privilege) != 0) return -1;
    sum += std::uint64_t{kBodyEnvelopeFields} + name_size(first->envelope.issuer, kNameAttribute) +
           privilege;
  }
  return store_size(sum, size);
}

std::int32_t CalcExtendSize(const Extend* first, std::uint32_t* size) {
  std::uint64_t sum = first == nullptr ? 0 : kList;
  for (; first != nullptr; first = first->next) {
    sum += std::uint64_t{first->extendValue.length} + kExtendFields;
  }
  return store_size(sum, size);
}

std::int32_t CalcLogSize(const Log* first, std::uint32_t* size) {
  std::uint64_t sum = first == nullptr ? 0 : kList;
  for (; first != nullptr; first = first->next) {
    sum += name_size(first->logName, kNameAttribute) + decltype(kLog)::buffers(*first) + kLogFields;
  }
  return store_size(sum, size);
}

std::int32_t CalcStampSize(const TqLabelHandle* label, const StampAttr* stamp,
                           std::uint32_t* size) {
  if (label == nullptr || stamp == nullptr) return -1;
  return marking_size(kStamp, label, stamp, kStampFields, size);
}

std::int32_t CalWaterSize(const TqLabelHandle* label, const WaterMarkInfo* mark,
                          std::uint32_t* size) {
  if (label == nullptr || mark == nullptr) return -1;
  return marking_size(kWaterMark, label, mark, kWaterMarkFields, size);
}

std::int32_t CalcFingger(const TqLabelHandle* label, const FingerPrint* finger,
                         std::uint32_t* size) {
  if (label == nullptr || finger == nullptr) return -1;
  const ActionList* entry = finger->fingerPrintList;
  std::uint64_t beside = kFingerFields + (entry == nullptr ? kNoActions : kList);
  for (; entry != nullptr; entry = entry->next) {
    beside += std::uint64_t{entry->actionSubject.length} + kActionFields;
  }
  return marking_size(kFingerPrint, label, finger, beside, size);
}

}  // namespace tq

std::int32_t LabCalSize(TqLabel label, LabelSizeInfo* sizes) {
  if (label == nullptr || sizes == nullptr) return -1;
  sizes->cipher = label->head.encryptHead.algorithm.length;
  sizes->customLen = label->head.custom.length;
  if (tq::head_envelope_sizes(label->head.encryptHead.envelopes, *sizes) != 0 ||
      tq::CalcSignAttrSize(label, sizes) != 0) {
    return -1;
  }
  return tq::body_sizes(label, *sizes);
}
