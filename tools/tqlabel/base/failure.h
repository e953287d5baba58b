#ifndef TQLABEL_TOOL_BASE_FAILURE_H
#define TQLABEL_TOOL_BASE_FAILURE_H

// How a command ends. The numbers are the exit status, and of several files the greatest counts.

#include <cstdint>
#include <optional>
#include <string>

namespace tq::tool {

enum class Status : int {
  kYes = 0,          // yes, or clean
  kNo = 1,           // no, differs, or findings
  kUsage = 2,        // the command line, or the JSON that stands for one
  kInputOutput = 3,  // a file cannot be read or written
  kMalformed = 4,    // not a label
  kCrypto = 5,       // a key, a signature or an authenticator
};

// What is thrown where a command cannot go on. Every part but the first two may be missing.
struct Failure {
  Status status = Status::kUsage;
  std::string why;
  std::string file = {};                 // its path
  std::string field = {};                // its path within the label
  std::optional<std::uint64_t> at = {};  // byte within the file
  std::string advice = {};               // what to do about it
};

// "FILE: FIELD at byte 0x1A4: WHY; ADVICE", fit for a terminal.
[[nodiscard]] std::string message_of(const Failure& failure);

// The same on standard error, behind the name of the program.
void report(const Failure& failure);

}  // namespace tq::tool

#endif
