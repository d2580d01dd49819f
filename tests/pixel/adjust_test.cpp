#include "pixel/adjust.h"
#include "pixel/convolve.h"
#include "pixel/hsl.h"
#include "pixel/pixel_word.h"
#include "pixel/value_filter.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using namespace test;

Surface One(Argb pixel) {
    return FlatSurface(1, 1, pixel);
}

TEST(Adjust, GoldenPixels) {
    struct Row {
        const char* what;
        Surface result;
        Argb expected;
    };
    const Row rows[] = {
        {"brightness 0", Brightness(One(0x7F80FF01), 0), 0x7F80FF01},
        {"brightness -30", Brightness(One(0x7F80FF01), -30), 0x7F59B200}, // 128 x 70 / 100, 255 x 70 / 100
        {"brightness 40", Brightness(One(0x7F80FF01), 40), 0x7FE6FF01},   // 128 x 180 / 100
        {"contrast 0", Contrast(One(0x0580FF01), 0), 0x0580FF01},
        {"contrast -100", Contrast(One(0x0580FF01), -100), 0x05808080},
        {"contrast -50", Contrast(One(0x0500FF7F), -50), 0x0540BF80}, // -64, +63, truncated to 0
        {"contrast 10", Contrast(One(0x05649C80), 10), 0x055CA480},   // 128 - 28 x 1.3 = 91.6: 128 - 36
        {"hue 120 of red", HueShift(One(0x08FF0000), 120), 0x0800FF00},
        {"hue -120 of red", HueShift(One(0x08FF0000), -120), 0x080000FF},
        {"hue 90 of grey", HueShift(One(0x08646464), 90), 0x08646464},
        {"saturation -100", Saturation(One(0xFFFF0000), -100), 0xFF7F7F7F},
        {"saturation 100", Saturation(One(0xFF804040), 100), 0xFFC00000}, // l = 96 / 255
        {"saturation of grey", Saturation(One(0xFF646464), 100), 0xFF646464},
        {"colorize white", Colorize(One(0xFFFFFFFF), 120, 100), 0xFFFFFFFF},
        {"colorize black", Colorize(One(0x80000000), 120, 50), 0x80000000},
        {"colorize grey", Colorize(One(0x80666666), 360, 50),
         0x80993232}, // l 0.4: v a little above 0.6, so m is below 0.2
        {"opacity 100", Opacity(One(0x06010203), 100, false), 0xFF010203},
        {"opacity 100 of 5", Opacity(One(0x05010203), 100, false), 0x05010203},
        {"opacity -50", Opacity(One(0xFF010203), -50, false), 0x7F010203},
        {"opacity of an image", Opacity(One(0x33FF0203), -50, true), 0x7F7F7F7F},
        {"opacity of a faint image", Opacity(One(0x33050203), 100, true), 0x33050203},
        {"invert", Invert(One(0x33FF0203)), 0x3300FDFC},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.result.At(0, 0), row.expected) << row.what << std::hex << row.result.At(0, 0);
}

TEST(Adjust, HsvRoadsPixelByPixel) {
    // Each pixel by itself, without any memory of colours seen before.
    const auto source = RandomSurface(33, 70, 11);
    const auto model = [&](auto&& change, bool greys) {
        auto out = source;
        for (int y = 0; y < source.Height(); ++y) {
            for (int x = 0; x < source.Width(); ++x) {
                const auto p = source.At(x, y);
                if (!greys && RedOf(p) == GreenOf(p) && GreenOf(p) == BlueOf(p)) continue;
                double h = 0, s = 0, l = 0, r = 0, g = 0, b = 0;
                RgbToHsl(RedOf(p) / 255.0, GreenOf(p) / 255.0, BlueOf(p) / 255.0, h, s, l);
                change(h, s);
                HslToRgb(h, s, l, r, g, b);
                out.Put(x, y, MakePixel(int(b * 255), int(g * 255), int(r * 255), AlphaOf(p)));
            }
        }
        return out;
    };
    for (const int degrees : {-360, -180, -1, 0, 77, 360}) {
        EXPECT_EQ(HueShift(source, degrees), model(
                                                 [&](double& h, double&) {
                                                     if (h == 1) h = 0;
                                                     h += degrees / 360.0;
                                                     if (h >= 1) h -= 1;
                                                     if (h < 0) h += 1;
                                                 },
                                                 false))
            << degrees;
    }
    for (const int value : {-100, -33, 0, 33, 100}) {
        EXPECT_EQ(Saturation(source, value),
                  model([&](double&,
                            double& s) { s = value < 0 ? s * ((value + 100) / 100.0) : s + (1 - s) * (value / 100.0); },
                        false))
            << value;
    }
    EXPECT_EQ(Colorize(source, 200, 100), model([](double& h, double& s) { h = 200 / 360.0, s = 0.999; }, true));
}

TEST(Adjust, EveryAlphaAboveFiveBecomesOpaque) {
    for (Argb alpha = 0; alpha < 256; ++alpha) {
        EXPECT_EQ(Opacity(One(alpha << 24), 100, false).At(0, 0), alpha < 6 ? alpha << 24 : 0xFF000000u);
    }
}

TEST(ValueFilter, StrengthFollowsTheRatio) {
    struct Row {
        Size source, target;
        int strength;
    };
    constexpr Row rows[] = {{{480, 480}, {48, 48}, 100}, {{240, 240}, {48, 48}, 100}, {{239, 239}, {48, 48}, 75},
                            {{144, 144}, {48, 48}, 75},  {{143, 143}, {48, 48}, 50},  {{16, 16}, {48, 48}, 50},
                            {{143, 480}, {48, 48}, 100}, {{144, 100}, {48, 48}, 75}};
    for (const auto& row : rows) EXPECT_EQ(ScalingFilterStrength(row.source, row.target), row.strength);
}

TEST(ValueFilter, BlendsTheKernels) {
    const auto picture = RandomSurface(33, 7, 5);
    EXPECT_EQ(ApplyValueFilter(picture, 10, 100), picture);
    EXPECT_EQ(ApplyValueFilter(picture, 0, 100), ApplyKernel(picture, kSmooth, 0));
    EXPECT_EQ(ApplyValueFilter(picture, 13, 75), ApplyKernel(picture, kDetails, 100 - 75 + 75 * 70 / 100));
    auto color = picture, alpha = picture;
    EXPECT_TRUE(FilterAfterScaling(color, alpha, {99, 21}, 32, {true, 4})); // a third exactly
    EXPECT_EQ(color, ApplyValueFilter(picture, 4, 75));
    EXPECT_EQ(alpha, ApplyValueFilter(picture, 4, 37));
    EXPECT_FALSE(FilterAfterScaling(color, alpha, {33, 7}, 32, {true, 4}));
    EXPECT_FALSE(FilterAfterScaling(color, alpha, {99, 21}, 24, {true, 4}));
    EXPECT_FALSE(FilterAfterScaling(color, alpha, {99, 21}, 32, {true, kNoFilterValue}));
}

} // namespace
} // namespace pelorin
