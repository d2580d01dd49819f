// Bitmaps that a metafile draws smaller than they are.
#pragma once

#include "base/geometry.h"
#include "pixel/surface.h"

namespace pelorin::metafile {

/// What becomes of pixels that fall together: black stays, white stays, one of them stays, or they are averaged.
enum class Shrinking { Black = 1, White = 2, One = 3, Average = 4 };

/// A part of the source, all inside of it, at a size that is no larger. Empty where one of the pixels stays as it is:
/// with `One`, and with `Black` and `White` for pictures in other colours too, which they would spoil.
[[nodiscard]] Surface Shrunk(const Surface& source, const Rect& part, Size size, Shrinking how);

} // namespace pelorin::metafile
