#include "formats/metafile/wmf_records.h"

namespace pelorin::metafile {

namespace {

using namespace wmf;

std::vector<PointF> ReadPoints(ByteReader& in, std::size_t count) {
    std::vector<PointF> points;
    for (std::size_t i = 0; i < count && in.Left() >= 4; ++i) points.push_back(ReadXY(in));
    return points;
}

void PolyPolygon(Wmf& wmf, ByteReader& in) {
    const auto count = in.U16LE();
    std::vector<std::size_t> sizes;
    for (int i = 0; i < count && in.Left() >= 2; ++i) sizes.push_back(in.U16LE());
    std::vector<std::vector<PointF>> polygons;
    for (const auto size : sizes) polygons.push_back(ReadPoints(in, size));
    wmf.painter.Polygons(polygons);
}

void ArcRecord(Wmf& wmf, ByteReader& in, ArcKind kind) {
    const auto end = ReadYX(in), start = ReadYX(in), b = ReadYX(in), a = ReadYX(in);
    if (in.Ok()) wmf.painter.Arc(kind, a, b, start, end);
}

PointF Scaled(ByteReader& in, PointF extent) {
    const double yDown = in.I16LE(), yUp = in.I16LE(), xDown = in.I16LE(), xUp = in.I16LE();
    if (!in.Ok() || xDown == 0 || yDown == 0) return extent;
    return {extent.x * xUp / xDown, extent.y * yUp / yDown};
}

void Shift(ByteReader& in, PointF& origin) {
    const auto by = ReadYX(in);
    origin = {origin.x + by.x, origin.y + by.y};
}

template <auto Draw>
void TwoCorners(Wmf& wmf, ByteReader& in) {
    const auto b = ReadYX(in), a = ReadYX(in);
    if (in.Ok()) (wmf.painter.*Draw)(a, b);
}

void RoundRectRecord(Wmf& wmf, ByteReader& in) {
    const auto corner = ReadYX(in), b = ReadYX(in), a = ReadYX(in);
    if (in.Ok()) wmf.painter.RoundRect(a, b, corner);
}

void PixelRecord(Wmf& wmf, ByteReader& in) {
    const auto color = wmf.Color(in);
    const auto at = ReadYX(in);
    if (in.Ok()) wmf.painter.SetPixel(at, color);
}

constexpr Row kRows[] = {
    {0x001E, [](Wmf& w, ByteReader&) { w.painter.Save(); }},
    {0x0127, [](Wmf& w, ByteReader& in) { w.painter.Restore(in.I16LE()); }},
    {0x0102, [](Wmf& w, ByteReader& in) { w.Now().opaque = in.U16LE() != 1; }},
    {kSetMapMode, [](Wmf& w, ByteReader& in) { w.painter.SetMapMode(in.U16LE()); }},
    {0x0104, [](Wmf& w, ByteReader& in) { w.Now().rop = RopOfPen(in.U16LE()); }},
    {0x0107, [](Wmf& w, ByteReader& in) { SetShrinking(w.Now(), in.U16LE()); }},
    {0x0106, [](Wmf& w, ByteReader& in) { w.Now().winding = in.U16LE() == 2; }},
    {0x0201, [](Wmf& w, ByteReader& in) { w.Now().ground = w.Color(in); }},
    {0x020B, [](Wmf& w, ByteReader& in) { w.Now().windowOrigin = ReadYX(in); }},
    {kSetWindowExtent, [](Wmf& w, ByteReader& in) { w.painter.SetWindowExtent(ReadYX(in)); }},
    {0x020D, [](Wmf& w, ByteReader& in) { w.Now().viewportOrigin = ReadYX(in); }},
    {0x020E, [](Wmf& w, ByteReader& in) { w.painter.SetViewportExtent(ReadYX(in)); }},
    {0x020F, [](Wmf& w, ByteReader& in) { Shift(in, w.Now().windowOrigin); }},
    {0x0211, [](Wmf& w, ByteReader& in) { Shift(in, w.Now().viewportOrigin); }},
    {0x0213, [](Wmf& w, ByteReader& in) { w.painter.LineTo(ReadYX(in)); }},
    {0x0214, [](Wmf& w, ByteReader& in) { w.painter.MoveTo(ReadYX(in)); }},
    {0x0220, [](Wmf& w, ByteReader& in) { w.painter.OffsetClip(ReadYX(in)); }},
    {0x0324, [](Wmf& w, ByteReader& in) { w.painter.Polygons({ReadPoints(in, in.U16LE())}); }},
    {0x0325, [](Wmf& w, ByteReader& in) { w.painter.PolyLine(ReadPoints(in, in.U16LE())); }},
    {0x0410, [](Wmf& w, ByteReader& in) { w.painter.SetWindowExtent(Scaled(in, w.Now().windowExtent)); }},
    {0x0412, [](Wmf& w, ByteReader& in) { w.painter.SetViewportExtent(Scaled(in, w.Now().viewportExtent)); }},
    {0x0415, TwoCorners<&Painter::ExcludeClip>},
    {0x0416, TwoCorners<&Painter::IntersectClip>},
    {0x0418, TwoCorners<&Painter::Ellipse>},
    {0x041B, TwoCorners<&Painter::Rectangle>},
    {0x041F, PixelRecord},
    {0x0538, PolyPolygon},
    {0x061C, RoundRectRecord},
    {0x0817, [](Wmf& w, ByteReader& in) { ArcRecord(w, in, ArcKind::Arc); }},
    {0x081A, [](Wmf& w, ByteReader& in) { ArcRecord(w, in, ArcKind::Pie); }},
    {0x0830, [](Wmf& w, ByteReader& in) { ArcRecord(w, in, ArcKind::Chord); }},
};

std::vector<Row> RecordTable() {
    std::vector<Row> table;
    for (const auto rows : {std::span<const Row>(kRows), ObjectRows(), AreaRows(), TextRows()}) {
        table.insert(table.end(), rows.begin(), rows.end());
    }
    std::ranges::sort(table, {}, &Row::function);
    return table;
}

} // namespace

void PlayWmf(ByteSpan file, const FileFacts& facts, Painter& painter) {
    static const auto table = RecordTable();
    Wmf wmf{painter};
    auto& now = painter.Now();
    now.mapMode = MapMode::Anisotropic;
    now.windowOrigin = facts.windowOrigin;
    now.windowExtent = facts.windowExtent;
    now.viewportExtent = facts.viewportExtent;
    ByteReader in(file);
    in.Seek(facts.firstRecord);
    Record record;
    while (!painter.Target().Exhausted() && NextRecord(in, record)) {
        const auto row = std::ranges::lower_bound(table, record.function, {}, &Row::function);
        if (row != table.end() && row->function == record.function) row->play(wmf, record.parameters);
    }
}

} // namespace pelorin::metafile
