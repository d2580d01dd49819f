// What opening something asks of those above the core, and of the window around it.
#pragma once

#include "core/document.h"

#include <memory>
#include <string>
#include <string_view>

namespace pelorin {

/// The icons of a Macintosh file or an icontainer, read before it is known which document shows them.
class IconListContent : public DocumentContent {
public:
    [[nodiscard]] virtual int Count() const = 0;
};

/// The parts of the program that know what the core does not. The defaults are those of a program without them.
class OpenHooks {
public:
    virtual ~OpenHooks() = default;

    /// The icons of an ICNS file, a resource file, a MacBinary file or an icontainer; null when it cannot be read.
    [[nodiscard]] virtual std::unique_ptr<IconListContent> ReadIconList(const std::string& path) {
        (void)path;
        return nullptr;
    }
    /// Whether a MacBinary file has an icon inside.
    [[nodiscard]] virtual bool HasMacintoshIcon(const std::string& path) {
        (void)path;
        return false;
    }
    /// Reads a picture that a plug-in handed over, deletes the file and passes the picture on. Null when nothing
    /// opened.
    virtual CDocument* OpenTransferFile(const std::string& path) {
        (void)path;
        return nullptr;
    }
    /// Asks for the format of a new icon; the name is preset. False when the person changed their mind.
    [[nodiscard]] virtual bool AskNewIcon(const std::string& name, bool macintosh) {
        (void)name, (void)macintosh;
        return true;
    }
    [[nodiscard]] virtual bool HasBrowser() { return false; }
    /// Importers for PICT, FlashPix and QuickTime images.
    [[nodiscard]] virtual bool HasMediaFramework() { return false; }
};

/// The main window. The defaults are those of a program without one.
class MainFrame {
public:
    virtual ~MainFrame() = default;

    /// Makes the window; `librarianPath` is what the command line asked the Librarian to show. False ends the program.
    [[nodiscard]] virtual bool Create(const std::string& librarianPath) {
        (void)librarianPath;
        return true;
    }
    virtual void ShowSplash() {}
    virtual void CloseSplash() {}
    /// Brings the document's first window to the front, out of its iconic state when need be.
    virtual void ActivateDocument(CDocument& document) { (void)document; }
    virtual void ShowWaitCursor(bool on) { (void)on; }
    virtual void RefreshRecentMenu() {}
    virtual void SearchWeb(const std::string& phrase) { (void)phrase; }
    /// Lets the person name the program that edits files of this kind.
    virtual void EditMediaType(int kind) { (void)kind; }
};

} // namespace pelorin
