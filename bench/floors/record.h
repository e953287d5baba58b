#ifndef TQ_BENCH_FLOORS_RECORD_H
#define TQ_BENCH_FLOORS_RECORD_H

// A label as the floors keep it: what the format has and nothing more. Byte fields point into the
// bytes behind the record that they belong to.

#include <cstddef>
#include <cstdint>

namespace tq::bench::floors {

struct Bytes {
  const std::uint8_t* data;
  std::uint32_t length;
};

struct Attribute {
  Bytes type;
  Bytes value;
  std::uint8_t tag;
  Attribute* next;
};

struct Pair {
  std::uint32_t type;
  std::uint32_t value;
  Pair* next;
};

struct Envelope {
  Attribute issuer;
  Bytes serial;
  Bytes algorithm;
  Bytes key;
  Envelope* next;
  // of the body's envelopes only
  Bytes subject;
  std::uint8_t flags[4];
  std::uint32_t values[4];
  Pair* pairs;
};

struct Log {
  std::uint32_t type;
  Bytes text1;
  Attribute name;
  Bytes array1;
  Bytes array2;
  std::uint64_t time;
  std::uint32_t value;
  Bytes text2;
  Log* next;
};

struct Extension {
  std::uint32_t type;
  Bytes value;
  Extension* next;
};

struct Sign {
  Bytes certificate;
  Bytes algorithm;
  Bytes value;
};

struct Stamp {
  Bytes name;
  Bytes seal_name;
  Bytes meta_element;
  std::uint64_t meta_time[3];
  Bytes meta_text[2];
  std::uint32_t seal_type;
  Bytes seal_data;
  Bytes seal_element;
  Bytes seal_bits;
  Bytes text[3];
  std::uint32_t values[4];
  std::uint64_t time;
  Bytes bits;
};

struct Label {
  Bytes label;
  Bytes version;
  Bytes custom;
  Sign head_sign;
  Bytes algorithm;
  std::uint32_t mode;
  std::uint32_t feedback;
  Envelope* head_envelopes;
  Attribute issuer;
  Bytes serial;
  std::uint64_t times[2];

  Sign body_sign;  // of "1.1.2" with all three fields
  Envelope* body_envelopes;
  Stamp stamp;
  Bytes mark_data[2];
  std::uint32_t mark_algorithm[2];
  Bytes mark_text;
  std::uint64_t mark_time;
  Bytes system_info[3];
  std::uint32_t system_value;
  Bytes file_number;
  Bytes creator;
  std::uint64_t creation;
  std::uint32_t numbers[3];
  Bytes names[2];
  std::uint64_t dates[4];
  std::uint32_t align[3];
  Extension* extensions;
  Log* logs;

  std::uint32_t entries;
};

}  // namespace tq::bench::floors

#endif
