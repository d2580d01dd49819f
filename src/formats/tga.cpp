#include "formats/tga.h"

#include "formats/reader_support.h"
#include "pixel/visit_depth.h"

namespace pelorin {

namespace {

constexpr std::size_t kFooterSize = 26;
constexpr std::string_view kSignature("TRUEVISION-XFILE.\0", 18);
constexpr std::size_t kAlphaKindAt = 494;

enum class Family { Mapped = 1, TrueColor = 2, Gray = 3 };
enum class AlphaKind { None, Straight, Premultiplied };

struct Header {
    int idLength = 0, mapType = 0, type = 0;
    int mapFirst = 0, mapCount = 0, mapBits = 0;
    int width = 0, height = 0, bits = 0, descriptor = 0;

    [[nodiscard]] bool Runs() const { return type >= 9; }
    [[nodiscard]] Family Kind() const { return static_cast<Family>(type & 7); }
    [[nodiscard]] int AlphaBits() const { return descriptor & 15; }
    [[nodiscard]] bool RightToLeft() const { return (descriptor & 16) != 0; }
    [[nodiscard]] bool TopDown() const { return (descriptor & 32) != 0; }
    [[nodiscard]] int Interleave() const { return descriptor >> 6 == 1 ? 2 : descriptor >> 6 == 2 ? 4 : 1; }
    [[nodiscard]] std::size_t PixelBytes() const { return static_cast<std::size_t>(bits + 7) / 8; }
    [[nodiscard]] std::size_t MapEntryBytes() const { return static_cast<std::size_t>(mapBits + 7) / 8; }
};

bool ReadHeader(ByteReader& in, Header& header) {
    header.idLength = in.U8();
    header.mapType = in.U8();
    header.type = in.U8();
    header.mapFirst = in.U16LE();
    header.mapCount = in.U16LE();
    header.mapBits = in.U8();
    in.Skip(4);
    header.width = in.U16LE();
    header.height = in.U16LE();
    header.bits = in.U8();
    header.descriptor = in.U8();
    in.Skip(static_cast<std::uint64_t>(header.idLength));
    return in.Ok();
}

bool IsColorDepth(int bits) {
    return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

bool IsReadable(const Header& header) {
    if (!IsPictureSize(header.width, header.height) || header.mapType > 1) return false;
    if (header.mapType == 1 && header.mapCount > 0 && !IsColorDepth(header.mapBits)) return false;
    switch (header.type) {
    case 1:
    case 9: return header.mapType == 1 && header.mapCount > 0 && (header.bits == 8 || header.bits == 16);
    case 2:
    case 10: return IsColorDepth(header.bits);
    case 3:
    case 11: return header.bits == 8 || header.bits == 16;
    default: return false;
    }
}

Argb FiveBits(unsigned v) {
    return (v * 255 + 15) / 31;
}

// One colour of `bits` bits with whatever stands in its alpha bits.
Argb ColorAt(const std::uint8_t* p, int bits) {
    if (bits == 32) return LoadU32LE(p);
    if (bits == 24) return 0xFF000000u | Argb{p[2]} << 16 | Argb{p[1]} << 8 | p[0];
    const unsigned v = LoadU16LE(p);
    return (v & 0x8000 ? 0xFF000000u : 0) | FiveBits(v >> 10 & 31) << 16 | FiveBits(v >> 5 & 31) << 8 |
           FiveBits(v & 31);
}

// What the version 2 footer says of the alpha; -1 without one.
int StatedAlphaKind(ByteSpan file) {
    if (!IsTga(file)) return -1;
    const auto extension = LoadU32LE(file.data() + file.size() - kFooterSize);
    auto area = ByteReader(file).Sub(extension, kAlphaKindAt + 1);
    if (extension == 0 || !area.Ok()) return -1;
    area.Seek(kAlphaKindAt);
    return area.U8();
}

// A single bit of alpha counts only where the descriptor announces it: programs leave the bit of 16-bit pixels as it
// comes. Whole alpha bytes are taken without being announced as well; where they are all 0 they are dropped later.
AlphaKind FindAlpha(const Header& header, ByteSpan file) {
    const int bits = header.Kind() == Family::Mapped ? header.mapBits : header.bits;
    const bool gray = header.Kind() == Family::Gray;
    const bool wide = bits == 32 || (gray && bits == 16);
    const bool narrow = !gray && bits == 16;
    if (!wide && !(narrow && header.AlphaBits() == 1)) return AlphaKind::None;
    const int stated = StatedAlphaKind(file);
    if (stated >= 0 && stated <= 2) return AlphaKind::None;
    return stated == 4 ? AlphaKind::Premultiplied : AlphaKind::Straight;
}

Argb ApplyAlphaKind(Argb color, AlphaKind kind) {
    if (kind == AlphaKind::None) return color | 0xFF000000u;
    // Colours that alpha 0 was not multiplied into stay as they are.
    return kind == AlphaKind::Straight || color >> 24 == 0 ? color : StraightColor(color);
}

// The pixels of the file one row after the other.
class RowSource {
public:
    RowSource(ByteReader& in, const Header& header) : m_in(in), m_runs(header.Runs()), m_pixel(header.PixelBytes()) {}

    bool Read(MutableByteSpan row) {
        for (std::size_t at = 0; at < row.size() && m_in.Ok();)
            at += m_runs ? ReadPart(row.subspan(at)) : Copy(row, row.size());
        return m_in.Ok();
    }

private:
    // As much of the present packet as fits.
    std::size_t ReadPart(MutableByteSpan row) {
        if (m_left == 0) {
            const unsigned head = m_in.U8();
            m_left = (head & 127) + 1;
            m_repeat = head >= 128 ? m_in.Take(m_pixel) : ByteSpan();
            if (!m_in.Ok()) return 0;
        }
        const auto bytes = std::min(row.size(), m_left * m_pixel);
        m_left -= bytes / m_pixel;
        if (m_repeat.empty()) return Copy(row, bytes);
        for (std::size_t at = 0; at < bytes; at += m_pixel)
            std::copy(m_repeat.begin(), m_repeat.end(), row.begin() + static_cast<std::ptrdiff_t>(at));
        return bytes;
    }
    std::size_t Copy(MutableByteSpan row, std::size_t bytes) {
        const auto from = m_in.Take(bytes);
        std::copy(from.begin(), from.end(), row.begin());
        return from.size();
    }

    ByteReader& m_in;
    bool m_runs;
    std::size_t m_pixel;
    std::size_t m_left = 0;
    ByteSpan m_repeat;
};

// Colours by index, with what the map leaves out in black.
std::vector<Argb> ReadMap(ByteReader& in, const Header& header, AlphaKind alpha) {
    if (header.mapType == 0) return {};
    const auto bytes = in.Take(header.MapEntryBytes() * static_cast<std::size_t>(header.mapCount));
    if (!in.Ok() || header.Kind() != Family::Mapped) return {};
    std::vector<Argb> map(static_cast<std::size_t>(header.mapFirst), 0xFF000000u);
    for (std::size_t at = 0; at < bytes.size(); at += header.MapEntryBytes()) {
        map.push_back(ApplyAlphaKind(ColorAt(bytes.data() + at, header.mapBits), alpha));
    }
    return map;
}

// Turns one pixel of the file into a colour.
struct Decoder {
    const Header& header;
    AlphaKind alpha;
    std::vector<Argb> map;

    Argb operator()(const std::uint8_t* p) const {
        switch (header.Kind()) {
        case Family::Mapped: {
            const std::size_t index = header.bits == 16 ? LoadU16LE(p) : p[0];
            return index < map.size() ? map[index] : 0xFF000000u;
        }
        case Family::Gray: {
            const Argb gray = p[0] * 0x010101u;
            return ApplyAlphaKind(header.bits == 16 ? gray | Argb{p[1]} << 24 : gray, alpha);
        }
        case Family::TrueColor: break;
        }
        return ApplyAlphaKind(ColorAt(p, header.bits), alpha);
    }
};

void WriteRow(const Decoder& decode, const Bytes& row, std::uint8_t* to, int targetBits) {
    const auto& header = decode.header;
    const auto step = header.PixelBytes();
    for (int x = 0; x < header.width; ++x) {
        const auto* from = row.data() + step * static_cast<std::size_t>(x);
        const int column = header.RightToLeft() ? header.width - 1 - x : x;
        if (targetBits == 8) {
            to[column] = from[0];
            continue;
        }
        const auto color = decode(from);
        auto* pixel = to + std::ptrdiff_t{column} * (targetBits / 8);
        pixel[0] = static_cast<std::uint8_t>(color);
        pixel[1] = static_cast<std::uint8_t>(color >> 8);
        pixel[2] = static_cast<std::uint8_t>(color >> 16);
        if (targetBits == 32) pixel[3] = static_cast<std::uint8_t>(color >> 24);
    }
}

int TargetBits(const Header& header, AlphaKind alpha) {
    if (alpha != AlphaKind::None) return 32;
    const bool indexed = header.Kind() != Family::TrueColor && header.bits == 8;
    return indexed ? 8 : 24;
}

void SetTable(DibBlock& block, const Decoder& decode) {
    if (decode.header.Kind() == Family::Gray) return SetDIBTable(block, GrayRamp(256));
    std::vector<Rgb> table(256);
    for (std::size_t i = 0; i < std::min<std::size_t>(256, decode.map.size()); ++i) table[i] = decode.map[i];
    SetDIBTable(block, table);
}

} // namespace

bool IsTga(ByteSpan file) {
    return file.size() >= kFooterSize && AsText(file.last(kSignature.size())) == kSignature;
}

DibBlock ReadTga(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    ByteReader in(file);
    Header header;
    if (!ReadHeader(in, header) || !IsReadable(header)) return {};
    const auto alpha = FindAlpha(header, file);
    const Decoder decode{header, alpha, ReadMap(in, header, alpha)};
    const auto rowBytes = header.PixelBytes() * static_cast<std::size_t>(header.width);
    // One packet of two bytes and more makes at most 128 pixels.
    if (!in.Ok() || rowBytes * static_cast<std::size_t>(header.height) / (header.Runs() ? 128 : 1) > in.Left())
        return {};

    const int targetBits = TargetBits(header, alpha);
    auto block = CreateDIB(header.width, header.height, targetBits);
    const DibRows rows(block);
    if (!rows) return {};
    ProgressScope progress(request.progress, ReadingText("TGA"), static_cast<std::uint64_t>(header.height));
    RowSource source(in, header);
    Bytes row(rowBytes);
    std::uint64_t done = 0;
    for (int first = 0; first < header.Interleave(); ++first) {
        for (int y = first; y < header.height; y += header.Interleave()) {
            if (!source.Read(row) || progress.StopAsked()) return {};
            WriteRow(decode, row, header.TopDown() ? rows.PictureRow(y) : rows.Row(y), targetBits);
            progress.Step(++done);
        }
    }
    if (targetBits == 8) SetTable(block, decode);
    facts.width = header.width;
    facts.height = header.height;
    facts.bits = header.bits;
    return DropEmptyAlpha(std::move(block));
}

} // namespace pelorin
