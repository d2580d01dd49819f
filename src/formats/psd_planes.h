// One channel of a Photoshop picture, unpacked into one byte of each pixel.
#pragma once

#include "formats/psd_layers.h"

namespace pelorin {

/// The byte of a 32-bpp pixel that a channel goes to; -1 for ids that no pixel has room for.
[[nodiscard]] constexpr int PsdByteOf(int id) {
    switch (id) {
    case kPsdRed: return 2;
    case kPsdGreen: return 1;
    case kPsdBlue: return 0;
    case kPsdAlpha: return 3;
    default: return -1;
    }
}

/// Where the pixels of a plane come from, one after the other, the top row first.
template <class Next>
void FillPlane(const DibRows& rows, int byte, Next&& next) {
    for (int y = 0; y < rows.Height(); ++y) {
        auto* to = rows.PictureRow(y) + byte;
        for (int x = 0; x < rows.Width(); ++x, to += 4) *to = next();
    }
}

} // namespace pelorin
