// Assembles the band rasters of one page into a picture a person can view.
#pragma once

#include "job_player.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kryn::script {

class PagePicture {
  public:
    // A page of width x height pixels cut into bands of bandHeight rows,
    // starting as paper white.
    PagePicture(uint32_t width, uint32_t height, uint32_t bandHeight);

    // Places a delivered band raster at its band's rows (rows below the
    // page are cut). 8-bit rasters are grey; 32-bit rasters are decoded from
    // their row runs and keep their colour bytes, dropping the tag byte.
    // Rasters whose size matches neither layout are ignored.
    void placeBand(const RasterDelivery& delivery);

    // Makes the picture `factor` times smaller on each side (1..64): every
    // pixel the average of the factor x factor pixels it stands for (those
    // of the block inside the page, at the right and bottom edges), so a
    // 600-dpi page becomes a picture of a size a person can view, text and
    // fine lines turning grey rather than breaking up.
    void shrink(uint32_t factor);

    bool isColour() const { return colour_; }
    uint32_t width() const { return width_; }
    uint32_t height() const { return height_; }
    // Red, green, blue of every pixel, rows top to bottom.
    const std::vector<uint8_t>& rgb() const { return rgb_; }

  private:
    void placeGrey(const uint8_t* raster, uint32_t stride, uint32_t rows, uint32_t top);
    void placeColour(const uint8_t* raster, uint32_t strideWords, uint32_t rows, uint32_t top);

    uint32_t width_;
    uint32_t height_;
    uint32_t bandHeight_;
    bool colour_ = false;
    std::vector<uint8_t> rgb_;
};

// Writes the picture as .png, .pgm or .ppm by the path's extension (grey
// pages as grey, colour pages as RGB; .pgm keeps the green channel of a
// colour page). Returns false with a message when it cannot.
bool writePicture(const PagePicture& picture, const std::string& path, std::string& error);

} // namespace kryn::script
