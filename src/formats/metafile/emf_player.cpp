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
    auto first = emf.Now().position;
    for (const auto& point : points) {
        const auto kind = in.U8();
        if (kind == 6) {
            emf.painter.MoveTo(point);
            first = point;
            continue;
        }
        if ((kind & 6) == 2) emf.painter.LineTo(point);
        if ((kind & 6) == 4) curve.push_back(point);
        if (curve.size() == 3) {
            emf.painter.PolyBezier(curve, true);
            curve.clear();
        }
        if (kind & 1) emf.painter.CloseTo(first);
    }
}

// ---- state ----

PointF Scaled(ByteReader& in, PointF extent) {
    const double xUp = in.I32LE(), xDown = in.I32LE(), yUp = in.I32LE(), yDown = in.I32LE();
    if (!in.Ok() || xDown == 0 || yDown == 0) return extent;
    return {extent.x * xUp / xDown, extent.y * yUp / yDown};
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

constexpr Row kRows[] = {
    {2, [](Emf& e, ByteReader& in) { e.painter.PolyBezier(ReadPoly<Read32, 8>(in), false); }},
    {3, [](Emf& e, ByteReader& in) { e.painter.Polygons({ReadPoly<Read32, 8>(in)}); }},
    {4, [](Emf& e, ByteReader& in) { e.painter.PolyLine(ReadPoly<Read32, 8>(in)); }},
    {5, [](Emf& e, ByteReader& in) { e.painter.PolyBezier(ReadPoly<Read32, 8>(in), true); }},
    {6, [](Emf& e, ByteReader& in) { e.painter.PolyLineTo(ReadPoly<Read32, 8>(in)); }},
    {7, [](Emf& e, ByteReader& in) { e.painter.PolyLines(ReadPolyPoly<Read32, 8>(in)); }},
    {8, [](Emf& e, ByteReader& in) { e.painter.Polygons(ReadPolyPoly<Read32, 8>(in)); }},
    {9, [](Emf& e, ByteReader& in) { e.painter.SetWindowExtent(Read32(in)); }},
    {10, [](Emf& e, ByteReader& in) { e.Now().windowOrigin = Read32(in); }},
    {11, [](Emf& e, ByteReader& in) { e.painter.SetViewportExtent(Read32(in)); }},
    {12, [](Emf& e, ByteReader& in) { e.Now().viewportOrigin = Read32(in); }},
    {13,
     [](Emf& e, ByteReader& in) { e.Now().brushOrigin = ToPixel(e.painter.Reference().toCanvas.Apply(Read32(in))); }},
    {15,
     [](Emf& e, ByteReader& in) {
         const auto at = Read32(in);
         e.painter.SetPixel(at, e.Color(in));
     }},
    {17, [](Emf& e, ByteReader& in) { e.painter.SetMapMode(in.U32LE()); }},
    {18, [](Emf& e, ByteReader& in) { e.Now().opaque = in.U32LE() != 1; }},
    {19, [](Emf& e, ByteReader& in) { e.Now().winding = in.U32LE() == 2; }},
    {20, [](Emf& e, ByteReader& in) { e.Now().rop = RopOfPen(in.U32LE()); }},
    {21, [](Emf& e, ByteReader& in) { SetShrinking(e.Now(), in.U32LE()); }},
    {22, [](Emf& e, ByteReader& in) { e.Now().textAlign = in.U32LE(); }},
    {24, [](Emf& e, ByteReader& in) { e.Now().textColor = e.Color(in); }},
    {25, [](Emf& e, ByteReader& in) { e.Now().ground = e.Color(in); }},
    {27, [](Emf& e, ByteReader& in) { e.painter.MoveTo(Read32(in)); }},
    {31, [](Emf& e, ByteReader& in) { e.painter.SetViewportExtent(Scaled(in, e.Now().viewportExtent)); }},
    {32, [](Emf& e, ByteReader& in) { e.painter.SetWindowExtent(Scaled(in, e.Now().windowExtent)); }},
    {33, [](Emf& e, ByteReader&) { e.painter.Save(); }},
    {34, [](Emf& e, ByteReader& in) { e.painter.Restore(in.I32LE()); }},
    {35, [](Emf& e, ByteReader& in) { e.Now().world = ReadTransform(in); }},
    {36, ModifyTransform},
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
    {66, [](Emf& e, ByteReader&) { e.painter.WidenPath(); }},
    {68, [](Emf& e, ByteReader&) { e.painter.AbortPath(); }},
    {85, [](Emf& e, ByteReader& in) { e.painter.PolyBezier(ReadPoly<Read16, 4>(in), false); }},
    {86, [](Emf& e, ByteReader& in) { e.painter.Polygons({ReadPoly<Read16, 4>(in)}); }},
    {87, [](Emf& e, ByteReader& in) { e.painter.PolyLine(ReadPoly<Read16, 4>(in)); }},
    {88, [](Emf& e, ByteReader& in) { e.painter.PolyBezier(ReadPoly<Read16, 4>(in), true); }},
    {89, [](Emf& e, ByteReader& in) { e.painter.PolyLineTo(ReadPoly<Read16, 4>(in)); }},
    {90, [](Emf& e, ByteReader& in) { e.painter.PolyLines(ReadPolyPoly<Read16, 4>(in)); }},
    {91, [](Emf& e, ByteReader& in) { e.painter.Polygons(ReadPolyPoly<Read16, 4>(in)); }},
    {92, PolyDraw<Read16, 4>},
};

constexpr std::uint32_t kEndOfFile = 14, kLastType = 122;

std::array<Play, kLastType + 1> RecordTable() {
    std::array<Play, kLastType + 1> table{};
    for (const auto rows : {std::span<const Row>(kRows), ObjectRows(), RegionRows(), AreaRows(), TextRows()}) {
        for (const auto& row : rows) table[row.type] = row.play;
    }
    return table;
}

} // namespace

bool ReadEmfFacts(ByteSpan file, FileFacts& facts) {
    ByteReader in(file);
    const auto type = in.U32LE(), size = in.U32LE();
    in.Seek(24);
    const auto frame = ReadRect(in);
    in.Seek(72);
    const double deviceX = in.I32LE(), deviceY = in.I32LE(), mmX = in.I32LE(), mmY = in.I32LE();
    if (!in.Ok() || type != 1 || size < 88 || deviceX <= 0 || deviceY <= 0 || mmX <= 0 || mmY <= 0) return false;
    facts.device.size = {deviceX, deviceY};
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
    static const auto table = RecordTable();
    painter.Now().advanced = true;
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
        if (type < std::size(table) && table[type]) table[type](emf, parameters);
    }
}

} // namespace pelorin::metafile
