#include "formats/save_image.h"

#include "base/files.h"
#include "base/text.h"
#include "core/file_kinds.h"
#include "core/user_prompt.h"
#include "formats/bmp.h"
#include "formats/gif.h"
#include "formats/jpeg.h"
#include "formats/jpeg2000.h"
#include "formats/png.h"
#include "formats/psd.h"

namespace pelorin {

namespace {

constexpr std::uint64_t Depths(std::initializer_list<int> bits) {
    std::uint64_t mask = 0;
    for (const int b : bits) mask |= std::uint64_t{1} << b;
    return mask;
}

int SameBits(int bits, const PictureSaveOptions&) {
    return bits;
}
int IndexedBits(int bits, const PictureSaveOptions&) {
    return std::min(bits, 8);
}
int ColorBits(int, const PictureSaveOptions&) {
    return 24;
}
int LayerBits(int, const PictureSaveOptions&) {
    return 32;
}
int Jpeg2000Bits(int bits, const PictureSaveOptions& options) {
    return bits == 8 && options.jp2Gray ? 8 : std::max(bits, 24);
}

constexpr PictureSaver kSavers[] = {
    {kKindBmp, "BMP", "bmp", WriteBmp, Depths({1, 4, 8, 15, 16, 24, 32}), SameBits, 4},
    {kKindGif, "GIF", "gif", WriteGif, Depths({1, 4, 8, 24, 32}), IndexedBits, 4},
    {kKindJpeg, "JPEG", "jpg", WriteJpeg, Depths({1, 4, 8, 24}), ColorBits, 2, true},
    {kKindJpeg2000, "JPEG 2000", "jp2", WriteJpeg2000, Depths({1, 4, 8, 24, 32}), Jpeg2000Bits, 1},
    {kKindPng, "PNG", "png", WritePng, Depths({1, 4, 8, 24, 32}), SameBits, 1},
    {kKindPsd, "PSD", "psd", WritePsd, Depths({1, 4, 8, 24, 32}), LayerBits, 2},
};

constexpr int kIgnored = 1;

PromptAnswer AskAgain(UserPrompt& prompt, std::string_view path) {
    return prompt.ShowText(str::kErrorCreatingJpeg, LoadText(str::kErrorCreatingJpeg) + "\n" + std::string(path),
                           PromptIcon::Stop, PromptButtons::AbortRetryIgnore);
}

} // namespace

std::span<const PictureSaver> PictureSavers() {
    return kSavers;
}

const PictureSaver* PictureSaverOfKind(int kind) {
    for (const auto& row : kSavers) {
        if (row.kind == kind) return &row;
    }
    return nullptr;
}

int EncodePicture(const DibBlock& block, int kind, const PictureSaveOptions& options, Bytes& out) {
    const auto* saver = PictureSaverOfKind(kind);
    return saver ? saver->write(block, options, out) : kNoSuchWriter;
}

int SavePicture(const DibBlock& block, int kind, std::string_view path, PictureSaveOptions options,
                UserPrompt* prompt) {
    const auto* saver = PictureSaverOfKind(kind);
    if (!saver) return kNoSuchWriter;
    options.extension = ExtensionOf(path);
    Bytes file;
    if (const int code = saver->write(block, options, file)) return code;
    // A writer that has nothing to write is done, and no file comes of it.
    if (file.empty()) return 0;
    for (;;) {
        try {
            WriteFileSafely(path, file);
            return 0;
        } catch (const FileException&) {
            if (!saver->asks || !prompt) return saver->cannotWrite;
            const auto answer = AskAgain(*prompt, path);
            if (answer == PromptAnswer::Ignore) return kIgnored;
            if (answer != PromptAnswer::Retry) return saver->cannotWrite;
        }
    }
}

int KindOfFilter(std::string_view filters, int index) {
    const auto parts = Split(filters, '|');
    const auto at = static_cast<std::size_t>(index) * 2 - 1;
    if (index < 1 || at >= parts.size()) return kKindNone;
    return GetFileKind(Split(parts[at], ';')[0]);
}

} // namespace pelorin
