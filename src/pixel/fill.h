// Filling, selecting and erasing by colour.
//
// Two colours are near each other when |dr| + |dg| + |db| is at most the tolerance; alpha plays no part.
#pragma once

#include "pixel/color.h"

namespace pelorin {

/// Fills the region around the picture's pixel (x, y) that is near `oldColor` with `newColor` at alpha 255 and writes
/// opaque white at the same places of `mask`. Both blocks are 32 bpp and of one size; colours are 0x00RRGGBB.
///
/// The region is what columns of near pixels reach sideways, pixel by pixel. A column that was filled also looks
/// sideways along the pixels above and below it that happen to be near `newColor` already, as far as they follow
/// without a gap. Nothing happens when the two colours are equal, or when (x, y) lies outside or is not near
/// `oldColor`. False for blocks that cannot be filled.
bool FloodFill(DibBlock& image32, DibBlock& mask32, int x, int y, Rgb newColor, Rgb oldColor, int tolerance);

/// A 32-bpp mask, white where a flood fill from (x, y) would go and 0 elsewhere; nothing is selected from a pixel that
/// is pure magenta, the colour that the selection works with. Empty for another depth.
[[nodiscard]] DibBlock SelectSimilar(const DibBlock& block32, int x, int y, int tolerance);

/// The picture with alpha taken away by likeness to the colour at (x, y), for all of it or, with `contiguous`, for the
/// region around (x, y) with a soft edge. Colours stay. Empty for another depth and for a pixel outside.
[[nodiscard]] DibBlock EraseColor(const DibBlock& block32, int x, int y, bool contiguous, int tolerance);

} // namespace pelorin
