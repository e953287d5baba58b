// Head and body.

#include <gtest/gtest.h>

#include <string>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

constexpr std::uint32_t kSeeds = 12;

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
  const auto head = encoded(EncodeHead, label, &label->head, sign.get(), encrypt_head.get());
  EXPECT_EQ(sign->next, nullptr);  // parts stay the caller's
  EXPECT_EQ(encrypt_head->next, nullptr);
  return head;
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
  const auto joined =
      encoded([&](ANYBUF** slot) { return EncodeBody(label, &label->body, parts, slot); });
  EXPECT_EQ(content->next, nullptr);
  return joined;
}

TEST(Head, IsTheSameFromItsRecordsAndFromReadyParts) {
  for (const Version& version : kVersions) {
    for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
      SCOPED_TRACE(std::string(version.text) + ", seed " + std::to_string(seed));
      RandomLabel label(version, seed);
      const auto head = encoded(EncodeHeadD, label.get());
      ASSERT_TRUE(head.has_value());
      EXPECT_EQ(head, head_of_parts(label.get(), false));
      EXPECT_EQ(encoded(GetMHead, label.get()), head_of_parts(label.get(), true));
      TqLabelHandle read{};
      ASSERT_TRUE(decodes(DecodeHead, *head, &read.head, &read));
      EXPECT_EQ(read.subVersion, version.sub_version);
      EXPECT_EQ(encoded(EncodeHeadD, &read), head);
      FreeHead(&read.head);
    }
  }
}

TEST(Body, IsTheSameFromItsRecordsAndFromReadyParts) {
  for (const Version& version : kVersions) {
    for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
      SCOPED_TRACE(std::string(version.text) + ", seed " + std::to_string(seed));
      RandomLabel label(version, seed);
      label->body.stamp.present = seed & 1;
      label->body.waterMark.present = seed >> 1 & 1;
      label->body.fingerPrint.present = seed >> 2 & 1;
      const auto body = encoded(EncodeBodyD, label.get());
      ASSERT_TRUE(body.has_value());
      EXPECT_EQ(body, body_of_parts(label.get()));
      TqLabelHandle read = label_of(version);
      ASSERT_TRUE(decodes(DecodeBody, *body, &read.body, &read));
      const bool may_be_absent = version.text == "1.1.2";
      EXPECT_EQ(read.body.stamp.present, may_be_absent ? seed & 1 : 0);
      EXPECT_EQ(read.body.waterMark.present, may_be_absent ? seed >> 1 & 1 : 0);
      EXPECT_EQ(read.body.fingerPrint.present, may_be_absent ? seed >> 2 & 1 : 0);
      EXPECT_EQ(encoded(EncodeBodyD, &read), body);
      FreeBody(&read.body);
    }
  }
}

TEST(Label, OfPartsRequiresWhatNoLabelIsWithout) {
  TqLabelHandle label = label_of(k60);
  Input element(hex("05 00"));
  const ANYBUF* const node = element.node();
  const ANYBUF* const none = nullptr;
  const Head* const head = &label.head;
  EXPECT_EQ(encoded(EncodeHead, &label, head, none, node), std::nullopt);
  EXPECT_EQ(encoded(EncodeHead, &label, head, node, none), std::nullopt);
  const Bytes certificate = hex("30 00");
  label.body.bodySignCert = field(certificate);
  const auto body = [&](const BodyParts& parts) {
    return encoded([&](ANYBUF** slot) { return EncodeBody(&label, &label.body, parts, slot); });
  };
  EXPECT_EQ(body({none, node, node, node, node, node, node, node}), std::nullopt);
  EXPECT_EQ(body({node, none, node, node, node, node, node, node}), std::nullopt);
  EXPECT_EQ(body({node, node, none, node, node, node, node, node}), std::nullopt);
  EXPECT_EQ(body({node, node, node, none, none, none, none, none}),
            hex("30 0B 03 01 00 30 00 05 00 05 00 05 00"));
  label.body.bodySignCert = {};  // an empty one would not be read back
  EXPECT_EQ(body({node, node, node, none, none, none, none, none}), std::nullopt);
}

// A head of known parts.

const Bytes kTimes = concat(tlv(0x18, text("20000229000000Z")), tlv(0x18, text("19700101000000Z")));

Bytes head_element(const Bytes& version) {
  const Bytes front = concat(hex("13 01 4C"), tlv(0x13, version));
  const Bytes custom = hex("04 01 63");
  const Bytes serial = hex("02 02 00 01");
  if (version == text("6.0")) {
    return sequence(front, custom, hex("30 0A 30 03 04 01 43 13 00 03 01 00"),
                    hex("30 07 13 00 02 01 05 05 00"), serial, kTimes);
  }
  return sequence(front, hex("30 0D 31 0B 30 09 06 03 55 04 06 13 02 43 4E"), serial, kTimes,
                  custom, hex("30 0A 06 00 02 01 05 02 01 06 05 00"),
                  hex("30 0A 30 03 04 01 43 06 00 03 01 00"));
}

TEST(Head, HasAnOrderOfItsOwnInTheFirstVersion) {
  const Bytes type = hex("55 04 06");
  const Bytes serial = hex("00 01");
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    label.head.label = field("L");
    label.head.custom = field("c");
    label.head.headSign.certificate = field("C");
    label.head.encryptHead = {{}, 5, 6, nullptr};
    label.head.issuer = {field(type, 6), field("CN"), nullptr};
    label.head.serialNum = field(serial);
    label.head.createTime = 951782400;
    EXPECT_EQ(encoded(EncodeHeadD, &label), head_element(text(version.text)));
  }
}

TEST(Head, RefusesVersionTextsThatItDoesNotKnow) {
  const std::string_view cases[] = {"",
                                    "6",
                                    "6.0 ",
                                    "6.1",
                                    "1.0",
                                    "1.1.",
                                    "1.1.0",
                                    "1.1.3",
                                    "1.1.22",
                                    "2.0.0",
                                    {"6.0\0", 4},
                                    {"1.1\0.2", 6},
                                    {"1.1.1\0", 6},
                                    "6.06.06.06.06.06.06.06.06.06.06.0"};
  for (const std::string_view bad : cases) {
    for (const std::string_view known : {"6.0", "1.1"}) {
      Bytes element = head_element(text(known));
      const Bytes rest(element.begin() + 10, element.end());
      element = sequence(hex("13 01 4C"), tlv(0x13, text(bad)), rest);
      const NoLeaks no_leaks;
      TqLabelHandle label{};
      EXPECT_FALSE(decodes(DecodeHead, element, &label.head, &label)) << bad;
      EXPECT_EQ(label.version[0], 0);
      EXPECT_EQ(label.subVersion, 0);
      FreeHead(&label.head);
      EXPECT_TRUE(no_leaks.hold());
    }
  }
}

TEST(Head, IsWrittenOnlyWhereItsVersionTextAgrees) {
  RandomLabel label(k112, 1);
  for (const std::string_view bad : {"1.1", "1.1.1", "6.0", "2.0", "", "1.1.2 "}) {
    label->head.versionText = field(bad);
    EXPECT_EQ(encoded(EncodeHeadD, label.get()), std::nullopt) << bad;
    EXPECT_EQ(encoded(GetMHead, label.get()), std::nullopt) << bad;
    Input part(hex("30 00"));
    const Head* const head = &label->head;
    const ANYBUF* const node = part.node();
    EXPECT_EQ(encoded(EncodeHead, label.get(), head, node, node), std::nullopt) << bad;
  }
  label->head.versionText = field(std::string_view("1.1.2\0", 6));
  EXPECT_EQ(encoded(EncodeHeadD, label.get()), std::nullopt);
  label->head.versionText = field("1.1.2");
  EXPECT_TRUE(encoded(EncodeHeadD, label.get()).has_value());
  label->version[0] = 0;  // never set
  EXPECT_EQ(encoded(EncodeHeadD, label.get()), std::nullopt);
  EXPECT_EQ(encoded(EncodeBodyD, label.get()), std::nullopt);
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

struct ReadBody {
  explicit ReadBody(const Version& version) : label(label_of(version)) {}
  ReadBody(const ReadBody&) = delete;
  ReadBody& operator=(const ReadBody&) = delete;
  ReadBody(ReadBody&&) = delete;
  ReadBody& operator=(ReadBody&&) = delete;
  ~ReadBody() { FreeBody(&label.body); }

  bool read(const Bytes& element) { return decodes(DecodeBody, element, &label.body, &label); }

  TqLabelHandle label;
};

TEST(Body, HasTaggedMarkingsInAnyOrderInTheLastVersion) {
  const Bytes stamp = tlv(0xA0, kStamp1);
  const Bytes mark = tlv(0xA1, kWaterMark1);
  const Bytes finger = tlv(0xA2, kFingerPrint1);
  const struct {
    Bytes markings;
    bool stamp;
    bool mark;
    bool finger;
  } cases[] = {
      {{}, false, false, false},
      {stamp, true, false, false},
      {mark, false, true, false},
      {finger, false, false, true},
      {concat(stamp, mark, finger), true, true, true},
      {concat(stamp, finger, mark), true, true, true},
      {concat(mark, stamp, finger), true, true, true},
      {concat(mark, finger, stamp), true, true, true},
      {concat(finger, stamp, mark), true, true, true},
      {concat(finger, mark, stamp), true, true, true},
  };
  for (const auto& one : cases) {
    ReadBody body(k112);
    ASSERT_TRUE(body.read(body_element(k112, one.markings, {}))) << &one - cases;
    EXPECT_EQ(body.label.body.stamp.present, one.stamp ? 1U : 0U);
    EXPECT_EQ(body.label.body.waterMark.present, one.mark ? 1U : 0U);
    EXPECT_EQ(body.label.body.fingerPrint.present, one.finger ? 1U : 0U);
    EXPECT_EQ(content(body.label.body.stamp.stampName), one.stamp ? text("1") : Bytes{});
    EXPECT_EQ(content(body.label.body.waterMark.markData1), one.mark ? text("1") : Bytes{});
    EXPECT_EQ(body.label.body.fingerPrint.sysInfo.sysInfoValue, one.finger ? 1U : 0U);
    const Bytes in_order = concat(one.stamp ? stamp : Bytes{}, one.mark ? mark : Bytes{},
                                  one.finger ? finger : Bytes{});
    EXPECT_EQ(encoded(EncodeBodyD, &body.label), body_element(k112, in_order, {}));
  }
}

TEST(Body, TakesTheLastOfRepeatedMarkingsAndReleasesTheOthers) {
  const NoLeaks no_leaks;
  {
    ReadBody body(k112);
    ASSERT_TRUE(body.read(body_element(
        k112, concat(tlv(0xA1, kWaterMark1), tlv(0xA0, kStamp1), tlv(0xA1, kWaterMark2)), {})));
    EXPECT_EQ(content(body.label.body.waterMark.markData1), text("2"));
    EXPECT_EQ(content(body.label.body.stamp.stampName), text("1"));
  }
  EXPECT_TRUE(no_leaks.hold());
}

TEST(Body, RefusesTagsThatHoldNoMarking) {
  const Bytes cases[] = {
      hex("A0 00"),
      hex("A1 02 05 00"),
      tlv(0xA0, kWaterMark1),
      tlv(0xA1, concat(kWaterMark1, kWaterMark1)),
      tlv(0xA1, concat(kWaterMark1, hex("05 00"))),
      tlv(0xA2, concat(kFingerPrint1, hex("00"))),
      tlv(0xA3, kWaterMark1),  // no marking has this tag: the file creator is looked for here
      tlv(0x81, kWaterMark1),
      hex("05 00"),
      kWaterMark1,  // no tag
  };
  const NoLeaks no_leaks;
  for (const Bytes& bytes : cases) {
    ReadBody body(k112);
    EXPECT_FALSE(body.read(body_element(k112, bytes, {}))) << &bytes - cases;
  }
  for (const Version& version : {k60, k11, k111}) {  // where none may be missing or tagged
    const Bytes tail = version.text == "6.0" ? hex("05 00 05 00") : Bytes{};
    const Bytes all = concat(kStamp1, kWaterMark1, kFingerPrint1);
    ReadBody good(version);
    EXPECT_TRUE(good.read(body_element(version, all, tail))) << version.text;
    for (const Bytes& bytes :
         {Bytes{}, concat(kStamp1, kWaterMark1), concat(kWaterMark1, kStamp1, kFingerPrint1),
          concat(tlv(0xA0, kStamp1), tlv(0xA1, kWaterMark1), tlv(0xA2, kFingerPrint1))}) {
      ReadBody body(version);
      EXPECT_FALSE(body.read(body_element(version, bytes, tail))) << version.text;
    }
  }
  EXPECT_TRUE(no_leaks.hold());
}

const Bytes kExtendList = hex("30 09 31 07 30 05 02 01 01 04 00");
const Bytes kLogEntry =
    sequence(hex("02 01 01 13 00 30 0B 31 09 30 07 06 03 55 04 06 13 00 02 00 02 00"), kEpoch,
             hex("02 01 00 13 00"));
const Bytes kLogList = sequence(tlv(0x31, kLogEntry));

TEST(Body, TailOfTheLaterVersionsHangsOnItsFirstElement) {
  const Bytes extends = tlv(0xA0, kExtendList);
  const Bytes logs = tlv(0xA1, kLogList);
  const struct {
    const char* what;
    Bytes tail;
    bool good;
    bool extends = false;
    bool logs = false;
  } cases[] = {
      {"two lists in [0]", tlv(0xA0, concat(kExtendList, kExtendList)), false},
      {"nothing in [0]", hex("A0 00"), false},
      {"no list in [0]", hex("A0 02 30 00"), false},
      {"logs in [0]", tlv(0xA0, kLogList), false},
      {"nothing in [1]", hex("A1 00"), false},
      {"extension values in [1]", tlv(0xA1, kExtendList), false},
      {"NULL behind [0]", concat(extends, hex("05 00")), false},
      {"a list without a tag behind [0]", concat(extends, kLogList), false},
      {"a primitive tag behind [0]", concat(extends, tlv(0x81, kLogList)), false},
      {"an application tag behind [0]", concat(extends, tlv(0x61, kLogList)), false},
      {"extension values again behind [0]", concat(extends, extends), false},
      {"two lists in a tag behind [0]", concat(extends, tlv(0xA1, concat(kLogList, kLogList))),
       false},
      {"something malformed behind all", concat(extends, logs, hex("05")), false},
      {"something malformed that is ignored", hex("A5 01 00 05"), false},
      {"nothing", {}, true},
      {"[0]", extends, true, true, false},
      {"[1]", logs, true, false, true},
      {"both", concat(extends, logs), true, true, true},
      {"logs under any number behind [0]", concat(extends, tlv(0xA7, kLogList)), true, true, true},
      {"logs in [0] behind [0]", concat(extends, tlv(0xA0, kLogList)), true, true, true},
      {"NULL in [0]", hex("A0 02 05 00"), true},
      {"NULL in both", hex("A0 02 05 00 A0 02 05 00"), true},
      {"extension values behind [1]", concat(logs, extends), true, false, true},
      {"another tag", concat(tlv(0xA2, kExtendList), logs), true},
      {"a universal element", concat(hex("05 00"), extends), true},
      {"a list without a tag", kExtendList, true},
      {"a primitive [0]", hex("80 00"), true},
      {"anything behind both", concat(extends, logs, logs, hex("04 00")), true, true, true},
  };
  const NoLeaks no_leaks;
  for (const Version& version : {k11, k111, k112}) {
    const Bytes markings =
        version.text == "1.1.2" ? Bytes{} : concat(kStamp1, kWaterMark1, kFingerPrint1);
    for (const auto& one : cases) {
      SCOPED_TRACE(std::string(version.text) + ": " + one.what);
      ReadBody body(version);
      ASSERT_EQ(body.read(body_element(version, markings, one.tail)), one.good);
      if (!one.good) continue;
      EXPECT_EQ(body.label.body.extends != nullptr, one.extends);
      EXPECT_EQ(body.label.body.logs != nullptr, one.logs);
    }
  }
  EXPECT_TRUE(no_leaks.hold());
}

TEST(Body, TailOfTheFirstVersionIsTwoLists) {
  const Bytes markings = concat(kStamp1, kWaterMark1, kFingerPrint1);
  for (const Bytes& bad : {Bytes{}, hex("05 00"), tlv(0xA0, kExtendList), hex("A0 02 05 00 05 00"),
                           hex("05 00 A1 02 05 00")}) {
    ReadBody body(k60);
    EXPECT_FALSE(body.read(body_element(k60, markings, bad)));
  }
  ReadBody body(k60);
  ASSERT_TRUE(body.read(body_element(k60, markings, concat(kExtendList, hex("05 00 A5 00")))));
  EXPECT_NE(body.label.body.extends, nullptr);
  EXPECT_EQ(body.label.body.logs, nullptr);
  EXPECT_EQ(encoded(EncodeBodyD, &body.label),
            body_element(k60, markings, concat(kExtendList, hex("05 00"))));
}

TEST(Body, HasAlignAttributesWhereItsVersionHasThem) {
  const Bytes markings = concat(kStamp1, kWaterMark1, kFingerPrint1);
  ReadBody without(k111);
  EXPECT_FALSE(without.read(sequence(hex("03 01 00 30 00 05 00"), markings, kMinimalContent)));
  ReadBody ignored(k11);  // where they are an element of another kind behind the content
  EXPECT_TRUE(ignored.read(
      sequence(hex("03 01 00 30 00 05 00"), markings, kMinimalContent, kMinimalAlign)));
}

TEST(Body, KeepsNoCertificateOfAnotherKindAndIsThenNotWritten) {
  const Bytes markings = concat(kStamp1, kWaterMark1, kFingerPrint1);
  for (const Bytes& other : {hex("05 00"), hex("04 02 30 00"), hex("31 00"), hex("A0 00")}) {
    ReadBody body(k11);
    ASSERT_TRUE(
        body.read(sequence(hex("03 02 00 76"), other, hex("05 00"), markings, kMinimalContent)));
    EXPECT_EQ(content(body.label.body.bodySignValue), text("v"));
    EXPECT_EQ(body.label.body.bodySignCert.length, 0U);
    EXPECT_EQ(encoded(EncodeBodyD, &body.label), std::nullopt);
  }
  ReadBody body(k11);  // the element is consumed, so that one more is needed
  EXPECT_FALSE(body.read(sequence(hex("03 02 00 76 05 00"), markings, kMinimalContent)));
  EXPECT_FALSE(body.read(sequence(hex("03 02 07 80 30 00 05 00"), markings, kMinimalContent)));
}

TEST(Body, OfAnUnknownVersionIsNeitherReadNorWritten) {
  TqLabelHandle label = label_of(kUnknown);
  EXPECT_FALSE(decodes(DecodeBody, body_element(k112, {}, {}), &label.body, &label));
  EXPECT_EQ(encoded(EncodeBodyD, &label), std::nullopt);
  const TqLabelHandle* const none = nullptr;
  EXPECT_EQ(encoded(EncodeBodyD, none), std::nullopt);
  EXPECT_EQ(encoded(EncodeHeadD, none), std::nullopt);
  EXPECT_EQ(encoded(GetMHead, none), std::nullopt);
  FreeHead(nullptr);
  FreeBody(nullptr);
}

}  // namespace
}  // namespace tq::test
