#include "formats/jpeg_colors.h"

#include <algorithm>

namespace pelorin {

namespace {

void PutColor(std::uint8_t* to, int luma, int cb, int cr) {
    constexpr int half = 1 << 15; // of the factors' unit
    const auto clip = [](int v) { return static_cast<std::uint8_t>(std::clamp(v, 0, 255)); };
    cb -= 128;
    cr -= 128;
    to[0] = clip(luma + ((116130 * cb + half) >> 16));
    to[1] = clip(luma + ((-22554 * cb - 46802 * cr + half) >> 16));
    to[2] = clip(luma + ((91881 * cr + half) >> 16));
}

} // namespace

void PutJpegInks(const std::uint8_t* inks, std::uint8_t* to, int width, bool inverted) {
    const unsigned flip = inverted ? 0 : 255;
    for (int x = 0; x < width; ++x, inks += 4, to += 3) {
        const unsigned black = inks[3] ^ flip;
        for (int c = 0; c < 3; ++c) to[2 - c] = static_cast<std::uint8_t>((inks[c] ^ flip) * black / 255);
    }
}

void PutJpegRow(J_COLOR_SPACE space, const std::array<const std::uint8_t*, 4>& planes, std::uint8_t* to, int pixels,
                bool invertedInks) {
    const auto width = static_cast<std::size_t>(pixels);
    if (space == JCS_GRAYSCALE) {
        for (std::size_t x = 0; x < width; ++x, to += 3) std::fill_n(to, 3, planes[0][x]);
    } else if (space == JCS_RGB) {
        for (std::size_t x = 0; x < width; ++x, to += 3) {
            for (std::size_t c = 0; c < 3; ++c) to[2 - c] = planes[c][x];
        }
    } else if (space == JCS_YCbCr) {
        for (std::size_t x = 0; x < width; ++x, to += 3) PutColor(to, planes[0][x], planes[1][x], planes[2][x]);
    } else {
        for (std::size_t x = 0; x < width; ++x, to += 3) {
            std::uint8_t inks[4] = {planes[0][x], planes[1][x], planes[2][x], planes[3][x]};
            if (space == JCS_YCCK) {
                std::uint8_t light[3];
                PutColor(light, inks[0], inks[1], inks[2]);
                for (std::size_t c = 0; c < 3; ++c) inks[c] = static_cast<std::uint8_t>(255 - light[2 - c]);
            }
            PutJpegInks(inks, to, 1, invertedInks);
        }
    }
}

} // namespace pelorin
