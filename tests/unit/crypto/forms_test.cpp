// Names, signatures and envelopes: what a round trip cannot show of their forms.

#include <gtest/gtest.h>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

TEST(Name, IsWrittenForTheTypesAndStringsThatItKnows) {
  const Bytes letter = text("x");
  // Types, each with the kind of its value and the tag that is written, 00 where there is none.
  const std::vector<Bytes> cases = hexes(
      "|13 00|55 04|13 00|55 04 05|13 00|55 04 04|13 00|55 04 09|13 00|55 04 0C|13 00|55 04 83|13 "
      "00"
      "|55 04 03 03|13 00|2A 86 48 86 F7 0D 01 09|13 00|2A 86 48 86 F7 0D 01 09 02|16 00"
      "|2A 86 48 86 F7 0D 01 09 01 01|16 00|55 04 03|00 00|55 04 03|04 00|55 04 03|14 00"
      "|55 04 03|A0 00|55 04 03|0C 13|55 04 06|13 13|55 04 07|16 16|55 04 08|1E 1E|55 04 0A|13 13"
      "|55 04 0B|13 13|00 FF 03|13 13|2A 86 48 86 F7 0D 01 09 01|13 16"
      "|2A 86 48 86 F7 0D 01 09 01|00 16");
  for (std::size_t i = 0; i < cases.size(); i += 2) {
    const std::uint8_t written = cases[i + 1][1];
    X509Name attribute = {field(cases[i], 6), field(letter, cases[i + 1][0]), nullptr};
    const X509Name* const given = &attribute;
    const Bytes expected = tlv(0x31, sequence(tlv(6, cases[i]), tlv(written, letter)));
    EXPECT_EQ(encoded(EncodeDName, given), written == 0 ? std::nullopt : std::optional(expected))
        << i;
    attribute.value.data = nullptr;  // a length without bytes
    EXPECT_EQ(encoded(EncodeDName, given), std::nullopt);
  }
}

TEST(Name, IsReadOfAnyTypeAndTakesTheFirstOfSeveralValuesOnly) {
  for (const std::uint8_t tag : hex("0C 13 16 1E")) {
    for (const Bytes& type : {hex("55 04 05"), kEmail, Bytes{}}) {
      const Bytes first = sequence(tlv(6, type), tlv(tag, text("v")));
      OwnedBy<kName> name;
      ASSERT_TRUE(decodes(DecodeX509Name, sequence(tlv(0x31, concat(first, hex("05 00"), first))),
                          &name.record));
      EXPECT_EQ(content(name.record.type), type);
      EXPECT_EQ(content(name.record.value), text("v"));
      EXPECT_EQ(name.record.value.type, tag);
      EXPECT_EQ(name.record.next, nullptr);
    }
  }
  // Empty, incomplete, not a SET of SEQUENCEs, no string or one of another kind, the other way
  // round, a second value cut short, something else behind a good one.
  const NoLeaks no_leaks;
  for (const Bytes& bad :
       hexes("|30 00|30 02 31 00|30 04 31 02 30 00|30 09 31 07 30 05 06 03 55 04 03"
             "|30 07 31 05 30 03 13 01 61|30 0C 30 0A 30 08 06 03 55 04 03 13 01 61"
             "|30 0C 31 0A 31 08 06 03 55 04 03 13 01 61|30 0C 31 0A 30 08 06 03 55 04 03 04 01 61"
             "|30 0C 31 0A 30 08 06 03 55 04 03 14 01 61|30 0C 31 0A 30 08 13 01 61 06 03 55 04 03"
             "|30 0E 31 0C 30 08 06 03 55 04 03 13 01 61 30 01"
             "|30 0E 31 0A 30 08 06 03 55 04 03 13 01 61 05 00"
             "|30 0E 31 0A 30 08 06 03 55 04 03 13 01 61 31 00"
             "|31 0C 31 0A 30 08 06 03 55 04 03 13 01 61")) {
    OwnedBy<kName> name;
    EXPECT_FALSE(decodes(DecodeX509Name, bad, &name.record)) << ::testing::PrintToString(bad);
  }
  EXPECT_TRUE(no_leaks.hold());
}

const Bytes kAlgorithm = hex("2A 86 48 86 F7 0D 01 01 05");
const Bytes kCertificate = hex("30 03 04 01 CE");
const Bytes kValue = hex("51 6E");

// "id", "s1", "2": lengths of 32 bits, the last of them left out
const Bytes kBlob = hex("02 00 00 00 69 64  02 00 00 00 73 31  32");
const Bytes kEmptyBlob = Bytes(8);

Sign sign_of(const Bytes& certificate, const Bytes& algorithm) {
  return {field(certificate), field(algorithm), field(kValue), nullptr};
}

struct Form {
  Bytes certificate;
  Bytes algorithm;
  Bytes element;
};
const Form kForms[] = {
    {kCertificate, kAlgorithm, kCertificate},
    {kBlob, kIdentitySignatureAlgorithm, hex("30 0B 13 02 69 64 04 02 73 31 04 01 32")},
    {kEmptyBlob, kIdentitySignatureAlgorithm, hex("30 06 13 00 04 00 04 00")},
    {kCertificate, {}, hex("30 07 04 05 30 03 04 01 CE")},
    {{}, {}, hex("30 02 04 00")},
};

TEST(Sign, HasAFormOfItsCertificateForEachKindOfAlgorithm) {
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    for (const Form& form : kForms) {
      const Sign sign = sign_of(form.certificate, form.algorithm);
      const std::uint8_t tag = version.text == "6.0" ? 0x13 : 0x06;
      const Bytes signer = concat(form.element, tlv(tag, form.algorithm));
      const Bytes expected = sequence(signer, hex("03 03 00 51 6E"));
      EXPECT_EQ(encoded(EncodeSign, &label, &sign), expected);
      EXPECT_EQ(encoded(GetMSign, &label, &sign), sequence(signer));

      OwnedBy<kSign> read;
      ASSERT_TRUE(decodes(DecodeSign, expected, &read.record, &label));
      EXPECT_EQ(content(read.record.certificate), form.certificate);
      EXPECT_EQ(content(read.record.value), kValue);
    }
  }
}

TEST(Sign, RefusesToWriteACertificateThatWouldNotBeReadBack) {
  std::size_t index = 0;
  const TqLabelHandle label = label_of(k11);
  for (const Bytes& bad :
       hexes("|04 01 CE|31 03 04 01 CE|30 03 04 01|30 03 04 01 CE 00|30 81 03 04 01 CE"
             "|30 03 04 01 CE|00 00 00 00 00 00 00|01 00 00 00 00 00 00 00|FF FF FF FF 00 00 00 00"
             "|00 00 00 00 01 00 00 00|00 00 00 00 F9 FF FF FF|01 00 00 00 69 02 00 00 00 73")) {
    const Sign sign = sign_of(bad, index++ < 6 ? kAlgorithm : kIdentitySignatureAlgorithm);
    EXPECT_EQ(encoded(EncodeSign, &label, &sign), std::nullopt) << index;
    EXPECT_EQ(encoded(GetMSign, &label, &sign), std::nullopt) << index;
  }
}

TEST(Sign, IsReadWhereItIsWholeAndInOrder) {
  // Certificate, algorithm, value; the algorithm of an identity, none; and what has no place here.
  const Alphabet elements = {
      "cavintoueb23xf",
      {kCertificate, tlv(6, kAlgorithm), hex("03 03 00 51 6E"), tlv(6, kIdentitySignatureAlgorithm),
       hex("06 00"), tlv(0x13, kAlgorithm), hex("04 01 CE"), hex("03 02 01 50"), hex("30 00"),
       hex("30 03 03 01 00"), hex("30 06 13 02 69 64 04 00"), hex("30 06 04 00 04 00 04 00"),
       hex("02"), hex("30 03 04 00 05")}};
  TqLabelHandle label = label_of(k11);
  for (const std::string_view letters : {"", "c", "ca", "cv", "ctv", "cao", "cau", "acv", "cavx",
                                         "onv", "bnv", "env", "civ", "2iv", "3iv", "fnv"}) {
    OwnedBy<kSign> sign;
    EXPECT_FALSE(decodes(DecodeSign, sequence(elements.spell(letters)), &sign.record, &label))
        << letters;
  }
  // A certificate of another kind is left out; what follows the value is ignored.
  for (const Bytes& other : {hex("04 01 CE"), hex("31 00"), hex("A0 02 05 00")}) {
    OwnedBy<kSign> sign;
    ASSERT_TRUE(decodes(DecodeSign,
                        sequence(other, tlv(6, kAlgorithm), hex("03 01 00"), hex("05 00 A3 00")),
                        &sign.record, &label));
    EXPECT_EQ(sign.record.certificate.length, 0U);
  }
}

const Bytes kCountry = hex("55 04 06");
const Bytes kNameElement = hex("30 0D 31 0B 30 09 06 03 55 04 06 13 02 43 4E");
const Bytes kSerial = hex("00 F1");
const Bytes kKey = hex("6B 65 79");

const Bytes kE1 = hex("01 02 03 04");
const Bytes kE3 = hex("E3 E3");

Bytes key_element(const Bytes& e4, const Bytes& e5) {
  return sequence(tlv(0x02, kE1), tlv(0x13, text("abc")), tlv(0x04, kE3), tlv(0x04, e4),
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
  const bool done = decodes(DecodeIBCENVELOPE, element, &blob);
  EXPECT_TRUE(done || blob.data == nullptr);
  const auto bytes = done ? std::optional(content(blob)) : std::nullopt;
  clear(blob);
  EXPECT_TRUE(no_leaks.hold());
  return bytes;
}

std::optional<Bytes> to_element(const Bytes& bytes) {
  const ANYBUF blob = field(bytes);
  return encoded(EncodeIBCENVELOPE, &blob);
}

const Bytes kE5 = Bytes(7, 0xE5);
const Bytes kLongest = Bytes(510, 0x11);

TEST(IdentityKey, LosesTheZeroThatAHalfBeginsWith) {
  // The length of e5, e4 and what follows e5 in the blob: no zero; one in front, or two; one at the
  // second half, which leaves it where it was in a point as long as e5, whatever the point's own
  // length. e5 has only the low 8 bits of its length in the blob.
  const std::vector<Bytes> cases = hexes(
      "07|04 11 12 13 21 22 23|03 11 12 13 21 22 23|00|04 11 12 13 21 22 23|03 11 12 13 21 22 23"
      "|07|04 00 12 13 21 22 23|02 12 13 21 22 23|07|04 00 21|00 21"
      "|07|04 00 12 13 00 22 23|02 12 13 00 22 23|07|04 11 12 13 00 22 23|03 11 12 13 00 22"
      "|03|04 11 00|01 11|08|04 11 12 13 00 22 23|03 11 12 13 00 22"
      "|03|04 11 12 13 00 22 23|03 11 00 22 00 00|01|04 11 12 13 00 22 23|03 00 22 13 00 00"
      "|09|04 11 12 13 00 22 23|03 11 12 13 00 00|01 02|04 11 21|01 11 21");
  for (std::size_t i = 0; i < cases.size(); i += 3) {
    const Bytes e5(cases[i].size() == 1 ? cases[i][0] : 258, 0xE5);
    EXPECT_EQ(to_blob(key_element(cases[i + 1], e5)), concat(blob_front(e5), cases[i + 2])) << i;
  }
  EXPECT_EQ(to_blob(key_element(concat(hex("04"), kLongest), kE5)),
            concat(blob_front(kE5), hex("FF"), kLongest));
  EXPECT_EQ(to_blob(key_element({}, {})), Bytes{});  // without a point there is no blob
}

TEST(IdentityKey, IsNotReadOutsideItsLimits) {
  // A second half placed outside, or of zero without e5; halves of different length or of 256.
  const Bytes point = hex("04 11 12 13 00 22 23");
  const Bytes cases[] = {key_element(point, Bytes(11, 0xE5)),
                         key_element(point, Bytes(255, 0xE5)),
                         key_element(point, {}),
                         key_element(hex("04 00 12 13 00 22 23"), {}),
                         key_element(hex("04"), kE5),
                         key_element(hex("04 11"), kE5),
                         key_element(hex("04 11 12 21"), kE5),
                         key_element(concat(hex("04 11 11"), kLongest), kE5),
                         key_element(concat(hex("04 00 11"), kLongest), kE5),
                         sequence(tlv(2, kE1), hex("13 00 04 00 04 03 04 11 21")),
                         sequence(tlv(4, kE1), hex("13 00 04 00 04 00 04 00")),
                         tlv(4, kKey)};
  for (const Bytes& element : cases) EXPECT_EQ(to_blob(element), std::nullopt) << &element - cases;
}

TEST(IdentityKey, GetsItsZeroBackByParityAndHalf) {
  // Odd, whatever the half says; even, where the half fits and where it does not.
  const std::vector<Bytes> cases = hexes(
      "03 11 12 13 21 22 23|04 11 12 13 21 22 23|FF 11 12 13 21 22 23|04 11 12 13 21 22 23"
      "|03 11 12 13 00 22|04 11 12 13 00 22 00|02 12 13 21 22 23|04 00 12 13 21 22 23"
      "|01 11|04 11 00|00 21|04 00 21");
  for (std::size_t i = 0; i < cases.size(); i += 2) {
    EXPECT_EQ(to_element(concat(blob_front(kE5), cases[i])), key_element(cases[i + 1], kE5));
  }
  EXPECT_EQ(to_element(concat(blob_front(kE5), hex("FF"), kLongest)),
            key_element(concat(hex("04"), kLongest), kE5));
}

TEST(IdentityKey, IsNotWrittenOutsideItsLimits) {
  const Bytes whole = concat(blob_front(kE5), hex("03 11 12 13 21 22 23"));
  for (std::size_t length = 0; length <= blob_front(kE5).size() + 1; ++length) {
    EXPECT_EQ(to_element(head_of(whole, length)), std::nullopt) << length;
  }
  // A half of 256; a second half of zero without e5; parts that are longer than the blob.
  EXPECT_EQ(to_element(concat(blob_front(kE5), hex("FF 11 11"), kLongest)), std::nullopt);
  EXPECT_EQ(to_element(concat(blob_front(kE5), hex("FF 11"), kLongest)), std::nullopt);
  EXPECT_EQ(to_element(concat(blob_front({}), hex("02 11 12 00 22"))), std::nullopt);
  EXPECT_EQ(to_element(concat(blob_front({}), hex("01 11"))), std::nullopt);
  for (const Bytes& lengths :
       hexes("FF FF FF FF 00 00 00 00 00 00 00 00|FC FF FF FF 00 00 00 00 00 00 00 00"
             "|00 00 00 00 FF FF FF FF 00 01 11 21|00 00 00 00 00 00 00 00 FF 01 11 21")) {
    EXPECT_EQ(to_element(concat(kE1, lengths)), std::nullopt);
  }
}

TEST(Envelope, NamesItsIssuerAndHasIdentityKeysInTheLaterVersionsOnly) {
  const Bytes blob = concat(blob_front(kE5), hex("01 11 21"));
  const Bytes element = key_element(hex("04 11 21"), kE5);
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    const bool v60 = version.text == "6.0";
    ENVELOPE envelope{};
    envelope.issuer = {field(kCountry, 6), field("CN"), nullptr};
    envelope.serial = field(kSerial);
    for (const bool identity : {false, true}) {
      const Bytes algorithm = identity ? kIdentityWrapping : hex("2A 03");
      const Bytes key = identity ? blob : kKey;
      envelope.algorithm = field(algorithm);
      envelope.encryptedKey = field(key);
      const Bytes front =
          concat(v60 ? Bytes{} : kNameElement, tlv(2, kSerial), tlv(v60 ? 0x13 : 6, algorithm));
      const bool structured = identity && !v60;
      const Bytes expected = sequence(front, structured ? element : tlv(4, key));
      EXPECT_EQ(encoded(EncodeENVELOPE, &label, &envelope), expected);
      OwnedBy<kEnvelope> read;
      ASSERT_TRUE(decodes(DecodeENVELOPE, expected, &read.record, &label));
      EXPECT_EQ(content(read.record.encryptedKey), key);
      OwnedBy<kEnvelope> refused;
      EXPECT_FALSE(decodes(DecodeENVELOPE, sequence(front, structured ? tlv(4, key) : element),
                           &refused.record, &label));
    }
    envelope.algorithm = field(kIdentityWrapping);
    envelope.encryptedKey = field(kKey);  // no blob
    EXPECT_EQ(encoded(EncodeENVELOPE, &label, &envelope).has_value(), v60);
  }
}

}  // namespace
}  // namespace tq::test
