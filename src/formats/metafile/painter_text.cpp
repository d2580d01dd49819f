#include "formats/metafile/face.h"
#include "formats/metafile/painter.h"

namespace pelorin::metafile {

namespace {

constexpr double kDefaultHeight = 16, kPlainPen = 1.0, kBoldPen = 2.0, kSlant = 0.2;
constexpr double kThinnestWide = 1.5;
// Letters are drawn closer than this share of their own width by no font.
constexpr double kNarrowest = 0.4;
constexpr std::size_t kMaxLetters = 4096, kWorkOfPart = 64;

// The canvas directions and sizes of a line of text.
struct Setting {
    PointF along, down;          // of length 1
    double unitX = 0, unitY = 0; // a unit of the face, in pixels
    double logicalX = 0;         // a logical unit along the line, in pixels
};

Setting Arrange(const State& state, const Transform& map) {
    Setting s;
    const auto u = map.ApplyVector({1, 0}), v = map.ApplyVector({0, 1});
    const double lengthX = std::hypot(u.x, u.y), lengthY = std::hypot(v.x, v.y);
    // Mirrored mappings do not mirror letters; turned ones turn them.
    PointF along{1, 0};
    if (map.b != 0 && lengthX > 0) along = {u.x / lengthX, u.y / lengthX};
    const PointF down{-along.y, along.x};
    const double cosine = std::cos(state.font.angle), sine = std::sin(state.font.angle);
    s.along = {along.x * cosine - down.x * sine, along.y * cosine - down.y * sine};
    s.down = {along.x * sine + down.x * cosine, along.y * sine + down.y * cosine};
    const double height = state.font.height;
    const double em = height < 0   ? -height
                      : height > 0 ? height * kFaceSize / (kFaceAscent + kFaceDescent)
                                   : kDefaultHeight;
    s.unitY = em * lengthY / kFaceSize;
    s.unitX =
        state.font.width != 0 ? std::abs(state.font.width) * lengthX / kFaceMeanAdvance : em * lengthX / kFaceSize;
    s.logicalX = lengthX;
    return s;
}

// Where each letter begins along the line, in pixels, and where the line ends.
std::vector<double> Places(const TextLine& line, const State& state, const Setting& s) {
    std::vector<double> places{0};
    for (std::size_t i = 0; i < line.letters.size() && i < kMaxLetters; ++i) {
        const double advance = i < line.advances.size()
                                   ? line.advances[i] * s.logicalX
                                   : FaceAdvance(line.letters[i]) * s.unitX + state.letterSpace * s.logicalX;
        places.push_back(places.back() + advance);
    }
    return places;
}

// Letters shrink where the file gives them less room than the face takes.
double Narrowing(const TextLine& line, const std::vector<double>& places, const Setting& s) {
    double own = 0;
    for (std::size_t i = 0; i + 1 < places.size(); ++i) own += FaceAdvance(line.letters[i]) * s.unitX;
    if (own <= 0 || places.back() <= 0) return 1;
    return std::clamp(places.back() / own, kNarrowest, 1.0);
}

} // namespace

void Painter::Text(const TextLine& line) {
    const auto map = ToCanvas();
    const auto s = Arrange(m_now, map);
    if (line.hasBox && line.fillBox)
        Fill(BoxFigure(line.boxFrom, line.boxTo), {Ink::Kind::Solid, m_now.ground}, kCopyPattern, false);
    const bool follow = (m_now.textAlign & kUpdatePosition) != 0;
    const auto start = map.Apply(follow ? m_now.position : line.at);
    const auto places = Places(line, m_now, s);
    const double total = places.back();
    const auto across = m_now.textAlign & kCenter;
    const double shift = across == kCenter ? -total / 2 : across == kRight ? -total : 0;
    const auto vertical = m_now.textAlign & kBaseline;
    const double drop = vertical == kBaseline ? 0
                        : vertical == kBottom ? -kFaceDescent * s.unitY
                                              : kFaceAscent * s.unitY;
    // A point from its distance along the line and its height over the base line.
    const auto point = [&](double x, double up) {
        return PointF{start.x + s.along.x * (shift + x) + s.down.x * (drop - up),
                      start.y + s.along.y * (shift + x) + s.down.y * (drop - up)};
    };
    const auto saved = m_now.clip;
    if (line.hasBox && line.clipToBox) ChangeClip(BoxFigure(line.boxFrom, line.boxTo), Combination::And);
    if (m_now.opaque && total > 0 && !m_pathOpen) {
        const double top = kFaceAscent * s.unitY, bottom = -kFaceDescent * s.unitY;
        Figure box{{ToPixel(point(0, top)), ToPixel(point(total, top)), ToPixel(point(total, bottom)),
                    ToPixel(point(0, bottom))},
                   true};
        Fill({box}, {Ink::Kind::Solid, m_now.ground}, kCopyPattern, false);
    }

    Figures strokes;
    const double narrow = Narrowing(line, places, s);
    const auto add = [&](std::initializer_list<PointF> points) {
        Figure figure;
        for (const auto& p : points) figure.points.push_back(ToPixel(p));
        strokes.push_back(std::move(figure));
    };
    for (std::size_t i = 0; i + 1 < places.size(); ++i) {
        for (const auto& stroke : FaceStrokes(line.letters[i])) {
            Figure figure;
            for (const auto& p : stroke) {
                const double slant = m_now.font.italic ? p.y * kSlant * s.unitY : 0;
                figure.points.push_back(ToPixel(point(places[i] + p.x * s.unitX * narrow + slant, p.y * s.unitY)));
            }
            strokes.push_back(std::move(figure));
        }
    }
    if (m_now.font.underline) add({point(0, -1.6 * s.unitY), point(total, -1.6 * s.unitY)});
    if (m_now.font.strikeOut) add({point(0, 3.5 * s.unitY), point(total, 3.5 * s.unitY)});

    auto state = m_now;
    m_now.pen = Pen{false, 0, 1, true, m_now.textColor};
    m_now.rop = kCopyPattern;
    const double pen = (m_now.font.bold ? kBoldPen : kPlainPen) * std::min(s.unitX, s.unitY);
    if (pen < kThinnestWide || m_pathOpen) {
        // A line leaves its last pixel out, which a letter needs.
        for (auto& figure : strokes) {
            if (!figure.points.empty()) figure.points.push_back({figure.points.back().x + 1, figure.points.back().y});
        }
        Paint(strokes, false, true);
    } else {
        const Ink ink{Ink::Kind::Solid, m_now.textColor};
        for (const auto& figure : strokes) {
            const auto outline = WidenFigure(figure, {pen, Cap::Round, Join::Round, 10, {}});
            if (!m_canvas.Spend(outline.size() * kWorkOfPart)) break;
            Fill(outline, ink, kCopyPattern, true);
        }
    }
    m_now = std::move(state);
    if (line.clipToBox) SetClip(saved);
    if (follow && s.logicalX > 0) {
        m_now.position.x += s.along.x * total / s.logicalX * (across == kRight ? -1 : 1);
    }
}

} // namespace pelorin::metafile
