#ifndef TQ_TESTS_ABI_OBSERVED_H
#define TQ_TESTS_ABI_OBSERVED_H

// A label as its getters show it, to compare with a model.

#include <ctime>

#include "abi/model.h"

namespace tq::abi {

inline void observe_head(TqLabel label, Model& seen) {
  const Bytes algorithm = get(label, GetHeadSignAlg);
  seen.sign_algorithm.assign(algorithm.begin(), algorithm.end());
  std::uint8_t bits = 0;
  std::uint8_t with_name = 0;
  EXPECT_EQ(GetHeadFeedBackBits(label, &bits), 0);
  seen.feedback_bits = with_name = bits;
  const Bytes cipher = fetch([&](std::uint8_t* buffer, std::uint32_t* length) {
    auto narrow = static_cast<std::uint8_t>(*length);
    const std::int32_t result = GetEncryptHead(label, buffer, &narrow, &with_name);
    if (result == 0) *length = narrow;
    return result;
  });
  seen.cipher.assign(cipher.begin(), cipher.end());
  EXPECT_EQ(with_name, bits);
  EXPECT_EQ(LabelBodyNeedEnc(label), cipher.empty() ? 0 : 1);
  std::uint8_t length = 0;
  PJCertIssuer* issuer = nullptr;
  EXPECT_EQ(GetCertSerialAndIssuerToHead(label, nullptr, &length, &issuer), 0);
  EXPECT_EQ(length, seen.bytes[kSerial].size());
  EXPECT_EQ(issuer == nullptr, is_60(seen.version));
  if (issuer != nullptr) seen.issuer = attributes_of(issuer);
  FreeIssuerName(issuer);
}

inline void observe_records(TqLabel label, Model& seen) {
  LabelSizeInfo sizes{};
  EXPECT_EQ(LabCalSize(label, &sizes), 0);
  seen.file_number.resize(sizes.fileNoLen);
  seen.creator.resize(sizes.creatorStr2Len);
  std::uint8_t none = 0;
  FileCreatorInfo creator{sizes.fileNoLen == 0 ? &none : seen.file_number.data(), 0,
                          sizes.creatorStr2Len == 0 ? &none : seen.creator.data(), 0, 0};
  EXPECT_EQ(GetFileIdentify(label, &creator), 0);
  EXPECT_EQ(creator.str1Len, sizes.fileNoLen);
  EXPECT_EQ(creator.str2Len, sizes.creatorStr2Len);
  seen.creator_time = creator.time;
  Bytes name(UINT8_MAX + 1);
  Bytes title(UINT8_MAX + 1);
  ContentAttrInfo content{};
  content.fileName = name.data();
  content.fileTitle = title.data();
  std::uint64_t expiry = 0;
  std::uint32_t size = 0;
  EXPECT_EQ(GetContentAtrr(label, &content), 0);
  EXPECT_EQ(Bytes(name.begin(), name.begin() + content.fileNameLen), seen.bytes[kName]);
  EXPECT_EQ(Bytes(title.begin(), title.begin() + content.fileTitleLen), seen.bytes[kTitle]);
  EXPECT_EQ(GetExpired(label, &expiry), 0);
  EXPECT_EQ(GLGetFileSize(label, &size), 0);
  EXPECT_EQ(content.expiryTime, expiry);
  EXPECT_EQ(content.fileSize, size);
  WaterMark* mark = nullptr;
  StampRecord* stamp = nullptr;
  Finger* finger = nullptr;
  EXPECT_EQ(GetWaterMarkInfo(label, &mark), 0);
  EXPECT_EQ(GetStampInfo(label, &stamp), 0);
  EXPECT_EQ(GetFingerPrintInfo(label, &finger), 0);
  seen.water_mark = describe(*mark);
  seen.stamp = describe(*stamp);
  seen.finger = describe(*finger);
  FreetWaterMarkInfo(mark);
  Asn1Free(mark->text);
  Asn1Free(mark);
  FreeStampA(stamp);
  FreeFingerPrintInfo(finger);
}

inline void observe_lists(TqLabel label, Model& seen) {
  std::uint32_t count = 0;
  EXPECT_EQ(GetLogCout(label, &count), 0);
  for (std::uint32_t i = 0; i < count; ++i) {
    LogInfo* log = nullptr;
    EXPECT_EQ(GetLog(label, i, &log), 0);
    seen.logs.push_back({describe(*log), attributes_of(log->issuer)});
    FreeLog(log);
  }
  LogInfo* none = nullptr;
  EXPECT_EQ(GetLog(label, count, &none), -1);
  EXPECT_EQ(GetExtendCount(label, &count), 0);
  for (std::uint32_t i = 0; i < count; ++i) {
    Extension& entry = seen.extensions.emplace_back();
    std::uint32_t length = 0;
    EXPECT_EQ(GetExtend(label, i, &entry.type, nullptr, &length), 0);
    entry.value.resize(length);
    EXPECT_EQ(GetExtend(label, i, &entry.type, entry.value.data(), &length), 0);
    Bytes newest(1000);  // of the type, which may be another one
    EXPECT_EQ(GetExtendValue(label, entry.type, newest.data(), &length), 0);
    newest.resize(length);
    const auto first = std::find_if(seen.extensions.begin(), seen.extensions.end(),
                                    [&](const Extension& each) { return each.type == entry.type; });
    EXPECT_EQ(newest, first->value);
  }
}

// Without an algorithm in the head there is no name to hand out, and so no signature.
inline void observe_signers(TqLabel label, const Model& expected, Model& seen) {
  SignEnum* enumerator = nullptr;
  ASSERT_EQ(CreateEmurateSign(label, &enumerator), 0);
  if (seen.sign_algorithm.empty()) seen.signers = expected.signers;
  while (!seen.sign_algorithm.empty()) {
    SignAttribute next{};
    if (GetNextSign(enumerator, &next) != 0) break;
    Signer signer{"", Bytes(next.valueLen + 1), Bytes(next.certLen + 1)};
    next.value = signer.value.data();
    next.cert = signer.cert.data();
    ASSERT_EQ(GetNextSign(enumerator, &next), 0);
    EXPECT_EQ(next.algName, seen.sign_algorithm);
    signer.value.pop_back();
    signer.cert.pop_back();
    seen.signers.push_back(std::move(signer));
  }
  EXPECT_EQ(DestroySignEmura(enumerator), 0);
  if (seen.sign_algorithm.empty()) return;
  ASSERT_FALSE(seen.signers.empty());
  char name[64] = {};
  Bytes value(seen.signers[0].value.size() + 1);
  Bytes cert(seen.signers[0].cert.size() + 1);
  SignAttribute first{name, value.data(), size32(value), cert.data(), size32(cert)};
  EXPECT_EQ(GetBodySignAttr(label, &first), 0);
  seen.signers[0] = {name, bytes_of(value.data(), first.valueLen),
                     bytes_of(cert.data(), first.certLen)};
}

// The label through its getters; `expected` stands in for what no getter can reach.
inline Model observe(TqLabel label, const Model& expected) {
  Model seen;
  const Bytes version = get(label, widened<GLGetVersion>);
  seen.version.assign(version.begin(), version.end());
  for (std::size_t i = 0; i < std::size(kBytes); ++i) seen.bytes[i] = get(label, kBytes[i].get);
  for (std::size_t i = 0; i < std::size(kNumbers); ++i) {
    EXPECT_EQ(kNumbers[i].get(label, &seen.numbers[i]), 0);
  }
  for (std::size_t i = 0; i < std::size(kTimes); ++i) {
    EXPECT_EQ(kTimes[i].get(label, &seen.times[i]), 0);
  }
  observe_head(label, seen);
  observe_records(label, seen);
  observe_lists(label, seen);
  observe_signers(label, expected, seen);
  return seen;
}

// What the caller of a get brings: room for one envelope, and whose it is to be.
struct EnvelopeRoom {
  explicit EnvelopeRoom(const Person& person) : serial(person.serial) {
    const Issuer asked(person.issuer);
    std::copy_n(asked.get()->entries, asked.get()->count, entries);
    serial.resize(128);
    issuer = {entries, asked.get()->count, 10};
    envelope = {alg, 32,  serial.data(), static_cast<std::uint8_t>(person.serial.size()),
                key, 512, &issuer};
    privilege.data = subject;
    privilege.dataLen = sizeof subject;
    privilege.entries = pairs;
    privilege.entryCount = 4;
  }

  std::uint8_t alg[32] = {};
  Bytes serial;
  std::uint8_t key[512] = {};
  std::uint8_t subject[512] = {};
  PJCertIssuerEntry entries[10] = {};
  PJCertIssuer issuer{};
  PrivilegeEntry pairs[4] = {};
  EnvelopeInfo envelope{};
  PrivilegeInfo privilege{};
};

inline std::vector<std::uint32_t> values_of(const PrivilegeInfo& info) {
  return {info.flag1, info.number1, info.readCount, info.flag2,
          info.flag3, info.flag4,   info.number3,   info.number4};
}

inline std::string describe(const Envelope& envelope) {
  Report report;
  report("serial", envelope.person.serial)("issuer", envelope.person.issuer);
  report("algorithm", envelope.algorithm)("key", envelope.key)("subject", envelope.subject);
  for (const std::uint32_t value : envelope.values) report("value", value);
  for (const auto& [type, value] : envelope.pairs) report("type", type)("value", value);
  return report.str();
}

inline std::string describe(const EnvelopeRoom& room) {
  const EnvelopeInfo& info = room.envelope;
  const PrivilegeInfo& privilege = room.privilege;
  Envelope seen{{bytes_of(info.serial, info.serialLen), attributes_of(info.issuer)},
                {info.alg, info.alg + info.algLen},
                bytes_of(info.key, info.keyLen),
                bytes_of(privilege.data, privilege.dataLen),
                values_of(privilege),
                {}};
  for (std::uint32_t i = 0; i < privilege.entryCount; ++i) {
    seen.pairs.emplace_back(privilege.entries[i].type, privilege.entries[i].value);
  }
  return describe(seen);
}

// Whom a search finds, and what it finds of him; by position, all but the last.
inline void check_head_envelopes(TqLabel label, Model& model) {
  LabelSizeInfo sizes{};
  EXPECT_EQ(LabCalSize(label, &sizes), 0);
  EXPECT_EQ(sizes.headEnvelopeCount, model.head_envelopes.size());
  for (const Envelope& each : model.head_envelopes) {
    EnvelopeRoom room(each.person);
    const auto found = Model::find(model.head_envelopes, each.person);
    ASSERT_EQ(GetEnvelopeFromHead(label, &room.envelope), 0);
    EXPECT_EQ(bytes_of(room.key, room.envelope.keyLen), found->key);
    EXPECT_EQ(std::string(room.alg, room.alg + room.envelope.algLen), found->algorithm);
    void* previous = &room;
    EXPECT_EQ(HaveTheEnvelopeFromHEnv(label, each.person.serial.data(), size32(each.person.serial),
                                      Issuer(each.person.issuer).get(), &previous),
              1);
    EXPECT_EQ(previous == nullptr, found == model.head_envelopes.begin());
  }
}

inline void check_body_envelopes(TqLabel label, Model& model) {
  auto& list = model.body_envelopes;
  std::uint32_t count = 0;
  EXPECT_EQ(GetDigitEnvlopeCountFromBody(label, &count), 0);
  ASSERT_EQ(count, list.size());
  for (std::uint32_t i = 0; i <= count; ++i) {
    EnvelopeRoom room({});
    room.envelope.serialLen = 128;
    EXPECT_EQ(GetDigitEnvlope(label, static_cast<std::int32_t>(i), &room.envelope, &room.privilege),
              i + 1 < count ? 0 : -1);
    if (i + 1 == count || i == count) continue;
    EXPECT_EQ(describe(room), describe(list[i]));
  }
  for (const Envelope& each : list) {
    EnvelopeRoom room(each.person);
    const auto found = Model::find(list, each.person);
    ASSERT_EQ(GetEnvelopeFromBody(label, &room.envelope, &room.privilege), 0);
    EXPECT_EQ(describe(room), describe(*found));
    const auto subject = [&](std::uint8_t* buffer, std::uint32_t* length) {
      return GetCertByIssuerAndSerial(label, each.person.serial.data(), size32(each.person.serial),
                                      Issuer(each.person.issuer).get(), buffer, length);
    };
    EXPECT_EQ(fetch(subject), found->subject);
    void* previous = &room;
    EXPECT_EQ(HaveTheEnvelopeFromBEnv(label, each.person.serial.data(), size32(each.person.serial),
                                      Issuer(each.person.issuer).get(), &previous),
              1);
    EXPECT_EQ(previous == nullptr, found == list.begin());
  }
}

// The times are near the epoch, in the present or at the end of time.
inline void check_dates(TqLabel label, const Model& model) {
  const auto now = static_cast<std::uint64_t>(std::time(nullptr));
  const auto passed = [&](TimeIndex which) {
    return model.times[which] != 0 && model.times[which] < now;
  };
  EXPECT_EQ(CheckAbolishDate(label), passed(kAbolished) ? -1 : 0);
  EXPECT_EQ(CheckDestroyDate(label), passed(kDestroyed) ? -1 : 0);
  EXPECT_EQ(CheckLabelDate(label), passed(kExpires) || passed(kAbolished) ? -1 : 0);
}

// All that can be asked of a label.
inline void check(TqLabel label, Model expected) {
  if (!expected.multi()) {
    expected.signers = {
        {expected.sign_algorithm, expected.bytes[kBodySign], expected.bytes[kBodyCertificate]}};
  } else if (expected.signers.empty()) {
    expected.signers.emplace_back();
  }
  // Only the first one's own algorithm can be asked for.
  for (std::size_t i = 1; i < expected.signers.size(); ++i) expected.signers[i].algorithm = "";
  EXPECT_EQ(describe(observe(label, expected)), describe(expected));
  check_head_envelopes(label, expected);
  check_body_envelopes(label, expected);
  check_dates(label, expected);
}

}  // namespace tq::abi

#endif
