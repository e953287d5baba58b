#ifndef TQ_ASN1_DER_H
#define TQ_ASN1_DER_H

// The DER rules (X.690), each stated once: what a header is, what the content of each type is, how
// long an element becomes and how it is written. Both libraries are layers over this file. What
// long lengths and times need is kept out of line: every field of every record would repeat it.

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
    return !at_end() && is_valid_tag(*at_) && pass(element);
  }

  // The next element, which must be of this tag.
  [[nodiscard, gnu::always_inline]] bool take(Octet tag, Element& element) {
    return !at_end() && *at_ == tag && pass(element);
  }

  // Whether what is left is whole elements: they are ignored, but they must be elements.
  [[nodiscard]] bool finish() const { return at_end() || are_elements(*this); }

 private:
  // Where the content of an element is said to lie; nowhere, if its header is malformed.
  struct Content {
    const Octet* start;
    std::size_t length;
  };

  [[nodiscard, gnu::always_inline]] bool pass(Element& element) {
    if (end_ - at_ < 2) return false;
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

  [[nodiscard, gnu::noinline]] static Content long_form(const Octet* at, const Octet* end) {
    const std::uint32_t count = at[1] & 0x7F;
    at += 2;
    if (count == 0 || count > sizeof(std::uint32_t) || end - at < count || *at == 0) return {};
    std::size_t length = 0;
    for (std::uint32_t i = 0; i < count; ++i) length = length << 8 | *at++;
    return length < 0x80 ? Content{} : Content{at, length};
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
  if (content[0] == 0 && length > 1) {
    if (content[1] < 0x80) return false;
    ++content;
    --length;
  }
  if (length > sizeof value) return false;
  value = 0;
  for (std::uint32_t i = 0; i < length; ++i) value = value << 8 | content[i];
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

// Adds up the sizes of what will be written and keeps the content length of every constructed
// element in writing order, so that the Writer finds each when it comes to it. The first lengths
// lie in the plan itself; what does not fit goes to blocks, each twice the size of the one before,
// so that nothing is ever moved; a link leads from each to the next. Where nobody will write from
// them, the first ones are overwritten by those that do not fit.
class Plan {
 public:
  enum class Keep : bool { kTotalOnly, kLengths };

  struct Open {
    std::uint32_t* slot = nullptr;
    std::uint64_t before = 0;
  };

  explicit Plan(Keep keep) : keep_(keep) {}
  Plan(const Plan&) = delete;
  Plan& operator=(const Plan&) = delete;
  Plan(Plan&&) = delete;
  Plan& operator=(Plan&&) = delete;
  ~Plan() {
    for (Block* block = blocks_; block != nullptr;) {
      Block* following = block->next;
      Asn1Free(block);
      block = following;
    }
  }

  void add(std::uint64_t content) { total_ += element_size(content); }
  void add_whole(std::uint64_t size) { total_ += size; }

  [[nodiscard]] bool open(Open& open) {
    if (at_ == end_ && !extend()) return false;
    open = {at_++, total_};
    return true;
  }

  void close(const Open& open) {
    const std::uint64_t content = total_ - open.before;
    *open.slot = static_cast<std::uint32_t>(content);
    total_ += header_size(content);
  }

  // Every length within is right only when the total fits in 32 bits.
  [[nodiscard]] bool fits() const { return total_ <= UINT32_MAX; }
  [[nodiscard]] std::uint32_t total() const { return static_cast<std::uint32_t>(total_); }

 private:
  friend class Writer;

  struct Block {
    Block* next;
    std::uint32_t capacity;
    std::uint32_t padding;
    // the lengths follow, and room for a link
  };

  // Stands in the place of a length, and what is linked to behind it. No content is as long, since
  // its header would make the element too long.
  static constexpr std::uint32_t kLink = UINT32_MAX;
  static constexpr std::uint32_t kLinkRoom = 1 + sizeof(void*) / sizeof(std::uint32_t);

  [[gnu::noinline]] static const std::uint32_t* follow(const std::uint32_t* link) {
    const std::uint32_t* to = nullptr;
    std::memcpy(&to, link + 1, sizeof to);
    return to;
  }

  [[nodiscard, gnu::noinline]] bool extend() {
    if (keep_ == Keep::kTotalOnly) {
      at_ = inline_;
      return true;
    }
    const std::uint32_t capacity = last_ == nullptr ? 2 * kInlineLengths : 2 * last_->capacity;
    auto* block = static_cast<Block*>(
        Asn1Malloc(sizeof(Block) + sizeof(std::uint32_t) * (std::size_t{capacity} + kLinkRoom)));
    if (block == nullptr) return false;
    *block = {nullptr, capacity, 0};
    (last_ == nullptr ? blocks_ : last_->next) = block;
    last_ = block;
    auto* const lengths = static_cast<std::uint32_t*>(static_cast<void*>(block + 1));
    *at_ = kLink;
    std::memcpy(at_ + 1, &lengths, sizeof lengths);
    at_ = lengths;
    end_ = at_ + capacity;
    return true;
  }

  static constexpr std::uint32_t kInlineLengths = 256;

  std::uint64_t total_ = 0;
  std::uint32_t* at_ = inline_;
  std::uint32_t* end_ = inline_ + kInlineLengths;
  Block* blocks_ = nullptr;
  Block* last_ = nullptr;
  Keep keep_;
  std::uint32_t inline_[kInlineLengths + kLinkRoom];
};

// Writes forward, once. Everything that can fail has been asked by the plan. A writer is passed and
// returned by value, and no function that is not inlined sees it, so that it lives in registers:
// every octet that is stored through a pointer to it might be one of its own.
class Writer {
 public:
  Writer(Octet* out, const Plan& plan) : at_(out), length_(plan.inline_) {}

  // For what holds no constructed element whose length a plan would have to keep.
  explicit Writer(Octet* out) : at_(out) {}

  void header(Octet tag, std::uint32_t length) { at_ = write_header(at_, tag, length); }

  // The header of a constructed element, whose content length the plan has kept.
  void open(Octet tag) {
    if (*length_ == Plan::kLink) length_ = Plan::follow(length_);
    header(tag, *length_++);
  }

  void octet(Octet value) { *at_++ = value; }

  void octets(const void* bytes, std::size_t length) {
    if (length != 0) std::memcpy(at_, bytes, length);
    at_ += length;
  }

  // A whole element around content octets.
  void element(Octet tag, const Octet* content, std::uint32_t length) {
    at_ = write_element(at_, tag, content, length);
  }

  void integer(std::uint32_t value) {
    if (value < 0x80) {
      header(kInteger, 1);
      octet(static_cast<Octet>(value));
    } else {
      at_ = write_long_integer(at_, value);
    }
  }

  void boolean(bool value) {
    header(kBoolean, 1);
    octet(value ? 0xFF : 0);
  }

  void time(std::uint64_t seconds) {
    header(kGeneralizedTime, kTimeLength);
    format_time(seconds, at_);
    at_ += kTimeLength;
  }

  void null() { header(kNull, 0); }

  [[nodiscard]] const Octet* at() const { return at_; }

 private:
  [[nodiscard]] static Octet* write_header(Octet* at, Octet tag, std::uint32_t length) {
    at[0] = tag;
    if (length >= 0x80) return write_long_length(at + 1, length);
    at[1] = static_cast<Octet>(length);
    return at + 2;
  }

  // Stores a whole word, of which the content that follows overwrites what is too much: it is
  // longer than that.
  [[nodiscard, gnu::noinline]] static Octet* write_long_length(Octet* at, std::uint32_t length) {
    const std::uint32_t count = long_length_size(length);
    const std::uint32_t word = __builtin_bswap32(length << 8 * (sizeof word - count));
    *at++ = static_cast<Octet>(0x80 | count);
    std::memcpy(at, &word, sizeof word);
    return at + count;
  }

  [[nodiscard, gnu::noinline]] static Octet* write_long_integer(Octet* at, std::uint32_t value) {
    std::uint32_t count = integer_length(value);
    at = write_header(at, kInteger, count);
    if (count > sizeof value) {
      *at++ = 0;
      --count;
    }
    while (count-- > 0) *at++ = static_cast<Octet>(value >> (8 * count));
    return at;
  }

  [[nodiscard, gnu::noinline]] static Octet* write_element(Octet* at, Octet tag,
                                                           const Octet* content,
                                                           std::uint32_t length) {
    if (length > kShort) return write_long_element(at, tag, content, length);
    at = write_header(at, tag, length);
    copy_short(at, content, length);
    return at + length;
  }

  [[nodiscard, gnu::noinline]] static Octet* write_long_element(Octet* at, Octet tag,
                                                                const Octet* content,
                                                                std::uint32_t length) {
    at = write_header(at, tag, length);
    std::memcpy(at, content, length);
    return at + length;
  }

  // Most contents are short, and copying them here costs less than a call: two words that may
  // overlap cover any length from one word to two.
  struct Words {
    std::uint64_t words[2];
  };
  static constexpr std::uint32_t kShort = 2 * sizeof(Words);

  static void copy_short(Octet* to, const Octet* from, std::uint32_t length) {
    if (length >= sizeof(Words)) return copy_words<Words>(to, from, length);
    if (length >= sizeof(std::uint64_t)) return copy_words<std::uint64_t>(to, from, length);
    if (length >= sizeof(std::uint32_t)) return copy_words<std::uint32_t>(to, from, length);
    if (length >= sizeof(std::uint16_t)) return copy_words<std::uint16_t>(to, from, length);
    if (length == 1) *to = *from;
  }

  template <class Word>
  static void copy_words(Octet* to, const Octet* from, std::uint32_t length) {
    Word first;
    Word last;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&last, from + length - sizeof last, sizeof last);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + length - sizeof last, &last, sizeof last);
  }

  Octet* at_;
  const std::uint32_t* length_ = nullptr;
};

}  // namespace tq::der

#endif
