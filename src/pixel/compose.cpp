#include "pixel/compose.h"

#include "pixel/pixel_word.h"

namespace pelorin {

namespace {

constexpr Rgb kWhite = 0xFFFFFF;
constexpr int kErasesColor = 241; // from this alpha on an eraser leaves no colour behind

struct LayerPixel {
    Rgb color;
    int alpha;
};

LayerPixel Erase(LayerPixel top, LayerPixel bottom) {
    return {top.alpha < kErasesColor ? bottom.color : kWhite, (255 - top.alpha) * bottom.alpha / 255};
}

LayerPixel Over(LayerPixel top, LayerPixel bottom) {
    if (top.alpha == 0) return bottom.alpha == 0 ? LayerPixel{kWhite, 0} : bottom;
    if (bottom.alpha == 0) return top;
    const int out = (top.alpha * 255 + (255 - top.alpha) * bottom.alpha + 127) / 255;
    const int weight = ((255 - top.alpha) * bottom.alpha + 127) / 255;
    const auto mix = [&](int a, int b) { return (top.alpha * a + weight * b + out / 2) / out; };
    return {MakeRgb(mix(RedOf(top.color), RedOf(bottom.color)), mix(GreenOf(top.color), GreenOf(bottom.color)),
                    mix(BlueOf(top.color), BlueOf(bottom.color))),
            out};
}

LayerPixel Combine(LayerPixel source, LayerPixel dest, ComposeFlags flags) {
    if (!flags.compose && !flags.behind) return source;
    const auto& top = flags.behind ? dest : source;
    const auto& bottom = flags.behind ? source : dest;
    return flags.erase ? Erase(top, bottom) : Over(top, bottom);
}

LayerPixel LoadLayer(const std::uint8_t* color, const std::uint8_t* alpha) {
    return {LoadPixel(color) & 0xFFFFFFu, alpha[0]};
}

void StoreColor(std::uint8_t* to, Rgb color) {
    StorePixel(to, (LoadPixel(to) & 0xFF000000u) | color);
}

} // namespace

bool ComposeLayers(Surface& destColor, Surface& destAlpha, int x, int y, int width, int height, const Surface& srcColor,
                   const Surface& srcAlpha, ComposeFlags flags) {
    if (destColor.GetSize() != destAlpha.GetSize() || srcColor.GetSize() != srcAlpha.GetSize()) return false;
    width = std::min(width, srcColor.Width());
    height = std::min(height, srcColor.Height());
    const int left = std::max(x, 0), top = std::max(y, 0);
    const auto right = std::min<std::int64_t>(std::int64_t{x} + width, destColor.Width());
    const auto bottom = std::min<std::int64_t>(std::int64_t{y} + height, destColor.Height());
    for (int row = top; row < bottom; ++row) {
        auto *color = destColor.PictureRow(row), *alpha = destAlpha.PictureRow(row);
        const auto *fromColor = srcColor.PictureRow(row - y), *fromAlpha = srcAlpha.PictureRow(row - y);
        for (int column = left; column < right; ++column) {
            const auto to = std::ptrdiff_t{4} * column, from = std::ptrdiff_t{4} * (column - x);
            const auto result =
                Combine(LoadLayer(fromColor + from, fromAlpha + from), LoadLayer(color + to, alpha + to), flags);
            StoreColor(color + to, result.color);
            StoreColor(alpha + to, static_cast<Rgb>(result.alpha) * 0x010101u);
        }
    }
    return true;
}

} // namespace pelorin
