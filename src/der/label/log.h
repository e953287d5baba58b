#ifndef TQ_DER_LABEL_LOG_H
#define TQ_DER_LABEL_LOG_H

// The list of access logs.

#include "crypto/names.h"
#include "der/schema/tagged.h"

namespace tq {

inline constexpr auto kLog = record(
    integer<&Log::logType>, printable<&Log::logText1>, when<in_11>(nested<&Log::logName, kName>),
    integer_octets<&Log::logArray1>, integer_octets<&Log::logArray2>, timestamp<&Log::logTime>,
    integer<&Log::logValue>, printable<&Log::logText2>);

inline constexpr auto kLogs = tagged_list<der::kContext1>(list_of<NullIn60ReadAnywhere>(kLog));

std::int32_t EncodeLog(const TqLabelHandle* label, const Log* record, ANYBUF** slot);
std::int32_t DecodeLog(const ANYBUF* element, Log* record, const TqLabelHandle* label);
// Leaves the slot alone where the label writes nothing for an empty list.
std::int32_t EncodeLogAtrr_F(const TqLabelHandle* label, Log* first, ANYBUF** slot);
std::int32_t DecodeLogAtrr(const ANYBUF* element, Log** first, const TqLabelHandle* label);
// Wraps a chain of encoded entries, which stays the caller's. The first argument is not used.
std::int32_t EncodeLogAtrr(const TqLabelHandle* label, const ANYBUF* chain, ANYBUF** slot);

// Releases every entry of the chain; null is accepted.
void FreeLogAtrr(Log* first);

}  // namespace tq

#endif
