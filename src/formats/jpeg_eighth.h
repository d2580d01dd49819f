// A JPEG at an eighth of its size, where the library's way there is long.
//
// At that size a block of 8 x 8 pixels is one pixel, its mean, and only the mean's coefficient counts. The library
// still decodes the code of every other coefficient one by one, which takes half as long as the whole picture does.
// Here those codes are stepped over, several at a time. The pixels are exactly those of the library.
#pragma once

#include "pixel/dib.h"

struct jpeg_decompress_struct;

namespace pelorin {

/// `codec` has read the header of `file` and nothing more. Empty for files that have to go the library's way:
/// progressive or arithmetic ones, several scans, other components than grey or YCbCr with chroma sampled once a group,
/// and damaged data. The codec is left as it was.
[[nodiscard]] DibBlock ReadJpegEighth(const jpeg_decompress_struct& codec);

} // namespace pelorin
