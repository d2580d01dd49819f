#include "formats/metafile/dib_source.h"
#include "formats/metafile/emf_records.h"

namespace pelorin::metafile::emf {

namespace {

// The records with a source context: bounds, target, operation, source place, its transform, ground, usage, bitmap.
struct ContextBlit {
    BlitArea area;
    std::uint32_t operation = 0;
    Surface source;
};

// From the units of the source's place and size to its pixels; those of some writers are all 0.
Transform ReadSourceTransform(ByteReader& in) {
    const auto transform = ReadTransform(in);
    return transform.Determinant() == 0 ? Transform{} : transform;
}

ContextBlit ReadContextBlit(Emf& emf, ByteReader& in, bool stretched) {
    ContextBlit blit;
    in.Skip(16);
    blit.area.at = Read32(in);
    blit.area.size = blit.area.sourceSize = Read32(in);
    blit.operation = in.U32LE();
    blit.area.from = Read32(in);
    const auto toPixels = ReadSourceTransform(in);
    in.Skip(4);
    const auto usage = in.U32LE();
    const auto places = DibPlaces::Read(in);
    if (stretched) blit.area.sourceSize = Read32(in);
    blit.area.from = toPixels.Apply(blit.area.from);
    blit.area.sourceSize = toPixels.ApplyVector(blit.area.sourceSize);
    if (in.Ok()) blit.source = places.Decode(emf, usage);
    return blit;
}

// Place, usage and bitmap of the mask.
BlitMask ReadMask(Emf& emf, ByteReader& in) {
    BlitMask mask;
    mask.from = Read32(in);
    const auto usage = in.U32LE();
    const auto places = DibPlaces::Read(in);
    if (in.Ok()) mask.bits = places.Decode(emf, usage);
    return mask;
}

void GradientFill(Emf& emf, ByteReader& in) {
    in.Skip(16);
    const auto corners = in.U32LE(), shapes = in.U32LE(), mode = in.U32LE();
    std::vector<ShadedCorner> vertices;
    for (std::uint32_t i = 0; i < corners && in.Left() >= 16; ++i) {
        ShadedCorner corner{Read32(in)};
        for (auto& channel : corner.channels) channel = in.U16LE() / 256.0;
        in.Skip(2);
        vertices.push_back(corner);
    }
    constexpr std::uint32_t kDownwards = 1, kTriangles = 2;
    for (std::uint32_t i = 0; i < shapes && in.Left() >= 8; ++i) {
        const std::size_t first = in.U32LE(), second = in.U32LE(), third = mode == kTriangles ? in.U32LE() : 0;
        if (first >= vertices.size() || second >= vertices.size() || third >= vertices.size()) break;
        if (mode == kTriangles) {
            emf.painter.ShadeTriangle(vertices[first], vertices[second], vertices[third]);
        } else {
            emf.painter.ShadeBox(vertices[first], vertices[second], mode == kDownwards);
        }
    }
}

// `stretched` where the source has a size of its own.
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

// The operation of what the mask chooses stands where the others have theirs, the other one above it.
void MaskBlt(Emf& emf, ByteReader& in) {
    const auto blit = ReadContextBlit(emf, in, false);
    const auto mask = ReadMask(emf, in);
    if (!in.Ok()) return;
    const auto chosen = static_cast<Rop>(blit.operation >> 16), others = static_cast<Rop>(blit.operation >> 24);
    if (blit.source) {
        emf.painter.MaskedBlit(blit.area, blit.source, mask, chosen, mask.bits ? others : chosen);
    } else {
        emf.painter.PatternBlit(blit.area.at, blit.area.size, chosen);
    }
}

// Bounds, three corners, source place and size, its transform, ground, usage, bitmap and mask.
void PlgBlt(Emf& emf, ByteReader& in) {
    in.Skip(16);
    const auto a = Read32(in), b = Read32(in), c = Read32(in), from = Read32(in), size = Read32(in);
    const auto toPixels = ReadSourceTransform(in);
    in.Skip(4);
    const auto usage = in.U32LE();
    const auto places = DibPlaces::Read(in);
    const auto mask = ReadMask(emf, in);
    if (in.Ok())
        emf.painter.SlantedBlit({a, b, c}, toPixels.Apply(from), toPixels.ApplyVector(size), places.Decode(emf, usage),
                                mask);
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

// The bitmap alone, counted from its lower left corner; `stretched` with an operation and a size of its own.
void DibRecord(Emf& emf, ByteReader& in, bool stretched) {
    in.Skip(16);
    BlitArea area;
    area.at = Read32(in);
    area.from = Read32(in);
    area.sourceSize = area.size = Read32(in);
    const auto places = DibPlaces::Read(in);
    const auto usage = in.U32LE();
    Rop rop = kCopySource;
    if (stretched) {
        rop = static_cast<Rop>(in.U32LE() >> 16);
        area.size = Read32(in);
    }
    if (!in.Ok()) return;
    const auto source = places.Decode(emf, usage);
    area.from.y = source.Height() - area.from.y - area.sourceSize.y;
    emf.painter.Blit(area, source, rop);
}

void ExtFloodFill(Emf& emf, ByteReader& in) {
    const auto at = Read32(in);
    const auto color = emf.Color(in);
    const bool upToColor = in.U32LE() == 0;
    if (in.Ok()) emf.painter.FloodFill(at, color, upToColor);
}

constexpr Row kRows[] = {
    {53, ExtFloodFill},
    {76, [](Emf& e, ByteReader& in) { BlitRecord(e, in, false); }},
    {77, [](Emf& e, ByteReader& in) { BlitRecord(e, in, true); }},
    {78, MaskBlt},
    {79, PlgBlt},
    {80, [](Emf& e, ByteReader& in) { DibRecord(e, in, false); }},
    {81, [](Emf& e, ByteReader& in) { DibRecord(e, in, true); }},
    {114, AlphaBlend},
    {116, TransparentBlt},
    {118, GradientFill},
};

} // namespace

std::span<const Row> AreaRows() {
    return kRows;
}

} // namespace pelorin::metafile::emf
