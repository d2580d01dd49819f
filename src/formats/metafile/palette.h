// Logical palettes: colours that a metafile names by their number.
#pragma once

#include "base/bytes.h"
#include "pixel/dib.h"

#include <memory>
#include <vector>

namespace pelorin::metafile {

/// Null: the stock palette of twenty colours. Shared by saved states, so it is never changed once it is made.
using Palette = std::shared_ptr<const std::vector<Rgb>>;

/// Black for a number that the palette does not have.
[[nodiscard]] Rgb PaletteColor(const Palette& palette, std::size_t index);

/// Entries of red, green, blue and flags; as many of `count` as there are.
[[nodiscard]] std::vector<Rgb> ReadPaletteEntries(ByteReader& in, std::size_t count);

/// Red, green, blue, kind as a file has them; of kind 1 the first two bytes are a number in the palette.
[[nodiscard]] Rgb ReadColor(ByteReader& in, const Palette& palette);

} // namespace pelorin::metafile
