// The region of a flood fill.
#pragma once

#include "pixel/color.h"
#include "pixel/dib.h"

#include <functional>
#include <memory>
#include <vector>

namespace pelorin {

/// Finds the region that fill.h tells of, row by row with a stack of its own. The picture's rows are looked at when the
/// region first comes to them, before they are painted.
class FloodRegion {
public:
    /// Paints columns `from` to `to` (outside) of picture row `y`; each pixel of the region is painted once.
    using Paint = std::function<void(int y, int from, int to)>;

    FloodRegion(const DibView& picture32, Rgb newColor, Rgb oldColor, int tolerance);
    void Run(int x, int y, const Paint& paint);

private:
    std::uint8_t* Row(int y);
    [[nodiscard]] bool IsNearNew(int x, int y) const;
    void LookAlong(int y, int from, int to, int step);
    void PassThrough(int x, int y, int step);

    DibView m_picture;
    Rgb m_newColor, m_oldColor;
    int m_tolerance;
    std::vector<std::uint8_t> m_known;       // rows that m_marks holds
    std::unique_ptr<std::uint8_t[]> m_marks; // one a pixel
    std::vector<Point> m_stack;
};

} // namespace pelorin
