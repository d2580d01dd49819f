// The options: plain globals, read once at start and written once at exit, and reachable by name for the command line.
//
// Only the boundary of the program reads these globals; what lies below takes parameters.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace pelorin {

class SettingsStore;
class StandardFolders;
struct Setting;

#define FLAG(section, key, global, value) extern bool global;
#define NUMBER(section, key, global, value, least, most) extern int global;
#define TEXT(section, key, global, value) extern std::string global;
#define TEXT_BY_NUMBER(section, key, global, number) extern std::string global;
#define MOVED_TEXT(section, key, global, oldSection) extern std::string global;
#define COLOR(section, key, global, value) extern std::uint32_t global;
#define FLAGS(section, key, global, first, count, values) extern std::array<bool, count> global;
#define COLORS(section, key, global, values) extern std::array<std::uint32_t, 16> global;
#define LIST(section, global) extern std::vector<std::string> global;
#define MAP(section, global) extern std::map<std::string, std::string> global;
#include "core/settings.def"

/// `g_nNewInterfaceType` as it was at start; the Preferences dialog changes the other for the next start.
extern int g_nInterfaceTypeInUse;
/// The Librarian's folder of this run, with a slash at its end. The setting holds what the person chose.
extern std::string g_strLibrarianRoot;

/// Colours of the bars and pages, by the type of interface in use.
struct InterfaceColors {
    std::uint32_t page, light, border;
};
/// 2 is the program's own colouring, everything else the system's.
[[nodiscard]] InterfaceColors ColorsOfInterface(int interfaceType);

/// Reads every option; what is missing, or is not of its type, takes the default.
void LoadSettings(const SettingsStore& store);
/// Writes every option and commits. Throws `FileException`.
void SaveSettings(SettingsStore& store);
/// Writes one option, or one list, and does not commit.
void StoreSetting(SettingsStore& store, const Setting& setting);
void StoreList(SettingsStore& store, const std::string& section);
/// Takes the option out of the store, wherever it stands, and puts it at its default. Does not commit.
void ForgetSetting(SettingsStore& store, const Setting& setting);
/// Puts every option at its default.
void ResetSettings();

/// Fills the empty file and folder options with their places on this system, and finds the Librarian's folder. Makes no
/// folder.
void CompleteSettingsPaths(const StandardFolders& folders, std::string_view tempFolder);
/// Makes the Librarian's folder and the preview store when they are missing.
void CreateSettingsFolders();

// ---- by name ----

/// One value. An entry of a list section is no `Setting`; see `FindListSetting`.
struct Setting {
    using Value = std::variant<bool*, int*, std::string*, std::uint32_t*>;

    std::string section, key;
    Value value;
    std::string fixedDefault;    ///< as it would stand in the store; see `DefaultStored`
    int least = 0, most = 0;     ///< of a number
    int defaultText = 0;         ///< string number of the default, where it is a text of the language
    std::string oldSection = {}; ///< where it is looked for when its section does not have it

    [[nodiscard]] std::string Name() const { return section + "/" + key; }
};

/// In the order of the table.
[[nodiscard]] const std::vector<Setting>& AllSettings();
/// By "Key" or "section/Key", letters compared without case; null for no such name.
[[nodiscard]] const Setting* FindSetting(std::string_view name);
/// A list section by its name; null for no such list.
[[nodiscard]] std::vector<std::string>* FindListSetting(std::string_view section);
[[nodiscard]] std::vector<std::string> ListSettingNames();

/// The text under which the present value is stored: 0 or 1, a decimal number, the text, a colour's decimal number.
[[nodiscard]] std::string StoredText(const Setting& setting);
/// The default in the same form.
[[nodiscard]] std::string DefaultStored(const Setting& setting);
/// Takes over a stored text; what is not of the type gives the default.
void TakeStoredText(const Setting& setting, std::string_view stored);

/// The value for a person: a colour as "#RRGGBB", or "none", "transparent", "inverted" for the three special ones.
[[nodiscard]] std::string DisplayText(const Setting& setting);
[[nodiscard]] std::string DefaultDisplayText(const Setting& setting);
/// Takes over what a person wrote: a flag also as yes/no/on/off/true/false, a colour as RRGGBB, #RRGGBB or a special
/// name. The error, with what would be right, or nothing when the value was taken.
[[nodiscard]] std::optional<std::string> SetFromPerson(const Setting& setting, std::string_view text);
/// "flag", "number", "text" or "colour".
[[nodiscard]] std::string_view TypeName(const Setting& setting);

} // namespace pelorin
