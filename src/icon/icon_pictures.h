// Icon and cursor files where a picture is wanted: one image of each, chosen and drawn.
#pragma once

#include "formats/load_image.h"

namespace pelorin {

/// The widest image of an icon file, of those the deepest, of those the first in the file; 32 bits with its
/// transparency. Images behind one that cannot be read are not looked at.
[[nodiscard]] DibBlock ReadIconPicture(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

/// A static cursor at 32 x 32 on white, 24 bits: made from the image nearest to that width, the larger one and then the
/// deeper one first.
[[nodiscard]] DibBlock ReadCursorPicture(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

/// The rows of these and of animated cursors for the table of picture readers.
[[nodiscard]] std::span<const PictureFormat> IconPictureFormats();

} // namespace pelorin
