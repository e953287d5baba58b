#include "der/records/content.h"

namespace tq {

std::int32_t EncodeContentAtrr(const ContentAtrr* record, ANYBUF** slot) {
  return encode(kContent, record, slot);
}
std::int32_t DecodeContenAtrr(const ANYBUF* element, ContentAtrr* record) {
  return decode(kContent, element, record);
}

std::int32_t EncodeBodyFileCreator(const BodyFileCreator* record, ANYBUF** slot) {
  return encode(kFileCreator, record, slot);
}
std::int32_t DecodeIdentifier(const ANYBUF* element, BodyFileCreator* record) {
  return decode(kFileCreator, element, record);
}

std::int32_t EncodeBSysInfo(const BsysInfo* record, ANYBUF** slot) {
  return encode(kSysInfo, record, slot);
}
std::int32_t DecodeBsysInfo(const ANYBUF* element, BsysInfo* record) {
  return decode(kSysInfo, element, record);
}

std::int32_t EncodeFileAlignAttr(const FileAlignAttr* record, ANYBUF** slot) {
  return encode(kFileAlign, record, slot);
}
std::int32_t DecodeFileAlignAttr(const ANYBUF* element, FileAlignAttr* record) {
  return decode(kFileAlign, element, record);
}

std::int32_t EncodeAlgorithmAtrr(const AlgAtrr* record, ANYBUF** slot) {
  return encode(kAlgorithmPair, record, slot);
}
std::int32_t DecodeAlgAtrr(const ANYBUF* element, AlgAtrr* record) {
  return decode(kAlgorithmPair, element, record);
}

std::int32_t EncodeExtend(const Extend* record, ANYBUF** slot) {
  return encode(kExtend, record, slot);
}
std::int32_t DecodeExtend(const ANYBUF* element, Extend* record) {
  return decode(kExtend, element, record);
}

void FreeContentAtrr(ContentAtrr* record) { release(kContent, record); }
void FreeIdentifier(BodyFileCreator* record) { release(kFileCreator, record); }

}  // namespace tq
