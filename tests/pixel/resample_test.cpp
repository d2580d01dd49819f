#include "pixel/resample.h"
#include "support/dib_builder.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using namespace test;

// A slow model of the scaler, pixel by pixel, four channels each, rows in stored order.
struct Plane {
    int w = 0, h = 0;
    std::vector<int> v;
    Plane(int width, int height) : w(width), h(height), v(static_cast<std::size_t>(width * height * 4)) {}
    int& At(int x, int y, int c) { return v[static_cast<std::size_t>((y * w + x) * 4 + c)]; }
};

Plane PlaneOf(const Surface& surface) {
    Plane plane(surface.Width(), surface.Height());
    for (std::size_t i = 0; i < plane.v.size(); ++i) plane.v[i] = surface.Span()[i];
    return plane;
}

void Bleed(Plane& p) {
    for (int y = 0; y < p.h; ++y) {
        for (int x = 0; x < p.w; ++x) {
            if (p.At(x, y, 3) >= 8) continue;
            int sums[3] = {}, count = 0;
            for (int j = std::max(0, y - 8); j < std::min(p.h - 1, y + 8); ++j) {
                for (int i = std::max(0, x - 8); i < std::min(p.w - 1, x + 8); ++i) {
                    if (p.At(i, j, 3) < 8) continue;
                    for (int c = 0; c < 3; ++c) sums[c] += p.At(i, j, c);
                    ++count;
                }
            }
            for (int c = 0; c < 3; ++c) p.At(x, y, c) = count ? sums[c] / count : 0;
        }
    }
}

Plane Average(Plane& p, int W, int H) {
    Plane out(W, H);
    const double sx = double(p.w) / W, sy = double(p.h) / H;
    const int D = int(1000 * sx * sy);
    std::vector<int> cur(std::size_t(W + 1) * 4), next(cur.size());
    double endY = sy - 1;
    int oy = 0;
    for (int j = 0; j < p.h; ++j) {
        const bool boundaryRow = j >= endY;
        const int fy = boundaryRow ? int((j - endY) * 1000) : 0;
        double endX = sx - 1;
        int ox = 0;
        for (int i = 0; i < p.w; ++i) {
            const bool boundaryColumn = i >= endX;
            const int fx = boundaryColumn ? int((i - endX) * 1000) : 0;
            for (int c = 0; c < 4; ++c) {
                const int v = p.At(i, j, c);
                int &here = cur[std::size_t(ox * 4 + c)], &below = next[std::size_t(ox * 4 + c)];
                if (!boundaryRow && !boundaryColumn) {
                    here += 1000 * v;
                } else if (!boundaryRow) {
                    here += (1000 - fx) * v;
                    cur[std::size_t(ox * 4 + 4 + c)] += fx * v;
                } else if (!boundaryColumn) {
                    here += (1000 - fy) * v;
                    below += fy * v;
                } else {
                    here += (1000 - fy) * (1000 - fx) * v / 1000;
                    out.At(ox, oy, c) = here / D & 255;
                    below += fy * (1000 - fx) * v / 1000;
                    cur[std::size_t(ox * 4 + 4 + c)] += (1000 - fy) * fx * v / 1000;
                    next[std::size_t(ox * 4 + 4 + c)] = fy * fx * v / 1000;
                }
            }
            if (boundaryColumn) {
                ++ox;
                endX += sx;
            }
        }
        if (boundaryRow) {
            if (ox < W) {
                for (int c = 0; c < 4; ++c) out.At(ox, oy, c) = cur[std::size_t(ox * 4 + c)] / D & 255;
            }
            cur.swap(next);
            std::fill_n(next.begin(), 4, 0);
            ++oy;
            endY += sy;
        }
    }
    if (oy < H) {
        for (int x = 0; x < W; ++x) {
            for (int c = 0; c < 4; ++c) out.At(x, oy, c) = cur[std::size_t(x * 4 + c)] / D & 255;
        }
    }
    return out;
}

Plane Bilinear(Plane& p, int W, int H, bool alpha) {
    Plane out(W, H);
    const double sx = double(p.w) / W, sy = double(p.h) / H;
    for (int y = 0; y < H; ++y) {
        const double ys = y * sy;
        const int y0 = int(ys), y1 = std::min(p.h - 1, y0 + 1);
        const double ty = ys - y0;
        for (int x = 0; x < W; ++x) {
            const double xs = x * sx;
            const int x0 = int(xs), x1 = std::min(p.w - 1, x0 + 1);
            const double tx = xs - x0;
            int q[4][4];
            for (int c = 0; c < 4; ++c) {
                q[0][c] = p.At(x0, y0, c);
                q[1][c] = p.At(x1, y0, c);
                q[2][c] = p.At(x0, y1, c);
                q[3][c] = p.At(x1, y1, c);
            }
            int reference = -1;
            for (int k = 3; k >= 0; --k) reference = q[k][3] >= 9 ? k : reference;
            for (int k = 0; alpha && reference >= 0 && k < 4; ++k) {
                if (q[k][3] >= 8) continue;
                for (int c = 0; c < 3; ++c) q[k][c] = q[reference][c];
            }
            for (int c = 0; c < 4; ++c) {
                const double c0 = q[0][c] * (1 - ty) + q[2][c] * ty, c1 = q[1][c] * (1 - ty) + q[3][c] * ty;
                out.At(x, y, c) = int(c0 * (1 - tx) + c1 * tx);
            }
        }
    }
    return out;
}

Plane Model(const Surface& source, int W, int H) {
    auto p = PlaneOf(source);
    const int fx = W / p.w, fy = H / p.h;
    const int ex = fx >= 2 ? fx - 1 : 0, ey = fy >= 2 ? fy - 1 : 0;
    if (p.w == W && p.h == H) return p;
    if (p.w > W + ex && p.h > H + ey) {
        Bleed(p);
        return Average(p, W, H);
    }
    auto work = Bilinear(p, W + ex, H + ey, true);
    Plane out(W, H);
    for (int y = 0; y < H; ++y) {
        for (int x = 0; x < W; ++x) {
            // picture row y + ey of the work target
            for (int c = 0; c < 4; ++c) out.At(x, H - 1 - y, c) = work.At(x, work.h - 1 - (y + ey), c);
        }
    }
    return out;
}

Bytes AsBytesOf(const Plane& plane) {
    return Bytes(plane.v.begin(), plane.v.end());
}

struct Case {
    Size from, to;
};

constexpr Case kCases[] = {
    {{1, 1}, {1, 1}},     {{1, 1}, {3, 2}},       {{3, 2}, {1, 1}},      {{33, 7}, {16, 3}},  {{33, 7}, {32, 6}},
    {{16, 16}, {32, 32}}, {{48, 48}, {48, 16}},   {{32, 32}, {16, 16}},  {{33, 7}, {70, 22}}, {{33, 7}, {5, 40}},
    {{100, 61}, {7, 9}},  {{61, 300}, {60, 299}}, {{300, 280}, {11, 1}}, {{5, 5}, {26, 5}},   {{256, 200}, {48, 37}},
};

TEST(Resample, MatchesTheSlowModelToTheByte) {
    unsigned seed = 1;
    for (const auto& [from, to] : kCases) {
        const auto source = RandomSurface(from.width, from.height, seed++);
        const auto expected = AsBytesOf(Model(source, to.width, to.height));
        const auto result = SurfaceFromDIB(ResampleDIB(DIBFromSurface(source), to.width, to.height));
        ASSERT_EQ(result.GetSize(), to);
        EXPECT_EQ(BytesOf(result), expected)
            << from.width << "x" << from.height << " to " << to.width << "x" << to.height;
    }
}

TEST(Resample, At24BitsIsTheSameWithOpaquePixels) {
    unsigned seed = 1;
    for (const auto& [from, to] : kCases) {
        auto source = RandomSurface(from.width, from.height, seed++);
        for (std::size_t i = 3; i < source.Span().size(); i += 4) source.Span()[i] = 255;
        const auto with = ResampleDIB(DIBFromSurface(source), to.width, to.height);
        const auto without = ResampleDIB(DIB24FromSurface(source), to.width, to.height);
        EXPECT_EQ(BytesOf(without), BytesOf(DIB24FromSurface(SurfaceFromDIB(with))));
    }
}

TEST(Resample, BitmapsHaveNoAlphaAndNoSurplus) {
    unsigned seed = 1;
    for (const auto& [from, to] : kCases) {
        const auto source = RandomSurface(from.width, from.height, seed++);
        auto plane = PlaneOf(source);
        const bool shrinks = from.width > to.width && from.height > to.height;
        auto expected = shrinks ? Average(plane, to.width, to.height) : Bilinear(plane, to.width, to.height, false);
        for (std::size_t i = 3; i < expected.v.size() && from != to; i += 4) expected.v[i] = 0;
        EXPECT_EQ(BytesOf(ResampleBitmap(source, to.width, to.height)), AsBytesOf(expected));
    }
}

TEST(Resample, ATransparentPixelLendsItsNeighboursColour) {
    // The bottom left of four pixels is transparent red; the others are opaque grey 90. The last column and the last
    // stored row never lend, so the picture is made 3 x 3 to leave room for the visible ones.
    const auto grey = 0xFF5A5A5A;
    const auto block = Picture32(
        4, {grey, grey, grey, grey, grey, grey, grey, grey, grey, grey, grey, grey, 0x00FF0000, grey, grey, grey});
    const auto half = ResampleDIB(block, 2, 2);
    EXPECT_EQ(At(half, 0, 1), 0xBF5A5A5A) << "alpha 3 x 255 / 4, truncated";
    EXPECT_EQ(At(half, 1, 0), grey);
}

TEST(Resample, OnlyAlphaNineOrMoreIsAReference) {
    // Halfway between the two pixels of a row.
    const auto middle = [](Argb left, Argb right) { return At(ResampleDIB(Picture32(2, {left, right}), 3, 1), 1, 0); };
    // 3 from 2: one surplus column is not made (3 / 2 = 1); the second column stands at 2 / 3.
    EXPECT_EQ(middle(0x05000000, 0x05FFFFFF) & 0xFFFFFF, 0xAAAAAAu) << "no reference: colours as they are";
    EXPECT_EQ(middle(0x05000000, 0xFFFFFFFF) & 0xFFFFFF, 0xFFFFFFu) << "the faint one takes the reference's colour";
    EXPECT_EQ(middle(0x08000000, 0xFFFFFFFF) & 0xFFFFFF, 0xAAAAAAu) << "8 is kept";
    EXPECT_EQ(middle(0x07FFFFFF, 0x08000000) & 0xFFFFFF, 0x555555u) << "8 is no reference";
}

TEST(Resample, APhotoShrinksToAnIconWithoutOverflow) {
    const auto small = ResampleDIB(DIBFromSurface(FlatSurface(2000, 1900, 0xFFC8FFFF)), 4, 4);
    EXPECT_EQ(At(small, 3, 3), 0xFFC8FFFF);
}

TEST(Resample, BleedingAheadOfTimeGivesTheSameBytes) {
    for (const Size size : {Size{33, 19}, Size{64, 64}, Size{9, 40}}) {
        const auto picture = DIBFromSurface(RandomSurface(size.width, size.height, 5));
        EXPECT_EQ(BytesOf(ShrinkBled(BleedColors(picture), 7, 16)), BytesOf(ResampleDIB(picture, 7, 16)));
    }
    EXPECT_FALSE(ShrinkBled(CreateDIB(8, 8, 32), 8, 4)) << "not smaller in both directions";
    EXPECT_FALSE(BleedColors(CreateDIB(8, 8, 24)));
}

TEST(Resample, RefusesWhatItCannotScale) {
    const auto good = Picture32(1, {0xFF000000});
    EXPECT_FALSE(ResampleDIB(good, 0, 5));
    EXPECT_FALSE(ResampleDIB(good, 5, -1));
    EXPECT_FALSE(ResampleDIB(good, 1 << 20, 1 << 20));
    EXPECT_FALSE(ResampleDIB(CreateDIB(4, 4, 8), 2, 2));
    EXPECT_FALSE(ResampleDIB(DibBlock(), 2, 2));
    EXPECT_FALSE(ResampleBitmap(Surface(), 2, 2));
    EXPECT_TRUE(ResampleDIB(good, 8192, 8192)) << "the surplus of a large enlargement takes no memory";
}

} // namespace
} // namespace pelorin
