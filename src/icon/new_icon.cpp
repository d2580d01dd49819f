#include "icon/new_icon.h"

#include "base/files.h"
#include "core/file_dialogs.h"
#include "core/services.h"
#include "core/settings.h"
#include "core/user_prompt.h"
#include "formats/load_file.h"
#include "icon/standard_formats.h"

namespace pelorin {

namespace {

constexpr std::string_view kPrivateDib = "Vantrel DIB32 Data";
constexpr std::string_view kPictureFormats[] = {kPrivateDib, kClipboardDib, kClipboardBitmap};

} // namespace

DibBlock PictureFromClipboard(const Clipboard& clipboard) {
    for (const auto format : kPictureFormats) {
        auto block = DibBlock::FromBytes(clipboard.Get(format));
        if (DibView(block)) return block;
    }
    return {};
}

bool ClipboardHasPicture(const Clipboard& clipboard) {
    return std::any_of(std::begin(kPictureFormats), std::end(kPictureFormats),
                       [&](std::string_view format) { return clipboard.Has(format); });
}

void StoreFormatChoice(const std::vector<IconFormat>& formats, bool macintosh, UserPrompt& prompt) {
    const auto table = StandardFormats(macintosh);
    for (std::size_t i = 0; i < table.size(); ++i) {
        const bool chosen = std::find(formats.begin(), formats.end(), table[i]) != formats.end();
        (macintosh ? g_arrCreateFormatFromImageMac[i] : g_arrCreateFormatFromImage[i]) = chosen;
    }
    prompt.Tell(PromptIcon::Information, str::kDefaultsSaved);
}

CIconDoc* NewIconCommands::OnNewFromImage() {
    if (m_services.dialogs == nullptr) return nullptr;
    FileDialogRequest request;
    request.filter = LoadText(str::kFilterImages) + LoadText(str::kFilterAllFiles) + "|";
    request.folder = g_strCurrentOpenDirectory;
    const auto chosen = SplitChosenFiles(m_services.dialogs->ChooseToOpen(request));
    if (chosen.empty()) return nullptr;
    CDIB picture;
    PictureRequest reading;
    reading.progress = m_services.progress;
    if (!LoadFromFile(picture, chosen.front(), reading)) {
        m_services.prompt->Tell(PromptIcon::Warning, str::kFileNotSupported, chosen.front());
        return nullptr;
    }
    g_strCurrentOpenDirectory = std::string(FolderOf(chosen.front()));
    return OnNewFromPicture(picture.Block());
}

CIconDoc* NewIconCommands::OnNewFromClipboard(const Clipboard& clipboard) {
    const auto picture = PictureFromClipboard(clipboard);
    return picture ? OnNewFromPicture(picture) : nullptr;
}

CIconDoc* NewIconCommands::OnNewFromPicture(const DibBlock& picture) {
    NewIconChoice choice;
    choice.macintosh = g_nNewIconType != 0;
    choice.options = StoredFromImageOptions(choice.macintosh);
    if (m_choice != nullptr && g_bShowNewFromImageInfo && !m_choice->Choose(choice)) return nullptr;
    auto content = std::make_unique<NewIconContent>();
    content->macintosh = choice.macintosh;
    content->picture = PrepareIconSource(CopyHandle(picture), choice.options.key);
    content->fromImage = std::move(choice.options);
    auto& receiver = choice.macintosh ? m_macintosh : m_windows;
    return dynamic_cast<CIconDoc*>(receiver.OpenDocumentFile({}, std::move(content)));
}

CIconDoc* NewIconCommands::OnNewIcon(bool macintosh, const IconFormat& format) {
    auto content = std::make_unique<NewIconContent>();
    content->macintosh = macintosh;
    if (format.bits != 0) content->single = format;
    return dynamic_cast<CIconDoc*>((macintosh ? m_macintosh : m_windows).OpenDocumentFile({}, std::move(content)));
}

} // namespace pelorin
