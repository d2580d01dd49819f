// Nearest-colour search with a cache of 5-5-5 cells.
#pragma once

#include "pixel/palettes.h"

#include <vector>

namespace pelorin {

/// A palette colour with the index that it has in its palette.
struct PaletteSearchEntry {
    std::uint8_t red = 0, green = 0, blue = 0, index = 0;
};

/// Finds palette entries by squared distance. The first colour that is asked for in a cell of 8 x 8 x 8 colours decides
/// for all of the cell, so results depend on the order of the questions: one object is one mapping.
class NearestColor {
public:
    /// Searches the first `count` entries of the palette, 1 to 256.
    NearestColor(const ColorTable& palette, int count);

    /// Channels 0 to 255.
    const PaletteSearchEntry& Find(int red, int green, int blue) {
        auto& cell = m_cache[static_cast<std::size_t>((red << 7 & 0x7C00) | (green << 2 & 0x3E0) | blue >> 3)];
        if (cell == kUnknown) cell = Search(red, green, blue);
        return m_entries[cell];
    }

private:
    static constexpr std::uint16_t kUnknown = 0xFFFF;

    [[nodiscard]] int StartOf(int red) const;
    [[nodiscard]] std::uint16_t Search(int red, int green, int blue) const;

    std::array<PaletteSearchEntry, 256> m_entries{}; // sorted by red, green, blue, index
    int m_count;
    std::vector<std::uint16_t> m_cache;
};

} // namespace pelorin
