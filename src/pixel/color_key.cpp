// The colour key: an opaque picture gets an alpha by its distance from one colour.
#include "pixel/color_memo.h"
#include "pixel/convert_pixels.h"
#include "pixel/depth.h"
#include "pixel/hsl.h"

#include <algorithm>
#include <cmath>

namespace pelorin {

namespace {

struct Hsl {
    double h = 0, s = 0, l = 0;
    bool grey = true;
};

Hsl HslOf(Rgb color) {
    Hsl hsl;
    RgbToHsl(RedOf(color) / 255.0, GreenOf(color) / 255.0, BlueOf(color) / 255.0, hsl.h, hsl.s, hsl.l);
    hsl.grey = RedOf(color) == GreenOf(color) && GreenOf(color) == BlueOf(color);
    return hsl;
}

// What the key makes of a colour: the colour stored, and the factor of its alpha.
struct Keyed {
    Rgb color = 0;
    double factor = 1;
};

double Clamp01(double value) {
    return std::clamp(value, 0.0, 1.0);
}

Rgb Bleached(const Hsl& pixel) {
    double r = 0, g = 0, b = 0;
    HslToRgb(pixel.h, 0, pixel.l + (1 - pixel.l) / 1.5, r, g, b);
    const auto channel = [](double value) { return std::min(static_cast<int>(value * 255), 255); };
    return MakeRgb(channel(r), channel(g), channel(b));
}

Keyed KeyColoured(Rgb color, const Hsl& pixel, const Hsl& key) {
    double dh = std::abs(pixel.h - key.h);
    if (dh >= 0.5) dh = 1 - dh;
    const double q = dh < 0.01 ? 1 : std::min(1 / (40 * dh), 1.0);
    const double t = q - q * std::abs(pixel.l - key.l);
    if (q <= 0.5) return {color, 1 - std::pow(t, 1.2)};
    return {Bleached(pixel), Clamp01(1 - std::pow(t, 0.9))};
}

Keyed KeyColor(Rgb color, const Hsl& key) {
    const Hsl pixel = HslOf(color);
    if (!key.grey) return pixel.grey ? Keyed{color, 1} : KeyColoured(color, pixel, key);
    if (!pixel.grey && !(pixel.s < 0.2)) return {color, 1};
    const double d = std::abs(pixel.l - key.l);
    return {color, Clamp01(1 - std::pow(1 - d, pixel.grey ? 3.0 : 2.0))};
}

} // namespace

DibBlock ConvertTo32(const DibBlock& block, bool applyKey, ColorRef keyColor) {
    const DibView source(block);
    if (source.BitCount() == 15 || source.BitCount() == 16) return {};
    if (!applyKey) return ConvertPixels(source, 32, [](std::uint8_t* to, Argb color) { StoreU32LE(to, color); });

    const Hsl key = HslOf(RgbFromColorRef(keyColor));
    ColorMemo<Keyed> memo;
    return ConvertPixels(source, 32, [&](std::uint8_t* to, Argb color) {
        const Keyed& keyed = memo.Get(color, [&](Rgb c) { return KeyColor(c, key); });
        const auto alpha = static_cast<Argb>(static_cast<double>(color >> 24) * keyed.factor);
        StoreU32LE(to, keyed.color | alpha << 24);
    });
}

} // namespace pelorin
