#include "icon/icon_object.h"
#include "icon/reduce_group.h"
#include "pixel/palettes.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::Picture32;

constexpr std::uint32_t kColors = 0xFFFFFF;

// Every pixel of the format as the 32-bpp picture has it, the top row first.
std::vector<Argb> Pixels(const CIconObject& object) {
    const auto picture = object.GetDIB32();
    std::vector<Argb> pixels;
    for (int y = 0; y < DIBHeight(picture); ++y) {
        for (int x = 0; x < DIBWidth(picture); ++x) pixels.push_back(At(picture, x, y));
    }
    return pixels;
}

TEST(IconObject, ANewFormatIsWhollyTransparent) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        const CIconObject object(bits, 3, 2, false, false);
        EXPECT_EQ(object.m_bAlpha, bits == 32);
        EXPECT_EQ(object.m_bmpImage.At(0, 0) & kColors, bits == 32 ? kColors : 0u) << bits;
        EXPECT_EQ(object.m_bmpMask.At(2, 1) & kColors, bits == 32 ? 0u : kColors) << bits;
        for (const Argb pixel : Pixels(object)) EXPECT_EQ(pixel >> 24, 0u) << bits;
    }
}

TEST(IconObject, PaletteOfANewFormat) {
    const auto spectrum = SpectrumPalette();
    EXPECT_EQ(CIconObject(8, 16, 16, false, false).m_Palette.colors,
              (std::vector<Rgb>(spectrum.begin(), spectrum.end())));
    EXPECT_EQ(CIconObject(8, 16, 16, false, true).m_Palette.colors,
              (std::vector<Rgb>(kMacOsPalette.begin(), kMacOsPalette.end())));
    EXPECT_TRUE(CIconObject(4, 16, 16, false, false).m_Palette.Empty());
}

TEST(IconObject, RefusesWhatNoIconHas) {
    CIconObject object(8, 4, 4, false, false);
    EXPECT_FALSE(object.SetFormat(16, 4, 4, false, false));
    EXPECT_FALSE(object.SetFormat(8, 0, 4, false, false));
    EXPECT_FALSE(object.SetFormat(32, 1 << 20, 1 << 20, true, false));
    EXPECT_EQ(object.Format(), (IconFormat{4, 4, 8}));
    EXPECT_EQ(object.m_bmpImage.Width(), 4);
}

TEST(IconObject, BytesOnDisk) {
    const struct {
        int bits;
        std::uint32_t bytes;
    } cases[] = {{1, 40 + 8 + 3 * 8 + 3 * 8},
                 {4, 40 + 64 + 3 * 20 + 3 * 8},
                 {8, 40 + 1024 + 3 * 36 + 3 * 8},
                 {24, 40 + 3 * 100 + 3 * 8},
                 {32, 40 + 33 * 3 * 4}};
    for (const auto& c : cases) EXPECT_EQ(CIconObject(c.bits, 33, 3, false, false).ImageBytes(), c.bytes) << c.bits;
}

TEST(IconObject, AlphaPlaneIsTheOppositeOfAMask) {
    const auto picture = Picture32(2, {0xFF102030, 0x80405060, 0x00FFFFFF, 0x7F000000});
    CIconObject alpha(32, 2, 2, true, false);
    ASSERT_TRUE(alpha.SetImage(picture));
    EXPECT_EQ(alpha.m_bmpMask.At(0, 0) & kColors, 0xFFFFFFu);
    EXPECT_EQ(alpha.m_bmpMask.At(1, 0) & kColors, 0x808080u);
    EXPECT_EQ(Pixels(alpha), (std::vector<Argb>{0xFF102030, 0x80405060, 0x00FFFFFF, 0x7F000000}));

    CIconObject opaque(24, 2, 2, false, false);
    ASSERT_TRUE(opaque.SetImage(picture));
    // 128 of 255 over white: (127 x 255 + c x 128) / 255.
    EXPECT_EQ(Pixels(opaque), (std::vector<Argb>{0xFF102030, 0xFF9FA7AF, 0, 0}));
    EXPECT_EQ(opaque.m_bmpMask.At(0, 1) & kColors, 0xFFFFFFu);
}

TEST(IconObject, LowDepthsTakeColourFromTheReducedCutAndMaskFromTheAlphaCut) {
    const auto picture = Picture32(2, {0xFFFF0000, 0x90FF0000, 0x7FFF0000, 0xFF0000F0});
    CIconObject sixteen(4, 2, 2, false, false);
    ASSERT_TRUE(sixteen.SetImage(picture, {.dither = false}));
    const auto pixels = Pixels(sixteen);
    EXPECT_EQ(pixels[0], 0xFFFF0000u);
    EXPECT_EQ(pixels[2], 0u) << "alpha 127";
    EXPECT_EQ(pixels[3], 0xFF0000FFu);
    EXPECT_EQ(sixteen.m_bmpImage.At(0, 1) & kColors, 0u) << "no colour under the mask";
}

TEST(IconObject, StoredAndBackAtEveryDepth) {
    const auto picture = Picture32(3, {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF, 0xFF000000, 0x00000000});
    for (const int bits : {1, 4, 8, 24, 32}) {
        CIconObject object(bits, 3, 2, false, false);
        ASSERT_TRUE(object.SetImage(picture, {.dither = false}));
        object.UpdateStored();
        EXPECT_EQ(object.m_Stored.BitCount(), bits);
        const CIconObject again(object.m_Stored, false);
        EXPECT_EQ(Pixels(again), Pixels(object)) << bits;
        EXPECT_EQ(again.m_strDescription, object.m_strDescription);
        EXPECT_EQ(Pixels(object)[1], bits > 1 ? 0xFF00FF00u : 0xFF000000u) << bits;
    }
}

TEST(IconObject, ATableOfItsOwnSurvivesAt4Bits) {
    CIconObject object(4, 2, 1, false, false);
    object.m_bmpMask.Fill(0);
    object.m_Palette.colors.assign(16, 0x123456);
    object.m_Palette.colors[9] = 0x654321;
    object.m_bmpImage.Put(0, 0, 0x654321);
    object.m_bmpImage.Put(1, 0, 0x123456);
    object.UpdateStored();
    EXPECT_EQ(Pixels(CIconObject(object.m_Stored, false)), (std::vector<Argb>{0xFF654321, 0xFF123456}));
}

TEST(IconObject, APictureThatIsNotScaledIsCutOrPadded) {
    const auto picture = Picture32(2, {0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004});
    CIconObject small(32, 1, 1, true, false), large(32, 3, 2, true, false);
    ASSERT_TRUE(small.SetImage(picture, {.resample = false}));
    EXPECT_EQ(Pixels(small), (std::vector<Argb>{0xFF000001}));
    ASSERT_TRUE(large.SetImage(picture, {.resample = false}));
    EXPECT_EQ(Pixels(large)[0], 0xFF000001u);
    EXPECT_EQ(Pixels(large)[5] >> 24, 0u);
}

TEST(IconObject, ABadPictureChangesNothing) {
    CIconObject object(32, 2, 2, true, false);
    ASSERT_TRUE(object.SetImage(Picture32(1, {0xFF112233})));
    const auto before = Pixels(object);
    EXPECT_FALSE(object.SetImage(DibBlock()));
    EXPECT_EQ(Pixels(object), before);
}

TEST(IconObject, SelectionsInThePicture) {
    CIconObject object(32, 2, 2, true, false);
    ASSERT_TRUE(object.SetImage(Picture32(2, {0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004})));
    object.m_rcSelection = {1, 0, 1, 1};
    EXPECT_EQ(DIBWidth(object.GetDIB32(false)), 1);
    EXPECT_EQ(At(object.GetDIB32(false), 0, 1), 0xFF000004u);

    object.m_selImage = Surface(1, 2);
    object.m_selMask = Surface(1, 2);
    object.m_selImage.Fill(0x0000AA);
    object.m_selMask.Put(0, 0, 0xFFFFFF);
    EXPECT_EQ(Pixels(object), (std::vector<Argb>{0xFF000001, 0xFF0000AA, 0xFF000003, 0xFF000004}))
        << "opaque parts of the floating selection lie on top";
    EXPECT_EQ(object.m_bmpImage.At(1, 0) & kColors, 2u) << "the planes stay";
}

TEST(IconObject, ConvertPaletteKeepsAStep) {
    CIconObject object(8, 2, 1, false, false);
    ASSERT_TRUE(object.SetImage(Picture32(2, {0xFFFF0000, 0x00000000}), {.dither = false}));
    EXPECT_FALSE(object.ConvertPalette(object.m_Palette));
    CPalette greys;
    for (Rgb i = 0; i < 256; ++i) greys.colors.push_back(i * 0x010101);
    ASSERT_TRUE(object.ConvertPalette(greys));
    const auto pixels = Pixels(object);
    EXPECT_EQ(pixels[0] & 0xFF, pixels[0] >> 8 & 0xFF);
    EXPECT_EQ(pixels[1], 0u) << "the mask stays";
    ASSERT_TRUE(object.m_undo.CanUndo());
    object.Restore(*object.m_undo.Undo(object.State()));
    EXPECT_EQ(Pixels(object)[0], 0xFFFF0000u);
    CIconObject alpha(32, 1, 1, true, false);
    EXPECT_FALSE(alpha.ConvertPalette(greys));
}

TEST(ReduceGroup, KeepsThreeAndShrinksLargeOnes) {
    CIconGroup group;
    for (const auto& [side, bits] : std::vector<std::pair<int, int>>{{16, 32}, {16, 4}, {32, 32}, {24, 8}, {256, 32}}) {
        CIconObject object(bits, side, side, false, false);
        object.UpdateStored();
        group.Add(object.m_Stored);
    }
    ReduceGroup(group);
    ASSERT_EQ(group.GetCount(), 2) << "16 and 32 pixels; 32 pixels are also best for 48";
    EXPECT_EQ(group.GetIcon(0)->m_nWidth, 32);

    CIconGroup large;
    CIconObject object(8, 64, 40, false, false);
    object.UpdateStored();
    large.Add(object.m_Stored);
    ReduceGroup(large);
    EXPECT_EQ(large.GetIcon(0)->m_nWidth, 48);
    EXPECT_EQ(large.GetIcon(0)->BitCount(), 32);
}

} // namespace
} // namespace pelorin
