#include "core/recent_files.h"

#include "base/text.h"

#include <ranges>

namespace pelorin {

RecentFiles::RecentFiles(const std::vector<std::string>& stored) {
    for (const auto& path : stored | std::views::take(kMost) | std::views::reverse) {
        if (!path.empty()) Add(path);
    }
}

void RecentFiles::Add(std::string_view path) {
    Remove(path);
    m_files.emplace(m_files.begin(), path);
    if (m_files.size() > kMost) m_files.resize(kMost);
}

void RecentFiles::Remove(std::string_view path) {
    std::erase_if(m_files, [&](const std::string& own) { return EqualsNoCase(own, path); });
}

} // namespace pelorin
