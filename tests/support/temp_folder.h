// A folder of a test's own, gone with everything in it when the test ends.
#pragma once

#include "base/files.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace pelorin::test {

class TempFolder {
public:
    TempFolder() {
        auto pattern = (std::filesystem::temp_directory_path() / "pelorin-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
        m_path = pattern + "/";
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// Ends with a slash.
    [[nodiscard]] const std::string& Path() const { return m_path; }
    [[nodiscard]] std::string Path(std::string_view name) const { return m_path + std::string(name); }
    /// Makes a file and returns its path.
    std::string File(std::string_view name, std::string_view content = "") const {
        auto path = Path(name);
        WriteFileSafely(path, AsBytes(content));
        return path;
    }

private:
    std::string m_path;
};

} // namespace pelorin::test
