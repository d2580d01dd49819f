// How an icon is saved: into its container, under its name, or under a new one.
#include "base/files.h"
#include "base/text.h"
#include "core/file_dialogs.h"
#include "core/services.h"
#include "core/settings.h"
#include "core/user_prompt.h"
#include "icon/icon_doc.h"
#include "icon/icon_file_forms.h"

namespace pelorin {

namespace {

// One row a command.
struct SaveCommand {
    int title, filter;
};

SaveCommand CommandFor(CIconDoc::SaveAs system, bool hasPath) {
    switch (system) {
    case CIconDoc::SaveAs::Windows: return {str::kSaveIconAsWindowsTitle, str::kFilterSaveWindowsIcon};
    case CIconDoc::SaveAs::Macintosh: return {str::kSaveIconAsMacTitle, str::kFilterSaveMacIcon};
    default: return {hasPath ? str::kSaveIconAsTitle : str::kSaveIconTitle, str::kFilterSaveIcon};
    }
}

// The form that a path is written in: told by its kind; another name gets the form of the icon's own system.
const IconFileForm* FormFor(const std::string& path, bool macintosh) {
    const auto kind = GetFileKind(path);
    if (kind == kKindIco || IsMacintoshIconKind(kind)) return FindIconFileForm(kind);
    return FindIconFileForm(macintosh ? kKindIcns : kKindIco);
}

} // namespace

Bytes CIconDoc::Store() {
    const auto* form = FormFor(m_strFilePath, m_bMacintosh);
    if (form == nullptr) throw FileException("this program cannot write Macintosh icons");
    auto bytes = form->write(MakeGroup(), m_strFilePath);
    if (bytes.empty()) throw FileException("the icon cannot be kept in this form");
    return bytes;
}

bool CIconDoc::OnSaveDocument(const std::string& path) {
    for (const auto& object : m_arrFormats) object->DropFloating();
    if (m_pContainerDoc != nullptr && path.empty()) return SaveIntoContainer();
    m_strFilePath = path;
    if (!CDocument::OnSaveDocument(path)) return false;
    m_pContainerDoc = nullptr;
    m_nEmbeddedIndex = -1;
    m_strEmbeddedName.clear();
    return true;
}

bool CIconDoc::SaveIntoContainer() {
    if (!m_pContainerDoc->UpdateIcon(m_nEmbeddedIndex, MakeGroup())) return false;
    SetModifiedFlag(false);
    return true;
}

bool CIconDoc::OnFileSave() {
    if (m_pContainerDoc != nullptr) return OnSaveDocument({});
    if (GetPathName().empty() || m_bTemporaryOpen) return OnFileSaveAs();
    if (FileExists(GetPathName()) && IsReadOnlyFile(GetPathName())) return OnFileSaveAs();
    const auto* form = FormFor(GetPathName(), m_bMacintosh);
    if (form != nullptr && !AcceptsLosses(*form)) return false;
    return DoSave(GetPathName());
}

bool CIconDoc::OnFileSaveAs(SaveAs system) {
    bool cancelled = false;
    std::string path;
    while (path.empty() && !cancelled) path = AskPath(system, cancelled);
    if (cancelled) return false;
    const auto* form = FormFor(path, m_bMacintosh);
    if (form != nullptr && !AcceptsLosses(*form)) return false;
    const bool before = m_bMacintosh;
    if (form != nullptr) m_bMacintosh = form->macintosh;
    if (!DoSave(path)) {
        m_bMacintosh = before;
        return false;
    }
    if (m_bMacintosh != before) OnSystemChanged();
    return true;
}

bool CIconDoc::DoSave(const std::string& path) {
    if (path.empty() || (FileExists(path) && IsReadOnlyFile(path))) return OnFileSaveAs();
    if (!MakeFolderFor(path) || !OnSaveDocument(path)) return false;
    SetPathName(path, true);
    return true;
}

bool CIconDoc::MakeFolderFor(const std::string& path) {
    const std::string folder(FolderOf(path));
    if (folder.empty() || FolderExists(folder)) return true;
    auto& prompt = *GetServices().prompt;
    if (prompt.Ask(PromptButtons::YesNo, str::kAskCreateFolder, folder) != PromptAnswer::Yes) {
        prompt.Tell(PromptIcon::Warning, str::kErrorSavingDocument, path);
        return false;
    }
    if (CreateFolders(folder)) return true;
    prompt.Tell(PromptIcon::Stop, str::kErrorCreatingFolder, folder);
    return false;
}

bool CIconDoc::AcceptsLosses(const IconFileForm& form) {
    if (form.allows == nullptr) return true;
    std::string lost;
    int kept = 0;
    for (const auto& object : m_arrFormats) {
        if (form.allows(object->Format())) {
            ++kept;
        } else {
            lost += "     - " + object->m_strDescription + "\n";
        }
    }
    auto& prompt = *GetServices().prompt;
    if (kept == 0) {
        prompt.Tell(PromptIcon::Warning, str::kNoMacImages);
        return false;
    }
    return lost.empty() || prompt.Ask(PromptButtons::YesNo, str::kMacCompatibility, lost) == PromptAnswer::Yes;
}

std::string CIconDoc::ChosenName() const {
    if (GetPathName().empty() && m_pContainerDoc == nullptr) return LoadText(str::kUntitled);
    return m_pContainerDoc != nullptr ? m_strEmbeddedName : std::string(StemOf(GetPathName()));
}

// A path that may be written over; empty when the person wants to choose again.
std::string CIconDoc::AskPath(SaveAs system, bool& cancelled) {
    const auto command = CommandFor(system, !GetPathName().empty());
    const bool macintosh = system == SaveAs::Macintosh || (system == SaveAs::Any && m_bMacintosh);
    FileDialogRequest request;
    request.title = LoadText(command.title);
    request.filter = LoadText(command.filter);
    request.name = ChosenName();
    request.extension = macintosh ? "icns" : "ico";
    request.folder = g_bUseGlobalSaveDir ? g_strCurrentSaveDirectory : g_strCurrentOpenDirectory;
    auto path = GetServices().dialogs != nullptr ? GetServices().dialogs->ChooseToSave(request) : std::string();
    cancelled = path.empty();
    if (cancelled) return {};
    if (ExtensionOf(path).empty()) path += "." + request.extension;
    if (g_bUseGlobalSaveDir) g_strCurrentSaveDirectory = std::string(FolderOf(path));
    if (!FileExists(path)) return path;
    const auto answer =
        GetServices().prompt->ShowText(str::kAskOverwriteIcon, LoadText(str::kAskOverwriteIcon) + "\n\n" + path,
                                       PromptIcon::Warning, PromptButtons::YesNoCancel);
    cancelled = answer == PromptAnswer::Cancel;
    return answer == PromptAnswer::Yes ? path : std::string();
}

bool CIconDoc::CanClose() {
    if (!IsModified()) return true;
    auto& prompt = *GetServices().prompt;
    const auto answer = m_pContainerDoc != nullptr
                            ? prompt.Ask(PromptButtons::YesNoCancel, str::kAskSaveEmbedded, m_strEmbeddedName,
                                         m_pContainerDoc->GetContainerName())
                            : prompt.Ask(PromptButtons::YesNoCancel, str::kAskSaveDocument, GetTitle());
    if (answer == PromptAnswer::Cancel) return false;
    return answer == PromptAnswer::No || OnFileSave();
}

} // namespace pelorin
