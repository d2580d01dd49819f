#include "containers/icon_container_view.h"

#include "base/files.h"
#include "containers/mac_files.h"
#include "core/services.h"
#include "core/user_prompt.h"
#include "icon/ico_file.h"

namespace pelorin {

namespace {

const char* ExtensionFor(ExportAs form) {
    return form == ExportAs::WindowsIcon ? "ico" : "icns";
}

} // namespace

std::string CleanFileName(std::string name) {
    constexpr std::string_view kForbidden = "<>:\"/\\|";
    for (auto& c : name) {
        if (kForbidden.find(c) != std::string_view::npos) c = '_';
    }
    return name;
}

void CIconContainerView::Select(std::vector<int> positions) {
    std::sort(positions.begin(), positions.end());
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
    std::erase_if(positions, [this](int position) { return !m_document.GetIcon(position); });
    m_selection = std::move(positions);
}

void CIconContainerView::SelectAll() {
    m_selection.clear();
    for (int i = 0; i < m_document.GetCount(); ++i) m_selection.push_back(i);
}

std::string CIconContainerView::TotalText() const {
    const int count = m_document.GetCount();
    return count == 0 ? LoadText(str::kNoIcon) : FormatText(str::kTotalIcons, count);
}

std::string CIconContainerView::SelectionText() const {
    if (m_selection.empty()) return LoadText(str::kNoIconSelected);
    if (m_selection.size() > 1) return FormatText(str::kSelectionIcons, static_cast<int>(m_selection.size()));
    const int index = FirstSelected();
    return FormatText(str::kSelectionDetail, m_document.CellName(index), m_document.GetIcon(index)->GetSizeText());
}

bool CIconContainerView::Delete() {
    if (m_selection.empty() || !m_document.CloseEditors(m_selection)) return false;
    (void)m_document.TakeOut(m_selection);
    m_selection.clear();
    return true;
}

bool CIconContainerView::ExportOne(int index, const std::string& path, ExportAs form) {
    const auto& icon = *m_document.GetIcon(index);
    auto& prompt = *m_document.GetServices().prompt;
    if (FileExists(path) && prompt.Ask(PromptButtons::YesNo, str::kAskReplaceFile, path) != PromptAnswer::Yes) {
        return false;
    }
    if (form == ExportAs::MacintoshIcon) return SaveAsMacFile(icon, path, &prompt);
    try {
        WriteFileSafely(path, BuildIcoFile(icon));
        return true;
    } catch (const FileException& e) {
        prompt.Tell(PromptIcon::Stop, str::kErrorWritingFile, path, e.what());
        return false;
    }
}

std::string CIconContainerView::ExportDefaultName() const {
    auto name = CleanFileName(m_document.ExportName(FirstSelected()));
    return name.empty() ? LoadText(str::kUntitled) : name;
}

bool CIconContainerView::Export(const std::string& path, ExportAs form) {
    return !m_selection.empty() && ExportOne(FirstSelected(), path, form);
}

int CIconContainerView::ExportTo(const std::string& folder, ExportAs form) {
    int written = 0;
    for (const int index : m_selection) {
        auto name = CleanFileName(m_document.ExportName(index));
        if (name.empty()) name = m_document.CellName(index);
        written += ExportOne(index, JoinPath(folder, name + "." + ExtensionFor(form)), form) ? 1 : 0;
    }
    return written;
}

bool CIconContainerView::SaveAsLibrary(const std::string& path, LibraryForm form) {
    // Copies: writing leaves numbers on the images, and those of a program file's icons are its own.
    IconGroups copies;
    std::vector<CIconGroup*> icons;
    for (const int index : m_selection) {
        copies.push_back(std::make_unique<CIconGroup>(*m_document.GetIcon(index)));
        icons.push_back(copies.back().get());
    }
    const auto& services = m_document.GetServices();
    ResourceUpdater updater;
    return SaveLibrary(path, icons, form, updater, *services.prompt, services.progress);
}

CIconDoc* CIconContainerView::OpenEditor(int index) {
    const auto* icon = m_document.GetIcon(index);
    const auto& templates = m_document.m_arrEditorTemplates;
    if (!icon || templates.empty()) return nullptr;
    auto content = std::make_unique<NewIconContent>();
    content->macintosh = icon->m_nInfo != 0;
    content->embedded = std::make_unique<EmbeddedIcon>(EmbeddedIcon{&m_document, index, CIconGroup(*icon)});
    if (icon->m_strName.empty()) content->embedded->icon.m_strName = m_document.CellDescription(index);
    auto* const source = content->macintosh ? templates.back() : templates.front();
    return dynamic_cast<CIconDoc*>(source->OpenDocumentFile({}, std::move(content)));
}

CIconDoc* CIconContainerView::OpenIcon(int index) {
    auto* open = m_document.FindEditor(index);
    return open ? open : OpenEditor(index);
}

CIconDoc* CIconContainerView::OpenAsNewIcon(int index) {
    auto* editor = OpenEditor(index);
    if (!editor) return nullptr;
    editor->m_pContainerDoc = nullptr;
    editor->m_nEmbeddedIndex = -1;
    editor->m_strEmbeddedName.clear();
    editor->SetTitle(m_document.CellName(index));
    editor->SetModifiedFlag();
    return editor;
}

} // namespace pelorin
