#include "icon/icon_block.h"
#include "pixel/visit_depth.h"

namespace pelorin {

namespace {

constexpr Argb kTransparentGrey = 0x00C0C0C0, kOpaqueBlack = 0xFF000000;

// The XOR rows as a picture of their own, so that one reader of pixels serves icons too.
DibBlock XorPicture(ByteSpan block, const IconBlockLayout& layout) {
    auto picture = DibBlock::FromBytes(block.first(layout.andRows));
    if (picture) {
        StoreU32LE(picture.Data() + 8, static_cast<std::uint32_t>(layout.height));
        StoreU16LE(picture.Data() + 14, static_cast<std::uint16_t>(layout.bits));
        StoreU32LE(picture.Data() + 16, 0);
        StoreU32LE(picture.Data() + 32, static_cast<std::uint32_t>(layout.colors));
    }
    return picture;
}

// Calls `put(to, x, transparent, row)` for every pixel, in stored order.
template <class Row>
void ForEachRow(ByteSpan block, const IconBlockLayout& layout, DibBlock& out, Row&& row) {
    const DibRows rows(out);
    for (int y = 0; y < layout.height; ++y) {
        row(rows.Row(y), block.data() + layout.andRows + layout.andStride * static_cast<std::size_t>(y), y);
    }
}

// All depths without alpha of their own.
DibBlock MaskedPicture(ByteSpan block, const IconBlockLayout& layout, bool blackAndWhite) {
    auto source = XorPicture(block, layout);
    if (blackAndWhite && layout.bits == 1) SetDIBTable(source, std::array<Rgb, 2>{0x000000, 0xFFFFFF});
    const DibView view(source);
    auto out = CreateDIB(layout.width, layout.height, 32);
    if (!view || !out) return {};
    VisitDepth(view, [&](const auto& pixel) {
        ForEachRow(block, layout, out, [&](std::uint8_t* to, const std::uint8_t* mask, int y) {
            const auto* from = view.Row(y);
            for (int x = 0; x < layout.width; ++x, to += 4) {
                StoreU32LE(to, IndexAt<1>(mask, x) ? kTransparentGrey : pixel(from, x) | 0xFF000000u);
            }
        });
    });
    return out;
}

DibBlock CopyOf32(ByteSpan block, const IconBlockLayout& layout) {
    auto out = CreateDIB(layout.width, layout.height, 32);
    if (out) std::memcpy(DibRows(out).Row(0), block.data() + layout.xorRows, layout.andRows - layout.xorRows);
    return out;
}

DibBlock BlackenedPicture(MutableByteSpan block, const IconBlockLayout& layout) {
    auto out = CreateDIB(layout.width, layout.height, 32);
    if (!out) return {};
    ForEachRow(block, layout, out, [&](std::uint8_t* to, const std::uint8_t* mask, int y) {
        auto* from = block.data() + layout.xorRows + layout.xorStride * static_cast<std::size_t>(y);
        for (int x = 0; x < layout.width; ++x, to += 4, from += 3) {
            const bool transparent = IndexAt<1>(mask, x) != 0;
            StoreU32LE(to, transparent ? kTransparentGrey : kOpaqueBlack);
            if (!transparent) std::fill_n(from, 3, std::uint8_t{0});
        }
    });
    return out;
}

} // namespace

DibBlock IconBlockToDIB32(MutableByteSpan iconBlock) {
    const auto layout = IconBlockLayout::Of(iconBlock);
    if (layout.size == 0 || layout.bits == 0) return {};
    if (layout.bits == 32) return CopyOf32(iconBlock, layout);
    return layout.bits == 24 ? BlackenedPicture(iconBlock, layout) : MaskedPicture(iconBlock, layout, true);
}

DibBlock IconBlockPicture(ByteSpan iconBlock) {
    const auto layout = IconBlockLayout::Of(iconBlock);
    if (layout.size == 0 || layout.bits == 0) return {};
    if (layout.bits != 32) return MaskedPicture(iconBlock, layout, false);
    auto picture = CopyOf32(iconBlock, layout);
    return DIBHasAlpha(picture) ? std::move(picture) : MaskedPicture(iconBlock, layout, false);
}

} // namespace pelorin
