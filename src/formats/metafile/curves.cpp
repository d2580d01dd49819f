#include "formats/metafile/curves.h"

#include <numbers>

namespace pelorin::metafile {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr int kMaxSteps = 400;

int StepsFor(double length) {
    if (!(length == length)) return 1;
    return std::clamp(static_cast<int>(std::min(length, 1e6) / 3) + 8, 8, kMaxSteps);
}

} // namespace

std::vector<PointF> ArcPoints(const Transform& box, double start, double sweep) {
    const auto u = box.ApplyVector({1, 0}), v = box.ApplyVector({0, 1});
    const int steps = StepsFor((std::hypot(u.x, u.y) + std::hypot(v.x, v.y)) / 2 * std::abs(sweep));
    std::vector<PointF> points;
    for (int i = 0; i <= steps; ++i) {
        const double angle = start + sweep * i / steps;
        points.push_back(box.Apply({0.5 + 0.5 * std::cos(angle), 0.5 - 0.5 * std::sin(angle)}));
    }
    return points;
}

std::vector<PointF> RoundedBox(const Transform& box, double radiusX, double radiusY) {
    radiusX = std::clamp(radiusX, 0.0, 0.5);
    radiusY = std::clamp(radiusY, 0.0, 0.5);
    std::vector<PointF> points;
    const PointF corners[] = {
        {1 - radiusX, radiusY}, {radiusX, radiusY}, {radiusX, 1 - radiusY}, {1 - radiusX, 1 - radiusY}};
    for (int i = 0; i < 4; ++i) {
        // The corner's own square, so that its quarter is part of a whole circle.
        const Transform corner{2 * radiusX, 0, 0, 2 * radiusY, corners[i].x - radiusX, corners[i].y - radiusY};
        const auto quarter = ArcPoints(corner.Then(box), i * kPi / 2, kPi / 2);
        points.insert(points.end(), quarter.begin(), quarter.end());
    }
    return points;
}

void AddBezier(std::vector<PointF>& out, PointF from, PointF control1, PointF control2, PointF to) {
    const auto length = [](PointF a, PointF b) { return std::hypot(b.x - a.x, b.y - a.y); };
    const int steps = StepsFor(length(from, control1) + length(control1, control2) + length(control2, to));
    for (int i = 1; i <= steps; ++i) {
        const double t = static_cast<double>(i) / steps, s = 1 - t;
        const double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
        out.push_back({a * from.x + b * control1.x + c * control2.x + d * to.x,
                       a * from.y + b * control1.y + c * control2.y + d * to.y});
    }
}

std::vector<Point> ToPixels(const std::vector<PointF>& points) {
    std::vector<Point> pixels;
    for (const auto& point : points) {
        const auto pixel = ToPixel(point);
        if (pixels.empty() || !(pixels.back() == pixel)) pixels.push_back(pixel);
    }
    return pixels;
}

} // namespace pelorin::metafile
