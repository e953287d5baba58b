// The whole interface at once: a label that holds nothing, and calls that lack an argument.

#include <span>

#include "abi/calls.h"

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
  EXPECT_EQ(GetExtendValue(bare, 1, nullptr, &length), -1);
  EXPECT_EQ(GetExtend(bare, 0, &length, nullptr, &length), -1);
  EXPECT_EQ(SetFileAlignSize(bare, 1) & fill_bare(bare), -1);
  EXPECT_EQ(length + narrow, 154U);
}

// All but what is missing is as it should be; nothing is stored on the way.
struct MissingArguments : testing::Test {
  ~MissingArguments() override { EXPECT_TRUE(State(given) == before); }

  const Coded coded{"1.1.2"};
  Given given{coded};
  const State before{given};
  const Label& label = given.label;
  const std::uint8_t serial = 1;
  HeadEnvelope envelope{kKnown};
  Privileges privileges;
  Issuer issuer{kKnown.issuer};
  std::vector<PrivilegeEntry> entries;
  EnvelopeInfo info = view(envelope, issuer);
  PrivilegeInfo rights = view(privileges, entries);
};

TEST_F(MissingArguments, AreRefused) {
  for (const auto rows : {std::span<const Row>(kKeeping), {kLosing}, {kSparing}}) {
    for (const Row& row : rows) {
      if (row.refuse != nullptr) row.refuse(given);
    }
  }
  REFUSES(AddEnvelopeToHead, label, &info);
  REFUSES(ADDigitEnvlopeToBody, label, &info, &rights);
  REFUSES(GetEnvelopeFromHead, label, &info);
  REFUSES(GetEnvelopeFromBody, label, &info, &rights);
  REFUSES(GetDigitEnvlope, label, 0, &info, &rights);
  REFUSES(SetBodySignAttr, label, 0, given.signature());
  REFUSES(HavePrivilegeOfHead, &serial, 1, nullptr, 1, nullptr);
  EXPECT_EQ(X509NameCmp(nullptr, nullptr), -1);
}

TEST_F(MissingArguments, MeanNothingToDo) {
  const std::uint8_t* const der = coded.full.data();
  const auto length = static_cast<std::int32_t>(coded.full.size());
  EXPECT_EQ(HavePrivilegeOfHead(der, length, nullptr, 1, issuer.get()), 0);
  EXPECT_EQ(HavePrivilegeOfHead(der, length, &serial, 1, nullptr), 0);
  EXPECT_EQ(GetCertByIssuerAndSerial(nullptr, &serial, 1, issuer.get(), nullptr, &given.size), 0);
  EXPECT_EQ(GetCertByIssuerAndSerial(label, nullptr, 1, issuer.get(), nullptr, &given.size), 0);
  EXPECT_EQ(GetCertByIssuerAndSerial(label, &serial, 1, nullptr, nullptr, &given.size), 0);
  EXPECT_EQ(GetCertByIssuerAndSerial(label, &serial, 1, issuer.get(), nullptr, nullptr), 0);
  EXPECT_EQ(DestroyEmura(nullptr) | DestroySignEmura(nullptr) | FreeIssuerName(nullptr), 0);
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
  std::uint8_t byte = 0;
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
