#include "formats/metafile/face.h"
#include "formats/metafile/letters.h"
#include "support/hostile.h"
#include "support/metafile_builder.h"
#include "support/png_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using namespace test;
using namespace std::string_literals;

// The bounds that records have and nobody reads.
const Words kBounds = {0, 0, 0, 0};

// ---- what is known before a record is played ----

TEST(MetafileFacts, PlainFilesWithoutAWindowAreAsLargeAsWhatTheyDraw) {
    WmfBuilder plain;
    plain.Header();
    plain.Fill(0, 0, 0, 255).Record(0x0416, {9, 9, 0, 0}); // a clip is not drawn
    plain.Record(0x041B, {61, 41, 20, 20}).Record(0x041B, {41, 61, 20, 20});
    EXPECT_EQ(SizeOf(Play(plain.Done(), 80)), (Size{80, 80}));

    WmfBuilder corner;
    corner.Header();
    corner.Fill(0, 0, 0, 255).Record(0x041B, {311, 207, 307, 203}); // three by three pixels
    EXPECT_EQ(Drawing(Play(corner.Done(), 3)), "rrr\nrrr\nrrr\n");

    WmfBuilder pixels; // a window that is set up while the mapping is fixed does not count
    pixels.Header();
    pixels.Record(0x0103, {1}).Record(0x020C, {10, 1000}).Fill(0, 0, 0, 255).Record(0x041B, {5, 5, 0, 0});
    EXPECT_EQ(Drawing(Play(pixels.Done(), 4)), "rrrr\nrrrr\nrrrr\nrrrr\n");
}

// A placeable file that draws in blue and carries an enhanced one that draws in red, in pieces of `piece` bytes.
Bytes WithEmbedded(std::size_t piece, std::size_t pieces) {
    const auto emf = EmfBuilder(8, 4).Fill(0xFF).Record(43, {0, 0, 8, 4}).Done();
    auto file = Placeable(8, 8, 96);
    for (std::size_t i = 0; i < pieces; ++i) {
        const auto at = std::min(emf.size(), i * piece), size = std::min(piece, emf.size() - at);
        ByteWriter comment;
        comment.U16LE(15);
        comment.U16LE(static_cast<std::uint32_t>(34 + size));
        for (const std::size_t value : {std::size_t{0x43464D57}, std::size_t{1}, std::size_t{0x10000}})
            comment.U32LE(static_cast<std::uint32_t>(value));
        comment.U16LE(0);
        for (const std::size_t value : {std::size_t{0}, pieces, size, emf.size() - at - size, emf.size()})
            comment.U32LE(static_cast<std::uint32_t>(value));
        comment.Raw({emf.data() + at, size});
        Words words;
        const auto bytes = comment.Take();
        for (std::size_t b = 0; b + 1 < bytes.size(); b += 2) words.push_back(LoadU16LE(&bytes[b]));
        file.Record(0x0626, words);
    }
    return file.Fill(0, 255, 0, 0).Record(0x041B, {9, 9, 0, 0}).Done();
}

TEST(MetafileFacts, AnEmbeddedEnhancedFileIsPlayedInstead) {
    EXPECT_EQ(Drawing(Play(WithEmbedded(4096, 1), 4)), "rrrr\nrrrr\n");
    EXPECT_EQ(Drawing(Play(WithEmbedded(70, 3), 4)), "rrrr\nrrrr\n") << "in three pieces";
    EXPECT_EQ(At(Play(WithEmbedded(100, 1), 8), 0, 0), kBlue) << "a piece is missing";
}

TEST(MetafileState, ExtentsCountInFreeMappingModesOnly) {
    auto emf = EmfBuilder(8, 2).Fill(0xFF);
    emf.Record(9, {2, 2}).Record(32, {1, 2, 1, 2}).Record(17, {8}).Record(43, {0, 0, 2, 2});
    EXPECT_EQ(Drawing(Play(emf.Done(), 8)), "rr......\nrr......\n");
    // The free mode goes on with the extents of the fixed one: tenths of millimetres, upwards.
    auto metric = EmfBuilder(8, 2).Fill(0xFF);
    metric.Record(17, {2}).Record(17, {8}).Record(32, {1, 2, 1, 1}).Record(43, {0, 0, 2, -2});
    EXPECT_EQ(Drawing(Play(metric.Done(), 8)), "rrrr....\nrrrr....\n");
}

TEST(MetafileState, AKeptClipCanNotBeWidenedAgain) {
    auto emf = EmfBuilder(6, 2).Fill(0xFF);
    emf.Record(30, {1, 0, 5, 2}).Record(28).Record(75, {0, 5});
    emf.Record(43, {0, 0, 9, 1}).Record(75, {48, 5, 32, 1, 1, 16, 0, 0, 6, 2, 4, 0, 6, 2});
    emf.Fill(0xFF0000).Record(43, {0, 0, 9, 2});
    EXPECT_EQ(Drawing(Play(emf.Done(), 6)), ".rrrb.\n....b.\n");
}

TEST(MetafileState, PalettesNameColors) {
    // Two entries, red and green; a brush of number 1; then that entry becomes blue.
    auto emf = EmfBuilder(4, 2).Fill(0);
    emf.Record(49, {2, 0x300 | 2 << 16, 0x0000FF, 0x00FF00}).Record(48, {2});
    emf.Record(39, {3, 0, 0x01000001, 0}).Record(37, {3}).Record(43, {0, 0, 1, 2});
    emf.Record(50, {2, 1, 1, 0xFF0000}).Record(39, {3, 0, 0x01000001, 0}).Record(37, {3}).Record(43, {1, 0, 2, 2});
    // Bitmaps whose tables are numbers, and whose pixels are: 8 bits, two by one.
    const Words header = {40, 2, 1, 1 | 8 << 16, 0, 0, 0, 0, 2, 0};
    const auto stretch = [](int usage, int headerSize, int rows) {
        return kBounds + Words{2, usage - 1, 0, 0, 2, 1, 80, headerSize, rows, 4, usage, 0xCC0020, 2, 1};
    };
    emf.Record(81, stretch(1, 44, 124) + header + Words{0 << 16 | 1, 0x0100});
    emf.Record(81, stretch(2, 40, 120) + header + Words{0x0100});
    EXPECT_EQ(Drawing(Play(emf.Done(), 4)), "gbbr\ngbrb\n");

    auto wmf = Placeable(2, 1, 96).Fill(0, 0, 0, 0);
    wmf.Record(0x00F7, {0x300, 2, 0xFF, 0, 0xFF00, 0}).Record(0x0234, {2}).Record(0x0037, {0, 1, 0, 0xFF});
    wmf.Record(0x02FC, {0, 0, 0x100, 0}).Record(0x012D, {3}).Record(0x041B, {2, 2, 0, 0});
    EXPECT_EQ(Drawing(Play(wmf.Done(), 2)), "b.\n");
}

// ---- areas ----

TEST(MetafileAreas, FloodsStopAtTheirBorderOrAtTheEndOfTheirColor) {
    // A black ring in a picture; blue up to black inside, then red over blue.
    const char* flooded = "kkkk.\nkrrk.\nkrrk.\nkkkk.\n.....\n";
    auto emf = EmfBuilder(5, 5).Fill(0);
    emf.Record(43, {0, 0, 4, 4}).Fill(0x00FF00).Record(43, {1, 1, 3, 3});
    emf.Fill(0xFF0000).Record(53, {1, 1, 0, 0}).Fill(0xFF).Record(53, {2, 2, 0xFF0000, 1});
    emf.Record(53, {2, 2, 0x00FF00, 1}).Record(53, {-3, 2, 0, 0});
    EXPECT_EQ(Drawing(Play(emf.Done(), 5)), flooded);
    auto wmf = Placeable(5, 5, 96).Fill(0, 0, 0, 0);
    wmf.Record(0x041B, {5, 5, 0, 0}).Fill(2, 0, 255, 0).Record(0x041B, {4, 4, 1, 1}).Fill(4, 255, 0, 0);
    wmf.Record(0x0419, {0, 0, 1, 1}).Fill(6, 0, 0, 255).Record(0x0548, {1, 0, 0xFF, 2, 2});
    EXPECT_EQ(Drawing(Play(wmf.Done(), 5)), flooded);
}

TEST(MetafileAreas, RegionsAreFramedInvertedAndPainted) {
    const Words cross = {32, 1, 2, 32, 0, 0, 6, 6, 2, 0, 4, 6, 0, 2, 6, 4};
    const auto region = [&](const Words& head) { return kBounds + Words{64} + head + cross; };
    struct Case {
        int type;
        Words head;
        const char* drawing;
    };
    const Case cases[] = {
        {72, {1, 1, 1}, "..rr..\n..rr..\nrr..rr\nrr..rr\n..rr..\n..rr..\n"},
        {71, {1}, "..rr..\n..rr..\nrrrrrr\nrrrrrr\n..rr..\n..rr..\n"},
        {74, {}, "..bb..\n..bb..\nbbbbbb\nbbbbbb\n..bb..\n..bb..\n"},
    };
    for (const auto& c : cases) {
        auto emf = EmfBuilder(6, 6).Fill(0xFF);
        emf.Record(39, {2, 0, 0xFF0000, 0}).Record(37, {2}).Record(c.type, region(c.head));
        EXPECT_EQ(Drawing(Play(emf.Done(), 6)), c.drawing) << c.type;
    }
    // Black becomes white, once where the parts of the region lie on each other.
    auto emf = EmfBuilder(6, 6).Fill(0);
    emf.Record(43, {0, 0, 6, 6}).Record(73, region({}));
    EXPECT_EQ(Drawing(Play(emf.Done(), 6)), "kkwwkk\nkkwwkk\nwwwwww\nwwwwww\nkkwwkk\nkkwwkk\n");

    auto wmf = Placeable(5, 4, 96).Fill(0, 0, 0, 255);
    wmf.Record(0x06FF, {0, 6, 0, 0, 0, 1, 2, 0, 0, 5, 4, 2, 0, 4, 0, 5, 2}).Record(0x0429, {2, 0, 1, 2});
    EXPECT_EQ(Drawing(Play(wmf.Done(), 5)), "rrrrr\nrr.rr\nrr.rr\nrrrrr\n");
}

TEST(MetafileAreas, MasksChooseTheOperationAndSlantedAreasTurn) {
    const Words picture = Bitmap(2, 2, {0xFF0000, 0x00FF00, 0x0000FF, 0xFF00FF});
    const Words mask = {40, 2, -2, 1 | 1 << 16, 0, 0, 0, 0, 0, 0, 0, 0xFFFFFF, 0x40, 0x80};
    // Where the mask is set the source, elsewhere black.
    auto masked = EmfBuilder(2, 2);
    masked.Record(78, kBounds + Words{0, 0, 2, 2, 0x00CC0020, 0, 0} + Words(6) + Words{0, 0, 128, 40, 168, 16} +
                          Words{0, 0, 0, 184, 48, 232, 8} + picture + mask);
    EXPECT_EQ(Drawing(Play(masked.Done(), 2)), "kg\nbk\n");
    // A quarter turn: the upper side of the source stands on the right.
    auto turned = EmfBuilder(2, 2);
    turned.Record(79, kBounds + Words{2, 0, 2, 2, 0, 0, 0, 0, 2, 2} + Words(6) + Words{0, 0, 140, 40, 180, 16} +
                          Words(7) + picture);
    EXPECT_EQ(Drawing(Play(turned.Done(), 2)), "br\nmg\n");
}

TEST(MetafileAreas, BitmapsThatGetSmallerKeepWhatTheirModeSays) {
    const auto play = [](int mode, const Words& pixels) {
        const int width = static_cast<int>(pixels.size());
        auto emf = EmfBuilder(2, 1).Record(21, {3}).Record(21, {mode});
        emf.Record(81, kBounds + Words{0, 0, 0, 0, width, 1, 80, 40, 120, width * 4, 0, 0xCC0020, 2, 1} +
                           Bitmap(width, 1, pixels));
        return Play(emf.Done(), 2);
    };
    const Words lines = {0xFFFFFF, 0, 0, 0xFFFFFF}, colors = {0xFF0000, 0x0000FF, 0x0000FF, 0xFF0000};
    EXPECT_EQ(Drawing(play(1, lines)), "kk\n") << "black stays";
    EXPECT_EQ(Drawing(play(2, lines)), "ww\n") << "white stays";
    for (const int mode : {3, 0, 5}) EXPECT_EQ(Drawing(play(mode, lines)), "kw\n") << mode;
    EXPECT_EQ(Drawing(play(1, colors)), "br\n") << "colours are not mixed up";
    EXPECT_EQ(At(play(4, colors), 0, 0), 0xFF7F007Fu) << "the mean";
    EXPECT_EQ(Drawing(play(4, {0xFF0000, 0x0000FF, 0x0000FF})), "rb\n") << "one and a half to a pixel";
}

TEST(MetafileAreas, SourcesHaveUnitsOfTheirOwnAndTablesMayBreakOff) {
    // Two by one, red and blue; the source's units are half pixels, shifted by one pixel.
    auto halves = EmfBuilder(2, 1);
    halves.Record(77, kBounds +
                          Words{0, 0, 2, 1, 0xCC0020, -2, 0, FloatBits(0.5F), 0, 0, FloatBits(0.5F), FloatBits(1), 0} +
                          Words{0, 0, 108, 40, 148, 8, 4, 2} + Bitmap(2, 1, {0xFF0000, 0x0000FF}));
    EXPECT_EQ(Drawing(Play(halves.Done(), 2)), "rb\n");
    // Eight bits with a table of two, though the header speaks of all; the third colour is black.
    auto table = EmfBuilder(3, 1);
    table.Record(81, kBounds + Words{0, 0, 0, 0, 3, 1, 80, 48, 128, 4, 0, 0xCC0020, 3, 1} +
                         Words{40, 3, 1, 1 | 8 << 16, 0, 0, 0, 0, 0, 0, 0xFF0000, 0x0000FF, 0x020100});
    EXPECT_EQ(Drawing(Play(table.Done(), 3)), "rbk\n");
    // A whole PNG file in place of the rows.
    auto png = BuildPng({.width = 2, .height = 1, .depth = 8, .colorType = 2, .rows = {0, 255, 0, 0, 0, 0, 255}});
    png.resize((png.size() + 3) / 4 * 4);
    const int size = static_cast<int>(png.size());
    Words words = kBounds + Words{0, 0, 0, 0, 2, 1, 80, 40, 120, size, 0, 0xCC0020, 2, 1} +
                  Words{40, 2, 1, 1, 5, size, 0, 0, 0, 0};
    for (std::size_t i = 0; i < png.size(); i += 4) words.push_back(static_cast<int>(LoadU32LE(&png[i])));
    EXPECT_EQ(Drawing(Play(EmfBuilder(2, 1).Record(81, words).Done(), 2)), "rb\n");
}

TEST(MetafileAreas, BrushesAndPensOfAllKinds) {
    struct Case {
        int hatch;
        const char* drawing;
    };
    // Brush and text red and green, ground blue; hatches that are none.
    for (const auto& c : {Case{6, "rr\n"}, Case{7, "rr\n"}, Case{8, "gg\n"}, Case{9, "gg\n"}, Case{10, "bb\n"}}) {
        auto emf = EmfBuilder(2, 1).Fill(0).Record(24, {0xFF00}).Record(25, {0xFF0000});
        emf.Record(39, {2, 2, 0xFF, c.hatch}).Record(37, {2}).Record(43, {0, 0, 2, 2});
        EXPECT_EQ(Drawing(Play(emf.Done(), 2)), c.drawing) << c.hatch;
    }
    // Two by one pixels as a brush, and as what a wide pen paints with.
    auto emf = EmfBuilder(4, 4).Fill(0);
    emf.Record(94, Words{2, 0, 32, 40, 72, 8} + Bitmap(2, 1, {0xFF0000, 0x0000FF})).Record(37, {2});
    emf.Record(43, {0, 0, 4, 1});
    emf.Record(95, Words{3, 52, 40, 92, 8, 0x10200, 2, 5, 0, 0, 0} + Bitmap(2, 1, {0x00FF00, 0}));
    emf.Record(37, {3}).Record(27, {0, 3}).Record(54, {4, 3});
    EXPECT_EQ(Drawing(Play(emf.Done(), 4)), "rbrb\n....\ngkgk\ngkgk\n");
    // One bit: its numbers are the colours that text and ground have while it is used, whatever the table says.
    auto two = EmfBuilder(2, 1).Fill(0);
    two.Record(93,
               Words{2, 0, 32, 48, 80, 4} + Words{40, 2, 1, 1 | 1 << 16, 0, 0, 0, 0, 0, 0, 0x123456, 0x654321, 0x40});
    two.Record(37, {2}).Record(24, {0xFF00}).Record(25, {0xFF0000}).Record(43, {0, 0, 2, 2});
    EXPECT_EQ(Drawing(Play(two.Done(), 2)), "gb\n");
    auto device = Placeable(2, 1, 96).Fill(0, 0, 0, 0);
    device.Record(0x01F9, Words{0, 2, 1, 2, 1 | 1 << 8} + Words(11) + Words{0x40}).Record(0x012D, {2});
    device.Record(0x0209, {0xFF00, 0}).Record(0x0201, {0, 0xFF}).Record(0x041B, {3, 3, 0, 0});
    EXPECT_EQ(Drawing(Play(device.Done(), 2)), "gb\n");
}

TEST(MetafileFigures, ArcsToTheSameDirectionGoAllTheWayRound) {
    auto emf = EmfBuilder(20, 20);
    emf.Record(45, {2, 2, 16, 16, 30, 30, 50, 50});
    const auto block = Play(emf.Done(), 20);
    for (const auto& p : {Point{2, 9}, Point{9, 2}, Point{16, 9}, Point{9, 16}}) EXPECT_EQ(At(block, p.x, p.y), kBlack);
}

TEST(MetafileFigures, PointsWithKindsCloseTheirFiguresOutsideOfPathsToo) {
    auto emf = EmfBuilder(5, 5).Record(56, kBounds + Words{3, 0, 0, 4, 0, 4, 4, 6 | 2 << 8 | 3 << 16});
    EXPECT_EQ(Drawing(Play(emf.Done(), 5)), "kkkkk\n.k..k\n..k.k\n...kk\n....k\n");
}

TEST(MetafileFigures, ManyClipsDoNotUseUpTheWork) {
    auto emf = EmfBuilder(512, 512).Fill(0xFF);
    for (int i = 0; i < 1000; ++i) emf.Record(29, {0, i / 2, 256, i / 2 + 1});
    const auto block = Play(emf.Record(43, {0, 0, 512, 512}).Done(), 512);
    EXPECT_EQ(At(block, 100, 100), kClear);
    EXPECT_EQ(At(block, 300, 100), kRed);
}

TEST(MetafileAreas, TrianglesAreShadedBetweenTheirCorners) {
    auto emf = EmfBuilder(64, 64);
    emf.Record(118, kBounds + Words{3, 1, 2, 0, 0, 0xFF00, 0, 64, 0, static_cast<int>(0xFF000000u), 0, 0, 64, 0, 0xFF00,
                                    0, 1, 2});
    const auto block = Play(emf.Done(), 64);
    EXPECT_GT(RedOf(At(block, 2, 2)), 230);
    EXPECT_GT(GreenOf(At(block, 60, 1)), 230);
    EXPECT_GT(BlueOf(At(block, 1, 60)), 230);
    for (const auto channel : {RedOf(At(block, 21, 21)), GreenOf(At(block, 21, 21)), BlueOf(At(block, 21, 21))})
        EXPECT_NEAR(channel, 85, 5);
    EXPECT_EQ(At(block, 40, 40), kClear);
}

TEST(MetafilePaths, AWidenedPathIsTheOutlineOfItsLines) {
    auto emf = EmfBuilder(8, 8).Fill(0xFF);
    emf.Record(95, {2, 0, 0, 0, 0, 0x10200, 4, 0, 0, 0, 0}).Record(37, {2}); // four pixels, flat ends
    emf.Record(59).Record(27, {0, 4}).Record(54, {8, 4}).Record(60).Record(66).Record(62);
    EXPECT_EQ(Drawing(Play(emf.Done(), 8)).substr(0, 27), "........\n........\nrrrrrrrr\n");
    auto far = EmfBuilder(4, 4).Fill(0xFF); // one line, however far it goes
    far.Record(3, kBounds + Words{3, -40000000, -40000001, 0, -1, 40000000, 39999999});
    EXPECT_EQ(Drawing(Play(far.Done(), 4)), "....\n....\n....\n....\n");
}

// ---- text ----

TEST(MetafileText, AllRecordsOfTextDrawTheSame) {
    const auto start = [] {
        auto emf = EmfBuilder(32, 16);
        emf.Record(18, {1}).Record(82, Words{1, -14, 0, 0, 0, 400, 0, 0} + Words(60)).Record(37, {1});
        return emf;
    };
    const auto expected = Drawing(
        Play(start().Record(84, kBounds + Words{1, 0, 0, 4, 0, 2, 76, 0, 0, 0, 0, 0, 0, 'H' | 'i' << 16}).Done(), 32));
    EXPECT_NE(expected.find('k'), std::string::npos);
    struct Case {
        const char* what;
        int type;
        Words words;
    };
    const Case cases[] = {
        {"bytes", 83, kBounds + Words{1, 0, 0, 4, 0, 2, 76, 0, 0, 0, 0, 0, 0, 'H' | 'i' << 8}},
        {"small", 108, {4, 0, 2, 0x100, 1, 0, 0, 'H' | 'i' << 16}},
        {"small bytes", 108, {4, 0, 2, 0x300, 1, 0, 0, 'H' | 'i' << 8}},
        {"small with a box", 108, {4, 0, 2, 0, 1, 0, 0, 0, 0, 9, 9, 'H' | 'i' << 16}},
        {"many", 97, kBounds + Words{1, 0, 0, 1, 4, 0, 2, 80, 0, 0, 0, 0, 0, 0, 'H' | 'i' << 16}},
        {"shapes", 84, kBounds + Words{1, 0, 0, 4, 0, 2, 76, 0x10, 0, 0, 0, 0, 0, ('H' - 29) | ('i' - 29) << 16}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Drawing(Play(start().Record(c.type, c.words).Done(), 32)), expected) << c.what;
    // Advances in pairs also move up: the second letter by ten.
    const auto risen = Drawing(Play(
        start()
            .Record(84, kBounds + Words{1, 0, 0, 4, 10, 2, 76, 0x2000, 0, 0, 0, 0, 80, 'H' | 'H' << 16, 10, 10, 10, 0})
            .Done(),
        32));
    const auto row = risen.substr(33 * 5, 32); // above the first letter
    EXPECT_EQ(row.substr(0, 14).find('k'), std::string::npos);
    EXPECT_NE(row.substr(14).find('k'), std::string::npos);
}

// Two letters from (12, 12) on with a font of that angle and these advances.
std::string TwoLetters(EmfBuilder emf, int up, int angle, int firstAdvance, int secondAdvance) {
    emf.Record(18, {1}).Record(82, Words{1, -14, 0, angle, 0, 400, 0, 0} + Words(60)).Record(37, {1});
    emf.Record(84, kBounds + Words{1, 0, 0, 12, 12 * up, 2, 76, 0, 0, 0, 0, 0, 80, 'M' | 'i' << 16, firstAdvance,
                                   secondAdvance});
    return Drawing(Play(emf.Done(), 32));
}

TEST(MetafileText, MirroredMappingsTurnFontsTheOtherWay) {
    auto upwards = EmfBuilder(32, 32);
    upwards.Record(17, {8}).Record(9, {32, -32}).Record(11, {32, 32});
    for (const auto& drawing : {TwoLetters(upwards, -1, 2700, 11, 4), TwoLetters(EmfBuilder(32, 32), 1, 900, 11, 4)}) {
        EXPECT_NE(drawing.find('k'), std::string::npos);
        EXPECT_LT(drawing.rfind('k'), std::size_t{33 * 13}) << drawing;
    }
}

TEST(MetafileText, LettersKeepToTheRoomThatTheyHave) {
    // Plenty of room for both, little for the first, which would reach over the second.
    const auto drawing = TwoLetters(EmfBuilder(32, 32), 1, 0, 6, 30);
    for (std::size_t row = 0; row < 32; ++row)
        EXPECT_EQ(drawing.substr(33 * row + 20, 12).find('k'), std::string::npos);
    EXPECT_NE(drawing.find('k'), std::string::npos);
}

TEST(MetafileText, CharacterSets) {
    using metafile::Font;
    const auto letters = [](int charSet, bool greek, std::initializer_list<std::uint8_t> bytes) {
        Font font;
        font.charSet = charSet;
        font.greek = greek;
        return metafile::LettersOfBytes(Bytes(bytes), font);
    };
    EXPECT_EQ(letters(0, false, {'a', 0xE9, 0x80, 0xA0}), U"aé€\u00A0");
    EXPECT_EQ(letters(204, false, {0xDF, 0xB8, 0xA8}), U"ЯёЁ");
    EXPECT_EQ(letters(238, false, {0xF8, 0x8A}), U"řŠ");
    EXPECT_EQ(letters(161, false, {0xC1, 0xF9}), U"Αω");
    EXPECT_EQ(letters(162, false, {0xDD}), U"İ");
    EXPECT_EQ(letters(186, false, {0xE0}), U"ą");
    EXPECT_EQ(letters(2, true, {'a', 'S', 0xE5, 0xA5}), U"αΣ∑∞");
    EXPECT_EQ(letters(2, false, {'l'}), U"•");
    EXPECT_EQ(letters(128, false, {0x83, 0x41, 'x', 0x83}), U"\u3013\u200Bx\u3013") << "two bytes keep two places";
    const std::uint16_t units[] = {0x0416, 0xD83D, 0xDE00, 0xF041};
    EXPECT_EQ(metafile::LettersOfUnits(units, {}), U"Ж\U0001F600\u200BA");
}

TEST(MetafileText, LettersArePutTogether) {
    using metafile::FaceAdvance;
    using metafile::FaceStrokes;
    // The box has one stroke of five points.
    for (const char32_t letter : U"ÀĄčŐžΑΩλςБЯцєїўŁ≤√→€•"s) {
        const auto strokes = FaceStrokes(letter);
        EXPECT_FALSE(strokes.size() == 1 && strokes[0].size() == 5 && FaceAdvance(letter) == 8)
            << static_cast<unsigned>(letter);
    }
    EXPECT_EQ(FaceStrokes(0xE123).size(), 1u);
    EXPECT_EQ(FaceStrokes(U'č').size(), FaceStrokes(U'c').size() + 1);
    EXPECT_DOUBLE_EQ(FaceAdvance(U'в'), FaceAdvance(U'B') * 0.7) << "a small capital";
    EXPECT_EQ(FaceAdvance(0x4E2D), 14) << "a whole em";
    EXPECT_EQ(FaceAdvance(0x200B), 0);
}

TEST(MetafileText, LargeLettersAreRoundWhereTheyBend) {
    using metafile::RoundedStroke;
    const auto same = [](metafile::PointF a, metafile::PointF b) { return a.x == b.x && a.y == b.y; };
    EXPECT_EQ(RoundedStroke({{0, 0}, {0, 9}, {9, 9}}).size(), 3u) << "a right angle stays";
    const auto bend = RoundedStroke({{0, 0}, {0, 6}, {3, 9}});
    EXPECT_EQ(bend.size(), 6u);
    EXPECT_TRUE(same(bend.front(), {0, 0}) && same(bend.back(), {3, 9}));
    for (const auto& p : bend) EXPECT_FALSE(same(p, {0, 6}));
    const auto ring = RoundedStroke({{0, 3}, {3, 0}, {6, 0}, {9, 3}, {9, 6}, {6, 9}, {3, 9}, {0, 6}, {0, 3}});
    EXPECT_EQ(ring.size(), 33u) << "also where it closes";
    EXPECT_TRUE(same(ring.front(), ring.back()));
    EXPECT_TRUE(RoundedStroke({}).empty());
}

// ---- damage ----

DibBlock PlaySmall(ByteSpan file, const PictureRequest&, PictureFacts&) {
    return Play(file, 16);
}

TEST(MetafileRecords, SurviveDamage) {
    ExpectSurvivesDamage(PlaySmall, WithEmbedded(100, 2));
    auto emf = EmfBuilder(32, 32).Fill(0xFF);
    emf.Record(49, {2, 0x300 | 2 << 16, 0xFF, 0xFF00}).Record(48, {2}).Record(51, {2, 9}).Record(50, {2, 1, 1, 0xFF});
    emf.Record(72, kBounds + Words{48, 1, 1, 1, 32, 1, 1, 16, 0, 0, 9, 9, 2, 2, 20, 20}).Record(53, {9, 9, 0, 0});
    emf.Record(79, kBounds + Words{2, 0, 9, 4, 0, 9, 0, 0, 2, 1} + Words(6) +
                       Words{0, 0, 140, 40, 180, 8, 1, 1, 0, 140} + Words{40, 180, 8} + Bitmap(2, 1, {1, 2}));
    emf.Record(118, kBounds + Words{3, 1, 2, 0, 0, 0xFF00, 0, 30, 0, 9, 0, 0, 30, 0, 0xFF00, 0, 1, 2});
    emf.Record(95, {3, 0, 0, 0, 0, 0x10000, 4, 0, 0, 0, 0}).Record(37, {3}).Record(59).Record(54, {9, 9}).Record(60);
    emf.Record(66).Record(62).Record(108, {4, 0, 2, 0, 1, 0, 0, 0, 0, 9, 9, 'H' | 'i' << 16});
    emf.Record(97, kBounds + Words{1, 0, 0, 1, 4, 0, 2, 80, 0x2000, 0, 0, 0, 0, 84, 'H' | 'i' << 16, 4, 4, 4, 4});
    ExpectSurvivesDamage(PlaySmall, emf.Done());
}

TEST(MetafileRecords, WorkAndMemoryHaveAnEnd) {
    // A region of two thousand million parts of which none is there: what is left in the record is no whole header.
    auto region = EmfBuilder(16, 16).Record(74, kBounds + Words{28, 32, 1, 0x7FFFFFFF, 0, 0, 0, 0});
    EXPECT_TRUE(Play(region.Done(), 16));
    // A region of ten thousand parts outside of the picture, filled over and over.
    auto reused = Placeable(16, 16, 96).Fill(0, 0, 0, 255);
    Words parts = {0, 6, 0, 0, 0, 10000, 2, 0, 0, 9, 9};
    for (int i = 0; i < 10000; ++i) parts.insert(parts.end(), {2, 20000, 20005, 20000, 20005, 2});
    reused.Record(0x06FF, parts);
    for (int i = 0; i < 30000; ++i) reused.Record(0x0228, {2, 0});
    EXPECT_TRUE(Play(reused.Done(), 16));
    // Floods, frames, texts and pictures over the whole picture, more than anybody would draw.
    auto bombs = EmfBuilder(16, 16).Fill(0xFF);
    bombs.Record(49, {2, 0x300 | 1 << 16, 0xFF});
    for (int i = 0; i < 20000; ++i) {
        bombs.Record(53, {8, 8, 0, 0}).Record(72, kBounds + Words{48, 1, 1, 1, 32, 1, 1, 16, 0, 0, 9, 9, 0, 0, 99, 99});
        bombs.Record(108, {0, 0, 1 << 30, 0x100, 1, 0, 0, 'H' | 'i' << 16}).Record(51, {2, 1 << 30});
        // Runs that stand for half a million pixels, as a pattern.
        bombs.Record(94, Words{3 + i, 0, 32, 40, 72, 1024} + Words{40, 1024, 512, 1 | 8 << 16, 1, 0, 0, 0, 1, 0} +
                             Words(i < 20 ? 256 : 1));
    }
    EXPECT_TRUE(Play(bombs.Done(), 256));
}

} // namespace
} // namespace pelorin
