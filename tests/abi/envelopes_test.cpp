// Envelopes that a sequence of random calls does not meet: of other versions and other algorithms.

#include "abi/model.h"

namespace tq::abi {
namespace {

// An identity-based key is kept in a flat form, and written as a structure.
TEST(Envelopes, HaveIdentityBasedKeysAndEmptyOnes) {
  const Bytes flat = hex("01020304  02000000 6162  03000000 0A0B0C  01 EE  02 11121314");
  for (const char* version : kFamily) {
    const HeadEnvelope cases[] = {{recipient(1), text("IBCCS-1"), flat},
                                  {{{}, recipient(1).issuer}, text("RSA"), {}},
                                  {{pattern(255), recipient(1).issuer}}};
    Label label;
    fill(label, version);
    for (const HeadEnvelope& each : cases) {
      ASSERT_EQ(add_to_head(label, each) | add_to_body(label, each), 0);
    }
    const Label decoded = decode(encode(label));
    for (const HeadEnvelope& each : cases) {
      EXPECT_EQ(from_head(decoded, each.to), each);
      EXPECT_EQ(from_body(decoded, each.to), (BodyEnvelope{each, {}}));
    }
  }
}

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
  const std::uint8_t* const serial = envelope.to.serial.data();
  const Issuer issuer(envelope.to.issuer);
  for (const TqLabel each : {TqLabel{decoded}, TqLabel{plain}, TqLabel{bare}, TqLabel{unknown}}) {
    EXPECT_EQ(add_to_head(each, envelope), -1);
    EXPECT_EQ(add_to_body(each, envelope), -1);
    void* previous = nullptr;
    EXPECT_EQ(HaveTheEnvelopeFromHEnv(each, serial, 1, issuer.get(), &previous), -1);
    EXPECT_EQ(HaveTheEnvelopeFromBEnv(each, serial, 1, issuer.get(), &previous), -1);
    EXPECT_EQ(DelPrivilegeFromLabel(each, serial, 1, issuer.get()), -1);
    EXPECT_EQ(SetAlreadyReadCountsToLabel(each, serial, 1, issuer.get(), 9), -1);
    EXPECT_FALSE(from_head(each, envelope.to));
    Room room(envelope.to);
    EXPECT_EQ(GetEnvelopeFromBody(each, &room.envelope, &room.privilege), each == decoded ? -1 : 1);
    std::uint32_t length = 77;
    EXPECT_EQ(GetCertByIssuerAndSerial(each, serial, 1, issuer.get(), nullptr, &length), -1);
    EXPECT_EQ(length, 77U);
    EXPECT_EQ(counted(each, GetDigitEnvlopeCountFromBody), each == decoded ? 3U : 0U);
  }
  EXPECT_EQ(encode(decoded), before);
  EXPECT_EQ(sizes_of(decoded).headEnvelopeSize, 3U * 8) << "for an empty name";
  EXPECT_EQ(sizes_of(decoded).bodyEnvelopeSize, 3U * (154 + 4 + 7 + 28 + 7 + 4) + 8);

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
