#include "containers/exe_doc.h"

#include "base/text.h"
#include "containers/program_file.h"
#include "core/services.h"
#include "core/user_prompt.h"

namespace pelorin {

namespace {

ResourceKey KeyOf(const CIconGroup& icon) {
    return GroupKey(icon.m_nResourceId, icon.m_strResourceName);
}

ByteSpan FindExtraData(ByteSpan file) {
    const auto image = PeImage::Parse(file);
    return image ? FindExtraData(*image) : ByteSpan{};
}

} // namespace

bool CFileExeDoc::OnOpenDocument(const std::string& path) {
    DeleteContents();
    auto& prompt = *GetServices().prompt;
    bool isProgram = false;
    try {
        const auto file = FileView::Open(path);
        const auto found = FindIcons(file.Data(), m_bCanUpdate, GetServices().progress);
        m_arrIcons = LoadIcons(found, BaseName(path), m_pixels);
        m_nMode = found.mode;
        m_arrIds.insert(found.idTable.begin(), found.idTable.end());
        m_arrUnreadIds = {found.unreadIds.begin(), found.unreadIds.end()};
        m_arrUnreadGroupIds = {found.unreadGroupIds.begin(), found.unreadGroupIds.end()};
        KeepUndecoded(found);
        KeepLibraryNames(found);
        m_bComplete = found.complete;
        isProgram = PeImage::Parse(file.Data()).has_value();
        if (m_nMode == ProgramMode::Restricted) {
            const auto extra = FindExtraData(file.Data());
            m_nExtraBytes = extra.size();
            if (!Updater().KeepsDataBehindImage()) m_arrExtraData.assign(extra.begin(), extra.end());
        }
    } catch (const FileException& e) {
        prompt.Tell(PromptIcon::Stop, str::kErrorReadingFile, path, e.what());
        return false;
    }
    if (m_arrIcons.empty() && !(m_bMayBeEmpty && isProgram)) {
        prompt.Tell(PromptIcon::Stop, str::kFileHasNoIcons);
        return false;
    }
    SetModifiedFlag(false);
    return true;
}

void CFileExeDoc::KeepUndecoded(const IconResources& found) {
    std::set<int> decoded;
    for (const auto& icon : m_arrIcons) {
        for (const auto& image : icon->m_arrIcons) decoded.insert(image->m_nResourceId);
    }
    for (const auto& group : found.groups) {
        bool any = false;
        for (const auto& image : group.images) {
            any = any || decoded.contains(image.id);
            if (!decoded.contains(image.id)) m_arrUnreadIds.insert(image.id);
        }
        if (!any) m_arrUnreadGroupIds.insert(group.id);
    }
}

void CFileExeDoc::KeepLibraryNames(const IconResources& found) {
    if (!found.hasLibraryNames || found.mode == ProgramMode::NeFile || !m_arrUnreadGroupIds.empty()) return;
    m_nNamesLanguage = found.namesLanguage;
    for (const auto& group : found.groups) {
        m_arrLibraryNames[{GroupKey(group.id, group.resourceName), group.language}] = group.id >= 0 ? group.name : "";
    }
}

void CFileExeDoc::DeleteContents() {
    CIconContainerDoc::DeleteContents();
    m_nMode = ProgramMode::Full;
    m_bNoticeShown = false;
    m_bComplete = true;
    m_arrIds.clear();
    m_arrUnreadIds.clear();
    m_arrUnreadGroupIds.clear();
    m_arrDeletedGroups.clear();
    m_arrLibraryNames.clear();
    m_arrExtraData.clear();
    m_nExtraBytes = 0;
}

std::string CFileExeDoc::CellDescription(int index) const {
    return FormatText(str::kIconInProgram, index + 1, GetTitle());
}

std::string CFileExeDoc::ExportName(int index) const {
    const auto name = CIconContainerDoc::ExportName(index);
    return name.empty() ? FormatText(str::kNumberedIcon, BaseName(GetPathName()), index + 1) : name;
}

void CFileExeDoc::OpenInFullMode() {
    if (m_nMode == ProgramMode::Restricted) m_nMode = ProgramMode::Full;
}

void CFileExeDoc::ShowModeNotice() {
    if (m_bNoticeShown) return;
    m_bNoticeShown = true;
    auto& prompt = *GetServices().prompt;
    if (m_nMode == ProgramMode::Restricted) {
        if (prompt.Ask(PromptButtons::YesNo, str::kExtraData, GetPathName()) == PromptAnswer::Yes) OpenInFullMode();
    } else if (m_nMode != ProgramMode::Full) {
        prompt.Tell(PromptIcon::Information, str::kReplaceOnly, GetPathName());
    }
}

bool CFileExeDoc::MayTake(const CIconGroup& cell, const CIconGroup& icon) {
    if (m_nMode == ProgramMode::Full || HaveSameFormats(cell, icon)) return true;
    GetServices().prompt->Tell(PromptIcon::Stop, str::kIconsNotIdentical);
    return false;
}

bool CFileExeDoc::ReplaceIcon(int index, const CIconGroup& icon) {
    const auto* old = GetIcon(index);
    if (!old || !MayTake(*old, icon)) return false;
    auto fresh = std::make_unique<CIconGroup>(icon);
    for (auto& image : fresh->m_arrIcons) {
        const auto* place = FindSameFormat(*old, *image);
        image->m_nResourceId = image->m_nLanguage = -1;
        image->m_nFileOffset = place ? place->m_nFileOffset : 0;
        image->m_nFileBytes = place ? place->m_nFileBytes : 0;
    }
    fresh->m_strName = old->m_strName;
    fresh->m_nResourceId = old->m_nResourceId;
    fresh->m_strResourceName = old->m_strResourceName;
    fresh->m_nLanguage = old->m_nLanguage;
    fresh->m_bChanged = true;
    m_arrIcons[static_cast<std::size_t>(index)] = std::move(fresh);
    SetModifiedFlag();
    return true;
}

bool CFileExeDoc::RemoveIcons(const std::vector<int>& positions) {
    if (m_nMode != ProgramMode::Full) return false;
    for (const auto& icon : TakeOut(positions)) m_arrDeletedGroups.emplace_back(KeyOf(*icon), icon->m_nLanguage);
    return true;
}

bool CFileExeDoc::AddIcon(const CIconGroup& icon, ResourceKey key, int language) {
    if (m_nMode != ProgramMode::Full) return false;
    auto fresh = std::make_unique<CIconGroup>(icon);
    for (auto& image : fresh->m_arrIcons) image->m_nResourceId = image->m_nLanguage = -1;
    key.name = ToUpper(std::move(key.name));
    fresh->m_nResourceId = key.named ? -1 : key.id;
    fresh->m_strResourceName = key.name;
    fresh->m_strName = Utf16ToUtf8(key.name);
    fresh->m_nLanguage = language;
    fresh->m_bChanged = true;
    std::erase_if(m_arrDeletedGroups, [&](const auto& gone) { return gone.first == key && gone.second == language; });
    IconGroups added;
    added.push_back(std::move(fresh));
    Insert(GetCount(), std::move(added));
    return true;
}

int CFileExeDoc::FindGroup(const ResourceKey& key, std::optional<int> language) const {
    const auto name = ToUpper(key.name);
    const auto at = std::ranges::find_if(m_arrIcons, [&](const auto& icon) {
        const auto own = KeyOf(*icon);
        return own.named == key.named && own.id == key.id && ToUpper(own.name) == name &&
               icon->m_nLanguage == language.value_or(icon->m_nLanguage);
    });
    return at == m_arrIcons.end() ? -1 : static_cast<int>(at - m_arrIcons.begin());
}

int CFileExeDoc::FreeGroupId() const {
    auto used = m_arrUnreadGroupIds;
    for (const auto& icon : m_arrIcons) used.insert(icon->m_nResourceId);
    int id = 1;
    while (used.contains(id)) ++id;
    return id;
}

int CFileExeDoc::EditWindowsQuestion() const {
    return str::kAskSaveProgramWindows;
}

} // namespace pelorin
