#include "pixel/convolve.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using namespace test;

// The definition, byte by byte.
Surface Model(const Surface& source, const ConvolutionKernel& kernel, int blend) {
    Surface out(source.Width(), source.Height());
    for (int y = 0; y < source.Height(); ++y) {
        for (int x = 0; x < source.Width() * 4; ++x) {
            int sum = 0, k = 0;
            for (int dy = -kernel.nHeight / 2; dy < kernel.nHeight - kernel.nHeight / 2; ++dy) {
                for (int dx = -kernel.nWidth / 2; dx < kernel.nWidth - kernel.nWidth / 2; ++dx) {
                    const int row = std::clamp(y + dy, 0, source.Height() - 1);
                    const int column = std::clamp(x / 4 + dx, 0, source.Width() - 1);
                    sum += kernel.aCoefficients[std::size_t(k++)] * source.Row(row)[column * 4 + x % 4];
                }
            }
            int value = sum / kernel.nDivisor + kernel.nBias;
            if (blend > 0) value = (source.Row(y)[x] * blend + value * (100 - blend)) / 100;
            out.Row(y)[x] = std::uint8_t(value < 1 ? 0 : value >= 255 ? 255 : value);
        }
    }
    return out;
}

TEST(ApplyKernel, MatchesTheDefinition) {
    constexpr std::int32_t heavy[] = {900, -300, 20, 7, 4000, 1}; // 3 x 2, too heavy for 16 bits
    constexpr std::int32_t even[] = {1, 2, 3, -4};
    std::vector<ConvolutionKernel> kernels = {{3, 2, 70, -9, heavy}, {2, 2, -3, 40, even}, {4, 1, 3, 0, even}};
    for (const auto& filter : Filters()) kernels.push_back(filter.kernel);
    unsigned seed = 1;
    for (const Size size : {Size{1, 1}, Size{3, 2}, Size{33, 7}, Size{70, 5}}) {
        const auto source = RandomSurface(size.width, size.height, seed++);
        for (const auto& kernel : kernels) {
            for (const int blend : {0, 1, 37, 50, 100}) {
                EXPECT_EQ(ApplyKernel(source, kernel, blend), Model(source, kernel, blend))
                    << size.width << "x" << size.height << " divisor " << kernel.nDivisor << " blend " << blend;
            }
        }
    }
}

TEST(ApplyKernel, TheFirstRowOfCoefficientsMeetsTheRowBeneath) {
    Surface dot(3, 3);
    dot.Put(1, 1, 0x64646464);
    const auto embossed = ApplyKernel(dot, FindFilter("emboss")->kernel, 0);
    EXPECT_EQ(embossed.At(2, 0), 0x1C1C1C1Cu) << "up and to the right of the dot: 128 - 100";
    EXPECT_EQ(embossed.At(0, 2), 0x80808080u);
    EXPECT_EQ(embossed.At(1, 1), 0xE4E4E4E4u);
}

TEST(ApplyKernel, FlatPictures) {
    const auto grey = FlatSurface(5, 4, 0x64646464);
    for (const auto& filter : Filters()) {
        const std::uint32_t expected = filter.name == "Find Edges" ? 0u
                                       : filter.name == "Contour"  ? 0xFFFFFFFFu
                                       : filter.name == "Emboss"   ? 0x80808080u
                                                                   : 0x64646464u;
        EXPECT_EQ(ApplyKernel(grey, filter.kernel, 0), FlatSurface(5, 4, expected)) << filter.name;
    }
}

TEST(ApplyKernel, RefusesKernelsThatAreNone) {
    const auto grey = FlatSurface(5, 4, 0x64646464);
    constexpr std::int32_t weights[] = {1, 1, 1, 1};
    EXPECT_FALSE(ApplyKernel(grey, {3, 3, 1, 0, weights}, 0));
    EXPECT_FALSE(ApplyKernel(grey, {2, 2, 0, 0, weights}, 0));
    EXPECT_FALSE(ApplyKernel(grey, {-2, -2, 1, 0, weights}, 0));
    EXPECT_FALSE(ApplyKernel(Surface(), kBlur, 0));
}

TEST(Filters, AreFoundByNumberAndName) {
    EXPECT_EQ(FindFilter(9)->name, "Enhance Edges");
    EXPECT_EQ(FindFilter("sharpen-more")->number, 6);
    EXPECT_EQ(FindFilter(0), nullptr);
    EXPECT_EQ(FindFilter("soften"), nullptr);
}

} // namespace
} // namespace pelorin
