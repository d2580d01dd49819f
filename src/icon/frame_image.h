// One image of an icon or cursor file, read the way frames of animated cursors and previews are.
//
// The depth of the pixels is planes x bit count of the image's header, and the table goes by that depth alone: 2, 16 or
// 256 entries at 1, 4 and 8 bits, none above. How many of them the header says are used does not count, unless the
// directory shows that the table was cut to them. Icons that are edited and stored go by the colours used instead
// (stored_icon.h).
#pragma once

#include "icon/ico_file.h"

namespace pelorin {

struct FrameImage {
    CVnIcon icon; ///< with a whole table; pixels of 15 and 16 bits have become 24
    int bits = 0; ///< planes x bit count
};

enum class ShortImage { Fill, Refuse };

/// False when there is no image at the entry's place. What is missing of a short one is filled with zeros, or the image
/// is refused when it is more than mask rows.
[[nodiscard]] bool ReadFrameImage(ByteSpan file, const IcoDirectoryEntry& entry, ShortImage ifShort, FrameImage& image);

} // namespace pelorin
