// Whole labels: the four shapes in all versions, and what is read from encoded bytes.

#include "abi/support.h"

namespace tq::abi {
namespace {

using Fill = void (*)(TqLabel, const char*);
constexpr Fill kFills[] = {[](TqLabel label, const char* version) { fill(label, version); },
                           fill_fields};

class EachVersion : public testing::TestWithParam<const char*> {};

TEST_P(EachVersion, DecodesToALabelThatEncodesToTheSameBytesInAllShapes) {
  for (const Fill how : kFills) {
    Label label;
    how(label, GetParam());
    const Bytes plain = encode(label);
    const Bytes padded = encode(label, EncodeLabelPad);
    const Bytes body = encode(label, EncodeBodyPlaint);
    const Bytes message = encode(label, GetSignatureMessage);
    const Bytes secret = pattern(300);
    const Bytes sealed = encode_sealed(label, secret);
    const Bytes padded_sealed = encode_sealed(label, secret, EncodeLabelPadEncrypted);

    const Element tree = parse(plain);
    ASSERT_EQ(tree.children.size(), 2U);
    EXPECT_EQ(tree.children[1].der(), body);
    Element expected = tree;
    expected.children.push_back({0x04, how == fill_fields ? Bytes(5, 0) : Bytes{}, {}});
    EXPECT_EQ(padded, expected.der());
    expected.children[1] = {0x04, secret, {}};
    EXPECT_EQ(padded_sealed, expected.der());
    expected.children.pop_back();
    EXPECT_EQ(sealed, expected.der());

    for (const Bytes& der : {plain, padded}) {
      const Label decoded = decode(der);
      ASSERT_TRUE(decoded);
      EXPECT_EQ(encode(decoded), plain);
      EXPECT_EQ(encode(decoded, EncodeBodyPlaint), body);
      EXPECT_EQ(encode(decoded, GetSignatureMessage), message);
    }
    EXPECT_FALSE(decode(sealed)) << "an encrypted body is no body";
  }
}

TEST_P(EachVersion, SignatureMessageIsTheLabelWithoutTheHeadSignatureValue) {
  Label label;
  fill_fields(label, GetParam());
  const Bytes message = encode(label, GetSignatureMessage);
  Element tree = parse(encode(label));
  Element& sign = tree.children[0].children[is_60(GetParam()) ? 3 : 8];
  ASSERT_EQ(sign.children.size(), 3U);
  sign.children.pop_back();
  EXPECT_EQ(message, tree.der());
  set(label, SetHeadSignValue, pattern(256, 7));
  EXPECT_EQ(encode(label, GetSignatureMessage), message);
  set(label, SetCustom, pattern(3));
  EXPECT_NE(encode(label, GetSignatureMessage), message);
}

TEST_P(EachVersion, EncryptedBodyComesBackInTheFormOfItsLength) {
  Label label;
  fill_fields(label, GetParam());
  const Bytes body = encode(label, EncodeBodyPlaint);
  for (const std::size_t length : {0U, 1U, 127U, 128U, 255U, 256U, 65535U, 65536U}) {
    SCOPED_TRACE(length);
    const std::size_t expected = length < 128 ? 0 : length;  // a length of one octet counts as 0
    const Bytes secret = pattern(length);
    const std::uint8_t none = 0;
    const Bytes der = fetch([&](std::uint8_t* to, std::uint32_t* size) {
      return EncodeLabelEncrypted(label, length == 0 ? &none : secret.data(), size32(secret), to,
                                  size);
    });
    std::uint32_t size = 77;
    TqLabel slot = nullptr;
    EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), nullptr, &size, &slot), 0);
    EXPECT_EQ(size, expected);
    EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), nullptr, &size, nullptr), 0);
    EXPECT_EQ(slot, nullptr) << "a size query makes no handle";
    Bytes opened(expected + 1, 0xEE);
    if (expected != 0) {
      size = static_cast<std::uint32_t>(expected - 1);
      EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), opened.data(), &size, &slot), -1);
      EXPECT_EQ(size, expected - 1);
      EXPECT_EQ(slot, nullptr);
      EXPECT_EQ(opened, Bytes(expected + 1, 0xEE));
    }
    size = static_cast<std::uint32_t>(expected);
    EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), opened.data(), &size, nullptr), -1);
    EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), opened.data(), &size, &slot), 0);
    const Label sealed(slot);
    EXPECT_EQ(size, expected);
    EXPECT_EQ(opened.back(), 0xEE);
    opened.pop_back();
    EXPECT_EQ(opened, Bytes(secret.begin(), secret.begin() + static_cast<long>(expected)));
    ASSERT_EQ(DecodeLabelDecrypted(sealed, body.data(), size32(body)), 0);
    EXPECT_EQ(encode(sealed), encode(label));
  }
}

TEST_P(EachVersion, DecryptedBodyReplacesTheEarlierOne) {
  Label first;
  fill_fields(first, GetParam());
  Label second;
  fill(second, GetParam());
  const Bytes one = encode(first, EncodeBodyPlaint);
  const Bytes two = encode(second, EncodeBodyPlaint);
  ASSERT_NE(one, two);
  Label label;
  EXPECT_EQ(DecodeLabelDecrypted(label, one.data(), size32(one)), -1) << "no version yet";
  set(label, GLSetVersion, text(GetParam()));
  for (const Bytes& body : {one, two, one, one}) {
    EXPECT_EQ(DecodeLabelDecrypted(label, body.data(), size32(body)), 0);
    EXPECT_EQ(encode(label, EncodeBodyPlaint), body);
  }
  EXPECT_EQ(DecodeLabelDecrypted(nullptr, one.data(), size32(one)), -1);
  EXPECT_EQ(DecodeLabelDecrypted(label, nullptr, size32(one)), -1);
  EXPECT_EQ(DecodeLabelDecrypted(label, one.data(), size32(one) - 1), -1);
  Element broken = parse(one);
  broken.children.back().tag = 0x0C;
  EXPECT_EQ(DecodeLabelDecrypted(label, one.data(), 0), -1);
  const Bytes bytes = broken.der();
  if (is_60(GetParam()) || is_aligned(GetParam())) {
    EXPECT_EQ(DecodeLabelDecrypted(label, bytes.data(), size32(bytes)), -1);
  }
  EXPECT_EQ(DecodeLabelDecrypted(label, two.data(), size32(two)), 0);
  EXPECT_EQ(encode(label, EncodeBodyPlaint), two);
}

TEST_P(EachVersion, LengthsThatNeedOneMoreOctetMoveNothingElse) {
  for (const std::uint32_t length :
       {1U, 126U, 127U, 128U, 129U, 254U, 255U, 256U, 257U, 65534U, 65535U, 65536U}) {
    Label label;
    fill_fields(label, GetParam());
    set(label, SetCustom, pattern(length));
    const Bytes der = encode(label);
    EXPECT_EQ(parse(der).der(), der) << "lengths in their shortest form";
    const Label decoded = decode(der);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(get(decoded, GetCustom), pattern(length));
    EXPECT_EQ(encode(decoded), der);
    std::int32_t peeked = -1;
    EXPECT_EQ(GetCustomAttr(der.data(), static_cast<std::int32_t>(der.size()), nullptr, &peeked),
              0);
    EXPECT_EQ(peeked, static_cast<std::int32_t>(length));
  }
}

TEST_P(EachVersion, BytesBehindALabelAreIgnoredAndMissingOnesAreNot) {
  Label label;
  fill_fields(label, GetParam());
  const Bytes der = encode(label);
  for (const Bytes& more : {hex("00"), hex("30 84 FF"), der}) {
    const Label decoded = decode(join(der, more));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(encode(decoded), der);
  }
  Bytes longer = der;
  ++longer[3];  // of 30 82 xx xx
  EXPECT_FALSE(decode(longer));
  Element tree = parse(der);
  tree.children.resize(1);
  EXPECT_FALSE(decode(tree.der()));
  tree.children.clear();
  EXPECT_FALSE(decode(tree.der()));
}

TEST_P(EachVersion, NullPointersFailAndChangeNothing) {
  Label label;
  fill_fields(label, GetParam());
  const Bytes der = encode(label);
  Bytes buffer(der.size(), 0xEE);
  std::uint32_t size = size32(buffer);
  const std::uint32_t length = size;
  TqLabel slot = nullptr;
  for (const auto how : {EncodeLabel, EncodeLabelPad, EncodeBodyPlaint, GetSignatureMessage}) {
    EXPECT_EQ(how(nullptr, buffer.data(), &size), -1);
    EXPECT_EQ(how(label, buffer.data(), nullptr), -1);
    EXPECT_EQ(how(label, nullptr, nullptr), -1);
  }
  for (const auto how : {EncodeLabelEncrypted, EncodeLabelPadEncrypted}) {
    EXPECT_EQ(how(nullptr, der.data(), 9, buffer.data(), &size), -1);
    EXPECT_EQ(how(label, nullptr, 9, buffer.data(), &size), -1);
    EXPECT_EQ(how(label, nullptr, 0, buffer.data(), &size), -1);
    EXPECT_EQ(how(label, der.data(), 9, buffer.data(), nullptr), -1);
  }
  EXPECT_EQ(DecodeLabel(nullptr, length, &slot), -1);
  EXPECT_EQ(DecodeLabel(der.data(), length, nullptr), -1);
  EXPECT_EQ(DecodeLabel(der.data(), 0, &slot), -1);
  EXPECT_EQ(DecodeLabelEncrypted(nullptr, length, buffer.data(), &size, &slot), -1);
  EXPECT_EQ(DecodeLabelEncrypted(der.data(), length, buffer.data(), nullptr, &slot), -1);
  EXPECT_EQ(DecodeLabelEncrypted(der.data(), length, buffer.data(), &size, &slot), -1)
      << "the body is not encrypted";
  EXPECT_EQ(DecodeLabelEncrypted(der.data(), length, nullptr, &size, &slot), -1);
  EXPECT_EQ(LabelBodyNeedEnc(nullptr), -1);
  EXPECT_EQ(SetLabelPadSize(nullptr, 1), -1);
  EXPECT_EQ(buffer, Bytes(der.size(), 0xEE));
  EXPECT_EQ(size, length);
  EXPECT_EQ(slot, nullptr);
}

TEST_P(EachVersion, PeeksReadTheHeadOfEveryShape) {
  for (const bool cipher : {false, true}) {
    Label label;
    fill(label, GetParam(), cipher);
    set(label, SetCustom, pattern(9));
    EXPECT_EQ(LabelBodyNeedEnc(label), cipher ? 1 : 0);
    ASSERT_EQ(SetLabelPadSize(label, 3), 0);
    const Bytes secret = pattern(200);
    const std::pair<Bytes, std::uint32_t> shapes[] = {
        {encode(label), 0},
        {encode(label, EncodeLabelPad), 1},
        {encode_sealed(label, secret), 0},
        {encode_sealed(label, secret, EncodeLabelPadEncrypted), 1}};
    for (const auto& [der, padded] : shapes) {
      const auto length = static_cast<std::int32_t>(der.size());
      EXPECT_EQ(LabelBodyWeatherEnc(der.data(), length), cipher ? 1 : 0);
      std::uint32_t flag = 7;
      EXPECT_EQ(HavePadded(der.data(), size32(der), &flag), 0);
      EXPECT_EQ(flag, padded);
      Bytes name(129, 0xEE);
      EXPECT_EQ(GetLable(der.data(), size32(der), name.data()), 0);
      EXPECT_EQ(name, cipher ? join(text("Secret"), Bytes(123, 0xEE)) : Bytes(129, 0xEE));
      const Bytes algorithm = fetch([&, &label_der = der](std::uint8_t* to, std::uint32_t* size) {
        return GetSignAlgName(label_der.data(), length, to, size);
      });
      EXPECT_EQ(algorithm, cipher ? text(kSignAlg) : Bytes{});
      std::int32_t room = 8;
      Bytes custom(9, 0xEE);
      EXPECT_EQ(GetCustomAttr(der.data(), length, custom.data(), &room), -1);
      room = -1;
      EXPECT_EQ(GetCustomAttr(der.data(), length, custom.data(), &room), -1);
      EXPECT_EQ(room, -1);
      EXPECT_EQ(custom, Bytes(9, 0xEE));
      room = 9;
      EXPECT_EQ(GetCustomAttr(der.data(), length, custom.data(), &room), 0);
      EXPECT_EQ(custom, pattern(9));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Each, EachVersion, testing::ValuesIn(kVersions), [](const auto& each) {
  std::string name = each.param;
  std::erase(name, '.');
  return name;
});

TEST(Peeks, FailForBytesThatAreNoLabel) {
  Label label;
  fill(label, "1.1");
  const Bytes der = encode(label);
  Element headless = parse(der);
  headless.children.erase(headless.children.begin());
  const Bytes body_only = headless.der();
  Element alone = parse(der);
  alone.children.resize(1);
  Bytes buffer(300, 0xEE);
  std::uint32_t size = 300;
  std::int32_t room = 300;
  std::uint32_t flag = 7;
  const auto peek_all = [&](const std::uint8_t* bytes, std::int32_t length, bool has_head) {
    const auto positive = static_cast<std::uint32_t>(std::max(length, 0));
    EXPECT_EQ(LabelBodyWeatherEnc(bytes, length), has_head ? 1 : -1);
    if (!has_head) {
      EXPECT_EQ(GetSignAlgName(bytes, length, buffer.data(), &size), -1);
      EXPECT_EQ(GetLable(bytes, positive, buffer.data()), -1);
    }
    EXPECT_EQ(GetCustomAttr(bytes, length, buffer.data(), &room), -1);
    EXPECT_EQ(HavePadded(bytes, positive, &flag), -1);
  };
  peek_all(nullptr, 10, false);
  peek_all(der.data(), 0, false);
  peek_all(der.data(), -1, false);
  peek_all(der.data(), INT32_MIN, false);
  peek_all(body_only.data(), static_cast<std::int32_t>(body_only.size()), false);
  const Bytes lone = alone.der();
  peek_all(lone.data(), static_cast<std::int32_t>(lone.size()), true);
  EXPECT_EQ(HavePadded(der.data(), size32(der), nullptr), -1);
  EXPECT_EQ(GetLable(der.data(), size32(der), nullptr), -1);
  EXPECT_EQ(GetCustomAttr(der.data(), 300, buffer.data(), nullptr), -1);
  EXPECT_EQ(GetSignAlgName(der.data(), 300, buffer.data(), nullptr), -1);
  EXPECT_EQ(buffer, Bytes(300, 0xEE));
  EXPECT_EQ(size, 300U);
  EXPECT_EQ(room, 300);
  EXPECT_EQ(flag, 7U);
}

TEST(Peeks, GiveNoLabelTextThatItsReaderHasNoRoomFor) {
  Label label;
  fill(label, "1.1.1");
  Element tree = parse(encode(label));
  tree.children[0].children[0].content = pattern(129);
  const Bytes der = tree.der();
  Bytes room(200, 0xEE);
  EXPECT_EQ(GetLable(der.data(), size32(der), room.data()), -1);
  EXPECT_EQ(room, Bytes(200, 0xEE));
  EXPECT_TRUE(decode(der)) << "the label itself is all right";
}

TEST(Padding, IsAsManyZerosAsAskedForLast) {
  Label label;
  fill(label, "1.1.2");
  for (const std::uint32_t size : {0U, 1U, 127U, 128U, 70000U, 2U}) {
    ASSERT_EQ(SetLabelPadSize(label, size), 0);
    EXPECT_EQ(parse(encode(label, EncodeLabelPad)).children.back().content, Bytes(size, 0));
  }
}

TEST(Heads, AnotherVersionTextDoesNotDecode) {
  for (const char* version : kVersions) {
    Label label;
    fill_fields(label, version);
    const Element good = parse(encode(label));
    for (const std::string& other :
         {std::string(), std::string("1"), std::string("1.2"), std::string("6.1"),
          std::string("1.1.0"), std::string("1.1.3"), std::string("1.1.2 "),
          std::string("1.1\0\0", 5), std::string("6.0\0", 4), std::string(31, '1'),
          std::string(40, '1')}) {
      Element tree = good;
      tree.children[0].children[1].content = text(other);
      EXPECT_FALSE(decode(tree.der())) << version << " as " << other;
    }
  }
}

TEST(EmptyAlgorithms, KeepTheirSignersCertificateInAnOctetString) {
  for (const char* version : kVersions) {
    Label bare;
    set(bare, GLSetVersion, text(version));
    EXPECT_EQ(fill_bare(bare), 0);
    set(bare, SetHeadSignCert, text("any bytes"));
    set(bare, SetBodySignCert, kBodyCert);
    const Bytes der = encode(bare);
    const Element sign = parse(der).children[0].children[is_60(version) ? 3 : 8];
    const Bytes empty_name = is_60(version) ? hex("13 00") : hex("06 00");
    EXPECT_EQ(sign.children[0].der(), tlv(0x30, tlv(0x04, text("any bytes"))));
    EXPECT_EQ(sign.children[1].der(), empty_name);
    EXPECT_EQ(sign.children[2].der(), hex("03 01 00"));
    const Label decoded = decode(der);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(get(decoded, GetHeadSignCert), text("any bytes"));
    EXPECT_EQ(encode(decoded), der);
  }
}

TEST(Encoding, RefusesWhatCouldNotBeReadBack) {
  for (const char* version : kVersions) {
    Label label;
    fill_fields(label, version);
    const Bytes der = encode(label);
    // Certificates: exactly one SEQUENCE.
    for (const Bytes& cert : {hex("31 00"), hex("30 01"), hex("30 00 00"), hex("30 80 00 00"),
                              hex("30 81 00"), Bytes{}}) {
      set(label, SetHeadSignCert, cert);
      EXPECT_TRUE(encode(label).empty()) << version;
      EXPECT_TRUE(encode(label, GetSignatureMessage).empty()) << version;
    }
    set(label, SetHeadSignCert, kHeadCert);
    EXPECT_EQ(encode(label), der);
    if (!is_multi_sign(version)) {
      set(label, SetBodySignCert, hex("04 00"));
      EXPECT_TRUE(encode(label).empty()) << version;
      EXPECT_TRUE(encode(label, EncodeBodyPlaint).empty()) << version;
      EXPECT_FALSE(encode_sealed(label, pattern(9)).empty()) << "the body does not matter here";
      set(label, SetBodySignCert, kBodyCert);
    }
    EXPECT_EQ(encode(label), der);
  }
  for (const char* version : {"6.0", "1.1", "1.1.1"}) {
    Label label;
    set(label, GLSetVersion, text(version));
    EXPECT_EQ(fill_bare(label), 0);
    EXPECT_TRUE(encode(label).empty()) << "no body signer's certificate in " << version;
    set(label, SetBodySignCert, kBodyCert);
    EXPECT_FALSE(encode(label).empty());
  }
}

}  // namespace
}  // namespace tq::abi
