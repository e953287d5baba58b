// The certificates of the system's own bundle as signers and issuers: real names, real lengths.

#include <openssl/pem.h>
#include <openssl/x509.h>

#include "abi/support.h"

namespace tq::abi {
namespace {

using Certificate = std::unique_ptr<X509, Free<X509_free>>;
using Name = std::vector<Issuer::Attribute>;

// The issuer, or nothing where it does not fit a flat record.
Name issuer_of(const Element& element) {
  Name name;
  for (const Element& relative : element.children) {
    const Element& type = relative.children[0].children[0];
    const Element& value = relative.children[0].children[1];
    if (type.content.size() > 16 || value.content.size() > 128) return {};
    name.push_back({type.content, value.tag, value.content});
  }
  return name.size() > 10 ? Name{} : name;
}

// Whether the issuer has only attributes that are written.
bool is_kept(const char* version, const Bytes& cert, const Bytes& serial, Name name) {
  Label label;
  fill(label, version);
  set(label, SetHeadSignCert, cert);
  EXPECT_EQ(add_signer(label, true, kSignAlg, cert, pattern(64)), 0);
  const Issuer given(name);
  EXPECT_EQ(SetCertSerialAndIssuerToHead(label, serial.data(), size32(serial), given.get()), 0);
  const Bytes der = encode(label);
  if (der.empty()) return false;
  const Label decoded = decode(der);
  EXPECT_EQ(encode(decoded), der);
  EXPECT_EQ(get(decoded, GetHeadSignCert), cert);
  EXPECT_EQ(get(decoded, widened<GetHeadSerialNum>), serial);
  if (is_60(version)) return true;
  for (Issuer::Attribute& each : name) {
    if (each.tag == V_ASN1_UTF8STRING) each.tag = V_ASN1_PRINTABLESTRING;
    if (each.type == kEmail) each.tag = V_ASN1_IA5STRING;
  }
  std::uint8_t size = 0;
  PJCertIssuer* issuer = nullptr;
  EXPECT_EQ(GetCertSerialAndIssuerToHead(decoded, nullptr, &size, &issuer), 0);
  EXPECT_TRUE(attributes_of(issuer) == name);
  FreeIssuerName(issuer);
  return true;
}

TEST(CaBundle, CertificatesComeBackFromEveryVersionByteForByte) {
  const std::unique_ptr<BIO, Free<BIO_free>> file(
      BIO_new_file("/etc/ssl/certs/ca-certificates.crt", "r"));
  std::size_t issuers = 0;
  std::size_t all = 0;
  for (; const Certificate read{PEM_read_bio_X509(file.get(), nullptr, nullptr, nullptr)}; ++all) {
    const Bytes cert = written_by(i2d_X509, read.get());
    const std::vector<Element> parts = parse(cert).children[0].children;
    const std::size_t at = parts[0].tag == 0xA0 ? 1 : 0;  // behind the version
    const Bytes serial = parts[at].content;
    const Name name = issuer_of(parts[at + 2]);
    for (const char* version : kVersions) {
      EXPECT_TRUE(is_kept(version, cert, serial, {{kCommonName, 19, text("Root")}}));
      issuers += !name.empty() && is_kept(version, cert, serial, name) ? 1U : 0U;
    }
  }
  EXPECT_GT(all, 100U) << "the ca-certificates package provides more";
  EXPECT_GT(issuers, 3 * all) << "of four versions";
}

}  // namespace
}  // namespace tq::abi
