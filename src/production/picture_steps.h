// What can be done to a whole picture in one step, for batch work and the command line.
//
// Every step takes a picture of any depth and gives a new one, empty on failure. Pictures of 32 bits keep their alpha,
// others work in 24 bits; the steps that need alpha make a 32-bpp picture of any.
#pragma once

#include "pixel/convolve.h"
#include "pixel/map_palette.h"

namespace pelorin {

/// Scaled to exactly this size, or to the largest size of the picture's proportions inside it.
[[nodiscard]] DibBlock ResizePicture(const DibBlock& block, Size size);
[[nodiscard]] DibBlock FitPicture(const DibBlock& block, Size box);

/// The part of `size` with its top-left pixel at `corner`, as far as the picture has it.
[[nodiscard]] DibBlock CropPicture(const DibBlock& block, Point corner, Size size);
/// In the middle of a transparent square of its longer side.
[[nodiscard]] DibBlock SquarePicture(const DibBlock& block);

/// Turned counterclockwise. Whole quarter turns move pixels and change nothing else; other angles give a 32-bpp picture
/// with transparent corners, with smooth edges on demand.
[[nodiscard]] DibBlock RotatePicture(const DibBlock& block, double degrees, bool smooth);
[[nodiscard]] DibBlock FlipPicture(const DibBlock& block, bool vertical);

/// Filtered. Contour and Emboss leave alpha alone, and so does every filter where the whole picture is opaque.
[[nodiscard]] DibBlock FilterPicture(const DibBlock& block, const Filter& filter);

/// Changed by one of the adjustments of a surface ("pixel/adjust.h"), which is given as it stands.
[[nodiscard]] DibBlock AdjustPicture(const DibBlock& block, Surface (*adjust)(const Surface&, int), int value);
[[nodiscard]] DibBlock ColorizePicture(const DibBlock& block, int hueDegrees, int saturationPercent);
[[nodiscard]] DibBlock InvertPicture(const DibBlock& block);
/// A 32-bpp picture of changed alpha.
[[nodiscard]] DibBlock ChangeOpacity(const DibBlock& block, int value);

/// An 8-bpp picture of at most `colors` colours (the fixed palettes are taken whole), alpha composed on white.
[[nodiscard]] DibBlock ReducePicture(const DibBlock& block, int colors, PaletteKind palette, bool dither);
/// The same with the first `colors` entries of the palette given.
[[nodiscard]] DibBlock ReducePicture(const DibBlock& block, int colors, std::span<const Rgb> palette, bool dither);
/// Black and white at 8 bpp, alpha composed on white.
[[nodiscard]] DibBlock MonoPicture(const DibBlock& block, bool dither);

/// 24 bits, alpha composed on the background.
[[nodiscard]] DibBlock FlattenPicture(const DibBlock& block, Rgb background);
/// 32 bits, opaque where the picture has no alpha.
[[nodiscard]] DibBlock WidenPicture(const DibBlock& block);

/// A 32-bpp picture that grows transparent near the key colour, by hue and lightness.
[[nodiscard]] DibBlock KeyPicture(const DibBlock& block, Rgb key);
/// A 32-bpp picture that is transparent where 2 x (|dr| + |dg| + |db|) from the key is at most `tolerance`.
[[nodiscard]] DibBlock KeyPicture(const DibBlock& block, Rgb key, int tolerance);

/// A 32-bpp picture, 2 columns and rows larger, with a shadow.
[[nodiscard]] DibBlock ShadowPicture(const DibBlock& block);

} // namespace pelorin
