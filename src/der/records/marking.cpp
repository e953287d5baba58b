#include "der/records/marking.h"

namespace tq {

std::int32_t EncodeWaterMarkInfo(const TqLabelHandle* label, const WaterMarkInfo* record,
                                 ANYBUF** slot) {
  return encode_marking(kWaterMark, label, record, slot);
}
std::int32_t DecodeWaterMark(const ANYBUF* element, WaterMarkInfo* record) {
  return decode(kWaterMark, element, record);
}

std::int32_t EncodeStampAttr(const TqLabelHandle* label, const StampAttr* record, ANYBUF** slot) {
  return encode_marking(kStamp, label, record, slot);
}
std::int32_t DecodeStampAtrr(const ANYBUF* element, StampAttr* record) {
  return decode(kStamp, element, record);
}

std::int32_t EncodeSealInfo(const SealInfo* record, ANYBUF** slot) {
  return encode(kSeal, record, slot);
}
std::int32_t DecodeSealInfo(const ANYBUF* element, SealInfo* record) {
  return decode(kSeal, element, record);
}

std::int32_t EncodeMetaInfo(const MetaInfo* record, ANYBUF** slot) {
  return encode(kMeta, record, slot);
}
std::int32_t DecodeMetalInfo(const ANYBUF* element, MetaInfo* record) {
  return decode(kMeta, element, record);
}

std::int32_t EncodeStampInfo(const StampInfo* record, ANYBUF** slot) {
  return encode(kStampText, record, slot);
}
std::int32_t DecodeStampInfo(const ANYBUF* element, StampInfo* record) {
  return decode(kStampText, element, record);
}

void FreeWaterMark(WaterMarkInfo* record) { release(kWaterMark, record); }
void FreeStampAtrr(StampAttr* record) { release(kStamp, record); }
void FreeSealInfo(SealInfo* record) { release(kSeal, record); }
void FreeStampInfo(StampInfo* record) { release(kStampText, record); }

}  // namespace tq
