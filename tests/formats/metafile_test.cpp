#include "formats/metafile/dib_source.h"
#include "formats/metafile/raster.h"
#include "pixel/color.h"
#include "support/dib_builder.h"
#include "support/hostile.h"
#include "support/metafile_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using namespace test;

TEST(Metafile, IsFittedToTheBox) {
    EXPECT_EQ(SizeOf(Play(Placeable(200, 100, 100).Done())), (Size{512, 256}));
    EXPECT_EQ(SizeOf(Play(Placeable(100, 200, 100).Done())), (Size{256, 512}));
    EXPECT_EQ(SizeOf(Play(Placeable(300, 100, 100).Done(), 64)), (Size{64, 21})) << "divisions truncate";
    EXPECT_EQ(SizeOf(Play(Placeable(100, 50, 100).Done(), 0, true)), (Size{96, 48}))
        << "natural size at 96 to the inch";
    EXPECT_EQ(SizeOf(Play(Placeable(1000, 500, 100).Done(), 64, true)), (Size{64, 32}));
    WmfBuilder plain;
    plain.Header();
    EXPECT_EQ(SizeOf(Play(plain.Record(0x020C, {100, 400}).Done(), 80)), (Size{80, 20})) << "the window's proportions";
}

TEST(Metafile, IsOpaqueExactlyWhereBothGroundsAgree) {
    auto file = Placeable(16, 16, 96);
    file.Fill(0, 255, 0, 255).Record(0x041B, {9, 9, 0, 0});  // magenta itself, one pixel less than the corners say
    file.Record(0x0104, {7}).Record(0x041B, {16, 16, 8, 8}); // exclusive or shows the ground
    const auto block = Play(file.Done(), 16);
    ASSERT_EQ(DIBBitCount(block), 32);
    EXPECT_EQ(At(block, 0, 0), kMagenta);
    EXPECT_EQ(At(block, 7, 7), kMagenta);
    EXPECT_EQ(At(block, 8, 3), kClear);
    EXPECT_EQ(At(block, 12, 12), kClear);
}

TEST(Metafile, FillRulesOfPolygons) {
    // A square in a square that turns the same way: a hole by one rule, none by the other.
    const Words two = {2, 4, 4, 0, 0, 16, 0, 16, 16, 0, 16, 4, 4, 12, 4, 12, 12, 4, 12};
    for (const int rule : {1, 2}) {
        auto file = Placeable(16, 16, 96);
        file.Fill(0, 0, 0, 255).Record(0x0106, {rule}).Record(0x0538, two);
        const auto block = Play(file.Done(), 16);
        EXPECT_EQ(At(block, 0, 0), kRed);
        EXPECT_EQ(At(block, 15, 15), kRed);
        EXPECT_EQ(At(block, 3, 8), kRed);
        EXPECT_EQ(At(block, 4, 4), rule == 1 ? kClear : kRed);
        EXPECT_EQ(At(block, 12, 12), kRed) << "lower and right edges lie outside";
    }
}

TEST(Metafile, ObjectsTakeTheLowestFreePlaceAndStatesAreRestored) {
    auto file = Placeable(16, 16, 96);
    file.Fill(0, 0, 0, 255).Record(0x001E);                                      // 0 red, 1 no pen, saved
    file.Record(0x01F0, {0}).Record(0x02FC, {0, 0, 255, 0}).Record(0x012D, {0}); // blue takes place 0
    file.Record(0x0416, {8, 16, 0, 0}).Record(0x041B, {17, 9, 0, 0});            // the upper half only
    file.Record(0x0127, {-1}).Record(0x041B, {17, 17, 0, 8});
    const auto block = Play(file.Done(), 16);
    EXPECT_EQ(At(block, 3, 3), kBlue);
    EXPECT_EQ(At(block, 3, 12), kClear);
    EXPECT_EQ(At(block, 12, 12), kRed);
}

TEST(Metafile, LinesTextAndRegions) {
    auto file = Placeable(64, 32, 96);
    file.Record(0x0214, {0, 0}).Record(0x0213, {0, 10}); // the stock pen is black
    file.Record(0x0102, {1}).Record(0x02FB, {-20, 0, 0, 0, 400, 0, 0, 0, 0});
    file.Record(0x012D, {0}).Record(0x0521, {1, 'H', 8, 4});
    const auto block = Play(file.Done(), 64);
    EXPECT_EQ(At(block, 0, 0), kBlack);
    EXPECT_EQ(At(block, 9, 0), kBlack);
    EXPECT_EQ(At(block, 10, 0), kClear) << "the last pixel of a line is left out";
    // The H has two stems and a bar, and the ground shows between them.
    int black = 0, highest = 99, lowest = 0;
    for (int y = 2; y < 32; ++y) {
        for (int x = 0; x < 64; ++x) {
            if (At(block, x, y) != kBlack) continue;
            ++black;
            highest = std::min(highest, y);
            lowest = std::max(lowest, y);
            EXPECT_TRUE(x >= 4 && x < 20) << x;
        }
    }
    EXPECT_GT(black, 30);
    EXPECT_GE(highest, 8 + 2);
    EXPECT_LE(lowest - highest, 16);
}

// Where the black pixels of a picture lie.
Rect BlackBox(const DibBlock& block) {
    Rect box{999, 999, 0, 0};
    for (int y = 0; y < DIBHeight(block); ++y) {
        for (int x = 0; x < DIBWidth(block); ++x) {
            if (At(block, x, y) != kBlack) continue;
            box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                   std::max(box.bottom, y + 1)};
        }
    }
    return box;
}

TEST(Metafile, TextStandsWhereItsAlignmentSays) {
    struct Case {
        int align;
        int left, right, top, bottom; // limits of the black box around (32, 32)
    };
    const Case cases[] = {
        {0, 32, 64, 32, 58},  // left, top
        {24, 32, 64, 12, 33}, // left, base line
        {8, 32, 64, 0, 32},   // left, bottom
        {2 | 24, 0, 33, 12, 33}, {6 | 24, 18, 46, 12, 33},
    };
    for (const auto& c : cases) {
        auto file = Placeable(64, 64, 96);
        file.Record(0x0102, {1}).Record(0x012E, {c.align}).Record(0x02FB, {-20, 0, 0, 0, 400, 0, 0, 0, 0});
        file.Record(0x012D, {0}).Record(0x0521, {2, 'H' | 'I' << 8, 32, 32});
        const auto box = BlackBox(Play(file.Done(), 64));
        EXPECT_FALSE(box.Empty()) << c.align;
        EXPECT_GE(box.left, c.left) << c.align;
        EXPECT_LE(box.right, c.right) << c.align;
        EXPECT_GE(box.top, c.top) << c.align;
        EXPECT_LE(box.bottom, c.bottom) << c.align;
    }
    // A line that is drawn on from the place where the first ended, with its ground behind it.
    auto file = Placeable(64, 64, 96);
    file.Record(0x012E, {25})
        .Record(0x0214, {32, 0})
        .Record(0x0209, {0xFF, 0})
        .Record(0x02FB, {-20, 0, 0, 0, 400, 0, 0, 0, 0});
    file.Record(0x012D, {0})
        .Record(0x0A32, {0, 0, 1, 0, 'H', 40})
        .Record(0x0209, {0, 0})
        .Record(0x0521, {1, 'H', 0, 0});
    const auto block = Play(file.Done(), 64);
    EXPECT_GE(BlackBox(block).left, 40);
    EXPECT_EQ(At(block, 20, 20), 0xFFFFFFFFu);
}

TEST(Metafile, BitmapsAndRegions) {
    // A packed bitmap of two by one, red and blue, behind the words that stretch it over the left half.
    const auto with = [](Words words) {
        const Words bitmap = {40, 0, 2, 0, 1, 0, 1, 24, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x0000, 0xFFFF, 0, 0};
        words.insert(words.end(), bitmap.begin(), bitmap.end());
        return words;
    };
    auto file = Placeable(16, 16, 96);
    file.Record(0x0F43, with({0x20, 0xCC, 0, 1, 2, 0, 0, 8, 8, 0, 0})); // upper left
    file.Record(0x0B41, with({0x20, 0xCC, 1, 2, 0, 0, 8, 8, 8, 0}));    // lower left
    file.Fill(0, 0, 0, 0).Record(0x061D, {0x21, 0xF0, 4, 4, 0, 12});    // the pattern at the upper right
    // A region of two scans; what is painted through it stays in it.
    file.Record(0x06FF, {0, 6, 0, 0, 0, 2, 4, 8, 8, 16, 16, 2, 8, 10, 8, 12, 2, 2, 10, 12, 12, 16, 2});
    file.Record(0x012C, {2}).Record(0x02FC, {0, 0, 255, 0}).Record(0x012D, {3}).Record(0x041B, {17, 17, 0, 0});
    const auto block = Play(file.Done(), 16);
    EXPECT_EQ(At(block, 1, 1), kRed);
    EXPECT_EQ(At(block, 6, 6), kBlue);
    EXPECT_EQ(At(block, 1, 9), kRed);
    EXPECT_EQ(At(block, 6, 15), kBlue);
    EXPECT_EQ(At(block, 12, 0), kBlack);
    EXPECT_EQ(At(block, 11, 0), kClear);
    EXPECT_EQ(At(block, 9, 9), kBlue);
    EXPECT_EQ(At(block, 13, 9), kClear);
    EXPECT_EQ(At(block, 13, 11), kBlue);
    EXPECT_EQ(At(block, 9, 11), kClear);
}

// ---- enhanced metafiles ----

TEST(Emf, FrameMappingModesAndTransforms) {
    struct Case {
        const char* what;
        EmfBuilder file;
    };
    // Each paints the square from (4, 4) to before (12, 12) of a picture of 16 x 16 that begins at (100, 50).
    const Words world = {FloatBits(0), FloatBits(2), FloatBits(-2), FloatBits(0), FloatBits(112), FloatBits(54)};
    Case cases[] = {
        {"pixels", EmfBuilder(16, 16, 100, 50).Fill(0xFF).Record(43, {104, 54, 112, 62})},
        {"tenths of millimetres, upwards",
         EmfBuilder(16, 16, 100, 50).Fill(0xFF).Record(17, {2}).Record(43, {104, -54, 112, -62})},
        {"a window on a viewport", EmfBuilder(16, 16, 100, 50)
                                       .Fill(0xFF)
                                       .Record(17, {8})
                                       .Record(9, {100, 100})
                                       .Record(10, {-10, -10})
                                       .Record(11, {400, 400})
                                       .Record(12, {64, 14})
                                       .Record(86, {0, 0, 0, 0, 4, 0, 2 << 16, 2, 2 | 2 << 16})},
        {"a quarter turn",
         EmfBuilder(16, 16, 100, 50).Fill(0xFF).Record(35, world).Record(3, {0, 0, 0, 0, 4, 0, 0, 4, 0, 4, 4, 0, 4})},
        {"a path", EmfBuilder(16, 16, 100, 50)
                       .Fill(0xFF)
                       .Record(59)
                       .Record(27, {104, 54})
                       .Record(54, {112, 54})
                       .Record(54, {112, 62})
                       .Record(54, {104, 62})
                       .Record(61)
                       .Record(60)
                       .Record(62)},
    };
    // The window: (0, 0) to (2, 2) at four pixels a unit, from 64 + 40.
    cases[2].file = EmfBuilder(16, 16, 100, 50)
                        .Fill(0xFF)
                        .Record(17, {8})
                        .Record(9, {100, 100})
                        .Record(10, {-10, -10})
                        .Record(11, {400, 400})
                        .Record(12, {64, 14})
                        .Record(3, {0, 0, 0, 0, 4, 0, 0, 2, 0, 2, 2, 0, 2});
    for (auto& c : cases) {
        const auto block = Play(c.file.Done(), 16);
        ASSERT_EQ(SizeOf(block), (Size{16, 16})) << c.what;
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 16; ++x) {
                // A turned square's right and lower edges may become the left and upper ones.
                if (x == 4 || y == 4 || x == 12 || y == 12) continue;
                const bool inside = x > 4 && x < 12 && y > 4 && y < 12;
                EXPECT_EQ(At(block, x, y), inside ? kRed : kClear) << c.what << " " << x << ", " << y;
            }
        }
    }
}

TEST(Emf, EllipsesArcsAndClipsByPath) {
    auto file = EmfBuilder(32, 32).Fill(0xFF);
    file.Record(42, {0, 0, 32, 32});
    const auto disc = Play(file.Done(), 32);
    int inside = 0;
    for (int i = 0; i < 32 * 32; ++i) inside += At(disc, i % 32, i / 32) == kRed;
    EXPECT_NEAR(inside, 804, 25) << "pi times 16 times 16";
    EXPECT_EQ(At(disc, 16, 16), kRed);
    EXPECT_EQ(At(disc, 1, 1), kClear);

    auto pie = EmfBuilder(32, 32).Fill(0xFF); // a quarter against the clock, from the right to the top
    pie.Record(47, {0, 0, 32, 32, 32, 16, 16, 0});
    const auto quarter = Play(pie.Done(), 32);
    EXPECT_EQ(At(quarter, 22, 8), kRed);
    for (const auto p : {Point{8, 8}, Point{8, 22}, Point{22, 22}}) EXPECT_EQ(At(quarter, p.x, p.y), kClear);

    auto clip = EmfBuilder(32, 32).Fill(0xFF);
    clip.Record(59)
        .Record(3, {0, 0, 0, 0, 3, 0, 0, 31, 0, 0, 31})
        .Record(60)
        .Record(67, {5})
        .Record(43, {0, 0, 33, 33});
    const auto half = Play(clip.Done(), 32);
    EXPECT_EQ(At(half, 4, 4), kRed);
    EXPECT_EQ(At(half, 25, 25), kClear);
}

TEST(Emf, BitmapsStandUprightWhicheverWayTheyAreStored) {
    for (const int height : {2, -2}) {
        auto file = EmfBuilder(4, 4);
        // Two by two at 32 bits: red, blue over black, magenta; stretched to four by four.
        Words words = {0, 0, 0, 0, 0, 0, 0, 0, 2, 2, 80, 40, 120, 16, 0, 0xCC0020, 4, 4, 40, 2, height, 1 | 32 << 16,
                       0, 0, 0, 0, 0, 0};
        const Words top = {0xFF0000, 0x0000FF}, bottom = {0, 0xFF00FF};
        for (const auto& row : height > 0 ? std::vector{bottom, top} : std::vector{top, bottom})
            words.insert(words.end(), row.begin(), row.end());
        const auto block = Play(file.Record(81, words).Done(), 4);
        EXPECT_EQ(At(block, 0, 0), kRed) << height;
        EXPECT_EQ(At(block, 1, 1), kRed) << height;
        EXPECT_EQ(At(block, 2, 1), kBlue) << height;
        EXPECT_EQ(At(block, 1, 2), kBlack) << height;
        EXPECT_EQ(At(block, 3, 3), kMagenta) << height;
    }
}

TEST(Emf, BlendsGradientsAndClipRegions) {
    // A white pixel at alpha 0x80 over black, by its own alpha and then by half of that.
    for (const int alpha : {255, 128}) {
        auto file = EmfBuilder(4, 4).Fill(0).Record(43, {0, 0, 5, 5});
        Words words = {0, 0, 0,   0,  0,   0, 4, 4, alpha << 16 | 1 << 24, 0, 0, 0, 0, 0, 0, 0, 0,
                       0, 0, 108, 40, 148, 4, 1, 1};
        words.insert(words.end(), {40, 1, 1, 1 | 32 << 16, 0, 0, 0, 0, 0, 0, static_cast<int>(0x80808080)});
        const auto block = Play(file.Record(114, words).Done(), 4);
        EXPECT_EQ(At(block, 2, 2), alpha == 255 ? 0xFF808080u : 0xFF404040u);
    }
    auto gradient = EmfBuilder(64, 4); // from red at the left to blue at the right
    gradient.Record(118, {0, 0, 0, 0, 2, 1, 0, 0, 0, 0xFF00, 0, 64, 4, 0, 0xFF00, 0, 1});
    const auto shaded = Play(gradient.Done(), 64);
    EXPECT_GT(RedOf(At(shaded, 3, 1)), 230);
    EXPECT_NEAR(BlueOf(At(shaded, 32, 1)), 128, 4);
    EXPECT_GT(BlueOf(At(shaded, 60, 1)), 230);

    auto clip = EmfBuilder(16, 16).Fill(0xFF);
    clip.Record(75, {48, 5, 32, 1, 1, 16, 0, 0, 16, 16, 4, 4, 12, 12}); // only the middle
    clip.Record(29, {6, 6, 10, 10}).Record(26, {2, 0}).Record(43, {0, 0, 17, 17});
    const auto ring = Play(clip.Done(), 16);
    EXPECT_EQ(At(ring, 6, 5), kRed);
    EXPECT_EQ(At(ring, 5, 5), kClear);
    EXPECT_EQ(At(ring, 13, 11), kRed);
    EXPECT_EQ(At(ring, 10, 8), kClear) << "the hole moved with the rest";
}

// ---- the rooms by themselves ----

TEST(MetafileRaster, OperationsOfPensAndSources) {
    using namespace metafile;
    EXPECT_EQ(RopOfPen(13), kCopyPattern);
    EXPECT_EQ(RopOfPen(7), 0x5A);
    EXPECT_EQ(RopOfPen(6), 0x55);
    EXPECT_EQ(RopOfPen(1), 0x00);
    EXPECT_EQ(RopOfPen(16), 0xFF);
    EXPECT_EQ(RopOfPen(99), kCopyPattern);
    EXPECT_EQ(Combine(0x88, 0, 0xFF00F0, 0x0FF0FF), 0x0F00F0u) << "source and destination";
    EXPECT_EQ(Combine(0x66, 0, 0xFF00F0, 0x0FF0FF), 0xF0F00Fu);
    EXPECT_EQ(Combine(0x5A, 0x123456, 0, 0xFFFFFF), 0xEDCBA9u);
    EXPECT_TRUE(NeedsSource(0x88));
    EXPECT_FALSE(NeedsSource(0x5A));
}

TEST(MetafileRaster, DashesRunOnOverCornersAndFarLinesAreCut) {
    using namespace metafile;
    Canvas canvas(12, 12, 0xFFFFFF);
    const Ink ink{Ink::Kind::Solid, 1};
    ThinStyle style;
    style.dashes = {3, 3};
    int phase = 0;
    DrawThinLine(canvas, {0, 5}, {4, 5}, ink, kCopyPattern, style, phase);
    DrawThinLine(canvas, {4, 5}, {12, 5}, ink, kCopyPattern, style, phase);
    std::string line;
    for (int x = 0; x < 12; ++x) line += canvas.At(x, 5) == 1 ? '#' : '.';
    EXPECT_EQ(line, "###...###...");
    phase = 0;
    DrawThinLine(canvas, {-4000000, -4000000}, {4000000, 4000000}, ink, kCopyPattern, {}, phase);
    for (int i = 0; i < 12; ++i) EXPECT_EQ(canvas.At(i, i), 1u);
}

TEST(MetafileRaster, WideLinesHaveTheirCapsAndJoins) {
    using namespace metafile;
    struct Case {
        Cap cap;
        Join join;
        bool tip, end;
    };
    // A corner at (20, 4): the miter's tip lies at its upper right, a square cap reaches below the end at (20, 20).
    for (const auto& c : {Case{Cap::Flat, Join::Miter, true, false}, Case{Cap::Square, Join::Bevel, false, true},
                          Case{Cap::Round, Join::Round, false, true}}) {
        Canvas canvas(32, 32, 0);
        const auto outline = WidenFigure({{{4, 6}, {20, 6}, {20, 20}}, false}, {8, c.cap, c.join, 10, {}});
        ScanFigures(canvas, outline, true, [&](int y, int left, int right) {
            canvas.Span(y, left, right, {Ink::Kind::Solid, 1}, kCopyPattern);
        });
        EXPECT_EQ(canvas.At(10, 6), 1u);
        EXPECT_EQ(canvas.At(20, 15), 1u);
        EXPECT_EQ(canvas.At(23, 2), c.tip ? 1u : 0u);
        EXPECT_EQ(canvas.At(20, 22), c.end ? 1u : 0u);
    }
}

TEST(MetafileBitmaps, FormsThatBlocksDoNotHave) {
    using metafile::DecodeDib;
    const auto make = [](int width, int height, int bits, std::uint32_t compression,
                         std::initializer_list<std::uint32_t> table, std::initializer_list<int> rows) {
        ByteWriter out;
        out.U32LE(40);
        out.I32LE(width);
        out.I32LE(height);
        out.U16LE(1);
        out.U16LE(static_cast<std::uint32_t>(bits));
        out.U32LE(compression);
        out.Zeros(12);
        out.U32LE(bits <= 8 ? static_cast<std::uint32_t>(table.size()) : 0);
        out.U32LE(0);
        for (const auto value : table) out.U32LE(value);
        for (const int value : rows) out.U8(static_cast<std::uint32_t>(value));
        return DecodeDib(out.View(), {});
    };
    EXPECT_EQ(make(1, 1, 16, 0, {}, {0xFF, 0x7F, 0, 0}).At(0, 0), 0xFFFFFFFFu) << "five bits each, wholly spread";
    EXPECT_EQ(make(1, 1, 16, 3, {0xF800, 0x07E0, 0x001F}, {0xE0, 0x07, 0, 0}).At(0, 0), 0xFF00FF00u);
    EXPECT_EQ(make(1, 1, 32, 3, {0xFF, 0xFF00, 0xFF0000}, {1, 2, 3, 9}).At(0, 0), 0x09010203u);
    const auto runs = make(4, 2, 4, 2, {0x111111, 0x222222}, {3, 0x01, 0, 0, 0, 3, 0x10, 0x10, 0, 1});
    ASSERT_TRUE(runs);
    EXPECT_EQ(runs.At(1, 1), 0xFF222222u);
    EXPECT_EQ(runs.At(3, 1), 0xFF111111u);
    EXPECT_EQ(runs.At(0, 0), 0xFF222222u);
    EXPECT_FALSE(make(1, 2, 24, 0, {}, {1, 2, 3, 0, 1, 2})) << "the second row breaks off";
    EXPECT_FALSE(make(60000, 60000, 8, 1, {0}, {0, 1}));
}

// ---- damage ----

DibBlock PlaySmall(ByteSpan file, const PictureRequest&, PictureFacts&) {
    return Play(file, 16);
}

TEST(Metafile, SurvivesDamage) {
    auto wmf = Placeable(64, 32, 96);
    wmf.Record(0x0103, {8})
        .Record(0x020C, {32, 64})
        .Fill(0, 1, 2, 3)
        .Record(0x0538, {2, 3, 3, 0, 0, 9, 0, 9, 9, 1, 1, 2, 2, 3, 1});
    wmf.Record(0x02FA, {2, 6, 0, 0, 0}).Record(0x012D, {2}).Record(0x0325, {3, 0, 0, 30, 20, 60, 5});
    wmf.Record(0x0817, {9, 9, 1, 1, 30, 60, 2, 2}).Record(0x061C, {4, 4, 30, 60, 2, 2}).Record(0x0416, {20, 20, 0, 0});
    wmf.Record(0x0A32, {4, 4, 2, 2, 0, 0, 20, 20, 'A' | 'g' << 8, 7, 7});
    wmf.Record(0x0F43, {0x20, 0xCC, 0, 1, 1, 0, 0, 8, 8, 1, 1, 40, 0, 1, 0, 1, 0,
                        1,    24,   0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  0, 0, 0, 7, 8});
    ExpectSurvivesDamage(PlaySmall, wmf.Done());

    auto emf = EmfBuilder(32, 32).Fill(0xFF);
    emf.Record(59)
        .Record(88, {0, 0, 0, 0, 3, 5, 9 << 16, 9})
        .Record(41, {8, 8, 5, 0, FloatBits(90)})
        .Record(61)
        .Record(60)
        .Record(63);
    emf.Record(95, {2, 0, 0, 0, 0, 0x10107, 5, 0, 0, 0, 2, 3, 2})
        .Record(37, {2})
        .Record(90, {0, 0, 0, 0, 2, 4, 2, 2, 0, 9, 9 << 16, 30});
    emf.Record(75, {48, 1, 32, 1, 1, 16, 0, 0, 0, 0, 0, 0, 20, 20}).Record(30, {0, 0, 25, 25});
    emf.Record(84, {0, 0, 0, 0, 1, 0, 0, 4, 4, 2, 76, 0, 0, 0, 0, 0, 0, 'a' | 'B' << 16});
    ExpectSurvivesDamage(PlaySmall, emf.Done());
}

TEST(Metafile, WorkHasAnEnd) {
    auto file = Placeable(16, 16, 96);
    file.Fill(0, 0, 0, 255).Record(0x02FA, {0, 9, 0, 0, 0}).Record(0x012D, {2});
    for (int i = 0; i < 20000; ++i) file.Record(0x0418, {16, 16, 0, 0});
    EXPECT_TRUE(Play(file.Done())) << "twenty thousand ellipses over the whole picture";
}

} // namespace
} // namespace pelorin
