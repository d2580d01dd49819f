#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pelorin::cli {

/// Lines with aligned columns, two blanks between them; nothing behind the last cell of a line.
class TextTable {
public:
    /// One letter a column: 'l' left, 'r' right. Columns beyond it are left-aligned.
    explicit TextTable(std::string_view alignment, std::string_view indent = {})
        : m_alignment(alignment), m_indent(indent) {}

    void Row(std::vector<std::string> cells) { m_rows.push_back(std::move(cells)); }
    [[nodiscard]] std::string Text() const;

private:
    std::string m_alignment, m_indent;
    std::vector<std::vector<std::string>> m_rows;
};

/// "1,234 bytes", "22 KB", "1.5 MB".
[[nodiscard]] std::string BytesText(unsigned long long bytes);

} // namespace pelorin::cli
