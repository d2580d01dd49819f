#include "formats/metafile/dib_source.h"
#include "formats/metafile/wmf_records.h"

namespace pelorin::metafile::wmf {

namespace {

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
    auto picture =
        device ? DecodeDeviceBitmap(in.Rest(), wmf.Now().textColor, wmf.Now().ground) : DecodeDib(in.Rest(), {});
    picture = Charged(wmf.painter.Target(), std::move(picture));
    wmf.painter.Blit(area, picture, rop);
}

// What the colour table is stands before the picture.
Surface DecodeWith(Wmf& wmf, ByteReader& in, unsigned usage) {
    return Charged(wmf.painter.Target(), DecodeDib(in.Rest(), {}, TableOfUsage(usage), wmf.Now().palette));
}

void StretchDib(Wmf& wmf, ByteReader& in) {
    const auto rop = ReadRop(in);
    const auto usage = in.U16LE();
    auto area = ReadArea(in, true);
    if (!in.Ok()) return;
    const auto picture = DecodeWith(wmf, in, usage);
    // Rows of the source are counted from the bottom.
    area.from.y = picture.Height() - area.from.y - area.sourceSize.y;
    wmf.painter.Blit(area, picture, rop);
}

void DibToDevice(Wmf& wmf, ByteReader& in) {
    const auto usage = in.U16LE();
    in.Skip(4);
    BlitArea area;
    area.from = ReadYX(in);
    area.size = area.sourceSize = ReadYX(in);
    area.at = ReadYX(in);
    if (!in.Ok()) return;
    const auto picture = DecodeWith(wmf, in, usage);
    area.from.y = picture.Height() - area.from.y - area.sourceSize.y;
    wmf.painter.Blit(area, picture, kCopySource);
}

void PatternBlitRecord(Wmf& wmf, ByteReader& in) {
    const auto rop = ReadRop(in);
    const auto size = ReadYX(in), at = ReadYX(in);
    if (in.Ok()) wmf.painter.PatternBlit(at, size, rop);
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

void FrameRegionRecord(Wmf& wmf, ByteReader& in) {
    const auto* region = wmf.painter.Region(in.U16LE());
    const auto* brush = wmf.painter.Brush(in.U16LE());
    const auto thickness = ReadYX(in);
    if (in.Ok() && region && brush) wmf.painter.FrameRegion(*region, *brush, thickness);
}

void FloodFill(Wmf& wmf, ByteReader& in, bool upToColor) {
    const auto color = wmf.Color(in);
    const auto at = ReadYX(in);
    if (in.Ok()) wmf.painter.FloodFill(at, color, upToColor);
}

constexpr Row kRows[] = {
    {0x012A, InvertRegionRecord},
    {0x012B, PaintRegionRecord},
    {0x012C, ClipRegionRecord},
    {0x0228, FillRegionRecord},
    {0x0419, [](Wmf& w, ByteReader& in) { FloodFill(w, in, true); }},
    {0x0429, FrameRegionRecord},
    {0x0548, [](Wmf& w, ByteReader& in) { FloodFill(w, in, in.U16LE() == 0); }},
    {0x061D, PatternBlitRecord},
    {0x0922, [](Wmf& w, ByteReader& in) { BlitRecord(w, in, false, true); }},
    {0x0940, [](Wmf& w, ByteReader& in) { BlitRecord(w, in, false, false); }},
    {0x0B23, [](Wmf& w, ByteReader& in) { BlitRecord(w, in, true, true); }},
    {0x0B41, [](Wmf& w, ByteReader& in) { BlitRecord(w, in, true, false); }},
    {0x0D33, DibToDevice},
    {0x0F43, StretchDib},
};

} // namespace

std::span<const Row> AreaRows() {
    return kRows;
}

} // namespace pelorin::metafile::wmf
