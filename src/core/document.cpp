#include "core/document.h"

#include "base/files.h"
#include "base/text.h"
#include "core/recent_files.h"
#include "core/services.h"
#include "core/user_prompt.h"

#include <algorithm>

namespace pelorin {

bool CDocument::OnNewDocument() {
    DeleteContents();
    m_strPathName.clear();
    SetModifiedFlag(false);
    return true;
}

bool CDocument::OnOpenDocument(const std::string& path) {
    DeleteContents();
    try {
        const auto file = FileView::Open(path);
        if (!Load(file.Data())) {
            DeleteContents();
            return false;
        }
    } catch (const FileException& error) {
        m_services.prompt->Tell(PromptIcon::Stop, str::kErrorReadingFile, path, std::string(error.what()));
        DeleteContents();
        return false;
    }
    SetModifiedFlag(false);
    return true;
}

bool CDocument::OnSaveDocument(const std::string& path) {
    try {
        WriteFileSafely(path, Store());
    } catch (const FileException& error) {
        m_services.prompt->Tell(PromptIcon::Stop, str::kErrorWritingFile, path, std::string(error.what()));
        return false;
    }
    SetModifiedFlag(false);
    return true;
}

void CDocument::SetPathName(const std::string& path, bool addToRecent) {
    m_strPathName = path;
    SetTitle(std::string(FileNameOf(path)));
    m_bInRecentList = addToRecent;
    if (addToRecent && m_services.recent != nullptr) m_services.recent->Add(path);
}

CDocTemplate::CDocTemplate(Services& services, int stringId, Factory factory, bool macintosh)
    : m_services(services), m_nStringId(stringId), m_factory(factory), m_bMacintosh(macintosh) {}

std::string CDocTemplate::GetDocString(DocString part) const {
    const auto parts = Split(LoadText(m_nStringId), '\n');
    const auto index = static_cast<std::size_t>(part);
    return index < parts.size() ? parts[index] : std::string{};
}

std::unique_ptr<CDocument> CDocTemplate::CreateNewDocument() {
    return m_factory ? m_factory(m_services) : nullptr;
}

CDocument* CDocTemplate::OpenDocumentFile(const std::string& path, std::unique_ptr<DocumentContent> content) {
    auto document = CreateNewDocument();
    if (!document) {
        m_services.prompt->Tell(PromptIcon::Stop, str::kDocumentKindAbsent, path,
                                GetDocString(DocString::RegistryName));
        return nullptr;
    }
    document->m_pTemplate = this;
    document->m_bMacintosh = m_bMacintosh;
    if (content) document->SetContent(std::move(content));
    if (!FillDocument(*document, path)) return nullptr;
    return m_arrDocuments.emplace_back(std::move(document)).get();
}

bool CDocTemplate::FillDocument(CDocument& document, const std::string& path) {
    if (path.empty()) {
        SetDefaultTitle(document);
        return document.OnNewDocument();
    }
    if (!document.OnOpenDocument(path)) return false;
    document.SetPathName(path, true);
    return true;
}

// "ICO File1", "ICO File2": the document's name and a count; "Untitled" for a kind without a name.
void CDocTemplate::SetDefaultTitle(CDocument& document) {
    const auto name = GetDocString(DocString::DocName);
    document.SetTitle(name.empty() ? LoadText(str::kUntitled) : name + std::to_string(++m_nUntitledCount));
}

void CDocTemplate::RemoveDocument(const CDocument* document) {
    std::erase_if(m_arrDocuments, [&](const auto& own) { return own.get() == document; });
}

} // namespace pelorin
