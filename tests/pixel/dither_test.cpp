#include "pixel/dither.h"
#include "pixel/slow_mapping.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

#include <random>

namespace pelorin {
namespace {

using test::Picture32;

DibBlock Noise(int width, int height, int bits, unsigned seed) {
    auto block = CreateDIB(width, height, bits);
    std::mt19937 random(seed);
    for (auto& byte : block.Span().subspan(kDibHeaderSize)) byte = static_cast<std::uint8_t>(random());
    return block;
}

std::array<int, 3> ColorAt(const DibView& view, int x, int y) {
    std::array<int, 3> out{};
    VisitDepth(view, [&](const auto& pixel) {
        const Argb c = pixel(view.Row(y), x);
        out = {static_cast<int>(c >> 16 & 255), static_cast<int>(c >> 8 & 255), static_cast<int>(c & 255)};
    });
    return out;
}

int Nearest(int a, int b, int c) { // a * b / c, halves up
    return static_cast<int>(std::floor(static_cast<double>(a) * b / c + 0.5));
}

// The picture at another size, by the rule in its plain words.
test::Plane Sampled(const DibBlock& block, int width, int height, bool diffusing, bool lighten) {
    const DibView view(block);
    test::Plane plane(static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        const int row = std::min(Nearest(y, view.Height(), height), view.Height() - 1);
        for (int x = 0; x < width; ++x) {
            const int last = view.Width() - 1;
            const int from = std::min(Nearest(x, view.Width(), width), last);
            int end = std::min(Nearest(x + 1, view.Width(), width), last);
            if (end == from || (diffusing && y == 0)) end = from + 1;
            std::array<int, 3> mean{};
            for (int i = from; i < end; ++i) {
                const auto color = ColorAt(view, i, row);
                for (std::size_t c = 0; c < 3; ++c) mean[c] += color[c];
            }
            for (auto& c : mean) {
                c /= end - from;
                if (lighten) c = std::min(c + (256 - c) / 2, 256);
            }
            plane[static_cast<std::size_t>(y)].push_back(mean);
        }
    }
    return plane;
}

std::vector<std::vector<int>> Indices(const DibBlock& block8) {
    const DibView view(block8);
    std::vector<std::vector<int>> out;
    for (int y = 0; y < view.Height(); ++y) out.emplace_back(view.Row(y), view.Row(y) + view.Width());
    return out;
}

// Index and colour of the diffusing modes, bit by bit.
test::Chosen Pack(int mode, int r, int g, int b) {
    int index = 0;
    std::array<int, 3> color{};
    switch (mode) {
    case 2:
        index = r / 64 * 64 + g / 32 * 8 + b / 64 * 2;
        color = {(96 + r / 64 * 64 * 255) / 192, (112 + g / 32 * 32 * 255) / 224, (96 + b / 64 * 64 * 255) / 192};
        break;
    case 4:
        index = r / 128 * 128 + g / 128 * 64 + b / 128 * 32;
        color = {r / 128 * 255, g / 128 * 255, b / 128 * 255};
        break;
    default:
        index = r / 32 * 32 + g / 32 * 4 + b / 64;
        color = {(112 + r / 32 * 32 * 255) / 224, (112 + g / 32 * 32 * 255) / 224, (96 + b / 64 * 64 * 255) / 192};
        if (mode == 5) color = r >= 128 ? std::array{255, 255, 255} : std::array{0, 0, 0};
    }
    return {index, color};
}

TEST(DitherTo8, AgreesWithTheSlowMachine) {
    struct Row {
        int width, height, bits, toWidth, toHeight;
    };
    const Row rows[] = {{1, 1, 24, 1, 1},     {3, 2, 24, 3, 2},    {33, 7, 24, 33, 7}, {33, 7, 8, 10, 3},
                        {33, 7, 4, 50, 20},   {33, 7, 1, 32, 8},   {3, 2, 24, 1, 1},   {1, 1, 8, 5, 5},
                        {97, 61, 24, 41, 61}, {64, 64, 24, 32, 32}};
    unsigned seed = 1;
    for (const auto& row : rows) {
        const auto source = Noise(row.width, row.height, row.bits, seed++);
        for (const bool lighten : {false, true}) {
            for (const int mode : {2, 3, 4, 5}) {
                SCOPED_TRACE(testing::Message()
                             << row.width << "x" << row.height << " mode " << mode << " to " << row.toWidth);
                const auto plane = Sampled(source, row.toWidth, row.toHeight, true, lighten);
                const auto result = DitherTo8(source, row.toWidth, row.toHeight, mode, lighten);
                EXPECT_EQ(Indices(result),
                          test::SlowDiffusion(plane, [&](int r, int g, int b) { return Pack(mode, r, g, b); }));
            }
            const auto plane = Sampled(source, row.toWidth, row.toHeight, false, lighten);
            const auto result = DitherTo8(source, row.toWidth, row.toHeight, 0, lighten);
            for (int y = 0; y < row.toHeight; ++y) {
                for (int x = 0; x < row.toWidth; ++x) {
                    std::size_t cube = 0, weight = 1;
                    for (const int c : plane[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]) {
                        const int limit = kHalftoneThresholds[static_cast<std::size_t>((y & 7) + (x & 7) * 8)];
                        cube += weight * static_cast<std::size_t>(c - c / 51 * 51 > limit ? c / 51 + 1 : c / 51);
                        weight *= 6;
                    }
                    EXPECT_EQ(DibView(result).Row(y)[x], kHalftoneTranslate[cube]);
                }
            }
        }
    }
}

TEST(DitherTo8, TablesOfTheModes) {
    struct Row {
        int mode, index;
        Rgb color;
    };
    const Row rows[] = {{1, 0, 0x000000},    {1, 29, 0x330000},   {2, 0x40, 0x550000}, {2, 0x41, 0x550000},
                        {2, 0x08, 0x002400}, {2, 0xFE, 0xFFFFFF}, {3, 0x01, 0x000055}, {3, 0x20, 0x240000},
                        {4, 0x20, 0x0000FF}, {4, 0x3F, 0x0000FF}, {4, 0x60, 0x00FFFF}, {5, 127, 0x000000},
                        {5, 128, 0xFFFFFF}};
    for (const auto& row : rows) {
        const auto result = DitherTo8(CreateDIB(2, 2, 24), 2, 2, row.mode, false);
        EXPECT_EQ(DibView(result).Color(row.index), row.color) << row.mode << ", " << row.index;
    }
}

TEST(Mono, RedAloneDecidesWhenDithered) {
    const auto flat = [](Argb color) {
        auto block = CreateDIB(64, 64, 24);
        const DibRows rows(block);
        for (int y = 0; y < 64; ++y) {
            for (int x = 0; x < 64; ++x) {
                rows.Row(y)[x * 3] = static_cast<std::uint8_t>(color);
                rows.Row(y)[x * 3 + 1] = static_cast<std::uint8_t>(color >> 8);
                rows.Row(y)[x * 3 + 2] = static_cast<std::uint8_t>(color >> 16);
            }
        }
        return block;
    };
    const auto whites = [](const DibBlock& block) {
        int count = 0;
        for (int y = 0; y < 64; ++y) {
            for (int x = 0; x < 64; ++x) count += test::At(block, x, y) == 0xFFFFFFFF ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(whites(DitherMono(flat(0x00FF00))), 0);
    EXPECT_EQ(whites(DitherMono(flat(0xFF0000))), 64 * 64);
    EXPECT_NEAR(whites(DitherMono(flat(0x646464))), 64 * 64 * 100 / 255, 40) << "a grey of 100 is 39% white";
    EXPECT_EQ(whites(ThresholdToMono(flat(0x00FF00))), 0);
    EXPECT_EQ(whites(ThresholdToMono(flat(0x00FF80))), 0) << "383 / 3 = 127";
    EXPECT_EQ(whites(ThresholdToMono(flat(0x00FF81))), 64 * 64);
    EXPECT_EQ(DibView(ThresholdToMono(flat(0xFFFFFF))).Row(0)[0], 255);
}

TEST(DitherTo8, RefusesOtherInput) {
    for (const int bits : {15, 16, 32}) {
        EXPECT_FALSE(DitherTo8(CreateDIB(2, 2, bits), 2, 2, 1, false));
        EXPECT_FALSE(DitherMono(CreateDIB(2, 2, bits)));
        EXPECT_FALSE(ThresholdToMono(CreateDIB(2, 2, bits)));
    }
    const auto block = CreateDIB(2, 2, 24);
    EXPECT_FALSE(DitherTo8(block, 0, 2, 1, false));
    EXPECT_FALSE(DitherTo8(block, 2, -2, 2, false));
    EXPECT_FALSE(DitherTo8(block, 1 << 20, 1 << 20, 2, false));
    EXPECT_FALSE(DitherTo8(block, 2, 2, 6, false));
    EXPECT_FALSE(DitherTo8(block, 2, 2, -1, false));
    EXPECT_FALSE(DitherMono({}));
}

} // namespace
} // namespace pelorin
