// The writing floor: one pass that adds up sizes and keeps the length of every constructed element,
// one that writes forward and picks the lengths up in the same order. Both follow one traversal.

#include <bit>
#include <cstdlib>
#include <cstring>

#include "asn1/calendar.h"
#include "floors/floors.h"

namespace tq::bench::floors {
namespace {

using Octet = std::uint8_t;

constexpr std::uint32_t octets_of(std::uint32_t value, int spare_bits) {
  return static_cast<std::uint32_t>(39 + spare_bits - std::countl_zero(value | 1)) / 8;
}

class Sizes {
 public:
  explicit Sizes(std::uint32_t* lengths) : lengths_(lengths) {}

  [[nodiscard]] std::uint32_t total() const { return total_; }

  template <class Content>
  void open(Octet /*tag*/, Content content) {
    std::uint32_t* const kept = lengths_++;
    const std::uint32_t before = total_;
    content();
    *kept = total_ - before;
    total_ += header(*kept);
  }
  void octets(Octet /*tag*/, const Bytes& field) { total_ += header(field.length) + field.length; }
  void bits(const Bytes& field) { total_ += header(field.length + 1) + field.length + 1; }
  void whole(const Bytes& field) { total_ += field.length; }
  void number(std::uint32_t value) { total_ += value < 0x80 ? 3 : 2 + octets_of(value, 1); }
  void flag(Octet /*value*/) { total_ += 3; }
  void time(std::uint64_t /*seconds*/) { total_ += 17; }
  void null() { total_ += 2; }

 private:
  static std::uint32_t header(std::uint32_t length) {
    return length < 0x80 ? 2 : 2 + octets_of(length, 0);
  }

  std::uint32_t total_ = 0;
  std::uint32_t* lengths_;
};

class Output {
 public:
  Output(Octet* at, const std::uint32_t* lengths) : at_(at), lengths_(lengths) {}

  template <class Content>
  void open(Octet tag, Content content) {
    header(tag, *lengths_++);
    content();
  }
  void octets(Octet tag, const Bytes& field) {
    header(tag, field.length);
    whole(field);
  }
  void bits(const Bytes& field) {
    header(0x03, field.length + 1);
    *at_++ = 0;
    whole(field);
  }
  // A short copy costs less than a call: two words that may overlap cover what is no longer.
  void whole(const Bytes& field) {
    const std::uint32_t length = field.length;
    if (length > 2 * sizeof(Words)) {
      std::memcpy(at_, field.data, length);
    } else if (length >= sizeof(Words)) {
      copy<Words>(field);
    } else if (length >= sizeof(std::uint64_t)) {
      copy<std::uint64_t>(field);
    } else if (length >= sizeof(std::uint32_t)) {
      copy<std::uint32_t>(field);
    } else if (length >= sizeof(std::uint16_t)) {
      copy<std::uint16_t>(field);
    } else if (length != 0) {
      *at_ = *field.data;
    }
    at_ += length;
  }
  void number(std::uint32_t value) {
    if (value >= 0x80) {
      at_ = long_number(at_, value);
      return;
    }
    header(0x02, 1);
    *at_++ = static_cast<Octet>(value);
  }
  void flag(Octet value) {
    header(0x01, 1);
    *at_++ = value != 0 ? 0xFF : 0;
  }
  void time(std::uint64_t seconds) {
    header(0x18, 15);
    der::format_time(seconds, at_);
    at_ += 15;
  }
  void null() { header(0x05, 0); }

 private:
  struct Words {
    std::uint64_t words[2];
  };

  void header(Octet tag, std::uint32_t length) {
    at_[0] = tag;
    at_[1] = static_cast<Octet>(length);
    at_ = length < 0x80 ? at_ + 2 : long_length(at_ + 1, length);
  }

  // The word that is stored may be longer than the length, but what follows is longer still.
  static Octet* long_length(Octet* at, std::uint32_t length) {
    const std::uint32_t count = octets_of(length, 0);
    const std::uint32_t word = __builtin_bswap32(length << (32 - 8 * count));
    *at++ = static_cast<Octet>(0x80 | count);
    std::memcpy(at, &word, sizeof word);
    return at + count;
  }

  [[gnu::noinline]] static Octet* long_number(Octet* at, std::uint32_t value) {
    std::uint32_t count = octets_of(value, 1);
    *at++ = 0x02;
    *at++ = static_cast<Octet>(count);
    while (count-- > 0) *at++ = static_cast<Octet>(std::uint64_t{value} >> (8 * count));
    return at;
  }

  template <class Word>
  void copy(const Bytes& field) {
    Word first;
    Word last;
    std::memcpy(&first, field.data, sizeof first);
    std::memcpy(&last, field.data + field.length - sizeof last, sizeof last);
    std::memcpy(at_, &first, sizeof first);
    std::memcpy(at_ + field.length - sizeof last, &last, sizeof last);
  }

  Octet* at_;
  const std::uint32_t* lengths_;
};

template <class To, class Content>
void open_if(bool tagged, Octet tag, To& to, Content content) {
  if (tagged) return to.open(tag, content);
  content();
}

template <class To>
void name(To& to, const Attribute& first) {
  to.open(0x30, [&] {
    for (const Attribute* one = &first; one != nullptr; one = one->next) {
      to.open(0x31, [&] {
        to.open(0x30, [&] {
          to.octets(0x06, one->type);
          to.octets(one->tag, one->value);
        });
      });
    }
  });
}

// SEQUENCE { SET OF entry }, or NULL where there is none.
template <class To, class Record, class Content>
void list(To& to, const Record* first, Content content) {
  if (first == nullptr) return to.null();
  to.open(0x30, [&] {
    to.open(0x31, [&] {
      for (const Record* one = first; one != nullptr; one = one->next) {
        to.open(0x30, [&] { content(*one); });
      }
    });
  });
}

template <class To>
void envelope(To& to, const Envelope& from) {
  name(to, from.issuer);
  to.octets(0x02, from.serial);
  to.octets(0x06, from.algorithm);
  to.octets(0x04, from.key);
}

template <class To>
void privilege(To& to, const Envelope& from) {
  to.whole(from.subject);
  to.flag(from.flags[0]);
  to.number(from.values[0]);
  to.number(from.values[1]);
  for (int i = 1; i < 4; ++i) to.flag(from.flags[i]);
  to.number(from.values[2]);
  to.number(from.values[3]);
  if (from.pairs == nullptr) return;
  list(to, from.pairs, [&](const Pair& pair) {
    to.number(pair.type);
    to.number(pair.value);
  });
}

template <class To>
void sign(To& to, Octet algorithm_tag, const Sign& from) {
  to.open(0x30, [&] {
    to.whole(from.certificate);
    to.octets(algorithm_tag, from.algorithm);
    to.bits(from.value);
  });
}

template <class To>
void encrypt_head(To& to, bool old, const Label& from) {
  to.open(0x30, [&] {
    to.octets(old ? 0x13 : 0x06, from.algorithm);
    to.number(from.mode);
    if (!old) to.number(from.feedback);
    list(to, from.head_envelopes, [&](const Envelope& one) { envelope(to, one); });
  });
}

template <class To>
void head(To& to, bool old, const Label& from) {
  to.octets(0x13, from.label);
  to.octets(0x13, from.version);
  if (old) {
    to.octets(0x04, from.custom);
    sign(to, 0x13, from.head_sign);
    encrypt_head(to, old, from);
  } else {
    name(to, from.issuer);
  }
  to.octets(0x02, from.serial);
  to.time(from.times[0]);
  to.time(from.times[1]);
  if (old) return;
  to.octets(0x04, from.custom);
  encrypt_head(to, old, from);
  sign(to, 0x06, from.head_sign);
}

template <class To>
void seal(To& to, const Stamp& from) {
  to.octets(0x13, from.seal_name);
  to.open(0x30, [&] {
    to.whole(from.meta_element);
    to.time(from.meta_time[0]);
    to.octets(0x13, from.meta_text[0]);
    to.time(from.meta_time[1]);
    to.time(from.meta_time[2]);
    to.octets(0x13, from.meta_text[1]);
  });
  to.number(from.seal_type);
  to.octets(0x04, from.seal_data);
  to.whole(from.seal_element);
  to.bits(from.seal_bits);
}

template <class To>
void stamp(To& to, const Stamp& from) {
  to.octets(0x13, from.name);
  to.open(0x30, [&] { seal(to, from); });
  to.open(0x30, [&] {
    to.octets(0x13, from.text[0]);
    for (const std::uint32_t value : from.values) to.number(value);
    to.octets(0x13, from.text[1]);
    to.time(from.time);
    to.octets(0x13, from.text[2]);
  });
  to.bits(from.bits);
}

template <class To>
void watermark(To& to, const Label& from) {
  for (const Bytes& data : from.mark_data) to.octets(0x04, data);
  to.open(0x30, [&] {
    for (const std::uint32_t value : from.mark_algorithm) to.number(value);
  });
  to.octets(0x13, from.mark_text);
  to.time(from.mark_time);
}

template <class To>
void fingerprint(To& to, const Label& from) {
  to.open(0x30, [&] {
    for (const Bytes& info : from.system_info) to.octets(0x04, info);
    to.number(from.system_value);
  });
  to.null();
}

template <class To>
void markings(To& to, bool tagged, const Label& from) {
  open_if(tagged, 0xA0, to, [&] { to.open(0x30, [&] { stamp(to, from.stamp); }); });
  open_if(tagged, 0xA1, to, [&] { to.open(0x30, [&] { watermark(to, from); }); });
  open_if(tagged, 0xA2, to, [&] { to.open(0x30, [&] { fingerprint(to, from); }); });
}

template <class To>
void file(To& to, bool old, const Label& from) {
  to.open(0x30, [&] {
    to.octets(0x13, from.file_number);
    to.octets(0x13, from.creator);
    to.time(from.creation);
  });
  to.open(0x30, [&] {
    for (const std::uint32_t value : from.numbers) to.number(value);
    for (const Bytes& text : from.names) to.octets(0x13, text);
    for (const std::uint64_t date : from.dates) to.time(date);
  });
  if (old) return;
  to.open(0x30, [&] {
    for (const std::uint32_t value : from.align) to.number(value);
  });
}

template <class To>
void extensions(To& to, const Label& from) {
  list(to, from.extensions, [&](const Extension& one) {
    to.number(one.type);
    to.octets(0x04, one.value);
  });
}

template <class To>
void logs(To& to, bool old, const Label& from) {
  list(to, from.logs, [&](const Log& one) {
    to.number(one.type);
    to.octets(0x13, one.text1);
    if (!old) name(to, one.name);
    to.octets(0x02, one.array1);
    to.octets(0x02, one.array2);
    to.time(one.time);
    to.number(one.value);
    to.octets(0x13, one.text2);
  });
}

template <class To>
void body(To& to, Version version, const Label& from) {
  const bool old = version == Version::k60;
  if (version == Version::k112) {
    to.open(0x30, [&] { sign(to, 0x06, from.body_sign); });
  } else {
    to.bits(from.body_sign.value);
    to.whole(from.body_sign.certificate);
  }
  list(to, from.body_envelopes, [&](const Envelope& one) {
    to.open(0x30, [&] { envelope(to, one); });
    to.open(0x30, [&] { privilege(to, one); });
  });
  markings(to, version == Version::k112, from);
  file(to, old, from);
  if (old || from.extensions != nullptr) open_if(!old, 0xA0, to, [&] { extensions(to, from); });
  if (old || from.logs != nullptr) open_if(!old, 0xA1, to, [&] { logs(to, old, from); });
}

template <class To>
void label(To& to, Version version, const Label& from) {
  to.open(0x30, [&] {
    to.open(0x30, [&] { head(to, version == Version::k60, from); });
    to.open(0x30, [&] { body(to, version, from); });
  });
}

// One function each, so that what they count in stays in registers.

[[gnu::flatten]] std::uint32_t measure(Version version, const Label& from, std::uint32_t* lengths) {
  Sizes sizes(lengths);
  label(sizes, version, from);
  return sizes.total();
}

[[gnu::flatten]] void put(Version version, const Label& from, const std::uint32_t* lengths,
                          Octet* at) {
  Output output(at, lengths);
  label(output, version, from);
}

}  // namespace

std::size_t write(Version version, const void* decoded, std::span<std::uint8_t> buffer) {
  const auto& from = *static_cast<const Label*>(decoded);
  constexpr std::size_t kFew = 1024;
  std::uint32_t few[kFew];
  // No record takes more than eight, the label but for its entries less than the rest.
  const std::size_t most = 8 * std::size_t{from.entries} + 64;
  auto* const lengths =
      most <= kFew ? few : static_cast<std::uint32_t*>(std::malloc(sizeof few[0] * most));
  if (lengths == nullptr) return 0;
  const std::uint32_t total = measure(version, from, lengths);
  const bool fits = total <= buffer.size();
  if (fits) put(version, from, lengths, buffer.data());
  if (lengths != few) std::free(lengths);
  return fits ? total : 0;
}

}  // namespace tq::bench::floors
