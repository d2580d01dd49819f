#include "pixel/cdib.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::Picture32;

Bytes Archived(const CDIB& dib) {
    ArchiveWriter out;
    dib.Serialize(out);
    return out.Take();
}

CDIB Indexed(std::initializer_list<int> indices) {
    CDIB dib(CreateDIB(static_cast<int>(indices.size()), 1, 8));
    auto* row = DibRows(dib.Block()).Row(0);
    for (const int index : indices) *row++ = static_cast<std::uint8_t>(index);
    return dib;
}

TEST(CDIB, SerializesHeaderTableAndRows) {
    EXPECT_EQ(Archived(CDIB()), (Bytes{0, 0, 0, 0}));
    // What the block has behind its rows is not written.
    auto block = CreateDIB(3, 2, 4);
    Bytes longer(block.Span().begin(), block.Span().end());
    longer.resize(longer.size() + 5, 0xEE);
    const auto bytes = Archived(CDIB(DibBlock::FromBytes(longer)));
    ASSERT_EQ(bytes.size(), 8 + block.Size());
    EXPECT_EQ(LoadU32LE(&bytes[0]), 1u);
    EXPECT_EQ(LoadU32LE(&bytes[4]), 40u + 64 + 8);
    EXPECT_TRUE(std::equal(bytes.begin() + 8, bytes.end(), block.Data()));

    CDIB read;
    ArchiveReader in(bytes);
    read.Serialize(in);
    EXPECT_EQ(in.Left(), 0u);
    EXPECT_EQ(Archived(read), bytes);
    EXPECT_EQ(read.m_Palette.colors.size(), 16u);
    ArchiveReader cut(ByteSpan(bytes).first(bytes.size() - 1));
    EXPECT_THROW(read.Serialize(cut), ArchiveException);
    const Bytes huge = {1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 40};
    ArchiveReader tooLarge(huge);
    EXPECT_THROW(read.Serialize(tooLarge), ArchiveException);
    EXPECT_EQ(Archived(read), bytes) << "the old picture stays";
    const Bytes empty(4);
    ArchiveReader none(empty);
    read.Serialize(none);
    EXPECT_TRUE(read.Empty());
}

TEST(CDIB, CopiesCarryWhatReadersNoted) {
    auto dib = Indexed({1, 2, 3});
    dib.m_nFrameRate = 7;
    dib.m_nTransparentIndex = 2;
    ASSERT_TRUE(dib.KeepSourcePalette(2));
    const CDIB copy = dib; // NOLINT: the copy is the point
    EXPECT_EQ(copy.m_nFrameRate, 7);
    EXPECT_EQ(copy.m_nTransparentIndex, 2);
    EXPECT_EQ(copy.m_pSourcePalette, (Bytes{0, 0, 0, 0x80, 0, 0, 0, 0x80, 0, 0x80, 0x80, 0}));
    EXPECT_EQ(copy.m_Palette, dib.m_Palette);
    EXPECT_NE(copy.Block().Data(), dib.Block().Data());

    dib.CopyFrom(dib.Block());
    EXPECT_EQ(dib.GetWidth(), 3);
    EXPECT_TRUE(dib.m_pSourcePalette.empty());
    EXPECT_EQ(dib.m_nPaletteBits, 2) << "clearing leaves the bits and the index";
    EXPECT_EQ(dib.m_nTransparentIndex, 2);
    EXPECT_FALSE(dib.ApplySourcePalette());
}

TEST(CDIB, PixelsByPlace) {
    const CDIB dib(Picture32(2, {0x80112233, 0x01445566}));
    std::uint8_t alpha = 0;
    EXPECT_EQ(dib.GetPixel(0, 0, &alpha), 0x332211) << "blue comes first";
    EXPECT_EQ(alpha, 0x80);
    EXPECT_EQ(CDIB(ConvertDIBTo24(dib.Block())).GetPixel(1, 0, &alpha), 0x665544);
    EXPECT_EQ(alpha, 255);
    for (const auto& [x, y] : {std::pair{-1, 0}, {2, 0}, {0, -1}, {0, 1}}) EXPECT_EQ(dib.GetPixel(x, y), -1);
    EXPECT_EQ(CDIB().GetPixel(0, 0), -1);
    EXPECT_TRUE(Indexed({1, 2, 9}).HasIndex(9));
    EXPECT_FALSE(Indexed({1, 2, 9}).HasIndex(0)) << "the padding of the row is no pixel";
    EXPECT_FALSE(dib.HasIndex(0x11));
}

TEST(CDIB, CropTakesCornersInAnyOrder) {
    const auto picture = [] { return CDIB(Picture32(3, {1, 2, 3, 4, 5, 6, 7, 8, 9})); };
    struct Row {
        int x1, y1, x2, y2;
        Size size;
        Argb first;
    };
    const Row rows[] = {{1, 1, 2, 2, {2, 2}, 5},
                        {2, 2, 1, 1, {2, 2}, 5},
                        {-9, 2, 0, 99, {1, 1}, 7},
                        {50, 50, 60, 60, {1, 1}, 9},
                        {99, -9, -9, 99, {3, 3}, 1}};
    for (const auto& row : rows) {
        auto dib = picture();
        ASSERT_TRUE(dib.Crop(row.x1, row.y1, row.x2, row.y2));
        EXPECT_EQ(DibView(dib.Block()).GetSize(), row.size);
        EXPECT_EQ(At(dib.Block(), 0, 0), row.first);
    }
    CDIB mono(CreateDIB(9, 9, 1));
    EXPECT_FALSE(mono.Crop(1, 1, 2, 2));
    EXPECT_EQ(mono.GetWidth(), 9) << "what cannot be done leaves the picture";
    EXPECT_FALSE(CDIB().Crop(0, 0, 1, 1));
}

TEST(CDIB, SquareCanvasAndAlpha) {
    CDIB dib(Picture32(3, {1, 2, 3, 4, 5, 6}));
    ASSERT_TRUE(dib.MakeSquare());
    EXPECT_EQ(dib.GetHeight(), 3);
    EXPECT_EQ(At(dib.Block(), 0, 0), 1u) << "one row more goes below: 1 >> 1 is 0";
    EXPECT_EQ(At(dib.Block(), 0, 2), 0u);
    ASSERT_TRUE(dib.ResizeCanvas(2, 2, 1, -1, 2, 99, 0x77));
    EXPECT_EQ(At(dib.Block(), 0, 0), 0x77u);
    EXPECT_EQ(At(dib.Block(), 1, 0), 4u);
    EXPECT_EQ(At(dib.Block(), 1, 1), 0u);
    ASSERT_TRUE(dib.ResizeCanvas(2, 2, INT32_MIN, INT32_MAX, INT32_MAX, INT32_MIN, 0xFFFFFFFF));
    ASSERT_TRUE(dib.MultiplyAlpha(dib));
    EXPECT_EQ(At(dib.Block(), 1, 1), 0xFEFFFFFFu);
    EXPECT_FALSE(dib.MultiplyAlpha(CDIB(CreateDIB(2, 1, 32))));
    EXPECT_FALSE(CDIB(CreateDIB(3, 2, 24)).MakeSquare());
}

TEST(CDIB, DepthsThatEachConversionTakes) {
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        SCOPED_TRACE(bits);
        const auto after = [&](auto&& change) {
            CDIB dib(CreateDIB(3, 2, bits));
            change(dib);
            return dib.GetBitCount();
        };
        EXPECT_EQ(after([](CDIB& d) { d.ConvertTo32(); }), bits == 16 ? 16 : 32);
        EXPECT_EQ(after([](CDIB& d) { d.ConvertTo24(kNoColor); }), bits < 8 || bits == 16 ? bits : 24);
        EXPECT_EQ(after([](CDIB& d) { d.ReduceTo8Bit(); }), bits == 16 ? 16 : 8);
        EXPECT_EQ(after([](CDIB& d) { d.ReduceToPalette(kStandardColors); }), bits == 16 ? 16 : 8);
        EXPECT_EQ(after([](CDIB& d) { d.Resize(1, 1); }), bits);
        EXPECT_EQ(after([](CDIB& d) { d.KeepSourcePalette(8); }), bits);
    }
    CDIB dib(Picture32(1, {0x00FF0000}));
    ASSERT_TRUE(dib.ReduceToPalette(kStandardColors));
    EXPECT_EQ(At(dib.Block(), 0, 0), 0xFFFFFFFFu) << "composed on white first";
    EXPECT_EQ(dib.m_Palette.colors[1], 0x800000u);
}

TEST(CDIB, TransparentIndexThereAndBack) {
    auto dib = Indexed({9, 10, 11, 15});
    ASSERT_TRUE(dib.KeepSourcePalette(4));
    EXPECT_FALSE(dib.ApplyTransparentIndex()) << "there is none yet";
    dib.m_nTransparentIndex = 10;
    ASSERT_TRUE(dib.ApplyTransparentIndex());
    EXPECT_EQ(At(dib.Block(), 1, 0), 0x0000FF00u);
    ASSERT_TRUE(dib.ApplySourcePalette());
    EXPECT_EQ(dib.GetBitCount(), 8);
    EXPECT_EQ(dib.m_nTransparentIndex, 15);
    EXPECT_EQ(DibView(dib.Block()).Color(15), 0x00FF00u);
    const auto* row = DibView(dib.Block()).Row(0);
    EXPECT_EQ(Bytes(row, row + 4), (Bytes{9, 15, 10, 14})) << "what stood behind the slot moved up by one";
    EXPECT_FALSE(Indexed({1}).KeepSourcePalette(9));
    EXPECT_FALSE(Indexed({1}).KeepSourcePalette(0));
}

TEST(CDIB, SetBitsCountsAByteForTheTable) {
    for (const int bits : {24, 32}) {
        const auto block = CreateDIB(3, 2, bits);
        const Bytes rows(DibStride(3, bits) * 2, 0x5A);
        auto dib = Indexed({1});
        ASSERT_TRUE(dib.KeepSourcePalette(1));
        ASSERT_TRUE(dib.SetBits(block.Span().first(40), rows));
        EXPECT_EQ(dib.Block().Size(), block.Size() + (bits == 24 ? 0 : 1));
        EXPECT_EQ(dib.GetPixel(2, 1), 0x5A5A5A);
        EXPECT_EQ(dib.m_nPaletteBits, 0);
        EXPECT_FALSE(dib.SetBits(block.Span().first(40), ByteSpan(rows).first(rows.size() - 1)));
        EXPECT_FALSE(dib.SetBits(block.Span().first(39), rows));
    }
}

} // namespace
} // namespace pelorin
