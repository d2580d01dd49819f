// The NE form, laid out byte by byte.
#include "base/text.h"
#include "containers/icl_file.h"
#include "containers/icon_resources.h"
#include "containers/ne_file.h"
#include "containers/resource_tree.h"
#include "core/strings.h"

#include <array>

namespace pelorin {

namespace {

constexpr std::size_t kUnitShift = 10, kUnit = std::size_t{1} << kUnitShift;
constexpr std::size_t kMostUnits = 0xFFFF, kMostIds = 0x7FFF;
constexpr std::uint16_t kNumber = 0x8000, kEntryFlags = 0x1C30;
constexpr std::size_t kNeHeader = 0x90, kResidentNames = kNeHeader + 0x26;
constexpr std::size_t kEntrySize = 12;

// A module that has no code to load: the segments lead nowhere.
constexpr std::array<std::uint16_t, 44> kNeHeaderWords = {
    0x454E, 0x0A05, 0x00B2, 0x000A, 0,      0,      0x8309, 3,      0x0400, 0,      0,      // to 0x15
    1,      0,      0,      3,      1,      0x001A, 0x0040, 0x0058, 0,      0x00A8, 0x00AA, // to 0x2B
    0x014C, 0,      1,      9,      0,      0x0002, 0,      0,      0,      0x0300,         // to 0x3F
    0x0001, 0x0F99, 0x1D50, 0x0F99, 0x000A, 0x0010, 0x1D50, 0x0010, 0x000B, 0x0310, 0x0D71, 0x0310};

constexpr std::array<std::uint8_t, 16> kStubCode = {0xBA, 0x10, 0x00, 0x0E, 0x1F, 0xB4, 0x09, 0xCD,
                                                    0x21, 0xB8, 0x01, 0x4C, 0xCD, 0x21, 0x90, 0x90};

std::size_t Units(std::size_t bytes) {
    return (bytes + kUnit - 1) >> kUnitShift;
}

struct Counts {
    std::size_t images = 0, icons = 0;
};

Counts Count(IconList icons) {
    Counts counts;
    counts.icons = icons.size();
    for (const auto* icon : icons) counts.images += icon->m_arrIcons.size();
    return counts;
}

std::string_view StoredName(const CIconGroup& icon) {
    return icon.m_strName.empty() ? kNoNameNe : ClipUtf8(icon.m_strName, 255);
}

class LibraryWriter {
public:
    explicit LibraryWriter(IconList icons) : m_icons(icons), m_counts(Count(icons)) {
        PutHeader();
        PutTable();
        PutNames();
    }

    [[nodiscard]] const ByteWriter& Front() const { return m_out; }

    /// Writes the parts behind the front with `put(bytes)`, and fills their entries in. False when the places do not
    /// fit their numbers.
    template <typename Put>
    bool PutIcons(const Put& put, ProgressScope& progress) {
        std::size_t unit = Units(m_out.Size()), image = 0, group = 0;
        const auto place = [&](std::size_t entry, std::size_t id, ByteSpan bytes) {
            const auto units = Units(bytes.size());
            if (unit + units > kMostUnits) return false;
            m_out.PatchU16LE(entry, static_cast<std::uint32_t>(unit));
            m_out.PatchU16LE(entry + 2, static_cast<std::uint32_t>(units));
            m_out.PatchU16LE(entry + 4, kEntryFlags);
            m_out.PatchU16LE(entry + 6, static_cast<std::uint32_t>(kNumber | id));
            unit += units;
            put(bytes);
            return true;
        };
        for (auto* icon : m_icons) {
            std::vector<GroupDirectoryEntry> entries;
            for (auto& format : icon->m_arrIcons) {
                auto stored = PrepareImage(*format, icon->m_nInfo != 0);
                format->m_nResourceId = static_cast<int>(image + 1);
                stored.entry.id = static_cast<std::uint16_t>(image + 1);
                entries.push_back(stored.entry);
                if (!place(m_imageEntries + image * kEntrySize, image + 1, stored.bytes)) return false;
                ++image;
            }
            if (!place(m_groupEntries + group * kEntrySize, group + 1, WriteGroupDirectory(entries))) return false;
            progress.Step(++group);
        }
        return true;
    }

private:
    void PutHeader() {
        m_out.Text("MZP");
        m_out.U8(0);
        for (const auto word : {2, 0, 4, 15, 0xFFFF, 0, 0xB8}) m_out.U16LE(static_cast<std::uint32_t>(word));
        m_out.Zeros(kNeHeader - m_out.Size());
        m_out.PatchU16LE(24, 0x40);
        m_out.PatchU32LE(60, kNeHeader);
        ByteWriter stub;
        stub.Raw(kStubCode);
        stub.Text("This program must be run under Microsoft Windows.\r\n$");
        for (std::size_t i = 0; i < stub.Size(); i += 2) {
            m_out.PatchU16LE(64 + i, LoadU16LE(stub.View().data() + i));
        }
        for (const auto word : kNeHeaderWords) m_out.U16LE(word);
    }

    std::size_t PutTypeBlock(std::uint16_t type, std::size_t count) {
        m_out.U16LE(static_cast<std::uint32_t>(kNumber | type));
        m_out.U16LE(static_cast<std::uint32_t>(count));
        m_out.U32LE(0);
        const auto entries = m_out.Size();
        m_out.Zeros(count * kEntrySize);
        return entries;
    }

    void PutTable() {
        m_out.U16LE(kUnitShift);
        m_imageEntries = PutTypeBlock(kResourceIcon, m_counts.images);
        m_groupEntries = PutTypeBlock(kResourceGroupIcon, m_counts.icons);
        m_out.U16LE(0);
        // The place has 16 bits, and 0 would mean that there are no names.
        if (((m_out.Size() - kNeHeader) & 0xFFFF) == 0) m_out.U16LE(0);
        m_out.PatchU16LE(kResidentNames, static_cast<std::uint32_t>(m_out.Size() - kNeHeader));
    }

    void PutNames() {
        m_out.U8(static_cast<std::uint32_t>(kLibraryModule.size()));
        m_out.Text(kLibraryModule);
        for (const auto* icon : m_icons) {
            const auto name = StoredName(*icon);
            m_out.U8(static_cast<std::uint32_t>(name.size()));
            m_out.Text(name);
        }
        m_out.U16LE(0);
        m_out.AlignTo(kUnit);
    }

    IconList m_icons;
    Counts m_counts;
    ByteWriter m_out;
    std::size_t m_imageEntries = 0, m_groupEntries = 0;
};

bool CountsFit(IconList icons) {
    const auto counts = Count(icons);
    return counts.images <= kMostIds && counts.icons <= kMostIds;
}

} // namespace

bool FitsLibraryNe(IconList icons) {
    if (!CountsFit(icons)) return false;
    CompressImages(icons);
    ProgressScope nothing(nullptr, {}, 0);
    return LibraryWriter(icons).PutIcons([](ByteSpan) {}, nothing);
}

void WriteLibraryNe(const std::string& path, IconList icons, Progress* progress) {
    SafeFile file(path);
    ProgressScope scope(progress, LoadText(str::kSaving), icons.size());
    LibraryWriter writer(icons);
    file.Write(writer.Front().View());
    const Bytes zeros(kUnit);
    const auto put = [&](ByteSpan bytes) {
        file.Write(bytes);
        file.Write(ByteSpan(zeros).first(Units(bytes.size()) * kUnit - bytes.size()));
    };
    const bool fits = writer.PutIcons(put, scope);
    for (auto* icon : icons) {
        for (auto& image : icon->m_arrIcons) image->m_pPngData = {};
    }
    if (!fits) throw FileException("the icons do not fit into the 16-bit form");
    file.Seek(0);
    file.Write(writer.Front().View());
    file.Commit();
}

} // namespace pelorin
