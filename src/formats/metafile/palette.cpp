#include "formats/metafile/palette.h"

namespace pelorin::metafile {

namespace {

constexpr Rgb kStockColors[] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080,
                                0xC0C0C0, 0xC0DCC0, 0xA6CAF0, 0xFFFBF0, 0xA0A0A4, 0x808080, 0xFF0000,
                                0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};
constexpr unsigned kByNumber = 1;

} // namespace

Rgb PaletteColor(const Palette& palette, std::size_t index) {
    if (palette) return index < palette->size() ? (*palette)[index] : 0;
    return index < std::size(kStockColors) ? kStockColors[index] : 0;
}

std::vector<Rgb> ReadPaletteEntries(ByteReader& in, std::size_t count) {
    std::vector<Rgb> entries;
    for (std::size_t i = 0; i < count && in.Left() >= 4; ++i) {
        const auto red = in.U8(), green = in.U8(), blue = in.U8();
        in.Skip(1);
        entries.push_back(Rgb{red} << 16 | Rgb{green} << 8 | blue);
    }
    return entries;
}

Rgb ReadColor(ByteReader& in, const Palette& palette) {
    const auto red = in.U8(), green = in.U8(), blue = in.U8(), kind = in.U8();
    if (kind == kByNumber) return PaletteColor(palette, red | std::size_t{green} << 8);
    return Rgb{red} << 16 | Rgb{green} << 8 | blue;
}

} // namespace pelorin::metafile
