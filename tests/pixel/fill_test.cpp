#include "pixel/convolve.h"
#include "pixel/fill.h"
#include "support/dib_builder.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace pelorin {
namespace {

using namespace test;

// The fill as it is told: column by column, each look to the side a call of its own. A pixel is filled at most once.
struct Model {
    Surface image, mask;
    Rgb fresh, old;
    int tolerance;
    std::vector<bool> filled = std::vector<bool>(std::size_t(image.Width() * image.Height()));

    bool Near(int x, int y, Rgb color) const {
        const auto p = image.At(x, y);
        return std::abs(RedOf(p) - RedOf(color)) + std::abs(GreenOf(p) - GreenOf(color)) +
                   std::abs(BlueOf(p) - BlueOf(color)) <=
               tolerance;
    }
    bool NearOld(int x, int y) const { return !filled[std::size_t(y * image.Width() + x)] && Near(x, y, old); }
    void Call(int x, int y) {
        if (!NearOld(x, y)) return;
        const auto put = [&](int row) {
            image.Put(x, row, fresh | 0xFF000000u);
            mask.Put(x, row, 0xFFFFFFFFu);
            filled[std::size_t(row * image.Width() + x)] = true;
        };
        for (int row = y; row < image.Height() && NearOld(x, row); ++row) put(row);
        for (int row = y - 1; row >= 0 && NearOld(x, row); --row) put(row);
        for (const int side : {-1, 1}) {
            if (x + side < 0 || x + side >= image.Width()) continue;
            const auto look = [&](int row) {
                if (NearOld(x + side, row)) Call(x + side, row);
            };
            for (int row = y; row < image.Height() && Near(x, row, fresh); ++row) look(row);
            for (int row = y - 1; row >= 0 && Near(x, row, fresh); --row) look(row);
        }
    }
};

TEST(FloodFill, MatchesTheRecursiveTelling) {
    // Few colours that lie near each other in turns, so that all mixtures of "near old" and "near new" come up.
    constexpr Rgb colors[] = {0x000000, 0x050000, 0x0A0000, 0x0F0000, 0x140000, 0x500000};
    std::mt19937 random(7);
    int spread = 0;
    for (int round = 0; round < 2000; ++round) {
        const int width = 1 + int(random() % 36), height = 1 + int(random() % 14), kinds = 2 + int(random() % 5);
        Surface picture(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                picture.Put(x, y, colors[random() % unsigned(kinds)] | Rgb(random() & 255) << 24);
        }
        const int x = int(random() % unsigned(width)), y = int(random() % unsigned(height));
        Model model{picture, Surface(width, height), colors[random() % 6], picture.At(x, y) & 0xFFFFFF,
                    int(random() % 5) * 5};
        if (model.fresh != model.old) model.Call(x, y);

        auto image = DIBFromSurface(picture), mask = CreateDIB(width, height, 32);
        ASSERT_TRUE(FloodFill(image, mask, x, y, model.fresh, model.old, model.tolerance));
        ASSERT_EQ(SurfaceFromDIB(mask), model.mask) << "round " << round;
        ASSERT_EQ(SurfaceFromDIB(image), model.image) << "round " << round;
        for (const bool filled : model.filled) spread += filled;
    }
    EXPECT_GT(spread, 20000) << "most fills should go somewhere";
}

TEST(FloodFill, LargePicturesNeedNoDepth) {
    // A comb: every other column is a wall with a gap at alternating ends.
    Surface picture(301, 300);
    for (int x = 1; x < 301; x += 2) {
        for (int y = 0; y < 300; ++y) picture.Put(x, y, y == (x % 4 == 1 ? 0 : 299) ? 0u : 0xFFFFFFu);
    }
    auto image = DIBFromSurface(picture), mask = CreateDIB(301, 300, 32);
    EXPECT_TRUE(FloodFill(image, mask, 0, 150, 0xFF0000, 0, 10));
    EXPECT_EQ(At(image, 300, 5), 0xFFFF0000u);
}

TEST(FloodFill, LeavesThingsAlone) {
    const auto block = Picture32(2, {0x10203040, 0x10203040});
    auto image = CopyHandle(block), mask = CreateDIB(2, 1, 32), small = CreateDIB(1, 1, 32), flat = CreateDIB(2, 1, 24);
    EXPECT_TRUE(FloodFill(image, mask, 0, 0, 0x203040, 0x203040, 0)) << "equal colours";
    EXPECT_TRUE(FloodFill(image, mask, 5, 0, 1, 0x203040, 0)) << "outside";
    EXPECT_TRUE(FloodFill(image, mask, 0, 0, 1, 0x203041, 0)) << "not near";
    EXPECT_EQ(BytesOf(image), BytesOf(block));
    EXPECT_FALSE(FloodFill(image, small, 0, 0, 1, 2, 0));
    EXPECT_FALSE(FloodFill(flat, mask, 0, 0, 1, 2, 0));
    EXPECT_EQ(At(mask, 1, 0), 0u);
}

TEST(SelectSimilar, GivesTheMaskAndNothingFromMagenta) {
    const auto block = Picture32(3, {0xFF000000, 0x00000300, 0xFF00FF00});
    const auto mask = SelectSimilar(block, 0, 0, 3);
    EXPECT_EQ(At(mask, 0, 0), 0xFFFFFFFFu);
    EXPECT_EQ(At(mask, 1, 0), 0xFFFFFFFFu);
    EXPECT_EQ(At(mask, 2, 0), 0u);
    EXPECT_EQ(At(SelectSimilar(Picture32(2, {0xFFFF00FF, 0xFFFF00FF}), 0, 0, 9), 0, 0), 0u);
    EXPECT_EQ(At(SelectSimilar(Picture32(2, {0xFFFE00FF, 0xFFFE00FF}), 0, 0, 9), 1, 0), 0xFFFFFFFFu);
    EXPECT_FALSE(SelectSimilar(CreateDIB(2, 2, 24), 0, 0, 9));
}

TEST(EraseColor, MatchesTheDefinition) {
    const auto picture = RandomSurface(33, 7, 3);
    const auto block = DIBFromSurface(picture);
    for (const int tolerance : {-1, 0, 4, 10, 60, 500, 900000}) {
        for (const bool contiguous : {false, true}) {
            const int t = std::max(tolerance / 5, 1);
            Surface mask;
            if (contiguous) mask = ApplyKernel(SurfaceFromDIB(SelectSimilar(block, 4, 2, 2 * t)), kBlur, 0);
            const auto result = SurfaceFromDIB(EraseColor(block, 4, 2, contiguous, tolerance));
            const auto key = picture.At(4, 2);
            for (int y = 0; y < 7; ++y) {
                for (int x = 0; x < 33; ++x) {
                    const auto p = picture.At(x, y);
                    long d = 0;
                    for (const int shift : {0, 8, 16}) {
                        const long e = long(p >> shift & 255) - long(key >> shift & 255);
                        d += e * e;
                    }
                    d = 255 - std::min(d, long(t) * 255) / t;
                    d = std::min(d, long(p >> 24));
                    if (contiguous) d = d * (mask.At(x, y) & 255) / 255;
                    ASSERT_EQ(result.At(x, y), p - (std::uint32_t(d) << 24)) << tolerance << " at " << x << "," << y;
                }
            }
        }
    }
    EXPECT_FALSE(EraseColor(block, 33, 0, false, 1));
}

} // namespace
} // namespace pelorin
