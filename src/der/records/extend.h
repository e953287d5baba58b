#ifndef TQ_DER_RECORDS_EXTEND_H
#define TQ_DER_RECORDS_EXTEND_H

// The list of extension values.

#include "der/records/content.h"
#include "der/schema/list.h"
#include "der/schema/tagged.h"

namespace tq {

inline constexpr auto kExtends =
    tagged_list<der::kContext0>(list_of<NullIn60ReadAnywhere>(kExtend));

// Leaves the slot alone where the label writes nothing for an empty list.
std::int32_t EncodeExtendAtrr_F(const TqLabelHandle* label, Extend* first, ANYBUF** slot);
std::int32_t DecodeExtendAtrr(const ANYBUF* element, Extend** first);
// Wraps a chain of encoded entries, which stays the caller's. The first argument is not used.
std::int32_t EncodeExtendAtrr(const TqLabelHandle* label, const ANYBUF* chain, ANYBUF** slot);

// Releases every entry of the chain; null is accepted.
void FreeExtendAtrr(Extend* first);

}  // namespace tq

#endif
