#include "icon/draw_icon.h"

#include "icon/icon_block.h"
#include "pixel/blend.h"

namespace pelorin {

namespace {

Rect PlaceAt(Point at, Size size) {
    return {at.x, at.y, at.x + size.width, at.y + size.height};
}

// The picture at the size last asked for.
const DibBlock& ScaledPicture(CVnIcon& icon, Size size) {
    if (icon.m_nCacheWidth != size.width || icon.m_nCacheHeight != size.height || icon.m_DrawCache.Empty()) {
        icon.m_DrawCache = CDIB(IconBlockPicture(icon.m_hImage));
        if (icon.m_DrawCache.GetWidth() != size.width || icon.m_DrawCache.GetHeight() != size.height) {
            (void)icon.m_DrawCache.Resize(size.width, size.height);
        }
        icon.m_nCacheWidth = icon.m_DrawCache.GetWidth();
        icon.m_nCacheHeight = icon.m_DrawCache.GetHeight();
    }
    return icon.m_DrawCache.Block();
}

} // namespace

bool DrawIcon(CVnIcon& icon, Surface& target, Point at) {
    return DrawIconScaled(icon, target, at, {icon.m_nWidth, icon.m_nHeight});
}

bool DrawIconScaled(CVnIcon& icon, Surface& target, Point at, Size size) {
    return BlendDIBOver(target, PlaceAt(at, size), ScaledPicture(icon, size));
}

Rect DrawIconFitted(CVnIcon& icon, Surface& target, const Rect& place) {
    const Size own{icon.m_nWidth, icon.m_nHeight};
    const bool fits = own.width <= place.Width() && own.height <= place.Height();
    const Point centred{place.left + (place.Width() - own.width) / 2, place.top + (place.Height() - own.height) / 2};
    const Rect painted = fits ? PlaceAt(centred, own) : FitInside(own, place);
    const bool drawn = !painted.Empty() &&
                       DrawIconScaled(icon, target, {painted.left, painted.top}, {painted.Width(), painted.Height()});
    return drawn ? painted : Rect{};
}

} // namespace pelorin
