// Bytes as a label: whatever decodes is read through every getter, and written and read again, and
// must show the same.

#include <cstring>

#include "observe.h"

namespace tq::fuzz {
namespace {

const Bytes kSealed(200, '\x5A');

auto encoded_around(TqLabel label, decltype(&EncodeLabelEncrypted) encode, const Bytes& body) {
  return fetch([&](std::uint8_t* to, std::uint32_t* length) {
    return encode(label, u8(body), size32(body), to, length);
  });
}

// The head around an encrypted body, which `label` holds in the clear.
void check_sealed(TqLabel label, const Seen& seen, const Bytes& body, bool padded) {
  const auto encode = padded ? EncodeLabelPadEncrypted : EncodeLabelEncrypted;
  const auto der = encoded_around(label, encode, kSealed);
  require(der.has_value(), "a label that encodes encodes around an encrypted body");
  Bytes sealed(kSealed.size(), '\0');
  std::uint32_t length = size32(sealed);
  TqLabel slot = nullptr;
  require(DecodeLabelEncrypted(u8(*der), size32(*der), u8(sealed), &length, &slot) == 0,
          "what is sealed opens");
  const Label again(slot);
  require(sealed == kSealed, "an encrypted body is handed out as it is");
  require(SetLabelPadSize(slot, 5) == 0, "padding is set");
  require(encoded_around(slot, encode, sealed) == der, "a sealed label encodes to itself");
  require(DecodeLabelDecrypted(slot, u8(body), size32(body)) == 0, "a body is put back");
  require(get(slot, EncodeBodyPlaint) == body, "a body encodes to itself");
  require_same(observe(slot, der->size() + body.size()), seen, "a sealed label shows the same");
}

void check_plain(TqLabel label, const Seen& seen, const Bytes& der) {
  const Label again = decode(der);
  require(get(again.get(), EncodeLabel) == der, "a label encodes to itself");
  require_same(observe(again.get(), der.size()), seen, "a label shows the same");
  require(SetLabelPadSize(label, 5) == 0, "padding is set");
  const auto padded = get(label, EncodeLabelPad);
  std::uint32_t flag = 9;
  require(padded && HavePadded(u8(*padded), size32(*padded), &flag) == 0 && flag == 1, "is padded");
  require(get(decode(*padded).get(), EncodeLabel) == der, "padding changes nothing");
}

void check_written(TqLabel label, std::size_t size) {
  const Seen seen = observe(label, size);
  const auto der = get(label, EncodeLabel);
  const auto body = get(label, EncodeBodyPlaint);
  (void)get(label, GetSignatureMessage);
  if (!der) return;  // what decodes may name what does not encode
  check_plain(label, seen, *der);
  require(body.has_value(), "a label that encodes has a body that does");
  for (const bool padded : {false, true}) check_sealed(label, seen, *body, padded);
  require_same(observe(label, size), seen, "encoding changes nothing");
}

void check_rekeyed(TqLabel label) {
  DigitEnvolopEnum* envelopes = nullptr;
  if (CreatEmurateDigitEnvolop(&envelopes, label) != 0) return;
  const bool encodes = get(label, EncodeLabel).has_value();
  bool more = true;
  for (int i = 0; more && i < 40; ++i) {
    (void)fetch([&](std::uint8_t* to, std::uint32_t* length) {
      return GetCurrentDigitEnvolop(envelopes, to, length);
    });
    more = SetCurrentEmuEnvolop(envelopes, u8(kSealed), 70, u8(kSealed), 60) == 0 &&
           HaveNextDigitEnvolop(envelopes) == 0;
  }
  DestroyEmura(envelopes);
  const auto der = get(label, EncodeLabel);
  if (der && encodes) (void)decode(*der);
}

// What the head alone tells, against the decoded label when there is one.
void check_peeked(const std::uint8_t* data, std::uint32_t size, TqLabel label) {
  const auto length = static_cast<std::int32_t>(size);
  const std::int32_t encrypted = LabelBodyWeatherEnc(data, length);
  const auto algorithm = fetch([&](std::uint8_t* to, std::uint32_t* room) {
    return GetSignAlgName(data, length, to, room);
  });
  const auto custom = fetch([&](std::uint8_t* to, std::uint32_t* room) {
    return GetCustomAttr(data, length, to, reinterpret_cast<std::int32_t*>(room));
  });
  const auto text = std::make_unique<std::uint8_t[]>(128);
  const std::int32_t named = GetLable(data, size, text.get());
  PJCertIssuer nobody{};
  const std::uint8_t one = 1;
  std::uint32_t flag = 0;
  (void)HavePrivilege(data, length, &one, 1);
  const std::int32_t found = HavePrivilegeOfHead(data, length, &one, 1, &nobody);
  const std::int32_t elements = HavePadded(data, size, &flag);
  if (label == nullptr) return;
  require(elements == 0 && encrypted == LabelBodyNeedEnc(label), "the head tells what it needs");
  require(custom == get(label, GetCustom), "the head has the custom bytes");
  if (encrypted != 1) return;
  require(algorithm == get(label, GetHeadSignAlg), "the head has the algorithm");
  const auto full = get(label, wide<GetLabel>);
  require((named == 0) == (full && full->size() <= 128), "a text to 128 bytes is copied");
  if (named == 0) require(std::memcmp(text.get(), full->data(), full->size()) == 0, "as it is");
  void* previous = nullptr;
  const std::int32_t there = HaveTheEnvelopeFromHEnv(label, &one, 1, &nobody, &previous);
  require(found == (there == 1 ? 1 : 0), "the head has the recipient");
}

void check_label(const std::uint8_t* data, std::uint32_t size) {
  TqLabel slot = nullptr;
  const bool plain = DecodeLabel(data, size, &slot) == 0;
  const Label label(slot);
  check_peeked(data, size, slot);
  if (!plain) return;
  check_written(slot, size);
  check_rekeyed(slot);
}

void check_encrypted(const std::uint8_t* data, std::uint32_t size) {
  std::uint32_t length = 0;
  if (DecodeLabelEncrypted(data, size, nullptr, &length, nullptr) != 0) return;
  const auto body = std::make_unique<std::uint8_t[]>(length);
  TqLabel slot = nullptr;
  if (DecodeLabelEncrypted(data, size, body.get(), &length, &slot) != 0) return;
  const Label label(slot);
  check_peeked(data, size, slot);
  const Seen seen = observe(slot, size);
  const auto der = encoded_around(slot, EncodeLabelEncrypted, kSealed);
  if (!der) return;
  Bytes sealed(kSealed.size(), '\0');
  length = size32(sealed);
  require(DecodeLabelEncrypted(u8(*der), size32(*der), u8(sealed), &length, &slot) == 0, "opens");
  const Label again(slot);
  require_same(observe(slot, size), seen, "a head shows the same");
}

void check_body(const std::uint8_t* data, std::uint32_t size, const char* version) {
  const Label label = make_label(version);
  if (DecodeLabelDecrypted(label.get(), data, size) != 0) {
    if (size < 300) {
      require_same(observe(label.get(), size), observe(make_label(version).get(), size),
                   "a body that does not decode leaves none");
    }
    return;
  }
  const Seen seen = observe(label.get(), size);
  const auto body = get(label.get(), EncodeBodyPlaint);
  if (!body) return;
  const Label again = make_label(version);
  require(DecodeLabelDecrypted(again.get(), u8(*body), size32(*body)) == 0, "a body decodes");
  require(get(again.get(), EncodeBodyPlaint) == body, "a body encodes to itself");
  require_same(observe(again.get(), body->size()), seen, "a body shows the same");
}

void check_identifier(const std::uint8_t* data, std::uint32_t size) {
  char name[32] = {};
  std::uint8_t mode = 0;
  std::uint32_t bits = 0;
  if (SflOID2Alg(data, size, name, &mode, &bits) != -1) require(name[0] != '\0', "has a name");
  const auto oid = fetch([&](std::uint8_t* to, std::uint32_t* length) {
    return SflAlg2OID(data, size, 0, 0, to, length);
  });
  if (oid) require(SflOID2Alg(u8(*oid), size32(*oid), name, &mode, &bits) != -1, "is known");
}

}  // namespace
}  // namespace tq::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tq::fuzz;
  const auto length = static_cast<std::uint32_t>(size);
  check_label(data, length);
  check_encrypted(data, length);
  for (const char* const version : kVersions) check_body(data, length, version);
  check_identifier(data, length);
  return 0;
}
