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
  const std::uint8_t* const serial = kHeadCert.data();
  PJCertIssuer* slot = nullptr;
  std::uint8_t room = 2;
  std::uint8_t byte = 9;
  Label label;
  EXPECT_EQ(SetCertSerialAndIssuerToHead(label, serial, 3, issuer.get()), -1) << "no version";
  fill(label, "1.1.1");
  const Bytes before = encode(label);
  EXPECT_THAT((std::vector{SetCertSerialAndIssuerToHead(nullptr, serial, 3, issuer.get()),
                           SetCertSerialAndIssuerToHead(label, nullptr, 3, issuer.get()),
                           SetCertSerialAndIssuerToHead(label, serial, 3, nullptr),
                           SetCertSerialAndIssuerToHead(label, serial, 129, issuer.get()),
                           GetCertSerialAndIssuerToHead(label, &byte, &room, &slot),
                           GetCertSerialAndIssuerToHead(label, &byte, nullptr, &slot),
                           GetCertSerialAndIssuerToHead(nullptr, &byte, &room, &slot),
                           GetCertSerialAndIssuerToHead(label, nullptr, &room, nullptr)}),
              testing::Each(-1));
  EXPECT_EQ(encode(label), before);
  EXPECT_TRUE(slot == nullptr && byte == 9);
}

// The chain's first node is its owner's, and its other blocks are released one by one.
TEST(IssuerNames, ConvertWithinTheirLimitsAndMatchWhereTheirAttributesOccur) {
  const Issuer issuer(kName);
  Issuer long_type(kName);
  long_type.record().entries[4].typeLen = 17;
  Issuer long_value(kName);
  long_value.record().entries[4].valueLen = 129;
  X509Name chain[11] = {};
  for (std::size_t i = 0; i < 10; ++i) chain[i].next = &chain[i + 1];
  X509Name name{};
  PJCertIssuer* back = nullptr;
  EXPECT_EQ(ConvertIssuerName2PJCertIssuer(issuer.get(), &name), 0);
  EXPECT_THAT((std::vector{ConvertIssuerName2PJCertIssuer(long_type.get(), &name),
                           ConvertIssuerName2PJCertIssuer(long_value.get(), &name),
                           ConvertIssuerName2PJCertIssuer(Issuer(Name(11)).get(), &name),
                           ConvertIssuerName2PJCertIssuer(nullptr, &name),
                           ConvertPJCertIssuer2IssuerName(chain, &back),
                           X509NameCmp(&name, long_value.get()), X509NameCmp(nullptr, nullptr),
                           X509NameCmp(&name, Issuer({{kCountry, 19, text("C")}}).get()),
                           X509NameCmp(&name, Issuer({{kEmail, 19, text("CN")}}).get())}),
              testing::Each(-1));
  EXPECT_EQ(X509NameCmp(&name, Issuer({kName[4], {kCountry, 22, text("CN")}}).get()), 0);
  EXPECT_EQ(ConvertPJCertIssuer2IssuerName(&name, &back), 0);
  EXPECT_EQ(attributes_of(back), kName);
  FreeIssuerName(back);
  for (X509Name *node = &name, *next = nullptr; node != nullptr; node = next) {
    next = node->next;
    Asn1Free(node->type.data);
    Asn1Free(node->value.data);
    if (node != &name) Asn1Free(node);
  }
}

}  // namespace
}  // namespace tq::abi
