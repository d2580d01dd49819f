// A pixel of four bytes as one word, loaded and stored in a way that loops over rows can be vectorised.
#pragma once

#include "pixel/color.h"
#include "pixel/visit_depth.h"

#include <bit>

namespace pelorin {

/// The four bytes at `p` as 0xAARRGGBB.
[[nodiscard]] inline Argb LoadPixel(const std::uint8_t* p) {
    if constexpr (std::endian::native == std::endian::little) {
        Argb value;
        std::memcpy(&value, p, 4);
        return value;
    } else {
        return LoadU32LE(p);
    }
}

inline void StorePixel(std::uint8_t* p, Argb value) {
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(p, &value, 4);
    } else {
        StoreU32LE(p, value);
    }
}

[[nodiscard]] constexpr int AlphaOf(Argb value) {
    return static_cast<int>(value >> 24);
}
/// Channels of 0 to 255; only their low bytes count.
[[nodiscard]] constexpr Argb MakePixel(int blue, int green, int red, int alpha) {
    return static_cast<Argb>(blue & 255) | static_cast<Argb>(green & 255) << 8 | static_cast<Argb>(red & 255) << 16 |
           static_cast<Argb>(alpha & 255) << 24;
}

} // namespace pelorin
