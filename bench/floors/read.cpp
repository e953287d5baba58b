// The reading floors, all by one traversal. What no sample label has is not read: fingerprint
// entries, identity-based keys and signatures, names tagged otherwise than X.501 does.

#include <cstdlib>
#include <cstring>

#include "asn1/calendar.h"
#include "floors/floors.h"

namespace tq::bench::floors {
namespace {

using Octet = std::uint8_t;

enum class Keep { kNothing, kBlocks, kFields };

struct In {
  const Octet* at;
  const Octet* end;

  [[nodiscard]] bool done() const { return at == end; }
  [[nodiscard]] std::size_t left() const { return static_cast<std::size_t>(end - at); }
  [[nodiscard]] bool starts_with(Octet tag) const { return at != end && *at == tag; }
};

// A content of the long form, from its length on; none where that is malformed.
[[gnu::noinline]] In long_content(In in) {
  const std::uint32_t count = in.at[-1] & 0x7FU;
  if (count == 0 || count > 4 || in.left() < count || *in.at == 0) return {};
  std::size_t length = *in.at++;
  for (std::uint32_t i = 1; i < count; ++i) length = length << 8 | *in.at++;
  return length < 0x80 || length > in.left() ? In{} : In{in.at, in.at + length};
}

// Passes over one element and gives its content.
inline bool take(In& in, Octet tag, In& content) {
  if (in.left() < 2 || in.at[0] != tag) return false;
  const std::size_t length = in.at[1];
  content = {in.at + 2, in.end};
  if (length >= 0x80) {
    content = long_content(content);
    if (content.at == nullptr) return false;
  } else {
    if (length > content.left()) return false;
    content.end = content.at + length;
  }
  in.at = content.end;
  return true;
}

[[gnu::noinline]] bool any_number(In content, std::uint32_t& value) {
  if (content.done() || *content.at >= 0x80) return false;
  if (*content.at == 0 && content.left() > 1 && *++content.at < 0x80) return false;
  if (content.left() > 4) return false;
  value = 0;
  for (; !content.done(); ++content.at) value = value << 8 | *content.at;
  return true;
}

inline bool number(In& in, std::uint32_t& value) {
  In content;
  if (!take(in, 0x02, content)) return false;
  if (content.left() != 1 || *content.at >= 0x80) return any_number(content, value);
  value = *content.at;
  return true;
}

inline bool flag(In& in, Octet& value) {
  In content;
  if (!take(in, 0x01, content) || content.left() != 1) return false;
  value = *content.at & 1;
  return *content.at == 0 || *content.at == 0xFF;
}

inline bool time(In& in, std::uint64_t& seconds) {
  In content;
  return take(in, 0x18, content) && content.left() == 15 && der::parse_time(content.at, seconds);
}

// SEQUENCE { SET OF entry }, or NULL where there is none.
inline bool list(In& in, In& entries) {
  if (in.starts_with(0x05)) return take(in, 0x05, entries) && entries.done();
  In sequence;
  return take(in, 0x30, sequence) && take(sequence, 0x31, entries) && sequence.done() &&
         !entries.done();
}

template <Keep K>
class Reader {
 public:
  bool label(In in, Version version, Label& to) {
    In content;
    if (!take(in, 0x30, content) || !head(content, version == Version::k60, to) ||
        !body(content, version, to) || !content.done()) {
      return false;
    }
    to.entries = entries_;
    return true;
  }

 private:
  bool keep(const Octet* data, std::size_t length, Bytes& field) {
    field = {data, static_cast<std::uint32_t>(length)};
    if constexpr (K == Keep::kFields) {
      auto* copy = static_cast<Octet*>(std::malloc(length == 0 ? 1 : length));
      field.data = copy;
      if (copy == nullptr) return false;
      std::memcpy(copy, data, length);
    }
    return true;
  }

  bool octets(In& in, Octet tag, Bytes& field) {
    In content;
    return take(in, tag, content) && keep(content.at, content.left(), field);
  }

  bool bits(In& in, Bytes& field) {
    In content;
    return take(in, 0x03, content) && !content.done() && *content.at == 0 &&
           keep(content.at + 1, content.left() - 1, field);
  }

  bool whole(In& in, Bytes& field) {
    const Octet* start = in.at;
    In content;
    return take(in, 0x30, content) && keep(start, static_cast<std::size_t>(in.at - start), field);
  }

  // The next entry of a list: where entries are kept, a copy of it behind a record of its own,
  // which the reader goes on from.
  template <class Record>
  Record* entry(In& in, Octet tag, Record& scratch, In& content) {
    const Octet* start = in.at;
    if (!take(in, tag, content)) return nullptr;
    if constexpr (K == Keep::kNothing) return &scratch;
    const auto size = static_cast<std::size_t>(in.at - start);
    auto* record = static_cast<Record*>(std::malloc(sizeof(Record) + size));
    if (record == nullptr) return nullptr;
    *record = {};
    auto* copy = reinterpret_cast<Octet*>(record + 1);
    std::memcpy(copy, start, size);
    content = {copy + (content.at - start), copy + size};
    ++entries_;
    return record;
  }

  // Reads each entry and chains it to the one before.
  template <class Record, class Read>
  bool chain(In& in, Octet tag, Record*& first, Read read) {
    for (Record** link = &first; !in.done();) {
      Record scratch;
      In content;
      Record* record = entry(in, tag, scratch, content);
      if (record == nullptr) return false;
      if constexpr (K != Keep::kNothing) {
        *link = record;
        link = &record->next;
      }
      if (!read(content, *record)) return false;
    }
    return true;
  }

  template <class Record, class Read>
  bool records(In& in, Record*& first, Read read) {
    In entries;
    return list(in, entries) && chain(entries, 0x30, first, read);
  }

  bool attribute(In& set, Attribute& to) {
    In pair;
    if (!take(set, 0x30, pair) || !set.done() || !octets(pair, 0x06, to.type) || pair.done()) {
      return false;
    }
    to.tag = *pair.at;
    return (to.tag == 0x0C || to.tag == 0x13 || to.tag == 0x16 || to.tag == 0x1E) &&
           octets(pair, to.tag, to.value) && pair.done();
  }

  bool name(In& in, Attribute& first) {
    In names;
    In set;
    return take(in, 0x30, names) && take(names, 0x31, set) && attribute(set, first) &&
           chain(names, 0x31, first.next,
                 [this](In& one, Attribute& to) { return attribute(one, to); });
  }

  bool envelope(In& in, Envelope& to) {
    return name(in, to.issuer) && octets(in, 0x02, to.serial) && octets(in, 0x06, to.algorithm) &&
           octets(in, 0x04, to.key) && in.done();
  }

  bool privilege(In& in, Envelope& to) {
    if (!whole(in, to.subject) || !flag(in, to.flags[0]) || !number(in, to.values[0]) ||
        !number(in, to.values[1]) || !flag(in, to.flags[1]) || !flag(in, to.flags[2]) ||
        !flag(in, to.flags[3]) || !number(in, to.values[2]) || !number(in, to.values[3])) {
      return false;
    }
    return in.done() ||
           (records(in, to.pairs,
                    [](In& pair, Pair& one) {
                      return number(pair, one.type) && number(pair, one.value) && pair.done();
                    }) &&
            in.done());
  }

  bool sign(In& in, Octet algorithm_tag, Sign& to) {
    In content;
    return take(in, 0x30, content) && whole(content, to.certificate) &&
           octets(content, algorithm_tag, to.algorithm) && bits(content, to.value) &&
           content.done();
  }

  bool encrypt_head(In& in, bool old, Label& to) {
    In content;
    return take(in, 0x30, content) && octets(content, old ? 0x13 : 0x06, to.algorithm) &&
           number(content, to.mode) && (old || number(content, to.feedback)) &&
           records(content, to.head_envelopes,
                   [this](In& one, Envelope& entry) { return envelope(one, entry); }) &&
           content.done();
  }

  bool head(In& in, bool old, Label& to) {
    In content;
    if (!take(in, 0x30, content) || !octets(content, 0x13, to.label) ||
        !octets(content, 0x13, to.version) || (old && !octets(content, 0x04, to.custom)) ||
        (old && !sign(content, 0x13, to.head_sign)) || (old && !encrypt_head(content, old, to)) ||
        (!old && !name(content, to.issuer)) || !octets(content, 0x02, to.serial) ||
        !time(content, to.times[0]) || !time(content, to.times[1])) {
      return false;
    }
    return (old || (octets(content, 0x04, to.custom) && encrypt_head(content, old, to) &&
                    sign(content, 0x06, to.head_sign))) &&
           content.done();
  }

  bool seal(In& in, Stamp& to) {
    In seal;
    In meta;
    return take(in, 0x30, seal) && octets(seal, 0x13, to.seal_name) && take(seal, 0x30, meta) &&
           (!meta.starts_with(0x30) || whole(meta, to.meta_element)) &&
           time(meta, to.meta_time[0]) && octets(meta, 0x13, to.meta_text[0]) &&
           time(meta, to.meta_time[1]) && time(meta, to.meta_time[2]) &&
           octets(meta, 0x13, to.meta_text[1]) && meta.done() && number(seal, to.seal_type) &&
           octets(seal, 0x04, to.seal_data) &&
           (!seal.starts_with(0x30) || whole(seal, to.seal_element)) && bits(seal, to.seal_bits) &&
           seal.done();
  }

  bool stamp(In& in, Stamp& to) {
    In all;
    In text;
    return take(in, 0x30, all) && octets(all, 0x13, to.name) && seal(all, to) &&
           take(all, 0x30, text) && octets(text, 0x13, to.text[0]) && number(text, to.values[0]) &&
           number(text, to.values[1]) && number(text, to.values[2]) && number(text, to.values[3]) &&
           octets(text, 0x13, to.text[1]) && time(text, to.time) &&
           octets(text, 0x13, to.text[2]) && text.done() && bits(all, to.bits) && all.done();
  }

  bool watermark(In& in, Label& to) {
    In mark;
    In algorithm;
    return take(in, 0x30, mark) && octets(mark, 0x04, to.mark_data[0]) &&
           octets(mark, 0x04, to.mark_data[1]) && take(mark, 0x30, algorithm) &&
           number(algorithm, to.mark_algorithm[0]) && number(algorithm, to.mark_algorithm[1]) &&
           algorithm.done() && octets(mark, 0x13, to.mark_text) && time(mark, to.mark_time) &&
           mark.done();
  }

  bool fingerprint(In& in, Label& to) {
    In content;
    In system;
    In entries;
    return take(in, 0x30, content) && take(content, 0x30, system) &&
           octets(system, 0x04, to.system_info[0]) && octets(system, 0x04, to.system_info[1]) &&
           octets(system, 0x04, to.system_info[2]) && number(system, to.system_value) &&
           system.done() && take(content, 0x05, entries) && entries.done() && content.done();
  }

  // An element, in a context tag of its own or not.
  template <class Read>
  bool tagged(bool has_tag, Octet tag, In& in, Read read) {
    if (!has_tag) return read(in);
    In content;
    return take(in, tag, content) && read(content) && content.done();
  }

  bool markings(In& in, bool tags, Label& to) {
    return tagged(tags, 0xA0, in, [&](In& one) { return stamp(one, to.stamp); }) &&
           tagged(tags, 0xA1, in, [&](In& one) { return watermark(one, to); }) &&
           tagged(tags, 0xA2, in, [&](In& one) { return fingerprint(one, to); });
  }

  bool file(In& in, bool old, Label& to) {
    In creator;
    In content;
    In align;
    return take(in, 0x30, creator) && octets(creator, 0x13, to.file_number) &&
           octets(creator, 0x13, to.creator) && time(creator, to.creation) && creator.done() &&
           take(in, 0x30, content) && number(content, to.numbers[0]) &&
           number(content, to.numbers[1]) && number(content, to.numbers[2]) &&
           octets(content, 0x13, to.names[0]) && octets(content, 0x13, to.names[1]) &&
           time(content, to.dates[0]) && time(content, to.dates[1]) && time(content, to.dates[2]) &&
           time(content, to.dates[3]) && content.done() &&
           (old || (take(in, 0x30, align) && number(align, to.align[0]) &&
                    number(align, to.align[1]) && number(align, to.align[2]) && align.done()));
  }

  bool extensions(In& in, Label& to) {
    return records(in, to.extensions, [this](In& content, Extension& one) {
      return number(content, one.type) && octets(content, 0x04, one.value) && content.done();
    });
  }

  bool logs(In& in, bool old, Label& to) {
    return records(in, to.logs, [this, old](In& content, Log& one) {
      return number(content, one.type) && octets(content, 0x13, one.text1) &&
             (old || name(content, one.name)) && octets(content, 0x02, one.array1) &&
             octets(content, 0x02, one.array2) && time(content, one.time) &&
             number(content, one.value) && octets(content, 0x13, one.text2) && content.done();
    });
  }

  bool signature(In& in, bool many, Sign& to) {
    if (!many) return bits(in, to.value) && whole(in, to.certificate);
    In signs;
    return take(in, 0x30, signs) && sign(signs, 0x06, to) && signs.done();
  }

  bool body(In& in, Version version, Label& to) {
    const bool old = version == Version::k60;
    const bool newest = version == Version::k112;
    In content;
    if (!take(in, 0x30, content) || !signature(content, newest, to.body_sign) ||
        !records(content, to.body_envelopes,
                 [this](In& one, Envelope& entry) {
                   In plain;
                   In rights;
                   return take(one, 0x30, plain) && envelope(plain, entry) &&
                          take(one, 0x30, rights) && privilege(rights, entry) && one.done();
                 }) ||
        !markings(content, newest, to) || !file(content, old, to)) {
      return false;
    }
    return ((!old && !content.starts_with(0xA0)) ||
            tagged(!old, 0xA0, content, [&](In& one) { return extensions(one, to); })) &&
           ((!old && content.done()) ||
            tagged(!old, 0xA1, content, [&](In& one) { return logs(one, old, to); })) &&
           content.done();
  }

  std::uint32_t entries_ = 0;
};

// One function each, so that positions stay in registers.
template <Keep K>
[[gnu::flatten]] bool read(Version version, const Octet* bytes, std::size_t length, Label& to) {
  return Reader<K>().label({bytes, bytes + length}, version, to);
}

template <Keep K>
void* decode(Version version, std::span<const std::uint8_t> bytes,
             void (*release)(Version, void*)) {
  auto* made = static_cast<Label*>(std::malloc(sizeof(Label) + bytes.size()));
  if (made == nullptr) return nullptr;
  *made = {};
  auto* copy = reinterpret_cast<Octet*>(made + 1);
  std::memcpy(copy, bytes.data(), bytes.size());
  if (read<K>(version, copy, bytes.size(), *made)) return made;
  release(version, made);
  return nullptr;
}

}  // namespace

void* walk(Version version, std::span<const std::uint8_t> bytes) {
  static Label scratch;
  return read<Keep::kNothing>(version, bytes.data(), bytes.size(), scratch) ? &scratch : nullptr;
}

void* block(Version version, std::span<const std::uint8_t> bytes) {
  return decode<Keep::kBlocks>(version, bytes, release_blocks);
}

void* own(Version version, std::span<const std::uint8_t> bytes) {
  return decode<Keep::kFields>(version, bytes, release_fields);
}

}  // namespace tq::bench::floors
