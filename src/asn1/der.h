#ifndef TQ_ASN1_DER_H
#define TQ_ASN1_DER_H

// The DER rules (X.690), each stated once: what a header is, what the content of each type is and
// how long an element becomes; asn1/writer.h writes by them. Both libraries are layers over these
// files. What long lengths and times need is kept out of line: every field of every record would
// repeat it.

#include <tqasn1/asn1.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "asn1/calendar.h"

namespace tq::der {

using Octet = std::uint8_t;

enum Tag : Octet {
  kBoolean = 0x01,
  kInteger = 0x02,
  kBitString = 0x03,
  kOctetString = 0x04,
  kNull = 0x05,
  kObjectId = 0x06,
  kUtf8String = 0x0C,
  kPrintableString = 0x13,
  kIa5String = 0x16,
  kGeneralizedTime = 0x18,
  kBmpString = 0x1E,
  kSequence = 0x30,
  kSet = 0x31,
  kContext0 = 0xA0,
  kContext1 = 0xA1,
  kContext2 = 0xA2,
};

inline constexpr Octet kConstructedBit = 0x20;
inline constexpr Octet kClassBits = 0xC0;
inline constexpr Octet kNumberBits = 0x1F;

// The type word of a node: the universal number, or the whole octet where the class is another, so
// that [0] can never be taken for a universal element.
constexpr std::uint32_t type_word(Octet tag) {
  return (tag & kClassBits) == 0 ? tag & kNumberBits : tag;
}

// Tags are one octet. Universal types have one form each: SEQUENCE and SET are constructed, all
// others primitive; number 0 is no type.
constexpr bool is_valid_tag(Octet tag) {
  if ((tag & kNumberBits) == kNumberBits) return false;
  if ((tag & kClassBits) != 0) return true;
  const Octet number = tag & kNumberBits;
  const bool constructed = (tag & kConstructedBit) != 0;
  return number != 0 &&
         constructed == (number == (kSequence & kNumberBits) || number == (kSet & kNumberBits));
}

// One element where it lies in the input: a header of 2 to 6 octets, then the content.
struct Element {
  const Octet* start = nullptr;
  const Octet* inside = nullptr;
  std::uint32_t length = 0;  // of the content

  [[nodiscard]] Octet tag() const { return start[0]; }
  [[nodiscard]] const Octet* content() const { return inside; }
  [[nodiscard]] std::uint32_t size() const {
    return static_cast<std::uint32_t>(inside - start) + length;
  }
};

// Walks the children of an element in place. Every header is checked when it is passed: a tag that
// is valid, a length that is definite, the shortest of its kind and within the parent.
class Cursor {
 public:
  Cursor(const Octet* bytes, std::size_t length) : at_(bytes), end_(bytes + length) {}
  explicit Cursor(const Element& parent) : Cursor(parent.content(), parent.length) {}

  [[nodiscard]] bool at_end() const { return at_ == end_; }

  // The tag octet of the next element, or 0, which is no tag, at the end.
  [[nodiscard]] Octet peek() const { return at_end() ? Octet{0} : *at_; }

  // The next element whatever it is.
  [[nodiscard]] bool next(Element& element) {
    return has_header() && is_valid_tag(*at_) && pass(element);
  }

  // The next element, which must be of this tag.
  [[nodiscard, gnu::always_inline]] bool take(Octet tag, Element& element) {
    return has_header() && *at_ == tag && pass(element);
  }

  // Whether what is left is whole elements: they are ignored, but they must be elements.
  [[nodiscard]] bool finish() const { return at_end() || are_elements(*this); }

 private:
  // Whether there is a tag and a first octet of a length.
  [[nodiscard]] bool has_header() const { return end_ - at_ >= 2; }

  // Where the content of an element is said to lie; nowhere, if its header is malformed.
  struct Content {
    const Octet* start;
    std::size_t length;
  };

  [[nodiscard, gnu::always_inline]] bool pass(Element& element) {
    Content content = {at_ + 2, at_[1]};
    if (content.length >= 0x80) {
      content = long_form(at_, end_);
      if (content.start == nullptr) return false;
    }
    if (content.length > static_cast<std::size_t>(end_ - content.start)) return false;
    element = {at_, content.start, static_cast<std::uint32_t>(content.length)};
    at_ = content.start + content.length;
    return true;
  }

  // What is seldom needed takes and gives values, so that cursors can live in registers.

  [[nodiscard, gnu::noinline]] static bool are_elements(Cursor rest) {
    Element ignored;
    while (!rest.at_end()) {
      if (!rest.next(ignored)) return false;
    }
    return true;
  }

  // A content that needs the long form has 128 octets or more, so that a whole word can be read.
  [[nodiscard, gnu::noinline]] static Content long_form(const Octet* at, const Octet* end) {
    const std::uint32_t count = at[1] & 0x7F;
    std::uint32_t length = 0;
    at += 2;
    if (count == 0 || count > sizeof length || end - at < 0x80 || *at == 0) return {};
    std::memcpy(&length, at, sizeof length);
    length = __builtin_bswap32(length) >> 8 * (sizeof length - count);
    return length < 0x80 ? Content{} : Content{at + count, length};
  }

  const Octet* at_;
  const Octet* end_;
};

// Reads the outermost element of a buffer; what lies behind it is not looked at.
[[nodiscard]] inline bool read_outermost(const Octet* bytes, std::size_t length, Octet tag,
                                         Element& element) {
  return bytes != nullptr && Cursor(bytes, length).take(tag, element);
}

// Whether the bytes are exactly one element, by its outer header alone.
[[nodiscard]] inline bool is_one_element(const Octet* bytes, std::size_t length) {
  Cursor cursor(bytes, length);
  Element element;
  return cursor.next(element) && cursor.at_end();
}

// Contents. Each reader takes an element whose tag has been checked.

[[nodiscard]] inline bool read_integer(const Element& element, std::uint32_t& value) {
  const Octet* content = element.content();
  std::uint32_t length = element.length;
  if (length == 0 || content[0] >= 0x80) return false;
  std::uint32_t number = content[0];
  if (length > 1) {
    if (number == 0 && content[1] < 0x80) return false;
    if (length > sizeof number + (number == 0 ? 1 : 0)) return false;
    while (--length > 0) number = number << 8 | *++content;
  }
  value = number;
  return true;
}

[[nodiscard]] inline bool read_boolean(const Element& element, Octet& value) {
  if (element.length != 1) return false;
  const Octet content = *element.content();
  if (content != 0 && content != 0xFF) return false;
  value = content & 1;
  return true;
}

[[nodiscard]] inline bool read_time(const Element& element, std::uint64_t& seconds) {
  return element.length == kTimeLength && parse_time(element.content(), seconds);
}

// A BIT STRING of whole octets: the leading octet counts the unused bits and must be 0.
[[nodiscard]] inline bool has_whole_octets(const Element& element) {
  return element.length != 0 && *element.content() == 0;
}

// Sizes.

// The octets of a length of the long form.
constexpr std::uint32_t long_length_size(std::uint64_t length) {
  return static_cast<std::uint32_t>(71 - std::countl_zero(length)) / 8;
}

constexpr std::uint32_t header_size(std::uint64_t length) {
  return length < 0x80 ? 2 : 2 + long_length_size(length);
}

constexpr std::uint64_t element_size(std::uint64_t length) { return header_size(length) + length; }

// There is one bit more than the value has, which says that it is not negative.
constexpr std::uint32_t integer_length(std::uint32_t value) {
  return static_cast<std::uint32_t>(40 - std::countl_zero(value | 1)) / 8;
}

}  // namespace tq::der

#endif
