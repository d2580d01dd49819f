#include "pixel/dither.h"
#include "pixel/format_pipeline.h"
#include "pixel/map_palette.h"
#include "pixel/resample.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

#include <set>

namespace pelorin {
namespace {

using test::Picture32;

constexpr std::array<Argb, 8> kAlphas = {0, 5, 7, 8, 9, 127, 128, 255};

// One row: a colour with each of the alphas.
DibBlock AlphaRow() {
    auto block = CreateDIB(8, 1, 32);
    for (int x = 0; x < 8; ++x)
        StoreU32LE(DibRows(block).Row(0) + x * 4, kAlphas[static_cast<std::size_t>(x)] << 24 | 0x3366CC);
    return block;
}

FormatRequest Request(int width, int height, int bits) {
    FormatRequest request;
    request.width = width;
    request.height = height;
    request.bits = bits;
    return request;
}

TEST(FormatPipeline, AlphaIntoEachDepth) {
    for (const int bits : {1, 4, 8, 24, 32}) {
        SCOPED_TRACE(bits);
        const auto planes = RunFormatPipeline(AlphaRow(), Request(8, 1, bits));
        ASSERT_TRUE(planes);
        for (int x = 0; x < 8; ++x) {
            const Argb alpha = kAlphas[static_cast<std::size_t>(x)];
            const Argb mask = bits == 32 ? alpha * 0x010101 : alpha < 128 ? 0xFFFFFFu : 0u;
            EXPECT_EQ(planes.mask.At(x, 0), mask);
            if (bits != 32 && alpha < 128) {
                EXPECT_EQ(planes.color.At(x, 0), 0u);
            }
        }
        EXPECT_EQ(planes.palette.colors.size(), bits == 8 ? 256u : 0u);
    }
    const auto deep = RunFormatPipeline(AlphaRow(), Request(8, 1, 32));
    EXPECT_EQ(deep.color.At(0, 0), 0x3366CCu) << "the colour of transparent pixels stays at 32 bits";
    const auto mono = RunFormatPipeline(AlphaRow(), Request(8, 1, 1));
    EXPECT_EQ(mono.color.At(6, 0), 0xFFFFFFu) << "lightened towards white: (98 + 4CC) / 3 is above the limit";
    EXPECT_EQ(mono.color.At(7, 0), 0u);
    const auto sixteen = RunFormatPipeline(AlphaRow(), Request(8, 1, 4));
    EXPECT_EQ(sixteen.color.At(7, 0), 0x008080u);
}

TEST(FormatPipeline, KeyInPicturesWithoutAlpha) {
    const auto source = ConvertDIBTo24(Picture32(3, {0xFFFB00FF, 0xFFFB00FE, 0xFF00FF00}));
    for (const int bits : {24, 32}) {
        auto request = Request(3, 1, bits);
        request.keyColor = MakeColorRef(0xFB, 0x00, 0xFF);
        const auto unkeyed = RunFormatPipeline(source, request);
        const Argb opaque = bits == 32 ? 0xFFFFFF : 0;
        EXPECT_EQ(unkeyed.mask.At(0, 0), opaque) << "the key is off";
        request.useKey = true;
        const auto keyed = RunFormatPipeline(source, request);
        EXPECT_EQ(keyed.mask.At(0, 0), opaque ^ 0xFFFFFF);
        EXPECT_EQ(keyed.mask.At(1, 0), 0u) << "at 32 bits a near hue goes too; at 24 bits only the key does";
    }
}

TEST(FormatPipeline, WhereTheColoursComeFrom) {
    const auto source = ConvertDIBTo24(Picture32(2, {0xFF112233, 0xFF445566, 0xFF778899, 0xFFAABBCC}));
    auto request = Request(2, 2, 8);
    EXPECT_EQ(RunFormatPipeline(source, request).palette.colors[255], 0xFFFFFFu) << "computed, white last";
    const std::vector<Rgb> palette = {0x102030, 0x778898};
    request.palette = palette;
    const auto given = RunFormatPipeline(source, request);
    EXPECT_EQ(given.color.At(0, 1), 0x778898u);
    EXPECT_EQ(given.palette.colors[1], 0x778898u);
    request.paletteMode = PaletteMode::Computed;
    EXPECT_EQ(RunFormatPipeline(source, request).color.At(0, 1), 0x778899u);
    request.paletteMode = PaletteMode::Keep;
    const auto kept = RunFormatPipeline(source, request);
    EXPECT_EQ(kept.color.At(0, 1), 0x778899u);
    EXPECT_TRUE(kept.palette.Empty());
    request.useStandardPalette = true;
    const auto standard = RunFormatPipeline(source, request);
    EXPECT_EQ(standard.palette.colors, std::vector<Rgb>(kMacOsPalette.begin(), kMacOsPalette.end()));
    EXPECT_EQ(standard.color.At(0, 0), 0x222222u) << "003333 is as near, but comes later in the search";

    // A picture of 8 bits lends its table, unless one is given.
    const auto indexed = MapToPalette(source, palette, 2, false);
    EXPECT_EQ(RunFormatPipeline(indexed, Request(2, 2, 8)).palette.colors[0], 0x102030u);
    auto other = Request(2, 2, 8);
    const std::vector<Rgb> green = {0x00FF00};
    other.palette = green;
    EXPECT_EQ(RunFormatPipeline(indexed, other).palette.colors[0], 0x00FF00u);
}

TEST(FormatPipeline, SizesAndDepthsOfTheSource) {
    const auto source =
        ConvertDIBTo24(Picture32(3, {0xFF010101, 0xFF020202, 0xFF030303, 0xFF040404, 0xFF050505, 0xFF060606}));
    auto request = Request(2, 5, 24);
    request.resample = false;
    const auto cut = RunFormatPipeline(source, request);
    EXPECT_EQ(cut.color.GetSize(), (Size{2, 2}));
    EXPECT_EQ(cut.color.At(0, 0), 0x010101u);
    EXPECT_EQ(cut.color.At(1, 1), 0x050505u);
    const auto scaled = RunFormatPipeline(source, Request(7, 5, 24));
    EXPECT_EQ(scaled.color, SplitByColor(ResampleDIB(source, 7, 5), kNoColor, 0).color);
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        for (const int target : {1, 4, 8, 24, 32}) {
            EXPECT_TRUE(RunFormatPipeline(CreateDIB(33, 7, bits), Request(16, 16, target))) << bits << " to " << target;
        }
    }
    for (const auto& bad : {Request(0, 2, 24), Request(2, -1, 24), Request(2, 2, 16), Request(1 << 20, 1 << 20, 32)}) {
        EXPECT_FALSE(RunFormatPipeline(source, bad));
    }
    EXPECT_FALSE(RunFormatPipeline({}, Request(2, 2, 24)));
}

TEST(FormatPipeline, DitheringChangesTheReducedDepths) {
    auto source = CreateDIB(33, 7, 24);
    for (auto& byte : source.Span().subspan(kDibHeaderSize)) byte = 0x64;
    for (const int bits : {1, 4}) {
        auto request = Request(33, 7, bits);
        request.resample = false;
        const auto colors = [&] {
            std::set<Argb> seen;
            const auto planes = RunFormatPipeline(source, request);
            for (int x = 0; x < 33; ++x) seen.insert(planes.color.At(x, 3));
            return seen.size();
        };
        EXPECT_EQ(colors(), 1u);
        request.dither = true;
        EXPECT_GT(colors(), 1u);
    }
}

} // namespace
} // namespace pelorin
