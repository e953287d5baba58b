// Signatures: the chain of a "1.1.2" label, what its signers sign, and the body's own signature.

#include "abi/support.h"

namespace tq::abi {
namespace {

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

TEST(MultiSignature, EachSignerSignsAllSignaturesBeforeIt) {
  Label label;
  fill(label, "1.1.2");
  const Bytes certificates[] = {kHeadCert, kBodyCert, tlv(0x30, {})};
  std::vector<Bytes> prefixes = {{}};  // what the first signer signs is its own affair
  Listed expected;
  for (const Bytes& certificate : certificates) {
    expected.emplace_back(certificate, pattern(70, expected.size()));
    ASSERT_EQ(
        add_signer(label, prefixes.size() != 1, kSignAlg, certificate, expected.back().second), 0);
    prefixes.push_back(to_sign(label, {}));
  }
  const Label decoded = decode(encode(label));
  EXPECT_EQ(prefixes[3], parse(encode(label)).children[1].children[0].der());
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(to_sign(decoded, certificates[i]), prefixes[i]);
  EXPECT_EQ(to_sign(decoded, text("unknown")), prefixes[3]) << "signs all";
  EXPECT_EQ(encode(decoded), encode(label)) << "asking leaves the chain as it was";
  EXPECT_EQ(enumerate(decoded), expected);
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

TEST(MultiSignature, OfOtherVersionsSignsNothing) {
  Label label;
  fill_fields(label, "1.1.1");
  EXPECT_TRUE(to_sign(label, {}).empty());
  EXPECT_TRUE(to_sign(label, kBodyCert).empty());
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
