// What stands in an icon or cursor file, and what is odd about it.
#pragma once

#include "icon/icon_sources.h"

namespace pelorin {

/// Directory and images side by side: sizes and depths that disagree, images that are cut off, overlap or are missing,
/// bytes that belong to nothing.
void InspectIco(ByteSpan file, IconFileReport& report);

} // namespace pelorin
