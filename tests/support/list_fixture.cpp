#include "support/list_fixture.h"

#include "displaylist/record_walk.h"

namespace kryn::test {

std::vector<uint8_t> ListTest::ops() const {
    std::vector<uint8_t> out;
    walkRecords(list_, [&](uint8_t op, const uint8_t*) {
        out.push_back(op);
        return true;
    });
    return out;
}

std::vector<std::vector<uint8_t>> ListTest::records() const {
    std::vector<std::vector<uint8_t>> out;
    walkRecords(list_, [&](uint8_t op, const uint8_t* r) {
        out.emplace_back(r, r + recordSize(op));
        return true;
    });
    return out;
}

} // namespace kryn::test
