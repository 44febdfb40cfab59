// Reads one line of a job script into a name and written values.
#pragma once

#include "byte_data.h"
#include "script_value.h"

#include <optional>
#include <string>
#include <string_view>

namespace kryn::script {

// Parses one line. Returns nothing for a blank or comment-only line. Byte
// data is decoded from source. Throws ScriptError for text that is not a
// well-formed line.
std::optional<ScriptLine> parseLine(std::string_view text, int number,
                                    const ByteDataSource& source = {});

// Parses a single value token (a number or null), as a line would.
Value parseScalar(std::string_view token);

} // namespace kryn::script
