#include "crypto/algorithms.h"

#include <strings.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "core/model/buffer.h"

namespace tq {
namespace {

constexpr std::size_t kIdentityWrappingRow = 44;
constexpr std::size_t kIdentitySignatureRow = 45;

constexpr std::int32_t kUnknownKeyLength = 257;

struct Suffix {
  std::int32_t code;
  const char* text;
};

// A name with a length of 128 is found whole only: 128 is no key length of the join.
constexpr Suffix kKeyLengths[] = {
    {64, ".64"}, {112, ".112"}, {192, ".192"}, {224, ".224"}, {256, ".256"}};
constexpr Suffix kModes[] = {{1, ".ECB"}, {2, ".CBC"}, {3, ".OFB"}, {4, ".CFB"}};

struct SplitKeyLength {
  std::uint32_t value;
  std::string_view text;
};

// 224 can be joined but is not taken apart.
constexpr SplitKeyLength kSplitKeyLengths[] = {
    {64, "64"}, {112, "112"}, {192, "192"}, {256, "256"}};

[[nodiscard]] bool append(char* out, std::size_t size, std::string_view text) {
  const std::size_t used = std::strlen(out);
  if (text.size() >= size - used) return false;
  std::memcpy(out + used, text.data(), text.size());
  return true;
}

// The code 0 is the absence of a suffix.
template <std::size_t N>
[[nodiscard]] bool append_suffix(char* out, std::size_t size, const Suffix (&suffixes)[N],
                                 std::int32_t code) {
  if (code == 0) return true;
  for (const Suffix& suffix : suffixes) {
    if (suffix.code == code) return append(out, size, suffix.text);
  }
  return false;
}

[[nodiscard]] bool parse_key_length(std::string_view text, std::uint32_t& value) {
  for (const SplitKeyLength& known : kSplitKeyLengths) {
    if (text != known.text) continue;
    value = known.value;
    return true;
  }
  return false;
}

bool equals_row(const ANYBUF& algorithm, std::size_t row) {
  return equal_bytes(algorithm, g_ReflectOID[row].octets, g_ReflectOID[row].length);
}

const ReflectOID* find_name(const char* name) {
  for (const ReflectOID& row : g_ReflectOID) {
    if (row.name != nullptr && SflStrCmp(name, row.name) == 0) return &row;
  }
  return nullptr;
}

const ReflectOID* find_octets(const std::uint8_t* octets, std::uint32_t length) {
  const auto sorts_before = [&](const ReflectOID& row) {
    const int order = std::memcmp(row.octets, octets, std::min(row.length, length));
    return order != 0 ? order < 0 : row.length < length;
  };
  const auto* const end = g_ReflectOID.begin() + kReflectFilled;
  const auto* const row = std::partition_point(g_ReflectOID.begin(), end, sorts_before);
  const bool found =
      row != end && row->length == length && std::memcmp(row->octets, octets, length) == 0;
  return found ? row : nullptr;
}

}  // namespace

bool is_identity_signature(const ANYBUF& algorithm) {
  return equals_row(algorithm, kIdentitySignatureRow);
}
bool is_identity_wrapping(const ANYBUF& algorithm) {
  return equals_row(algorithm, kIdentityWrappingRow);
}

std::int32_t SflStrCmp(const char* left, const char* right) {
  return left == nullptr || right == nullptr ? -1 : strcasecmp(left, right);
}

std::int32_t AddModeAndBitnumToAlg(char* out, std::uint32_t size, const char* base,
                                   std::uint8_t mode, std::int32_t key_length) {
  if (out == nullptr || base == nullptr || size == 0) return -1;
  std::memset(out, 0, size);
  const bool joined = append(out, size, base) &&
                      append_suffix(out, size, kKeyLengths, key_length) &&
                      append_suffix(out, size, kModes, mode);
  return joined ? 0 : -1;
}

std::int32_t ParseAlgToModeAndBits(const char* name, char* base, std::uint32_t size,
                                   std::uint8_t* mode, std::uint32_t* key_length) {
  if (name == nullptr || base == nullptr || size == 0) return -1;
  std::memset(base, 0, size);
  const char* dot = std::strchr(name, '.');
  if (!append(base, size, dot == nullptr ? name : std::string_view(name, dot))) return -1;
  if (dot == nullptr) return 0;
  const char* second = std::strchr(dot + 1, '.');
  if (second != nullptr && key_length != nullptr &&
      !parse_key_length(std::string_view(dot + 1, second), *key_length)) {
    return kUnknownKeyLength;
  }
  // Whatever the mode is called: the output says that there is one, not which.
  if (mode != nullptr) *mode = 1;
  return 0;
}

std::int32_t ConvertAlg2OID() { return 0; }

std::int32_t ConvertOID2Alg(ANYBUF* source, ANYBUF* destination) {
  if (source == nullptr || destination == nullptr) return -1;
  ANYBUF* const next = source->next;
  void* const last = source->last;
  if (CopyElementOtoO(source, destination) != 0) return -1;
  destination->next = next;
  destination->last = last;
  return 0;
}

}  // namespace tq

std::int32_t SflAlg2OID(const std::uint8_t* name, std::uint32_t nameLen, std::uint32_t mode,
                        std::int32_t keyLen, std::uint8_t* oid, std::uint32_t* oidLen) {
  if (name == nullptr || nameLen == 0 || oidLen == nullptr) return -1;
  char base[tq::kAlgorithmNameRoom] = {};
  char joined[tq::kAlgorithmNameRoom];
  if (nameLen >= sizeof base) return -1;
  std::memcpy(base, name, nameLen);
  const std::int32_t result = tq::AddModeAndBitnumToAlg(joined, sizeof joined, base,
                                                        static_cast<std::uint8_t>(mode), keyLen);
  if (result != 0) return result;
  const tq::ReflectOID* row = tq::find_name(joined);
  return row == nullptr ? -1 : tq::copy_out(row->octets, row->length, oid, oidLen);
}

std::int32_t SflOID2Alg(const std::uint8_t* oid, std::uint32_t len, char* name, std::uint8_t* mode,
                        std::uint32_t* keyLen) {
  if (oid == nullptr || name == nullptr || len == 0) return -1;
  const tq::ReflectOID* row = tq::find_octets(oid, len);
  if (row == nullptr) return -1;
  char base[tq::kAlgorithmNameRoom];
  const std::int32_t result = tq::ParseAlgToModeAndBits(row->name, base, sizeof base, mode, keyLen);
  std::copy_n(base, std::strlen(base), name);  // without a terminator
  return result;
}

std::int32_t SetCipherAndMode(void) { return 0; }
