// The fixed 256-colour tables of the program, as 0xRRGGBB in index order.
#pragma once

#include "pixel/dib.h"

namespace pelorin {

using ColorTable = std::array<Rgb, 256>;

/// The colours of the mode that needs no search; its cube entries are found through `kHalftoneTranslate`.
extern const ColorTable kHalftonePalette;
/// The 20 system colours around a cube of six reds, nine greens and four blues.
extern const ColorTable kWindowsPalette;
/// The 216 colours of the 6 x 6 x 6 cube, white first and blue fastest; black behind, but for two near-blacks.
extern const ColorTable kWebSafePalette;
/// The cube without its black, ten reds, greens, blues and greys, and black last.
extern const ColorTable kMacOsPalette;
/// The 16 standard colours, 240 times black behind them.
extern const ColorTable kSixteenColorPalette;

/// The 16 standard colours, 16 greys, and a wheel of 28 hues with 8 lightnesses each.
[[nodiscard]] ColorTable SpectrumPalette();

/// Place in the halftone palette of the cube colour red + 6 x green + 36 x blue, each level 0 to 5.
extern const std::array<std::uint8_t, 216> kHalftoneTranslate;
/// What the rest of a channel modulo 51 must exceed to go up a level, at (y modulo 8) + 8 x (x modulo 8).
extern const std::array<std::uint8_t, 64> kHalftoneThresholds;

/// A palette as a table, black behind its end.
[[nodiscard]] ColorTable TableOf(std::span<const Rgb> colors);

} // namespace pelorin
