#include "icon/planes.h"

#include "pixel/alpha_mask.h"
#include "pixel/color_memo.h"
#include "pixel/map_palette.h"
#include "pixel/visit_depth.h"

namespace pelorin {

namespace {

constexpr Rgb kWhite = 0xFFFFFF;

IconBlockLayout LayoutOf(const CVnIcon& icon) {
    const IconBlockLayout layout(icon.m_nWidth, icon.m_nHeight, icon.m_nColors, icon.m_bAlpha);
    return layout.size <= icon.m_hImage.size() ? layout : IconBlockLayout();
}

std::array<Rgb, 256> FullTable(const CPalette& palette) {
    std::array<Rgb, 256> table{};
    std::copy_n(palette.colors.begin(), std::min<std::size_t>(palette.colors.size(), 256), table.begin());
    return table;
}

template <class Pixel>
void ReadRows(const std::uint8_t* rows, std::size_t stride, const Pixel& pixel, Surface& image) {
    for (int y = 0; y < image.Height(); ++y) {
        const auto* from = rows + stride * static_cast<std::size_t>(y);
        auto* to = image.Row(y);
        for (int x = 0; x < image.Width(); ++x) StoreU32LE(to + std::ptrdiff_t{4} * x, pixel(from, x) & kWhite);
    }
}

template <int Bits>
void WriteIndexedRows(const Surface& image, std::span<const Rgb> table, std::uint8_t* rows, std::size_t stride) {
    ColorMemo<std::uint8_t> memo;
    const auto find = [&](Rgb color) { return NearestByChannels(table, color); };
    for (int y = 0; y < image.Height(); ++y) {
        const auto* from = image.Row(y);
        auto* to = rows + stride * static_cast<std::size_t>(y);
        for (int x = 0; x < image.Width(); ++x, from += 4) PutIndex<Bits>(to, x, memo.Get(LoadU32LE(from), find));
    }
}

void WriteMaskRows(const Surface& mask, const IconBlockLayout& layout, std::uint8_t* block) {
    for (int y = 0; y < mask.Height(); ++y) {
        auto* bits = block + layout.andRows + layout.andStride * static_cast<std::size_t>(y);
        for (int x = 0; x < mask.Width(); ++x) PutIndex<1>(bits, x, mask.Row(y)[std::ptrdiff_t{4} * x] != 0 ? 1 : 0);
    }
}

void WriteColorRows(const Surface& image, const CPalette& table, const IconBlockLayout& layout, std::uint8_t* block) {
    auto* rows = block + layout.xorRows;
    if (layout.bits == 0) return;
    if (layout.bits == 24) {
        for (int y = 0; y < image.Height(); ++y) {
            const auto* from = image.Row(y);
            auto* to = rows + layout.xorStride * static_cast<std::size_t>(y);
            for (int x = 0; x < image.Width(); ++x, from += 4, to += 3) std::memcpy(to, from, 3);
        }
        return;
    }
    for (std::size_t i = 0; i < table.colors.size(); ++i) StoreU32LE(block + kDibHeaderSize + i * 4, table.colors[i]);
    if (layout.bits == 8) WriteIndexedRows<8>(image, table.colors, rows, layout.xorStride);
    if (layout.bits == 4) WriteIndexedRows<4>(image, table.colors, rows, layout.xorStride);
    if (layout.bits == 1) WriteIndexedRows<1>(image, table.colors, rows, layout.xorStride);
}

// The table that a block of this depth gets.
CPalette TableFor(int bits, const CPalette& wanted) {
    CPalette table;
    const auto entries = bits <= 8 ? std::size_t{1} << bits : 0;
    if (bits == 8 || wanted.colors.size() == entries)
        table = wanted;
    else if (bits == 4)
        table.colors.assign(kStandardColors.begin(), kStandardColors.end());
    else if (bits == 1)
        table.colors = {0, kWhite};
    table.colors.resize(entries);
    return table;
}

} // namespace

CPalette PaletteOfBlock(const CVnIcon& icon) {
    const auto count = static_cast<std::size_t>(std::clamp(icon.m_nColors, 0, 256));
    if (icon.m_hImage.size() < kDibHeaderSize + count * 4) return {};
    return CreatePaletteFromRGBQuad(icon.m_hImage.data() + kDibHeaderSize, static_cast<int>(count));
}

bool ToBitmaps(const CVnIcon& icon, Surface& image, Surface& mask, const CPalette* palette) {
    const auto layout = LayoutOf(icon);
    if (layout.size == 0) return false;
    Surface colors(icon.m_nWidth, icon.m_nHeight), alphas(icon.m_nWidth, icon.m_nHeight);
    const auto* rows = icon.m_hImage.data() + layout.xorRows;
    const auto table = FullTable(palette ? *palette : PaletteOfBlock(icon));
    switch (layout.bits) {
    case 1: ReadRows(rows, layout.xorStride, IndexedPixel<1>{table}, colors); break;
    case 4: ReadRows(rows, layout.xorStride, IndexedPixel<4>{table}, colors); break;
    case 8: ReadRows(rows, layout.xorStride, IndexedPixel<8>{table}, colors); break;
    case 24: ReadRows(rows, layout.xorStride, Pixel24{}, colors); break;
    case 32: ReadRows(rows, layout.xorStride, Pixel32{}, colors); break;
    default: break; // no XOR rows: the colour plane stays black
    }
    for (int y = 0; y < icon.m_nHeight; ++y) {
        const auto* from = icon.m_bAlpha
                               ? rows + layout.xorStride * static_cast<std::size_t>(y)
                               : icon.m_hImage.data() + layout.andRows + layout.andStride * static_cast<std::size_t>(y);
        auto* to = alphas.Row(y);
        for (int x = 0; x < icon.m_nWidth; ++x, to += 4) {
            const Rgb level = icon.m_bAlpha ? from[std::ptrdiff_t{4} * x + 3] : IndexAt<1>(from, x) * 255;
            StoreU32LE(to, level * 0x010101);
        }
    }
    image = std::move(colors);
    mask = std::move(alphas);
    return true;
}

bool FromBitmaps(CVnIcon& icon, const Surface& image, const Surface& mask, const CPalette& palette) {
    const Size size{icon.m_nWidth, icon.m_nHeight};
    const auto layout = LayoutOf(icon);
    if (layout.size == 0 || image.GetSize() != size || mask.GetSize() != size) return false;
    auto* block = icon.m_hImage.data();
    StoreU32LE(block, kDibHeaderSize);
    StoreU32LE(block + 4, static_cast<std::uint32_t>(icon.m_nWidth));
    StoreU32LE(block + 8, static_cast<std::uint32_t>(icon.m_nHeight));
    StoreU16LE(block + 12, 1);
    StoreU16LE(block + 14, static_cast<std::uint16_t>(layout.bits));
    StoreU32LE(block + 32, static_cast<std::uint32_t>(icon.m_nColors));
    StoreU32LE(block + 36, static_cast<std::uint32_t>(icon.m_nColors));
    if (icon.m_bAlpha) return MergeToIconBlock(image, mask, icon.m_hImage, false);
    StoreU32LE(block + 8, static_cast<std::uint32_t>(icon.m_nHeight) * 2);
    StoreU32LE(block + 20, static_cast<std::uint32_t>(layout.andRows - layout.xorRows));
    WriteMaskRows(mask, layout, block);
    WriteColorRows(image, TableFor(layout.bits, palette), layout, block);
    return true;
}

} // namespace pelorin
