#ifndef TQ_ACCESS_FINGERPRINT_H
#define TQ_ACCESS_FINGERPRINT_H

#include "core/model/records.h"

namespace tq {

// The array of a caller's list: a new one, with new values, in the order of the chain.
std::int32_t GetFingerList(const ActionList* first, FingerList* caller);
// A new chain, in the reverse order of the array. An empty array gives -1 and an empty chain.
std::int32_t SetFingerList(const FingerList* caller, ActionList** first);
std::int32_t CopyFingerPriToActionList(const FingerEntry* caller, ActionList* entry);
std::int32_t GetFinger(const FingerPrint* record, Finger* caller);
std::int32_t SetFinger(const Finger* caller, FingerPrint* record);

}  // namespace tq

#endif
