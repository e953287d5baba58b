#include "crypto/algorithms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>
#include <tuple>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

// Every name and the octets of its identifier.
std::vector<std::pair<std::string, Bytes>> algorithms() {
  std::istringstream words(
      "SM1 2A811CCF550166 SSF33 2A811CCF550167 SM4 2A811CCF550168 SM2 2A811CCF5501822D "
      "sm3WithSM2Encryption 2A811CCF55018375 sm3WithRSAEncryption 2A811CCF55018378 "
      "RSA 2A864886F70D010101 md2WithRSAEncryption 2A864886F70D010102 "
      "md4WithRSAEncryption 2A864886F70D010103 md5WithRSAEncryption 2A864886F70D010104 "
      "sha1WithRSAEncryption 2A864886F70D010105 sha256WithRSAEncryption 2A864886F70D01010B "
      "sha384WithRSAEncryption 2A864886F70D01010C sha512WithRSAEncryption 2A864886F70D01010D "
      "sha224WithRSAEncryption 2A864886F70D01010E E 2A864886F70D010901 DES.ECB 2B0E030206 "
      "DES.CBC 2B0E030207 DES.OFB 2B0E030208 DES 2B0E030209 3DES 2B0E030211 DES_3 2B24030103 "
      "DES_3.ECB 2B2403010301 DES_3.CBC 2B2403010302 CN 550403 SN 550405 C 550406 L 550407 "
      "ST 550408 O 55040A OU 55040B AES 6086480165030401 AES.128.ECB 608648016503040101 "
      "AES.128.CBC 608648016503040102 AES.128.OFB 608648016503040103 "
      "AES.128.CFB 608648016503040104 AES.192.ECB 608648016503040115 "
      "AES.192.CBC 608648016503040116 AES.192.OFB 608648016503040117 "
      "AES.192.CFB 608648016503040118 AES.256.ECB 608648016503040129 "
      "AES.256.CBC 60864801650304012A AES.256.OFB 60864801650304012B "
      "AES.256.CFB 60864801650304012C IBCCS-1 6086480186FD1E010501 "
      "sha1WithIBCCS-1Encryption 6086480186FD1E010502 ");
  std::vector<std::pair<std::string, Bytes>> all;
  for (std::string name, octets; words >> name >> octets;) all.emplace_back(name, hex(octets));
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

// The base of a name, its result, whether there is a mode, and the key length.
using Named = std::tuple<std::string, std::int32_t, unsigned, unsigned>;
Named to_name(const Bytes& octets) {
  char name[kAlgorithmNameRoom] = {};
  std::uint8_t mode = 0;
  std::uint32_t key_length = 0;
  const auto size = static_cast<std::uint32_t>(octets.size());
  const std::int32_t result = SflOID2Alg(octets.data(), size, name, &mode, &key_length);
  return {name, result, mode, key_length};
}

TEST(AlgorithmTable, ConvertsEveryNameInAnyCaseAndEveryIdentifierToTheBaseOfItsName) {
  const auto all = algorithms();
  ASSERT_EQ(all.size(), 46U);
  for (const auto& [name, octets] : all) {
    std::string other_case = name;
    std::ranges::transform(name, other_case.begin(), [](char letter) {
      return static_cast<char>(std::isalpha(letter) != 0 ? letter ^ 0x20 : letter);
    });
    EXPECT_EQ(to_object_id(name), octets) << name;
    EXPECT_EQ(to_object_id(other_case), octets) << name;
    const std::size_t dot = std::min(name.find('.'), name.size());
    const bool has_length = name.size() == dot + 8;  // ".192.CBC"
    const auto key_length =
        static_cast<unsigned>(has_length ? std::stoul(name.substr(dot + 1, 3)) : 0);
    EXPECT_EQ(to_name(octets), key_length == 128
                                   ? Named("AES", 257, 0, 0)
                                   : Named(name.substr(0, dot), 0, dot != name.size(), key_length));
    // A beginning or a continuation is no row, unless it is one itself.
    for (const char* more : {"", "00", "01", "7F", "FF"}) {
      const Bytes other = concat(head_of(octets, octets.size() - (*more == 0 ? 1 : 0)), hex(more));
      const bool is_row = std::ranges::any_of(all, [&](auto& row) { return row.second == other; });
      EXPECT_EQ(std::get<1>(to_name(other)) == -1, !is_row) << name << ' ' << more;
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
  // Of the mode 8 bits count.
  EXPECT_EQ(to_object_id("AES.256", 0x102), hex("60 86 48 01 65 03 04 01 2A"));
  EXPECT_EQ(to_object_id("sha1WithIBCCS-1Encryption", 2, 256), Bytes{});  // 33 with its suffix
  for (const std::size_t length : {31U, 32U, 100000U}) {
    EXPECT_EQ(to_object_id(std::string(length, 'x')), Bytes{});
  }
}

// Nodes of each form: bytes of their own, behind their shell, or within another node.
TEST(ConvertOID2Alg, MovesTheBytesOfANodeButNotItsNeighbours) {
  const NoLeaks no_leaks;
  Input input(hex("30 03 06 01 2A"));
  ANYBUF* nodes[3] = {};
  ASSERT_EQ(QZAsn1GetSequence(input.node(), &nodes[0]), 0);
  ASSERT_EQ(QZAsn1GetObjectIdPJ(nodes[0], &nodes[1]), 0);
  ASSERT_EQ(QZCopyAnyBuf(nodes[0], &nodes[2]), 0);
  for (ANYBUF* node : nodes) {
    const Bytes bytes = bytes_of(node);
    node->next = input.node();
    node->last = input.node();
    ANYBUF copy{};
    EXPECT_EQ(QZDecodeCopy(node, &copy), 0);
    ANYBUF field{};
    EXPECT_EQ(ConvertOID2Alg(node, &field), 0);
    EXPECT_TRUE(field.next == input.node() && field.last == input.node());
    for (ANYBUF* moved : {&copy, &field}) {
      EXPECT_EQ(content(*moved), bytes);
      EXPECT_EQ(moved->type, der::kObjectId);
      clear(*moved);
    }
  }
  EXPECT_TRUE(no_leaks.hold());
  ANYBUF none{};
  EXPECT_EQ(ConvertOID2Alg(nullptr, &none) & ConvertOID2Alg(&none, nullptr), -1);
  EXPECT_EQ(CopyElementOtoO(nullptr, &none) & CopyElementOtoO(&none, nullptr), -1);
  EXPECT_EQ(QZDecodeCopy(nullptr, &none) & QZDecodeCopy(&none, nullptr), -1);
}

}  // namespace
}  // namespace tq::test
