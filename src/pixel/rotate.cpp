#include "pixel/rotate.h"

#include "pixel/convolve.h"
#include "pixel/pixel_word.h"
#include "pixel/resample.h"

#include <cmath>
#include <numbers>

namespace pelorin {

namespace {

struct Bounds {
    int minX, minY, maxX, maxY;
};

// Where the corners land, truncated. The far corner stands one column inside, unlike the one above it.
Bounds TurnedBounds(Size size, double c, double s) {
    const Point corners[] = {{0, 0}, {size.width, 0}, {0, size.height}, {size.width - 1, size.height}};
    Bounds bounds{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    for (const auto& p : corners) {
        const int x = static_cast<int>(p.x * c - p.y * s), y = static_cast<int>(p.x * s + p.y * c);
        bounds = {std::min(bounds.minX, x), std::min(bounds.minY, y), std::max(bounds.maxX, x),
                  std::max(bounds.maxY, y)};
    }
    return bounds;
}

// A bitmap of `size` whose pixel (x, y) is the source's pixel `from(x, y)`.
template <class From>
Surface Rearrange(const Surface& source, Size size, From&& from) {
    Surface result(size.width, size.height);
    for (int y = 0; y < result.Height(); ++y) {
        auto* to = result.PictureRow(y);
        for (int x = 0; x < result.Width(); ++x, to += 4) {
            const Point p = from(x, y);
            StorePixel(to, LoadPixel(source.PictureRow(p.y) + std::ptrdiff_t{4} * p.x));
        }
    }
    return result;
}

} // namespace

Surface RotateBitmap(const Surface& bitmap, double angle, Argb background) {
    if (!bitmap || !std::isfinite(angle)) return {};
    const double t = -angle * std::numbers::pi / 180;
    const double c = std::cos(t), s = std::sin(t);
    const int width = bitmap.Width(), height = bitmap.Height();
    const auto bounds = TurnedBounds(bitmap.GetSize(), c, s);
    Surface result(bounds.maxX - bounds.minX, bounds.maxY - bounds.minY);
    for (int row = 0; row < result.Height(); ++row) {
        const int y = bounds.minY + row;
        auto* to = result.PictureRow(row);
        for (int column = 0; column < result.Width(); ++column, to += 4) {
            const int x = bounds.minX + column;
            const int u = static_cast<int>(x * c + y * s - 0.5), v = static_cast<int>(y * c - x * s - 0.5);
            const bool inside = u >= 0 && u < width && v >= 0 && v < height;
            StorePixel(to, inside ? LoadPixel(bitmap.PictureRow(v) + std::ptrdiff_t{4} * u) : background);
        }
    }
    return result;
}

Surface RotateBitmapSmooth(const Surface& bitmap, double angle, Argb background) {
    if (bitmap.Width() > kMaxPixels / 2 || bitmap.Height() > kMaxPixels / 2) return {};
    const auto doubled = ResampleBitmap(bitmap, bitmap.Width() * 2, bitmap.Height() * 2);
    const auto turned = RotateBitmap(doubled, angle, background);
    return ApplyKernel(ResampleBitmap(turned, turned.Width() / 2, turned.Height() / 2), kDetails, 0);
}

Surface Rotate90(const Surface& bitmap) {
    const int width = bitmap.Width();
    return Rearrange(bitmap, {bitmap.Height(), width}, [&](int x, int y) { return Point{width - 1 - y, x}; });
}

Surface Rotate180(const Surface& bitmap) {
    const int width = bitmap.Width(), height = bitmap.Height();
    return Rearrange(bitmap, {width, height}, [&](int x, int y) { return Point{width - 1 - x, height - 1 - y}; });
}

Surface Rotate270(const Surface& bitmap) {
    const int height = bitmap.Height();
    return Rearrange(bitmap, {height, bitmap.Width()}, [&](int x, int y) { return Point{y, height - 1 - x}; });
}

Surface FlipBitmap(const Surface& bitmap, bool vertical) {
    const int width = bitmap.Width(), height = bitmap.Height();
    return Rearrange(bitmap, {width, height}, [&](int x, int y) {
        return vertical ? Point{x, height - 1 - y} : Point{width - 1 - x, y};
    });
}

} // namespace pelorin
