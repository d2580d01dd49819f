// The components of a JPEG as blue, green and red.
#pragma once

#include "base/bytes.h"

#include <jpeglib.h>

#include <array>

namespace pelorin {

/// One row of four inks as blue, green, red; `inverted`: what is stored is the light that each ink lets through.
void PutJpegInks(const std::uint8_t* inks, std::uint8_t* to, int width, bool inverted);

/// One row of grey, YCbCr, RGB, CMYK or YCCK as blue, green, red, with the JPEG library's roundings. `planes` has the
/// row of each component.
void PutJpegRow(J_COLOR_SPACE space, const std::array<const std::uint8_t*, 4>& planes, std::uint8_t* to, int pixels,
                bool invertedInks);

} // namespace pelorin
