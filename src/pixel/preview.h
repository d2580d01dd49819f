// Small pictures of pictures, for painting.
#pragma once

#include "pixel/dib.h"

namespace pelorin {

/// A 24-bpp block of the given size from a picture of any depth: rows to the nearest, columns averaged, and with
/// `lighten` half way to white. A 32-bpp picture is composed on a checker board of cells of 5 x 5, white and light
/// grey, counted in stored order. Empty for an empty picture and for a size that is not positive or above `kMaxPixels`.
[[nodiscard]] DibBlock StretchToPreview(const DibBlock& block, int width, int height, bool lighten);

} // namespace pelorin
