#include "pixel/quantize.h"

#include "pixel/octree.h"

namespace pelorin {

namespace {

bool HasThreeChannels(const DibView& view) {
    return view.BitCount() == 24 || view.BitCount() == 32;
}

void Feed(OctreeQuantizer& tree, const DibView& view) {
    const std::ptrdiff_t step = view.BitCount() / 8;
    for (int y = 0; y < view.Height(); ++y) {
        const auto* pixel = view.Row(y);
        for (int x = 0; x < view.Width(); ++x, pixel += step) tree.Add(pixel[2], pixel[1], pixel[0]);
    }
}

bool IsWhite(Rgb color) {
    return color == 0xFFFFFF;
}

// White takes the last place; a white that stands elsewhere changes places with what was there.
void MoveWhiteToTheEnd(ColorTable& table) {
    if (IsWhite(table.back())) return;
    const auto white = std::find_if(table.begin(), table.end() - 1, IsWhite);
    *white = table.back();
    table.back() = 0xFFFFFF;
}

std::optional<ColorTable> Quantize(std::span<const DibView> views, int& count, bool reserveWhite) {
    if (!std::all_of(views.begin(), views.end(), HasThreeChannels)) return {};
    const int asked = count >= 1 && count <= 256 ? count : 256;
    OctreeQuantizer tree(static_cast<unsigned>(asked));
    if (reserveWhite) {
        for (int i = 0; i < 100; ++i) tree.Add(0, 0, 0);
        for (int i = 0; i < 100; ++i) tree.Add(255, 255, 255);
    }
    for (const auto& view : views) Feed(tree, view);
    auto table = tree.Table();
    if (reserveWhite) MoveWhiteToTheEnd(table);
    count = std::max(static_cast<int>(tree.LeafCount()), asked);
    return table;
}

} // namespace

std::optional<ColorTable> QuantizeImage(const DibBlock& block, int& count, bool reserveWhite) {
    const std::array views = {DibView(block)};
    return Quantize(views, count, reserveWhite);
}

std::optional<ColorTable> QuantizeTwoImages(const DibBlock& first, const DibBlock& second, int& count,
                                            bool reserveWhite) {
    const std::array views = {DibView(first), DibView(second)};
    return Quantize(views, count, reserveWhite);
}

} // namespace pelorin
