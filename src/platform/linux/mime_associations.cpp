#include "platform/linux/mime_associations.h"

#include "base/files.h"
#include "base/text.h"
#include "platform/ini_file.h"
#include "platform/linux/linux_doors.h"

#include <algorithm>

namespace pelorin {

namespace {

constexpr std::string_view kOwnTypes = "application/x-vantrel-";
constexpr std::string_view kEntryGroup = "Desktop Entry";
constexpr std::string_view kEditGroup = "Desktop Action edit";
constexpr std::string_view kIconKey = "X-Vantrel-DefaultIcon";
constexpr std::string_view kDescriptionKey = "X-Vantrel-Description";
constexpr std::uint64_t kLargestList = 16u << 20;

std::string ReadText(const std::string& path) {
    try {
        return FileExists(path) ? std::string(AsText(FileView::Open(path, kLargestList).Data())) : std::string{};
    } catch (const FileException&) {
        return {};
    }
}

bool WriteText(const std::string& path, const std::string& text) {
    try {
        return CreateFolders(FolderOf(path)) && (WriteFileSafely(path, AsBytes(text)), true);
    } catch (const FileException&) {
        return false;
    }
}

std::string TypeOfClass(std::string_view className) {
    const bool isType = className.find('/') != std::string_view::npos;
    return isType ? std::string(className) : std::string(kOwnTypes).append(className);
}

std::string ClassOfType(std::string_view type) {
    return std::string(type.starts_with(kOwnTypes) ? type.substr(kOwnTypes.size()) : type);
}

// Class names become parts of file names and of markup, so only plain ones can be written.
bool IsPlain(std::string_view name) {
    return !name.empty() && std::ranges::all_of(name, [](char c) {
        const char lower = AsciiLower(c);
        return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' ||
               c == '_' || c == '/';
    }) && name.find("..") == std::string_view::npos;
}

std::string FileNameOfClass(std::string_view className) {
    return ReplaceAll("vantrel-pelorin-" + std::string(className), "/", "-");
}

// "%f" and its like are where the file goes; the other codes of a desktop entry have no meaning for us.
std::string CommandOfExec(std::string_view exec) {
    std::string command;
    for (std::size_t i = 0; i < exec.size(); ++i) {
        if (exec[i] != '%' || i + 1 == exec.size()) {
            command += exec[i];
            continue;
        }
        const char code = exec[++i];
        if (std::string_view("fFuU").find(code) != std::string_view::npos) command += "%1";
        if (code == '%') command += '%';
    }
    return std::string(Trim(command));
}

std::string ExecOfCommand(std::string_view command) {
    return ReplaceAll(ReplaceAll(std::string(command), "%", "%%"), "%%1", "%f");
}

std::string EscapeXml(std::string text) {
    text = ReplaceAll(ReplaceAll(std::move(text), "&", "&amp;"), "<", "&lt;");
    return ReplaceAll(std::move(text), ">", "&gt;");
}

std::string OneLine(std::string_view text) {
    std::string line(Trim(text));
    std::ranges::replace_if(
        line, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return line;
}

// The first of a list like "a.desktop;b.desktop;" for which `accepts` says yes.
template <class Accepts>
std::string FirstOf(const std::string& list, const Accepts& accepts) {
    for (const auto& entry : Split(list, ';')) {
        if (!entry.empty() && accepts(entry)) return entry;
    }
    return {};
}

} // namespace

MimeAssociations::Places MimePlaces() {
    const LinuxStandardFolders folders;
    return {folders.Config(), folders.Data(), SystemConfigFolders(), SystemDataFolders()};
}

// The lines of a file stand by weight, the heaviest first; the person's file comes before the system's.
const MimeAssociations::TypesByExtension& MimeAssociations::Types() const {
    if (m_types) return *m_types;
    m_types.emplace();
    auto folders = m_places.systemData;
    folders.insert(folders.begin(), m_places.data);
    for (const auto& folder : folders) {
        for (const auto& line : Split(ReadText(folder + "mime/globs2"), '\n')) {
            const auto parts = Split(Trim(line), ':');
            if (parts.size() < 3 || !parts[2].starts_with("*.")) continue;
            m_types->emplace(ToLower(parts[2].substr(2)), parts[1]);
        }
    }
    return *m_types;
}

std::string MimeAssociations::ClassOf(std::string_view extension) const {
    const auto type = Types().find(ToLower(extension));
    return type == Types().end() ? std::string{} : ClassOfType(type->second);
}

std::string MimeAssociations::EntryPath(const std::string& entry) const {
    if (entry.find('/') != std::string::npos || entry.starts_with('.')) return {};
    auto folders = m_places.systemData;
    folders.insert(folders.begin(), m_places.data);
    for (const auto& folder : folders) {
        auto path = folder + "applications/" + entry;
        if (FileExists(path)) return path;
    }
    return {};
}

std::string MimeAssociations::DefaultEntry(const std::string& type) const {
    std::vector<std::string> lists{m_places.config + "mimeapps.list"};
    for (const auto& folder : m_places.systemConfig) lists.push_back(folder + "mimeapps.list");
    lists.push_back(m_places.data + "applications/mimeapps.list");
    for (const auto& folder : m_places.systemData) lists.push_back(folder + "applications/mimeapps.list");
    const auto exists = [&](const std::string& entry) { return !EntryPath(entry).empty(); };
    for (const auto& path : lists) {
        const auto chosen = IniFile(ReadText(path)).Get("Default Applications", type);
        if (auto entry = FirstOf(chosen.value_or(""), exists); !entry.empty()) return entry;
    }
    for (const auto& folder : m_places.systemData) {
        const auto able = IniFile(ReadText(folder + "applications/mimeinfo.cache")).Get("MIME Cache", type);
        if (auto entry = FirstOf(able.value_or(""), exists); !entry.empty()) return entry;
    }
    return {};
}

// The comment without a language, of the type's own file.
std::string MimeAssociations::Description(const std::string& type) const {
    auto folders = m_places.systemData;
    folders.insert(folders.begin(), m_places.data);
    for (const auto& folder : folders) {
        const auto text = ReadText(folder + "mime/" + type + ".xml");
        const auto start = text.find("<comment>");
        const auto end = text.find("</comment>", start);
        if (end == std::string::npos) continue;
        auto comment = text.substr(start + 9, end - start - 9);
        comment = ReplaceAll(ReplaceAll(std::move(comment), "&lt;", "<"), "&gt;", ">");
        return ReplaceAll(std::move(comment), "&amp;", "&");
    }
    return {};
}

FileClass MimeAssociations::Read(std::string_view className) const {
    if (!IsPlain(className)) return {};
    const auto type = TypeOfClass(className);
    FileClass facts;
    facts.description = Description(type);
    const auto entry = DefaultEntry(type);
    if (entry.empty()) return facts;
    const IniFile desktop(ReadText(EntryPath(entry)));
    facts.openCommand = CommandOfExec(desktop.Get(kEntryGroup, "Exec").value_or(""));
    facts.editCommand = CommandOfExec(desktop.Get(kEditGroup, "Exec").value_or(""));
    facts.defaultIcon = desktop.Get(kEntryGroup, kIconKey).value_or(desktop.Get(kEntryGroup, "Icon").value_or(""));
    if (const auto own = desktop.Get(kEntryGroup, kDescriptionKey)) facts.description = *own;
    return facts;
}

bool MimeAssociations::SetClassOf(std::string_view extension, std::string_view className) {
    if (!IsPlain(className) || !IsPlain(extension)) return false;
    if (EqualsNoCase(ClassOf(extension), className)) return true;
    const auto name = FileNameOfClass(className) + "-" + std::string(extension);
    // A weight above the usual one, so that a type of the system with the same extension gives way.
    const auto package = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
                         "  <mime-type type=\"" +
                         TypeOfClass(className) +
                         "\">\n"
                         "    <comment>" +
                         EscapeXml(std::string(className)) +
                         "</comment>\n"
                         "    <glob weight=\"60\" pattern=\"*." +
                         std::string(extension) +
                         "\"/>\n"
                         "  </mime-type>\n</mime-info>\n";
    const auto path = m_places.data + "mime/packages/" + name + ".xml";
    m_types.reset();
    if (WriteText(path, package) && RunProgram({"update-mime-database", m_places.data + "mime"}) == 0) return true;
    (void)DeleteFile(path);
    return false;
}

bool MimeAssociations::Write(std::string_view className, const FileClass& facts) {
    if (!IsPlain(className) || facts.openCommand.empty()) return false;
    const auto type = TypeOfClass(className);
    const auto entry = FileNameOfClass(className) + ".desktop";
    IniFile desktop;
    const auto set = [&desktop](std::string_view group, std::string_view key, std::string_view value) {
        (void)desktop.Set(group, key, OneLine(value));
    };
    set(kEntryGroup, "Type", "Application");
    set(kEntryGroup, "Name", "Vantrel Pelorin");
    set(kEntryGroup, "Exec", ExecOfCommand(facts.openCommand));
    set(kEntryGroup, "NoDisplay", "true");
    set(kEntryGroup, "MimeType", type + ";");
    set(kEntryGroup, kIconKey, facts.defaultIcon);
    set(kEntryGroup, kDescriptionKey, facts.description);
    if (!facts.editCommand.empty()) {
        set(kEntryGroup, "Actions", "edit;");
        set(kEditGroup, "Name", "Edit");
        set(kEditGroup, "Exec", ExecOfCommand(facts.editCommand));
    }
    if (!WriteText(m_places.data + "applications/" + entry, desktop.Text())) return false;

    const auto path = m_places.config + "mimeapps.list";
    IniFile defaults(ReadText(path));
    return defaults.Set("Default Applications", type, entry) && WriteText(path, defaults.Text());
}

} // namespace pelorin
