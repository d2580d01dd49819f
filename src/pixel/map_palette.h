// Pictures onto palettes: with and without diffusion, with a computed palette, and by plain channel distance.
#pragma once

#include "pixel/palettes.h"

namespace pelorin {

class Surface;

/// A 24-bpp picture mapped to the first `count` colours of a palette (more than 256 count as 256): an 8-bpp block with
/// the whole palette as its table, black behind the palette's end. The nearest colour is found through a cache of 5-5-5
/// cells, in which the first colour of a cell decides. With `dither` the error is diffused; rows run in stored order.
/// Empty for other depths and for a count below 1.
[[nodiscard]] DibBlock MapToPalette(const DibBlock& block24, std::span<const Rgb> palette, int count, bool dither);

/// The same onto a palette computed from the picture; onto the spectrum palette when that has at least 255 blacks.
[[nodiscard]] DibBlock ReduceWithFallback(const DibBlock& block24, bool dither, bool reserveWhite);

enum class PaletteKind { Adaptive, WebSafe, Windows, MacOs };

/// The reduction of the animated-picture optimiser. The fixed kinds count 256 colours. With `keepTransparentSlot` a
/// slot is left over for the transparent colour: one colour less is asked for and one less is searched; in the fixed
/// tables entry 255 is pure blue, and white stands before it. Empty when no colour is left to search.
[[nodiscard]] DibBlock ReduceColors(const DibBlock& block24, int colors, bool dither, PaletteKind paletteKind,
                                    bool keepTransparentSlot);

/// The first of the entries (at most 256) with the smallest |dr| + |dg| + |db|.
[[nodiscard]] std::uint8_t NearestByChannels(std::span<const Rgb> table, Rgb color);

/// Fills the rows of an 8-bpp block of the bitmap's size, and its table, by the smallest |dr| + |dg| + |db|; the first
/// of equal entries stands. False, with nothing changed, when depth or size do not fit.
bool MapBitmapToPaletteL1(DibBlock& block8, const Surface& bitmap, std::span<const Rgb> palette);

/// A 32-bpp picture back on the palette of its file: `rgbTable` holds 1 << bits triples of red, green, blue. The entry
/// of `transparentIndex` (-1 for none) moves to the last place, and the index with it. Pixels with a red of at least
/// 128 take the nearest colour, all others the last place. Empty for other depths, for bits not in 1 to 8 and for a
/// table that is too short.
[[nodiscard]] DibBlock MapAlphaImageToTable(const DibBlock& block32, int bits, ByteSpan rgbTable,
                                            int& transparentIndex);

} // namespace pelorin
