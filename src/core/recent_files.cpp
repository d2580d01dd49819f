#include "core/recent_files.h"

#include "base/text.h"

#include <algorithm>

namespace pelorin {

RecentFiles::RecentFiles(const std::vector<std::string>& stored) {
    // Oldest first, so that the newest ends in front.
    for (std::size_t i = std::min(stored.size(), std::size_t{kMost}); i-- > 0;) {
        if (!stored[i].empty()) Add(stored[i]);
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
