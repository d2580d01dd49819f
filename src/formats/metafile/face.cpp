#include "formats/metafile/face.h"

#include "formats/metafile/face_glyphs.h"

namespace pelorin::metafile {

namespace {

constexpr double kSmall = 0.7; // the height of small letters to that of capitals

struct Mark {
    char name;
    std::string_view strokes; // over a small letter, around column 3
};
constexpr Mark kMarkStrokes[] = {
    {'`', "2N4L"},       {'\'', "4N2L"},  {'^', "1L3N5L"}, {'~', "1L2M4L5M"}, {':', "1M1N 5M5N"},
    {'o', "2M3N4M3L2M"}, {',', "3D3B2A"}, {'/', "1D6K"},   {'-', "0I4I"},     {'_', "1M5M"},
    {'u', "1N2L4L5N"},   {';', "4D3B5A"}, {'.', "3M3N"},   {'v', "1N3L5N"},   {'"', "3N1L 5N3L"},
};

using Strokes = std::vector<std::vector<PointF>>;

void AddStrokes(Strokes& out, std::string_view strokes, double scale, PointF shift) {
    for (std::size_t at = 0; at + 1 < strokes.size();) {
        out.emplace_back();
        for (; at + 1 < strokes.size() && strokes[at] != ' '; at += 2) {
            const char column = strokes[at];
            const int x = column >= 'A' ? column - 'A' + 10 : column - '0';
            out.back().push_back({x * scale + shift.x, (strokes[at + 1] - 'A' - 3) * scale + shift.y});
        }
        ++at;
    }
}

// Turns of at most 75 degrees are parts of curves.
bool IsBlunt(PointF before, PointF at, PointF behind) {
    const PointF u{at.x - before.x, at.y - before.y}, v{behind.x - at.x, behind.y - at.y};
    const double lengths = std::hypot(u.x, u.y) * std::hypot(v.x, v.y);
    return lengths > 0 && u.x * v.x + u.y * v.y >= lengths / 4;
}

// Each blunt corner becomes two that turn half as much.
std::vector<PointF> CutCorners(const std::vector<PointF>& stroke) {
    constexpr double kCut = 0.29;
    const auto count = stroke.size();
    const bool closed = count > 3 && stroke.front().x == stroke.back().x && stroke.front().y == stroke.back().y;
    const auto between = [](PointF from, PointF to) {
        return PointF{from.x + (to.x - from.x) * kCut, from.y + (to.y - from.y) * kCut};
    };
    std::vector<PointF> cut;
    for (std::size_t i = closed ? 1 : 0; i < count; ++i) {
        const bool end = !closed && (i == 0 || i + 1 == count);
        const auto at = stroke[i];
        const auto before = end ? at : stroke[i - 1], behind = end ? at : stroke[i + 1 < count ? i + 1 : 1];
        if (end || !IsBlunt(before, at, behind)) {
            cut.push_back(at);
        } else {
            cut.insert(cut.end(), {between(at, before), between(at, behind)});
        }
    }
    if (closed) cut.push_back(cut.front());
    return cut;
}

} // namespace

std::vector<PointF> RoundedStroke(const std::vector<PointF>& stroke) {
    return CutCorners(CutCorners(stroke));
}

double FaceAdvance(char32_t letter) {
    const auto parts = DecomposeLetter(letter);
    return GlyphOf(parts.letter).advance * (parts.small ? kSmall : 1);
}

Strokes FaceStrokes(char32_t letter) {
    const auto parts = DecomposeLetter(letter);
    const auto& glyph = GlyphOf(parts.letter);
    const double scale = parts.small ? kSmall : 1;
    Strokes strokes;
    AddStrokes(strokes, glyph.strokes, scale, {});
    const bool tall =
        !parts.small && (parts.letter < U'a' || parts.letter > U'z') && (parts.letter < U'α' || parts.letter > U'ω');
    for (const auto& mark : kMarkStrokes) {
        const bool above = std::string_view(",;/-").find(mark.name) == std::string_view::npos;
        if (mark.name == parts.mark)
            AddStrokes(strokes, mark.strokes, 1, {glyph.advance * scale / 2 - 3.5, tall && above ? 2.5 : 0});
    }
    return strokes;
}

} // namespace pelorin::metafile
