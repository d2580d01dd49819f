#include "icon/icon_picture32.h"

#include "icon/planes.h"
#include "pixel/alpha_mask.h"

namespace pelorin {

DibBlock IconPicture32(const CVnIcon& icon) {
    Surface image, mask;
    if (!ToBitmaps(icon, image, mask)) return {};
    auto block = CreateDIB(icon.m_nWidth, icon.m_nHeight, 32);
    if (!block) return {};
    const bool merged =
        icon.m_bAlpha ? MergeAlpha(image, mask, block.Span(), true) : MergeMask(image, mask, block.Span());
    return merged ? std::move(block) : DibBlock();
}

} // namespace pelorin
