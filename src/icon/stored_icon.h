// One image format of an icon, stored as it stands in an icon file: a block as icon_block.h lays it out. A compressed
// image is a whole PNG file in the icon file and a block in memory.
#pragma once

#include "icon/icon_block.h"
#include "icon/icon_format.h"
#include "pixel/cdib.h"

#include <memory>
#include <string_view>

namespace pelorin {

class CVnIcon {
public:
    CVnIcon() = default;
    CVnIcon(CVnIcon&&) noexcept = default;
    CVnIcon& operator=(CVnIcon&&) noexcept = default;

    // ---- what it is ----
    int m_nWidth = 0, m_nHeight = 0;
    /// 0, 2, 16 or 256; other values occur in odd files and give a block without XOR rows.
    int m_nColors = 0;
    bool m_bAlpha = false;      ///< 32 bits
    bool m_bCompressed = false; ///< stored as PNG
    /// Starts set; cleared when a 256-entry table differs from the standard one.
    bool m_bStandardPalette = true;
    int m_nHotSpotX = -1, m_nHotSpotY = -1; ///< -1: none
    int m_nResourceId = 0;                  ///< in a program file, or while it is written into a library
    int m_nLanguage = 0;                    ///< of the resource; -1: not yet known
    std::uint64_t m_nFileOffset = 0;        ///< where it stands in the program file that it was read from
    std::uint32_t m_nFileBytes = 0;         ///< bytes that the file keeps for it there
    std::uint32_t m_nReserved = 0;          ///< goes with copies, means nothing here

    // ---- the block ----
    Bytes m_hImage;
    std::uint32_t m_nBytes = 0; ///< what the size rule gives for the fields above
    Bytes m_pPngData;           ///< the image compressed, made while a library is written
    /// Bytes that a compressed image took in the file that it was read from; 0 otherwise.
    std::uint32_t m_nPngBytesRead = 0;

    // ---- scratch of writers and lists; a copy starts with all of it 0 ----
    std::uint32_t m_nSavedOffset = 0, m_nSavedIndex = 0;
    DibBlock m_hPreview;
    std::uint32_t m_nPreviewInfo = 0;
    CDIB m_DrawCache; ///< the picture at the size last drawn, which is kept beside it
    int m_nCacheWidth = 0, m_nCacheHeight = 0;

    /// 1, 4, 8, 24 or 32 by colours and alpha; 0 for an unusual number of colours.
    [[nodiscard]] int BitCount() const { return IconBitCount(m_nColors, m_bAlpha); }
    /// The bit count of an unusual image too: there it is what the block's header says.
    [[nodiscard]] int ShownBitCount() const;
    /// Bytes of the image in a file: those of the block, or of the PNG that was read.
    [[nodiscard]] std::uint32_t StoredBytes() const {
        return m_bCompressed && m_nPngBytesRead != 0 ? m_nPngBytesRead : m_nBytes;
    }
    /// Size of a block, 0 when a side is not positive or the picture is above the pixel cap.
    [[nodiscard]] static std::uint32_t BlockSize(int width, int height, int colors, bool alpha);

    /// Sets the four fields, computes `m_nBytes` and takes a fresh zeroed block. False, with nothing changed, when a
    /// side is not positive or the picture is above `kMaxPixels`.
    bool Create(int width, int height, int colors, bool alpha);
    /// A copy for another group: scratch and caches start anew.
    void Copy(const CVnIcon& other);

    /// Reads one image at the start of `data`, which may go on behind it. A PNG needs its size in `bytes`; `bits` is
    /// the depth that a decoded PNG gets (0: 32). `bytes` and `bits` are not used otherwise. A short block is filled
    /// with zeros. False, with nothing changed, when it is no image.
    [[nodiscard]] bool ReadFromMemory(ByteSpan data, std::uint32_t bytes, int bits);
    /// The image as a PNG file; empty when it cannot be made. A PNG file that was read, is packed well,
    /// holds nothing else and has the image's pixels still goes out again byte for byte. A 24-bit block is changed by
    /// this (see `IconBlockToDIB32`).
    [[nodiscard]] Bytes WriteCompressed();

private:
    bool ReadPngImage(ByteSpan png, int bits);

    std::shared_ptr<const Bytes> m_pPngRead; ///< what the block was read from, if it may go out again
    std::size_t m_nHashRead = 0;             ///< of the pixels that it then had
};

} // namespace pelorin
