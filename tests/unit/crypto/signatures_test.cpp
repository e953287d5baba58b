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

using OwnedSign = OwnedBy<kMultiSign>;

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
      const Bytes signer = concat(form.element, tlv(algorithm_tag(version), form.algorithm));
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
      {{}, kAlgorithm},
      {hex("04 01 CE"), kAlgorithm},
      {hex("31 03 04 01 CE"), kAlgorithm},
      {hex("30 03 04 01"), kAlgorithm},
      {hex("30 03 04 01 CE 00"), kAlgorithm},
      {hex("30 81 03 04 01 CE"), kAlgorithm},
      {kCertificate, kIdentitySignatureAlgorithm},
      {hex("00 00 00 00 00 00 00"), kIdentitySignatureAlgorithm},
      {hex("01 00 00 00 00 00 00 00"), kIdentitySignatureAlgorithm},
      {hex("FF FF FF FF 00 00 00 00"), kIdentitySignatureAlgorithm},
      {hex("00 00 00 00 01 00 00 00"), kIdentitySignatureAlgorithm},
      {hex("00 00 00 00 F9 FF FF FF"), kIdentitySignatureAlgorithm},
      {hex("01 00 00 00 69 02 00 00 00 73"), kIdentitySignatureAlgorithm},
  };
  const TqLabelHandle label = label_of(k11);
  for (const auto& one : cases) {
    const Sign sign = sign_of(one.certificate, one.algorithm, kValue);
    EXPECT_EQ(encoded(EncodeSign, &label, &sign), std::nullopt) << &one - cases;
    EXPECT_EQ(encoded(GetMSign, &label, &sign), std::nullopt) << &one - cases;
  }
  const TqLabelHandle unknown = label_of(kUnknown);
  Sign good = sign_of(kCertificate, kAlgorithm, kValue);
  EXPECT_EQ(encoded(EncodeSign, &unknown, &good), std::nullopt);
  good.value.data = nullptr;
  EXPECT_EQ(encoded(EncodeSign, &label, &good), std::nullopt);
}

TEST(Sign, IsReadWithOrWithoutItsCertificateOnly) {
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
  for (const Bytes& bytes : cases) {
    OwnedSign sign;
    EXPECT_FALSE(decodes(DecodeSign, bytes, &sign.record, &label)) << &bytes - cases;
  }
  // A certificate of another kind is left out; what follows the value is ignored.
  for (const Bytes& other : {hex("04 01 CE"), hex("31 00"), hex("A0 02 05 00")}) {
    OwnedSign sign;
    ASSERT_TRUE(decodes(DecodeSign,
                        sequence(other, tlv(6, kAlgorithm), hex("03 01 00"), hex("05 00 A3 00")),
                        &sign.record, &label));
    EXPECT_EQ(sign.record.certificate.length, 0U);
  }
}

TEST(IdentitySignature, ConvertsBothWays) {
  for (const auto& [bytes, element] :
       {std::pair(kBlob, kBlobElement),
        {hex("00 00 00 00 00 00 00 00"), hex("30 06 13 00 04 00 04 00")},
        {hex("00 00 00 00 01 00 00 00 73"), hex("30 07 13 00 04 01 73 04 00")},
        {concat(hex("00 01 00 00"), Bytes(256, 'i'), hex("00 00 00 00")),
         sequence(tlv(0x13, Bytes(256, 'i')), hex("04 00 04 00"))}}) {
    const ANYBUF blob = field(bytes);
    EXPECT_EQ(encoded(EncodeIBCSign, &blob), element);
    ANYBUF read{};
    ASSERT_TRUE(decodes(DecodeIBCSign, element, &read));
    EXPECT_EQ(content(read), bytes);
    clear(read);
  }
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
    ASSERT_NE(read.record.next, nullptr);
    EXPECT_EQ(content(read.record.next->certificate), kCertificate);
  }
  EXPECT_TRUE(no_leaks.hold());
}

}  // namespace
}  // namespace tq::test
