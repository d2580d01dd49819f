// Points and transforms of the metafile player; rows grow downwards.
#pragma once

#include "base/geometry.h"

#include <cmath>
#include <vector>

namespace pelorin::metafile {

struct PointF {
    double x = 0, y = 0;
};

/// x' = a x + c y + e, y' = b x + d y + f.
struct Transform {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    [[nodiscard]] PointF Apply(PointF p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    /// Without the shift: for sizes and directions.
    [[nodiscard]] PointF ApplyVector(PointF p) const { return {a * p.x + c * p.y, b * p.x + d * p.y}; }
    /// This one first, then `next`.
    [[nodiscard]] Transform Then(const Transform& next) const {
        const auto x = next.ApplyVector({a, b}), y = next.ApplyVector({c, d});
        const auto o = next.Apply({e, f});
        return {x.x, x.y, y.x, y.y, o.x, o.y};
    }
    [[nodiscard]] double Determinant() const { return a * d - b * c; }
    /// Only where the determinant is not 0.
    [[nodiscard]] Transform Inverse() const {
        const double k = 1 / Determinant();
        const Transform t{d * k, -b * k, -c * k, a * k, 0, 0};
        const auto o = t.ApplyVector({e, f});
        return {t.a, t.b, t.c, t.d, -o.x, -o.y};
    }
    /// How much lengths grow, over all directions.
    [[nodiscard]] double Scale() const { return std::sqrt(std::abs(Determinant())); }
};

/// The nearest whole number in a range that sums and products of the rasteriser stay exact in; what is no number is 0.
[[nodiscard]] inline int ToPixel(double v) {
    constexpr double kFar = 1 << 27;
    if (!(v == v)) return 0;
    return static_cast<int>(std::floor(std::clamp(v, -kFar, kFar) + 0.5));
}
[[nodiscard]] inline Point ToPixel(PointF p) {
    return {ToPixel(p.x), ToPixel(p.y)};
}

/// One line or outline in pixels.
struct Figure {
    std::vector<Point> points;
    bool closed = false;
};
using Figures = std::vector<Figure>;

} // namespace pelorin::metafile
