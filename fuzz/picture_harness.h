// The harness of a picture reader that takes the bytes as they are: what comes out is nothing or a whole picture.
#pragma once

#include "formats/picture_reader.h"

namespace pelorin {

inline int FuzzPictureReader(PictureReader read, ByteSpan file, const PictureRequest& request = {}) {
    PictureFacts facts;
    const auto block = read(file, request, facts);
    if (block && !DibView(block)) __builtin_trap();
    return 0;
}

} // namespace pelorin
