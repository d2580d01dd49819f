#include "pixel/crop.h"
#include "pixel/rotate.h"
#include "support/dib_builder.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using namespace test;

DibBlock Numbered(int width, int height) {
    auto block = CreateDIB(width, height, 32);
    const DibRows rows(block);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) StoreU32LE(rows.PictureRow(y) + 4 * x, std::uint32_t(y * 16 + x));
    }
    return block;
}

TEST(CropDIB, ClampsAndKeepsTheTable) {
    const auto part = CropDIB(Numbered(5, 4), -3, 1, 2, 99);
    ASSERT_EQ(DibView(part).GetSize(), (Size{3, 3}));
    EXPECT_EQ(At(part, 0, 0), 0x10u);
    EXPECT_EQ(At(part, 2, 2), 0x32u);
    EXPECT_FALSE(CropDIB(Numbered(5, 4), 3, 0, 2, 3));
    EXPECT_FALSE(CropDIB(Numbered(5, 4), 5, 0, 9, 3));
    EXPECT_FALSE(CropDIB(CreateDIB(5, 4, 4), 0, 0, 2, 2));

    auto indexed = CreateDIB(3, 2, 8);
    const Rgb colors[] = {0x123456, 0x654321};
    SetDIBTable(indexed, colors, 7);
    DibRows(indexed).PictureRow(1)[2] = 8;
    EXPECT_EQ(At(CropDIB(indexed, 2, 1, 2, 1), 0, 0), 0xFF654321u);
}

TEST(CenterOnSquare, HalvesDownwards) {
    const auto wide = CenterOnSquare(Numbered(3, 2));
    EXPECT_EQ(DibView(wide).GetSize(), (Size{3, 3}));
    EXPECT_EQ(At(wide, 2, 0), 0x02u);
    EXPECT_EQ(At(wide, 2, 2), 0u);
    const auto tall = CenterOnSquare(Numbered(2, 5));
    EXPECT_EQ(At(tall, 1, 4), 0x40u);
    EXPECT_EQ(At(tall, 0, 4), 0u);
    EXPECT_FALSE(CenterOnSquare(CreateDIB(3, 2, 24)));
}

TEST(PlaceOnCanvas, DropsWhatFallsOutside) {
    const auto canvas = PlaceOnCanvas(Numbered(4, 4), 3, 3, {-1, 2, 2, 9}, 0x80112233);
    EXPECT_EQ(At(canvas, 0, 0), 0x80112233u);
    EXPECT_EQ(At(canvas, 0, 2), 0x01u);
    EXPECT_EQ(At(canvas, 1, 2), 0x02u);
    EXPECT_EQ(At(canvas, 2, 2), 0x80112233u) << "only three columns are used";
    EXPECT_TRUE(PlaceOnCanvas(Numbered(4, 4), 2, 2, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, 1));
}

TEST(MultiplyAlpha, WhiteTimesOpaqueIs254) {
    const auto result = MultiplyAlpha(Picture32(2, {0xFF010203, 0x80FFFFFF}), Picture32(2, {0xFFFFFFFF, 0xFF00FF80}));
    EXPECT_EQ(At(result, 0, 0), 0xFE010203u);
    EXPECT_EQ(At(result, 1, 0), 0x40FFFFFFu);
    EXPECT_FALSE(MultiplyAlpha(Numbered(2, 1), Numbered(1, 2)));
    EXPECT_FALSE(MultiplyAlpha(CreateDIB(2, 2, 24), Numbered(2, 2)));
}

TEST(Bitmaps, CutAndPaste) {
    const auto source = SurfaceFromDIB(Numbered(4, 4));
    const auto cut = CopyRectOfBitmap(source, {2, -1, 5, 2});
    ASSERT_EQ(cut.GetSize(), (Size{3, 3}));
    EXPECT_EQ(cut.At(0, 0), 0u);
    EXPECT_EQ(cut.At(1, 2), 0x13u);
    EXPECT_EQ(cut.At(2, 2), 0u);
    Surface target(3, 3);
    PutBitmapAt(target, source, 2, -3);
    EXPECT_EQ(target.At(2, 0), 0x30u);
    EXPECT_EQ(target.At(2, 1), 0u);
    PutBitmapAt(target, source, INT32_MAX, INT32_MIN);
    EXPECT_FALSE(CopyRectOfBitmap(source, {INT32_MIN, 0, INT32_MAX, 1}));
}

TEST(QuarterTurns, GoWhereTheyShould) {
    const auto source = SurfaceFromDIB(Numbered(3, 2));
    const auto turned = Rotate90(source);
    ASSERT_EQ(turned.GetSize(), (Size{2, 3}));
    EXPECT_EQ(turned.At(1, 0), source.At(2, 1)) << "(x, y) to (y, w - x - 1)";
    EXPECT_EQ(turned.At(0, 2), source.At(0, 0));
    const auto back = Rotate270(source);
    EXPECT_EQ(back.At(0, 2), source.At(2, 1)) << "(x, y) to (h - y - 1, x)";
    EXPECT_EQ(Rotate180(source).At(0, 1), source.At(2, 0));
    EXPECT_EQ(Rotate270(turned), source);
    EXPECT_EQ(FlipBitmap(source, true).At(1, 0), source.At(1, 1));
    EXPECT_EQ(FlipBitmap(source, false).At(0, 1), source.At(2, 1));
}

// The transform as it is defined, destination pixel by destination pixel.
Surface TurnModel(const Surface& source, double angle, Argb background) {
    const double t = -angle * 3.14159265358979323846 / 180, c = std::cos(t), s = std::sin(t);
    const int w = source.Width(), h = source.Height();
    std::vector<int> xs, ys;
    for (const auto& [x, y] : {Point{0, 0}, Point{w, 0}, Point{0, h}, Point{w - 1, h}}) {
        xs.push_back(int(x * c - y * s));
        ys.push_back(int(x * s + y * c));
    }
    std::sort(xs.begin(), xs.end());
    std::sort(ys.begin(), ys.end());
    Surface out(xs[3] - xs[0], ys[3] - ys[0]);
    for (int y = ys[0]; y < ys[3]; ++y) {
        for (int x = xs[0]; x < xs[3]; ++x) {
            const int u = int(x * c + y * s - 0.5), v = int(y * c - x * s - 0.5);
            const bool inside = u >= 0 && u < w && v >= 0 && v < h;
            out.Put(x - xs[0], y - ys[0], inside ? source.At(u, v) : background);
        }
    }
    return out;
}

TEST(RotateBitmap, MatchesTheTransform) {
    unsigned seed = 1;
    for (const Size size : {Size{1, 1}, Size{3, 2}, Size{33, 7}, Size{16, 16}}) {
        const auto source = RandomSurface(size.width, size.height, seed++);
        for (const double angle : {0.0, 1.0, 45.0, 90.0, 133.5, 180.0, -30.0, 270.0, 1000.0}) {
            EXPECT_EQ(RotateBitmap(source, angle, 0xFF00FF), TurnModel(source, angle, 0xFF00FF)) << angle;
        }
    }
    EXPECT_EQ(RotateBitmap(Surface(3, 2), 89, 0).GetSize(), (Size{2, 2})) << "(2, 2) lands on column 2";
    EXPECT_FALSE(RotateBitmap(Surface(), 10, 0));
    EXPECT_FALSE(RotateBitmap(Surface(2, 2), std::numeric_limits<double>::quiet_NaN(), 0));
}

TEST(RotateBitmapSmooth, KeepsSizeAndBackground) {
    const auto turned = RotateBitmapSmooth(FlatSurface(16, 16, 0x00808080), 45, 0x00FFFFFF);
    EXPECT_NEAR(turned.Width(), 22, 1);
    EXPECT_NEAR(turned.Height(), 22, 1);
    EXPECT_EQ(turned.At(0, 0) & 0xFFFFFF, 0xFFFFFFu);
    EXPECT_NEAR(int(turned.At(turned.Width() / 2, turned.Height() / 2) & 255), 128, 2) << "each step truncates";
}

} // namespace
} // namespace pelorin
