#include "base/files.h"
#include "base/text.h"
#include "platform/linux/linux_doors.h"

#include <climits>

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace pelorin {

namespace {

std::string WithSlash(std::string path) {
    return path.empty() ? path : JoinPath(path, "");
}

std::string Home() {
    auto home = Environment("HOME");
    if (home.empty()) {
        if (const passwd* entry = getpwuid(getuid())) home = entry->pw_dir;
    }
    return WithSlash(home);
}

// The variable counts only when it is an absolute path.
std::string XdgFolder(const char* variable, std::string_view belowHome) {
    auto folder = Environment(variable);
    if (folder.starts_with('/')) return WithSlash(folder);
    const auto home = Home();
    return home.empty() ? std::string{} : WithSlash(home + std::string(belowHome));
}

std::vector<std::string> FolderList(const char* variable, std::string_view standard) {
    auto list = Environment(variable);
    if (list.empty()) list = standard;
    std::vector<std::string> folders;
    for (const auto& folder : Split(list, ':')) {
        if (folder.starts_with('/')) folders.push_back(WithSlash(folder));
    }
    return folders;
}

} // namespace

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string{} : std::string(value);
}

std::vector<std::string> SystemDataFolders() {
    return FolderList("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
}

std::vector<std::string> SystemConfigFolders() {
    return FolderList("XDG_CONFIG_DIRS", "/etc/xdg");
}

std::string LinuxStandardFolders::Program() const {
    std::array<char, PATH_MAX> path{};
    const auto length = readlink("/proc/self/exe", path.data(), path.size());
    return length <= 0 ? std::string{} : std::string(FolderOf({path.data(), static_cast<std::size_t>(length)}));
}

std::string LinuxStandardFolders::Config() const {
    return XdgFolder("XDG_CONFIG_HOME", ".config");
}

std::string LinuxStandardFolders::Data() const {
    return XdgFolder("XDG_DATA_HOME", ".local/share");
}

std::string LinuxStandardFolders::LocalData() const {
    return XdgFolder("XDG_CACHE_HOME", ".cache");
}

std::string LinuxStandardFolders::Temp() const {
    const auto folder = Environment("TMPDIR");
    return WithSlash(folder.starts_with('/') ? folder : "/tmp");
}

// "user-dirs.dirs" is shell text of one form alone: XDG_DOCUMENTS_DIR="$HOME/Documents".
std::string LinuxStandardFolders::Documents() const {
    constexpr std::string_view kKey = "XDG_DOCUMENTS_DIR=\"", kHome = "$HOME/";
    const auto text = ReadFileStart(Config() + "user-dirs.dirs", 64u << 10);
    for (const auto& line : Split(AsText(text), '\n')) {
        auto value = Trim(line);
        if (!value.starts_with(kKey) || !value.ends_with('"')) continue;
        value = value.substr(kKey.size(), value.size() - kKey.size() - 1);
        if (value.starts_with(kHome)) return WithSlash(Home() + std::string(value.substr(kHome.size())));
        if (value.starts_with('/')) return WithSlash(std::string(value));
    }
    const auto home = Home();
    return home.empty() ? std::string{} : home + "Documents/";
}

} // namespace pelorin
