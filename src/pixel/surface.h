// The working plane: 32 bits a pixel, bytes blue, green, red and a fourth, the bottom picture row first.
//
// A device bitmap, a plane of an icon, the working copy of a filter: all are this. What the fourth byte means is the
// owner's business. A surface has the row layout of a 32-bpp block, so the two convert by one copy.
#pragma once

#include "pixel/dib.h"

namespace pelorin {

class Surface {
public:
    Surface() = default;
    /// All bytes 0. Empty when a side is not positive or the picture is above `kMaxPixels`.
    Surface(int width, int height) {
        if (width <= 0 || height <= 0 || std::int64_t{width} * height > kMaxPixels) return;
        m_width = width;
        m_height = height;
        m_pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    }

    explicit operator bool() const { return !m_pixels.empty(); }
    [[nodiscard]] int Width() const { return m_width; }
    [[nodiscard]] int Height() const { return m_height; }
    [[nodiscard]] Size GetSize() const { return {m_width, m_height}; }
    [[nodiscard]] std::size_t Stride() const { return static_cast<std::size_t>(m_width) * 4; }

    /// Stored row `y`: 0 is the bottom row of the picture.
    [[nodiscard]] std::uint8_t* Row(int y) { return m_pixels.data() + Stride() * static_cast<std::size_t>(y); }
    [[nodiscard]] const std::uint8_t* Row(int y) const {
        return m_pixels.data() + Stride() * static_cast<std::size_t>(y);
    }
    /// Picture row `y`: 0 is the top row.
    [[nodiscard]] std::uint8_t* PictureRow(int y) { return Row(m_height - 1 - y); }
    [[nodiscard]] const std::uint8_t* PictureRow(int y) const { return Row(m_height - 1 - y); }
    /// The pixel at picture coordinates, as 0xFFRRGGBB with the fourth byte on top.
    [[nodiscard]] std::uint32_t At(int x, int y) const { return LoadU32LE(PictureRow(y) + std::ptrdiff_t{4} * x); }
    void Put(int x, int y, std::uint32_t value) { StoreU32LE(PictureRow(y) + std::ptrdiff_t{4} * x, value); }
    void Fill(std::uint32_t value) {
        for (std::size_t i = 0; i < m_pixels.size(); i += 4) StoreU32LE(m_pixels.data() + i, value);
    }
    [[nodiscard]] ByteSpan Span() const { return m_pixels; }
    [[nodiscard]] MutableByteSpan Span() { return m_pixels; }

    friend bool operator==(const Surface&, const Surface&) = default;

private:
    int m_width = 0, m_height = 0;
    Bytes m_pixels;
};

/// The rows of a 32-bpp block, or of any other depth with 255 in the fourth byte; empty for an empty block.
[[nodiscard]] Surface SurfaceFromDIB(const DibBlock& block);
/// A 32-bpp block of the same rows.
[[nodiscard]] DibBlock DIBFromSurface(const Surface& surface);
/// A 24-bpp block of the first three bytes.
[[nodiscard]] DibBlock DIB24FromSurface(const Surface& surface);

} // namespace pelorin
