// Stored icons painted onto a surface, for lists and previews.
#pragma once

#include "icon/stored_icon.h"
#include "pixel/surface.h"

namespace pelorin {

/// At its own size, with its top-left pixel at the point. Transparent parts let the target show. False for a block that
/// is not whole.
bool DrawIcon(CVnIcon& icon, Surface& target, Point at);
/// Scaled to the size with its top-left pixel at the point. The scaled picture stays with the icon until another size
/// is asked for.
bool DrawIconScaled(CVnIcon& icon, Surface& target, Point at, Size size);
/// Centred in the rectangle: at its own size where that fits, else scaled down in its proportions. The place painted;
/// empty when nothing was.
Rect DrawIconFitted(CVnIcon& icon, Surface& target, const Rect& place);

} // namespace pelorin
