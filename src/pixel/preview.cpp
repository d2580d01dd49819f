#include "pixel/preview.h"

#include "pixel/box_sampler.h"
#include "pixel/convert_pixels.h"
#include "pixel/pixel_word.h"

namespace pelorin {

namespace {

constexpr int kCellSide = 5;
constexpr int kLightCell = 255, kDarkCell = 215;

Rgb OnCheckerBoard(Rgb color, int alpha, int x, int y) {
    const int cell = (y / kCellSide + x / kCellSide) % 2 == 0 ? kLightCell : kDarkCell;
    return MakeRgb(Blend255(RedOf(color), cell, alpha), Blend255(GreenOf(color), cell, alpha),
                   Blend255(BlueOf(color), cell, alpha));
}

} // namespace

DibBlock StretchToPreview(const DibBlock& block, int width, int height, bool lighten) {
    const DibView source(block);
    auto result = source ? CreateDIB(width, height, 24) : DibBlock();
    const DibRows target(result);
    if (!target) return {};
    const BoxSampler sampler(source.GetSize(), target.GetSize());
    VisitDepth(source, [&](const auto& pixel) {
        for (int y = 0; y < height; ++y) {
            const auto* row = source.Row(sampler.SourceRow(y));
            auto* to = target.Row(y);
            int x = 0;
            for (const auto& span : sampler.Columns()) {
                const Argb mean = MeanOf(pixel, row, span);
                Rgb color = mean & 0xFFFFFF;
                if (lighten)
                    color = MakeRgb(Lightened(RedOf(color)), Lightened(GreenOf(color)), Lightened(BlueOf(color)));
                if (source.BitCount() == 32) color = OnCheckerBoard(color, AlphaOf(mean), x, y);
                PutPixel24(to, color);
                to += 3;
                ++x;
            }
        }
    });
    return result;
}

} // namespace pelorin
