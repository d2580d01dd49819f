// Error diffusion (R. Floyd and L. Steinberg), the machine under palette mapping and under the dithering reducer.
#pragma once

#include "pixel/nearest_color.h"

#include <utility>

namespace pelorin {

/// What one channel's error gives to the pixel at the right (7/16) and to those below (5/16), below left (3/16) and
/// below right (1/16), each rounded to nearest, halves away from 0.
struct ErrorShares {
    std::int16_t right, below, belowLeft, belowRight;
};

constexpr std::array<ErrorShares, 512> MakeErrorShares() {
    std::array<ErrorShares, 512> shares{};
    for (int i = 0; i < 512; ++i) {
        const int error = i - 256;
        const auto share = [&](int weight) {
            const int part = error >= 0 ? (error * weight + 8) / 16 : -((8 - error * weight) / 16);
            return static_cast<std::int16_t>(part);
        };
        shares[static_cast<std::size_t>(i)] = {share(7), share(5), share(3), share(1)};
    }
    return shares;
}
/// At error + 256.
inline constexpr std::array<ErrorShares, 512> kErrorShares = MakeErrorShares();

/// Fills the rows of an 8-bpp block in stored order, each from left to right.
///
/// `loadRow(y, line)` writes red, green, blue of each pixel of row `y` as 16-bit numbers; `choose(red, green, blue)`
/// gives the `PaletteSearchEntry` for a clamped colour, against which the error is taken.
template <class LoadRow, class Choose>
void DiffuseRows(const DibRows& target, LoadRow&& loadRow, Choose&& choose) {
    const int width = target.Width();
    const int height = target.Height();
    // A pixel on either side takes what would leave the row. A line's values stay within 16 bits: a channel, and the
    // shares of four errors that together weigh one.
    const std::size_t samples = (static_cast<std::size_t>(width) + 2) * 3;
    std::vector<std::int16_t> first(samples), second(samples);
    std::int16_t* line = first.data() + 3;
    std::int16_t* below = second.data() + 3;
    loadRow(0, line);
    for (int y = 0; y < height; ++y) {
        if (y + 1 < height) loadRow(y + 1, below);
        auto* out = target.Row(y);
        std::array<int, 3> right{};     // for the pixel to come
        std::array<int, 3> belowLeft{}; // gathered so far for the pixel below the last one
        std::array<int, 3> belowHere{}; // and below the present one
        const std::int16_t* in = line;
        std::int16_t* under = below - 3;
        for (int x = 0; x < width; ++x, in += 3, under += 3) {
            std::array<int, 3> color;
            for (std::size_t c = 0; c < 3; ++c) color[c] = std::clamp(in[c] + right[c], 0, 255);
            const PaletteSearchEntry& entry = choose(color[0], color[1], color[2]);
            out[x] = entry.index;
            const std::array<int, 3> chosen = {entry.red, entry.green, entry.blue};
            for (std::size_t c = 0; c < 3; ++c) {
                const ErrorShares& shares = kErrorShares[static_cast<std::size_t>(color[c] - chosen[c] + 256)];
                right[c] = shares.right;
                under[c] = static_cast<std::int16_t>(under[c] + belowLeft[c] + shares.belowLeft);
                belowLeft[c] = belowHere[c] + shares.below;
                belowHere[c] = shares.belowRight;
            }
        }
        for (std::size_t c = 0; c < 3; ++c) under[c] = static_cast<std::int16_t>(under[c] + belowLeft[c]);
        std::swap(line, below);
    }
}

} // namespace pelorin
