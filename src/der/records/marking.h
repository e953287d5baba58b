#ifndef TQ_DER_RECORDS_MARKING_H
#define TQ_DER_RECORDS_MARKING_H

// Watermark and stamp.

#include "der/records/content.h"
#include "der/schema/tagged.h"

namespace tq {

inline constexpr auto kWaterMark = marking<der::kContext1>(
    record(octets<&WaterMarkInfo::markData1>, octets<&WaterMarkInfo::markData2>,
           nested<&WaterMarkInfo::markAlg, kAlgorithmPair>, printable<&WaterMarkInfo::markText>,
           timestamp<&WaterMarkInfo::markTime>));

inline constexpr auto kMeta =
    record(raw_optional<&MetaInfo::metaElement, is_sequence>, timestamp<&MetaInfo::metaTime1>,
           printable<&MetaInfo::metaText1>, timestamp<&MetaInfo::metaTime2>,
           timestamp<&MetaInfo::metaTime3>, printable<&MetaInfo::metaText2>);

inline constexpr auto kSeal =
    record(printable<&SealInfo::sealName>, nested<&SealInfo::metaInfo, kMeta>,
           integer<&SealInfo::sealType>, octets<&SealInfo::sealData>,
           raw_optional<&SealInfo::sealElement, is_not_bit_string>, bits<&SealInfo::sealBits>);

inline constexpr auto kStampText =
    record(printable<&StampInfo::stampText1>, integer<&StampInfo::stampValue>,
           printable<&StampInfo::stampText2>, timestamp<&StampInfo::stampTime>,
           printable<&StampInfo::stampText3>);
static_assert(decltype(kStampText)::kElements == 8);

inline constexpr auto kStamp = marking<der::kContext0>(
    record(printable<&StampAttr::stampName>, nested<&StampAttr::sealInfo, kSeal>,
           nested<&StampAttr::stampInfo, kStampText>, bits<&StampAttr::stampBits>));

// The two whole markings store null in the slot, and succeed, where the label leaves them out.
std::int32_t EncodeWaterMarkInfo(const TqLabelHandle* label, const WaterMarkInfo* record,
                                 ANYBUF** slot);
std::int32_t DecodeWaterMark(const ANYBUF* element, WaterMarkInfo* record);
std::int32_t EncodeStampAttr(const TqLabelHandle* label, const StampAttr* record, ANYBUF** slot);
std::int32_t DecodeStampAtrr(const ANYBUF* element, StampAttr* record);
std::int32_t EncodeSealInfo(const SealInfo* record, ANYBUF** slot);
std::int32_t DecodeSealInfo(const ANYBUF* element, SealInfo* record);
std::int32_t EncodeMetaInfo(const MetaInfo* record, ANYBUF** slot);
std::int32_t DecodeMetalInfo(const ANYBUF* element, MetaInfo* record);
std::int32_t EncodeStampInfo(const StampInfo* record, ANYBUF** slot);
std::int32_t DecodeStampInfo(const ANYBUF* element, StampInfo* record);

// Each releases what the record owns and clears the pointers to it; null is accepted.
void FreeWaterMark(WaterMarkInfo* record);
void FreeStampAtrr(StampAttr* record);
void FreeSealInfo(SealInfo* record);
void FreeStampInfo(StampInfo* record);

}  // namespace tq

#endif
