#include "pixel/depth.h"

#include "pixel/convert_pixels.h"
#include "pixel/surface.h"

namespace pelorin {

DibBlock ConvertDIBTo24(const DibBlock& block) {
    return ConvertPixels(DibView(block), 24, PutPixel24);
}

DibBlock ComposeTo24(const DibBlock& block, ColorRef matte) {
    const DibView source(block);
    if (source.BitCount() == 15 || source.BitCount() == 16) return {};
    if (source.BitCount() != 32 || matte == kNoColor) return ConvertDIBTo24(block);
    const Rgb under = RgbFromColorRef(matte);
    return ConvertPixels(source, 24, [&](std::uint8_t* to, Argb color) {
        const int alpha = static_cast<int>(color >> 24);
        to[0] = static_cast<std::uint8_t>(Blend255(BlueOf(color), BlueOf(under), alpha));
        to[1] = static_cast<std::uint8_t>(Blend255(GreenOf(color), GreenOf(under), alpha));
        to[2] = static_cast<std::uint8_t>(Blend255(RedOf(color), RedOf(under), alpha));
    });
}

DibBlock ConvertTo15(const DibBlock& block) {
    auto result = ConvertPixels(DibView(block), 16, [](std::uint8_t* to, Argb color) {
        const int value = (RedOf(color) & ~7) << 7 | (GreenOf(color) & ~7) << 2 | BlueOf(color) >> 3;
        StoreU16LE(to, static_cast<std::uint16_t>(value));
    });
    if (result) StoreU16LE(result.Data() + 14, 15);
    return result;
}

DibBlock ConvertToOpaque32(const DibBlock& block) {
    return ConvertPixels(DibView(block), 32, [](std::uint8_t* to, Argb color) { StoreU32LE(to, color | 0xFF000000u); });
}

DibBlock KeyTo32(const DibBlock& block8, int index) {
    const DibView source(block8);
    if (source.BitCount() != 8) return {};
    auto result = ConvertToOpaque32(block8);
    const DibRows target(result);
    for (int y = 0; y < target.Height(); ++y) {
        const auto* from = source.Row(y);
        auto* to = target.Row(y);
        for (int x = 0; x < target.Width(); ++x) {
            if (from[x] == index) to[x * 4 + 3] = 0;
        }
    }
    return result;
}

DibBlock AlphaToGrey(const DibBlock& block32) {
    const DibView source(block32);
    if (source.BitCount() != 32) return {};
    return ConvertPixels(source, 32,
                         [](std::uint8_t* to, Argb color) { StoreU32LE(to, 0xFF000000u | (color >> 24) * 0x010101); });
}

DibBlock LuminanceToGrey(const Surface& bitmap) {
    return ConvertPixels(DibView(DIBFromSurface(bitmap)), 32, [](std::uint8_t* to, Argb color) {
        const auto grey = static_cast<Argb>((BlueOf(color) + GreenOf(color) + RedOf(color)) / 3);
        StoreU32LE(to, 0xFF000000u | grey * 0x010101);
    });
}

} // namespace pelorin
