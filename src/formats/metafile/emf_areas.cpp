#include "formats/metafile/dib_source.h"
#include "formats/metafile/emf_records.h"

namespace pelorin::metafile::emf {

namespace {

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

} // namespace

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

} // namespace pelorin::metafile::emf
