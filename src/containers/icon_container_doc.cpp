#include "containers/icon_container_doc.h"

#include "base/files.h"
#include "core/services.h"
#include "core/user_prompt.h"

#include <algorithm>

namespace pelorin {

namespace {

/// Width, height, colours and alpha: what makes one image take another one's place.
bool SameFormat(const CVnIcon& a, const CVnIcon& b) {
    return a.m_nWidth == b.m_nWidth && a.m_nHeight == b.m_nHeight && a.m_nColors == b.m_nColors &&
           a.m_bAlpha == b.m_bAlpha;
}

} // namespace

CIconGroup* CIconContainerDoc::GetIcon(int index) const {
    return index >= 0 && index < GetCount() ? m_arrIcons[static_cast<std::size_t>(index)].get() : nullptr;
}

int CIconContainerDoc::Insert(int position, IconGroups icons) {
    if (position < 0 || position > GetCount()) position = GetCount();
    if (icons.empty()) return position;
    for (auto* editor : Editors()) {
        if (editor->m_nEmbeddedIndex >= position) editor->m_nEmbeddedIndex += static_cast<int>(icons.size());
    }
    m_arrIcons.insert(m_arrIcons.begin() + position, std::make_move_iterator(icons.begin()),
                      std::make_move_iterator(icons.end()));
    SetModifiedFlag();
    return position;
}

IconGroups CIconContainerDoc::TakeOut(const std::vector<int>& positions) {
    IconGroups out;
    for (const int position : positions) {
        if (GetIcon(position)) out.push_back(std::move(m_arrIcons[static_cast<std::size_t>(position)]));
    }
    if (out.empty()) return out;
    std::erase(m_arrIcons, nullptr);
    for (auto* editor : Editors()) {
        auto& index = editor->m_nEmbeddedIndex;
        const bool gone = std::find(positions.begin(), positions.end(), index) != positions.end();
        const auto before = std::count_if(positions.begin(), positions.end(), [&](int p) { return p < index; });
        index = gone ? -1 : index - static_cast<int>(before);
    }
    SetModifiedFlag();
    return out;
}

void CIconContainerDoc::Reorder(const std::vector<int>& order) {
    IconGroups reordered;
    for (const int old : order) reordered.push_back(std::move(m_arrIcons[static_cast<std::size_t>(old)]));
    m_arrIcons = std::move(reordered);
    for (auto* editor : Editors()) {
        const auto at = std::find(order.begin(), order.end(), editor->m_nEmbeddedIndex);
        if (at != order.end()) editor->m_nEmbeddedIndex = static_cast<int>(at - order.begin());
    }
    SetModifiedFlag();
}

std::string CIconContainerDoc::CellName(int index) const {
    const auto* icon = GetIcon(index);
    return icon && !icon->m_strName.empty() ? icon->m_strName : FormatText(str::kIconNumber, index + 1);
}

std::string CIconContainerDoc::ExportName(int index) const {
    const auto* icon = GetIcon(index);
    return icon ? icon->m_strName : std::string();
}

bool CIconContainerDoc::UpdateIcon(int index, const CIconGroup& icon) {
    auto* target = GetIcon(index);
    if (!target || !MayTake(*target, icon)) return false;
    std::vector<CVnIcon> images;
    for (const auto& source : icon.m_arrIcons) {
        auto& image = images.emplace_back();
        image.Copy(*source);
        // A format that was there keeps its resource; a new one gets one when the file is saved.
        const auto* old = FindSameFormat(*target, *source);
        image.m_nResourceId = old ? old->m_nResourceId : -1;
        image.m_nLanguage = old ? old->m_nLanguage : -1;
        image.m_nFileOffset = old ? old->m_nFileOffset : 0;
        image.m_nFileBytes = old ? old->m_nFileBytes : 0;
    }
    target->RemoveAll();
    for (auto& image : images) target->Append(std::move(image));
    target->m_bChanged = true;
    SetModifiedFlag();
    return true;
}

std::vector<CIconDoc*> CIconContainerDoc::Editors() const {
    std::vector<CIconDoc*> editors;
    for (const auto* source : m_arrEditorTemplates) {
        for (const auto& document : source->GetDocuments()) {
            auto* editor = dynamic_cast<CIconDoc*>(document.get());
            if (editor && editor->m_pContainerDoc == this) editors.push_back(editor);
        }
    }
    return editors;
}

CIconDoc* CIconContainerDoc::FindEditor(int index) const {
    for (auto* editor : Editors()) {
        if (editor->m_nEmbeddedIndex == index) return editor;
    }
    return nullptr;
}

bool CIconContainerDoc::CloseEditors(const std::vector<int>& positions) {
    for (const int position : positions) {
        while (auto* editor = FindEditor(position)) {
            if (!editor->CanClose()) return false;
            editor->GetDocTemplate()->RemoveDocument(editor);
        }
    }
    return true;
}

void CIconContainerDoc::DeleteContents() {
    m_arrIcons.clear();
}

bool CIconContainerDoc::SaveModified() {
    const bool changed = IsModified() || FirstChangedEditor();
    if (!changed) return true;
    const auto name = GetPathName().empty() ? GetTitle() : GetPathName();
    const auto answer = GetServices().prompt->Ask(PromptButtons::YesNoCancel, str::kAskSaveLibrary, name);
    if (answer != PromptAnswer::Yes) return answer == PromptAnswer::No;
    const auto path = GetPathName().empty() && m_pfnAskPath ? m_pfnAskPath(*this) : GetPathName();
    return !path.empty() && OnSaveDocument(path);
}

CIconDoc* CIconContainerDoc::FirstChangedEditor() const {
    const auto editors = Editors();
    const auto at =
        std::find_if(editors.begin(), editors.end(), [](const auto* editor) { return editor->IsModified(); });
    return at == editors.end() ? nullptr : *at;
}

bool CIconContainerDoc::MergeEditors(const std::string& path) {
    auto* editor = FirstChangedEditor();
    if (!editor) return true;
    const auto answer = GetServices().prompt->Ask(PromptButtons::YesNoCancel, EditWindowsQuestion(), path);
    if (answer != PromptAnswer::Yes) return answer == PromptAnswer::No;
    // A merge may change the list of editors, so the walk starts over.
    for (; editor; editor = FirstChangedEditor()) {
        if (!editor->OnSaveDocument({})) return false;
    }
    return true;
}

bool CIconContainerDoc::EnsureFolder(const std::string& path) {
    const std::string folder(FolderOf(path));
    if (folder.empty() || FolderExists(folder)) return true;
    auto& prompt = *GetServices().prompt;
    if (prompt.Ask(PromptButtons::YesNo, str::kAskCreateFolder, folder) != PromptAnswer::Yes) return false;
    if (CreateFolders(folder)) return true;
    prompt.Tell(PromptIcon::Stop, str::kErrorCreatingFolder, folder);
    return false;
}

bool CIconContainerDoc::MayTake(const CIconGroup&, const CIconGroup&) {
    return true;
}

CVnIcon* FindSameFormat(const CIconGroup& group, const CVnIcon& like) {
    for (const auto& image : group.m_arrIcons) {
        if (SameFormat(*image, like)) return image.get();
    }
    return nullptr;
}

bool HaveSameFormats(const CIconGroup& a, const CIconGroup& b) {
    const auto allIn = [](const CIconGroup& some, const CIconGroup& all) {
        return std::ranges::all_of(some.m_arrIcons,
                                   [&](const auto& image) { return FindSameFormat(all, *image) != nullptr; });
    };
    // Both ways: an icon can name one image twice.
    return a.GetCount() == b.GetCount() && allIn(a, b) && allIn(b, a);
}

std::string BaseName(std::string_view path) {
    return std::string(StemOf(path));
}

} // namespace pelorin
