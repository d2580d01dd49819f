// Small pictures for tests, written as they look: the top row first.
#pragma once

#include "pixel/dib.h"
#include "pixel/visit_depth.h"

#include <initializer_list>

namespace pelorin::test {

/// A 32-bpp block from 0xAARRGGBB pixels, the top row first.
inline DibBlock Picture32(int width, std::initializer_list<Argb> pixels) {
    const int height = static_cast<int>(pixels.size()) / width;
    auto block = CreateDIB(width, height, 32);
    const DibRows rows(block);
    auto next = pixels.begin();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) StoreU32LE(rows.PictureRow(y) + std::ptrdiff_t{4} * x, *next++);
    }
    return block;
}

/// The colour at picture coordinates, whatever the depth.
inline Argb At(const DibBlock& block, int x, int y) {
    const DibView view(block);
    Argb color = 0;
    VisitDepth(view, [&](const auto& pixel) { color = pixel(view.PictureRow(y), x); });
    return color;
}

} // namespace pelorin::test
