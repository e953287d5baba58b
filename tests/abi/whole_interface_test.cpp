// The whole interface at once: what every setter stored every getter gives back, and a label that
// was edited is a label that was built so.

#include "abi/observed.h"
#include "abi/records.h"

namespace tq::abi {
namespace {

// The body encrypted on the way; the cipher is that the bytes are turned round.
Label through_encryption(TqLabel label) {
  Bytes body = encode(label, EncodeBodyPlaint);
  std::reverse(body.begin(), body.end());
  const Bytes der = encode_sealed(label, body, EncodeLabelPadEncrypted);
  std::uint32_t length = 0;
  EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), nullptr, &length, nullptr), 0);
  Bytes sealed(length);
  TqLabel handle = nullptr;
  EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), sealed.data(), &length, &handle), 0);
  Label decoded(handle);
  std::reverse(sealed.begin(), sealed.end());
  EXPECT_EQ(DecodeLabelDecrypted(decoded, sealed.data(), length), 0);
  return decoded;
}
std::vector<Label> decoded_both_ways(TqLabel label) {
  std::vector<Label> labels;
  labels.push_back(decode(encode(label, EncodeLabelPad)));
  labels.push_back(through_encryption(label));
  return labels;
}

const HeadEnvelope kRekeyed{recipient(1), text("SM2"), pattern(50, 50)};

Log third_log() {
  Log log;
  log.number = 3;
  return log;
}

// Before the edits, or as if they had been known from the start.
Label editable(const char* version, bool edited) {
  Label label;
  fill(label, version);
  MarkInput mark;
  EXPECT_EQ(SetWaterMarkInfo(label, &mark.record), 0);
  set(label, edited ? GLSetFileTitle : SetFileName, pattern(20));
  if (!is_60(version)) {
    if (!edited) {
      EXPECT_EQ(add_to_head(label, {recipient(1)}), 0);
      EXPECT_EQ(add_to_body(label, {recipient(1)}), 0);
    }
    for (const std::uint8_t serial : Bytes{2, 3, 4}) {
      if (edited && serial == 4) continue;
      Privileges rights;
      if (edited && serial == 2) rights.numbers[1] = 1000;
      EXPECT_EQ(add_to_head(label, {recipient(serial)}), 0);
      EXPECT_EQ(add_to_body(label, {recipient(serial)}, rights), 0);
    }
    if (edited) {
      EXPECT_EQ(add_to_head(label, kRekeyed), 0);
      EXPECT_EQ(add_to_body(label, kRekeyed), 0);
    }
  }
  for (std::uint32_t type = 1; type <= 3; ++type) {
    const Bytes value = pattern(type);
    if (edited && type == 2) continue;
    EXPECT_EQ(AddExtendValue(label, type, value.data(), type), 0);
  }
  for (std::uint32_t i = 1; i <= 2; ++i) {
    Log log;
    log.number = i;
    EXPECT_EQ(add_log(label, log), 0);
  }
  if (edited) {
    EXPECT_EQ(add_log(label, third_log()), 0);
    EXPECT_EQ(AbolishSF(label), 0);
  }
  return label;
}

void edit(TqLabel label, const char* version) {
  set(label, SetFileName, {});
  set(label, GLSetFileTitle, pattern(20));
  if (!is_60(version)) {
    EXPECT_EQ(add_to_head(label, kRekeyed), 0);
    EXPECT_EQ(add_to_body(label, kRekeyed), 0);
    const Issuer issuer(recipient(2).issuer);
    const std::uint8_t serials[] = {2, 4};
    EXPECT_EQ(SetAlreadyReadCountsToLabel(label, &serials[0], 1, issuer.get(), 1000), 0);
    EXPECT_EQ(DelPrivilegeFromLabel(label, &serials[1], 1, issuer.get()), 0);
  }
  EXPECT_EQ(DelExtendAttr(label, 2), 0);
  EXPECT_EQ(add_log(label, third_log()), 0);
  EXPECT_EQ(AbolishSF(label), 0);
}

TEST(WholeInterface, ALabelEditedAfterDecodingIsOneBuiltThatWay) {
  for (const char* version : kVersions) {
    SCOPED_TRACE(version);
    bool compared = false;
    for (int tries = 0; tries < 20 && !compared; ++tries) {
      const Label built = editable(version, true);
      std::vector<Label> labels = decoded_both_ways(editable(version, false));
      labels.push_back(editable(version, false));
      for (const Label& each : labels) edit(each, version);
      std::uint64_t first = 0;
      std::uint64_t last = 0;
      EXPECT_EQ(GetAbolishTime(built, &first), 0);
      EXPECT_EQ(GetAbolishTime(labels.back(), &last), 0);
      if (first != last) continue;  // the clock ticked on the way
      compared = true;
      for (const Label& each : labels) {
        EXPECT_EQ(encode(each), encode(built));
        EXPECT_EQ(encode(each, GetSignatureMessage), encode(built, GetSignatureMessage));
        EXPECT_EQ(encode(each, EncodeBodyPlaint), encode(built, EncodeBodyPlaint));
        EXPECT_EQ(encode_sealed(each, pattern(9)), encode_sealed(built, pattern(9)));
      }
    }
    EXPECT_TRUE(compared);
  }
}

TEST(WholeInterface, AnswersBeforeAnythingIsSet) {
  for (const char* version : kVersions) {
    SCOPED_TRACE(version);
    Label label;
    set(label, GLSetVersion, text(version));
    Model nothing;
    nothing.version = version;
    check(label, nothing);
    EXPECT_TRUE(encode(label).empty());
  }
  Label bare;
  std::uint32_t length = 77;
  EXPECT_EQ(GetHeadSignAlg(bare, nullptr, &length), -1);
  std::uint8_t narrow = 77;
  PJCertIssuer* issuer = nullptr;
  EXPECT_EQ(GetCertSerialAndIssuerToHead(bare, nullptr, &narrow, &issuer), -1);
  std::uint8_t bits = 9;
  EXPECT_EQ(SetEncryptHead(bare, text("AES").data(), 3, 1), -1);
  EXPECT_EQ(GetEncryptHead(bare, nullptr, &narrow, &bits), -1);
  EXPECT_EQ(length + narrow, 154U);
  for (const auto how : {CheckLabelDate, CheckAbolishDate, CheckDestroyDate}) {
    EXPECT_EQ(how(bare), 0);
  }
}

// All but the object itself is as it should be; nothing is stored on the way.
TEST(WholeInterface, NullArgumentsFailAndChangeNothing) {
  Label label;
  fill_records(label, "1.1");
  ASSERT_EQ(add_to_head(label, {recipient(1)}), 0);
  ASSERT_EQ(add_to_body(label, {recipient(1)}), 0);
  ASSERT_EQ(add_to_body(label, {recipient(2)}), 0);
  const Bytes before = encode(label);
  HeadEnvelope envelope{recipient(1)};
  Privileges privileges;
  Issuer issuer(envelope.to.issuer);
  std::vector<PrivilegeEntry> entries;
  EnvelopeInfo info = view(envelope, issuer);
  PrivilegeInfo rights = view(privileges, entries);
  const PJCertIssuer* const name = issuer.get();
  const std::uint8_t serial = 1;
  std::uint8_t byte = 0xEE;
  std::uint32_t size = 77;
  void* previous = &label;
  Log log;
  const LogInfo entry = view(log, issuer);
  const MarkInput mark;
  const StampInput stamp;
  const FingerInput finger;
  ContentAttrInfo content{};
  FileCreatorInfo creator{&byte, 0, &byte, 0, 9};
  LogInfo* log_out = nullptr;
  WaterMark* mark_out = nullptr;
  StampRecord* stamp_out = nullptr;
  Finger* finger_out = nullptr;
  DigitEnvolopEnum* it = nullptr;
  LabelSizeInfo sizes{};
  const std::int32_t failures[] = {AddEnvelopeToHead(nullptr, &info),
                                   AddEnvelopeToHead(label, nullptr),
                                   ADDigitEnvlopeToBody(nullptr, &info, &rights),
                                   ADDigitEnvlopeToBody(label, nullptr, &rights),
                                   ADDigitEnvlopeToBody(label, &info, nullptr),
                                   HaveTheEnvelopeFromHEnv(nullptr, &serial, 1, name, &previous),
                                   HaveTheEnvelopeFromHEnv(label, nullptr, 0, name, &previous),
                                   HaveTheEnvelopeFromHEnv(label, &serial, 1, nullptr, &previous),
                                   HaveTheEnvelopeFromHEnv(label, &serial, 1, name, nullptr),
                                   HaveTheEnvelopeFromBEnv(nullptr, &serial, 1, name, &previous),
                                   HaveTheEnvelopeFromBEnv(label, nullptr, 0, name, &previous),
                                   HaveTheEnvelopeFromBEnv(label, &serial, 1, nullptr, &previous),
                                   HaveTheEnvelopeFromBEnv(label, &serial, 1, name, nullptr),
                                   GetEnvelopeFromHead(nullptr, &info),
                                   GetEnvelopeFromHead(label, nullptr),
                                   GetEnvelopeFromBody(nullptr, &info, &rights),
                                   GetEnvelopeFromBody(label, nullptr, &rights),
                                   GetEnvelopeFromBody(label, &info, nullptr),
                                   GetDigitEnvlope(nullptr, 0, &info, &rights),
                                   GetDigitEnvlope(label, 0, nullptr, &rights),
                                   GetDigitEnvlope(label, 0, &info, nullptr),
                                   DelPrivilegeFromLabel(nullptr, &serial, 1, name),
                                   DelPrivilegeFromLabel(label, nullptr, 1, name),
                                   DelPrivilegeFromLabel(label, &serial, 1, nullptr),
                                   SetAlreadyReadCountsToLabel(nullptr, &serial, 1, name, 1),
                                   SetAlreadyReadCountsToLabel(label, nullptr, 1, name, 1),
                                   SetAlreadyReadCountsToLabel(label, &serial, 1, nullptr, 1),
                                   CreatEmurateDigitEnvolop(nullptr, label),
                                   CreatEmurateDigitEnvolop(&it, nullptr),
                                   HaveNextDigitEnvolop(nullptr),
                                   GetCurrentDigitEnvolop(nullptr, nullptr, &size),
                                   SetCurrentEmuEnvolop(nullptr, &byte, 1, &byte, 1),
                                   AddLog(nullptr, &entry),
                                   AddLog(label, nullptr),
                                   GetLog(nullptr, 0, &log_out),
                                   GetLog(label, 0, nullptr),
                                   DelLog(nullptr, 0),
                                   DelAlLog(nullptr),
                                   GetLogCout(nullptr, &size),
                                   GetLogCout(label, nullptr),
                                   AddExtendValue(nullptr, 1, &byte, 1),
                                   AddExtendValue(label, 1, nullptr, 0),
                                   GetExtendValue(nullptr, 1, &byte, &size),
                                   GetExtendValue(label, 1, &byte, nullptr),
                                   GetExtend(nullptr, 0, &size, &byte, &size),
                                   GetExtend(label, 0, nullptr, &byte, &size),
                                   GetExtend(label, 0, &size, &byte, nullptr),
                                   DelExtendAttr(nullptr, 1),
                                   SetWaterMarkInfo(nullptr, &mark.record),
                                   SetWaterMarkInfo(label, nullptr),
                                   GetWaterMarkInfo(nullptr, &mark_out),
                                   GetWaterMarkInfo(label, nullptr),
                                   SetStampInfo(nullptr, &stamp.record),
                                   SetStampInfo(label, nullptr),
                                   GetStampInfo(nullptr, &stamp_out),
                                   GetStampInfo(label, nullptr),
                                   SetFingerPrintInfo(nullptr, &finger.record),
                                   SetFingerPrintInfo(label, nullptr),
                                   GetFingerPrintInfo(nullptr, &finger_out),
                                   GetFingerPrintInfo(label, nullptr),
                                   SetContentAtrr(nullptr, &content),
                                   SetContentAtrr(label, nullptr),
                                   GetContentAtrr(nullptr, &content),
                                   GetContentAtrr(label, nullptr),
                                   SetBodyFileCreator(nullptr, &creator),
                                   SetBodyFileCreator(label, nullptr),
                                   GetFileIdentify(nullptr, &creator),
                                   GetFileIdentify(label, nullptr),
                                   SetEncryptHead(nullptr, &serial, 1, 1),
                                   SetEncryptHead(label, nullptr, 3, 1),
                                   GetEncryptHead(nullptr, nullptr, &byte, &byte),
                                   GetEncryptHead(label, nullptr, nullptr, &byte),
                                   GetEncryptHead(label, nullptr, &byte, nullptr),
                                   LabCalSize(nullptr, &sizes),
                                   LabCalSize(label, nullptr),
                                   CheckLabelDate(nullptr),
                                   CheckAbolishDate(nullptr),
                                   CheckDestroyDate(nullptr),
                                   AbolishSF(nullptr)};
  for (std::size_t i = 0; i < std::size(failures); ++i) EXPECT_EQ(failures[i], -1) << "call " << i;
  EXPECT_EQ(GetCertByIssuerAndSerial(nullptr, &serial, 1, name, nullptr, &size), 0);
  EXPECT_EQ(GetCertByIssuerAndSerial(label, nullptr, 1, name, nullptr, &size), 0);
  EXPECT_EQ(GetCertByIssuerAndSerial(label, &serial, 1, nullptr, nullptr, &size), 0);
  EXPECT_EQ(GetCertByIssuerAndSerial(label, &serial, 1, name, nullptr, nullptr), 0);
  EXPECT_TRUE(byte == 0xEE && size == 77 && previous == &label) << "an output was written";
  EXPECT_TRUE(!log_out && !mark_out && !stamp_out && !finger_out && !it);

  // Nor may what the records point to be missing.
  const auto without = [](auto record, auto member) {
    record.*member = nullptr;
    return record;
  };
  for (const auto member : {&EnvelopeInfo::alg, &EnvelopeInfo::key, &EnvelopeInfo::serial}) {
    EnvelopeInfo lacking = without(info, member);
    EXPECT_EQ(GetEnvelopeFromBody(label, &lacking, &rights), -1);
    EXPECT_EQ(GetDigitEnvlope(label, 0, &lacking, &rights), -1);
    if (member == &EnvelopeInfo::alg) continue;  // is seen when the earlier envelope is gone
    EXPECT_EQ(ADDigitEnvlopeToBody(label, &lacking, &rights), -1);
    if (member == &EnvelopeInfo::serial) {
      EXPECT_EQ(AddEnvelopeToHead(label, &lacking), -1);
    }
  }
  const EnvelopeInfo nobody = without(info, &EnvelopeInfo::issuer);
  EXPECT_EQ(AddEnvelopeToHead(label, &nobody), -1);
  EXPECT_EQ(ADDigitEnvlopeToBody(label, &nobody, &rights), -1);
  PrivilegeInfo no_data = without(rights, &PrivilegeInfo::data);
  EXPECT_EQ(GetEnvelopeFromBody(label, &info, &no_data), -1);
  for (const auto member : {&LogInfo::text1, &LogInfo::array1, &LogInfo::array2, &LogInfo::text2}) {
    const LogInfo lacking = without(entry, member);
    EXPECT_EQ(AddLog(label, &lacking), -1);
  }
  const LogInfo unsigned_log = without(entry, &LogInfo::issuer);
  EXPECT_EQ(AddLog(label, &unsigned_log), -1);
  for (const auto member : {&WaterMark::data1, &WaterMark::data2}) {
    const WaterMark lacking = without(mark.record, member);
    EXPECT_EQ(SetWaterMarkInfo(label, &lacking), -1);
  }
  creator = {nullptr, 1, &byte, 1, 9};
  EXPECT_EQ(SetBodyFileCreator(label, &creator), -1);
  EXPECT_EQ(GetFileIdentify(label, &creator), -1);
  creator = {&byte, 1, nullptr, 1, 9};
  EXPECT_EQ(SetBodyFileCreator(label, &creator), -1);
  EXPECT_EQ(GetFileIdentify(label, &creator), -1);
  EXPECT_EQ(encode(label), before);
  for (const auto member : {&ContentAttrInfo::fileName, &ContentAttrInfo::fileTitle}) {
    Label fresh;
    ContentAttrInfo lacking =
        without(ContentAttrInfo{1, 2, 3, &byte, 1, &byte, 1, 4, 5, 6, 7}, member);
    EXPECT_EQ(SetContentAtrr(fresh, &lacking), -1);
    EXPECT_EQ(counted(fresh, GLGetFileType), 0U);
    EXPECT_EQ(GetContentAtrr(label, &lacking), -1);
  }
  for (const auto member : {&Finger::sys1, &Finger::sys2, &Finger::sys3}) {
    const Finger lacking = without(finger.record, member);
    EXPECT_EQ(SetFingerPrintInfo(label, &lacking), -1);
  }
  EXPECT_EQ(DestroyEmura(nullptr), 0);
  EXPECT_EQ(FreetWaterMarkInfo(nullptr), 0);
  EXPECT_EQ(FreeStampA(nullptr), 0);
  EXPECT_EQ(FreeFingerPrintInfo(nullptr), 0);
  FreeLog(nullptr);
}

}  // namespace
}  // namespace tq::abi
