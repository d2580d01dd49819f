// Pictures painted over a surface: each colour channel becomes (target x (255 - a) + source x a) / 255, truncated. What
// the alpha a is tells the variants apart. The target's fourth byte stays.
//
// `place` is where the picture goes on the target and `part` what is taken of the source, both in picture coordinates
// with right and bottom outside; what falls outside either is left out. Where sizes differ, pixels are dropped or
// repeated: row y of the place shows row y x height of part / height of place, likewise the columns.
#pragma once

#include "pixel/surface.h"

namespace pelorin {

/// One alpha of 0 to 255 for the whole source.
void BlendConstant(Surface& target, const Rect& place, const Surface& source, const Rect& part, int alpha);

/// A 32-bpp block by its own alpha at its own size. An empty `part` means the whole source, an empty `place` the size
/// of `part`. False, and nothing painted, for another depth.
bool BlendDIBOver(Surface& target, Rect place, const DibBlock& block32, Rect part = {});

/// The same, stretched from `part` to `place`.
bool BlendStretchedDIBOver(Surface& target, Rect place, const DibBlock& block32, Rect part = {});

/// A surface by its fourth byte, at its own size, with its top-left pixel at (x, y).
void BlendAlphaInFourth(Surface& target, int x, int y, const Surface& source);

/// A pair, by the first byte of the grey `alpha`, stretched. False, and nothing painted, when the two are of unequal
/// size.
bool BlendWithAlphaBitmap(Surface& target, const Rect& place, const Surface& color, const Surface& alpha,
                          const Rect& part);

/// Each pixel takes the three colour bytes of `source` and keeps its fourth. False, and nothing changed, for unequal
/// sizes.
bool CopyColorKeepAlpha(Surface& target, const Surface& source);

} // namespace pelorin
