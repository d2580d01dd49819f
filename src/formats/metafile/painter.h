// The drawing context of the metafile player: takes what records say in logical units and paints it on a canvas.
//
// Coordinates run logical -> world transform -> mapping mode -> reference device -> canvas. Between `BeginPath` and
// `EndPath` figures are collected in place of being painted.
#pragma once

#include "base/bytes.h"
#include "formats/metafile/state.h"

#include <array>
#include <span>

namespace pelorin::metafile {

/// The device that a metafile was made for.
struct Device {
    double pixelsPerMmX = 96 / 25.4, pixelsPerMmY = 96 / 25.4;
    PointF size{1024, 768}; ///< in pixels
    Transform toCanvas;     ///< from its pixels
};

enum class Combination { And = 1, Or = 2, Xor = 3, Diff = 4, Copy = 5 };

enum class ArcKind { Arc, ArcTo, Chord, Pie };

struct TextLine {
    PointF at;
    std::u32string_view letters;
    std::vector<double> advances; ///< logical, one a letter; empty: as the face has them
    std::vector<double> rises;    ///< logical, after each letter across the line; empty: none
    bool fillBox = false, clipToBox = false;
    PointF boxFrom, boxTo;
};

struct BlitArea {
    PointF at, size;         ///< logical
    PointF from, sourceSize; ///< in pixels of the source, the top row 0
};

/// A bitmap of which the pixels that are not black choose; `from` is the one over the source's first. Empty: all
/// chosen.
struct BlitMask {
    Surface bits;
    PointF from;
};

struct ShadedCorner {
    PointF at;
    std::array<double, 3> channels{}; ///< red, green, blue from 0 to 255
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
    void SelectPalette(std::size_t index);
    /// Gives a palette `count` entries.
    void ResizePalette(std::size_t index, std::size_t count);
    void ChangePalette(std::size_t index, std::size_t first, const std::vector<Rgb>& entries);
    /// The palette that is selected is changed from `first` on.
    void ChangePalette(std::size_t first, const std::vector<Rgb>& entries);

    // ---- coordinates ----
    [[nodiscard]] Transform ToCanvas() const;
    /// 1 to 8; others change nothing.
    void SetMapMode(unsigned mode);
    /// Extents count in the two free mapping modes only.
    void SetWindowExtent(PointF extent);
    void SetViewportExtent(PointF extent);

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
    /// Closes the figure of the path; outside of paths it draws the line back to where the figure began.
    void CloseTo(PointF first);
    void AbortPath();
    /// The path becomes the outline of its lines drawn with the pen.
    void WidenPath();
    void PaintPath(bool fill, bool stroke);
    void ClipToPath(Combination how);

    // ---- clips ----
    void IntersectClip(PointF a, PointF b) { ChangeClip(BoxFigure(a, b), Combination::And); }
    void ExcludeClip(PointF a, PointF b) { ChangeClip(BoxFigure(a, b), Combination::Diff); }
    void OffsetClip(PointF by);
    void ClearClip();
    /// The present clip can't be widened any more.
    void KeepClip() { m_now.outerClip = m_now.clip; }
    /// Rectangles on the reference device.
    void ClipToDevice(const std::vector<Rect>& parts, Combination how);
    void ClipToRegion(const RegionObject& region);
    void FillRegion(const RegionObject& region, const Ink& ink, Rop rop);
    /// A frame inside the region of that logical thickness.
    void FrameRegion(const RegionObject& region, const Ink& ink, PointF thickness);

    // ---- areas ----
    void PatternBlit(PointF at, PointF size, Rop rop);
    void Blit(const BlitArea& area, const Surface& source, Rop rop);
    /// Each pixel is mixed in by its alpha and `alpha` / 255.
    void BlendBlit(const BlitArea& area, const Surface& source, bool pixelAlpha, unsigned alpha);
    void TransparentBlit(const BlitArea& area, const Surface& source, Rgb transparent);
    /// By one operation where the mask chooses, by the other elsewhere.
    void MaskedBlit(const BlitArea& area, const Surface& source, const BlitMask& mask, Rop chosen, Rop others);
    /// Onto the parallelogram of an upper left, an upper right and a lower left corner; only what the mask chooses.
    void SlantedBlit(const std::array<PointF, 3>& corners, PointF from, PointF sourceSize, const Surface& source,
                     const BlitMask& mask);
    /// The box of two corners, shaded across or downwards from the first one's colour to the other's.
    void ShadeBox(const ShadedCorner& a, const ShadedCorner& b, bool downwards);
    void ShadeTriangle(const ShadedCorner& a, const ShadedCorner& b, const ShadedCorner& c);
    /// With the brush from a point on: over what has the colour, or over all up to what has it.
    void FloodFill(PointF at, Rgb color, bool upToColor);

    void Text(const TextLine& line);

private:
    template <class Pixel>
    void EachBoxPixel(const Transform& box, PointF from, PointF sourceSize, const Surface& source, Pixel&& pixel);
    template <class Pixel>
    void EachBlitPixel(const BlitArea& area, const Surface& source, Pixel&& pixel);
    [[nodiscard]] Transform AreaBox(const BlitArea& area) const;
    template <class Color>
    void Shade(const Figures& figures, Color&& color);
    [[nodiscard]] Figures RegionFigures(const RegionObject& region) const;
    template <class Change>
    void EachMaskSpan(ClipMask& mask, const Figures& figures, bool winding, Change&& change);
    [[nodiscard]] std::shared_ptr<ClipMask> MaskOf(const Figures& figures, bool winding);
    [[nodiscard]] Palette* PaletteAt(std::size_t index);
    void ReplacePalette(Palette& place, std::vector<Rgb> colors);
    [[nodiscard]] WideStyle WideStyleOf(const Pen& pen) const;
    void DrawLetters(Figures strokes, double pen);
    [[nodiscard]] Transform Box(PointF a, PointF b) const;
    [[nodiscard]] Figures BoxFigure(PointF a, PointF b) const;
    [[nodiscard]] std::vector<PointF> Mapped(const std::vector<PointF>& points) const;
    /// A brush with what the state says about its ground and origin.
    [[nodiscard]] Ink Dressed(Ink ink) const;
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
    bool m_pathOpen = false, m_pathWide = false; ///< wide: parts of an outline, of which everything counts
    Figures m_path;
};

} // namespace pelorin::metafile
