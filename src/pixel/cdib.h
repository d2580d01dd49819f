// CDIB: the long-lived holder of a block, with its palette and what readers noted about it.
#pragma once

#include "base/archive.h"
#include "pixel/color.h"
#include "pixel/dib.h"
#include "pixel/draw.h"

namespace pelorin {

/// A bitmap that is kept. Every method that changes the picture calls a free function and takes its result; when that
/// is empty the old picture stays, and the method gives false.
class CDIB {
public:
    CDIB() = default;
    explicit CDIB(DibBlock block) { Attach(std::move(block)); }
    CDIB(const CDIB& other);
    CDIB& operator=(const CDIB& other);
    CDIB(CDIB&&) noexcept = default;
    CDIB& operator=(CDIB&&) noexcept = default;

    [[nodiscard]] bool Empty() const { return !m_hDIB; }
    [[nodiscard]] const DibBlock& Block() const { return m_hDIB; }
    [[nodiscard]] DibBlock& Block() { return m_hDIB; }

    // ---- taking and giving ----

    /// Takes the block and rebuilds the palette; source palette and transparent index stay.
    void Attach(DibBlock block);
    /// Clears everything, then takes a copy of the block.
    void CopyFrom(const DibBlock& block);
    /// Frees block, palette and source palette; `m_nTransparentIndex` and `m_nPaletteBits` stay.
    void Clear();
    [[nodiscard]] DibBlock Detach() { return std::move(m_hDIB); }
    /// Takes a 40-byte header and rows that stand apart, for depths without a table; the source palette goes. False
    /// when the header has no size, or the rows are fewer than it tells.
    bool SetBits(ByteSpan header, ByteSpan bits);

    /// u32 0 for an empty bitmap; else u32 1, u32 size, and the block: header, table and rows.
    void Serialize(ArchiveWriter& ar) const;
    /// Throws `ArchiveException` when the bytes end early.
    void Serialize(ArchiveReader& ar);

    // ---- questions ----

    [[nodiscard]] int GetWidth() const { return DIBWidth(m_hDIB); }
    [[nodiscard]] int GetHeight() const { return DIBHeight(m_hDIB); }
    [[nodiscard]] int GetBitCount() const { return DIBBitCount(m_hDIB); }
    [[nodiscard]] int GetNumColors() const { return DIBNumColors(m_hDIB); }
    /// A pixel of a 24- or 32-bpp picture, the top row first: blue in bits 16 to 23, green in 8 to 15, red in 0 to 7.
    /// `alpha` receives its alpha, 255 at 24 bpp. -1 outside the picture and for other depths.
    [[nodiscard]] int GetPixel(int x, int y, std::uint8_t* alpha = nullptr) const;
    /// True when a pixel of an 8-bpp picture holds the index; false for other depths.
    [[nodiscard]] bool HasIndex(int index) const;

    // ---- geometry ----

    /// Depths 8, 24 and 32: the part between two corners, both included, given in any order and brought inside first.
    bool Crop(int x1, int y1, int x2, int y2);
    /// 32 bpp: the picture in the middle of a transparent square of its longer side.
    bool MakeSquare();
    /// 32 bpp: a canvas of the pixel `fill` with at most `cutWidth` x `cutHeight` pixels of the picture at the offset.
    bool ResizeCanvas(int width, int height, int offsetX, int offsetY, int cutWidth, int cutHeight, std::uint32_t fill);
    /// Both 32 bpp and of one size: alpha becomes (alpha x blue byte of the other) >> 8.
    bool MultiplyAlpha(const CDIB& other);
    /// Depths 24 and 32: scaled.
    bool Resize(int width, int height);

    // ---- depth ----

    /// Depths 1, 4, 8, 24 and 32 to 32; with `applyKey` transparent near the colour (see `ConvertTo32` in depth.h).
    bool ConvertTo32(bool applyKey = false, ColorRef keyColor = 0);
    /// Depths 8, 24 and 32 to 24; a 32-bpp picture is composed on the colour, or loses its alpha with `kNoColor`.
    bool ConvertTo24(ColorRef background);
    /// To 8 bpp with a palette computed from the picture, dithered; a picture with alpha is composed on white first.
    bool ReduceTo8Bit();
    /// The same with the colours given, at most 256.
    bool ReduceToPalette(std::span<const Rgb> colors);

    // ---- the palette of the source file, and its transparent colour ----

    /// 8 bpp: notes the first 1 << bits table entries as the source palette. False for other depths, for fewer entries
    /// and for bits not in 1 to 8.
    bool KeepSourcePalette(int bits);
    /// 32 bpp with a source palette: back to 8 bpp on that palette; the transparent index moves to its last place.
    bool ApplySourcePalette();
    /// 8 bpp with a transparent index: to 32 bpp, that index with alpha 0.
    bool ApplyTransparentIndex();

    // ---- painting ----

    bool Draw(Surface& target, const Rect& rect, const DrawOptions& options = {}) const {
        return DrawDIB(target, m_hDIB, rect, options);
    }
    Rect DrawFitted(Surface& target, const Rect& rect, const DrawOptions& options = {}) const {
        return DrawDIBFitted(target, m_hDIB, rect, options);
    }

    CPalette m_Palette;           ///< the block's table; empty when it has none
    int m_nFrameRate = 0;         ///< display time of a frame, in 1/60 s
    int m_nTransparentIndex = -1; ///< of an 8-bpp image, -1 for none
    int m_nPaletteBits = 0;       ///< the source palette has 1 << bits entries; 0 for none
    Bytes m_pSourcePalette;       ///< red, green, blue triples

private:
    bool Replace(DibBlock block);

    DibBlock m_hDIB;
};

} // namespace pelorin
