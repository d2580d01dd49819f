#include "pixel/hsl.h"

#include <algorithm>

namespace pelorin {

void RgbToHsl(double r, double g, double b, double& h, double& s, double& l) {
    const double high = std::max({r, g, b});
    const double low = std::min({r, g, b});
    l = (high + low) / 2;
    if (l <= 0) return;
    const double d = high - low;
    s = d;
    if (d <= 0) return;
    s = l <= 0.5 ? d / (high + low) : d / (2 - high - low);
    const double rc = (high - r) / d;
    const double gc = (high - g) / d;
    const double bc = (high - b) / d;
    if (r == high) {
        h = g == low ? 5 + bc : 1 - gc;
    } else if (g == high) {
        h = b == low ? 1 + rc : 3 - bc;
    } else {
        h = r == low ? 3 + gc : 5 - rc;
    }
    h /= 6;
}

void HslToRgb(double h, double s, double l, double& r, double& g, double& b) {
    if (h == 1) h = 0;
    const double v = l <= 0.5 ? l * (1 + s) : l + s - l * s;
    if (v <= 0) {
        r = g = b = 0;
        return;
    }
    const double m = 2 * l - v;
    const double sv = (v - m) / v;
    const double h6 = h * 6;
    if (!(h6 > -1 && h6 < 6)) return;
    const int sextant = static_cast<int>(h6);
    const double fract = h6 - sextant;
    const double vsf = v * sv * fract;
    const double mid1 = m + vsf;
    const double mid2 = v - vsf;
    const auto put = [&](double red, double green, double blue) {
        r = red;
        g = green;
        b = blue;
    };
    switch (sextant) {
    case 0: put(v, mid1, m); break;
    case 1: put(mid2, v, m); break;
    case 2: put(m, v, mid1); break;
    case 3: put(m, mid2, v); break;
    case 4: put(mid1, m, v); break;
    case 5: put(v, m, mid2); break;
    default: break;
    }
}

Rgb HslToPixel(double h, double s, double l) {
    double r = 0, g = 0, b = 0;
    HslToRgb(h, s, l, r, g, b);
    return MakeRgb(static_cast<int>(r * 255), static_cast<int>(g * 255), static_cast<int>(b * 255));
}

ColorRef HslToColor(int hueDegrees, int saturationPercent, int lightnessPercent) {
    double hue = hueDegrees / 360.0;
    if (hue >= 1) hue = 0;
    return ColorRefFromRgb(HslToPixel(hue, saturationPercent / 100.0, lightnessPercent / 100.0));
}

} // namespace pelorin
