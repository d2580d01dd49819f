#include "icon/ico_file.h"

#include "base/files.h"
#include "core/file_kinds.h"

#include <new>

namespace pelorin {

namespace {

constexpr std::size_t kHeaderSize = 6, kEntrySize = 16;

// The bit count in the directory goes by the number of colours, and by alpha only where there is none. Unusual numbers
// go out as 4 bits.
int DirectoryBits(const CVnIcon& icon) {
    const int bits = IconBitCount(icon.m_nColors, icon.m_bAlpha && icon.m_nColors == 0);
    return bits == 0 ? 4 : bits;
}

void PatchEntry(ByteWriter& file, std::size_t index, const CVnIcon& icon, std::size_t bytes, std::size_t offset) {
    ByteWriter entry(kEntrySize);
    entry.U8(static_cast<std::uint32_t>(icon.m_nWidth));
    entry.U8(static_cast<std::uint32_t>(icon.m_nHeight));
    entry.U8(static_cast<std::uint32_t>(icon.m_nColors));
    entry.U8(0);
    entry.U16LE(1);
    entry.U16LE(static_cast<std::uint32_t>(DirectoryBits(icon)));
    entry.U32LE(static_cast<std::uint32_t>(bytes));
    entry.U32LE(static_cast<std::uint32_t>(offset));
    const auto at = kHeaderSize + index * kEntrySize;
    for (std::size_t i = 0; i < kEntrySize; i += 2) file.PatchU16LE(at + i, LoadU16LE(entry.View().data() + i));
}

} // namespace

int IcoTypeOf(ByteSpan file) {
    ByteReader r(file);
    r.Skip(2);
    const int type = r.U16LE(), count = r.U16LE();
    const bool good = r.Ok() && (type == kIcoTypeIcon || type == kIcoTypeCursor) && count != 0;
    return good ? type : 0;
}

bool ReadIcoDirectory(ByteSpan file, IcoDirectory& directory) {
    directory = {};
    directory.type = IcoTypeOf(file);
    if (directory.type == 0) return false;
    ByteReader r(file);
    r.Seek(4);
    const std::size_t count = r.U16LE();
    if (r.Left() < count * kEntrySize) return false;
    directory.entries.resize(count);
    for (auto& entry : directory.entries) {
        entry.width = r.U8();
        entry.height = r.U8();
        entry.colors = r.U8();
        entry.reserved = r.U8();
        entry.planes = r.U16LE();
        entry.bits = r.U16LE();
        entry.bytes = r.U32LE();
        entry.offset = r.U32LE();
    }
    return true;
}

bool ReadIcoImage(ByteSpan file, const IcoDirectoryEntry& entry, CVnIcon& icon) {
    return entry.offset < file.size() && icon.ReadFromMemory(file.subspan(entry.offset), entry.bytes, entry.bits);
}

bool ReadIcoImages(ByteSpan file, const std::function<void(CVnIcon&& icon)>& take) {
    IcoDirectory directory;
    if (!ReadIcoDirectory(file, directory)) return false;
    std::int64_t pixels = 0;
    for (const auto& entry : directory.entries) {
        CVnIcon icon;
        if (!ReadIcoImage(file, entry, icon)) return false;
        pixels += std::int64_t{icon.m_nWidth} * icon.m_nHeight;
        if (pixels > kMaxPixels) return false;
        take(std::move(icon));
    }
    return true;
}

bool ReadIcoGroup(ByteSpan file, CIconGroup& group) {
    CIconGroup read;
    if (!ReadIcoImages(file, [&](CVnIcon&& icon) { read.Append(std::move(icon)); })) return false;
    read.Sort();
    group = std::move(read);
    return true;
}

bool LoadIcoIntoGroups(std::string_view path, std::vector<CIconGroup>& groups, const MacintoshIconReader& macintosh) {
    try {
        if (IsMacintoshIconKind(GetFileKind(path))) return macintosh && macintosh(path, groups);
        const auto file = FileView::Open(path);
        CIconGroup group;
        if (!ReadIcoGroup(file.Data(), group)) return false;
        groups.push_back(std::move(group));
        return true;
    } catch (const FileException&) {
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

Bytes BuildIcoFile(std::span<CVnIcon* const> icons) {
    if (icons.size() > UINT16_MAX) return {};
    std::size_t expected = kHeaderSize + icons.size() * kEntrySize;
    for (const auto* icon : icons) expected += icon->StoredBytes();
    ByteWriter file(expected);
    file.U16LE(0);
    file.U16LE(kIcoTypeIcon);
    file.U16LE(static_cast<std::uint32_t>(icons.size()));
    file.Zeros(icons.size() * kEntrySize);
    for (std::size_t i = 0; i < icons.size(); ++i) {
        const auto offset = file.Size();
        auto& icon = *icons[i];
        if (icon.m_bCompressed) {
            file.Raw(icon.m_pPngData.empty() ? icon.WriteCompressed() : icon.m_pPngData);
        } else {
            file.Raw(icon.m_hImage);
        }
        PatchEntry(file, i, icon, file.Size() - offset, offset);
    }
    return file.Size() > UINT32_MAX ? Bytes() : file.Take();
}

Bytes BuildIcoFile(const CIconGroup& group) {
    std::vector<CVnIcon*> icons;
    for (const auto& icon : group.m_arrIcons) icons.push_back(icon.get());
    return BuildIcoFile(icons);
}

bool CIconGroup::SaveAsIcoFile(std::string_view path) {
    try {
        const auto file = BuildIcoFile(*this);
        if (file.empty()) return false;
        WriteFileSafely(path, file);
        return true;
    } catch (const FileException&) {
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace pelorin
