#include "pixel/preview.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using namespace test;

TEST(StretchToPreview, AveragesColumnsAndTakesTheNearestRow) {
    const auto source = Picture32(4, {0xFF000000, 0xFF0000FF, 0xFF00FF00, 0xFF000002, //
                                      0xFF0A0A0A, 0xFF0F0F0F, 0xFF141414, 0xFF1E1E1E});
    const auto half = StretchToPreview(source, 2, 2, false);
    EXPECT_EQ(At(half, 0, 0), 0xFF00007Fu);
    EXPECT_EQ(At(half, 1, 0), 0xFF00FF00u) << "the last column of the source ends no span";
    EXPECT_EQ(At(half, 0, 1), 0xFF0C0C0Cu);
    EXPECT_EQ(At(StretchToPreview(source, 2, 2, true), 0, 1), 0xFF868686u) << "12 + 244 / 2";
    EXPECT_EQ(At(StretchToPreview(source, 1, 1, false), 0, 0), 0xFF0F0F0Fu) << "the bottom row comes first";
}

TEST(StretchToPreview, LaysAlphaOnTheBoard) {
    const auto clear = StretchToPreview(Picture32(1, {0x00123456}), 12, 11, false);
    EXPECT_EQ(At(clear, 0, 10), 0xFFFFFFFFu);
    EXPECT_EQ(At(clear, 5, 10), 0xFFD7D7D7u);
    EXPECT_EQ(At(clear, 5, 5), 0xFFFFFFFFu);
    EXPECT_EQ(At(clear, 10, 10), 0xFFFFFFFFu);
    EXPECT_EQ(At(StretchToPreview(Picture32(1, {0x80FF0000}), 6, 1, false), 5, 0), 0xFFEB6B6Bu); // 215 x 127 / 255
    EXPECT_EQ(DIBBitCount(clear), 24);
}

TEST(StretchToPreview, TakesEveryDepth) {
    for (const int bits : {1, 4, 8, 15, 16, 24, 32}) EXPECT_TRUE(StretchToPreview(CreateDIB(3, 2, bits), 7, 5, true));
    EXPECT_FALSE(StretchToPreview(CreateDIB(3, 2, 24), 0, 5, false));
    EXPECT_FALSE(StretchToPreview(CreateDIB(3, 2, 24), 1 << 20, 1 << 20, false));
    EXPECT_FALSE(StretchToPreview(DibBlock(), 5, 5, false));
}

} // namespace
} // namespace pelorin
