#include "operation_table.h"

#include <algorithm>
#include <array>

namespace kryn::script {

namespace {

// Parameter shorthands, so each table row reads like its C prototype.
const ParamSpec I16{ParamType::I16};
const ParamSpec U16{ParamType::U16};
const ParamSpec U32{ParamType::U32};
const ParamSpec COLOUR{ParamType::OneU32};
const ParamSpec OUT{ParamType::Output};

// Stores up to n output values of a call that succeeded.
template <class T>
void keepOutputs(CallFrame& f, ResultCode result, const T* values, size_t n) {
    if (result == KRYN_OK) {
        f.outputs.assign(values, values + n);
    }
}

ResultCode getPageResource(Engine* e, CallFrame& f) {
    uint32_t size[2] = {0, 0};
    bool given = !f.args[0].isNull;
    ResultCode r =
        KRYNGetPageResource(given ? &size[0] : nullptr, f.args[1].isNull ? nullptr : &size[1], e);
    if (given) {
        keepOutputs(f, r, size, 2);
    }
    return r;
}

ResultCode getPageInfo(Engine* e, CallFrame& f) {
    uint16_t info[6] = {};
    bool given = !f.args[0].isNull;
    ResultCode r = KRYNGetPageInfo(given ? info : nullptr, e);
    if (given) {
        keepOutputs(f, r, info, 6);
    }
    return r;
}

// Sorted by name for the lookup.
const std::array OPERATIONS = std::to_array<OperationSpec>({
    {"ClosePage",
     {},
     [](Engine* e, CallFrame& f) { return KRYNClosePage(f.callback, f.context, e); }},
    {"DisposePage", {}, [](Engine* e, CallFrame&) { return KRYNDisposePage(e); }},
    {"End", {}, [](Engine* e, CallFrame&) { return KRYNEnd(e); }},
    {"GetPageInfo", {OUT}, getPageInfo},
    {"GetPageResource", {OUT, OUT}, getPageResource},
    {"NewPage",
     {I16},
     [](Engine* e, CallFrame& f) { return KRYNNewPage(f.scalar<int16_t>(0), e); }},
    {"NextBand",
     {U32},
     [](Engine* e, CallFrame& f) {
         return KRYNNextBand(f.scalar<uint32_t>(0), f.callback, f.context, e);
     }},
    {"SetBackground",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNSetBackground(f.scalar<uint16_t>(0), e); }},
    {"SetColor",
     {COLOUR, U16},
     [](Engine* e, CallFrame& f) { return KRYNSetColor(f.u32(0), f.scalar<uint16_t>(1), e); }},
    {"SetLogicalFunc",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNSetLogicalFunc(f.scalar<uint16_t>(0), e); }},
    {"SetLogicalFunc2",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNSetLogicalFunc2(f.scalar<uint16_t>(0), e); }},
    {"SetReverseSide", {}, [](Engine* e, CallFrame&) { return KRYNSetReverseSide(e); }},
});

} // namespace

const OperationSpec* findOperation(std::string_view name) {
    auto it =
        std::lower_bound(OPERATIONS.begin(), OPERATIONS.end(), name,
                         [](const OperationSpec& op, std::string_view n) { return op.name < n; });
    return it != OPERATIONS.end() && it->name == name ? &*it : nullptr;
}

const OperationSpec* operationsBegin() {
    return OPERATIONS.data();
}
const OperationSpec* operationsEnd() {
    return OPERATIONS.data() + OPERATIONS.size();
}

} // namespace kryn::script
