// The drop shadow of the editor.
#pragma once

#include "pixel/surface.h"

namespace pelorin {

/// Lays a soft grey shadow beneath a pair of colour and grey alpha, one pixel to the right and down. With `grow` the
/// pair becomes 2 columns and rows larger so that nothing is cut off. False, and the pair as it was, when the two
/// differ in size, are empty or would become too large.
bool DropShadow(Surface& color, Surface& alpha, bool grow);

} // namespace pelorin
