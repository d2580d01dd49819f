// CDIB: the long-lived holder of a block, with its palette and what readers noted about it.
#pragma once

#include "base/archive.h"
#include "pixel/dib.h"

namespace pelorin {

class Surface;

/// A bitmap that is kept. Every method that changes the picture calls a free function and takes its result; when that
/// is empty the old picture stays.
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

    /// Takes the block and rebuilds the palette; source palette and transparent index stay.
    void Attach(DibBlock block);
    /// Clears everything, then takes a copy of the block.
    void CopyFrom(const DibBlock& block);
    /// Frees block, palette and source palette; `m_nTransparentIndex` and `m_nPaletteBits` stay.
    void Clear();
    [[nodiscard]] DibBlock Detach() { return std::move(m_hDIB); }

    [[nodiscard]] int GetWidth() const { return DIBWidth(m_hDIB); }
    [[nodiscard]] int GetHeight() const { return DIBHeight(m_hDIB); }
    [[nodiscard]] int GetBitCount() const { return DIBBitCount(m_hDIB); }
    [[nodiscard]] int GetNumColors() const { return DIBNumColors(m_hDIB); }

    CPalette m_Palette;
    int m_nFrameRate = 0;         ///< display time of a frame, in 1/60 s
    int m_nTransparentIndex = -1; ///< of an 8-bpp image, -1 for none
    int m_nPaletteBits = 0;       ///< the source palette has 1 << bits entries; 0 for none
    Bytes m_pSourcePalette;       ///< red, green, blue triples

private:
    DibBlock m_hDIB;
};

} // namespace pelorin
