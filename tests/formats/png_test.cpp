#include "formats/png.h"
#include "support/dib_builder.h"
#include "support/png_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

namespace pelorin {
namespace {

using test::At;
using test::BuildPng;
using test::PngParts;
using ::testing::ElementsAre;

// Every colour type and depth, two pixels each: which depth the block gets and what its pixels are.
TEST(PngRead, DepthsAndColours) {
    const Bytes palette = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120};
    struct Case {
        const char* what;
        int depth, type;
        Bytes row, palette, transparency;
        int bits;
        Argb left, right;
    };
    const Case cases[] = {
        {"gray 1", 1, 0, {0x40}, {}, {}, 1, 0xFF000000, 0xFFFFFFFF},
        {"gray 2 is expanded", 2, 0, {0x60}, {}, {}, 8, 0xFF555555, 0xFFAAAAAA},
        {"gray 4", 4, 0, {0x1F}, {}, {}, 4, 0xFF111111, 0xFFFFFFFF},
        {"gray 8", 8, 0, {7, 200}, {}, {}, 8, 0xFF070707, 0xFFC8C8C8},
        {"gray 16 is cut", 16, 0, {7, 255, 200, 255}, {}, {}, 8, 0xFF070707, 0xFFC8C8C8},
        {"gray with a transparent value", 8, 0, {7, 200}, {}, {0, 200}, 32, 0xFF070707, 0x00C8C8C8},
        {"gray and alpha", 8, 4, {7, 128, 200, 0}, {}, {}, 32, 0x80070707, 0x00C8C8C8},
        {"palette 1 is black and white", 1, 3, {0x40}, palette, {}, 1, 0xFF000000, 0xFFFFFFFF},
        {"palette 2 is unpacked", 2, 3, {0xB0}, palette, {}, 8, 0xFF46505A, 0xFF646E78},
        {"palette 4", 4, 3, {0x13}, palette, {}, 4, 0xFF28323C, 0xFF646E78},
        {"palette 8, black behind its end", 8, 3, {2, 9}, palette, {}, 8, 0xFF46505A, 0xFF000000},
        {"palette with transparency", 8, 3, {0, 1}, palette, {128}, 32, 0x800A141E, 0xFF28323C},
        {"colours", 8, 2, {1, 2, 3, 4, 5, 6}, {}, {}, 24, 0xFF010203, 0xFF040506},
        {"colours with a transparent one",
         8,
         2,
         {1, 2, 3, 4, 5, 6},
         {},
         {0, 1, 0, 2, 0, 3},
         32,
         0x00010203,
         0xFF040506},
        {"colours 16 and alpha",
         16,
         6,
         {1, 9, 2, 9, 3, 9, 4, 9, 5, 9, 6, 9, 7, 9, 0, 9},
         {},
         {},
         32,
         0x04010203,
         0x00050607},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        PngParts parts{.width = 2,
                       .depth = c.depth,
                       .colorType = c.type,
                       .rows = c.row,
                       .palette = c.palette,
                       .transparency = c.transparency};
        parts.rows.insert(parts.rows.begin(), 0);
        const auto block = ReadPng(BuildPng(parts));
        ASSERT_EQ(DIBBitCount(block), c.bits);
        EXPECT_EQ(At(block, 0, 0), c.left);
        EXPECT_EQ(At(block, 1, 0), c.right);
    }
}

TEST(PngRead, GammaOfTheFileIsBroughtToTheScreen) {
    PngParts parts{.depth = 8, .colorType = 0, .rows = {0, 128}};
    struct Case {
        std::uint32_t gamma;
        unsigned low, high;
    };
    // 0 to 255: 128 in a linear file is (128 / 255) ^ (1 / 2.2) = 186; near 1 / 2.2 nothing changes.
    for (const Case& c : {Case{0, 128, 128}, {45455, 128, 128}, {100000, 185, 187}, {22727, 60, 66}}) {
        parts.gamma = c.gamma;
        const auto value = At(ReadPng(BuildPng(parts)), 0, 0) & 0xFF;
        EXPECT_GE(value, c.low) << c.gamma;
        EXPECT_LE(value, c.high) << c.gamma;
    }
}

TEST(PngRead, InterlacedPassesAddUp) {
    constexpr struct {
        int x, y, dx, dy;
    } passes[] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4}, {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
    PngParts parts{.width = 9, .height = 9, .depth = 8, .colorType = 0, .interlaced = true};
    for (const auto& pass : passes) {
        for (int y = pass.y; y < 9; y += pass.dy) {
            if (pass.x < 9) parts.rows.push_back(0);
            for (int x = pass.x; x < 9; x += pass.dx) parts.rows.push_back(static_cast<std::uint8_t>(y * 9 + x));
        }
    }
    const auto block = ReadPng(BuildPng(parts));
    ASSERT_TRUE(block);
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 9; ++x) ASSERT_EQ(At(block, x, y) & 0xFF, static_cast<unsigned>(y * 9 + x));
    }
}

TEST(PngRead, DamageGivesNothing) {
    const auto whole =
        BuildPng({.width = 2, .height = 2, .rows = {0, 1, 2, 3, 4, 5, 6, 7, 8, 0, 1, 2, 3, 4, 5, 6, 7, 8}});
    const auto idatEnd = whole.size() - 12;
    for (std::size_t size = 0; size < idatEnd - 8; ++size) {
        EXPECT_FALSE(ReadPng(ByteSpan(whole).first(size))) << size;
    }
    // Sides at their limits in a file of a few bytes: refused before a picture is made.
    for (const auto side : {0u, 0x7FFFFFFFu, 0xFFFFFFFFu, 70000u}) {
        EXPECT_FALSE(ReadPng(BuildPng({.width = side, .height = side, .rows = {0}})));
        EXPECT_FALSE(ReadPng(BuildPng({.width = 1, .height = side, .rows = {0}})));
    }
}

struct Chunk {
    std::string name;
    Bytes data;
};
std::vector<Chunk> ChunksOf(const Bytes& file) {
    std::vector<Chunk> chunks;
    ByteReader r(file);
    r.Skip(8);
    while (r.Left() >= 12) {
        const auto size = r.U32BE();
        const auto name = std::string(AsText(r.Take(4)));
        const auto data = r.Take(size);
        r.Skip(4);
        chunks.push_back({name, Bytes(data.begin(), data.end())});
    }
    return chunks;
}

TEST(PngWrite, HeaderPaletteAndRoundTripByDepth) {
    struct Case {
        int bits, ihdrDepth, ihdrType;
        std::vector<std::string> chunks;
    };
    const Case cases[] = {
        {1, 1, 3, {"IHDR", "PLTE", "IDAT", "IEND"}}, {4, 4, 3, {"IHDR", "PLTE", "IDAT", "IEND"}},
        {8, 8, 3, {"IHDR", "PLTE", "IDAT", "IEND"}}, {24, 8, 2, {"IHDR", "sBIT", "IDAT", "IEND"}},
        {32, 8, 6, {"IHDR", "IDAT", "IEND"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bits);
        auto block = CreateDIB(5, 3, c.bits);
        const DibRows rows(block);
        for (int y = 0; y < 3; ++y) {
            for (std::size_t i = 0; i < rows.Stride() - 3; ++i)
                rows.Row(y)[i] = static_cast<std::uint8_t>(0x35 * (y + 1) + 7 * static_cast<int>(i));
        }
        if (c.bits == 1) SetDIBTable(block, std::array<Rgb, 2>{0x000000, 0xFFFFFF});
        Bytes file;
        ASSERT_EQ(WritePng(block, {}, file), 0);
        const auto chunks = ChunksOf(file);
        std::vector<std::string> names;
        for (const auto& chunk : chunks) names.push_back(chunk.name);
        EXPECT_EQ(names, c.chunks);
        EXPECT_EQ(chunks[0].data[8], c.ihdrDepth);
        EXPECT_EQ(chunks[0].data[9], c.ihdrType);
        if (c.bits <= 8) {
            EXPECT_EQ(chunks[1].data.size(), 768u);
            const auto behind = static_cast<std::size_t>(3 * DIBNumColors(block));
            EXPECT_TRUE(std::all_of(chunks[1].data.begin() + static_cast<std::ptrdiff_t>(behind), chunks[1].data.end(),
                                    [](int v) { return v == 0; }));
        }
        if (c.bits == 24) {
            EXPECT_THAT(chunks[1].data, ElementsAre(8, 8, 8));
        }
        for (const auto effort : {PngEffort::Usual, PngEffort::Smallest, PngEffort::Small}) {
            PictureSaveOptions options;
            options.png = effort;
            ASSERT_EQ(WritePng(block, options, file), 0);
            const auto back = ReadPng(file);
            ASSERT_EQ(DIBBitCount(back), c.bits);
            for (int y = 0; y < 3; ++y) {
                for (int x = 0; x < 5; ++x) EXPECT_EQ(At(back, x, y), At(block, x, y));
            }
        }
    }
}

// The longer palette is only worth something when other programs read the file: libpng's own high-level reader.
TEST(PngWrite, AnotherReaderTakesTheLongPalette) {
    for (const int bits : {1, 4, 8}) {
        auto block = CreateDIB(4, 1, bits);
        SetDIBTable(block, std::array<Rgb, 2>{0x102030, 0xA0B0C0});
        const DibRows rows(block);
        rows.Row(0)[0] = bits == 1 ? 0x40 : bits == 4 ? 0x01 : 0;
        if (bits == 8) rows.Row(0)[1] = 1;
        Bytes file;
        ASSERT_EQ(WritePng(block, {}, file), 0);
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        ASSERT_TRUE(png_image_begin_read_from_memory(&image, file.data(), file.size()));
        image.format = PNG_FORMAT_RGB;
        std::array<std::uint8_t, 12> pixels{};
        ASSERT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
        EXPECT_THAT(std::vector<int>(pixels.begin(), pixels.begin() + 6),
                    ElementsAre(0x10, 0x20, 0x30, 0xA0, 0xB0, 0xC0));
    }
}

TEST(PngWrite, RefusesOtherDepthsAndNothing) {
    Bytes file;
    EXPECT_EQ(WritePng(CreateDIB(2, 2, 16), {}, file), 1);
    EXPECT_EQ(WritePng({}, {}, file), 1);
    EXPECT_TRUE(file.empty());
}

} // namespace
} // namespace pelorin
