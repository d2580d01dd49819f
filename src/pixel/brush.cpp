#include "pixel/brush.h"

#include "pixel/pixel_word.h"
#include "pixel/surface.h"

#include <array>

namespace pelorin {

namespace {

// `width` columns and `height` rows on either side of the middle.
constexpr Rect Box(int width, int height) {
    return {-width, -height, width + 1, height + 1};
}

// Three diagonals side by side; the end points are not drawn. `flip` is -1 to lean the other way.
constexpr std::array<Rect, 19> Oblique(int flip) {
    struct Line {
        int x, y, length;
    };
    constexpr Line lines[] = {{3, 2, 6}, {3, 3, 7}, {2, 3, 6}};
    std::array<Rect, 19> dots{};
    std::size_t n = 0;
    for (const auto& line : lines) {
        for (int i = 0; i < line.length; ++i) {
            const int x = flip * (line.x - i), y = line.y - i;
            dots[n++] = {x, y, x + 1, y + 1};
        }
    }
    return dots;
}

constexpr Rect kFine[] = {Box(0, 0)};
constexpr Rect kSquareMedium[] = {Box(1, 1)};
constexpr Rect kSquareLarge[] = {Box(2, 2)};
constexpr Rect kSquareExtraLarge[] = {Box(3, 3)};
constexpr Rect kCircleSmall[] = {Box(1, 0), Box(0, 1)};
constexpr Rect kCircleMedium[] = {Box(2, 1), Box(1, 2)};
constexpr Rect kCircleLarge[] = {Box(3, 1), Box(2, 2), Box(1, 3)};
constexpr Rect kCircleExtraLarge[] = {Box(4, 1), Box(3, 3), Box(1, 4)};
constexpr auto kObliqueLeft = Oblique(1);
constexpr auto kObliqueRight = Oblique(-1);
constexpr Rect kDiamondMedium[] = {Box(2, 0), Box(1, 1), Box(0, 2)};
constexpr Rect kDiamondLarge[] = {Box(3, 0), Box(2, 1), Box(1, 2), Box(0, 3)};

constexpr std::span<const Rect> kShapes[kBrushShapes] = {
    kFine,        kSquareMedium,     kSquareLarge, kSquareExtraLarge, kCircleSmall,   kCircleMedium,
    kCircleLarge, kCircleExtraLarge, kObliqueLeft, kObliqueRight,     kDiamondMedium, kDiamondLarge,
};

} // namespace

std::span<const Rect> BrushSpans(int shape) {
    return shape >= 0 && shape < kBrushShapes ? kShapes[shape] : std::span<const Rect>();
}

void DrawBrushStamp(Surface& surface, int x, int y, int shape, int zoom) {
    const Argb color = zoom == 0 ? 0 : 0x00FFFFFF;
    const std::int64_t scale = std::max(zoom, 1);
    const auto clip = [](std::int64_t v, int limit) { return static_cast<int>(std::clamp<std::int64_t>(v, 0, limit)); };
    for (const auto& span : BrushSpans(shape)) {
        const int left = clip(x + span.left * scale, surface.Width()),
                  right = clip(x + span.right * scale, surface.Width());
        const int top = clip(y + span.top * scale, surface.Height());
        const int bottom = clip(y + span.bottom * scale, surface.Height());
        for (int row = top; row < bottom; ++row) {
            for (int column = left; column < right; ++column) surface.Put(column, row, color);
        }
    }
}

} // namespace pelorin
