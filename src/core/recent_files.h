// The files opened last, the newest first.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pelorin {

class RecentFiles {
public:
    static constexpr std::size_t kMost = 10;

    RecentFiles() = default;
    /// Keeps the first ten of a stored list; empty and repeated names are left out.
    explicit RecentFiles(const std::vector<std::string>& stored);

    /// Takes the name out wherever it stands, letters compared without case, and puts it first; the eleventh drops out.
    void Add(std::string_view path);
    void Remove(std::string_view path);
    [[nodiscard]] const std::vector<std::string>& Get() const { return m_files; }

private:
    std::vector<std::string> m_files;
};

} // namespace pelorin
