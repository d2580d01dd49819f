#include "production/picture_steps.h"

#include "pixel/adjust.h"
#include "pixel/alpha_mask.h"
#include "pixel/blend.h"
#include "pixel/crop.h"
#include "pixel/depth.h"
#include "pixel/dither.h"
#include "pixel/resample.h"
#include "pixel/rotate.h"
#include "pixel/shadow.h"

#include <cmath>

namespace pelorin {

namespace {

constexpr ColorRef kWhiteMatte = 0xFFFFFF;

// 32 bits as they are, everything else in 24.
DibBlock Working(const DibBlock& block) {
    return DIBBitCount(block) == 32 ? CopyHandle(block) : ConvertDIBTo24(block);
}

DibBlock With32(const DibBlock& block) {
    return DIBBitCount(block) == 32 ? CopyHandle(block) : ConvertToOpaque32(block);
}

// The picture changed as a surface; at 24 bits the fourth byte is dropped again.
template <class Change>
DibBlock OnSurface(const DibBlock& block, Change&& change) {
    const Surface result = change(SurfaceFromDIB(block));
    return DIBBitCount(block) == 32 ? DIBFromSurface(result) : DIB24FromSurface(result);
}

DibBlock Merged(const Surface& color, const Surface& alpha) {
    auto result = CreateDIB(color.Width(), color.Height(), 32);
    return result && MergeAlpha(color, alpha, result.Span(), true) ? std::move(result) : DibBlock();
}

bool IsOpaque(const Surface& surface) {
    const auto bytes = surface.Span();
    for (std::size_t i = 3; i < bytes.size(); i += 4) {
        if (bytes[i] != 255) return false;
    }
    return true;
}

// The colours of a picture turned smoothly, of the size given. What is invisible takes the colours beside it first, on
// a margin around the picture too, so that no foreign colour is mixed into the edges.
Surface TurnColors(const DibBlock& block32, double degrees, Size size) {
    constexpr int kMargin = 4;
    const Size own = DibView(block32).GetSize();
    const auto wide = PlaceOnCanvas(block32, own.width + 2 * kMargin, own.height + 2 * kMargin,
                                    {kMargin, kMargin, kMargin + own.width, kMargin + own.height}, 0);
    const auto turned = RotateBitmapSmooth(SurfaceFromDIB(BleedColors(wide)), degrees, 0x00FFFFFF);
    const int left = (turned.Width() - size.width) / 2, top = (turned.Height() - size.height) / 2;
    return CopyRectOfBitmap(turned, {left, top, left + size.width, top + size.height});
}

DibBlock RotateFreely(const DibBlock& block, double degrees, bool smooth) {
    const auto whole = With32(block);
    if (!smooth) return DIBFromSurface(RotateBitmap(SurfaceFromDIB(whole), degrees, 0));
    // The smooth turn has no regard for a fourth byte, so colour and alpha are turned one after the other.
    const auto alpha = RotateBitmapSmooth(SplitColorAlpha(whole, true).mask, degrees, 0);
    return Merged(TurnColors(whole, degrees, alpha.GetSize()), alpha);
}

} // namespace

DibBlock ResizePicture(const DibBlock& block, Size size) {
    return ResampleDIB(Working(block), size.width, size.height);
}

DibBlock FitPicture(const DibBlock& block, Size box) {
    const auto inside = FitInside(DibView(block).GetSize(), {0, 0, box.width, box.height});
    return ResizePicture(block, {std::max(inside.Width(), 1), std::max(inside.Height(), 1)});
}

DibBlock CropPicture(const DibBlock& block, Point corner, Size size) {
    const auto last = [](int from, int length) {
        return static_cast<int>(std::min<std::int64_t>(std::int64_t{from} + length - 1, INT32_MAX));
    };
    return CropDIB(Working(block), corner.x, corner.y, last(corner.x, size.width), last(corner.y, size.height));
}

DibBlock SquarePicture(const DibBlock& block) {
    return CenterOnSquare(With32(block));
}

DibBlock RotatePicture(const DibBlock& block, double degrees, bool smooth) {
    if (!std::isfinite(degrees)) return {};
    double turn = std::fmod(degrees, 360.0);
    if (turn < 0) turn += 360;
    if (turn == 0 || turn == 360) return Working(block);
    if (turn == 90) return OnSurface(block, Rotate90);
    if (turn == 180) return OnSurface(block, Rotate180);
    if (turn == 270) return OnSurface(block, Rotate270);
    return RotateFreely(block, turn, smooth);
}

DibBlock FlipPicture(const DibBlock& block, bool vertical) {
    return OnSurface(block, [&](const Surface& surface) { return FlipBitmap(surface, vertical); });
}

DibBlock FilterPicture(const DibBlock& block, const Filter& filter) {
    return OnSurface(block, [&](const Surface& surface) {
        auto result = ApplyKernel(surface, filter.kernel, 0);
        if (filter.kernel.nBias == 0 && !IsOpaque(surface)) return result;
        auto kept = surface;
        return CopyColorKeepAlpha(kept, result) ? kept : Surface();
    });
}

DibBlock AdjustPicture(const DibBlock& block, Surface (*adjust)(const Surface&, int), int value) {
    return OnSurface(block, [&](const Surface& surface) { return adjust(surface, value); });
}

DibBlock ColorizePicture(const DibBlock& block, int hueDegrees, int saturationPercent) {
    return OnSurface(block, [&](const Surface& surface) { return Colorize(surface, hueDegrees, saturationPercent); });
}

DibBlock InvertPicture(const DibBlock& block) {
    return OnSurface(block, Invert);
}

DibBlock ChangeOpacity(const DibBlock& block, int value) {
    return OnSurface(With32(block), [&](const Surface& surface) { return Opacity(surface, value, false); });
}

DibBlock ReducePicture(const DibBlock& block, int colors, PaletteKind palette, bool dither) {
    return ReduceColors(ComposeTo24(Working(block), kWhiteMatte), colors, dither, palette, false);
}

DibBlock ReducePicture(const DibBlock& block, int colors, std::span<const Rgb> palette, bool dither) {
    const int count = std::min(colors, static_cast<int>(std::min<std::size_t>(palette.size(), 256)));
    return MapToPalette(ComposeTo24(Working(block), kWhiteMatte), palette, count, dither);
}

DibBlock MonoPicture(const DibBlock& block, bool dither) {
    const auto opaque = ComposeTo24(Working(block), kWhiteMatte);
    return dither ? DitherMono(opaque) : ThresholdToMono(opaque);
}

DibBlock FlattenPicture(const DibBlock& block, Rgb background) {
    return ComposeTo24(Working(block), ColorRefFromRgb(background));
}

DibBlock WidenPicture(const DibBlock& block) {
    return With32(block);
}

DibBlock KeyPicture(const DibBlock& block, Rgb key) {
    return ConvertTo32(Working(block), true, ColorRefFromRgb(key));
}

DibBlock KeyPicture(const DibBlock& block, Rgb key, int tolerance) {
    auto result = With32(block);
    const auto mask = SplitByColor(ConvertDIBTo24(block), ColorRefFromRgb(key), tolerance).mask;
    const DibRows rows(result);
    if (!mask || !rows) return {};
    for (int y = 0; y < rows.Height(); ++y) {
        for (int x = 0; x < rows.Width(); ++x) {
            if (mask.Row(y)[4 * x] != 0) StoreU32LE(rows.Row(y) + std::ptrdiff_t{4} * x, 0);
        }
    }
    return result;
}

DibBlock ShadowPicture(const DibBlock& block) {
    auto pair = SplitColorAlpha(With32(block), true);
    return DropShadow(pair.color, pair.mask, true) ? Merged(pair.color, pair.mask) : DibBlock();
}

} // namespace pelorin
