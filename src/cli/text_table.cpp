#include "cli/text_table.h"

#include <fmt/format.h>

#include <algorithm>

namespace pelorin::cli {

namespace {

// Columns on the screen: the characters, not the bytes.
std::size_t WidthOf(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

} // namespace

std::string TextTable::Text() const {
    std::vector<std::size_t> widths;
    for (const auto& row : m_rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], WidthOf(row[i]));
    }
    std::string out;
    for (const auto& row : m_rows) {
        std::string line = m_indent;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string blanks(widths[i] - WidthOf(row[i]), ' ');
            const bool right = i < m_alignment.size() && m_alignment[i] == 'r';
            if (i > 0) line += "  ";
            line += right ? blanks + row[i] : row[i] + blanks;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + '\n';
    }
    return out;
}

std::string BytesText(unsigned long long bytes) {
    if (bytes < 1000) return fmt::format("{} bytes", bytes);
    const auto kilobytes = static_cast<double>(bytes) / 1024;
    if (kilobytes < 1000) return fmt::format("{:.{}f} KB", kilobytes, kilobytes < 10 ? 1 : 0);
    return fmt::format("{:.1f} MB", kilobytes / 1024);
}

} // namespace pelorin::cli
