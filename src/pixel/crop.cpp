#include "pixel/crop.h"

#include "pixel/pixel_word.h"

namespace pelorin {

namespace {

// The part of a picture that lands on a canvas, in the canvas's columns and rows. The sums are made in 64 bits, since a
// position may be anything.
Rect Landing(Size canvas, Size part, int x, int y) {
    const auto clamp = [](std::int64_t v, int limit) {
        return static_cast<int>(std::clamp<std::int64_t>(v, 0, limit));
    };
    return {clamp(x, canvas.width), clamp(y, canvas.height), clamp(std::int64_t{x} + part.width, canvas.width),
            clamp(std::int64_t{y} + part.height, canvas.height)};
}

// Copies four-byte pixels between anything that has picture rows.
template <class Target, class Source>
void CopyPart(Target& target, const Source& source, Size part, int x, int y) {
    const auto landing = Landing(target.GetSize(), part, x, y);
    if (landing.Empty()) return;
    const auto bytes = static_cast<std::size_t>(landing.Width()) * 4;
    for (int row = landing.top; row < landing.bottom; ++row) {
        std::memcpy(target.PictureRow(row) + std::ptrdiff_t{4} * landing.left,
                    source.PictureRow(row - y) + std::ptrdiff_t{4} * (landing.left - x), bytes);
    }
}

void FillRows(const DibRows& rows, Argb fill) {
    if (fill == 0) return;
    for (int y = 0; y < rows.Height(); ++y) {
        auto* to = rows.Row(y);
        for (int x = 0; x < rows.Width(); ++x) StorePixel(to + std::ptrdiff_t{4} * x, fill);
    }
}

} // namespace

DibBlock CropDIB(const DibBlock& block, int left, int top, int right, int bottom) {
    const DibView source(block);
    if (!source || (source.BitCount() != 8 && source.BitCount() != 24 && source.BitCount() != 32)) return {};
    left = std::max(left, 0);
    top = std::max(top, 0);
    right = std::min(right, source.Width() - 1);
    bottom = std::min(bottom, source.Height() - 1);
    if (left > right || top > bottom) return {};

    const int width = right - left + 1, height = bottom - top + 1;
    auto result = CreateDIB(width, height, source.BitCount());
    if (!result) return {};
    if (source.BitCount() == 8) SetDIBTable(result, source.Table());
    const DibRows rows(result);
    const auto pixelBytes = static_cast<std::size_t>(source.BitCount() / 8);
    for (int y = 0; y < height; ++y) {
        std::memcpy(rows.PictureRow(y), source.PictureRow(top + y) + pixelBytes * static_cast<std::size_t>(left),
                    pixelBytes * static_cast<std::size_t>(width));
    }
    return result;
}

DibBlock CenterOnSquare(const DibBlock& block32) {
    const DibView source(block32);
    const int width = source.Width(), height = source.Height();
    const int side = std::max(width, height);
    const Point at{(side - width) >> 1, (side - height) >> 1};
    return PlaceOnCanvas(block32, side, side, {at.x, at.y, at.x + width, at.y + height}, 0);
}

DibBlock PlaceOnCanvas(const DibBlock& block32, int width, int height, const Rect& place, Argb fill) {
    const DibView source(block32);
    if (!source || source.BitCount() != 32) return {};
    auto result = CreateDIB(width, height, 32);
    if (!result) return {};
    const DibRows rows(result);
    FillRows(rows, fill);
    const auto cut = [](std::int64_t from, std::int64_t to, int limit) {
        return static_cast<int>(std::clamp<std::int64_t>(to - from, 0, limit));
    };
    CopyPart(rows, source,
             {cut(place.left, place.right, source.Width()), cut(place.top, place.bottom, source.Height())}, place.left,
             place.top);
    return result;
}

DibBlock MultiplyAlpha(const DibBlock& block32, const DibBlock& mask32) {
    const DibView source(block32), mask(mask32);
    if (!source || source.BitCount() != 32 || mask.BitCount() != 32 || source.GetSize() != mask.GetSize()) return {};
    auto result = CreateDIB(source.Width(), source.Height(), 32);
    const DibRows rows(result);
    for (int y = 0; y < rows.Height(); ++y) {
        const auto *from = source.Row(y), *factor = mask.Row(y);
        auto* to = rows.Row(y);
        for (int x = 0; x < rows.Width(); ++x, from += 4, factor += 4, to += 4) {
            const Argb alpha = static_cast<Argb>(from[3]) * factor[0] >> 8;
            StorePixel(to, (LoadPixel(from) & 0x00FFFFFFu) | alpha << 24);
        }
    }
    return result;
}

Surface CopyRectOfBitmap(const Surface& bitmap, const Rect& part) {
    const std::int64_t width = std::int64_t{part.right} - part.left, height = std::int64_t{part.bottom} - part.top;
    if (!bitmap || width <= 0 || height <= 0 || width > kMaxPixels || height > kMaxPixels) return {};
    Surface result(static_cast<int>(width), static_cast<int>(height));
    if (!result || part.left == INT32_MIN || part.top == INT32_MIN) return result;
    CopyPart(result, bitmap, bitmap.GetSize(), -part.left, -part.top);
    return result;
}

void PutBitmapAt(Surface& target, const Surface& source, int x, int y) {
    CopyPart(target, source, source.GetSize(), x, y);
}

} // namespace pelorin
