#ifndef TQ_CORE_MODEL_RECORDS_H
#define TQ_CORE_MODEL_RECORDS_H

// The records of a label in memory. They are plain structs: zeroed is empty, byte fields are
// embedded ANYBUF nodes, lists are chained through `next` with the owner holding the first node.

#include <tqlabel/label.h>

#include <cstdint>

namespace tq {

// The most that the head's label, version text and serial number take.
inline constexpr std::uint32_t kTextLimit = 128;

// Content and system attributes

struct ContentAtrr {
  std::uint32_t intAttr1;
  std::uint32_t intAttr2;
  std::uint32_t intAttr3;
  ANYBUF strAttr1;
  ANYBUF strAttr2;
  std::uint64_t time1;
  std::uint64_t time2;
  std::uint64_t time3;
  std::uint64_t time4;
};

struct FileAlignAttr {
  std::uint32_t fileAlignSize;
  std::uint32_t fileUnEffectSize;
  std::uint32_t labelAlignSize;
};

struct BodyFileCreator {
  ANYBUF creatorStr1;
  ANYBUF creatorStr2;
  std::uint64_t creatorTime;
};

struct BsysInfo {
  ANYBUF sysInfo1;
  ANYBUF sysInfo2;
  ANYBUF sysInfo3;
  std::uint32_t sysInfoValue;
};

struct AlgAtrr {
  std::uint32_t alg;
  std::uint32_t algParam;
};

struct Extend {
  std::uint32_t extendType;
  ANYBUF extendValue;
  Extend* next;
};

// Markings; `present` says whether a "1.1.2" label carries the record at all

struct WaterMarkInfo {
  std::uint32_t present;
  ANYBUF markData1;
  ANYBUF markData2;
  AlgAtrr markAlg;
  ANYBUF markText;
  std::uint64_t markTime;
};

struct MetaInfo {
  ANYBUF metaElement;
  std::uint64_t metaTime1;
  ANYBUF metaText1;
  std::uint64_t metaTime2;
  std::uint64_t metaTime3;
  ANYBUF metaText2;
};

struct SealInfo {
  ANYBUF sealName;
  MetaInfo metaInfo;
  std::uint32_t sealType;
  ANYBUF sealData;
  ANYBUF sealElement;
  ANYBUF sealBits;
};

struct StampInfo {
  ANYBUF stampText1;
  std::uint32_t stampValue[4];
  ANYBUF stampText2;
  std::uint64_t stampTime;
  ANYBUF stampText3;
};

struct StampAttr {
  std::uint32_t present;
  ANYBUF stampName;
  SealInfo sealInfo;
  StampInfo stampInfo;
  ANYBUF stampBits;
};

// Fingerprints and privileges

struct ActionList {
  ANYBUF actionSubject;
  std::uint8_t action[11];
  ActionList* next;
};

struct FingerPrint {
  std::uint32_t present;
  BsysInfo sysInfo;
  ActionList* fingerPrintList;
};

struct ExtPri {
  std::uint32_t priType;
  std::uint32_t priValue;
  ExtPri* next;
};

struct OPrivilege {
  ANYBUF priSubject;
  std::uint8_t priFlag1;
  std::uint32_t priValue1;
  std::uint32_t priValue2;
  std::uint8_t priFlag2;
  std::uint8_t priFlag3;
  std::uint8_t priFlag4;
  std::uint32_t priValue3;
  std::uint32_t priValue4;
  ExtPri* extPriList;
};

// Signatures and envelopes

struct Sign {
  ANYBUF certificate;
  ANYBUF algorithm;
  ANYBUF value;
  Sign* next;
};

struct ENVELOPE {
  X509Name issuer;
  ANYBUF serial;
  ANYBUF algorithm;
  ANYBUF encryptedKey;
  ENVELOPE* next;
};

struct BDigitEnvolope {
  ENVELOPE envelope;  // its link is not used
  OPrivilege privilege;
  BDigitEnvolope* next;
};

struct EncryptHead {
  ANYBUF algorithm;
  std::uint32_t mode;
  std::uint32_t feedBackBits;
  ENVELOPE* envelopes;
};

// Logs

struct Log {
  std::uint32_t logType;
  ANYBUF logText1;
  X509Name logName;
  ANYBUF logArray1;
  ANYBUF logArray2;
  std::uint64_t logTime;
  std::uint32_t logValue;
  ANYBUF logText2;
  Log* next;
};

// Head, body, label

struct Head {
  ANYBUF label;
  ANYBUF versionText;
  ANYBUF custom;
  Sign headSign;
  EncryptHead encryptHead;
  X509Name issuer;
  ANYBUF serialNum;
  std::uint64_t createTime;
  std::uint64_t modifyTime;
};

struct Body {
  ANYBUF bodySignValue;
  ANYBUF bodySignCert;
  Sign multiSign;
  BDigitEnvolope* bodyEnvelopes;
  StampAttr stamp;
  WaterMarkInfo waterMark;
  FingerPrint fingerPrint;
  BodyFileCreator fileCreator;
  ContentAtrr content;
  FileAlignAttr align;
  Extend* extends;
  Log* logs;
};

}  // namespace tq

// What a label handle points to. The bytes that a label was decoded from lie behind it in the same
// block, and its byte fields are views of them until a setter replaces them.
struct TqLabelHandle {
  std::uint8_t subVersion;  // '1' and '2' for "1.1.1" and "1.1.2", else 0
  char version[3];          // "6.0" or "1.1", not terminated; zeros until a version is set
  tq::Head head;
  tq::Body body;
  ANYBUF pad;
  std::uint8_t* openedBytes;  // the body that was decrypted since, or null
};

#endif
