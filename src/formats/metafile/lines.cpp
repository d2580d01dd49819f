#include "formats/metafile/raster.h"

#include <numbers>
#include <numeric>

namespace pelorin::metafile {

namespace {

constexpr double kPi = std::numbers::pi;

// Which part of the dashes a distance falls into: even numbers are on. A sum of 0 is all on.
bool IsOn(const std::vector<int>& dashes, int total, int distance) {
    if (total <= 0) return true;
    int rest = distance % total;
    for (std::size_t i = 0; i < dashes.size(); ++i) {
        rest -= dashes[i];
        if (rest < 0) return i % 2 == 0;
    }
    return true;
}

double Distance(PointF a, PointF b) {
    return std::hypot(b.x - a.x, b.y - a.y);
}

using Line = std::vector<PointF>;

// Without points that lie on each other.
Line Distinct(const Figure& figure) {
    Line line;
    for (const auto& point : figure.points) {
        if (line.empty() || line.back().x != point.x || line.back().y != point.y)
            line.push_back({double(point.x), double(point.y)});
    }
    if (figure.closed && line.size() > 1 && Distance(line.front(), line.back()) == 0) line.pop_back();
    return line;
}

// Everything that is put together to the outline turns the same way, so that nothing cancels out.
void AddPart(Figures& out, const Line& corners) {
    double area = 0;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const auto &a = corners[i], &b = corners[(i + 1) % corners.size()];
        area += a.x * b.y - b.x * a.y;
    }
    Figure part;
    part.closed = true;
    for (const auto& corner : corners) part.points.push_back(ToPixel(corner));
    if (area < 0) std::reverse(part.points.begin(), part.points.end());
    out.push_back(std::move(part));
}

void AddDisc(Figures& out, PointF center, double radius) {
    const int steps = std::clamp(static_cast<int>(radius * 3), 8, 64);
    Line corners;
    for (int i = 0; i < steps; ++i) {
        const double angle = 2 * kPi * i / steps;
        corners.push_back({center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)});
    }
    AddPart(out, corners);
}

void AddSegment(Figures& out, PointF from, PointF to, double radius, double before, double behind) {
    const double length = Distance(from, to);
    const PointF along{(to.x - from.x) / length, (to.y - from.y) / length};
    const PointF side{-along.y * radius, along.x * radius};
    from = {from.x - along.x * before, from.y - along.y * before};
    to = {to.x + along.x * behind, to.y + along.y * behind};
    AddPart(out, {{from.x + side.x, from.y + side.y},
                  {to.x + side.x, to.y + side.y},
                  {to.x - side.x, to.y - side.y},
                  {from.x - side.x, from.y - side.y}});
}

void AddJoin(Figures& out, PointF before, PointF at, PointF behind, const WideStyle& style) {
    const double radius = style.width / 2;
    if (style.join == Join::Round) return AddDisc(out, at, radius);
    const double in = Distance(before, at), on = Distance(at, behind);
    const PointF u{(at.x - before.x) / in, (at.y - before.y) / in}, v{(behind.x - at.x) / on, (behind.y - at.y) / on};
    const double turn = u.x * v.y - u.y * v.x, cosine = u.x * v.x + u.y * v.y;
    const double outer = turn > 0 ? -radius : radius;
    const PointF a{at.x - u.y * outer, at.y + u.x * outer}, b{at.x - v.y * outer, at.y + v.x * outer};
    Line corners{at, a, b};
    // The tip is 1 / sin(half the angle between the lines) half widths away.
    const double half = std::sqrt(std::max(0.0, (1 + cosine) / 2));
    if (style.join == Join::Miter && half > 0 && 1 / half <= style.miterLimit) {
        const PointF middle{(a.x + b.x) / 2 - at.x, (a.y + b.y) / 2 - at.y};
        corners.insert(corners.begin() + 2, {at.x + middle.x / (half * half), at.y + middle.y / (half * half)});
    }
    AddPart(out, corners);
}

void AddLine(Figures& out, const Line& line, bool closed, const WideStyle& style) {
    const double radius = style.width / 2;
    if (line.size() == 1) {
        if (style.cap == Cap::Round) AddDisc(out, line[0], radius);
        if (style.cap == Cap::Square) AddSegment(out, line[0], {line[0].x + 1e-3, line[0].y}, radius, radius, radius);
        return;
    }
    const double reach = style.cap == Cap::Square && !closed ? radius : 0;
    const std::size_t last = closed ? line.size() : line.size() - 1;
    for (std::size_t i = 0; i < last; ++i) {
        const auto to = line[(i + 1) % line.size()];
        AddSegment(out, line[i], to, radius, i == 0 ? reach : 0, i + 1 == last ? reach : 0);
        if (closed || i + 1 < last) AddJoin(out, line[i], to, line[(i + 2) % line.size()], style);
    }
    if (!closed && style.cap == Cap::Round) {
        AddDisc(out, line.front(), radius);
        AddDisc(out, line.back(), radius);
    }
}

// The parts of a line that are on; a line has at most so many.
constexpr std::size_t kMaxDashes = 4000;

std::vector<Line> CutDashes(Line line, bool closed, const std::vector<double>& dashes) {
    if (closed) line.push_back(line.front());
    std::vector<Line> parts;
    Line part{line.front()};
    std::size_t number = 0;
    double left = dashes[0];
    for (std::size_t i = 0; i + 1 < line.size() && parts.size() < kMaxDashes; ++i) {
        const auto from = line[i], to = line[i + 1];
        const double length = Distance(from, to);
        double at = 0;
        while (length - at > left && parts.size() < kMaxDashes) {
            at += left;
            const PointF cut{from.x + (to.x - from.x) * at / length, from.y + (to.y - from.y) * at / length};
            part.push_back(cut);
            if (number % 2 == 0) parts.push_back(part);
            part = {cut};
            number = (number + 1) % dashes.size();
            left = dashes[number];
        }
        left -= length - at;
        part.push_back(to);
    }
    if (number % 2 == 0 && part.size() > 1) parts.push_back(part);
    return parts;
}

} // namespace

void DrawThinLine(Canvas& canvas, Point from, Point to, const Ink& ink, Rop rop, const ThinStyle& style, int& phase) {
    canvas.Reach(from);
    canvas.Reach({from.x + 1, from.y + 1});
    canvas.Reach(to);
    const int dx = to.x - from.x, dy = to.y - from.y;
    const bool steep = std::abs(dy) > std::abs(dx);
    const int steps = steep ? std::abs(dy) : std::abs(dx);
    const int start = steep ? from.y : from.x, direction = (steep ? dy : dx) < 0 ? -1 : 1;
    const int limit = steep ? canvas.Height() : canvas.Width();
    // Only the steps that lie on the canvas are walked.
    const int first = std::clamp(direction > 0 ? -start : start - limit + 1, 0, steps);
    const int end = std::clamp(direction > 0 ? limit - start : start + 1, 0, steps);
    const int total = std::accumulate(style.dashes.begin(), style.dashes.end(), 0);
    const std::int64_t minor = steep ? dx : dy;
    if (first < end && !canvas.Spend(static_cast<std::uint64_t>(end - first))) return;
    for (int i = first; i < end; ++i) {
        const auto twice = 2 * minor * i + steps;
        const auto across =
            static_cast<int>(twice >= 0 ? twice / (2 * std::int64_t{steps})
                                        : -((-twice + 2 * std::int64_t{steps} - 1) / (2 * std::int64_t{steps})));
        const int major = start + direction * i;
        const Point at = steep ? Point{from.x + across, major} : Point{major, from.y + across};
        const Ink* used = IsOn(style.dashes, total, phase + i) ? &ink : style.gap;
        Rgb color = 0;
        if (used && used->ColorAt(at.x, at.y, color)) canvas.Put(at.x, at.y, rop, color);
    }
    phase = total > 0 ? (phase + steps) % total : 0;
}

Figures WidenFigure(const Figure& figure, const WideStyle& style) {
    Figures out;
    const auto line = Distinct(figure);
    if (line.empty()) return out;
    const bool closed = figure.closed && line.size() > 2;
    const double total = std::accumulate(style.dashes.begin(), style.dashes.end(), 0.0);
    const bool dashed = total > 1 && line.size() > 1 &&
                        std::all_of(style.dashes.begin(), style.dashes.end(), [](double d) { return d > 0; });
    if (!dashed) {
        AddLine(out, line, closed, style);
        return out;
    }
    for (const auto& part : CutDashes(line, closed, style.dashes)) {
        Line distinct;
        for (const auto& p : part) {
            if (distinct.empty() || Distance(distinct.back(), p) > 1e-9) distinct.push_back(p);
        }
        AddLine(out, distinct, false, style);
    }
    return out;
}

} // namespace pelorin::metafile
