#include "pixel/dib.h"
#include "pixel/surface.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::Picture32;

TEST(CreateDIB, DepthsTablesAndSizes) {
    struct Row {
        int asked, bits, colors;
        std::size_t size; // of a picture of 33 x 2
    };
    const Row rows[] = {{0, 1, 2, 40 + 8 + 16},      {1, 1, 2, 40 + 8 + 16},   {2, 4, 16, 40 + 64 + 40},
                        {5, 8, 256, 40 + 1024 + 72}, {15, 16, 0, 40 + 136},    {17, 24, 0, 40 + 200},
                        {25, 32, 0, 40 + 264},       {33, 4, 16, 40 + 64 + 40}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.asked);
        const auto block = CreateDIB(33, 2, row.asked);
        EXPECT_EQ(DIBBitCount(block), row.bits);
        EXPECT_EQ(block.Size(), row.size);
        EXPECT_EQ(DIBNumColors(block), row.colors);
        EXPECT_EQ(LoadU32LE(block.Data() + 32), static_cast<std::uint32_t>(row.colors));
        EXPECT_EQ(LoadU32LE(block.Data() + 36), static_cast<std::uint32_t>(row.colors));
        for (int i = 0; i < row.colors; ++i) {
            const Rgb expected = row.colors == 2 ? 0 : kStandardColors[static_cast<std::size_t>(i) % 16];
            EXPECT_EQ(DibView(block).Color(i), expected);
        }
    }
    for (const auto& [width, height] : {std::pair{0, 1}, {1, 0}, {-1, 1}, {1 << 20, 1 << 20}, {INT32_MAX, INT32_MAX}}) {
        EXPECT_FALSE(CreateDIB(width, height, 24));
    }
}

// A header of 40 bytes with `extra` bytes behind it.
Bytes Header(int width, int height, int bits, std::uint32_t compression, std::uint32_t colors, std::size_t extra) {
    ByteWriter out;
    out.U32LE(40);
    out.I32LE(width);
    out.I32LE(height);
    out.U16LE(1);
    out.U16LE(static_cast<std::uint32_t>(bits));
    out.U32LE(compression);
    out.Zeros(12);
    out.U32LE(colors);
    out.Zeros(4 + extra);
    return out.Take();
}

TEST(DibView, WhereTheRowsBegin) {
    struct Row {
        const char* what;
        int bits;
        std::uint32_t compression, colors;
        std::size_t rowsAt;
    };
    const Row rows[] = {{"five colours of 8 bits", 8, 0, 5, 60},
                        {"a full table where the count is 0", 8, 0, 0, 40 + 1024},
                        {"masks in place of a table", 32, 3, 0, 52},
                        {"masks, whatever the count says", 16, 3, 9, 52},
                        {"a table that 24 bits do not need", 24, 0, 3, 52}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const std::size_t pixels = DibStride(3, row.bits) * 2;
        const auto block = Header(3, 2, row.bits, row.compression, row.colors, row.rowsAt - 40 + pixels);
        const DibView view{ByteSpan(block)};
        ASSERT_TRUE(view);
        EXPECT_EQ(view.RowsOffset(), row.rowsAt);
        EXPECT_EQ(DIBRowsOffset(block), row.rowsAt);
        EXPECT_FALSE(DibView(ByteSpan(block).first(block.size() - 1))) << "a row that is not whole";
    }
}

TEST(DibView, TheOlderHeader) {
    ByteWriter out;
    out.U32LE(12);
    out.U16LE(2);
    out.U16LE(1);
    out.U16LE(1);
    out.U16LE(1);
    for (const int byte : {1, 2, 3, 4, 5, 6}) out.U8(static_cast<std::uint32_t>(byte));
    out.U32LE(0x40);
    const auto block = out.Take();
    EXPECT_EQ(DIBWidth(block), 2);
    EXPECT_EQ(DIBHeight(block), 1);
    EXPECT_EQ(DIBNumColors(block), 2);
    EXPECT_EQ(PaletteSize(block), 6u);
    const auto picture = ConvertDIBTo24(DibBlock::FromBytes(block));
    EXPECT_EQ(test::At(picture, 0, 0), 0xFF030201u);
    EXPECT_EQ(test::At(picture, 1, 0), 0xFF060504u);
}

TEST(DibView, HostileHeaders) {
    const Bytes blocks[] = {Header(3, 2, 8, 0, 0xFFFFFFFF, 4096),
                            Header(-3, 2, 24, 0, 0, 4096),
                            Header(3, -2, 24, 0, 0, 4096),
                            Header(0x7FFFFFFF, 0x7FFFFFFF, 32, 0, 0, 4096),
                            Header(3, 2, 0, 0, 0, 4096),
                            Header(3, 2, 255, 0, 0, 4096),
                            Header(3, 2, 8, 1, 0, 4096),
                            Bytes(39),
                            Bytes{40, 0, 0, 0},
                            Bytes{}};
    for (const auto& block : blocks) {
        EXPECT_FALSE(DibView(ByteSpan(block)));
        EXPECT_FALSE(ConvertDIBTo24(DibBlock::FromBytes(block)));
        EXPECT_FALSE(DIBHasAlpha(DibBlock::FromBytes(block)));
    }
}

TEST(DIBHasAlpha, AnyPixelOf32Bits) {
    EXPECT_FALSE(DIBHasAlpha(Picture32(3, {1, 2, 3, 4, 5, 6})));
    EXPECT_TRUE(DIBHasAlpha(Picture32(3, {1, 2, 0x01000003, 4, 5, 6})));
    EXPECT_FALSE(DIBHasAlpha(CreateDIB(3, 2, 24)));
}

TEST(Palettes, OutOfBlocksAndTables) {
    EXPECT_TRUE(CreateDIBPalette(CreateDIB(1, 1, 24)).Empty());
    EXPECT_EQ(CreateDIBPalette(CreateDIB(1, 1, 4)).colors.size(), 16u);
    const Bytes table = {1, 2, 3, 9, 4, 5, 6, 9};
    EXPECT_EQ(CreatePaletteFromRGBQuad(table.data(), 2).colors, (std::vector<Rgb>{0x030201, 0x060504}));
    EXPECT_TRUE(CreatePaletteFromRGBQuad(nullptr, 2).Empty());
    EXPECT_TRUE(CreatePaletteFromRGBQuad(table.data(), 0).Empty());
}

TEST(Surface, ThereAndBack) {
    const auto block = Picture32(3, {0x01020304, 2, 3, 4, 5, 0xFFFFFFFF});
    const auto surface = SurfaceFromDIB(block);
    EXPECT_EQ(surface.At(0, 0), 0x01020304u);
    EXPECT_TRUE(std::ranges::equal(DIBFromSurface(surface).Span(), block.Span()));
    EXPECT_EQ(test::At(DIB24FromSurface(surface), 2, 1), 0xFFFFFFFFu);
    EXPECT_FALSE(DIBFromSurface(Surface()));
    EXPECT_FALSE(Surface(1 << 20, 1 << 20));
}

} // namespace
} // namespace pelorin
