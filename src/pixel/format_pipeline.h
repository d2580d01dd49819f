// The way of a picture into one image format of an icon: resized, reduced to the format's depth, and split into a
// colour and a mask bitmap.
#pragma once

#include "pixel/alpha_mask.h"

namespace pelorin {

/// Where the colours of an 8-bpp format come from.
enum class PaletteMode {
    Given,    ///< the palette given, or the picture's own at 8 bpp; computed when there is neither
    Computed, ///< computed from the picture, with white in the last place
    Keep,     ///< the picture is not reduced: the caller does that later
};

struct FormatRequest {
    int width = 0, height = 0;
    int bits = 32; ///< 1, 4, 8, 24 or 32
    /// Scales the picture to the size; otherwise its top-left part is cut out, and a smaller picture stays small.
    bool resample = true;
    PaletteMode paletteMode = PaletteMode::Given;
    std::span<const Rgb> palette;    ///< empty for none
    bool useStandardPalette = false; ///< the Mac OS colours at 8 bpp, before any other palette
    bool dither = false;
    /// A picture without alpha grows transparent near `keyColor`: by hue and lightness at 32 bpp, else where the
    /// doubled distance of the channels is at most `tolerance`.
    bool useKey = false;
    ColorRef keyColor = kNoColor;
    int tolerance = 0;
};

struct FormatPlanes {
    Surface color;
    /// The alpha as a grey at 32 bpp, else black where the picture is opaque and white where it is not.
    Surface mask;
    /// The 256 colours that an 8-bpp format was reduced to; empty for other depths and where nothing was reduced.
    CPalette palette;
    explicit operator bool() const { return color && mask; }
};

/// The planes of `source`, which may have any depth. Nothing when any step fails.
[[nodiscard]] FormatPlanes RunFormatPipeline(const DibBlock& source, const FormatRequest& request);

} // namespace pelorin
