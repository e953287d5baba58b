// Re-keying: the enumerator over the body's envelopes that fills the head's list anew.

#include "abi/records.h"

namespace tq::abi {
namespace {

struct Enumerator {
  explicit Enumerator(TqLabel label) { EXPECT_EQ(CreatEmurateDigitEnvolop(&it, label), 0); }
  Enumerator(const Enumerator&) = delete;
  Enumerator& operator=(const Enumerator&) = delete;
  ~Enumerator() { EXPECT_EQ(DestroyEmura(it), 0); }
  DigitEnvolopEnum* it = nullptr;
};

Bytes subject_of(std::uint8_t number) { return tlv(0x30, Bytes{0x04, 1, number}); }
const Bytes kHeadKey = pattern(11, 1);
const Bytes kBodyKey = pattern(101, 2);

Bytes current(DigitEnvolopEnum* it) {
  return fetch([&](std::uint8_t* buffer, std::uint32_t* length) {
    return GetCurrentDigitEnvolop(it, buffer, length);
  });
}
std::int32_t rekey(DigitEnvolopEnum* it) {
  return SetCurrentEmuEnvolop(it, kHeadKey.data(), 11, kBodyKey.data(), 101);
}

// Two of them, each with a subject of his own.
Label with_recipients(const char* version) {
  Label label;
  fill(label, version);
  for (const std::uint8_t i : Bytes{1, 2}) {
    EXPECT_EQ(add_to_body(label, {recipient(i), text("AES.256.CBC")}, {subject_of(i), {}, {}}), 0);
    EXPECT_EQ(add_to_head(label, {recipient(i)}), 0);
  }
  return label;
}

TEST(Rekeying, TakesARecipientWithoutASerialNumber) {
  Label label;
  fill(label, "1.1");
  const Recipient to{{}, recipient(1).issuer};
  ASSERT_EQ(add_to_body(label, {to}), 0);
  const Label decoded = decode(encode(label));
  for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
    const Enumerator envelopes(each);
    EXPECT_EQ(rekey(envelopes.it), 0);
    EXPECT_EQ(from_head(each, to), (HeadEnvelope{to, text("SM2"), kHeadKey}));
  }
}

TEST(Rekeying, NeedsEnvelopesAndKeys) {
  DigitEnvolopEnum* none = nullptr;
  for (const char* version : kVersions) {
    Label empty;
    fill(empty, version);
    const bool in_head = !is_60(version) && add_to_head(empty, {recipient(1)}) == 0;
    EXPECT_EQ(CreatEmurateDigitEnvolop(&none, empty), -1);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(from_head(empty, recipient(1)).has_value(), in_head) << "the head is unchanged";
  }
  const Label label = with_recipients("1.1.2");
  const Enumerator envelopes(label);
  const Bytes key = pattern(3);
  EXPECT_EQ(SetCurrentEmuEnvolop(envelopes.it, nullptr, 5, key.data(), 3), -1);
  EXPECT_EQ(current(envelopes.it), subject_of(1)) << "a failure does not go on";
  EXPECT_EQ(SetCurrentEmuEnvolop(envelopes.it, nullptr, 0, key.data(), 0), 0) << "empty keys";
  EXPECT_EQ(from_head(label, recipient(1)).value().key, Bytes{});
  EXPECT_EQ(from_body(label, recipient(1)).value().envelope.key, Bytes{});
}

TEST(Rekeying, ReadsButDoesNotRekeyWhatTheHeadWouldNotTake) {
  Label old = decode(label_60_with_envelopes(2));
  Element tree = parse(encode(with_recipients("1.1")));
  body_list(tree, "1.1").children[0].children[1].children[0].children[2].content = hex("2A 03");
  Label foreign = decode(tree.der());  // nobody knows the algorithm of its oldest envelope
  for (const TqLabel label : {TqLabel{old}, TqLabel{foreign}}) {
    ASSERT_NE(label, nullptr);
    const char* version = label == old ? "6.0" : "1.1";
    const Enumerator envelopes(label);
    for (int tries = 0; tries < 2; ++tries) {
      EXPECT_EQ(current(envelopes.it), label == old ? kSubject : subject_of(1));
      EXPECT_EQ(rekey(envelopes.it), -1);
      EXPECT_EQ(HaveNextDigitEnvolop(envelopes.it), 0);
      Element after = parse(encode(label));
      EXPECT_EQ(head_list(after, version).tag, 0x05);
      const Element& oldest = body_list(after, version).children[0].children[0].children[0];
      EXPECT_EQ(oldest.children.back().content, kBodyKey) << "the body has its key already";
    }
  }
}

}  // namespace
}  // namespace tq::abi
