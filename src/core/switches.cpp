#include "core/switches.h"

#include "base/files.h"
#include "base/text.h"

namespace pelorin {

namespace {

constexpr std::string_view kPatchSwitch = "/delpatch:";
constexpr std::string_view kLibrarianSwitch = "/librarian:";

} // namespace

Switches ParseSwitches(const CommandLine& arguments) {
    Switches switches;
    for (const auto& argument : arguments) {
        if (StartsWithNoCase(argument, kPatchSwitch)) {
            switches.patch = Trim(std::string_view(argument).substr(kPatchSwitch.size()));
        } else if (StartsWithNoCase(argument, kLibrarianSwitch)) {
            switches.librarian = Trim(std::string_view(argument).substr(kLibrarianSwitch.size()));
        } else {
            if (!switches.text.empty()) switches.text += ' ';
            switches.text += argument;
            switches.files.push_back(argument);
        }
    }
    if (!switches.patch.empty()) switches.librarian.clear();
    return switches;
}

CommandLine MakeAbsolute(const CommandLine& arguments, const std::string& currentFolder) {
    CommandLine whole;
    for (const auto& argument : arguments) {
        const auto path = JoinPath(currentFolder, argument);
        const bool isHere = !argument.empty() && (FileExists(path) || FolderExists(path));
        whole.push_back(isHere ? path : argument);
    }
    return whole;
}

} // namespace pelorin
