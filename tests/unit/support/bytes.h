#ifndef TQ_TESTS_SUPPORT_BYTES_H
#define TQ_TESTS_SUPPORT_BYTES_H

// Bytes as tests write them down, nodes around them, and a DER encoder of their own to compare
// with.

#include <tqasn1/asn1.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

namespace tq::test {

using Bytes = std::vector<std::uint8_t>;

// Under memcheck a sample has to do.
inline bool quick() { return std::getenv("TQLABEL_QUICK") != nullptr; }

// Pairs of upper-case digits; anything else between them is skipped.
inline Bytes hex(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    const std::size_t high = kDigits.find(text[i]);
    if (high == std::string_view::npos) continue;
    bytes.push_back(static_cast<std::uint8_t>(high << 4 | kDigits.find(text[++i])));
  }
  return bytes;
}

// Several of them, with a bar between any two.
inline std::vector<Bytes> hexes(std::string_view text) {
  std::vector<Bytes> all;
  for (;;) {
    const std::size_t bar = text.find('|');
    all.push_back(hex(text.substr(0, bar)));
    if (bar == text.npos) return all;
    text.remove_prefix(bar + 1);
  }
}

inline Bytes head_of(const Bytes& bytes, std::size_t length) {
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)};
}

template <class... Parts>
Bytes concat(const Parts&... parts) {
  Bytes all;
  (all.insert(all.end(), parts.begin(), parts.end()), ...);
  return all;
}

inline Bytes header(std::uint8_t tag, std::size_t length) {
  if (length < 0x80) return {tag, static_cast<std::uint8_t>(length)};
  Bytes octets;
  for (; length != 0; length >>= 8)
    octets.insert(octets.begin(), static_cast<std::uint8_t>(length));
  return concat(Bytes{tag, static_cast<std::uint8_t>(0x80 + octets.size())}, octets);
}

inline Bytes tlv(std::uint8_t tag, const Bytes& content) {
  return concat(header(tag, content.size()), content);
}

inline Bytes text(std::string_view characters) { return {characters.begin(), characters.end()}; }

template <class... Parts>
Bytes sequence(const Parts&... children) {
  return tlv(0x30, concat(children...));
}

inline Bytes bytes_of(const ANYBUF* node) { return {node->data, node->data + node->length}; }

// The base of what stays where it was made.
struct Pinned {
  Pinned() = default;
  Pinned(const Pinned&) = delete;
  Pinned& operator=(const Pinned&) = delete;
};

// Bytes with a node around them, as a caller hands them in.
class Input : Pinned {
 public:
  explicit Input(Bytes bytes) : bytes_(std::move(bytes)) {
    node_.data = bytes_.data();
    node_.length = static_cast<std::uint32_t>(bytes_.size());
    node_.form = ASN1_FORM_VIEW;
  }

  ANYBUF* node() { return &node_; }

 private:
  Bytes bytes_;
  ANYBUF node_{};
};

}  // namespace tq::test

#endif
