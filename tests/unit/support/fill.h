#ifndef TQ_TESTS_SUPPORT_FILL_H
#define TQ_TESTS_SUPPORT_FILL_H

// Fills records at random with what their labels may hold.

#include <gtest/gtest.h>

#include <random>
#include <span>

#include "unit/support/walk.h"

namespace tq::test {

// A field with a block of its own.
inline ANYBUF owned(const Bytes& bytes, std::uint32_t type) {
  ANYBUF field{};
  EXPECT_TRUE(replace(field, bytes.data(), bytes.size(), type));
  return field;
}

inline const Bytes kIdentityWrapping = hex("60 86 48 01 86 FD 1E 01 05 01");
inline const Bytes kIdentitySignatureAlgorithm = hex("60 86 48 01 86 FD 1E 01 05 02");

enum class Lengths {
  kShort,  // for what is done with every octet
  kEdges,  // where the form of a length changes
};

// A field whose type word is set has been decided already and stays as it is.
class Fill {
 public:
  Fill(Lengths lengths, std::uint32_t seed, const Scope& scope)
      : lengths_(lengths), random_(seed), scope_(&scope) {}

  void value(std::uint32_t& number) {
    constexpr std::uint32_t kEdges[] = {0,      1,          127,        128,       0x7FFF,
                                        0x8000, 0x7FFFFFFF, 0x80000000, UINT32_MAX};
    number = pick(2) == 0 ? one_of<std::uint32_t>(kEdges) : static_cast<std::uint32_t>(random_());
  }
  void value(std::uint8_t& flag) { flag = static_cast<std::uint8_t>(pick(2)); }
  void value(std::uint64_t& seconds) {
    constexpr std::uint64_t kEdges[] = {0, 951782400, 4102444800, der::kLastTime};  // 2000-02-29
    seconds = pick(2) == 0 ? one_of<std::uint64_t>(kEdges) : random_();
  }
  void value(ANYBUF& field) {
    if (field.type == 0) field = owned(octets(), der::kOctetString);
  }
  void raw(ANYBUF& field, RawRule rule, bool (*accepts)(der::Octet)) {
    if (rule == RawRule::kOptional && pick(3) == 0) return;
    constexpr der::Octet kTags[] = {der::kSequence, der::kObjectId, der::kContext2};
    der::Octet tag = one_of<der::Octet>(kTags);
    while (!accepts(tag)) tag = one_of<der::Octet>(kTags);
    field = owned(tlv(tag, tag == der::kSequence ? tlv(der::kOctetString, octets()) : octets()),
                  der::type_word(tag));
  }
  template <class Record>
  void list(Record*& first) {
    first = nodes<Record>(lengths_ == Lengths::kShort ? 1 + pick(2) : pick(4));
  }
  template <class Record>
  void marking(Record& record) {
    record.present = 1;
  }
  void attribute(X509Name& attribute) {
    constexpr std::uint8_t kLastOctets[] = {3, 6, 7, 8, 10, 11};
    const Bytes type = {0x55, 4, one_of<std::uint8_t>(kLastOctets)};
    constexpr std::uint32_t kValueTypes[] = {12, 19, 22, 30};
    attribute.type = owned(pick(7) == 0 ? kEmail : type, der::kObjectId);
    attribute.value = owned(octets(), one_of<std::uint32_t>(kValueTypes));
  }
  // Decides the algorithm, too, since the form hangs on it.
  void certificate(Sign& sign) {
    switch (pick(3)) {
      case 0:
        sign.algorithm = owned({}, der::kObjectId);
        sign.certificate = owned(octets(), der::kOctetString);
        return;
      case 1:
        sign.algorithm = owned(kIdentitySignatureAlgorithm, der::kObjectId);
        sign.certificate = owned(concat(prefixed(), prefixed(), octets()), der::kOctetString);
        return;
      default:
        sign.algorithm = owned(tlv(1, octets()), der::kObjectId);
        sign.certificate = owned(tlv(der::kSequence, tlv(der::kOctetString, octets())), 16);
    }
  }
  void key(ENVELOPE& envelope) {
    if (!scope_->layout.v11 || pick(3) != 0) return value(envelope.encryptedKey);
    clear(envelope.algorithm);
    envelope.algorithm = owned(kIdentityWrapping, der::kObjectId);
    const Bytes e5 = some(pick(256));
    const std::size_t half = 1 + pick(lengths_ == Lengths::kShort ? 3 : 255);
    const auto counted = [](std::size_t count) { return Bytes{static_cast<std::uint8_t>(count)}; };
    const Bytes tail = concat(counted(e5.size()), e5, counted(half), Bytes(2 * half, 0x5A));
    envelope.encryptedKey = owned(concat(some(4), prefixed(), prefixed(), tail), 0);
  }

 private:
  std::size_t pick(std::size_t below) { return random_() % below; }
  template <class T>
  T one_of(std::span<const T> choices) {
    return choices[pick(choices.size())];
  }

  std::size_t length() {
    constexpr std::size_t kEdges[] = {0, 1, 127, 128, 255, 256};
    if (lengths_ == Lengths::kShort) return pick(3);
    return pick(64) == 0 ? 65535 + pick(2) : one_of<std::size_t>(kEdges);
  }
  Bytes some(std::size_t count) {
    Bytes bytes(count);
    for (std::uint8_t& octet : bytes) octet = static_cast<std::uint8_t>(random_());
    return bytes;
  }
  Bytes octets() { return some(length()); }
  Bytes prefixed() {
    const Bytes bytes = octets();
    const std::size_t size = bytes.size();
    return concat(Bytes{static_cast<std::uint8_t>(size), static_cast<std::uint8_t>(size >> 8),
                        static_cast<std::uint8_t>(size >> 16), 0},
                  bytes);
  }
  template <class Record>
  static Record* nodes(std::size_t count) {
    Record* first = nullptr;
    for (; count != 0; --count) {
      Record* made = make_zeroed<Record>().release();
      made->next = first;
      first = made;
    }
    return first;
  }

  Lengths lengths_;
  std::mt19937 random_;
  const Scope* scope_;
};

// A record that is released with its scope.
template <class S>
struct Owned : Pinned {
  typename S::Record record{};
  ~Owned() { S::release(record); }
};
template <const auto& S>
using OwnedBy = Owned<std::remove_cvref_t<decltype(S)>>;

}  // namespace tq::test

#endif
