#include "formats/metafile/dib_source.h"
#include "formats/metafile/wmf_records.h"

namespace pelorin::metafile::wmf {

namespace {

void CreateFont(Wmf& wmf, ByteReader& in) {
    const double height = in.I16LE(), width = in.I16LE();
    wmf.painter.AddObject(ReadFont(in, height, width, 2, 1));
}

void CreatePen(Wmf& wmf, ByteReader& in) {
    const auto style = in.U16LE();
    const int width = in.I16LE();
    in.Skip(2);
    wmf.painter.AddObject(MakePen(style, width, wmf.Color(in)));
}

void CreateBrush(Wmf& wmf, ByteReader& in) {
    const auto style = in.U16LE();
    const auto color = wmf.Color(in);
    wmf.painter.AddObject(MakeBrush(style, color, in.U16LE(), wmf.Now()));
}

// The kind of the brush, that of its colours, and the picture.
void CreatePattern(Wmf& wmf, ByteReader& in) {
    in.Skip(2);
    const auto table = in.U16LE() == 1 ? DibTable::Numbers : DibTable::Colors;
    wmf.painter.AddObject(
        MakePatternBrush(Charged(wmf.painter.Target(), DecodeDib(in.Rest(), {}, table, wmf.Now().palette), 1)));
}

void CreateDevicePattern(Wmf& wmf, ByteReader& in) {
    auto head = in;
    const auto header = head.Take(10);
    // 22 bytes of nothing stand between the header and the rows.
    head.Skip(22);
    Bytes bitmap(header.begin(), header.end());
    const auto rows = head.Rest();
    bitmap.insert(bitmap.end(), rows.begin(), rows.end());
    auto picture = Charged(wmf.painter.Target(), DecodeDeviceBitmap(bitmap, 0, 0xFFFFFF), 1);
    const bool twoColors = header.size() == 10 && header[9] == 1;
    wmf.painter.AddObject(twoColors ? MakeTwoColorBrush(std::move(picture)) : MakePatternBrush(std::move(picture)));
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

void CreatePalette(Wmf& wmf, ByteReader& in) {
    in.Skip(2);
    const auto count = in.U16LE();
    wmf.painter.AddObject(std::make_shared<const std::vector<Rgb>>(ReadPaletteEntries(in, count)));
}

void SetPaletteEntries(Wmf& wmf, ByteReader& in) {
    const auto first = in.U16LE(), count = in.U16LE();
    wmf.painter.ChangePalette(first, ReadPaletteEntries(in, count));
}

// An object that nobody can use still takes a place in the table of objects.
void TakePlace(Wmf& wmf, ByteReader&) {
    wmf.painter.AddObject(RegionObject{});
}

constexpr Row kRows[] = {
    {0x0037, SetPaletteEntries},
    {0x00F7, CreatePalette},
    {0x012D, [](Wmf& w, ByteReader& in) { w.painter.SelectObject(in.U16LE()); }},
    {0x0142, CreatePattern},
    {0x01F0, [](Wmf& w, ByteReader& in) { w.painter.DeleteObject(in.U16LE()); }},
    {0x01F9, CreateDevicePattern},
    {0x0234, [](Wmf& w, ByteReader& in) { w.painter.SelectPalette(in.U16LE()); }},
    {0x02FA, CreatePen},
    {0x02FB, CreateFont},
    {0x02FC, CreateBrush},
    {0x02FD, TakePlace},
    {0x0436, SetPaletteEntries},
    {0x06FE, TakePlace},
    {0x06FF, CreateRegion},
};

} // namespace

std::span<const Row> ObjectRows() {
    return kRows;
}

} // namespace pelorin::metafile::wmf
