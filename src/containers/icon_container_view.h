// The lists of icons that libraries and program files are shown as: what is selected, and the commands on it. Painting
// is the window's.
#pragma once

#include "containers/exe_doc.h"
#include "containers/icl_doc.h"

namespace pelorin {

/// The two files that an icon can be exported as.
enum class ExportAs { WindowsIcon, MacintoshIcon };

class CIconContainerView {
public:
    explicit CIconContainerView(CIconContainerDoc& document) : m_document(document) {}
    virtual ~CIconContainerView() = default;
    CIconContainerView(const CIconContainerView&) = delete;
    CIconContainerView& operator=(const CIconContainerView&) = delete;

    // ---- selection: positions, ascending ----

    void Select(std::vector<int> positions);
    void SelectAll();
    [[nodiscard]] const std::vector<int>& GetSelection() const { return m_selection; }

    /// "No Icon", "Total: %d Icons".
    [[nodiscard]] std::string TotalText() const;
    /// "No Icon Selected", "Selection: %d Icons", or the name and formats of the one icon that is selected.
    [[nodiscard]] std::string SelectionText() const;

    // ---- commands on the selection ----

    /// Closes the editors of the icons first. False when nothing was removed.
    virtual bool Delete();
    /// What the dialog for one selected icon starts with: its name as a file's, or "Untitled".
    [[nodiscard]] std::string ExportDefaultName() const;
    /// Exports the first selected icon, asking before an existing file is replaced. A Macintosh file has the form that
    /// its extension asks for, with the formats that it can hold.
    bool Export(const std::string& path, ExportAs form);
    /// Exports all selected icons to files named after them in `folder`, asking before an existing one is replaced.
    /// Number of files written.
    int ExportTo(const std::string& folder, ExportAs form);
    /// Saves the selection as a library of its own.
    bool SaveAsLibrary(const std::string& path, LibraryForm form = LibraryForm::Pe);
    /// The editor of a cell, opened when there is none yet; it gives the icon back. Null when none can be opened.
    CIconDoc* OpenIcon(int index);
    /// An editor for a copy that belongs to nobody.
    CIconDoc* OpenAsNewIcon(int index);

protected:
    [[nodiscard]] CIconDoc* OpenEditor(int index);
    [[nodiscard]] bool ExportOne(int index, const std::string& path, ExportAs form);
    [[nodiscard]] int FirstSelected() const { return m_selection.empty() ? -1 : m_selection.front(); }

    CIconContainerDoc& m_document;
    std::vector<int> m_selection;
};

class CFileIclView final : public CIconContainerView {
public:
    explicit CFileIclView(CFileIclDoc& document) : CIconContainerView(document) {}

    /// Adds every icon of the files before `position` (-1: at the end), or in the place of the selected one. The new
    /// icons are selected. Tells the person about files without icons. False when nothing was added.
    bool Import(const std::vector<std::string>& paths, int position = -1, bool replaceSelection = false);
    /// One icon takes `name` as it stands; several take it (empty: "Icon") with numbers from `first`, filled up to
    /// `digits`.
    bool Rename(const std::string& name, int first = 1, int digits = 0);
    /// Unnamed icons come first. The sorted run begins where the first selected icon stood, and stays selected.
    bool SortByName();
};

class CFileExeView final : public CIconContainerView {
public:
    explicit CFileExeView(CFileExeDoc& document) : CIconContainerView(document), m_program(document) {}

    bool Delete() override;
    /// The first icon of the file takes the place of the selected one.
    bool Replace(const std::string& path);

private:
    CFileExeDoc& m_program;
};

/// A name as a file's: each of <>:"/\| becomes an underscore.
[[nodiscard]] std::string CleanFileName(std::string name);

} // namespace pelorin
