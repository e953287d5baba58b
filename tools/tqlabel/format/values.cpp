#include "format/values.h"

#include <fmt/format.h>
#include <openssl/evp.h>

#include <algorithm>
#include <iterator>

#include "crypto/algorithms.h"

namespace tq::tool {
namespace {

// The longest that is shown in hexadecimal: a SHA-256 value, and any serial number of a
// certificate.
constexpr std::size_t kHexBytes = 32;

constexpr std::size_t kSha256Bytes = 32;

void append_arc(std::string& out, std::uint64_t arc) {
  if (!out.empty()) {
    fmt::format_to(std::back_inserter(out), ".{}", arc);
    return;
  }
  // The first two numbers share one arc.
  const std::uint64_t root = std::min<std::uint64_t>(arc / 40, 2);
  fmt::format_to(std::back_inserter(out), "{}.{}", root, arc - 40 * root);
}

// A short text for the type of an attribute.
std::string attribute_type(Bytes octets) {
  const char* name = known_name(octets);
  if (name != nullptr) return name;
  const std::string number = octets.size() > kHexBytes ? std::string() : dotted(octets);
  return number.empty() ? fmt::format("({})", show_bytes(octets)) : number;
}

}  // namespace

std::string hexadecimal(Bytes bytes) {
  std::string out;
  for (const std::uint8_t octet : bytes) fmt::format_to(std::back_inserter(out), "{:02x}", octet);
  return out;
}

std::string dotted(Bytes octets) {
  std::string out;
  std::uint64_t arc = 0;
  bool at_start = true;
  for (const std::uint8_t octet : octets) {
    if ((at_start && octet == 0x80) || arc >> 57 != 0) return {};
    arc = arc << 7 | (octet & 0x7FU);
    at_start = octet < 0x80;
    if (!at_start) continue;
    append_arc(out, arc);
    arc = 0;
  }
  return at_start ? out : std::string();
}

const char* known_name(Bytes octets) {
  const auto* const row = std::ranges::find_if(g_ReflectOID, [&](const ReflectOID& candidate) {
    return candidate.name != nullptr &&
           std::ranges::equal(Bytes(candidate.octets, candidate.length), octets);
  });
  return row == g_ReflectOID.end() ? nullptr : row->name;
}

std::string show_size(std::size_t size) {
  return fmt::format("{} {}", size, size == 1 ? "byte" : "bytes");
}

std::string sha256_hex(Bytes bytes) {
  std::uint8_t digest[kSha256Bytes] = {};
  if (EVP_Digest(bytes.data(), bytes.size(), digest, nullptr, EVP_sha256(), nullptr) != 1) {
    throw Failure{Status::kCrypto, "SHA-256 is not available"};
  }
  return hexadecimal(digest);
}

std::string show_digest(Bytes bytes) {
  if (bytes.empty()) return "none";
  return show_size(bytes.size()) + ", SHA-256 " + sha256_hex(bytes);
}

std::string show_bytes(Bytes bytes) {
  if (bytes.empty()) return "none";
  return bytes.size() > kHexBytes ? show_digest(bytes) : hexadecimal(bytes);
}

std::string show_time(std::uint64_t seconds) {
  if (seconds == 0) return "not set";
  if (seconds > der::kLastTime) return "out of range";
  std::uint8_t digits[der::kTimeLength];
  der::format_time(seconds, digits);
  const std::string text(digits, std::end(digits));
  return fmt::format("{}-{}-{}T{}:{}:{}Z", text.substr(0, 4), text.substr(4, 2), text.substr(6, 2),
                     text.substr(8, 2), text.substr(10, 2), text.substr(12, 2));
}

std::string show_object_id(Bytes octets) {
  if (octets.empty()) return "none";
  const std::string number = octets.size() > kHexBytes ? std::string() : dotted(octets);
  if (number.empty()) return fmt::format("no identifier: {}", show_bytes(octets));
  const char* name = known_name(octets);
  return name == nullptr ? number : fmt::format("{} ({})", name, number);
}

bool is_zero(Bytes bytes) {
  return std::ranges::all_of(bytes, [](std::uint8_t octet) { return octet == 0; });
}

std::string show_padding(Bytes padding) {
  return show_size(padding.size()) + (is_zero(padding) ? "" : ", not all of them zero");
}

Attribute attribute_of(const Item& attribute) {
  der::Element pair;
  der::Element type;
  der::Element value;
  if (!der::Cursor(attribute.element).next(pair)) return {};
  der::Cursor in(pair);
  if (!in.next(type) || !in.next(value)) return {};
  return {{type.content(), type.length}, value.tag(), {value.content(), value.length}};
}

std::string show_attribute(const Item& attribute) {
  const Attribute parts = attribute_of(attribute);
  const Encoding encoding =
      parts.tag == der::kBmpString ? Encoding::kUtf16BigEndian : Encoding::kUtf8;
  return attribute_type(parts.type) + "=" + escaped(parts.value, encoding, ",+=\"\\");
}

std::string show_name(const Item& name) {
  std::string out;
  for (const Item& attribute : name.children) {
    if (!out.empty()) out += ", ";
    out += show_attribute(attribute);
  }
  return out;
}

}  // namespace tq::tool
