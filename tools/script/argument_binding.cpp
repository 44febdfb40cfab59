#include "argument_binding.h"

#include "kryn/platform.h"
#include "script_error.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <string>

namespace kryn::script {

namespace {

struct IntRange {
    int64_t min;
    uint64_t max;
    int bits;
    bool isSigned;
};

constexpr IntRange I16_RANGE{INT16_MIN, INT16_MAX, 16, true};
constexpr IntRange U16_RANGE{0, UINT16_MAX, 16, false};
constexpr IntRange I32_RANGE{INT32_MIN, INT32_MAX, 32, true};
constexpr IntRange U32_RANGE{0, UINT32_MAX, 32, false};
constexpr IntRange U8_RANGE{0, UINT8_MAX, 8, false};
constexpr IntRange UPTR_RANGE{0, UINT64_MAX, 64, false};

std::string describe(const Value& v) {
    return "'" + v.text + "'";
}

// The integer a value denotes in a C type of the given range; hexadecimal
// fills signed types by bit width (0xFFFF is -1 as int16_t).
int64_t toInteger(const Value& v, const IntRange& range, const char* typeName) {
    if (v.kind != Value::Kind::Integer) {
        throw ScriptError(describe(v) + " is not an integer (" + typeName + " expected)");
    }
    const auto outOfRange = [&] { return ScriptError(describe(v) + " does not fit " + typeName); };
    if (v.negative) {
        if (v.magnitude == 0) {
            return 0;
        }
        if (!range.isSigned || v.magnitude > static_cast<uint64_t>(-(range.min + 1)) + 1) {
            throw outOfRange();
        }
        return -static_cast<int64_t>(v.magnitude - 1) - 1;
    }
    if (v.magnitude <= range.max) {
        return static_cast<int64_t>(v.magnitude);
    }
    if (v.hex && range.isSigned && v.magnitude < (uint64_t{1} << range.bits)) {
        return static_cast<int64_t>(v.magnitude) - (int64_t{1} << range.bits);
    }
    throw outOfRange();
}

const IntRange& scalarRange(ParamType type, const char*& name) {
    switch (type) {
    case ParamType::I16:
    case ParamType::ArrayI16:
        name = "int16_t";
        return I16_RANGE;
    case ParamType::U16:
    case ParamType::ArrayU16:
        name = "uint16_t";
        return U16_RANGE;
    case ParamType::I32:
    case ParamType::ArrayI32:
        name = "int32_t";
        return I32_RANGE;
    case ParamType::U32:
    case ParamType::ArrayU32:
    case ParamType::OneU32:
        name = "uint32_t";
        return U32_RANGE;
    case ParamType::U8:
        name = "uint8_t";
        return U8_RANGE;
    default:
        name = "uintptr_t";
        return UPTR_RANGE;
    }
}

int64_t toScalar(const Value& v, ParamType type) {
    const char* name = "";
    const IntRange& range = scalarRange(type, name);
    return toInteger(v, range, name);
}

double toFloat(const Value& v) {
    if (v.kind != Value::Kind::Integer && v.kind != Value::Kind::Float) {
        throw ScriptError(describe(v) + " is not a number");
    }
    if (!std::isfinite(v.real) || std::fabs(v.real) > std::numeric_limits<float>::max()) {
        throw ScriptError(describe(v) + " does not fit float");
    }
    return v.real;
}

template <class T>
void fillArray(std::vector<T>& out, const Value& v, ParamType type) {
    for (const Value& item : v.items) {
        out.push_back(static_cast<T>(toScalar(item, type)));
    }
}

void bindArray(BoundArg& arg, const Value& v, ParamType type) {
    if (v.kind == Value::Kind::Null) {
        arg.isNull = true;
        return;
    }
    if (v.kind != Value::Kind::Array) {
        throw ScriptError(describe(v) + " is not an array");
    }
    switch (type) {
    case ParamType::ArrayI32:
        fillArray(arg.i32, v, type);
        break;
    case ParamType::ArrayI16:
        fillArray(arg.i16, v, type);
        break;
    case ParamType::ArrayU16:
        fillArray(arg.u16, v, type);
        break;
    default:
        fillArray(arg.u32, v, type);
        break;
    }
}

const Value& field(const Value& v, size_t i) {
    return v.items[i];
}

void expectStruct(const Value& v, const char* what) {
    if (v.kind != Value::Kind::Struct || v.items.size() != 5 ||
        v.items[4].kind != Value::Kind::Bytes) {
        throw ScriptError(describe(v) + " is not " + what);
    }
}

void bindImage(BoundArg& arg, const Value& v) {
    if (v.kind == Value::Kind::Null) {
        arg.isNull = true;
        return;
    }
    expectStruct(v, "an image {width height rowStride format DATA}");
    arg.image.width = static_cast<int32_t>(toInteger(field(v, 0), I32_RANGE, "int32_t"));
    arg.image.height = static_cast<int32_t>(toInteger(field(v, 1), I32_RANGE, "int32_t"));
    arg.image.rowStride = static_cast<int32_t>(toInteger(field(v, 2), I32_RANGE, "int32_t"));
    arg.image.format = static_cast<uint32_t>(toInteger(field(v, 3), U32_RANGE, "uint32_t"));
    arg.bytes = field(v, 4).bytes;
}

// Bytes of one packed row of a screen tile, as the engine reads it.
int64_t packedTileRowBytes(int64_t width, uint8_t depth) {
    if (width <= 0) {
        return 0;
    }
    switch (depth) {
    case 1:
        return (width + 7) / 8;
    case 8:
        return width;
    case 254:
        return width * 2;
    default:
        return width * 4;
    }
}

void bindScreen(BoundArg& arg, const Value& v) {
    if (v.kind == Value::Kind::Null) {
        arg.isNull = true;
        return;
    }
    expectStruct(v, "a screen tile {width height bytesPerRow depth DATA}");
    arg.tile.width = static_cast<int32_t>(toInteger(field(v, 0), I32_RANGE, "int32_t"));
    arg.tile.height = static_cast<int32_t>(toInteger(field(v, 1), I32_RANGE, "int32_t"));
    arg.tile.bytesPerRow = static_cast<int32_t>(toInteger(field(v, 2), I32_RANGE, "int32_t"));
    arg.tile.depth = static_cast<uint8_t>(toInteger(field(v, 3), U8_RANGE, "uint8_t"));
    arg.bytes = field(v, 4).bytes;
}

void bindOne(BoundArg& arg, const Parameter& param, const Value& v) {
    switch (param.type) {
    case ParamType::F32:
        arg.real = toFloat(v);
        break;
    case ParamType::ArrayI32:
    case ParamType::ArrayI16:
    case ParamType::ArrayU16:
    case ParamType::ArrayU32:
        bindArray(arg, v, param.type);
        break;
    case ParamType::OneU32:
        if (v.kind == Value::Kind::Null) {
            arg.isNull = true;
        } else {
            arg.u32.push_back(static_cast<uint32_t>(toScalar(v, param.type)));
        }
        break;
    case ParamType::Bytes:
        if (v.kind == Value::Kind::Null) {
            arg.isNull = true;
        } else if (v.kind != Value::Kind::Bytes) {
            throw ScriptError(describe(v) + " is not byte data");
        } else {
            arg.bytes = v.bytes;
        }
        break;
    case ParamType::Image:
        bindImage(arg, v);
        break;
    case ParamType::Screen:
        bindScreen(arg, v);
        break;
    case ParamType::Output:
        if (v.kind != Value::Kind::Null) {
            throw ScriptError("output argument " + describe(v) + " can only be written as null");
        }
        arg.isNull = true;
        break;
    default:
        arg.integer = toScalar(v, param.type);
        break;
    }
}

int64_t readLength(const Parameter& param, const CallFrame& frame) {
    if (param.length.countArg < 0) {
        return param.length.fixed;
    }
    int64_t count = frame.args[static_cast<size_t>(param.length.countArg)].integer;
    return count <= 0 ? 0 : count * param.length.perCount;
}

int64_t checkedProduct(int64_t a, int64_t b, int64_t limit) {
    if (a <= 0 || b <= 0) {
        return 0;
    }
    if (a > limit / b) {
        throw ScriptError("data of " + std::to_string(a) + " x " + std::to_string(b) +
                          " bytes is too large for the player");
    }
    return a * b;
}

template <class T>
void padTo(std::vector<T>& v, int64_t length, int64_t maxBytes) {
    if (length > maxBytes / static_cast<int64_t>(sizeof(T))) {
        throw ScriptError("a count of " + std::to_string(length) + " is too large for the player");
    }
    if (static_cast<int64_t>(v.size()) < length) {
        v.resize(static_cast<size_t>(length));
    }
}

// Pads arrays to what the call reads so the engine never reads past the
// player's memory.
void padArgument(BoundArg& arg, const Parameter& param, const CallFrame& frame, int64_t maxBytes) {
    if (arg.isNull) {
        return;
    }
    switch (param.type) {
    case ParamType::ArrayI32:
        padTo(arg.i32, readLength(param, frame), maxBytes);
        break;
    case ParamType::ArrayI16:
        padTo(arg.i16, readLength(param, frame), maxBytes);
        break;
    case ParamType::ArrayU16:
        padTo(arg.u16, readLength(param, frame), maxBytes);
        break;
    case ParamType::ArrayU32:
        padTo(arg.u32, readLength(param, frame), maxBytes);
        break;
    case ParamType::Bytes:
        padTo(arg.bytes, readLength(param, frame), maxBytes);
        break;
    case ParamType::Image:
        padTo(arg.bytes,
              checkedProduct(std::abs(int64_t{arg.image.rowStride}), arg.image.height, maxBytes),
              maxBytes);
        break;
    case ParamType::Screen:
        // The engine reads packed rows whatever bytesPerRow says.
        padTo(arg.bytes,
              checkedProduct(std::max(std::abs(int64_t{arg.tile.bytesPerRow}),
                                      packedTileRowBytes(arg.tile.width, arg.tile.depth)),
                             arg.tile.height, maxBytes),
              maxBytes);
        arg.tile.data = arg.bytes.data();
        break;
    default:
        break;
    }
}

bool ownershipPasses(const Parameter& param, const CallFrame& frame) {
    switch (param.ownership) {
    case ImageOwnership::PassesToEngine:
        return true;
    case ImageOwnership::PassesWhenArgIsOne:
        return frame.args[static_cast<size_t>(param.ownershipArg)].integer == 1;
    default:
        return false;
    }
}

// Copies an image's samples into a buffer from GlobalAlloc. Null when the
// heap refuses.
void* copySamples(BoundArg& arg, const SampleAllocator& allocate) {
    // One byte at least, so an empty image still has a buffer to own.
    size_t size = arg.bytes.empty() ? 1 : arg.bytes.size();
    void* samples = allocate ? allocate(size) : GlobalAlloc(GMEM_FIXED, size);
    if (samples != nullptr && !arg.bytes.empty()) {
        std::memcpy(samples, arg.bytes.data(), arg.bytes.size());
    } else if (samples != nullptr) {
        std::memset(samples, 0, size);
    }
    arg.image.samples = samples;
    return samples;
}

size_t writtenInputs(const OperationEntry& op) {
    size_t n = 0;
    for (const Parameter& p : op.params) {
        n += p.type == ParamType::Output ? 0 : 1;
    }
    return n;
}

} // namespace

CallFrame bindArguments(const OperationEntry& op, const ScriptLine& line, size_t maxBytes,
                        const SampleAllocator& allocate) {
    const size_t inputs = writtenInputs(op);
    const bool outputsWritten = line.args.size() == op.params.size() && inputs != op.params.size();
    if (line.args.size() != inputs && !outputsWritten) {
        throw ScriptError(std::string(op.name) + " takes " + std::to_string(inputs) +
                          " arguments, " + std::to_string(line.args.size()) + " given");
    }
    CallFrame frame;
    frame.args.resize(op.params.size());
    size_t written = 0;
    for (size_t i = 0; i < op.params.size(); ++i) {
        if (op.params[i].type == ParamType::Output && !outputsWritten) {
            continue;
        }
        bindOne(frame.args[i], op.params[i], line.args[written++]);
    }
    for (size_t i = 0; i < op.params.size(); ++i) {
        padArgument(frame.args[i], op.params[i], frame, static_cast<int64_t>(maxBytes));
    }
    std::vector<void*> copied;
    for (size_t i = 0; i < op.params.size(); ++i) {
        if (op.params[i].type != ParamType::Image || frame.args[i].isNull) {
            continue;
        }
        void* samples = copySamples(frame.args[i], allocate);
        if (samples == nullptr) {
            for (void* buffer : copied) {
                GlobalFree(buffer);
            }
            throw std::bad_alloc();
        }
        copied.push_back(samples);
        if (!ownershipPasses(op.params[i], frame)) {
            frame.keptBuffers.push_back(samples);
        } else {
            frame.passedBuffers.push_back(samples);
        }
    }
    return frame;
}

void releaseKeptBuffers(CallFrame& frame, ResultCode result) {
    if (result == KRYN_ERR_INVALID) {
        frame.keptBuffers.insert(frame.keptBuffers.end(), frame.passedBuffers.begin(),
                                 frame.passedBuffers.end());
    }
    frame.passedBuffers.clear();
    for (void* buffer : frame.keptBuffers) {
        GlobalFree(buffer);
    }
    frame.keptBuffers.clear();
}

} // namespace kryn::script
