// Which of an icon's image formats is nearest to what is wanted.
#pragma once

#include "icon/icon_format.h"

#include <span>

namespace pelorin {

/// The depth as the score counts it: 2 at 1 bit, 16 at 4, 32 at 8, 48 at 24 and 64 at 32.
[[nodiscard]] int DepthValue(int bits);

/// Index of the format with the smallest |size - width| + |size - height| + 2 x |depth value - wanted|, the first at a
/// tie; -1 for an empty list.
[[nodiscard]] int FindBestFormat(std::span<const IconFormat> formats, int size, int depthValue);

/// The document's search by the positions of its own lists: sizes 16, 32, 48 and depth values 1, 18, 33, 49.
[[nodiscard]] int FindBestForView(std::span<const IconFormat> formats, int sizeIndex, int depthIndex);

/// The search for the source of a new format, by positions in `OfferedSizes` and `OfferedDepths` (on Windows a size
/// index of 10 is 256 once more). In this order: a format of exactly that size and the most bits above the wanted
/// depth; the first of that width with more bits; the widest with alpha; the smallest score. On the Macintosh sizes are
/// compared by height, so that 16 x 12 is found by its 12.
[[nodiscard]] int FindBestSource(std::span<const IconFormat> formats, int sizeIndex, int depthIndex, bool macintosh);

/// The same for a format that is to be made: its width is looked up in the offered sizes; a width that is not offered
/// is searched for by score.
[[nodiscard]] int FindBestSourceFor(std::span<const IconFormat> formats, const IconFormat& wanted, bool macintosh);

} // namespace pelorin
