#ifndef TQ_TESTS_SUPPORT_BYTES_H
#define TQ_TESTS_SUPPORT_BYTES_H

// Bytes as tests write them down, nodes around them, and a DER encoder of its own to compare with.

#include <tqasn1/asn1.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace tq::test {

using Bytes = std::vector<std::uint8_t>;

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

inline Bytes join(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

inline Bytes zeros(std::size_t count) { return Bytes(count, 0); }

inline Bytes header(std::uint8_t tag, std::size_t length) {
  std::uint8_t octets[2 + sizeof length] = {tag};
  std::size_t count = 0;  // of the octets behind the one that counts them
  while (length >= 0x80 && count < sizeof length && length >> (8 * count) != 0) ++count;
  octets[1] = static_cast<std::uint8_t>(count == 0 ? length : 0x80 + count);
  for (std::size_t i = 0; i < count; ++i) {
    octets[1 + count - i] = static_cast<std::uint8_t>(length >> (8 * i));
  }
  return {octets, octets + 2 + count};
}

inline Bytes tlv(std::uint8_t tag, const Bytes& content) {
  return join(header(tag, content.size()), content);
}

inline Bytes text(std::string_view characters) { return {characters.begin(), characters.end()}; }

template <class... Parts>
Bytes concat(const Parts&... parts) {
  Bytes all;
  (all.insert(all.end(), parts.begin(), parts.end()), ...);
  return all;
}

template <class... Parts>
Bytes sequence(const Parts&... children) {
  return tlv(0x30, concat(children...));
}

inline Bytes bytes_of(const ANYBUF* node) { return {node->data, node->data + node->length}; }

struct FreeChain {
  void operator()(ANYBUF* chain) const { DIFreeAnybuf(chain); }
};
using Chain = std::unique_ptr<ANYBUF, FreeChain>;

// Bytes with a node around them, as a caller hands them in.
class Input {
 public:
  explicit Input(Bytes bytes) : bytes_(std::move(bytes)) {
    node_.data = bytes_.data();
    node_.length = static_cast<std::uint32_t>(bytes_.size());
    node_.form = ASN1_FORM_VIEW;
  }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  Input(Input&&) = delete;
  Input& operator=(Input&&) = delete;
  ~Input() = default;

  ANYBUF* node() { return &node_; }

 private:
  Bytes bytes_;
  ANYBUF node_{};
};

}  // namespace tq::test

#endif
