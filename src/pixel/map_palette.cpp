#include "pixel/map_palette.h"

#include "pixel/diffuse.h"
#include "pixel/quantize.h"

namespace pelorin {

namespace {

int CountBlacks(const ColorTable& table, int count) {
    return static_cast<int>(std::count(table.begin(), table.begin() + count, Rgb{0}));
}

void MapRows(const DibView& source, const DibRows& target, NearestColor& nearest) {
    for (int y = 0; y < source.Height(); ++y) {
        const auto* from = source.Row(y);
        auto* to = target.Row(y);
        for (int x = 0; x < source.Width(); ++x, from += 3) to[x] = nearest.Find(from[2], from[1], from[0]).index;
    }
}

void MapRowsDithered(const DibView& source, const DibRows& target, NearestColor& nearest) {
    const auto loadRow = [&](int y, std::int16_t* line) {
        const auto* from = source.Row(y);
        for (int x = 0; x < source.Width(); ++x, from += 3, line += 3) {
            line[0] = from[2];
            line[1] = from[1];
            line[2] = from[0];
        }
    };
    DiffuseRows(
        target, loadRow, [&](int r, int g, int b) -> const auto& { return nearest.Find(r, g, b); });
}

// A fixed table whose last place is given to the transparent colour. The tables that end on white, or on a black behind
// their greys, put a white before it.
ColorTable FixedTable(PaletteKind kind, bool keepTransparentSlot) {
    constexpr Rgb pureBlue = 0x0000FF;
    struct Row {
        const ColorTable* table;
        int whiteAt;
    };
    constexpr std::array<Row, 3> rows = {{{&kWebSafePalette, -1}, {&kWindowsPalette, 246}, {&kMacOsPalette, 254}}};
    const auto& row = rows[static_cast<std::size_t>(kind) - 1];
    ColorTable table = *row.table;
    if (keepTransparentSlot) {
        table.back() = pureBlue;
        if (row.whiteAt >= 0) table[static_cast<std::size_t>(row.whiteAt)] = 0xFFFFFF;
    }
    return table;
}

} // namespace

DibBlock MapToPalette(const DibBlock& block24, std::span<const Rgb> palette, int count, bool dither) {
    const DibView source(block24);
    if (source.BitCount() != 24 || count < 1) return {};
    auto result = CreateDIB(source.Width(), source.Height(), 8);
    const DibRows target(result);
    if (!target) return {};
    const auto table = TableOf(palette);
    SetDIBTable(result, table);
    NearestColor nearest(table, count);
    if (dither) {
        MapRowsDithered(source, target, nearest);
    } else {
        MapRows(source, target, nearest);
    }
    return result;
}

DibBlock ReduceWithFallback(const DibBlock& block24, bool dither, bool reserveWhite) {
    int count = 256;
    const auto table = QuantizeImage(block24, count, reserveWhite);
    if (!table) return {};
    return MapToPalette(block24, CountBlacks(*table, 256) < 255 ? *table : SpectrumPalette(), 256, dither);
}

DibBlock ReduceColors(const DibBlock& block24, int colors, bool dither, PaletteKind paletteKind,
                      bool keepTransparentSlot) {
    const int slot = keepTransparentSlot ? 1 : 0;
    ColorTable table{};
    if (paletteKind == PaletteKind::Adaptive) {
        colors = std::min(colors, 256) - slot;
        if (colors < 1) return {};
        const auto computed = QuantizeImage(block24, colors, false);
        if (!computed) return {};
        table = *computed;
    } else {
        colors = 256;
        table = FixedTable(paletteKind, keepTransparentSlot);
    }
    colors -= slot;
    if (colors < 1) return {};
    return MapToPalette(block24, CountBlacks(table, colors) < colors - 1 ? table : SpectrumPalette(), colors, dither);
}

} // namespace pelorin
