// Byte data written in a script: hex:, file:, seed:N:LEN and fill:0xNN:LEN.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kryn::script {

// True when the token starts with one of the byte-data prefixes.
bool isByteData(std::string_view token);

// Decodes a byte-data token; file: paths are relative to baseDirectory.
// Throws ScriptError for malformed data or an unreadable file.
std::vector<uint8_t> decodeByteData(std::string_view token, const std::string& baseDirectory);

// LEN bytes of the xorshift32 stream started from seed (0 is taken as 1).
std::vector<uint8_t> xorshiftBytes(uint32_t seed, size_t length);

} // namespace kryn::script
