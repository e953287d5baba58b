/**
 * @file
 * Security labels of protected files: building, reading and editing them.
 */
#ifndef TQLABEL_LABEL_H
#define TQLABEL_LABEL_H

#include <stdint.h>
#include <tqasn1/asn1.h>

#define TQ_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

typedef struct TqLabelHandle* TqLabel;
typedef struct SignEnum SignEnum;
typedef struct DigitEnvolopEnum DigitEnvolopEnum;

typedef struct PJCertIssuerEntry {
  uint8_t type[16];
  uint32_t typeLen;
  uint8_t value[128];
  uint32_t valueLen;
  uint32_t valueTag;
} PJCertIssuerEntry;

typedef struct PJCertIssuer {
  PJCertIssuerEntry* entries;
  uint32_t count;
  uint32_t capacity;
} PJCertIssuer;

typedef struct X509Name {
  ANYBUF type;
  ANYBUF value;
  struct X509Name* next;
} X509Name;

typedef struct EnvelopeInfo {
  uint8_t* alg;
  uint8_t algLen;
  uint8_t* serial;
  uint8_t serialLen;
  uint8_t* key;
  uint32_t keyLen;
  PJCertIssuer* issuer;
} EnvelopeInfo;

typedef struct PrivilegeEntry {
  uint16_t type;
  uint32_t value;
} PrivilegeEntry;

typedef struct PrivilegeInfo {
  uint8_t* data;
  uint32_t dataLen;
  uint8_t flag1;
  uint32_t number1;
  uint32_t readCount;
  uint8_t flag2;
  uint8_t flag3;
  uint8_t flag4;
  uint32_t number3;
  uint32_t number4;
  uint32_t entryCount;
  PrivilegeEntry* entries;
} PrivilegeInfo;

typedef struct SignAttribute {
  char* algName;
  uint8_t* value;
  uint32_t valueLen;
  uint8_t* cert;
  uint32_t certLen;
} SignAttribute;

typedef struct MultiSignData {
  uint8_t* cert;
  uint32_t certLen;
  uint8_t* data;
  uint32_t dataLen;
} MultiSignData;

typedef struct LogInfo {
  uint32_t number;
  uint8_t* text1;
  uint32_t text1Len;
  PJCertIssuer* issuer;
  uint8_t* array1;
  uint32_t array1Len;
  uint8_t* array2;
  uint32_t array2Len;
  uint64_t time;
  uint32_t value;
  uint8_t* text2;
  uint32_t text2Len;
} LogInfo;

typedef struct LabelSizeInfo {
  uint32_t customLen;
  uint32_t headSignAlgLen;
  uint32_t headSignLen;
  uint32_t bodySignCertLen;
  uint32_t reserve;
  uint32_t cipher;
  uint32_t headEnvelopeCount;
  uint32_t headEnvelopeSize;
  uint32_t bodySignValueLen;
  uint32_t bodyEnvelopeSize;
  uint32_t stampSize;
  uint32_t waterMarkSize;
  uint32_t fingerPrintSize;
  uint32_t creatorStr2Len;
  uint32_t fileNoLen;
  uint32_t fileNameLen;
  uint32_t fileTitleLen;
  uint32_t extendSize;
  uint32_t logSize;
} LabelSizeInfo;

typedef struct ContentAttrInfo {
  uint32_t fileType;
  uint32_t secrecy;
  uint32_t fileSize;
  uint8_t* fileName;
  uint32_t fileNameLen;
  uint8_t* fileTitle;
  uint32_t fileTitleLen;
  uint64_t modifyTime;
  uint64_t expiryTime;
  uint64_t abolishTime;
  uint64_t destroyTime;
} ContentAttrInfo;

typedef struct FileCreatorInfo {
  uint8_t* str1;
  uint32_t str1Len;
  uint8_t* str2;
  uint32_t str2Len;
  uint32_t time;
} FileCreatorInfo;

typedef struct WaterMark {
  uint8_t* data1;
  uint32_t data1Len;
  uint8_t* data2;
  uint32_t data2Len;
  uint32_t alg;
  uint32_t algParam;
  char* text;
  uint32_t textLen;
  uint64_t time;
} WaterMark;

typedef struct Meta {
  uint8_t* element;
  uint8_t elementLen;
  uint64_t time1;
  uint8_t* text1;
  uint32_t text1Len;
  uint64_t time2;
  uint64_t time3;
  uint8_t* text2;
  uint32_t text2Len;
} Meta;

typedef struct Seal {
  uint8_t* name;
  uint32_t nameLen;
  Meta meta;
  uint8_t type;
  uint8_t* data;
  uint32_t dataLen;
  uint8_t* element;
  uint32_t elementLen;
  uint8_t* bits;
  uint32_t bitsLen;
} Seal;

typedef struct Stamp {
  char* text1;
  uint32_t text1Len;
  uint32_t value[4];
  char* text2;
  uint32_t text2Len;
  uint64_t time;
  uint8_t* data;
  uint32_t dataLen;
} Stamp;

typedef struct StampRecord {
  uint8_t* name;
  uint32_t nameLen;
  Seal seal;
  Stamp stamp;
  uint8_t* bits;
  uint32_t bitsLen;
} StampRecord;

typedef struct FingerEntry {
  uint8_t* value;
  uint32_t valueLen;
  uint8_t action[9];
} FingerEntry;

typedef struct FingerList {
  uint32_t count;
  FingerEntry* entries;
} FingerList;

typedef struct Finger {
  uint8_t* sys1;
  uint32_t sys1Len;
  uint8_t* sys2;
  uint32_t sys2Len;
  uint8_t* sys3;
  uint32_t sys3Len;
  uint32_t sysValue;
  FingerList list;
} Finger;

TQ_API TqLabel GetHandleLabel(void);
TQ_API void FreeHandleLabel(TqLabel label);
TQ_API int32_t GLSetVersion(TqLabel label, const uint8_t* text, uint32_t length);
TQ_API int32_t GLGetVersion(TqLabel label, uint8_t* buffer, uint8_t* length);

TQ_API int32_t EncodeLabel(TqLabel label, uint8_t* buffer, uint32_t* length);
TQ_API int32_t EncodeLabelPad(TqLabel label, uint8_t* buffer, uint32_t* length);
TQ_API int32_t EncodeLabelEncrypted(TqLabel label, const uint8_t* body, uint32_t bodyLen,
                                    uint8_t* buffer, uint32_t* length);
TQ_API int32_t EncodeLabelPadEncrypted(TqLabel label, const uint8_t* body, uint32_t bodyLen,
                                       uint8_t* buffer, uint32_t* length);
TQ_API int32_t EncodeBodyPlaint(TqLabel label, uint8_t* buffer, uint32_t* length);
TQ_API int32_t GetSignatureMessage(TqLabel label, uint8_t* buffer, uint32_t* length);
TQ_API int32_t DecodeLabel(const uint8_t* der, uint32_t derLen, TqLabel* label);
TQ_API int32_t DecodeLabelEncrypted(const uint8_t* der, uint32_t derLen, uint8_t* buffer,
                                    uint32_t* length, TqLabel* label);
TQ_API int32_t DecodeLabelDecrypted(TqLabel label, const uint8_t* der, uint32_t derLen);
TQ_API int32_t LabelBodyNeedEnc(TqLabel label);
TQ_API int32_t LabelBodyWeatherEnc(const uint8_t* der, int32_t derLen);

TQ_API int32_t SflAlg2OID(const uint8_t* name, uint32_t nameLen, uint32_t mode, int32_t keyLen,
                          uint8_t* oid, uint32_t* oidLen);
TQ_API int32_t SflOID2Alg(const uint8_t* oid, uint32_t oidLen, char* name, uint8_t* mode,
                          uint32_t* keyLen);
TQ_API int32_t SetHeadSignAlg(TqLabel label, const uint8_t* name, uint32_t nameLen);
TQ_API int32_t GetHeadSignAlg(TqLabel label, uint8_t* buffer, uint32_t* length);
TQ_API int32_t GetSignAlgName(const uint8_t* der, int32_t derLen, uint8_t* buffer,
                              uint32_t* length);
TQ_API int32_t SetCipherAndMode(void);

TQ_API int32_t X509NameCmp(const X509Name* name, const PJCertIssuer* issuer);
TQ_API int32_t ConvertIssuerName2PJCertIssuer(const PJCertIssuer* issuer, X509Name* name);
TQ_API int32_t ConvertPJCertIssuer2IssuerName(const X509Name* name, PJCertIssuer** issuer);
TQ_API int32_t FreeIssuerName(PJCertIssuer* issuer);
TQ_API int32_t SetCertSerialAndIssuerToHead(TqLabel label, const uint8_t* serial,
                                            uint32_t serialLen, const PJCertIssuer* issuer);
TQ_API int32_t GetCertSerialAndIssuerToHead(TqLabel label, uint8_t* serial, uint8_t* serialLen,
                                            PJCertIssuer** issuer);

TQ_API int32_t SetHeadSignCert(TqLabel label, const uint8_t* cert, uint32_t certLen);
TQ_API int32_t GetHeadSignCert(TqLabel label, uint8_t* buffer, uint32_t* length);
TQ_API int32_t SetHeadSignValue(TqLabel label, const uint8_t* value, uint32_t valueLen);
TQ_API int32_t GetHeadSignValue(TqLabel label, uint8_t* buffer, uint32_t* length);
TQ_API int32_t SetBodySignCert(TqLabel label, const uint8_t* cert, uint32_t certLen);
TQ_API int32_t GetBodySignCert(TqLabel label, uint8_t* buffer, uint32_t* length);
TQ_API int32_t SetBodySigVal(TqLabel label, const uint8_t* value, uint32_t valueLen);
TQ_API int32_t GetBodySigVal(TqLabel label, uint8_t* buffer, uint32_t* length);
TQ_API int32_t SetBodySignAttr(TqLabel label, int32_t append, const SignAttribute* attribute);
TQ_API int32_t GetBodySignAttr(TqLabel label, SignAttribute* attribute);
TQ_API int32_t CreateEmurateSign(TqLabel label, SignEnum** enumerator);
TQ_API int32_t GetNextSign(SignEnum* enumerator, SignAttribute* attribute);
TQ_API int32_t DestroySignEmura(SignEnum* enumerator);
TQ_API int32_t DestroyEmura(void* enumerator);
TQ_API int32_t GetMultiSignData(TqLabel label, MultiSignData* request);
TQ_API int32_t FileHaveSigned(TqLabel label, const uint8_t* bytes, uint32_t length);
TQ_API int32_t VerifySignCertConsistent(void);

TQ_API int32_t SetLabel(TqLabel label, const uint8_t* text, uint32_t length);
TQ_API int32_t GetLabel(TqLabel label, uint8_t* buffer, uint8_t* length);
TQ_API int32_t GetLable(const uint8_t* der, uint32_t derLen, uint8_t* text);
TQ_API int32_t SetCustom(TqLabel label, const uint8_t* bytes, uint32_t length);
TQ_API int32_t GetCustom(TqLabel label, uint8_t* buffer, uint32_t* length);
TQ_API int32_t GetCustomAttr(const uint8_t* der, int32_t derLen, uint8_t* buffer, int32_t* length);
TQ_API int32_t SetHeadSerialNum(TqLabel label, const uint8_t* serial, uint32_t length);
TQ_API int32_t GetHeadSerialNum(TqLabel label, uint8_t* buffer, uint8_t* length);
TQ_API int32_t SetHeadCreateTime(TqLabel label);
TQ_API int32_t GetHeadCreateTime(TqLabel label, uint64_t* time);
TQ_API int32_t SetHeadModifyTime(TqLabel label, uint64_t time);
TQ_API int32_t GetHeadModifyTime(TqLabel label, uint64_t* time);
TQ_API int32_t SetEncryptHead(TqLabel label, const uint8_t* alg, uint32_t algLen,
                              uint32_t feedBackBits);
TQ_API int32_t GetEncryptHead(TqLabel label, uint8_t* buffer, uint8_t* length,
                              uint8_t* feedBackBits);
TQ_API int32_t SetHeadFeedBackBits(TqLabel label, uint32_t bits);
TQ_API int32_t GetHeadFeedBackBits(TqLabel label, uint8_t* bits);

TQ_API int32_t SetContentAtrr(TqLabel label, const ContentAttrInfo* content);
TQ_API int32_t GetContentAtrr(TqLabel label, ContentAttrInfo* content);
TQ_API int32_t GLSetFileType(TqLabel label, uint32_t type);
TQ_API int32_t GLGetFileType(TqLabel label, uint32_t* type);
TQ_API int32_t SetFileSecc(TqLabel label, uint32_t level);
TQ_API int32_t GetFileSecc(TqLabel label, uint32_t* level);
TQ_API int32_t GLSetFileSize(TqLabel label, uint32_t size);
TQ_API int32_t GLGetFileSize(TqLabel label, uint32_t* size);
TQ_API int32_t SetFileName(TqLabel label, const uint8_t* name, uint32_t length);
TQ_API int32_t GetFileName(TqLabel label, uint8_t* buffer, uint8_t* length);
TQ_API int32_t GLSetFileTitle(TqLabel label, const uint8_t* title, uint32_t length);
TQ_API int32_t GLGetFileTitle(TqLabel label, uint8_t* buffer, uint8_t* length);
TQ_API int32_t SetModifyTime(TqLabel label, uint64_t time);
TQ_API int32_t GetModifyTime(TqLabel label, uint64_t* time);
TQ_API int32_t SetBodyFileCreator(TqLabel label, const FileCreatorInfo* creator);
TQ_API int32_t GetFileIdentify(TqLabel label, FileCreatorInfo* creator);
TQ_API int32_t GLSetFileNo(TqLabel label, const char* text);
TQ_API int32_t GLGetFileNo(TqLabel label, char* buffer);
TQ_API int32_t SetFileAlignSize(TqLabel label, uint32_t size);
TQ_API int32_t GetFileAlignSize(TqLabel label, uint32_t* size);
TQ_API int32_t SetFileUnEffectSize(TqLabel label, uint32_t size);
TQ_API int32_t GetFileUnEffectSize(TqLabel label, uint32_t* size);
TQ_API int32_t SetLabelAlignSize(TqLabel label, uint32_t size);
TQ_API int32_t GetLabelAlignSize(TqLabel label, uint32_t* size);
TQ_API uint32_t GetStringLength(const char* text);

TQ_API int32_t AddEnvelopeToHead(TqLabel label, const EnvelopeInfo* envelope);
TQ_API int32_t GetEnvelopeFromHead(TqLabel label, EnvelopeInfo* envelope);
TQ_API int32_t HaveTheEnvelopeFromHEnv(TqLabel label, const uint8_t* serial, uint32_t serialLen,
                                       const PJCertIssuer* issuer, void** previous);
TQ_API int32_t ADDigitEnvlopeToBody(TqLabel label, const EnvelopeInfo* envelope,
                                    const PrivilegeInfo* privilege);
TQ_API int32_t GetEnvelopeFromBody(TqLabel label, EnvelopeInfo* envelope,
                                   PrivilegeInfo* privilege);
TQ_API int32_t HaveTheEnvelopeFromBEnv(TqLabel label, const uint8_t* serial, uint32_t serialLen,
                                       const PJCertIssuer* issuer, void** previous);
TQ_API int32_t GetDigitEnvlope(TqLabel label, int32_t index, EnvelopeInfo* envelope,
                               PrivilegeInfo* privilege);
TQ_API int32_t GetDigitEnvlopeCountFromBody(TqLabel label, uint32_t* count);
TQ_API int32_t GetCertByIssuerAndSerial(TqLabel label, const uint8_t* serial, uint32_t serialLen,
                                        const PJCertIssuer* issuer, uint8_t* buffer,
                                        uint32_t* length);
TQ_API int32_t CreatEmurateDigitEnvolop(DigitEnvolopEnum** enumerator, TqLabel label);
TQ_API int32_t GetCurrentDigitEnvolop(DigitEnvolopEnum* enumerator, uint8_t* buffer,
                                      uint32_t* length);
TQ_API int32_t SetCurrentEmuEnvolop(DigitEnvolopEnum* enumerator, const uint8_t* headKey,
                                    uint32_t headKeyLen, const uint8_t* bodyKey,
                                    uint32_t bodyKeyLen);
TQ_API int32_t HaveNextDigitEnvolop(DigitEnvolopEnum* enumerator);

TQ_API int32_t HavePrivilege(const uint8_t* der, int32_t derLen, const uint8_t* serial,
                             uint32_t serialLen);
TQ_API int32_t HavePrivilegeOfHead(const uint8_t* der, int32_t derLen, const uint8_t* serial,
                                   uint32_t serialLen, const PJCertIssuer* issuer);
TQ_API int32_t DelPrivilegeFromLabel(TqLabel label, const uint8_t* serial, uint32_t serialLen,
                                     const PJCertIssuer* issuer);
TQ_API int32_t SetAlreadyReadCountsToLabel(TqLabel label, const uint8_t* serial,
                                           uint32_t serialLen, const PJCertIssuer* issuer,
                                           uint32_t count);

TQ_API int32_t SetWaterMarkInfo(TqLabel label, const WaterMark* mark);
TQ_API int32_t GetWaterMarkInfo(TqLabel label, WaterMark** mark);
TQ_API int32_t FreetWaterMarkInfo(WaterMark* mark);
TQ_API int32_t SetStampInfo(TqLabel label, const StampRecord* stamp);
TQ_API int32_t GetStampInfo(TqLabel label, StampRecord** stamp);
TQ_API int32_t FreeStampA(StampRecord* stamp);
TQ_API int32_t SetFingerPrintInfo(TqLabel label, const Finger* finger);
TQ_API int32_t GetFingerPrintInfo(TqLabel label, Finger** finger);
TQ_API int32_t FreeFingerPrintInfo(Finger* finger);

TQ_API int32_t AddLog(TqLabel label, const LogInfo* log);
TQ_API int32_t GetLog(TqLabel label, uint32_t position, LogInfo** log);
TQ_API int32_t DelLog(TqLabel label, int32_t position);
TQ_API int32_t DelAlLog(TqLabel label);
TQ_API void FreeLog(LogInfo* log);
TQ_API int32_t GetLogCout(TqLabel label, uint32_t* count);
TQ_API int32_t AddExtendValue(TqLabel label, uint32_t type, const uint8_t* value, uint32_t length);
TQ_API int32_t GetExtendValue(TqLabel label, uint32_t type, uint8_t* buffer, uint32_t* length);
TQ_API int32_t GetExtend(TqLabel label, uint32_t position, uint32_t* type, uint8_t* buffer,
                         uint32_t* length);
TQ_API int32_t DelExtendAttr(TqLabel label, uint32_t type);
TQ_API int32_t GetExtendCount(TqLabel label, uint32_t* count);

TQ_API int32_t LabCalSize(TqLabel label, LabelSizeInfo* sizes);
TQ_API int32_t SetLabelPadSize(TqLabel label, uint32_t size);
TQ_API int32_t HavePadded(const uint8_t* der, uint32_t derLen, uint32_t* flag);

TQ_API int32_t SetExpired(TqLabel label, uint64_t time);
TQ_API int32_t GetExpired(TqLabel label, uint64_t* time);
TQ_API int32_t SetDestroyTime(TqLabel label, uint64_t time);
TQ_API int32_t GetDestroyTime(TqLabel label, uint64_t* time);
TQ_API int32_t GetAbolishTime(TqLabel label, uint64_t* time);
TQ_API int32_t AbolishSF(TqLabel label);
TQ_API int32_t CheckLabelDate(TqLabel label);
TQ_API int32_t CheckDestroyDate(TqLabel label);
TQ_API int32_t CheckAbolishDate(TqLabel label);

#ifdef __cplusplus
}
#endif

#endif
