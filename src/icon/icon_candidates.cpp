#include "icon/icon_candidates.h"

#include "base/files.h"
#include "icon/ico_file.h"
#include "icon/icon_picture32.h"
#include "pixel/depth.h"

namespace pelorin {

namespace {

constexpr ColorRef kWhite = 0xFFFFFF;
constexpr std::size_t kPlanesAt = 12, kBitCountAt = 14;

bool ComesBehind(const CIcoCurObject& a, const CIcoCurObject& b) {
    return a.m_nWidth != b.m_nWidth ? a.m_nWidth > b.m_nWidth : a.m_nBits > b.m_nBits;
}

} // namespace

bool ReadCandidates(ByteSpan file, std::vector<CIcoCurObject>& list) {
    (void)ReadIcoImages(file, [&](CVnIcon&& icon) {
        CIcoCurObject candidate;
        candidate.m_Dib.Attach(IconPicture32(icon));
        if (candidate.m_Dib.Empty()) return;
        candidate.m_nWidth = icon.m_nWidth;
        candidate.m_nHeight = icon.m_nHeight;
        candidate.m_nBits = LoadU16LE(&icon.m_hImage[kPlanesAt]) * LoadU16LE(&icon.m_hImage[kBitCountAt]);
        const auto place =
            std::find_if(list.begin(), list.end(), [&](const auto& other) { return ComesBehind(other, candidate); });
        list.insert(place, std::move(candidate));
    });
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
