// The one place that knows how the pixels of each depth are laid out.
#pragma once

#include "pixel/dib.h"

namespace pelorin {

/// 0xAARRGGBB: as a u32 in a block its bytes are blue, green, red, alpha.
using Argb = std::uint32_t;

[[nodiscard]] constexpr bool IsDibDepth(int bits) {
    return bits == 1 || bits == 4 || bits == 8 || bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

/// The index at column `x` of a row with `Bits` 1, 4 or 8.
template <int Bits>
[[nodiscard]] inline unsigned IndexAt(const std::uint8_t* row, int x) {
    if constexpr (Bits == 1) return row[x >> 3] >> (7 - (x & 7)) & 1u;
    if constexpr (Bits == 4) return (x & 1) ? row[x >> 1] & 15u : row[x >> 1] >> 4u;
    if constexpr (Bits == 8) return row[x];
}

/// Writes the index at column `x` of a row with `Bits` 1, 4 or 8; the neighbours in the byte stay.
template <int Bits>
inline void PutIndex(std::uint8_t* row, int x, unsigned index) {
    if constexpr (Bits == 1) {
        const auto mask = static_cast<std::uint8_t>(0x80 >> (x & 7));
        row[x >> 3] = static_cast<std::uint8_t>((index & 1) ? row[x >> 3] | mask : row[x >> 3] & ~mask);
    }
    if constexpr (Bits == 4) {
        auto& byte = row[x >> 1];
        byte = static_cast<std::uint8_t>((x & 1) ? (byte & 0xF0) | (index & 15) : (byte & 0x0F) | (index & 15) << 4);
    }
    if constexpr (Bits == 8) row[x] = static_cast<std::uint8_t>(index);
}

/// Pixel readers: called with a row and a column they give the colour as `Argb`. Depths without alpha give 255.
template <int Bits>
struct IndexedPixel {
    std::array<Rgb, 256> table;
    Argb operator()(const std::uint8_t* row, int x) const { return table[IndexAt<Bits>(row, x)] | 0xFF000000u; }
};
struct Pixel555 {
    Argb operator()(const std::uint8_t* row, int x) const {
        const Argb v = LoadU16LE(row + std::ptrdiff_t{2} * x);
        return 0xFF000000u | (v & 0x7C00) >> 7 << 16 | (v & 0x3E0) >> 2 << 8 | (v & 31) << 3;
    }
};
struct Pixel565 {
    Argb operator()(const std::uint8_t* row, int x) const {
        const Argb v = LoadU16LE(row + std::ptrdiff_t{2} * x);
        return 0xFF000000u | (v & 0xF800) >> 8 << 16 | (v & 0x7E0) >> 3 << 8 | (v & 31) << 3;
    }
};
struct Pixel24 {
    Argb operator()(const std::uint8_t* row, int x) const {
        const auto* p = row + std::ptrdiff_t{3} * x;
        return 0xFF000000u | Argb{p[2]} << 16 | Argb{p[1]} << 8 | p[0];
    }
};
struct Pixel32 {
    Argb operator()(const std::uint8_t* row, int x) const { return LoadU32LE(row + std::ptrdiff_t{4} * x); }
};

/// Calls `visit` with the pixel reader of the view's depth; the loop over the rows belongs inside `visit`, so that it
/// is compiled once a depth. False, without a call, for an empty view.
template <class Visit>
bool VisitDepth(const DibView& view, Visit&& visit) {
    if (!view) return false;
    switch (view.BitCount()) {
    case 1: visit(IndexedPixel<1>{view.Table()}); return true;
    case 4: visit(IndexedPixel<4>{view.Table()}); return true;
    case 8: visit(IndexedPixel<8>{view.Table()}); return true;
    case 15: visit(Pixel555{}); return true;
    case 16: visit(Pixel565{}); return true;
    case 24: visit(Pixel24{}); return true;
    case 32: visit(Pixel32{}); return true;
    default: return false;
    }
}

} // namespace pelorin
