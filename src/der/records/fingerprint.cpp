#include "der/records/fingerprint.h"

namespace tq {

std::int32_t EncodeFingerPrint(const TqLabelHandle* label, const FingerPrint* record,
                               ANYBUF** slot) {
  return encode_marking(kFingerPrint, label, record, slot);
}
std::int32_t DecodeFingerPrint(const ANYBUF* element, FingerPrint* record) {
  return decode(kFingerPrint, element, record);
}

std::int32_t EncodeFingerPrintList(ActionList* first, ANYBUF** slot) {
  return encode(kActions, &first, slot);
}
std::int32_t DecodeFingerPrintList(const ANYBUF* element, ActionList** first) {
  return decode(kActions, element, first);
}

std::int32_t EncodeActionList(const ActionList* record, ANYBUF** slot) {
  return encode(kAction, record, slot);
}
std::int32_t DecodeActionList(const ANYBUF* element, ActionList* record) {
  return decode(kAction, element, record);
}

void FreeFingerPrint(FingerPrint* record) { release(kFingerPrint, record); }
void FreeFingerPrintLisr(ActionList* first) { release_list<decltype(kActions)::Entry>(first); }

}  // namespace tq
