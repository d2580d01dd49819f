// Between the two forms of an image format: the stored block and the two planes that are edited.
//
// Planes are surfaces of the image's size. In the mask of a format without alpha a white pixel is transparent and a
// black one opaque; in that of a format with alpha the grey level is the alpha, 255 opaque: the opposite sense.
#pragma once

#include "icon/stored_icon.h"
#include "pixel/surface.h"

namespace pelorin {

/// Fills the planes from the icon's block; indexed pixels take their colours from `palette` or, where that is null,
/// from the block. False for a block that is not whole; a block without XOR rows gives a black colour plane.
bool ToBitmaps(const CVnIcon& icon, Surface& image, Surface& mask, const CPalette* palette = nullptr);

/// Fills the icon's block, which `Create` has made, from planes of its size. The block's table becomes `palette` at 8
/// bits, and also at 4 and 1 bits where it has that many entries; else the 16 standard colours, or black and white.
/// False, with nothing changed, for an empty block or planes of another size.
bool FromBitmaps(CVnIcon& icon, const Surface& image, const Surface& mask, const CPalette& palette);

/// The table of the icon's block as a palette; empty at 24 and 32 bits.
[[nodiscard]] CPalette PaletteOfBlock(const CVnIcon& icon);

} // namespace pelorin
