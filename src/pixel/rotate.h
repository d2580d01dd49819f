// Turns and mirrors of device bitmaps.
#pragma once

#include "pixel/surface.h"
#include "pixel/visit_depth.h"

namespace pelorin {

/// The bitmap turned by `angle` degrees, nearest pixels; the size is that of the turned corners' bounds, and pixels
/// that come from outside the bitmap are `background`. Empty when the bounds have no area or are above `kMaxPixels`.
[[nodiscard]] Surface RotateBitmap(const Surface& bitmap, double angle, Argb background);

/// The same with smooth edges: turned at twice the size, halved, then sharpened a little.
[[nodiscard]] Surface RotateBitmapSmooth(const Surface& bitmap, double angle, Argb background);

/// Quarter turns. 90 takes the pixel (x, y) to (y, width - x - 1), 270 to (height - y - 1, x).
[[nodiscard]] Surface Rotate90(const Surface& bitmap);
[[nodiscard]] Surface Rotate180(const Surface& bitmap);
[[nodiscard]] Surface Rotate270(const Surface& bitmap);

/// The bitmap upside down with `vertical`, otherwise left to right.
[[nodiscard]] Surface FlipBitmap(const Surface& bitmap, bool vertical);

} // namespace pelorin
