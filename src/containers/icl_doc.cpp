#include "containers/icl_doc.h"

#include "containers/program_file.h"
#include "core/file_kinds.h"
#include "core/services.h"
#include "core/user_prompt.h"

namespace pelorin {

bool CFileIclDoc::OnNewDocument() {
    if (!CDocument::OnNewDocument()) return false;
    static int newLibraries = 0;
    SetTitle(FormatText(str::kNewProject, std::to_string(++newLibraries)));
    return true;
}

void CFileIclDoc::SetContent(std::unique_ptr<DocumentContent> content) {
    m_pContent = std::move(content);
}

bool CFileIclDoc::OnOpenDocument(const std::string& path) {
    DeleteContents();
    const auto content = std::move(m_pContent);
    if (auto* read = dynamic_cast<IconGroupsContent*>(content.get())) {
        for (auto& icon : read->m_groups) m_arrIcons.push_back(std::make_unique<CIconGroup>(std::move(icon)));
        m_bMacintoshWrapper = true;
        SetModifiedFlag(false);
        return true;
    }
    try {
        const auto file = FileView::Open(path);
        m_form = FormOfLibrary(file.Data());
        m_arrIcons = LoadIcons(FindLibraryIcons(file.Data(), GetServices().progress), {});
    } catch (const FileException& e) {
        GetServices().prompt->Tell(PromptIcon::Stop, str::kErrorReadingFile, path, e.what());
        return false;
    }
    SetModifiedFlag(false);
    return true;
}

bool CFileIclDoc::OnSaveDocument(const std::string& path) {
    auto& prompt = *GetServices().prompt;
    std::string target = path;
    if (m_bMacintoshWrapper && path == GetPathName()) {
        if (prompt.Ask(PromptButtons::YesNo, str::kAskSaveMacLibrary) != PromptAnswer::Yes) return false;
        target = m_pfnAskPath ? m_pfnAskPath(*this) : std::string();
        if (target.empty()) return false;
    }
    if (!MergeEditors(GetTitle()) || !EnsureFolder(target)) return false;
    std::vector<CIconGroup*> icons;
    for (const auto& icon : m_arrIcons) icons.push_back(icon.get());
    m_strReason.clear();
    if (!SaveLibrary(target, icons, m_form, m_updater, prompt, GetServices().progress, &m_strReason)) return false;
    m_bMacintoshWrapper = false;
    for (auto* icon : icons) icon->m_bChanged = false;
    if (target != GetPathName()) SetPathName(target, true);
    SetModifiedFlag(false);
    return true;
}

std::string CFileIclDoc::CellDescription(int index) const {
    return FormatText(str::kIconInLibrary, index + 1, GetTitle());
}

int CFileIclDoc::EditWindowsQuestion() const {
    return str::kAskSaveLibraryWindows;
}

} // namespace pelorin
