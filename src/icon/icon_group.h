// One icon as stored: the ordered list of its image formats.
#pragma once

#include "base/archive.h"
#include "icon/stored_icon.h"

#include <memory>
#include <string>
#include <vector>

namespace pelorin {

class CIconGroup {
public:
    CIconGroup();
    CIconGroup(const CIconGroup& other);
    CIconGroup& operator=(const CIconGroup&) = delete;
    CIconGroup(CIconGroup&&) noexcept = default;
    CIconGroup& operator=(CIconGroup&&) noexcept = default;

    std::string m_strName;     ///< empty is shown as "Untitled"
    std::uint32_t m_nInfo = 0; ///< not 0 for an icon of a Macintosh kind
    bool m_bChanged = false;
    int m_nCurrent = -1;
    std::uint32_t m_nSerial; ///< unique in this run
    std::string m_strSource;
    int m_nSourceX = -1, m_nSourceY = -1;
    /// In saving order once `Sort` ran; `Add` runs it.
    std::vector<std::unique_ptr<CVnIcon>> m_arrIcons;

    [[nodiscard]] int GetCount() const { return static_cast<int>(m_arrIcons.size()); }
    /// Null past the end.
    [[nodiscard]] CVnIcon* GetIcon(int index) const;
    /// Appends a copy, then sorts.
    void Add(const CVnIcon& icon, bool explorerOrder = false);
    void RemoveAll();
    void ClearPreviews();

    /// Saving order: ascending depth, descending width, descending height; with `explorerOrder` all formats below 32
    /// bits by ascending width and depth, then the 32-bit ones by ascending width.
    void Sort(bool explorerOrder = false);
    /// Indices into `m_arrIcons`: descending depth, width, height. Made on demand, emptied when the formats change.
    [[nodiscard]] const std::vector<std::uint32_t>& GetDisplayOrder();

    /// Index of the format nearest to size 16, 32, 48, 256 and depth 1, 4, 8, 32 (by position 0 to 3); -1 when empty.
    [[nodiscard]] int FindBest(int sizeIndex, int depthIndex) const;
    /// The same with the size in pixels and the depth value (1, 16, 32, 64).
    [[nodiscard]] int FindBestValues(int size, int depthValue) const;
    /// "(1 format)", "(%d formats)"; with a number "(#%d, 1 format)", "(#%d, %d formats)".
    [[nodiscard]] std::string GetSizeText() const;
    [[nodiscard]] std::string GetSizeText(int number) const;

    /// u16 count; per format u32 bytes and the block.
    void Serialize(ArchiveWriter& ar) const;
    /// Throws `ArchiveException` when the bytes end early or hold no image.
    void Serialize(ArchiveReader& ar);

private:
    std::vector<std::uint32_t> m_arrDisplayOrder;
};

} // namespace pelorin
