#include "crypto/algorithms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>

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
    for (std::uint32_t shift = 28; shift != 0; shift -= 7) {
      if (numbers[i] >> shift == 0) continue;
      octets.push_back(static_cast<std::uint8_t>(0x80 | (numbers[i] >> shift & 0x7F)));
    }
    octets.push_back(static_cast<std::uint8_t>(numbers[i] & 0x7F));
  }
  return octets;
}

// Every name and its identifier.
std::vector<std::pair<std::string, Bytes>> algorithms() {
  std::istringstream words(
      "SM1 1.2.156.10197.1.102 SSF33 1.2.156.10197.1.103 SM4 1.2.156.10197.1.104 "
      "SM2 1.2.156.10197.1.301 sm3WithSM2Encryption 1.2.156.10197.1.501 "
      "sm3WithRSAEncryption 1.2.156.10197.1.504 RSA 1.2.840.113549.1.1.1 "
      "md2WithRSAEncryption 1.2.840.113549.1.1.2 md4WithRSAEncryption 1.2.840.113549.1.1.3 "
      "md5WithRSAEncryption 1.2.840.113549.1.1.4 sha1WithRSAEncryption 1.2.840.113549.1.1.5 "
      "sha256WithRSAEncryption 1.2.840.113549.1.1.11 "
      "sha384WithRSAEncryption 1.2.840.113549.1.1.12 "
      "sha512WithRSAEncryption 1.2.840.113549.1.1.13 "
      "sha224WithRSAEncryption 1.2.840.113549.1.1.14 E 1.2.840.113549.1.9.1 "
      "DES.ECB 1.3.14.3.2.6 DES.CBC 1.3.14.3.2.7 DES.OFB 1.3.14.3.2.8 DES 1.3.14.3.2.9 "
      "3DES 1.3.14.3.2.17 DES_3 1.3.36.3.1.3 DES_3.ECB 1.3.36.3.1.3.1 DES_3.CBC 1.3.36.3.1.3.2 "
      "CN 2.5.4.3 SN 2.5.4.5 C 2.5.4.6 L 2.5.4.7 ST 2.5.4.8 O 2.5.4.10 OU 2.5.4.11 "
      "AES 2.16.840.1.101.3.4.1 AES.128.ECB 2.16.840.1.101.3.4.1.1 "
      "AES.128.CBC 2.16.840.1.101.3.4.1.2 AES.128.OFB 2.16.840.1.101.3.4.1.3 "
      "AES.128.CFB 2.16.840.1.101.3.4.1.4 AES.192.ECB 2.16.840.1.101.3.4.1.21 "
      "AES.192.CBC 2.16.840.1.101.3.4.1.22 AES.192.OFB 2.16.840.1.101.3.4.1.23 "
      "AES.192.CFB 2.16.840.1.101.3.4.1.24 AES.256.ECB 2.16.840.1.101.3.4.1.41 "
      "AES.256.CBC 2.16.840.1.101.3.4.1.42 AES.256.OFB 2.16.840.1.101.3.4.1.43 "
      "AES.256.CFB 2.16.840.1.101.3.4.1.44 IBCCS-1 2.16.840.1.114334.1.5.1 "
      "sha1WithIBCCS-1Encryption 2.16.840.1.114334.1.5.2 ");
  std::vector<std::pair<std::string, Bytes>> all;
  for (std::string name, dotted; words >> name >> dotted;)
    all.emplace_back(name, object_id(dotted));
  return all;
}

Bytes to_object_id(const std::string& name, std::uint32_t mode = 0, std::int32_t key_length = 0) {
  const Bytes exact = text(name);  // ends without a NUL
  Bytes octets(16);
  std::uint32_t length = 16;
  const auto size = static_cast<std::uint32_t>(exact.size());
  if (SflAlg2OID(exact.data(), size, mode, key_length, octets.data(), &length) != 0) return {};
  octets.resize(length);
  return octets;
}

std::int32_t to_name(const Bytes& octets, char* name) {
  const auto size = static_cast<std::uint32_t>(octets.size());
  return SflOID2Alg(octets.data(), size, name, nullptr, nullptr);
}

TEST(AlgorithmTable, ConvertsEveryNameInAnyCaseAndEveryIdentifierToTheBaseOfItsName) {
  const auto all = algorithms();
  ASSERT_EQ(all.size(), 46U);
  for (const auto& [name, octets] : all) {
    std::string other_case = name;
    for (char& letter : other_case) {
      if (std::isalpha(letter) != 0) letter = static_cast<char>(letter ^ 0x20);
    }
    EXPECT_EQ(to_object_id(name), octets) << name;
    EXPECT_EQ(to_object_id(other_case), octets) << name;
    char base[kAlgorithmNameRoom] = {};
    EXPECT_EQ(to_name(octets, base), 0);
    EXPECT_EQ(base, name.substr(0, name.find('.')));
    // A beginning or a continuation is no row, unless it is one itself.
    for (const char* more : {"", "00", "01", "7F", "FF"}) {
      const Bytes other = concat(head_of(octets, octets.size() - (*more == 0 ? 1 : 0)), hex(more));
      const bool is_row = std::ranges::any_of(all, [&](auto& row) { return row.second == other; });
      EXPECT_EQ(to_name(other, base), is_row ? 0 : -1) << name << ' ' << more;
    }
  }
}

TEST(AlgorithmNames, JoinKeyLengthAndModeWithinTheirRoom) {
  const struct {
    std::uint8_t mode;
    std::int32_t key_length;
    const char* joined;  // null where it fails
  } cases[] = {
      {0, 128, nullptr},       {2, 128, nullptr},   {0, 1, nullptr},     {0, -64, nullptr},
      {0, 0x10040, nullptr},   {5, 0, nullptr},     {255, 256, nullptr}, {0, 0, "AES"},
      {0, 64, "AES.64"},       {0, 112, "AES.112"}, {0, 192, "AES.192"}, {0, 224, "AES.224"},
      {1, 256, "AES.256.ECB"}, {2, 0, "AES.CBC"},   {3, 0, "AES.OFB"},   {4, 64, "AES.64.CFB"},
  };
  for (const auto& one : cases) {
    for (std::uint32_t size = 1; size <= 12; ++size) {
      char out[13] = "????????????";
      const bool fits = one.joined != nullptr && std::string_view(one.joined).size() < size;
      EXPECT_EQ(AddModeAndBitnumToAlg(out, size, "AES", one.mode, one.key_length), fits ? 0 : -1);
      EXPECT_STREQ(out, fits ? one.joined : out);
      EXPECT_EQ(out[size - 1], 0);
      EXPECT_EQ(out[size], size < 12 ? '?' : 0);
    }
  }
  EXPECT_EQ(to_object_id("AES.256", 0x102), object_id("2.16.840.1.101.3.4.1.42"));  // 8 bits count
  EXPECT_EQ(to_object_id("sha1WithIBCCS-1Encryption", 2, 256), Bytes{});  // 33 with its suffix
  for (const std::size_t length : {31U, 32U, 100000U}) {
    EXPECT_EQ(to_object_id(std::string(length, 'x')), Bytes{});
  }
}

TEST(AlgorithmNames, SplitAtTheirDots) {
  constexpr std::uint8_t kUntouched = 119;
  // Names with the mode, the key length and the result that they give.
  std::istringstream words(
      "AES.128.CBC 119 119 257 AES.224.CBC 119 119 257 AES..CBC 119 119 257 AES.2560.CBC 119 119 "
      "257 "
      "AES 119 119 0 AES.ECB 1 119 0 AES.256 1 119 0 AES.64.OFB 1 64 0 AES.112.OFB 1 112 0 "
      "AES.192.none 1 192 0 AES.256.C.B 1 256 0");
  std::string name;
  unsigned wanted_mode = 0;
  unsigned wanted_length = 0;
  for (int result = 0; words >> name >> wanted_mode >> wanted_length >> result;) {
    char base[4] = {'x', 'x', 'x', 'x'};
    std::uint8_t mode = kUntouched;
    std::uint32_t key_length = kUntouched;
    EXPECT_EQ(ParseAlgToModeAndBits(name.c_str(), base, 4, &mode, &key_length), result) << name;
    EXPECT_STREQ(base, "AES") << name;
    EXPECT_EQ(mode, wanted_mode) << name;
    EXPECT_EQ(key_length, wanted_length) << name;
    // Without an output for it the key length is not looked at.
    EXPECT_EQ(ParseAlgToModeAndBits(name.c_str(), base, 4, &mode, nullptr), 0) << name;
    EXPECT_EQ(ParseAlgToModeAndBits(name.c_str(), base, 3, nullptr, nullptr),
              -1);  // no room for a NUL
  }
}

}  // namespace
}  // namespace tq::test
