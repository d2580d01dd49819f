#include "formats/metafile/face.h"
#include "formats/metafile/painter.h"

namespace pelorin::metafile {

namespace {

constexpr double kDefaultHeight = 16, kPlainPen = 1.0, kBoldPen = 2.0, kSlant = 0.2;
constexpr double kThinnestWide = 1.5, kFaint = 0.4;
// From this many pixels a unit on, corners of curves are seen.
constexpr double kLargeUnit = 2;
constexpr double kUnderlineAt = -1.6, kStrikeOutAt = 3.5;
// Letters are drawn closer than this share of their own width by no font.
constexpr double kNarrowest = 0.4;
constexpr std::size_t kMaxLetters = 4096, kWorkOfPart = 64;

// The canvas directions and sizes of a line of text.
struct Setting {
    PointF along, down;                // of length 1
    double unitX = 0, unitY = 0;       // a unit of the face, in pixels
    double logicalX = 0, logicalY = 0; // a logical unit along the line and across it, in pixels
    PointF start;                      // where the line begins on its base line
    double total = 0;                  // length
    std::vector<PointF> places{};      // of each letter from the start, along and down, and of the end
};

void Arrange(Setting& s, const State& state, const Transform& map) {
    const auto u = map.ApplyVector({1, 0}), v = map.ApplyVector({0, 1});
    s.logicalX = std::hypot(u.x, u.y);
    s.logicalY = std::hypot(v.x, v.y);
    // Mirrored mappings do not mirror letters; turned ones turn them.
    PointF along{1, 0};
    if (map.b != 0 && s.logicalX > 0) along = {u.x / s.logicalX, u.y / s.logicalX};
    const PointF down{-along.y, along.x};
    // Angles of fonts turn against the clock in logical units, so a mirrored mapping turns them round.
    const double angle = map.Determinant() < 0 ? -state.font.angle : state.font.angle;
    const double cosine = std::cos(angle), sine = std::sin(angle);
    s.along = {along.x * cosine - down.x * sine, along.y * cosine - down.y * sine};
    s.down = {along.x * sine + down.x * cosine, along.y * sine + down.y * cosine};
    const double height = state.font.height;
    const double em = height < 0   ? -height
                      : height > 0 ? height * kFaceSize / (kFaceAscent + kFaceDescent)
                                   : kDefaultHeight;
    s.unitY = em * s.logicalY / kFaceSize;
    s.unitX = state.font.width != 0 ? std::abs(state.font.width) * s.logicalX / kFaceMeanAdvance
                                    : em * s.logicalX / kFaceSize;
}

void Place(Setting& s, const TextLine& line, const State& state) {
    PointF at;
    s.places.push_back(at);
    for (std::size_t i = 0; i < line.letters.size() && i < kMaxLetters; ++i) {
        const auto letter = line.letters[i];
        at.x += i < line.advances.size()
                    ? line.advances[i] * s.logicalX
                    : FaceAdvance(letter) * s.unitX +
                          (state.letterSpace + (letter == U' ' ? state.blankSpace : 0)) * s.logicalX;
        if (i < line.rises.size()) at.y -= line.rises[i] * s.logicalY;
        s.places.push_back(at);
    }
    s.total = at.x;
}

// Moves the start from the given point to the left end of the base line.
void Align(Setting& s, unsigned textAlign) {
    const auto across = textAlign & kCenter, vertical = textAlign & kBaseline;
    const double shift = across == kCenter ? -s.total / 2 : across == kRight ? -s.total : 0;
    const double drop = vertical == kBaseline ? 0
                        : vertical == kBottom ? -kFaceDescent * s.unitY
                                              : kFaceAscent * s.unitY;
    s.start.x += s.along.x * shift + s.down.x * drop;
    s.start.y += s.along.y * shift + s.down.y * drop;
}

// A point from its distance along the line and its height over the base line.
Point PointAt(const Setting& s, double x, double up) {
    return ToPixel(PointF{s.start.x + s.along.x * x - s.down.x * up, s.start.y + s.along.y * x - s.down.y * up});
}

// Letters shrink where the file gives them, or the line, less room than the face takes.
double Narrowing(double room, double own) {
    return own <= 0 || room <= 0 ? 1 : std::clamp(room / own, kNarrowest, 1.0);
}

Figures StrokesOf(const TextLine& line, const Setting& s, const Font& font) {
    Figures strokes;
    const std::size_t count = s.places.size() - 1;
    double own = 0;
    for (std::size_t i = 0; i < count; ++i) own += FaceAdvance(line.letters[i]) * s.unitX;
    const double ofLine = Narrowing(s.total, own), slant = font.italic ? kSlant * s.unitY : 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double room = s.places[i + 1].x - s.places[i].x;
        const double narrow = std::min(ofLine, Narrowing(room, FaceAdvance(line.letters[i]) * s.unitX));
        for (const auto& stroke : FaceStrokes(line.letters[i])) {
            Figure figure;
            for (const auto& p : s.unitY < kLargeUnit ? stroke : RoundedStroke(stroke)) {
                figure.points.push_back(
                    PointAt(s, s.places[i].x + p.x * s.unitX * narrow + p.y * slant, p.y * s.unitY - s.places[i].y));
            }
            strokes.push_back(std::move(figure));
        }
    }
    const auto bar = [&](double up) {
        strokes.push_back({{PointAt(s, 0, up * s.unitY), PointAt(s, s.total, up * s.unitY)}, false});
    };
    if (font.underline) bar(kUnderlineAt);
    if (font.strikeOut) bar(kStrikeOutAt);
    return strokes;
}

// The position goes to the end of the text; centred text leaves it where it was.
PointF PositionBehind(const Setting& s, const State& state) {
    const auto across = state.textAlign & kCenter;
    if (across == kCenter || s.logicalX <= 0 || s.logicalY <= 0) return state.position;
    const double sign = across == kRight ? -1 : 1;
    return {state.position.x + sign * s.along.x * s.total / s.logicalX,
            state.position.y + s.places.back().y / s.logicalY};
}

} // namespace

void Painter::DrawLetters(Figures strokes, double pen) {
    const auto state = m_now;
    m_now.pen = Pen{false, 0, 1, true, m_now.textColor};
    m_now.rop = kCopyPattern;
    // Letters too small to be read are as light as thin ones would be.
    if (pen < kFaint && !m_pathOpen) {
        m_now.pen.lengths = {1, 1};
        m_now.opaque = false;
    }
    if (pen < kThinnestWide || m_pathOpen) {
        // A line leaves its last pixel out, which a letter needs.
        for (auto& figure : strokes) {
            if (!figure.points.empty()) figure.points.push_back({figure.points.back().x + 1, figure.points.back().y});
        }
        Paint(std::move(strokes), false, true);
    } else {
        const Ink ink{Ink::Kind::Solid, m_now.textColor};
        for (const auto& figure : strokes) {
            const auto outline = WidenFigure(figure, {pen, Cap::Round, Join::Round, 10, {}});
            if (!m_canvas.Spend(outline.size() * kWorkOfPart)) break;
            Fill(outline, ink, kCopyPattern, true);
        }
    }
    m_now = state;
}

void Painter::Text(const TextLine& line) {
    const auto map = ToCanvas();
    const bool follow = (m_now.textAlign & kUpdatePosition) != 0;
    Setting s;
    Arrange(s, m_now, map);
    s.start = map.Apply(follow ? m_now.position : line.at);
    Place(s, line, m_now);
    Align(s, m_now.textAlign);
    if (line.fillBox) Fill(BoxFigure(line.boxFrom, line.boxTo), {Ink::Kind::Solid, m_now.ground}, kCopyPattern, false);
    const auto saved = m_now.clip;
    if (line.clipToBox) ChangeClip(BoxFigure(line.boxFrom, line.boxTo), Combination::And);
    if (m_now.opaque && s.total > 0 && !m_pathOpen) {
        const double top = kFaceAscent * s.unitY, bottom = -kFaceDescent * s.unitY;
        Fill({{{PointAt(s, 0, top), PointAt(s, s.total, top), PointAt(s, s.total, bottom), PointAt(s, 0, bottom)},
               true}},
             {Ink::Kind::Solid, m_now.ground}, kCopyPattern, false);
    }
    DrawLetters(StrokesOf(line, s, m_now.font), (m_now.font.bold ? kBoldPen : kPlainPen) * std::min(s.unitX, s.unitY));
    if (line.clipToBox) SetClip(saved);
    if (follow) m_now.position = PositionBehind(s, m_now);
}

} // namespace pelorin::metafile
