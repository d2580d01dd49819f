#include "core/settings.h"

#include "base/files.h"
#include "base/text.h"
#include "core/strings.h"
#include "platform/settings_store.h"
#include "platform/standard_folders.h"

#include <algorithm>
#include <charconv>

namespace pelorin {

namespace {

constexpr std::size_t kMostListEntries = 10'000;

std::optional<std::int64_t> ParseDecimal(std::string_view text) {
    std::int64_t value = 0;
    text = Trim(text);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

// False when the text is not of the type; the value is then as before.
bool TakeIfValid(const Setting& setting, std::string_view stored) {
    if (auto* const* text = std::get_if<std::string*>(&setting.value)) {
        **text = stored;
        return true;
    }
    const auto number = ParseDecimal(stored);
    if (!number) return false;
    if (auto* const* flag = std::get_if<bool*>(&setting.value)) {
        **flag = *number != 0;
    } else if (auto* const* integer = std::get_if<int*>(&setting.value)) {
        **integer = static_cast<int>(*number);
    } else {
        **std::get_if<std::uint32_t*>(&setting.value) = static_cast<std::uint32_t>(*number);
    }
    return true;
}

std::vector<std::string> ReadList(const SettingsStore& store, std::string_view section) {
    std::vector<std::string> entries;
    while (entries.size() < kMostListEntries) {
        auto entry = store.Read(section, std::to_string(entries.size()));
        if (!entry || entry->empty()) break;
        entries.push_back(std::move(*entry));
    }
    return entries;
}

void WriteList(SettingsStore& store, std::string_view section, const std::vector<std::string>& entries) {
    for (std::size_t i = 0; i < entries.size(); ++i) store.Write(section, std::to_string(i), entries[i]);
    for (const auto& [key, value] : store.ReadSection(section)) {
        const auto number = ParseDecimal(key);
        if (number && *number >= static_cast<std::int64_t>(entries.size())) store.Remove(section, key);
    }
}

std::map<std::string, std::string> ReadMap(const SettingsStore& store, std::string_view section) {
    const auto keys = store.ReadSection(section);
    return {keys.begin(), keys.end()};
}

void WriteMap(SettingsStore& store, std::string_view section, const std::map<std::string, std::string>& values) {
    for (const auto& [key, value] : store.ReadSection(section)) {
        if (!values.contains(key)) store.Remove(section, key);
    }
    for (const auto& [key, value] : values) store.Write(section, key, value);
}

bool IsAbsolutePath(std::string_view path) {
    const auto isSlash = [](char c) { return c == '/' || c == '\\'; };
    return !path.empty() && (isSlash(path[0]) || (path.size() > 1 && path[1] == ':'));
}

void FillTrashIcon(std::string& file, int& index, const std::string& programFolder, int defaultIndex) {
    if (!file.empty()) return;
    file = JoinPath(programFolder, "vnlibico.dll");
    index = defaultIndex;
}

} // namespace

InterfaceColors ColorsOfInterface(int interfaceType) {
    if (interfaceType == 2) return {0xFEF6F4, 0xFFFFFF, 0xB4A6A0};
    return {0xE1E1E1, 0xE1E1E1, 0xA0A0A0};
}

std::string StoredText(const Setting& setting) {
    if (auto* const* flag = std::get_if<bool*>(&setting.value)) return **flag ? "1" : "0";
    if (auto* const* number = std::get_if<int*>(&setting.value)) return std::to_string(**number);
    if (auto* const* text = std::get_if<std::string*>(&setting.value)) return **text;
    return std::to_string(static_cast<std::int32_t>(**std::get_if<std::uint32_t*>(&setting.value)));
}

std::string DefaultStored(const Setting& setting) {
    return setting.defaultText != 0 ? LoadText(setting.defaultText) : setting.fixedDefault;
}

void TakeStoredText(const Setting& setting, std::string_view stored) {
    if (!TakeIfValid(setting, stored)) (void)TakeIfValid(setting, DefaultStored(setting));
}

void LoadSettings(const SettingsStore& store) {
    for (const auto& setting : AllSettings()) {
        auto stored = store.Read(setting.section, setting.key);
        if (!stored && !setting.oldSection.empty()) stored = store.Read(setting.oldSection, setting.key);
        TakeStoredText(setting, stored ? *stored : DefaultStored(setting));
    }
    for (const auto& section : ListSettingNames()) *FindListSetting(section) = ReadList(store, section);
#define MAP(section, global) global = ReadMap(store, section);
#include "core/settings.def"
    g_nInterfaceTypeInUse = g_nNewInterfaceType;
}

void SaveSettings(SettingsStore& store) {
    for (const auto& setting : AllSettings()) StoreSetting(store, setting);
    for (const auto& section : ListSettingNames()) StoreList(store, section);
#define MAP(section, global) WriteMap(store, section, global);
#include "core/settings.def"
    store.Commit();
}

void StoreSetting(SettingsStore& store, const Setting& setting) {
    store.Write(setting.section, setting.key, StoredText(setting));
}

void StoreList(SettingsStore& store, const std::string& section) {
    if (const auto* entries = FindListSetting(section)) WriteList(store, section, *entries);
}

void ForgetSetting(SettingsStore& store, const Setting& setting) {
    store.Remove(setting.section, setting.key);
    if (!setting.oldSection.empty()) store.Remove(setting.oldSection, setting.key);
    TakeStoredText(setting, DefaultStored(setting));
}

void ResetSettings() {
    for (const auto& setting : AllSettings()) TakeStoredText(setting, DefaultStored(setting));
    for (const auto& section : ListSettingNames()) FindListSetting(section)->clear();
#define MAP(section, global) global.clear();
#include "core/settings.def"
}

void CompleteSettingsPaths(const StandardFolders& folders, std::string_view tempFolder) {
    const auto program = folders.Program();
    FillTrashIcon(g_strEmptyTrashDirIconFileName, g_nEmptyTrashDirIconIndex, program, 1);
    FillTrashIcon(g_strFullTrashDirIconFileName, g_nFullTrashDirIconIndex, program, 2);
    if (g_strLastFolderIconFile.empty()) g_strLastFolderIconFile = JoinPath(program, "folders.icl");
    if (g_strLastDriveIconFile.empty()) g_strLastDriveIconFile = JoinPath(program, "drives.icl");
    if (g_strPreviewTempDir.empty()) {
        const auto local = folders.LocalData();
        g_strPreviewTempDir = JoinPath(local.empty() ? tempFolder : local, "Vantrel/Temporary Preview Files");
    }

    g_bLibrarianUpgradeDone = true; // whether its folders are made again is the other flag's to say

    const auto standard = JoinPath(folders.Documents(), "Vantrel Librarian/");
    if (g_strLibrarianLocation.empty()) g_strLibrarianLocation = standard;
    // A bare word is no place: this run uses the standard one, and the person's word stays for the person to mend.
    g_strLibrarianRoot = IsAbsolutePath(g_strLibrarianLocation) ? JoinPath(g_strLibrarianLocation, "") : standard;
}

void CreateSettingsFolders() {
    for (const auto& folder : {g_strLibrarianRoot, g_strPreviewTempDir}) {
        if (!folder.empty() && !FolderExists(folder)) (void)CreateFolders(folder);
    }
}

} // namespace pelorin
