// What is open: a document knows its file and whether it was changed; a template makes the documents of one kind and
// owns them. Windows are somebody else's business.
#pragma once

#include "base/bytes.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pelorin {

class CDocTemplate;
struct Services;

/// What was read of a file before it was known which kind of document receives it (the icons of a Macintosh file), so
/// that it is not read twice. Its maker and the document agree on the derived class.
class DocumentContent {
public:
    virtual ~DocumentContent() = default;
};

class CDocument {
public:
    explicit CDocument(Services& services) : m_services(services) {}
    virtual ~CDocument() = default;
    CDocument(const CDocument&) = delete;
    CDocument& operator=(const CDocument&) = delete;

    /// Empties the document for a new one. False stops the command.
    [[nodiscard]] virtual bool OnNewDocument();
    /// Reads the file: empties the document, hands the bytes to `Load`. A file that cannot be read is told to the
    /// person.
    [[nodiscard]] virtual bool OnOpenDocument(const std::string& path);
    /// Writes what `Store` makes; the old file stays until the new one is whole. A failure is told to the person.
    [[nodiscard]] virtual bool OnSaveDocument(const std::string& path);
    virtual void DeleteContents() {}
    /// Content that was read beforehand; comes before `OnOpenDocument`. Documents without use for it drop it.
    virtual void SetContent(std::unique_ptr<DocumentContent> content) { (void)content; }

    [[nodiscard]] const std::string& GetPathName() const { return m_strPathName; }
    /// The title becomes the file's name. With `addToRecent` the path enters the list of recent files, where there is
    /// one.
    virtual void SetPathName(const std::string& path, bool addToRecent);
    [[nodiscard]] const std::string& GetTitle() const { return m_strTitle; }
    virtual void SetTitle(const std::string& title) { m_strTitle = title; }
    /// Whether the path was meant for the list of recent files when it was set.
    [[nodiscard]] bool IsInRecentList() const { return m_bInRecentList; }
    [[nodiscard]] bool IsModified() const { return m_bModified; }
    virtual void SetModifiedFlag(bool modified = true) { m_bModified = modified; }

    [[nodiscard]] Services& GetServices() const { return m_services; }
    [[nodiscard]] CDocTemplate* GetDocTemplate() const { return m_pTemplate; }

    bool m_bMacintosh = false; ///< icons of the Macintosh; set by the template that made the document

protected:
    /// False when the bytes are no such document; the document has told what is wrong.
    [[nodiscard]] virtual bool Load(ByteSpan file) { return file.empty(); }
    /// The bytes of the file. Throws `FileException`.
    [[nodiscard]] virtual Bytes Store() { return {}; }

private:
    friend class CDocTemplate;

    Services& m_services;
    CDocTemplate* m_pTemplate = nullptr;
    std::string m_strPathName;
    std::string m_strTitle;
    bool m_bModified = false;
    bool m_bInRecentList = false;
};

/// The parts of a template's string, in order.
enum class DocString { WindowTitle, DocName, FileNewName, FilterName, FilterExtension, RegistryId, RegistryName };

/// Makes the documents of one kind.
class CDocTemplate {
public:
    using Factory = std::unique_ptr<CDocument> (*)(Services&);

    /// `stringId`: the text whose lines are the parts of `DocString`. A null factory is a kind that this program has no
    /// documents for: opening one is refused with a message.
    CDocTemplate(Services& services, int stringId, Factory factory, bool macintosh = false);
    virtual ~CDocTemplate() = default;
    CDocTemplate(const CDocTemplate&) = delete;
    CDocTemplate& operator=(const CDocTemplate&) = delete;

    [[nodiscard]] std::string GetDocString(DocString part) const;
    [[nodiscard]] int GetStringId() const { return m_nStringId; }
    [[nodiscard]] bool IsMacintosh() const { return m_bMacintosh; }
    [[nodiscard]] bool HasDocuments() const { return m_factory != nullptr; }

    /// Makes a document and reads the file into it; with an empty path a new, untitled one. Null when the document
    /// refused. `content` is handed over before the file is read.
    CDocument* OpenDocumentFile(const std::string& path, std::unique_ptr<DocumentContent> content = nullptr);

    /// The open documents, oldest first.
    [[nodiscard]] const std::vector<std::unique_ptr<CDocument>>& GetDocuments() const { return m_arrDocuments; }
    /// Closes and frees it.
    void RemoveDocument(const CDocument* document);

protected:
    /// Null when there is no factory.
    [[nodiscard]] virtual std::unique_ptr<CDocument> CreateNewDocument();

private:
    [[nodiscard]] bool FillDocument(CDocument& document, const std::string& path);
    void SetDefaultTitle(CDocument& document);

    Services& m_services;
    int m_nStringId;
    Factory m_factory;
    bool m_bMacintosh;
    int m_nUntitledCount = 0;
    std::vector<std::unique_ptr<CDocument>> m_arrDocuments;
};

} // namespace pelorin
