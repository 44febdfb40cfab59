// Per-band state synchronisation: before a painting record goes into a band,
// the page's paint state is brought into the band's list. A state record is
// written only when the page value differs from the band's mirror of what it
// last received, and the mirror follows only a successful write, so a failed
// write is retried by the next painting call.
#pragma once

#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

struct BandEntry;
struct DisplayList;
struct PageRecord;

// Blending, logical function, screen, fill opacity, paint colours and (while
// blending) the selector and key-0 data, in that order.
ResultCode syncBandState(PageRecord* page, BandEntry* band, DisplayList* list);

// syncBandState for the run and rectangle recorders, followed by the
// monochrome rule: the band stops counting as black-and-white once a screen
// or a colour other than black or white reaches it.
ResultCode syncBandForSpans(PageRecord* page, BandEntry* band, DisplayList* list);

// What an image recorder is about to write.
enum class ImageRecordKind {
    MASK,   // 131: a stencil painted in the image colours
    BITMAP, // 130 or 146 with 1-bit pixels
    OTHER,  // 130 or 146 with any other pixel format
};

// Where the first device pixel falls in the source: the bit within its
// source byte (1-bit data) and, for scaled images, the device rows and
// columns inside its scaled source pixel.
struct ImagePhase {
    uint32_t bitOffset;
    uint32_t rowOffset;
    uint32_t columnOffset;
};

// syncBandState wrapped in what the image recorders add around it: the
// image phase records, image opacity, image colours (1-bit images send both
// colours every time), the pattern of pattern paints, and the key-1 blend
// data. Images other than masks end the band's black-and-white state.
ResultCode syncBandForImage(PageRecord* page, BandEntry* band, DisplayList* list,
                            ImageRecordKind kind, bool scaled, const ImagePhase& phase);

} // namespace kryn
