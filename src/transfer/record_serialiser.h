// Serialising a band's records into device words.
#pragma once

#include <cstdint>

namespace kryn {

struct DisplayList;
struct OutputStream;

// Stream bytes that serialiseRecords would send for the list (chunk
// boundaries and checksums not included). Changes nothing.
uint64_t countSerialisedBytes(const DisplayList* list, uint32_t colourSpace);

// Sends every record of a terminated list, block by block, as big-endian
// words. With `sizedChunks` each chunk record announces the chunk that
// follows it with its size word (the first only begins a chunk, every later
// one ends the running chunk first); otherwise chunk records are skipped and
// the caller announces the list. The running chunk is left open.
//
// Consumes the list: arrays are freed once sent (their pointers cleared),
// screen records are turned into their long form where the phase needs it,
// and screen and pattern identifiers are adapted to the colour space.
void serialiseRecords(OutputStream& stream, DisplayList* list, uint16_t band, uint32_t colourSpace,
                      bool sizedChunks);

} // namespace kryn
