#include "der/records/privilege.h"

namespace tq {
namespace {

// What an estimate counts beside the subject.
constexpr std::uint32_t kFieldsEstimate = 28 + 7;
constexpr std::uint32_t kFieldsAndListEstimate = 37 + 7;

}  // namespace

std::int32_t EncodeOPrivilege(const TqLabelHandle* label, const OPrivilege* record, ANYBUF** slot) {
  return encode_versioned(kPrivilege, label, record, slot);
}
std::int32_t DecodeOPrivilege(const ANYBUF* element, OPrivilege* record,
                              const TqLabelHandle* label) {
  return decode_versioned(kPrivilege, element, record, label);
}

std::int32_t EncodeExPrivilegeList(const TqLabelHandle* label, ExtPri* first, ANYBUF** slot) {
  return encode_versioned(kExtPris, label, &first, slot);
}
std::int32_t DecodeExtPriList(const ANYBUF* element, ExtPri** first, const TqLabelHandle* label) {
  return decode_versioned(kExtPris, element, first, label);
}

std::int32_t EncodeExtPri(const ExtPri* record, ANYBUF** slot) {
  return encode(kExtPri, record, slot);
}
std::int32_t DecodeExtPri(const ANYBUF* element, ExtPri* record) {
  return decode(kExtPri, element, record);
}

std::int32_t EncodeExtPriviList(const TqLabelHandle* /*label*/, const ANYBUF* chain,
                                ANYBUF** slot) {
  return encode_chain(kListOfNodes, chain, slot);
}

std::int32_t CalcPrivilege(const OPrivilege* record, std::uint32_t* size) {
  if (record == nullptr || size == nullptr) return -1;
  const std::uint64_t sum =
      std::uint64_t{record->priSubject.length} +
      (record->extPriList == nullptr ? kFieldsEstimate : kFieldsAndListEstimate);
  if (sum > UINT32_MAX) return -1;
  *size = static_cast<std::uint32_t>(sum);
  return 0;
}

void FreeOPrivilege(OPrivilege* record) { release(kPrivilege, record); }
void FreeExPriList(ExtPri* first) { release_list<decltype(kExtPris)::Entry>(first); }

}  // namespace tq
