#include "pixel/format_pipeline.h"

#include "pixel/crop.h"
#include "pixel/depth.h"
#include "pixel/dither.h"
#include "pixel/map_palette.h"
#include "pixel/resample.h"

namespace pelorin {

namespace {

// The picture at 24 or 32 bpp in its final size.
DibBlock SizedPicture(const DibBlock& source, const FormatRequest& request) {
    const int bits = DIBBitCount(source);
    const auto direct = bits == 24 || bits == 32 ? DibBlock() : ConvertDIBTo24(source);
    const DibBlock& picture = direct ? direct : source;
    if (request.width <= 0 || request.height <= 0) return {};
    if (request.resample) return ResampleDIB(picture, request.width, request.height);
    const int width = std::min(request.width, DIBWidth(picture));
    const int height = std::min(request.height, DIBHeight(picture));
    return CropDIB(picture, 0, 0, width - 1, height - 1);
}

struct Reduced {
    DibBlock picture24;
    CPalette palette;
};

DibBlock ReduceTo256(const DibBlock& picture24, std::span<const Rgb> palette, const FormatRequest& request) {
    if (request.useStandardPalette) return MapToPalette(picture24, kMacOsPalette, 256, request.dither);
    if (request.paletteMode == PaletteMode::Given && !palette.empty()) {
        return MapToPalette(picture24, palette, 256, request.dither);
    }
    return ReduceWithFallback(picture24, request.dither, true);
}

// A 24-bpp picture with no more colours than the format's depth has.
Reduced ReduceToDepth(const DibBlock& picture24, std::span<const Rgb> palette, const FormatRequest& request) {
    switch (request.bits) {
    case 1: return {ConvertDIBTo24(request.dither ? DitherMono(picture24) : ThresholdToMono(picture24)), {}};
    case 4: return {ConvertDIBTo24(MapToPalette(picture24, kSixteenColorPalette, 256, request.dither)), {}};
    case 8: {
        if (request.paletteMode == PaletteMode::Keep && !request.useStandardPalette) return {CopyHandle(picture24), {}};
        const auto reduced = ReduceTo256(picture24, palette, request);
        return {ConvertDIBTo24(reduced), CreateDIBPalette(reduced)};
    }
    default: return {CopyHandle(picture24), {}};
    }
}

FormatPlanes PlanesOf(BitmapPair pair, CPalette palette = {}) {
    return {std::move(pair.color), std::move(pair.mask), std::move(palette)};
}

} // namespace

FormatPlanes RunFormatPipeline(const DibBlock& source, const FormatRequest& request) {
    constexpr std::array<int, 5> depths = {1, 4, 8, 24, 32};
    if (std::find(depths.begin(), depths.end(), request.bits) == depths.end()) return {};
    const auto picture = SizedPicture(source, request);
    if (!picture) return {};
    const bool hasAlpha = DIBBitCount(picture) == 32;
    if (request.bits == 32) {
        const auto keyed = hasAlpha ? DibBlock() : ConvertTo32(picture, request.useKey, request.keyColor);
        return PlanesOf(SplitColorAlpha(hasAlpha ? picture : keyed, true));
    }

    const CPalette own = DIBBitCount(source) == 8 ? CreateDIBPalette(source) : CPalette();
    const std::span<const Rgb> palette = request.palette.empty() ? std::span<const Rgb>(own.colors) : request.palette;
    const ColorRef key = request.useKey ? request.keyColor : kNoColor;
    if (!hasAlpha) {
        auto reduced = ReduceToDepth(picture, palette, request);
        return PlanesOf(SplitByColor(reduced.picture24, key, request.tolerance), std::move(reduced.palette));
    }
    auto threshold = SplitByThreshold(picture);
    if (request.bits == 24 || !threshold) return PlanesOf(std::move(threshold));
    auto reduced = ReduceToDepth(DIB24FromSurface(threshold.color), palette, request);
    // The colours may have moved where the picture is transparent; the mask stays that of the threshold.
    auto pair = SplitByColor(reduced.picture24, key, request.tolerance);
    if (!pair || !ClearWhereMasked(pair.color, threshold.mask)) return {};
    pair.mask = std::move(threshold.mask);
    return PlanesOf(std::move(pair), std::move(reduced.palette));
}

} // namespace pelorin
