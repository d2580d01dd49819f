// Reads the includes of every source file: a folder may include only the folders below it.
#include "base/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace pelorin {
namespace {

// From the ground up. Folders on one line are siblings, which do not know each other.
const std::vector<std::vector<std::string>> kHouse = {
    {"base"},          {"platform"},   {"pixel"},
    {"core"},          {"formats"},    {"icon"},
    {"colour", "net"}, {"containers"}, {"editor", "media", "winintegration"},
    {"production"},    {"app"},        {"cli", "shell"},
};

// Headers of the system and of the window toolkit, and the places that may include them.
bool IsSystemHeader(const std::string& name) {
    static const std::vector<std::string> prefixes = {"sys/",      "unistd.h", "fcntl.h", "dirent.h", "netinet/",
                                                      "arpa/",     "netdb.h",  "poll.h",  "pwd.h",    "spawn.h",
                                                      "termios.h", "dlfcn.h",  "linux/"};
    return std::any_of(prefixes.begin(), prefixes.end(), [&](const auto& p) { return name.rfind(p, 0) == 0; });
}

bool MayIncludeSystemHeaders(const std::string& path) {
    return path.rfind("platform/linux/", 0) == 0 || path.rfind("base/files", 0) == 0 || path.rfind("shell/", 0) == 0;
}

bool IsQtHeader(const std::string& name) {
    return name.size() > 1 && name[0] == 'Q' && name.find('.') == std::string::npos;
}

int LevelOf(const std::string& folder) {
    for (std::size_t level = 0; level < kHouse.size(); ++level) {
        if (std::find(kHouse[level].begin(), kHouse[level].end(), folder) != kHouse[level].end()) {
            return static_cast<int>(level);
        }
    }
    return -1;
}

struct Include {
    std::string name;
    bool quoted;
};

std::vector<Include> IncludesOf(const std::string& path) {
    std::istringstream text{std::string(AsText(FileView::Open(path).Data()))};
    std::vector<Include> includes;
    for (std::string line; std::getline(text, line);) {
        const auto hash = line.find_first_not_of(" \t");
        if (hash == std::string::npos || line.compare(hash, 8, "#include") != 0) continue;
        const auto open = line.find_first_of("\"<", hash);
        const auto close = line.find_first_of("\">", open + 1);
        if (close != std::string::npos)
            includes.push_back({line.substr(open + 1, close - open - 1), line[open] == '"'});
    }
    return includes;
}

void CollectSources(const std::string& root, const std::string& below, std::vector<std::string>& out) {
    for (const auto& name : ListFolder(JoinPath(root, below))) {
        const auto path = below.empty() ? name : JoinPath(below, name);
        if (FolderExists(JoinPath(root, path))) {
            CollectSources(root, path, out);
        } else if (const auto extension = ExtensionOf(name);
                   extension == "h" || extension == "cpp" || extension == "def") {
            out.push_back(path);
        }
    }
}

// What is wrong with `include` in the file `path` (both below src/); empty when nothing is.
std::string Breach(const std::string& path, const Include& include) {
    const auto folder = path.substr(0, path.find('/'));
    if (!include.quoted) {
        if (IsSystemHeader(include.name) && !MayIncludeSystemHeaders(path)) return "a system header";
        if (IsQtHeader(include.name) && folder != "shell") return "the window toolkit";
        return {};
    }
    const auto other = include.name.substr(0, include.name.find('/'));
    const int from = LevelOf(folder), to = LevelOf(other);
    if (from < 0 || to < 0) return "a folder that is not on the map";
    if (folder != other && to >= from) return "a folder that is not below";
    return {};
}

TEST(House, EveryIncludeGoesDown) {
    const auto root = JoinPath(PELORIN_SOURCE_DIR, "src");
    std::vector<std::string> sources;
    CollectSources(root, "", sources);
    ASSERT_GT(sources.size(), 10u);
    for (const auto& path : sources) {
        for (const auto& include : IncludesOf(JoinPath(root, path))) {
            const auto wrong = Breach(path, include);
            EXPECT_TRUE(wrong.empty()) << path << " includes " << wrong << ": " << include.name;
        }
    }
}

TEST(House, TheCheckSeesBreaches) {
    EXPECT_NE(Breach("base/text.cpp", {"pixel/dib.h", true}), "");
    EXPECT_NE(Breach("colour/swatches.cpp", {"net/http.h", true}), "");
    EXPECT_NE(Breach("editor/tools.cpp", {"media/element.h", true}), "");
    EXPECT_NE(Breach("icon/icon_doc.cpp", {"QString", false}), "");
    EXPECT_NE(Breach("formats/png.cpp", {"unistd.h", false}), "");
    EXPECT_NE(Breach("pixel/dib.cpp", {"dib.h", true}), "");
    EXPECT_EQ(Breach("shell/canvas.cpp", {"QWidget", false}), "");
    EXPECT_EQ(Breach("icon/ico_file.cpp", {"base/bytes.h", true}), "");
    EXPECT_EQ(Breach("icon/ico_file.cpp", {"icon/stored_icon.h", true}), "");
}

} // namespace
} // namespace pelorin
