#ifndef TQ_BENCH_BOUNDS_ENTRY_POINTS_H
#define TQ_BENCH_BOUNDS_ENTRY_POINTS_H

// The functions of both libraries that take bytes which a stranger may have chosen, each as one
// call on one input; and what callers do next with a label that was decoded from such bytes.

#include <tqlabel/label.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bounds/worst.h"

namespace tq::bench {

// The most that a call has allocated at one time, per byte of its input and beside that, as
// docs/security.md promises.
inline constexpr double kDecoded = 15;  // records, which the smallest entries become
inline constexpr double kNodes = 21;    // of the smallest elements
inline constexpr double kLengths = 2;   // of constructed elements that are to be written
inline constexpr double kCopies = 2;    // for callers, of records and of each field
inline constexpr double kCopied = 1;
inline constexpr double kNothing = 0;
inline constexpr std::size_t kFixed = 4096;  // a handle, a flat name

// Makes the call, releases what it gave and tells whether it succeeded.
using Call = std::function<bool()>;

struct EntryPoint {
  std::string name;
  std::string group;  // of entry points that do the same
  unsigned forms;     // the inputs that it is meant for
  Gets needs;         // succeeds for inputs that get as far, and for no others
  double peak;
  // What comes before the call; none for inputs that it cannot be made on.
  std::function<Call(const WorstInput&)> prepare;

  [[nodiscard]] bool takes(const WorstInput& input) const {
    return (forms & static_cast<unsigned>(input.form)) != 0;
  }
};

std::vector<EntryPoint> entry_points();

// Its parts.
void add_decoders(std::vector<EntryPoint>& all);
void add_readers(std::vector<EntryPoint>& all);  // of decoded labels
void add_setters(std::vector<EntryPoint>& all);
void add_primitives(std::vector<EntryPoint>& all);

inline std::uint32_t size32(const Bytes& bytes) { return static_cast<std::uint32_t>(bytes.size()); }

struct Release {
  void operator()(TqLabel label) const { FreeHandleLabel(label); }
};
using Owner = std::unique_ptr<TqLabelHandle, Release>;

// Of version "1.1.2".
Owner new_label();

// Nine times the attribute that other recipients have last, and one that only the recipient has who
// stands last, so that a lookup walks every name ten times.
PJCertIssuer* issuer();

}  // namespace tq::bench

#endif
