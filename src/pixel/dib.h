// The packed bitmap: the one value that passes between pixel functions, codecs and icons.
//
// Layout of a block, little-endian:
//   0        BITMAPINFOHEADER, 40 bytes: u32 size, i32 width, i32 height (positive: bottom row first), u16 planes = 1,
//            u16 bit count, u32 compression, u32 image size (may be 0), i32 x and y pixels per metre, u32 colours used,
//            u32 colours important
//   size     colour table, 4 bytes an entry: blue, green, red, 0
//   behind   rows, the bottom picture row first, each padded to 4 bytes
// The table has "colours used" entries, or, when that is 0, 2, 16 or 256 at 1, 4 and 8 bits and none above. With
// compression 3 three 32-bit masks stand in its place. The older 12-byte header (u16 width, height, planes, bit count;
// 3-byte table entries) is understood by the readers of size and colours.
//
// Depths: 1, 4, 8 indexed (leftmost pixel in the high bits); 15 is 5-5-5 and 16 is 5-6-5, both u16 a pixel with blue in
// the low bits; 24 blue, green, red; 32 with straight alpha behind.
#pragma once

#include "base/bytes.h"
#include "base/geometry.h"

#include <array>
#include <memory>

namespace pelorin {

/// The largest picture that is made or read: 64 Mi pixels.
inline constexpr std::int64_t kMaxPixels = std::int64_t{64} << 20;

inline constexpr std::size_t kDibHeaderSize = 40;

/// Bytes of a row: padded to 4. 15-bit pixels take 16 bits.
[[nodiscard]] constexpr std::size_t DibStride(int width, int bits) {
    return ((static_cast<std::size_t>(width) * static_cast<std::size_t>(bits == 15 ? 16 : bits) + 31) &
            ~std::size_t{31}) /
           8;
}

/// The table colour 0x00RRGGBB: as a u32 in a block its low byte is blue.
using Rgb = std::uint32_t;

/// Owner of one block. Empty means failure or nothing. Move-only; copies are asked for by `CopyHandle`.
class DibBlock {
public:
    DibBlock() = default;

    /// A zeroed block of `size` bytes, or an empty one when memory fails.
    [[nodiscard]] static DibBlock Allocate(std::size_t size);
    /// A copy of bytes that are laid out as a block already. Nothing is checked: look at it through a `DibView`.
    [[nodiscard]] static DibBlock FromBytes(ByteSpan bytes);

    explicit operator bool() const { return m_data != nullptr; }
    [[nodiscard]] std::uint8_t* Data() { return m_data.get(); }
    [[nodiscard]] const std::uint8_t* Data() const { return m_data.get(); }
    [[nodiscard]] std::size_t Size() const { return m_size; }
    [[nodiscard]] ByteSpan Span() const { return {m_data.get(), m_size}; }
    [[nodiscard]] MutableByteSpan Span() { return {m_data.get(), m_size}; }

private:
    struct Free {
        void operator()(std::uint8_t* p) const;
    };
    std::unique_ptr<std::uint8_t[], Free> m_data;
    std::size_t m_size = 0;
};

// ---- readers of the header; all accept both header kinds and give 0 for a block that is too short ----

[[nodiscard]] int DIBWidth(ByteSpan block);
[[nodiscard]] int DIBHeight(ByteSpan block);
[[nodiscard]] int DIBBitCount(ByteSpan block);
[[nodiscard]] std::uint16_t DIBNumColors(ByteSpan block);
/// Bytes of the colour table: 4 or, with the core header, 3 an entry.
[[nodiscard]] std::size_t PaletteSize(ByteSpan block);
/// Where the rows begin; 0 when that is behind the block's end.
[[nodiscard]] std::size_t DIBRowsOffset(ByteSpan block);
[[nodiscard]] std::uint16_t DIBNumColorsOfHandle(const DibBlock& block);
inline int DIBWidth(const DibBlock& block) {
    return DIBWidth(block.Span());
}
inline int DIBHeight(const DibBlock& block) {
    return DIBHeight(block.Span());
}
inline int DIBBitCount(const DibBlock& block) {
    return DIBBitCount(block.Span());
}
inline std::uint16_t DIBNumColors(const DibBlock& block) {
    return DIBNumColors(block.Span());
}
inline std::size_t PaletteSize(const DibBlock& block) {
    return PaletteSize(block.Span());
}

/// A checked look at a block: the rows and the table lie wholly inside. False when they do not, when a size is not
/// positive, when the depth is none of the seven, or when the rows are run-length coded.
class DibView {
public:
    DibView() = default;
    explicit DibView(ByteSpan block);
    explicit DibView(const DibBlock& block) : DibView(block.Span()) {}

    explicit operator bool() const { return m_rows != nullptr; }
    [[nodiscard]] int Width() const { return m_width; }
    [[nodiscard]] int Height() const { return m_height; }
    /// 1, 4, 8, 15, 16, 24 or 32.
    [[nodiscard]] int BitCount() const { return m_bits; }
    [[nodiscard]] std::size_t Stride() const { return m_stride; }
    [[nodiscard]] Size GetSize() const { return {m_width, m_height}; }
    /// Stored row `y`: 0 is the bottom row of the picture.
    [[nodiscard]] const std::uint8_t* Row(int y) const { return m_rows + m_stride * static_cast<std::size_t>(y); }
    /// Picture row `y`: 0 is the top row.
    [[nodiscard]] const std::uint8_t* PictureRow(int y) const { return Row(m_height - 1 - y); }
    [[nodiscard]] std::size_t RowsOffset() const { return m_rowsOffset; }
    /// Entries that the block itself holds.
    [[nodiscard]] int TableCount() const { return m_tableCount; }
    /// Entry `i` of the table; black behind its end, so that no index in a row needs a test.
    [[nodiscard]] Rgb Color(int i) const;
    /// All 256 entries, black behind the table's end.
    [[nodiscard]] std::array<Rgb, 256> Table() const;

private:
    const std::uint8_t* m_rows = nullptr;
    const std::uint8_t* m_table = nullptr;
    int m_width = 0, m_height = 0, m_bits = 0, m_tableCount = 0, m_tableEntry = 4;
    std::size_t m_stride = 0, m_rowsOffset = 0;
};

/// The same look with rows that can be written.
class DibRows : public DibView {
public:
    DibRows() = default;
    explicit DibRows(DibBlock& block) : DibView(block), m_base(*this ? block.Data() + RowsOffset() : nullptr) {}

    [[nodiscard]] std::uint8_t* Row(int y) const { return m_base + Stride() * static_cast<std::size_t>(y); }
    [[nodiscard]] std::uint8_t* PictureRow(int y) const { return Row(Height() - 1 - y); }

private:
    std::uint8_t* m_base = nullptr;
};

// ---- makers ----

/// A zero-filled block. The depth is rounded up to 1, 4, 8, 16, 24 or 32; above 32 it is 4. The table of 4 and 8 bits
/// is the 16 standard colours over and over; that of 1 bit is two blacks, which the caller sets. Empty when a side is
/// not positive, when the picture is above `kMaxPixels`, or when memory fails.
[[nodiscard]] DibBlock CreateDIB(int width, int height, int bits);
/// A copy, byte by byte; empty for an empty block.
[[nodiscard]] DibBlock CopyHandle(const DibBlock& block);
/// Sets the table entries from `first` on, as many as the block has room for.
void SetDIBTable(DibBlock& block, std::span<const Rgb> colors, int first = 0);

/// The 16 standard colours in table order.
inline constexpr std::array<Rgb, 16> kStandardColors = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080,
                                                        0x008080, 0xC0C0C0, 0x808080, 0xFF0000, 0x00FF00, 0xFFFF00,
                                                        0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};

// ---- palettes ----

/// Colours of a realised palette, in table order.
struct CPalette {
    std::vector<Rgb> colors;
    [[nodiscard]] bool Empty() const { return colors.empty(); }
    friend bool operator==(const CPalette&, const CPalette&) = default;
};
/// The block's table as a palette; empty when it has none.
[[nodiscard]] CPalette CreateDIBPalette(const DibBlock& block);
/// The same from a table of 4-byte entries (blue, green, red, reserved).
[[nodiscard]] CPalette CreatePaletteFromRGBQuad(const std::uint8_t* table, int count);

// ---- whole-block operations ----

/// True when a 32-bpp block has a pixel whose alpha is not 0; false for every other depth.
[[nodiscard]] bool DIBHasAlpha(const DibBlock& block);
/// Any depth to 24 bpp; alpha is dropped, bit-field masks are ignored. Empty for other depths.
[[nodiscard]] DibBlock ConvertDIBTo24(const DibBlock& block);

} // namespace pelorin
