#include "formats/metafile/emf_records.h"

namespace pelorin::metafile {

namespace {

using namespace emf;

using Points = std::vector<PointF>;

constexpr std::size_t kMaxPoints = 1 << 20;

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
