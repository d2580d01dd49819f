#include "pixel/depth.h"
#include "pixel/surface.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

#include <cmath>

namespace pelorin {
namespace {

using test::At;
using test::Picture32;

// A 33 x 7 picture of each depth: index, or channel pattern, by place.
DibBlock Pattern(int bits) {
    auto block = CreateDIB(33, 7, bits);
    const DibRows rows(block);
    for (int y = 0; y < 7; ++y) {
        for (std::size_t i = 0; i < rows.Stride(); ++i) {
            rows.Row(y)[i] = static_cast<std::uint8_t>(i * 37 + static_cast<std::size_t>(y) * 101);
        }
    }
    if (bits == 15) StoreU16LE(block.Data() + 14, 15);
    return block;
}

TEST(Depth, PixelLayouts) {
    auto mono = CreateDIB(33, 1, 1);
    SetDIBTable(mono, std::array<Rgb, 2>{0x112233, 0x445566});
    DibRows(mono).Row(0)[0] = 0x80;
    DibRows(mono).Row(0)[4] = 0x80;
    const auto mono24 = ConvertDIBTo24(mono);
    EXPECT_EQ(At(mono24, 0, 0), 0xFF445566u);
    EXPECT_EQ(At(mono24, 1, 0), 0xFF112233u);
    EXPECT_EQ(At(mono24, 32, 0), 0xFF445566u);

    auto nibbles = CreateDIB(3, 1, 4);
    DibRows(nibbles).Row(0)[0] = 0x9F;
    DibRows(nibbles).Row(0)[1] = 0x70;
    EXPECT_EQ(At(ConvertDIBTo24(nibbles), 0, 0), 0xFFFF0000u);
    EXPECT_EQ(At(ConvertDIBTo24(nibbles), 1, 0), 0xFFFFFFFFu);
    EXPECT_EQ(At(ConvertDIBTo24(nibbles), 2, 0), 0xFFC0C0C0u);

    auto high = CreateDIB(1, 1, 16);
    StoreU16LE(DibRows(high).Row(0), 0xABCD); // 10101 011110 01101
    EXPECT_EQ(At(ConvertDIBTo24(high), 0, 0), 0xFFA87868u);
    StoreU16LE(high.Data() + 14, 15); // 01010 11110 01101
    EXPECT_EQ(At(ConvertDIBTo24(high), 0, 0), 0xFF50F068u);
}

TEST(Depth, FiveFiveFiveSurvivesTheWayBack) {
    const auto block = ConvertTo15(Picture32(3, {0x00FFFFFF, 0xFF0F1710, 0xFF080808}));
    EXPECT_EQ(DIBBitCount(block), 15);
    EXPECT_EQ(block.Size(), kDibHeaderSize + 8) << "rows of 16 bits, padded to 4 bytes";
    EXPECT_EQ(LoadU16LE(DibView(block).Row(0)), 0x7FFF);
    EXPECT_EQ(LoadU16LE(DibView(block).Row(0) + 2), 1 << 10 | 2 << 5 | 2);
    EXPECT_EQ(At(ConvertDIBTo24(block), 0, 0), 0xFFF8F8F8u);
    EXPECT_EQ(At(ConvertDIBTo24(block), 2, 0), 0xFF080808u);
}

TEST(Depth, WhatEachConversionAccepts) {
    for (const int bits : {1, 4, 8, 15, 16, 24, 32}) {
        SCOPED_TRACE(bits);
        const bool high = bits == 15 || bits == 16;
        const auto source = Pattern(bits);
        EXPECT_EQ(DIBBitCount(ConvertDIBTo24(source)), 24);
        EXPECT_EQ(DIBBitCount(ConvertTo15(source)), 15);
        EXPECT_EQ(DIBBitCount(ComposeTo24(source, 0x123456)), high ? 0 : 24);
        EXPECT_EQ(DIBBitCount(ConvertTo32(source, false, 0)), high ? 0 : 32);
        EXPECT_EQ(DIBBitCount(ConvertTo32(source, true, 0)), high ? 0 : 32);
        EXPECT_EQ(DIBBitCount(AlphaToGrey(source)), bits == 32 ? 32 : 0);
        EXPECT_EQ(DIBBitCount(KeyTo32(source, 3)), bits == 8 ? 32 : 0);
        const auto opaque = ConvertToOpaque32(source);
        const auto plain = ConvertDIBTo24(source);
        for (int y = 0; y < 7; ++y) {
            for (int x = 0; x < 33; ++x) {
                EXPECT_EQ(At(opaque, x, y), At(source, x, y) | 0xFF000000u);
                EXPECT_EQ(At(plain, x, y), At(opaque, x, y));
            }
        }
    }
    EXPECT_FALSE(ConvertDIBTo24({}));
    EXPECT_FALSE(LuminanceToGrey(Surface()));
}

TEST(Depth, ComposingTruncates) {
    // (200 * a + 100 * (255 - a)) / 255 in blue, against black in red.
    struct Row {
        Argb alpha;
        int red, blue;
    };
    const Row rows[] = {{0, 0, 100}, {5, 3, 101}, {127, 99, 149}, {128, 100, 150}, {254, 199, 199}, {255, 200, 200}};
    for (const auto& row : rows) {
        const auto source = Picture32(1, {row.alpha << 24 | 0xC800C8});
        EXPECT_EQ(At(ComposeTo24(source, MakeColorRef(0, 0, 100)), 0, 0), 0xFF000000u | MakeRgb(row.red, 0, row.blue));
        EXPECT_EQ(At(ComposeTo24(source, kNoColor), 0, 0), 0xFFC800C8u);
    }
}

TEST(Depth, KeyedIndexAndGreys) {
    auto block = CreateDIB(3, 1, 8);
    for (int x = 0; x < 3; ++x) DibRows(block).Row(0)[x] = static_cast<std::uint8_t>(8 + x);
    const auto keyed = KeyTo32(block, 9);
    EXPECT_EQ(At(keyed, 0, 0), 0xFF808080u);
    EXPECT_EQ(At(keyed, 1, 0), 0x00FF0000u);
    EXPECT_EQ(At(keyed, 2, 0), 0xFF00FF00u);
    EXPECT_EQ(At(AlphaToGrey(Picture32(1, {0x7F123456})), 0, 0), 0xFF7F7F7Fu);
    Surface bitmap(1, 1);
    bitmap.Put(0, 0, 0x07FFFF01); // (255 + 255 + 1) / 3 = 170.33
    EXPECT_EQ(At(LuminanceToGrey(bitmap), 0, 0), 0xFFAAAAAAu);
}

// What the key makes of a pixel, with figures worked out on paper.
TEST(ColorKey, EveryCellOfTheTable) {
    struct Row {
        const char* what;
        Argb pixel;
        Rgb key;
        Argb expected;
    };
    const Row rows[] = {
        {"white on white", 0xFFFFFFFF, 0xFFFFFF, 0x00FFFFFF},
        {"black on black", 0xFF000000, 0x000000, 0x00000000},
        {"grey, half way: 1 - 0.5^3 = 0.875 of 255 = 223", 0xFF000000, 0x808080, 0xDF000000},
        {"grey pixel, coloured key", 0xFF808080, 0xFF0000, 0xFF808080},
        {"coloured pixel of saturation 1/3, grey key", 0xFF804040, 0x808080, 0xFF804040},
        {"pale pixel: S = 2/98, d = 0.5 - 98/510, 1 - (1 - d)^2", 0xFF323032, 0x7F807F, 0},
        {"coloured pixel far in hue: q = 1 / (40 / 3), t = q", 0xFF00FF00, 0xFF0000, 0},
        {"the key's own colour is bleached and goes", 0xFFFF0000, 0xFF0000, 0x00D4D4D4},
        {"half-transparent key colour", 0x80FF0000, 0xFF0000, 0x00D4D4D4},
        {"across the hue circle's seam", 0xFFFF0001, 0xFF0100, 0x00D4D4D4},
    };
    for (auto row : rows) {
        SCOPED_TRACE(row.what);
        if (row.pixel == 0xFF323032) {
            row.key = 0x808080;
            const double d = 128 / 255.0 - 98 / 510.0;
            row.expected = static_cast<Argb>(255 * (1 - (1 - d) * (1 - d))) << 24 | 0x323032;
        }
        if (row.pixel == 0xFF00FF00) {
            row.expected = static_cast<Argb>(255 * (1 - std::pow(3 / 40.0, 1.2))) << 24 | 0x00FF00;
        }
        if (row.pixel == 0xFF000000 && row.key == 0x808080) {
            row.expected = static_cast<Argb>(255 * (1 - std::pow(1 - 128 / 255.0, 3))) << 24;
        }
        const auto result = ConvertTo32(Picture32(1, {row.pixel}), true, ColorRefFromRgb(row.key));
        EXPECT_EQ(At(result, 0, 0), row.expected);
    }
}

TEST(ColorKey, BleachesAndFadesByHueAndLightness) {
    // Hue 0.03 from the key: q = 1 / 1.2; the same lightness, so t = q.
    const Argb pixel = 0xFFFF2E00; // hue 46/255/6
    const double dh = 46.0 / 255 / 6;
    const double q = 1 / (40 * dh);
    const double lightness = 0.5 + 0.5 / 1.5;
    const auto grey = static_cast<Argb>(lightness * 255);
    const auto alpha = static_cast<Argb>(255 * (1 - std::pow(q, 0.9)));
    const auto result = ConvertTo32(Picture32(1, {pixel}), true, MakeColorRef(255, 0, 0));
    EXPECT_EQ(At(result, 0, 0), alpha << 24 | grey * 0x010101);
}

} // namespace
} // namespace pelorin
