// The document of an icon library.
#pragma once

#include "containers/icl_file.h"
#include "containers/icon_container_doc.h"

namespace pelorin {

class CFileIclDoc final : public CIconContainerDoc {
public:
    using CIconContainerDoc::CIconContainerDoc;

    /// A library without icons, and a file that is none, open as an empty library.
    [[nodiscard]] bool OnNewDocument() override;
    [[nodiscard]] bool OnOpenDocument(const std::string& path) override;
    [[nodiscard]] bool OnSaveDocument(const std::string& path) override;
    /// The icons of a Macintosh file; such a library is saved to another file.
    void SetContent(std::unique_ptr<DocumentContent> content) override;
    [[nodiscard]] ContainerKind GetContainerKind() const override { return ContainerKind::Library; }
    [[nodiscard]] std::string CellDescription(int index) const override;

    /// The form that the next save writes: PE for a new library, that of the file for one that was opened.
    LibraryForm m_form = LibraryForm::Pe;
    bool m_bMacintoshWrapper = false; ///< the icons came out of a Macintosh file

protected:
    [[nodiscard]] int EditWindowsQuestion() const override;

private:
    ResourceUpdater m_updater;
    std::unique_ptr<DocumentContent> m_pContent;
};

} // namespace pelorin
