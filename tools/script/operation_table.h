// Every engine operation a script can call: its written parameters and how
// to make the C call from them.
#pragma once

#include "call_frame.h"

#include <string_view>

namespace kryn::script {

enum class ParamType {
    I16,
    U16,
    I32,
    U32,
    U8,
    UPtr,
    F32,
    ArrayI32, // const int32_t*, written as [..] or null
    ArrayI16,
    ArrayU16,
    ArrayU32,
    OneU32, // pointer to one 32-bit value, written as the value or null
    Bytes,  // const uint8_t*, written as byte data or null
    Image,  // ImageDesc*, written as {width height rowStride format DATA} or null
    Screen, // const ScreenTile*, written as {width height bytesPerRow depth DATA} or null
    Output  // output pointer(s): not written, or written as null
};

// How many elements the call reads from an array or byte argument: a fixed
// count, or perCount times the value of another argument.
struct ReadLength {
    int fixed = 0;
    int countArg = -1;
    int perCount = 1;
};

enum class ImageOwnership { StaysWithCaller, PassesToEngine, PassesWhenArgIsOne };

struct Parameter {
    ParamType type;
    ReadLength length = {};
    ImageOwnership ownership = ImageOwnership::StaysWithCaller;
    int ownershipArg = -1;
};

using Invoker = ResultCode (*)(Engine* engine, CallFrame& frame);

struct OperationEntry {
    std::string_view name;
    std::vector<Parameter> params;
    Invoker invoke;
};

// The operation of that name, or null when there is none.
const OperationEntry* findOperation(std::string_view name);

} // namespace kryn::script

namespace kryn::script {

// The whole table, sorted by name (for tests and listings).
const OperationEntry* operationsBegin();
const OperationEntry* operationsEnd();

} // namespace kryn::script
