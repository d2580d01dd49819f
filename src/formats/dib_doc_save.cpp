#include "base/files.h"
#include "core/file_kinds.h"
#include "core/services.h"
#include "core/user_prompt.h"
#include "formats/dib_doc.h"
#include "formats/jpeg2000.h"
#include "formats/save_image.h"
#include "pixel/depth.h"
#include "pixel/map_palette.h"

#include <utility>

namespace pelorin {

int g_nSaveKind = 0;

namespace {

// What a save returns when the reduction to the document's own palette fails.
constexpr int kNotReduced = 1;

std::uint64_t PixelBytes(const DibBlock& block) {
    const DibView view(block);
    return view.Stride() * static_cast<std::uint64_t>(view.Height());
}

} // namespace

PictureSaveOptions SaveOptionsOf(const DibDocSettings& settings) {
    PictureSaveOptions options;
    options.jpegQuality = settings.jpegQuality;
    options.gif.colors = settings.gifColors == 0 ? 0 : 1 << (settings.gifColors + 2);
    options.gif.palette = static_cast<PaletteKind>(settings.gifPalette);
    options.gif.dither = settings.gifDither;
    options.gif.matte = RgbFromColorRef(settings.gifMatte);
    options.gif.transparency = settings.gifTransparency;
    options.gif.threshold = settings.gifThreshold * 6;
    return options;
}

bool CDibDoc::ChooseSaveOptions(int kind) {
    if (kind != kKindGif && kind != kKindJpeg2000) return true;
    const auto ask = kind == kKindGif ? &DibDocDialogs::AskGifOptions : &DibDocDialogs::AskJpeg2000Options;
    if (m_dialogs && !(m_dialogs->*ask)(m_Image.Block(), m_settings)) return false;
    m_bOptionsChosen = true;
    return true;
}

int CDibDoc::SaveAsGif(const std::string& path, bool chosen) {
    auto options = SaveOptionsOf(m_settings);
    options.progress = GetServices().progress;
    if (chosen || !m_bGifView || m_Image.m_pSourcePalette.empty() || m_Image.GetBitCount() != 32) {
        return SavePicture(m_Image.Block(), kKindGif, path, options);
    }
    // Back onto the palette that the picture came with.
    const int bits = m_Image.m_nPaletteBits;
    int transparent = m_Image.m_nTransparentIndex;
    const auto reduced = MapAlphaImageToTable(m_Image.Block(), bits, m_Image.m_pSourcePalette, transparent);
    if (!reduced) return kNotReduced;
    options.gif.colors = 1 << bits;
    options.gif.transparentIndex = transparent;
    return SavePicture(reduced, kKindGif, path, options);
}

int CDibDoc::SaveAsPsd(const std::string& path) {
    PictureSaveOptions options;
    options.progress = GetServices().progress;
    if (m_Image.GetBitCount() == 32) return SavePicture(m_Image.Block(), kKindPsd, path, options);
    auto copy = ConvertTo32(m_Image.Block(), false, kNoColor);
    const int code = SavePicture(copy, kKindPsd, path, options);
    if (code == 0 && copy) (void)TakeBlock(std::move(copy));
    return code;
}

int CDibDoc::SaveAs(int kind, const std::string& path, bool chosen) {
    if (kind == kKindGif) return SaveAsGif(path, chosen);
    if (kind == kKindPsd) return SaveAsPsd(path);
    auto options = SaveOptionsOf(m_settings);
    options.progress = GetServices().progress;
    if (kind == kKindJpeg2000 && chosen && m_settings.jp2Lossy) {
        options.jp2Rate = Jpeg2000Rate(m_settings.jp2Compression, PixelBytes(m_Image.Block()));
    }
    return SavePicture(m_Image.Block(), kind, path, options, GetServices().prompt);
}

bool CDibDoc::OnSaveDocument(const std::string& path) {
    int kind = GetFileKind(path);
    if (kind == kKindNone) kind = g_nSaveKind;
    if (kind == kKindNone) kind = kKindBmp;
    if (!PictureSaverOfKind(kind)) return false;
    if (!m_strLayeredPsd.empty() && SameFile(path, m_strLayeredPsd)) {
        GetServices().prompt->Tell(PromptIcon::Stop, str::kLayeredPsdNotWritten);
        return false;
    }

    const bool chosen = std::exchange(m_bOptionsChosen, false);
    if (SaveAs(kind, path, chosen) != 0) {
        GetServices().prompt->Tell(PromptIcon::Stop, str::kErrorSavingImage);
    } else if (kind == kKindGif) {
        // What is shown from now on is what the file holds.
        (void)LoadPictureFile(path);
        m_bGifView = true;
    }
    SetModifiedFlag(false);
    return true;
}

} // namespace pelorin
