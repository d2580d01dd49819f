// One icon as stored: the ordered list of its image formats.
#pragma once

#include "base/archive.h"
#include "icon/stored_icon.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelorin {

class CIconGroup {
public:
    CIconGroup();
    /// The formats are copied, and the source text goes with them; the serial number is a new one.
    CIconGroup(const CIconGroup& other);
    CIconGroup& operator=(const CIconGroup&) = delete;
    CIconGroup(CIconGroup&&) noexcept = default;
    CIconGroup& operator=(CIconGroup&&) noexcept = default;

    std::string m_strName;     ///< empty is shown as "Untitled"
    std::uint32_t m_nInfo = 0; ///< not 0 for an icon of a Macintosh kind
    bool m_bChanged = false;   ///< a format could not be added, or the group was replaced from a document
    int m_nCurrent = -1;
    std::uint32_t m_nSerial; ///< unique in this run
    int m_nResourceId = -1;  ///< of the group in a program file; -1: none, or it goes by `m_strResourceName`
    /// The group's name in a program file, unit for unit: not all of them can be told in UTF-8, as `m_strName` is.
    std::u16string m_strResourceName;
    int m_nLanguage = 0; ///< of the group in a program file
    std::string m_strSource;
    int m_nSourceX = -1, m_nSourceY = -1;
    /// In saving order once `Sort` ran; `Add` runs it.
    std::vector<std::unique_ptr<CVnIcon>> m_arrIcons;

    [[nodiscard]] int GetCount() const { return static_cast<int>(m_arrIcons.size()); }
    /// Null past the end.
    [[nodiscard]] CVnIcon* GetIcon(int index) const;
    /// Appends a copy, then sorts; `m_bChanged` is set when there is no memory for it.
    void Add(const CVnIcon& icon, bool explorerOrder = false);
    /// Appends the format itself at the end, without sorting.
    void Append(CVnIcon&& icon);
    void RemoveAll();
    /// Drops the previews of all formats and the current one.
    void ClearPreviews();
    [[nodiscard]] std::string GetShownName() const;

    /// Saving order: ascending depth, descending width, descending height; with `explorerOrder` all formats below 32
    /// bits by ascending width and depth, then the 32-bit ones by ascending width. Equal ones stay as they are.
    void Sort(bool explorerOrder = false);
    /// Indices into `m_arrIcons`: descending depth, width, height. Made on demand, emptied when the formats change.
    [[nodiscard]] const std::vector<std::uint32_t>& GetDisplayOrder();

    /// Index of the format nearest to size 16, 32, 48, 256 and depth 1, 4, 8, 32 (by position 0 to 3); -1 when empty.
    [[nodiscard]] int FindBest(int sizeIndex, int depthIndex) const;
    /// The same with the size in pixels and the depth value (1, 16, 32, 64): the first with the smallest
    /// |size - width| + |size - height| + 2 x |difference of depth values|.
    [[nodiscard]] int FindBestValues(int size, int depthValue) const;
    /// "(1 format)", "(%d formats)"; with a number "(#%d, 1 format)", "(#%d, %d formats)".
    [[nodiscard]] std::string GetSizeText(std::optional<int> number = {}) const;

    /// Writes the whole icon as a Windows icon file, formats in their order; a file that is there is replaced only when
    /// the new one is whole. A 24-bit image that is compressed goes black by this.
    [[nodiscard]] bool SaveAsIcoFile(std::string_view path);

    /// u16 count; per format u32 bytes and the block.
    void Serialize(ArchiveWriter& ar) const;
    /// Appends the formats without sorting. Throws `ArchiveException` when the bytes end early or hold no image.
    void Serialize(ArchiveReader& ar);

private:
    std::vector<std::uint32_t> m_arrDisplayOrder;
};

} // namespace pelorin
