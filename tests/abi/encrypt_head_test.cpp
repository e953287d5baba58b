// The cipher of the body in the head's encryption header.

#include "abi/records.h"

namespace tq::abi {
namespace {

TEST(EncryptHead, IsATextIn60AndAnIdentifierInThe11Family) {
  for (const char* version : kVersions) {
    SCOPED_TRACE(version);
    const bool old = is_60(version);
    Label label;
    fill(label, version, false);
    std::uint8_t bits = 0x77;
    const auto cipher = [&](TqLabel from) {
      return fetch([&](std::uint8_t* buffer, std::uint32_t* length) {
        auto narrow = static_cast<std::uint8_t>(*length);
        const std::int32_t result = GetEncryptHead(from, buffer, &narrow, &bits);
        *length = narrow;
        return result;
      });
    };
    const auto set_cipher = [&](const char* name, std::size_t length, std::uint32_t feedback) {
      return SetEncryptHead(label, text(name).data(),
                            kHighBits | static_cast<std::uint32_t>(length), feedback);
    };
    EXPECT_EQ(cipher(label), Bytes{});
    EXPECT_EQ(bits, old ? 8 : 0x77) << "written with a name only";
    EXPECT_EQ(set_cipher("AES.256.CBC!", 11, kHighBits | 64), 0);
    EXPECT_EQ(LabelBodyNeedEnc(label), 1);
    const Label decoded = decode(encode(label));
    EXPECT_EQ(cipher(label), text(old ? "AES.256.CBC" : "AES"));
    EXPECT_EQ(bits, 64);
    EXPECT_EQ(cipher(decoded), text(old ? "AES.256.CBC" : "AES"));
    EXPECT_EQ(bits, old ? 0 : 64);
    bits = 0x77;
    std::uint8_t size = 0;
    EXPECT_EQ(GetEncryptHead(label, nullptr, &size, &bits), 0);
    EXPECT_EQ(bits, 0x77) << "a size query";
    EXPECT_EQ(SetEncryptHead(nullptr, text("AES").data(), 3, 1), -1);
    EXPECT_EQ(SetEncryptHead(label, nullptr, 3, 1), -1);
    EXPECT_EQ(GetEncryptHead(nullptr, nullptr, &size, &bits), -1);
    EXPECT_EQ(GetEncryptHead(label, nullptr, nullptr, &bits), -1);
    EXPECT_EQ(GetEncryptHead(label, nullptr, &size, nullptr), -1);
    EXPECT_EQ(set_cipher("no such cipher", 14, 1), old ? 0 : -1);
    EXPECT_EQ(cipher(label), text(old ? "no such cipher" : "AES"));
    EXPECT_EQ(bits, old ? 1 : 64);

    bits = 0x77;
    EXPECT_EQ(set_cipher("AES", 0, 99), 0);
    EXPECT_EQ(LabelBodyNeedEnc(label), 0);
    EXPECT_EQ(cipher(label), Bytes{});
    EXPECT_EQ(bits, old ? 99 : 0x77);
    std::uint8_t kept = 0;
    EXPECT_EQ(GetHeadFeedBackBits(label, &kept), 0);
    EXPECT_EQ(kept, old ? 99 : 64) << "removing a cipher leaves the rest alone";
  }
  Label bare;
  std::uint8_t size = 9;
  std::uint8_t bits = 9;
  EXPECT_EQ(SetEncryptHead(bare, text("AES").data(), 3, 1), -1);
  EXPECT_EQ(GetEncryptHead(bare, nullptr, &size, &bits), -1);
  EXPECT_EQ(size, 9);
}

TEST(EncryptHead, KeepsADecodedModeUntilACipherIsSet) {
  Label label;
  fill(label, "1.1");
  Element tree = parse(encode(label));
  Element& header = tree.children[0].children[7];
  ASSERT_EQ(header.children[1].der(), hex("02 01 00"));
  header.children[1].content = {0x12, 0x34};
  header.children[2].content = {0x01, 0x08};
  const Label decoded = decode(tree.der());
  ASSERT_TRUE(decoded);
  std::uint8_t bits = 0;
  EXPECT_EQ(GetHeadFeedBackBits(decoded, &bits), 0);
  EXPECT_EQ(bits, 8) << "the low 8 bits";
  EXPECT_EQ(encode(decoded), tree.der());
  ASSERT_EQ(SetEncryptHead(decoded, text("AES.256.CBC").data(), 11, kHighBits | 8), 0);
  EXPECT_EQ(encode(decoded), encode(label));

  header.children[0].content = hex("2A 03");
  const Label foreign = decode(tree.der());
  std::uint8_t size = 9;
  EXPECT_EQ(GetEncryptHead(foreign, nullptr, &size, &bits), -1) << "no name for it";
  EXPECT_EQ(size, 9);
}

}  // namespace
}  // namespace tq::abi
