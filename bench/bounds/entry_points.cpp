#include "bounds/entry_points.h"

namespace tq::bench {
namespace {

std::int32_t size_of(const Bytes& bytes) { return static_cast<std::int32_t>(bytes.size()); }

bool decode(const Bytes& der) {
  TqLabel label = nullptr;
  const bool done = DecodeLabel(der.data(), size32(der), &label) == 0;
  FreeHandleLabel(label);
  return done;
}

bool decode_encrypted(const Bytes& der, Bytes& room) {
  TqLabel label = nullptr;
  std::uint32_t length = size32(room);
  const bool done =
      DecodeLabelEncrypted(der.data(), size32(der), room.data(), &length, &label) == 0;
  FreeHandleLabel(label);
  return done;
}

using OnBytes = bool (*)(const Bytes& bytes, Bytes& room);

std::function<Call(const WorstInput&)> on_bytes(OnBytes call) {
  return [call](const WorstInput& input) -> Call {
    return [call, &bytes = input.bytes, room = Bytes(input.bytes.size() + 128)]() mutable {
      return call(bytes, room);
    };
  };
}

}  // namespace

Owner new_label() {
  Owner label(GetHandleLabel());
  static constexpr std::uint8_t kVersion[] = {'1', '.', '1', '.', '2'};
  GLSetVersion(label.get(), kVersion, sizeof kVersion);
  return label;
}

PJCertIssuer* issuer() {
  static PJCertIssuerEntry entries[10];
  static PJCertIssuer record = {entries, 10, 10};
  for (PJCertIssuerEntry& entry : entries) {
    const bool last = &entry == &entries[9];
    entry = {{0x55, 4, 3}, 3, {static_cast<std::uint8_t>(last ? kLastName : kFirstName)}, 1, 19};
  }
  return &record;
}

void add_decoders(std::vector<EntryPoint>& all) {
  const auto add = [&](const char* name, unsigned forms, Gets needs, double peak, OnBytes call) {
    all.push_back({name, name, forms, needs, peak, on_bytes(call)});
  };
  const auto peek = [&](const char* name, OnBytes call) {
    all.push_back({name, "LabelBodyWeatherEnc, GetLable, GetSignAlgName, GetCustomAttr", kSealed,
                   Gets::kRead, kDecoded, on_bytes(call)});
  };
  add("DecodeLabel", kLabel, Gets::kRead, kDecoded,
      [](const Bytes& der, Bytes&) { return decode(der); });
  add("DecodeLabelEncrypted", kSealed, Gets::kRead, kDecoded, decode_encrypted);
  add("DecodeLabelDecrypted", kBody, Gets::kRead, kDecoded, [](const Bytes& der, Bytes&) {
    return DecodeLabelDecrypted(new_label().get(), der.data(), size32(der)) == 0;
  });
  peek("LabelBodyWeatherEnc",
       [](const Bytes& der, Bytes&) { return LabelBodyWeatherEnc(der.data(), size_of(der)) == 1; });
  peek("GetLable", [](const Bytes& der, Bytes& room) {
    return GetLable(der.data(), size32(der), room.data()) == 0;
  });
  peek("GetSignAlgName", [](const Bytes& der, Bytes& room) {
    std::uint32_t length = size32(room);
    return GetSignAlgName(der.data(), size_of(der), room.data(), &length) == 0;
  });
  peek("GetCustomAttr", [](const Bytes& der, Bytes& room) {
    std::int32_t length = size_of(room);
    return GetCustomAttr(der.data(), size_of(der), room.data(), &length) == 0;
  });
  add("HavePrivilege", kSealed, Gets::kRead, kDecoded, [](const Bytes& der, Bytes&) {
    return HavePrivilege(der.data(), size_of(der), &kSerial, 1) == 0;
  });
  add("HavePrivilegeOfHead", kSealed, Gets::kRead, kDecoded, [](const Bytes& der, Bytes&) {
    return HavePrivilegeOfHead(der.data(), size_of(der), &kSerial, 1, issuer()) == 1;
  });
  add("HavePadded", kLabel | kSealed, Gets::kSplit, kNothing, [](const Bytes& der, Bytes&) {
    std::uint32_t flag = 0;
    return HavePadded(der.data(), size32(der), &flag) == 0;
  });
}

namespace {

using OnLabel = bool (*)(TqLabel label, Bytes& room);

std::function<Call(const WorstInput&)> on_label(OnLabel call) {
  return [call](const WorstInput& input) -> Call {
    TqLabel decoded = nullptr;
    if (DecodeLabel(input.bytes.data(), size32(input.bytes), &decoded) != 0) return nullptr;
    return [call, label = std::shared_ptr<TqLabelHandle>(decoded, Release{}),
            room = Bytes(input.bytes.size() + 128)]() mutable { return call(label.get(), room); };
  };
}

template <auto kEncode>
bool encode(TqLabel label, Bytes& room) {
  std::uint32_t length = size32(room);
  return kEncode(label, room.data(), &length) == 0;
}

bool get_last_log(TqLabel label, Bytes& /*room*/) {
  std::uint32_t count = 0;
  LogInfo* log = nullptr;
  if (GetLogCout(label, &count) != 0) return false;
  const bool done = count == 0 || GetLog(label, count - 1, &log) == 0;
  FreeLog(log);
  return done;
}

bool get_fingerprints(TqLabel label, Bytes& /*room*/) {
  Finger* finger = nullptr;
  const bool done = GetFingerPrintInfo(label, &finger) == 0;
  FreeFingerPrintInfo(finger);
  return done;
}

bool find_recipient(TqLabel label, Bytes& /*room*/) {
  void* previous = nullptr;
  return HaveTheEnvelopeFromHEnv(label, &kSerial, 1, issuer(), &previous) != 0;
}

}  // namespace

void add_readers(std::vector<EntryPoint>& all) {
  const auto add = [&](const char* name, const char* group, Gets needs, double peak, OnLabel call) {
    all.push_back({name, group, kLabel, needs, peak, on_label(call)});
  };
  const char* const encoders = "EncodeLabel, EncodeLabelPad, GetSignatureMessage";
  add("EncodeLabel", encoders, Gets::kReadWrite, kLengths, encode<EncodeLabel>);
  add("EncodeLabelPad", encoders, Gets::kReadWrite, kLengths, encode<EncodeLabelPad>);
  add("GetSignatureMessage", encoders, Gets::kReadWrite, kLengths, encode<GetSignatureMessage>);
  add("GetFingerPrintInfo", "GetFingerPrintInfo", Gets::kRead, kCopies, get_fingerprints);
  add("GetLog", "GetLog of the oldest", Gets::kRead, kCopies, get_last_log);
  add("HaveTheEnvelopeFromHEnv", "HaveTheEnvelopeFromHEnv", Gets::kRead, kNothing, find_recipient);
}

std::vector<EntryPoint> entry_points() {
  std::vector<EntryPoint> all;
  add_decoders(all);
  add_readers(all);
  add_setters(all);
  add_primitives(all);
  return all;
}

}  // namespace tq::bench
