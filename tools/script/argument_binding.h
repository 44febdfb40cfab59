// Turns the written values of a line into the C arguments of its operation.
#pragma once

#include "call_frame.h"
#include "operation_table.h"
#include "script_value.h"

#include <cstddef>
#include <functional>

namespace kryn::script {

// Where image sample buffers come from: GlobalAlloc unless a caller (the
// allocation-failure sweep) supplies its own. Null when memory runs out.
using SampleAllocator = std::function<void*(size_t)>;

// Checks every written value against its parameter (count, kind, range) and
// binds them. Throws ScriptError, having allocated nothing, when the line
// does not fit the operation. Image samples are copied into GlobalAlloc
// buffers last, so a failing line never leaves a buffer behind.
// maxBytes bounds the memory one argument may take after padding.
CallFrame bindArguments(const OperationEntry& op, const ScriptLine& line,
                        size_t maxBytes = size_t{1} << 30, const SampleAllocator& allocate = {});

// Frees the image buffers a call answering `result` left with the caller:
// those whose ownership does not pass, and, when the call refused its
// arguments (KRYN_ERR_INVALID), those whose ownership would have passed.
void releaseKeptBuffers(CallFrame& frame, ResultCode result);

} // namespace kryn::script
