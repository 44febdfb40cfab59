// A clip region swept from a path, kept compact. The region is the list of
// pieces the sweep emits, band by band and left to right within a band; a
// piece often repeats the pair of edges of the band above. So the region
// stores runs (one pair of edges over consecutive bands), the bands, and per
// band the runs that start and end there, with the full list of live runs
// every CHECKPOINT_BANDS bands. Memory grows with the changes, not with
// bands times pieces. A cursor replays the list of any band (from the
// checkpoint before it), so that clipping walks the pieces in the order
// the plain list had, and a piece is rebuilt exactly as the list held it:
// trimmed to the page rectangle the path was cut against, or not.
#pragma once

#include "engine/result_codes.h"
#include "scan/scan_types.h"

#include <cstdint>

namespace kryn {

struct ScanState;
struct ClipRegion;
struct SweepNode;

inline constexpr int32_t CHECKPOINT_BANDS = 64;

// Storage that grows in blocks and, once finished, is addressed by index.
template <class T>
struct BlockArray {
    static constexpr int32_t BLOCK = 512;
    struct Block {
        Block* next = nullptr;
        T items[BLOCK];
    };
    Block* first = nullptr;
    Block* last = nullptr;
    int32_t count = 0;
    Block** directory = nullptr;

    T* append();
    bool finish();
    T& at(int32_t i) const { return directory[i / BLOCK]->items[i % BLOCK]; }
    void release();
};

// Where a run's pieces lie against the page rectangle, by its edges' x.
inline constexpr int8_t RUN_INSIDE = 0;
inline constexpr int8_t RUN_OUTSIDE = 1;
inline constexpr int8_t RUN_ACROSS = 2;

struct ClipRun {
    const Edge* left = nullptr;
    const Edge* right = nullptr;
    ClipRun* next = nullptr; // the live list while building, then the cursor's
    ClipRun* prev = nullptr;
    int32_t lastBand = -1; // while building: the last band it has a piece in
    int32_t order = -1;    // while building: its place among the runs of that band
    int32_t insideTop = INT32_MAX, insideBottom = INT32_MIN; // lines of its inside pieces
    int8_t side = RUN_INSIDE;
};

struct ClipBand {
    int32_t yTop = 0, yBottom = 0;
    int32_t firstOp = 0, opCount = 0;
    int32_t firstCheckpoint = -1, checkpointCount = 0; // its full list, every CHECKPOINT_BANDS
};

struct ClipOp {
    ClipRun* run = nullptr;
    ClipRun* after = nullptr; // insert after this run (null: first); unused for a removal
    int32_t remove = 0;
};

struct RunBlock;

struct RegionIndex {
    Trapezoid head; // the first piece; the region's lists point here
    uint64_t serial = 0;
    int32_t quarterTurns = 0;
    // The page rectangle the pieces were cut against (when `cut`).
    bool cut = false;
    IntBox baseBox;
    int32_t baseTop = 0, baseBottom = 0;
    int64_t baseMinColumn = NO_COLUMN_MIN, baseMaxColumn = NO_COLUMN_MAX;
    BlockArray<ClipBand> bands;
    BlockArray<ClipOp> ops;
    BlockArray<ClipRun*> checkpoints;
    RunBlock* runs = nullptr;
    int32_t runsInBlock = 0;
    int32_t widest = 0; // most runs in one band

    // The lines of band b's pieces (trimmed to the page rectangle).
    int64_t pieceTop(int32_t b) const;
    int64_t pieceBottom(int32_t b) const;
    // Rebuilds the piece of run r in a band as the plain list held it;
    // false when the list held none.
    bool piece(const ClipBand& band, const ClipRun& r, Trapezoid* out) const;
};

void freeRegionIndex(RegionIndex* index);

// The runs of one band, in order, as an array; with where the pieces met
// the last trapezoid clipped on the lines hintTop..hintBottom: the runs
// before runs[hint] lie wholly left of it, so also of any trapezoid right
// of it on the same lines (the pieces of one sweep band come left to right).
struct BandView {
    int32_t band = -1;
    uint32_t used = 0; // when last used, for reuse
    ClipRun** runs = nullptr;
    int32_t count = 0;
    bool hintValid = false;
    int64_t hintTop = 0, hintBottom = 0;
    double hintLeftTop = 0, hintLeftBottom = 0; // its left side's x on the lines
    int32_t hint = 0;
};

inline constexpr int32_t BAND_VIEWS = 4;

// Replays the list of live runs of any band of an index, and keeps the last
// few bands asked for as arrays: a trapezoid meets the bands of its lines
// one after the other, and the next trapezoid the same bands again.
struct ClipCursor {
    const RegionIndex* index = nullptr;
    uint64_t serial = 0;
    int32_t band = -1;
    ClipRun* first = nullptr;
    BandView views[BAND_VIEWS]; // of the region viewIndex
    const RegionIndex* viewIndex = nullptr;
    uint64_t viewSerial = 0;
    ClipRun** storage = nullptr; // BAND_VIEWS arrays of `capacity` runs
    int32_t capacity = 0;
    uint32_t clock = 0;

    // The live runs of band b in `first` and their links.
    void moveTo(const RegionIndex* region, int32_t b);
    // Band b as an array; null when memory runs out.
    BandView* view(const RegionIndex* region, int32_t b);
    void release();
};

// Collects the pieces of a clip region from the band walk.
struct RegionBuilder {
    RegionIndex* index = nullptr;
    ClipRun* live = nullptr;       // runs of the band being collected, in order
    ClipRun* lastInBand = nullptr; // run of the previous piece of this band
    int32_t lastOrder = -1;        // place of the last run continued in this band
    ClipBand* current = nullptr;
    int32_t band = -1;
    bool bandInside = true; // the band lies within the page rectangle's lines
    IntBox box;
    int64_t pieces = 0;
    ClipBand firstPieceBand;
    ClipRun* firstPieceRun = nullptr;

    // base: the page rectangle the pieces are cut against, or null.
    ResultCode open(ScanState* scan, const ClipRegion* base);
    ResultCode beginBand(int64_t yTop, int64_t yBottom);
    ResultCode addPiece(SweepNode* left, SweepNode* right);
    ResultCode endBand();
    // Hands the region to the scan state: the index, or for a region of
    // one piece the plain list (or nothing for no piece).
    ResultCode finish(ScanState* scan);
    void abandon();
};

} // namespace kryn
