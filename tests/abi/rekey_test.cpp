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
Bytes head_key(std::uint8_t number) { return pattern(10U + number, number); }
Bytes body_key(std::uint8_t number) { return pattern(100U + number, number); }

Bytes current(DigitEnvolopEnum* it) {
  return fetch([&](std::uint8_t* buffer, std::uint32_t* length) {
    return GetCurrentDigitEnvolop(it, buffer, length);
  });
}
std::int32_t rekey(DigitEnvolopEnum* it, std::uint8_t number) {
  const Bytes of_head = head_key(number);
  const Bytes of_body = body_key(number);
  return SetCurrentEmuEnvolop(it, of_head.data(), size32(of_head), of_body.data(), size32(of_body));
}

Label with_recipients(const char* version, std::uint8_t count) {
  Label label;
  fill(label, version);
  for (std::uint8_t i = 1; i <= count; ++i) {
    Privileges rights;
    rights.data = subject_of(i);
    EXPECT_EQ(add_to_body(label, {recipient(i), text("AES.256.CBC")}, rights), 0);
    EXPECT_EQ(add_to_head(label, {recipient(static_cast<std::uint8_t>(i + 1))}), 0);
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
    EXPECT_EQ(rekey(envelopes.it, 1), 0);
    EXPECT_EQ(from_head(each, to), (HeadEnvelope{to, text("SM2"), head_key(1)}));
  }
}

TEST(Rekeying, NeedsEnvelopesAndItsPointers) {
  DigitEnvolopEnum* none = nullptr;
  for (const char* version : kVersions) {
    Label empty;
    fill(empty, version);
    const bool in_head = !is_60(version) && add_to_head(empty, {recipient(1)}) == 0;
    EXPECT_EQ(CreatEmurateDigitEnvolop(&none, empty), -1);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(head_serials(empty, version).size(), in_head ? 1U : 0U) << "the head is unchanged";
  }
  const Label label = with_recipients("1.1.2", 2);
  const Bytes before = encode(label);
  EXPECT_EQ(CreatEmurateDigitEnvolop(nullptr, label), -1);
  EXPECT_EQ(CreatEmurateDigitEnvolop(&none, nullptr), -1);
  EXPECT_EQ(encode(label), before);
  EXPECT_EQ(HaveNextDigitEnvolop(nullptr), -1);
  EXPECT_EQ(DestroyEmura(nullptr), 0);
  std::uint32_t length = 77;
  const Bytes key = pattern(3);
  EXPECT_EQ(GetCurrentDigitEnvolop(nullptr, nullptr, &length), -1);
  EXPECT_EQ(SetCurrentEmuEnvolop(nullptr, key.data(), 3, key.data(), 3), -1);

  const Enumerator envelopes(label);
  const Bytes reversed = encode(label);
  EXPECT_EQ(GetCurrentDigitEnvolop(envelopes.it, nullptr, nullptr), -1);
  EXPECT_EQ(SetCurrentEmuEnvolop(envelopes.it, key.data(), 3, nullptr, 3), -1);
  EXPECT_EQ(SetCurrentEmuEnvolop(envelopes.it, key.data(), 3, nullptr, 0), -1);
  EXPECT_EQ(encode(label), reversed);
  EXPECT_EQ(current(envelopes.it), subject_of(1));
  EXPECT_EQ(SetCurrentEmuEnvolop(envelopes.it, nullptr, 5, key.data(), 3), -1);
  EXPECT_EQ(current(envelopes.it), subject_of(1)) << "a failure does not go on";
  EXPECT_EQ(SetCurrentEmuEnvolop(envelopes.it, nullptr, 0, key.data(), 0), 0) << "empty keys";
  EXPECT_EQ(from_head(label, recipient(1)).value().key, Bytes{});
  EXPECT_EQ(from_body(label, recipient(1)).value().envelope.key, Bytes{});
}

TEST(Rekeying, ReadsButDoesNotRekeyWhatTheHeadWouldNotTake) {
  Label old = decode(label_60_with_envelopes(2));
  Element tree = parse(encode(with_recipients("1.1", 2)));
  body_list(tree, "1.1").children[0].children[1].children[0].children[2].content = hex("2A 03");
  Label foreign = decode(tree.der());  // nobody knows the algorithm of its oldest envelope
  for (const TqLabel label : {TqLabel{old}, TqLabel{foreign}}) {
    ASSERT_NE(label, nullptr);
    const char* version = label == old ? "6.0" : "1.1";
    const Enumerator envelopes(label);
    EXPECT_TRUE(head_serials(label, version).empty());
    for (int tries = 0; tries < 2; ++tries) {
      EXPECT_EQ(current(envelopes.it), label == old ? kSubject : subject_of(1));
      EXPECT_EQ(rekey(envelopes.it, 1), -1);
      EXPECT_EQ(HaveNextDigitEnvolop(envelopes.it), 0);
      Element after = parse(encode(label));
      EXPECT_EQ(head_list(after, version).tag, 0x05);
      const Element& oldest = body_list(after, version).children[0].children[0].children[0];
      EXPECT_EQ(oldest.children.back().content, body_key(1)) << "the body has its key already";
    }
  }
}

}  // namespace
}  // namespace tq::abi
