// Pixels onto a table that must stay as it is: a bitmap onto its own 256 colours, a picture onto its file's palette.
#include "pixel/color_memo.h"
#include "pixel/map_palette.h"
#include "pixel/nearest_color.h"
#include "pixel/surface.h"

#include <cstdlib>

namespace pelorin {

std::uint8_t NearestByChannels(std::span<const Rgb> table, Rgb color) {
    int best = 10'000;
    std::size_t index = 0;
    for (std::size_t i = 0; i < table.size() && best > 0; ++i) {
        const Rgb entry = table[i];
        const int distance = std::abs(RedOf(entry) - RedOf(color)) + std::abs(GreenOf(entry) - GreenOf(color)) +
                             std::abs(BlueOf(entry) - BlueOf(color));
        if (distance < best) {
            best = distance;
            index = i;
        }
    }
    return static_cast<std::uint8_t>(index);
}

namespace {

// The file's table with the transparent entry moved to its last place.
ColorTable TableWithSlotLast(ByteSpan rgbTable, int entries, int transparentIndex) {
    const auto colorAt = [&](int i) {
        const auto* triple = rgbTable.data() + std::ptrdiff_t{3} * i;
        return MakeRgb(triple[0], triple[1], triple[2]);
    };
    ColorTable table{};
    std::size_t next = 0;
    for (int i = 0; i < entries; ++i) {
        if (i != transparentIndex) table[next++] = colorAt(i);
    }
    if (transparentIndex >= 0) table[next] = colorAt(transparentIndex);
    return table;
}

} // namespace

bool MapBitmapToPaletteL1(DibBlock& block8, const Surface& bitmap, std::span<const Rgb> palette) {
    const DibRows target(block8);
    if (target.BitCount() != 8 || target.GetSize() != bitmap.GetSize()) return false;
    const auto table = TableOf(palette);
    SetDIBTable(block8, table);
    ColorMemo<std::uint8_t> memo;
    for (int y = 0; y < target.Height(); ++y) {
        const auto* from = bitmap.Row(y);
        auto* to = target.Row(y);
        for (int x = 0; x < target.Width(); ++x, from += 4) {
            to[x] = memo.Get(LoadU32LE(from), [&](Rgb color) { return NearestByChannels(table, color); });
        }
    }
    return true;
}

DibBlock MapAlphaImageToTable(const DibBlock& block32, int bits, ByteSpan rgbTable, int& transparentIndex) {
    const DibView source(block32);
    if (source.BitCount() != 32 || bits < 1 || bits > 8) return {};
    const int entries = 1 << bits;
    if (rgbTable.size() < static_cast<std::size_t>(entries) * 3) return {};
    auto result = CreateDIB(source.Width(), source.Height(), 8);
    const DibRows target(result);
    if (!target) return {};

    const bool hasSlot = transparentIndex >= 0 && transparentIndex < entries;
    const auto table = TableWithSlotLast(rgbTable, entries, hasSlot ? transparentIndex : -1);
    SetDIBTable(result, table);
    NearestColor nearest(table, entries);
    const auto last = static_cast<std::uint8_t>(entries - 1);
    for (int y = 0; y < source.Height(); ++y) {
        const auto* from = source.Row(y);
        auto* to = target.Row(y);
        for (int x = 0; x < source.Width(); ++x, from += 4) {
            // Red decides, and not alpha: files that were made this way depend on it.
            to[x] = from[2] >= 128 ? nearest.Find(from[2], from[1], from[0]).index : last;
        }
    }
    if (hasSlot) transparentIndex = entries - 1;
    return result;
}

} // namespace pelorin
