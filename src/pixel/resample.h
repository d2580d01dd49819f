// Scaling of pictures: bilinear where a side grows or stays, area averaging where both shrink.
//
// The caller chooses no kind of filter; what sharpens a picture after scaling is a step of its own (value_filter.h).
#pragma once

#include "pixel/surface.h"

namespace pelorin {

/// The block at `width` x `height`, of the same depth; 24 and 32 bpp only. Alpha is straight and stays so: pixels that
/// are nearly invisible (alpha below 8) lend no colour of their own to their neighbours. An enlargement by a whole
/// factor ends on the source's last pixel: it is made somewhat larger, and the surplus at the picture's top and right
/// is dropped. Empty for another depth, for a side that is not positive and above `kMaxPixels`.
[[nodiscard]] DibBlock ResampleDIB(const DibBlock& block, int width, int height);

/// The step before shrinking, for a picture that is wanted at many sizes: a 32-bpp block whose nearly invisible pixels
/// have the colour of what is visible around them. Empty for another depth.
[[nodiscard]] DibBlock BleedColors(const DibBlock& block32);
/// What `ResampleDIB` gives for the picture that was bled; only for sizes where `ShrinksTo` holds.
[[nodiscard]] DibBlock ShrinkBled(const DibBlock& bled32, int width, int height);
/// Whether a picture of that size is area-averaged on its way to the target.
[[nodiscard]] constexpr bool ShrinksTo(Size source, Size target) {
    return source.width > target.width && source.height > target.height;
}

/// A device bitmap at `width` x `height`: the same scaling without regard to alpha and without surplus. The fourth byte
/// comes out 0, save that equal sizes give a plain copy.
[[nodiscard]] Surface ResampleBitmap(const Surface& bitmap, int width, int height);

} // namespace pelorin
