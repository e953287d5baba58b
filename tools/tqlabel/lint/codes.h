#ifndef TQLABEL_TOOL_LINT_CODES_H
#define TQLABEL_TOOL_LINT_CODES_H

// What lint can find. Numbers are never given to something else: scripts know them.

#include <span>
#include <string>
#include <string_view>

namespace tq::tool {

enum class Severity { kNote, kWarning, kError };

enum class Code : int {
  // The label does not decode.
  kNotDer = 1,
  kMissing = 2,
  kWrongType = 3,
  kBadValue = 4,
  kVersion = 5,
  // It decodes, but the library does not give or use what it holds.
  kShortSealedBody = 10,
  kLargeName = 11,
  kLongField = 12,
  kUnknownAlgorithm = 13,
  kUnwritableName = 14,
  kNoCertificate = 15,
  kHiddenRecipient = 16,
  kDoesNotEncode = 17,
  // Bytes that readers take differently.
  kIgnored = 20,
  kMarkingTwice = 21,
  kLogsTag = 22,
  kPadding = 23,
  kCharacters = 24,
  kZeroByte = 25,
  kUnterminated = 26,
  kNumber = 27,
  kOpaque = 28,
  kWrittenOtherwise = 29,
  // Limits.
  kRefusedSize = 30,
  kCutOff = 31,
  kStuckExtension = 32,
  kHiddenExtension = 33,
  kLongList = 34,
  // Recipients.
  kOutOfReach = 40,
  kAmbiguousRecipient = 41,
  kBodyOnly = 42,
  kHeadOnly = 43,
  // What fields say together.
  kCipherWithoutSeal = 50,
  kSealWithoutCipher = 51,
  kDates = 52,
  kSignerAlgorithm = 53,
  kSignerTwice = 54,
  // Order.
  kSetOrder = 60,
};

struct Explanation {
  Code code;
  Severity severity;
  const char* title;
  const char* page;  // a line break; what is wrong, why it matters, an example, what to do
};

[[nodiscard]] std::span<const Explanation> explanations();
[[nodiscard]] const Explanation& explanation_of(Code code);

// "TQ012".
[[nodiscard]] std::string name_of(Code code);
[[nodiscard]] std::string_view name_of(Severity severity);

}  // namespace tq::tool

#endif
