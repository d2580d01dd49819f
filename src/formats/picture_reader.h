// What every picture reader is given and what it tells besides the picture.
//
// A reader is a function `DibBlock ReadXxx(ByteSpan file, const PictureRequest&, PictureFacts&)` over the whole file.
// It returns a block that has been checked once, or an empty one; it shows nothing and keeps nothing. A row in
// `formats/load_image.cpp` makes it known.
#pragma once

#include "base/progress.h"
#include "pixel/dib.h"

#include <string>
#include <vector>

namespace pelorin {

/// What the caller wants of a file.
struct PictureRequest {
    /// A small picture is enough: JPEG, JPEG 2000 and metafile readers take their shortcuts.
    bool preview = false;
    /// Box that metafiles are played in, which have no size in pixels of their own; 0 x 0: the reader's default.
    Size box{};
    /// What a scalable picture (SVG) is drawn for: as large as fits; 0 x 0: its own size.
    Size drawnFor{};
    /// Frame of an animated or multi-page file, from 0. A frame that is not there gives an empty block.
    int frame = 0;
    /// Layer of a layered file, from 0; -1: the composite. A layer that is not there gives an empty block.
    int layer = -1;
    /// Resolution wanted of a Photo CD file: the setting "PhotoCDSize".
    int photoCdSize = 2;
    /// An 8-bpp picture with a transparent index stays one; else the dispatcher makes it 32 bits.
    bool keepIndices = false;
    /// Told of the rows done where the reader goes row by row; null: nobody watches. `StopAsked` ends the reading with
    /// an empty block.
    Progress* progress = nullptr;
};

/// What a reader found out. Size and depth are those of the file's picture, not of the block returned; a reader that
/// leaves them 0 gets those of the block.
struct PictureFacts {
    int width = 0, height = 0, bits = 0;
    int frames = 1;
    std::vector<std::string> layers;
    /// Frame shown: 1/100 s for GIF, 1/60 s for animated cursors; 0 otherwise.
    int delay = 0;
    /// Of all frames of an animation, in milliseconds; empty for other pictures.
    std::vector<int> delaysMs;
    /// Of an 8-bpp block: entry that is transparent, -1 for none; bits of the file's palette, 0 for none.
    int transparentIndex = -1;
    int paletteBits = 0;
    /// File kind and name ("PNG") of the format whose reader was used; set by the dispatcher.
    int kind = 0;
    std::string_view format;
};

using PictureReader = DibBlock (*)(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

} // namespace pelorin
