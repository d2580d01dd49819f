#include "formats/reader_support.h"
#include "formats/tiff_page.h"
#include "pixel/visit_depth.h"

namespace pelorin {

namespace {

// Where the pixel at stored column x, row y belongs in the upright picture: x and y changed places where the first row
// of the file is a side of the picture, then mirrored.
struct Upright {
    bool turned = false, mirrorX = false, mirrorY = false;
};

// By orientation, from 1: the edge at which the first row lies, and that of the first column.
constexpr Upright kUpright[8] = {
    {false, false, false}, // top, left
    {false, true, false},  // top, right
    {false, true, true},   // bottom, right
    {false, false, true},  // bottom, left
    {true, false, false},  // left, top
    {true, true, false},   // right, top
    {true, true, true},    // right, bottom
    {true, false, true},   // left, bottom
};

int DepthOf(const TiffPage& page) {
    if (!page.indexed) return page.alpha >= 0 ? 32 : 24;
    return page.bits == 1 ? 1 : page.bits <= 4 ? 4 : 8;
}

// Blue, green, red and alpha of one pixel.
std::array<std::uint8_t, 4> ColorOf(const TiffPage& page, const std::uint8_t* s) {
    std::array<std::uint8_t, 4> color{};
    for (std::size_t c = 0; c < 3; ++c) {
        auto& channel = color[2 - c];
        if (page.colors == 1) {
            channel = static_cast<std::uint8_t>(page.table[s[0]] >> (16 - 8 * c));
        } else if (page.colors == 3) {
            channel = s[c];
        } else {
            channel = static_cast<std::uint8_t>((255u - s[c]) * (255u - s[3]) / 255);
        }
    }
    color[3] = page.alpha >= 0 ? s[page.colors] : std::uint8_t{255};
    if (page.premultiplied) {
        for (std::size_t c = 0; c < 3; ++c) color[c] = static_cast<std::uint8_t>(StraightLevel(color[c], color[3]));
    }
    return color;
}

void PutPixel(const DibRows& rows, int x, int y, const TiffPage& page, const std::uint8_t* samples) {
    auto* row = rows.PictureRow(y);
    switch (rows.BitCount()) {
    case 1: PutIndex<1>(row, x, samples[0]); return;
    case 4: PutIndex<4>(row, x, samples[0]); return;
    case 8: PutIndex<8>(row, x, samples[0]); return;
    default: {
        const auto color = ColorOf(page, samples);
        const auto size = static_cast<std::size_t>(rows.BitCount() / 8);
        std::copy_n(color.begin(), size, row + static_cast<std::size_t>(x) * size);
    }
    }
}

} // namespace

DibBlock BlockFromTiffSamples(const TiffPage& page, const Bytes& samples) {
    const auto& upright = kUpright[page.orientation - 1];
    const int width = upright.turned ? page.height : page.width, height = upright.turned ? page.width : page.height;
    auto block = CreateDIB(width, height, DepthOf(page));
    const DibRows rows(block);
    if (!rows) return {};
    if (page.indexed) {
        auto table = page.table;
        table.resize(std::size_t{1} << rows.BitCount());
        SetDIBTable(block, table);
    }
    const auto* from = samples.data();
    for (int y = 0; y < page.height; ++y) {
        for (int x = 0; x < page.width; ++x, from += page.Kept()) {
            const int column = upright.turned ? y : x, row = upright.turned ? x : y;
            PutPixel(rows, upright.mirrorX ? width - 1 - column : column, upright.mirrorY ? height - 1 - row : row,
                     page, from);
        }
    }
    return block;
}

} // namespace pelorin
