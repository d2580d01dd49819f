// Ellipses, arcs and Bezier curves as lines.
#pragma once

#include "formats/metafile/geometry.h"

namespace pelorin::metafile {

/// Points of the arc of the circle in the square from 0 to 1, from angle `start` on over `sweep` (radians, positive
/// against the clock), through `box`.
[[nodiscard]] std::vector<PointF> ArcPoints(const Transform& box, double start, double sweep);
/// The square from 0 to 1 with corners of these radii, through `box`.
[[nodiscard]] std::vector<PointF> RoundedBox(const Transform& box, double radiusX, double radiusY);
/// Appends a Bezier curve without its first point.
void AddBezier(std::vector<PointF>& out, PointF from, PointF control1, PointF control2, PointF to);

[[nodiscard]] std::vector<Point> ToPixels(const std::vector<PointF>& points);

} // namespace pelorin::metafile
