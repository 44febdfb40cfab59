#include "operation_table.h"

#include <algorithm>
#include <array>

namespace kryn::script {

namespace {

// Parameter shorthands, so each table row reads like its C prototype.
const Parameter I16{ParamType::I16};
const Parameter U16{ParamType::U16};
const Parameter I32{ParamType::I32};
const Parameter U32{ParamType::U32};
const Parameter F32{ParamType::F32};
const Parameter COLOUR{ParamType::OneU32};
const Parameter OUT{ParamType::Output};
const Parameter SCREEN{ParamType::Screen};
const Parameter U8{ParamType::U8};
const Parameter UPTR{ParamType::UPtr};
const Parameter RANGES3{ParamType::ArrayU16, {3}}; // the three ranges of an alpha key
// Image descriptions whose samples pass to the engine (unless it refuses
// the call), and the colour table of KRYNSetImageTable (read up to 256).
const Parameter IMAGE{ParamType::Image, {}, ImageOwnership::PassesToEngine};
const Parameter IMAGE_TABLE{ParamType::ArrayU32, {256}};

// Masks: the samples pass to the engine when the ownership argument (3) is
// 1 (unless the call refuses its arguments), else they stay with the player.
const Parameter MASK_IMAGE{ParamType::Image, {}, ImageOwnership::PassesWhenArgIsOne, 3};
const Parameter BITMAP{ParamType::Bytes};

// The bytes KRYNSetImageCache reads: rows of (width + 7) / 8 bytes, when
// the sizes are ones it takes (0..248), so the player's bitmap is padded to
// them. Other sizes are refused before the bitmap is read.
ResultCode setImageCache(Engine* e, CallFrame& f) {
    const int64_t w = f.args[1].integer;
    const int64_t h = f.args[2].integer;
    if (!f.args[4].isNull && w >= 0 && h >= 0 && w <= 248 && h <= 248) {
        const auto bytes = static_cast<size_t>((w + 7) / 8 * h);
        if (f.args[4].bytes.size() < std::max<size_t>(bytes, 1)) {
            f.args[4].bytes.resize(std::max<size_t>(bytes, 1));
        }
    }
    return KRYNSetImageCache(f.scalar<uint16_t>(0), f.scalar<int16_t>(1), f.scalar<int16_t>(2),
                             f.scalar<uintptr_t>(3), f.bytes(4), f.scalar<uint16_t>(5), e);
}

Parameter arrayI32(int n) {
    return {ParamType::ArrayI32, {n}};
}
Parameter arrayI16(int n) {
    return {ParamType::ArrayI16, {n}};
}
// An array of perCount values for each unit of the count argument countArg.
Parameter countedI32(int countArg, int perCount) {
    return {ParamType::ArrayI32, {0, countArg, perCount}};
}
Parameter countedI16(int countArg, int perCount) {
    return {ParamType::ArrayI16, {0, countArg, perCount}};
}

// The four (or eight) leading int32 arguments of the shape calls.
#define ARGS4(f)                                                                                   \
    (f).scalar<int32_t>(0), (f).scalar<int32_t>(1), (f).scalar<int32_t>(2), (f).scalar<int32_t>(3)
#define ARGS8(f)                                                                                   \
    ARGS4(f), (f).scalar<int32_t>(4), (f).scalar<int32_t>(5), (f).scalar<int32_t>(6),              \
        (f).scalar<int32_t>(7)

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
const std::array OPERATIONS = std::to_array<OperationEntry>({
    {"AlphaBlend",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNAlphaBlend(f.scalar<uint16_t>(0), e); }},
    {"ArcTo",
     {I32, I32, I32, I32, I32, I32, I32, I32},
     [](Engine* e, CallFrame& f) { return KRYNArcTo(ARGS8(f), e); }},
    {"Bezier3To",
     {arrayI32(6)},
     [](Engine* e, CallFrame& f) { return KRYNBezier3To(f.i32(0), e); }},
    {"Bezier3To16",
     {arrayI16(6)},
     [](Engine* e, CallFrame& f) { return KRYNBezier3To16(f.i16(0), e); }},
    {"BowPath",
     {I32, I32, I32, I32, I32, I32, I32, I32},
     [](Engine* e, CallFrame& f) { return KRYNBowPath(ARGS8(f), e); }},
    {"ClearClip", {}, [](Engine* e, CallFrame&) { return KRYNClearClip(e); }},
    {"ClearImageCache",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNClearImageCache(f.scalar<uint16_t>(0), e); }},
    {"Clip", {U16}, [](Engine* e, CallFrame& f) { return KRYNClip(f.scalar<uint16_t>(0), e); }},
    {"ClosePage",
     {},
     [](Engine* e, CallFrame& f) { return KRYNClosePage(f.callback, f.context, e); }},
    {"ClosePath", {}, [](Engine* e, CallFrame&) { return KRYNClosePath(e); }},
    {"ColorAttribute",
     {U32, U32, U32},
     [](Engine* e, CallFrame& f) {
         return KRYNColorAttribute(f.scalar<uint32_t>(0), f.scalar<uint32_t>(1),
                                   f.scalar<uint32_t>(2), e);
     }},
    {"DisposePage", {}, [](Engine* e, CallFrame&) { return KRYNDisposePage(e); }},
    {"DotPaint",
     {I32, I32},
     [](Engine* e,
        CallFrame& f) { return KRYNDotPaint(f.scalar<int32_t>(0), f.scalar<int32_t>(1), e); }},
    {"EllipsePath",
     {I32, I32, I32, I32},
     [](Engine* e, CallFrame& f) { return KRYNEllipsePath(ARGS4(f), e); }},
    {"End", {}, [](Engine* e, CallFrame&) { return KRYNEnd(e); }},
    {"FanPath",
     {I32, I32, I32, I32, I32, I32, I32, I32},
     [](Engine* e, CallFrame& f) { return KRYNFanPath(ARGS8(f), e); }},
    {"Fill", {U16}, [](Engine* e, CallFrame& f) { return KRYNFill(f.scalar<uint16_t>(0), e); }},
    {"FitImage",
     {UPTR, UPTR, UPTR, UPTR, UPTR},
     [](Engine* e, CallFrame& f) {
         return KRYNFitImage(f.scalar<uintptr_t>(0), f.scalar<uintptr_t>(1),
                             f.scalar<uintptr_t>(2), f.scalar<uintptr_t>(3),
                             f.scalar<uintptr_t>(4), e);
     }},
    {"GetPageInfo", {OUT}, getPageInfo},
    {"GetPageResource", {OUT, OUT}, getPageResource},
    {"GradientFill",
     {UPTR, UPTR, UPTR, UPTR, UPTR},
     [](Engine* e, CallFrame& f) {
         return KRYNGradientFill(f.scalar<uintptr_t>(0), f.scalar<uintptr_t>(1),
                                 f.scalar<uintptr_t>(2), f.scalar<uintptr_t>(3),
                                 f.scalar<uintptr_t>(4), e);
     }},
    {"GroupBezier3To",
     {countedI32(1, 2), U16},
     [](Engine* e,
        CallFrame& f) { return KRYNGroupBezier3To(f.i32(0), f.scalar<uint16_t>(1), e); }},
    {"GroupBezier3To16",
     {countedI16(1, 2), U16},
     [](Engine* e,
        CallFrame& f) { return KRYNGroupBezier3To16(f.i16(0), f.scalar<uint16_t>(1), e); }},
    {"LinesTo",
     {countedI32(1, 2), I16},
     [](Engine* e, CallFrame& f) { return KRYNLinesTo(f.i32(0), f.scalar<int16_t>(1), e); }},
    {"LinesTo16",
     {countedI16(1, 2), I16},
     [](Engine* e, CallFrame& f) { return KRYNLinesTo16(f.i16(0), f.scalar<int16_t>(1), e); }},
    {"MoveTo",
     {I32, I32},
     [](Engine* e,
        CallFrame& f) { return KRYNMoveTo(f.scalar<int32_t>(0), f.scalar<int32_t>(1), e); }},
    {"MoveTo16",
     {I16, I16},
     [](Engine* e,
        CallFrame& f) { return KRYNMoveTo16(f.scalar<int16_t>(0), f.scalar<int16_t>(1), e); }},
    {"NewPage",
     {I16},
     [](Engine* e, CallFrame& f) { return KRYNNewPage(f.scalar<int16_t>(0), e); }},
    {"NewPath", {}, [](Engine* e, CallFrame&) { return KRYNNewPath(e); }},
    {"NextBand",
     {U32},
     [](Engine* e,
        CallFrame& f) { return KRYNNextBand(f.scalar<uint32_t>(0), f.callback, f.context, e); }},
    {"PopClip", {}, [](Engine* e, CallFrame&) { return KRYNPopClip(e); }},
    {"PopGState", {}, [](Engine* e, CallFrame&) { return KRYNPopGState(e); }},
    {"PushClip", {}, [](Engine* e, CallFrame&) { return KRYNPushClip(e); }},
    {"PushGState", {}, [](Engine* e, CallFrame&) { return KRYNPushGState(e); }},
    {"PutImage",
     {IMAGE, I32, I32, I32, I32},
     [](Engine* e, CallFrame& f) {
         return KRYNPutImage(f.image(0), f.scalar<int32_t>(1), f.scalar<int32_t>(2),
                             f.scalar<int32_t>(3), f.scalar<int32_t>(4), e);
     }},
    {"PutImageCache",
     {I32, I32, U16},
     [](Engine* e, CallFrame& f) {
         return KRYNPutImageCache(f.scalar<int32_t>(0), f.scalar<int32_t>(1),
                                  f.scalar<uint16_t>(2), e);
     }},
    {"PutImageMask",
     {MASK_IMAGE, I32, I32, U16},
     [](Engine* e, CallFrame& f) {
         return KRYNPutImageMask(f.image(0), f.scalar<int32_t>(1), f.scalar<int32_t>(2),
                                 f.scalar<uint16_t>(3), e);
     }},
    {"PutImageWithMask",
     {IMAGE, IMAGE, I32, I32, I32, I32},
     [](Engine* e, CallFrame& f) {
         return KRYNPutImageWithMask(f.image(0), f.image(1), f.scalar<int32_t>(2),
                                     f.scalar<int32_t>(3), f.scalar<int32_t>(4),
                                     f.scalar<int32_t>(5), e);
     }},
    {"RectPath",
     {I32, I32, I32, I32},
     [](Engine* e, CallFrame& f) { return KRYNRectPath(ARGS4(f), e); }},
    {"RoundRectPath",
     {I32, I32, I32, I32, I32, I32},
     [](Engine* e,
        CallFrame&
            f) { return KRYNRoundRectPath(ARGS4(f), f.scalar<int32_t>(4), f.scalar<int32_t>(5), e); }},
    {"ScanLines",
     {countedI32(2, 2), I32, I16},
     [](Engine* e, CallFrame& f) {
         return KRYNScanLines(f.i32(0), f.scalar<int32_t>(1), f.scalar<int16_t>(2), e);
     }},
    {"ScanLines16",
     {countedI16(2, 2), I16, I16},
     [](Engine* e, CallFrame& f) {
         return KRYNScanLines16(f.i16(0), f.scalar<int16_t>(1), f.scalar<int16_t>(2), e);
     }},
    {"SealedPath", {}, [](Engine* e, CallFrame&) { return KRYNSealedPath(e); }},
    {"SelectSpace",
     {I32},
     [](Engine* e, CallFrame& f) { return KRYNSelectSpace(f.scalar<int32_t>(0), e); }},
    {"SetAlphaBlendTable",
     {RANGES3, U8, U16},
     [](Engine* e, CallFrame& f) {
         return KRYNSetAlphaBlendTable(f.u16(0), f.scalar<uint8_t>(1), f.scalar<uint16_t>(2), e);
     }},
    {"SetBackground",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNSetBackground(f.scalar<uint16_t>(0), e); }},
    {"SetColor",
     {COLOUR, U16},
     [](Engine* e, CallFrame& f) { return KRYNSetColor(f.u32(0), f.scalar<uint16_t>(1), e); }},
    {"SetConstAlphaBlend",
     {I32},
     [](Engine* e, CallFrame& f) { return KRYNSetConstAlphaBlend(f.scalar<int32_t>(0), e); }},
    {"SetImageCache", {U16, I16, I16, UPTR, BITMAP, U16}, setImageCache},
    {"SetImageCacheInfo",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNSetImageCacheInfo(f.scalar<uint16_t>(0), e); }},
    {"SetImageTable",
     {U32, IMAGE_TABLE, U32},
     [](Engine* e, CallFrame& f) {
         return KRYNSetImageTable(f.scalar<uint32_t>(0), f.u32(1), f.scalar<uint32_t>(2), e);
     }},
    {"SetLineCap",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNSetLineCap(f.scalar<uint16_t>(0), e); }},
    {"SetLineDash",
     {countedI32(1, 1), U16, U32},
     [](Engine* e, CallFrame& f) {
         return KRYNSetLineDash(f.i32(0), f.scalar<uint16_t>(1), f.scalar<uint32_t>(2), e);
     }},
    {"SetLineJoin",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNSetLineJoin(f.scalar<uint16_t>(0), e); }},
    {"SetLineWidth",
     {I32},
     [](Engine* e, CallFrame& f) { return KRYNSetLineWidth(f.scalar<int32_t>(0), e); }},
    {"SetLogicalFunc",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNSetLogicalFunc(f.scalar<uint16_t>(0), e); }},
    {"SetLogicalFunc2",
     {U16},
     [](Engine* e, CallFrame& f) { return KRYNSetLogicalFunc2(f.scalar<uint16_t>(0), e); }},
    {"SetMatrix",
     {arrayI32(6)},
     [](Engine* e, CallFrame& f) { return KRYNSetMatrix(f.i32(0), e); }},
    {"SetMiterLimit",
     {I32},
     [](Engine* e, CallFrame& f) { return KRYNSetMiterLimit(f.scalar<int32_t>(0), e); }},
    {"SetQuantization", {}, [](Engine* e, CallFrame&) { return KRYNSetQuantization(e); }},
    {"SetReverseSide", {}, [](Engine* e, CallFrame&) { return KRYNSetReverseSide(e); }},
    {"SetScale",
     {F32},
     [](Engine* e, CallFrame& f) { return KRYNSetScale(f.scalar<float>(0), e); }},
    {"SetScreen",
     {SCREEN, U16},
     [](Engine* e, CallFrame& f) { return KRYNSetScreen(f.tile(0), f.scalar<uint16_t>(1), e); }},
    {"SetTranslation",
     {I32, I32},
     [](Engine* e,
        CallFrame&
            f) { return KRYNSetTranslation(f.scalar<int32_t>(0), f.scalar<int32_t>(1), e); }},
    {"Stroke", {}, [](Engine* e, CallFrame&) { return KRYNStroke(e); }},
    {"VoidPushClip", {}, [](Engine* e, CallFrame&) { return KRYNVoidPushClip(e); }},
});

} // namespace

const OperationEntry* findOperation(std::string_view name) {
    auto it =
        std::lower_bound(OPERATIONS.begin(), OPERATIONS.end(), name,
                         [](const OperationEntry& op, std::string_view n) { return op.name < n; });
    return it != OPERATIONS.end() && it->name == name ? &*it : nullptr;
}

const OperationEntry* operationsBegin() {
    return OPERATIONS.data();
}
const OperationEntry* operationsEnd() {
    return OPERATIONS.data() + OPERATIONS.size();
}

} // namespace kryn::script
