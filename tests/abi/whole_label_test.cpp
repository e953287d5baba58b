// Whole labels: the four shapes in all versions, and what is read from encoded bytes.

#include "abi/records.h"

namespace tq::abi {
namespace {

class EachVersion : public testing::TestWithParam<const char*> {
 protected:
  [[nodiscard]] std::size_t sign_place() const { return is_60(GetParam()) ? 3 : 8; }
};

// The custom bytes move all lengths around them over the limits of one and two octets.
TEST_P(EachVersion, DecodesToALabelThatEncodesToTheSameBytesInAllShapes) {
  for (const std::uint32_t length : {0U, 1U, 126U, 127U, 128U, 255U, 256U, 65535U, 65536U}) {
    Label label;
    length == 0 ? fill(label, GetParam()) : fill_fields(label, GetParam());
    set(label, SetCustom, pattern(length));
    EXPECT_EQ(SetLabelPadSize(label, length), 0);
    const Bytes plain = encode(label);
    const Bytes padded = encode(label, EncodeLabelPad);
    const Bytes body = encode(label, EncodeBodyPlaint);
    const Bytes message = encode(label, GetSignatureMessage);
    const Bytes secret = pattern(300);

    const Element tree = parse(plain);
    EXPECT_EQ(tree.der(), plain) << "lengths in their shortest form";
    ASSERT_EQ(tree.children.size(), 2U);
    EXPECT_EQ(tree.children[1].der(), body);
    Element expected = tree;
    expected.children.push_back({0x04, Bytes(length, 0), {}});
    EXPECT_EQ(padded, expected.der());
    expected.children[1] = {0x04, secret, {}};
    EXPECT_EQ(encode_sealed(label, secret, EncodeLabelPadEncrypted), expected.der());
    expected.children.pop_back();
    EXPECT_EQ(encode_sealed(label, secret), expected.der());
    EXPECT_FALSE(decode(expected.der())) << "an encrypted body is no body";

    Element unsigned_tree = tree;
    std::vector<Element>& sign = unsigned_tree.children[0].children[sign_place()].children;
    sign.pop_back();
    EXPECT_EQ(message, unsigned_tree.der()) << "the head signature lacks its value";

    for (const Bytes& der : {plain, padded, concat(plain, hex("30 84 FF"))}) {
      const Label decoded = decode(der);
      EXPECT_EQ(encode(decoded), plain);
      EXPECT_EQ(encode(decoded, EncodeBodyPlaint), body);
      set(decoded, SetHeadSignValue, pattern(256, 7));
      EXPECT_EQ(encode(decoded, GetSignatureMessage), message);
    }
  }
}

TEST_P(EachVersion, EncryptedBodyComesBackInTheFormOfItsLength) {
  const Label label = full_label(GetParam());
  const Bytes body = encode(label, EncodeBodyPlaint);
  for (const std::size_t length : {0U, 1U, 127U, 128U, 255U, 256U, 65535U, 65536U}) {
    SCOPED_TRACE(length);
    Bytes secret = pattern(length);
    secret.reserve(1);  // no bytes, but not null
    const Bytes der = encode_sealed(label, secret);
    if (length < 128) secret.clear();  // a length of one octet counts as 0
    std::uint32_t size = 77;
    TqLabel slot = nullptr;
    EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), nullptr, &size, &slot), 0);
    EXPECT_EQ(slot, nullptr) << "a size query makes no handle";
    const Bytes opened = fetch([&](std::uint8_t* buffer, std::uint32_t* room) {
      return DecodeLabelEncrypted(der.data(), size32(der), buffer, room,
                                  buffer == nullptr ? nullptr : &slot);
    });
    const Label sealed(slot);
    EXPECT_EQ(opened, secret);
    EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), secret.data(), &size, nullptr), -1);
    EXPECT_EQ(DecodeLabelDecrypted(sealed, body.data(), size32(body)), 0);
    EXPECT_EQ(DecodeLabelDecrypted(sealed, body.data(), size32(body)), 0) << "again";
    EXPECT_EQ(encode(sealed), encode(label));
  }
}

TEST_P(EachVersion, FailuresOfDecodingChangeNothing) {
  const Label label = full_label(GetParam());
  const Bytes der = encode(label);
  const Bytes body = encode(label, EncodeBodyPlaint);
  std::uint8_t buffer[999] = {9};
  std::uint32_t size = sizeof buffer;
  TqLabel slot = nullptr;
  for (const auto room : {buffer, static_cast<std::uint8_t*>(nullptr)}) {
    EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), room, &size, &slot), -1);
  }
  EXPECT_EQ(DecodeLabelDecrypted(label, body.data(), size32(body) - 1), -1);
  EXPECT_EQ(DecodeLabelDecrypted(Label(), body.data(), size32(body)), -1);
  EXPECT_EQ(encode(label), der);
  EXPECT_TRUE(buffer[0] == 9 && size == sizeof buffer && slot == nullptr);
}

TEST_P(EachVersion, PeeksReadTheHeadOfEveryShape) {
  for (const bool cipher : {false, true}) {
    Label label;
    fill(label, GetParam(), cipher);
    set(label, SetCustom, pattern(9));
    EXPECT_EQ(LabelBodyNeedEnc(label), cipher ? 1 : 0);
    const Bytes secret = pattern(200);
    for (const Bytes& der :
         {encode(label), encode(label, EncodeLabelPad), encode_sealed(label, secret),
          encode_sealed(label, secret, EncodeLabelPadEncrypted)}) {
      const auto length = static_cast<std::int32_t>(der.size());
      EXPECT_EQ(LabelBodyWeatherEnc(der.data(), length), cipher ? 1 : 0);
      Bytes name(129, 0xEE);
      EXPECT_EQ(GetLable(der.data(), size32(der), name.data()), 0);
      EXPECT_EQ(name, cipher ? concat(text("Secret"), Bytes(123, 0xEE)) : Bytes(129, 0xEE));
      const Bytes algorithm = fetch([&](std::uint8_t* to, std::uint32_t* size) {
        return GetSignAlgName(der.data(), length, to, size);
      });
      EXPECT_EQ(algorithm, cipher ? text(kSignAlg) : Bytes{});
      Bytes custom(9, 0xEE);
      for (std::int32_t room : {-1, 8, 9}) {
        EXPECT_EQ(GetCustomAttr(der.data(), length, custom.data(), &room), room == 9 ? 0 : -1);
        EXPECT_EQ(custom, room == 9 ? pattern(9) : Bytes(9, 0xEE));
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Each, EachVersion, testing::ValuesIn(kVersions), name_of);

TEST(Peeks, FailForBytesThatAreNoLabel) {
  Label label;
  fill(label, "1.1");
  const Bytes der = encode(label);
  const Bytes head = tlv(0x30, parse(der).children[0].der());
  const Bytes body = tlv(0x30, parse(der).children[1].der());
  std::uint8_t buffer[300] = {9};
  std::uint32_t size = 300;
  std::int32_t room = 300;
  const auto peek = [&](const std::uint8_t* bytes, std::int32_t length, bool has_head = false) {
    const auto positive = static_cast<std::uint32_t>(std::max(length, 0));
    EXPECT_EQ(LabelBodyWeatherEnc(bytes, length), has_head ? 1 : -1);
    EXPECT_EQ(GetCustomAttr(bytes, length, buffer, &room), -1);
    EXPECT_EQ(HavePadded(bytes, positive, &size), -1);
    if (has_head) return;
    EXPECT_EQ(GetSignAlgName(bytes, length, buffer, &size), -1);
    EXPECT_EQ(GetLable(bytes, positive, buffer), -1);
  };
  for (const std::int32_t length : {0, -1, INT32_MIN}) peek(der.data(), length);
  peek(body.data(), static_cast<std::int32_t>(body.size()));
  peek(head.data(), static_cast<std::int32_t>(head.size()), true);
  EXPECT_FALSE(decode(head));
  EXPECT_EQ(buffer[0], 9);
  EXPECT_EQ(size, 300U);
  EXPECT_EQ(room, 300);
}

}  // namespace
}  // namespace tq::abi
