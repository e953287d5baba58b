// Issuer names between the callers' flat record and the head of a label.

#include <gmock/gmock.h>

#include "abi/support.h"

namespace tq::abi {
namespace {

using Name = std::vector<Issuer::Attribute>;

const Name kName = {{kCountry, 19, text("CN")},
                    {hex("55 04 0A"), 12, text("Org")},
                    {hex("55 04 0B"), 30, hex("00 41 00 42")},
                    {kEmail, 4, text("a@b.example")},
                    {kCommonName, 19, text("Root")}};

Name head_issuer(TqLabel label) {
  std::uint8_t room = 255;
  std::uint8_t serial[255];
  PJCertIssuer* issuer = nullptr;
  EXPECT_EQ(GetCertSerialAndIssuerToHead(label, serial, &room, &issuer), 0);
  if (issuer == nullptr) return {};
  Name name = attributes_of(issuer);
  FreeIssuerName(issuer);
  return name;
}

TEST(HeadIssuer, IsKeptByTheVersionsThatHaveOne) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    const Issuer issuer(kName);
    const Bytes serial = pattern(128);
    ASSERT_EQ(SetCertSerialAndIssuerToHead(label, serial.data(), 0xABCDEF80, issuer.get()), 0);
    EXPECT_EQ(get(label, widened<GetHeadSerialNum>), serial);
    EXPECT_EQ(head_issuer(label), is_60(version) ? Name{} : kName);
    EXPECT_EQ(SetCertSerialAndIssuerToHead(label, serial.data(), 128, Issuer({}).get()),
              is_60(version) ? 0 : -1);
    const Label decoded = decode(encode(label));
    Name expected = is_60(version) ? Name{} : kName;
    if (!is_60(version)) {
      expected[1].tag = 19;  // UTF8String is written as PrintableString
      expected[3].tag = 22;  // and an e-mail address as IA5String, whatever it was
    }
    EXPECT_EQ(head_issuer(decoded), expected);
  }
}

TEST(HeadIssuer, FailuresChangeNeitherSerialNorIssuer) {
  const Issuer issuer(kName);
  const std::uint8_t serial[] = {1, 2, 3};
  PJCertIssuer* slot = nullptr;
  std::uint8_t room = 2;
  std::uint8_t buffer[3] = {9, 9, 9};
  const Label none;
  EXPECT_EQ(SetCertSerialAndIssuerToHead(none, serial, 3, issuer.get()), -1);
  EXPECT_EQ(GetCertSerialAndIssuerToHead(none, nullptr, &room, &slot), -1);
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    const Bytes before = encode(label);
    EXPECT_THAT((std::vector{SetCertSerialAndIssuerToHead(nullptr, serial, 3, issuer.get()),
                             SetCertSerialAndIssuerToHead(label, nullptr, 3, issuer.get()),
                             SetCertSerialAndIssuerToHead(label, serial, 3, nullptr),
                             SetCertSerialAndIssuerToHead(label, serial, 129, issuer.get()),
                             GetCertSerialAndIssuerToHead(label, buffer, &room, &slot),
                             GetCertSerialAndIssuerToHead(label, buffer, nullptr, &slot),
                             GetCertSerialAndIssuerToHead(nullptr, buffer, &room, &slot),
                             GetCertSerialAndIssuerToHead(label, nullptr, &room, nullptr)}),
                testing::Each(-1));
    EXPECT_EQ(encode(label), before);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(buffer[0], 9);
  }
}

}  // namespace
}  // namespace tq::abi
