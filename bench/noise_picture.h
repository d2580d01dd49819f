// Pictures for benchmarks: noise over slow waves, so that neither branches nor caches have it easier than with a photo.
#pragma once

#include "pixel/surface.h"

#include <cmath>
#include <random>

namespace pelorin::bench {

/// Opaque unless `holes`, which makes a tenth of the pixels transparent, in patches.
inline Surface NoisePicture(int width, int height, bool holes = false) {
    Surface surface(width, height);
    std::mt19937 random(42);
    for (int y = 0; y < height; ++y) {
        auto* p = surface.Row(y);
        for (int x = 0; x < width; ++x, p += 4) {
            const auto noise = random();
            const auto wave = static_cast<unsigned>(96 + 64 * std::sin(x * 0.01) + 64 * std::cos(y * 0.013));
            for (unsigned c = 0; c < 3; ++c) p[c] = static_cast<std::uint8_t>(wave + (noise >> 8 * c & 31));
            p[3] = holes && (x / 16 + y / 16) % 10 == 0 ? std::uint8_t{0} : std::uint8_t{255};
        }
    }
    return surface;
}

} // namespace pelorin::bench
