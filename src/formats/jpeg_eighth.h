// A JPEG at an eighth of its size, where the library's way there is long.
//
// At that size a block of 8 x 8 pixels is one pixel, its mean, and only the mean's coefficient counts. The library
// still decodes the code of every other coefficient one by one, which takes half as long as the whole picture does, and
// of a progressive file it keeps all coefficients. Here those codes are stepped over, several at a time, and scans that
// have nothing else are left out. The pixels of a sound file are exactly those
// of the library.
#pragma once

#include "pixel/dib.h"

struct jpeg_decompress_struct;

namespace pelorin {

/// `codec` has read the header of `file` and nothing more. Empty for files that have to go the library's way:
/// arithmetic codes, sampling rates that are no multiples of each other or more than twofold, components without a
/// known meaning, and damaged data. A progressive file that ends early, or is damaged in scans that are left out, has
/// the detail that came before. The codec is left as it was.
[[nodiscard]] DibBlock ReadJpegEighth(ByteSpan file, const jpeg_decompress_struct& codec);

} // namespace pelorin
