#include "formats/image_doc.h"

#include "base/files.h"
#include "core/file_dialogs.h"
#include "core/file_kinds.h"
#include "core/services.h"
#include "core/user_prompt.h"

namespace pelorin {

bool CImageDoc::OnNewDocument() {
    if (!CDocument::OnNewDocument()) return false;
    DeleteContents();
    m_Object.size = m_NewSize;
    AddLayer(AddImage());
    SetModifiedFlag(false);
    return true;
}

CVniImage& CImageDoc::AddImage() {
    SetModifiedFlag();
    return AddVniImage(m_Object);
}

CVniLayer& CImageDoc::AddLayer(CVniImage& image) {
    SetModifiedFlag();
    return AddVniLayer(image);
}

bool CImageDoc::LoadObject(const std::string& path) {
    try {
        const auto file = FileView::Open(path);
        if (ReadImageObject(file.Data(), m_Object)) return true;
    } catch (const FileException&) {
    }
    DeleteContents();
    return false;
}

std::string CImageDoc::LocateFile(const std::string& path) {
    auto* dialogs = GetServices().dialogs;
    if (!dialogs) return {};
    FileDialogRequest request;
    request.filter = LoadText(str::kFilterImageObjects) + "|";
    request.folder = FolderOf(path);
    request.name = FileNameOf(path);
    const auto chosen = SplitChosenFiles(dialogs->ChooseToOpen(request));
    return chosen.empty() ? std::string() : chosen.front();
}

bool CImageDoc::OnOpenDocument(const std::string& path) {
    auto wanted = path.empty() ? GetPathName() : path;
    while (!LoadObject(wanted)) {
        wanted = LocateFile(wanted);
        if (wanted.empty()) {
            // Where nobody can be asked for another file, the failure is at least told.
            if (!GetServices().dialogs) GetServices().prompt->Tell(PromptIcon::Stop, str::kErrorReadingSource);
            return false;
        }
    }
    SetModifiedFlag(false);
    return true;
}

bool CImageDoc::TellSaveFailed() {
    GetServices().prompt->Tell(PromptIcon::Stop, str::kErrorSavingImage);
    return false;
}

bool CImageDoc::OnSaveDocument(const std::string& path) {
    if (GetFileKind(path) != kKindImageObject || FileSize(path) > 0) return TellSaveFailed();
    try {
        WriteFileSafely(path, {});
    } catch (const FileException&) {
        return TellSaveFailed();
    }
    SetModifiedFlag(false);
    return true;
}

bool CImageDoc::SaveACopy(const std::string& path) {
    try {
        const auto file = WriteImageObject(m_Object);
        if (file.empty()) return TellSaveFailed();
        WriteFileSafely(path, file);
        return true;
    } catch (const FileException&) {
        return TellSaveFailed();
    }
}

} // namespace pelorin
