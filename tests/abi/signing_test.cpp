// Signatures: the accessors of the body, the chain of a "1.1.2" label, and real signatures over
// what the library says is to be signed.

#include <gmock/gmock.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

#include "abi/support.h"

namespace tq::abi {
namespace {

using Key = std::unique_ptr<EVP_PKEY, Free<EVP_PKEY_free>>;
using Digest = std::unique_ptr<EVP_MD_CTX, Free<EVP_MD_CTX_free>>;
using Certificate = std::unique_ptr<X509, Free<X509_free>>;

struct Scheme {
  const char* algorithm;
  const char* key_type;
  const EVP_MD* (*digest)();
};
constexpr Scheme kRsa = {"sha256WithRSAEncryption", "RSA", EVP_sha256};
constexpr Scheme kSm2 = {"SM3withSM2encryption", "SM2", EVP_sm3};  // in any case

struct Signer {
  explicit Signer(const Scheme& of) : scheme(of) {
    const std::unique_ptr<EVP_PKEY_CTX, Free<EVP_PKEY_CTX_free>> context(
        EVP_PKEY_CTX_new_from_name(nullptr, scheme.key_type, nullptr));
    EVP_PKEY* made = nullptr;
    EXPECT_EQ(EVP_PKEY_keygen_init(context.get()), 1);
    EXPECT_EQ(EVP_PKEY_generate(context.get(), &made), 1);  // RSA: 2048 bits
    key.reset(made);
    const Certificate cert(X509_new());
    X509_gmtime_adj(X509_getm_notBefore(cert.get()), 0);
    X509_gmtime_adj(X509_getm_notAfter(cert.get()), 3600);
    X509_set_pubkey(cert.get(), made);
    EXPECT_GT(X509_sign(cert.get(), made, scheme.digest()), 0);
    certificate = written_by(i2d_X509, cert.get());
  }

  [[nodiscard]] Bytes sign(const Bytes& message) const {
    const Digest context(EVP_MD_CTX_new());
    std::size_t length = 512;
    Bytes value(length);
    EXPECT_EQ(EVP_DigestSignInit(context.get(), nullptr, scheme.digest(), nullptr, key.get()), 1);
    EXPECT_EQ(EVP_DigestSign(context.get(), value.data(), &length, message.data(), message.size()),
              1);
    value.resize(length);
    return value;
  }

  Scheme scheme;
  Key key;
  Bytes certificate;
};

// With the key of a certificate as it came out of a label.
bool verify(const Scheme& scheme, const Bytes& certificate, const Bytes& value,
            const Bytes& message) {
  const std::uint8_t* at = certificate.data();
  const Certificate read(d2i_X509(nullptr, &at, static_cast<long>(certificate.size())));
  const Digest context(EVP_MD_CTX_new());
  return read != nullptr &&
         EVP_DigestVerifyInit(context.get(), nullptr, scheme.digest(), nullptr,
                              X509_get0_pubkey(read.get())) == 1 &&
         EVP_DigestVerify(context.get(), value.data(), value.size(), message.data(),
                          message.size()) == 1;
}

Bytes to_sign(TqLabel label, Bytes cert) {
  return fetch([&](std::uint8_t* buffer, std::uint32_t* size) {
    MultiSignData request{cert.empty() ? nullptr : cert.data(), size32(cert), buffer, *size};
    const std::int32_t result = GetMultiSignData(label, &request);
    *size = request.dataLen;
    return result;
  });
}

using Listed = std::vector<std::pair<Bytes, Bytes>>;  // certificates and values

Listed enumerate(TqLabel label) {
  Listed listed;
  SignEnum* signatures = nullptr;
  EXPECT_EQ(CreateEmurateSign(label, &signatures), 0);
  SignAttribute sizes{};
  while (listed.size() < 9 && GetNextSign(signatures, &sizes) == 0) {
    Bytes cert(sizes.certLen);
    Bytes value(sizes.valueLen);
    EXPECT_EQ(GetNextSign(signatures, &sizes), 0) << "a size query does not move";
    SignAttribute out{nullptr, value.data(), size32(value) - 1, cert.data(), size32(cert)};
    EXPECT_EQ(GetNextSign(signatures, &out), -1);
    out = {nullptr, value.data(), size32(value), cert.data(), size32(cert) - 1};
    EXPECT_EQ(GetNextSign(signatures, &out), -1);
    out.certLen = size32(cert) + 1;
    EXPECT_EQ(GetNextSign(signatures, &out), 0);
    EXPECT_STREQ(out.algName, kSignAlg);
    EXPECT_EQ(out.certLen, cert.size());
    EXPECT_EQ(out.valueLen, value.size());
    listed.emplace_back(cert, value);
  }
  EXPECT_EQ(GetNextSign(signatures, &sizes), 1);
  EXPECT_EQ(DestroySignEmura(signatures), 0);
  return listed;
}

TEST(HeadSignature, VerifiesOverTheMessageOfTheDecodedLabel) {
  for (const Scheme& scheme : {kRsa, kSm2}) {
    const Signer signer(scheme);
    for (const char* version : kVersions) {
      Label label;
      fill_fields(label, version);
      set(label, SetHeadSignAlg, text(scheme.algorithm));
      set(label, SetHeadSignCert, signer.certificate);
      set(label, SetHeadSignValue, signer.sign(encode(label, GetSignatureMessage)));
      const Label decoded = decode(encode(label));
      const auto holds = [&] {
        return verify(scheme, get(decoded, GetHeadSignCert), get(decoded, GetHeadSignValue),
                      encode(decoded, GetSignatureMessage));
      };
      EXPECT_TRUE(holds()) << version << scheme.algorithm;
      EXPECT_EQ(SetFileSecc(decoded, 4), 0);
      EXPECT_FALSE(holds()) << "the message covers the body";
      EXPECT_EQ(SetFileSecc(decoded, 3), 0);
      set(decoded, SetCustom, text("changed"));
      EXPECT_FALSE(holds()) << "the message covers the head";
    }
  }
}

TEST(MultiSignature, EachSignerSignsAllSignaturesBeforeIt) {
  const Signer signers[] = {Signer(kRsa), Signer(kSm2), Signer(kRsa)};
  Label label;
  fill_fields(label, "1.1.2");
  std::vector<Bytes> prefixes = {text("what the first signer signs is its own affair")};
  for (const Signer& signer : signers) {
    const bool is_first = prefixes.size() == 1;
    ASSERT_EQ(add_signer(label, !is_first, signer.scheme.algorithm, signer.certificate,
                         signer.sign(prefixes.back())),
              0);
    prefixes.push_back(to_sign(label, {}));
  }
  const Label decoded = decode(encode(label));
  EXPECT_EQ(prefixes[3], parse(encode(label)).children[1].children[0].der());
  EXPECT_TRUE(to_sign(decoded, signers[0].certificate).empty());
  EXPECT_EQ(to_sign(decoded, signers[1].certificate), prefixes[1]);
  EXPECT_EQ(to_sign(decoded, signers[2].certificate), prefixes[2]);
  EXPECT_EQ(to_sign(decoded, kHeadCert), prefixes[3]) << "an unknown signer signs all";
  EXPECT_EQ(encode(decoded), encode(label)) << "asking leaves the chain as it was";
  const Listed listed = enumerate(decoded);
  ASSERT_EQ(listed.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(listed[i].first, signers[i].certificate);
    EXPECT_TRUE(verify(signers[i].scheme, listed[i].first, listed[i].second, prefixes[i]));
  }
  // Without the append flag one signer takes the place of them all.
  ASSERT_EQ(add_signer(decoded, false, "no such algorithm", kBodyCert, pattern(5)), 0);
  EXPECT_EQ(enumerate(decoded), (Listed{{kBodyCert, pattern(5)}}));
  const Element sign = parse(encode(decoded)).children[1].children[0].children[0];
  EXPECT_EQ(sign.children[1].content, Bytes(64, 0)) << "no identifier";
  char name[64] = "x";
  SignAttribute out{name, nullptr, 0, nullptr, 0};
  EXPECT_EQ(GetBodySignAttr(decoded, &out), 0);
  EXPECT_STREQ(name, "");
}

TEST(MultiSignature, RefusesNullPointersAndHasNothingInOtherVersions) {
  Label label;
  fill_fields(label, "1.1.1");
  EXPECT_TRUE(to_sign(label, {}).empty());
  EXPECT_TRUE(to_sign(label, kBodyCert).empty());
  MultiSignData request{};
  SignEnum* signatures = nullptr;
  SignAttribute attribute{};
  EXPECT_EQ(CreateEmurateSign(label, &signatures), 0);
  EXPECT_THAT(
      (std::vector{GetMultiSignData(nullptr, &request), GetMultiSignData(label, nullptr),
                   CreateEmurateSign(nullptr, &signatures), CreateEmurateSign(label, nullptr),
                   GetNextSign(nullptr, &attribute), GetNextSign(signatures, nullptr),
                   SetBodySignAttr(nullptr, 0, &attribute), SetBodySignAttr(label, 0, nullptr),
                   GetBodySignAttr(nullptr, &attribute), GetBodySignAttr(label, nullptr),
                   FileHaveSigned(nullptr, nullptr, 0)}),
      testing::Each(-1));
  EXPECT_EQ(DestroyEmura(signatures) | DestroyEmura(nullptr) | DestroySignEmura(nullptr), 0);
}

TEST(BodySignature, IsPassedOverWhereItsOwnSetterOrItsBufferWouldRefuseIt) {
  Label label;
  fill_fields(label, "1.1");
  EXPECT_EQ(add_signer(label, true, "SM2", kHeadCert, pattern(33)), 0);
  EXPECT_EQ(enumerate(label), (Listed{{kHeadCert, pattern(96, 3)}}));
  char name[64] = {};
  Bytes bytes(10);
  SignAttribute out{name, bytes.data(), 10, bytes.data(), 10};
  EXPECT_EQ(GetBodySignAttr(label, &out), 0);
  EXPECT_STREQ(name, kSignAlg) << "of the head";
  EXPECT_EQ(bytes, kHeadCert);
  EXPECT_EQ(out.valueLen, 10U);
}

TEST(FileHaveSigned, StoresASignatureInUnsigned112LabelsOnly) {
  const Bytes ready = hex("30 03 02 01 09");
  Label label;
  for (const char* version : {"6.0", "1.1.1", "1.1.2"}) {
    set(label, GLSetVersion, text(version));
    EXPECT_EQ(FileHaveSigned(label, nullptr, 0), is_multi_sign(version) ? -1 : 1);
  }
  EXPECT_EQ(fill_bare(label), 0);
  EXPECT_EQ(FileHaveSigned(label, nullptr, 5), -1);
  EXPECT_EQ(FileHaveSigned(label, ready.data(), 0), -1);
  EXPECT_EQ(FileHaveSigned(label, ready.data(), 5), 0);
  EXPECT_EQ(FileHaveSigned(label, ready.data(), 4), 1) << "signed by now";
  const Bytes der = encode(label);
  EXPECT_EQ(parse(der).children[1].children[0].der(),
            hex("30 10  30 0E  30 07 04 05 30 03 02 01 09  06 00  03 01 00"));
}

}  // namespace
}  // namespace tq::abi
