// The certificates of the system's own bundle as signers and issuers: real names, real lengths.

#include <openssl/pem.h>
#include <openssl/x509.h>

#include <memory>
#include <optional>

#include "abi/support.h"

namespace tq::abi {
namespace {

struct FreeX509 {
  void operator()(X509* certificate) const { X509_free(certificate); }
};
struct FreeBio {
  void operator()(BIO* file) const { BIO_free(file); }
};
using Certificate = std::unique_ptr<X509, FreeX509>;

std::vector<Certificate> read_bundle() {
  std::vector<Certificate> bundle;
  const std::unique_ptr<BIO, FreeBio> file(BIO_new_file("/etc/ssl/certs/ca-certificates.crt", "r"));
  while (file != nullptr) {
    bundle.emplace_back(PEM_read_bio_X509(file.get(), nullptr, nullptr, nullptr));
    if (bundle.back() == nullptr) {
      bundle.pop_back();
      break;
    }
  }
  return bundle;
}

Bytes der_of(const X509* certificate) {
  std::uint8_t* der = nullptr;
  const int length = i2d_X509(certificate, &der);
  Bytes bytes(der, der + length);
  OPENSSL_free(der);
  return bytes;
}

Bytes serial_of(const X509* certificate) {
  std::uint8_t* der = nullptr;
  const int length = i2d_ASN1_INTEGER(X509_get0_serialNumber(certificate), &der);
  Bytes content(der + 2, der + length);
  OPENSSL_free(der);
  return content;
}

// The issuer where a label can hold it.
std::optional<std::vector<Issuer::Attribute>> issuer_of(const X509* certificate) {
  const X509_NAME* name = X509_get_issuer_name(certificate);
  std::vector<Issuer::Attribute> attributes;
  for (int i = 0; i < X509_NAME_entry_count(name); ++i) {
    const X509_NAME_ENTRY* entry = X509_NAME_get_entry(name, i);
    const ASN1_OBJECT* type = X509_NAME_ENTRY_get_object(entry);
    const ASN1_STRING* value = X509_NAME_ENTRY_get_data(entry);
    const int kind = OBJ_obj2nid(type);
    const int tag = ASN1_STRING_type(value);
    const bool known_type = kind == NID_commonName || kind == NID_countryName ||
                            kind == NID_localityName || kind == NID_stateOrProvinceName ||
                            kind == NID_organizationName || kind == NID_organizationalUnitName ||
                            kind == NID_pkcs9_emailAddress;
    const bool known_tag = tag == V_ASN1_PRINTABLESTRING || tag == V_ASN1_UTF8STRING ||
                           tag == V_ASN1_IA5STRING || tag == V_ASN1_BMPSTRING;
    const bool alone = X509_NAME_ENTRY_set(entry) == i;
    if (!known_type || !known_tag || !alone || ASN1_STRING_length(value) > 128) return {};
    const std::uint8_t* octets = OBJ_get0_data(type);
    const std::uint8_t* bytes = ASN1_STRING_get0_data(value);
    attributes.push_back({{octets, octets + OBJ_length(type)},
                          static_cast<std::uint32_t>(tag),
                          {bytes, bytes + ASN1_STRING_length(value)}});
  }
  if (attributes.empty() || attributes.size() > 10) return {};
  return attributes;
}

void expect_issuer(TqLabel label, const Bytes& serial,
                   const std::vector<Issuer::Attribute>& expected) {
  Bytes room(serial.size());
  auto size = static_cast<std::uint8_t>(room.size());
  PJCertIssuer* issuer = nullptr;
  ASSERT_EQ(GetCertSerialAndIssuerToHead(label, room.data(), &size, &issuer), 0);
  EXPECT_EQ(room, serial);
  ASSERT_EQ(issuer == nullptr, expected.empty());
  if (issuer == nullptr) return;
  EXPECT_TRUE(attributes_of(issuer) == expected);
  FreeIssuerName(issuer);
}

TEST(CaBundle, CertificatesComeBackFromEveryVersionByteForByte) {
  const std::vector<Certificate> bundle = read_bundle();
  ASSERT_GT(bundle.size(), 100U) << "the ca-certificates package provides more";
  std::size_t issuers = 0;
  for (const Certificate& certificate : bundle) {
    const Bytes cert = der_of(certificate.get());
    const Bytes serial = serial_of(certificate.get());
    const auto attributes = issuer_of(certificate.get());
    issuers += attributes ? 1U : 0U;
    for (const char* version : kVersions) {
      Label label;
      fill(label, version);
      set(label, SetHeadSignCert, cert);
      set(label, SetHeadSerialNum, serial);
      if (is_multi_sign(version)) {
        ASSERT_EQ(add_signer(label, false, kSignAlg, cert, pattern(256)), 0);
        ASSERT_EQ(add_signer(label, true, kSignAlg, cert, pattern(64)), 0);
      } else {
        set(label, SetBodySignCert, cert);
        set(label, SetBodySigVal, pattern(256));
      }
      if (attributes) {
        const Issuer issuer(*attributes);
        ASSERT_EQ(SetCertSerialAndIssuerToHead(label, serial.data(), size32(serial), issuer.get()),
                  0);
      }
      const Bytes der = encode(label);
      ASSERT_FALSE(der.empty());
      const Label decoded = decode(der);
      ASSERT_TRUE(decoded);
      EXPECT_EQ(encode(decoded), der);
      EXPECT_EQ(get(decoded, GetHeadSignCert), cert);
      EXPECT_EQ(get(decoded, GetBodySignCert), is_multi_sign(version) ? Bytes{} : cert);
      const Element sign = parse(der).children[0].children[is_60(version) ? 3 : 8];
      EXPECT_EQ(sign.children[0].der(), cert);
      if (!attributes) continue;
      std::vector<Issuer::Attribute> expected = *attributes;
      for (Issuer::Attribute& each : expected) {
        if (each.tag == V_ASN1_UTF8STRING) each.tag = V_ASN1_PRINTABLESTRING;
        if (each.type == kEmail) each.tag = V_ASN1_IA5STRING;
      }
      if (is_60(version)) expected.clear();
      expect_issuer(decoded, serial, expected);
    }
  }
  EXPECT_GT(issuers, 100U) << "of " << bundle.size();
  RecordProperty("certificates", static_cast<int>(bundle.size()));
  RecordProperty("issuers", static_cast<int>(issuers));
}

}  // namespace
}  // namespace tq::abi
