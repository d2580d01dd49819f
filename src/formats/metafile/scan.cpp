#include "formats/metafile/raster.h"

namespace pelorin::metafile {

namespace {

// Sorting makes an edge that crosses a row as dear as so many pixels.
constexpr std::uint64_t kWorkOfEdge = 8;

struct Edge {
    int top, bottom, direction;
    double x, step; // at `top`, and a row further
};

struct Crossing {
    double x;
    int direction;
};

std::vector<Edge> CollectEdges(Canvas& canvas, const Figures& figures) {
    std::vector<Edge> edges;
    for (const auto& figure : figures) {
        const auto count = figure.points.size();
        for (std::size_t i = 0; i < count; ++i) {
            canvas.Reach(figure.points[i]);
            auto from = figure.points[i], to = figure.points[(i + 1) % count];
            if (from.y == to.y) continue;
            const int direction = from.y < to.y ? 1 : -1;
            if (direction < 0) std::swap(from, to);
            if (to.y <= 0 || from.y >= canvas.Height()) continue;
            edges.push_back({from.y, to.y, direction, static_cast<double>(from.x),
                             static_cast<double>(to.x - from.x) / (to.y - from.y)});
        }
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.top < b.top; });
    return edges;
}

// The first pixel that is not left of the crossing.
int PixelAt(double x) {
    return static_cast<int>(std::ceil(x - 1e-7));
}

void GiveSpans(const std::vector<Crossing>& crossings, bool winding, int y, int width, const SpanSink& sink) {
    int inside = 0;
    for (std::size_t i = 0; i + 1 < crossings.size(); ++i) {
        inside += winding ? crossings[i].direction : 1;
        if (winding ? inside == 0 : inside % 2 == 0) continue;
        const int left = std::max(0, PixelAt(crossings[i].x)), right = std::min(width, PixelAt(crossings[i + 1].x));
        if (left < right) sink(y, left, right);
    }
}

} // namespace

void ScanFigures(Canvas& canvas, const Figures& figures, bool winding, const SpanSink& sink) {
    const auto edges = CollectEdges(canvas, figures);
    if (!canvas.Spend(edges.size() * kWorkOfEdge)) return;
    std::vector<const Edge*> active;
    std::vector<Crossing> crossings;
    std::size_t next = 0;
    for (int y = edges.empty() ? 0 : std::max(0, edges.front().top); y < canvas.Height(); ++y) {
        while (next < edges.size() && edges[next].top <= y) active.push_back(&edges[next++]);
        std::erase_if(active, [&](const Edge* edge) { return edge->bottom <= y; });
        if (active.empty() && next == edges.size()) return;
        if (!canvas.Spend(active.size() * kWorkOfEdge + 1)) return;
        crossings.clear();
        for (const auto* edge : active) crossings.push_back({edge->x + edge->step * (y - edge->top), edge->direction});
        std::sort(crossings.begin(), crossings.end(), [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
        GiveSpans(crossings, winding, y, canvas.Width(), sink);
    }
}

} // namespace pelorin::metafile
