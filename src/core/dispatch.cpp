#include "core/dispatch.h"

#include "base/files.h"
#include "base/text.h"
#include "core/strings.h"

#include <algorithm>
#include <iterator>

namespace pelorin {

namespace {

constexpr DocKindInfo kDocKinds[kDocKindCount] = {
    {DocKind::Icon, 101, "icon"},
    {DocKind::MacIcon, 113, "Macintosh icon"},
    {DocKind::Library, 104, "icon library"},
    {DocKind::Explorer, 110, "explorer"},
    {DocKind::Browser, 112, "browser"},
    {DocKind::Search, 111, "search"},
    {DocKind::Program, 105, "program file"},
    {DocKind::Image, 109, "image"},
    {DocKind::ImageObject, 114, "image object"},
};

// How a kind is received: as it is, or after a look at what else is there.
enum class Road { Straight, ByIconCount, WithIconList, NeedsFramework, NeedsBrowser };

struct RouteRow {
    FileKind kind;
    DocKind receiver;
    Road road = Road::Straight;
};

// A kind without a row (an OCX file, something from the trash) opens nothing and says nothing.
constexpr RouteRow kRoutes[] = {
    {kKindIco, DocKind::Icon},
    {kKindIcns, DocKind::MacIcon, Road::ByIconCount},
    {kKindRsrc, DocKind::MacIcon, Road::ByIconCount},
    {kKindMacBinary, DocKind::MacIcon, Road::ByIconCount},
    {kKindIconLibrary, DocKind::Library},
    {kKindIcontainer, DocKind::Library, Road::WithIconList},
    {kKindPict, DocKind::Image, Road::NeedsFramework},
    {kKindFlashPix, DocKind::Image, Road::NeedsFramework},
    {kKindQuickTime, DocKind::Image, Road::NeedsFramework},
    {kKindPsd, DocKind::Image},
    {kKindAni, DocKind::Image},
    {kKindBmp, DocKind::Image},
    {kKindCur, DocKind::Image},
    {kKindGif, DocKind::Image},
    {kKindIff, DocKind::Image},
    {kKindJpeg, DocKind::Image},
    {kKindLbm, DocKind::Image},
    {kKindPcd, DocKind::Image},
    {kKindPcx, DocKind::Image},
    {kKindPng, DocKind::Image},
    {kKindTga, DocKind::Image},
    {kKindTiff, DocKind::Image},
    {kKindWmf, DocKind::Image},
    {kKindJpeg2000, DocKind::Image},
    {kKindHtml, DocKind::Browser, Road::NeedsBrowser},
    {kKindAsp, DocKind::Browser, Road::NeedsBrowser},
    {kKindExe, DocKind::Program},
    {kKindDll, DocKind::Program},
    {kKindDrv, DocKind::Program},
    {kKindCpl, DocKind::Program},
    {kKindScr, DocKind::Program},
    {kKindImageObject, DocKind::ImageObject},
};

constexpr std::string_view kWebStarts[] = {"http:", "ftp:", "www.", "ftp.", "https:"};

// The kinds that can begin as an empty document.
bool CanBeCreated(FileKind kind) {
    return kind == kKindIco || kind == kKindIconLibrary || IsMacintoshIconKind(kind);
}

OpenDecision Open(DocKind receiver, FileKind kind = kKindNone) {
    OpenDecision decision;
    decision.action = OpenAction::OpenWith;
    decision.receiver = receiver;
    decision.kind = kind;
    return decision;
}

OpenDecision Do(OpenAction action, FileKind kind = kKindNone) {
    OpenDecision decision;
    decision.action = action;
    decision.kind = kind;
    return decision;
}

OpenDecision Say(int message, FileKind kind, bool warning = false) {
    auto decision = Do(OpenAction::Tell, kind);
    decision.message = message;
    decision.warning = warning;
    return decision;
}

// A Macintosh file with several icons is shown as a library; the icons come with it.
OpenDecision OpenByIconCount(const std::string& path, FileKind kind, OpenHooks& hooks) {
    auto icons = hooks.ReadIconList(path);
    if (!icons || icons->Count() < 2) return Open(DocKind::MacIcon, kind);
    auto decision = Open(DocKind::Library, kind);
    decision.content = std::move(icons);
    return decision;
}

} // namespace

const DocKindInfo& InfoOf(DocKind kind) {
    return kDocKinds[static_cast<std::size_t>(kind)];
}

std::string WithoutQuotes(std::string_view text) {
    return ReplaceAll(std::string(text), "\"", "");
}

bool IsWebAddress(std::string_view text) {
    return std::ranges::any_of(kWebStarts, [&](std::string_view start) { return StartsWithNoCase(text, start); });
}

bool IsDrive(std::string_view text) {
    if (text.size() != 3 || text[1] != ':' || (text[2] != '\\' && text[2] != '/')) return false;
    const char letter = AsciiLower(text[0]);
    return letter >= 'a' && letter <= 'z';
}

OpenDecision DecideOpen(const std::string& text, const OpenOptions& options, OpenHooks& hooks) {
    if (IsWebAddress(text)) {
        const bool inside = !options.browseExternally && hooks.HasBrowser();
        return inside ? Open(DocKind::Browser) : Do(OpenAction::ShellOpen);
    }
    if (IsDrive(text) || FolderExists(text)) return Open(DocKind::Explorer);

    const auto kind = GetFileKind(text);
    if (kind == kKindTransfer) return Do(OpenAction::Transfer, kind);
    const bool exists = FileExists(text);
    if (!exists && kind == kKindNone) {
        return Trim(text).empty() ? Say(str::kSearchTextMissing, kind) : Do(OpenAction::WebSearch);
    }
    if (!exists && !CanBeCreated(kind)) return Say(str::kFileNotFound, kind);
    if (kind == kKindNone) return Say(str::kFileNotSupported, kind, true);
    if (!exists && options.askCreate) {
        auto decision = DecideByKind(text, kind, true, hooks);
        decision.action = OpenAction::AskCreate;
        return decision;
    }
    return DecideByKind(text, kind, false, hooks);
}

OpenDecision DecideByKind(const std::string& path, FileKind kind, bool create, OpenHooks& hooks) {
    if (kind == kKindMacBinary && !create && !hooks.HasMacintoshIcon(path)) {
        return Say(str::kFileNotSupported, kind, true);
    }
    const auto row = std::ranges::find(kRoutes, kind, &RouteRow::kind);
    if (row == std::end(kRoutes)) return Do(OpenAction::Nothing, kind);
    auto decision = Open(row->receiver, kind);
    switch (row->road) {
    case Road::Straight: break;
    case Road::ByIconCount:
        if (!create) return OpenByIconCount(path, kind, hooks);
        break;
    case Road::WithIconList: decision.content = hooks.ReadIconList(path); break;
    case Road::NeedsFramework:
        if (!hooks.HasMediaFramework()) return Say(str::kMediaFrameworkMissing, kind);
        break;
    case Road::NeedsBrowser:
        if (!hooks.HasBrowser()) return Do(OpenAction::ExternalViewer, kind);
        break;
    }
    return decision;
}

} // namespace pelorin
