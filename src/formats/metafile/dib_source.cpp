#include "formats/metafile/dib_source.h"

#include "formats/jpeg.h"
#include "formats/png.h"
#include "formats/reader_support.h"
#include "pixel/visit_depth.h"

#include <bit>

namespace pelorin::metafile {

namespace {

enum Compression : std::uint32_t { kPlain = 0, kRle8 = 1, kRle4 = 2, kMasks = 3, kJpeg = 4, kPng = 5 };

struct Header {
    int width = 0, height = 0, bits = 0;
    bool topDown = false;
    std::uint32_t compression = 0;
    std::uint32_t masks[3] = {0x7C00, 0x3E0, 0x1F};
    std::array<Rgb, 256> table{};

    [[nodiscard]] std::size_t Stride() const { return DibStride(width, bits); }
};

void ReadMasks(ByteReader& in, Header& header) {
    if (header.compression == kMasks) {
        for (auto& mask : header.masks) mask = in.U32LE();
    } else if (header.bits == 32) {
        header.masks[0] = 0xFF0000, header.masks[1] = 0xFF00, header.masks[2] = 0xFF;
    }
}

// Blue, green, red.
Rgb ReadTriple(ByteReader& in) {
    const auto blue = in.U8(), green = in.U8(), red = in.U8();
    return Rgb{red} << 16 | Rgb{green} << 8 | blue;
}

struct TableForm {
    DibTable kind = DibTable::Colors;
    bool apart = false; ///< the rows do not stand behind the table, which then may break off

    [[nodiscard]] std::size_t EntrySize(bool triples) const { return kind == DibTable::Numbers ? 2 : triples ? 3 : 4; }
};

void ReadTable(ByteReader& in, Header& header, std::uint32_t colors, bool triples, const TableForm& form,
               const Palette& palette) {
    const std::size_t most = std::size_t{1} << header.bits;
    auto count = colors == 0 || colors > most ? most : colors;
    if (form.apart) count = std::min(count, in.Left() / form.EntrySize(triples));
    if (form.kind == DibTable::None) count = most;
    for (std::size_t i = 0; i < count; ++i) {
        switch (form.kind) {
        case DibTable::Numbers: header.table[i] = PaletteColor(palette, in.U16LE()); break;
        case DibTable::None: header.table[i] = PaletteColor(palette, i); break;
        case DibTable::Colors: header.table[i] = triples ? ReadTriple(in) : in.U32LE() & 0xFFFFFF;
        }
    }
}

// Afterwards `in` stands behind the table.
bool ReadHeader(ByteReader& in, Header& header, const TableForm& form, const Palette& palette) {
    const auto size = in.U32LE();
    std::uint32_t colors = 0;
    std::int64_t height = 0;
    if (size == 12) {
        header.width = in.U16LE();
        height = in.U16LE();
        in.Skip(2);
        header.bits = in.U16LE();
    } else {
        if (size < 40) return false;
        header.width = in.I32LE();
        height = in.I32LE();
        in.Skip(2);
        header.bits = in.U16LE();
        header.compression = in.U32LE();
        in.Skip(12);
        colors = in.U32LE();
        in.Skip(4);
        if (size > 40 && header.compression == kMasks) {
            ReadMasks(in, header);
            in.Skip(size < 52 ? 0 : size - 52);
        } else {
            in.Skip(size - 40);
            ReadMasks(in, header);
        }
    }
    header.topDown = height < 0;
    if (header.topDown) height = -height;
    if (!in.Ok() || (!IsDibDepth(header.bits) && header.compression <= kMasks) ||
        !IsPictureSize(header.width, height) || header.compression > kPng)
        return false;
    header.height = static_cast<int>(height);
    if (header.compression > kMasks) return true;
    if (header.bits <= 8) {
        ReadTable(in, header, colors, size == 12, form, palette);
    } else {
        in.Skip(std::uint64_t{colors} * 4);
    }
    return in.Ok();
}

std::uint32_t Masked(std::uint32_t value, std::uint32_t mask) {
    if (mask == 0) return 0;
    const auto top = std::uint64_t{mask} >> std::countr_zero(mask);
    return static_cast<std::uint32_t>(((value & mask) >> std::countr_zero(mask)) * std::uint64_t{255} / top);
}

Argb PixelAt(const Header& header, const std::uint8_t* row, int x) {
    switch (header.bits) {
    case 1: return 0xFF000000u | header.table[IndexAt<1>(row, x)];
    case 4: return 0xFF000000u | header.table[IndexAt<4>(row, x)];
    case 8: return 0xFF000000u | header.table[IndexAt<8>(row, x)];
    case 24: return Pixel24{}(row, x);
    default: break;
    }
    const auto value =
        header.bits == 32 ? LoadU32LE(row + std::ptrdiff_t{4} * x) : LoadU16LE(row + std::ptrdiff_t{2} * x);
    const Argb alpha = header.bits == 32 ? value & 0xFF000000u : 0xFF000000u;
    return alpha | Masked(value, header.masks[0]) << 16 | Masked(value, header.masks[1]) << 8 |
           Masked(value, header.masks[2]);
}

// Run lengths of 4 and 8 bits a pixel into bytes of one index each, the bottom row first. What no run covers is 0.
Bytes ExpandRuns(ByteReader in, const Header& header) {
    const auto width = static_cast<std::size_t>(header.width), height = static_cast<std::size_t>(header.height);
    Bytes indices(width * height);
    const bool nibbles = header.compression == kRle4;
    std::size_t x = 0, y = 0;
    const auto put = [&](unsigned index) {
        if (x < width && y < height) indices[y * width + x] = static_cast<std::uint8_t>(index);
        ++x;
    };
    while (in.Ok() && y < height) {
        const unsigned count = in.U8(), code = in.U8();
        if (!in.Ok()) break;
        if (count > 0) {
            for (unsigned i = 0; i < count; ++i) put(nibbles ? (i % 2 ? code & 15 : code >> 4) : code);
        } else if (code == 0) {
            x = 0, ++y;
        } else if (code == 1) {
            break;
        } else if (code == 2) {
            x += in.U8();
            y += in.U8();
        } else {
            const unsigned bytes = nibbles ? (code + 1) / 2 : code;
            const auto literals = in.TakeUpTo(bytes);
            in.TakeUpTo(bytes % 2);
            for (unsigned i = 0; i < code && (nibbles ? i / 2 : i) < literals.size(); ++i) {
                put(nibbles ? (i % 2 ? literals[i / 2] & 15u : literals[i / 2] >> 4u) : literals[i]);
            }
        }
    }
    return indices;
}

DibBlock ReadJpegPlainly(ByteSpan file) {
    PictureFacts facts;
    return ReadJpeg(file, {}, facts);
}

Surface DecodeRuns(const ByteReader& in, const Header& header) {
    // Two bytes make at most 255 pixels; what is left out by moves is allowed for.
    const auto pixels = static_cast<std::uint64_t>(header.width) * static_cast<std::uint64_t>(header.height);
    if (header.bits > 8 || pixels / 512 > in.Left()) return {};
    const auto indices = ExpandRuns(in, header);
    Surface surface(header.width, header.height);
    for (std::size_t i = 0; i < indices.size(); ++i) {
        const int x = static_cast<int>(i % static_cast<std::size_t>(header.width)),
                  y = static_cast<int>(i / static_cast<std::size_t>(header.width));
        StoreU32LE(surface.Row(y) + std::ptrdiff_t{4} * x, 0xFF000000u | header.table[indices[i]]);
    }
    return surface;
}

} // namespace

Surface DecodeDib(ByteSpan headerBytes, ByteSpan rows, DibTable table, const Palette& palette) {
    ByteReader in(headerBytes);
    Header header;
    if (!ReadHeader(in, header, {table, !rows.empty()}, palette)) return {};
    if (!rows.empty()) in = ByteReader(rows);
    if (header.compression == kJpeg || header.compression == kPng) {
        const auto file = in.Rest();
        return SurfaceFromDIB(header.compression == kPng ? ReadPng(file) : ReadJpegPlainly(file));
    }
    if (header.compression == kRle8 || header.compression == kRle4) return DecodeRuns(in, header);
    const auto bytes = in.Take(header.Stride() * static_cast<std::size_t>(header.height));
    if (!in.Ok()) return {};
    Surface surface(header.width, header.height);
    for (int y = 0; y < header.height; ++y) {
        const auto* from = bytes.data() + header.Stride() * static_cast<std::size_t>(y);
        auto* to = header.topDown ? surface.PictureRow(y) : surface.Row(y);
        for (int x = 0; x < header.width; ++x) StoreU32LE(to + std::ptrdiff_t{4} * x, PixelAt(header, from, x));
    }
    return surface;
}

Surface DecodeDeviceBitmap(ByteSpan bitmap, Rgb text, Rgb ground) {
    ByteReader in(bitmap);
    in.Skip(2);
    const int width = in.I16LE(), height = in.I16LE(), stride = in.I16LE();
    const int planes = in.U8(), bits = in.U8();
    if (!in.Ok() || !IsPictureSize(width, height) || planes != 1 || (bits != 1 && bits != 24) ||
        stride * 8 < width * bits)
        return {};
    const auto rows = in.Take(static_cast<std::uint64_t>(stride) * static_cast<std::uint64_t>(height));
    if (!in.Ok()) return {};
    Surface surface(width, height);
    for (int y = 0; y < height; ++y) {
        const auto* row = rows.data() + std::ptrdiff_t{stride} * y;
        for (int x = 0; x < width; ++x) {
            surface.Put(x, y, bits == 24 ? Pixel24{}(row, x) : 0xFF000000u | (IndexAt<1>(row, x) ? ground : text));
        }
    }
    return surface;
}

} // namespace pelorin::metafile
