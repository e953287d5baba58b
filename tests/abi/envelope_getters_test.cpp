// Envelopes of head and body as they are handed out, each into buffers of the caller.

#include "abi/records.h"

namespace tq::abi {
namespace {

TEST(EnvelopeGetters, HeadEnvelopesFollowTheirOwnRuleOfBuffers) {
  Label label;
  fill(label, "1.1");
  const HeadEnvelope stored{recipient(1), text("RSA"), pattern(40)};
  Room room(stored.to);
  EXPECT_EQ(GetEnvelopeFromHead(label, &room.envelope), -1) << "an empty list";
  ASSERT_EQ(add_to_head(label, stored), 0);
  for (const auto drop : {&EnvelopeInfo::alg, &EnvelopeInfo::key}) {
    EnvelopeInfo query = room.envelope;
    query.*drop = nullptr;
    query.algLen = 0;
    query.keyLen = 0;
    EXPECT_EQ(GetEnvelopeFromHead(label, &query), 0);
    EXPECT_EQ(query.keyLen, 40U);
    EXPECT_EQ(query.algLen, 4) << "the name and a terminator";
  }
  for (const auto& [alg, key] : {std::pair<std::uint8_t, std::uint32_t>{3, 39}, {2, 40}}) {
    room.envelope.algLen = alg;
    room.envelope.keyLen = key;
    EXPECT_EQ(GetEnvelopeFromHead(label, &room.envelope), -1);
    EXPECT_EQ(room.envelope.algLen, alg);
    EXPECT_EQ(room.envelope.keyLen, key);
    EXPECT_EQ(room.taken().envelope.alg, Bytes(alg, 0xEE));
    EXPECT_EQ(room.taken().envelope.key, Bytes(key, 0xEE));
  }
  room.envelope.algLen = 3;
  room.envelope.keyLen = 40;
  room.issuer.capacity = 1;  // the stored name has two attributes
  EXPECT_EQ(GetEnvelopeFromHead(label, &room.envelope), -1);
  room.issuer.capacity = 2;
  EXPECT_EQ(GetEnvelopeFromHead(label, &room.envelope), 0);
  EXPECT_EQ(room.taken().envelope, stored);
  EXPECT_EQ(room.envelope.alg[3], 0xEE);
  EXPECT_EQ(room.envelope.key[40], 0xEE);
}

// What does not fit is found out field by field: the fields before it are written already.
TEST(EnvelopeGetters, BodyEnvelopesAreHandedOutFieldByField) {
  Label label;
  fill(label, "1.1");
  const HeadEnvelope stored{recipient(5), text("RSA"), pattern(40)};  // an identifier of 9 octets
  Privileges rights;
  rights.pairs = {{1, 10}, {2, 20}, {3, 30}};
  ASSERT_EQ(add_to_body(label, {recipient(4)}), 0);
  ASSERT_EQ(add_to_body(label, stored, rights), 0);
  std::reverse(rights.pairs.begin(), rights.pairs.end());

  struct Case {
    const char* what;
    void (*shrink)(Room&);
    int written;  // fields before the one that does not fit
  };
  const Case cases[] = {
      {"name, against its identifier", [](Room& room) { room.envelope.algLen = 8; }, 0},
      {"key", [](Room& room) { room.envelope.keyLen = 39; }, 1},
      {"issuer", [](Room& room) { room.issuer.capacity = 1; }, 2},
      {"serial number", [](Room& room) { room.envelope.serialLen = 0; }, 3},
      {"privilege data", [](Room& room) { room.privilege.dataLen = 6; }, 4},
      {"no pair", [](Room& room) { room.privilege.entryCount = 0; }, 5},
      {"pairs", [](Room& room) { room.privilege.entryCount = 2; }, 6},
      {"nothing",
       [](Room& room) {
         room.envelope.algLen = 9;
         room.envelope.keyLen = 40;
         room.issuer.capacity = 2;
         room.privilege.dataLen = 7;
         room.privilege.entryCount = 3;
       },
       7},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    const int written = each.written;
    for (const bool by_position : {true, false}) {
      if (written == 3 && !by_position) continue;  // it is the key of the search
      Room room(stored.to);
      each.shrink(room);
      const std::uint32_t asked = room.privilege.entryCount;
      const std::int32_t result = by_position
                                      ? GetDigitEnvlope(label, 0, &room.envelope, &room.privilege)
                                      : GetEnvelopeFromBody(label, &room.envelope, &room.privilege);
      EXPECT_EQ(result, written == 7 ? 0 : -1);
      room.alg.resize(4);
      EXPECT_EQ(room.alg, written > 0 ? text("RSA\xEE") : Bytes(4, 0xEE));
      EXPECT_EQ(room.envelope.algLen, written > 0 ? 3 : 8);
      EXPECT_EQ(room.envelope.key[39], written > 1 ? pattern(40)[39] : 0xEE);
      EXPECT_EQ(room.privilege.data[6], written > 4 ? kSubject[6] : 0xEE);
      EXPECT_EQ(room.privilege.readCount, written > 4 ? 22U : 0U);
      EXPECT_EQ(room.privilege.entries[1].value, written > 5 ? 20 : 0xEEEEEEEE);
      EXPECT_EQ(room.privilege.entries[2].value, written > 6 ? 10 : 0xEEEEEEEE);
      EXPECT_TRUE(room.envelope.key[40] == 0xEE && room.privilege.data[7] == 0xEE);
      EXPECT_EQ(room.privilege.entryCount, asked);
      EXPECT_TRUE(written < 7 || room.taken() == (BodyEnvelope{stored, rights}));
    }
  }
}

TEST(EnvelopeGetters, ArrayThatIsMadeForPairsHoldsTwenty) {
  Label label;
  fill(label, "1.1");
  Privileges rights;
  for (std::uint16_t i = 21; i > 1; --i) rights.pairs.emplace_back(i, 1000U * i);
  for (const bool fits : {true, false}) {
    ASSERT_EQ(add_to_body(label, {recipient(1)}, rights), 0);
    Room room(recipient(1));
    room.privilege.entries = nullptr;
    room.privilege.entryCount = 3;  // of no array
    EXPECT_EQ(GetEnvelopeFromBody(label, &room.envelope, &room.privilege), fits ? 0 : -1);
    ASSERT_NE(room.privilege.entries, nullptr);
    EXPECT_EQ(room.privilege.entryCount, fits ? 20U : 3U);
    EXPECT_EQ(room.privilege.entries[19].value, fits ? 21000U : 20000U);
    Asn1Free(room.privilege.entries);
    rights.pairs.emplace_back(1, 1000);
  }
}

TEST(EnvelopeGetters, FirstFourBytesOfAPairAreStoredWhole) {
  Label label;
  fill(label, "1.1");
  HeadEnvelope envelope{recipient(1)};
  Privileges privileges{kSubject, {}, {{0x4321, 9}}};
  Issuer issuer(envelope.to.issuer);
  std::vector<PrivilegeEntry> entries;
  const EnvelopeInfo info = view(envelope, issuer);
  const PrivilegeInfo rights = view(privileges, entries);
  const std::uint8_t word[] = {0x21, 0x43, 0x65, 0x07};
  std::memcpy(entries.data(), word, sizeof word);
  ASSERT_EQ(ADDigitEnvlopeToBody(label, &info, &rights), 0);
  EXPECT_EQ(from_body(label, envelope.to).value().privileges, privileges);
  Element tree = parse(encode(label));
  const Element& record = body_list(tree, "1.1").children[0].children[0].children[1];
  EXPECT_EQ(record.children.at(9).der(), hex("30 0D 31 0B 30 09  02 04 07 65 43 21  02 01 09"));
}

TEST(EnvelopeGetters, EnvelopeOfAnUnknownAlgorithmIsNotHandedOut) {
  Label label;
  fill(label, "1.1");
  for (const std::uint8_t serial : Bytes{1, 2}) {
    ASSERT_EQ(add_to_head(label, {recipient(serial)}), 0);
    ASSERT_EQ(add_to_body(label, {recipient(serial)}), 0);
  }
  Element tree = parse(encode(label));
  head_list(tree, "1.1").children[0].children[0].children[2].content = hex("2A 03");
  body_list(tree, "1.1").children[0].children[0].children[0].children[2].content = hex("2A 03");
  const Label decoded = decode(tree.der());
  ASSERT_TRUE(decoded);
  EXPECT_FALSE(from_head(decoded, recipient(2)));
  EXPECT_FALSE(from_body(decoded, recipient(2)));
  Room room(recipient(2));
  room.envelope.alg = nullptr;
  EXPECT_EQ(GetEnvelopeFromHead(decoded, &room.envelope), -1) << "nor its size";
  EXPECT_TRUE(from_head(decoded, recipient(1)));
  EXPECT_EQ(encode(decoded), tree.der());
}

}  // namespace
}  // namespace tq::abi
