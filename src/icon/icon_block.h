// The icon block: one image of an icon as it stands in an icon file.
//
//   0     40-byte bitmap header: the height is twice the image's, planes 1, bit count 1, 4, 8, 24 or 32,
//         colours used = the colours field
//   40    colour table, colours x 4 bytes (none at 24 and 32 bits)
//   ...   XOR rows: the image, the bottom row first, padded to 4 bytes
//   ...   AND rows: 1 bit a pixel, the same order, padded to 4 bytes; a set bit is transparent
// A 32-bit block has AND rows too. How many bits an XOR pixel has follows from the colours field and the alpha flag,
// not from the header; a number of colours other than 0, 2, 16 and 256 gives a block without XOR rows.
#pragma once

#include "pixel/dib.h"

namespace pelorin {

/// Bits of an XOR pixel by colours and alpha: 1, 4, 8, 24 or 32; 0 for an unusual number of colours.
[[nodiscard]] constexpr int IconBitCount(int colors, bool alpha) {
    if (alpha) return 32;
    return colors == 0 ? 24 : colors == 2 ? 1 : colors == 16 ? 4 : colors == 256 ? 8 : 0;
}
/// The colours field of a depth: 2, 16, 256, or 0 above 8 bits.
[[nodiscard]] constexpr int IconColors(int bits) {
    return bits > 0 && bits <= 8 ? 1 << bits : 0;
}

/// What a block's header says of the image.
struct IconBlockHeader {
    int width = 0, height = 0; ///< of the image: half the header's height
    int bitCount = 0, colors = 0;
    [[nodiscard]] bool Alpha() const { return bitCount == 32; }
};
/// False when the header is not whole, is not the 40-byte one, or asks for a larger table than the bytes behind it hold
/// (up to 256 entries may be missing). The sizes are not judged.
[[nodiscard]] bool ReadIconBlockHeader(ByteSpan block, IconBlockHeader& header);

/// Where the parts of a block lie.
struct IconBlockLayout {
    int width = 0, height = 0, bits = 0, colors = 0;
    std::size_t xorStride = 0, andStride = 0;
    std::size_t xorRows = 0, andRows = 0; ///< offsets
    std::size_t size = 0;                 ///< of the whole block; 0: there is no such block

    /// No block when a side is not positive, the picture is above `kMaxPixels`, or the number of colours is negative.
    IconBlockLayout() = default;
    IconBlockLayout(int width, int height, int colors, bool alpha);
    /// From a block's own header, with the height of the image; no block where that is not 40 bytes or the bytes do not
    /// hold what it asks for.
    [[nodiscard]] static IconBlockLayout Of(ByteSpan block);
};

/// A block with its header filled in and everything behind it 0.
[[nodiscard]] Bytes EmptyIconBlock(const IconBlockLayout& layout);

/// 32-bpp picture of an icon block, for PNG files in icons. At 1, 4 and 8 bits a set AND bit gives (192, 192, 192) with
/// alpha 0, all else the table's colour (black and white at 1 bit) with alpha 255. At 24 bits an opaque pixel comes out
/// black, and the source row takes the black too: kept on purpose. Empty for a block that is not whole.
[[nodiscard]] DibBlock IconBlockToDIB32(MutableByteSpan iconBlock);
/// The picture as a person sees it, for export: colours of all depths as they are, a set AND bit gives alpha 0. At 32
/// bits the alpha of the block stands, unless all of it is 0: then the AND rows decide.
[[nodiscard]] DibBlock IconBlockPicture(ByteSpan iconBlock);
/// An icon block of 1, 4, 8, 24 or 32 bits from a 32-bpp picture; empty for other depths. Pixels with alpha 0 become
/// transparent and 0. At 8 bits the palette is computed from the picture, at 4 bits it is the 16 standard colours; both
/// take the nearest colour. At 1 bit every pixel that is not black is white.
[[nodiscard]] Bytes DIB32ToIconBlock(const DibBlock& block32, int bits);

} // namespace pelorin
