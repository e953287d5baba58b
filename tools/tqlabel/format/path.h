#ifndef TQLABEL_TOOL_FORMAT_PATH_H
#define TQLABEL_TOOL_FORMAT_PATH_H

// Paths such as "body.logs[1].logText1" into the JSON of a label. Entries are counted from 1.

#include "format/json.h"

namespace tq::tool {

// What the path leads to. A path that leads nowhere is a Failure.
[[nodiscard]] Json& at_path(Json& label, const std::string& path);

// Takes an entry out of a list.
void remove_at(Json& label, const std::string& path);

// Puts an entry at the end of a list, which may have been left out.
void add_at(Json& label, const std::string& path, Json entry);

// A value as it is typed: JSON where it is that, but for a number, true or false where a text
// stands; otherwise a text.
[[nodiscard]] Json typed_value(const Json& before, const std::string& text);

}  // namespace tq::tool

#endif
