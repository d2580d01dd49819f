#include "pixel/draw.h"

#include "pixel/dither.h"
#include "pixel/resample.h"
#include "pixel/visit_depth.h"

namespace pelorin {

namespace {

constexpr int kPaletteScreen = 8; // bits up to which a screen has a palette
constexpr int kSixteenColorScreen = 4;

int Scaled(int place, int source, int target) {
    return static_cast<int>(std::int64_t{place} * source / target);
}

bool Stretch(Surface& target, const DibBlock& block, const Rect& rect) {
    const DibView source(block);
    const Rect visible = rect.Intersect({0, 0, target.Width(), target.Height()});
    if (!source || visible.Empty()) return false;
    VisitDepth(source, [&](const auto& pixel) {
        for (int y = visible.top; y < visible.bottom; ++y) {
            const auto* from = source.PictureRow(Scaled(y - rect.top, source.Height(), rect.Height()));
            auto* to = target.PictureRow(y) + std::ptrdiff_t{4} * visible.left;
            for (int x = visible.left; x < visible.right; ++x, to += 4) {
                StoreU32LE(to, pixel(from, Scaled(x - rect.left, source.Width(), rect.Width())) | 0xFF000000u);
            }
        }
    });
    return true;
}

// The picture in its final size and in the colours that the screen can show.
DibBlock CopyForScreen(const DibBlock& block, Size size, int screenBits) {
    const int bits = DIBBitCount(block);
    if (screenBits > kPaletteScreen) {
        if (bits == 24 || bits == 32) return ResampleDIB(block, size.width, size.height);
        return ResampleDIB(ConvertDIBTo24(block), size.width, size.height);
    }
    const int mode = screenBits <= kSixteenColorScreen ? kDither222 : kDither484;
    if (bits <= 8 || bits == 24) return DitherTo8(block, size.width, size.height, mode, false);
    return DitherTo8(ConvertDIBTo24(block), size.width, size.height, mode, false);
}

} // namespace

bool DrawDIB(Surface& target, const DibBlock& block, const Rect& rect, const DrawOptions& options) {
    if (rect.Empty()) return false;
    const bool direct = options.screenBits > kPaletteScreen || DIBNumColors(block) > 0;
    if (direct && !options.viaCopy) return Stretch(target, block, rect);
    const auto copy = CopyForScreen(block, {rect.Width(), rect.Height()}, options.screenBits);
    return Stretch(target, copy, rect);
}

Rect DrawDIBFitted(Surface& target, const DibBlock& block, const Rect& rect, const DrawOptions& options) {
    const Rect fitted = FitInside({DIBWidth(block), DIBHeight(block)}, rect);
    return DrawDIB(target, block, fitted, options) ? fitted : Rect{};
}

} // namespace pelorin
