// Placed images against a brute-force reading of the placement rules, pixel
// for pixel: random images of every format on grey and colour pages, in the
// four quarter turns, mirrored, at device size, scaled by whole and by
// fractional factors, reduced, and clipped by rectangles and ellipses; and
// blended over the page (samples with alpha of their own, the constant
// alpha, key 1).
//
// The reference never looks at the engine's placement: which pixels an
// image covers is what a filled rectangle path of the same user rectangle
// covers under the same matrix and clip (a second page of the same script);
// which sample a covered pixel shows is worked out from the device corners
// alone: the image's first pixel is the first one the page's pixel rule
// covers at the corners' box; sample i along a device axis spans device
// pixels floor(i x F / 65536) up to floor((i + 1) x F / 65536) from there,
// F being the axis's device extent over its samples in 16.16 (the last
// sample repeating); the corners say which source axis runs along which
// device axis and in which direction; and an image with more samples than
// the rectangle's user units is first reduced by picking. A blended sample
// takes its alpha by the blend rules and is laid over white paper with
// blendChannel.
#include "job_player.h"
#include "page_picture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace kryn::script {
namespace {

constexpr int32_t PAGE_W = 160;
constexpr int32_t PAGE_H = 120;

struct Case {
    bool grey = false;
    int32_t mode = 5; // 5 and 3: general members on colour pages; 9: the direct renderer too
    int32_t bandHeight = 16;
    int32_t turns = 0;
    int32_t w = 1, h = 1; // samples
    uint32_t format = 24;
    int32_t stride = 4;
    std::vector<uint8_t> data;
    int32_t x = 0, y = 0, width = 1, height = 1; // user rectangle
    int32_t clip = 0;                            // 0 none, 1 rectangle, 2 ellipse
    int32_t clipBox[4] = {0, 0, 0, 0};
    std::vector<uint32_t> table;
    uint32_t fore = 0, back = 0;
    int32_t opaque = 1;
    bool blend = false;
    uint32_t constant = 255; // constant alpha, 255: none
    bool key = false;        // key 1 on
    uint32_t keyAlpha = 0;
    uint16_t ranges[3] = {0, 0, 0}; // low byte minimum, high byte maximum
};

const int32_t TURNS[4][4] = {{1, 0, 0, 1}, {0, 1, -1, 0}, {-1, 0, 0, -1}, {0, -1, 1, 0}};
constexpr int32_t CENTRE_X = 80;
constexpr int32_t CENTRE_Y = 60;

Case randomCase(uint32_t seed) {
    std::mt19937 rng(seed);
    Case c;
    c.grey = (seed & 1) != 0;
    c.turns = int32_t(seed / 2 % 4);
    c.mode = std::vector<int32_t>{5, 9, 3}[seed / 8 % 3];
    c.bandHeight = int32_t(std::vector<int>{8, 16, 24, 40}[rng() % 4]);
    c.blend = seed % 5 == 4;
    const uint32_t greyFormats[] = {255, 8, 4, 1};
    const uint32_t colourFormats[] = {24, 8, 4, 1};
    const uint32_t greyBlendFormats[] = {254, 108, 104, 255, 1};
    const uint32_t colourBlendFormats[] = {124, 108, 104, 24, 1};
    c.format = c.blend ? (c.grey ? greyBlendFormats[rng() % 5] : colourBlendFormats[rng() % 5])
                       : (c.grey ? greyFormats[rng() % 4] : colourFormats[rng() % 4]);
    c.w = 1 + int32_t(rng() % 24);
    c.h = 1 + int32_t(rng() % 24);
    const int32_t bits = c.format == 24 || c.format == 124 ? 32
                         : c.format == 254                 ? 16
                         : c.format == 104                 ? 4
                         : c.format <= 4                   ? int32_t(c.format)
                                                           : 8;
    c.stride = (c.w * bits + 7) / 8 + int32_t(rng() % 3);
    c.data.resize(size_t(c.stride) * size_t(c.h));
    for (uint8_t& b : c.data) {
        b = uint8_t(rng());
    }
    const auto side = [&](int32_t n) {
        switch (rng() % 4) {
        case 0:
            return n; // device size
        case 1:
            return n * int32_t(2 + rng() % 3); // whole factors
        case 2:
            return 1 + int32_t(rng() % 70); // any factor, reductions too
        default:
            return n + int32_t(rng() % 9);
        }
    };
    c.width = side(c.w) * (rng() % 5 == 0 ? -1 : 1);
    c.height = side(c.h) * (rng() % 5 == 0 ? -1 : 1);
    c.x = int32_t(rng() % 140) - 85;
    c.y = int32_t(rng() % 110) - 70;
    c.clip = int32_t(rng() % 3);
    for (int32_t& v : c.clipBox) {
        v = int32_t(rng() % 120) - 70;
    }
    c.table.resize(c.format == 4 || c.format == 104 ? 16 : 256);
    const uint32_t colourBits = c.blend ? 0xFFFFFFFFu : 0xFFFFFFu;
    for (uint32_t& t : c.table) {
        t = rng() & colourBits;
    }
    c.fore = rng() & colourBits;
    c.back = rng() & colourBits;
    c.opaque = int32_t(rng() % 2);
    if (c.blend) {
        c.constant = rng() % 2 == 0 ? 255 : rng() % 255;
        c.key = rng() % 2 == 0;
        c.keyAlpha = rng() % 255;
        for (uint16_t& r : c.ranges) {
            const uint32_t lo = rng() % 200;
            r = uint16_t(lo | (lo + rng() % 120 > 255 ? 255 : lo + rng() % 120) << 8);
        }
    }
    return c;
}

std::string hex(const std::vector<uint8_t>& bytes) {
    std::string s;
    for (uint8_t v : bytes) {
        s += "0123456789ABCDEF"[v >> 4];
        s += "0123456789ABCDEF"[v & 15];
    }
    return s;
}

// Page 1 places the image; page 2 fills the same rectangle in black.
std::string script(const Case& c) {
    std::ostringstream s;
    s << "Init " << PAGE_W - 1 << ' ' << PAGE_H - 1 << ' ' << c.bandHeight << " 600 0x8009\n";
    for (int page = 0; page < 2; ++page) {
        s << "NewPage " << c.mode << "\n";
        if (c.grey) {
            s << "SelectSpace 1\n";
        }
        const int32_t* m = TURNS[c.turns];
        s << "SetMatrix [" << m[0] << ' ' << m[1] << ' ' << m[2] << ' ' << m[3] << ' ' << CENTRE_X
          << ' ' << CENTRE_Y << "]\n";
        if (c.clip == 1) {
            s << "RectPath " << c.clipBox[0] << ' ' << c.clipBox[1] << ' ' << c.clipBox[2] + 90
              << ' ' << c.clipBox[3] + 80 << "\nClip 0\n";
        } else if (c.clip == 2) {
            s << "EllipsePath " << c.clipBox[0] << ' ' << c.clipBox[1] << ' ' << c.clipBox[0] + 100
              << ' ' << c.clipBox[1] + 90 << "\nClip 0\n";
        }
        if (page == 1) {
            s << "SetColor 0 0\nSetLogicalFunc 0xF0\nRectPath " << c.x << ' ' << c.y << ' '
              << c.width << ' ' << c.height << "\nFill 0\nClosePage\n";
            continue;
        }
        s << "SetLogicalFunc 0xCC\nSetBackground " << c.opaque << '\n';
        if (c.blend) {
            s << "AlphaBlend 1\nSetConstAlphaBlend " << c.constant << '\n';
            if (c.key) {
                s << "SetAlphaBlendTable [" << c.ranges[0] << ' ' << c.ranges[1] << ' '
                  << c.ranges[2] << "] " << c.keyAlpha << " 1\n";
            }
        }
        if (c.format == 1) {
            s << "SetImageTable 2 [" << c.back << ' ' << c.fore << "] 0\n";
        } else if (c.format == 4 || c.format == 8 || c.format == 104 || c.format == 108) {
            s << "SetImageTable " << c.table.size() << " [";
            for (uint32_t v : c.table) {
                s << v << ' ';
            }
            s << "] 0\n";
        }
        s << "PutImage {" << c.w << ' ' << c.h << ' ' << c.stride << ' ' << c.format
          << " hex:" << hex(c.data) << "} " << c.x << ' ' << c.y << ' ' << c.width << ' '
          << c.height << "\nClosePage\n";
    }
    return s.str();
}

// The sample's colour, with its own alpha in the top byte (255 for
// formats without one).
uint32_t sampleValue(const Case& c, int64_t sx, int64_t sy, bool& painted) {
    const uint8_t* row = c.data.data() + sy * c.stride;
    painted = true;
    switch (c.format) {
    case 1: {
        const bool one = ((row[sx >> 3] >> (7 - (sx & 7))) & 1) != 0;
        painted = one || c.opaque != 0;
        return one ? c.fore : c.back;
    }
    case 4:
    case 104:
        return c.table[(sx & 1) == 0 ? row[sx >> 1] >> 4 : row[sx >> 1] & 15];
    case 8:
    case 108:
        return c.table[row[sx]];
    case 255:
        return 0xFF000000u | row[sx];
    case 254:
        return uint32_t(row[2 * sx + 1]) << 24 | row[2 * sx];
    case 124:
        return uint32_t(row[4 * sx + 3]) << 24 | uint32_t(row[4 * sx]) |
               uint32_t(row[4 * sx + 1]) << 8 | uint32_t(row[4 * sx + 2]) << 16;
    default:
        return 0xFF000000u | uint32_t(row[4 * sx]) | uint32_t(row[4 * sx + 1]) << 8 |
               uint32_t(row[4 * sx + 2]) << 16;
    }
}

uint32_t mulAlpha(uint32_t x, uint32_t y) {
    return (x * y * 257 + 32768) >> 16;
}

// The sample `value` (own alpha on top) laid over white paper by the blend
// rules, or the sample itself when no alpha source applies.
uint32_t blended(const Case& c, uint32_t value) {
    const uint32_t colour = value & (c.grey ? 0xFFu : 0xFFFFFFu);
    const uint32_t own = value >> 24;
    const bool ownFormat = c.format == 104 || c.format == 108 || c.format == 124 || c.format == 254;
    bool inside = true;
    for (int ch = 0; ch < (c.grey ? 1 : 3); ++ch) {
        const uint32_t v = (colour >> (8 * ch)) & 0xFF;
        inside = inside && v >= (c.ranges[ch] & 0xFFu) && v <= uint32_t(c.ranges[ch] >> 8);
    }
    int64_t a = ownFormat || own < 255 ? int64_t(own) : -1;
    if (c.key && inside) {
        a = mulAlpha(own, c.keyAlpha);
    } else if (!c.key && c.constant < 255) {
        a = mulAlpha(own, c.constant);
    }
    if (a < 0) {
        return c.grey ? colour * 0x010101u : colour;
    }
    uint32_t out = 0;
    for (int ch = 0; ch < 3; ++ch) {
        const uint32_t s = (colour >> (8 * (c.grey ? 0 : ch))) & 0xFF;
        const uint32_t v = (uint32_t(a) * 257 * s + (255 - uint32_t(a)) * 257 * 255 + 32768) >> 16;
        out |= std::min<uint32_t>(v, 255) << (8 * ch);
    }
    return out;
}

// The sample along one device axis of n samples with device extent
// `extent`, at device offset u from the first pixel.
int64_t sampleAlong(int64_t u, double extent, int64_t n) {
    if (extent == double(n)) {
        return std::min(u, n - 1);
    }
    const uint64_t f = uint64_t(extent / double(n) * 65536.0);
    int64_t i = 0;
    while (i < n - 1 && int64_t((uint64_t(i + 1) * f) >> 16) <= u) {
        ++i;
    }
    return i;
}

struct Expected {
    bool inside;  // the rectangle's fill covers the pixel
    bool painted; // the image paints it
    uint32_t value;
};

Expected expectedAt(const Case& c, int32_t X, int32_t Y, bool covered) {
    Expected e{covered, false, 0};
    if (!covered) {
        return e;
    }
    const int32_t* m = TURNS[c.turns];
    const auto device = [&](double ux, double uy, double& dx, double& dy) {
        dx = m[0] * ux + m[2] * uy + CENTRE_X;
        dy = m[1] * ux + m[3] * uy + CENTRE_Y;
    };
    double x0, y0, x1, y1, x3, y3;
    device(c.x, c.y, x0, y0);
    device(double(c.x) + c.width, c.y, x1, y1);
    device(c.x, double(c.y) + c.height, x3, y3);
    const double minX = std::min({x0, x1, x3, x1 + x3 - x0});
    const double minY = std::min({y0, y1, y3, y1 + y3 - y0});
    const int32_t q = c.turns; // the first matrix sets the page's orientation
    const int64_t posX = int64_t(q == 1 || q == 2 ? std::floor(minX) + 1 : std::ceil(minX));
    const int64_t posY = int64_t(q >= 2 ? std::floor(minY) + 1 : std::ceil(minY));
    // Reduction to the rectangle's user units.
    const int64_t aw = std::abs(c.width), ah = std::abs(c.height);
    const bool reduce = (c.w > aw || c.h > ah) && aw * ah < int64_t(c.w) * c.h;
    const int64_t rw = reduce ? aw : c.w, rh = reduce ? ah : c.h;
    const bool swap = x1 == x0; // the first row runs along device y
    const int64_t nx = swap ? rh : rw, ny = swap ? rw : rh;
    const double extentX = swap ? double(ah) : double(aw);
    const double extentY = swap ? double(aw) : double(ah);
    const bool unit = extentX == double(nx) && extentY == double(ny);
    const int64_t i = sampleAlong(X - posX, unit ? double(nx) : extentX, nx);
    const int64_t j = sampleAlong(Y - posY, unit ? double(ny) : extentY, ny);
    int64_t rc = 0, rr = 0;
    if (!swap) {
        rc = x1 > x0 ? i : nx - 1 - i;
        rr = y3 > y0 ? j : ny - 1 - j;
    } else {
        rr = x3 > x0 ? i : nx - 1 - i;
        rc = y1 > y0 ? j : ny - 1 - j;
    }
    const int64_t sx =
        reduce ? int64_t((uint64_t(rc) * ((uint64_t(c.w) << 16) / uint64_t(aw))) >> 16) : rc;
    const int64_t sy =
        reduce ? int64_t((uint64_t(rr) * ((uint64_t(c.h) << 16) / uint64_t(ah))) >> 16) : rr;
    const uint32_t value = sampleValue(c, sx, sy, e.painted);
    e.value = c.blend ? blended(c, value) : value & 0xFFFFFF;
    return e;
}

// The two pages of the case's script.
std::vector<PagePicture> play(const Case& c) {
    std::vector<PagePicture> pages;
    PagePicture picture(PAGE_W, PAGE_H, uint32_t(c.bandHeight));
    PlayerOptions options;
    options.onRaster = [&](const RasterDelivery& d) { picture.placeBand(d); };
    options.onPageClosed = [&] {
        pages.push_back(picture);
        picture = PagePicture(PAGE_W, PAGE_H, uint32_t(c.bandHeight));
    };
    std::istringstream text(script(c));
    JobPlayer player("oracle.kjob", ".", options);
    const PlayResult result = player.run(text);
    EXPECT_EQ(result.status, 0) << result.message;
    EXPECT_EQ(result.failedCalls, 0u) << result.firstFailure;
    return pages;
}

uint32_t pixelAt(const PagePicture& p, int32_t x, int32_t y) {
    const size_t i = (size_t(y) * PAGE_W + size_t(x)) * 3;
    return uint32_t(p.rgb()[i]) | uint32_t(p.rgb()[i + 1]) << 8 | uint32_t(p.rgb()[i + 2]) << 16;
}

TEST(ImagePlacementOracle, EveryDevicePixelShowsTheSampleTheRulesGive) {
    int64_t paintedPixels = 0;
    for (uint32_t seed = 0; seed < 1000; ++seed) {
        const Case c = randomCase(seed);
        const std::vector<PagePicture> pages = play(c);
        ASSERT_EQ(pages.size(), 2u) << "seed " << seed;
        const PagePicture& image = pages[0];
        const PagePicture& cover = pages[1];
        for (int32_t Y = 0; Y < PAGE_H; ++Y) {
            for (int32_t X = 0; X < PAGE_W; ++X) {
                const bool covered = pixelAt(cover, X, Y) == 0;
                const Expected e = expectedAt(c, X, Y, covered);
                uint32_t want = e.painted ? e.value : 0xFFFFFF;
                if (c.grey && !c.blend) {
                    want = (want & 0xFF) * 0x010101;
                }
                const uint32_t got = pixelAt(image, X, Y);
                ASSERT_EQ(got, want) << "seed " << seed << " pixel " << X << ',' << Y
                                     << (covered ? " inside" : " outside") << "\n"
                                     << script(c).substr(0, 600);
                paintedPixels += e.painted ? 1 : 0;
            }
        }
    }
    EXPECT_GT(paintedPixels, 1000 * 150); // the placements are not trivially empty
}

} // namespace
} // namespace kryn::script
