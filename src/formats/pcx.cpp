#include "formats/pcx.h"

#include "formats/reader_support.h"
#include "pixel/visit_depth.h"

namespace pelorin {

namespace {

constexpr std::size_t kHeaderSize = 128, kTailSize = 769;
constexpr std::uint8_t kTailMark = 12;

constexpr std::array<Rgb, 16> kAdapterColors = {0x000000, 0x0000AA, 0x00AA00, 0x00AAAA, 0xAA0000, 0xAA00AA,
                                                0xAA5500, 0xAAAAAA, 0x555555, 0x5555FF, 0x55FF55, 0x55FFFF,
                                                0xFF5555, 0xFF55FF, 0xFFFF55, 0xFFFFFF};

// Colour sets of the four-colour mode, as numbers into `kAdapterColors`; bit 0 is brightness, bit 1 the set, bit 2 the
// set without the colour burst.
constexpr std::uint8_t kFourColorSets[8][3] = {{2, 4, 6}, {10, 12, 14}, {3, 5, 7}, {11, 13, 15},
                                               {3, 4, 7}, {11, 12, 15}, {3, 4, 7}, {11, 12, 15}};

struct Header {
    int version = 0, encoding = 0, bits = 0, planes = 0, paletteKind = 0;
    int width = 0, height = 0;
    std::size_t planeBytes = 0;
    ByteSpan colors;

    [[nodiscard]] int Depth() const { return bits * planes; }
    [[nodiscard]] std::size_t RowBytes() const { return planeBytes * static_cast<std::size_t>(planes); }
};

bool ReadHeader(ByteReader& in, Header& header) {
    if (in.U8() != 10) return false;
    header.version = in.U8();
    header.encoding = in.U8();
    header.bits = in.U8();
    const int left = in.U16LE(), top = in.U16LE(), right = in.U16LE(), bottom = in.U16LE();
    in.Skip(4);
    header.colors = in.Take(48);
    in.Skip(1);
    header.planes = in.U8();
    header.planeBytes = in.U16LE();
    header.paletteKind = in.U16LE();
    header.width = right - left + 1;
    header.height = bottom - top + 1;
    in.Seek(kHeaderSize);
    return in.Ok();
}

bool IsReadable(const Header& header) {
    if (header.version > 5 || header.encoding > 1 || !IsPictureSize(header.width, header.height)) return false;
    if (header.bits != 1 && header.bits != 2 && header.bits != 4 && header.bits != 8) return false;
    if (header.planes < 1 || header.planes > 4) return false;
    if (header.Depth() > 8 && header.bits != 8) return false;
    if (header.Depth() == 16) return false;
    return header.planeBytes >=
           (static_cast<std::size_t>(header.width) * static_cast<std::size_t>(header.bits) + 7) / 8;
}

// The bytes of the rows, one after the other. Runs may go on over the end of a row.
class RowSource {
public:
    RowSource(ByteReader& in, bool runs) : m_in(in), m_runs(runs) {}

    bool Read(MutableByteSpan row) {
        if (m_runs) {
            for (auto& byte : row) byte = Next();
        } else {
            const auto bytes = m_in.Take(row.size());
            std::copy(bytes.begin(), bytes.end(), row.begin());
        }
        return m_in.Ok();
    }

private:
    std::uint8_t Next() {
        while (m_left == 0 && m_in.Ok()) {
            m_value = m_in.U8();
            m_left = 1;
            if (m_value >= 0xC0) {
                m_left = m_value & 0x3F;
                m_value = m_in.U8();
            }
        }
        --m_left;
        return m_value;
    }

    ByteReader& m_in;
    bool m_runs;
    int m_left = 0;
    std::uint8_t m_value = 0;
};

bool AllEqual(ByteSpan bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [&](auto b) { return b == bytes.front(); });
}

std::vector<Rgb> FourColors(const Header& header) {
    const auto set = header.colors[3] >> 5;
    // Bit 7 of the byte turns the burst off, bit 6 picks the set, bit 5 the brightness.
    const auto& row = kFourColorSets[set & 7];
    return {kAdapterColors[header.colors[0] >> 4], kAdapterColors[row[0]], kAdapterColors[row[1]],
            kAdapterColors[row[2]]};
}

std::vector<Rgb> TwoColors(const Header& header) {
    const auto table = TableFromRgb(header.colors.first(6));
    const bool stated = header.version != 0 && header.version != 3 && table[0] != table[1];
    // The adapter's own first two colours are what programs leave there that paint in black and white.
    const bool adapter = table[0] == kAdapterColors[0] && table[1] == kAdapterColors[1];
    if (stated && !adapter) return table;
    return {0x000000, 0xFFFFFF};
}

std::vector<Rgb> SixteenColors(const Header& header) {
    const bool stated = header.version != 0 && header.version != 3 && !AllEqual(header.colors);
    if (stated) return TableFromRgb(header.colors);
    return {kAdapterColors.begin(), kAdapterColors.end()};
}

// The tail is looked for where it belongs and, when bytes were appended to the file, right behind the rows.
std::vector<Rgb> ManyColors(const Header& header, ByteSpan file, std::size_t rowsEnd) {
    for (const auto at : {file.size() < kTailSize ? rowsEnd : file.size() - kTailSize, rowsEnd}) {
        if (at >= rowsEnd && at + kTailSize <= file.size() && file[at] == kTailMark) {
            return TableFromRgb(file.subspan(at + 1, kTailSize - 1));
        }
    }
    if (header.Depth() < 8) return SixteenColors(header);
    return GrayRamp(256);
}

std::vector<Rgb> Colors(const Header& header, ByteSpan file, std::size_t rowsEnd) {
    const int depth = header.Depth();
    if (depth == 1) return TwoColors(header);
    if (depth == 2 && header.planes == 1 && header.version < 5) return FourColors(header);
    if (depth <= 4) return SixteenColors(header);
    return ManyColors(header, file, rowsEnd);
}

unsigned Sample(const std::uint8_t* plane, int bits, int x) {
    const int at = x * bits;
    return plane[at >> 3] >> (8 - bits - (at & 7)) & ((1u << bits) - 1);
}

unsigned Index(const Header& header, const Bytes& row, int x) {
    unsigned index = 0;
    for (int p = 0; p < header.planes; ++p) {
        index |= Sample(row.data() + header.planeBytes * static_cast<std::size_t>(p), header.bits, x)
                 << p * header.bits;
    }
    return index;
}

// Red, green and blue planes change places with interleaved blue, green, red; alpha stays last.
void InterleaveRow(const Header& header, const Bytes& row, std::uint8_t* to) {
    for (int x = 0; x < header.width; ++x, to += header.planes) {
        const auto* from = row.data() + x;
        to[0] = from[2 * header.planeBytes];
        to[1] = from[header.planeBytes];
        to[2] = from[0];
        if (header.planes == 4) to[3] = from[3 * header.planeBytes];
    }
}

template <int Bits>
void IndexRow(const Header& header, const Bytes& row, std::uint8_t* to) {
    for (int x = 0; x < header.width; ++x) PutIndex<Bits>(to, x, Index(header, row, x));
}

auto RowWriter(int depth) {
    if (depth == 1) return IndexRow<1>;
    if (depth <= 4) return IndexRow<4>;
    if (depth <= 8) return IndexRow<8>;
    return InterleaveRow;
}

} // namespace

bool IsPcx(ByteSpan file) {
    ByteReader in(file);
    Header header;
    return ReadHeader(in, header) && IsReadable(header);
}

DibBlock ReadPcx(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    ByteReader in(file);
    Header header;
    if (!ReadHeader(in, header) || !IsReadable(header)) return {};
    const auto bytes = header.RowBytes() * static_cast<std::size_t>(header.height);
    // Two bytes make at most 63.
    if (bytes / (header.encoding ? 32 : 1) > in.Left()) return {};

    auto block = CreateDIB(header.width, header.height, header.Depth());
    const DibRows rows(block);
    if (!rows) return {};
    ProgressScope progress(request.progress, ReadingText("PCX"), static_cast<std::uint64_t>(header.height));
    RowSource source(in, header.encoding == 1);
    const auto write = RowWriter(header.Depth());
    Bytes row(header.RowBytes());
    for (int y = 0; y < header.height; ++y) {
        if (!source.Read(row) || progress.StopAsked()) return {};
        write(header, row, rows.PictureRow(y));
        progress.Step(static_cast<std::uint64_t>(y) + 1);
    }
    if (header.Depth() <= 8) {
        auto table = Colors(header, file, in.Pos());
        table.resize(256);
        SetDIBTable(block, table);
    }
    facts.width = header.width;
    facts.height = header.height;
    facts.bits = header.Depth();
    return DropEmptyAlpha(std::move(block));
}

} // namespace pelorin
