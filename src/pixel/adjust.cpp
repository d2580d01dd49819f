#include "pixel/adjust.h"

#include "pixel/color_memo.h"
#include "pixel/hsl.h"
#include "pixel/pixel_word.h"

namespace pelorin {

namespace {

using Table = std::array<std::uint8_t, 256>;

// A new bitmap whose pixels are `change` of the old ones.
template <class Change>
Surface MapPixels(const Surface& bitmap, Change&& change) {
    Surface result(bitmap.Width(), bitmap.Height());
    const auto* from = bitmap.Span().data();
    const auto size = bitmap.Span().size();
    auto* to = result.Span().data();
    for (std::size_t i = 0; i < size; i += 4) StorePixel(to + i, change(LoadPixel(from + i)));
    return result;
}

Surface MapColors(const Surface& bitmap, const Table& table) {
    return MapPixels(bitmap, [&](Argb p) {
        return static_cast<Argb>(table[p & 255]) | static_cast<Argb>(table[p >> 8 & 255]) << 8 |
               static_cast<Argb>(table[p >> 16 & 255]) << 16 | (p & 0xFF000000u);
    });
}

template <class Entry>
Table MakeTable(Entry&& entry) {
    Table table;
    for (int i = 0; i < 256; ++i) table[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(entry(i));
    return table;
}

bool IsGrey(Argb p) {
    return RedOf(p) == GreenOf(p) && GreenOf(p) == BlueOf(p);
}

struct Hsl {
    double h = 0, s = 0, l = 0;
};

Hsl HslOf(Argb p) {
    Hsl hsl;
    RgbToHsl(RedOf(p) / 255.0, GreenOf(p) / 255.0, BlueOf(p) / 255.0, hsl.h, hsl.s, hsl.l);
    return hsl;
}

// Takes a pixel's colour through hue, saturation and lightness; the fourth byte stays.
template <class Change>
Surface MapHsl(const Surface& bitmap, bool withGreys, Change&& change) {
    ColorMemo<Rgb> memo;
    const auto convert = [&](Rgb color) {
        if (!withGreys && IsGrey(color)) return color;
        auto hsl = HslOf(color);
        change(hsl);
        return HslToPixel(hsl.h, hsl.s, hsl.l);
    };
    return MapPixels(bitmap, [&](Argb p) { return memo.Get(p & 0xFFFFFF, convert) | (p & 0xFF000000u); });
}

double WrapHue(double hue) {
    return hue >= 1 ? hue - 1 : hue < 0 ? hue + 1 : hue;
}

// 360 itself is kept: it is one turn, and takes the road through the wrapping.
int WithinOneTurn(int degrees) {
    return degrees > 360 || degrees < -360 ? degrees % 360 : degrees;
}

} // namespace

Surface Brightness(const Surface& bitmap, int value) {
    value = std::clamp(value, -100, 100);
    const int factor = value <= 0 ? 100 + value : 100 + 2 * value;
    return MapColors(bitmap, MakeTable([&](int i) { return std::clamp(i * factor / 100, 0, 255); }));
}

Surface Contrast(const Surface& bitmap, int value) {
    value = std::clamp(value, -100, 100);
    const int factor = value <= 0 ? 100 + value : 100 + 3 * value;
    return MapColors(bitmap, MakeTable([&](int i) { return std::clamp((i - 128) * factor / 100 + 128, 0, 255); }));
}

Surface HueShift(const Surface& bitmap, int degrees) {
    const double turn = WithinOneTurn(degrees) / 360.0;
    return MapHsl(bitmap, false, [&](Hsl& hsl) { hsl.h = WrapHue((hsl.h == 1 ? 0 : hsl.h) + turn); });
}

Surface Saturation(const Surface& bitmap, int value) {
    value = std::clamp(value, -100, 100);
    const double factor = (value < 0 ? value + 100 : value) / 100.0;
    return MapHsl(bitmap, false, [&](Hsl& hsl) {
        hsl.s = std::clamp(value < 0 ? hsl.s * factor : hsl.s + (1 - hsl.s) * factor, 0.0, 1.0);
    });
}

Surface Colorize(const Surface& bitmap, int hueDegrees, int saturationPercent) {
    double hue = WithinOneTurn(hueDegrees) / 360.0;
    double saturation = std::clamp(saturationPercent, 0, 100) / 100.0;
    if (hue == 1) hue = 0;
    if (saturation == 1) saturation = 0.999;
    hue = WrapHue(hue);
    return MapHsl(bitmap, true, [&](Hsl& hsl) {
        hsl.h = hue;
        hsl.s = saturation;
    });
}

Surface Opacity(const Surface& bitmap, int value, bool isAlphaImage) {
    value = std::clamp(value, -100, 100);
    const double factor = (value < 0 ? value + 100 : value) / 100.0;
    const auto lift = [&](int alpha) {
        const double a = alpha / 255.0;
        return static_cast<int>(std::clamp(value < 0 ? a * factor : a + (1 - a) * factor, 0.0, 1.0) * 255);
    };
    const auto table = MakeTable(lift);
    constexpr int kFaintest = 6; // 5 / 255 is below 0.02
    return MapPixels(bitmap, [&](Argb p) {
        const int alpha = isAlphaImage ? RedOf(p) : AlphaOf(p);
        if (alpha < kFaintest) return p;
        const Argb result = table[static_cast<std::size_t>(alpha)];
        return isAlphaImage ? result * 0x01010101u : (p & 0xFFFFFFu) | result << 24;
    });
}

Surface Invert(const Surface& bitmap) {
    return MapPixels(bitmap, [](Argb p) { return p ^ 0x00FFFFFFu; });
}

void InvertSurface(Surface& surface) {
    auto* p = surface.Span().data();
    const auto size = surface.Span().size();
    for (std::size_t i = 0; i < size; i += 4) StorePixel(p + i, LoadPixel(p + i) ^ 0x00FFFFFFu);
}

} // namespace pelorin
