#include "pixel/adjust.h"
#include "production/picture_steps.h"
#include "support/dib_builder.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <set>

namespace pelorin {
namespace {

using namespace test;

// What a step makes of pictures of every depth: its size and depth, by source depth below 32 and of 32.
TEST(PictureSteps, TakeEveryDepth) {
    struct Row {
        const char* what;
        DibBlock (*step)(const DibBlock&);
        Size size;
        int bits, bitsOf32;
    };
    const Row rows[] = {
        {"resize",
         [](const DibBlock& b) {
             return ResizePicture(b, {7, 3});
         },
         {7, 3},
         24,
         32},
        {"fit",
         [](const DibBlock& b) {
             return FitPicture(b, {6, 6});
         },
         {6, 3},
         24,
         32},
        {"crop",
         [](const DibBlock& b) {
             return CropPicture(b, {10, 5}, {9, 9});
         },
         {2, 1},
         24,
         32},
        {"square", SquarePicture, {12, 12}, 32, 32},
        {"quarter", [](const DibBlock& b) { return RotatePicture(b, -90, true); }, {6, 12}, 24, 32},
        {"turn", [](const DibBlock& b) { return RotatePicture(b, 450 + 90, false); }, {12, 6}, 24, 32},
        {"flip", [](const DibBlock& b) { return FlipPicture(b, true); }, {12, 6}, 24, 32},
        {"filter", [](const DibBlock& b) { return FilterPicture(b, *FindFilter(2)); }, {12, 6}, 24, 32},
        {"hue", [](const DibBlock& b) { return AdjustPicture(b, HueShift, 90); }, {12, 6}, 24, 32},
        {"colorize", [](const DibBlock& b) { return ColorizePicture(b, 90, 50); }, {12, 6}, 24, 32},
        {"invert", InvertPicture, {12, 6}, 24, 32},
        {"opacity", [](const DibBlock& b) { return ChangeOpacity(b, -50); }, {12, 6}, 32, 32},
        {"reduce", [](const DibBlock& b) { return ReducePicture(b, 16, PaletteKind::Adaptive, true); }, {12, 6}, 8, 8},
        {"mono", [](const DibBlock& b) { return MonoPicture(b, true); }, {12, 6}, 8, 8},
        {"key", [](const DibBlock& b) { return KeyPicture(b, 0xFF00FF); }, {12, 6}, 32, 32},
        {"sharp key", [](const DibBlock& b) { return KeyPicture(b, 0xFF00FF, 4); }, {12, 6}, 32, 32},
        {"flatten", [](const DibBlock& b) { return FlattenPicture(b, 0xFF00FF); }, {12, 6}, 24, 24},
        {"widen", WidenPicture, {12, 6}, 32, 32},
        {"shadow", ShadowPicture, {14, 8}, 32, 32},
    };
    for (const auto& row : rows) {
        for (const int bits : {1, 4, 8, 15, 16, 24, 32}) {
            const auto result = row.step(CreateDIB(12, 6, bits));
            EXPECT_EQ(DibView(result).GetSize(), row.size) << row.what << " at " << bits;
            EXPECT_EQ(DIBBitCount(result), bits == 32 ? row.bitsOf32 : row.bits) << row.what << " at " << bits;
        }
        EXPECT_FALSE(row.step(DibBlock())) << row.what;
    }
}

TEST(PictureSteps, FiltersLeaveTheAlphaOfOpaquePicturesAlone) {
    const auto opaque = FilterPicture(DIBFromSurface(FlatSurface(4, 4, 0xFF102030)), *FindFilter("find edges"));
    EXPECT_EQ(At(opaque, 1, 1), 0xFF000000u);
    const auto clear = DIBFromSurface(FlatSurface(4, 4, 0x80102030));
    EXPECT_EQ(At(FilterPicture(clear, *FindFilter("find edges")), 1, 1), 0u);
    EXPECT_EQ(At(FilterPicture(clear, *FindFilter("emboss")), 1, 1), 0x80808080u);
}

TEST(PictureSteps, FreeTurnsHaveTransparentCorners) {
    const auto red = DIBFromSurface(FlatSurface(20, 20, 0xFFC80000));
    for (const bool smooth : {false, true}) {
        const auto turned = RotatePicture(red, 45, smooth);
        EXPECT_EQ(At(turned, 0, 0) >> 24, 0u);
        for (int i = 0; i < DIBWidth(turned); ++i) {
            const auto pixel = At(turned, i, DIBHeight(turned) / 3);
            if (pixel >> 24 != 0) {
                EXPECT_LT(pixel & 255, 8u) << "no other colour at the edge, column " << i;
            }
        }
        EXPECT_GT(At(turned, DIBWidth(turned) / 2, DIBHeight(turned) / 2) >> 24, 250u);
    }
}

TEST(PictureSteps, ReduceKeepsToItsCount) {
    const auto noise = DIBFromSurface(RandomSurface(40, 40, 1));
    const auto distinct = [](const DibBlock& block) {
        std::set<Argb> colors;
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 40; ++x) colors.insert(At(block, x, y));
        }
        return colors.size();
    };
    EXPECT_LE(distinct(ReducePicture(noise, 16, PaletteKind::Adaptive, true)), 16u);
    EXPECT_GT(distinct(ReducePicture(noise, 16, PaletteKind::Adaptive, false)), 4u);
    EXPECT_EQ(distinct(ReducePicture(noise, 2, kStandardColors, false)), 2u);
    EXPECT_EQ(distinct(MonoPicture(noise, false)), 2u);
}

TEST(PictureSteps, KeysTakeOnlyTheirColour) {
    const auto picture = Picture32(3, {0xFF00FF00, 0x8000FF02, 0xFF0000FF});
    const auto keyed = KeyPicture(picture, 0x00FF00, 4);
    EXPECT_EQ(At(keyed, 0, 0), 0u);
    EXPECT_EQ(At(keyed, 1, 0), 0u);
    EXPECT_EQ(At(keyed, 2, 0), 0xFF0000FFu);
    EXPECT_EQ(At(KeyPicture(picture, 0x00FF00, 3), 1, 0), 0x8000FF02u);
}

} // namespace
} // namespace pelorin
