#include "crypto/signatures.h"

#include <gtest/gtest.h>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

const Bytes kAlgorithm = hex("2A 86 48 86 F7 0D 01 01 05");
const Bytes kCertificate = hex("30 03 04 01 CE");
const Bytes kValue = hex("51 6E");
const Bytes kNone = {};

// "id", "s1", "2": lengths of 32 bits, the last of them left out
const Bytes kBlob = hex("02 00 00 00 69 64  02 00 00 00 73 31  32");
const Bytes kBlobElement = hex("30 0B 13 02 69 64 04 02 73 31 04 01 32");

Sign sign_of(const Bytes& certificate, const Bytes& algorithm, const Bytes& value) {
  return {field(certificate), field(algorithm), field(value), nullptr};
}

struct OwnedSign : Owned<std::remove_cvref_t<decltype(kMultiSign)>> {};

std::uint8_t algorithm_tag(const Version& version) { return version.text == "6.0" ? 0x13 : 0x06; }

struct Form {
  const Bytes& certificate;
  const Bytes& algorithm;
  Bytes element;
};
const Form kForms[] = {
    {kCertificate, kAlgorithm, kCertificate},
    {kBlob, kIdentitySignatureAlgorithm, kBlobElement},
    {kCertificate, kNone, hex("30 07 04 05 30 03 04 01 CE")},
    {kNone, kNone, hex("30 02 04 00")},
};

TEST(Sign, HasAFormOfItsCertificateForEachKindOfAlgorithm) {
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    for (const Form& form : kForms) {
      const Sign sign = sign_of(form.certificate, form.algorithm, kValue);
      const Bytes signer = join(form.element, tlv(algorithm_tag(version), form.algorithm));
      const Bytes expected = sequence(signer, hex("03 03 00 51 6E"));
      EXPECT_EQ(encoded(EncodeSign, &label, &sign), expected);
      EXPECT_EQ(encoded(GetMSign, &label, &sign), sequence(signer));

      OwnedSign read;
      ASSERT_TRUE(decodes(DecodeSign, expected, &read.record, &label));
      EXPECT_EQ(content(read.record.certificate), form.certificate);
      EXPECT_EQ(content(read.record.algorithm), form.algorithm);
      EXPECT_EQ(content(read.record.value), kValue);
    }
  }
}

TEST(Sign, RefusesToWriteACertificateThatWouldNotBeReadBack) {
  const struct {
    Bytes certificate;
    Bytes algorithm;
  } cases[] = {
      {{}, kAlgorithm},               // none
      {hex("04 01 CE"), kAlgorithm},  // no SEQUENCE
      {hex("31 03 04 01 CE"), kAlgorithm},
      {hex("30 03 04 01"), kAlgorithm},  // cut short
      {hex("30 03 04 01 CE 00"), kAlgorithm},
      {hex("30 81 03 04 01 CE"), kAlgorithm},
      {{}, kIdentitySignatureAlgorithm},
      {kCertificate, kIdentitySignatureAlgorithm},
  };
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    for (const auto& one : cases) {
      const Sign sign = sign_of(one.certificate, one.algorithm, kValue);
      EXPECT_EQ(encoded(EncodeSign, &label, &sign), std::nullopt) << &one - cases;
      EXPECT_EQ(encoded(GetMSign, &label, &sign), std::nullopt) << &one - cases;
    }
  }
  TqLabelHandle unknown = label_of(kUnknown);
  const Sign good = sign_of(kCertificate, kAlgorithm, kValue);
  Sign without_bytes = good;
  without_bytes.value.data = nullptr;
  const TqLabelHandle known = label_of(k60);
  const TqLabelHandle* const no_label = nullptr;
  const Sign* const no_sign = nullptr;
  EXPECT_EQ(encoded(EncodeSign, &unknown, &good), std::nullopt);
  EXPECT_EQ(encoded(GetMSign, &unknown, &good), std::nullopt);
  EXPECT_EQ(encoded(EncodeMultiSign, &unknown, &good), std::nullopt);
  EXPECT_EQ(encoded(EncodeSign, &known, &without_bytes), std::nullopt);
  EXPECT_EQ(encoded(EncodeSign, no_label, &good), std::nullopt);
  EXPECT_EQ(encoded(EncodeSign, &known, no_sign), std::nullopt);
}

TEST(Sign, RefusesToReadWhatIsNoSignature) {
  const Bytes oid = tlv(6, kAlgorithm);
  const Bytes bits = hex("03 03 00 51 6E");
  const Bytes cases[] = {
      {},
      hex("30 00"),
      sequence(kCertificate),
      sequence(kCertificate, oid),                          // no value
      sequence(kCertificate, bits),                         // no algorithm
      sequence(kCertificate, tlv(0x13, kAlgorithm), bits),  // the algorithm of "6.0"
      sequence(kCertificate, oid, hex("04 02 51 6E")),      // no BIT STRING
      sequence(kCertificate, oid, hex("03 02 01 50")),      // unused bits
      sequence(oid, kCertificate, bits),                    // the other way round
      sequence(kCertificate, oid, bits, hex("02")),         // cut short behind the last
      sequence(hex("04 01 CE"), hex("06 00"), bits),        // no SEQUENCE around the octets
      sequence(hex("30 03 03 01 00"), hex("06 00"), bits),  // no octets in it
      sequence(hex("30 00"), hex("06 00"), bits),
      sequence(kCertificate, tlv(6, kIdentitySignatureAlgorithm), bits),
      sequence(hex("30 06 13 02 69 64 04 00"), tlv(6, kIdentitySignatureAlgorithm), bits),
      sequence(hex("30 06 04 00 04 00 04 00"), tlv(6, kIdentitySignatureAlgorithm), bits),
  };
  TqLabelHandle label = label_of(k11);
  TqLabelHandle old_label = label_of(k60);
  TqLabelHandle unknown = label_of(kUnknown);
  const NoLeaks no_leaks;
  for (const Bytes& bytes : cases) {
    OwnedSign sign;
    EXPECT_FALSE(decodes(DecodeSign, bytes, &sign.record, &label)) << &bytes - cases;
  }
  OwnedSign sign;
  const Bytes good = sequence(kCertificate, oid, bits);
  EXPECT_FALSE(decodes(DecodeSign, good, &sign.record, &unknown));
  EXPECT_FALSE(decodes(DecodeSign, good, &sign.record, &old_label));
  FreeMultiSign(&sign.record);
  EXPECT_TRUE(no_leaks.hold());
}

TEST(Sign, KeepsNoCertificateOfAnotherKindAndIgnoresWhatFollowsTheValue) {
  TqLabelHandle label = label_of(k11);
  for (const Bytes& other : {hex("04 01 CE"), hex("31 00"), hex("05 00"), hex("A0 02 05 00")}) {
    OwnedSign sign;
    ASSERT_TRUE(decodes(DecodeSign,
                        sequence(other, tlv(6, kAlgorithm), hex("03 01 00"), hex("05 00 A3 00")),
                        &sign.record, &label));
    EXPECT_EQ(sign.record.certificate.length, 0U);
    EXPECT_EQ(content(sign.record.algorithm), kAlgorithm);
    EXPECT_EQ(sign.record.value.length, 0U);
  }
}

TEST(IdentitySignature, RefusesMalformedBlobs) {
  const Bytes cases[] = {
      {},
      hex("00 00 00"),
      hex("00 00 00 00 00 00 00"),     // one octet less than the two lengths
      hex("01 00 00 00 00 00 00 00"),  // the identity takes part of the second length
      hex("05 00 00 00 00 00 00 00"),
      hex("FF FF FF FF 00 00 00 00"),
      hex("00 00 00 00 01 00 00 00"),
      hex("00 00 00 00 FF FF FF FF"),
      hex("00 00 00 00 F9 FF FF FF"),
      hex("01 00 00 00 69 02 00 00 00 73"),
  };
  for (const Bytes& bytes : cases) {
    const Bytes exact(bytes);
    const ANYBUF blob = field(exact);
    EXPECT_EQ(encoded(EncodeIBCSign, &blob), std::nullopt) << &bytes - cases;
  }
  EXPECT_EQ(encoded(EncodeIBCSign, static_cast<const ANYBUF*>(nullptr)), std::nullopt);
}

TEST(IdentitySignature, ConvertsBothWays) {
  const struct {
    Bytes blob;
    Bytes element;
  } cases[] = {
      {kBlob, kBlobElement},
      {hex("00 00 00 00 00 00 00 00"), hex("30 06 13 00 04 00 04 00")},
      {hex("00 00 00 00 01 00 00 00 73"), hex("30 07 13 00 04 01 73 04 00")},
      {join(join(hex("00 01 00 00"), Bytes(256, 'i')), hex("00 00 00 00")),
       sequence(tlv(0x13, Bytes(256, 'i')), hex("04 00 04 00"))},
  };
  for (const auto& one : cases) {
    const ANYBUF blob = field(one.blob);
    EXPECT_EQ(encoded(EncodeIBCSign, &blob), one.element);
    ANYBUF read{};
    ASSERT_TRUE(decodes(DecodeIBCSign, one.element, &read));
    EXPECT_EQ(content(read), one.blob);
    clear(read);
  }
}

TEST(MultiSign, IsTheSequenceOfItsSignaturesInOrder) {
  TqLabelHandle label = label_of(k112);
  Sign signs[3];
  for (std::size_t i = 3; i-- > 0;) {
    signs[i] = sign_of(kForms[i].certificate, kForms[i].algorithm, kValue);
    signs[i].next = i == 2 ? nullptr : &signs[i + 1];
  }
  Bytes parts;
  for (const Sign& sign : signs) parts = join(parts, *encoded(EncodeSign, &label, &sign));
  const Bytes expected = tlv(0x30, parts);
  const Sign* const first = signs;
  EXPECT_EQ(encoded(EncodeMultiSign, &label, first), expected);

  OwnedSign read;
  ASSERT_TRUE(decodes(DecodeMultiSign, expected, &read.record, &label));
  const Sign* sign = &read.record;
  for (std::size_t i = 0; i < 3; ++i, sign = sign->next) {
    ASSERT_NE(sign, nullptr);
    EXPECT_EQ(content(sign->certificate), kForms[i].certificate);
  }
  EXPECT_EQ(sign, nullptr);
}

TEST(MultiSign, KeepsWhatItHasReadBeforeItFails) {
  TqLabelHandle label = label_of(k112);
  const Sign good = sign_of(kCertificate, kAlgorithm, kValue);
  const Bytes element = *encoded(EncodeSign, &label, &good);
  const NoLeaks no_leaks;
  {
    OwnedSign read;
    EXPECT_FALSE(decodes(DecodeMultiSign, hex("30 00"), &read.record, &label));
    EXPECT_FALSE(decodes(DecodeMultiSign, tlv(0x31, element), &read.record, &label));
    EXPECT_FALSE(
        decodes(DecodeMultiSign, sequence(element, element, hex("05 00")), &read.record, &label));
    EXPECT_EQ(content(read.record.certificate), kCertificate);
    ASSERT_NE(read.record.next, nullptr);
    EXPECT_EQ(content(read.record.next->certificate), kCertificate);
  }
  EXPECT_TRUE(no_leaks.hold());
}

TEST(Sign, ReleasesItsBuffersAndTheChainBehindIt) {
  FreeSign(nullptr);
  FreeMultiSign(nullptr);
  const NoLeaks no_leaks;
  Sign first{};
  first.certificate = owned(kCertificate, 16);
  first.next = make_zeroed<Sign>().release();
  Sign* const second = first.next;
  second->value = owned(kValue, 3);
  FreeSign(&first);
  EXPECT_EQ(first.certificate.data, nullptr);
  EXPECT_EQ(first.next, second);
  FreeMultiSign(&first);
  EXPECT_EQ(first.next, nullptr);
  EXPECT_TRUE(no_leaks.hold());
}

}  // namespace
}  // namespace tq::test
