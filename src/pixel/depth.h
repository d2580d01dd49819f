// Pictures of one depth from pictures of another. Each function gives a new block, empty for a depth that it does not
// take. The plain way to 24 bpp is `ConvertDIBTo24` in dib.h.
#pragma once

#include "pixel/color.h"

namespace pelorin {

class Surface;

/// 1, 4, 8, 24 or 32 bpp to 24 bpp. A 32-bpp picture is composed on `matte`; with `kNoColor` its alpha is dropped.
[[nodiscard]] DibBlock ComposeTo24(const DibBlock& block, ColorRef matte);

/// 1, 4, 8, 24 or 32 bpp to 32 bpp; alpha is 255 where the source has none. With `applyKey` pixels near the key colour
/// grow transparent, by hue and lightness where they are coloured and by lightness where they are grey; those of nearly
/// the key's hue are bleached as well.
[[nodiscard]] DibBlock ConvertTo32(const DibBlock& block, bool applyKey, ColorRef keyColor);

/// Any depth to 16-bit pixels of 5-5-5. The block's bit count says 15, so that it is not taken for 5-6-5.
[[nodiscard]] DibBlock ConvertTo15(const DibBlock& block);

/// Any depth to 32 bpp with alpha 255 everywhere.
[[nodiscard]] DibBlock ConvertToOpaque32(const DibBlock& block);

/// 8 bpp to 32 bpp: alpha 0 where the pixel is `index`, 255 elsewhere; colours from the table.
[[nodiscard]] DibBlock KeyTo32(const DibBlock& block8, int index);

/// The alpha of a 32-bpp picture as an opaque grey one.
[[nodiscard]] DibBlock AlphaToGrey(const DibBlock& block32);

/// The mean of the three channels as an opaque grey 32-bpp picture.
[[nodiscard]] DibBlock LuminanceToGrey(const Surface& bitmap);

} // namespace pelorin
