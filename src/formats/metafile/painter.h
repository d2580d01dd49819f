// The drawing context of the metafile player: takes what records say in logical units and paints it on a canvas.
//
// Coordinates run logical -> world transform -> mapping mode -> reference device -> canvas. Between `BeginPath` and
// `EndPath` figures are collected in place of being painted.
#pragma once

#include "base/bytes.h"
#include "formats/metafile/state.h"

namespace pelorin::metafile {

/// The device that a metafile was made for.
struct Device {
    double pixelsPerMmX = 96 / 25.4, pixelsPerMmY = 96 / 25.4;
    Transform toCanvas; ///< from its pixels
};

enum class Combination { And = 1, Or = 2, Xor = 3, Diff = 4, Copy = 5 };

enum class ArcKind { Arc, ArcTo, Chord, Pie };

struct TextLine {
    PointF at;
    std::u32string_view letters;
    std::vector<double> advances; ///< logical, one a letter; empty: as the face has them
    bool hasBox = false, fillBox = false, clipToBox = false;
    PointF boxFrom, boxTo;
};

struct BlitArea {
    PointF at, size;         ///< logical
    PointF from, sourceSize; ///< in pixels of the source, the top row 0
};

class Painter {
public:
    Painter(Canvas& canvas, const Device& device) : m_canvas(canvas), m_device(device) {}

    [[nodiscard]] State& Now() { return m_now; }
    [[nodiscard]] Canvas& Target() { return m_canvas; }
    [[nodiscard]] const Device& Reference() const { return m_device; }
    void Save();
    void Restore(int level); ///< negative: so many back; positive: to that one

    // ---- objects ----
    void SetObject(std::size_t index, Object object);
    /// The lowest free place takes it.
    void AddObject(Object object);
    void DeleteObject(std::size_t index);
    void SelectObject(std::size_t index);
    void Select(const Object& object);
    [[nodiscard]] const RegionObject* Region(std::size_t index) const;
    [[nodiscard]] const Ink* Brush(std::size_t index) const;

    // ---- coordinates ----
    [[nodiscard]] Transform ToCanvas() const;

    // ---- figures; all points are logical ----
    void MoveTo(PointF to);
    void LineTo(PointF to);
    void PolyLine(const std::vector<PointF>& points);
    void PolyLineTo(const std::vector<PointF>& points);
    void PolyBezier(const std::vector<PointF>& points, bool fromPosition);
    void Polygons(const std::vector<std::vector<PointF>>& polygons);
    void PolyLines(const std::vector<std::vector<PointF>>& lines);
    void Rectangle(PointF a, PointF b);
    void RoundRect(PointF a, PointF b, PointF corner);
    void Ellipse(PointF a, PointF b);
    void Arc(ArcKind kind, PointF a, PointF b, PointF start, PointF end);
    void AngleArc(PointF center, double radius, double startDegrees, double sweepDegrees);
    void SetPixel(PointF at, Rgb color);

    // ---- paths ----
    void BeginPath();
    void EndPath() { m_pathOpen = false; }
    void CloseFigure();
    void AbortPath();
    void PaintPath(bool fill, bool stroke);
    void ClipToPath(Combination how);

    // ---- clips ----
    void IntersectClip(PointF a, PointF b) { ChangeClip(BoxFigure(a, b), Combination::And); }
    void ExcludeClip(PointF a, PointF b) { ChangeClip(BoxFigure(a, b), Combination::Diff); }
    void OffsetClip(PointF by);
    void ClearClip();
    /// Rectangles on the reference device.
    void ClipToDevice(const std::vector<Rect>& parts, Combination how);
    void ClipToRegion(const RegionObject& region);
    void FillRegion(const RegionObject& region, const Ink& ink, Rop rop);

    // ---- areas ----
    void PatternBlit(PointF at, PointF size, Rop rop);
    void Blit(const BlitArea& area, const Surface& source, Rop rop);
    /// Each pixel is mixed in by its alpha and `alpha` / 255.
    void BlendBlit(const BlitArea& area, const Surface& source, bool pixelAlpha, unsigned alpha);
    void TransparentBlit(const BlitArea& area, const Surface& source, Rgb transparent);

    void Text(const TextLine& line);

private:
    template <class Pixel>
    void EachBlitPixel(const BlitArea& area, const Surface& source, Pixel&& pixel);
    [[nodiscard]] Transform Box(PointF a, PointF b) const;
    [[nodiscard]] Figures BoxFigure(PointF a, PointF b) const;
    [[nodiscard]] std::vector<PointF> Mapped(const std::vector<PointF>& points) const;
    [[nodiscard]] Ink CurrentBrush() const;
    void Extend(const std::vector<PointF>& canvasPoints);
    void Paint(Figures figures, bool fill, bool stroke);
    void Fill(const Figures& figures, const Ink& ink, Rop rop, bool winding);
    void Stroke(const Figures& figures);
    void StrokeThin(const Figures& figures);
    void ChangeClip(const Figures& figures, Combination how, bool winding = false);
    void SetClip(Clip clip);

    Canvas& m_canvas;
    Device m_device;
    State m_now;
    std::vector<State> m_saved;
    std::vector<Object> m_objects;
    bool m_pathOpen = false;
    Figures m_path;
};

} // namespace pelorin::metafile
