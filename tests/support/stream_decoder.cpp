#include "support/stream_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace kryn::test {

namespace {

uint32_t byteSum(const std::vector<uint8_t>& bytes) {
    uint32_t sum = 0;
    for (uint8_t b : bytes) {
        sum += b;
    }
    return sum;
}

uint32_t wordsFor(uint64_t bytes) {
    return static_cast<uint32_t>((bytes + 3) / 4);
}

// Words of the record whose first words are at `w` (at least one present),
// or 0 for an unknown head.
uint32_t recordWords(const uint32_t* w, size_t available, uint32_t colourSpace) {
    const uint32_t head = w[0] >> 24;
    const uint32_t count = w[0] & 0xFFFF;
    auto second = [&](uint32_t shift, uint32_t mask) {
        return available > 1 ? (w[1] >> shift) & mask : 0u;
    };
    switch (head) {
    case 0x82: { // kind, rows, width
        const uint32_t kind = second(24, 0xF0);
        const uint32_t rows = second(16, 0xFF);
        const uint32_t width = second(0, 0xFFFF);
        uint64_t bytes = 0;
        if (kind == 0x00) {
            bytes = uint64_t{(width + 7) / 8} * rows;
        } else if (kind == 0x40 || kind == 0x50 || kind == 0xA0 || kind == 0xB0) {
            bytes = uint64_t{width} * rows * 4;
        } else if (kind == 0xD0) {
            bytes = uint64_t{width} * rows * 2;
        } else {
            bytes = uint64_t{width} * rows;
        }
        return 2 + wordsFor(bytes);
    }
    case 0x83:
        return 2 + wordsFor(uint64_t{(second(0, 0xFFFF) + 7) / 8} * second(16, 0xFF));
    case 0x84:
    case 0x8E:
        return 1 + wordsFor(count * 6u);
    case 0x8B:
    case 0x8D:
    case 0x94:
        return 1 + count;
    case 0x9D:
        return 1 + wordsFor(count * 3u);
    case 0x85:
    case 0xB1:
    case 0xB3:
    case 0xB7:
    case 0x00: // 189/190: the word 1, then 0 or 1
        return 2;
    case 0x92: {
        if (available < 4) {
            return 4;
        }
        const uint64_t samples = uint64_t{w[3] >> 16} * (w[3] & 0xFFFF);
        return 4 + wordsFor(samples * (colourSpace == 1 ? 1 : 4));
    }
    case 0xC1:
        return 3;
    default: // one-word records, or an unknown head
        static const uint8_t oneWord[] = {0x87, 0x95, 0xA0, 0xA1, 0xA3, 0xA4, 0xA5,
                                          0xA6, 0xA7, 0xA8, 0xA9, 0xAB, 0xAC, 0xAD,
                                          0xAE, 0xB0, 0xBB, 0xBC, 0xC2};
        return std::find(std::begin(oneWord), std::end(oneWord), head) != std::end(oneWord) ? 1 : 0;
    }
}

} // namespace

std::vector<StreamChunk> decodeChunks(const std::vector<Delivery>& calls) {
    std::vector<StreamChunk> chunks;
    bool open = false;
    std::vector<uint8_t> bytes;
    for (const Delivery& d : calls) {
        if (d.code == CB_STREAM_BEGIN) {
            EXPECT_FALSE(open) << "chunk begun inside a chunk";
            chunks.push_back({d.band, d.bytes, {}});
            bytes.clear();
            open = true;
        } else if (d.code == CB_STREAM_DATA || d.code == CB_STREAM_END) {
            EXPECT_TRUE(open) << "stream data outside an announced chunk";
            if (!open) {
                continue;
            }
            bytes.insert(bytes.end(), d.data.begin(), d.data.end());
            if (d.code == CB_STREAM_END) {
                open = false;
                StreamChunk& chunk = chunks.back();
                EXPECT_EQ(chunk.announced, bytes.size())
                    << "announced size of chunk " << chunks.size() - 1;
                if (bytes.size() < 4) {
                    ADD_FAILURE() << "chunk without a checksum";
                    continue;
                }
                chunk.data.assign(bytes.begin(), bytes.end() - 4);
                const size_t n = bytes.size();
                const uint32_t sum = uint32_t{bytes[n - 4]} << 24 | uint32_t{bytes[n - 3]} << 16 |
                                     uint32_t{bytes[n - 2]} << 8 | bytes[n - 1];
                EXPECT_EQ(sum, byteSum(chunk.data)) << "checksum of chunk " << chunks.size() - 1;
            }
        }
    }
    EXPECT_FALSE(open) << "last chunk never ended";
    return chunks;
}

std::vector<StreamRecord> decodeRecords(const std::vector<uint8_t>& data, uint32_t colourSpace) {
    std::vector<StreamRecord> records;
    EXPECT_EQ(data.size() % 4, 0u) << "display-list data is not whole words";
    std::vector<uint32_t> words;
    for (size_t i = 0; i + 3 < data.size(); i += 4) {
        words.push_back(uint32_t{data[i]} << 24 | uint32_t{data[i + 1]} << 16 |
                        uint32_t{data[i + 2]} << 8 | data[i + 3]);
    }
    size_t at = 0;
    while (at < words.size()) {
        const uint32_t n = recordWords(&words[at], words.size() - at, colourSpace);
        if (n == 0) {
            ADD_FAILURE() << "unknown record head 0x" << std::hex << (words[at] >> 24);
            break;
        }
        if (at + n > words.size()) {
            ADD_FAILURE() << "record cut short at word " << at;
            break;
        }
        records.push_back({static_cast<uint8_t>(words[at] >> 24),
                           std::vector<uint32_t>(words.begin() + static_cast<ptrdiff_t>(at),
                                                 words.begin() + static_cast<ptrdiff_t>(at + n))});
        at += n;
    }
    return records;
}

std::vector<uint8_t> wordBytes(const std::vector<uint32_t>& words) {
    std::vector<uint8_t> bytes;
    for (uint32_t w : words) {
        bytes.push_back(static_cast<uint8_t>(w >> 24));
        bytes.push_back(static_cast<uint8_t>(w >> 16));
        bytes.push_back(static_cast<uint8_t>(w >> 8));
        bytes.push_back(static_cast<uint8_t>(w));
    }
    return bytes;
}

} // namespace kryn::test
