#include "core/temp_files.h"

#include "base/files.h"
#include "base/text.h"
#include "platform/standard_folders.h"

#include <fmt/printf.h>

#include <atomic>

namespace pelorin {

std::string g_szTempFolder;

namespace {

constexpr unsigned kMostTempNames = 1'000'000;
std::atomic<unsigned> g_nextTempNumber{0};

bool IsFree(const std::string& path) {
    return !FileExists(path) && !FolderExists(path);
}

std::string NameIn(std::string_view folder, std::string_view prefix, unsigned number, std::string_view extension) {
    return fmt::sprintf("%s%s%04u.%s", folder, prefix, number, extension);
}

} // namespace

std::string MakeTempName(std::string_view prefix, std::string_view extension) {
    if (g_szTempFolder.empty()) return {};
    if (prefix.empty()) prefix = kTempPrefix;
    for (unsigned tries = 0; tries < kMostTempNames; ++tries) {
        auto path = NameIn(g_szTempFolder, prefix, g_nextTempNumber++ % kMostTempNames, extension);
        if (IsFree(path)) return path;
    }
    return {};
}

void ClearTempFiles(std::string_view folder) {
    if (folder.empty()) return;
    for (const auto& name : ListFolder(folder)) {
        const auto path = JoinPath(folder, name);
        if (StartsWithNoCase(name, kTempPrefix) && FileExists(path)) DeleteFile(path);
    }
}

bool IsUsableTempFolder(const std::string& folder) {
    if (folder.empty() || !CreateFolders(folder)) return false;
    for (unsigned number = 0; number < kMostTempNames; ++number) {
        const auto probe = NameIn(folder, kTempPrefix, number, "tmp");
        if (!IsFree(probe)) continue;
        try {
            WriteFileSafely(probe, {}, Existing::Keep);
        } catch (const FileException&) {
            // Another start of the program may have just taken this very name; anything else will not get better.
            if (FileExists(probe)) continue;
            return false;
        }
        return DeleteFile(probe);
    }
    return false;
}

std::string FindTempFolder(const StandardFolders& folders) {
    const auto below = [](std::string root) { return root.empty() ? root : JoinPath(root, "Vantrel/"); };
    for (const auto& folder : {below(folders.LocalData()), folders.Temp(), below(folders.Data())}) {
        if (IsUsableTempFolder(folder)) return folder;
    }
    return {};
}

} // namespace pelorin
