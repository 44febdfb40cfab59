#include "page_picture.h"

#include "kryn/kryn_raster.h"

#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>

namespace kryn::script {

namespace {

bool endsWith(const std::string& s, const char* suffix) {
    size_t n = std::strlen(suffix);
    return s.size() >= n && s.compare(s.size() - n, n, suffix) == 0;
}

// libpng reports errors by longjmp, so this part holds nothing with a
// destructor: the pixels arrive packed, one row after another.
bool encodePng(FILE* file, uint32_t width, uint32_t height, bool colour, const uint8_t* pixels) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    if (info == nullptr || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, file);
    png_set_IHDR(png, info, width, height, 8, colour ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    const size_t rowBytes = size_t{width} * (colour ? 3 : 1);
    for (uint32_t y = 0; y < height; ++y) {
        png_write_row(png, pixels + y * rowBytes);
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

// The picture's pixels as the file stores them: RGB, or one grey byte (the
// green channel) per pixel.
std::vector<uint8_t> packedPixels(const PagePicture& picture, bool colour) {
    if (colour) {
        return picture.rgb();
    }
    std::vector<uint8_t> grey(picture.rgb().size() / 3);
    for (size_t i = 0; i < grey.size(); ++i) {
        grey[i] = picture.rgb()[3 * i + 1];
    }
    return grey;
}

bool writePng(const PagePicture& picture, const std::string& path, std::string& error) {
    std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "wb"), std::fclose);
    const std::vector<uint8_t> pixels = packedPixels(picture, picture.isColour());
    if (!file || !encodePng(file.get(), picture.width(), picture.height(), picture.isColour(),
                            pixels.data())) {
        error = "cannot write '" + path + "'";
        return false;
    }
    return true;
}

bool writeNetpbm(const PagePicture& picture, const std::string& path, bool colour,
                 std::string& error) {
    std::ofstream out(path, std::ios::binary);
    out << (colour ? "P6\n" : "P5\n") << picture.width() << ' ' << picture.height() << "\n255\n";
    const std::vector<uint8_t>& rgb = picture.rgb();
    if (colour) {
        out.write(reinterpret_cast<const char*>(rgb.data()),
                  static_cast<std::streamsize>(rgb.size()));
    } else {
        std::vector<char> grey(rgb.size() / 3);
        for (size_t i = 0; i < grey.size(); ++i) {
            grey[i] = static_cast<char>(rgb[3 * i + 1]);
        }
        out.write(grey.data(), static_cast<std::streamsize>(grey.size()));
    }
    if (!out) {
        error = "cannot write '" + path + "'";
        return false;
    }
    return true;
}

} // namespace

PagePicture::PagePicture(uint32_t width, uint32_t height, uint32_t bandHeight)
    : width_(width), height_(height), bandHeight_(bandHeight),
      rgb_(size_t{width} * height * 3, 0xFF) {}

// A band raster holds bandHeight rows of one stride each; its row may be
// narrower than the page (host renderers can leave out the last column).
// 8-bit rasters: the black-and-white code, and the standard code whose
// rectangle spans the row bytes; everything else is 32-bit.
void PagePicture::placeBand(const RasterDelivery& d) {
    if (bandHeight_ == 0 || d.bytes == 0 || d.bytes % bandHeight_ != 0) {
        return;
    }
    const uint64_t top = uint64_t{d.pageBand} * bandHeight_;
    if (top >= height_) {
        return;
    }
    const uint32_t stride = d.bytes / bandHeight_;
    const bool grey = d.code == CB_RASTER_DIRECT ||
                      (d.code == CB_RASTER_STANDARD && d.rect != nullptr &&
                       d.rect->right + 1 == stride && d.rect->bottom + 1 == bandHeight_);
    if (grey) {
        placeGrey(d.data, stride, bandHeight_, static_cast<uint32_t>(top));
    } else if (stride % 4 == 0) {
        colour_ = true;
        placeColour(d.data, stride / 4, bandHeight_, static_cast<uint32_t>(top));
    }
}

void PagePicture::placeGrey(const uint8_t* raster, uint32_t stride, uint32_t rows, uint32_t top) {
    for (uint32_t r = 0; r < rows && top + r < height_; ++r) {
        uint8_t* dst = rgb_.data() + (size_t{top} + r) * width_ * 3;
        const uint8_t* src = raster + size_t{r} * stride;
        for (uint32_t x = 0; x < width_ && x < stride; ++x) {
            dst[3 * x] = dst[3 * x + 1] = dst[3 * x + 2] = src[x];
        }
    }
}

// 32-bit rows arrive with their runs marked; the public raster helper
// expands them as a device reads them.
void PagePicture::placeColour(const uint8_t* raster, uint32_t strideWords, uint32_t rows,
                              uint32_t top) {
    const auto* words = reinterpret_cast<const uint32_t*>(raster);
    std::vector<uint32_t> pixels(width_);
    for (uint32_t r = 0; r < rows && top + r < height_; ++r) {
        uint8_t* dst = rgb_.data() + (size_t{top} + r) * width_ * 3;
        const uint32_t columns =
            krynExpandRow(words + size_t{r} * strideWords, strideWords, pixels.data(), width_);
        for (uint32_t x = 0; x < columns; ++x) {
            dst[3 * x] = static_cast<uint8_t>(pixels[x]);
            dst[3 * x + 1] = static_cast<uint8_t>(pixels[x] >> 8);
            dst[3 * x + 2] = static_cast<uint8_t>(pixels[x] >> 16);
        }
    }
}

void PagePicture::shrink(uint32_t factor) {
    if (factor <= 1 || factor > 64) {
        return;
    }
    const uint32_t w = (width_ + factor - 1) / factor;
    const uint32_t h = (height_ + factor - 1) / factor;
    std::vector<uint8_t> out(size_t{w} * h * 3);
    std::vector<uint32_t> sums(size_t{w} * 3);
    for (uint32_t y = 0; y < h; ++y) {
        std::fill(sums.begin(), sums.end(), 0u);
        const uint32_t rows = std::min(factor, height_ - y * factor);
        for (uint32_t r = 0; r < rows; ++r) {
            const uint8_t* src = rgb_.data() + (size_t{y} * factor + r) * width_ * 3;
            for (uint32_t x = 0; x < width_; ++x) {
                for (uint32_t c = 0; c < 3; ++c) {
                    sums[size_t{x / factor} * 3 + c] += src[size_t{x} * 3 + c];
                }
            }
        }
        for (uint32_t x = 0; x < w; ++x) {
            const uint32_t n = rows * std::min(factor, width_ - x * factor);
            for (uint32_t c = 0; c < 3; ++c) {
                out[(size_t{y} * w + x) * 3 + c] =
                    static_cast<uint8_t>((sums[size_t{x} * 3 + c] + n / 2) / n);
            }
        }
    }
    rgb_ = std::move(out);
    width_ = w;
    height_ = h;
}

bool writePicture(const PagePicture& picture, const std::string& path, std::string& error) {
    if (endsWith(path, ".png")) {
        return writePng(picture, path, error);
    }
    if (endsWith(path, ".ppm") || endsWith(path, ".pgm")) {
        return writeNetpbm(picture, path, endsWith(path, ".ppm"), error);
    }
    error = "'" + path + "': the picture must end in .png, .pgm or .ppm";
    return false;
}

} // namespace kryn::script
