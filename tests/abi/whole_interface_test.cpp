// The whole interface at once: a label that holds nothing, and calls that lack an argument.

#include "abi/observed.h"

namespace tq::abi {
namespace {

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
  EXPECT_EQ(listed(sizes_of(bare)), listed(Model().sizes()));
  for (const Getter how : {EncodeLabel, EncodeLabelPad, EncodeBodyPlaint, GetSignatureMessage,
                           sealed<EncodeLabelEncrypted>, sealed<EncodeLabelPadEncrypted>}) {
    EXPECT_TRUE(encode(bare, how).empty());
  }
  std::uint32_t length = 77;
  std::uint8_t narrow = 77;
  PJCertIssuer* issuer = nullptr;
  EXPECT_EQ(GetHeadSignAlg(bare, nullptr, &length), -1);
  EXPECT_EQ(GetCertSerialAndIssuerToHead(bare, nullptr, &narrow, &issuer), -1);
  EXPECT_EQ(SetEncryptHead(bare, text("AES").data(), 3, 1), -1);
  EXPECT_EQ(GetEncryptHead(bare, nullptr, &narrow, &narrow), -1);
  EXPECT_EQ(SetFileAlignSize(bare, 1) & fill_bare(bare), -1);
  EXPECT_EQ(length + narrow, 154U);
}

// Calls a function without each of its pointers in turn; those that are null already may be.
template <class... Parameters>
void refuses(const char* name, std::int32_t (*function)(Parameters...),
             std::type_identity_t<Parameters>... given) {
  const std::tuple<Parameters...> all(given...);
  const auto without = [&]<std::size_t I>(std::integral_constant<std::size_t, I> /*index*/) {
    auto arguments = all;
    if constexpr (std::is_pointer_v<std::tuple_element_t<I, std::tuple<Parameters...>>>) {
      if (std::exchange(std::get<I>(arguments), nullptr) == nullptr) return;
      EXPECT_EQ(std::apply(function, arguments), -1) << name << " without argument " << I;
    }
  };
  [&]<std::size_t... I>(std::index_sequence<I...> /*indices*/) {
    (without(std::integral_constant<std::size_t, I>()), ...);
  }
  (std::index_sequence_for<Parameters...>());
}
#define REFUSES(function, ...) refuses(#function, function, __VA_ARGS__)

// All but what is missing is as it should be; nothing is stored on the way.
struct MissingArguments : testing::Test {
  ~MissingArguments() override {
    EXPECT_EQ(encode(label), before);
    EXPECT_TRUE(byte == 0xEE && size == 77 && capacity == 77 && time == 77 && letter == 'x');
  }

  const Label label = full_label("1.1");
  const Bytes before = encode(label);
  std::uint8_t byte = 0xEE;
  std::uint32_t size = 77;
  std::int32_t capacity = 77;
  std::uint64_t time = 77;
  char letter = 'x';
  const std::uint8_t serial = 1;
  HeadEnvelope envelope{{{serial}, {{kCommonName, 19, text("A")}}}};
  Privileges privileges;
  Issuer issuer{envelope.to.issuer};
  std::vector<PrivilegeEntry> entries;
  EnvelopeInfo info = view(envelope, issuer);
  PrivilegeInfo rights = view(privileges, entries);
};

TEST_F(MissingArguments, OfFieldsAreRefused) {
  for (const ByteRule& rule : kBytes) {
    refuses(rule.name, rule.set, label, kBodyCert.data(), 32);
    refuses(rule.name, rule.get, label, nullptr, &size);
  }
  for (const auto& rule : kNumbers) {
    refuses("number", rule.set, label, 1);
    refuses("number", rule.get, label, &size);
  }
  for (const auto& rule : kTimes) {
    if (rule.set != nullptr) refuses("time", rule.set, label, 1);
    refuses("time", rule.get, label, &time);
  }
  for (const auto how : {GetLogCout, GetExtendCount, GetDigitEnvlopeCountFromBody}) {
    refuses("count", how, label, &size);
  }
  for (const auto how : {CheckLabelDate, CheckAbolishDate, CheckDestroyDate, AbolishSF, DelAlLog,
                         SetHeadCreateTime, LabelBodyNeedEnc}) {
    refuses("label", how, label);
  }
  REFUSES(GLSetVersion, label, text("1.1").data(), 3);
  REFUSES(SetHeadSignAlg, label, &serial, 1);
  REFUSES(GetHeadSignAlg, label, nullptr, &size);
  REFUSES(SetEncryptHead, label, &serial, 1, 1);
  REFUSES(GetEncryptHead, label, nullptr, &byte, &byte);
  REFUSES(SetHeadFeedBackBits, label, 1);
  REFUSES(GetHeadFeedBackBits, label, &byte);
  REFUSES(SetLabelPadSize, label, 1);
  REFUSES(GLSetFileNo, label, "1");
  REFUSES(GLGetFileNo, label, &letter);
  LabelSizeInfo sizes{};
  REFUSES(LabCalSize, label, &sizes);
}

TEST_F(MissingArguments, OfWholeLabelsAreRefused) {
  const Bytes body = encode(label, EncodeBodyPlaint);
  const Bytes sealed = encode_sealed(label, body);
  const auto length = static_cast<std::int32_t>(before.size());
  TqLabel slot = nullptr;
  for (const Getter how : {EncodeLabel, EncodeLabelPad, EncodeBodyPlaint, GetSignatureMessage}) {
    refuses("encoder", how, label, nullptr, &size);
  }
  for (const auto how : {EncodeLabelEncrypted, EncodeLabelPadEncrypted}) {
    refuses("encoder", how, label, &serial, 0, nullptr, &size);
  }
  REFUSES(DecodeLabel, before.data(), size32(before), &slot);
  REFUSES(DecodeLabelEncrypted, sealed.data(), size32(sealed), nullptr, &size, nullptr);
  REFUSES(DecodeLabelDecrypted, label, body.data(), size32(body));
  REFUSES(LabelBodyWeatherEnc, before.data(), length);
  REFUSES(GetSignAlgName, before.data(), length, nullptr, &size);
  REFUSES(GetCustomAttr, before.data(), length, nullptr, &capacity);
  REFUSES(GetLable, before.data(), size32(before), &byte);
  REFUSES(HavePadded, before.data(), size32(before), &size);
  REFUSES(HavePrivilege, before.data(), length, &serial, 1);
  REFUSES(HavePrivilegeOfHead, before.data(), length, nullptr, 1, nullptr);
  EXPECT_EQ(HavePrivilegeOfHead(before.data(), length, nullptr, 1, issuer.get()), 0);
  EXPECT_EQ(HavePrivilegeOfHead(before.data(), length, &serial, 1, nullptr), 0);
  EXPECT_EQ(slot, nullptr);
}

TEST_F(MissingArguments, OfEnvelopesAreRefused) {
  void* previous = &byte;
  REFUSES(AddEnvelopeToHead, label, &info);
  REFUSES(ADDigitEnvlopeToBody, label, &info, &rights);
  REFUSES(HaveTheEnvelopeFromHEnv, label, &serial, 1, issuer.get(), &previous);
  REFUSES(HaveTheEnvelopeFromBEnv, label, &serial, 1, issuer.get(), &previous);
  EXPECT_EQ(previous, &byte);
  REFUSES(GetEnvelopeFromHead, label, &info);
  REFUSES(GetEnvelopeFromBody, label, &info, &rights);
  REFUSES(GetDigitEnvlope, label, 0, &info, &rights);
  REFUSES(DelPrivilegeFromLabel, label, &serial, 1, issuer.get());
  REFUSES(SetAlreadyReadCountsToLabel, label, &serial, 1, issuer.get(), 1);
  EXPECT_EQ(GetCertByIssuerAndSerial(nullptr, &serial, 1, issuer.get(), nullptr, &size), 0);
  EXPECT_EQ(GetCertByIssuerAndSerial(label, nullptr, 1, issuer.get(), nullptr, &size), 0);
  EXPECT_EQ(GetCertByIssuerAndSerial(label, &serial, 1, nullptr, nullptr, &size), 0);
  EXPECT_EQ(GetCertByIssuerAndSerial(label, &serial, 1, issuer.get(), nullptr, nullptr), 0);
  DigitEnvolopEnum* it = nullptr;
  REFUSES(CreatEmurateDigitEnvolop, &it, label);
  const Label other = full_label("1.1");
  ASSERT_EQ(CreatEmurateDigitEnvolop(&it, other), 0);
  REFUSES(HaveNextDigitEnvolop, it);
  REFUSES(GetCurrentDigitEnvolop, it, nullptr, &size);
  REFUSES(SetCurrentEmuEnvolop, it, nullptr, 0, &byte, 1);
  EXPECT_EQ(DestroyEmura(it) | DestroyEmura(nullptr), 0);
}

TEST_F(MissingArguments, OfSignersAndNamesAreRefused) {
  SignAttribute attribute{};
  MultiSignData request{};
  SignEnum* signatures = nullptr;
  REFUSES(SetBodySignAttr, label, 0, &attribute);
  REFUSES(GetBodySignAttr, label, &attribute);
  REFUSES(GetMultiSignData, label, &request);
  REFUSES(CreateEmurateSign, label, &signatures);
  ASSERT_EQ(CreateEmurateSign(label, &signatures), 0);
  REFUSES(GetNextSign, signatures, &attribute);
  EXPECT_EQ(DestroySignEmura(signatures) | DestroySignEmura(nullptr), 0);
  EXPECT_EQ(FileHaveSigned(nullptr, &byte, 1), -1);
  X509Name name{};
  PJCertIssuer* names = nullptr;
  REFUSES(ConvertIssuerName2PJCertIssuer, issuer.get(), &name);
  REFUSES(ConvertPJCertIssuer2IssuerName, &name, &names);
  EXPECT_EQ(X509NameCmp(nullptr, nullptr), -1);
  REFUSES(SetCertSerialAndIssuerToHead, label, &serial, 1, issuer.get());
  REFUSES(GetCertSerialAndIssuerToHead, label, nullptr, &byte, &names);
  EXPECT_EQ(names, nullptr);
}

TEST_F(MissingArguments, OfRecordsAreRefused) {
  const Filled<LogInfo> log;
  const Filled<WaterMark> mark;
  const Filled<StampRecord> stamp;
  const Filled<Finger> finger;
  LogInfo* log_out = nullptr;
  WaterMark* mark_out = nullptr;
  StampRecord* stamp_out = nullptr;
  Finger* finger_out = nullptr;
  FileCreatorInfo creator{&byte, 0, &byte, 0, 9};
  ContentAttrInfo content{};
  REFUSES(AddLog, label, &log.record);
  REFUSES(GetLog, label, 0, &log_out);
  REFUSES(DelLog, label, 0);
  REFUSES(AddExtendValue, label, 1, &serial, 0);
  REFUSES(GetExtendValue, label, 1, nullptr, &size);
  REFUSES(GetExtend, label, 0, &size, nullptr, &size);
  REFUSES(DelExtendAttr, label, 1);
  REFUSES(SetWaterMarkInfo, label, &mark.record);
  REFUSES(GetWaterMarkInfo, label, &mark_out);
  REFUSES(SetStampInfo, label, &stamp.record);
  REFUSES(GetStampInfo, label, &stamp_out);
  REFUSES(SetFingerPrintInfo, label, &finger.record);
  REFUSES(GetFingerPrintInfo, label, &finger_out);
  REFUSES(SetContentAtrr, label, &content);
  REFUSES(GetContentAtrr, label, &content);
  REFUSES(SetBodyFileCreator, label, &creator);
  REFUSES(GetFileIdentify, label, &creator);
  EXPECT_TRUE(!log_out && !mark_out && !stamp_out && !finger_out);
  EXPECT_EQ(FreetWaterMarkInfo(nullptr) | FreeStampA(nullptr) | FreeFingerPrintInfo(nullptr), 0);
  FreeLog(nullptr);
}

// Takes one of a record's buffers away, but not its length.
struct Drop {
  template <class Byte, class Length>
  void operator()(Byte*& data, Length& /*length*/, Whole /*element*/ = {}) {
    if (index-- == 0) data = nullptr;
  }
  template <class Value>
  void operator()(Value& /*value*/) {}

  int index;
};
template <class Record>
Record without(const Filled<Record>& filled, int index) {
  Record record = filled.record;
  visit(record, Drop{index});
  return record;
}
// How a setter answers when the first buffer is missing, the second one, and so on.
template <class Record>
std::vector<std::int32_t> answers(std::int32_t (*setter)(TqLabel, const Record*), TqLabel label,
                                  int buffers) {
  std::vector<std::int32_t> results;
  for (int i = 0; i < buffers; ++i) {
    const Filled<Record> filled;
    const Record record = without(filled, i);
    results.push_back(setter(label, &record));
  }
  return results;
}

TEST_F(MissingArguments, WithinRecordsAreRefused) {
  for (const auto member : {&EnvelopeInfo::alg, &EnvelopeInfo::key, &EnvelopeInfo::serial}) {
    Room room(envelope.to);
    room.envelope.*member = nullptr;
    EXPECT_EQ(GetEnvelopeFromBody(label, &room.envelope, &room.privilege), -1);
    EXPECT_EQ(GetDigitEnvlope(label, 0, &room.envelope, &room.privilege), -1);
    EnvelopeInfo lacking = info;
    lacking.*member = nullptr;
    if (member == &EnvelopeInfo::alg) continue;  // is seen when the earlier envelope is gone
    EXPECT_EQ(ADDigitEnvlopeToBody(label, &lacking, &rights), -1);
    EXPECT_EQ(member == &EnvelopeInfo::key ? -1 : AddEnvelopeToHead(label, &lacking), -1);
  }
  EnvelopeInfo to_nobody = info;
  to_nobody.issuer = nullptr;
  EXPECT_EQ(AddEnvelopeToHead(label, &to_nobody), -1);
  EXPECT_EQ(ADDigitEnvlopeToBody(label, &to_nobody, &rights), -1);
  Room room(envelope.to);
  room.privilege.data = nullptr;
  EXPECT_EQ(GetEnvelopeFromBody(label, &room.envelope, &room.privilege), -1);
  EXPECT_EQ(answers(AddLog, label, 4), (std::vector{-1, -1, -1, -1}));
  Filled<LogInfo> nobodys;
  nobodys.record.issuer = nullptr;
  EXPECT_EQ(AddLog(label, &nobodys.record), -1);
  for (FileCreatorInfo creator :
       {FileCreatorInfo{nullptr, 1, &byte, 1, 9}, {&byte, 1, nullptr, 1, 9}}) {
    EXPECT_EQ(SetBodyFileCreator(label, &creator) & GetFileIdentify(label, &creator), -1);
  }
  const Label fresh;
  EXPECT_EQ(answers(SetContentAtrr, fresh, 2), (std::vector{-1, -1}));
  EXPECT_EQ(counted(fresh, GLGetFileType), 0U);
  const Filled<ContentAttrInfo> whole;
  EXPECT_EQ(SetContentAtrr(fresh, &whole.record), 0) << "failures leave neither text";
  for (const int i : {0, 1}) {
    const Filled<ContentAttrInfo> filled;
    ContentAttrInfo lacking = without(filled, i);
    EXPECT_EQ(GetContentAtrr(label, &lacking), -1);
  }
  EXPECT_EQ(answers(SetFingerPrintInfo, fresh, 4), (std::vector{-1, -1, -1, -1}));
  EXPECT_EQ(answers(SetWaterMarkInfo, fresh, 2), (std::vector{-1, -1}));
  EXPECT_EQ(describe(*take<WaterMark>(GetWaterMarkInfo, fresh)).str(), describe(WaterMark{}).str());
  EXPECT_EQ(answers(SetWaterMarkInfo, fresh, 3).back(), 0);
  EXPECT_EQ(take<WaterMark>(GetWaterMarkInfo, fresh)->text, nullptr);
}

// Name and bits, then seal, meta record and the stamp proper: each of them is stored whole or not.
TEST(Stamp, LacksWhatComesBehindAMissingBuffer) {
  const Filled<StampRecord> filled;
  for (const char* version : kVersions) {
    for (int i = 0; i < 10; ++i) {
      SCOPED_TRACE(testing::Message() << version << " without buffer " << i);
      Label label;
      fill(label, version);
      const Bytes before = encode(label);
      const StampRecord given = without(filled, i);
      EXPECT_EQ(SetStampInfo(label, &given), i < 7 ? -1 : 0);
      StampRecord expected{};
      if (i >= 4) expected.seal = given.seal;
      if (i < 7) expected.seal.meta = {};
      if (i >= 2) {
        std::tie(expected.name, expected.nameLen) = std::tie(given.name, given.nameLen);
        std::tie(expected.bits, expected.bitsLen) = std::tie(given.bits, given.bitsLen);
      }
      EXPECT_EQ(describe(*take<StampRecord>(GetStampInfo, label)).str(), describe(expected).str());
      Element tree = parse(encode(label));
      EXPECT_EQ(tree.der() == before, i < 2);
      EXPECT_EQ(marking(tree, version, 0) == nullptr, i < 2 && is_multi_sign(version));
    }
  }
  // The stamp proper stays as it was.
  Label label;
  const Filled<StampRecord> second(2);
  const StampRecord given = without(second, 9);
  EXPECT_EQ(SetStampInfo(label, &filled.record) | SetStampInfo(label, &given), 0);
  EXPECT_EQ(take<StampRecord>(GetStampInfo, label)->stamp.value[0], filled.record.stamp.value[0]);
}

}  // namespace
}  // namespace tq::abi
