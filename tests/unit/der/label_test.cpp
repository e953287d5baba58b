// Whole labels, heads and bodies.

#include <gtest/gtest.h>

#include <string>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

// A node that an encoder has made; null where it makes none.
template <class Encoder, class... Arguments>
Node made(Encoder encoder, Arguments... arguments) {
  ANYBUF* slot = nullptr;
  EXPECT_EQ(encoder(arguments..., &slot), 0);
  return Node(slot);
}

std::optional<Bytes> head_of_parts(TqLabelHandle* label, bool message) {
  const Node sign = made(message ? GetMSign : EncodeSign, label, &label->head.headSign);
  const Node envelopes = made(EncodeDigitEnvolop_F, label, label->head.encryptHead.envelopes);
  const Node encrypt_head =
      made(EncodeEncryptHead, label, &label->head.encryptHead, envelopes.get());
  return encoded(EncodeHead, label, &label->head, sign.get(), encrypt_head.get());
}

std::optional<Bytes> body_of_parts(TqLabelHandle* label) {
  Body& body = label->body;
  const Node envelopes = made(EncodeEncryptBody_F, label, body.bodyEnvelopes);
  const Node creator = made(EncodeBodyFileCreator, &body.fileCreator);
  const Node content = made(EncodeContentAtrr, &body.content);
  const Node extends = made(EncodeExtendAtrr_F, label, body.extends);
  const Node logs = made(EncodeLogAtrr_F, label, body.logs);
  const Node stamp = made(EncodeStampAttr, label, &body.stamp);
  const Node water_mark = made(EncodeWaterMarkInfo, label, &body.waterMark);
  const Node finger_print = made(EncodeFingerPrint, label, &body.fingerPrint);
  const BodyParts parts = {envelopes.get(), creator.get(), content.get(),    extends.get(),
                           logs.get(),      stamp.get(),   water_mark.get(), finger_print.get()};
  return encoded([&](ANYBUF** slot) { return EncodeBody(label, &body, parts, slot); });
}

// Heads, bodies and whole labels of every version, from their records and from ready parts.
TEST(Label, IsTheSameFromItsRecordsAndFromReadyParts) {
  for (const Version& version : kVersions) {
    for (std::uint32_t seed = 0; seed < 12; ++seed) {
      SCOPED_TRACE(std::string(version.text) + ", seed " + std::to_string(seed));
      RandomLabel random(version, seed);
      TqLabelHandle* const label = &random.label;
      Body& body = label->body;
      body.stamp.present = seed & 1;
      body.waterMark.present = seed >> 1 & 1;
      body.fingerPrint.present = seed >> 2 & 1;
      const Node head_node = made(EncodeHeadD, label);
      const Node body_node = made(EncodeBodyD, label);
      EXPECT_EQ(bytes_of(head_node.get()), head_of_parts(label, false));
      EXPECT_EQ(encoded(GetMHead, label), head_of_parts(label, true));
      EXPECT_EQ(bytes_of(body_node.get()), body_of_parts(label));
      const Bytes whole = concat(bytes_of(head_node.get()), bytes_of(body_node.get()));
      ASSERT_EQ(SetLabelPadSize(label, 300), 0);
      EXPECT_EQ(encoded(EncodeLabel_F, label, head_node.get(), body_node.get()), sequence(whole));
      EXPECT_EQ(encoded(EncodeLabelPad_F, label, head_node.get(), body_node.get(), &label->pad),
                sequence(whole, tlv(4, Bytes(300))));
      EXPECT_EQ(head_node->next, nullptr);  // unlinked again

      TqLabelHandle read{};
      ASSERT_TRUE(decodes(DecodeHead, bytes_of(head_node.get()), &read.head, &read));
      EXPECT_EQ(read.subVersion, version.sub_version);
      EXPECT_EQ(encoded(EncodeHeadD, &read), bytes_of(head_node.get()));
      ASSERT_TRUE(decodes(DecodeBody, bytes_of(body_node.get()), &read.body, &read));
      EXPECT_EQ(encoded(EncodeBodyD, &read), bytes_of(body_node.get()));
      FreeHead(&read.head);
      FreeBody(&read.body);
    }
  }
}

// A body without anything in it but what must be there, up to its tail.

const Bytes kMinimalSign = hex("30 09 30 02 04 00 06 00 03 01 00");
const Bytes kEpoch = tlv(0x18, text("19700101000000Z"));
const Bytes kMinimalContent =
    concat(sequence(hex("13 00 13 00"), kEpoch),
           sequence(hex("02 01 00 02 01 00 02 01 00 13 00 13 00"), kEpoch, kEpoch, kEpoch, kEpoch));
const Bytes kMinimalAlign = hex("30 09 02 01 00 02 01 00 02 01 00");

const Bytes kStamp1 =
    sequence(hex("13 01 31"),
             sequence(hex("13 00"), sequence(kEpoch, hex("13 00"), kEpoch, kEpoch, hex("13 00")),
                      hex("02 01 00 04 00 03 01 00")),
             sequence(hex("13 00 02 01 00 02 01 00 02 01 00 02 01 00 13 00"), kEpoch, hex("13 00")),
             hex("03 01 00"));
const Bytes kWaterMark1 = sequence(hex("04 01 31 04 00 30 06 02 01 00 02 01 00 13 00"), kEpoch);
const Bytes kWaterMark2 = sequence(hex("04 01 32 04 00 30 06 02 01 00 02 01 00 13 00"), kEpoch);
const Bytes kFingerPrint1 = hex("30 0D 30 09 04 00 04 00 04 00 02 01 01 05 00");

Bytes body_element(const Version& version, const Bytes& markings, const Bytes& tail) {
  const bool multi_sign = version.text == "1.1.2";
  return sequence(multi_sign ? sequence(kMinimalSign) : hex("03 01 00 30 00"), hex("05 00"),
                  markings, kMinimalContent, version.sub_version == 0 ? Bytes{} : kMinimalAlign,
                  tail);
}

struct ReadBody : Pinned {
  explicit ReadBody(const Version& version) : label(label_of(version)) {}
  ~ReadBody() { FreeBody(&label.body); }
  bool read(const Bytes& element) { return decodes(DecodeBody, element, &label.body, &label); }
  Body* operator->() { return &label.body; }

  TqLabelHandle label;
};

TEST(Body, HasTaggedMarkingsInAnyOrderInTheLastVersion) {
  // Stamp, watermark, another one and fingerprints, as given and as written: the last of a kind
  // counts.
  const Alphabet elements = {"smwf",
                             {tlv(0xA0, kStamp1), tlv(0xA1, kWaterMark1), tlv(0xA1, kWaterMark2),
                              tlv(0xA2, kFingerPrint1)}};
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", ""},       {"s", "s"},     {"m", "m"},     {"f", "f"},     {"smf", "smf"},
      {"sfm", "smf"}, {"msf", "smf"}, {"mfs", "smf"}, {"fsm", "smf"}, {"fms", "smf"},
      {"wsm", "sm"},  {"mssw", "sw"}, {"fwf", "wf"},
  };
  for (const auto& [given, kept] : cases) {
    const NoLeaks no_leaks;
    {
      ReadBody body(k112);
      ASSERT_TRUE(body.read(body_element(k112, elements.spell(given), {}))) << given;
      EXPECT_EQ(encoded(EncodeBodyD, &body.label), body_element(k112, elements.spell(kept), {}))
          << given;
    }
    EXPECT_TRUE(no_leaks.hold());
  }
}

const Bytes kMarkings = concat(kStamp1, kWaterMark1, kFingerPrint1);

TEST(Body, RefusesTagsThatHoldNoMarking) {
  // Nothing, another element, another marking, two; tags that none has, or no tag at all.
  const Bytes cases[] = {hex("A0 00"),
                         hex("A1 02 05 00"),
                         tlv(0xA0, kWaterMark1),
                         tlv(0xA1, concat(kWaterMark1, kWaterMark1)),
                         tlv(0xA3, kWaterMark1),
                         tlv(0x81, kWaterMark1),
                         kWaterMark1};
  for (const Bytes& bytes : cases) {
    ReadBody body(k112);
    EXPECT_FALSE(body.read(body_element(k112, bytes, {}))) << &bytes - cases;
  }
}

const Bytes kExtendList = hex("30 09 31 07 30 05 02 01 01 04 00");
const Bytes kLogEntry =
    sequence(hex("02 01 01 13 00 30 0B 31 09 30 07 06 03 55 04 06 13 00 02 00 02 00"), kEpoch,
             hex("02 01 00 13 00"));
const Bytes kLogList = sequence(tlv(0x31, kLogEntry));

TEST(Body, TailOfTheLaterVersionsHangsOnItsFirstElement) {
  const Alphabet elements = {
      "ELelabcdfghijopnNqx",
      {tlv(0xA0, kExtendList), tlv(0xA1, kLogList), kExtendList, kLogList, tlv(0xA0, kLogList),
       tlv(0xA1, kExtendList), tlv(0xA0, concat(kExtendList, kExtendList)),
       tlv(0xA1, concat(kLogList, kLogList)), hex("A0 00"), hex("A1 00"), hex("A0 02 30 00"),
       tlv(0x81, kLogList), tlv(0x61, kLogList), tlv(0xA7, kLogList), tlv(0xA2, kExtendList),
       hex("05 00"), hex("A0 02 05 00"), hex("80 00"), hex("A5 01 00 05")}};
  const struct {
    std::string_view tail;
    int result;  // -1 where it is refused, otherwise 1 for extension values and 2 for logs
  } cases[] = {
      {"", 0},    {"E", 1},   {"L", 2},   {"EL", 3},  {"Eo", 3},  {"Ea", 3}, {"N", 0},
      {"NN", 0},  {"LE", 2},  {"pL", 0},  {"nE", 0},  {"e", 0},   {"q", 0},  {"ELLn", 3},
      {"a", -1},  {"b", -1},  {"c", -1},  {"f", -1},  {"g", -1},  {"h", -1}, {"En", -1},
      {"El", -1}, {"Ei", -1}, {"Ej", -1}, {"EE", -1}, {"Ed", -1}, {"x", -1}, {"ELx", -1},
  };
  for (const Version& version : {k11, k111, k112}) {
    for (const auto& one : cases) {
      const Bytes markings = version.text == "1.1.2" ? Bytes{} : kMarkings;
      ReadBody body(version);
      const bool good = body.read(body_element(version, markings, elements.spell(one.tail)));
      EXPECT_EQ(good ? (body->extends != nullptr) + 2 * (body->logs != nullptr) : -1, one.result)
          << version.text << ": " << one.tail;
    }
  }
}

}  // namespace
}  // namespace tq::test
