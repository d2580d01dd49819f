#include "pixel/brush.h"
#include "pixel/ellipse.h"
#include "pixel/gradient.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <string>

namespace pelorin {
namespace {

using namespace test;

std::vector<std::uint32_t> Column(const Surface& surface) {
    std::vector<std::uint32_t> blues;
    for (int y = 0; y < surface.Height(); ++y) blues.push_back(surface.At(0, y) & 255);
    return blues;
}

TEST(Gradient, VerticalBands) {
    const auto colors = GradientColors::OfColors(0x00000A, 0x000064);
    const Rect bounds{3, 4, 5, 9}; // five rows
    using Blues = std::vector<std::uint32_t>;
    const auto bands = [&](Gradient gradient) {
        gradient.kind = GradientKind::Vertical;
        return Column(PaintGradient(bounds, gradient, colors));
    };
    EXPECT_EQ(bands({}), (Blues{10, 32, 55, 77, 100}));
    EXPECT_EQ(bands({.swapped = true}), (Blues{100, 77, 55, 32, 10}));
    EXPECT_EQ(bands({.reflected = true}), (Blues{10, 55, 100, 55, 10}));
    EXPECT_EQ(bands({.reflected = true, .swapped = true}), (Blues{100, 55, 10, 55, 100}));
    const auto single = PaintGradient({0, 0, 4, 1}, {.kind = GradientKind::Vertical, .swapped = true}, colors);
    EXPECT_EQ(single.At(3, 0), 10u) << "a single band is the first colour";
}

TEST(Gradient, EvenCountsReflectUnevenly) {
    const int expected[] = {0, 2, 4, 4, 2, 0}; // 6: 2n - 2 - 2i
    for (int i = 0; i < 6; ++i) EXPECT_EQ(BandPosition(i, 6, true), expected[i]);
    EXPECT_EQ(BandPosition(0, 1, true), 0);
}

TEST(Gradient, PalettePositionsRoundAndAscend) {
    std::vector<Rgb> palette(256);
    for (std::size_t i = 0; i < palette.size(); ++i) palette[i] = Rgb(i) << 8;
    const auto up = GradientColors::OfPalette(palette, 10, 15), down = GradientColors::OfPalette(palette, 15, 10);
    const int expected[] = {10, 11, 13, 14, 15}; // 5p / 4 with 2 added before the division
    for (int p = 0; p < 5; ++p) {
        EXPECT_EQ(up.IndexAt(p, 5, false), expected[p]);
        EXPECT_EQ(down.IndexAt(p, 5, false), expected[p]);
        EXPECT_EQ(up.IndexAt(p, 5, true), expected[4 - p]);
    }
    EXPECT_EQ(up.At(1, 5, false), 0x000B00u);
    EXPECT_EQ(down.At(0, 1, true), 0x000F00u);
    EXPECT_EQ(down.End(false), 0x000F00u);
    EXPECT_EQ(GradientColors::OfPalette(palette, -4, 900).At(1, 2, false), 0x00FF00u);
}

TEST(Gradient, OtherKinds) {
    const auto greys = GradientColors::OfOpacities(0, 255);
    const auto across = PaintGradient({0, 0, 3, 2}, {.kind = GradientKind::Horizontal}, greys);
    EXPECT_EQ(across.At(1, 1), 0x7F7F7Fu);
    const auto angle =
        PaintGradient({0, 0, 5, 5}, {.kind = GradientKind::Angle, .start = {1, 1}, .end = {3, 3}}, greys);
    EXPECT_EQ(angle.At(0, 0), 0u) << "before the start";
    EXPECT_EQ(angle.At(3, 1), 0x7F7F7Fu);
    EXPECT_EQ(angle.At(4, 4), 0xFFFFFFu);
    EXPECT_EQ(PaintGradient({0, 0, 2, 2}, {.kind = GradientKind::Angle}, greys).At(1, 1), 0u);
    const auto radial = PaintGradient({0, 0, 40, 20}, {.kind = GradientKind::Radial}, greys);
    EXPECT_EQ(radial.At(0, 19), 0u) << "corners are the first band";
    EXPECT_GT(radial.At(20, 10) & 255, 230u);
    for (int x = 1; x < 20; ++x) EXPECT_LE(radial.At(x - 1, 10) & 255, radial.At(x, 10) & 255);
    EXPECT_EQ(PaintGradient({0, 0, 1, 1}, {.kind = GradientKind::Radial}, greys).At(0, 0), 0u);
    EXPECT_FALSE(PaintGradient({5, 5, 5, 9}, {}, greys));
}

TEST(FillShapeWithGradient, OnlyInsideTheShape) {
    auto target = FlatSurface(4, 3, 0x77000000);
    Surface shape(4, 3);
    shape.Put(2, 1, 0xFFFFFF);
    shape.Put(0, 0, 0xFFFFFF);
    const auto colors = GradientColors::OfColors(0x111111, 0x222222);
    Surface pattern(2, 2);
    pattern.Put(0, 1, 0x123456);
    EXPECT_TRUE(FillShapeWithGradient(target, shape, {-1, 1, 9, 9}, {}, colors, &pattern));
    EXPECT_EQ(target.At(2, 1), 0x77123456u) << "the pattern lies from the picture's corner on";
    EXPECT_EQ(target.At(1, 1), 0x77000000u);
    EXPECT_EQ(target.At(0, 0), 0x77000000u) << "outside the bounds";
    EXPECT_TRUE(FillShapeWithGradient(target, shape, {0, 0, 4, 3}, {.swapped = true}, colors));
    EXPECT_EQ(target.At(0, 0), 0x77222222u);
    EXPECT_FALSE(FillShapeWithGradient(target, Surface(3, 4), {0, 0, 4, 3}, {}, colors));
}

TEST(Ellipse, IsSymmetricAndFillsItsBox) {
    for (const Rect& box : {Rect{0, 0, 1, 1}, Rect{-3, 2, 8, 9}, Rect{5, 5, 17, 10}}) {
        int widest = 0;
        for (int y = box.top; y < box.bottom; ++y) {
            const auto span = EllipseRow(box, y), mirror = EllipseRow(box, box.top + box.bottom - 1 - y);
            EXPECT_EQ(span.from - box.left, box.right - span.to);
            EXPECT_EQ(span.from, mirror.from);
            widest = std::max(widest, span.to - span.from);
        }
        EXPECT_EQ(widest, box.Width());
        EXPECT_TRUE(EllipseRow(box, box.bottom).Empty());
    }
}

std::string Picture(int shape) {
    Surface surface(9, 9);
    DrawBrushStamp(surface, 4, 4, shape, 1);
    std::string text;
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 9; ++x) text += surface.At(x, y) ? '#' : '.';
        text += '/';
    }
    return text;
}

TEST(Brush, ShapesAsTheyLook) {
    EXPECT_EQ(Picture(4), "........./........./........./....#..../...###.../....#..../........./........./........./");
    EXPECT_EQ(Picture(7), "...###.../.#######./.#######./#########/#########/#########/.#######./.#######./...###.../");
    EXPECT_EQ(Picture(8), "........./.##....../.###...../..###..../...###.../....###../.....###./......##./........./");
    EXPECT_EQ(Picture(9), "........./......##./.....###./....###../...###.../..###..../.###...../.##....../........./");
    EXPECT_EQ(Picture(11),
              "........./....#..../...###.../..#####../.#######./..#####../...###.../....#..../........./");
    EXPECT_TRUE(BrushSpans(12).empty());
}

TEST(Brush, ZoomScalesAndZeroIsBlack) {
    auto surface = FlatSurface(9, 9, 0x55555555);
    DrawBrushStamp(surface, 3, 3, 4, 3);
    EXPECT_EQ(surface.At(0, 3), 0xFFFFFFu);
    EXPECT_EQ(surface.At(5, 8), 0xFFFFFFu);
    EXPECT_EQ(surface.At(2, 2), 0x55555555u);
    DrawBrushStamp(surface, 0, 0, 1, 0);
    EXPECT_EQ(surface.At(1, 1), 0u);
    DrawBrushStamp(surface, INT32_MAX, INT32_MIN, 3, INT32_MAX);
}

} // namespace
} // namespace pelorin
