// Envelopes of head and body as they are handed out, each into buffers of the caller.

#include "abi/records.h"

namespace tq::abi {
namespace {

class EnvelopeGetters : public testing::TestWithParam<const char*> {};

TEST_P(EnvelopeGetters, HeadEnvelopesFollowTheirOwnRuleOfBuffers) {
  Label label;
  fill(label, GetParam());
  const HeadEnvelope stored{recipient(1), text("RSA"), pattern(40)};
  Room room(stored.to);
  EXPECT_EQ(GetEnvelopeFromHead(label, &room.envelope), -1) << "an empty list";
  ASSERT_EQ(add_to_head(label, stored), 0);
  EXPECT_EQ(GetEnvelopeFromHead(nullptr, &room.envelope), -1);
  EXPECT_EQ(GetEnvelopeFromHead(label, nullptr), -1);
  EXPECT_FALSE(from_head(label, recipient(2)));
  EXPECT_FALSE(from_head(label, recipient(1, "other")));

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

  room.issuer.count = 1;  // a narrower issuer finds it too, and is left as it is
  EXPECT_EQ(GetEnvelopeFromHead(label, &room.envelope), 0);
  EXPECT_EQ(room.issuer.count, 1U);
}

// What does not fit is found out field by field: the fields before it are written already.
TEST_P(EnvelopeGetters, BodyEnvelopesAreHandedOutFieldByField) {
  Label label;
  fill(label, GetParam());
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
      {"nothing", [](Room&) {}, 7},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    for (const bool by_position : {true, false}) {
      if (each.written == 3 && !by_position) continue;  // it is the key of the search
      Room room(stored.to);
      each.shrink(room);
      const PrivilegeInfo asked = room.privilege;
      const std::int32_t result = by_position
                                      ? GetDigitEnvlope(label, 0, &room.envelope, &room.privilege)
                                      : GetEnvelopeFromBody(label, &room.envelope, &room.privilege);
      EXPECT_EQ(result, each.written == 7 ? 0 : -1);
      const auto first = [](const std::uint8_t* bytes, std::size_t n) {
        return Bytes(bytes, bytes + n);
      };
      EXPECT_EQ(first(room.envelope.alg, 4), each.written > 0 ? text("RSA\xEE") : Bytes(4, 0xEE));
      EXPECT_EQ(room.envelope.algLen, each.written > 0 ? 3 : 8);
      EXPECT_EQ(first(room.envelope.key, 41),
                each.written > 1 ? join(pattern(40), {0xEE}) : Bytes(41, 0xEE));
      EXPECT_EQ(first(room.privilege.data, 8),
                each.written > 4 ? join(kSubject, {0xEE}) : Bytes(8, 0xEE));
      EXPECT_EQ(room.privilege.readCount, each.written > 4 ? 22U : 0U);
      EXPECT_EQ(room.privilege.flag3, each.written > 4 ? 1 : 0);
      EXPECT_EQ(room.privilege.entries[1].value, each.written > 5 ? 20 : 0xEEEEEEEE);
      EXPECT_EQ(room.privilege.entries[2].value, each.written > 6 ? 10 : 0xEEEEEEEE);
      if (each.written < 7) {
        EXPECT_EQ(room.privilege.entryCount, asked.entryCount);
      } else {
        EXPECT_EQ(room.taken(), (BodyEnvelope{stored, rights}));
      }
    }
  }
  Room exact(stored.to);
  exact.envelope.algLen = 9;
  exact.envelope.keyLen = 40;
  exact.issuer.capacity = 2;
  exact.privilege.dataLen = 7;
  exact.privilege.entryCount = 3;
  EXPECT_EQ(GetEnvelopeFromBody(label, &exact.envelope, &exact.privilege), 0);
  EXPECT_EQ(exact.taken(), (BodyEnvelope{stored, rights}));
}

TEST_P(EnvelopeGetters, ArrayThatIsMadeForPairsHoldsTwenty) {
  for (const std::uint16_t stored : std::vector<std::uint16_t>{0, 1, 20, 21}) {
    SCOPED_TRACE(stored);
    Label label;
    fill(label, GetParam());
    Privileges rights;
    for (std::uint16_t i = stored; i > 0; --i) rights.pairs.emplace_back(i, 1000U * i);
    ASSERT_EQ(add_to_body(label, {recipient(1)}, rights), 0);
    Room room(recipient(1));
    room.privilege.entries = nullptr;
    room.privilege.entryCount = 3;  // of no array
    EXPECT_EQ(GetEnvelopeFromBody(label, &room.envelope, &room.privilege), stored > 20 ? -1 : 0);
    ASSERT_NE(room.privilege.entries, nullptr);
    const std::uint32_t copied = std::min<std::uint32_t>(stored, 20);
    if (stored <= 20) {
      EXPECT_EQ(room.privilege.entryCount, copied);
    }
    for (std::uint32_t i = 0; i < copied; ++i) {
      EXPECT_EQ(room.privilege.entries[i].type, i + 1);
      EXPECT_EQ(room.privilege.entries[i].value, 1000 * (i + 1));
    }
    room.privilege.entries[19] = {1, 1};  // there is room for it
    Asn1Free(room.privilege.entries);
  }
}

TEST_P(EnvelopeGetters, FirstFourBytesOfAPairAreStoredWhole) {
  Label label;
  fill(label, GetParam());
  HeadEnvelope envelope{recipient(1)};
  Privileges privileges{kSubject, {}, {}, {{0x4321, 9}}};
  Issuer issuer(envelope.to.issuer);
  std::vector<PrivilegeEntry> entries;
  const EnvelopeInfo info = view(envelope, issuer);
  const PrivilegeInfo rights = view(privileges, entries);
  const std::uint8_t word[] = {0x21, 0x43, 0x65, 0x07};
  std::memcpy(entries.data(), word, sizeof word);
  ASSERT_EQ(ADDigitEnvlopeToBody(label, &info, &rights), 0);
  EXPECT_EQ(from_body(label, envelope.to).value().privileges, privileges);
  Element tree = parse(encode(label));
  const Element& record = body_list(tree, GetParam()).children[0].children[0].children[1];
  EXPECT_EQ(record.children.at(9).der(), hex("30 0D 31 0B 30 09  02 04 07 65 43 21  02 01 09"));
}

TEST_P(EnvelopeGetters, EnvelopeOfAnUnknownAlgorithmIsNotHandedOut) {
  Label label;
  fill(label, GetParam());
  for (const std::uint8_t serial : Bytes{1, 2}) {
    ASSERT_EQ(add_to_head(label, {recipient(serial)}), 0);
    ASSERT_EQ(add_to_body(label, {recipient(serial)}), 0);
  }
  Element tree = parse(encode(label));
  head_list(tree, GetParam()).children[0].children[0].children[2].content = hex("2A 03");
  body_list(tree, GetParam()).children[0].children[0].children[0].children[2].content =
      hex("2A 03");
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

INSTANTIATE_TEST_SUITE_P(Each, EnvelopeGetters, testing::ValuesIn(kFamily), [](const auto& each) {
  std::string name = each.param;
  std::erase(name, '.');
  return name;
});

}  // namespace
}  // namespace tq::abi
