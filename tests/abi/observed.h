#ifndef TQ_TESTS_ABI_OBSERVED_H
#define TQ_TESTS_ABI_OBSERVED_H

// A label as its getters show it, to compare with a model.

#include <ctime>

#include "abi/model.h"

namespace tq::abi {

inline std::string text_of(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

inline void observe_head(TqLabel label, Model& seen) {
  seen.sign_algorithm = text_of(get(label, GetHeadSignAlg));
  std::uint8_t bits = 0;
  EXPECT_EQ(GetHeadFeedBackBits(label, &bits), 0);
  std::uint8_t with_name = 0x99;
  seen.feedback_bits = bits;
  seen.cipher = text_of(fetch([&](std::uint8_t* buffer, std::uint32_t* length) {
    auto narrow = static_cast<std::uint8_t>(*length);
    const std::int32_t result = GetEncryptHead(label, buffer, &narrow, &with_name);
    if (result == 0) *length = narrow;
    EXPECT_TRUE(buffer != nullptr || with_name == 0x99);
    return result;
  }));
  EXPECT_EQ(with_name, seen.cipher.empty() && !seen.v60() ? 0x99 : bits);
  EXPECT_EQ(LabelBodyNeedEnc(label), seen.cipher.empty() ? 0 : 1);
  const Bytes serial = fetch([&](std::uint8_t* buffer, std::uint32_t* length) {
    auto narrow = static_cast<std::uint8_t>(*length);
    PJCertIssuer* issuer = nullptr;
    const std::int32_t result = GetCertSerialAndIssuerToHead(label, buffer, &narrow, &issuer);
    EXPECT_EQ(issuer != nullptr, result == 0 && !seen.v60());
    if (issuer != nullptr) seen.issuer = attributes_of(issuer);
    FreeIssuerName(issuer);
    if (result == 0) *length = narrow;
    return result;
  });
  EXPECT_EQ(serial, seen.bytes[kSerial]);
}

inline void observe_records(TqLabel label, Model& seen) {
  Bytes texts[4] = {Bytes(300), Bytes(300), Bytes(300), Bytes(300)};
  FileCreatorInfo creator{texts[0].data(), 0, texts[1].data(), 0, 0};
  EXPECT_EQ(GetFileIdentify(label, &creator), 0);
  seen.file_number.assign(creator.str1, creator.str1 + creator.str1Len);
  seen.creator.assign(creator.str2, creator.str2 + creator.str2Len);
  seen.creator_time = creator.time;
  Bytes number(seen.file_number.size() + 2, 0xEE);
  EXPECT_EQ(GLGetFileNo(label, reinterpret_cast<char*>(number.data())), 0);
  EXPECT_EQ(number.back(), 0xEE);
  number.resize(std::max<std::size_t>(seen.file_number.size(), 1));
  EXPECT_EQ(number, seen.file_number.empty() ? Bytes{0} : seen.file_number);
  ContentAttrInfo content{};
  content.fileName = texts[2].data();
  content.fileTitle = texts[3].data();
  EXPECT_EQ(GetContentAtrr(label, &content), 0);
  ContentAttrInfo expected{seen.numbers[0],
                           seen.numbers[1],
                           seen.numbers[2],
                           pointer(seen.bytes[kName]),
                           size32(seen.bytes[kName]),
                           pointer(seen.bytes[kTitle]),
                           size32(seen.bytes[kTitle]),
                           seen.times[kModified],
                           seen.times[kExpires],
                           seen.times[kAbolished],
                           seen.times[kDestroyed]};
  EXPECT_EQ(describe(content).str(), describe(expected).str());
  seen.water_mark = describe(*take<WaterMark>(GetWaterMarkInfo, label));
  seen.stamp = describe(*take<StampRecord>(GetStampInfo, label));
  seen.finger = describe(*take<Finger>(GetFingerPrintInfo, label));
}

inline void observe_lists(TqLabel label, Model& seen) {
  const std::uint32_t logs = counted(label, GetLogCout);
  for (std::uint32_t i = 0; i < logs; ++i) {
    const auto log = take<LogInfo>(GetLog, label, i);
    seen.logs.push_back({describe(*log), attributes_of(log->issuer)});
  }
  EXPECT_EQ(take<LogInfo>(GetLog, label, logs), nullptr);
  const std::uint32_t extensions = counted(label, GetExtendCount);
  for (std::uint32_t i = 0; i < extensions; ++i) {
    Extension& entry = seen.extensions.emplace_back();
    std::uint32_t length = 0;
    EXPECT_EQ(GetExtend(label, i, &entry.type, nullptr, &length), 0);
    entry.value.resize(length);
    EXPECT_EQ(GetExtend(label, i, &entry.type, entry.value.data(), &length), 0);
    const auto newest = std::ranges::find(seen.extensions, entry.type, &Extension::type);
    EXPECT_EQ(extension(label, entry.type), newest->value);
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
  ASSERT_FALSE(seen.signers.empty());
  char name[64] = "?";
  Signer& first = seen.signers[0];
  SignAttribute again{name, pointer(first.value), size32(first.value), pointer(first.cert),
                      size32(first.cert)};
  EXPECT_EQ(GetBodySignAttr(label, &again), 0);
  EXPECT_EQ(again.valueLen, first.value.size());
  EXPECT_EQ(again.certLen, first.cert.size());
  first.algorithm = name;
}

// The label through its getters; `expected` stands in for what no getter can reach.
inline Model observe(TqLabel label, const Model& expected) {
  Model seen;
  seen.version = text_of(get(label, widened<GLGetVersion>));
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

// Whom a search finds, and what it finds of him; by position, all but the last.
inline void check_envelopes(TqLabel label, Model& model) {
  const auto check_place = [&](auto have, auto& list, const Recipient& to) {
    void* previous = &model;
    const Issuer issuer(to.issuer);
    EXPECT_EQ(have(label, to.serial.data(), kHighBits | size32(to.serial), issuer.get(), &previous),
              1);
    EXPECT_EQ(previous == nullptr, Model::find(list, to) == list.begin());
  };
  auto& in_head = model.head_envelopes;
  for (const HeadEnvelope& each : in_head) {
    // A search changes the given issuer no more than it has to.
    HeadEnvelope found = *Model::find(in_head, each.to);
    found.to = each.to;
    EXPECT_EQ(from_head(label, each.to), found);
    check_place(HaveTheEnvelopeFromHEnv, in_head, each.to);
  }
  auto& in_body = model.body_envelopes;
  const std::uint32_t count = counted(label, GetDigitEnvlopeCountFromBody);
  ASSERT_EQ(count, in_body.size());
  for (std::uint32_t i = 0; i <= count; ++i) {
    Room room;
    const std::int32_t result =
        GetDigitEnvlope(label, static_cast<std::int32_t>(i), &room.envelope, &room.privilege);
    ASSERT_EQ(result, i + 1 < count ? 0 : -1);
    EXPECT_TRUE(result != 0 || room.taken() == in_body[i]);
  }
  for (const BodyEnvelope& each : in_body) {
    const Recipient& to = each.envelope.to;
    const BodyEnvelope& found = *Model::find(in_body, to);
    EXPECT_EQ(from_body(label, to), found);
    const Bytes subject = fetch([&](std::uint8_t* buffer, std::uint32_t* length) {
      return GetCertByIssuerAndSerial(label, to.serial.data(), kHighBits | size32(to.serial),
                                      Issuer(to.issuer).get(), buffer, length);
    });
    EXPECT_EQ(subject, found.privileges.data);
    check_place(HaveTheEnvelopeFromBEnv, in_body, to);
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
  EXPECT_EQ(listed(sizes_of(label)), listed(expected.sizes()));
  if (!expected.multi()) {
    expected.signers = {
        {expected.sign_algorithm, expected.bytes[kSignature], expected.bytes[kCertificate]}};
  } else if (expected.signers.empty()) {
    expected.signers.emplace_back();
  }
  // Only the first one's own algorithm can be asked for.
  for (std::size_t i = 1; i < expected.signers.size(); ++i) expected.signers[i].algorithm = "";
  EXPECT_EQ(describe(observe(label, expected)), describe(expected));
  check_envelopes(label, expected);
  check_dates(label, expected);
}

}  // namespace tq::abi

#endif
