// The doors and helpers that the program is given at start, handed down as one struct; there is no other way to them.
#pragma once

namespace pelorin {

class FileAssociations;
class FileDialogs;
class Launcher;
class LocaleInfo;
class Progress;
class RecentFiles;
class Registry;
class SettingsStore;
class StandardFolders;
class UserPrompt;

/// Nothing here is owned. `prompt` is never null; of the others a program makes those that it can use.
struct Services {
    UserPrompt* prompt = nullptr;
    FileDialogs* dialogs = nullptr;
    Progress* progress = nullptr;
    RecentFiles* recent = nullptr;
    StandardFolders* folders = nullptr;
    SettingsStore* settings = nullptr;
    Registry* registry = nullptr;
    FileAssociations* associations = nullptr;
    Launcher* launcher = nullptr;
    LocaleInfo* locale = nullptr;
};

} // namespace pelorin
