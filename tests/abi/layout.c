/* Sizes and offsets of every record that callers share with the libraries. The numbers are written
 * out, not computed: programs that were built earlier rely on them. */
#include <stddef.h>
#include <tqasn1/asn1.h>
#include <tqlabel/label.h>

/* The line of the field that is elsewhere is the one that does not compile. */
#define F(field, offset, width) \
  sizeof(                       \
      char[offsetof(This, field) == (offset) && sizeof(((This*)NULL)->field) == (width) ? 1 : -1])
#define RECORD(record, size, ...)                    \
  do {                                               \
    typedef record This;                             \
    _Static_assert(sizeof(This) == (size), #record); \
    (void)sizeof((size_t[]){__VA_ARGS__});           \
  } while (0)

void layout_is_as_promised(void);

/* Checked by the compiler, not by a call. */
void layout_is_as_promised(void) {
  _Static_assert(sizeof(void*) == 8 && sizeof(TqLabel) == 8, "64-bit");
  RECORD(ANYBUF, 40, F(data, 0, 8), F(length, 8, 4), F(flags, 12, 4), F(form, 16, 4),
         F(type, 20, 4), F(next, 24, 8), F(last, 32, 8));
  RECORD(PJCertIssuerEntry, 156, F(type, 0, 16), F(typeLen, 16, 4), F(value, 20, 128),
         F(valueLen, 148, 4), F(valueTag, 152, 4));
  RECORD(PJCertIssuer, 16, F(entries, 0, 8), F(count, 8, 4), F(capacity, 12, 4));
  RECORD(X509Name, 88, F(type, 0, 40), F(value, 40, 40), F(next, 80, 8));
  RECORD(EnvelopeInfo, 56, F(alg, 0, 8), F(algLen, 8, 1), F(serial, 16, 8), F(serialLen, 24, 1),
         F(key, 32, 8), F(keyLen, 40, 4), F(issuer, 48, 8));
  RECORD(PrivilegeEntry, 8, F(type, 0, 2), F(value, 4, 4));
  RECORD(PrivilegeInfo, 48, F(data, 0, 8), F(dataLen, 8, 4), F(flag1, 12, 1), F(number1, 16, 4),
         F(readCount, 20, 4), F(flag2, 24, 1), F(flag3, 25, 1), F(flag4, 26, 1), F(number3, 28, 4),
         F(number4, 32, 4), F(entryCount, 36, 4), F(entries, 40, 8));
  RECORD(SignAttribute, 40, F(algName, 0, 8), F(value, 8, 8), F(valueLen, 16, 4), F(cert, 24, 8),
         F(certLen, 32, 4));
  RECORD(MultiSignData, 32, F(cert, 0, 8), F(certLen, 8, 4), F(data, 16, 8), F(dataLen, 24, 4));
  RECORD(LogInfo, 96, F(number, 0, 4), F(text1, 8, 8), F(text1Len, 16, 4), F(issuer, 24, 8),
         F(array1, 32, 8), F(array1Len, 40, 4), F(array2, 48, 8), F(array2Len, 56, 4),
         F(time, 64, 8), F(value, 72, 4), F(text2, 80, 8), F(text2Len, 88, 4));
  RECORD(LabelSizeInfo, 76, F(customLen, 0, 4), F(headSignAlgLen, 4, 4), F(headSignLen, 8, 4),
         F(bodySignCertLen, 12, 4), F(reserve, 16, 4), F(cipher, 20, 4),
         F(headEnvelopeCount, 24, 4), F(headEnvelopeSize, 28, 4), F(bodySignValueLen, 32, 4),
         F(bodyEnvelopeSize, 36, 4), F(stampSize, 40, 4), F(waterMarkSize, 44, 4),
         F(fingerPrintSize, 48, 4), F(creatorStr2Len, 52, 4), F(fileNoLen, 56, 4),
         F(fileNameLen, 60, 4), F(fileTitleLen, 64, 4), F(extendSize, 68, 4), F(logSize, 72, 4));
  RECORD(ContentAttrInfo, 80, F(fileType, 0, 4), F(secrecy, 4, 4), F(fileSize, 8, 4),
         F(fileName, 16, 8), F(fileNameLen, 24, 4), F(fileTitle, 32, 8), F(fileTitleLen, 40, 4),
         F(modifyTime, 48, 8), F(expiryTime, 56, 8), F(abolishTime, 64, 8), F(destroyTime, 72, 8));
  RECORD(FileCreatorInfo, 32, F(str1, 0, 8), F(str1Len, 8, 4), F(str2, 16, 8), F(str2Len, 24, 4),
         F(time, 28, 4));
  RECORD(WaterMark, 64, F(data1, 0, 8), F(data1Len, 8, 4), F(data2, 16, 8), F(data2Len, 24, 4),
         F(alg, 28, 4), F(algParam, 32, 4), F(text, 40, 8), F(textLen, 48, 4), F(time, 56, 8));
  RECORD(Meta, 72, F(element, 0, 8), F(elementLen, 8, 1), F(time1, 16, 8), F(text1, 24, 8),
         F(text1Len, 32, 4), F(time2, 40, 8), F(time3, 48, 8), F(text2, 56, 8), F(text2Len, 64, 4));
  RECORD(Seal, 144, F(name, 0, 8), F(nameLen, 8, 4), F(meta, 16, 72), F(type, 88, 1),
         F(data, 96, 8), F(dataLen, 104, 4), F(element, 112, 8), F(elementLen, 120, 4),
         F(bits, 128, 8), F(bitsLen, 136, 4));
  RECORD(Stamp, 72, F(text1, 0, 8), F(text1Len, 8, 4), F(value, 12, 16), F(text2, 32, 8),
         F(text2Len, 40, 4), F(time, 48, 8), F(data, 56, 8), F(dataLen, 64, 4));
  RECORD(StampRecord, 248, F(name, 0, 8), F(nameLen, 8, 4), F(seal, 16, 144), F(stamp, 160, 72),
         F(bits, 232, 8), F(bitsLen, 240, 4));
  RECORD(FingerEntry, 24, F(value, 0, 8), F(valueLen, 8, 4), F(action, 12, 9));
  RECORD(FingerList, 16, F(count, 0, 4), F(entries, 8, 8));
  RECORD(Finger, 64, F(sys1, 0, 8), F(sys1Len, 8, 4), F(sys2, 16, 8), F(sys2Len, 24, 4),
         F(sys3, 32, 8), F(sys3Len, 40, 4), F(sysValue, 44, 4), F(list, 48, 16));
}
