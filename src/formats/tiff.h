// Tagged images (TIF, TIFF), single or with many pages, by the TIFF library.
//
// A file begins with 'II' (little-endian) or 'MM' (big-endian), u16 42 (43: 64-bit offsets) and the offset of the first
// directory. A directory is a count of tags, the tags by ascending number (size, bits and samples a pixel, compression,
// meaning of the samples, orientation, where the strips or tiles are), and the offset of the next page's directory.
#pragma once

#include "formats/picture_reader.h"

namespace pelorin {

[[nodiscard]] bool IsTiff(ByteSpan file);

/// The page `request.frame`, upright. Grey and palette pages without alpha keep their depth: 1, 4 (from 2 to 4 bits) or
/// 8 bits with a table, grey above 8 bits is cut to 8. Colours, and the inks of CMYK brought to red, green and blue,
/// give 24 bits; with an alpha channel 32, not premultiplied. `facts.frames` is the number of pages. Empty for pages of
/// more than 16 bits a sample, when a strip or tile cannot be decoded, and above `kMaxPixels`.
[[nodiscard]] DibBlock ReadTiff(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

} // namespace pelorin
