#include "formats/metafile/emf_records.h"

namespace pelorin::metafile::emf {

namespace {

constexpr Rop kInvert = 0x55;

Combination ReadCombination(ByteReader& in) {
    const auto how = in.U32LE();
    return how >= 1 && how <= 5 ? static_cast<Combination>(how) : Combination::Copy;
}

// A header of 32 bytes and rectangles.
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

void PaintRegion(Emf& emf, ByteReader& in) {
    in.Skip(16 + 4);
    emf.painter.FillRegion({ReadRegion(in)}, emf.Now().brush, emf.Now().rop);
}

void InvertRegion(Emf& emf, ByteReader& in) {
    in.Skip(16 + 4);
    emf.painter.FillRegion({ReadRegion(in)}, {}, kInvert);
}

void FrameRegion(Emf& emf, ByteReader& in) {
    in.Skip(16 + 4);
    const auto* brush = emf.painter.Brush(in.U32LE());
    const auto thickness = Read32(in);
    if (brush) emf.painter.FrameRegion({ReadRegion(in)}, *brush, thickness);
}

void FillRegion(Emf& emf, ByteReader& in) {
    in.Skip(16 + 4);
    const auto* brush = emf.painter.Brush(in.U32LE());
    if (brush) emf.painter.FillRegion({ReadRegion(in)}, *brush, emf.Now().rop);
}

template <auto Change>
void ClipCorners(Emf& emf, ByteReader& in) {
    const auto a = Read32(in), b = Read32(in);
    if (in.Ok()) (emf.painter.*Change)(a, b);
}

constexpr Row kRows[] = {
    {26, [](Emf& e, ByteReader& in) { e.painter.OffsetClip(Read32(in)); }},
    {28, [](Emf& e, ByteReader&) { e.painter.KeepClip(); }},
    {29, ClipCorners<&Painter::ExcludeClip>},
    {30, ClipCorners<&Painter::IntersectClip>},
    {67, [](Emf& e, ByteReader& in) { e.painter.ClipToPath(ReadCombination(in)); }},
    {71, FillRegion},
    {72, FrameRegion},
    {73, InvertRegion},
    {74, PaintRegion},
    {75, SelectClipRegion},
};

} // namespace

std::span<const Row> RegionRows() {
    return kRows;
}

} // namespace pelorin::metafile::emf
