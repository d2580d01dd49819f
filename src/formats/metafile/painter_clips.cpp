#include "formats/metafile/painter.h"

namespace pelorin::metafile {

void Painter::SetClip(Clip clip) {
    m_now.clip = std::move(clip);
    m_canvas.SetClip(m_now.clip);
}

void Painter::ClearClip() {
    SetClip(m_now.outerClip);
}

template <class Change>
void Painter::EachMaskSpan(ClipMask& mask, const Figures& figures, bool winding, Change&& change) {
    constexpr int kPixelsOfAStep = 4;
    const auto width = static_cast<std::size_t>(m_canvas.Width());
    ScanFigures(m_canvas, figures, winding, [&](int y, int left, int right) {
        if (!m_canvas.Spend(static_cast<std::uint64_t>(right - left) / kPixelsOfAStep)) return;
        const auto start = static_cast<std::size_t>(y) * width + static_cast<std::size_t>(left);
        change(start, std::span(mask.inside).subspan(start, static_cast<std::size_t>(right - left)));
    });
}

std::shared_ptr<ClipMask> Painter::MaskOf(const Figures& figures, bool winding) {
    auto mask = m_canvas.NewMask(0);
    if (mask)
        EachMaskSpan(*mask, figures, winding,
                     [](std::size_t, std::span<std::uint8_t> span) { std::ranges::fill(span, std::uint8_t{1}); });
    return mask;
}

void Painter::ChangeClip(const Figures& figures, Combination how, bool winding) {
    const auto old = m_now.clip;
    const bool fresh = how == Combination::And || how == Combination::Copy;
    auto result = fresh ? m_canvas.NewMask(0) : m_canvas.CopyMask(old);
    if (!result) return;
    // A clip is not drawn.
    const auto reached = m_canvas.Reached();
    EachMaskSpan(*result, figures, winding, [&](std::size_t start, std::span<std::uint8_t> span) {
        switch (how) {
        case Combination::And:
            if (old) {
                std::copy_n(&old->inside[start], span.size(), span.begin());
                break;
            }
            [[fallthrough]];
        case Combination::Copy:
        case Combination::Or: std::ranges::fill(span, std::uint8_t{1}); break;
        case Combination::Xor:
            for (auto& pixel : span) pixel ^= 1;
            break;
        case Combination::Diff: std::ranges::fill(span, std::uint8_t{0}); break;
        }
    });
    m_canvas.SetReached(reached);
    const auto* outer = m_now.outerClip.get();
    for (std::size_t i = 0; outer && i < result->inside.size(); ++i) result->inside[i] &= outer->inside[i];
    SetClip(std::move(result));
}

void Painter::OffsetClip(PointF by) {
    if (!m_now.clip) return;
    const auto shift = ToPixel(ToCanvas().ApplyVector(by));
    auto moved = m_canvas.NewMask(0);
    if (!moved || !m_canvas.Spend(moved->inside.size())) return;
    const int width = m_canvas.Width(), height = m_canvas.Height();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int fromX = x - shift.x, fromY = y - shift.y;
            const bool there = fromX >= 0 && fromY >= 0 && fromX < width && fromY < height;
            moved->inside[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)] =
                there ? m_now.clip->inside[static_cast<std::size_t>(fromY) * static_cast<std::size_t>(width) +
                                           static_cast<std::size_t>(fromX)]
                      : std::uint8_t{0};
        }
    }
    SetClip(std::move(moved));
}

void Painter::ClipToDevice(const std::vector<Rect>& parts, Combination how) {
    Figures figures;
    for (const auto& part : parts) {
        Figure box;
        for (const auto& corner :
             {PointF{double(part.left), double(part.top)}, PointF{double(part.right), double(part.top)},
              PointF{double(part.right), double(part.bottom)}, PointF{double(part.left), double(part.bottom)}}) {
            box.points.push_back(ToPixel(m_device.toCanvas.Apply(corner)));
        }
        figures.push_back(std::move(box));
    }
    ChangeClip(figures, how, true);
}

Figures Painter::RegionFigures(const RegionObject& region) const {
    // Records of a few bytes may name one large region over and over.
    constexpr std::size_t kWorkOfPart = 32;
    Figures figures;
    if (!m_canvas.Spend(region.parts.size() * kWorkOfPart)) return figures;
    for (const auto& part : region.parts) {
        const auto box = BoxFigure({double(part.left), double(part.top)}, {double(part.right), double(part.bottom)});
        figures.insert(figures.end(), box.begin(), box.end());
    }
    return figures;
}

void Painter::ClipToRegion(const RegionObject& region) {
    ChangeClip(RegionFigures(region), Combination::Copy, true);
}

void Painter::FillRegion(const RegionObject& region, const Ink& ink, Rop rop) {
    Fill(RegionFigures(region), Dressed(ink), rop, true);
}

void Painter::FrameRegion(const RegionObject& region, const Ink& ink, PointF thickness) {
    const auto figures = RegionFigures(region);
    auto frame = MaskOf(figures, true);
    const auto map = ToCanvas();
    const auto across = map.ApplyVector({thickness.x, 0}), down = map.ApplyVector({0, thickness.y});
    const int wide = std::max(1, ToPixel(std::hypot(across.x, across.y))),
              high = std::max(1, ToPixel(std::hypot(down.x, down.y)));
    // A pixel is not of the frame when the region is there on all four sides.
    auto inner = frame;
    for (const auto& shift : {Point{wide, 0}, Point{-wide, 0}, Point{0, high}, Point{0, -high}}) {
        auto moved = figures;
        for (auto& figure : moved) {
            for (auto& point : figure.points) point = {point.x + shift.x, point.y + shift.y};
        }
        const auto mask = MaskOf(moved, true);
        if (!mask || !inner || !m_canvas.Spend(mask->inside.size())) return;
        auto both = std::make_shared<ClipMask>(*inner);
        for (std::size_t i = 0; i < both->inside.size(); ++i) both->inside[i] &= mask->inside[i];
        inner = both;
    }
    const auto dressed = Dressed(ink);
    for (std::size_t i = 0; i < frame->inside.size(); ++i) {
        if (!frame->inside[i] || inner->inside[i]) continue;
        const int x = static_cast<int>(i % static_cast<std::size_t>(m_canvas.Width())),
                  y = static_cast<int>(i / static_cast<std::size_t>(m_canvas.Width()));
        Rgb color = 0;
        if (dressed.ColorAt(x, y, color)) m_canvas.Put(x, y, m_now.rop, color);
    }
}

void Painter::FloodFill(PointF at, Rgb color, bool upToColor) {
    const auto start = ToPixel(ToCanvas().Apply(at));
    const auto fits = [&](int x, int y) { return m_canvas.Visible(x, y) && (m_canvas.At(x, y) == color) != upToColor; };
    if (!fits(start.x, start.y)) return;
    // What was seen is kept apart from the colours, which a hatched brush may leave as they are.
    const auto mask = MaskOf({}, true);
    if (!mask || !m_canvas.Spend(4 * mask->inside.size())) return;
    const auto ink = Dressed(m_now.brush);
    std::vector<Point> open;
    const auto see = [&](int x, int y) {
        if (!fits(x, y)) return;
        auto& seen = mask->inside[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_canvas.Width()) +
                                  static_cast<std::size_t>(x)];
        if (!seen) open.push_back({x, y});
        seen = 1;
    };
    see(start.x, start.y);
    std::vector<Point> area;
    while (!open.empty()) {
        const auto p = open.back();
        open.pop_back();
        area.push_back(p);
        for (const auto& step : {Point{1, 0}, Point{-1, 0}, Point{0, 1}, Point{0, -1}}) see(p.x + step.x, p.y + step.y);
    }
    for (const auto& p : area) {
        Rgb filled = 0;
        if (ink.ColorAt(p.x, p.y, filled)) m_canvas.Put(p.x, p.y, kCopyPattern, filled);
    }
}

} // namespace pelorin::metafile
