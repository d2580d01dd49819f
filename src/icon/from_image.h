// A whole icon out of one picture: the picture is fitted into a set of formats in one step.
#pragma once

#include "base/progress.h"
#include "icon/icon_object.h"

#include <memory>
#include <vector>

namespace pelorin {

using IconObjects = std::vector<std::unique_ptr<CIconObject>>;

struct FromImageOptions {
    bool macintosh = false;
    /// The formats wanted, made in this order.
    std::vector<IconFormat> formats;
    bool dither = true;
    /// A colour of a picture without alpha that becomes transparent; `kNoColor` for none.
    ColorRef key = kNoColor;
    CreationFilter filter{};
    /// PNG compression for the formats of a Windows icon that may have it.
    bool compress = true;
    unsigned jobs = 1; ///< threads, 0: one a core
};

/// The rows of the standard table that a new icon gets.
[[nodiscard]] std::vector<IconFormat> DefaultFormats(bool macintosh);

/// A picture made ready for an icon: 32 bpp, the key colour of a picture without alpha taken out, and square, centred
/// on transparent ground. Empty when the picture cannot be read.
[[nodiscard]] DibBlock PrepareIconSource(DibBlock picture, ColorRef key);

/// Distinct art for the formats of one size.
struct SizeArt {
    Size size;
    DibBlock picture; ///< made ready by `PrepareIconSource`
};

/// Makes the formats, each from the picture itself; one that cannot be made is left out. The result is in display
/// order.
[[nodiscard]] IconObjects CreateFormats(const DibBlock& source, const FromImageOptions& options,
                                        Progress* progress = nullptr);

/// The same, where the formats of some sizes have pictures of their own.
[[nodiscard]] IconObjects CreateFormats(const DibBlock& source, std::span<const SizeArt> art,
                                        const FromImageOptions& options);

/// The stored forms as one icon in saving order.
[[nodiscard]] CIconGroup GroupOf(IconObjects& formats, bool explorerOrder = false);

/// Descending depth, width, height.
void SortForDisplay(IconObjects& formats);
/// See `CIconGroup::Sort`.
void SortForSaving(IconObjects& formats, bool explorerOrder);

} // namespace pelorin
