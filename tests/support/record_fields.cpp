#include "support/record_fields.h"

#include "displaylist/record_walk.h"

namespace kryn::test {

namespace {

// Entries of a run buffer as (row, x, width).
std::vector<uint32_t> runFields(const uint8_t* r) {
    const auto* buffer = static_cast<const uint8_t*>(loadPointer(r + ARRAY_POINTER_OFFSET));
    std::vector<uint32_t> f;
    for (uint32_t i = 0; i < loadU16(r + 2); ++i) {
        const uint8_t* e = buffer + 4 + i * 6;
        f.insert(f.end(), {e[0], loadU16(e + 2), loadU16(e + 4)});
    }
    return f;
}

uint8_t byteAt(const std::vector<uint32_t>& w, size_t i) {
    return static_cast<uint8_t>(w[i / 4] >> (24 - 8 * (i % 4)));
}

} // namespace

std::ostream& operator<<(std::ostream& out, const RecordFields& r) {
    out << int{r.op} << "{";
    for (uint32_t f : r.fields) {
        out << f << ",";
    }
    return out << "}";
}

std::vector<RecordFields> fieldsOfList(const DisplayList* list) {
    std::vector<RecordFields> out;
    walkRecords(list, [&](uint8_t op, const uint8_t* r) {
        switch (op) {
        case DL_OP_RECT:
            out.push_back({op, {r[1], loadU16(r + 2), loadU16(r + 4), r[6]}});
            break;
        case DL_OP_COLUMN:
            out.push_back({op, {r[1], loadU16(r + 2)}});
            break;
        case DL_OP_RUNS:
            out.push_back({op, runFields(r)});
            break;
        case DL_OP_SET_ROP:
            out.push_back({op, {r[1]}});
            break;
        case DL_OP_SET_SCREEN:
            out.push_back({op, {loadU16(r + 2), loadU16(r + 4)}});
            break;
        case DL_OP_SET_OPAQUE:
            out.push_back({op, {r[1], loadU16(r + 2)}});
            break;
        case DL_OP_PAINT_COLOUR:
        case DL_OP_PAINT_BACK_COLOUR:
            out.push_back({op, {r[1], r[2], r[3]}});
            break;
        case DL_OP_CHUNK:
        case DL_OP_IMAGE_MODE:
        case DL_OP_IMAGE_ORIGIN:
            break; // not sent as records
        default:
            out.push_back({op, {}});
        }
        return true;
    });
    return out;
}

std::vector<RecordFields> fieldsOfStream(const std::vector<StreamRecord>& records) {
    std::vector<RecordFields> out;
    for (const StreamRecord& s : records) {
        const std::vector<uint32_t>& w = s.words;
        switch (s.head) {
        case 0x85:
            out.push_back({DL_OP_RECT, {byteAt(w, 1), w[0] & 0xFFFF, w[1] >> 16, byteAt(w, 6)}});
            break;
        case 0x95:
            out.push_back({DL_OP_COLUMN, {byteAt(w, 1), w[0] & 0xFFFF}});
            break;
        case 0x84: {
            RecordFields f{DL_OP_RUNS, {}};
            for (uint32_t i = 0; i < (w[0] & 0xFFFF); ++i) {
                const size_t at = 4 + i * 6;
                f.fields.insert(f.fields.end(),
                                {byteAt(w, at + 2),
                                 uint32_t{byteAt(w, at)} << 8 | byteAt(w, at + 1),
                                 uint32_t{byteAt(w, at + 4)} << 8 | byteAt(w, at + 5)});
            }
            out.push_back(f);
            break;
        }
        case 0xA0:
            out.push_back({DL_OP_SET_ROP, {byteAt(w, 1)}});
            break;
        case 0xA3:
            out.push_back({DL_OP_SET_SCREEN, {byteAt(w, 1), w[0] & 0xFFFF}});
            break;
        case 0xB3:
            out.push_back({DL_OP_SET_SCREEN, {w[1], w[0] & 0xFFFF}});
            break;
        case 0xA5:
            out.push_back({DL_OP_SET_OPAQUE, {byteAt(w, 1), w[0] & 0xFFFF}});
            break;
        case 0xA8:
        case 0xA9:
            out.push_back({s.head, {byteAt(w, 1), byteAt(w, 2), byteAt(w, 3)}});
            break;
        default:
            out.push_back({s.head, {}}); // heads repeat the opcode for most records
        }
    }
    return out;
}

} // namespace kryn::test
