// Adjustments of every pixel by itself. All give a new bitmap of the same size, empty for an empty one; values outside
// the range stated count as its nearest end. The fourth byte is copied, save by `Opacity`.
#pragma once

#include "pixel/surface.h"

namespace pelorin {

/// -100 (black) to 100 (three times as bright).
[[nodiscard]] Surface Brightness(const Surface& bitmap, int value);
/// -100 (all grey 128) to 100 (four times the distance from 128).
[[nodiscard]] Surface Contrast(const Surface& bitmap, int value);
/// Turns the hue; greys stay. Whole turns beyond one are dropped.
[[nodiscard]] Surface HueShift(const Surface& bitmap, int degrees);
/// -100 (grey) to 100 (fully saturated); greys stay.
[[nodiscard]] Surface Saturation(const Surface& bitmap, int value);
/// Gives every pixel, greys included, this hue (in degrees, whole turns dropped) and saturation (0 to 100).
[[nodiscard]] Surface Colorize(const Surface& bitmap, int hueDegrees, int saturationPercent);
/// -100 (transparent) to 100 (opaque) for pixels of alpha above 5. Alpha is the fourth byte; with `isAlphaImage` it is
/// the third, and the result goes into all four.
[[nodiscard]] Surface Opacity(const Surface& bitmap, int value, bool isAlphaImage);
/// The negative of the three colour bytes.
[[nodiscard]] Surface Invert(const Surface& bitmap);
/// The same in place.
void InvertSurface(Surface& surface);

} // namespace pelorin
