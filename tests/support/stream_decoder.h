// Reading back what the engine sent through the OutputCallback: the stream
// calls split into chunks (each checked against its announced size and its
// checksum), and chunk data split into serialised records.
#pragma once

#include "support/engine_fixture.h"

#include <cstdint>
#include <vector>

namespace kryn::test {

struct StreamChunk {
    uint32_t band = 0;
    uint32_t announced = 0;    // the begin call's byte count (data + 4)
    std::vector<uint8_t> data; // without the checksum
};

// Splits the stream calls of a log into chunks. Fails the test when a chunk
// is not announced, its announced size differs from the bytes sent, or its
// checksum is not the byte sum of its data. Raster calls are skipped.
std::vector<StreamChunk> decodeChunks(const std::vector<Delivery>& calls);

// One serialised record: all its words, padding included.
struct StreamRecord {
    uint8_t head; // top byte of the first word
    std::vector<uint32_t> words;
};

// Splits display-list data into records by their head words. Fails the test
// on a head it does not know or a record cut short. colourSpace gives the
// sample size of scaled images.
std::vector<StreamRecord> decodeRecords(const std::vector<uint8_t>& data, uint32_t colourSpace = 0);

// Big-endian bytes of words, for writing expectations.
std::vector<uint8_t> wordBytes(const std::vector<uint32_t>& words);

} // namespace kryn::test
