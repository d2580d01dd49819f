// An icon cut down to what a small preview needs.
#pragma once

#include "icon/icon_group.h"

namespace pelorin {

/// Of several formats only those stay that are best for 16, 32 and 48 pixels with alpha; what is wider or taller than
/// 48 becomes 48 x 48 with alpha.
void ReduceGroup(CIconGroup& group);

} // namespace pelorin
