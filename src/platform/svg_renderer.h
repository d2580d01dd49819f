// Drawing of SVG pictures, which a library of the system does where it is installed.
#pragma once

#include "base/bytes.h"
#include "base/geometry.h"

#include <vector>

namespace pelorin {

/// The library is looked for once. Without it the two functions below give nothing.
[[nodiscard]] bool HasSvgRenderer();

/// The picture's own size in pixels at 96 to the inch, rounded up, as it stands in the file; that of its view box where
/// it has none. 0 x 0 for a file that cannot be read or says neither.
[[nodiscard]] Size SvgSize(ByteSpan file);

/// The picture drawn as large as fits into `size`, in its middle: `size.width * size.height` pixels, the top row first,
/// 0xAARRGGBB with the colours multiplied by alpha. No file beside it is read. Both sides are 1 to `kMaxSvgSide`. Empty
/// when the file cannot be drawn.
[[nodiscard]] std::vector<std::uint32_t> DrawSvg(ByteSpan file, Size size);

inline constexpr int kMaxSvgSide = 8192;

} // namespace pelorin
