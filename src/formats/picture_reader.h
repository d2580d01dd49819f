// What every picture reader is given and what it tells besides the picture.
//
// A reader is a function `DibBlock ReadXxx(ByteSpan file, const PictureRequest&, PictureFacts&)` over the whole file.
// It returns a block that has been checked once, or an empty one; it shows nothing and keeps nothing.
#pragma once

#include "base/progress.h"
#include "pixel/dib.h"

#include <string>
#include <vector>

namespace pelorin {

/// What the caller wants of a file.
struct PictureRequest {
    /// A small picture is enough: readers that can decode smaller do so, down to what still fills `box`.
    bool preview = false;
    /// Size that a preview or a picture without a size of its own (metafiles) is made for; 0 x 0: the reader's default.
    Size box;
    /// Frame of an animated or multi-page file, from 0.
    int frame = 0;
    /// Layer of a layered file, from 0; -1: the composite.
    int layer = -1;
    /// Resolution wanted of a Photo CD file: the setting "PhotoCDSize".
    int photoCdSize = 2;
    Progress* progress = nullptr;
};

/// What a reader found out. Size and depth are those of the file's picture, not of the block returned.
struct PictureFacts {
    int width = 0, height = 0, bits = 0;
    int frames = 1;
    std::vector<std::string> layers;
    /// Frame shown: 1/100 s for GIF, 1/60 s for animated cursors; 0 otherwise.
    int delay = 0;
    /// Of an 8-bpp block: entry that is transparent, -1 for none; bits of the file's palette, 0 for none.
    int transparentIndex = -1;
    int paletteBits = 0;
};

using PictureReader = DibBlock (*)(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

} // namespace pelorin
