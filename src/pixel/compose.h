// One pair of colour and grey alpha laid over another.
#pragma once

#include "pixel/surface.h"

namespace pelorin {

struct ComposeFlags {
    bool compose = false; ///< blend; without it and without `behind` the source replaces the destination
    bool erase = false;   ///< the top layer takes alpha away from the bottom one
    bool behind = false;  ///< the destination is the top layer
};

/// Combines the pair `srcColor`, `srcAlpha` with the part of the destination pair that has its top-left pixel at (x, y)
/// in picture coordinates and is `width` x `height` large; what falls outside either pair is left out. The result lands
/// in the destination. Alpha is the first byte of an alpha surface and is written to its three colour bytes; where
/// nothing is visible the colour becomes white. Fourth bytes of the destination stay. False, and nothing changed, when
/// the two halves of a pair differ in size.
bool ComposeLayers(Surface& destColor, Surface& destAlpha, int x, int y, int width, int height, const Surface& srcColor,
                   const Surface& srcAlpha, ComposeFlags flags);

} // namespace pelorin
