// Points, sizes and rectangles in whole pixels.
#pragma once

#include <algorithm>
#include <cstdint>

namespace pelorin {

struct Point {
    int x = 0, y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    int width = 0, height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

/// `right` and `bottom` are the first column and row outside.
struct Rect {
    int left = 0, top = 0, right = 0, bottom = 0;

    [[nodiscard]] int Width() const { return right - left; }
    [[nodiscard]] int Height() const { return bottom - top; }
    [[nodiscard]] bool Empty() const { return right <= left || bottom <= top; }
    [[nodiscard]] Rect Intersect(const Rect& o) const {
        return {std::max(left, o.left), std::max(top, o.top), std::min(right, o.right), std::min(bottom, o.bottom)};
    }
    friend bool operator==(const Rect&, const Rect&) = default;
};

/// A rectangle of a selection: all four sides belong to it; (-1, -1, -1, -1) is none.
struct InclusiveRect {
    int left = -1, top = -1, right = -1, bottom = -1;

    [[nodiscard]] bool None() const { return left == -1 && top == -1 && right == -1 && bottom == -1; }
    [[nodiscard]] int Width() const { return None() ? 0 : right - left + 1; }
    [[nodiscard]] int Height() const { return None() ? 0 : bottom - top + 1; }
    friend bool operator==(const InclusiveRect&, const InclusiveRect&) = default;
};

/// (a x b) / c rounded to nearest, halves away from 0; -1 when c is 0 or the result does not fit, as the system call of
/// that name does.
[[nodiscard]] constexpr int MulDiv(int a, int b, int c) {
    if (c == 0) return -1;
    const std::int64_t product = std::int64_t{a} * b;
    const std::int64_t magnitude = product < 0 ? -product : product;
    const std::int64_t divisor = c < 0 ? -std::int64_t{c} : c;
    const std::int64_t rounded = (magnitude + divisor / 2) / divisor;
    const std::int64_t result = (product < 0) != (c < 0) ? -rounded : rounded;
    return result > INT32_MAX || result < INT32_MIN ? -1 : static_cast<int>(result);
}

/// The largest rectangle of the picture's proportions inside `target`, centred. The height that goes with the whole
/// width is tried first; all divisions truncate. An empty source gives an empty rectangle at the target's corner.
[[nodiscard]] constexpr Rect FitInside(Size source, const Rect& target) {
    if (source.width <= 0 || source.height <= 0) return {target.left, target.top, target.left, target.top};
    std::int64_t width = target.Width();
    std::int64_t height = width * source.height / source.width;
    if (height > target.Height()) {
        height = target.Height();
        width = height * source.width / source.height;
    }
    const int left = target.left + static_cast<int>((target.Width() - width) / 2);
    const int top = target.top + static_cast<int>((target.Height() - height) / 2);
    return {left, top, left + static_cast<int>(width), top + static_cast<int>(height)};
}

} // namespace pelorin
