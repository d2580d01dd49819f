// One image format of an icon, stored as it stands in an icon file.
//
// The block of an image that is not compressed:
//   0     40-byte bitmap header: the height is twice the image's, planes 1, bit count 1, 4, 8, 24 or 32,
//         colours used = the colours field
//   40    colour table, colours x 4 bytes (none at 24 and 32 bits)
//   ...   XOR rows: the image, the bottom row first, padded to 4 bytes
//   ...   AND rows: 1 bit a pixel, the same order, padded to 4 bytes; a set bit is transparent
// A 32-bit block has AND rows too. A compressed image is a whole PNG file in the icon file and a block in memory.
#pragma once

#include "icon/icon_format.h"
#include "pixel/cdib.h"

namespace pelorin {

class CVnIcon {
public:
    CVnIcon() = default;

    // ---- what it is ----
    int m_nWidth = 0, m_nHeight = 0;
    /// 0, 2, 16 or 256; other values occur in odd files and give a block without XOR rows.
    int m_nColors = 0;
    bool m_bAlpha = false;      ///< 32 bits
    bool m_bCompressed = false; ///< stored as PNG
    /// Starts set; cleared when a 256-entry table differs from the standard one.
    bool m_bStandardPalette = true;
    int m_nHotSpotX = -1, m_nHotSpotY = -1; ///< -1: none
    int m_nResourceId = 0;
    std::uint32_t m_nReserved = 0;

    // ---- the block ----
    Bytes m_hImage;
    std::uint32_t m_nBytes = 0; ///< what the size rule gives for the fields above
    Bytes m_pPngData;           ///< the image compressed, made while a library is written

    /// 1, 4, 8, 24 or 32 by colours and alpha; 0 for an unusual number of colours.
    [[nodiscard]] int BitCount() const;
    /// 40 + table + XOR rows + AND rows, by colours and alpha; 0 when a side is not positive or above the pixel cap.
    [[nodiscard]] static std::uint32_t BlockSize(int width, int height, int colors, bool alpha);

    /// Sets the four fields, computes `m_nBytes` and takes a fresh zeroed block. False, with nothing changed, when a
    /// side is not positive or the picture is above `kMaxPixels`.
    bool Create(int width, int height, int colors, bool alpha);
    /// A copy for another group: writers' scratch and caches start anew.
    void Copy(const CVnIcon& other);

    /// Reads one image at the start of `data`, which may go on behind it. A PNG needs its size in `bytes`; `bits` is
    /// the depth that a decoded PNG gets (0: 32). `bytes` and `bits` are not used otherwise. A short block is filled
    /// with zeros. False when it is no image.
    [[nodiscard]] bool ReadFromMemory(ByteSpan data, std::uint32_t bytes, int bits);
    /// The image as a PNG file; empty when it cannot be made. A 24-bit block is changed by this (see
    /// `IconBlockToDIB32`).
    [[nodiscard]] Bytes WriteCompressed();
};

/// 32-bpp picture of an icon block. At 1, 4 and 8 bits a set AND bit gives (192, 192, 192) with alpha 0, all else the
/// table's colour (black and white at 1 bit) with alpha 255. At 24 bits an opaque pixel comes out black, and the source
/// row takes the black too: kept on purpose. Empty for a block that is not whole.
[[nodiscard]] DibBlock IconBlockToDIB32(MutableByteSpan iconBlock);
/// An icon block of depth 1, 4, 8, 24 or 32 from a 32-bpp picture; empty for other depths.
[[nodiscard]] Bytes DIB32ToIconBlock(const DibBlock& block32, int bits);

} // namespace pelorin
