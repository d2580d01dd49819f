#include "formats/metafile/painter.h"

namespace pelorin::metafile {

namespace {

Rgb Mix(Rgb over, Rgb under, unsigned alpha) {
    Rgb mixed = 0;
    for (const unsigned shift : {0u, 8u, 16u}) {
        const auto a = over >> shift & 255, b = under >> shift & 255;
        mixed |= (a * alpha + b * (255 - alpha)) / 255 << shift;
    }
    return mixed;
}

} // namespace

// Calls `pixel(x, y, source colour)` for every pixel of the target that shows one of the source.
template <class Pixel>
void Painter::EachBlitPixel(const BlitArea& area, const Surface& source, Pixel&& pixel) {
    const auto map = ToCanvas();
    const auto o = map.Apply(area.at), u = map.ApplyVector({area.size.x, 0}), v = map.ApplyVector({0, area.size.y});
    // Sides become whole pixels, so that neighbouring areas neither overlap nor leave a gap.
    const auto corner = ToPixel(o), across = ToPixel({o.x + u.x, o.y + u.y}), down = ToPixel({o.x + v.x, o.y + v.y});
    const Transform box{double(across.x - corner.x),
                        double(across.y - corner.y),
                        double(down.x - corner.x),
                        double(down.y - corner.y),
                        double(corner.x),
                        double(corner.y)};
    if (box.Determinant() == 0 || !source || !m_canvas.Spend(source.Span().size() / 64)) return;
    const auto back = box.Inverse();
    const Point opposite{across.x + down.x - corner.x, across.y + down.y - corner.y};
    Rect bounds{std::min({corner.x, across.x, down.x, opposite.x}), std::min({corner.y, across.y, down.y, opposite.y}),
                std::max({corner.x, across.x, down.x, opposite.x}), std::max({corner.y, across.y, down.y, opposite.y})};
    bounds = bounds.Intersect(m_canvas.Bounds());
    for (int y = bounds.top; y < bounds.bottom; ++y) {
        if (!m_canvas.Spend(static_cast<std::uint64_t>(std::max(0, bounds.Width())))) return;
        for (int x = bounds.left; x < bounds.right; ++x) {
            const auto at = back.Apply({x + 0.5, y + 0.5});
            if (at.x < 0 || at.y < 0 || at.x >= 1 || at.y >= 1 || !m_canvas.Visible(x, y)) continue;
            const double column = std::floor(area.from.x + at.x * area.sourceSize.x),
                         row = std::floor(area.from.y + at.y * area.sourceSize.y);
            if (column < 0 || row < 0 || column >= source.Width() || row >= source.Height()) continue;
            pixel(x, y, source.At(static_cast<int>(column), static_cast<int>(row)));
        }
    }
}

void Painter::PatternBlit(PointF at, PointF size, Rop rop) {
    Fill(BoxFigure(at, {at.x + size.x, at.y + size.y}), NeedsSource(rop) ? Ink{Ink::Kind::None} : CurrentBrush(), rop,
         false);
}

void Painter::Blit(const BlitArea& area, const Surface& source, Rop rop) {
    const auto brush = CurrentBrush();
    EachBlitPixel(area, source, [&](int x, int y, std::uint32_t color) {
        Rgb pattern = 0;
        if (rop != kCopySource && !brush.ColorAt(x, y, pattern)) pattern = m_canvas.At(x, y);
        m_canvas.Put(x, y, rop, pattern, color & 0xFFFFFF);
    });
}

void Painter::BlendBlit(const BlitArea& area, const Surface& source, bool pixelAlpha, unsigned alpha) {
    EachBlitPixel(area, source, [&](int x, int y, std::uint32_t color) {
        const unsigned own = pixelAlpha ? color >> 24 : 255;
        // Colours with alpha come premultiplied.
        Rgb straight = 0;
        for (const unsigned shift : {0u, 8u, 16u}) {
            const auto channel = color >> shift & 255;
            straight |= (own == 0 || own == 255 ? channel : std::min(255u, channel * 255 / own)) << shift;
        }
        m_canvas.Put(x, y, kCopyPattern, Mix(straight, m_canvas.At(x, y), own * alpha / 255));
    });
}

void Painter::TransparentBlit(const BlitArea& area, const Surface& source, Rgb transparent) {
    EachBlitPixel(area, source, [&](int x, int y, std::uint32_t color) {
        if ((color & 0xFFFFFF) != transparent) m_canvas.Put(x, y, kCopyPattern, color & 0xFFFFFF);
    });
}

} // namespace pelorin::metafile
