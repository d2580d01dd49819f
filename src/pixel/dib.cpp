#include "pixel/dib.h"

#include "pixel/visit_depth.h"

#include <cstdlib>

namespace pelorin {

namespace {

constexpr std::size_t kCoreHeaderSize = 12;
constexpr std::uint32_t kBitFields = 3;

// What the header says, before anything is checked against the block's size.
struct HeaderFacts {
    bool known = false;
    std::uint32_t headerSize = 0;
    std::int32_t width = 0, height = 0;
    int bits = 0;
    std::uint32_t compression = 0;
    std::uint32_t tableCount = 0;
    std::size_t tableEntry = 4;
};

std::uint32_t ColorsOfDepth(int bits) {
    return bits == 1 ? 2 : bits == 4 ? 16 : bits == 8 ? 256 : 0;
}

HeaderFacts ReadHeader(ByteSpan block) {
    HeaderFacts facts;
    ByteReader in(block);
    facts.headerSize = in.U32LE();
    if (facts.headerSize == kDibHeaderSize) {
        facts.width = in.I32LE();
        facts.height = in.I32LE();
        in.Skip(2);
        facts.bits = in.U16LE();
        facts.compression = in.U32LE();
        in.Skip(12);
        facts.tableCount = in.U32LE();
        if (facts.tableCount == 0) facts.tableCount = ColorsOfDepth(facts.bits);
        in.Skip(4);
    } else {
        facts.width = in.U16LE();
        facts.height = in.U16LE();
        in.Skip(2);
        facts.bits = in.U16LE();
        facts.tableCount = ColorsOfDepth(facts.bits);
        facts.tableEntry = 3;
    }
    facts.known = in.Ok();
    return facts;
}

// Where the rows begin: behind the table, or behind the three masks that stand in its place.
std::uint64_t RowsBegin(const HeaderFacts& facts) {
    const bool masks = facts.compression == kBitFields;
    return facts.headerSize + (masks ? 12 : std::uint64_t{facts.tableCount} * facts.tableEntry);
}

} // namespace

void DibBlock::Free::operator()(std::uint8_t* p) const {
    std::free(p);
}

DibBlock DibBlock::Allocate(std::size_t size) {
    DibBlock block;
    // calloc hands out pages that are zero already, which a fill would have to touch.
    block.m_data.reset(static_cast<std::uint8_t*>(std::calloc(size == 0 ? 1 : size, 1)));
    block.m_size = block.m_data ? size : 0;
    return block;
}

DibBlock DibBlock::FromBytes(ByteSpan bytes) {
    DibBlock block;
    if (bytes.empty()) return block;
    block.m_data.reset(static_cast<std::uint8_t*>(std::malloc(bytes.size())));
    if (block.m_data) {
        block.m_size = bytes.size();
        std::memcpy(block.m_data.get(), bytes.data(), bytes.size());
    }
    return block;
}

int DIBWidth(ByteSpan block) {
    const auto facts = ReadHeader(block);
    return facts.known ? facts.width : 0;
}

int DIBHeight(ByteSpan block) {
    const auto facts = ReadHeader(block);
    return facts.known ? facts.height : 0;
}

int DIBBitCount(ByteSpan block) {
    const auto facts = ReadHeader(block);
    return facts.known ? facts.bits : 0;
}

std::uint16_t DIBNumColors(ByteSpan block) {
    const auto facts = ReadHeader(block);
    return facts.known ? static_cast<std::uint16_t>(facts.tableCount) : std::uint16_t{0};
}

std::size_t PaletteSize(ByteSpan block) {
    const auto facts = ReadHeader(block);
    return facts.known ? DIBNumColors(block) * facts.tableEntry : 0;
}

std::size_t DIBRowsOffset(ByteSpan block) {
    const auto facts = ReadHeader(block);
    const auto offset = RowsBegin(facts);
    return facts.known && offset <= block.size() ? static_cast<std::size_t>(offset) : 0;
}

std::uint16_t DIBNumColorsOfHandle(const DibBlock& block) {
    return DIBNumColors(block);
}

DibView::DibView(ByteSpan block) {
    const auto facts = ReadHeader(block);
    if (!facts.known || facts.width <= 0 || facts.height <= 0) return;
    if (facts.headerSize != kDibHeaderSize && facts.headerSize != kCoreHeaderSize) return;
    if (!IsDibDepth(facts.bits) || (facts.compression != 0 && facts.compression != kBitFields)) return;
    if (std::int64_t{facts.width} * facts.height > kMaxPixels) return;

    const bool masks = facts.compression == kBitFields;
    const std::uint64_t rows = RowsBegin(facts);
    const std::uint64_t stride = DibStride(facts.width, facts.bits);
    if (rows + stride * static_cast<std::uint64_t>(facts.height) > block.size()) return;

    m_rowsOffset = static_cast<std::size_t>(rows);
    m_rows = block.data() + m_rowsOffset;
    m_table = block.data() + facts.headerSize;
    m_tableCount = masks ? 0 : static_cast<int>(std::min<std::uint32_t>(facts.tableCount, 1u << 30));
    m_tableEntry = static_cast<int>(facts.tableEntry);
    m_width = facts.width;
    m_height = facts.height;
    m_bits = facts.bits;
    m_stride = static_cast<std::size_t>(stride);
}

Rgb DibView::Color(int i) const {
    if (i < 0 || i >= m_tableCount) return 0;
    const auto* entry = m_table + static_cast<std::size_t>(i) * static_cast<std::size_t>(m_tableEntry);
    return Rgb{entry[0]} | Rgb{entry[1]} << 8 | Rgb{entry[2]} << 16;
}

std::array<Rgb, 256> DibView::Table() const {
    std::array<Rgb, 256> table{};
    for (int i = 0; i < std::min(m_tableCount, 256); ++i) table[static_cast<std::size_t>(i)] = Color(i);
    return table;
}

DibBlock CreateDIB(int width, int height, int bits) {
    if (width <= 0 || height <= 0 || std::int64_t{width} * height > kMaxPixels) return {};
    constexpr std::array<int, 6> depths = {1, 4, 8, 16, 24, 32};
    const auto* depth = std::find_if(depths.begin(), depths.end(), [&](int d) { return bits <= d; });
    bits = depth == depths.end() ? 4 : *depth;

    const auto colors = ColorsOfDepth(bits);
    const auto stride = DibStride(width, bits);
    auto block = DibBlock::Allocate(kDibHeaderSize + colors * 4 + stride * static_cast<std::size_t>(height));
    if (!block) return {};
    auto* header = block.Data();
    StoreU32LE(header, kDibHeaderSize);
    StoreU32LE(header + 4, static_cast<std::uint32_t>(width));
    StoreU32LE(header + 8, static_cast<std::uint32_t>(height));
    StoreU16LE(header + 12, 1);
    StoreU16LE(header + 14, static_cast<std::uint16_t>(bits));
    StoreU32LE(header + 32, colors);
    StoreU32LE(header + 36, colors);
    for (std::uint32_t i = 0; i < colors / 16 * 16; ++i)
        StoreU32LE(header + kDibHeaderSize + i * 4, kStandardColors[i % 16]);
    return block;
}

DibBlock CopyHandle(const DibBlock& block) {
    return DibBlock::FromBytes(block.Span());
}

void SetDIBTable(DibBlock& block, std::span<const Rgb> colors, int first) {
    const DibView view(block);
    if (!view || first < 0) return;
    for (std::size_t i = 0; i < colors.size() && first + static_cast<int>(i) < view.TableCount(); ++i) {
        StoreU32LE(block.Data() + kDibHeaderSize + (static_cast<std::size_t>(first) + i) * 4, colors[i] & 0xFFFFFF);
    }
}

CPalette CreateDIBPalette(const DibBlock& block) {
    CPalette palette;
    const DibView view(block);
    for (int i = 0; i < view.TableCount() && i < 256; ++i) palette.colors.push_back(view.Color(i));
    return palette;
}

CPalette CreatePaletteFromRGBQuad(const std::uint8_t* table, int count) {
    CPalette palette;
    if (table == nullptr) return palette;
    for (int i = 0; i < count; ++i)
        palette.colors.push_back(LoadU32LE(table + static_cast<std::size_t>(i) * 4) & 0xFFFFFF);
    return palette;
}

bool DIBHasAlpha(const DibBlock& block) {
    const DibView view(block);
    if (view.BitCount() != 32) return false;
    for (int y = 0; y < view.Height(); ++y) {
        const auto* row = view.Row(y);
        for (int x = 0; x < view.Width(); ++x) {
            if (row[x * 4 + 3] != 0) return true;
        }
    }
    return false;
}

} // namespace pelorin
