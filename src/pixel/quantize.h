// The colour counter: an octree of at most 256 leaves that gives a picture its palette.
//
// The tree is that of M. Gervautz and W. Purgathofer ("A simple method for color quantization: octree quantization"),
// six levels deep, and it is reduced right after the insertion that makes it too large. The palette therefore depends
// on the order of the pixels: stored order, each row from left to right.
#pragma once

#include "pixel/palettes.h"

#include <optional>

namespace pelorin {

/// The palette of a 24- or 32-bpp picture; alpha is ignored. `count` is the number of colours that is asked for (1 to
/// 256; anything else counts as 256) and becomes the number of leaves when that is more. The entries behind the leaves
/// are black. With `reserveWhite` black and white weigh in as 100 pixels each, and entry 255 is white. Nothing for
/// other depths; `count` stays then.
[[nodiscard]] std::optional<ColorTable> QuantizeImage(const DibBlock& block, int& count, bool reserveWhite);

/// One palette for two pictures, the first of which goes in first.
[[nodiscard]] std::optional<ColorTable> QuantizeTwoImages(const DibBlock& first, const DibBlock& second, int& count,
                                                          bool reserveWhite);

} // namespace pelorin
