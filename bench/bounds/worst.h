#ifndef TQ_BENCH_BOUNDS_WORST_H
#define TQ_BENCH_BOUNDS_WORST_H

// The inputs that cost most: as many of the smallest entries as fit, one huge field, the deepest
// nesting; and those that fail as late as possible or declare more than there is.

#include <string>
#include <vector>

#include "unit/support/bytes.h"

namespace tq::bench {

using test::Bytes;

enum Form : unsigned {
  kLabel = 1,
  kSealed = 2,  // a label around an encrypted body
  kBody = 4,    // of a "1.1.2" label
  kConstructed = 8,
  kPrimitive = 16,
  kContent = 32,  // what is no element: contents for setters
};

// How far an input gets.
enum class Gets {
  kNowhere,    // it is no element, or of elements that do not add up
  kSplit,      // its outermost elements are good
  kRead,       // it is read
  kReadWrite,  // and a label that was read from it can be written
  kNever,      // what an entry point needs that refuses whatever is large
};

struct WorstInput {
  std::string name;
  Form form;
  Gets gets;
  Bytes bytes;
};

// Inputs of about that size each, but for those that are the smallest of their form.
std::vector<WorstInput> worst_inputs(std::size_t size);

// The recipient whom the heads name last: serial number, and the two values of the common names.
inline constexpr std::uint8_t kSerial = 1;
inline constexpr char kFirstName = 'a';
inline constexpr char kLastName = 'b';

}  // namespace tq::bench

#endif
