#ifndef TQ_DER_RECORDS_CONTENT_H
#define TQ_DER_RECORDS_CONTENT_H

// Content and system attributes.

#include "der/schema/schema.h"

namespace tq {

inline constexpr auto kContent = record(
    integer<&ContentAtrr::intAttr1, "fileType">, integer<&ContentAtrr::intAttr2, "secrecy">,
    integer<&ContentAtrr::intAttr3, "fileSize">, printable<&ContentAtrr::strAttr1, "fileName">,
    printable<&ContentAtrr::strAttr2, "fileTitle">, timestamp<&ContentAtrr::time1, "modifyTime">,
    timestamp<&ContentAtrr::time2, "expiryTime">, timestamp<&ContentAtrr::time3, "abolishTime">,
    timestamp<&ContentAtrr::time4, "destroyTime">);

inline constexpr auto kFileCreator =
    record(printable<&BodyFileCreator::creatorStr1, "fileNo">,
           printable<&BodyFileCreator::creatorStr2>, timestamp<&BodyFileCreator::creatorTime>);

inline constexpr auto kSysInfo =
    record(octets<&BsysInfo::sysInfo1>, octets<&BsysInfo::sysInfo2>, octets<&BsysInfo::sysInfo3>,
           integer<&BsysInfo::sysInfoValue>);

// The order on the wire is not the order in memory.
inline constexpr auto kFileAlign =
    record(integer<&FileAlignAttr::labelAlignSize>, integer<&FileAlignAttr::fileAlignSize>,
           integer<&FileAlignAttr::fileUnEffectSize>);

inline constexpr auto kAlgorithmPair = record(integer<&AlgAtrr::alg>, integer<&AlgAtrr::algParam>);

inline constexpr auto kExtend = record(integer<&Extend::extendType>, octets<&Extend::extendValue>);

std::int32_t EncodeContentAtrr(const ContentAtrr* record, ANYBUF** slot);
std::int32_t DecodeContenAtrr(const ANYBUF* element, ContentAtrr* record);
std::int32_t EncodeBodyFileCreator(const BodyFileCreator* record, ANYBUF** slot);
std::int32_t DecodeIdentifier(const ANYBUF* element, BodyFileCreator* record);
std::int32_t EncodeBSysInfo(const BsysInfo* record, ANYBUF** slot);
std::int32_t DecodeBsysInfo(const ANYBUF* element, BsysInfo* record);
std::int32_t EncodeFileAlignAttr(const FileAlignAttr* record, ANYBUF** slot);
std::int32_t DecodeFileAlignAttr(const ANYBUF* element, FileAlignAttr* record);
std::int32_t EncodeAlgorithmAtrr(const AlgAtrr* record, ANYBUF** slot);
std::int32_t DecodeAlgAtrr(const ANYBUF* element, AlgAtrr* record);
std::int32_t EncodeExtend(const Extend* record, ANYBUF** slot);
std::int32_t DecodeExtend(const ANYBUF* element, Extend* record);

// Each releases what the record owns and clears the pointers to it; null is accepted.
void FreeContentAtrr(ContentAtrr* record);
void FreeIdentifier(BodyFileCreator* record);

}  // namespace tq

#endif
