// A Macintosh file in depth: its families, their elements, and what is odd about them.
#pragma once

#include "icon/icon_sources.h"

namespace pelorin {

void InspectMacintoshFile(ByteSpan file, IconFileReport& report);

} // namespace pelorin
