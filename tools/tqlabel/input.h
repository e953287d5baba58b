#ifndef TQLABEL_TOOL_INPUT_H
#define TQLABEL_TOOL_INPUT_H

#include <cstdint>
#include <string>
#include <vector>

namespace tq::tool {

// Reads a file, "-" being standard input, as far as it can belong to a label. Otherwise `error`
// says why not.
[[nodiscard]] bool read_input(const std::string& path, std::vector<std::uint8_t>& bytes,
                              std::string& error);

}  // namespace tq::tool

#endif
