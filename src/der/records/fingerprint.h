#ifndef TQ_DER_RECORDS_FINGERPRINT_H
#define TQ_DER_RECORDS_FINGERPRINT_H

// Fingerprints and their action entries.

#include "der/records/content.h"
#include "der/schema/list.h"
#include "der/schema/tagged.h"

namespace tq {

inline constexpr auto kAction =
    record(raw_optional<&ActionList::actionSubject, is_sequence>, boolean<&ActionList::action>);
static_assert(decltype(kAction)::kElements == 12);

inline constexpr auto kActions = list_of<AlwaysNull>(kAction);

inline constexpr auto kFingerPrint = marking<der::kContext2>(record(
    nested<&FingerPrint::sysInfo, kSysInfo>, nested<&FingerPrint::fingerPrintList, kActions>));

// Stores null in the slot, and succeeds, where the label leaves the record out.
std::int32_t EncodeFingerPrint(const TqLabelHandle* label, const FingerPrint* record,
                               ANYBUF** slot);
std::int32_t DecodeFingerPrint(const ANYBUF* element, FingerPrint* record);
std::int32_t EncodeFingerPrintList(ActionList* first, ANYBUF** slot);
std::int32_t DecodeFingerPrintList(const ANYBUF* element, ActionList** first);
std::int32_t EncodeActionList(const ActionList* record, ANYBUF** slot);
std::int32_t DecodeActionList(const ANYBUF* element, ActionList* record);

// Each releases what is owned and clears the pointers to it; null is accepted.
void FreeFingerPrint(FingerPrint* record);
void FreeFingerPrintLisr(ActionList* first);

}  // namespace tq

#endif
