// Bands of 256 rows, the tallest the 8-bit record rows allow (KRYNInit
// refuses taller ones): fills that reach every record path (runs, column
// runs, rectangles, full-band columns, rectangle entries, row spans in both
// forms) cover whole 256-row bands exactly, both in the band lists and in
// the rasters the host plays from them.
#include "page_picture.h"

#include "support/band_coverage.h"
#include "support/engine_fixture.h"
#include "support/fill_oracle.h"

#include <gtest/gtest.h>

using namespace kryn;
using namespace kryn::test;

namespace {

constexpr int32_t W = 300;
constexpr int32_t H = 600; // bands 0..255, 256..511, 512..767 (cut at 599)
constexpr int16_t BAND = 256;

struct Figure {
    const char* what;
    std::vector<int32_t> points; // closed polygon, user = device pixels
};

const Figure FIGURES[] = {
    {"rectangle over two whole bands", {5, 0, 105, 0, 105, 600, 5, 600}},
    {"one-column rectangle", {200, 0, 201, 0, 201, 600, 200, 600}},
    // Steep sides that keep their columns over whole bands: every row of a
    // band has the same span.
    {"near-vertical parallelogram", {10, -10, 50, -10, 51, 700, 11, 700}},
    {"wide triangle (spans of 256 and more)", {0, -20, 299, 300, 0, 620}},
    {"narrow triangle (spans below 256)", {100, -5, 200, 600, 120, 600}},
    {"small triangle across a band edge", {20, 250, 60, 262, 30, 270}},
};

const uint16_t LEVELS[] = {0x8000, 0x8003, 0x8005, 0x8009};

} // namespace

TEST(TallBands, EveryRecordPathCoversWhole256RowBands) {
    const OracleBounds page{0, W - 1, 0, H - 1};
    for (const uint16_t level : LEVELS) {
        for (const Figure& f : FIGURES) {
            SCOPED_TRACE(std::string(f.what) + ", level " + std::to_string(level));
            OraclePolygon polygon;
            for (size_t i = 0; i < f.points.size(); i += 2) {
                polygon.push_back({int64_t{f.points[i]} * 16, int64_t{f.points[i + 1]} * 16});
            }
            const std::vector<uint8_t> want = oracleFill({polygon}, 1, 0, page);

            EnginePtr e = makeEngine(W - 1, H - 1, BAND, level);
            ASSERT_EQ(KRYNNewPage(9, e.get()), KRYN_OK);
            const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
            ASSERT_EQ(KRYNSetMatrix(identity, e.get()), KRYN_OK);
            ASSERT_EQ(KRYNSetLogicalFunc(0xF0, e.get()), KRYN_OK);
            ASSERT_EQ(KRYNMoveTo(f.points[0], f.points[1], e.get()), KRYN_OK);
            ASSERT_EQ(KRYNLinesTo(f.points.data() + 2, int16_t(f.points.size() / 2 - 1), e.get()),
                      KRYN_OK);
            ASSERT_EQ(KRYNFill(1, e.get()), KRYN_OK);

            const Coverage recorded = pageCoverage(pageOf(e.get()));
            ASSERT_EQ(recorded.outside, 0);
            ASSERT_EQ(recorded.counts, want);

            CallbackLog log;
            ASSERT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), e.get()), KRYN_OK);
            script::PagePicture picture(W, H, BAND);
            for (const Delivery& d : log.calls) {
                picture.placeBand({d.code, d.band, d.data.data(), d.bytes, &d.rect});
            }
            int64_t wrong = 0;
            for (size_t i = 0; i < want.size(); ++i) {
                wrong += (picture.rgb()[3 * i] == 0) != (want[i] != 0);
            }
            EXPECT_EQ(wrong, 0) << "pixels played wrongly";
        }
    }
}
