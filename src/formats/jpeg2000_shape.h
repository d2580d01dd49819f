// What decoding a JPEG 2000 file would cost, told from its markers before the library is let at it.
#pragma once

#include "base/bytes.h"

namespace pelorin {

struct Jpeg2000Shape {
    std::uint32_t width = 0, height = 0;
    std::uint32_t components = 0;
    /// Wavelet levels that every component of every tile has.
    int levels = 32;
};

/// True when the markers make sense and the work that they announce is in proportion: each tile, packet and code block
/// costs memory, and a few bytes of header can announce millions of them.
[[nodiscard]] bool ReadJpeg2000Shape(ByteSpan file, Jpeg2000Shape& shape);

} // namespace pelorin
