// Records reduced to their opcode and field values, read either from a list
// in memory or from the words that reached the device, so that the two can
// be compared. Covers the records the round-trip tests write; others keep
// their opcode and no fields.
#pragma once

#include "support/stream_decoder.h"

#include "displaylist/display_list.h"

#include <cstdint>
#include <ostream>
#include <vector>

namespace kryn::test {

struct RecordFields {
    uint8_t op;
    std::vector<uint32_t> fields;
    bool operator==(const RecordFields&) const = default;
};
std::ostream& operator<<(std::ostream& out, const RecordFields& r);

// The list's records that the device receives, in order.
std::vector<RecordFields> fieldsOfList(const DisplayList* list);

// The same from serialised records.
std::vector<RecordFields> fieldsOfStream(const std::vector<StreamRecord>& records);

} // namespace kryn::test
