/* Sizes and offsets of every record that callers share with the libraries. The numbers are written
 * out, not computed: programs that were built earlier rely on them. */
#include <stddef.h>
#include <tqasn1/asn1.h>
#include <tqlabel/label.h>

#define SIZE(record, expected) _Static_assert(sizeof(record) == (expected), #record)
#define AT(record, field, offset, width)                                   \
  _Static_assert(offsetof(record, field) == (offset), #record "." #field); \
  _Static_assert(sizeof(((record*)NULL)->field) == (width), #record "." #field)

/* The number of records that are checked here, at compile time. */
int layout_is_as_promised(void);

SIZE(void*, 8);
SIZE(TqLabel, 8);

SIZE(ANYBUF, 40);
AT(ANYBUF, data, 0, 8);
AT(ANYBUF, length, 8, 4);
AT(ANYBUF, flags, 12, 4);
AT(ANYBUF, form, 16, 4);
AT(ANYBUF, type, 20, 4);
AT(ANYBUF, next, 24, 8);
AT(ANYBUF, last, 32, 8);

SIZE(PJCertIssuerEntry, 156);
AT(PJCertIssuerEntry, type, 0, 16);
AT(PJCertIssuerEntry, typeLen, 16, 4);
AT(PJCertIssuerEntry, value, 20, 128);
AT(PJCertIssuerEntry, valueLen, 148, 4);
AT(PJCertIssuerEntry, valueTag, 152, 4);

SIZE(PJCertIssuer, 16);
AT(PJCertIssuer, entries, 0, 8);
AT(PJCertIssuer, count, 8, 4);
AT(PJCertIssuer, capacity, 12, 4);

SIZE(X509Name, 88);
AT(X509Name, type, 0, 40);
AT(X509Name, value, 40, 40);
AT(X509Name, next, 80, 8);

SIZE(EnvelopeInfo, 56);
AT(EnvelopeInfo, alg, 0, 8);
AT(EnvelopeInfo, algLen, 8, 1);
AT(EnvelopeInfo, serial, 16, 8);
AT(EnvelopeInfo, serialLen, 24, 1);
AT(EnvelopeInfo, key, 32, 8);
AT(EnvelopeInfo, keyLen, 40, 4);
AT(EnvelopeInfo, issuer, 48, 8);

SIZE(PrivilegeEntry, 8);
AT(PrivilegeEntry, type, 0, 2);
AT(PrivilegeEntry, value, 4, 4);

SIZE(PrivilegeInfo, 48);
AT(PrivilegeInfo, data, 0, 8);
AT(PrivilegeInfo, dataLen, 8, 4);
AT(PrivilegeInfo, flag1, 12, 1);
AT(PrivilegeInfo, number1, 16, 4);
AT(PrivilegeInfo, readCount, 20, 4);
AT(PrivilegeInfo, flag2, 24, 1);
AT(PrivilegeInfo, flag3, 25, 1);
AT(PrivilegeInfo, flag4, 26, 1);
AT(PrivilegeInfo, number3, 28, 4);
AT(PrivilegeInfo, number4, 32, 4);
AT(PrivilegeInfo, entryCount, 36, 4);
AT(PrivilegeInfo, entries, 40, 8);

SIZE(SignAttribute, 40);
AT(SignAttribute, algName, 0, 8);
AT(SignAttribute, value, 8, 8);
AT(SignAttribute, valueLen, 16, 4);
AT(SignAttribute, cert, 24, 8);
AT(SignAttribute, certLen, 32, 4);

SIZE(MultiSignData, 32);
AT(MultiSignData, cert, 0, 8);
AT(MultiSignData, certLen, 8, 4);
AT(MultiSignData, data, 16, 8);
AT(MultiSignData, dataLen, 24, 4);

SIZE(LogInfo, 96);
AT(LogInfo, number, 0, 4);
AT(LogInfo, text1, 8, 8);
AT(LogInfo, text1Len, 16, 4);
AT(LogInfo, issuer, 24, 8);
AT(LogInfo, array1, 32, 8);
AT(LogInfo, array1Len, 40, 4);
AT(LogInfo, array2, 48, 8);
AT(LogInfo, array2Len, 56, 4);
AT(LogInfo, time, 64, 8);
AT(LogInfo, value, 72, 4);
AT(LogInfo, text2, 80, 8);
AT(LogInfo, text2Len, 88, 4);

SIZE(LabelSizeInfo, 76);
AT(LabelSizeInfo, customLen, 0, 4);
AT(LabelSizeInfo, headSignAlgLen, 4, 4);
AT(LabelSizeInfo, headSignLen, 8, 4);
AT(LabelSizeInfo, bodySignCertLen, 12, 4);
AT(LabelSizeInfo, reserve, 16, 4);
AT(LabelSizeInfo, cipher, 20, 4);
AT(LabelSizeInfo, headEnvelopeCount, 24, 4);
AT(LabelSizeInfo, headEnvelopeSize, 28, 4);
AT(LabelSizeInfo, bodySignValueLen, 32, 4);
AT(LabelSizeInfo, bodyEnvelopeSize, 36, 4);
AT(LabelSizeInfo, stampSize, 40, 4);
AT(LabelSizeInfo, waterMarkSize, 44, 4);
AT(LabelSizeInfo, fingerPrintSize, 48, 4);
AT(LabelSizeInfo, creatorStr2Len, 52, 4);
AT(LabelSizeInfo, fileNoLen, 56, 4);
AT(LabelSizeInfo, fileNameLen, 60, 4);
AT(LabelSizeInfo, fileTitleLen, 64, 4);
AT(LabelSizeInfo, extendSize, 68, 4);
AT(LabelSizeInfo, logSize, 72, 4);

SIZE(ContentAttrInfo, 80);
AT(ContentAttrInfo, fileType, 0, 4);
AT(ContentAttrInfo, secrecy, 4, 4);
AT(ContentAttrInfo, fileSize, 8, 4);
AT(ContentAttrInfo, fileName, 16, 8);
AT(ContentAttrInfo, fileNameLen, 24, 4);
AT(ContentAttrInfo, fileTitle, 32, 8);
AT(ContentAttrInfo, fileTitleLen, 40, 4);
AT(ContentAttrInfo, modifyTime, 48, 8);
AT(ContentAttrInfo, expiryTime, 56, 8);
AT(ContentAttrInfo, abolishTime, 64, 8);
AT(ContentAttrInfo, destroyTime, 72, 8);

SIZE(FileCreatorInfo, 32);
AT(FileCreatorInfo, str1, 0, 8);
AT(FileCreatorInfo, str1Len, 8, 4);
AT(FileCreatorInfo, str2, 16, 8);
AT(FileCreatorInfo, str2Len, 24, 4);
AT(FileCreatorInfo, time, 28, 4);

SIZE(WaterMark, 64);
AT(WaterMark, data1, 0, 8);
AT(WaterMark, data1Len, 8, 4);
AT(WaterMark, data2, 16, 8);
AT(WaterMark, data2Len, 24, 4);
AT(WaterMark, alg, 28, 4);
AT(WaterMark, algParam, 32, 4);
AT(WaterMark, text, 40, 8);
AT(WaterMark, textLen, 48, 4);
AT(WaterMark, time, 56, 8);

SIZE(Meta, 72);
AT(Meta, element, 0, 8);
AT(Meta, elementLen, 8, 1);
AT(Meta, time1, 16, 8);
AT(Meta, text1, 24, 8);
AT(Meta, text1Len, 32, 4);
AT(Meta, time2, 40, 8);
AT(Meta, time3, 48, 8);
AT(Meta, text2, 56, 8);
AT(Meta, text2Len, 64, 4);

SIZE(Seal, 144);
AT(Seal, name, 0, 8);
AT(Seal, nameLen, 8, 4);
AT(Seal, meta, 16, 72);
AT(Seal, type, 88, 1);
AT(Seal, data, 96, 8);
AT(Seal, dataLen, 104, 4);
AT(Seal, element, 112, 8);
AT(Seal, elementLen, 120, 4);
AT(Seal, bits, 128, 8);
AT(Seal, bitsLen, 136, 4);

SIZE(Stamp, 72);
AT(Stamp, text1, 0, 8);
AT(Stamp, text1Len, 8, 4);
AT(Stamp, value, 12, 16);
AT(Stamp, text2, 32, 8);
AT(Stamp, text2Len, 40, 4);
AT(Stamp, time, 48, 8);
AT(Stamp, data, 56, 8);
AT(Stamp, dataLen, 64, 4);

SIZE(StampRecord, 248);
AT(StampRecord, name, 0, 8);
AT(StampRecord, nameLen, 8, 4);
AT(StampRecord, seal, 16, 144);
AT(StampRecord, stamp, 160, 72);
AT(StampRecord, bits, 232, 8);
AT(StampRecord, bitsLen, 240, 4);

SIZE(FingerEntry, 24);
AT(FingerEntry, value, 0, 8);
AT(FingerEntry, valueLen, 8, 4);
AT(FingerEntry, action, 12, 9);

SIZE(FingerList, 16);
AT(FingerList, count, 0, 4);
AT(FingerList, entries, 8, 8);

SIZE(Finger, 64);
AT(Finger, sys1, 0, 8);
AT(Finger, sys1Len, 8, 4);
AT(Finger, sys2, 16, 8);
AT(Finger, sys2Len, 24, 4);
AT(Finger, sys3, 32, 8);
AT(Finger, sys3Len, 40, 4);
AT(Finger, sysValue, 44, 4);
AT(Finger, list, 48, 16);

int layout_is_as_promised(void) { return 21; }
