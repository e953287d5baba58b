// Envelopes of head and body: adding, finding and replacing.

#include "abi/records.h"

namespace tq::abi {
namespace {

std::int32_t find(TqLabel label, bool body, Recipient to, void** previous) {
  const Issuer issuer(to.issuer);
  const auto how = body ? HaveTheEnvelopeFromBEnv : HaveTheEnvelopeFromHEnv;
  return how(label, pointer(to.serial), kHighBits | size32(to.serial), issuer.get(), previous);
}
std::int32_t find(TqLabel label, bool body, const Recipient& to) {
  void* previous = nullptr;
  return find(label, body, to, &previous);
}

std::int32_t add(TqLabel label, bool body, const HeadEnvelope& envelope) {
  return body ? add_to_body(label, envelope) : add_to_head(label, envelope);
}
std::vector<Bytes> serials(TqLabel label, bool body, const char* version) {
  return body ? body_serials(label, version) : head_serials(label, version);
}

// The flat form of an identity-based key.
const Bytes kIdentityKey = hex("01020304  02000000 6162  03000000 0A0B0C  01 EE  02 11121314");

class EachFamilyVersion : public testing::TestWithParam<const char*> {};

TEST_P(EachFamilyVersion, EnvelopesComeBackAsTheyWereAdded) {
  const Recipient one_name{{1}, {{kCommonName, 22, text("x")}}};
  Recipient ten_names{{2}, {}};
  for (std::size_t i = 0; i < 10; ++i)
    ten_names.issuer.push_back({kCommonName, 19, pattern(128, i)});
  const std::tuple<HeadEnvelope, const char*> cases[] = {
      {{one_name}, "SM2"},
      {{ten_names, text("AES.256.CBC")}, "AES"},
      {{{pattern(255), one_name.issuer}, text("RSA"), pattern(300)}, "RSA"},
      {{{{}, one_name.issuer}, text("rsa"), {}}, "RSA"},
      {{recipient(3), text("IBCCS-1"), kIdentityKey}, "IBCCS-1"},
  };
  const Privileges rights{kSubject, {0, 1, 1, 1}, {1, UINT32_MAX, 3, 4}, {{1, 2}, {65535, 4}}};
  const Privileges reversed{kSubject, {0, 1, 1, 1}, {1, UINT32_MAX, 3, 4}, {{65535, 4}, {1, 2}}};
  Label label;
  fill(label, GetParam());
  for (const auto& [envelope, name] : cases) {
    ASSERT_EQ(add_to_head(label, envelope), 0);
    ASSERT_EQ(add_to_body(label, envelope, rights), 0);
  }
  const Label decoded = decode(encode(label));
  ASSERT_TRUE(decoded);
  for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
    EXPECT_EQ(counted(each, GetDigitEnvlopeCountFromBody), std::size(cases));
    for (const auto& [envelope, name] : cases) {
      SCOPED_TRACE(name);
      HeadEnvelope expected = envelope;
      expected.alg = text(name);
      EXPECT_EQ(from_head(each, envelope.to), expected);
      EXPECT_EQ(from_body(each, envelope.to), (BodyEnvelope{expected, reversed}));
    }
  }
}

TEST_P(EachFamilyVersion, ListsAreNewestFirstAndAReplacementMovesToTheFront) {
  for (const bool body : {false, true}) {
    Label label;
    fill(label, GetParam());
    void* const untouched = &label;
    void* previous = untouched;
    EXPECT_EQ(find(label, body, recipient(1), &previous), 0);
    EXPECT_EQ(previous, untouched);
    for (const std::uint8_t serial : Bytes{1, 2, 3}) {
      ASSERT_EQ(add(label, body, {recipient(serial)}), 0);
    }
    EXPECT_EQ(serials(label, body, GetParam()), (std::vector<Bytes>{{3}, {2}, {1}}));
    void* before[4] = {};
    for (const std::uint8_t serial : Bytes{1, 2, 3}) {
      EXPECT_EQ(find(label, body, recipient(serial), &before[serial]), 1);
    }
    EXPECT_EQ(before[3], nullptr);
    EXPECT_NE(before[2], nullptr);
    EXPECT_NE(before[1], nullptr);
    EXPECT_NE(before[1], before[2]);

    // The middle one, the first one and the last one of the list.
    const std::vector<Bytes> orders[] = {{{2}, {3}, {1}}, {{2}, {3}, {1}}, {{1}, {2}, {3}}};
    std::uint8_t key = 100;
    for (const std::vector<Bytes>& order : orders) {
      const HeadEnvelope replacement{recipient(order[0][0]), text("RSA"), {key++}};
      ASSERT_EQ(add(label, body, replacement), 0);
      EXPECT_EQ(serials(label, body, GetParam()), order);
      EXPECT_EQ(find(label, body, replacement.to, &previous), 1);
      EXPECT_EQ(previous, nullptr);
      EXPECT_EQ(body ? from_body(label, replacement.to).value().envelope
                     : from_head(label, replacement.to).value(),
                replacement);
    }
    previous = untouched;
    EXPECT_EQ(find(label, body, recipient(9), &previous), 0);
    EXPECT_EQ(previous, untouched);
    EXPECT_EQ(find(label, !body, recipient(1)), 0) << "the lists are two";
  }
}

TEST_P(EachFamilyVersion, RecipientsAreSerialAndIssuerTogether) {
  const std::vector<Issuer::Attribute> narrow = {{kCommonName, 19, text("CA")}};
  for (const bool body : {false, true}) {
    Label label;
    fill(label, GetParam());
    ASSERT_EQ(add(label, body, {recipient(1, "A")}), 0);
    ASSERT_EQ(add(label, body, {recipient(1, "B")}), 0);
    ASSERT_EQ(add(label, body, {{{}, recipient(0, "A").issuer}}), 0);
    EXPECT_EQ(serials(label, body, GetParam()).size(), 3U);
    EXPECT_EQ(find(label, body, recipient(1, "C")), 0);
    EXPECT_EQ(find(label, body, {{0, 1}, recipient(1, "A").issuer}), 0);
    EXPECT_EQ(find(label, body, {{}, recipient(1, "A").issuer}), 1);
    EXPECT_EQ(find(label, body, {{}, recipient(1, "B").issuer}), 0);
    // An issuer of fewer attributes matches; an empty one matches all. The first match counts.
    void* previous = &label;
    EXPECT_EQ(find(label, body, {{1}, {}}, &previous), 1);
    EXPECT_NE(previous, nullptr);
    EXPECT_EQ(find(label, body, {{1}, {{kCountry, 19, text("CN")}}}), 1);
    EXPECT_EQ(find(label, body, {{1}, {{kCountry, 19, text("C")}}}), 0);

    // So a narrow issuer replaces a wide one, but not the other way round.
    ASSERT_EQ(add(label, body, {{{2}, narrow}}), 0);
    ASSERT_EQ(add(label, body, {recipient(2)}), 0);
    EXPECT_EQ(serials(label, body, GetParam()).size(), 5U);
    ASSERT_EQ(add(label, body, {{{2}, narrow}}), 0);
    EXPECT_EQ(serials(label, body, GetParam()).size(), 5U) << "the wide one went";
    EXPECT_EQ(find(label, body, recipient(2)), 0);
  }
}

TEST_P(EachFamilyVersion, FailedReplacementsLoseTheEarlierEnvelope) {
  const HeadEnvelope good{recipient(7)};
  HeadEnvelope unknown = good;
  unknown.alg = text("ROT13");
  HeadEnvelope too_long = good;
  too_long.alg = Bytes(32, 'A');
  HeadEnvelope nobody = good;
  nobody.to.issuer.clear();
  HeadEnvelope too_many = good;
  too_many.to.issuer.assign(11, {kCommonName, 19, text("CA")});  // each attribute of them occurs
  for (const bool body : {false, true}) {
    for (const HeadEnvelope& bad : {unknown, too_long, nobody, too_many}) {
      Label label;
      fill(label, GetParam());
      EXPECT_EQ(add(label, body, bad), -1) << "with nothing to replace";
      ASSERT_EQ(add(label, body, {recipient(6)}), 0);
      ASSERT_EQ(add(label, body, good), 0);
      ASSERT_EQ(add(label, body, {recipient(8)}), 0);
      EXPECT_EQ(add(label, body, bad), -1);
      EXPECT_EQ(serials(label, body, GetParam()), (std::vector<Bytes>{{8}, {6}}));
    }
  }
}

TEST_P(EachFamilyVersion, NullPointersFailAndChangeNothing) {
  Label label;
  fill(label, GetParam());
  HeadEnvelope envelope{recipient(1)};
  Privileges privileges{kSubject, {}, {}, {{1, 2}}};
  ASSERT_EQ(add_to_head(label, envelope), 0);
  ASSERT_EQ(add_to_body(label, envelope, privileges), 0);
  const Bytes before = encode(label);
  Issuer issuer(envelope.to.issuer);
  std::vector<PrivilegeEntry> entries;
  const EnvelopeInfo info = view(envelope, issuer);
  const PrivilegeInfo rights = view(privileges, entries);
  EXPECT_EQ(AddEnvelopeToHead(nullptr, &info), -1);
  EXPECT_EQ(AddEnvelopeToHead(label, nullptr), -1);
  EXPECT_EQ(ADDigitEnvlopeToBody(nullptr, &info, &rights), -1);
  EXPECT_EQ(ADDigitEnvlopeToBody(label, nullptr, &rights), -1);
  EXPECT_EQ(ADDigitEnvlopeToBody(label, &info, nullptr), -1);
  void* previous = &label;
  for (const auto how : {HaveTheEnvelopeFromHEnv, HaveTheEnvelopeFromBEnv}) {
    EXPECT_EQ(how(nullptr, info.serial, 1, info.issuer, &previous), -1);
    EXPECT_EQ(how(label, nullptr, 1, info.issuer, &previous), -1);
    EXPECT_EQ(how(label, nullptr, 0, info.issuer, &previous), -1);
    EXPECT_EQ(how(label, info.serial, 1, nullptr, &previous), -1);
    EXPECT_EQ(how(label, info.serial, 1, info.issuer, nullptr), -1);
  }
  EXPECT_EQ(previous, &label);
  const auto without = [&](auto member) {
    EnvelopeInfo lacking = info;
    lacking.*member = nullptr;
    EXPECT_EQ(AddEnvelopeToHead(label, &lacking), -1);
    EXPECT_EQ(ADDigitEnvlopeToBody(label, &lacking, &rights), -1);
  };
  without(&EnvelopeInfo::serial);
  without(&EnvelopeInfo::issuer);
  EnvelopeInfo keyless = info;
  keyless.key = nullptr;
  EXPECT_EQ(ADDigitEnvlopeToBody(label, &keyless, &rights), -1);
  keyless.keyLen = 0;
  EXPECT_EQ(ADDigitEnvlopeToBody(label, &keyless, &rights), -1);
  EXPECT_EQ(encode(label), before);

  // These are seen when the earlier envelope is gone already.
  PrivilegeInfo bare = rights;
  bare.entries = nullptr;
  EXPECT_EQ(ADDigitEnvlopeToBody(label, &info, &bare), -1);
  EXPECT_TRUE(body_serials(label, GetParam()).empty());
  bare.entryCount = 0;
  bare.data = nullptr;
  EXPECT_EQ(ADDigitEnvlopeToBody(label, &info, &bare), -1);
  bare.dataLen = 0;
  EXPECT_EQ(ADDigitEnvlopeToBody(label, &info, &bare), 0) << "no array, no count";
  EnvelopeInfo nameless = info;
  nameless.alg = nullptr;
  EXPECT_EQ(AddEnvelopeToHead(label, &nameless), -1);
  EXPECT_EQ(ADDigitEnvlopeToBody(label, &nameless, &rights), -1);
  keyless.keyLen = 5;
  EXPECT_EQ(AddEnvelopeToHead(label, &keyless), -1);
  keyless.keyLen = 0;
  EXPECT_EQ(AddEnvelopeToHead(label, &keyless), 0) << "no key at all is one";
  EXPECT_EQ(from_head(label, envelope.to).value().key, Bytes{});
}

INSTANTIATE_TEST_SUITE_P(Each, EachFamilyVersion, testing::ValuesIn(kFamily), [](const auto& each) {
  std::string name = each.param;
  std::erase(name, '.');
  return name;
});

TEST(Envelopes, AreNeitherTakenNorFoundOutsideThe11Family) {
  Label decoded = decode(label_60_with_envelopes(3));
  ASSERT_TRUE(decoded);
  Label plain;
  fill(plain, "6.0");
  const Label bare;
  Label unknown;
  set(unknown, GLSetVersion, text("7.0"));
  const Bytes before = encode(decoded);
  const HeadEnvelope envelope{recipient(1)};
  const Issuer issuer(envelope.to.issuer);
  for (const TqLabel each : {TqLabel{decoded}, TqLabel{plain}, TqLabel{bare}, TqLabel{unknown}}) {
    EXPECT_EQ(add_to_head(each, envelope), -1);
    EXPECT_EQ(add_to_body(each, envelope), -1);
    EXPECT_EQ(find(each, false, envelope.to), -1);
    EXPECT_EQ(find(each, true, envelope.to), -1);
    EXPECT_FALSE(from_head(each, envelope.to));
    Room room(envelope.to);
    EXPECT_EQ(GetEnvelopeFromBody(each, &room.envelope, &room.privilege), each == decoded ? -1 : 1);
    std::uint32_t length = 77;
    EXPECT_EQ(GetCertByIssuerAndSerial(each, envelope.to.serial.data(), 1, issuer.get(), nullptr,
                                       &length),
              -1);
    EXPECT_EQ(
        GetCertByIssuerAndSerial(each, envelope.to.serial.data(), 1, nullptr, nullptr, &length), 0);
    EXPECT_EQ(length, 77U);
    EXPECT_EQ(counted(each, GetDigitEnvlopeCountFromBody), each == decoded ? 3U : 0U);
  }
  EXPECT_EQ(encode(decoded), before);

  // By position they are handed out, with the algorithm as it is stored and without an issuer.
  Room room;
  room.envelope.algLen = 2;
  EXPECT_EQ(GetDigitEnvlope(decoded, 1, &room.envelope, &room.privilege), -1);
  room.envelope.algLen = 3;
  room.envelope.issuer = nullptr;
  EXPECT_EQ(GetDigitEnvlope(decoded, 1, &room.envelope, &room.privilege), 0);
  EXPECT_EQ(room.envelope.issuer, nullptr);
  EXPECT_EQ(room.taken(), (BodyEnvelope{{{{2}, {}}, text("sm2"), pattern(16, 2)}, {}}));
  EXPECT_EQ(GetDigitEnvlope(decoded, 2, &room.envelope, &room.privilege), -1);
}

}  // namespace
}  // namespace tq::abi
