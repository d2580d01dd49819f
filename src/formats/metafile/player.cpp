#include "formats/metafile/player.h"

#include <numbers>

namespace pelorin::metafile {

namespace {

constexpr int kBoldWeight = 600;
enum PenStyle : std::uint32_t { kNoPen = 5, kUserPen = 7 };

} // namespace

Pen MakePen(std::uint32_t style, double width, Rgb color) {
    Pen pen;
    const auto line = style & 15;
    pen.none = line == kNoPen;
    pen.dash = line <= 4 || line == kUserPen ? static_cast<int>(line) : 0;
    pen.width = std::abs(width);
    pen.color = color;
    const auto cap = style >> 8 & 3, join = style >> 12 & 3;
    pen.cap = cap == 1 ? Cap::Square : cap == 2 ? Cap::Flat : Cap::Round;
    pen.join = join == 1 ? Join::Bevel : join == 2 ? Join::Miter : Join::Round;
    return pen;
}

Ink MakeBrush(std::uint32_t style, Rgb color, std::uint32_t hatch) {
    Ink ink{Ink::Kind::Solid, color};
    if (style == 1) ink.kind = Ink::Kind::None;
    if (style == 2) ink.kind = Ink::Kind::Hatch;
    ink.hatch = static_cast<int>(hatch % 6);
    return ink;
}

Ink MakePatternBrush(Surface picture) {
    if (!picture) return Ink{Ink::Kind::None};
    Ink ink{Ink::Kind::Picture};
    ink.picture = std::make_shared<const Surface>(std::move(picture));
    return ink;
}

Font MakeFont(double height, double width, int tenths, int weight, bool italic, bool underline, bool strikeOut) {
    return {height, width, tenths * std::numbers::pi / 1800, weight >= kBoldWeight, italic, underline, strikeOut};
}

} // namespace pelorin::metafile
