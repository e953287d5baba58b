#include <algorithm>
#include <string_view>

#include "crypto/algorithms.h"

namespace tq {
namespace {

struct Row {
  const char* name;
  std::string_view octets;
};

using namespace std::string_view_literals;

constexpr Row kRows[] = {
    {"SM1", "\x2a\x81\x1c\xcf\x55\x01\x66"sv},                       // 1.2.156.10197.1.102
    {"SSF33", "\x2a\x81\x1c\xcf\x55\x01\x67"sv},                     // 1.2.156.10197.1.103
    {"SM4", "\x2a\x81\x1c\xcf\x55\x01\x68"sv},                       // 1.2.156.10197.1.104
    {"SM2", "\x2a\x81\x1c\xcf\x55\x01\x82\x2d"sv},                   // 1.2.156.10197.1.301
    {"sm3WithSM2Encryption", "\x2a\x81\x1c\xcf\x55\x01\x83\x75"sv},  // 1.2.156.10197.1.501
    {"sm3WithRSAEncryption", "\x2a\x81\x1c\xcf\x55\x01\x83\x78"sv},  // 1.2.156.10197.1.504
    // 1.2.840.113549.1.1
    {"RSA", "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x01"sv},
    {"md2WithRSAEncryption", "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x02"sv},
    {"md4WithRSAEncryption", "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x03"sv},
    {"md5WithRSAEncryption", "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x04"sv},
    {"sha1WithRSAEncryption", "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x05"sv},
    {"sha256WithRSAEncryption", "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x0b"sv},
    {"sha384WithRSAEncryption", "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x0c"sv},
    {"sha512WithRSAEncryption", "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x0d"sv},
    {"sha224WithRSAEncryption", "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x0e"sv},
    {"E", "\x2a\x86\x48\x86\xf7\x0d\x01\x09\x01"sv},  // 1.2.840.113549.1.9.1, e-mail address
    // 1.3.14.3.2
    {"DES.ECB", "\x2b\x0e\x03\x02\x06"sv},
    {"DES.CBC", "\x2b\x0e\x03\x02\x07"sv},
    {"DES.OFB", "\x2b\x0e\x03\x02\x08"sv},
    {"DES", "\x2b\x0e\x03\x02\x09"sv},
    {"3DES", "\x2b\x0e\x03\x02\x11"sv},
    // 1.3.36.3.1.3
    {"DES_3", "\x2b\x24\x03\x01\x03"sv},
    {"DES_3.ECB", "\x2b\x24\x03\x01\x03\x01"sv},
    {"DES_3.CBC", "\x2b\x24\x03\x01\x03\x02"sv},
    // 2.5.4, attribute types of names
    {"CN", "\x55\x04\x03"sv},
    {"SN", "\x55\x04\x05"sv},
    {"C", "\x55\x04\x06"sv},
    {"L", "\x55\x04\x07"sv},
    {"ST", "\x55\x04\x08"sv},
    {"O", "\x55\x04\x0a"sv},
    {"OU", "\x55\x04\x0b"sv},
    // 2.16.840.1.101.3.4.1
    {"AES", "\x60\x86\x48\x01\x65\x03\x04\x01"sv},
    {"AES.128.ECB", "\x60\x86\x48\x01\x65\x03\x04\x01\x01"sv},
    {"AES.128.CBC", "\x60\x86\x48\x01\x65\x03\x04\x01\x02"sv},
    {"AES.128.OFB", "\x60\x86\x48\x01\x65\x03\x04\x01\x03"sv},
    {"AES.128.CFB", "\x60\x86\x48\x01\x65\x03\x04\x01\x04"sv},
    {"AES.192.ECB", "\x60\x86\x48\x01\x65\x03\x04\x01\x15"sv},
    {"AES.192.CBC", "\x60\x86\x48\x01\x65\x03\x04\x01\x16"sv},
    {"AES.192.OFB", "\x60\x86\x48\x01\x65\x03\x04\x01\x17"sv},
    {"AES.192.CFB", "\x60\x86\x48\x01\x65\x03\x04\x01\x18"sv},
    {"AES.256.ECB", "\x60\x86\x48\x01\x65\x03\x04\x01\x29"sv},
    {"AES.256.CBC", "\x60\x86\x48\x01\x65\x03\x04\x01\x2a"sv},
    {"AES.256.OFB", "\x60\x86\x48\x01\x65\x03\x04\x01\x2b"sv},
    {"AES.256.CFB", "\x60\x86\x48\x01\x65\x03\x04\x01\x2c"sv},
    // 2.16.840.1.114334.1.5
    {"IBCCS-1", "\x60\x86\x48\x01\x86\xfd\x1e\x01\x05\x01"sv},
    {"sha1WithIBCCS-1Encryption", "\x60\x86\x48\x01\x86\xfd\x1e\x01\x05\x02"sv},
};
static_assert(std::size(kRows) == kReflectFilled);
static_assert(std::is_sorted(std::begin(kRows), std::end(kRows),
                             [](const Row& a, const Row& b) { return a.octets < b.octets; }));

constexpr std::size_t octets_in_all() {
  std::size_t sum = 0;
  for (const Row& row : kRows) sum += row.octets.size();
  return sum;
}

consteval auto collect_octets() {
  std::array<std::uint8_t, octets_in_all()> octets{};
  auto* at = octets.begin();
  for (const Row& row : kRows) {
    at = std::transform(row.octets.begin(), row.octets.end(), at,
                        [](char octet) { return static_cast<std::uint8_t>(octet); });
  }
  return octets;
}

constexpr auto g_OID = collect_octets();

consteval auto collect_rows() {
  std::array<ReflectOID, kReflectRows> rows{};
  const std::uint8_t* octets = g_OID.data();
  for (std::size_t i = 0; i < kReflectFilled; ++i) {
    const auto length = static_cast<std::uint32_t>(kRows[i].octets.size());
    rows[i] = {kRows[i].name, length, octets};
    octets += length;
  }
  return rows;
}

}  // namespace

constinit const std::array<ReflectOID, kReflectRows> g_ReflectOID = collect_rows();

}  // namespace tq
