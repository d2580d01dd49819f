// Which document receives what a person asks to open. This decides and changes nothing; `CPelorinApp::OpenDocumentFile`
// does what was decided.
#pragma once

#include "core/file_kinds.h"
#include "core/open_hooks.h"

#include <string>
#include <string_view>

namespace pelorin {

/// The documents in the order in which their templates are registered.
enum class DocKind { Icon, MacIcon, Library, Explorer, Browser, Search, Program, Image, ImageObject };
inline constexpr int kDocKindCount = 9;

struct DocKindInfo {
    DocKind kind;
    int stringId;
    std::string_view name; ///< a plain word for reports: "icon", "icon library", "explorer"
};
/// One row a template, in order.
[[nodiscard]] const DocKindInfo& InfoOf(DocKind kind);

enum class OpenAction {
    OpenWith,       ///< `receiver` reads it
    ShellOpen,      ///< the system's own program for an address
    ExternalViewer, ///< the program for this kind of file, by the table of media types
    WebSearch,
    Transfer,  ///< a picture handed over by a plug-in
    AskCreate, ///< there is no such file; `receiver` makes it when the person agrees
    Tell,      ///< the message `message`
    Nothing,
};

struct OpenDecision {
    OpenAction action = OpenAction::Nothing;
    DocKind receiver = DocKind::Icon;
    FileKind kind = kKindNone;
    int message = 0;      ///< string number; takes the text as its argument where it has a place for one
    bool warning = false; ///< the message is shown as a warning
    std::unique_ptr<DocumentContent> content;
};

struct OpenOptions {
    bool browseExternally = false;
    /// Whether a missing file of an icon or library kind may be made.
    bool askCreate = true;
};

/// The text without its quotes.
[[nodiscard]] std::string WithoutQuotes(std::string_view text);
/// "http:", "https:", "ftp:", "www.", "ftp." at the start, in any case.
[[nodiscard]] bool IsWebAddress(std::string_view text);
/// A letter, a colon and a slash, and nothing else.
[[nodiscard]] bool IsDrive(std::string_view text);

/// `text` has no quotes any more.
[[nodiscard]] OpenDecision DecideOpen(const std::string& text, const OpenOptions& options, OpenHooks& hooks);
/// The decision for a file whose absence has been settled: it exists, or is going to be made (`create`).
[[nodiscard]] OpenDecision DecideByKind(const std::string& path, FileKind kind, bool create, OpenHooks& hooks);

} // namespace pelorin
