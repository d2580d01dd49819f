// One page of a TIFF file between the library and the block: what its tags say, and its samples at 8 bits.
#pragma once

#include "formats/picture_reader.h"

struct tiff; // the library's handle

namespace pelorin {

/// Samples of a pixel beyond which a page is refused.
inline constexpr int kMaxTiffSamples = 32;

/// The tags that matter, checked.
struct TiffPage {
    int width = 0, height = 0;
    int bits = 0;    ///< of a sample, 1 to 16
    int samples = 0; ///< of a pixel in the file
    int photometric = 0;
    int orientation = 1;
    bool separate = false; ///< every sample has a plane of its own
    int colors = 0;        ///< samples that make the colour: 1 (an index into `table`), 3 or 4
    bool indexed = false;  ///< one colour sample and no alpha: the block will have a table
    int alpha = -1;        ///< sample that is the alpha, -1 for none
    bool premultiplied = false;
    std::vector<Rgb> table;

    /// Samples kept of each pixel: the colour's, then the alpha.
    [[nodiscard]] int Kept() const { return colors + (alpha >= 0 ? 1 : 0); }
};

/// False when the page is none that `ReadTiffSamples` decodes; `page` then has size, bits and orientation if these were
/// in order, and a width of 0 if not.
[[nodiscard]] bool ReadTiffTags(tiff* file, TiffPage& page);

/// The samples of all pixels in stored order, `Kept()` bytes each. Indices keep their value, others are scaled to
/// 0..255. Empty when a strip or tile fails or the person stops it.
[[nodiscard]] Bytes ReadTiffSamples(tiff* file, const TiffPage& page, ProgressScope& progress);

/// The upright block of such samples.
[[nodiscard]] DibBlock BlockFromTiffSamples(const TiffPage& page, const Bytes& samples);

} // namespace pelorin
