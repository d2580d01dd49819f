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

// Sides become whole pixels, so that neighbouring areas neither overlap nor leave a gap.
Transform WholeBox(PointF corner, PointF across, PointF down) {
    const auto o = ToPixel(corner), u = ToPixel(across), v = ToPixel(down);
    return {double(u.x - o.x), double(u.y - o.y), double(v.x - o.x), double(v.y - o.y), double(o.x), double(o.y)};
}

bool IsChosen(const BlitMask& mask, Point place, PointF from) {
    if (!mask.bits) return true;
    const double x = std::floor(place.x - from.x + mask.from.x), y = std::floor(place.y - from.y + mask.from.y);
    if (x < 0 || y < 0 || x >= mask.bits.Width() || y >= mask.bits.Height()) return false;
    return (mask.bits.At(static_cast<int>(x), static_cast<int>(y)) & 0xFFFFFF) != 0;
}

// The part of a source that an area shows, as small as the box wants it; empty where nothing is to be put together.
struct ShrunkPart {
    Surface picture;
    PointF from, size; // the area's in it
};

ShrunkPart ShrinkToBox(const BlitArea& area, const Transform& box, const Surface& source, Shrinking how) {
    const PointF to{area.from.x + area.sourceSize.x, area.from.y + area.sourceSize.y};
    const Rect part = Rect{ToPixel(std::min(area.from.x, to.x)), ToPixel(std::min(area.from.y, to.y)),
                           ToPixel(std::max(area.from.x, to.x)), ToPixel(std::max(area.from.y, to.y))}
                          .Intersect({0, 0, source.Width(), source.Height()});
    const double scaleX = std::min(1.0, std::hypot(box.a, box.b) / std::abs(area.sourceSize.x)),
                 scaleY = std::min(1.0, std::hypot(box.c, box.d) / std::abs(area.sourceSize.y));
    if (part.Empty() || !(scaleX * scaleY < 1)) return {};
    const Size size{std::max(1, ToPixel(part.Width() * scaleX)), std::max(1, ToPixel(part.Height() * scaleY))};
    const double x = double(size.width) / part.Width(), y = double(size.height) / part.Height();
    return {Shrunk(source, part, size, how),
            {(area.from.x - part.left) * x, (area.from.y - part.top) * y},
            {area.sourceSize.x * x, area.sourceSize.y * y}};
}

} // namespace

// Calls `pixel(x, y, source colour, source place)` for every pixel of the target that shows one of the source.
template <class Pixel>
void Painter::EachBoxPixel(const Transform& box, PointF from, PointF sourceSize, const Surface& source, Pixel&& pixel) {
    const auto bounds = m_canvas.Reach({ToPixel(box.Apply({0, 0})), ToPixel(box.Apply({1, 0})),
                                        ToPixel(box.Apply({0, 1})), ToPixel(box.Apply({1, 1}))});
    if (box.Determinant() == 0 || !source || !m_canvas.Spend(source.Span().size() / 64)) return;
    const auto back = box.Inverse();
    for (int y = bounds.top; y < bounds.bottom; ++y) {
        if (!m_canvas.Spend(static_cast<std::uint64_t>(std::max(0, bounds.Width())))) return;
        for (int x = bounds.left; x < bounds.right; ++x) {
            const auto at = back.Apply({x + 0.5, y + 0.5});
            if (at.x < 0 || at.y < 0 || at.x >= 1 || at.y >= 1 || !m_canvas.Visible(x, y)) continue;
            const double column = std::floor(from.x + at.x * sourceSize.x),
                         row = std::floor(from.y + at.y * sourceSize.y);
            if (column < 0 || row < 0 || column >= source.Width() || row >= source.Height()) continue;
            const Point place{static_cast<int>(column), static_cast<int>(row)};
            pixel(x, y, source.At(place.x, place.y), place);
        }
    }
}

Transform Painter::AreaBox(const BlitArea& area) const {
    const auto map = ToCanvas();
    const auto o = map.Apply(area.at);
    const auto u = map.ApplyVector({area.size.x, 0}), v = map.ApplyVector({0, area.size.y});
    return WholeBox(o, {o.x + u.x, o.y + u.y}, {o.x + v.x, o.y + v.y});
}

template <class Pixel>
void Painter::EachBlitPixel(const BlitArea& area, const Surface& source, Pixel&& pixel) {
    EachBoxPixel(AreaBox(area), area.from, area.sourceSize, source, pixel);
}

void Painter::PatternBlit(PointF at, PointF size, Rop rop) {
    Fill(BoxFigure(at, {at.x + size.x, at.y + size.y}), NeedsSource(rop) ? Ink{Ink::Kind::None} : Dressed(m_now.brush),
         rop, false);
}

void Painter::Blit(const BlitArea& area, const Surface& source, Rop rop) {
    MaskedBlit(area, source, {}, rop, rop);
}

void Painter::BlendBlit(const BlitArea& area, const Surface& source, bool pixelAlpha, unsigned alpha) {
    EachBlitPixel(area, source, [&](int x, int y, std::uint32_t color, Point) {
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
    EachBlitPixel(area, source, [&](int x, int y, std::uint32_t color, Point) {
        if ((color & 0xFFFFFF) != transparent) m_canvas.Put(x, y, kCopyPattern, color & 0xFFFFFF);
    });
}

void Painter::MaskedBlit(const BlitArea& area, const Surface& source, const BlitMask& mask, Rop chosen, Rop others) {
    const auto brush = Dressed(m_now.brush);
    const auto paint = [&](int x, int y, std::uint32_t color, Point place) {
        const auto rop = IsChosen(mask, place, area.from) ? chosen : others;
        Rgb pattern = 0;
        if (rop != kCopySource && !brush.ColorAt(x, y, pattern)) pattern = m_canvas.At(x, y);
        m_canvas.Put(x, y, rop, pattern, color & 0xFFFFFF);
    };
    const auto box = AreaBox(area);
    if (!mask.bits && NeedsSource(chosen) && m_canvas.Spend(source.Span().size() / 32)) {
        const auto small = ShrinkToBox(area, box, source, m_now.shrinking);
        if (small.picture) return EachBoxPixel(box, small.from, small.size, small.picture, paint);
    }
    EachBoxPixel(box, area.from, area.sourceSize, source, paint);
}

void Painter::SlantedBlit(const std::array<PointF, 3>& corners, PointF from, PointF sourceSize, const Surface& source,
                          const BlitMask& mask) {
    const auto map = ToCanvas();
    EachBoxPixel(WholeBox(map.Apply(corners[0]), map.Apply(corners[1]), map.Apply(corners[2])), from, sourceSize,
                 source, [&](int x, int y, std::uint32_t color, Point place) {
                     if (IsChosen(mask, place, from)) m_canvas.Put(x, y, kCopySource, 0, color & 0xFFFFFF);
                 });
}

// Fills with colours of their own for every pixel; `color(x, y)` gives red, green and blue.
template <class Color>
void Painter::Shade(const Figures& figures, Color&& color) {
    ScanFigures(m_canvas, figures, true, [&](int y, int left, int right) {
        if (!m_canvas.Spend(static_cast<std::uint64_t>(right - left))) return;
        for (int x = left; x < right; ++x) {
            Rgb mixed = 0;
            for (const double channel : color(x, y))
                mixed = mixed << 8 | static_cast<Rgb>(std::clamp(channel, 0.0, 255.0));
            m_canvas.Put(x, y, kCopyPattern, mixed);
        }
    });
}

void Painter::ShadeBox(const ShadedCorner& a, const ShadedCorner& b, bool downwards) {
    const auto box = AreaBox({a.at, {b.at.x - a.at.x, b.at.y - a.at.y}, {}, {}});
    if (box.Determinant() == 0) return;
    const auto back = box.Inverse();
    Shade(BoxFigure(a.at, b.at), [&](int x, int y) {
        const auto at = back.Apply({double(x), double(y)});
        const double t = std::clamp(downwards ? at.y : at.x, 0.0, 1.0);
        auto mixed = a.channels;
        for (std::size_t i = 0; i < 3; ++i) mixed[i] += (b.channels[i] - a.channels[i]) * t;
        return mixed;
    });
}

void Painter::ShadeTriangle(const ShadedCorner& a, const ShadedCorner& b, const ShadedCorner& c) {
    const auto corners = Mapped({a.at, b.at, c.at});
    const auto o = ToPixel(corners[0]), u = ToPixel(corners[1]), v = ToPixel(corners[2]);
    const auto sides = WholeBox(corners[0], corners[1], corners[2]);
    if (sides.Determinant() == 0) return;
    const auto back = sides.Inverse();
    Shade({{{o, u, v}, true}}, [&](int x, int y) {
        const auto at = back.Apply({double(x), double(y)});
        auto mixed = a.channels;
        for (std::size_t i = 0; i < 3; ++i)
            mixed[i] += (b.channels[i] - a.channels[i]) * at.x + (c.channels[i] - a.channels[i]) * at.y;
        return mixed;
    });
}

} // namespace pelorin::metafile
