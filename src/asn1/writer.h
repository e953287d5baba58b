#ifndef TQ_ASN1_WRITER_H
#define TQ_ASN1_WRITER_H

// Writing DER in two passes: a Plan adds up all sizes, and then a Writer writes forward once.

#include <cstring>

#include "asn1/der.h"

namespace tq::der {

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

  // cppcheck-suppress uninitMemberVar ; lengths are read only where they were stored
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
    Word first{};
    Word last{};
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
