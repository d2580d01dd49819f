// What a metafile sets before it draws: objects and the state of the drawing context.
#pragma once

#include "formats/metafile/canvas.h"
#include "formats/metafile/palette.h"
#include "formats/metafile/raster.h"
#include "formats/metafile/shrink.h"

#include <variant>

namespace pelorin::metafile {

struct Pen {
    bool none = false;
    int dash = 0;          ///< 0 solid, 1 to 4 the stock patterns, 7 `lengths`
    double width = 0;      ///< logical; 0 is a pixel
    bool cosmetic = false; ///< width is in pixels whatever the mapping
    Rgb color = 0;
    Cap cap = Cap::Round;
    Join join = Join::Round;
    std::vector<double> lengths{};
    Ink brush{Ink::Kind::None}; ///< of wide lines, in place of the colour
};

struct Font {
    double height = 0; ///< negative: of the letters; positive: of the line; 0: 12 points or so
    double width = 0;  ///< average of a letter; 0: as drawn
    double angle = 0;  ///< radians, against the clock
    bool bold = false, italic = false, underline = false, strikeOut = false;
    int charSet = 1;
    bool greek = false; ///< of the symbol faces the one with Greek letters
};

/// Rectangles in logical units.
struct RegionObject {
    std::vector<Rect> parts;
};

using Object = std::variant<std::monostate, Pen, Ink, Font, RegionObject, Palette>;

enum class MapMode { Text = 1, LowMetric, HighMetric, LowEnglish, HighEnglish, Twips, Isotropic, Anisotropic };

struct State {
    MapMode mapMode = MapMode::Text;
    PointF windowOrigin, windowExtent{1, 1}, viewportOrigin, viewportExtent{1, 1};
    Transform world;
    Pen pen;
    Ink brush{Ink::Kind::Solid, 0xFFFFFF};
    Font font;
    Rgb textColor = 0, ground = 0xFFFFFF;
    bool opaque = true; ///< the ground is painted behind text, hatches and dashes
    bool winding = false;
    Rop rop = kCopyPattern;
    unsigned textAlign = 0;
    double letterSpace = 0, blankSpace = 0; ///< logical, added to each letter and to each blank
    Shrinking shrinking = Shrinking::Black;
    Palette palette;
    bool clockwise = false;
    double miterLimit = 10;
    PointF position; ///< logical
    Point brushOrigin;
    Clip clip, outerClip;  ///< the clip never gives more than the outer one does
    bool advanced = false; ///< boxes include their right and lower edges
};

enum TextAlign : unsigned { kUpdatePosition = 1, kRight = 2, kCenter = 6, kBottom = 8, kBaseline = 24 };

} // namespace pelorin::metafile
