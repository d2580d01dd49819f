// Cutting out, padding and placing: pictures get other borders, their pixels stay as they are.
#pragma once

#include "pixel/surface.h"
#include "pixel/visit_depth.h"

namespace pelorin {

/// The part of a block between the picture columns and rows given, all four included; left and top are raised to 0,
/// right and bottom lowered to the last column and row. 8 (with its table), 24 and 32 bpp; empty otherwise or when
/// nothing is left.
[[nodiscard]] DibBlock CropDIB(const DibBlock& block, int left, int top, int right, int bottom);

/// A 32-bpp picture in the middle of a transparent black square of its longer side; offsets are halved downwards.
[[nodiscard]] DibBlock CenterOnSquare(const DibBlock& block32);

/// A canvas filled with `fill` onto which the top-left part of a 32-bpp picture, as large as `place`, is copied with
/// its top-left pixel at (`place.left`, `place.top`). What falls outside is dropped.
[[nodiscard]] DibBlock PlaceOnCanvas(const DibBlock& block32, int width, int height, const Rect& place, Argb fill);

/// The colours of the first picture with alpha (a x g) >> 8, g being the blue byte of the second, a grey mask. Empty
/// unless both are 32 bpp and of one size.
[[nodiscard]] DibBlock MultiplyAlpha(const DibBlock& block32, const DibBlock& mask32);

/// The part of a bitmap inside `part` (right and bottom outside); pixels beyond the bitmap's edges are 0.
[[nodiscard]] Surface CopyRectOfBitmap(const Surface& bitmap, const Rect& part);

/// Copies `source` onto `target` with its top-left pixel at (x, y); what falls outside is dropped.
void PutBitmapAt(Surface& target, const Surface& source, int x, int y);

} // namespace pelorin
