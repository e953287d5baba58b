#ifndef TQ_TESTS_ABI_CALLS_H
#define TQ_TESTS_ABI_CALLS_H

// A call of every exported function that succeeds, and how it fails without its arguments.

#include "abi/given.h"

namespace tq::abi {

// Calls a function without each of its pointers in turn. Null may be what is null already, and a
// buffer with a length behind it.
template <class... Parameters>
void refuse(const char* name, std::int32_t (*function)(Parameters...),
            std::type_identity_t<Parameters>... given) {
  const std::tuple<Parameters...> all(given...);
  const auto without = [&]<std::size_t I>(std::integral_constant<std::size_t, I> /*index*/) {
    auto arguments = all;
    using All = std::tuple<Parameters..., int>;
    using Parameter = std::tuple_element_t<I, All>;
    constexpr bool kQuery = std::is_same_v<Parameter, std::uint8_t*> &&
                            std::is_pointer_v<std::tuple_element_t<I + 1, All>>;
    if constexpr (std::is_pointer_v<Parameter> && !kQuery) {
      if (std::exchange(std::get<I>(arguments), nullptr) == nullptr) return;
      EXPECT_EQ(std::apply(function, arguments), -1) << name << " without argument " << I;
    }
  };
  [&]<std::size_t... I>(std::index_sequence<I...> /*indices*/) {
    (without(std::integral_constant<std::size_t, I>()), ...);
  }
  (std::index_sequence_for<Parameters...>());
}
#define REFUSES(function, ...) refuse(#function, function, __VA_ARGS__)

template <class Function>
std::int32_t answer(Function function) {
  if constexpr (std::is_void_v<decltype(function())>) {
    return function(), 0;
  } else if constexpr (std::is_pointer_v<decltype(function())>) {
    return function() != nullptr ? 0 : -1;
  } else {
    return function();
  }
}
struct Row {
  const char* function;
  std::int32_t (*call)(Given&);
  void (*refuse)(Given&) = nullptr;  // makes it without each of its pointers in turn
};
#define ANSWER(...) []([[maybe_unused]] Given& g) { return answer([&] { return __VA_ARGS__; }); }
#define ROW(function, ...) \
  { #function, ANSWER(__VA_ARGS__) }
#define CALL(function, ...)                                                                     \
  {                                                                                             \
#function, ANSWER(function(__VA_ARGS__)), [](Given & g) { REFUSES(function, __VA_ARGS__); } \
  }
#define STRING(kind, tag)                                              \
  CALL(QZAsn1Get##kind, g.input(tlv(tag, Bytes{0, 65})), &g.node.out), \
      CALL(QZAsn1Set##kind, g.input(kNew), &g.node.out)

// Without memory these leave everything as it was.
inline const Row kKeeping[] = {
    ROW(Asn1Malloc, g.block.out = Asn1Malloc(8)),
    CALL(QZCopyAnyBuf, g.node.made, &g.node.out),
    CALL(QZAsn1GetSequence, g.input(hex("30 02 05 00")), &g.node.out),
    CALL(QZAsn1GetSet, g.input(hex("31 02 05 00")), &g.node.out),
    CALL(QZAsn1GetExplicit, g.input(hex("A1 02 05 00")), &g.number, &g.node.out),
    ROW(QZAsn1SetSequence, g.built(QZAsn1SetSequence)),
    ROW(QZAsn1SetSet, g.built(QZAsn1SetSet)),
    ROW(QZAsn1SetExplicit,
        g.built([](ANYBUF* in, ANYBUF** out) { return QZAsn1SetExplicit(1, in, out); })),
    CALL(QZAsn1SetInteger, 9, &g.node.out),
    CALL(QZAsn1SetBoolean, 1, &g.node.out),
    CALL(QZAsn1SetGeneralizedTime, 9, &g.node.out),
    CALL(QZAsn1SetNull, &g.node.out),
    STRING(IntegerArray, 0x02),
    STRING(OctetString, 0x04),
    STRING(BitString, 0x03),
    STRING(PrintableString, 0x13),
    STRING(Ia5String, 0x16),
    STRING(BmpString, 0x1E),
    STRING(ObjectIdPJ, 0x06),

    ROW(GetHandleLabel, g.handle.out = GetHandleLabel()),
    CALL(GLSetVersion, g.label, text(g.coded.version).data(), size32(text(g.coded.version))),
    CALL(EncodeLabel, g.wide, g.room.data(), &g.size),
    CALL(EncodeLabelPad, g.wide, g.room.data(), &g.size),
    CALL(EncodeLabelEncrypted, g.wide, kBytesOf, 32, g.room.data(), &g.size),
    CALL(EncodeLabelPadEncrypted, g.wide, kBytesOf, 32, g.room.data(), &g.size),
    CALL(EncodeBodyPlaint, g.wide, g.room.data(), &g.size),
    CALL(GetSignatureMessage, g.wide, g.room.data(), &g.size),
    CALL(GetMultiSignData, g.wide, g.request()),
    CALL(DecodeLabel, g.coded.addressed.data(), size32(g.coded.addressed), &g.handle.out),
    CALL(DecodeLabelEncrypted, g.coded.sealed.data(), size32(g.coded.sealed), g.room.data(),
         &g.size, &g.handle.out),

    CALL(LabelBodyWeatherEnc, g.coded.addressed.data(), g.coded.length()),
    CALL(GetSignAlgName, g.coded.addressed.data(), g.coded.length(), g.room.data(), &g.size),
    CALL(GetLable, g.coded.addressed.data(), size32(g.coded.addressed), g.room.data()),
    CALL(GetCustomAttr, g.coded.addressed.data(), g.coded.length(), g.room.data(), &g.capacity),
    CALL(HavePrivilege, g.coded.addressed.data(), g.coded.length(), kOne, 1),
    ROW(HavePrivilegeOfHead,
        HavePrivilegeOfHead(g.coded.addressed.data(), g.coded.length(), kOne, 1, kIssuer.get())),

    CALL(SetLabel, g.label, kBytesOf, 32),
    CALL(SetHeadSerialNum, g.label, kBytesOf, 32),
    CALL(SetCustom, g.label, kBytesOf, 32),
    CALL(SetHeadSignCert, g.label, kBytesOf, 32),
    CALL(SetHeadSignValue, g.label, kBytesOf, 32),
    CALL(SetFileName, g.label, kBytesOf, 32),
    CALL(GLSetFileTitle, g.label, kBytesOf, 32),
    CALL(SetBodySignCert, g.label, kBytesOf, 32),
    CALL(SetBodySigVal, g.label, kBytesOf, 32),
    CALL(SetEncryptHead, g.label, text("SM4").data(), 3, 16),
    CALL(GLSetFileNo, g.label, "No. 22"),
    CALL(SetBodyFileCreator, g.label, g.creator()),
    CALL(SetContentAtrr, g.bare, &kContent.record),

    ROW(SetBodySignAttr, g.sign(false)),
    ROW(SetBodySignAttr, g.sign(true)),
    CALL(FileHaveSigned, g.bare, kBytesOf, 32),
    CALL(CreateEmurateSign, g.label, &g.signers.out),
    CALL(GetNextSign, g.signers.made, g.signature()),

    ROW(AddEnvelopeToHead, add_to_head(g.label, {recipient(9)})),
    ROW(ADDigitEnvlopeToBody, add_to_body(g.label, {recipient(9)}, {kSubject, {}, {{1, 2}}})),
    ROW(GetEnvelopeFromBody, receive(true,
                                     [&](EnvelopeInfo* envelope, PrivilegeInfo* rights) {
                                       return GetEnvelopeFromBody(g.label, envelope, rights);
                                     })),
    ROW(GetDigitEnvlope, receive(false,
                                 [&](EnvelopeInfo* envelope, PrivilegeInfo* rights) {
                                   return GetDigitEnvlope(g.other, 0, envelope, rights);
                                 })),
    CALL(CreatEmurateDigitEnvolop, &g.envelopes.out, g.other),
    CALL(ConvertPJCertIssuer2IssuerName, &g.name, &g.issuer.out),

    CALL(GetWaterMarkInfo, g.label, &g.mark.out),
    CALL(GetStampInfo, g.label, &g.stamp.out),
    CALL(GetFingerPrintInfo, g.label, &g.finger.out),
    CALL(AddLog, g.label, &kLog.record),
    CALL(GetLog, g.label, 0, &g.log.out),
    CALL(AddExtendValue, g.label, 9, kBytesOf, 32),
};

// These say in the header what they leave.
inline const Row kLosing[] = {
    CALL(DecodeLabelDecrypted, g.label, g.coded.body.data(), size32(g.coded.body)),
    CALL(SetHeadSignAlg, g.label, text("SM3WithSM2Encryption").data(), 20),
    CALL(ConvertIssuerName2PJCertIssuer, kIssuer.get(), &g.name),
    CALL(SetCertSerialAndIssuerToHead, g.label, kBytesOf, 32, kIssuer.get()),
    CALL(GetCertSerialAndIssuerToHead, g.label, g.room.data(), &g.narrow, &g.issuer.out),
    ROW(AddEnvelopeToHead, add_to_head(g.label, {kKnown})),
    ROW(ADDigitEnvlopeToBody, add_to_body(g.label, {kKnown}, {kSubject, {}, {{1, 2}}})),
    CALL(SetCurrentEmuEnvolop, g.envelopes.made, nullptr, 0, kBytesOf, 22),
    CALL(SetWaterMarkInfo, g.label, &kMark.record),
    CALL(SetStampInfo, g.label, &kStamp.record),
    CALL(SetFingerPrintInfo, g.label, &kFinger.record),
    CALL(SetLabelPadSize, g.label, 9),
};

inline const Row kSparing[] = {
    ROW(Asn1Free, Asn1Free(g.block.taken())),
    ROW(Asn1memcpy, Asn1memcpy(g.room.data(), kBytesOf, 32)),
    ROW(Asn1memset, Asn1memset(g.room.data(), 0, 32)),
    ROW(Asn1memcmp, Asn1memcmp(kBytesOf, kBytesOf, 32)),
    ROW(DIFreeAnybuf, DIFreeAnybuf(g.node.taken())),
    ROW(QZFreeQueue, QZFreeQueue(&g.node.made)),
    CALL(QZAsn1GetInteger, g.input(hex("02 01 05")), &g.number),
    CALL(QZAsn1GetBoolean, g.input(hex("01 01 FF")), &g.narrow),
    CALL(QZAsn1GetGeneralizedTime, g.input(tlv(0x18, text("20261122225825Z"))), &g.time),

    ROW(FreeHandleLabel, FreeHandleLabel(g.handle.taken())),
    CALL(GLGetVersion, g.label, g.room.data(), &g.narrow),
    CALL(LabelBodyNeedEnc, g.label),
    CALL(SflAlg2OID, text("SM4").data(), 3, 0, 0, g.room.data(), &g.size),
    ROW(SflOID2Alg, SflOID2Alg(hex("2A 86 48 86 F7 0D 01 01 0B").data(), 9,
                               reinterpret_cast<char*>(g.room.data()), &g.bits, &g.number)),
    CALL(GetHeadSignAlg, g.label, g.room.data(), &g.size),
    ROW(SetCipherAndMode, SetCipherAndMode()),
    ROW(X509NameCmp, X509NameCmp(&g.name, kIssuer.get())),
    ROW(FreeIssuerName, FreeIssuerName(g.issuer.taken())),
    CALL(GetHeadSignCert, g.label, g.room.data(), &g.size),
    CALL(GetHeadSignValue, g.label, g.room.data(), &g.size),
    CALL(GetBodySignCert, g.label, g.room.data(), &g.size),
    CALL(GetBodySigVal, g.label, g.room.data(), &g.size),
    CALL(GetBodySignAttr, g.label, g.signature()),
    ROW(DestroySignEmura, DestroySignEmura(g.signers.taken())),
    ROW(DestroyEmura, DestroyEmura(g.envelopes.taken())),
    ROW(VerifySignCertConsistent, VerifySignCertConsistent()),

    CALL(GetLabel, g.label, g.room.data(), &g.narrow),
    CALL(GetCustom, g.label, g.room.data(), &g.size),
    CALL(GetHeadSerialNum, g.label, g.room.data(), &g.narrow),
    CALL(SetHeadCreateTime, g.label),
    CALL(GetHeadCreateTime, g.label, &g.time),
    CALL(SetHeadModifyTime, g.label, 9),
    CALL(GetHeadModifyTime, g.label, &g.time),
    CALL(GetEncryptHead, g.label, g.room.data(), &g.narrow, &g.bits),
    CALL(SetHeadFeedBackBits, g.label, 9),
    CALL(GetHeadFeedBackBits, g.label, &g.bits),
    CALL(GetContentAtrr, g.label, g.content()),
    CALL(GLSetFileType, g.label, 9),
    CALL(GLGetFileType, g.label, &g.number),
    CALL(SetFileSecc, g.label, 9),
    CALL(GetFileSecc, g.label, &g.number),
    CALL(GLSetFileSize, g.label, 9),
    CALL(GLGetFileSize, g.label, &g.number),
    CALL(GetFileName, g.label, g.room.data(), &g.narrow),
    CALL(GLGetFileTitle, g.label, g.room.data(), &g.narrow),
    CALL(SetModifyTime, g.label, 9),
    CALL(GetModifyTime, g.label, &g.time),
    CALL(GetFileIdentify, g.label, g.creator()),
    CALL(GLGetFileNo, g.label, reinterpret_cast<char*>(g.room.data())),
    ROW(SetFileAlignSize, is_aligned(g.coded.version) ? SetFileAlignSize(g.label, 9) : 0),
    CALL(GetFileAlignSize, g.label, &g.number),
    CALL(SetFileUnEffectSize, g.label, 9),
    CALL(GetFileUnEffectSize, g.label, &g.number),
    CALL(SetLabelAlignSize, g.label, 9),
    CALL(GetLabelAlignSize, g.label, &g.number),
    ROW(GetStringLength, static_cast<std::int32_t>(GetStringLength("four"))),

    ROW(GetEnvelopeFromHead, from_head(g.label, kKnown) ? 0 : -1),
    CALL(HaveTheEnvelopeFromHEnv, g.label, kOne, 1, kIssuer.get(), &g.previous),
    CALL(HaveTheEnvelopeFromBEnv, g.label, kOne, 1, kIssuer.get(), &g.previous),
    CALL(GetDigitEnvlopeCountFromBody, g.label, &g.number),
    ROW(GetCertByIssuerAndSerial,
        GetCertByIssuerAndSerial(g.label, kOne, 1, kIssuer.get(), g.room.data(), &g.size)),
    CALL(GetCurrentDigitEnvolop, g.envelopes.made, g.room.data(), &g.size),
    CALL(HaveNextDigitEnvolop, g.envelopes.made),
    CALL(DelPrivilegeFromLabel, g.label, kOne, 1, kIssuer.get()),
    CALL(SetAlreadyReadCountsToLabel, g.label, kOne, 1, kIssuer.get(), 9),

    ROW(FreetWaterMarkInfo, FreetWaterMarkInfo(g.mark.made)),
    ROW(FreeStampA, FreeStampA(g.stamp.taken())),
    ROW(FreeFingerPrintInfo, FreeFingerPrintInfo(g.finger.taken())),
    CALL(DelLog, g.label, 0),
    CALL(DelAlLog, g.label),
    ROW(FreeLog, FreeLog(g.log.taken())),
    CALL(GetLogCout, g.label, &g.number),
    CALL(GetExtendValue, g.label, 1, g.room.data(), &g.size),
    CALL(GetExtend, g.label, 0, &g.number, g.room.data(), &g.size),
    CALL(DelExtendAttr, g.label, 1),
    CALL(GetExtendCount, g.label, &g.number),
    CALL(LabCalSize, g.label, g.sizes()),
    CALL(SetExpired, g.label, 9),
    CALL(GetExpired, g.label, &g.time),
    CALL(SetDestroyTime, g.label, 9),
    CALL(GetDestroyTime, g.label, &g.time),
    CALL(GetAbolishTime, g.label, &g.time),
    CALL(AbolishSF, g.label),
    CALL(CheckLabelDate, g.bare),
    CALL(CheckDestroyDate, g.bare),
    CALL(CheckAbolishDate, g.bare),
    CALL(HavePadded, g.coded.addressed.data(), size32(g.coded.addressed), &g.number),
};

}  // namespace tq::abi

#endif
