#include "pixel/map_palette.h"
#include "pixel/quantize.h"
#include "pixel/slow_mapping.h"
#include "pixel/surface.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

#include <random>

namespace pelorin {
namespace {

using test::Picture32;

DibBlock Picture24(int width, std::initializer_list<Argb> pixels) {
    return ConvertDIBTo24(Picture32(width, pixels));
}

DibBlock Noise24(int width, int height, unsigned seed, unsigned mask = 0xFF) {
    auto block = CreateDIB(width, height, 24);
    std::mt19937 random(seed);
    for (auto& byte : block.Span().subspan(kDibHeaderSize)) byte = static_cast<std::uint8_t>(random() & mask);
    return block;
}

std::vector<Rgb> RandomPalette(int count, unsigned seed, unsigned mask = 0xFFFFFF) {
    std::mt19937 random(seed);
    std::vector<Rgb> palette;
    for (int i = 0; i < count; ++i) palette.push_back(static_cast<Rgb>(random()) & mask);
    palette.resize(256);
    return palette;
}

std::vector<std::vector<int>> Indices(const DibBlock& block8) {
    const DibView view(block8);
    std::vector<std::vector<int>> out;
    for (int y = 0; y < view.Height(); ++y) out.emplace_back(view.Row(y), view.Row(y) + view.Width());
    return out;
}

test::Plane PlaneOf(const DibBlock& block24) {
    const DibView view(block24);
    test::Plane plane;
    for (int y = 0; y < view.Height(); ++y) {
        auto& row = plane.emplace_back();
        for (int x = 0; x < view.Width(); ++x) {
            const auto* p = view.Row(y) + 3 * x;
            row.push_back({p[2], p[1], p[0]});
        }
    }
    return plane;
}

TEST(MapToPalette, AgreesWithTheSlowMapping) {
    struct Row {
        int width, height, count;
        unsigned pictureMask, paletteMask;
    };
    const Row rows[] = {
        {1, 1, 256, 0xFF, 0xFFFFFF},  {3, 2, 2, 0xFF, 0xFFFFFF},
        {33, 7, 256, 0xFF, 0xFFFFFF}, {33, 7, 1, 0xFF, 0xFFFFFF},
        {97, 61, 16, 0xFF, 0xFFFFFF}, {97, 61, 256, 0xFF, 0xC0C0C0}, // many equal entries
        {97, 61, 40, 0xF8, 0x30F0F0}, {300, 200, 256, 0xFF, 0xF0FFFF},
        {2, 300, 9, 0xFF, 0xFFFFFF},
    };
    unsigned seed = 1;
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.width << "x" << row.height << " on " << row.count);
        const auto picture = Noise24(row.width, row.height, seed++, row.pictureMask);
        const auto palette = RandomPalette(row.count, seed++, row.paletteMask);
        const auto plane = PlaneOf(picture);

        test::SlowNearest plain(palette, row.count);
        auto expected = Indices(CreateDIB(row.width, row.height, 8));
        for (std::size_t y = 0; y < plane.size(); ++y) {
            for (std::size_t x = 0; x < plane[y].size(); ++x) {
                expected[y][x] = plain(plane[y][x][0], plane[y][x][1], plane[y][x][2]).index;
            }
        }
        EXPECT_EQ(Indices(MapToPalette(picture, palette, row.count, false)), expected);

        test::SlowNearest dithered(palette, row.count);
        const auto result = MapToPalette(picture, palette, row.count, true);
        EXPECT_EQ(Indices(result), test::SlowDiffusion(plane, std::ref(dithered)));
        EXPECT_EQ(CreateDIBPalette(result).colors, palette);
    }
}

TEST(MapToPalette, TheFirstColourOfACellDecides) {
    const std::vector<Rgb> palette = {0x101010, 0x171717};
    // The bottom row is stored first, so its colour answers for the row above as well.
    const auto block = Picture24(1, {0xFF171717, 0xFF101010});
    EXPECT_EQ(Indices(MapToPalette(block, palette, 2, false)), (std::vector<std::vector<int>>{{0}, {0}}));
    const auto other = Picture24(1, {0xFF101010, 0xFF171717});
    EXPECT_EQ(Indices(MapToPalette(other, palette, 2, false)), (std::vector<std::vector<int>>{{1}, {1}}));
}

TEST(MapToPalette, DiffusionByHand) {
    // On black and white: 100 is black with error 100; 100 + 44 = 144 is white with error -111; the row above starts
    // from 100 + 31 - 21 = 110 and 100 + 6 - 35 = 71.
    const std::vector<Rgb> palette = {0x000000, 0xFFFFFF};
    const auto block = Picture24(2, {0xFF646464, 0xFF646464, 0xFF646464, 0xFF646464});
    EXPECT_EQ(Indices(MapToPalette(block, palette, 2, true)), (std::vector<std::vector<int>>{{0, 1}, {0, 0}}));
}

TEST(MapToPalette, RefusesOtherInput) {
    const std::vector<Rgb> palette = {0, 0xFFFFFF};
    EXPECT_FALSE(MapToPalette(CreateDIB(2, 2, 32), palette, 2, true));
    EXPECT_FALSE(MapToPalette({}, palette, 2, true));
    EXPECT_FALSE(MapToPalette(CreateDIB(2, 2, 24), palette, 0, true));
    const auto beyond = MapToPalette(CreateDIB(2, 2, 24), palette, 1000, false);
    EXPECT_EQ(DibView(beyond).Color(255), 0u);
}

TEST(ReduceWithFallback, FewDarkColoursTakeTheSpectrum) {
    const auto black = ReduceWithFallback(CreateDIB(3, 2, 24), true, false);
    const DibView view(black);
    EXPECT_EQ(view.Color(1), 0x800000u);
    EXPECT_EQ(view.Color(16), 0x080808u);
    EXPECT_EQ(view.Color(31), 0xF7F7F7u);
    EXPECT_EQ(view.Color(32), 0x4C0000u) << "lightness 0.15: 0.3 x 255 = 76.5";
    EXPECT_EQ(view.Color(255), 0xFFB2C2u);
    // One colour leaves 255 blacks as well; two colours beside black have a palette of their own.
    const auto grey = ReduceWithFallback(Picture24(1, {0xFF808080}), false, false);
    EXPECT_EQ(DibView(grey).Color(1), 0x800000u);
    const auto greys = ReduceWithFallback(Picture24(1, {0xFF808080, 0xFFC0C0C0, 0xFF000000}), false, false);
    EXPECT_EQ(DibView(greys).Color(1), 0x808080u);
    const auto reserved = ReduceWithFallback(CreateDIB(3, 2, 24), true, true);
    EXPECT_EQ(DibView(reserved).Color(255), DibView(black).Color(255)) << "255 blacks and the reserved white";
}

TEST(ReduceColors, FixedTablesAndTheSlot) {
    struct Row {
        PaletteKind kind;
        bool slot;
        Rgb at246, at254, at255;
    };
    const Row rows[] = {{PaletteKind::WebSafe, false, 0, 0, 0},
                        {PaletteKind::WebSafe, true, 0, 0, 0x0000FF},
                        {PaletteKind::Windows, false, 0xFFFBF0, 0x00FFFF, 0xFFFFFF},
                        {PaletteKind::Windows, true, 0xFFFFFF, 0x00FFFF, 0x0000FF},
                        {PaletteKind::MacOs, false, 0xDDDDDD, 0x111111, 0},
                        {PaletteKind::MacOs, true, 0xDDDDDD, 0xFFFFFF, 0x0000FF}};
    for (const auto& row : rows) {
        const auto result = ReduceColors(Picture24(1, {0xFF0000FF}), 5, false, row.kind, row.slot);
        const DibView view(result);
        ASSERT_TRUE(view);
        EXPECT_EQ(view.Color(246), row.at246);
        EXPECT_EQ(view.Color(254), row.at254);
        EXPECT_EQ(view.Color(255), row.at255);
        EXPECT_NE(*view.Row(0), 255) << "the slot is not searched";
        EXPECT_EQ(view.Color(*view.Row(0)), 0x0000FFu);
    }
}

TEST(ReduceColors, AdaptiveLeavesTheSlotAndOneMoreOut) {
    const auto block = Noise24(33, 7, 3);
    for (const bool slot : {false, true}) {
        int asked = slot ? 15 : 16;
        const auto table = QuantizeImage(block, asked, false);
        const auto expected = MapToPalette(block, *table, slot ? 14 : 16, true);
        const auto result = ReduceColors(block, 16, true, PaletteKind::Adaptive, slot);
        EXPECT_TRUE(std::ranges::equal(result.Span(), expected.Span()));
    }
    const auto spectrum = ReduceColors(CreateDIB(2, 2, 24), 16, false, PaletteKind::Adaptive, false);
    EXPECT_EQ(DibView(spectrum).Color(1), 0x800000u) << "sixteen blacks are no palette";
    EXPECT_FALSE(ReduceColors(block, 2, false, PaletteKind::Adaptive, true)) << "nothing is left to search";
    EXPECT_FALSE(ReduceColors(block, 0, false, PaletteKind::Adaptive, false));
    EXPECT_FALSE(ReduceColors(CreateDIB(2, 2, 8), 16, false, PaletteKind::WebSafe, false));
}

TEST(MapBitmapToPaletteL1, SumsOfChannelsDecide) {
    Surface bitmap(3, 1);
    bitmap.Put(0, 0, 0xFF000000); // as far from entry 0 as from entry 2: the first stands
    bitmap.Put(1, 0, 0x00141400); // 40 in two channels: farther by the sum, nearer by squares
    bitmap.Put(2, 0, 0x55FFFFFF);
    const std::vector<Rgb> palette = {0x00001E, 0x000000, 0x00001E, 0x232300};
    auto block = CreateDIB(3, 1, 8);
    ASSERT_TRUE(MapBitmapToPaletteL1(block, bitmap, palette));
    EXPECT_EQ(Indices(block), (std::vector<std::vector<int>>{{1, 3, 3}}));
    EXPECT_EQ(DibView(block).Color(3), 0x232300u);
    auto wrong = CreateDIB(3, 2, 8);
    EXPECT_FALSE(MapBitmapToPaletteL1(wrong, bitmap, palette));
    auto deep = CreateDIB(3, 1, 24);
    EXPECT_FALSE(MapBitmapToPaletteL1(deep, bitmap, palette));
}

TEST(MapAlphaImageToTable, TheSlotMovesToTheEnd) {
    const Bytes table = {255, 0, 0, 0, 255, 0, 0, 0, 255, 200, 200, 200}; // red, green, blue, grey
    const auto block = Picture32(4, {0x00FF0000, 0xFF00FF00, 0x00C8C8C8, 0xFF7FFFFF});
    int transparent = 1;
    const auto result = MapAlphaImageToTable(block, 2, table, transparent);
    const DibView view(result);
    EXPECT_EQ(transparent, 3);
    EXPECT_EQ(view.Color(0), 0xFF0000u);
    EXPECT_EQ(view.Color(1), 0x0000FFu);
    EXPECT_EQ(view.Color(2), 0xC8C8C8u);
    EXPECT_EQ(view.Color(3), 0x00FF00u);
    EXPECT_EQ(view.Color(4), 0u);
    // Red decides and alpha does not: the opaque green and the opaque cyan become transparent.
    EXPECT_EQ(Indices(result), (std::vector<std::vector<int>>{{0, 3, 2, 3}}));

    int none = -1;
    const auto plain = MapAlphaImageToTable(block, 2, table, none);
    EXPECT_EQ(none, -1);
    EXPECT_EQ(DibView(plain).Color(1), 0x00FF00u);
    EXPECT_EQ(Indices(plain), (std::vector<std::vector<int>>{{0, 3, 3, 3}}));

    EXPECT_FALSE(MapAlphaImageToTable(block, 3, table, none)) << "a table that is too short";
    EXPECT_FALSE(MapAlphaImageToTable(block, 0, table, none));
    EXPECT_FALSE(MapAlphaImageToTable(block, 9, Bytes(2000), none));
    EXPECT_FALSE(MapAlphaImageToTable(CreateDIB(1, 1, 24), 2, table, none));
}

} // namespace
} // namespace pelorin
