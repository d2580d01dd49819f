// The loop of every conversion that makes one output pixel from one input pixel.
#pragma once

#include "pixel/visit_depth.h"

namespace pelorin {

inline void PutPixel24(std::uint8_t* to, Argb color) {
    to[0] = static_cast<std::uint8_t>(color);
    to[1] = static_cast<std::uint8_t>(color >> 8);
    to[2] = static_cast<std::uint8_t>(color >> 16);
}

/// A new block of `bits` (8 or more) and the source's size; `put(to, color)` writes one pixel, in stored order. Empty
/// for an empty view.
template <class Put>
[[nodiscard]] DibBlock ConvertPixels(const DibView& source, int bits, Put&& put) {
    auto result = source ? CreateDIB(source.Width(), source.Height(), bits) : DibBlock();
    const DibRows target(result);
    if (!target) return {};
    VisitDepth(source, [&](const auto& pixel) {
        const std::ptrdiff_t step = target.BitCount() / 8;
        for (int y = 0; y < source.Height(); ++y) {
            const auto* from = source.Row(y);
            auto* to = target.Row(y);
            for (int x = 0; x < source.Width(); ++x, to += step) put(to, pixel(from, x));
        }
    });
    return result;
}

} // namespace pelorin
