// Painting a bitmap onto a surface, stretched into a rectangle or fitted into it.
#pragma once

#include "pixel/surface.h"

namespace pelorin {

struct DrawOptions {
    /// Bits of the screen that the surface stands for. At 8 and fewer a picture without a table is dithered.
    int screenBits = 32;
    /// Makes a copy of the final size first, by the scaler or by dithering, whatever screen and picture are.
    bool viaCopy = false;
};

/// Fills `rect` (which may lie partly outside) with the picture; alpha is not looked at, and the fourth byte becomes
/// 255. Pixels are repeated or dropped, unless a copy of the final size is made first. False when nothing was painted.
bool DrawDIB(Surface& target, const DibBlock& block, const Rect& rect, const DrawOptions& options = {});

/// The same into the largest centred rectangle of the picture's proportions, which is returned; empty when nothing was
/// painted.
Rect DrawDIBFitted(Surface& target, const DibBlock& block, const Rect& rect, const DrawOptions& options = {});

} // namespace pelorin
