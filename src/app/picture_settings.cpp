#include "app/picture_settings.h"

#include "core/settings.h"

namespace pelorin {

DibDocSettings PictureSettings() {
    return {
        .jpegQuality = g_nJpegQuality,
        .photoCdSize = g_nPhotoCDSize,
        .metafileWidth = g_nDefaultWmfCX,
        .metafileHeight = g_nDefaultWmfCY,
        .gifMatte = g_crGifSaveOptionMatteColor,
        .gifTransparency = g_bGifSaveOptionTransparency,
        .gifDither = g_bGifSaveOptionDither,
        .gifColors = g_nGifSaveOptionColors,
        .gifPalette = g_nGifSaveOptionPalette,
        .gifThreshold = g_nGifSaveOptionThreshold,
        .jp2Lossy = g_bJp2SaveOptionLossyCompression,
        .jp2Compression = g_nJp2SaveOptionCompression,
        .useKeyColor = g_bConvertTo32BppUseTransparentColor,
        .keyColor = g_crConvertTo32BppTransparent,
        .background = g_crConvertFrom32BppBackground,
    };
}

} // namespace pelorin
