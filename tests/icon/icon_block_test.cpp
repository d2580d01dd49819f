#include "icon/icon_block.h"
#include "icon/stored_icon.h"
#include "support/dib_builder.h"
#include "support/ico_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::BuildIconBlock;
using test::Picture32;

TEST(IconBlock, SizeFollowsFromColoursAndAlpha) {
    struct Case {
        int width, height, colors;
        bool alpha;
        std::uint32_t size;
    };
    const Case cases[] = {
        {16, 16, 2, false, 40 + 8 + 64 + 64},
        {16, 16, 16, false, 40 + 64 + 128 + 64},
        {32, 32, 256, false, 40 + 1024 + 1024 + 128},
        {33, 2, 0, false, 40 + 200 + 16},
        {48, 48, 0, true, 40 + 9216 + 384},
        {16, 16, 3, false, 40 + 12 + 0 + 64}, // unusual: no XOR rows
        {16, 16, 256, true, 40 + 1024 + 1024 + 64},
        {0, 16, 0, true, 0},
        {16, -16, 0, true, 0},
        {65536, 1025, 0, true, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CVnIcon::BlockSize(c.width, c.height, c.colors, c.alpha), c.size) << c.width << " " << c.colors;
    }
}

// One row of three pixels at each depth; the middle one is transparent by its AND bit.
TEST(IconBlock, ToPictureByDepth) {
    struct Case {
        int bits;
        Bytes behind;
        Argb left, right, exportLeft;
    };
    const Bytes mask = {0x40, 0, 0, 0};
    const auto join = [&](std::initializer_list<Bytes> parts) {
        Bytes all;
        for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
        all.insert(all.end(), mask.begin(), mask.end());
        return all;
    };
    const Bytes table = {1, 2, 3, 0, 4, 5, 6, 0};
    const Case cases[] = {
        // The table is not asked at 1 bit, but for export it is.
        {1, join({table, {0xA0, 0, 0, 0}}), 0xFFFFFFFF, 0xFFFFFFFF, 0xFF060504},
        {4, join({table, Bytes(56), {0x10, 0x10, 0, 0}}), 0xFF060504, 0xFF060504, 0xFF060504},
        {8, join({table, Bytes(1016), {1, 0, 0, 0}}), 0xFF060504, 0xFF030201, 0xFF060504},
        {24, join({{9, 8, 7, 1, 1, 1, 6, 5, 4, 0, 0, 0}}), 0xFF000000, 0xFF000000, 0xFF070809},
        {32, join({{9, 8, 7, 1, 2, 2, 2, 0, 6, 5, 4, 255}}), 0x01070809, 0xFF040506, 0x01070809},
        {32, join({{9, 8, 7, 0, 2, 2, 2, 0, 6, 5, 4, 0}}), 0x00070809, 0x00040506, 0xFF070809},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bits);
        auto block = BuildIconBlock({.width = 3, .doubledHeight = 2, .bits = c.bits, .behind = c.behind});
        EXPECT_EQ(At(IconBlockPicture(block), 0, 0), c.exportLeft);
        const auto picture = IconBlockToDIB32(block);
        ASSERT_EQ(DIBBitCount(picture), 32);
        EXPECT_EQ(At(picture, 0, 0), c.left);
        EXPECT_EQ(At(picture, 1, 0), c.bits == 32 ? 0x00020202u : 0x00C0C0C0u);
        EXPECT_EQ(At(picture, 2, 0), c.right);
    }
}

TEST(IconBlock, A24BitSourceGoesBlackItself) {
    auto block =
        BuildIconBlock({.width = 2, .doubledHeight = 2, .bits = 24, .behind = {9, 8, 7, 6, 5, 4, 0, 0, 0x40, 0, 0, 0}});
    (void)IconBlockToDIB32(block);
    EXPECT_EQ(Bytes(block.begin() + 40, block.begin() + 48), (Bytes{0, 0, 0, 6, 5, 4, 0, 0}));
}

TEST(IconBlock, NothingFromBlocksThatAreNotWhole) {
    const auto whole = test::PlainIconBlock(5, 3, 4);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(IconBlockToDIB32(part)) << size;
    }
    for (const int bits : {0, 2, 7}) {
        auto odd = BuildIconBlock({.width = 2, .doubledHeight = 4, .bits = bits, .behind = Bytes(3000)});
        EXPECT_FALSE(IconBlockToDIB32(odd)) << bits;
    }
}

// Bottom row first: the picture's second row comes first in the block.
TEST(IconBlock, FromPictureGoldenBytes) {
    const auto picture = Picture32(2, {0xFF102030, 0x00FFFFFF, 0x80000000, 0xFFFFFFFF});
    struct Case {
        int bits;
        Bytes behind;
    };
    const Case cases[] = {
        {1, {0, 0, 0, 0, 255, 255, 255, 0, 0x40, 0, 0, 0, 0x80, 0, 0, 0, 0, 0, 0, 0, 0x40, 0, 0, 0}},
        {24, {0, 0, 0, 255, 255, 255, 0, 0, 0x30, 0x20, 0x10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x40, 0, 0, 0}},
        {32, {0, 0, 0, 0x80, 255, 255, 255, 255, 0x30, 0x20, 0x10, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0x40, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bits);
        const auto block = DIB32ToIconBlock(picture, c.bits);
        ASSERT_GE(block.size(), 40u);
        EXPECT_EQ(Bytes(block.begin() + 40, block.end()), c.behind);
        ByteReader r(block);
        EXPECT_EQ(r.U32LE(), 40u);
        EXPECT_EQ(r.I32LE(), 2);
        EXPECT_EQ(r.I32LE(), 4);
        EXPECT_EQ(r.U16LE(), 1);
        EXPECT_EQ(r.U16LE(), c.bits);
        EXPECT_EQ(r.U32LE(), 0u);
        EXPECT_EQ(r.U32LE(), block.size());
        r.Skip(8);
        EXPECT_EQ(r.U32LE(), c.bits == 1 ? 2u : 0u);
        EXPECT_EQ(r.U32LE(), 0u);
    }
}

TEST(IconBlock, FromPictureToTables) {
    const auto picture = Picture32(2, {0xFFFF0000, 0xFF010203, 0x00FF00FF, 0xFF0A0BF0});
    auto four = DIB32ToIconBlock(picture, 4);
    for (unsigned i = 0; i < 16; ++i) EXPECT_EQ(LoadU32LE(&four[40 + i * 4]), kStandardColors[i]);
    auto back = IconBlockPicture(four);
    EXPECT_EQ(At(back, 0, 0), 0xFFFF0000u);
    EXPECT_EQ(At(back, 1, 0), 0xFF000000u);
    EXPECT_EQ(At(back, 0, 1), 0x00C0C0C0u);
    EXPECT_EQ(At(back, 1, 1), 0xFF0000FFu);
    // Few colours: the computed palette holds each of them.
    back = IconBlockPicture(DIB32ToIconBlock(picture, 8));
    EXPECT_EQ(At(back, 0, 0), 0xFFFF0000u);
    EXPECT_EQ(At(back, 1, 0), 0xFF010203u);
    EXPECT_EQ(At(back, 0, 1), 0x00C0C0C0u);
    EXPECT_EQ(At(back, 1, 1), 0xFF0A0BF0u);
    for (const int bits : {0, 2, 15, 16, 64, 255, -1}) EXPECT_TRUE(DIB32ToIconBlock(picture, bits).empty()) << bits;
}

} // namespace
} // namespace pelorin
