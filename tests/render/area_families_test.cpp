// Band playback against a per-pixel model of the paint rules: random shapes
// of every area family reaching past the raster, over a ground of random
// blocks, on 8-bit and 32-bit rasters; solid or under random screens (1-bit
// cells with transparent or opaque zeros, grey and colour tiles, small ones
// and ones too tall or wide for the members' per-record rows, any phase),
// under the three fast raster operations and generic ones; half of them
// blended (constant alpha, key 0 with its ranges, colours with random alpha
// bytes, tiles whose pixels carry alpha). The model follows the rules as
// stated, pixel by pixel: the operation of the tile value at each page
// position; when blending, where each colour's alpha comes from, how the
// 1-bit cell counts its colours' sources together, and the alpha rule of
// each tile pixel. Solid unblended paint is also delivered with its box.
#include "paint/rop_test_support.h"
#include "support/page_fixture.h"

#include "displaylist/record_walk.h"
#include "engine/memory.h"
#include "paint/bit_tile.h"
#include "render/band_renderer.h"
#include "render/tile_definitions.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace kryn::test {
namespace {

constexpr int32_t WIDTH = 64; // mode 5 raster width
constexpr int32_t ROWS = PageTest::BAND_ROWS;

enum Family { RECT, COLUMN, RECTS, RUNS, RUNS_SHORT, ROW_SPANS, ROW_SPANS_SHORT, COLUMN_RUNS };
const uint8_t FAMILY_OPS[] = {
    DL_OP_RECT,       DL_OP_COLUMN,    DL_OP_RECTS,           DL_OP_RUNS,
    DL_OP_RUNS_SHORT, DL_OP_ROW_SPANS, DL_OP_ROW_SPANS_SHORT, DL_OP_COLUMN_RUNS};

struct Cell {
    int32_t x;
    int32_t y;
};

void addBlock(std::vector<Cell>& cells, int32_t left, int32_t top, int32_t right, int32_t bottom) {
    for (int32_t y = std::max(top, 0); y <= std::min(bottom, ROWS - 1); ++y) {
        for (int32_t x = std::max(left, 0); x <= std::min(right, WIDTH - 1); ++x) {
            cells.push_back({x, y});
        }
    }
}

// Writes a random shape of the family into the list and answers the cells
// it covers, in order.
std::vector<Cell> writeRandomShape(Family family, std::mt19937& rng, DisplayList* list,
                                   RenderResources* res) {
    std::vector<Cell> cells;
    const auto count = uint16_t(2 + rng() % 4);
    const auto randomX = [&] { return uint16_t(rng() % (WIDTH + 8)); };
    const auto randomY = [&] { return uint16_t(rng() % ROWS); };
    std::vector<std::vector<uint16_t>> e;
    switch (family) {
    case RECT:
    case COLUMN: {
        const uint16_t x = randomX(), y = family == RECT ? randomY() : 0;
        const uint32_t w = 1 + rng() % 40, h = family == RECT ? 1 + rng() % 10 : ROWS;
        EXPECT_EQ(writeRect(list, {uint8_t(y), x}, w, h, res), KRYN_OK);
        addBlock(cells, x, y, int32_t(x + w - 1), int32_t(y + h - 1));
        break;
    }
    case RECTS:
        for (int i = 0; i < count; ++i) {
            const uint16_t l = randomX(), t = randomY();
            e.push_back({l, uint16_t(l + rng() % 30), t, uint16_t(t + rng() % 6)});
            addBlock(cells, e.back()[0], e.back()[2], e.back()[1], e.back()[3]);
        }
        EXPECT_EQ(writeRects(list, runBuffer(0, e, {2, 2, 1, 1}), count, res), KRYN_OK);
        break;
    case RUNS:
    case RUNS_SHORT:
        for (int i = 0; i < count; ++i) {
            const uint16_t y = randomY(), l = randomX(), len = uint16_t(1 + rng() % 50);
            e.push_back({y, 0, l, len});
            addBlock(cells, l, y, l + len - 1, y);
        }
        EXPECT_EQ(
            writeRuns(list, runBuffer(family == RUNS_SHORT ? 255 : 0, e, {1, 1, 2, 2}), count, res),
            KRYN_OK);
        break;
    case ROW_SPANS:
    case ROW_SPANS_SHORT: {
        // Row-span arrays carry no header.
        const uint8_t first = uint8_t(rng() % 8);
        auto* spans = static_cast<uint8_t*>(allocBytes(size_t(count) * 4));
        for (int i = 0; i < count; ++i) {
            const uint16_t l = randomX(), len = uint16_t(rng() % 60);
            std::memcpy(spans + 4 * i, &l, 2);
            std::memcpy(spans + 4 * i + 2, &len, 2);
            addBlock(cells, l, first + i, l + len - 1, first + i);
        }
        const int32_t signedCount = family == ROW_SPANS ? count : -count;
        EXPECT_EQ(writeRowSpans(list, first, spans, signedCount, res), KRYN_OK);
        break;
    }
    case COLUMN_RUNS:
        for (int i = 0; i < count; ++i) {
            const uint16_t t = randomY(), len = uint16_t(1 + rng() % 16), x = randomX();
            e.push_back({t, len, x});
            addBlock(cells, x, t, x, t + len - 1);
        }
        EXPECT_EQ(writeColumnRuns(list, runBuffer(0, e, {1, 1, 2}), count, res), KRYN_OK);
        break;
    }
    return cells;
}

uint32_t channel(uint32_t c, int i) {
    return (c >> (8 * i)) & 0xFF;
}

uint32_t mul(uint32_t x, uint32_t y) {
    return (x * y * 257 + 32768) >> 16;
}

// The blend of paint s over d at alpha a, channel by channel.
uint32_t mix(uint32_t a, uint32_t s, uint32_t d, bool grey) {
    uint32_t out = 0;
    for (int i = 0; i < (grey ? 1 : 3); ++i) {
        const uint32_t v =
            (a * 257 * channel(s, i) + (255 - a) * 257 * channel(d, i) + 32768) >> 16;
        out |= std::min(255u, v) << (8 * i);
    }
    return out;
}

struct Settings {
    uint32_t constant = 255; // blendSelect
    uint32_t keyAlpha = 255; // blendSelectA
    uint16_t ranges[3] = {0xFF00, 0xFF00, 0xFF00};
    bool grey = false;

    bool inside(uint32_t colour) const {
        for (int i = 0; i < (grey ? 1 : 3); ++i) {
            if (channel(colour, i) < (ranges[i] & 0xFFu) ||
                channel(colour, i) > (ranges[i] >> 8u)) {
                return false;
            }
        }
        return true;
    }
};

enum Act { PLAIN, NOTHING, BLEND };

// A solid colour: the constant alpha, then the key (key 0 on) or the
// colour's own alpha (key 0 off) as a second source.
Act solidRule(const Settings& st, uint32_t colour, uint32_t own, uint32_t& a) {
    uint32_t alphas[2];
    int n = 0;
    if (st.constant < 255) {
        alphas[n++] = st.constant;
    }
    if (st.keyAlpha == 255) {
        if (own < 255) {
            alphas[n++] = own;
        }
    } else if (st.inside(colour)) {
        alphas[n++] = st.keyAlpha;
    }
    if (n == 0) {
        return PLAIN;
    }
    if (alphas[0] == 0 || (n == 2 && alphas[1] == 0)) {
        return NOTHING;
    }
    a = n == 1 ? alphas[0] : mul(alphas[0], alphas[1]);
    return BLEND;
}

// A 1-bit cell with opaque zeros: the count of both colours' sources.
Act cellRule(const Settings& st, const uint32_t colours[2], const uint32_t owns[2],
             uint32_t alphas[2]) {
    uint32_t count = 0;
    alphas[0] = alphas[1] = 255;
    if (st.constant < 255) {
        alphas[0] = alphas[1] = st.constant;
        count = 1;
    }
    bool own[2] = {false, false};
    for (int i = 0; i < 2; ++i) {
        if (st.keyAlpha == 255 && owns[i] < 255) {
            alphas[i] = owns[i];
            count += 16;
            own[i] = true;
        } else if (st.keyAlpha != 255 && st.inside(colours[i])) {
            alphas[i] = st.keyAlpha;
            count += 2;
            own[i] = true;
        }
    }
    if (count == 1 || count == 2 || count == 16) {
        return alphas[0] == 0 || alphas[1] == 0 ? NOTHING : BLEND;
    }
    if (count == 3 || count == 17) {
        if (st.constant == 0 || alphas[0] == 0 || alphas[1] == 0) {
            return NOTHING;
        }
        for (int i = 0; i < 2; ++i) {
            if (own[i]) {
                alphas[i] = mul(alphas[i], st.constant);
            }
        }
        return BLEND;
    }
    return PLAIN;
}

// The alpha of one pixel of a tile of samples; false: plain paint.
bool tilePixelAlpha(const Settings& st, uint32_t colour, bool carriesAlpha, uint32_t own,
                    uint32_t& a) {
    if (carriesAlpha) {
        if (st.keyAlpha != 255) {
            a = st.inside(colour) ? mul(own, st.keyAlpha) : own;
        } else {
            a = st.constant < 255 ? mul(own, st.constant) : own;
        }
        return true;
    }
    if (st.keyAlpha != 255) {
        a = st.inside(colour) ? st.keyAlpha : 255;
        return true;
    }
    a = st.constant;
    return st.constant < 255;
}

// 0: solid paint, 1: 1-bit cell with transparent zeros, 2: 1-bit cell with
// opaque zeros, 3: grey or colour tile, 4: tile whose pixels carry alpha.
struct Screen {
    int kind = 0;
    int32_t width = 0;
    int32_t height = 1;
    uint8_t depth = 0;
    std::vector<uint8_t> data; // as the caller gave it
    PixelTile widened;         // 1-bit cells as the registry stores them

    bool bit(int32_t x, int32_t r) const {
        const int32_t c = x % width;
        return (data[size_t(r * ((width + 7) / 8) + c / 8)] & (0x80 >> (c % 8))) != 0;
    }
    // The tile pixel at page column x of tile row r as the raster holds it
    // (colour tiles reach grey rasters as their first channel, grey tiles
    // colour rasters as grey words), and its own alpha.
    uint32_t sample(int32_t x, int32_t r, bool grey, uint32_t& own) const {
        const size_t step = depth == 8 ? 1 : depth == 254 ? 2 : 4;
        const uint8_t* at = data.data() + (size_t(r) * size_t(width) + size_t(x % width)) * step;
        own = depth == 124 ? at[3] : depth == 254 ? at[1] : 255;
        if (grey || depth == 8 || depth == 254) {
            return grey ? at[0] : at[0] * 0x010101u;
        }
        return uint32_t{at[0]} | uint32_t{at[1]} << 8 | uint32_t{at[2]} << 16;
    }
};

class AreaFamilies : public PageTest {
  protected:
    void TearDown() override { freeBytes(screen_.widened.data); }
    Screen screen_;
};

TEST_F(AreaFamilies, EveryPixelFollowsTheRulesOfItsPaint) {
    std::mt19937 rng(163);
    const uint8_t generic[] = {0xB8, 0x0A, 0x8E, 0x6C, 0x3F};
    const auto pickAlpha = [&] {
        const uint32_t kinds[] = {255, 255, 0, 1, 0x80, 0xFE};
        return rng() % 3 == 0 ? uint32_t(rng() % 256) : kinds[rng() % 6];
    };
    int blended = 0;
    for (int n = 0; n < 1600; ++n) {
        Settings st;
        st.grey = n % 2 == 0;
        const bool grey = st.grey, blending = n % 4 >= 2;
        open(5, 0x8009, grey);
        notMonochrome(0);
        const uint32_t mask = grey ? 0xFF : 0xFFFFFF;
        const uint32_t one = (rng() & mask) | (blending ? pickAlpha() << 24 : 0);
        const uint32_t zero = (rng() & mask) | (blending ? pickAlpha() << 24 : 0);
        const uint32_t s = rng() & mask;
        const int pick = int(rng() % 8);
        const uint8_t code = pick < 2    ? 0xF0
                             : pick < 4  ? 0x5A
                             : pick == 4 ? 0xFF
                                         : generic[rng() % 5];

        Screen& sc = screen_;
        freeBytes(sc.widened.data);
        sc = Screen{};
        sc.kind = int(rng() % (blending ? 5 : 4));
        // Mostly small tiles (whose rows the members keep per record), some
        // too tall or too wide for that.
        const bool large = rng() % 4 == 0;
        TileDefinition def{};
        if (sc.kind != 0) {
            sc.height = 1 + int32_t(rng() % (large ? 40 : 12));
            if (sc.kind <= 2) {
                sc.width = 1 + int32_t(rng() % 40);
                sc.depth = 1;
                sc.data.resize(size_t((sc.width + 7) / 8 * sc.height));
            } else {
                sc.width = 1 + int32_t(rng() % (large ? 70 : 12));
                sc.depth = sc.kind == 3 ? (rng() % 2 == 0 ? 8 : 24) : (rng() % 2 == 0 ? 124 : 254);
                const size_t step = sc.depth == 8 ? 1 : sc.depth == 254 ? 2 : 4;
                sc.data.resize(size_t(sc.width * sc.height) * step);
            }
            for (uint8_t& b : sc.data) { // some pixels in the key's ranges
                b = uint8_t(rng() % 4 == 0 ? one >> (8 * (rng() % 3)) : rng());
            }
            if (sc.kind == 4) {
                const size_t step = sc.depth == 254 ? 2 : 4;
                for (size_t i = step - 1; i < sc.data.size(); i += step) {
                    sc.data[i] = uint8_t(pickAlpha());
                }
            }
            if (sc.depth == 1) {
                const PixelTile cell{sc.data.data(), sc.width, sc.height, (sc.width + 7) / 8, 1};
                ASSERT_EQ(widenBitTile(cell, sc.widened), KRYN_OK);
                def = {sc.widened.data, sc.widened.width, sc.height, 1, 0x0005};
            } else {
                def = {sc.data.data(), sc.width, sc.height, sc.depth, 0xC006};
            }
            ASSERT_EQ(defineRendererTile(res()->renderer, def), KRYN_OK);
        }
        const uint32_t phase = sc.kind == 0 ? 0 : rng() % 3 == 0 ? rng() % 65536 : rng() % 24;

        // The ground: a block of one colour (the whole band under a screen),
        // then up to four random blocks, painted before the shape.
        std::vector<uint32_t> model(size_t(WIDTH) * ROWS, mask);
        DirtyBox box{WIDTH, -1, ROWS, -1};
        const auto ground = [&](uint32_t c, int32_t x, int32_t y, int32_t w, int32_t h) {
            paint(0, c);
            rect(0, uint8_t(y), uint16_t(x), uint32_t(w), uint32_t(h));
            std::vector<Cell> cells;
            addBlock(cells, x, y, x + w - 1, y + h - 1);
            for (const Cell& g : cells) {
                model[size_t(g.y) * WIDTH + size_t(g.x)] = c;
                box = {std::min(box.minX, g.x), std::max(box.maxX, g.x), std::min(box.minY, g.y),
                       std::max(box.maxY, g.y)};
            }
        };
        rop(0, 0xF0);
        ground(rng() & mask, 0, 0, sc.kind == 0 ? 32 : WIDTH, sc.kind == 0 ? 8 : ROWS);
        for (int b = int(rng() % 5); b > 0; --b) {
            ground(rng() & mask, int32_t(rng() % WIDTH), int32_t(rng() % ROWS),
                   1 + int32_t(rng() % 30), 1 + int32_t(rng() % 10));
        }

        // The paint: operation, colours, blend settings, screen.
        rop(0, code);
        if (blending) {
            res()->alphaMode = 1;
            st.constant = rng() % 2 == 0 ? 255 : pickAlpha();
            st.keyAlpha = rng() % 2 == 0 ? 255 : pickAlpha();
            for (int i = 0; i < 3; ++i) {
                const uint32_t lo = rng() % 256, hi = rng() % 256;
                const uint32_t c = channel(rng() % 2 == 0 ? one : zero, i);
                switch (rng() % 3) {
                case 0: // around the colour: inside
                    st.ranges[i] = uint16_t(std::max<int>(0, int(c) - int(lo % 8)) |
                                            std::min<uint32_t>(255, c + hi % 8) << 8);
                    break;
                case 1:
                    st.ranges[i] = uint16_t(std::min(lo, hi) | std::max(lo, hi) << 8);
                    break;
                default:
                    st.ranges[i] = uint16_t(lo | hi << 8);
                    break;
                }
            }
            ASSERT_EQ(writeBlend(list(0), 1, res()), KRYN_OK);
            ASSERT_EQ(writeBlendSelect(list(0), uint8_t(st.constant), res()), KRYN_OK);
            ASSERT_EQ(writeBlendData(list(0), st.ranges, uint8_t(st.keyAlpha), BLEND_DATA_A, res()),
                      KRYN_OK);
        }
        paint(0, one);
        paint(0, zero, COLOUR_BACK);
        source(0, s);
        if (sc.kind != 0) {
            ASSERT_EQ(writeScreen(list(0), def.screenId, phase, res()), KRYN_OK);
            ASSERT_EQ(writeOpaque(list(0), sc.kind == 1 ? 0 : 1, 255, res()), KRYN_OK);
        }

        const Family family = Family(rng() % 8);
        const std::vector<Cell> cells = writeRandomShape(family, rng, list(0), res());
        uint8_t lastOp = 0;
        walkRecords(list(0), [&](uint8_t op, const uint8_t*) {
            lastOp = op;
            return true;
        });
        ASSERT_EQ(lastOp, FAMILY_OPS[family]) << "case " << n;

        // The model, pixel by pixel.
        const uint32_t colours[2] = {one & mask, zero & mask};
        const uint32_t owns[2] = {one >> 24, zero >> 24};
        uint32_t cellAlphas[2] = {255, 255};
        uint32_t solidAlpha = 255;
        const Act solid = blending ? solidRule(st, colours[0], owns[0], solidAlpha) : PLAIN;
        const Act cell = sc.kind == 2 && blending ? cellRule(st, colours, owns, cellAlphas) : solid;
        for (const Cell& c : cells) {
            box = {std::min(box.minX, c.x), std::max(box.maxX, c.x), std::min(box.minY, c.y),
                   std::max(box.maxY, c.y)};
            uint32_t& d = model[size_t(c.y) * WIDTH + size_t(c.x)];
            const int32_t r = int32_t((uint32_t(c.y) + phase) % uint32_t(sc.height));
            uint32_t p = colours[0];
            uint32_t a = solidAlpha;
            Act act = solid;
            if (sc.kind == 1 || sc.kind == 2) {
                const bool isOne = sc.bit(c.x, r);
                if (sc.kind == 1 && !isOne) {
                    continue; // transparent zeros: never painted
                }
                p = isOne ? colours[0] : colours[1];
                act = sc.kind == 2 ? cell : solid;
                a = sc.kind == 2 ? cellAlphas[isOne ? 0 : 1] : solidAlpha;
            } else if (sc.kind >= 3) {
                uint32_t own = 255;
                p = sc.sample(c.x, r, grey, own);
                act = blending && tilePixelAlpha(st, p, sc.kind == 4, own, a) ? BLEND : PLAIN;
            }
            if (act == BLEND) {
                d = mix(a, p, d, grey);
                ++blended;
            } else if (act == PLAIN) {
                d = referenceRop(code, s, p, d, grey ? 8 : 24);
            }
        }

        ASSERT_EQ(close(), KRYN_OK);
        if (log_.calls.empty()) { // a blank band is not delivered
            ASSERT_EQ(std::count(model.begin(), model.end(), mask), ptrdiff_t(model.size()))
                << "case " << n;
            continue;
        }
        ASSERT_EQ(log_.calls.size(), 1u);
        const Delivery& d = log_.calls[0];
        EXPECT_EQ(d.code, grey ? CB_RASTER_STANDARD : CB_RASTER_BOX);
        if (sc.kind == 0 && !grey && !blending) {
            EXPECT_TRUE(d.rect.left == uint32_t(box.minX) && d.rect.top == uint32_t(box.minY) &&
                        d.rect.right == uint32_t(box.maxX) && d.rect.bottom == uint32_t(box.maxY))
                << "case " << n << ": delivered box " << d.rect.left << "," << d.rect.top << ".."
                << d.rect.right << "," << d.rect.bottom;
        }
        const BandPixels got = pixels(0);
        for (int32_t y = 0; y < ROWS; ++y) {
            for (int32_t x = 0; x < WIDTH; ++x) {
                ASSERT_EQ(got.at(x, y), model[size_t(y) * WIDTH + size_t(x)])
                    << "case " << n << (grey ? " grey" : " colour") << " family " << family
                    << " screen kind " << sc.kind << " depth " << int(sc.depth) << " tile "
                    << sc.width << "x" << sc.height << " phase " << phase << std::hex << " code 0x"
                    << int(code) << " constant 0x" << st.constant << " key 0x" << st.keyAlpha
                    << " colours 0x" << one << " 0x" << zero << std::dec << " pixel (" << x << ", "
                    << y << ")";
            }
        }
        log_.calls.clear();
    }
    EXPECT_GT(blended, 10000); // the settings reach every rule often
}

} // namespace
} // namespace kryn::test
