// Filled ellipses, row by row.
#pragma once

#include "base/geometry.h"

namespace pelorin {

/// Columns `from` to `to` (outside) of a row.
struct RowSpan {
    int from = 0, to = 0;
    [[nodiscard]] bool Empty() const { return to <= from; }
};

/// The part of row `y` that lies in the ellipse inscribed in `box` (right and bottom outside): the pixels whose centres
/// are inside it. Empty for rows outside the box.
[[nodiscard]] RowSpan EllipseRow(const Rect& box, int y);

} // namespace pelorin
