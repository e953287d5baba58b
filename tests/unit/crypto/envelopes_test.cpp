#include "crypto/envelopes.h"

#include <gtest/gtest.h>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

const Bytes kCountry = hex("55 04 06");
const Bytes kCountryName = text("CN");
const Bytes kNameElement = hex("30 0D 31 0B 30 09 06 03 55 04 06 13 02 43 4E");
const Bytes kSerial = hex("00 F1");
const Bytes kAlgorithm = hex("2A 03");
const Bytes kKey = hex("6B 65 79");
const Bytes kSubject = hex("06 01 2A");

struct Point {
  std::size_t half;    // octets of one half
  std::uint8_t first;  // the octet that each half begins with
  std::uint8_t second;
};

// 04, then the halves with their own first octets: .. 11 11, .. 22 22
Bytes point(const Point& of) {
  Bytes first(of.half, 0x11);
  Bytes second(of.half, 0x22);
  first[0] = of.first;
  second[0] = of.second;
  return concat(hex("04"), first, second);
}

const Bytes kE1 = hex("01 02 03 04");
const Bytes kE3 = hex("E3 E3");

Bytes key_element(const Bytes& e4, const Bytes& e5, const Bytes& e1 = kE1) {
  return sequence(tlv(0x02, e1), tlv(0x13, text("abc")), tlv(0x04, kE3), tlv(0x04, e4),
                  tlv(0x04, e5));
}

// A blob up to e5.
Bytes blob_front(const Bytes& e5) {
  return concat(kE1, hex("03 00 00 00"), text("abc"), hex("02 00 00 00"), kE3,
                Bytes{static_cast<std::uint8_t>(e5.size())}, e5);
}

std::optional<Bytes> to_blob(const Bytes& element) {
  const NoLeaks no_leaks;
  ANYBUF blob{};
  std::optional<Bytes> bytes;
  if (decodes(DecodeIBCENVELOPE, element, &blob)) {
    bytes = content(blob);
  } else {
    EXPECT_EQ(blob.data, nullptr);
  }
  clear(blob);
  EXPECT_TRUE(no_leaks.hold());
  return bytes;
}

std::optional<Bytes> to_element(const Bytes& bytes) {
  const Bytes exact(bytes.begin(), bytes.end());
  const ANYBUF blob = field(exact);
  return encoded(EncodeIBCENVELOPE, &blob);
}

TEST(IdentityKey, OfTheUsualLengthsHasEightySixOctets) {
  const Bytes e5 = hex("E5 E5 E5");
  const Bytes e4 = point({32, 1, 2});
  const Bytes blob = concat(hex("01 02 03 04"            // e1
                                " 03 00 00 00 61 62 63"  // e2
                                " 02 00 00 00 E3 E3"     // e3
                                " 03 E5 E5 E5"           // e5
                                " 20"),                  // half of e4
                            Bytes(e4.begin() + 1, e4.end()));
  ASSERT_EQ(blob.size(), 86U);
  EXPECT_EQ(to_blob(key_element(e4, e5)), blob);
  EXPECT_EQ(to_element(blob), key_element(e4, e5));
}

TEST(IdentityKey, LosesTheZeroThatAHalfBeginsWith) {
  const struct {
    const char* what;
    Bytes e4;
    std::size_t e5;
    Bytes tail;  // what follows e5
  } cases[] = {
      {"none", hex("04 11 12 13 21 22 23"), 7, hex("03 11 12 13 21 22 23")},
      {"none, e5 empty", hex("04 11 12 13 21 22 23"), 0, hex("03 11 12 13 21 22 23")},
      {"the first", hex("04 00 12 13 21 22 23"), 7, hex("02 12 13 21 22 23")},
      {"the first, of one octet", hex("04 00 21"), 7, hex("00 21")},
      {"both", hex("04 00 12 13 00 22 23"), 7, hex("02 12 13 00 22 23")},
      {"the second, in its place", hex("04 11 12 13 00 22 23"), 7, hex("03 11 12 13 00 22")},
      {"the second, of one octet", hex("04 11 00"), 3, hex("01 11")},
      // The place comes from e5, whatever the length of the point.
      {"the second, e5 of even length", hex("04 11 12 13 00 22 23"), 8, hex("03 11 12 13 00 22")},
      {"the second, too early", hex("04 11 12 13 00 22 23"), 3, hex("03 11 00 22 00 00")},
      {"the second, earliest", hex("04 11 12 13 00 22 23"), 1, hex("03 00 22 13 00 00")},
      {"the second, too late", hex("04 11 12 13 00 22 23"), 9, hex("03 11 12 13 00 00")},
  };
  for (const auto& one : cases) {
    const Bytes e5(one.e5, 0xE5);
    EXPECT_EQ(to_blob(key_element(one.e4, e5)), concat(blob_front(e5), one.tail)) << one.what;
  }
}

TEST(IdentityKey, IsNotReadOutsideItsLimits) {
  const Bytes e5(7, 0xE5);
  const struct {
    const char* what;
    Bytes element;
  } cases[] = {
      {"a second half placed outside", key_element(hex("04 11 12 13 00 22 23"), Bytes(11, 0xE5))},
      {"far outside", key_element(hex("04 11 12 13 00 22 23"), Bytes(255, 0xE5))},
      {"a second half of zero, e5 empty", key_element(hex("04 11 12 13 00 22 23"), {})},
      {"both halves of zero, e5 empty", key_element(hex("04 00 12 13 00 22 23"), {})},
      {"a leading octet alone", key_element(hex("04"), e5)},
      {"halves of different length", key_element(hex("04 11"), e5)},
      {"halves of different length, longer", key_element(hex("04 11 12 21"), e5)},
      {"a half of 256", key_element(point({256, 1, 2}), e5)},
      {"a half of 256, zero", key_element(point({256, 0, 2}), e5)},
      {"a fifth part missing",
       sequence(tlv(2, kE1), tlv(0x13, {}), tlv(4, {}), tlv(4, hex("04 11 21")))},
      {"no INTEGER first",
       sequence(tlv(4, kE1), tlv(0x13, {}), tlv(4, {}), tlv(4, {}), tlv(4, {}))},
      {"an OCTET STRING", tlv(4, kKey)},
  };
  for (const auto& one : cases) EXPECT_EQ(to_blob(one.element), std::nullopt) << one.what;
}

TEST(IdentityKey, IsReadUpToItsLimits) {
  const Bytes e5(9, 0xE5);
  const Bytes longest = point({255, 1, 2});
  EXPECT_EQ(to_blob(key_element(longest, e5)),
            concat(blob_front(e5), hex("FF"), Bytes(longest.begin() + 1, longest.end())));
  EXPECT_EQ(to_blob(key_element({}, e5)), Bytes{});  // without a point there is no blob
  EXPECT_EQ(to_blob(key_element({}, {})), Bytes{});
  // e1 has no length in the blob, and e5 only the low 8 bits of its own.
  const auto short_e1 = to_blob(key_element(hex("04 11 21"), {}, hex("01 02")));
  EXPECT_EQ(short_e1, concat(hex("01 02 03 00 00 00"), text("abc"), hex("02 00 00 00"), kE3,
                             hex("00 01 11 21")));
  const Bytes long_e5(258, 0xE5);
  EXPECT_EQ(to_blob(key_element(hex("04 11 21"), long_e5)),
            concat(blob_front(long_e5), hex("01 11 21")));
}

TEST(IdentityKey, GetsItsZeroBackByParityAndHalf) {
  const struct {
    const char* what;
    Bytes tail;
    Bytes e4;
  } cases[] = {
      {"odd", hex("03 11 12 13 21 22 23"), hex("04 11 12 13 21 22 23")},
      {"odd, whatever the half says", hex("FF 11 12 13 21 22 23"), hex("04 11 12 13 21 22 23")},
      {"even, the half fits", hex("03 11 12 13 00 22"), hex("04 11 12 13 00 22 00")},
      {"even, the half does not", hex("02 12 13 21 22 23"), hex("04 00 12 13 21 22 23")},
      {"two octets, fits", hex("01 11"), hex("04 11 00")},
      {"two octets, does not", hex("00 21"), hex("04 00 21")},
      {"the longest", concat(hex("FF"), Bytes(510, 0x11)), concat(hex("04"), Bytes(510, 0x11))},
  };
  const Bytes e5(7, 0xE5);
  for (const auto& one : cases) {
    EXPECT_EQ(to_element(concat(blob_front(e5), one.tail)), key_element(one.e4, e5)) << one.what;
  }
}

TEST(IdentityKey, IsNotWrittenOutsideItsLimits) {
  const Bytes e5(7, 0xE5);
  const struct {
    const char* what;
    Bytes blob;
  } cases[] = {
      {"nothing", {}},
      {"no point", blob_front(e5)},
      {"a half alone", concat(blob_front(e5), hex("00"))},
      {"a half of 256", concat(blob_front(e5), hex("FF"), Bytes(512, 0x11))},
      {"a half of 256, a zero put back", concat(blob_front(e5), hex("FF"), Bytes(511, 0x11))},
      {"a second half of zero, e5 empty", concat(blob_front({}), hex("02 11 12 00 22"))},
      {"a zero put back at the end, e5 empty", concat(blob_front({}), hex("01 11"))},
      {"e2 longer than the blob", hex("01 02 03 04 FF FF FF FF 00 00 00 00 00 00 00 00")},
      {"e2 as long as it takes to wrap", hex("01 02 03 04 FC FF FF FF 00 00 00 00 00 00 00 00")},
      {"e3 longer than the blob", hex("01 02 03 04 00 00 00 00 FF FF FF FF 00 01 11 21")},
      {"e5 longer than the blob", hex("01 02 03 04 00 00 00 00 00 00 00 00 FF 01 11 21")},
  };
  for (const auto& one : cases) EXPECT_EQ(to_element(one.blob), std::nullopt) << one.what;

  const Bytes whole = concat(blob_front(e5), hex("03 11 12 13 21 22 23"));
  for (std::size_t length = 0; length <= blob_front(e5).size() + 1; ++length) {
    EXPECT_EQ(to_element({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}),
              std::nullopt)
        << length;
  }
}

// An envelope that borrows all of its bytes.
ENVELOPE envelope_of(const Bytes& algorithm, const Bytes& key) {
  ENVELOPE envelope{};
  envelope.issuer = {field(kCountry, 6), field(kCountryName, 19), nullptr};
  envelope.serial = field(kSerial);
  envelope.algorithm = field(algorithm);
  envelope.encryptedKey = field(key);
  return envelope;
}

struct OwnedEnvelope : Owned<std::remove_cvref_t<decltype(kEnvelope)>> {};

const Bytes kEnvelope60 = hex("30 0D 02 02 00 F1 13 02 2A 03 04 03 6B 65 79");
const Bytes kEnvelope11 = sequence(kNameElement, hex("02 02 00 F1 06 02 2A 03 04 03 6B 65 79"));

Bytes envelope_element(const Version& version) {
  return version.text == "6.0" ? kEnvelope60 : kEnvelope11;
}

TEST(Envelope, NamesItsIssuerInTheLaterVersionsOnly) {
  const ENVELOPE envelope = envelope_of(kAlgorithm, kKey);
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    EXPECT_EQ(encoded(EncodeENVELOPE, &label, &envelope), envelope_element(version));
    OwnedEnvelope read;
    const Bytes other = version.text == "6.0" ? kEnvelope11 : kEnvelope60;
    EXPECT_FALSE(decodes(DecodeENVELOPE, other, &read.record, &label));
    FreeENVELOPE(&read.record);
    ASSERT_TRUE(decodes(DecodeENVELOPE, envelope_element(version), &read.record, &label));
    EXPECT_EQ(content(read.record.issuer.value), version.text == "6.0" ? Bytes{} : kCountryName);
    EXPECT_EQ(content(read.record.serial), kSerial);
    EXPECT_EQ(content(read.record.algorithm), kAlgorithm);
    EXPECT_EQ(content(read.record.encryptedKey), kKey);
  }
  TqLabelHandle unknown = label_of(kUnknown);
  EXPECT_EQ(encoded(EncodeENVELOPE, &unknown, &envelope), std::nullopt);
  EXPECT_EQ(encoded(EncodeDigitEnvolop_F, &unknown, static_cast<ENVELOPE*>(nullptr)), std::nullopt);
  EXPECT_EQ(encoded(EncodeEncryptBody_F, &unknown, static_cast<BDigitEnvolope*>(nullptr)),
            std::nullopt);
}

TEST(Envelope, CarriesAnIdentityKeyForItsAlgorithmButNeverInTheFirstVersion) {
  const Bytes e5(7, 0xE5);
  const Bytes blob = concat(blob_front(e5), hex("01 11 21"));
  const Bytes element = key_element(hex("04 11 21"), e5);
  const ENVELOPE envelope = envelope_of(kIdentityWrapping, blob);
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    const bool v60 = version.text == "6.0";
    const Bytes front = concat(v60 ? Bytes{} : kNameElement, tlv(2, kSerial),
                               tlv(v60 ? 0x13 : 6, kIdentityWrapping));
    const Bytes expected = sequence(front, v60 ? tlv(4, blob) : element);
    EXPECT_EQ(encoded(EncodeENVELOPE, &label, &envelope), expected);
    OwnedEnvelope read;
    ASSERT_TRUE(decodes(DecodeENVELOPE, expected, &read.record, &label));
    EXPECT_EQ(content(read.record.encryptedKey), blob);
    OwnedEnvelope refused;
    EXPECT_FALSE(decodes(DecodeENVELOPE, sequence(front, v60 ? element : tlv(4, blob)),
                         &refused.record, &label));
  }
  TqLabelHandle label = label_of(k11);
  OwnedEnvelope other;
  EXPECT_FALSE(decodes(DecodeENVELOPE,
                       sequence(kNameElement, tlv(2, kSerial), tlv(6, kAlgorithm), element),
                       &other.record, &label));
  const ENVELOPE no_blob = envelope_of(kIdentityWrapping, kKey);
  EXPECT_EQ(encoded(EncodeENVELOPE, &label, &no_blob), std::nullopt);
}

TEST(BodyEnvelope, AddsThePrivilegesOfItsRecipient) {
  BDigitEnvolope envelope{};
  envelope.envelope = envelope_of(kAlgorithm, kKey);
  envelope.privilege.priSubject = field(kSubject);
  const Bytes privilege =
      hex("06 01 2A 01 01 00 02 01 00 02 01 00 01 01 00 01 01 00 01 01 00 02 01 00 02 01 00");
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    const Bytes expected =
        sequence(envelope_element(version),
                 sequence(privilege, version.text == "6.0" ? hex("05 00") : Bytes{}));
    EXPECT_EQ(encoded(EncodeBDigitEnvolope_F, &label, &envelope), expected);
    EXPECT_EQ(encoded(EncodeEncryptBody_F, &label, &envelope), sequence(tlv(0x31, expected)));
    Owned<std::remove_cvref_t<decltype(kBodyEnvelope)>> read;
    EXPECT_FALSE(
        decodes(DecodeBDigitEnvolope, sequence(envelope_element(version)), &read.record, &label));
    FreeBDigitEnvolope(&read.record);
    ASSERT_TRUE(decodes(DecodeBDigitEnvolope, expected, &read.record, &label));
    EXPECT_EQ(content(read.record.envelope.encryptedKey), kKey);
    EXPECT_EQ(content(read.record.privilege.priSubject), kSubject);
  }
}

TEST(EncryptHead, HasFeedbackBitsInTheLaterVersionsOnly) {
  EncryptHead head{field(kAlgorithm), 0x102, 0x80, nullptr};
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    const bool v60 = version.text == "6.0";
    const Bytes front =
        v60 ? hex("13 02 2A 03 02 02 01 02") : hex("06 02 2A 03 02 02 01 02 02 02 00 80");
    for (const Bytes& envelopes : {hex("05 00"), sequence(tlv(0x31, envelope_element(version)))}) {
      const ANYBUF given = field(envelopes);
      const Bytes expected = sequence(front, envelopes);
      EXPECT_EQ(encoded(EncodeEncryptHead, &label, &head, &given), expected);

      Owned<std::remove_cvref_t<decltype(kEncryptHead)>> read;
      read.record.feedBackBits = 7;
      ASSERT_TRUE(decodes(DecodeEncryptHead, expected, &read.record, &label));
      EXPECT_EQ(content(read.record.algorithm), kAlgorithm);
      EXPECT_EQ(read.record.mode, 0x102U);
      EXPECT_EQ(read.record.feedBackBits, v60 ? 7U : 0x80U);  // left as it was
      EXPECT_EQ(read.record.envelopes == nullptr, envelopes.size() == 2);
    }
    Owned<std::remove_cvref_t<decltype(kEncryptHead)>> read;
    EXPECT_FALSE(decodes(DecodeEncryptHead, sequence(front), &read.record, &label));
    EXPECT_EQ(encoded(EncodeEncryptHead, &label, &head, static_cast<const ANYBUF*>(nullptr)),
              std::nullopt);
  }
}

TEST(EncryptHead, WritesTheEnvelopesItIsGivenAndNotItsOwn) {
  ENVELOPE own = envelope_of(kAlgorithm, kKey);
  const EncryptHead head{field(kAlgorithm), 0, 0, &own};
  TqLabelHandle label = label_of(k60);
  const Bytes none = hex("05 00");
  const ANYBUF given = field(none);
  EXPECT_EQ(encoded(EncodeEncryptHead, &label, &head, &given),
            hex("30 09 13 02 2A 03 02 01 00 05 00"));
}

TEST(Envelopes, AreWrappedTheSameWayOneByOneAndAsAList) {
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    ENVELOPE second = envelope_of({}, {});
    ENVELOPE first = envelope_of(kAlgorithm, kKey);
    first.next = &second;
    ANYBUF* made[2] = {};
    ASSERT_EQ(EncodeENVELOPE(&label, &first, &made[0]), 0);
    ASSERT_EQ(EncodeENVELOPE(&label, &second, &made[1]), 0);
    made[0]->next = made[1];
    const Chain chain(made[0]);
    const ANYBUF* const elements = chain.get();
    const Bytes both = join(bytes_of(made[0]), bytes_of(made[1]));
    EXPECT_EQ(encoded(EncodeDigitEnvolop_F, &label, &first), sequence(tlv(0x31, both)));
    EXPECT_EQ(encoded(EncodeDigitEnvolop, &label, elements), sequence(tlv(0x31, both)));
    EXPECT_EQ(encoded(EncodeEncryptBody, &label, elements), sequence(tlv(0x31, both)));
    EXPECT_EQ(encoded(EncodeBDigitEnvolope, &label, elements), sequence(both));
  }
}

TEST(SequenceData, TakesTheLengthOctetForTheHeaderOfAShortElement) {
  std::uint32_t length = 200;
  std::uint8_t buffer[200];
  const Bytes short_one = hex("30 01 AA");        // header of 3
  const Bytes cut = hex("30 03 AA BB CC");        // header of 5
  const Bytes too_short = hex("30 04 AA BB CC");  // header of 6
  const ANYBUF one = field(short_one);
  const ANYBUF all = field(cut);
  const ANYBUF none = field(too_short);
  EXPECT_EQ(GetSequenceData(nullptr, buffer, &length), -1);
  EXPECT_EQ(GetSequenceData(&one, buffer, nullptr), -1);
  EXPECT_EQ(GetSequenceData(&none, buffer, &length), -1);
  EXPECT_EQ(length, 200U);
  EXPECT_EQ(GetSequenceData(&one, buffer, &length), 0);
  EXPECT_EQ(length, 0U);
  EXPECT_EQ(GetSequenceData(&all, nullptr, &length), 0);
  EXPECT_EQ(length, 0U);

  const Bytes octets(128, 0xAB);
  const Bytes element = tlv(0x30, octets);
  const ANYBUF node = field(element);
  length = 127;
  EXPECT_EQ(GetSequenceData(&node, buffer, &length), -1);
  length = 128;
  ASSERT_EQ(GetSequenceData(&node, buffer, &length), 0);
  EXPECT_EQ(Bytes(buffer, buffer + length), octets);
}

}  // namespace
}  // namespace tq::test
