#include "format/parse.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "asn1/der.h"
#include "crypto/algorithms.h"

namespace tq::tool {
namespace {

template <class Number>
bool read_number(std::string_view text, Number& number, int base = 10) {
  const char* const end = text.data() + text.size();
  const auto [at, error] = std::from_chars(text.data(), end, number, base);
  return error == std::errc() && at == end;
}

void append_arc(std::uint64_t arc, std::vector<std::uint8_t>& octets) {
  int shift = 63;
  while (shift > 0 && arc >> shift == 0) shift -= 7;
  for (; shift > 0; shift -= 7) octets.push_back(static_cast<std::uint8_t>(arc >> shift | 0x80));
  octets.push_back(arc & 0x7F);
}

bool split_arcs(std::string_view text, std::vector<std::uint64_t>& arcs) {
  while (true) {
    const std::size_t dot = text.find('.');
    if (!read_number(text.substr(0, dot), arcs.emplace_back()) || arcs.back() >> 56 != 0) {
      return false;
    }
    if (dot == text.npos) return arcs.size() >= 2;
    text.remove_prefix(dot + 1);
  }
}

}  // namespace

bool from_hexadecimal(std::string_view digits, std::vector<std::uint8_t>& bytes) {
  if (digits.size() % 2 != 0) return false;
  bytes.resize(digits.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (!read_number(digits.substr(2 * i, 2), bytes[i], 16)) return false;
  }
  return true;
}

bool from_object_id(std::string_view text, std::vector<std::uint8_t>& octets) {
  const auto* const row = std::ranges::find_if(g_ReflectOID, [&](const ReflectOID& candidate) {
    return candidate.name != nullptr && candidate.name == text;
  });
  if (row != g_ReflectOID.end()) {
    octets.assign(row->octets, row->octets + row->length);
    return true;
  }
  std::vector<std::uint64_t> arcs;
  if (!split_arcs(text, arcs) || arcs[0] > 2 || (arcs[0] < 2 && arcs[1] >= 40)) return false;
  octets.clear();
  append_arc(arcs[0] * 40 + arcs[1], octets);
  std::for_each(arcs.begin() + 2, arcs.end(), [&](auto arc) { append_arc(arc, octets); });
  return true;
}

bool parse_time(std::string_view text, std::uint64_t& seconds) {
  constexpr std::string_view kPattern = "0000-00-00T00:00:00Z";
  constexpr std::size_t kDate = 10;
  if (text.size() != kPattern.size() && text.size() != kDate) return false;
  std::array<std::uint8_t, der::kTimeLength> digits = {};
  digits.fill('0');
  digits.back() = 'Z';
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size() && count + 1 < digits.size(); ++i) {
    if (kPattern[i] == '0') {
      digits[count++] = static_cast<std::uint8_t>(text[i]);
    } else if (text[i] != kPattern[i]) {
      return false;
    }
  }
  if (text.size() == kPattern.size() && text.back() != 'Z') return false;
  return der::parse_time(digits.data(), seconds);
}

}  // namespace tq::tool
