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

TEST(EncryptHead, KeepsADecodedModeUntilACipherIsSet) {
  Label label;
  fill(label, "1.1");
  Element tree = parse(encode(label));
  Element& header = tree.children[0].children[7];
  ASSERT_EQ(header.children[1].der(), hex("02 01 00"));
  header.children[1].content = {0x12, 0x34};
  header.children[2].content = {0x01, 0x08};
  const Label decoded = decode(tree.der());
  ASSERT_TRUE(decoded);
  std::uint8_t bits = 0;
  EXPECT_EQ(GetHeadFeedBackBits(decoded, &bits), 0);
  EXPECT_EQ(bits, 8) << "the low 8 bits";
  EXPECT_EQ(encode(decoded), tree.der());
  ASSERT_EQ(SetEncryptHead(decoded, text("AES.256.CBC").data(), 11, kHighBits | 8), 0);
  EXPECT_EQ(encode(decoded), encode(label));

  header.children[0].content = hex("2A 03");
  const Label foreign = decode(tree.der());
  std::uint8_t size = 9;
  EXPECT_EQ(GetEncryptHead(foreign, nullptr, &size, &bits), -1) << "no name for it";
  EXPECT_EQ(size, 9);
}

}  // namespace
}  // namespace tq::abi
