#include "pixel/hsl.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

TEST(Hsl, KnownColours) {
    struct Row {
        double r, g, b, h, s, l;
    };
    const Row rows[] = {
        {1, 0, 0, 1, 1, 0.5}, // green and blue tie: green is the minimum, so the hue is 6/6 and not 0
        {0, 1, 0, 2.0 / 6, 1, 0.5},
        {0, 0, 1, 4.0 / 6, 1, 0.5},
        {1, 1, 0, 1.0 / 6, 1, 0.5},
        {0, 1, 1, 3.0 / 6, 1, 0.5},
        {1, 0, 1, 5.0 / 6, 1, 0.5},
        {0.5, 0.25, 0.25, 1, 1.0 / 3, 0.375},
        {0.75, 0.5, 1, 4.5 / 6, 1, 0.75},
    };
    for (const auto& row : rows) {
        double h = 9, s = 9, l = 9;
        RgbToHsl(row.r, row.g, row.b, h, s, l);
        EXPECT_DOUBLE_EQ(h, row.h);
        EXPECT_DOUBLE_EQ(s, row.s);
        EXPECT_DOUBLE_EQ(l, row.l);
        double r = 9, g = 9, b = 9;
        HslToRgb(h, s, l, r, g, b);
        EXPECT_NEAR(r, row.r, 1e-12);
        EXPECT_NEAR(g, row.g, 1e-12);
        EXPECT_NEAR(b, row.b, 1e-12);
    }
}

TEST(Hsl, GreyLeavesTheHueAndBlackLeavesBoth) {
    double h = 0.3, s = 0.7, l = 0.1;
    RgbToHsl(0.5, 0.5, 0.5, h, s, l);
    EXPECT_EQ(h, 0.3);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(l, 0.5);
    s = 0.7;
    RgbToHsl(0, 0, 0, h, s, l);
    EXPECT_EQ(h, 0.3);
    EXPECT_EQ(s, 0.7);
    EXPECT_EQ(l, 0);
}

TEST(Hsl, AHueBeyondTheCircleWritesNothing) {
    double r = 9, g = 8, b = 7;
    HslToRgb(1.01, 1, 0.5, r, g, b);
    EXPECT_EQ(r, 9);
    HslToRgb(1e300, 1, 0.5, r, g, b);
    EXPECT_EQ(g, 8);
    HslToRgb(1.01, 1, 0, r, g, b);
    EXPECT_EQ(b, 0) << "black has no hue";
}

TEST(Hsl, ColoursFromWholeNumbers) {
    EXPECT_EQ(HslToColor(0, 100, 50), MakeColorRef(255, 0, 0));
    EXPECT_EQ(HslToColor(360, 100, 50), MakeColorRef(255, 0, 0));
    EXPECT_EQ(HslToColor(720, 100, 50), MakeColorRef(255, 0, 0));
    EXPECT_EQ(HslToColor(240, 100, 50), MakeColorRef(0, 0, 255));
    EXPECT_EQ(HslToColor(200, 0, 50), MakeColorRef(127, 127, 127)) << "truncated, not rounded";
    EXPECT_EQ(HslToColor(200, 100, 100), MakeColorRef(255, 255, 255));
}

} // namespace
} // namespace pelorin
