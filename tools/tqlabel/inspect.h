#ifndef TQLABEL_TOOL_INSPECT_H
#define TQLABEL_TOOL_INSPECT_H

#include <string>
#include <vector>

namespace tq::tool {

// Ordered: the worst of several files is what the tool exits with.
enum class Status : int { kOk = 0, kUsage = 2, kUnreadable = 3, kUndecodable = 4 };

// Prints the labels in the files, "-" being standard input.
[[nodiscard]] Status inspect(const std::vector<std::string>& paths);

}  // namespace tq::tool

#endif
