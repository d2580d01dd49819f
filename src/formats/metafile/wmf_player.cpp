#include "base/text.h"
#include "formats/metafile/dib_source.h"
#include "formats/metafile/player.h"

namespace pelorin::metafile {

namespace {

constexpr std::size_t kPlaceableSize = 22, kHeaderSize = 18;
constexpr double kScreenDpi = 96, kScreenWidth = 1024, kScreenHeight = 768;

// One record is played; `in` holds its parameters.
struct Wmf {
    Painter& painter;

    State& Now() { return painter.Now(); }
};

// Parameters stand in reverse order: y before x, the lower right corner before the upper left one.
PointF ReadYX(ByteReader& in) {
    const double y = in.I16LE(), x = in.I16LE();
    return {x, y};
}

PointF ReadXY(ByteReader& in) {
    const double x = in.I16LE(), y = in.I16LE();
    return {x, y};
}

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

std::u32string Letters(ByteSpan bytes) {
    std::u32string letters;
    for (const auto unit : Utf8ToUtf16(Windows1252ToUtf8(AsText(bytes)))) letters.push_back(unit);
    return letters;
}

void TextOut(Wmf& wmf, ByteReader& in) {
    const auto count = in.U16LE();
    const auto letters = Letters(in.TakeUpTo(count));
    if (count & 1) in.TakeUpTo(1);
    TextLine line;
    line.at = ReadYX(in);
    line.letters = letters;
    if (in.Ok()) wmf.painter.Text(line);
}

void ExtTextOut(Wmf& wmf, ByteReader& in) {
    TextLine line;
    line.at = ReadYX(in);
    const auto count = in.U16LE(), options = in.U16LE();
    line.fillBox = (options & 2) != 0;
    line.clipToBox = (options & 4) != 0;
    line.hasBox = line.fillBox || line.clipToBox;
    if (line.hasBox) {
        line.boxFrom = ReadXY(in);
        line.boxTo = ReadXY(in);
    }
    const auto letters = Letters(in.TakeUpTo(count));
    if (count & 1) in.TakeUpTo(1);
    line.letters = letters;
    while (in.Left() >= 2 && line.advances.size() < letters.size()) line.advances.push_back(in.I16LE());
    if (in.Ok()) wmf.painter.Text(line);
}

void CreateFont(Wmf& wmf, ByteReader& in) {
    const int height = in.I16LE(), width = in.I16LE(), angle = in.I16LE();
    in.Skip(2);
    const int weight = in.I16LE();
    const bool italic = in.U8() != 0, underline = in.U8() != 0, strikeOut = in.U8() != 0;
    wmf.painter.AddObject(MakeFont(height, width, angle, weight, italic, underline, strikeOut));
}

void CreatePen(Wmf& wmf, ByteReader& in) {
    const auto style = in.U16LE();
    const int width = in.I16LE();
    in.Skip(2);
    wmf.painter.AddObject(MakePen(style, width, ReadColor(in)));
}

void CreateBrush(Wmf& wmf, ByteReader& in) {
    const auto style = in.U16LE();
    const auto color = ReadColor(in);
    wmf.painter.AddObject(MakeBrush(style, color, in.U16LE()));
}

// Both words are kinds; the picture stands behind them.
void CreatePattern(Wmf& wmf, ByteReader& in) {
    in.Skip(4);
    wmf.painter.AddObject(MakePatternBrush(DecodeDib(in.Rest(), {})));
}

void CreateDevicePattern(Wmf& wmf, ByteReader& in) {
    auto head = in;
    const auto header = head.Take(10);
    // 22 bytes of nothing stand between the header and the rows.
    head.Skip(22);
    Bytes bitmap(header.begin(), header.end());
    const auto rows = head.Rest();
    bitmap.insert(bitmap.end(), rows.begin(), rows.end());
    wmf.painter.AddObject(MakePatternBrush(DecodeDeviceBitmap(bitmap, wmf.Now().textColor, wmf.Now().ground)));
}

void CreateRegion(Wmf& wmf, ByteReader& in) {
    in.Skip(10);
    const auto scans = in.U16LE();
    in.Skip(2 + 8);
    RegionObject region;
    for (int i = 0; i < scans && in.Left() >= 6; ++i) {
        const auto count = in.U16LE();
        const int top = in.I16LE(), bottom = in.I16LE();
        for (int pair = 0; pair + 1 < count && in.Left() >= 4; pair += 2) {
            const int left = in.I16LE(), right = in.I16LE();
            region.parts.push_back({left, top, right, bottom});
        }
        in.Skip(2);
    }
    wmf.painter.AddObject(std::move(region));
}

// Source and destination of the blit records; the picture stands behind them.
BlitArea ReadArea(ByteReader& in, bool stretched) {
    BlitArea area;
    if (stretched) {
        area.sourceSize = ReadYX(in);
        area.from = ReadYX(in);
        area.size = ReadYX(in);
        area.at = ReadYX(in);
    } else {
        area.from = ReadYX(in);
        area.size = area.sourceSize = ReadYX(in);
        area.at = ReadYX(in);
    }
    return area;
}

Rop ReadRop(ByteReader& in) {
    return static_cast<Rop>(in.U32LE() >> 16);
}

// Without a picture the record is shorter, with an unused word before the destination.
void BlitRecord(Wmf& wmf, ByteReader& in, bool stretched, bool device) {
    const auto rop = ReadRop(in);
    const std::size_t plain = stretched ? 18 : 14;
    if (in.Left() <= plain && !NeedsSource(rop)) {
        in.Skip(stretched ? 8 : 4);
        in.Skip(2);
        const auto size = ReadYX(in), at = ReadYX(in);
        if (in.Ok()) wmf.painter.PatternBlit(at, size, rop);
        return;
    }
    const auto area = ReadArea(in, stretched);
    if (!in.Ok()) return;
    const auto picture =
        device ? DecodeDeviceBitmap(in.Rest(), wmf.Now().textColor, wmf.Now().ground) : DecodeDib(in.Rest(), {});
    wmf.painter.Blit(area, picture, rop);
}

void StretchDib(Wmf& wmf, ByteReader& in) {
    const auto rop = ReadRop(in);
    in.Skip(2);
    auto area = ReadArea(in, true);
    if (!in.Ok()) return;
    const auto picture = DecodeDib(in.Rest(), {});
    // Rows of the source are counted from the bottom.
    area.from.y = picture.Height() - area.from.y - area.sourceSize.y;
    wmf.painter.Blit(area, picture, rop);
}

void DibToDevice(Wmf& wmf, ByteReader& in) {
    in.Skip(6);
    BlitArea area;
    area.from = ReadYX(in);
    area.size = area.sourceSize = ReadYX(in);
    area.at = ReadYX(in);
    if (!in.Ok()) return;
    const auto picture = DecodeDib(in.Rest(), {});
    area.from.y = picture.Height() - area.from.y - area.sourceSize.y;
    wmf.painter.Blit(area, picture, kCopySource);
}

void PatternBlitRecord(Wmf& wmf, ByteReader& in) {
    const auto rop = ReadRop(in);
    const auto size = ReadYX(in), at = ReadYX(in);
    if (in.Ok()) wmf.painter.PatternBlit(at, size, rop);
}

void Scale(ByteReader& in, PointF& extent) {
    const double yDown = in.I16LE(), yUp = in.I16LE(), xDown = in.I16LE(), xUp = in.I16LE();
    if (!in.Ok() || xDown == 0 || yDown == 0) return;
    extent = {extent.x * xUp / xDown, extent.y * yUp / yDown};
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
    const auto color = ReadColor(in);
    const auto at = ReadYX(in);
    if (in.Ok()) wmf.painter.SetPixel(at, color);
}

void FillRegionRecord(Wmf& wmf, ByteReader& in) {
    const auto* region = wmf.painter.Region(in.U16LE());
    const auto* brush = wmf.painter.Brush(in.U16LE());
    if (region && brush) wmf.painter.FillRegion(*region, *brush, wmf.Now().rop);
}

void PaintRegionRecord(Wmf& wmf, ByteReader& in) {
    if (const auto* region = wmf.painter.Region(in.U16LE()))
        wmf.painter.FillRegion(*region, wmf.Now().brush, wmf.Now().rop);
}

void InvertRegionRecord(Wmf& wmf, ByteReader& in) {
    constexpr Rop kInvert = 0x55;
    if (const auto* region = wmf.painter.Region(in.U16LE())) wmf.painter.FillRegion(*region, {}, kInvert);
}

void ClipRegionRecord(Wmf& wmf, ByteReader& in) {
    const auto* region = wmf.painter.Region(in.U16LE());
    if (!region) return wmf.painter.ClearClip();
    wmf.painter.ClipToRegion(*region);
}

struct Row {
    std::uint16_t function;
    void (*play)(Wmf& wmf, ByteReader& in);
};

constexpr Row kRows[] = {
    {0x001E, [](Wmf& w, ByteReader&) { w.painter.Save(); }},
    {0x0127, [](Wmf& w, ByteReader& in) { w.painter.Restore(in.I16LE()); }},
    {0x0102, [](Wmf& w, ByteReader& in) { w.Now().opaque = in.U16LE() != 1; }},
    {0x0103,
     [](Wmf& w, ByteReader& in) {
         const auto mode = in.U16LE();
         if (mode >= 1 && mode <= 8) w.Now().mapMode = static_cast<MapMode>(mode);
     }},
    {0x0104, [](Wmf& w, ByteReader& in) { w.Now().rop = RopOfPen(in.U16LE()); }},
    {0x0106, [](Wmf& w, ByteReader& in) { w.Now().winding = in.U16LE() == 2; }},
    {0x0108, [](Wmf& w, ByteReader& in) { w.Now().letterSpace = in.I16LE(); }},
    {0x012A, InvertRegionRecord},
    {0x012B, PaintRegionRecord},
    {0x012C, ClipRegionRecord},
    {0x012D, [](Wmf& w, ByteReader& in) { w.painter.SelectObject(in.U16LE()); }},
    {0x012E, [](Wmf& w, ByteReader& in) { w.Now().textAlign = in.U16LE(); }},
    {0x0142, CreatePattern},
    {0x01F0, [](Wmf& w, ByteReader& in) { w.painter.DeleteObject(in.U16LE()); }},
    {0x01F9, CreateDevicePattern},
    {0x0201, [](Wmf& w, ByteReader& in) { w.Now().ground = ReadColor(in); }},
    {0x0209, [](Wmf& w, ByteReader& in) { w.Now().textColor = ReadColor(in); }},
    {0x020B, [](Wmf& w, ByteReader& in) { w.Now().windowOrigin = ReadYX(in); }},
    {0x020C, [](Wmf& w, ByteReader& in) { w.Now().windowExtent = ReadYX(in); }},
    {0x020D, [](Wmf& w, ByteReader& in) { w.Now().viewportOrigin = ReadYX(in); }},
    {0x020E, [](Wmf& w, ByteReader& in) { w.Now().viewportExtent = ReadYX(in); }},
    {0x020F, [](Wmf& w, ByteReader& in) { Shift(in, w.Now().windowOrigin); }},
    {0x0211, [](Wmf& w, ByteReader& in) { Shift(in, w.Now().viewportOrigin); }},
    {0x0213, [](Wmf& w, ByteReader& in) { w.painter.LineTo(ReadYX(in)); }},
    {0x0214, [](Wmf& w, ByteReader& in) { w.painter.MoveTo(ReadYX(in)); }},
    {0x0220, [](Wmf& w, ByteReader& in) { w.painter.OffsetClip(ReadYX(in)); }},
    {0x0228, FillRegionRecord},
    {0x02FA, CreatePen},
    {0x02FB, CreateFont},
    {0x02FC, CreateBrush},
    {0x0324, [](Wmf& w, ByteReader& in) { w.painter.Polygons({ReadPoints(in, in.U16LE())}); }},
    {0x0325, [](Wmf& w, ByteReader& in) { w.painter.PolyLine(ReadPoints(in, in.U16LE())); }},
    {0x0410, [](Wmf& w, ByteReader& in) { Scale(in, w.Now().windowExtent); }},
    {0x0412, [](Wmf& w, ByteReader& in) { Scale(in, w.Now().viewportExtent); }},
    {0x0415, TwoCorners<&Painter::ExcludeClip>},
    {0x0416, TwoCorners<&Painter::IntersectClip>},
    {0x0418, TwoCorners<&Painter::Ellipse>},
    {0x041B, TwoCorners<&Painter::Rectangle>},
    {0x041F, PixelRecord},
    {0x0521, TextOut},
    {0x0538, PolyPolygon},
    {0x061C, RoundRectRecord},
    {0x061D, PatternBlitRecord},
    {0x06FF, CreateRegion},
    {0x0817, [](Wmf& w, ByteReader& in) { ArcRecord(w, in, ArcKind::Arc); }},
    {0x081A, [](Wmf& w, ByteReader& in) { ArcRecord(w, in, ArcKind::Pie); }},
    {0x0830, [](Wmf& w, ByteReader& in) { ArcRecord(w, in, ArcKind::Chord); }},
    {0x0922, [](Wmf& w, ByteReader& in) { BlitRecord(w, in, false, true); }},
    {0x0940, [](Wmf& w, ByteReader& in) { BlitRecord(w, in, false, false); }},
    {0x0A32, ExtTextOut},
    {0x0B23, [](Wmf& w, ByteReader& in) { BlitRecord(w, in, true, true); }},
    {0x0B41, [](Wmf& w, ByteReader& in) { BlitRecord(w, in, true, false); }},
    {0x0D33, DibToDevice},
    {0x0F43, StretchDib},
};

// Records that make an object nobody can use still take a place in the table of objects.
constexpr std::uint16_t kPlaceTakers[] = {0x00F7, 0x06FE, 0x02FD};

struct WmfRecord {
    std::uint16_t function = 0;
    ByteReader parameters;
};

// The next record; false at the end and where lengths make no sense.
bool NextRecord(ByteReader& in, WmfRecord& record) {
    const auto words = in.U32LE();
    record.function = in.U16LE();
    if (!in.Ok() || words < 3 || record.function == 0) return false;
    record.parameters = ByteReader(in.TakeUpTo((std::uint64_t{words} - 3) * 2));
    return true;
}

void PlayRecord(Wmf& wmf, WmfRecord& record) {
    for (const auto& row : kRows) {
        if (row.function == record.function) return row.play(wmf, record.parameters);
    }
    const auto* taker = std::find(std::begin(kPlaceTakers), std::end(kPlaceTakers), record.function);
    if (taker != std::end(kPlaceTakers)) wmf.painter.AddObject(RegionObject{});
}

bool IsHeader(ByteReader in) {
    const auto type = in.U16LE(), size = in.U16LE(), version = in.U16LE();
    return in.Ok() && (type == 1 || type == 2) && size == kHeaderSize / 2 && (version == 0x100 || version == 0x300);
}

} // namespace

bool ReadPlaceableFacts(ByteSpan file, FileFacts& facts) {
    ByteReader in(file);
    in.Skip(6);
    const double left = in.I16LE(), top = in.I16LE(), right = in.I16LE(), bottom = in.I16LE();
    const double perInch = in.U16LE();
    in.Seek(kPlaceableSize);
    if (!in.Ok() || perInch == 0 || left == right || top == bottom || !IsHeader(in)) return false;
    facts.width = std::abs(right - left) * kScreenDpi / perInch;
    facts.height = std::abs(bottom - top) * kScreenDpi / perInch;
    facts.windowOrigin = {left, top};
    facts.windowExtent = {right - left, bottom - top};
    facts.firstRecord = kPlaceableSize + kHeaderSize;
    return true;
}

// Nothing says how large such a file is: the first window that it sets up gives the proportions.
bool ReadPlainFacts(ByteSpan file, FileFacts& facts) {
    ByteReader in(file);
    if (!IsHeader(in)) return false;
    in.Seek(kHeaderSize);
    facts.firstRecord = kHeaderSize;
    facts.windowExtent = {kScreenWidth, kScreenHeight};
    WmfRecord record;
    while (NextRecord(in, record)) {
        if (record.function != 0x020C) continue;
        const auto extent = ReadYX(record.parameters);
        if (extent.x != 0 && extent.y != 0) facts.windowExtent = extent;
        break;
    }
    facts.width = std::abs(facts.windowExtent.x);
    facts.height = std::abs(facts.windowExtent.y);
    const double shrink = std::max({1.0, facts.width / kScreenWidth, facts.height / kScreenHeight});
    facts.width /= shrink;
    facts.height /= shrink;
    return true;
}

void PlayWmf(ByteSpan file, const FileFacts& facts, Painter& painter) {
    Wmf wmf{painter};
    auto& now = painter.Now();
    now.mapMode = MapMode::Anisotropic;
    now.windowOrigin = facts.windowOrigin;
    now.windowExtent = facts.windowExtent;
    now.viewportExtent = {facts.width, facts.height};
    ByteReader in(file);
    in.Seek(facts.firstRecord);
    WmfRecord record;
    while (!painter.Target().Exhausted() && NextRecord(in, record)) PlayRecord(wmf, record);
}

} // namespace pelorin::metafile
