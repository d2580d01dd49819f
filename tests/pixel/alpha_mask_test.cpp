#include "pixel/alpha_mask.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::Picture32;

TEST(SplitByThreshold, TheLimitAndTheWhiteBehind) {
    struct Row {
        Argb alpha, color, mask;
    };
    const Row rows[] = {{0, 0, 0xFFFFFF}, {5, 0, 0xFFFFFF},   {7, 0, 0xFFFFFF},   {8, 0, 0xFFFFFF},
                        {9, 0, 0xFFFFFF}, {127, 0, 0xFFFFFF}, {128, 0x94A9BE, 0}, {255, 0x2A557F, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.alpha);
        const auto pair = SplitByThreshold(Picture32(1, {row.alpha << 24 | 0x2A557F}));
        ASSERT_TRUE(pair);
        EXPECT_EQ(pair.color.At(0, 0), row.color) << "(127 * 255 + channel * 128) / 255";
        EXPECT_EQ(pair.mask.At(0, 0), row.mask);
    }
    EXPECT_FALSE(SplitByThreshold(CreateDIB(1, 1, 24)));
}

TEST(SplitByColor, DistancesAreDoubled) {
    struct Row {
        int tolerance;
        bool exact, byOne, byTwo; // transparent?
    };
    const Row rows[] = {{-1, false, false, false}, {0, true, false, false}, {1, true, false, false},
                        {2, true, true, false},    {3, true, true, false},  {4, true, true, true}};
    const auto block = ConvertDIBTo24(Picture32(3, {0xFF102030, 0xFF102031, 0xFF0F2130}));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.tolerance);
        const auto pair = SplitByColor(block, MakeColorRef(0x10, 0x20, 0x30), row.tolerance);
        ASSERT_TRUE(pair);
        EXPECT_EQ(pair.mask.At(0, 0), row.exact ? 0xFFFFFFu : 0u);
        EXPECT_EQ(pair.mask.At(1, 0), row.byOne ? 0xFFFFFFu : 0u);
        EXPECT_EQ(pair.mask.At(2, 0), row.byTwo ? 0xFFFFFFu : 0u);
        EXPECT_EQ(pair.color.At(2, 0), row.byTwo ? 0u : 0x0F2130u);
    }
    const auto none = SplitByColor(CreateDIB(2, 2, 24), kNoColor, 1000);
    EXPECT_EQ(none.mask, Surface(2, 2)) << "black is no key";
    EXPECT_FALSE(SplitByColor(CreateDIB(1, 1, 32), 0, 0));
}

// A 3 x 2 icon block of 32 bits: header of twice the height, rows, and a plane of 1 bit that is all set at first.
Bytes IconBlock3x2() {
    const auto picture = CreateDIB(3, 2, 32);
    Bytes block(picture.Span().begin(), picture.Span().end());
    block.resize(block.size() + 8, 0xFF);
    return block;
}

TEST(MergeToIconBlock, RowsPlaneAndHeader) {
    Surface color(3, 2), alpha(3, 2);
    color.Fill(0x99112233);
    alpha.Fill(0x010101);
    alpha.Put(1, 1, 0); // the bottom row, which is stored first
    for (const bool fullHeight : {false, true}) {
        auto block = IconBlock3x2();
        ASSERT_TRUE(MergeToIconBlock(color, alpha, block, fullHeight));
        EXPECT_EQ(LoadU32LE(&block[40]), 0x01112233u);
        EXPECT_EQ(LoadU32LE(&block[44]), 0u);
        EXPECT_EQ(Bytes(block.begin() + 64, block.end()), (Bytes{0x40, 0, 0, 0, 0, 0, 0, 0}));
        EXPECT_EQ(LoadU32LE(&block[8]), fullHeight ? 2u : 4u);
        EXPECT_EQ(LoadU32LE(&block[20]), fullHeight ? 0u : 32u);
        if (fullHeight) continue;
        // An icon's height counts the plane as well; the way back takes half of the rows.
        const auto back = SplitColorAlpha(block, false);
        ASSERT_TRUE(back);
        EXPECT_EQ(back.mask, alpha);
        EXPECT_EQ(back.color.At(0, 0), 0x112233u);
        EXPECT_EQ(back.color.At(1, 1), 0u);
        EXPECT_FALSE(SplitColorAlpha(block, true)) << "four whole rows are not there";
    }
    auto shorter = IconBlock3x2();
    shorter.pop_back();
    EXPECT_FALSE(MergeToIconBlock(color, alpha, shorter, false));
    EXPECT_FALSE(MergeToIconBlock(color, Surface(3, 1), shorter, false));
}

TEST(Merge, OnlyWhiteIsTransparentAndAlphaIsTakenAsItIs) {
    Surface color(5, 1), grey(5, 1);
    color.Fill(0x445566);
    const std::array<Argb, 5> levels = {0, 127, 128, 254, 255};
    for (int x = 0; x < 5; ++x) grey.Put(x, 0, levels[static_cast<std::size_t>(x)] * 0x010101);
    auto masked = CreateDIB(5, 1, 32), merged = CreateDIB(5, 1, 32);
    ASSERT_TRUE(MergeMask(color, grey, masked.Span()));
    ASSERT_TRUE(MergeAlpha(color, grey, merged.Span(), true));
    for (int x = 0; x < 5; ++x) {
        EXPECT_EQ(At(masked, x, 0), x == 4 ? 0u : 0xFF445566u);
        EXPECT_EQ(At(merged, x, 0), levels[static_cast<std::size_t>(x)] << 24 | 0x445566u);
    }
    EXPECT_EQ(DIBHeight(merged), 1);
    ASSERT_TRUE(MergeAlpha(color, grey, merged.Span(), false));
    EXPECT_EQ(DIBHeight(merged), 2);
    EXPECT_EQ(SplitColorAlpha(merged, false).mask, grey);
    auto other = CreateDIB(5, 1, 24);
    EXPECT_FALSE(MergeMask(color, grey, other.Span()));
    EXPECT_FALSE(MergeMask(color, grey, {}));
}

TEST(ClearWhereMasked, OnlyAbove254) {
    Surface color(2, 1), mask(2, 1);
    color.Fill(0x7F445566);
    mask.Put(0, 0, 0xFE);
    mask.Put(1, 0, 0xFF);
    ASSERT_TRUE(ClearWhereMasked(color, mask));
    EXPECT_EQ(color.At(0, 0), 0x7F445566u);
    EXPECT_EQ(color.At(1, 0), 0x7F000000u);
    EXPECT_FALSE(ClearWhereMasked(color, Surface(1, 1)));
}

} // namespace
} // namespace pelorin
