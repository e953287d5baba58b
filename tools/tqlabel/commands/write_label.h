#ifndef TQLABEL_TOOL_COMMANDS_WRITE_LABEL_H
#define TQLABEL_TOOL_COMMANDS_WRITE_LABEL_H

#include <cstdint>
#include <string>
#include <vector>

namespace tq::tool {

// Writes a label that was made from JSON, unless it is one that would not be read back.
void write_label(const std::vector<std::uint8_t>& der, const std::string& source,
                 const std::string& output);

}  // namespace tq::tool

#endif
