#include "icon/icon_candidates.h"

#include "base/files.h"
#include "icon/frame_image.h"
#include "icon/icon_picture32.h"
#include "pixel/depth.h"

namespace pelorin {

namespace {

constexpr ColorRef kWhite = 0xFFFFFF;

bool ComesBehind(const CIcoCurObject& a, const CIcoCurObject& b) {
    return a.m_nWidth != b.m_nWidth ? a.m_nWidth > b.m_nWidth : a.m_nBits > b.m_nBits;
}

} // namespace

bool ReadCandidates(ByteSpan file, std::vector<CIcoCurObject>& list) {
    IcoDirectory directory;
    (void)ReadIcoDirectory(file, directory);
    std::int64_t pixels = 0;
    for (const auto& entry : directory.entries) {
        FrameImage image;
        if (!ReadFrameImage(file, entry, ShortImage::Fill, image)) break;
        pixels += std::int64_t{image.icon.m_nWidth} * image.icon.m_nHeight;
        CIcoCurObject candidate;
        if (pixels <= kMaxPixels) candidate.m_Dib.Attach(IconPicture32(image.icon));
        if (candidate.m_Dib.Empty()) break;
        candidate.m_nWidth = image.icon.m_nWidth;
        candidate.m_nHeight = image.icon.m_nHeight;
        candidate.m_nBits = image.bits;
        const auto place =
            std::find_if(list.begin(), list.end(), [&](const auto& other) { return ComesBehind(other, candidate); });
        list.insert(place, std::move(candidate));
    }
    return !list.empty();
}

DibBlock LoadBestPreview(std::string_view path) {
    try {
        const auto file = FileView::Open(path);
        std::vector<CIcoCurObject> list;
        if (!ReadCandidates(file.Data(), list)) return {};
        return ComposeTo24(list.back().m_Dib.Block(), kWhite);
    } catch (const FileException&) {
        return {};
    }
}

} // namespace pelorin
