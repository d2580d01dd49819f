#include "icon/icon_pictures.h"

#include "core/file_kinds.h"
#include "icon/ani_file.h"
#include "icon/ico_file.h"
#include "icon/icon_block.h"
#include "pixel/depth.h"
#include "pixel/resample.h"

#include <cstdlib>

namespace pelorin {

namespace {

constexpr int kCursorSide = 32;
constexpr ColorRef kWhite = 0xFFFFFF;

using Better = bool (*)(const CVnIcon& a, const CVnIcon& b);

bool IsLarger(const CVnIcon& a, const CVnIcon& b) {
    return a.m_nWidth != b.m_nWidth ? a.m_nWidth > b.m_nWidth : a.ShownBitCount() > b.ShownBitCount();
}

bool IsNearerToCursor(const CVnIcon& a, const CVnIcon& b) {
    const int awayA = std::abs(a.m_nWidth - kCursorSide), awayB = std::abs(b.m_nWidth - kCursorSide);
    return awayA != awayB ? awayA < awayB : IsLarger(a, b);
}

// The best image, the first of equals; of a damaged file what stands before the damage counts.
bool ChooseImage(ByteSpan file, Better better, CVnIcon& best) {
    bool found = false;
    (void)ReadIcoImages(file, [&](CVnIcon&& icon) {
        if (found && !better(icon, best)) return;
        best = std::move(icon);
        found = true;
    });
    return found;
}

DibBlock ReadChosen(ByteSpan file, const PictureRequest& request, PictureFacts& facts, Better better) {
    CVnIcon icon;
    if (request.frame != 0 || request.layer > 0 || !ChooseImage(file, better, icon)) return {};
    facts.width = icon.m_nWidth;
    facts.height = icon.m_nHeight;
    facts.bits = icon.ShownBitCount();
    return IconBlockPicture(icon.m_hImage);
}

constexpr PictureFormat kFormats[] = {
    {kKindAni, "ANI", IsAni, ReadAni},
    {kKindIco, "ICO", [](ByteSpan file) { return IcoTypeOf(file) == kIcoTypeIcon; }, ReadIconPicture},
    {kKindCur, "CUR", [](ByteSpan file) { return IcoTypeOf(file) == kIcoTypeCursor; }, ReadCursorPicture},
};

} // namespace

DibBlock ReadIconPicture(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    return ReadChosen(file, request, facts, IsLarger);
}

DibBlock ReadCursorPicture(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    auto picture = ReadChosen(file, request, facts, IsNearerToCursor);
    if (!picture) return {};
    if (facts.width != kCursorSide || facts.height != kCursorSide)
        picture = ResampleDIB(picture, kCursorSide, kCursorSide);
    return ComposeTo24(picture, kWhite);
}

std::span<const PictureFormat> IconPictureFormats() {
    return kFormats;
}

} // namespace pelorin
