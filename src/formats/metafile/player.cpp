#include "formats/metafile/player.h"

#include "base/text.h"

#include <numbers>

namespace pelorin::metafile {

namespace {

constexpr int kBoldWeight = 600;
enum PenStyle : std::uint32_t { kNoPen = 5, kUserPen = 7 };

} // namespace

void SetShrinking(State& state, unsigned mode) {
    if (mode >= 1 && mode <= 4) state.shrinking = static_cast<Shrinking>(mode);
}

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

Ink MakeBrush(std::uint32_t style, Rgb color, std::uint32_t hatch, const State& state) {
    constexpr std::uint32_t kNoBrush = 1, kHatched = 2, kHatches = 6;
    if (style == kHatched && hatch < kHatches) return {Ink::Kind::Hatch, color, static_cast<int>(hatch)};
    if (style == kHatched && hatch >= kHatches + 2) color = hatch < kHatches + 4 ? state.textColor : state.ground;
    return {style == kNoBrush ? Ink::Kind::None : Ink::Kind::Solid, color};
}

Ink MakePatternBrush(Surface picture) {
    if (!picture) return Ink{Ink::Kind::None};
    Ink ink{Ink::Kind::Picture};
    ink.picture = std::make_shared<const Surface>(std::move(picture));
    return ink;
}

Ink MakeTwoColorBrush(Surface numbers) {
    auto ink = MakePatternBrush(std::move(numbers));
    ink.twoColors = true;
    return ink;
}

Font ReadFont(ByteReader& in, double height, double width, std::size_t wordSize, std::size_t letterSize) {
    const auto word = [&] { return wordSize == 2 ? int{in.I16LE()} : in.I32LE(); };
    Font font;
    font.height = height;
    font.width = width;
    font.angle = word() * std::numbers::pi / 1800;
    (void)word();
    font.bold = word() >= kBoldWeight;
    font.italic = in.U8() != 0;
    font.underline = in.U8() != 0;
    font.strikeOut = in.U8() != 0;
    font.charSet = in.U8();
    in.Skip(4);
    std::string name;
    while (in.Left() >= letterSize && name.size() < 6)
        name += static_cast<char>(letterSize == 2 ? in.U16LE() : in.U8());
    font.greek = ToLower(name) == "symbol";
    return font;
}

Surface Charged(Canvas& canvas, Surface picture, std::uint64_t pixelsOfAStep) {
    if (picture && !canvas.Spend(picture.Span().size() / 4 / pixelsOfAStep)) return {};
    return picture;
}

} // namespace pelorin::metafile
