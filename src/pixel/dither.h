// The dithering reducer: a picture of any size onto one of four fixed palettes, or onto black and white.
#pragma once

#include "pixel/palettes.h"

namespace pelorin {

/// What a dithered picture is made for; 0 counts as `kDitherHalftone`.
inline constexpr int kDitherHalftone = 1; ///< the halftone palette by a threshold pattern, without diffusion
inline constexpr int kDither484 = 2;      ///< 4 reds, 8 greens, 4 blues: 256-colour screens
inline constexpr int kDither884 = 3;      ///< 8 reds, 8 greens, 4 blues
inline constexpr int kDither222 = 4;      ///< 8 colours: 16-colour screens
inline constexpr int kDitherMono = 5;     ///< black and white, decided by red alone

/// An 8-bpp block of the given size from a 1-, 4-, 8- or 24-bpp picture. Rows are sampled to the nearest, columns are
/// averaged, save in the first stored row of the diffusing modes. With `lighten` channels are moved half way to white.
/// Empty for other depths and modes, and for a size that is not positive or above `kMaxPixels`.
[[nodiscard]] DibBlock DitherTo8(const DibBlock& block, int width, int height, int mode, bool lighten);

/// The picture at its own size in black (entries 0 to 127) and white; a pixel is white where its red, with the red
/// error diffused so far, is at least 128.
[[nodiscard]] DibBlock DitherMono(const DibBlock& block);

/// The picture in black and white without dithering: white where (red + green + blue) / 3 is at least 128. 1, 4, 8 and
/// 24 bpp; empty otherwise.
[[nodiscard]] DibBlock ThresholdToMono(const DibBlock& block);

} // namespace pelorin
