#include "pixel/shadow.h"

#include "pixel/adjust.h"
#include "pixel/compose.h"
#include "pixel/convolve.h"
#include "pixel/crop.h"

namespace pelorin {

bool DropShadow(Surface& color, Surface& alpha, bool grow) {
    if (!color || color.GetSize() != alpha.GetSize()) return false;
    const int width = color.Width(), height = color.Height(), extra = grow ? 2 : 0;
    Surface shadowColor(width + extra, height + extra), shadowAlpha(width + extra, height + extra);
    if (!shadowColor || !shadowAlpha) return false;

    shadowColor.Fill(0x00FFFFFF);
    PutBitmapAt(shadowColor, color, 1, 1);
    PutBitmapAt(shadowAlpha, alpha, 1, 1);
    // Whatever the picture's colours are, this leaves one even dark grey.
    shadowColor = ApplyKernel(Contrast(Brightness(shadowColor, -100), -50), kSmoothMore, 0);
    shadowAlpha = Brightness(ApplyKernel(shadowAlpha, kSmoothMore, 0), -30);
    ComposeLayers(shadowColor, shadowAlpha, 0, 0, width, height, color, alpha, {.compose = true});
    color = std::move(shadowColor);
    alpha = std::move(shadowAlpha);
    return true;
}

} // namespace pelorin
