#include "formats/metafile/dib_source.h"
#include "formats/metafile/player.h"

namespace pelorin::metafile {

namespace {

// One record is played; `whole` is the record with its head, to which offsets are counted.
struct Emf {
    Painter& painter;
    ByteSpan whole{};

    State& Now() { return painter.Now(); }
    [[nodiscard]] ByteSpan Part(std::uint32_t offset, std::uint64_t length) const {
        return ByteReader(whole).Sub(offset, length).All();
    }
};

using Points = std::vector<PointF>;

constexpr std::uint32_t kStockObject = 0x80000000;
constexpr std::size_t kMaxPoints = 1 << 20;

PointF Read32(ByteReader& in) {
    const double x = in.I32LE(), y = in.I32LE();
    return {x, y};
}

PointF Read16(ByteReader& in) {
    const double x = in.I16LE(), y = in.I16LE();
    return {x, y};
}

Rect ReadRect(ByteReader& in) {
    const int left = in.I32LE(), top = in.I32LE(), right = in.I32LE(), bottom = in.I32LE();
    return {left, top, right, bottom};
}

double ReadFloat(ByteReader& in) {
    const auto bits = in.U32LE();
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return std::isfinite(value) ? std::clamp(static_cast<double>(value), -1e9, 1e9) : 0;
}

Transform ReadTransform(ByteReader& in) {
    Transform t;
    for (auto* value : {&t.a, &t.b, &t.c, &t.d, &t.e, &t.f}) *value = ReadFloat(in);
    return t;
}

template <auto ReadPoint, std::size_t Bytes>
Points ReadPoints(ByteReader& in, std::size_t count) {
    Points points;
    for (std::size_t i = 0; i < count && i < kMaxPoints && in.Left() >= Bytes; ++i) points.push_back(ReadPoint(in));
    return points;
}

// Bounds, a count, and so many points.
template <auto ReadPoint, std::size_t Bytes>
Points ReadPoly(ByteReader& in) {
    in.Skip(16);
    return ReadPoints<ReadPoint, Bytes>(in, in.U32LE());
}

// Bounds, the numbers of polygons and points, how many each has, and the points.
template <auto ReadPoint, std::size_t Bytes>
std::vector<Points> ReadPolyPoly(ByteReader& in) {
    in.Skip(16);
    const auto count = in.U32LE();
    in.Skip(4);
    std::vector<std::size_t> sizes;
    for (std::uint32_t i = 0; i < count && in.Left() >= 4; ++i) sizes.push_back(in.U32LE());
    std::vector<Points> polygons;
    for (const auto size : sizes) polygons.push_back(ReadPoints<ReadPoint, Bytes>(in, size));
    return polygons;
}

// Points with a kind each: 6 moves, 2 draws a line, 4 is a point of a curve; bit 0 closes the figure.
template <auto ReadPoint, std::size_t Bytes>
void PolyDraw(Emf& emf, ByteReader& in) {
    const auto points = ReadPoly<ReadPoint, Bytes>(in);
    Points curve;
    for (const auto& point : points) {
        const auto kind = in.U8();
        if (kind == 6) emf.painter.MoveTo(point);
        if ((kind & 6) == 2) emf.painter.LineTo(point);
        if ((kind & 6) == 4) curve.push_back(point);
        if (curve.size() == 3) {
            emf.painter.PolyBezier(curve, true);
            curve.clear();
        }
        if (kind != 6 && (kind & 1)) emf.painter.CloseFigure();
    }
}

// ---- objects ----

void CreatePen(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE(), style = in.U32LE();
    const double width = in.I32LE();
    in.Skip(4);
    emf.painter.SetObject(index, MakePen(style, width, ReadColor(in)));
}

void ExtCreatePen(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    in.Skip(16);
    const auto style = in.U32LE(), width = in.U32LE(), brush = in.U32LE();
    const auto color = ReadColor(in);
    in.Skip(4);
    const auto count = in.U32LE();
    auto pen = MakePen(style, width, color);
    constexpr std::uint32_t kGeometric = 0x10000;
    pen.cosmetic = (style & kGeometric) == 0;
    pen.none = pen.none || brush == 1;
    for (std::uint32_t i = 0; i < count && i < 16 && in.Left() >= 4; ++i) pen.lengths.push_back(in.U32LE());
    emf.painter.SetObject(index, std::move(pen));
}

void CreateBrush(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE(), style = in.U32LE();
    const auto color = ReadColor(in);
    emf.painter.SetObject(index, MakeBrush(style, color, in.U32LE()));
}

void CreatePattern(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    in.Skip(4);
    const auto header = in.U32LE(), headerSize = in.U32LE(), rows = in.U32LE(), rowsSize = in.U32LE();
    emf.painter.SetObject(index, MakePatternBrush(DecodeDib(emf.Part(header, headerSize), emf.Part(rows, rowsSize))));
}

void CreateFont(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    const double height = in.I32LE(), width = in.I32LE();
    const int angle = in.I32LE();
    in.Skip(4);
    const int weight = in.I32LE();
    const bool italic = in.U8() != 0, underline = in.U8() != 0, strikeOut = in.U8() != 0;
    emf.painter.SetObject(index, MakeFont(height, width, angle, weight, italic, underline, strikeOut));
}

// Brushes 0 to 5 from white to none, pens 6 to 8 white, black and none, fonts behind them.
Object StockObject(std::uint32_t number) {
    constexpr Rgb kBrushes[] = {0xFFFFFF, 0xC0C0C0, 0x808080, 0x404040, 0x000000};
    if (number < std::size(kBrushes)) return Ink{Ink::Kind::Solid, kBrushes[number]};
    switch (number) {
    case 5: return Ink{Ink::Kind::None};
    case 6: return MakePen(0, 0, 0xFFFFFF);
    case 7: return MakePen(0, 0, 0);
    case 8: return MakePen(5, 0, 0);
    case 18: return Ink{Ink::Kind::Solid, 0xFFFFFF};
    case 19: return MakePen(0, 0, 0);
    default: return number >= 10 && number <= 17 && number != 15 ? Object(Font{}) : Object();
    }
}

void SelectObject(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    if (index & kStockObject) return emf.painter.Select(StockObject(index & ~kStockObject));
    emf.painter.SelectObject(index);
}

// ---- state ----

void ScaleExtent(ByteReader& in, PointF& extent) {
    const double xUp = in.I32LE(), xDown = in.I32LE(), yUp = in.I32LE(), yDown = in.I32LE();
    if (!in.Ok() || xDown == 0 || yDown == 0) return;
    extent = {extent.x * xUp / xDown, extent.y * yUp / yDown};
}

void ModifyTransform(Emf& emf, ByteReader& in) {
    const auto change = ReadTransform(in);
    auto& world = emf.Now().world;
    switch (in.U32LE()) {
    case 1: world = {}; break;
    case 2: world = change.Then(world); break;
    case 3: world = world.Then(change); break;
    case 4: world = change; break;
    default: break;
    }
}

// Some writers store a whole number here and some a float; as a float a whole number is next to nothing.
void SetMiterLimit(Emf& emf, ByteReader& in) {
    auto again = in;
    const double limit = ReadFloat(in);
    emf.Now().miterLimit = std::max(1.0, limit > 1e-6 ? limit : again.U32LE());
}

Combination ReadCombination(ByteReader& in) {
    const auto how = in.U32LE();
    return how >= 1 && how <= 5 ? static_cast<Combination>(how) : Combination::Copy;
}

// ---- regions: a header of 32 bytes and rectangles ----

std::vector<Rect> ReadRegion(ByteReader in) {
    in.Skip(8);
    const auto count = in.U32LE();
    in.Skip(20);
    std::vector<Rect> parts;
    for (std::uint32_t i = 0; i < count && in.Left() >= 16; ++i) parts.push_back(ReadRect(in));
    return parts;
}

void SelectClipRegion(Emf& emf, ByteReader& in) {
    const auto size = in.U32LE();
    const auto how = ReadCombination(in);
    if (size == 0) {
        if (how == Combination::Copy) emf.painter.ClearClip();
        return;
    }
    emf.painter.ClipToDevice(ReadRegion(in), how);
}

void PaintRegion(Emf& emf, ByteReader& in, Rop rop) {
    in.Skip(16 + 4);
    emf.painter.FillRegion({ReadRegion(in)}, emf.Now().brush, rop);
}

void FillRegion(Emf& emf, ByteReader& in) {
    in.Skip(16 + 4);
    const auto* brush = emf.painter.Brush(in.U32LE());
    if (brush) emf.painter.FillRegion({ReadRegion(in)}, *brush, emf.Now().rop);
}

// ---- figures ----

template <auto Draw>
void TwoCorners(Emf& emf, ByteReader& in) {
    const auto a = Read32(in), b = Read32(in);
    if (in.Ok()) (emf.painter.*Draw)(a, b);
}

void ArcRecord(Emf& emf, ByteReader& in, ArcKind kind) {
    const auto a = Read32(in), b = Read32(in), start = Read32(in), end = Read32(in);
    if (in.Ok()) emf.painter.Arc(kind, a, b, start, end);
}

void RoundRect(Emf& emf, ByteReader& in) {
    const auto a = Read32(in), b = Read32(in), corner = Read32(in);
    if (in.Ok()) emf.painter.RoundRect(a, b, corner);
}

void AngleArc(Emf& emf, ByteReader& in) {
    const auto center = Read32(in);
    const double radius = in.U32LE(), start = ReadFloat(in), sweep = ReadFloat(in);
    if (in.Ok()) emf.painter.AngleArc(center, radius, start, sweep);
}

void GradientFill(Emf& emf, ByteReader& in) {
    in.Skip(16);
    const auto corners = in.U32LE(), shapes = in.U32LE(), mode = in.U32LE();
    struct Corner {
        PointF at;
        double channel[3];
    };
    std::vector<Corner> vertices;
    for (std::uint32_t i = 0; i < corners && in.Left() >= 16; ++i) {
        Corner corner{Read32(in), {}};
        for (auto& channel : corner.channel) channel = in.U16LE() >> 8;
        in.Skip(2);
        vertices.push_back(corner);
    }
    // Rectangles only: bands from one corner's colour to the other's. Triangles take the mean of their corners.
    constexpr int kBands = 64;
    const auto mixed = [](const Corner& a, const Corner& b, double t) {
        Rgb color = 0;
        for (const double channel : {0, 1, 2}) {
            const auto i = static_cast<std::size_t>(channel);
            color = color << 8 | static_cast<Rgb>(a.channel[i] + (b.channel[i] - a.channel[i]) * t);
        }
        return color;
    };
    const auto saved = emf.Now();
    emf.Now().pen.none = true;
    for (std::uint32_t i = 0; i < shapes && in.Left() >= 8; ++i) {
        const std::size_t first = in.U32LE(), second = in.U32LE(), third = mode == 2 ? in.U32LE() : 0;
        if (first >= vertices.size() || second >= vertices.size() || third >= vertices.size()) break;
        const auto &a = vertices[first], &b = vertices[second];
        if (mode == 2) {
            emf.Now().brush = {Ink::Kind::Solid, mixed(a, b, 0.5)};
            emf.painter.Polygons({{a.at, b.at, vertices[third].at}});
            continue;
        }
        for (int band = 0; band < kBands; ++band) {
            const double from = static_cast<double>(band) / kBands, to = static_cast<double>(band + 1) / kBands;
            const auto along = [&](double t) {
                return mode == 0 ? a.at.x + (b.at.x - a.at.x) * t : a.at.y + (b.at.y - a.at.y) * t;
            };
            const PointF p = mode == 0 ? PointF{along(from), a.at.y} : PointF{a.at.x, along(from)};
            const PointF q = mode == 0 ? PointF{along(to), b.at.y} : PointF{b.at.x, along(to)};
            emf.Now().brush = {Ink::Kind::Solid, mixed(a, b, (from + to) / 2)};
            emf.painter.Polygons({{p, {q.x, p.y}, q, {p.x, q.y}}});
        }
    }
    emf.Now() = saved;
}

// ---- bitmaps ----

struct SourcePlaces {
    std::uint32_t header, headerSize, rows, rowsSize;

    static SourcePlaces Read(ByteReader& in) {
        SourcePlaces places{};
        places.header = in.U32LE();
        places.headerSize = in.U32LE();
        places.rows = in.U32LE();
        places.rowsSize = in.U32LE();
        return places;
    }
    [[nodiscard]] Surface Decode(const Emf& emf) const {
        return headerSize == 0 ? Surface() : DecodeDib(emf.Part(header, headerSize), emf.Part(rows, rowsSize));
    }
};

// The records with a source context: bounds, target, operation, source place, its transform, ground, usage, bitmap.
struct ContextBlit {
    BlitArea area;
    std::uint32_t operation = 0;
    Surface source;
};

ContextBlit ReadContextBlit(const Emf& emf, ByteReader& in, bool stretched) {
    ContextBlit blit;
    in.Skip(16);
    blit.area.at = Read32(in);
    blit.area.size = blit.area.sourceSize = Read32(in);
    blit.operation = in.U32LE();
    blit.area.from = Read32(in);
    in.Skip(24 + 4 + 4);
    const auto places = SourcePlaces::Read(in);
    if (stretched) blit.area.sourceSize = Read32(in);
    if (in.Ok()) blit.source = places.Decode(emf);
    return blit;
}

void BlitRecord(Emf& emf, ByteReader& in, bool stretched) {
    const auto blit = ReadContextBlit(emf, in, stretched);
    if (!in.Ok()) return;
    const auto rop = static_cast<Rop>(blit.operation >> 16);
    if (blit.source) {
        emf.painter.Blit(blit.area, blit.source, rop);
    } else {
        emf.painter.PatternBlit(blit.area.at, blit.area.size, rop);
    }
}

void AlphaBlend(Emf& emf, ByteReader& in) {
    const auto blit = ReadContextBlit(emf, in, true);
    if (in.Ok())
        emf.painter.BlendBlit(blit.area, blit.source, (blit.operation >> 24 & 1) != 0, blit.operation >> 16 & 255);
}

void TransparentBlt(Emf& emf, ByteReader& in) {
    const auto blit = ReadContextBlit(emf, in, true);
    const auto color = blit.operation;
    const Rgb transparent = (color & 255) << 16 | (color & 0xFF00) | (color >> 16 & 255);
    if (in.Ok()) emf.painter.TransparentBlit(blit.area, blit.source, transparent);
}

void DibRecord(Emf& emf, ByteReader& in, bool stretched) {
    in.Skip(16);
    BlitArea area;
    area.at = Read32(in);
    area.from = Read32(in);
    area.sourceSize = area.size = Read32(in);
    const auto places = SourcePlaces::Read(in);
    in.Skip(4);
    Rop rop = kCopySource;
    if (stretched) {
        rop = static_cast<Rop>(in.U32LE() >> 16);
        area.size = Read32(in);
    }
    if (!in.Ok()) return;
    const auto source = places.Decode(emf);
    // Rows of the source are counted from the bottom.
    area.from.y = source.Height() - area.from.y - area.sourceSize.y;
    emf.painter.Blit(area, source, rop);
}

// ---- text ----

void TextRecord(Emf& emf, ByteReader& in, bool wide) {
    in.Skip(16 + 4 + 8);
    TextLine line;
    line.at = Read32(in);
    const auto count = in.U32LE(), letters = in.U32LE(), options = in.U32LE();
    const auto box = ReadRect(in);
    const auto advances = in.U32LE();
    if (!in.Ok()) return;
    line.fillBox = (options & 2) != 0;
    line.clipToBox = (options & 4) != 0;
    line.hasBox = line.fillBox || line.clipToBox;
    line.boxFrom = {double(box.left), double(box.top)};
    line.boxTo = {double(box.right), double(box.bottom)};
    std::u32string text;
    auto from = ByteReader(emf.whole);
    from.Seek(letters);
    while (text.size() < count && from.Left() >= (wide ? 2u : 1u)) text.push_back(wide ? from.U16LE() : from.U8());
    line.letters = text;
    const bool pairs = (options & 0x2000) != 0;
    auto widths = ByteReader(emf.whole);
    widths.Seek(advances);
    while (advances != 0 && line.advances.size() < text.size() && widths.Left() >= (pairs ? 8u : 4u)) {
        line.advances.push_back(widths.I32LE());
        if (pairs) widths.Skip(4);
    }
    emf.painter.Text(line);
}

struct Row {
    std::uint32_t type;
    void (*play)(Emf& emf, ByteReader& in);
};

constexpr Row kRows[] = {
    {2, [](Emf& e, ByteReader& in) { e.painter.PolyBezier(ReadPoly<Read32, 8>(in), false); }},
    {3, [](Emf& e, ByteReader& in) { e.painter.Polygons({ReadPoly<Read32, 8>(in)}); }},
    {4, [](Emf& e, ByteReader& in) { e.painter.PolyLine(ReadPoly<Read32, 8>(in)); }},
    {5, [](Emf& e, ByteReader& in) { e.painter.PolyBezier(ReadPoly<Read32, 8>(in), true); }},
    {6, [](Emf& e, ByteReader& in) { e.painter.PolyLineTo(ReadPoly<Read32, 8>(in)); }},
    {7, [](Emf& e, ByteReader& in) { e.painter.PolyLines(ReadPolyPoly<Read32, 8>(in)); }},
    {8, [](Emf& e, ByteReader& in) { e.painter.Polygons(ReadPolyPoly<Read32, 8>(in)); }},
    {9, [](Emf& e, ByteReader& in) { e.Now().windowExtent = Read32(in); }},
    {10, [](Emf& e, ByteReader& in) { e.Now().windowOrigin = Read32(in); }},
    {11, [](Emf& e, ByteReader& in) { e.Now().viewportExtent = Read32(in); }},
    {12, [](Emf& e, ByteReader& in) { e.Now().viewportOrigin = Read32(in); }},
    {13,
     [](Emf& e, ByteReader& in) { e.Now().brushOrigin = ToPixel(e.painter.Reference().toCanvas.Apply(Read32(in))); }},
    {15,
     [](Emf& e, ByteReader& in) {
         const auto at = Read32(in);
         e.painter.SetPixel(at, ReadColor(in));
     }},
    {17,
     [](Emf& e, ByteReader& in) {
         const auto mode = in.U32LE();
         if (mode >= 1 && mode <= 8) e.Now().mapMode = static_cast<MapMode>(mode);
     }},
    {18, [](Emf& e, ByteReader& in) { e.Now().opaque = in.U32LE() != 1; }},
    {19, [](Emf& e, ByteReader& in) { e.Now().winding = in.U32LE() == 2; }},
    {20, [](Emf& e, ByteReader& in) { e.Now().rop = RopOfPen(in.U32LE()); }},
    {22, [](Emf& e, ByteReader& in) { e.Now().textAlign = in.U32LE(); }},
    {24, [](Emf& e, ByteReader& in) { e.Now().textColor = ReadColor(in); }},
    {25, [](Emf& e, ByteReader& in) { e.Now().ground = ReadColor(in); }},
    {26, [](Emf& e, ByteReader& in) { e.painter.OffsetClip(Read32(in)); }},
    {27, [](Emf& e, ByteReader& in) { e.painter.MoveTo(Read32(in)); }},
    {29, TwoCorners<&Painter::ExcludeClip>},
    {30, TwoCorners<&Painter::IntersectClip>},
    {31, [](Emf& e, ByteReader& in) { ScaleExtent(in, e.Now().viewportExtent); }},
    {32, [](Emf& e, ByteReader& in) { ScaleExtent(in, e.Now().windowExtent); }},
    {33, [](Emf& e, ByteReader&) { e.painter.Save(); }},
    {34, [](Emf& e, ByteReader& in) { e.painter.Restore(in.I32LE()); }},
    {35, [](Emf& e, ByteReader& in) { e.Now().world = ReadTransform(in); }},
    {36, ModifyTransform},
    {37, SelectObject},
    {38, CreatePen},
    {39, CreateBrush},
    {40, [](Emf& e, ByteReader& in) { e.painter.DeleteObject(in.U32LE()); }},
    {41, AngleArc},
    {42, TwoCorners<&Painter::Ellipse>},
    {43, TwoCorners<&Painter::Rectangle>},
    {44, RoundRect},
    {45, [](Emf& e, ByteReader& in) { ArcRecord(e, in, ArcKind::Arc); }},
    {46, [](Emf& e, ByteReader& in) { ArcRecord(e, in, ArcKind::Chord); }},
    {47, [](Emf& e, ByteReader& in) { ArcRecord(e, in, ArcKind::Pie); }},
    {54, [](Emf& e, ByteReader& in) { e.painter.LineTo(Read32(in)); }},
    {55, [](Emf& e, ByteReader& in) { ArcRecord(e, in, ArcKind::ArcTo); }},
    {56, PolyDraw<Read32, 8>},
    {57, [](Emf& e, ByteReader& in) { e.Now().clockwise = in.U32LE() == 2; }},
    {58, SetMiterLimit},
    {59, [](Emf& e, ByteReader&) { e.painter.BeginPath(); }},
    {60, [](Emf& e, ByteReader&) { e.painter.EndPath(); }},
    {61, [](Emf& e, ByteReader&) { e.painter.CloseFigure(); }},
    {62, [](Emf& e, ByteReader&) { e.painter.PaintPath(true, false); }},
    {63, [](Emf& e, ByteReader&) { e.painter.PaintPath(true, true); }},
    {64, [](Emf& e, ByteReader&) { e.painter.PaintPath(false, true); }},
    {67, [](Emf& e, ByteReader& in) { e.painter.ClipToPath(ReadCombination(in)); }},
    {68, [](Emf& e, ByteReader&) { e.painter.AbortPath(); }},
    {71, FillRegion},
    {73, [](Emf& e, ByteReader& in) { PaintRegion(e, in, 0x55); }},
    {74, [](Emf& e, ByteReader& in) { PaintRegion(e, in, e.Now().rop); }},
    {75, SelectClipRegion},
    {76, [](Emf& e, ByteReader& in) { BlitRecord(e, in, false); }},
    {77, [](Emf& e, ByteReader& in) { BlitRecord(e, in, true); }},
    {80, [](Emf& e, ByteReader& in) { DibRecord(e, in, false); }},
    {81, [](Emf& e, ByteReader& in) { DibRecord(e, in, true); }},
    {82, CreateFont},
    {83, [](Emf& e, ByteReader& in) { TextRecord(e, in, false); }},
    {84, [](Emf& e, ByteReader& in) { TextRecord(e, in, true); }},
    {85, [](Emf& e, ByteReader& in) { e.painter.PolyBezier(ReadPoly<Read16, 4>(in), false); }},
    {86, [](Emf& e, ByteReader& in) { e.painter.Polygons({ReadPoly<Read16, 4>(in)}); }},
    {87, [](Emf& e, ByteReader& in) { e.painter.PolyLine(ReadPoly<Read16, 4>(in)); }},
    {88, [](Emf& e, ByteReader& in) { e.painter.PolyBezier(ReadPoly<Read16, 4>(in), true); }},
    {89, [](Emf& e, ByteReader& in) { e.painter.PolyLineTo(ReadPoly<Read16, 4>(in)); }},
    {90, [](Emf& e, ByteReader& in) { e.painter.PolyLines(ReadPolyPoly<Read16, 4>(in)); }},
    {91, [](Emf& e, ByteReader& in) { e.painter.Polygons(ReadPolyPoly<Read16, 4>(in)); }},
    {92, PolyDraw<Read16, 4>},
    {93, CreatePattern},
    {94, CreatePattern},
    {95, ExtCreatePen},
    {114, AlphaBlend},
    {116, TransparentBlt},
    {118, GradientFill},
};

constexpr std::uint32_t kEndOfFile = 14;

} // namespace

bool ReadEmfFacts(ByteSpan file, FileFacts& facts) {
    ByteReader in(file);
    const auto type = in.U32LE(), size = in.U32LE();
    in.Seek(24);
    const auto frame = ReadRect(in);
    in.Seek(72);
    const double deviceX = in.I32LE(), deviceY = in.I32LE(), mmX = in.I32LE(), mmY = in.I32LE();
    if (!in.Ok() || type != 1 || size < 88 || deviceX <= 0 || deviceY <= 0 || mmX <= 0 || mmY <= 0) return false;
    facts.device.pixelsPerMmX = deviceX / mmX;
    facts.device.pixelsPerMmY = deviceY / mmY;
    // The frame is in hundredths of millimetres.
    facts.origin = {frame.left * deviceX / (mmX * 100), frame.top * deviceY / (mmY * 100)};
    facts.width = (double(frame.right) - frame.left) * deviceX / (mmX * 100);
    facts.height = (double(frame.bottom) - frame.top) * deviceY / (mmY * 100);
    facts.firstRecord = size;
    return facts.width > 0 && facts.height > 0;
}

void PlayEmf(ByteSpan file, const FileFacts& facts, Painter& painter) {
    ByteReader in(file);
    in.Seek(facts.firstRecord);
    while (!painter.Target().Exhausted()) {
        const auto start = in.Pos();
        const auto type = in.U32LE(), size = in.U32LE();
        if (!in.Ok() || type == kEndOfFile || size < 8) return;
        in.Seek(start);
        Emf emf{painter, in.TakeUpTo(size)};
        ByteReader parameters(emf.whole);
        parameters.Skip(8);
        for (const auto& row : kRows) {
            if (row.type == type) row.play(emf, parameters);
        }
    }
}

} // namespace pelorin::metafile
