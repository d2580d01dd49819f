#include "pixel/blend.h"
#include "pixel/compose.h"
#include "pixel/pixel_word.h"
#include "pixel/shadow.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using namespace test;

// Any of the variants, pixel by pixel: `alpha(x, y)` of the source.
template <class Alpha>
Surface Model(Surface target, const Rect& place, const Surface& source, const Rect& part, Alpha&& alpha) {
    for (int y = 0; y < place.Height(); ++y) {
        for (int x = 0; x < place.Width(); ++x) {
            const int tx = place.left + x, ty = place.top + y;
            const int sx = part.left + x * part.Width() / place.Width(),
                      sy = part.top + y * part.Height() / place.Height();
            if (tx < 0 || ty < 0 || tx >= target.Width() || ty >= target.Height()) continue;
            if (sx < 0 || sy < 0 || sx >= source.Width() || sy >= source.Height()) continue;
            const unsigned a = alpha(sx, sy);
            Argb out = target.At(tx, ty) & 0xFF000000u;
            for (const int shift : {0, 8, 16}) {
                const unsigned t = target.At(tx, ty) >> shift & 255, s = source.At(sx, sy) >> shift & 255;
                out |= (t * (255 - a) + s * a) / 255 << shift;
            }
            target.Put(tx, ty, out);
        }
    }
    return target;
}

TEST(Blend, EveryVariantMatchesItsAlpha) {
    const auto base = RandomSurface(33, 17, 1), source = RandomSurface(12, 9, 2), grey = RandomSurface(12, 9, 3);
    const auto block = DIBFromSurface(source);
    const auto own = [&](int x, int y) { return source.At(x, y) >> 24; };
    const Rect parts[] = {{0, 0, 12, 9}, {3, 2, 7, 5}, {-2, 4, 14, 30}};
    const Rect places[] = {{4, 5, 16, 14}, {-5, -3, 40, 30}, {30, 10, 33, 17}, {5, 5, 9, 8}};
    for (const auto& part : parts) {
        for (const auto& place : places) {
            auto target = base;
            BlendConstant(target, place, source, part, 127);
            EXPECT_EQ(target, Model(base, place, source, part, [](int, int) { return 127u; }));
            target = base;
            EXPECT_TRUE(BlendStretchedDIBOver(target, place, block, part));
            EXPECT_EQ(target, Model(base, place, source, part, own));
            target = base;
            EXPECT_TRUE(BlendWithAlphaBitmap(target, place, source, grey, part));
            EXPECT_EQ(target, Model(base, place, source, part, [&](int x, int y) { return grey.At(x, y) & 255; }));
            target = base;
            EXPECT_TRUE(BlendDIBOver(target, place, block, part));
            const int width = std::min(part.Width(), place.Width()), height = std::min(part.Height(), place.Height());
            EXPECT_EQ(target, Model(base, {place.left, place.top, place.left + width, place.top + height}, source,
                                    {part.left, part.top, part.left + width, part.top + height}, own));
        }
    }
    auto target = base;
    EXPECT_TRUE(BlendDIBOver(target, {7, -2, 7, -2}, block)) << "no sizes: the whole source";
    EXPECT_EQ(target, Model(base, {7, -2, 19, 7}, source, {0, 0, 12, 9}, own));
    target = base;
    BlendAlphaInFourth(target, 25, 12, source);
    EXPECT_EQ(target, Model(base, {25, 12, 37, 21}, source, {0, 0, 12, 9}, own));
    EXPECT_FALSE(BlendDIBOver(target, {}, CreateDIB(3, 3, 24)));
    EXPECT_FALSE(BlendWithAlphaBitmap(target, {0, 0, 3, 3}, source, base, {0, 0, 3, 3}));
}

TEST(CopyColorKeepAlpha, TakesThreeBytes) {
    auto target = FlatSurface(2, 1, 0x12345678);
    EXPECT_TRUE(CopyColorKeepAlpha(target, FlatSurface(2, 1, 0x99ABCDEF)));
    EXPECT_EQ(target.At(1, 0), 0x12ABCDEFu);
    EXPECT_FALSE(CopyColorKeepAlpha(target, FlatSurface(1, 2, 0)));
}

struct Pair {
    Surface color, alpha;
};

// One pixel through ComposeLayers: 0xAARRGGBB over 0xAARRGGBB.
Argb Compose(Argb source, Argb dest, ComposeFlags flags) {
    const auto pair = [](Argb p) {
        return Pair{FlatSurface(1, 1, p & 0xFFFFFF), FlatSurface(1, 1, (p >> 24) * 0x010101)};
    };
    const auto from = pair(source);
    auto to = pair(dest);
    EXPECT_TRUE(ComposeLayers(to.color, to.alpha, 0, 0, 1, 1, from.color, from.alpha, flags));
    EXPECT_EQ(to.alpha.At(0, 0), (to.alpha.At(0, 0) & 255) * 0x010101u);
    return to.color.At(0, 0) | to.alpha.At(0, 0) << 24;
}

TEST(ComposeLayers, EveryCase) {
    struct Row {
        Argb source, dest;
        ComposeFlags flags;
        Argb expected;
    };
    constexpr ComposeFlags over{.compose = true}, behind{.behind = true}, erase{.compose = true, .erase = true};
    constexpr ComposeFlags eraseBehind{.erase = true, .behind = true};
    constexpr Row rows[] = {
        {0x00112233, 0x80445566, {}, 0x00112233},
        {0x40112233, 0x80445566, {.erase = true}, 0x40112233},
        {0x00112233, 0x00445566, over, 0x00FFFFFF},
        {0x00112233, 0x80445566, over, 0x80445566},
        {0x40112233, 0x00445566, over, 0x40112233},
        {0xFF112233, 0x80445566, over, 0xFF112233},
        // t 128, b 255: out (32640 + 32385 + 127) / 255 = 255, w (32385 + 127) / 255 = 127
        {0x80FF0000, 0xFF0000FF, over, 0xFF80007F},
        // t 9, b 7: out (2295 + 1722 + 127) / 255 = 16, w (1722 + 127) / 255 = 7; red (9 x 255 + 8) / 16
        {0x09FF0000, 0x07000000, over, 0x108F0000},
        {0x80FF0000, 0xFF0000FF, behind, 0xFF0000FF},
        {0x07000000, 0x09FF0000, behind, 0x108F0000},
        {0x80FF0000, 0xC80000FF, erase, 0x630000FF}, // 127 x 200 / 255
        {0xF0FF0000, 0xC80000FF, erase, 0x0B0000FF},
        {0xF1FF0000, 0xC80000FF, erase, 0x0AFFFFFF},
        {0xC80000FF, 0xF1FF0000, eraseBehind, 0x0AFFFFFF},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Compose(row.source, row.dest, row.flags), row.expected) << std::hex << row.source << " " << row.dest;
    }
}

TEST(ComposeLayers, StaysInsideBothPairs) {
    Surface color(3, 3), alpha(3, 3);
    const auto red = FlatSurface(2, 2, 0xFF0000), opaque = FlatSurface(2, 2, 0xFFFFFF);
    EXPECT_TRUE(ComposeLayers(color, alpha, 2, -1, 9, 9, red, opaque, {.compose = true}));
    EXPECT_EQ(color.At(2, 0), 0xFF0000u);
    EXPECT_EQ(color.At(1, 0) | color.At(2, 1), 0u);
    EXPECT_FALSE(ComposeLayers(color, alpha, 0, 0, 1, 1, red, FlatSurface(1, 1, 0), {}));
}

TEST(DropShadow, IsGreyBelowAndGrows) {
    auto color = FlatSurface(3, 3, 0x0000FF), alpha = FlatSurface(3, 3, 0xFFFFFF);
    ASSERT_TRUE(DropShadow(color, alpha, true));
    ASSERT_EQ(color.GetSize(), (Size{5, 5}));
    EXPECT_EQ(color.At(0, 0) & 0xFFFFFF, 0x0000FFu);
    // At (4, 4) the window reaches nine of its 25 positions into the shadow plane's picture at 1..3; the position at
    // the edge is repeated. Rows and columns 2, 3, 4, 4, 4 of the window: (2 | 3) x (2 | 3) are opaque: weights 1 1 /
    // 1 5.
    EXPECT_EQ(color.At(4, 4), 0x404040u) << "black, then half way back to 128";
    EXPECT_EQ(alpha.At(4, 4) & 255, 255u * 8 / 76 * 70 / 100);
    auto cutColor = FlatSurface(3, 3, 0x0000FF), cutAlpha = FlatSurface(3, 3, 0);
    cutAlpha.Put(0, 0, 0xFFFFFF);
    ASSERT_TRUE(DropShadow(cutColor, cutAlpha, false));
    ASSERT_EQ(cutAlpha.GetSize(), (Size{3, 3}));
    EXPECT_EQ(cutAlpha.At(0, 0) & 255, 255u);
    EXPECT_EQ(cutAlpha.At(1, 1) & 255, 255u * 20 / 76 * 70 / 100);
    EXPECT_EQ(cutColor.At(1, 1) & 0xFFFFFF, 0x404040u);
    Surface none;
    EXPECT_FALSE(DropShadow(none, none, true));
}

} // namespace
} // namespace pelorin
