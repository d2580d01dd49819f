#include "icon/icon_group.h"

#include "base/text.h"
#include "core/strings.h"
#include "icon/format_order.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace pelorin {

namespace {

constexpr int kBestSizes[] = {16, 32, 48, 256};
constexpr int kBestDepthValues[] = {1, 16, 32, 64};

std::uint32_t NextSerial() {
    static std::atomic<std::uint32_t> counter{0};
    return ++counter;
}

int DepthValue(const CVnIcon& icon) {
    if (icon.m_nColors == 256) return 32;
    if (icon.m_nColors == 0) return icon.m_bAlpha ? 64 : 48;
    return icon.m_nColors;
}

IconFormat FormatOf(const CVnIcon& icon) {
    return {icon.m_nWidth, icon.m_nHeight, icon.BitCount()};
}

} // namespace

CIconGroup::CIconGroup() : m_nSerial(NextSerial()) {}

CIconGroup::CIconGroup(const CIconGroup& other)
    : m_strName(other.m_strName), m_nInfo(other.m_nInfo), m_nSerial(NextSerial()), m_strSource(other.m_strSource) {
    for (const auto& icon : other.m_arrIcons) {
        CVnIcon copy;
        copy.Copy(*icon);
        Append(std::move(copy));
    }
}

CVnIcon* CIconGroup::GetIcon(int index) const {
    return index >= 0 && index < GetCount() ? m_arrIcons[static_cast<std::size_t>(index)].get() : nullptr;
}

void CIconGroup::Append(CVnIcon&& icon) {
    m_arrIcons.push_back(std::make_unique<CVnIcon>(std::move(icon)));
    m_arrDisplayOrder.clear();
}

void CIconGroup::Add(const CVnIcon& icon, bool explorerOrder) {
    try {
        CVnIcon copy;
        copy.Copy(icon);
        Append(std::move(copy));
    } catch (const std::bad_alloc&) {
        m_bChanged = true;
        return;
    }
    Sort(explorerOrder);
}

void CIconGroup::RemoveAll() {
    m_arrIcons.clear();
    m_arrDisplayOrder.clear();
}

void CIconGroup::ClearPreviews() {
    for (const auto& icon : m_arrIcons) {
        icon->m_hPreview = {};
        icon->m_nPreviewInfo = 0;
    }
    m_nCurrent = -1;
}

std::string CIconGroup::GetShownName() const {
    return m_strName.empty() ? LoadText(str::kUntitled) : m_strName;
}

void CIconGroup::Sort(bool explorerOrder) {
    // Neighbours change places only when they are out of order, so equal ones keep theirs.
    std::stable_sort(m_arrIcons.begin(), m_arrIcons.end(), [=](const auto& a, const auto& b) {
        return explorerOrder ? ExplorerKey(FormatOf(*a)) < ExplorerKey(FormatOf(*b))
                             : SavingKey(FormatOf(*a)) < SavingKey(FormatOf(*b));
    });
    m_arrDisplayOrder.clear();
}

const std::vector<std::uint32_t>& CIconGroup::GetDisplayOrder() {
    if (m_arrDisplayOrder.size() != m_arrIcons.size()) {
        m_arrDisplayOrder.resize(m_arrIcons.size());
        for (std::uint32_t i = 0; i < m_arrDisplayOrder.size(); ++i) m_arrDisplayOrder[i] = i;
        std::stable_sort(m_arrDisplayOrder.begin(), m_arrDisplayOrder.end(), [this](std::uint32_t a, std::uint32_t b) {
            return DisplayKey(FormatOf(*m_arrIcons[a])) < DisplayKey(FormatOf(*m_arrIcons[b]));
        });
    }
    return m_arrDisplayOrder;
}

int CIconGroup::FindBest(int sizeIndex, int depthIndex) const {
    if (sizeIndex < 0 || sizeIndex > 3 || depthIndex < 0 || depthIndex > 3) return -1;
    return FindBestValues(kBestSizes[sizeIndex], kBestDepthValues[depthIndex]);
}

int CIconGroup::FindBestValues(int size, int depthValue) const {
    int best = -1, bestScore = 0;
    for (int i = 0; i < GetCount(); ++i) {
        const auto& icon = *GetIcon(i);
        const int score = std::abs(size - icon.m_nWidth) + std::abs(size - icon.m_nHeight) +
                          2 * std::abs(DepthValue(icon) - depthValue);
        if (best < 0 || score < bestScore) {
            best = i;
            bestScore = score;
        }
    }
    return best;
}

std::string CIconGroup::GetSizeText(std::optional<int> number) const {
    const auto formats = Counted(m_arrIcons.size(), "format");
    return number ? fmt::format("(#{}, {})", *number, formats) : "(" + formats + ")";
}

void CIconGroup::Serialize(ArchiveWriter& ar) const {
    ar.U16(static_cast<std::uint16_t>(m_arrIcons.size()));
    for (const auto& icon : m_arrIcons) {
        const bool stored = icon && icon->m_hImage.size() == icon->m_nBytes;
        ar.U32(stored ? icon->m_nBytes : 0);
        if (stored) ar.Raw(icon->m_hImage);
    }
}

void CIconGroup::Serialize(ArchiveReader& ar) {
    std::int64_t pixels = 0;
    for (int left = ar.U16(); left > 0; --left) {
        if (ar.U32() == 0) continue;
        CVnIcon icon;
        // The image tells its own size.
        if (!icon.ReadFromMemory(ar.Ahead(), 0, 0)) throw ArchiveException("this is not an image of an icon");
        pixels += std::int64_t{icon.m_nWidth} * icon.m_nHeight;
        if (pixels > kMaxPixels) throw ArchiveException("the icon is too large");
        ar.Skip(std::min<std::size_t>(icon.m_nBytes, ar.Left()));
        Append(std::move(icon));
    }
    m_arrDisplayOrder.clear();
}

} // namespace pelorin
