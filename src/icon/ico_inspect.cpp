#include "icon/ico_inspect.h"

#include "icon/ico_file.h"

#include <fmt/format.h>

#include <algorithm>

namespace pelorin {

namespace {

class IcoInspector {
public:
    IcoInspector(ByteSpan file, IconFileReport& report) : m_file(file), m_report(report) {}

    void Run() {
        if (!ReadIcoDirectory(m_file, m_directory)) {
            Odd("the header or the directory is not whole");
            return;
        }
        Fact("type", std::string(m_directory.type == kIcoTypeCursor ? "2 (cursor)" : "1 (icon)"));
        Fact("image_count", m_directory.entries.size());
        if (LoadU16LE(m_file.data()) != 0) Odd("the first two bytes are not 0");
        for (std::size_t i = 0; i < m_directory.entries.size(); ++i) InspectImage(i, m_directory.entries[i]);
        InspectGaps();
    }

private:
    template <class Value>
    void Fact(std::string_view name, Value value) {
        m_report.facts.emplace_back(name, std::move(value));
    }
    void Odd(std::string sentence) { m_report.oddities.push_back(std::move(sentence)); }

    void InspectImage(std::size_t index, const IcoDirectoryEntry& entry) {
        const auto name = fmt::format("image_{}", index + 1);
        const auto what = fmt::format("image {}: ", index + 1);
        CVnIcon icon;
        if (!ReadIcoImage(m_file, entry, icon)) {
            Odd(what + (entry.offset >= m_file.size() ? "its place is behind the file's end"
                                                      : "there is no image at its place"));
            return;
        }
        const auto bytes = icon.StoredBytes();
        Fact(name, fmt::format("{}x{}, {} bits, {}, {} bytes at {}", icon.m_nWidth, icon.m_nHeight,
                               icon.ShownBitCount(), icon.m_bCompressed ? "PNG" : "block", bytes, entry.offset));
        m_parts.emplace_back(entry.offset, std::uint64_t{entry.offset} + bytes);
        CompareSides(what, entry, icon);
        if (m_directory.type == kIcoTypeCursor) {
            Fact(name + "_hot_spot", fmt::format("{}, {}", entry.planes, entry.bits));
        } else if (entry.bits != 0 && entry.bits != icon.ShownBitCount()) {
            Odd(fmt::format("{}the directory says {} bits, the image {}", what, entry.bits, icon.ShownBitCount()));
        }
        if (icon.BitCount() == 0)
            Odd(fmt::format("{}{} colours are unusual; the pixels are not read", what, icon.m_nColors));
        if (bytes > m_file.size() - entry.offset) Odd(what + "it is cut off by the file's end; the rest counts as 0");
        if (!icon.m_bCompressed && entry.bytes != bytes) {
            Odd(fmt::format("{}the directory says {} bytes, the image takes {}", what, entry.bytes, bytes));
        }
        if (entry.reserved != 0) Odd(fmt::format("{}the reserved byte is {}", what, entry.reserved));
    }

    void CompareSides(const std::string& what, const IcoDirectoryEntry& entry, const CVnIcon& icon) {
        if (entry.width == (icon.m_nWidth & 255) && entry.height == (icon.m_nHeight & 255)) return;
        Odd(fmt::format("{}the directory says {}x{}, the image {}x{}", what, entry.width, entry.height, icon.m_nWidth,
                        icon.m_nHeight));
    }

    void InspectGaps() {
        std::sort(m_parts.begin(), m_parts.end());
        std::uint64_t end = 6 + 16 * m_directory.entries.size();
        for (const auto& [from, to] : m_parts) {
            if (from < end) Odd(fmt::format("the image at {} shares bytes with what stands before it", from));
            if (from > end) Odd(fmt::format("{} bytes at {} belong to no image", from - end, end));
            end = std::max(end, to);
        }
        if (end < m_file.size())
            Odd(fmt::format("{} bytes behind the last image belong to nothing", m_file.size() - end));
    }

    ByteSpan m_file;
    IconFileReport& m_report;
    IcoDirectory m_directory;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> m_parts; // from, behind
};

} // namespace

void InspectIco(ByteSpan file, IconFileReport& report) {
    IcoInspector(file, report).Run();
}

} // namespace pelorin
