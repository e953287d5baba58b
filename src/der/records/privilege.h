#ifndef TQ_DER_RECORDS_PRIVILEGE_H
#define TQ_DER_RECORDS_PRIVILEGE_H

// What a recipient may do: the privilege record of a body envelope.

#include "der/schema/list.h"
#include "der/schema/tagged.h"

namespace tq {

inline constexpr auto kExtPri = record(integer<&ExtPri::priType>, integer<&ExtPri::priValue>);

inline constexpr auto kExtPris = list_of<NullIn60>(kExtPri);

inline constexpr auto kPrivilege = record(
    raw_required<&OPrivilege::priSubject, is_sequence_or_object_id>, boolean<&OPrivilege::priFlag1>,
    integer<&OPrivilege::priValue1>, integer<&OPrivilege::priValue2, "readCount">,
    boolean<&OPrivilege::priFlag2>, boolean<&OPrivilege::priFlag3>, boolean<&OPrivilege::priFlag4>,
    integer<&OPrivilege::priValue3>, integer<&OPrivilege::priValue4>,
    nested<&OPrivilege::extPriList, kExtPris>);

std::int32_t EncodeOPrivilege(const TqLabelHandle* label, const OPrivilege* record, ANYBUF** slot);
std::int32_t DecodeOPrivilege(const ANYBUF* element, OPrivilege* record,
                              const TqLabelHandle* label);
// Leaves the slot alone where the label writes nothing for an empty list.
std::int32_t EncodeExPrivilegeList(const TqLabelHandle* label, ExtPri* first, ANYBUF** slot);
std::int32_t DecodeExtPriList(const ANYBUF* element, ExtPri** first, const TqLabelHandle* label);
std::int32_t EncodeExtPri(const ExtPri* record, ANYBUF** slot);
std::int32_t DecodeExtPri(const ANYBUF* element, ExtPri* record);
// Wraps a chain of encoded pairs, which stays the caller's. The first argument is not used.
std::int32_t EncodeExtPriviList(const TqLabelHandle* label, const ANYBUF* chain, ANYBUF** slot);

// The size figure of one privilege record in the size estimates of a label.
std::int32_t CalcPrivilege(const OPrivilege* record, std::uint32_t* size);

// Each releases what is owned and clears the pointers to it; null is accepted.
void FreeOPrivilege(OPrivilege* record);
void FreeExPriList(ExtPri* first);

}  // namespace tq

#endif
