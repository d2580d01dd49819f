// Figures into pixels: filled outlines, thin lines, and the outline of a wide line.
//
// Nothing is smoothed: a pixel is inside or it is not. Pixel (x, y) is inside an outline when the point (x, y) is;
// points on a left or upper edge are, those on a right or lower edge are not.
#pragma once

#include "formats/metafile/canvas.h"

#include <functional>

namespace pelorin::metafile {

using SpanSink = std::function<void(int y, int left, int right)>;

/// Gives the spans inside the figures (all are taken as closed), cut to the canvas. With `winding` everything counts
/// that is gone round at all; else every second area.
void ScanFigures(Canvas& canvas, const Figures& figures, bool winding, const SpanSink& sink);

/// A pixel wide, without its last pixel. `dashes` are lengths in pixels, on and off in turn (none: solid); `gap` paints
/// what is off. `phase` counts pixels over the whole line.
struct ThinStyle {
    std::vector<int> dashes;
    const Ink* gap = nullptr;
};
void DrawThinLine(Canvas& canvas, Point from, Point to, const Ink& ink, Rop rop, const ThinStyle& style, int& phase);

enum class Cap { Round, Square, Flat };
enum class Join { Round, Bevel, Miter };
struct WideStyle {
    double width = 1;
    Cap cap = Cap::Round;
    Join join = Join::Round;
    double miterLimit = 10;
    std::vector<double> dashes;
};
/// The outline of a line of that width, to be filled with `winding`.
[[nodiscard]] Figures WidenFigure(const Figure& figure, const WideStyle& style);

} // namespace pelorin::metafile
