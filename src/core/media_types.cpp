#include "core/media_types.h"

#include "base/files.h"
#include "base/text.h"
#include "core/strings.h"
#include "platform/file_associations.h"

#include <algorithm>
#include <charconv>

namespace pelorin {

namespace {

// The extensions whose files are their own pictures.
constexpr std::string_view kSelfPictured[] = {"ico", "cur", "ani", "icl"};

struct IconReference {
    std::string file;
    int index = -1;
};

IconReference ParseDefaultIcon(std::string_view value) {
    if (value.empty()) return {};
    if (value.starts_with("%1")) return {"", 0};
    const auto comma = value.rfind(',');
    IconReference icon{std::string(value.substr(0, comma)), 0};
    if (comma != std::string_view::npos) {
        const auto number = Trim(value.substr(comma + 1));
        (void)std::from_chars(number.data(), number.data() + number.size(), icon.index);
    }
    return icon;
}

void WriteIndex(ArchiveWriter& ar, int index) {
    ar.U32(static_cast<std::uint32_t>(index));
}

} // namespace

std::string GetTypeName(std::string_view path) {
    return LoadText(KindInfo(GetFileKind(path)).typeName);
}

int GetFileResource(std::string_view path) {
    return KindInfo(GetFileKind(path)).resource;
}

FileGroup GetFileGroup(std::string_view path, FileKind* kind) {
    const auto own = GetFileKind(path);
    if (kind != nullptr) *kind = own;
    return KindInfo(own).group;
}

CMediaType::CMediaType(FileKind kind, std::string extension, int iconIndex, const FileAssociations* system,
                       const std::string& programFile)
    : m_nKind(kind), m_arrExtensions{std::move(extension)} {
    const auto& main = m_arrExtensions.front();
    ReadSystem(system);
    m_strSavedClass = m_strClass;
    m_strSavedDescription = m_strDescription;
    m_strSavedIconFile = m_strIconFile;
    m_nSavedIconIndex = m_nIconIndex;
    m_strSavedEditCommand = m_strEditCommand;
    m_strSavedOpenCommand = m_strOpenCommand;

    m_strWantedClass = m_strClass.empty() ? main + "file" : m_strClass;
    m_strWantedDescription = m_strDescription.empty() ? GetTypeName("toto." + main) : m_strDescription;
    m_strWantedIconFile = programFile;
    m_nWantedIconIndex = iconIndex;
    m_strWantedOpenCommand = "\"" + programFile + "\" %1";
}

void CMediaType::Serialize(ArchiveWriter& ar) const {
    ar.U32(static_cast<std::uint32_t>(m_nKind));
    ar.U32(static_cast<std::uint32_t>(m_arrExtensions.size()));
    for (const auto& extension : m_arrExtensions) ar.String(extension);
    for (const auto* text : {&m_strClass, &m_strDescription, &m_strIconFile}) ar.String(*text);
    WriteIndex(ar, m_nIconIndex);
    for (const auto* text : {&m_strEditCommand, &m_strOpenCommand}) ar.String(*text);
    for (const auto* text : {&m_strWantedClass, &m_strWantedDescription, &m_strWantedIconFile}) ar.String(*text);
    WriteIndex(ar, m_nWantedIconIndex);
    for (const auto* text : {&m_strWantedOpenCommand, &m_strSavedClass, &m_strSavedDescription, &m_strSavedIconFile}) {
        ar.String(*text);
    }
    WriteIndex(ar, m_nSavedIconIndex);
    for (const auto* text : {&m_strSavedEditCommand, &m_strSavedOpenCommand}) ar.String(*text);
}

void CMediaType::Serialize(ArchiveReader& ar) {
    m_nKind = ar.I32();
    const auto count = ar.U32();
    if (count > ar.Left()) throw ArchiveException("more extensions than bytes");
    m_arrExtensions.clear();
    for (std::uint32_t i = 0; i < count; ++i) m_arrExtensions.push_back(ar.String());
    for (auto* text : {&m_strClass, &m_strDescription, &m_strIconFile}) *text = ar.String();
    m_nIconIndex = ar.I32();
    for (auto* text : {&m_strEditCommand, &m_strOpenCommand}) *text = ar.String();
    for (auto* text : {&m_strWantedClass, &m_strWantedDescription, &m_strWantedIconFile}) *text = ar.String();
    m_nWantedIconIndex = ar.I32();
    for (auto* text : {&m_strWantedOpenCommand, &m_strSavedClass, &m_strSavedDescription, &m_strSavedIconFile}) {
        *text = ar.String();
    }
    m_nSavedIconIndex = ar.I32();
    for (auto* text : {&m_strSavedEditCommand, &m_strSavedOpenCommand}) *text = ar.String();
}

void CMediaType::ReadSystem(const FileAssociations* system) {
    m_strClass =
        system != nullptr && !m_arrExtensions.empty() ? system->ClassOf(m_arrExtensions.front()) : std::string{};
    // A missing class must not be taken for the root of all classes.
    const auto facts = m_strClass.empty() ? FileClass{} : system->Read(m_strClass);
    m_strDescription = facts.description;
    auto icon = ParseDefaultIcon(facts.defaultIcon);
    m_strIconFile = std::move(icon.file);
    m_nIconIndex = icon.index;
    m_strOpenCommand = facts.openCommand;
    m_strEditCommand = facts.editCommand;
}

bool CMediaType::WriteSystem(FileAssociations& system) const {
    if (m_arrExtensions.empty()) return false;
    bool done = true;
    for (const auto& extension : m_arrExtensions) done = system.SetClassOf(extension, m_strWantedClass) && done;

    FileClass facts{m_strWantedDescription, {}, m_strWantedOpenCommand, m_strEditCommand};
    const bool selfPictured = std::ranges::any_of(
        kSelfPictured, [&](std::string_view extension) { return EqualsNoCase(extension, m_arrExtensions.front()); });
    if (selfPictured) {
        facts.defaultIcon = "%1";
    } else if (!m_strWantedIconFile.empty()) {
        facts.defaultIcon = m_strWantedIconFile + "," + std::to_string(m_nWantedIconIndex);
    }
    return system.Write(m_strWantedClass, facts) && done;
}

bool CMediaType::IsOurs() const {
    return EqualsNoCase(m_strOpenCommand, m_strWantedOpenCommand) && EqualsNoCase(m_strIconFile, m_strWantedIconFile) &&
           EqualsNoCase(m_strClass, m_strWantedClass);
}

} // namespace pelorin
