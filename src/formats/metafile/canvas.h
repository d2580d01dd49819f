// The plane that a metafile is played on: pixels, the clip, raster operations, and a limit on the work.
//
// A raster operation is a byte whose bit (pattern x 4 + source x 2 + destination) is the result for these three bits;
// 0xF0 copies the pattern, 0xCC the source. The sixteen operations of pens and brushes (1 to 16) are its special cases.
#pragma once

#include "formats/metafile/geometry.h"
#include "pixel/surface.h"

#include <climits>

#include <initializer_list>
#include <memory>

namespace pelorin::metafile {

using Rop = std::uint8_t;
inline constexpr Rop kCopyPattern = 0xF0, kCopySource = 0xCC;

/// The operation of pens and brushes with this number; copying for numbers that do not exist.
[[nodiscard]] Rop RopOfPen(unsigned number);
[[nodiscard]] Rgb Combine(Rop rop, Rgb pattern, Rgb source, Rgb destination);
[[nodiscard]] constexpr bool NeedsSource(Rop rop) {
    return ((rop >> 2) & 0x33) != (rop & 0x33);
}

/// Pixels that may be drawn on, a byte each. Shared by saved states, so it is never changed once it is made.
struct ClipMask {
    std::vector<std::uint8_t> inside;
};
using Clip = std::shared_ptr<const ClipMask>; ///< null: everything

/// What a pixel is painted with: one colour, an 8 x 8 hatch, or a picture over and over.
struct Ink {
    enum class Kind { None, Solid, Hatch, Picture };
    Kind kind = Kind::Solid;
    Rgb color = 0;
    int hatch = 0;
    bool opaque = true; ///< a hatch paints `ground` between its lines
    Rgb ground = 0xFFFFFF;
    std::shared_ptr<const Surface> picture{};
    bool twoColors = false; ///< black pixels of the picture are `color`, all others `ground`
    Point origin{};

    /// True with the colour of a pixel; false where the hatch leaves it free.
    [[nodiscard]] bool ColorAt(int x, int y, Rgb& result) const;
};

class Canvas {
public:
    Canvas(int width, int height, Rgb ground);

    [[nodiscard]] int Width() const { return m_surface.Width(); }
    [[nodiscard]] int Height() const { return m_surface.Height(); }
    [[nodiscard]] Rect Bounds() const { return {0, 0, Width(), Height()}; }
    [[nodiscard]] const Surface& Picture() const { return m_surface; }

    void SetClip(Clip clip) { m_clip = std::move(clip); }
    /// A mask of this value everywhere, or like a clip. Null when the work is used up.
    [[nodiscard]] std::shared_ptr<ClipMask> NewMask(std::uint8_t value);
    [[nodiscard]] std::shared_ptr<ClipMask> CopyMask(const Clip& from);

    /// Takes from the allowance; false when it is used up, and from then on nothing is drawn.
    bool Spend(std::uint64_t steps);
    [[nodiscard]] bool Exhausted() const { return m_work == 0; }

    /// Tells that a figure has these corners; gives the box of them on the canvas.
    Rect Reach(std::initializer_list<Point> corners);
    void Reach(Point corner);
    /// The box of all that was drawn so far, on the canvas or not; the lower right corners do not belong to it.
    [[nodiscard]] Rect Reached() const { return m_reached; }
    void SetReached(const Rect& box) { m_reached = box; }

    [[nodiscard]] bool Visible(int x, int y) const;
    void Put(int x, int y, Rop rop, Rgb pattern, Rgb source = 0);
    /// The pixels from `left` to before `right`.
    void Span(int y, int left, int right, const Ink& ink, Rop rop);
    [[nodiscard]] Rgb At(int x, int y) const { return m_surface.At(x, y) & 0xFFFFFF; }

private:
    Surface m_surface;
    Clip m_clip;
    std::uint64_t m_work;
    Rect m_reached{INT_MAX, INT_MAX, INT_MIN, INT_MIN};
};

} // namespace pelorin::metafile
