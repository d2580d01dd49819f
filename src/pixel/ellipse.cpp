#include "pixel/ellipse.h"

#include <cmath>

namespace pelorin {

RowSpan EllipseRow(const Rect& box, int y) {
    if (box.Empty() || y < box.top || y >= box.bottom) return {};
    const double halfWidth = box.Width() / 2.0, halfHeight = box.Height() / 2.0;
    const double up = (y + 0.5 - (box.top + halfHeight)) / halfHeight;
    const double reach = halfWidth * std::sqrt(std::max(0.0, 1 - up * up));
    const double centre = box.left + halfWidth;
    return {static_cast<int>(std::ceil(centre - reach - 0.5)), static_cast<int>(std::floor(centre + reach - 0.5)) + 1};
}

} // namespace pelorin
