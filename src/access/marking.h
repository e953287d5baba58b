#ifndef TQ_ACCESS_MARKING_H
#define TQ_ACCESS_MARKING_H

// Between the marking records of a label and those of callers. Getters allocate the buffers that
// the caller has left null; what they have allocated before a failure stays in the caller's record.

#include "core/model/records.h"

namespace tq {

std::int32_t GetWaterMark(const WaterMarkInfo* record, WaterMark* caller);
std::int32_t SetWaterMark(const WaterMark* caller, WaterMarkInfo* record);
std::int32_t GetMetal(const MetaInfo* record, Meta* caller);
std::int32_t SetMetal(MetaInfo* record, const Meta* caller);
std::int32_t GetSeal(const SealInfo* record, Seal* caller);
std::int32_t SetSeal(SealInfo* record, const Seal* caller);
std::int32_t GetStamp(const StampInfo* record, Stamp* caller);
// 0, and nothing changed, where the record, the caller's or one of its buffers is missing.
std::int32_t SetStamped(StampInfo* record, const Stamp* caller);
std::int32_t SetStamp(StampAttr* record, const StampRecord* caller);

}  // namespace tq

#endif
