#include "pixel/gradient.h"

#include "pixel/ellipse.h"
#include "pixel/pixel_word.h"

#include <cstdlib>
#include <vector>

namespace pelorin {

namespace {

// The colour of every band.
std::vector<Rgb> BandColors(int n, const Gradient& gradient, const GradientColors& colors) {
    std::vector<Rgb> bands;
    for (int i = 0; i < std::max(n, 1); ++i) {
        bands.push_back(colors.At(BandPosition(i, n, gradient.reflected), n, gradient.swapped));
    }
    return bands;
}

void FillRun(Surface& surface, int y, int from, int to, Rgb color) {
    from = std::max(from, 0);
    to = std::min(to, surface.Width());
    auto* p = surface.PictureRow(y) + std::ptrdiff_t{4} * from;
    for (int x = from; x < to; ++x, p += 4) StorePixel(p, color);
}

void PaintSolid(Surface& surface, const Rect& bounds, Rgb color, const Surface* pattern) {
    if (!pattern || !*pattern) {
        surface.Fill(color);
        return;
    }
    const auto wrap = [](int v, int size) { return ((v % size) + size) % size; };
    for (int y = 0; y < surface.Height(); ++y) {
        for (int x = 0; x < surface.Width(); ++x) {
            surface.Put(x, y,
                        pattern->At(wrap(bounds.left + x, pattern->Width()), wrap(bounds.top + y, pattern->Height())) &
                            0xFFFFFFu);
        }
    }
}

// The boxes of the ellipses, from the second band on. The centre is that of the first and last pixel; the two columns
// and rows added at right and bottom let the largest ellipse reach over the box.
std::vector<Rect> RadialBoxes(int width, int height, int n) {
    std::vector<Rect> boxes;
    const Point centre{(width - 1) / 2, (height - 1) / 2};
    for (int i = 0; i + 1 < n; ++i) {
        const int left = n - i;
        const auto scaled = [&](int side) { return static_cast<int>(std::int64_t{left} * side / n); };
        const int w = width <= height ? scaled(width) : 2 * left;
        const int h = width <= height ? 2 * left : scaled(height);
        boxes.push_back({centre.x - w / 2, centre.y - h / 2, centre.x - w / 2 + w + 2, centre.y - h / 2 + h + 2});
    }
    return boxes;
}

// What later bands cover is never painted first: each row is filled from the innermost ellipse outwards.
void PaintRadial(Surface& surface, const std::vector<Rgb>& bands, int n) {
    const auto boxes = RadialBoxes(surface.Width(), surface.Height(), n);
    for (int y = 0; y < surface.Height(); ++y) {
        RowSpan done;
        for (std::size_t i = boxes.size(); i-- > 0;) {
            const auto span = EllipseRow(boxes[i], y);
            if (span.Empty()) continue;
            if (done.Empty()) done = {span.from, span.from};
            FillRun(surface, y, span.from, done.from, bands[i + 1]);
            FillRun(surface, y, done.to, span.to, bands[i + 1]);
            done = {std::min(done.from, span.from), std::max(done.to, span.to)};
        }
        if (done.Empty()) done = {0, 0};
        FillRun(surface, y, 0, done.from, bands[0]);
        FillRun(surface, y, done.to, surface.Width(), bands[0]);
    }
}

int StrokeLength(const Gradient& gradient) {
    const std::int64_t dx = std::int64_t{gradient.end.x} - gradient.start.x;
    const std::int64_t dy = std::int64_t{gradient.end.y} - gradient.start.y;
    return static_cast<int>(std::min<std::int64_t>(std::max(std::abs(dx), std::abs(dy)) + 1, 1 << 20));
}

// A pixel's band is its distance along the stroke; before the start and behind the end the outer bands go on.
void PaintAngle(Surface& surface, const Rect& bounds, const Gradient& gradient, const std::vector<Rgb>& bands) {
    const double dx = static_cast<double>(gradient.end.x) - gradient.start.x;
    const double dy = static_cast<double>(gradient.end.y) - gradient.start.y;
    const double square = dx * dx + dy * dy;
    const double last = static_cast<double>(bands.size() - 1);
    for (int y = 0; y < surface.Height(); ++y) {
        auto* p = surface.PictureRow(y);
        for (int x = 0; x < surface.Width(); ++x, p += 4) {
            const double along = (static_cast<double>(bounds.left) + x - gradient.start.x) * dx +
                                 (static_cast<double>(bounds.top) + y - gradient.start.y) * dy;
            const double band = square > 0 ? along * last / square : 0;
            StorePixel(p, bands[static_cast<std::size_t>(std::clamp(band, 0.0, last))]);
        }
    }
}

int BandCount(const Gradient& gradient, int width, int height) {
    switch (gradient.kind) {
    case GradientKind::Solid: return 1;
    case GradientKind::Vertical: return height;
    case GradientKind::Horizontal: return width;
    case GradientKind::Radial: return std::max(width, height) / 2;
    case GradientKind::Angle: return StrokeLength(gradient);
    }
    return 1;
}

} // namespace

GradientColors GradientColors::OfColors(Rgb first, Rgb second) {
    GradientColors colors;
    colors.m_first = first & 0xFFFFFF;
    colors.m_second = second & 0xFFFFFF;
    return colors;
}

GradientColors GradientColors::OfOpacities(int first, int second) {
    const auto grey = [](int opacity) { return static_cast<Rgb>(std::clamp(opacity, 0, 255)) * 0x010101u; };
    return OfColors(grey(first), grey(second));
}

GradientColors GradientColors::OfPalette(std::span<const Rgb> palette, int first, int second) {
    GradientColors colors;
    colors.m_palette = palette;
    const int last = static_cast<int>(palette.size()) - 1;
    colors.m_firstIndex = std::min(std::max(first, 0), last);
    colors.m_secondIndex = std::min(std::max(second, 0), last);
    return colors;
}

int GradientColors::IndexAt(int p, int n, bool swapped) const {
    if (n <= 1 || m_palette.empty()) return m_firstIndex;
    if (swapped) p = n - 1 - p;
    const auto [low, high] = std::minmax(m_firstIndex, m_secondIndex);
    return low + static_cast<int>((std::int64_t{high - low} * p + (n - 1) / 2) / (n - 1));
}

Rgb GradientColors::At(int p, int n, bool swapped) const {
    if (!m_palette.empty()) return m_palette[static_cast<std::size_t>(IndexAt(p, n, swapped))] & 0xFFFFFF;
    if (n <= 1) return m_first;
    const Rgb a = swapped ? m_second : m_first, b = swapped ? m_first : m_second;
    const auto mix = [&](int from, int to) {
        return static_cast<int>((std::int64_t{from} * (n - 1 - p) + std::int64_t{to} * p) / (n - 1));
    };
    return MakeRgb(mix(RedOf(a), RedOf(b)), mix(GreenOf(a), GreenOf(b)), mix(BlueOf(a), BlueOf(b)));
}

Rgb GradientColors::End(bool second) const {
    if (m_palette.empty()) return second ? m_second : m_first;
    return m_palette[static_cast<std::size_t>(second ? m_secondIndex : m_firstIndex)] & 0xFFFFFF;
}

int BandPosition(int i, int n, bool reflected) {
    if (!reflected) return i;
    const int p = 2 * i;
    return p >= n ? std::max(2 * n - 2 - p, 0) : p;
}

Surface PaintGradient(const Rect& bounds, const Gradient& gradient, const GradientColors& colors,
                      const Surface* pattern) {
    if (bounds.Empty()) return {};
    Surface surface(bounds.Width(), bounds.Height());
    if (!surface) return {};
    const int n = BandCount(gradient, surface.Width(), surface.Height());
    const auto bands = BandColors(n, gradient, colors);
    switch (gradient.kind) {
    case GradientKind::Solid: PaintSolid(surface, bounds, colors.End(gradient.swapped), pattern); break;
    case GradientKind::Vertical:
        for (int y = 0; y < n; ++y) FillRun(surface, y, 0, surface.Width(), bands[static_cast<std::size_t>(y)]);
        break;
    case GradientKind::Horizontal:
        for (int y = 0; y < surface.Height(); ++y) {
            auto* p = surface.PictureRow(y);
            for (const auto color : bands) {
                StorePixel(p, color);
                p += 4;
            }
        }
        break;
    case GradientKind::Radial: PaintRadial(surface, bands, n); break;
    case GradientKind::Angle: PaintAngle(surface, bounds, gradient, bands); break;
    }
    return surface;
}

bool FillShapeWithGradient(Surface& target, const Surface& shape, const Rect& bounds, const Gradient& gradient,
                           const GradientColors& colors, const Surface* pattern) {
    if (!target || target.GetSize() != shape.GetSize()) return false;
    const auto picture = PaintGradient(bounds, gradient, colors, pattern);
    if (!picture) return false;
    const auto inside = bounds.Intersect({0, 0, target.Width(), target.Height()});
    for (int y = inside.top; y < inside.bottom; ++y) {
        const auto left = std::ptrdiff_t{4} * inside.left;
        auto* to = target.PictureRow(y) + left;
        const auto* mask = shape.PictureRow(y) + left;
        const auto* from = picture.PictureRow(y - bounds.top) + std::ptrdiff_t{4} * (inside.left - bounds.left);
        for (int x = inside.left; x < inside.right; ++x, to += 4, mask += 4, from += 4) {
            if (mask[0] != 0) StorePixel(to, (LoadPixel(to) & 0xFF000000u) | LoadPixel(from));
        }
    }
    return true;
}

} // namespace pelorin
