// The ten page modes and every property of them that the engine tests.
#pragma once

#include <cstdint>

namespace kryn {

inline constexpr int PAGE_MODE_COUNT = 10;

struct PageModeTraits {
    bool hostRasters;       // bands are played on the host at page close (2..9)
    bool bandGroups;        // the driver moves a band group with KRYNNextBand
    bool fullWidthRenderer; // renderer rows are pageWidth wide (else pageWidth - 1)
    bool extraBandEntry;    // the page keeps bandCount + 1 band entries
    bool clipStopsShort;    // the drawing clip ends one column and row early
    bool chunkRecords;      // band lists open with a chunk-size record
};

inline constexpr PageModeTraits PAGE_MODES[PAGE_MODE_COUNT] = {
    // host   groups fullW  extra  short  chunk
    {false, false, true, false, false, true},  // 0
    {false, true, true, false, false, true},   // 1
    {true, true, false, false, false, false},  // 2
    {true, false, false, true, true, false},   // 3
    {true, true, false, false, false, false},  // 4
    {true, false, false, false, false, false}, // 5
    {true, true, false, false, false, false},  // 6
    {true, false, false, false, false, false}, // 7
    {true, true, true, false, false, true},    // 8
    {true, false, true, false, false, true},   // 9
};

inline constexpr bool isValidPageMode(int32_t mode) {
    return mode >= 0 && mode < PAGE_MODE_COUNT;
}

// Precondition: isValidPageMode(mode).
inline constexpr const PageModeTraits& pageMode(int32_t mode) {
    return PAGE_MODES[mode];
}

// Serialised-only modes: lists are split into chunks and never played.
inline constexpr bool isSerialisedMode(int32_t mode) {
    return mode == 0 || mode == 1;
}

} // namespace kryn
