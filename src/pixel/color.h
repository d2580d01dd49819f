// Colours as single numbers: the colour reference of dialogs and settings, and its way into a bitmap's table.
#pragma once

#include "pixel/dib.h"

namespace pelorin {

/// Red in bits 0 to 7, green in 8 to 15, blue in 16 to 23.
using ColorRef = std::uint32_t;

/// No colour: no transparent colour, no matte.
inline constexpr ColorRef kNoColor = 0xFF000000;

[[nodiscard]] constexpr ColorRef MakeColorRef(unsigned red, unsigned green, unsigned blue) {
    return (red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16;
}

// ---- the channels of a table or pixel colour, 0x..RRGGBB ----

[[nodiscard]] constexpr int RedOf(Rgb color) {
    return static_cast<int>(color >> 16 & 0xFF);
}
[[nodiscard]] constexpr int GreenOf(Rgb color) {
    return static_cast<int>(color >> 8 & 0xFF);
}
[[nodiscard]] constexpr int BlueOf(Rgb color) {
    return static_cast<int>(color & 0xFF);
}
[[nodiscard]] constexpr Rgb MakeRgb(int red, int green, int blue) {
    return static_cast<Rgb>(red & 0xFF) << 16 | static_cast<Rgb>(green & 0xFF) << 8 | static_cast<Rgb>(blue & 0xFF);
}

/// The table colour 0x00RRGGBB of a colour reference; the flags in its top byte are dropped.
[[nodiscard]] constexpr Rgb RgbFromColorRef(ColorRef color) {
    return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}
[[nodiscard]] constexpr ColorRef ColorRefFromRgb(Rgb color) {
    return RgbFromColorRef(color);
}

/// (color x alpha + under x (255 - alpha)) / 255, truncated: how every picture is composed on a background.
[[nodiscard]] constexpr int Blend255(int color, int under, int alpha) {
    return (color * alpha + under * (255 - alpha)) / 255;
}

} // namespace pelorin
