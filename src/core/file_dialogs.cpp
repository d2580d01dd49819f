#include "core/file_dialogs.h"

#include "base/files.h"

namespace pelorin {

std::vector<std::string> SplitChosenFiles(std::string buffer) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; start < buffer.size();) {
        auto end = buffer.find('\0', start);
        if (end == std::string::npos) end = buffer.size();
        if (end == start) break; // two zero bytes end the list
        parts.push_back(buffer.substr(start, end - start));
        start = end + 1;
    }
    if (parts.size() < 2) return parts;
    std::vector<std::string> files;
    for (std::size_t i = 1; i < parts.size(); ++i) files.push_back(JoinPath(parts[0], parts[i]));
    return files;
}

} // namespace pelorin
