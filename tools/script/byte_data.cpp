#include "byte_data.h"

#include "script_error.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace kryn::script {

namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

uint64_t parseUnsigned(std::string_view text, std::string_view what) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    if (text.empty()) {
        throw ScriptError("missing " + std::string(what));
    }
    uint64_t value = 0;
    for (char c : text) {
        int d = hexDigit(c);
        if (d < 0 || d >= base || value > (UINT64_MAX - static_cast<uint64_t>(d)) / 16) {
            throw ScriptError("bad " + std::string(what) + " '" + std::string(text) + "'");
        }
        value = value * static_cast<uint64_t>(base) + static_cast<uint64_t>(d);
    }
    return value;
}

size_t parseLength(std::string_view text, const ByteDataSource& source) {
    uint64_t length = parseUnsigned(text, "length");
    if (length > source.maxBytes) {
        throw ScriptError("byte data of " + std::string(text) + " bytes is too large");
    }
    return static_cast<size_t>(length);
}

std::vector<uint8_t> decodeHex(std::string_view digits) {
    if (digits.size() % 2 != 0) {
        throw ScriptError("hex: data needs an even number of digits");
    }
    std::vector<uint8_t> out(digits.size() / 2);
    for (size_t i = 0; i < out.size(); ++i) {
        int hi = hexDigit(digits[2 * i]);
        int lo = hexDigit(digits[2 * i + 1]);
        if (hi < 0 || lo < 0) {
            throw ScriptError("hex: data holds a character that is not a hex digit");
        }
        out[i] = static_cast<uint8_t>(hi * 16 + lo);
    }
    return out;
}

std::vector<uint8_t> readFile(std::string_view relative, const ByteDataSource& source) {
    if (relative.empty()) {
        throw ScriptError("file: needs a path");
    }
    if (!source.allowFiles) {
        throw ScriptError("file: data is not allowed here");
    }
    std::string path(relative);
    if (path[0] != '/' && !source.baseDirectory.empty()) {
        path = source.baseDirectory + "/" + path;
    }
    // Only regular files: a directory makes the stream throw, and a device
    // such as /dev/zero would never end. The size is checked before reading.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        throw ScriptError("cannot read file '" + path + "'");
    }
    const uintmax_t size = std::filesystem::file_size(path, error);
    if (!error && size > source.maxBytes) {
        throw ScriptError("file '" + path + "' is too large");
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw ScriptError("cannot read file '" + path + "'");
    }
    std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in),
                               std::istreambuf_iterator<char>()};
    if (bytes.size() > source.maxBytes) {
        throw ScriptError("file '" + path + "' is too large");
    }
    return bytes;
}

// Splits "A:B" at the first colon.
std::pair<std::string_view, std::string_view> splitColon(std::string_view text,
                                                         std::string_view form) {
    size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        throw ScriptError(std::string(form) + " needs two fields separated by ':'");
    }
    return {text.substr(0, colon), text.substr(colon + 1)};
}

// One step of xorshift32; the byte it gives.
inline uint8_t xorshiftStep(uint32_t& state) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return static_cast<uint8_t>(state & 0xFF);
}

// xorshift32 is linear over the bits of its state: a 32 x 32 bit matrix,
// kept as the images of the 32 unit vectors.
struct BitMatrix {
    uint32_t column[32];

    uint32_t apply(uint32_t v) const {
        uint32_t out = 0;
        for (int j = 0; v != 0; ++j, v >>= 1) {
            out ^= (v & 1u) != 0 ? column[j] : 0u;
        }
        return out;
    }
    BitMatrix after(const BitMatrix& first) const {
        BitMatrix m{};
        for (int j = 0; j < 32; ++j) {
            m.column[j] = apply(first.column[j]);
        }
        return m;
    }
};

// The state `steps` steps after `state`, by squaring the step's matrix.
uint32_t xorshiftAhead(uint32_t state, uint64_t steps) {
    BitMatrix step{};
    for (int j = 0; j < 32; ++j) {
        uint32_t unit = 1u << j;
        xorshiftStep(unit);
        step.column[j] = unit;
    }
    for (; steps != 0; steps >>= 1) {
        if ((steps & 1) != 0) {
            state = step.apply(state);
        }
        step = step.after(step);
    }
    return state;
}

} // namespace

bool isByteData(std::string_view token) {
    return token.starts_with("hex:") || token.starts_with("file:") || token.starts_with("seed:") ||
           token.starts_with("fill:");
}

std::vector<uint8_t> xorshiftBytes(uint32_t seed, size_t length) {
    std::vector<uint8_t> out(length);
    uint32_t state = seed == 0 ? 1 : seed;
    // Long streams are made as four blocks, each from its own state computed
    // ahead, so that the processor runs four chains of shifts at once.
    const size_t block = length / 4;
    if (length >= 4096) {
        uint32_t b = xorshiftAhead(state, block);
        uint32_t c = xorshiftAhead(b, block);
        uint32_t d = xorshiftAhead(c, block);
        uint8_t* at = out.data();
        for (size_t i = 0; i < block; ++i) {
            at[i] = xorshiftStep(state);
            at[i + block] = xorshiftStep(b);
            at[i + 2 * block] = xorshiftStep(c);
            at[i + 3 * block] = xorshiftStep(d);
        }
        for (size_t i = 4 * block; i < length; ++i) {
            at[i] = xorshiftStep(d);
        }
        return out;
    }
    for (auto& byte : out) {
        byte = xorshiftStep(state);
    }
    return out;
}

std::vector<uint8_t> decodeByteData(std::string_view token, const ByteDataSource& source) {
    if (token.starts_with("hex:")) {
        if (token.size() - 4 > 2 * source.maxBytes) {
            throw ScriptError("hex: data is too large");
        }
        return decodeHex(token.substr(4));
    }
    if (token.starts_with("file:")) {
        return readFile(token.substr(5), source);
    }
    if (token.starts_with("seed:")) {
        auto [seed, length] = splitColon(token.substr(5), "seed:");
        uint64_t n = parseUnsigned(seed, "seed");
        if (n > UINT32_MAX) {
            throw ScriptError("seed " + std::string(seed) + " does not fit 32 bits");
        }
        return xorshiftBytes(static_cast<uint32_t>(n), parseLength(length, source));
    }
    if (token.starts_with("fill:")) {
        auto [value, length] = splitColon(token.substr(5), "fill:");
        uint64_t byte = parseUnsigned(value, "fill byte");
        if (byte > 0xFF) {
            throw ScriptError("fill byte " + std::string(value) + " does not fit 8 bits");
        }
        return std::vector<uint8_t>(parseLength(length, source), static_cast<uint8_t>(byte));
    }
    throw ScriptError("unknown byte data '" + std::string(token) + "'");
}

} // namespace kryn::script
