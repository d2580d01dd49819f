#include "pixel/dither.h"
#include "pixel/draw.h"
#include "pixel/resample.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::Picture32;

TEST(FitInside, DivisionsTruncate) {
    struct Row {
        Size source;
        Rect target, expected;
    };
    const Row rows[] = {{{3, 2}, {0, 0, 10, 10}, {0, 2, 10, 8}}, // 10 x 2 / 3 = 6, (10 - 6) / 2
                        {{2, 3}, {10, 20, 20, 30}, {12, 20, 18, 30}},
                        {{3, 2}, {0, 0, 10, 5}, {1, 0, 8, 5}},     // 6 is too high; 5 x 3 / 2 = 7, (10 - 7) / 2
                        {{100, 1}, {0, 0, 10, 10}, {0, 5, 10, 5}}, // nothing of the height is left
                        {{0, 5}, {1, 2, 3, 4}, {1, 2, 1, 2}}};
    for (const auto& row : rows) EXPECT_EQ(FitInside(row.source, row.target), row.expected);
}

TEST(DrawDIB, StretchesAndClips) {
    Surface target(4, 3);
    const auto block = Picture32(2, {1, 2, 3, 4});
    // Columns and rows of a 4 x 4 place whose first column and row lie outside.
    ASSERT_TRUE(DrawDIB(target, block, {-1, -1, 3, 3}));
    const std::array<std::array<Argb, 4>, 3> expected = {{{1, 2, 2, 0}, {3, 4, 4, 0}, {3, 4, 4, 0}}};
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 4; ++x) {
            const Argb color = expected[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
            EXPECT_EQ(target.At(x, y), color == 0 ? 0 : color | 0xFF000000u) << x << ", " << y;
        }
    }
    const Surface before = target;
    EXPECT_FALSE(DrawDIB(target, block, {4, 0, 9, 9}));
    EXPECT_FALSE(DrawDIB(target, block, {2, 2, 2, 9}));
    EXPECT_FALSE(DrawDIB(target, {}, {0, 0, 4, 3}));
    EXPECT_EQ(DrawDIBFitted(target, {}, {0, 0, 4, 3}), Rect{});
    EXPECT_EQ(target, before);
}

TEST(DrawDIB, ScreensAndCopies) {
    auto deep = CreateDIB(33, 7, 24);
    for (auto& byte : deep.Span().subspan(kDibHeaderSize)) byte = 0x64;
    StoreU32LE(DibRows(deep).Row(3) + 30, 0xFFFFFFFF);
    const auto indexed = DitherTo8(deep, 33, 7, kDither884, false);
    const auto painted = [](const DibBlock& block, DrawOptions options) {
        Surface target(16, 16);
        EXPECT_EQ(DrawDIBFitted(target, block, {0, 0, 16, 16}, options), (Rect{0, 6, 16, 9}));
        return target;
    };
    const auto direct = [&](const DibBlock& copy) { return painted(copy, {}); };
    EXPECT_EQ(painted(deep, {32, true}), direct(ResampleDIB(deep, 16, 3)));
    EXPECT_EQ(painted(deep, {8, false}), direct(DitherTo8(deep, 16, 3, kDither484, false)));
    EXPECT_EQ(painted(deep, {5, false}), direct(DitherTo8(deep, 16, 3, kDither484, false)));
    EXPECT_EQ(painted(deep, {4, false}), direct(DitherTo8(deep, 16, 3, kDither222, false)));
    EXPECT_EQ(painted(indexed, {8, false}), direct(indexed)) << "a table is shown as it is";
    EXPECT_EQ(painted(indexed, {4, true}), direct(DitherTo8(indexed, 16, 3, kDither222, false)));
    const auto alpha = Picture32(1, {0x00FFFFFF});
    Surface one(1, 1);
    EXPECT_TRUE(DrawDIB(one, alpha, {0, 0, 1, 1}, {8, false}));
    EXPECT_EQ(one.At(0, 0), 0xFFFFFFFFu);
}

} // namespace
} // namespace pelorin
