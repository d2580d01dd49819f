#include "pixel/alpha_mask.h"

#include "pixel/visit_depth.h"

#include <cstdlib>

namespace pelorin {

namespace {

constexpr Argb kWhite = 0xFFFFFF;

// Splits rows pixel by pixel: `split(color)` gives the two pixels of the pair.
template <class PixelAt, class Split>
BitmapPair SplitRows(const std::uint8_t* rows, std::size_t stride, Size size, const PixelAt& pixel, Split&& split) {
    BitmapPair pair{Surface(size.width, size.height), Surface(size.width, size.height)};
    for (int y = 0; y < pair.color.Height(); ++y, rows += stride) {
        auto* color = pair.color.Row(y);
        auto* mask = pair.mask.Row(y);
        for (int x = 0; x < size.width; ++x, color += 4, mask += 4) {
            const auto [c, m] = split(pixel(rows, x));
            StoreU32LE(color, c);
            StoreU32LE(mask, m);
        }
    }
    return pair;
}

struct Two {
    Argb color, mask;
};

Two ByThreshold(Argb pixel) {
    const int alpha = static_cast<int>(pixel >> 24);
    if (alpha < 128) return {0, kWhite};
    const auto onWhite = [&](int channel) { return Blend255(channel, 255, alpha); };
    return {MakeRgb(onWhite(RedOf(pixel)), onWhite(GreenOf(pixel)), onWhite(BlueOf(pixel))), 0};
}

int Distance(Rgb a, Rgb b) {
    return std::abs(RedOf(a) - RedOf(b)) + std::abs(GreenOf(a) - GreenOf(b)) + std::abs(BlueOf(a) - BlueOf(b));
}

// The rows of a 32-bpp block of this width in which `height` rows and `behind` bytes have room, whatever height its
// header tells; null when they have none.
const std::uint8_t* RowsOf32(ByteSpan block, Size size, std::size_t behind = 0) {
    if (DIBBitCount(block) != 32 || DIBWidth(block) != size.width || size.width <= 0 || size.height <= 0)
        return nullptr;
    const auto offset = DIBRowsOffset(block);
    const auto rows = DibStride(size.width, 32) * static_cast<std::size_t>(size.height);
    if (offset < kDibHeaderSize || block.size() - offset < rows + behind) return nullptr;
    return block.data() + offset;
}

// Writes rows of 32 bits from a pair: `merge(color, mask)` gives the pixel.
template <class Merge>
bool MergeRows(const Surface& color, const Surface& mask, MutableByteSpan block, std::size_t behind, Merge&& merge) {
    if (color.GetSize() != mask.GetSize()) return false;
    const auto* found = RowsOf32(block, color.GetSize(), behind);
    if (found == nullptr) return false;
    auto* to = block.data() + (found - block.data());
    for (int y = 0; y < color.Height(); ++y) {
        const auto* c = color.Row(y);
        const auto* m = mask.Row(y);
        for (int x = 0; x < color.Width(); ++x, c += 4, m += 4, to += 4) {
            StoreU32LE(to, merge(LoadU32LE(c) & kWhite, Argb{m[0]}));
        }
    }
    return true;
}

void DoubleHeight(MutableByteSpan block, int height) {
    StoreU32LE(block.data() + 8, static_cast<std::uint32_t>(height) * 2);
}

} // namespace

BitmapPair SplitByThreshold(const DibBlock& block32) {
    const DibView source(block32);
    if (source.BitCount() != 32) return {};
    return SplitRows(source.Row(0), source.Stride(), source.GetSize(), Pixel32{}, ByThreshold);
}

BitmapPair SplitByColor(const DibBlock& block24, ColorRef keyColor, int tolerance) {
    const DibView source(block24);
    if (source.BitCount() != 24) return {};
    const Rgb key = RgbFromColorRef(keyColor);
    const bool hasKey = keyColor != kNoColor;
    return SplitRows(source.Row(0), source.Stride(), source.GetSize(), Pixel24{}, [&](Argb pixel) {
        return hasKey && Distance(pixel, key) * 2 <= tolerance ? Two{0, kWhite} : Two{pixel & kWhite, 0};
    });
}

BitmapPair SplitColorAlpha(ByteSpan block32, bool fullHeight) {
    const Size size{DIBWidth(block32), fullHeight ? DIBHeight(block32) : DIBHeight(block32) / 2};
    const auto* rows = RowsOf32(block32, size);
    if (rows == nullptr) return {};
    return SplitRows(rows, DibStride(size.width, 32), size, Pixel32{}, [](Argb pixel) {
        return Two{pixel & kWhite, (pixel >> 24) * 0x010101};
    });
}

bool MergeMask(const Surface& color, const Surface& mask, MutableByteSpan block32) {
    return MergeRows(color, mask, block32, 0, [](Argb c, Argb m) { return m == 255 ? 0 : c | 0xFF000000u; });
}

bool MergeAlpha(const Surface& color, const Surface& alphaGrey, MutableByteSpan block32, bool fullHeight) {
    if (!MergeRows(color, alphaGrey, block32, 0, [](Argb c, Argb alpha) { return c | alpha << 24; })) return false;
    if (!fullHeight) DoubleHeight(block32, color.Height());
    return true;
}

bool MergeToIconBlock(const Surface& color, const Surface& alphaGrey, MutableByteSpan iconBlock, bool fullHeight) {
    const auto stride = DibStride(color.Width(), 1);
    const auto plane = stride * static_cast<std::size_t>(color.Height());
    const auto merge = [](Argb c, Argb alpha) { return alpha == 0 ? 0 : c | alpha << 24; };
    if (!MergeRows(color, alphaGrey, iconBlock, plane, merge)) return false;

    const auto pixels = DibStride(color.Width(), 32) * static_cast<std::size_t>(color.Height());
    const auto maskRows = iconBlock.subspan(DIBRowsOffset(iconBlock) + pixels, plane);
    std::fill(maskRows.begin(), maskRows.end(), std::uint8_t{0});
    for (int y = 0; y < color.Height(); ++y) {
        auto* bits = maskRows.data() + stride * static_cast<std::size_t>(y);
        const auto* alpha = alphaGrey.Row(y);
        for (int x = 0; x < color.Width(); ++x) PutIndex<1>(bits, x, alpha[x * 4] == 0 ? 1 : 0);
    }
    if (!fullHeight) {
        DoubleHeight(iconBlock, color.Height());
        StoreU32LE(iconBlock.data() + 20, static_cast<std::uint32_t>(pixels + plane));
    }
    return true;
}

bool ClearWhereMasked(Surface& color, const Surface& mask) {
    if (color.GetSize() != mask.GetSize()) return false;
    for (int y = 0; y < color.Height(); ++y) {
        auto* c = color.Row(y);
        const auto* m = mask.Row(y);
        for (int x = 0; x < color.Width(); ++x, c += 4, m += 4) {
            if (m[0] == 255) c[0] = c[1] = c[2] = 0;
        }
    }
    return true;
}

} // namespace pelorin
