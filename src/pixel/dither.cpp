#include "pixel/dither.h"

#include "pixel/box_sampler.h"
#include "pixel/color.h"
#include "pixel/convert_pixels.h"
#include "pixel/diffuse.h"

namespace pelorin {

namespace {

bool IsAccepted(int bits) {
    return bits == 1 || bits == 4 || bits == 8 || bits == 24;
}

// How a diffusing mode packs a colour into an index: masks and right shifts of red, green, blue.
struct IndexRule {
    std::array<int, 3> masks, shifts;
};
constexpr std::array<IndexRule, 4> kIndexRules = {{
    {{192, 224, 192}, {0, 2, 5}}, // kDither484
    {{224, 224, 192}, {0, 3, 6}}, // kDither884
    {{128, 128, 128}, {0, 1, 2}}, // kDither222
    {{224, 224, 192}, {0, 3, 6}}, // kDitherMono
}};

using IndexColors = std::array<PaletteSearchEntry, 256>;

// The colour that each index stands for: the middle of its cell in every channel, or black and white.
IndexColors ColorsOf(const IndexRule& rule, bool mono) {
    IndexColors colors;
    for (int i = 0; i < 256; ++i) {
        const auto channel = [&](std::size_t c) {
            const int mask = rule.masks[c];
            const int value = (mask / 2 + ((i << rule.shifts[c]) & mask) * 255) / mask;
            return static_cast<std::uint8_t>(mono ? (i < 128 ? 0 : 255) : value);
        };
        colors[static_cast<std::size_t>(i)] = {channel(0), channel(1), channel(2), static_cast<std::uint8_t>(i)};
    }
    return colors;
}

ColorTable TableOfIndices(const IndexColors& colors) {
    ColorTable table;
    for (std::size_t i = 0; i < 256; ++i) table[i] = MakeRgb(colors[i].red, colors[i].green, colors[i].blue);
    return table;
}

constexpr ColorTable MakeMonoTable() {
    ColorTable table{};
    for (std::size_t i = 128; i < 256; ++i) table[i] = 0xFFFFFF;
    return table;
}

// Calls `put(x, red, green, blue)` for each column of output row `y`.
template <class PixelAt, class Put>
void SampleRow(const DibView& source, const BoxSampler& sampler, const PixelAt& pixel, int y, bool lighten, Put&& put) {
    const auto* row = source.Row(sampler.SourceRow(y));
    int x = 0;
    for (const auto& span : sampler.Columns()) {
        const Argb color = MeanOf(pixel, row, span);
        const auto channel = [&](int value) { return lighten ? Lightened(value) : value; };
        put(x++, channel(RedOf(color)), channel(GreenOf(color)), channel(BlueOf(color)));
    }
}

std::uint8_t HalftoneIndex(int red, int green, int blue, int threshold) {
    const auto level = [&](int channel) { return channel / 51 + (channel % 51 > threshold ? 1 : 0); };
    return kHalftoneTranslate[static_cast<std::size_t>(level(red) + 6 * level(green) + 36 * level(blue))];
}

void DitherByThresholds(const DibView& source, const DibRows& target, bool lighten) {
    const BoxSampler sampler(source.GetSize(), target.GetSize());
    VisitDepth(source, [&](const auto& pixel) {
        for (int y = 0; y < target.Height(); ++y) {
            auto* out = target.Row(y);
            SampleRow(source, sampler, pixel, y, lighten, [&](int x, int red, int green, int blue) {
                const int threshold = kHalftoneThresholds[static_cast<std::size_t>(y % 8 + x % 8 * 8)];
                out[x] = HalftoneIndex(red, green, blue, threshold);
            });
        }
    });
}

void DitherByDiffusion(const DibView& source, const DibRows& target, const IndexRule& rule, const IndexColors& colors,
                       bool lighten) {
    const BoxSampler sampler(source.GetSize(), target.GetSize());
    const BoxSampler firstRow = sampler.WithoutMeans();
    const auto choose = [&](int red, int green, int blue) -> const PaletteSearchEntry& {
        const int index = (red & rule.masks[0]) >> rule.shifts[0] | (green & rule.masks[1]) >> rule.shifts[1] |
                          (blue & rule.masks[2]) >> rule.shifts[2];
        return colors[static_cast<std::size_t>(index)];
    };
    VisitDepth(source, [&](const auto& pixel) {
        const auto loadRow = [&](int y, std::int16_t* line) {
            SampleRow(source, y == 0 ? firstRow : sampler, pixel, y, lighten, [&](int x, int red, int green, int blue) {
                line[x * 3] = static_cast<std::int16_t>(red);
                line[x * 3 + 1] = static_cast<std::int16_t>(green);
                line[x * 3 + 2] = static_cast<std::int16_t>(blue);
            });
        };
        DiffuseRows(target, loadRow, choose);
    });
}

} // namespace

DibBlock DitherTo8(const DibBlock& block, int width, int height, int mode, bool lighten) {
    const DibView source(block);
    if (mode == 0) mode = kDitherHalftone;
    if (!IsAccepted(source.BitCount()) || mode < kDitherHalftone || mode > kDitherMono) return {};
    auto result = CreateDIB(width, height, 8);
    const DibRows target(result);
    if (!target) return {};
    if (mode == kDitherHalftone) {
        SetDIBTable(result, kHalftonePalette);
        DitherByThresholds(source, target, lighten);
        return result;
    }
    const auto& rule = kIndexRules[static_cast<std::size_t>(mode - kDither484)];
    const auto colors = ColorsOf(rule, mode == kDitherMono);
    SetDIBTable(result, TableOfIndices(colors));
    DitherByDiffusion(source, target, rule, colors, lighten);
    return result;
}

DibBlock DitherMono(const DibBlock& block) {
    return DitherTo8(block, DIBWidth(block), DIBHeight(block), kDitherMono, false);
}

DibBlock ThresholdToMono(const DibBlock& block) {
    const DibView source(block);
    if (!IsAccepted(source.BitCount())) return {};
    auto result = ConvertPixels(source, 8, [](std::uint8_t* to, Argb color) {
        *to = (RedOf(color) + GreenOf(color) + BlueOf(color)) / 3 >= 128 ? 255 : 0;
    });
    constexpr ColorTable table = MakeMonoTable();
    SetDIBTable(result, table);
    return result;
}

} // namespace pelorin
