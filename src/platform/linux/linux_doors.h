// The doors of a Linux desktop: folders of the XDG base directory rules, the environment's language, xdg-open.
#pragma once

#include "platform/launcher.h"
#include "platform/locale_info.h"
#include "platform/standard_folders.h"

#include <string>
#include <string_view>
#include <vector>

namespace pelorin {

/// Config, data and cache are the XDG ones, with their fall-backs below the home folder.
class LinuxStandardFolders final : public StandardFolders {
public:
    [[nodiscard]] std::string Program() const override;
    [[nodiscard]] std::string Config() const override;
    [[nodiscard]] std::string Data() const override;
    [[nodiscard]] std::string LocalData() const override; ///< the cache folder
    [[nodiscard]] std::string Temp() const override;
    [[nodiscard]] std::string Documents() const override; ///< as "user-dirs.dirs" says, else "Documents"
};

/// `name` of the environment; empty when it is not set.
[[nodiscard]] std::string Environment(const char* name);
/// XDG_DATA_DIRS with its standard value, the most important first; each ends with a slash.
[[nodiscard]] std::vector<std::string> SystemDataFolders();
[[nodiscard]] std::vector<std::string> SystemConfigFolders();

class LinuxLocale final : public LocaleInfo {
public:
    [[nodiscard]] std::uint16_t PrimaryLanguage() const override;
};
/// For "fr_FR.UTF-8", "de", "C".
[[nodiscard]] std::uint16_t PrimaryLanguageOf(std::string_view localeName);

class LinuxLauncher final : public Launcher {
public:
    [[nodiscard]] bool Open(const std::string& target) override;
    [[nodiscard]] bool Run(const std::string& command, const std::string& file) override;
};
/// The arguments of a command line with the file in its place.
[[nodiscard]] std::vector<std::string> SplitCommand(std::string_view command, const std::string& file);

/// Starts a program that goes on by itself. False when it could not be started.
[[nodiscard]] bool StartProgram(const std::vector<std::string>& arguments);
/// Runs a program to its end, its output thrown away; the exit code, or -1.
[[nodiscard]] int RunProgram(const std::vector<std::string>& arguments);

} // namespace pelorin
