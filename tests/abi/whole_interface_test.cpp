// The whole interface at once: what every setter stored every getter gives back, and a label that
// was edited is a label that was built so.

#include <functional>

#include "abi/records.h"

namespace tq::abi {
namespace {

// What must hold of the label, and of a decoded one.
using Check = std::function<void(TqLabel label, bool decoded)>;

class Builder {
 public:
  Builder(TqLabel label, const char* version) : label_(label), version_(version) {
    head();
    signatures();
    content();
    lists();
    markings();
  }
  void check(TqLabel label, bool decoded) const {
    for (const Check& each : checks_) each(label, decoded);
  }

 private:
  void bytes(Setter setter, Getter getter, const Bytes& value, bool encoded = true) {
    set(label_, setter, value);
    checks_.emplace_back([=](TqLabel label, bool decoded) {
      EXPECT_EQ(get(label, getter), decoded && !encoded ? Bytes{} : value);
    });
  }
  template <class Number>
  void number(std::int32_t (*setter)(TqLabel, Number), std::int32_t (*getter)(TqLabel, Number*),
              Number value, bool encoded = true) {
    EXPECT_EQ(setter(label_, value), 0);
    checks_.emplace_back([=](TqLabel label, bool decoded) {
      Number out = ~value;
      EXPECT_EQ(getter(label, &out), 0);
      EXPECT_EQ(out, decoded && !encoded ? Number{0} : value);
    });
  }

  void head() {
    bytes(GLSetVersion, widened<GLGetVersion>, text(version_));
    bytes(SetLabel, widened<GetLabel>, pattern(128, 1));
    bytes(SetCustom, GetCustom, pattern(500, 2));
    number<std::uint64_t>(SetHeadModifyTime, GetHeadModifyTime, 1600000001);
    EXPECT_EQ(SetEncryptHead(label_, text("SM4").data(), 3, 1), 0);
    EXPECT_EQ(SetHeadFeedBackBits(label_, 128), 0);
    const bool old = is_60(version_);
    checks_.emplace_back([old](TqLabel label, bool decoded) {
      std::uint8_t name[4] = {};
      std::uint8_t length = 3;
      std::uint8_t bits = 0;
      EXPECT_EQ(GetEncryptHead(label, name, &length, &bits), 0);
      EXPECT_EQ(Bytes(name, name + length), text("SM4"));
      EXPECT_EQ(bits, decoded && old ? 0 : 128);
    });
    const std::vector<Issuer::Attribute> name = recipient(1, "Head CA").issuer;
    const Issuer issuer(name);
    const Bytes serial = pattern(128, 3);
    EXPECT_EQ(SetCertSerialAndIssuerToHead(label_, serial.data(), 128, issuer.get()), 0);
    checks_.emplace_back([=](TqLabel label, bool) {
      Bytes room(128);
      std::uint8_t length = 128;
      PJCertIssuer* out = nullptr;
      EXPECT_EQ(GetCertSerialAndIssuerToHead(label, room.data(), &length, &out), 0);
      EXPECT_EQ(room, serial);
      EXPECT_EQ(out == nullptr, old);
      if (out != nullptr) {
        EXPECT_TRUE(attributes_of(out) == name);
      }
      EXPECT_EQ(FreeIssuerName(out), 0);
    });
  }

  void signatures() {
    bytes(SetHeadSignAlg, GetHeadSignAlg, text(kSignAlg));
    bytes(SetHeadSignCert, GetHeadSignCert, kHeadCert);
    bytes(SetHeadSignValue, GetHeadSignValue, pattern(71, 4));
    const bool chain = is_multi_sign(version_);
    bytes(SetBodySignCert, GetBodySignCert, kBodyCert, !chain);
    bytes(SetBodySigVal, GetBodySigVal, pattern(96, 5), !chain);
    if (!chain) return;
    EXPECT_EQ(add_signer(label_, false, kSignAlg, kHeadCert, pattern(33, 6)), 0);
    EXPECT_EQ(add_signer(label_, true, kSignAlg, kBodyCert, pattern(44, 7)), 0);
    checks_.emplace_back([](TqLabel label, bool) {
      SignEnum* it = nullptr;
      ASSERT_EQ(CreateEmurateSign(label, &it), 0);
      for (const auto& [cert, value] :
           {std::pair{kHeadCert, pattern(33, 6)}, std::pair{kBodyCert, pattern(44, 7)}}) {
        Bytes room(100);
        Bytes cert_room(100);
        SignAttribute out{nullptr, room.data(), 100, cert_room.data(), 100};
        ASSERT_EQ(GetNextSign(it, &out), 0);
        EXPECT_EQ(Bytes(out.value, out.value + out.valueLen), value);
        EXPECT_EQ(Bytes(out.cert, out.cert + out.certLen), cert);
      }
      EXPECT_EQ(DestroySignEmura(it), 0);
    });
  }

  void content() {
    Bytes name = text("x");
    const ContentAttrInfo all{9, 9, 9, name.data(), 1, name.data(), 1, 9, 9, 1234567890, 9};
    EXPECT_EQ(SetContentAtrr(label_, &all), 0);
    bytes(SetFileName, widened<GetFileName>, pattern(255, 8));
    bytes(GLSetFileTitle, widened<GLGetFileTitle>, pattern(100, 9));
    number<std::uint32_t>(GLSetFileType, GLGetFileType, 0xFFFFFFFF);
    number<std::uint32_t>(SetFileSecc, GetFileSecc, 0x80000000);
    number<std::uint32_t>(GLSetFileSize, GLGetFileSize, 0x7FFFFFFF);
    number<std::uint64_t>(SetModifyTime, GetModifyTime, 1600000002);
    number<std::uint64_t>(SetExpired, GetExpired, 1600000003);
    number<std::uint64_t>(SetDestroyTime, GetDestroyTime, 253402300799);
    checks_.emplace_back([](TqLabel label, bool) {
      std::uint64_t time = 0;
      EXPECT_EQ(GetAbolishTime(label, &time), 0);
      EXPECT_EQ(time, 1234567890U);
    });
    const bool aligned = is_aligned(version_);
    if (aligned) number<std::uint32_t>(SetFileAlignSize, GetFileAlignSize, 4096);
    number<std::uint32_t>(SetFileUnEffectSize, GetFileUnEffectSize, 17, aligned);
    number<std::uint32_t>(SetLabelAlignSize, GetLabelAlignSize, 512, aligned);
    Bytes second = text("made by");
    const FileCreatorInfo creator{name.data(), 1, second.data(), 7, 77};
    EXPECT_EQ(SetBodyFileCreator(label_, &creator), 0);
    EXPECT_EQ(GLSetFileNo(label_, "No. 9"), 0);
    checks_.emplace_back([](TqLabel label, bool) {
      std::uint8_t room[2][8] = {};
      FileCreatorInfo out{room[0], 0, room[1], 0, 0};
      EXPECT_EQ(GetFileIdentify(label, &out), 0);
      EXPECT_EQ(Bytes(room[0], room[0] + out.str1Len), text({"No. 9", 6}));
      EXPECT_EQ(Bytes(room[1], room[1] + out.str2Len), text("made by"));
      EXPECT_EQ(out.time, 77U);
    });
  }

  void lists() {
    const bool old = is_60(version_);
    for (std::uint8_t i = 1; i <= 3 && !old; ++i) {
      const HeadEnvelope envelope{recipient(i), text("RSA"), pattern(10U * i, i)};
      const Privileges rights{tlv(0x30, pattern(i)), {1, 1, 0, 1}, {i, 2, 3, 4}, {{i, i}}};
      EXPECT_EQ(add_to_head(label_, envelope), 0);
      EXPECT_EQ(add_to_body(label_, envelope, rights), 0);
      checks_.emplace_back([=](TqLabel label, bool) {
        EXPECT_EQ(from_head(label, envelope.to), envelope);
        EXPECT_EQ(from_body(label, envelope.to), (BodyEnvelope{envelope, rights}));
      });
    }
    for (std::uint32_t i = 0; i < 3; ++i) {
      Log log;
      log.number = i;
      log.text2 = pattern(i, i);
      EXPECT_EQ(add_log(label_, log), 0);
      const Bytes value = pattern(100 * i + 1, i);
      EXPECT_EQ(AddExtendValue(label_, 65535 + i, value.data(), size32(value)), 0);
      checks_.emplace_back([=](TqLabel label, bool decoded) {
        Log expected = log;
        if (decoded && old) expected.issuer.clear();
        EXPECT_EQ(log_at(label, 2 - i), expected);
        EXPECT_EQ(extension(label, 65535 + i), value);
      });
    }
  }

  void markings() {
    MarkInput mark;
    StampInput stamp;
    FingerInput finger;
    EXPECT_EQ(SetWaterMarkInfo(label_, &mark.record), 0);
    EXPECT_EQ(SetStampInfo(label_, &stamp.record), 0);
    EXPECT_EQ(SetFingerPrintInfo(label_, &finger.record), 0);
    checks_.emplace_back([](TqLabel label, bool) {
      const MarkInput in_mark;
      const StampInput in;
      const FingerInput in_finger;
      const auto out_mark = take<OwnedMark>(label, GetWaterMarkInfo);
      EXPECT_EQ(made(out_mark->data1, out_mark->data1Len), in_mark.data1);
      EXPECT_EQ(made(out_mark->data2, out_mark->data2Len), in_mark.data2);
      EXPECT_STREQ(out_mark->text, "ab");
      const auto out = take<OwnedStamp>(label, GetStampInfo);
      EXPECT_EQ(made(out->name, out->nameLen), in.name);
      EXPECT_EQ(made(out->seal.name, out->seal.nameLen), in.seal_name);
      EXPECT_EQ(made(out->seal.meta.text2, out->seal.meta.text2Len), in.meta_text2);
      EXPECT_EQ(made(out->stamp.data, out->stamp.dataLen), in.data);
      EXPECT_EQ(out->stamp.value[1], 0x80000000);
      const auto out_finger = take<OwnedFinger>(label, GetFingerPrintInfo);
      ASSERT_EQ(out_finger->list.count, 3U);
      EXPECT_EQ(made(out_finger->sys3, out_finger->sys3Len), in_finger.sys[2]);
      EXPECT_EQ(made(out_finger->list.entries[2].value, 5), in_finger.values[0]);
    });
  }

  TqLabel label_;
  const char* version_;
  std::vector<Check> checks_;
};

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

TEST(WholeInterface, EveryGetterGivesBackWhatItsSetterStored) {
  for (const char* version : kVersions) {
    SCOPED_TRACE(version);
    Label label;
    const Builder built(label, version);
    built.check(label, false);
    const Bytes der = encode(label);
    for (const Label& decoded : decoded_both_ways(label)) {
      ASSERT_TRUE(decoded);
      built.check(decoded, true);
      EXPECT_EQ(encode(decoded), der);
    }
    built.check(label, false);  // reading and encoding change nothing
    EXPECT_EQ(encode(label), der);
  }
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
  constexpr Getter kBytes[] = {
      widened<GetLabel>, widened<GetHeadSerialNum>, widened<GetFileName>, widened<GLGetFileTitle>,
      GetCustom,         GetHeadSignCert,           GetHeadSignValue,     GetBodySignCert,
      GetBodySigVal};
  constexpr std::int32_t (*kCounts[])(TqLabel, std::uint32_t*) = {
      GLGetFileType,    GetFileSecc,         GLGetFileSize,
      GetFileAlignSize, GetFileUnEffectSize, GetLabelAlignSize,
      GetLogCout,       GetExtendCount,      GetDigitEnvlopeCountFromBody};
  for (const char* version : {"", "6.0", "1.1", "1.1.1", "1.1.2"}) {
    SCOPED_TRACE(version);
    Label label;
    if (*version != '\0') set(label, GLSetVersion, text(version));
    for (const Getter getter : kBytes) {
      std::uint32_t size = 99;
      EXPECT_EQ(getter(label, nullptr, &size), 0);
      EXPECT_EQ(size, 0U);
      std::uint8_t byte = 0xEE;
      EXPECT_EQ(getter(label, &byte, &size), 0);
      EXPECT_EQ(byte, 0xEE);
    }
    for (const auto count : kCounts) EXPECT_EQ(counted(label, count), 0U);
    for (const auto getter : {GetHeadCreateTime, GetHeadModifyTime, GetModifyTime, GetExpired,
                              GetDestroyTime, GetAbolishTime}) {
      std::uint64_t time = 99;
      EXPECT_EQ(getter(label, &time), 0);
      EXPECT_EQ(time, 0U);
    }
    std::uint32_t length = 77;
    EXPECT_EQ(GetHeadSignAlg(label, nullptr, &length), is_60(version) ? 0 : -1);
    EXPECT_EQ(length, is_60(version) ? 0U : 77U);
    std::uint8_t serial_length = 99;
    PJCertIssuer* issuer = nullptr;
    EXPECT_EQ(GetCertSerialAndIssuerToHead(label, nullptr, &serial_length, &issuer),
              *version == '\0' ? -1 : 0);
    EXPECT_EQ(serial_length, *version == '\0' ? 99 : 0);
    EXPECT_EQ(issuer != nullptr, *version == '1');
    if (issuer != nullptr) {
      EXPECT_EQ(issuer->count, 0U);
    }
    EXPECT_EQ(FreeIssuerName(issuer), 0);
    EXPECT_FALSE(log_at(label, 0));
    EXPECT_EQ(extension(label, 0), text("none"));
    std::uint32_t type = 0;
    EXPECT_EQ(GetExtend(label, 0, &type, nullptr, &length), -1);
    EXPECT_EQ(DelExtendAttr(label, 0), -1);
    EXPECT_EQ(SetLabelPadSize(label, 0), 0);
    EXPECT_TRUE(encode(label).empty());
  }
}

TEST(WholeInterface, ReleasesNullAsNothing) {
  FreeHandleLabel(nullptr);
  FreeLog(nullptr);
  EXPECT_EQ(FreeIssuerName(nullptr), 0);
  EXPECT_EQ(FreetWaterMarkInfo(nullptr), 0);
  EXPECT_EQ(FreeStampA(nullptr), 0);
  EXPECT_EQ(FreeFingerPrintInfo(nullptr), 0);
  EXPECT_EQ(DestroyEmura(nullptr), 0);
  EXPECT_EQ(DestroySignEmura(nullptr), 0);
  Asn1Free(nullptr);
}

}  // namespace
}  // namespace tq::abi
