// A stored image as a picture of 32 bits, the way cursors and candidates are shown.
#pragma once

#include "icon/stored_icon.h"

namespace pelorin {

/// At 32 bits colour and alpha as they are stored; at other depths transparent black where the AND bit is set, else
/// the colour with alpha 255. Empty for a block that is not whole.
[[nodiscard]] DibBlock IconPicture32(const CVnIcon& icon);

} // namespace pelorin
