#include "formats/gif.h"
#include "support/dib_builder.h"
#include "support/hostile.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::ReadCopy;

constexpr Rgb kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF, kWhite = 0xFFFFFF;

struct FrameShape {
    Rect place;
    Bytes indices;
    int disposal = 0, delay = 0, transparent = -1;
    bool interlaced = false;
    std::vector<Rgb> colors = {}; // own ones, four
};

void PutColors(ByteWriter& out, const std::vector<Rgb>& colors) {
    for (const auto color : colors) {
        for (const int shift : {16, 8, 0}) out.U8(color >> shift & 255);
    }
}

// Codes of three bits, with a clear code before every pixel, so that the width of a code never grows.
void PutCodes(ByteWriter& out, const Bytes& indices) {
    constexpr std::uint32_t kClear = 4, kEnd = 5;
    std::vector<std::uint32_t> codes;
    for (const auto index : indices) codes.insert(codes.end(), {kClear, index});
    codes.push_back(kEnd);
    Bytes packed(codes.size() * 3 / 8 + 1);
    for (std::size_t bit = 0; bit < codes.size() * 3; ++bit) {
        if (codes[bit / 3] >> (bit % 3) & 1)
            packed[bit / 8] = static_cast<std::uint8_t>(packed[bit / 8] | 1u << bit % 8);
    }
    out.U8(2);
    for (std::size_t at = 0; at < packed.size(); at += 255) {
        const auto part = ByteSpan(packed).subspan(at, std::min<std::size_t>(255, packed.size() - at));
        out.U8(static_cast<std::uint32_t>(part.size()));
        out.Raw(part);
    }
    out.U8(0);
}

Bytes MakeGif(Size screen, const std::vector<FrameShape>& frames) {
    ByteWriter out;
    out.Text("GIF89a");
    out.U16LE(static_cast<std::uint32_t>(screen.width));
    out.U16LE(static_cast<std::uint32_t>(screen.height));
    out.U8(0x81); // a colour map of four
    out.U16LE(0);
    PutColors(out, {kRed, kGreen, kBlue, kWhite});
    for (const auto& frame : frames) {
        for (const int value : {0x21, 0xF9, 4, frame.disposal << 2 | (frame.transparent >= 0)}) {
            out.U8(static_cast<std::uint32_t>(value));
        }
        out.U16LE(static_cast<std::uint32_t>(frame.delay));
        out.U8(static_cast<std::uint32_t>(std::max(0, frame.transparent)));
        out.U8(0);
        out.U8(0x2C);
        for (const int value : {frame.place.left, frame.place.top, frame.place.Width(), frame.place.Height()}) {
            out.U16LE(static_cast<std::uint32_t>(value));
        }
        out.U8((frame.interlaced ? 0x40u : 0) | (frame.colors.empty() ? 0 : 0x81u));
        PutColors(out, frame.colors);
        PutCodes(out, frame.indices);
    }
    out.U8(0x3B);
    return out.Take();
}

TEST(Gif, FirstFrameKeepsItsIndices) {
    PictureFacts facts;
    const auto file = MakeGif({2, 2}, {{{0, 0, 2, 2}, {0, 1, 2, 3}, 0, 7, 2}, {{0, 0, 1, 1}, {1}, 0, 12}});
    const auto block = ReadGif(file, {}, facts);
    ASSERT_EQ(DIBBitCount(block), 8);
    const DibView view(block);
    EXPECT_EQ(Bytes(view.PictureRow(0), view.PictureRow(0) + 2), (Bytes{0, 1}));
    EXPECT_EQ(Bytes(view.PictureRow(1), view.PictureRow(1) + 2), (Bytes{2, 3}));
    EXPECT_EQ(view.Color(1), kGreen);
    EXPECT_EQ(facts.transparentIndex, 2);
    EXPECT_EQ(facts.paletteBits, 2);
    EXPECT_EQ(facts.delay, 7);
    EXPECT_EQ(facts.frames, 2);
    EXPECT_EQ(facts.delaysMs, (std::vector<int>{70, 120}));
}

TEST(Gif, WhatTheFirstFrameLeavesFreeIsTransparent) {
    struct Case {
        FrameShape frame;
        int transparent, bits;
    };
    const Case cases[] = {
        {{{1, 0, 2, 1}, {3}, 0, 0, 1}, 1, 2}, // its own transparent index
        {{{1, 0, 2, 1}, {3}}, 4, 3},          // else one behind the colour map, which grows by a bit
    };
    for (const auto& c : cases) {
        PictureFacts facts;
        const auto block = ReadGif(MakeGif({2, 1}, {c.frame}), {}, facts);
        ASSERT_EQ(DIBBitCount(block), 8);
        EXPECT_EQ(DibView(block).Row(0)[0], c.transparent);
        EXPECT_EQ(DibView(block).Row(0)[1], 3);
        EXPECT_EQ(facts.transparentIndex, c.transparent);
        EXPECT_EQ(facts.paletteBits, c.bits);
    }
}

TEST(Gif, RowsOfAnInterlacedFrameAreSorted) {
    Bytes indices;
    for (const int y : {0, 8, 4, 2, 6, 1, 3, 5, 7}) indices.push_back(static_cast<std::uint8_t>(y % 4));
    const auto block = ReadCopy(ReadGif, MakeGif({1, 9}, {{{0, 0, 1, 9}, indices, 0, 0, -1, true}}));
    ASSERT_TRUE(block);
    for (int y = 0; y < 9; ++y) EXPECT_EQ(DibView(block).PictureRow(y)[0], y % 4) << y;
}

TEST(Gif, LaterFramesAreDrawnOverTheEarlier) {
    // A red ground; green at the left that goes back to what was before; blue in the middle that leaves a hole; white
    // at the right, transparent in the middle.
    const auto file = MakeGif({3, 1}, {{{0, 0, 3, 1}, {0, 0, 0}, 1},
                                       {{0, 0, 1, 1}, {1}, 3},
                                       {{1, 0, 2, 1}, {0}, 2, 9, -1, false, {kBlue, 0, 0, 0}},
                                       {{1, 0, 3, 1}, {0, 3}, 0, 0, 0}});
    constexpr Argb A = 0xFF000000u;
    const std::vector<std::vector<Argb>> frames = {{A | kRed, A | kRed, A | kRed},
                                                   {A | kGreen, A | kRed, A | kRed},
                                                   {A | kRed, A | kBlue, A | kRed},
                                                   {A | kRed, 0, A | kWhite}};
    for (int i = 0; i < 4; ++i) {
        const auto block = ReadCopy(ReadGif, file, i);
        ASSERT_TRUE(block) << i;
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(At(block, x, 0), frames[static_cast<std::size_t>(i)][static_cast<std::size_t>(x)])
                << i << ", " << x;
    }
    EXPECT_FALSE(ReadCopy(ReadGif, file, 4));
}

TEST(Gif, ASmallScreenGrowsAndAHugeOneIsRefused) {
    const auto block = ReadCopy(ReadGif, MakeGif({0, 0}, {{{1, 0, 2, 1}, {1}}}));
    EXPECT_EQ(DIBWidth(block), 2);
    EXPECT_FALSE(ReadCopy(ReadGif, MakeGif({65535, 65535}, {{{0, 0, 1, 1}, {1}}})));
    EXPECT_FALSE(ReadCopy(ReadGif, MakeGif({1, 1}, {{{0, 0, 60000, 1000}, {1}}}))) << "six bytes cannot hold that";
    EXPECT_FALSE(ReadCopy(ReadGif, MakeGif({1, 1}, {})));
}

Bytes Write(const DibBlock& block, const GifSaveOptions& gif) {
    PictureSaveOptions options;
    options.gif = gif;
    Bytes file;
    EXPECT_EQ(WriteGif(block, options, file), 0);
    return file;
}

TEST(GifWriter, IndexedBlocksStayAsTheyAre) {
    auto block = CreateDIB(3, 2, 8);
    const std::vector<Rgb> table = {kRed, kGreen, kBlue, kWhite, 0x123456};
    SetDIBTable(block, table);
    const DibRows rows(block);
    for (int i = 0; i < 6; ++i) rows.PictureRow(i / 3)[i % 3] = static_cast<std::uint8_t>(i % 5);
    struct Case {
        GifSaveOptions options;
        std::string_view version;
        int transparent, bits;
    };
    Case cases[] = {{{}, "GIF87a", -1, 8}, {{}, "GIF89a", 3, 3}};
    cases[1].options.colors = 8;
    cases[1].options.transparentIndex = 3;
    for (const auto& c : cases) {
        const auto file = Write(block, c.options);
        EXPECT_EQ(AsText(ByteSpan(file).first(6)), c.version);
        PictureFacts facts;
        const auto again = ReadGif(file, {}, facts);
        ASSERT_EQ(DIBBitCount(again), 8);
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(DibView(again).PictureRow(i / 3)[i % 3], i % 5);
            EXPECT_EQ(At(again, i % 3, i / 3), At(block, i % 3, i / 3));
        }
        EXPECT_EQ(facts.transparentIndex, c.transparent);
        EXPECT_EQ(facts.paletteBits, c.bits);
    }
}

TEST(GifWriter, AlphaBelowTheThresholdIsTransparentAndTheRestLiesOnTheMatte) {
    const auto block = test::Picture32(4, {0xFFFF0000, 0x80000000, 0x77FF0000, 0x00123456});
    GifSaveOptions options;
    options.dither = false;
    options.matte = kWhite;
    PictureFacts facts;
    auto again = ReadGif(Write(block, options), {}, facts);
    EXPECT_EQ(At(again, 0, 0), 0xFFFF0000u);
    EXPECT_EQ(At(again, 1, 0), 0xFF7F7F7Fu);
    EXPECT_EQ(facts.transparentIndex, 255);
    EXPECT_EQ(DibView(again).Row(0)[2], 255);
    EXPECT_EQ(DibView(again).Row(0)[3], 255);

    options.transparency = false;
    options.palette = PaletteKind::WebSafe;
    facts = {};
    again = ReadGif(Write(block, options), {}, facts);
    EXPECT_EQ(facts.transparentIndex, -1);
    EXPECT_EQ(At(again, 2, 0), 0xFFFF9999u) << "119 of 255 red on white is 255, 136, 136";
    EXPECT_EQ(At(again, 3, 0), 0xFFFFFFFFu);
}

TEST(GifWriter, APaletteOfItsOwnSize) {
    auto block = CreateDIB(64, 1, 24);
    for (int x = 0; x < 64; ++x) DibRows(block).Row(0)[3 * x + 1] = static_cast<std::uint8_t>(4 * x);
    GifSaveOptions options;
    options.colors = 16;
    PictureFacts facts;
    ASSERT_TRUE(ReadGif(Write(block, options), {}, facts));
    EXPECT_EQ(facts.paletteBits, 4);
    Bytes out;
    EXPECT_EQ(WriteGif({}, {}, out), 20);
    EXPECT_EQ(WriteGif(DibBlock::FromBytes(block.Span().first(60)), {}, out), 3);
}

TEST(Gif, SurvivesDamage) {
    const auto file = MakeGif({3, 2}, {{{0, 0, 3, 2}, {0, 1, 2, 3, 2, 1}, 3, 1, 2, true},
                                       {{1, 0, 2, 1}, {3}, 2, 0, -1, false, {1, 2, 3, 4}}});
    test::ExpectSurvivesDamage(ReadGif, file);
    test::ExpectSurvivesDamage(
        [](ByteSpan bytes, const PictureRequest&, PictureFacts& facts) {
            PictureRequest second;
            second.frame = 1;
            return ReadGif(bytes, second, facts);
        },
        file);
}

} // namespace
} // namespace pelorin
