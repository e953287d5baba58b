#ifndef TQ_CORE_ENTRY_SIZES_H
#define TQ_CORE_ENTRY_SIZES_H

// Estimates of the sizes that the parts of a label will have. Each answers 0 or -1; one that does
// not fit in 32 bits is a failure.

#include "core/model/records.h"

namespace tq {

std::int32_t CalcSignAttrSize(const TqLabelHandle* label, LabelSizeInfo* sizes);
std::int32_t CalcBDSize(const BDigitEnvolope* first, std::uint32_t* size);
std::int32_t CalcExtendSize(const Extend* first, std::uint32_t* size);
std::int32_t CalcLogSize(const Log* first, std::uint32_t* size);
std::int32_t CalcStampSize(const TqLabelHandle* label, const StampAttr* stamp, std::uint32_t* size);
std::int32_t CalWaterSize(const TqLabelHandle* label, const WaterMarkInfo* mark,
                          std::uint32_t* size);
std::int32_t CalcFingger(const TqLabelHandle* label, const FingerPrint* finger,
                         std::uint32_t* size);

}  // namespace tq

#endif
