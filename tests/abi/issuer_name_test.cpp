// Issuer names between callers' flat records and chains.

#include <gmock/gmock.h>

#include "abi/support.h"

namespace tq::abi {
namespace {

const Name kName = {{kCountry, 19, text("CN")},
                    {hex("55 04 0A"), 12, text("Org")},
                    {hex("55 04 0B"), 30, hex("00 41 00 42")},
                    {kEmail, 4, text("a@b.example")},
                    {kCommonName, 19, text("Root")}};

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
                           ConvertPJCertIssuer2IssuerName(chain, &back),
                           X509NameCmp(&name, long_value.get()),
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
