// The stamps of the brush.
#pragma once

#include "base/geometry.h"

#include <span>

namespace pelorin {

class Surface;

/// Number of shapes: 0 fine, 1 to 3 squares, 4 to 7 circles, 8 and 9 oblique lines (left, right), 10 and 11 diamonds.
inline constexpr int kBrushShapes = 12;

/// The pixels of a shape around (0, 0), y downwards, as rectangles with right and bottom outside; some may overlap.
/// Empty for another number.
[[nodiscard]] std::span<const Rect> BrushSpans(int shape);

/// Stamps a shape around (x, y), given in picture coordinates: black with `zoom` 0, otherwise white. With `zoom` above
/// 1 the coordinates are those of a view magnified by it, (x, y) being the corner of a magnified pixel. Stamped pixels
/// get a fourth byte of 0; what falls outside the surface is left out.
void DrawBrushStamp(Surface& surface, int x, int y, int shape, int zoom);

} // namespace pelorin
