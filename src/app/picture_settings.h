// The options of pictures, from the program's settings to those that take them as parameters.
#pragma once

#include "formats/dib_doc.h"

namespace pelorin {

/// References to the settings themselves.
[[nodiscard]] DibDocSettings PictureSettings();

} // namespace pelorin
