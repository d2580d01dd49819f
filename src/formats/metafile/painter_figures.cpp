#include "formats/metafile/curves.h"
#include "formats/metafile/painter.h"

#include <numbers>

namespace pelorin::metafile {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kThinnestWide = 1.5;

// Stock patterns of dashed pens: of thin lines in pixels, of wide ones in line widths.
const std::vector<int> kThinDashes[] = {{}, {18, 6}, {3, 3}, {9, 6, 3, 6}, {9, 3, 3, 3, 3, 3}};
const std::vector<double> kWideDashes[] = {{}, {3, 1}, {1, 1}, {3, 1, 1, 1}, {3, 1, 1, 1, 1, 1}};
constexpr int kStockDashes = 4;

constexpr std::size_t kLongestPiece = 256, kWorkOfPart = 64, kWorkOfPoint = 4;

// A long line in pieces, so that its outline does not take more memory than the picture. A piece begins with the last
// segment of the one before it, so that no join is lost.
std::vector<Figure> Pieces(const Figure& figure, bool mayCut) {
    if (figure.points.size() <= 2 * kLongestPiece || !mayCut) return {figure};
    auto points = figure.points;
    if (figure.closed) points.insert(points.end(), figure.points.begin(), figure.points.begin() + 2);
    std::vector<Figure> pieces;
    for (std::size_t at = 0; at + 2 < points.size(); at += kLongestPiece) {
        const auto end = std::min(points.size(), at + kLongestPiece + 2);
        pieces.push_back(
            {{points.begin() + static_cast<std::ptrdiff_t>(at), points.begin() + static_cast<std::ptrdiff_t>(end)},
             false});
    }
    return pieces;
}

Figure FigureOf(const std::vector<PointF>& points, bool closed) {
    return {ToPixels(points), closed};
}

} // namespace

Transform Painter::Box(PointF a, PointF b) const {
    const auto map = ToCanvas();
    if (map.b != 0 || map.c != 0) {
        const auto o = map.Apply(a), u = map.ApplyVector({b.x - a.x, 0}), v = map.ApplyVector({0, b.y - a.y});
        return {u.x, u.y, v.x, v.y, o.x, o.y};
    }
    const auto p = ToPixel(map.Apply(a)), q = ToPixel(map.Apply(b));
    const int left = std::min(p.x, q.x), top = std::min(p.y, q.y);
    int right = std::max(p.x, q.x), bottom = std::max(p.y, q.y);
    // The right column and the lower row do not belong to the box.
    if (!m_now.advanced) {
        right = std::max(left, right - 1);
        bottom = std::max(top, bottom - 1);
    }
    return {double(right - left), 0, 0, double(bottom - top), double(left), double(top)};
}

Figures Painter::BoxFigure(PointF a, PointF b) const {
    return {FigureOf(Mapped({a, {b.x, a.y}, b, {a.x, b.y}}), true)};
}

void Painter::Extend(const std::vector<PointF>& canvasPoints) {
    if (!m_canvas.Spend(canvasPoints.size() * kWorkOfPoint)) return;
    if (m_path.empty() || m_path.back().closed) m_path.push_back({{ToPixel(ToCanvas().Apply(m_now.position))}, false});
    const auto points = ToPixels(canvasPoints);
    m_path.back().points.insert(m_path.back().points.end(), points.begin(), points.end());
}

void Painter::MoveTo(PointF to) {
    m_now.position = to;
    if (m_pathOpen) m_path.push_back({{ToPixel(ToCanvas().Apply(to))}, false});
}

void Painter::LineTo(PointF to) {
    PolyLineTo({to});
}

void Painter::PolyLine(const std::vector<PointF>& points) {
    if (points.size() > 1) Paint({FigureOf(Mapped(points), false)}, false, true);
}

void Painter::PolyLineTo(const std::vector<PointF>& points) {
    if (points.empty()) return;
    if (m_pathOpen) {
        Extend(Mapped(points));
    } else {
        auto all = points;
        all.insert(all.begin(), m_now.position);
        PolyLine(all);
    }
    m_now.position = points.back();
}

void Painter::PolyBezier(const std::vector<PointF>& points, bool fromPosition) {
    auto all = points;
    if (fromPosition) all.insert(all.begin(), m_now.position);
    if (all.size() < 4) return;
    const auto mapped = Mapped(all);
    std::vector<PointF> line{mapped[0]};
    std::size_t at = 0;
    for (; at + 3 < mapped.size(); at += 3) AddBezier(line, mapped[at], mapped[at + 1], mapped[at + 2], mapped[at + 3]);
    if (m_pathOpen && fromPosition) {
        Extend(line);
    } else {
        Paint({FigureOf(line, false)}, false, true);
    }
    if (fromPosition) m_now.position = all[at];
}

void Painter::Polygons(const std::vector<std::vector<PointF>>& polygons) {
    Figures figures;
    for (const auto& polygon : polygons) {
        if (polygon.size() > 1) figures.push_back(FigureOf(Mapped(polygon), true));
    }
    Paint(std::move(figures), true, true);
}

void Painter::PolyLines(const std::vector<std::vector<PointF>>& lines) {
    for (const auto& line : lines) PolyLine(line);
}

void Painter::Rectangle(PointF a, PointF b) {
    const auto box = Box(a, b);
    Paint({FigureOf({box.Apply({0, 0}), box.Apply({1, 0}), box.Apply({1, 1}), box.Apply({0, 1})}, true)}, true, true);
}

void Painter::RoundRect(PointF a, PointF b, PointF corner) {
    const double width = std::abs(b.x - a.x), height = std::abs(b.y - a.y);
    if (width == 0 || height == 0) return;
    Paint({FigureOf(RoundedBox(Box(a, b), std::abs(corner.x) / 2 / width, std::abs(corner.y) / 2 / height), true)},
          true, true);
}

void Painter::Ellipse(PointF a, PointF b) {
    Paint({FigureOf(ArcPoints(Box(a, b), 0, 2 * kPi), true)}, true, true);
}

void Painter::Arc(ArcKind kind, PointF a, PointF b, PointF start, PointF end) {
    const auto box = Box(a, b);
    if (box.Determinant() == 0) return;
    const auto back = box.Inverse();
    const auto map = ToCanvas();
    const auto angle = [&](PointF p) {
        const auto u = back.Apply(map.Apply(p));
        return std::atan2(0.5 - u.y, u.x - 0.5);
    };
    const double from = angle(start);
    double sweep = angle(end) - from;
    // The same direction twice goes all the way round.
    if (std::abs(sweep) < 1e-9) sweep = 0;
    if (m_now.clockwise) {
        if (sweep >= 0) sweep -= 2 * kPi;
    } else if (sweep <= 0) {
        sweep += 2 * kPi;
    }
    auto points = ArcPoints(box, from, sweep);
    switch (kind) {
    case ArcKind::Arc: Paint({FigureOf(points, false)}, false, true); break;
    case ArcKind::Chord: Paint({FigureOf(points, true)}, true, true); break;
    case ArcKind::Pie:
        points.push_back(box.Apply({0.5, 0.5}));
        Paint({FigureOf(points, true)}, true, true);
        break;
    case ArcKind::ArcTo:
        points.insert(points.begin(), map.Apply(m_now.position));
        if (m_pathOpen) {
            Extend(points);
        } else {
            Paint({FigureOf(points, false)}, false, true);
        }
        if (map.Determinant() != 0) m_now.position = map.Inverse().Apply(points.back());
    }
}

void Painter::AngleArc(PointF center, double radius, double startDegrees, double sweepDegrees) {
    const Transform circle{2 * radius, 0, 0, 2 * radius, center.x - radius, center.y - radius};
    const double turn = std::clamp(sweepDegrees, -360.0, 360.0) * kPi / 180;
    PolyLineTo(ArcPoints(circle, startDegrees * kPi / 180, turn));
}

void Painter::SetPixel(PointF at, Rgb color) {
    const auto pixel = ToPixel(ToCanvas().Apply(at));
    m_canvas.Reach(pixel);
    m_canvas.Reach({pixel.x + 1, pixel.y + 1});
    if (m_canvas.Spend(1)) m_canvas.Put(pixel.x, pixel.y, kCopyPattern, color);
}

void Painter::BeginPath() {
    m_path.clear();
    m_pathOpen = true;
    m_pathWide = false;
}

void Painter::CloseFigure() {
    if (!m_path.empty()) m_path.back().closed = true;
}

void Painter::CloseTo(PointF first) {
    if (m_pathOpen) {
        CloseFigure();
    } else {
        PolyLine({m_now.position, first});
    }
}

void Painter::AbortPath() {
    m_path.clear();
    m_pathOpen = false;
}

void Painter::PaintPath(bool fill, bool stroke) {
    m_pathOpen = false;
    auto path = std::move(m_path);
    m_path.clear();
    if (fill && stroke) {
        for (auto& figure : path) figure.closed = true;
    }
    const bool winding = m_now.winding;
    m_now.winding = winding || m_pathWide;
    Paint(std::move(path), fill, stroke);
    m_now.winding = winding;
}

void Painter::WidenPath() {
    const auto style = WideStyleOf(m_now.pen);
    Figures wide;
    for (const auto& figure : m_path) {
        for (const auto& part : Pieces(figure, style.dashes.empty())) {
            auto outline = WidenFigure(part, style);
            for (auto& piece : outline) {
                if (!m_canvas.Spend(kWorkOfPart + piece.points.size() * kWorkOfPoint)) return;
                wide.push_back(std::move(piece));
            }
        }
    }
    m_path = std::move(wide);
    m_pathWide = true;
}

void Painter::ClipToPath(Combination how) {
    m_pathOpen = false;
    ChangeClip(m_path, how, m_now.winding || m_pathWide);
    m_path.clear();
}

void Painter::Paint(Figures figures, bool fill, bool stroke) {
    for (const auto& figure : figures) {
        if (!m_canvas.Spend(figure.points.size() * kWorkOfPoint)) return;
    }
    if (m_pathOpen) {
        for (auto& figure : figures) m_path.push_back(std::move(figure));
        return;
    }
    if (fill) Fill(figures, Dressed(m_now.brush), m_now.rop, m_now.winding);
    if (stroke) Stroke(figures);
}

void Painter::Fill(const Figures& figures, const Ink& ink, Rop rop, bool winding) {
    if (ink.kind == Ink::Kind::None) return;
    ScanFigures(m_canvas, figures, winding,
                [&](int y, int left, int right) { m_canvas.Span(y, left, right, ink, rop); });
}

WideStyle Painter::WideStyleOf(const Pen& pen) const {
    const double scale = ToCanvas().Scale();
    WideStyle style{std::max(1.0, pen.cosmetic ? 1 : pen.width * scale), pen.cap, pen.join, m_now.miterLimit, {}};
    if (pen.dash >= 1 && pen.dash <= kStockDashes) {
        for (const double part : kWideDashes[pen.dash]) style.dashes.push_back(part * style.width);
    }
    for (const double part : pen.lengths) style.dashes.push_back(part * scale);
    return style;
}

void Painter::Stroke(const Figures& figures) {
    const auto& pen = m_now.pen;
    if (pen.none) return;
    const auto style = WideStyleOf(pen);
    if (style.width < kThinnestWide) return StrokeThin(figures);
    const Ink ink = pen.brush.kind == Ink::Kind::None ? Ink{Ink::Kind::Solid, pen.color} : Dressed(pen.brush);
    for (const auto& figure : figures) {
        for (const auto& part : Pieces(figure, style.dashes.empty())) {
            const auto outline = WidenFigure(part, style);
            if (!m_canvas.Spend(outline.size() * kWorkOfPart)) return;
            Fill(outline, ink, m_now.rop, true);
        }
    }
}

void Painter::StrokeThin(const Figures& figures) {
    const auto& pen = m_now.pen;
    const Ink ink{Ink::Kind::Solid, pen.color}, ground{Ink::Kind::Solid, m_now.ground};
    ThinStyle style{pen.dash >= 1 && pen.dash <= kStockDashes ? kThinDashes[pen.dash] : std::vector<int>(),
                    m_now.opaque ? &ground : nullptr};
    for (const double part : pen.lengths)
        style.dashes.push_back(std::max(1, ToPixel(part * (pen.cosmetic ? 1 : ToCanvas().Scale()))));
    for (const auto& figure : figures) {
        int phase = 0;
        for (std::size_t i = 0; i + 1 < figure.points.size(); ++i) {
            DrawThinLine(m_canvas, figure.points[i], figure.points[i + 1], ink, m_now.rop, style, phase);
        }
        if (figure.closed && figure.points.size() > 1) {
            DrawThinLine(m_canvas, figure.points.back(), figure.points.front(), ink, m_now.rop, style, phase);
        }
        if (!m_canvas.Spend(figure.points.size())) return;
    }
}

} // namespace pelorin::metafile
