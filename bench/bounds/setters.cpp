// Setters, each on a label of its own, with all bytes in one field.

#include "bounds/entry_points.h"

namespace tq::bench {
namespace {

// The records of the interface also carry results, so that they point to bytes that are not const.
std::uint8_t* octets(const Bytes& bytes) { return const_cast<std::uint8_t*>(bytes.data()); }
std::uint8_t kRsa[] = {'R', 'S', 'A'};

using OnContent = bool (*)(TqLabel label, const Bytes& bytes);

std::function<Call(const WorstInput&)> on_content(OnContent call) {
  return [call](const WorstInput& input) -> Call {
    return [call, &bytes = input.bytes] { return call(new_label().get(), bytes); };
  };
}

template <auto kSet>
bool set(TqLabel label, const Bytes& bytes) {
  return kSet(label, bytes.data(), size32(bytes)) == 0;
}

bool add_head_envelope(TqLabel label, const Bytes& key) {
  std::uint8_t serial = kSerial;
  const EnvelopeInfo info = {kRsa, 3, &serial, 1, octets(key), size32(key), issuer()};
  return AddEnvelopeToHead(label, &info) == 0;
}

bool add_body_envelope(TqLabel label, const Bytes& certificate) {
  std::uint8_t serial = kSerial;
  const EnvelopeInfo info = {kRsa, 3, &serial, 1, &serial, 1, issuer()};
  PrivilegeInfo privilege = {};
  privilege.data = octets(certificate);
  privilege.dataLen = size32(certificate);
  return ADDigitEnvlopeToBody(label, &info, &privilege) == 0;
}

bool add_signer(TqLabel label, const Bytes& certificate) {
  char name[] = "RSA";
  std::uint8_t value = 0;
  const SignAttribute signer = {name, &value, 1, octets(certificate), size32(certificate)};
  return SetBodySignAttr(label, 1, &signer) == 0;
}

bool add_log(TqLabel label, const Bytes& bytes) {
  std::uint8_t none = 0;
  const LogInfo log = {0, octets(bytes), size32(bytes), issuer(), &none, 0, &none, 0, 0, 0, &none,
                       0};
  return AddLog(label, &log) == 0;
}

bool set_mark(TqLabel label, const Bytes& bytes) {
  std::uint8_t none = 0;
  const WaterMark mark = {octets(bytes), size32(bytes), &none, 0, 0, 0, nullptr, 0, 0};
  return SetWaterMarkInfo(label, &mark) == 0;
}

bool set_stamp(TqLabel label, const Bytes& bytes) {
  StampRecord stamp = {};
  std::uint8_t none = 0;
  stamp.name = stamp.seal.name = stamp.seal.data = stamp.seal.element = stamp.seal.bits = &none;
  stamp.seal.meta.element = stamp.seal.meta.text1 = stamp.seal.meta.text2 = &none;
  stamp.bits = octets(bytes);
  stamp.bitsLen = size32(bytes);
  return SetStampInfo(label, &stamp) == 0;
}

bool set_fingerprint(TqLabel label, const Bytes& bytes) {
  std::uint8_t none = 0;
  FingerEntry entry = {octets(bytes), size32(bytes), {}};
  const Finger finger = {&none, 0, &none, 0, &none, 0, 0, {1, &entry}};
  return SetFingerPrintInfo(label, &finger) == 0;
}

bool set_content(TqLabel label, const Bytes& bytes) {
  ContentAttrInfo content = {};
  content.fileName = octets(bytes);
  content.fileNameLen = size32(bytes);
  return SetContentAtrr(label, &content) == 0;
}

bool set_creator(TqLabel label, const Bytes& bytes) {
  const FileCreatorInfo creator = {octets(bytes), size32(bytes), nullptr, 0, 0};
  return SetBodyFileCreator(label, &creator) == 0;
}

bool add_extension(TqLabel label, const Bytes& bytes) {
  return AddExtendValue(label, 1, bytes.data(), size32(bytes)) == 0;
}

bool find_name(TqLabel /*label*/, const Bytes& object_id) {
  char name[32];
  return SflOID2Alg(object_id.data(), size32(object_id), name, nullptr, nullptr) == 0;
}

bool find_object_id(TqLabel /*label*/, const Bytes& name) {
  std::uint32_t length = 0;
  return SflAlg2OID(name.data(), size32(name), 0, 0, nullptr, &length) == 0;
}

bool set_number(TqLabel label, const Bytes& text) {
  return GLSetFileNo(label, reinterpret_cast<const char*>(text.data())) == 0;
}

// Around an encrypted body.
template <auto kEncode>
bool encode(TqLabel label, const Bytes& encrypted) {
  static Bytes room;  // made by the first call, which nobody measures
  room.resize(encrypted.size() + kFixed);
  std::uint32_t length = size32(room);
  return SetCertSerialAndIssuerToHead(label, &kSerial, 1, issuer()) == 0 &&
         kEncode(label, encrypted.data(), size32(encrypted), room.data(), &length) == 0;
}

}  // namespace

void add_setters(std::vector<EntryPoint>& all) {
  const auto add = [&](const char* name, OnContent call) {
    all.push_back({name, "setters", kContent, Gets::kRead, kCopied, on_content(call)});
  };
  add("SetHeadSignCert", set<SetHeadSignCert>);
  add("SetHeadSignValue", set<SetHeadSignValue>);
  add("SetBodySignCert", set<SetBodySignCert>);
  add("SetBodySigVal", set<SetBodySigVal>);
  add("FileHaveSigned", set<FileHaveSigned>);
  add("SetCustom", set<SetCustom>);
  add("SetBodySignAttr", add_signer);
  add("AddEnvelopeToHead", add_head_envelope);
  add("ADDigitEnvlopeToBody", add_body_envelope);
  add("AddLog", add_log);
  add("AddExtendValue", add_extension);
  add("SetWaterMarkInfo", set_mark);
  add("SetStampInfo", set_stamp);
  add("SetFingerPrintInfo", set_fingerprint);
  add("SetContentAtrr", set_content);
  add("SetBodyFileCreator", set_creator);
  add("GLSetFileNo", set_number);
  const auto seal = [&](const char* name, OnContent call) {
    all.push_back({name, "EncodeLabelEncrypted, EncodeLabelPadEncrypted", kContent, Gets::kRead,
                   kNothing, on_content(call)});
  };
  seal("EncodeLabelEncrypted", encode<EncodeLabelEncrypted>);
  seal("EncodeLabelPadEncrypted", encode<EncodeLabelPadEncrypted>);
  const auto refuse = [&](const char* name, OnContent call) {
    all.push_back({name, "SflOID2Alg, SflAlg2OID, SetHeadSignAlg", kContent, Gets::kNever, kNothing,
                   on_content(call)});
  };
  refuse("SflOID2Alg", find_name);
  refuse("SflAlg2OID", find_object_id);
  refuse("SetHeadSignAlg", set<SetHeadSignAlg>);
}

}  // namespace tq::bench
