// The one entry for opening anything.

#include "base/files.h"
#include "base/text.h"
#include "core/application.h"
#include "core/settings.h"
#include "core/user_prompt.h"
#include "platform/launcher.h"

namespace pelorin {

namespace {

class WaitCursor {
public:
    explicit WaitCursor(MainFrame& frame) : m_frame(frame) { m_frame.ShowWaitCursor(true); }
    ~WaitCursor() { m_frame.ShowWaitCursor(false); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    MainFrame& m_frame;
};

} // namespace

CDocument* CPelorinApp::OpenDocumentFile(std::string_view quoted) {
    const auto text = WithoutQuotes(quoted);
    if (m_bStartingUp) m_parts.frame->CloseSplash();
    m_bStartingUp = false;

    // An address goes its way even when such a page is open; everything else is opened once.
    if (!IsWebAddress(text)) {
        if (auto* open = FindOpenDocument(text)) {
            m_parts.frame->ActivateDocument(*open);
            return open;
        }
    }
    return Carry(DecideOpen(text, {g_bBrowseExternally, m_bAskCreate}, *m_parts.hooks), text);
}

CDocument* CPelorinApp::FindOpenDocument(const std::string& text) const {
    if (text.empty()) return nullptr;
    for (const auto& docTemplate : m_arrTemplates) {
        for (const auto& document : docTemplate->GetDocuments()) {
            const auto& path = document->GetPathName();
            if (!path.empty() && (path == text || SameFile(path, text))) return document.get();
        }
    }
    return nullptr;
}

CDocument* CPelorinApp::Carry(OpenDecision decision, const std::string& text) {
    auto& prompt = *m_services.prompt;
    switch (decision.action) {
    case OpenAction::Nothing: return nullptr;
    case OpenAction::Tell:
        prompt.Tell(decision.warning ? PromptIcon::Warning : PromptIcon::Stop, decision.message, text);
        return nullptr;
    case OpenAction::ShellOpen:
        if (m_services.launcher == nullptr || !m_services.launcher->Open(text)) {
            prompt.Tell(PromptIcon::Stop, str::kErrorOpeningDocument);
        }
        return nullptr;
    case OpenAction::ExternalViewer: (void)OpenWithEditor(text, false); return nullptr;
    case OpenAction::WebSearch: m_parts.frame->SearchWeb(text); return nullptr;
    case OpenAction::Transfer: return m_parts.hooks->OpenTransferFile(text);
    case OpenAction::AskCreate: return CreateMissing(decision, text);
    case OpenAction::OpenWith: break;
    }
    const WaitCursor wait(*m_parts.frame);
    return Finish(GetTemplate(decision.receiver).OpenDocumentFile(text, std::move(decision.content)), text);
}

// The new document has the wanted path and is on the disk once it is saved.
CDocument* CPelorinApp::CreateMissing(const OpenDecision& decision, const std::string& path) {
    const bool isLibrary = decision.receiver == DocKind::Library;
    const int question = isLibrary ? str::kAskCreateLibrary : str::kAskCreateIcon;
    if (m_services.prompt->Ask(PromptButtons::YesNo, question, path) != PromptAnswer::Yes) {
        m_recent.Remove(path);
        m_parts.frame->RefreshRecentMenu();
        return nullptr;
    }
    auto& docTemplate = GetTemplate(decision.receiver);
    if (!isLibrary && !m_parts.hooks->AskNewIcon(std::string(FileNameOf(path)), docTemplate.IsMacintosh()))
        return nullptr;
    const WaitCursor wait(*m_parts.frame);
    auto* document = docTemplate.OpenDocumentFile({});
    if (document == nullptr) return nullptr;
    document->SetPathName(path, m_bRecentEnabled);
    document->SetModifiedFlag();
    return Finish(document, path);
}

CDocument* CPelorinApp::Finish(CDocument* document, const std::string& text) {
    if (document == nullptr) return nullptr;
    // A document that kept its path out of the list (a temporary file) stays out of it.
    if (m_bRecentEnabled && document->IsInRecentList()) {
        m_recent.Add(text);
        m_parts.frame->RefreshRecentMenu();
    }
    m_parts.frame->ActivateDocument(*document);
    return document;
}

bool CPelorinApp::OpenWithEditor(const std::string& path, bool edit) {
    const auto kind = GetFileKind(path);
    const auto* type = m_mediaTypes.GetMediaType(kind);
    auto* launcher = m_services.launcher;
    const auto command = type == nullptr ? std::string{} : edit ? type->m_strEditCommand : type->m_strOpenCommand;
    if (edit && command.empty()) {
        if (m_services.prompt->Ask(PromptButtons::YesNo, str::kNoExternalEditor) == PromptAnswer::Yes) {
            m_parts.frame->EditMediaType(kind);
        }
        return false;
    }
    if (launcher != nullptr && (command.empty() ? launcher->Open(path) : launcher->Run(command, path))) return true;
    m_services.prompt->Tell(PromptIcon::Stop, str::kErrorOpeningDocument);
    return false;
}

} // namespace pelorin
