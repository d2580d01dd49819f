// What the documents of icon libraries and of program files have in common: a list of icons, and the editors that are
// open on single ones.
#pragma once

#include "icon/icon_doc.h"

namespace pelorin {

using IconGroups = std::vector<std::unique_ptr<CIconGroup>>;

class CIconContainerDoc : public CDocument, public IIconContainer {
public:
    using CDocument::CDocument;

    [[nodiscard]] int GetCount() const { return static_cast<int>(m_arrIcons.size()); }
    /// Null past the end.
    [[nodiscard]] CIconGroup* GetIcon(int index) const;
    /// Puts icons in before `position`; behind the last one when it is out of range. Returns where the first one
    /// stands.
    int Insert(int position, IconGroups icons);
    /// Takes the icons at these positions (ascending) out and hands them over.
    IconGroups TakeOut(const std::vector<int>& positions);

    /// Brings the icons into a new order: `order` tells for each place which icon, by its old place, stands there.
    void Reorder(const std::vector<int>& order);

    /// "Icon %d" for a cell without a name.
    [[nodiscard]] std::string CellName(int index) const;
    /// "(Icon %d in Icon Library %s)", "(Icon %d in Program File %s)".
    [[nodiscard]] virtual std::string CellDescription(int index) const = 0;
    /// Name of the file that the icon is exported to, without extension and not yet cleaned; empty for none.
    [[nodiscard]] virtual std::string ExportName(int index) const;

    [[nodiscard]] std::string GetContainerName() const override { return GetTitle(); }
    /// Puts the formats of an edited icon into a cell and marks both as changed. False, after telling the person, when
    /// the container cannot take these formats.
    [[nodiscard]] bool UpdateIcon(int index, const CIconGroup& icon) override;

    // ---- editors that are open on cells ----

    /// The templates whose documents are looked through for editors, that of Windows icons first.
    std::vector<CDocTemplate*> m_arrEditorTemplates;
    /// The editor of a cell; null when there is none.
    [[nodiscard]] CIconDoc* FindEditor(int index) const;
    /// Closes the editors of these cells, each after its question; false when one of them stays.
    [[nodiscard]] bool CloseEditors(const std::vector<int>& positions);

    void DeleteContents() override;

    /// Questions "Save changes ...?" before the document goes. False when it must stay.
    [[nodiscard]] bool SaveModified();
    /// "Save As" without a path of its own asks this; set by the shell. Empty: the person left.
    std::string (*m_pfnAskPath)(CIconContainerDoc& document) = nullptr;
    std::string m_strReason; ///< why the last save failed, where the system told

protected:
    /// The question about changes in edit windows.
    [[nodiscard]] virtual int EditWindowsQuestion() const = 0;
    /// Merges what the editors changed into the list, after the question. False: the save is off.
    [[nodiscard]] bool MergeEditors(const std::string& path);
    /// Makes the target's folder after asking; false when there is none in the end.
    [[nodiscard]] bool EnsureFolder(const std::string& path);
    /// Whether the cell may take these formats; tells the person if not.
    [[nodiscard]] virtual bool MayTake(const CIconGroup& cell, const CIconGroup& icon);

    IconGroups m_arrIcons;

private:
    /// All editors that are open on cells of this document.
    [[nodiscard]] std::vector<CIconDoc*> Editors() const;
    [[nodiscard]] CIconDoc* FirstChangedEditor() const;
};

/// True when both icons have the same number of images, and for each image of the one the other has one of the same
/// width, height, colours and alpha.
[[nodiscard]] bool HaveSameFormats(const CIconGroup& a, const CIconGroup& b);
/// The image of `group` with the properties of `like`; null when there is none.
[[nodiscard]] CVnIcon* FindSameFormat(const CIconGroup& group, const CVnIcon& like);

/// The name of a file without folder and extension, as icons are called after it.
[[nodiscard]] std::string BaseName(std::string_view path);

} // namespace pelorin
