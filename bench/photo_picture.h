// A picture with what makes a photo hard to reduce: soft ramps in all channels, edges, and the grain of a sensor.
#pragma once

#include "pixel/dib.h"

#include <cmath>

namespace pelorin::bench {

/// `grain` 1 is that of a good camera in daylight.
inline DibBlock PhotoPicture(int side, double grain = 1) {
    auto block = CreateDIB(side, side, 24);
    const DibRows rows(block);
    std::uint32_t random = 12345;
    for (int y = 0; y < side; ++y) {
        auto* pixel = rows.Row(y);
        for (int x = 0; x < side; ++x, pixel += 3) {
            const double u = static_cast<double>(x) / side, v = static_cast<double>(y) / side;
            const double wave = 60 * std::sin(9 * u + 4 * std::sin(5 * v));
            const double edge = std::fmod(u * 7 + v * 3, 1.0) < 0.3 ? 40 : 0;
            const double channels[] = {70 + 120 * v + wave, 90 + 100 * u - edge, 60 + 90 * (1 - v) + 50 * u + wave};
            for (int c = 0; c < 3; ++c) {
                random = random * 1664525 + 1013904223;
                const double value = channels[c] + grain * (static_cast<double>(random >> 28) - 8);
                pixel[c] = static_cast<std::uint8_t>(std::fmin(255, std::fmax(0, value)));
            }
        }
    }
    return block;
}

} // namespace pelorin::bench
