#include "formats/tga.h"
#include "support/dib_builder.h"
#include "support/hostile.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::ReadCopy;

struct Shape {
    int type, width, height, bits, descriptor = 0x20;
    int mapFirst = 0, mapCount = 0, mapBits = 0;
};

Bytes MakeFile(const Shape& shape, const Bytes& behind) {
    ByteWriter out;
    out.U8(3);
    out.U8(shape.mapCount > 0 ? 1 : 0);
    out.U8(static_cast<std::uint32_t>(shape.type));
    out.U16LE(static_cast<std::uint32_t>(shape.mapFirst));
    out.U16LE(static_cast<std::uint32_t>(shape.mapCount));
    out.U8(static_cast<std::uint32_t>(shape.mapBits));
    out.U32LE(0);
    out.U16LE(static_cast<std::uint32_t>(shape.width));
    out.U16LE(static_cast<std::uint32_t>(shape.height));
    out.U8(static_cast<std::uint32_t>(shape.bits));
    out.U8(static_cast<std::uint32_t>(shape.descriptor));
    out.Text("id ");
    out.Raw(behind);
    return out.Take();
}

// Adds the areas of version 2, with what the extension area says of the alpha.
Bytes WithFooter(Bytes file, std::uint8_t alphaKind) {
    ByteWriter out;
    out.Raw(file);
    const auto extension = out.Size();
    out.Zeros(494);
    out.U8(alphaKind);
    out.U32LE(static_cast<std::uint32_t>(extension));
    out.U32LE(0);
    out.Text(std::string_view("TRUEVISION-XFILE.\0", 18));
    return out.Take();
}

TEST(Tga, EveryTypeAndDepth) {
    struct Case {
        const char* what;
        Shape shape;
        Bytes behind;
        int bits;
        std::vector<Argb> pixels; // in rows of the picture, the top one first
    };
    const Case cases[] = {
        {"map of 24 bits that begins at 1",
         {1, 2, 1, 8, 0x20, 1, 2, 24},
         {1, 2, 3, 4, 5, 6, 2, 0},
         8,
         {0xFF060504, 0xFF000000}},
        {"map with alpha",
         {1, 2, 1, 8, 0x28, 0, 2, 32},
         {1, 2, 3, 0x80, 4, 5, 6, 0xFF, 0, 1},
         32,
         {0x80030201, 0xFF060504}},
        {"indices of 16 bits", {1, 1, 1, 16, 0x20, 0x100, 1, 15}, {0x00, 0x7C, 0x00, 0x01}, 24, {0xFFFF0000}},
        {"24 bits", {2, 1, 1, 24}, {1, 2, 3}, 24, {0xFF030201}},
        {"five bits reach from 0 to 255", {2, 2, 1, 16}, {0xFF, 0xFF, 0x10, 0x02}, 24, {0xFFFFFFFF, 0xFF008484}},
        {"one announced bit of alpha", {2, 2, 1, 16, 0x21}, {0xFF, 0xFF, 0xFF, 0x7F}, 32, {0xFFFFFFFF, 0x00FFFFFF}},
        {"32 bits", {2, 1, 1, 32, 0x28}, {1, 2, 3, 4}, 32, {0x04030201}},
        {"32 bits without alpha", {2, 1, 1, 32, 0x28}, {1, 2, 3, 0}, 24, {0xFF030201}},
        {"greys", {3, 2, 1, 8}, {0, 200}, 8, {0xFF000000, 0xFFC8C8C8}},
        {"greys with alpha", {3, 1, 1, 16, 0x28}, {9, 77}, 32, {0x4D090909}},
        {"a map that true colour does not need", {2, 1, 1, 24, 0x20, 0, 1, 24}, {9, 9, 9, 1, 2, 3}, 24, {0xFF030201}},
        {"bottom row first", {3, 1, 2, 8, 0}, {1, 2}, 8, {0xFF020202, 0xFF010101}},
        {"from right to left", {3, 3, 1, 8, 0x30}, {1, 2, 3}, 8, {0xFF030303, 0xFF020202, 0xFF010101}},
        {"rows interleaved by two", {3, 1, 3, 8, 0x60}, {1, 3, 2}, 8, {0xFF010101, 0xFF020202, 0xFF030303}},
        {"runs and literals over the end of a row",
         {10, 2, 3, 24},
         {0x82, 1, 1, 1, 0x02, 2, 2, 2, 3, 3, 3, 4, 4, 4},
         24,
         {0xFF010101, 0xFF010101, 0xFF010101, 0xFF020202, 0xFF030303, 0xFF040404}},
        {"runs of indices", {9, 3, 1, 8, 0x20, 0, 1, 16}, {0xE0, 0x03, 0x82, 0}, 8, {0xFF00FF00, 0xFF00FF00}},
        {"runs of greys", {11, 3, 1, 8}, {0x81, 5, 0, 6}, 8, {0xFF050505, 0xFF050505, 0xFF060606}},
    };
    for (const auto& c : cases) {
        const auto block = ReadCopy(ReadTga, MakeFile(c.shape, c.behind));
        ASSERT_TRUE(block) << c.what;
        EXPECT_EQ(DIBBitCount(block), c.bits) << c.what;
        for (int i = 0; i < static_cast<int>(c.pixels.size()); ++i) {
            EXPECT_EQ(At(block, i % c.shape.width, i / c.shape.width), c.pixels[static_cast<std::size_t>(i)])
                << c.what << ", pixel " << i;
        }
    }
}

TEST(Tga, TheFooterSaysWhatTheAlphaIs) {
    const auto file = MakeFile({2, 1, 1, 32, 0x28}, {10, 20, 30, 0x80});
    EXPECT_FALSE(IsTga(file));
    EXPECT_TRUE(IsTga(WithFooter(file, 3)));
    EXPECT_EQ(At(ReadCopy(ReadTga, WithFooter(file, 3)), 0, 0), 0x801E140Au);
    EXPECT_EQ(At(ReadCopy(ReadTga, WithFooter(file, 4)), 0, 0), 0x803C2814u);
    const auto opaque = ReadCopy(ReadTga, WithFooter(file, 0));
    EXPECT_EQ(DIBBitCount(opaque), 24);
    EXPECT_EQ(At(opaque, 0, 0), 0xFF1E140Au);
}

TEST(Tga, RefusesWhatMakesNoSense) {
    EXPECT_FALSE(ReadCopy(ReadTga, MakeFile({2, 2, 1, 24}, {1, 2, 3, 4, 5}))) << "a byte is missing";
    EXPECT_FALSE(ReadCopy(ReadTga, MakeFile({10, 200, 1, 24}, {0xFF, 1, 2, 3}))) << "128 of 200 pixels";
    EXPECT_FALSE(ReadCopy(ReadTga, MakeFile({1, 1, 1, 8}, {0}))) << "no colour map";
    EXPECT_FALSE(ReadCopy(ReadTga, MakeFile({2, 65535, 65535, 32}, {1, 2, 3, 4})));
    EXPECT_FALSE(ReadCopy(ReadTga, MakeFile({10, 65535, 1000, 32}, {0xFF, 1, 2, 3, 4})));
    EXPECT_FALSE(ReadCopy(ReadTga, MakeFile({33, 1, 1, 8}, {1})));
}

TEST(Tga, SurvivesDamage) {
    test::ExpectSurvivesDamage(ReadTga, MakeFile({9, 3, 2, 8, 0x20, 0, 2, 16}, {1, 2, 3, 4, 0x82, 0, 2, 1, 1, 0}));
    test::ExpectSurvivesDamage(
        ReadTga, WithFooter(MakeFile({10, 2, 2, 32}, {0x81, 1, 2, 3, 4, 1, 1, 2, 3, 4, 5, 6, 7, 8}), 4), 40);
}

} // namespace
} // namespace pelorin
