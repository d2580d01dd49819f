// Gradients: bands of colour over a rectangle, limited to a shape.
#pragma once

#include "pixel/color.h"
#include "pixel/surface.h"

#include <span>

namespace pelorin {

/// How the bands lie. Their number n is the height, the width, half the longer side, or the length of the stroke.
enum class GradientKind {
    Solid,      ///< none: one colour or a pattern
    Vertical,   ///< a band a row, from the top
    Horizontal, ///< a band a column, from the left
    Radial,     ///< ellipses that shrink towards the centre
    Angle       ///< along the direction from the stroke's start to its end
};

struct Gradient {
    GradientKind kind = GradientKind::Solid;
    bool reflected = false; ///< the colours run to the end and back
    bool swapped = false;   ///< drawn with the other mouse button: the colours change places
    Point start{}, end{};   ///< of the stroke; for `Angle`
};

/// The two ends of a gradient and what lies between them.
class GradientColors {
public:
    /// Two colours, channel by channel.
    [[nodiscard]] static GradientColors OfColors(Rgb first, Rgb second);
    /// Two opacities of 0 to 255, as greys.
    [[nodiscard]] static GradientColors OfOpacities(int first, int second);
    /// The palette entries between two indices, in ascending order; the palette must outlive this.
    [[nodiscard]] static GradientColors OfPalette(std::span<const Rgb> palette, int first, int second);

    /// The colour at position `p` of `n`. With one position it is the first colour, whether swapped or not.
    [[nodiscard]] Rgb At(int p, int n, bool swapped) const;
    /// The first or the second colour itself.
    [[nodiscard]] Rgb End(bool second) const;
    /// The palette index at that position; -1 where there is no palette.
    [[nodiscard]] int IndexAt(int p, int n, bool swapped) const;

private:
    Rgb m_first = 0, m_second = 0;
    std::span<const Rgb> m_palette;
    int m_firstIndex = -1, m_secondIndex = -1;
};

/// The position of band `i` of `n`: `i` itself or, reflected, there and back in steps of two.
[[nodiscard]] int BandPosition(int i, int n, bool reflected);

/// The gradient over the whole of `bounds` (picture coordinates, right and bottom outside) as a bitmap of that size.
/// The fourth byte is 0. A solid one is the pattern, laid from the picture's corner (0, 0), or without a pattern the
/// first colour. Empty when the bounds are.
[[nodiscard]] Surface PaintGradient(const Rect& bounds, const Gradient& gradient, const GradientColors& colors,
                                    const Surface* pattern = nullptr);

/// Paints the gradient over `bounds` of the target wherever the shape is; elsewhere the target stays. The shape is
/// white on black, of the target's size: pixels whose first byte is not 0 belong to it. The target's fourth byte stays.
/// False for a shape of another size.
bool FillShapeWithGradient(Surface& target, const Surface& shape, const Rect& bounds, const Gradient& gradient,
                           const GradientColors& colors, const Surface* pattern = nullptr);

} // namespace pelorin
