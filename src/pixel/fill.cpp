#include "pixel/fill.h"

#include "pixel/convolve.h"
#include "pixel/flood_region.h"
#include "pixel/pixel_word.h"

namespace pelorin {

namespace {

constexpr Argb kOpaqueWhite = 0xFFFFFFFFu;
constexpr Rgb kMagenta = 0xFF00FF;

void PaintRun(const DibRows& rows, int y, int from, int to, Argb color) {
    auto* p = rows.PictureRow(y) + std::ptrdiff_t{4} * from;
    for (int x = from; x < to; ++x, p += 4) StorePixel(p, color);
}

bool Inside(const DibView& view, int x, int y) {
    return x >= 0 && y >= 0 && x < view.Width() && y < view.Height();
}

Rgb ColorAt(const DibView& view, int x, int y) {
    return LoadPixel(view.PictureRow(y) + std::ptrdiff_t{4} * x) & 0xFFFFFFu;
}

} // namespace

bool FloodFill(DibBlock& image32, DibBlock& mask32, int x, int y, Rgb newColor, Rgb oldColor, int tolerance) {
    const DibRows image(image32), mask(mask32);
    if (!image || image.BitCount() != 32 || mask.BitCount() != 32 || image.GetSize() != mask.GetSize()) return false;
    const Argb paint = (newColor & 0xFFFFFFu) | 0xFF000000u;
    FloodRegion(image, newColor, oldColor, tolerance).Run(x, y, [&](int row, int from, int to) {
        PaintRun(image, row, from, to, paint);
        PaintRun(mask, row, from, to, kOpaqueWhite);
    });
    return true;
}

DibBlock SelectSimilar(const DibBlock& block32, int x, int y, int tolerance) {
    const DibView source(block32);
    if (!source || source.BitCount() != 32) return {};
    auto result = CreateDIB(source.Width(), source.Height(), 32);
    const DibRows mask(result);
    if (!mask || !Inside(source, x, y)) return result;
    FloodRegion(source, kMagenta, ColorAt(source, x, y), tolerance).Run(x, y, [&](int row, int from, int to) {
        PaintRun(mask, row, from, to, kOpaqueWhite);
    });
    return result;
}

DibBlock EraseColor(const DibBlock& block32, int x, int y, bool contiguous, int tolerance) {
    const DibView source(block32);
    if (!source || source.BitCount() != 32 || !Inside(source, x, y)) return {};
    const int step = std::clamp(tolerance / 5, 1, 3 * 255 * 255); // beyond, every colour is as near as can be
    const std::int64_t limit = std::int64_t{step} * 255;
    const Rgb key = ColorAt(source, x, y);
    Surface mask;
    if (contiguous) {
        mask = ApplyKernel(SurfaceFromDIB(SelectSimilar(block32, x, y, 2 * step)), kBlur, 0);
        if (!mask) return {};
    }
    auto result = CreateDIB(source.Width(), source.Height(), 32);
    const DibRows rows(result);
    const auto square = [](int a, int b) { return (a - b) * (a - b); };
    for (int row = 0; row < rows.Height(); ++row) {
        const auto* from = source.Row(row);
        auto* to = rows.Row(row);
        for (int column = 0; column < rows.Width(); ++column, from += 4, to += 4) {
            const Argb pixel = LoadPixel(from);
            const int far = square(RedOf(pixel), RedOf(key)) + square(GreenOf(pixel), GreenOf(key)) +
                            square(BlueOf(pixel), BlueOf(key));
            int taken = 255 - static_cast<int>(std::min<std::int64_t>(far, limit) / step);
            taken = std::min(taken, AlphaOf(pixel));
            if (mask) taken = taken * mask.Row(row)[4 * column] / 255;
            StorePixel(to, (pixel & 0xFFFFFFu) | static_cast<Argb>(AlphaOf(pixel) - taken) << 24);
        }
    }
    return result;
}

} // namespace pelorin
