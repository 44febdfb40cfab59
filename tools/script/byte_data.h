// Byte data written in a script: hex:, file:, seed:N:LEN and fill:0xNN:LEN.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kryn::script {

// Where byte data comes from and how much a script may ask for.
struct ByteDataSource {
    std::string baseDirectory = "."; // file: paths are relative to it
    bool allowFiles = true;
    size_t maxBytes = size_t{1} << 30; // larger data, arrays or images are refused
};

// True when the token starts with one of the byte-data prefixes.
bool isByteData(std::string_view token);

// Decodes a byte-data token. Throws ScriptError for malformed data, data
// over the limit, or an unreadable (or disallowed) file.
std::vector<uint8_t> decodeByteData(std::string_view token, const ByteDataSource& source);

// LEN bytes of the xorshift32 stream started from seed (0 is taken as 1).
std::vector<uint8_t> xorshiftBytes(uint32_t seed, size_t length);

} // namespace kryn::script
