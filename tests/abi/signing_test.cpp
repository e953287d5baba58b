// Signatures: the accessors of the body, the chain of a "1.1.2" label, and real signatures over
// what the library says is to be signed.

#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>

#include "abi/support.h"

namespace tq::abi {
namespace {

template <auto kFree>
struct Free {
  template <class T>
  void operator()(T* object) const {
    kFree(object);
  }
};
using Key = std::unique_ptr<EVP_PKEY, Free<EVP_PKEY_free>>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, Free<EVP_PKEY_CTX_free>>;
using Digest = std::unique_ptr<EVP_MD_CTX, Free<EVP_MD_CTX_free>>;
using Certificate = std::unique_ptr<X509, Free<X509_free>>;
using EcSignature = std::unique_ptr<ECDSA_SIG, Free<ECDSA_SIG_free>>;

constexpr int kHalf = 32;  // octets of r and of s

struct Scheme {
  const char* algorithm;
  const char* key_type;
  const EVP_MD* (*digest)();
  bool is_sm2;  // whose value is r and s, one behind the other
};
constexpr Scheme kRsa = {"sha256WithRSAEncryption", "RSA", EVP_sha256, false};
constexpr Scheme kSm2 = {"sm3WithSM2Encryption", "SM2", EVP_sm3, true};

Bytes raw_of(const Bytes& der) {
  const std::uint8_t* at = der.data();
  const EcSignature signature(d2i_ECDSA_SIG(nullptr, &at, static_cast<long>(der.size())));
  Bytes raw(2 * kHalf);
  EXPECT_EQ(BN_bn2binpad(ECDSA_SIG_get0_r(signature.get()), raw.data(), kHalf), kHalf);
  EXPECT_EQ(BN_bn2binpad(ECDSA_SIG_get0_s(signature.get()), raw.data() + kHalf, kHalf), kHalf);
  return raw;
}

Bytes der_of(const Bytes& raw) {
  if (raw.size() != 2 * kHalf) return {};
  const EcSignature signature(ECDSA_SIG_new());
  ECDSA_SIG_set0(signature.get(), BN_bin2bn(raw.data(), kHalf, nullptr),
                 BN_bin2bn(raw.data() + kHalf, kHalf, nullptr));
  std::uint8_t* der = nullptr;
  const int length = i2d_ECDSA_SIG(signature.get(), &der);
  Bytes bytes(der, der + length);
  OPENSSL_free(der);
  return bytes;
}

class Signer {
 public:
  Signer(const Scheme& scheme, int serial) : scheme_(scheme) {
    const KeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, scheme.key_type, nullptr));
    EVP_PKEY* key = nullptr;
    EXPECT_EQ(EVP_PKEY_keygen_init(context.get()), 1);
    EXPECT_EQ(EVP_PKEY_generate(context.get(), &key), 1);  // RSA: 2048 bits
    key_.reset(key);
    const Certificate made(X509_new());
    X509_set_version(made.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(made.get()), serial);
    X509_gmtime_adj(X509_getm_notBefore(made.get()), 0);
    X509_gmtime_adj(X509_getm_notAfter(made.get()), 3600);
    X509_set_pubkey(made.get(), key);
    EXPECT_GT(X509_sign(made.get(), key, scheme.digest()), 0);
    std::uint8_t* der = nullptr;
    const int length = i2d_X509(made.get(), &der);
    certificate_.assign(der, der + length);
    OPENSSL_free(der);
  }

  [[nodiscard]] const Bytes& certificate() const { return certificate_; }
  [[nodiscard]] const Scheme& scheme() const { return scheme_; }

  [[nodiscard]] Bytes sign(const Bytes& message) const {
    const Digest context(EVP_MD_CTX_new());
    std::size_t length = 0;
    EXPECT_EQ(EVP_DigestSignInit(context.get(), nullptr, scheme_.digest(), nullptr, key_.get()), 1);
    EXPECT_EQ(EVP_DigestSign(context.get(), nullptr, &length, message.data(), message.size()), 1);
    Bytes value(length);
    EXPECT_EQ(EVP_DigestSign(context.get(), value.data(), &length, message.data(), message.size()),
              1);
    value.resize(length);
    return scheme_.is_sm2 ? raw_of(value) : value;
  }

 private:
  Scheme scheme_;
  Key key_;
  Bytes certificate_;
};

// With the key of a certificate as it came out of a label.
bool verify(const Scheme& scheme, const Bytes& certificate, const Bytes& value,
            const Bytes& message) {
  const std::uint8_t* at = certificate.data();
  const Certificate read(d2i_X509(nullptr, &at, static_cast<long>(certificate.size())));
  if (!read) return false;
  const Bytes signature = scheme.is_sm2 ? der_of(value) : value;
  const Digest context(EVP_MD_CTX_new());
  return EVP_DigestVerifyInit(context.get(), nullptr, scheme.digest(), nullptr,
                              X509_get0_pubkey(read.get())) == 1 &&
         EVP_DigestVerify(context.get(), signature.data(), signature.size(), message.data(),
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

struct Listed {
  Bytes cert;
  Bytes value;
};

std::vector<Listed> enumerate(TqLabel label, const Bytes& name) {
  std::vector<Listed> listed;
  SignEnum* signatures = nullptr;
  EXPECT_EQ(CreateEmurateSign(label, &signatures), 0);
  for (;;) {
    SignAttribute sizes{};
    const std::int32_t more = GetNextSign(signatures, &sizes);
    SignAttribute same_sizes{};
    EXPECT_EQ(GetNextSign(signatures, &same_sizes), more) << "a size query does not move";
    if (more != 0) {
      EXPECT_EQ(more, 1);
      break;
    }
    EXPECT_EQ(sizes.algName, nullptr);
    EXPECT_EQ(sizes.certLen, same_sizes.certLen);
    EXPECT_EQ(sizes.valueLen, same_sizes.valueLen);
    Listed entry{Bytes(sizes.certLen + 1), Bytes(sizes.valueLen + 1)};
    SignAttribute out{nullptr, entry.value.data(), sizes.valueLen - 1, entry.cert.data(),
                      sizes.certLen};
    EXPECT_EQ(GetNextSign(signatures, &out), sizes.valueLen == 0 ? 0 : -1);
    out.valueLen = sizes.valueLen;
    out.certLen = sizes.certLen - 1;
    EXPECT_EQ(GetNextSign(signatures, &out), -1);
    out.certLen = sizes.certLen + 1;
    EXPECT_EQ(GetNextSign(signatures, &out), 0);
    EXPECT_EQ(text(out.algName), name);
    EXPECT_EQ(out.certLen, sizes.certLen);
    EXPECT_EQ(out.valueLen, sizes.valueLen);
    entry.cert.resize(out.certLen);
    entry.value.resize(out.valueLen);
    listed.push_back(entry);
    if (listed.size() > 9) break;
  }
  EXPECT_EQ(DestroySignEmura(signatures), 0);
  return listed;
}

TEST(HeadSignature, VerifiesOverTheMessageOfTheDecodedLabel) {
  for (const Scheme& scheme : {kRsa, kSm2}) {
    const Signer signer(scheme, 1);
    for (const char* version : kVersions) {
      SCOPED_TRACE(std::string(version) + " " + scheme.algorithm);
      Label label;
      fill_fields(label, version);
      set(label, SetHeadSignAlg, text(scheme.algorithm));
      set(label, SetHeadSignCert, signer.certificate());
      set(label, SetHeadSignValue, signer.sign(encode(label, GetSignatureMessage)));
      const Label decoded = decode(encode(label));
      ASSERT_TRUE(decoded);
      EXPECT_EQ(get(decoded, GetHeadSignAlg), text(scheme.algorithm));
      const auto holds = [&] {
        return verify(scheme, get(decoded, GetHeadSignCert), get(decoded, GetHeadSignValue),
                      encode(decoded, GetSignatureMessage));
      };
      EXPECT_TRUE(holds());
      EXPECT_EQ(SetFileSecc(decoded, 4), 0);
      EXPECT_FALSE(holds()) << "the message covers the body";
      EXPECT_EQ(SetFileSecc(decoded, 3), 0);
      EXPECT_TRUE(holds());
      set(decoded, SetCustom, text("changed"));
      EXPECT_FALSE(holds()) << "the message covers the head";
    }
  }
}

TEST(MultiSignature, EachSignerSignsAllSignaturesBeforeIt) {
  const Signer signers[] = {Signer(kRsa, 1), Signer(kSm2, 2), Signer(kRsa, 3)};
  Label label;
  fill_fields(label, "1.1.2");
  const Bytes first_message = text("what the first signer signs is its own affair");
  std::vector<Bytes> prefixes;
  for (const Signer& signer : signers) {
    const bool is_first = prefixes.empty();
    const Bytes before = is_first ? first_message : to_sign(label, {});
    prefixes.push_back(before);
    if (!is_first) {
      EXPECT_EQ(to_sign(label, signer.certificate()), before) << "not among the signers yet";
    }
    ASSERT_EQ(add_signer(label, !is_first, signer.scheme().algorithm, signer.certificate(),
                         signer.sign(before)),
              0);
  }
  const Label decoded = decode(encode(label));
  ASSERT_TRUE(decoded);
  EXPECT_EQ(encode(decoded), encode(label));
  EXPECT_EQ(to_sign(decoded, {}), parse(encode(label)).children[1].children[0].der());
  EXPECT_TRUE(to_sign(decoded, signers[0].certificate()).empty());
  EXPECT_EQ(to_sign(decoded, signers[1].certificate()), prefixes[1]);
  EXPECT_EQ(to_sign(decoded, signers[2].certificate()), prefixes[2]);
  EXPECT_EQ(to_sign(decoded, kHeadCert), to_sign(decoded, {})) << "an unknown signer signs all";
  EXPECT_EQ(encode(decoded), encode(label)) << "asking leaves the chain as it was";
  const std::vector<Listed> listed = enumerate(decoded, text(kSignAlg));
  ASSERT_EQ(listed.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(listed[i].cert, signers[i].certificate());
    EXPECT_TRUE(verify(signers[i].scheme(), listed[i].cert, listed[i].value, prefixes[i]));
  }
  // Without the append flag one signer takes the place of them all.
  ASSERT_EQ(add_signer(decoded, false, kRsa.algorithm, kBodyCert, pattern(5)), 0);
  EXPECT_EQ(enumerate(decoded, text(kSignAlg)).size(), 1U);
}

TEST(MultiSignature, RefusesNullPointersAndHasNothingInOtherVersions) {
  for (const char* version : {"6.0", "1.1", "1.1.1"}) {
    Label label;
    fill_fields(label, version);
    EXPECT_TRUE(to_sign(label, {}).empty());
    EXPECT_TRUE(to_sign(label, kBodyCert).empty());
  }
  Label label;
  fill(label, "1.1.2");
  MultiSignData request{};
  EXPECT_EQ(GetMultiSignData(nullptr, &request), -1);
  EXPECT_EQ(GetMultiSignData(label, nullptr), -1);
  SignEnum* signatures = nullptr;
  EXPECT_EQ(CreateEmurateSign(nullptr, &signatures), -1);
  EXPECT_EQ(CreateEmurateSign(label, nullptr), -1);
  SignAttribute attribute{};
  EXPECT_EQ(GetNextSign(nullptr, &attribute), -1);
  EXPECT_EQ(SetBodySignAttr(nullptr, 0, &attribute), -1);
  EXPECT_EQ(SetBodySignAttr(label, 0, nullptr), -1);
  EXPECT_EQ(GetBodySignAttr(nullptr, &attribute), -1);
  EXPECT_EQ(DestroySignEmura(nullptr), 0);
  EXPECT_EQ(DestroyEmura(nullptr), 0);
  ASSERT_EQ(CreateEmurateSign(label, &signatures), 0);
  EXPECT_EQ(GetNextSign(signatures, nullptr), -1);
  EXPECT_EQ(DestroyEmura(signatures), 0);
}

TEST(MultiSignature, NameThatIsNotKnownLeavesAnAlgorithmOfZeros) {
  Label label;
  fill(label, "1.1.2");
  ASSERT_EQ(add_signer(label, false, "no such algorithm", kBodyCert, pattern(5)), 0);
  const Element sign = parse(encode(label)).children[1].children[0].children[0];
  EXPECT_EQ(sign.children[1].content, Bytes(64, 0));
  char name[64] = "x";
  Bytes value(5);
  Bytes cert(kBodyCert.size());
  SignAttribute out{name, value.data(), 5, cert.data(), size32(cert)};
  EXPECT_EQ(GetBodySignAttr(label, &out), 0);
  EXPECT_STREQ(name, "");
}

TEST(BodySignature, AttributesComeBackWithTheNameOfTheirAlgorithm) {
  for (const char* version : kVersions) {
    SCOPED_TRACE(version);
    Label label;
    fill(label, version);
    ASSERT_EQ(add_signer(label, false, "SM3withSM2Encryption", kHeadCert, pattern(64)), 0);
    char name[64] = {};
    Bytes value(64);
    Bytes cert(64);
    SignAttribute out{name, value.data(), 64, cert.data(), 64};
    EXPECT_EQ(GetBodySignAttr(label, &out), 0);
    EXPECT_STREQ(name, is_multi_sign(version) ? "sm3WithSM2Encryption" : kSignAlg);
    EXPECT_EQ(value, pattern(64));
    cert.resize(out.certLen);
    EXPECT_EQ(cert, kHeadCert);
    // An attribute without a value changes nothing; elsewhere values come in units of 32.
    const SignAttribute nothing{};
    EXPECT_EQ(SetBodySignAttr(label, 1, &nothing), 0);
    if (!is_multi_sign(version)) {
      EXPECT_EQ(add_signer(label, true, kSignAlg, kBodyCert, pattern(33)), 0);
      EXPECT_EQ(get(label, GetBodySignCert), kBodyCert);
      EXPECT_EQ(get(label, GetBodySigVal), pattern(64));
      const std::vector<Listed> listed = enumerate(label, text(kSignAlg));
      ASSERT_EQ(listed.size(), 1U);
      EXPECT_EQ(listed[0].value, pattern(64));
    }
  }
}

TEST(FileHaveSigned, StoresASignatureInUnsigned112LabelsOnly) {
  const Bytes ready = hex("30 03 02 01 09");
  EXPECT_EQ(FileHaveSigned(nullptr, ready.data(), 5), -1);
  for (const char* version : {"6.0", "1.1", "1.1.1"}) {
    Label label;
    fill(label, version);
    const Bytes before = encode(label);
    EXPECT_EQ(FileHaveSigned(label, ready.data(), 5), 1);
    EXPECT_EQ(FileHaveSigned(label, nullptr, 0), 1);
    EXPECT_EQ(encode(label), before);
  }
  Label label;
  set(label, GLSetVersion, text("1.1.2"));
  EXPECT_EQ(fill_bare(label), 0);
  EXPECT_EQ(FileHaveSigned(label, nullptr, 5), -1);
  EXPECT_EQ(FileHaveSigned(label, ready.data(), 0), -1);
  EXPECT_EQ(FileHaveSigned(label, ready.data(), 5), 0);
  EXPECT_EQ(FileHaveSigned(label, ready.data(), 4), 1) << "signed by now";
  EXPECT_EQ(FileHaveSigned(label, nullptr, 0), 1);
  const Bytes der = encode(label);
  EXPECT_EQ(parse(der).children[1].children[0].der(),
            hex("30 10  30 0E  30 07 04 05 30 03 02 01 09  06 00  03 01 00"));
  EXPECT_EQ(encode(decode(der)), der);
}

TEST(Algorithms, ComeBackAsTheBaseOfTheirName) {
  struct Case {
    const char* name;
    const char* dotted;
    const char* base;
    std::uint32_t key = 9;  // left alone
    std::uint8_t mode = 9;
    std::int32_t result = 0;
  };
  const Case cases[] = {
      {"SM1", "1.2.156.10197.1.102", "SM1"},  // first and last row, and rows that begin alike
      {"sha1WithIBCCS-1Encryption", "2.16.840.1.114334.1.5.2", "sha1WithIBCCS-1Encryption"},
      {"sha1withrsaencryption", "1.2.840.113549.1.1.5", "sha1WithRSAEncryption"},
      {"AES", "2.16.840.1.101.3.4.1", "AES"},
      {"aes.192.cbc", "2.16.840.1.101.3.4.1.22", "AES", 192, 1},
      {"AES.256.CFB", "2.16.840.1.101.3.4.1.44", "AES", 256, 1},
      {"AES.128.CBC", "2.16.840.1.101.3.4.1.2", "AES", 9, 9, 257},
      {"DES.CBC", "1.3.14.3.2.7", "DES", 9, 1},
      {"DES_3.ECB", "1.3.36.3.1.3.1", "DES_3", 9, 1},
      {"E", "1.2.840.113549.1.9.1", "E"},
      {"ou", "2.5.4.11", "OU"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    const std::unique_ptr<ASN1_OBJECT, Free<ASN1_OBJECT_free>> object(OBJ_txt2obj(each.dotted, 1));
    const Bytes expected(OBJ_get0_data(object.get()),
                         OBJ_get0_data(object.get()) + OBJ_length(object.get()));
    const Bytes name = text(each.name);
    const Bytes octets = fetch([&](std::uint8_t* to, std::uint32_t* size) {
      return SflAlg2OID(name.data(), size32(name), 0xABCDEF00, 0, to, size);
    });
    EXPECT_EQ(octets, expected);
    char base[33];
    std::memset(base, 'x', sizeof base);
    std::uint8_t mode = 9;
    std::uint32_t key = 9;
    EXPECT_EQ(SflOID2Alg(expected.data(), size32(expected), base, &mode, &key), each.result);
    const std::size_t length = std::strlen(each.base);
    EXPECT_EQ(std::string(base, length + 1), std::string(each.base) + 'x') << "no terminator";
    EXPECT_EQ(mode, each.mode);
    EXPECT_EQ(key, each.key);
    EXPECT_EQ(SflOID2Alg(expected.data(), size32(expected), base, nullptr, nullptr), 0);
  }
}

TEST(Algorithms, JoinTheirKeyLengthAndMode) {
  struct Case {
    const char* name;
    std::uint32_t mode;
    std::int32_t key;
    Bytes expected;
  };
  const Case cases[] = {
      {"AES", 2, 256, hex("60 86 48 01 65 03 04 01 2A")},
      {"aes", 0x12345604, 192, hex("60 86 48 01 65 03 04 01 18")},
      {"DES", 1, 0, hex("2B 0E 03 02 06")},
      {"AES.192", 3, 0, hex("60 86 48 01 65 03 04 01 17")},
      {"AES", 2, 128, {}},
      {"AES", 5, 256, {}},
      {"AES", 2, -1, {}},
      {"AES", 2, 224, {}},
      {"AES", 0, 256, {}},
      {"none such", 0, 0, {}},
      {"AES.256.CBC.CBC", 0, 0, {}},
      {"sha256WithRSAEncryption.........", 0, 0, {}},  // 32 bytes
      {"sha256WithRSAEncryption.......", 2, 256, {}},
  };
  for (const Case& each : cases) {
    const Bytes name = text(each.name);
    const Bytes octets = fetch([&](std::uint8_t* to, std::uint32_t* size) {
      return SflAlg2OID(name.data(), size32(name), each.mode, each.key, to, size);
    });
    EXPECT_EQ(octets, each.expected) << each.name << each.mode << each.key;
  }
  std::uint32_t size = 9;
  std::uint8_t room[16];
  char name[33];
  EXPECT_EQ(SflAlg2OID(nullptr, 3, 0, 0, room, &size), -1);
  EXPECT_EQ(SflAlg2OID(room, 0, 0, 0, room, &size), -1);
  EXPECT_EQ(SflAlg2OID(text("RSA").data(), 3, 0, 0, room, nullptr), -1);
  const Bytes rsa = hex("2A 86 48 86 F7 0D 01 01 01");
  EXPECT_EQ(SflOID2Alg(nullptr, 9, name, nullptr, nullptr), -1);
  EXPECT_EQ(SflOID2Alg(rsa.data(), 0, name, nullptr, nullptr), -1);
  EXPECT_EQ(SflOID2Alg(rsa.data(), 9, nullptr, nullptr, nullptr), -1);
  for (const char* unknown :
       {"00", "FF", "2A 86 48 86 F7 0D 01 01 01 00", "60 86 48 01 65 03 04"}) {
    const Bytes octets = hex(unknown);
    EXPECT_EQ(SflOID2Alg(octets.data(), size32(octets), name, nullptr, nullptr), -1) << unknown;
  }
}

TEST(HeadSignAlg, IsATextIn60AndAnIdentifierIn11) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    set(label, SetHeadSignAlg, text("SHA1withRSAencryption"));
    EXPECT_EQ(get(label, GetHeadSignAlg),
              text(is_60(version) ? "SHA1withRSAencryption" : "sha1WithRSAEncryption"));
    const Element sign = parse(encode(label)).children[0].children[is_60(version) ? 3 : 8];
    EXPECT_EQ(sign.children[1].der(), is_60(version) ? tlv(0x13, text("SHA1withRSAencryption"))
                                                     : hex("06 09 2A 86 48 86 F7 0D 01 01 05"));
    const Bytes unknown = text("unknown");
    EXPECT_EQ(SetHeadSignAlg(label, unknown.data(), 7), is_60(version) ? 0 : -1);
    EXPECT_EQ(get(label, GetHeadSignAlg), is_60(version) ? unknown : Bytes{});
    EXPECT_EQ(SetHeadSignAlg(nullptr, unknown.data(), 7), -1);
    EXPECT_EQ(SetHeadSignAlg(label, nullptr, 7), -1);
    std::uint32_t size = 0;
    EXPECT_EQ(GetHeadSignAlg(nullptr, nullptr, &size), -1);
    EXPECT_EQ(GetHeadSignAlg(label, nullptr, nullptr), -1);
  }
  Label none;
  EXPECT_EQ(SetHeadSignAlg(none, text("RSA").data(), 3), -1);
}

}  // namespace
}  // namespace tq::abi
