#include "crypto/envelopes.h"

#include <gtest/gtest.h>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

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

const Bytes kE5 = Bytes(7, 0xE5);
const Bytes kPoint = hex("04 11 12 13 00 22 23");

TEST(IdentityKey, LosesTheZeroThatAHalfBeginsWith) {
  const Bytes longest(510, 0x11);
  const struct {
    Bytes e4;
    std::size_t e5;
    Bytes tail;  // what follows e5
  } cases[] = {
      {hex("04 11 12 13 21 22 23"), 7, hex("03 11 12 13 21 22 23")},
      {hex("04 11 12 13 21 22 23"), 0, hex("03 11 12 13 21 22 23")},
      {concat(hex("04"), longest), 7, concat(hex("FF"), longest)},
      // in front; in both halves; of the second half alone, in its place
      {hex("04 00 12 13 21 22 23"), 7, hex("02 12 13 21 22 23")},
      {hex("04 00 21"), 7, hex("00 21")},
      {hex("04 00 12 13 00 22 23"), 7, hex("02 12 13 00 22 23")},
      {kPoint, 7, hex("03 11 12 13 00 22")},
      {hex("04 11 00"), 3, hex("01 11")},
      // The place comes from e5, whatever the length of the point.
      {kPoint, 8, hex("03 11 12 13 00 22")},
      {kPoint, 3, hex("03 11 00 22 00 00")},
      {kPoint, 1, hex("03 00 22 13 00 00")},
      {kPoint, 9, hex("03 11 12 13 00 00")},
      // e5 has only the low 8 bits of its length in the blob.
      {hex("04 11 21"), 258, hex("01 11 21")},
  };
  for (const auto& one : cases) {
    const Bytes e5(one.e5, 0xE5);
    EXPECT_EQ(to_blob(key_element(one.e4, e5)), concat(blob_front(e5), one.tail)) << &one - cases;
  }
  EXPECT_EQ(to_blob(key_element({}, {})), Bytes{});  // without a point there is no blob
}

TEST(IdentityKey, IsNotReadOutsideItsLimits) {
  Bytes long_half(513, 0x11);
  long_half[0] = 4;
  Bytes long_zero = long_half;
  long_zero[1] = 0;
  const Bytes cases[] = {
      key_element(kPoint, Bytes(11, 0xE5)),  // a second half placed outside
      key_element(kPoint, Bytes(255, 0xE5)),
      key_element(kPoint, {}),  // a second half of zero, e5 empty
      key_element(hex("04 00 12 13 00 22 23"), {}),
      key_element(hex("04"), kE5),  // a leading octet alone, halves of different length
      key_element(hex("04 11"), kE5),
      key_element(hex("04 11 12 21"), kE5),
      key_element(long_half, kE5),
      key_element(long_zero, kE5),
      sequence(tlv(2, kE1), tlv(0x13, {}), tlv(4, {}), tlv(4, hex("04 11 21"))),
      sequence(tlv(4, kE1), tlv(0x13, {}), tlv(4, {}), tlv(4, {}), tlv(4, {})),
      tlv(4, kKey),
  };
  for (const Bytes& element : cases) EXPECT_EQ(to_blob(element), std::nullopt) << &element - cases;
}

TEST(IdentityKey, GetsItsZeroBackByParityAndHalf) {
  const struct {
    Bytes tail;
    Bytes e4;
  } cases[] = {
      {hex("03 11 12 13 21 22 23"), hex("04 11 12 13 21 22 23")},
      {hex("FF 11 12 13 21 22 23"), hex("04 11 12 13 21 22 23")},  // odd, whatever the half says
      {hex("03 11 12 13 00 22"), hex("04 11 12 13 00 22 00")},     // even, the half fits
      {hex("02 12 13 21 22 23"), hex("04 00 12 13 21 22 23")},     // even, the half does not
      {hex("01 11"), hex("04 11 00")},
      {hex("00 21"), hex("04 00 21")},
      {concat(hex("FF"), Bytes(510, 0x11)), concat(hex("04"), Bytes(510, 0x11))},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(to_element(concat(blob_front(kE5), one.tail)), key_element(one.e4, kE5));
  }
}

TEST(IdentityKey, IsNotWrittenOutsideItsLimits) {
  const Bytes whole = concat(blob_front(kE5), hex("03 11 12 13 21 22 23"));
  for (std::size_t length = 0; length <= blob_front(kE5).size() + 1; ++length) {
    EXPECT_EQ(to_element(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length))),
              std::nullopt)
        << length;
  }
  const Bytes cases[] = {
      concat(blob_front(kE5), hex("FF"), Bytes(512, 0x11)),  // a half of 256
      concat(blob_front(kE5), hex("FF"), Bytes(511, 0x11)),
      concat(blob_front({}), hex("02 11 12 00 22")),  // a second half of zero, e5 empty
      concat(blob_front({}), hex("01 11")),
      hex("01 02 03 04 FF FF FF FF 00 00 00 00 00 00 00 00"),  // parts longer than the blob
      hex("01 02 03 04 FC FF FF FF 00 00 00 00 00 00 00 00"),
      hex("01 02 03 04 00 00 00 00 FF FF FF FF 00 01 11 21"),
      hex("01 02 03 04 00 00 00 00 00 00 00 00 FF 01 11 21"),
  };
  for (const Bytes& blob : cases) EXPECT_EQ(to_element(blob), std::nullopt) << &blob - cases;
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
    envelope.encryptedKey = field(kKey);  // no blob
    EXPECT_EQ(encoded(EncodeENVELOPE, &label, &envelope).has_value(), v60);
  }
}

TEST(EncryptHead, HasFeedbackBitsInTheLaterVersionsAndWritesTheEnvelopesThatItIsGiven) {
  ENVELOPE own{};
  const EncryptHead head{field(kSerial), 0x102, 0x80, &own};
  const Bytes none = hex("05 00");
  const ANYBUF given = field(none);
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    const bool v60 = version.text == "6.0";
    const Bytes expected = hex(v60 ? "30 0A 13 02 00 F1 02 02 01 02 05 00"
                                   : "30 0E 06 02 00 F1 02 02 01 02 02 02 00 80 05 00");
    EXPECT_EQ(encoded(EncodeEncryptHead, &label, &head, &given), expected);
    OwnedBy<kEncryptHead> read;
    read.record.feedBackBits = 7;
    ASSERT_TRUE(decodes(DecodeEncryptHead, expected, &read.record, &label));
    EXPECT_EQ(read.record.feedBackBits, v60 ? 7U : 0x80U);  // left as it was
    EXPECT_EQ(encoded(EncodeEncryptHead, &label, &head, static_cast<const ANYBUF*>(nullptr)),
              std::nullopt);
  }
}

}  // namespace
}  // namespace tq::test
