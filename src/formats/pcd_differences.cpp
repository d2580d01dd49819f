#include "formats/pcd_planes.h"

namespace pelorin {

namespace {

constexpr std::size_t kSector = 2048;
constexpr std::uint32_t kMark = 0xFFFFFE;
constexpr unsigned kMarkBits = 24, kMaxCodeBits = 16;

// Bits with the highest first; behind the end stand zeros.
class BitReader {
public:
    explicit BitReader(ByteSpan bytes) : m_bytes(bytes) {}

    /// The next `count` bits, at most 24, without moving.
    [[nodiscard]] std::uint32_t Peek(unsigned count) const {
        const auto byte = m_at / 8;
        std::uint32_t window = 0;
        for (std::size_t i = 0; i < 4; ++i) window = window << 8 | (byte + i < m_bytes.size() ? m_bytes[byte + i] : 0u);
        return window << m_at % 8 >> (32 - count);
    }
    void Skip(unsigned count) { m_at += count; }
    std::uint32_t Take(unsigned count) {
        const auto bits = Peek(count);
        Skip(count);
        return bits;
    }
    /// The byte behind the one that the present bit lies in.
    [[nodiscard]] unsigned NextByte() const { return m_at / 8 + 1 < m_bytes.size() ? m_bytes[m_at / 8 + 1] : 0u; }
    void SkipToNextByte() { m_at = (m_at / 8 + 1) * 8; }
    [[nodiscard]] bool AtEnd() const { return m_at >= m_bytes.size() * 8; }
    [[nodiscard]] std::size_t BytesUsed() const { return std::min((m_at + 7) / 8, m_bytes.size()); }

private:
    ByteSpan m_bytes;
    std::size_t m_at = 0;
};

// Value and length of the code that each 16 bits begin with; length 0: none.
class CodeTable {
public:
    bool Read(ByteReader& in) {
        m_entries.assign(std::size_t{1} << kMaxCodeBits, {});
        const unsigned count = in.U8() + 1u;
        for (unsigned i = 0; i < count; ++i) {
            const unsigned length = in.U8() + 1u;
            const std::size_t code = in.U16BE();
            const auto value = in.I8();
            if (!in.Ok() || length > kMaxCodeBits) return false;
            const auto covered = std::size_t{1} << (kMaxCodeBits - length);
            const auto first = code & ~(covered - 1);
            for (std::size_t at = first; at < first + covered; ++at) {
                if (m_entries[at].length != 0) return false;
                m_entries[at] = {value, static_cast<std::uint8_t>(length)};
            }
        }
        return true;
    }

    struct Entry {
        std::int8_t value = 0;
        std::uint8_t length = 0;
    };
    [[nodiscard]] Entry Find(std::uint32_t bits) const { return m_entries[bits]; }

private:
    std::vector<Entry> m_entries;
};

// A mark that begins in a byte has ones in the whole of the next, so that most bytes need but one look.
bool FindMark(BitReader& bits) {
    while (bits.Peek(kMarkBits) != kMark) {
        if (bits.AtEnd()) return false;
        if (bits.NextByte() != 0xFF) {
            bits.SkipToNextByte();
        } else {
            bits.Skip(1);
        }
    }
    return true;
}

// Adds the coded values to one row; false when it breaks off early.
bool AddRow(BitReader& bits, const CodeTable& table, MutableByteSpan row) {
    for (auto& value : row) {
        if (bits.Peek(kMarkBits) == kMark) return false;
        const auto code = table.Find(bits.Peek(kMaxCodeBits));
        if (code.length == 0 || bits.AtEnd()) return false;
        value = static_cast<std::uint8_t>(std::clamp(value + code.value, 0, 255));
        bits.Skip(code.length);
    }
    return true;
}

// Every row of every plane that is added to has to come by.
class RowCounter {
public:
    RowCounter(int rows, int planes) : m_seen(static_cast<std::size_t>(planes)), m_planes(planes) {
        for (int p = 0; p < planes; ++p)
            m_seen[static_cast<std::size_t>(p)].resize(static_cast<std::size_t>(p == 0 ? rows : rows / 2));
    }
    void See(int plane, int row) { m_seen[static_cast<std::size_t>(plane)][static_cast<std::size_t>(row)] = true; }
    [[nodiscard]] bool All() const {
        return std::all_of(m_seen.begin(), m_seen.end(),
                           [](const auto& rows) { return std::find(rows.begin(), rows.end(), false) == rows.end(); });
    }
    [[nodiscard]] int Planes() const { return m_planes; }

private:
    std::vector<std::vector<bool>> m_seen;
    int m_planes;
};

} // namespace

bool AddPcdDifferences(ByteReader& in, PcdPlanes& planes, bool withChroma) {
    CodeTable tables[3];
    RowCounter counter(planes.luma.height, withChroma ? 3 : 1);
    const auto start = in.Pos();
    for (int p = 0; p < counter.Planes(); ++p) {
        if (!tables[p].Read(in)) return false;
    }
    PcdPlane* const targets[3] = {&planes.luma, &planes.chroma[0], &planes.chroma[1]};
    // Two bytes a value, and room for marks: what lies behind that is something else.
    const auto rest = in.All().subspan(in.Pos());
    BitReader bits(rest.first(std::min(rest.size(), planes.luma.values.size() * 4)));
    while (FindMark(bits)) {
        bits.Skip(kMarkBits);
        const auto code = static_cast<int>(bits.Take(2));
        const int row = static_cast<int>(bits.Take(13));
        bits.Skip(1);
        if (row >= planes.luma.height) break;
        const int plane = code == 0 ? 0 : code - 1;
        if (code == 1 || plane >= counter.Planes()) continue;
        auto& target = *targets[plane];
        const int targetRow = plane == 0 ? row : row / 2;
        const bool whole = AddRow(bits, tables[plane], {target.Row(targetRow), static_cast<std::size_t>(target.width)});
        if (whole) counter.See(plane, targetRow);
    }
    const auto used = in.Pos() - start + bits.BytesUsed();
    in.Seek(std::min(start + (used + kSector - 1) / kSector * kSector, in.Size()));
    return counter.All();
}

} // namespace pelorin
