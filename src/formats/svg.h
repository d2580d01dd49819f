// Scalable vector graphics: pictures as drawings in XML, plain or packed with gzip.
//
// Published by the W3C (SVG 1.1, 2); the drawing is librsvg's, where the system has it.
#pragma once

#include "formats/picture_reader.h"

namespace pelorin {

/// XML whose outermost element is "svg", whatever its namespace prefix, or such a file packed with gzip.
[[nodiscard]] bool IsSvg(ByteSpan file);
/// False where the system has no library that draws them: `ReadSvg` then always fails.
[[nodiscard]] bool CanDrawSvg();

/// 32 bits with straight alpha: at the picture's own size, or, with `PictureRequest::drawnFor`, as large as fits into
/// that. A picture that has no size is a square of 512. The facts tell its own size. Sides end at 8192.
[[nodiscard]] DibBlock ReadSvg(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

} // namespace pelorin
