#include "crypto/algorithms.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <string>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

// X.690 8.19: the first two numbers as one, each number in groups of seven bits.
Bytes object_id(std::string_view dotted) {
  std::vector<std::uint32_t> numbers = {0};
  for (const char character : dotted) {
    if (character == '.') {
      numbers.push_back(0);
    } else {
      numbers.back() = numbers.back() * 10 + static_cast<std::uint32_t>(character - '0');
    }
  }
  numbers[1] += 40 * numbers[0];
  Bytes octets;
  for (std::size_t i = 1; i < numbers.size(); ++i) {
    std::uint32_t shift = 28;
    while (shift != 0 && numbers[i] >> shift == 0) shift -= 7;
    for (; shift != 0; shift -= 7) {
      octets.push_back(static_cast<std::uint8_t>(0x80 | (numbers[i] >> shift & 0x7F)));
    }
    octets.push_back(static_cast<std::uint8_t>(numbers[i] & 0x7F));
  }
  return octets;
}

constexpr std::uint8_t kUntouched = 0x77;

struct Algorithm {
  const char* name;
  const char* dotted;
  const char* base;
  std::uint32_t key_length = kUntouched;
  std::uint8_t mode = kUntouched;
  std::int32_t result = 0;
};

const Algorithm kAlgorithms[] = {
    {"SM1", "1.2.156.10197.1.102", "SM1"},
    {"SSF33", "1.2.156.10197.1.103", "SSF33"},
    {"SM4", "1.2.156.10197.1.104", "SM4"},
    {"SM2", "1.2.156.10197.1.301", "SM2"},
    {"sm3WithSM2Encryption", "1.2.156.10197.1.501", "sm3WithSM2Encryption"},
    {"sm3WithRSAEncryption", "1.2.156.10197.1.504", "sm3WithRSAEncryption"},
    {"RSA", "1.2.840.113549.1.1.1", "RSA"},
    {"md2WithRSAEncryption", "1.2.840.113549.1.1.2", "md2WithRSAEncryption"},
    {"md4WithRSAEncryption", "1.2.840.113549.1.1.3", "md4WithRSAEncryption"},
    {"md5WithRSAEncryption", "1.2.840.113549.1.1.4", "md5WithRSAEncryption"},
    {"sha1WithRSAEncryption", "1.2.840.113549.1.1.5", "sha1WithRSAEncryption"},
    {"sha256WithRSAEncryption", "1.2.840.113549.1.1.11", "sha256WithRSAEncryption"},
    {"sha384WithRSAEncryption", "1.2.840.113549.1.1.12", "sha384WithRSAEncryption"},
    {"sha512WithRSAEncryption", "1.2.840.113549.1.1.13", "sha512WithRSAEncryption"},
    {"sha224WithRSAEncryption", "1.2.840.113549.1.1.14", "sha224WithRSAEncryption"},
    {"E", "1.2.840.113549.1.9.1", "E"},
    {"DES.ECB", "1.3.14.3.2.6", "DES", kUntouched, 1},
    {"DES.CBC", "1.3.14.3.2.7", "DES", kUntouched, 1},
    {"DES.OFB", "1.3.14.3.2.8", "DES", kUntouched, 1},
    {"DES", "1.3.14.3.2.9", "DES"},
    {"3DES", "1.3.14.3.2.17", "3DES"},
    {"DES_3", "1.3.36.3.1.3", "DES_3"},
    {"DES_3.ECB", "1.3.36.3.1.3.1", "DES_3", kUntouched, 1},
    {"DES_3.CBC", "1.3.36.3.1.3.2", "DES_3", kUntouched, 1},
    {"CN", "2.5.4.3", "CN"},
    {"SN", "2.5.4.5", "SN"},
    {"C", "2.5.4.6", "C"},
    {"L", "2.5.4.7", "L"},
    {"ST", "2.5.4.8", "ST"},
    {"O", "2.5.4.10", "O"},
    {"OU", "2.5.4.11", "OU"},
    {"AES", "2.16.840.1.101.3.4.1", "AES"},
    {"AES.128.ECB", "2.16.840.1.101.3.4.1.1", "AES", kUntouched, kUntouched, 257},
    {"AES.128.CBC", "2.16.840.1.101.3.4.1.2", "AES", kUntouched, kUntouched, 257},
    {"AES.128.OFB", "2.16.840.1.101.3.4.1.3", "AES", kUntouched, kUntouched, 257},
    {"AES.128.CFB", "2.16.840.1.101.3.4.1.4", "AES", kUntouched, kUntouched, 257},
    {"AES.192.ECB", "2.16.840.1.101.3.4.1.21", "AES", 192, 1},
    {"AES.192.CBC", "2.16.840.1.101.3.4.1.22", "AES", 192, 1},
    {"AES.192.OFB", "2.16.840.1.101.3.4.1.23", "AES", 192, 1},
    {"AES.192.CFB", "2.16.840.1.101.3.4.1.24", "AES", 192, 1},
    {"AES.256.ECB", "2.16.840.1.101.3.4.1.41", "AES", 256, 1},
    {"AES.256.CBC", "2.16.840.1.101.3.4.1.42", "AES", 256, 1},
    {"AES.256.OFB", "2.16.840.1.101.3.4.1.43", "AES", 256, 1},
    {"AES.256.CFB", "2.16.840.1.101.3.4.1.44", "AES", 256, 1},
    {"IBCCS-1", "2.16.840.1.114334.1.5.1", "IBCCS-1"},
    {"sha1WithIBCCS-1Encryption", "2.16.840.1.114334.1.5.2", "sha1WithIBCCS-1Encryption"},
};

std::optional<Bytes> to_object_id(std::string name, std::uint32_t mode = 0,
                                  std::int32_t key_length = 0) {
  const Bytes exact = text(name);  // ends without a NUL
  Bytes octets(16);
  std::uint32_t length = 16;
  const auto size = static_cast<std::uint32_t>(exact.size());
  if (SflAlg2OID(exact.data(), size, mode, key_length, octets.data(), &length) != 0) {
    EXPECT_EQ(length, 16U);
    return std::nullopt;
  }
  octets.resize(length);
  return octets;
}

struct Named {
  std::int32_t result;
  std::string name;
  std::uint8_t mode = kUntouched;
  std::uint32_t key_length = kUntouched;
};

Named to_name(const Bytes& octets) {
  Named named{};
  char name[kAlgorithmNameRoom] = {};
  named.mode = kUntouched;
  named.key_length = kUntouched;
  named.result = SflOID2Alg(octets.data(), static_cast<std::uint32_t>(octets.size()), name,
                            &named.mode, &named.key_length);
  named.name = name;
  return named;
}

TEST(AlgorithmTable, ConvertsEveryNameToItsIdentifierInAnyCase) {
  for (const Algorithm& algorithm : kAlgorithms) {
    std::string name = algorithm.name;
    EXPECT_EQ(to_object_id(name), object_id(algorithm.dotted)) << name;
    for (char& character : name) character = static_cast<char>(std::tolower(character));
    EXPECT_EQ(to_object_id(name), object_id(algorithm.dotted)) << name;
    for (char& character : name) character = static_cast<char>(std::toupper(character));
    EXPECT_EQ(to_object_id(name), object_id(algorithm.dotted)) << name;
  }
}

TEST(AlgorithmTable, ConvertsEveryIdentifierToTheBaseOfItsName) {
  for (const Algorithm& algorithm : kAlgorithms) {
    const Named named = to_name(object_id(algorithm.dotted));
    EXPECT_EQ(named.result, algorithm.result) << algorithm.name;
    EXPECT_EQ(named.name, algorithm.base);
    EXPECT_EQ(named.mode, algorithm.mode) << algorithm.name;
    EXPECT_EQ(named.key_length, algorithm.key_length) << algorithm.name;
  }
}

TEST(AlgorithmTable, DoesNotTakeABeginningOrAContinuationForARow) {
  const auto is_row = [](const Bytes& octets) {
    return std::ranges::any_of(kAlgorithms, [&](const Algorithm& algorithm) {
      return object_id(algorithm.dotted) == octets;
    });
  };
  std::size_t checked = 0;
  for (const Algorithm& algorithm : kAlgorithms) {
    for (const int change : {-1, 0x00, 0x01, 0x7F, 0xFF}) {
      Bytes octets = object_id(algorithm.dotted);
      if (change < 0) {
        octets.pop_back();
      } else {
        octets.push_back(static_cast<std::uint8_t>(change));
      }
      if (is_row(octets)) continue;
      ++checked;
      const Named named = to_name(octets);
      EXPECT_EQ(named.result, -1) << algorithm.name << ' ' << change;
      EXPECT_EQ(named.name, "");
    }
  }
  EXPECT_GT(checked, 200U);
  EXPECT_EQ(to_name(object_id("2.16.840.1.101.3.4")).result, -1);
  EXPECT_EQ(to_name(hex("00")).result, -1);
  EXPECT_EQ(to_name(hex("FF FF")).result, -1);
}

TEST(AlgorithmTable, HasRoomForMoreRows) {
  ASSERT_EQ(g_ReflectOID.size(), 64U);
  for (std::size_t i = std::size(kAlgorithms); i < g_ReflectOID.size(); ++i) {
    EXPECT_EQ(g_ReflectOID[i].name, nullptr);
    EXPECT_EQ(g_ReflectOID[i].length, 0U);
    EXPECT_EQ(g_ReflectOID[i].octets, nullptr);
  }
}

TEST(AlgorithmNames, JoinKeyLengthAndMode) {
  const struct {
    const char* base;
    std::uint8_t mode;
    std::int32_t key_length;
    const char* joined;  // null where it fails
  } cases[] = {
      {"AES", 0, 128, nullptr},       {"AES", 2, 128, nullptr},     {"AES", 0, 1, nullptr},
      {"AES", 0, -64, nullptr},       {"AES", 0, 0x10040, nullptr}, {"AES", 5, 0, nullptr},
      {"AES", 255, 256, nullptr},     {"AES", 0, 0, "AES"},         {"AES", 0, 64, "AES.64"},
      {"AES", 0, 112, "AES.112"},     {"AES", 0, 192, "AES.192"},   {"AES", 0, 224, "AES.224"},
      {"AES", 1, 256, "AES.256.ECB"}, {"AES", 2, 0, "AES.CBC"},     {"AES", 3, 0, "AES.OFB"},
      {"AES", 4, 64, "AES.64.CFB"},   {"", 1, 64, ".64.ECB"},
  };
  for (const auto& one : cases) {
    char out[kAlgorithmNameRoom];
    std::memset(out, 'x', sizeof out);
    const std::int32_t result =
        AddModeAndBitnumToAlg(out, sizeof out, one.base, one.mode, one.key_length);
    EXPECT_EQ(result, one.joined == nullptr ? -1 : 0) << one.base << one.mode << one.key_length;
    if (one.joined == nullptr) continue;
    char expected[kAlgorithmNameRoom] = {};
    std::strcpy(expected, one.joined);
    EXPECT_EQ(std::memcmp(out, expected, sizeof out), 0) << one.joined;
  }
  char out[8] = {};
  EXPECT_EQ(AddModeAndBitnumToAlg(nullptr, 8, "AES", 0, 0), -1);
  EXPECT_EQ(AddModeAndBitnumToAlg(out, 8, nullptr, 0, 0), -1);
}

TEST(AlgorithmNames, JoinNeverWritesPastTheBuffer) {
  for (std::size_t size = 1; size < 12; ++size) {  // "AES.256.CBC" has 11 characters
    Bytes out(size, 'x');
    const std::int32_t result =
        AddModeAndBitnumToAlg(static_cast<char*>(static_cast<void*>(out.data())),
                              static_cast<std::uint32_t>(size), "AES", 2, 256);
    EXPECT_EQ(result, size < 12 ? -1 : 0) << size;
    EXPECT_EQ(out.back(), 0) << size;
  }
  EXPECT_EQ(to_object_id("sha1WithIBCCS-1Encryption", 2, 256), std::nullopt);  // 33 with its suffix
}

TEST(AlgorithmNames, SplitAtTheirDots) {
  const struct {
    const char* name;
    std::int32_t result;
    const char* base;
    std::uint8_t mode;
    std::uint32_t key_length;
  } cases[] = {
      {"AES.128.CBC", 257, "AES", kUntouched, kUntouched},
      {"AES.224.CBC", 257, "AES", kUntouched, kUntouched},  // joins, but does not split
      {"AES..CBC", 257, "AES", kUntouched, kUntouched},
      {"AES.2560.CBC", 257, "AES", kUntouched, kUntouched},
      {"AES", 0, "AES", kUntouched, kUntouched},
      {"", 0, "", kUntouched, kUntouched},
      {"AES.ECB", 0, "AES", 1, kUntouched},  // 1 says that there is a mode, not which
      {"AES.CFB", 0, "AES", 1, kUntouched},
      {"AES.none", 0, "AES", 1, kUntouched},
      {"AES.256", 0, "AES", 1, kUntouched},
      {"AES.64.OFB", 0, "AES", 1, 64},
      {"AES.112.OFB", 0, "AES", 1, 112},
      {"AES.192.none", 0, "AES", 1, 192},
      {"AES.256.C.B", 0, "AES", 1, 256},
  };
  for (const auto& one : cases) {
    char base[kAlgorithmNameRoom];
    std::memset(base, 'x', sizeof base);
    std::uint8_t mode = kUntouched;
    std::uint32_t key_length = kUntouched;
    EXPECT_EQ(ParseAlgToModeAndBits(one.name, base, sizeof base, &mode, &key_length), one.result)
        << one.name;
    EXPECT_STREQ(base, one.base) << one.name;
    EXPECT_EQ(mode, one.mode) << one.name;
    EXPECT_EQ(key_length, one.key_length) << one.name;
    // Without an output for it the key length is not looked at.
    EXPECT_EQ(ParseAlgToModeAndBits(one.name, base, sizeof base, &mode, nullptr), 0) << one.name;
    EXPECT_EQ(ParseAlgToModeAndBits(one.name, base, sizeof base, nullptr, nullptr), 0) << one.name;
  }
  char base[4];
  EXPECT_EQ(ParseAlgToModeAndBits(nullptr, base, 4, nullptr, nullptr), -1);
  EXPECT_EQ(ParseAlgToModeAndBits("AES", nullptr, 4, nullptr, nullptr), -1);
  EXPECT_EQ(ParseAlgToModeAndBits("AES", base, 0, nullptr, nullptr), -1);
  EXPECT_EQ(ParseAlgToModeAndBits("3DES", base, 4, nullptr, nullptr), -1);  // no room for the NUL
  EXPECT_EQ(ParseAlgToModeAndBits("AES", base, 4, nullptr, nullptr), 0);
}

TEST(AlgorithmNames, ConvertWithSuffixesGivenApart) {
  EXPECT_EQ(to_object_id("AES", 2, 128), std::nullopt);
  EXPECT_EQ(to_object_id("AES", 2, 224), std::nullopt);  // a name, but of no row
  EXPECT_EQ(to_object_id("AES.256", 2), object_id("2.16.840.1.101.3.4.1.42"));
  EXPECT_EQ(to_object_id("aes", 2, 256), object_id("2.16.840.1.101.3.4.1.42"));
  EXPECT_EQ(to_object_id("DES", 0x101, 0), object_id("1.3.14.3.2.6"));  // 8 bits of the mode count
}

TEST(AlgorithmNames, OfThirtyTwoBytesAreRefused) {
  EXPECT_EQ(to_object_id(std::string(31, 'x')), std::nullopt);
  EXPECT_EQ(to_object_id(std::string(32, 'x')), std::nullopt);
  EXPECT_EQ(to_object_id("AES" + std::string(29, '\0')), std::nullopt);
  EXPECT_EQ(to_object_id(std::string(100000, 'x')), std::nullopt);
}

TEST(AlgorithmNames, FollowTheOutputBufferProtocol) {
  const Bytes name = text("RSA");
  std::uint8_t octets[9] = {};
  std::uint32_t length = 8;
  EXPECT_EQ(SflAlg2OID(name.data(), 3, 0, 0, octets, &length), -1);
  EXPECT_EQ(length, 8U);
  EXPECT_EQ(octets[0], 0);
  EXPECT_EQ(SflAlg2OID(nullptr, 3, 0, 0, octets, &length), -1);
  EXPECT_EQ(SflAlg2OID(name.data(), 0, 0, 0, octets, &length), -1);
  EXPECT_EQ(SflAlg2OID(name.data(), 3, 0, 0, octets, nullptr), -1);
  EXPECT_EQ(SflAlg2OID(name.data(), 3, 0, 0, nullptr, &length), 0);
  EXPECT_EQ(length, 9U);
  EXPECT_EQ(SflAlg2OID(name.data(), 3, 0, 0, octets, &length), 0);

  char base[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ(SflOID2Alg(nullptr, 9, base, nullptr, nullptr), -1);
  EXPECT_EQ(SflOID2Alg(octets, 0, base, nullptr, nullptr), -1);
  EXPECT_EQ(SflOID2Alg(octets, 9, nullptr, nullptr, nullptr), -1);
  EXPECT_EQ(SflOID2Alg(octets, 9, base, nullptr, nullptr), 0);
  EXPECT_EQ(std::string(base, 4), "RSAx");  // no NUL of its own
}

TEST(AlgorithmNames, CompareWithoutCase) {
  EXPECT_EQ(SflStrCmp(nullptr, "a"), -1);
  EXPECT_EQ(SflStrCmp("a", nullptr), -1);
  EXPECT_NE(SflStrCmp("RSA", "RS"), 0);
  EXPECT_EQ(SflStrCmp("rSa", "RsA"), 0);
}

TEST(HeadSignAlg, IsStoredAsNameOrIdentifierByVersion) {
  const Bytes name = text("sm3withsm2encryption");
  const auto size = static_cast<std::uint32_t>(name.size());
  for (const Version& version : kVersions) {
    const NoLeaks no_leaks;
    TqLabelHandle label = label_of(version);
    const bool v60 = version.text == "6.0";
    ASSERT_EQ(SetHeadSignAlg(&label, name.data(), size), 0);
    EXPECT_EQ(content(label.head.headSign.algorithm),
              v60 ? name : object_id("1.2.156.10197.1.501"));
    EXPECT_EQ(written(GetHeadSignAlg, &label), v60 ? name : text("sm3WithSM2Encryption"));

    const Bytes unknown = text("no such name");
    EXPECT_EQ(SetHeadSignAlg(&label, unknown.data(), 12), v60 ? 0 : -1);
    EXPECT_EQ(content(label.head.headSign.algorithm), v60 ? unknown : Bytes{});
    EXPECT_EQ(written(GetHeadSignAlg, &label), v60 ? std::optional(unknown) : std::nullopt);
    clear(label.head.headSign.algorithm);
    EXPECT_TRUE(no_leaks.hold());
  }
  TqLabelHandle label = label_of(kUnknown);
  label.head.headSign.algorithm = owned(text("earlier"), 0);
  EXPECT_EQ(SetHeadSignAlg(&label, name.data(), size), -1);
  EXPECT_EQ(content(label.head.headSign.algorithm), Bytes{});  // dropped before the name is known
  EXPECT_EQ(written(GetHeadSignAlg, &label), std::nullopt);
}

TEST(HeadSignAlg, OfACipherIsTheBaseOfItsName) {
  TqLabelHandle label = label_of(k112);
  const Bytes octets = object_id("2.16.840.1.101.3.4.1.2");  // AES.128.CBC: no key length asked for
  label.head.headSign.algorithm = field(octets);
  EXPECT_EQ(written(GetHeadSignAlg, &label), text("AES"));
}

TEST(AlgorithmNode, IsMovedWithAllItsWords) {
  Input other(hex("00"));
  auto* source = static_cast<ANYBUF*>(Asn1Malloc(sizeof(ANYBUF)));
  *source = {other.node()->data, 1, 0, ASN1_FORM_VIEW, 6, other.node(), other.node()};
  const ANYBUF before = *source;
  ANYBUF moved{};
  EXPECT_EQ(ConvertOID2Alg(nullptr, &moved), -1);
  EXPECT_EQ(ConvertOID2Alg(source, nullptr), -1);
  const std::size_t live = allocations().blocks;
  EXPECT_EQ(ConvertOID2Alg(source, &moved), 0);
  EXPECT_EQ(allocations().blocks, live - 1);
  EXPECT_EQ(std::memcmp(&moved, &before, sizeof moved), 0);
}

}  // namespace
}  // namespace tq::test
