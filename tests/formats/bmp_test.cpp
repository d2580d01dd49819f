#include "base/files.h"
#include "formats/bmp.h"
#include "formats/load_image.h"
#include "formats/save_image.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;

// A file from a 40-byte header and what stands behind it.
struct FileShape {
    int width, height, bits;
    std::uint32_t compression = 0, colors = 0;
    std::uint32_t rowsOffset = 0;
    std::uint32_t headerSize = 40;
};

Bytes MakeFile(const FileShape& shape, std::initializer_list<int> behind) {
    ByteWriter out;
    out.Text("BM");
    out.Zeros(8);
    out.U32LE(shape.rowsOffset);
    out.U32LE(shape.headerSize);
    if (shape.headerSize == 12) {
        out.U16LE(static_cast<std::uint32_t>(shape.width));
        out.U16LE(static_cast<std::uint32_t>(shape.height));
        out.U16LE(1);
        out.U16LE(static_cast<std::uint32_t>(shape.bits));
    } else {
        out.I32LE(shape.width);
        out.I32LE(shape.height);
        out.U16LE(1);
        out.U16LE(static_cast<std::uint32_t>(shape.bits));
        out.U32LE(shape.compression);
        out.Zeros(12);
        out.U32LE(shape.colors);
        out.U32LE(0);
        out.Zeros(shape.headerSize - 40);
    }
    for (const int value : behind) out.U8(static_cast<std::uint32_t>(value));
    return out.Take();
}

DibBlock Read(ByteSpan file) {
    PictureFacts facts;
    return ReadBmp(file, {}, facts);
}

TEST(Bmp, RawReaderKeepsDepthAndTable) {
    const auto block = ReadRawBmp(MakeFile({2, 1, 4, 0, 3}, {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 0x21, 0, 0, 0}));
    const DibView view(block);
    ASSERT_TRUE(view);
    EXPECT_EQ(view.BitCount(), 4);
    EXPECT_EQ(view.TableCount(), 3);
    EXPECT_EQ(LoadU32LE(block.Data() + 36), 3u) << "colours important follows colours used";
    EXPECT_EQ(LoadU32LE(block.Data() + 20), 4u) << "image size is filled in";
    EXPECT_EQ(At(block, 0, 0), 0xFF090807u);
    EXPECT_EQ(At(block, 1, 0), 0xFF060504u);
}

TEST(Bmp, CoreHeaderTableIsWidened) {
    const auto block =
        ReadRawBmp(MakeFile({2, 2, 1, 0, 0, 0, 12}, {10, 20, 30, 40, 50, 60, 0x40, 0, 0, 0, 0x80, 0, 0, 0}));
    EXPECT_EQ(LoadU32LE(block.Data()), 40u);
    EXPECT_EQ(At(block, 0, 0), 0xFF3C3228u);
    EXPECT_EQ(At(block, 1, 0), 0xFF1E140Au);
    EXPECT_EQ(At(block, 1, 1), 0xFF3C3228u);
}

TEST(Bmp, RunLengthsExpandWithMovesAndLiterals) {
    // Bottom row: three of index 1; a move one right and one up; three literals; end. What is skipped is index 0.
    auto shape = FileShape{5, 2, 8, 1, 4};
    const auto block = ReadRawBmp(MakeFile(shape, {0, 0, 0, 0, 1, 1, 1, 0, 2, 2, 2, 0, 3, 3, 3, 0, //
                                                   3, 1, 0, 2, 0, 1, 0, 3, 2, 3, 2, 0, 0, 1}));
    const DibView view(block);
    ASSERT_TRUE(view);
    EXPECT_EQ(Bytes(view.Row(0), view.Row(0) + 5), (Bytes{1, 1, 1, 0, 0}));
    EXPECT_EQ(Bytes(view.Row(1), view.Row(1) + 5), (Bytes{0, 0, 0, 2, 3}))
        << "the third literal is behind the row's end";
    EXPECT_EQ(LoadU32LE(block.Data() + 16), 0u);

    shape.compression = 2;
    shape.bits = 4;
    EXPECT_FALSE(ReadRawBmp(MakeFile(shape, {0, 0, 0, 0, 1, 1, 1, 0, 2, 2, 2, 0, 3, 3, 3, 0, 5, 1, 0, 0, 5, 1, 0, 1})));
}

TEST(Bmp, DepthsWithoutTable) {
    struct Case {
        const char* what;
        FileShape shape;
        std::initializer_list<int> behind;
        int bits;
        Argb color;
    };
    const Case cases[] = {
        {"5-5-5 is shifted only", {1, 1, 15}, {0xFF, 0x7F, 0, 0}, 24, 0xFFF8F8F8},
        {"16 bits are 5-6-5", {1, 1, 16}, {0xE0, 0x07, 0, 0}, 24, 0xFF00FC00},
        {"masks are not obeyed",
         {1, 1, 16, 3},
         {0, 0x7C, 0, 0, 0xE0, 3, 0, 0, 31, 0, 0, 0, 0xE0, 0x07, 0, 0},
         24,
         0xFF00FC00},
        {"rows behind the masks by the offset",
         {1, 1, 32, 3, 0, 70},
         {0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 9, 9, 9, 9, 1, 2, 3, 4},
         32,
         0x04030201},
        {"no alpha anywhere", {1, 1, 32}, {1, 2, 3, 0}, 24, 0xFF030201},
        {"the first row is the top one", {1, -2, 24}, {1, 1, 1, 0, 2, 2, 2, 0}, 24, 0xFF010101},
        {"an unknown compression is none", {1, 1, 24, 99}, {1, 2, 3, 0}, 24, 0xFF030201},
        {"a gap before the rows", {1, 1, 24, 0, 0, 56}, {7, 7, 1, 2, 3, 0}, 24, 0xFF030201},
        {"padding left out at the end", {1, 1, 24}, {1, 2, 3}, 24, 0xFF030201},
        {"long header", {1, 1, 32, 3, 0, 138, 124}, {1, 2, 3, 255}, 32, 0xFF030201},
    };
    for (const auto& c : cases) {
        const auto block = Read(MakeFile(c.shape, c.behind));
        ASSERT_TRUE(block) << c.what;
        EXPECT_EQ(DIBBitCount(block), c.bits) << c.what;
        EXPECT_EQ(At(block, 0, 0), c.color) << c.what;
    }
}

TEST(Bmp, HostileHeadersAreRefused) {
    const auto good = MakeFile({2, 2, 8, 0, 2}, {0, 0, 0, 0, 1, 1, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0});
    ASSERT_TRUE(Read(good));
    for (std::size_t size = 0; size < good.size() - 2; ++size) EXPECT_FALSE(Read(ByteSpan(good).first(size))) << size;
    for (const std::uint32_t value : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        for (std::size_t field = 10; field + 4 <= 54; field += 2) {
            auto file = good;
            StoreU32LE(&file[field], value);
            const auto block = Read(file);
            EXPECT_TRUE(!block || DibView(block)) << field << " " << value;
        }
    }
}

TEST(Bmp, WriterLaysOutTheBlock) {
    auto block = CreateDIB(3, 2, 8);
    SetDIBTable(block, std::array<Rgb, 2>{0x112233, 0x445566});
    DibRows(block).PictureRow(0)[2] = 1;
    Bytes file;
    ASSERT_EQ(WriteBmp(block, {}, file), 0);
    EXPECT_EQ(file.size(), 14u + 40 + 1024 + 8);
    EXPECT_EQ(LoadU32LE(&file[2]), file.size());
    EXPECT_EQ(LoadU32LE(&file[10]), 14u + 40 + 1024);
    EXPECT_EQ(LoadU32LE(&file[34]), 8u);
    const auto back = ReadRawBmp(file);
    EXPECT_EQ(At(back, 2, 0), 0xFF445566u);
    EXPECT_EQ(At(back, 0, 1), 0xFF112233u);

    EXPECT_EQ(WriteBmp({}, {}, file), 20);
    StoreU32LE(block.Data() + 4, 3000);
    EXPECT_EQ(WriteBmp(block, {}, file), 3);
    StoreU32LE(block.Data(), 12);
    file.clear();
    EXPECT_EQ(WriteBmp(block, {}, file), 0);
    EXPECT_TRUE(file.empty());
}

TEST(Bmp, AlphaIsWrittenWithoutMasks) {
    const auto masks = MakeFile({1, 1, 32, 3, 0, 66}, {0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 1, 2, 3, 4});
    Bytes again;
    ASSERT_EQ(WriteBmp(ReadRawBmp(masks), {}, again), 0);
    EXPECT_EQ(again.size(), 14u + 40 + 4);
    EXPECT_EQ(LoadU32LE(&again[30]), 0u);
    EXPECT_EQ(At(Read(again), 0, 0), 0x04030201u);
}

TEST(Bmp, DispatchFindsTheFormatByContent) {
    const auto file = MakeFile({1, 1, 1, 0, 2}, {0, 0, 0, 0, 255, 255, 255, 0, 0x80, 0, 0, 0});
    PictureFacts facts;
    const auto block = ReadPicture(file, 0, {}, facts);
    EXPECT_EQ(At(block, 0, 0), 0xFFFFFFFFu);
    EXPECT_EQ(facts.format, "BMP");
    EXPECT_EQ(facts.bits, 1) << "the file's depth";
    EXPECT_EQ(DIBBitCount(block), 24);
    EXPECT_FALSE(ReadPicture(AsBytes("no picture"), 0, {}, facts));
    EXPECT_EQ(SavePicture(block, 999, "x", {}), kNoSuchWriter);
}

} // namespace
} // namespace pelorin
