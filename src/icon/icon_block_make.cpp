#include "icon/icon_block.h"
#include "icon/icon_format.h"
#include "pixel/nearest_color.h"
#include "pixel/quantize.h"
#include "pixel/visit_depth.h"

namespace pelorin {

namespace {

void StoreTable(Bytes& block, const ColorTable& table, int colors) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(colors); ++i)
        StoreU32LE(&block[kDibHeaderSize + i * 4], table[i]);
}

// Rows in stored order from left to right: the nearest-colour search remembers, so the order is part of the result.
template <class Put>
void PutPixels(Bytes& block, const IconBlockLayout& layout, const DibView& picture, Put&& put) {
    for (int y = 0; y < layout.height; ++y) {
        const auto* from = picture.Row(y);
        auto* to = block.data() + layout.xorRows + layout.xorStride * static_cast<std::size_t>(y);
        auto* mask = block.data() + layout.andRows + layout.andStride * static_cast<std::size_t>(y);
        for (int x = 0; x < layout.width; ++x, from += 4) {
            if (from[3] == 0) {
                PutIndex<1>(mask, x, 1);
            } else {
                put(to, x, from);
            }
        }
    }
}

template <int Bits>
void PutNearest(Bytes& block, const IconBlockLayout& layout, const DibView& picture, const ColorTable& table) {
    StoreTable(block, table, layout.colors);
    NearestColor nearest(table, layout.colors);
    PutPixels(block, layout, picture, [&](std::uint8_t* row, int x, const std::uint8_t* pixel) {
        PutIndex<Bits>(row, x, nearest.Find(pixel[2], pixel[1], pixel[0]).index);
    });
}

void PutBlackAndWhite(Bytes& block, const IconBlockLayout& layout, const DibView& picture) {
    StoreU32LE(&block[kDibHeaderSize + 4], 0xFFFFFF);
    PutPixels(block, layout, picture, [](std::uint8_t* row, int x, const std::uint8_t* pixel) {
        PutIndex<1>(row, x, (LoadU32LE(pixel) & 0xFFFFFF) != 0);
    });
}

template <int BytesAPixel>
void PutColors(Bytes& block, const IconBlockLayout& layout, const DibView& picture) {
    PutPixels(block, layout, picture, [](std::uint8_t* row, int x, const std::uint8_t* pixel) {
        std::memcpy(row + std::ptrdiff_t{BytesAPixel} * x, pixel, BytesAPixel);
    });
}

} // namespace

Bytes EmptyIconBlock(const IconBlockLayout& layout) {
    ByteWriter header(layout.size);
    header.U32LE(kDibHeaderSize);
    header.I32LE(layout.width);
    header.I32LE(layout.height * 2);
    header.U16LE(1);
    header.U16LE(static_cast<std::uint32_t>(layout.bits));
    header.U32LE(0);
    header.U32LE(static_cast<std::uint32_t>(layout.size));
    header.Zeros(8);
    header.U32LE(static_cast<std::uint32_t>(layout.colors));
    header.Zeros(4);
    header.Zeros(layout.size - header.Size());
    return header.Take();
}

Bytes DIB32ToIconBlock(const DibBlock& block32, int bits) {
    const DibView picture(block32);
    if (!picture || picture.BitCount() != 32 || !IsIconDepth(bits)) return {};
    const IconBlockLayout layout(picture.Width(), picture.Height(), IconColors(bits), bits == 32);
    auto block = EmptyIconBlock(layout);
    switch (bits) {
    case 32: PutColors<4>(block, layout, picture); break;
    case 24: PutColors<3>(block, layout, picture); break;
    case 8: {
        int count = 256;
        const auto table = QuantizeImage(block32, count, false);
        if (!table) return {};
        PutNearest<8>(block, layout, picture, *table);
        break;
    }
    case 4: PutNearest<4>(block, layout, picture, kSixteenColorPalette); break;
    default: PutBlackAndWhite(block, layout, picture); break;
    }
    return block;
}

} // namespace pelorin
