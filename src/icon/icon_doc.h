// The document of one icon: its image formats, and where it came from. It lives in a file of its own or is embedded in
// a library, a program file or the Librarian; saving an embedded one puts it back there.
#pragma once

#include "core/document.h"
#include "core/open_hooks.h"
#include "icon/from_image.h"
#include "icon/icon_container.h"

namespace pelorin {

struct IconFileForm;

/// Icons that were read before their document was known.
class IconGroupsContent final : public IconListContent {
public:
    explicit IconGroupsContent(std::vector<CIconGroup> groups) : m_groups(std::move(groups)) {}
    [[nodiscard]] int Count() const override { return static_cast<int>(m_groups.size()); }
    std::vector<CIconGroup> m_groups;
};

/// One format of a template, or a row of the dialog that adds several formats.
struct FormatRow {
    IconFormat format;
    DibBlock picture; ///< of its own; empty: the nearest format of the icon lends its picture
};

/// An icon out of a container.
struct EmbeddedIcon {
    IIconContainer* container = nullptr;
    int index = -1;
    CIconGroup icon;
};

/// What a new icon is to be made from; handed to the document by `SetContent` before `OnNewDocument`. The first part
/// that is there counts, in the order of the fields; without any the icon gets one plain format.
struct NewIconContent final : DocumentContent {
    bool macintosh = false;
    std::string path; ///< the name chosen in the dialog; empty for none
    std::unique_ptr<EmbeddedIcon> embedded;
    std::vector<FormatRow> templateRows;
    std::optional<IconFormat> single; ///< with `picture`, if there is one, set into it
    DibBlock picture;                 ///< made ready by `PrepareIconSource`
    FromImageOptions fromImage;
};

/// The format of a plain new icon, by the settings of the dialog.
[[nodiscard]] IconFormat NewIconFormat(bool macintosh);
/// How icons are made from pictures by the stored choices.
[[nodiscard]] FromImageOptions StoredFromImageOptions(bool macintosh);

class CIconDoc : public CDocument {
public:
    using CDocument::CDocument;

    IconObjects m_arrFormats; ///< in display order
    bool m_bLoadError = false;
    std::string m_strEmbeddedName;
    int m_nEmbeddedIndex = -1;
    IIconContainer* m_pContainerDoc = nullptr;
    bool m_bTemporaryOpen = false; ///< the file lies in the program's temporary folder: there is no real one

    [[nodiscard]] bool OnNewDocument() override;
    [[nodiscard]] bool OnOpenDocument(const std::string& path) override;
    [[nodiscard]] bool OnSaveDocument(const std::string& path) override;
    void DeleteContents() override { DeleteFormats(); }
    void SetContent(std::unique_ptr<DocumentContent> content) override { m_content = std::move(content); }
    void SetPathName(const std::string& path, bool addToRecent) override;

    // ---- commands; false when nothing was saved ----

    enum class SaveAs { Any, Windows, Macintosh };
    bool OnFileSave();
    bool OnFileSaveAs(SaveAs system = SaveAs::Any);
    /// Saves under the path, or asks for one when it is empty, cannot be written, or (`asking`) in any case.
    bool DoSave(const std::string& path);
    /// Whether the document may be closed: a changed one is saved, or given up by the person's word.
    bool CanClose();

    // ---- formats ----

    [[nodiscard]] int GetFormatCount() const { return static_cast<int>(m_arrFormats.size()); }
    [[nodiscard]] CIconObject* GetFormat(int index) const;
    [[nodiscard]] int FindFormat(const IconFormat& format) const;
    /// Adds a format, with the picture of format `copyFrom` (-1: none). False when it cannot be made or is there
    /// already.
    bool AddFormat(const IconFormat& format, int copyFrom, bool dither);
    /// The command: asks and tells by the rules of the icon's system. The index of the new format or of the one that is
    /// there already; -1 when nothing was added.
    int AddFormatAsked(IconFormat format, int copyFrom);
    /// Adds the rows: those with pictures first, the others from the nearest formats. Rows that are there already are
    /// left out. The number added.
    int AddSeveralFormats(std::vector<FormatRow> rows);
    /// The last format of an icon stays: false.
    bool RemoveFormat(int index);
    /// False, with a message, for formats that are too small.
    bool SetCompressed(int index, bool compressed);
    void DeleteFormats() { m_arrFormats.clear(); }
    [[nodiscard]] std::vector<IconFormat> Formats() const;

    /// The stored forms in saving order, with the name and the system's flag. The formats keep their display order.
    [[nodiscard]] CIconGroup MakeGroup();
    void SetFromGroup(const CIconGroup& group);

    /// The system of the icon changed with its file; a view shows itself anew.
    virtual void OnSystemChanged() {}

private:
    [[nodiscard]] bool Load(ByteSpan file) override;
    [[nodiscard]] Bytes Store() override;

    void MakeNewFormats(NewIconContent& content);
    void MakeEmbedded(EmbeddedIcon& embedded);
    int MakeRows(std::vector<FormatRow> rows);
    bool AppendFormat(const IconFormat& format, const DibBlock& picture);
    bool SaveIntoContainer();
    bool MakeFolderFor(const std::string& path);
    [[nodiscard]] bool AcceptsLosses(const IconFileForm& form);
    [[nodiscard]] std::string AskPath(SaveAs system, bool& cancelled);
    [[nodiscard]] std::string ChosenName() const;

    std::unique_ptr<DocumentContent> m_content;
    std::string m_strFilePath; ///< while a file is read or written
};

} // namespace pelorin
