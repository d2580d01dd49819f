// Hue, saturation and lightness: all channels are doubles in 0..1, the hue is a fraction of a full circle.
//
// The conversion is the classic hexcone one (A. Smith, "Color gamut transform pairs", with lightness in place of
// value).
#pragma once

#include "pixel/color.h"

namespace pelorin {

/// Black writes only `l`; a grey writes `l` and s = 0 and leaves `h` as it was. Callers that need a defined hue set one
/// before the call.
void RgbToHsl(double r, double g, double b, double& h, double& s, double& l);

/// A hue of exactly 1 counts as 0. One above 1 (or a sixth below 0) writes nothing, unless the colour is black.
void HslToRgb(double h, double s, double l, double& r, double& g, double& b);

/// Channels are truncated from value x 255. A hue of 360 degrees or more counts as 0.
[[nodiscard]] ColorRef HslToColor(int hueDegrees, int saturationPercent, int lightnessPercent);

/// The pixel colour 0x00RRGGBB of a hue, each channel truncated from value x 255.
[[nodiscard]] Rgb HslToPixel(double h, double s, double l);

} // namespace pelorin
