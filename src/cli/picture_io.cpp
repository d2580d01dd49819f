#include "cli/picture_io.h"

#include "app/picture_settings.h"
#include "base/text.h"
#include "cli/output.h"
#include "cli/suggestion.h"
#include "core/file_kinds.h"
#include "core/strings.h"
#include "formats/jpeg2000.h"
#include "formats/load_image.h"
#include "formats/svg.h"
#include "icon/icon_file_forms.h"
#include "pixel/depth.h"

#include <fmt/format.h>

#include <charconv>

namespace pelorin::cli {

namespace {

[[noreturn]] void ThrowUnreadable(ByteSpan file, int kind) {
    RequireRenderer(file);
    if (!MayBePicture(kind)) throw FileException("pictures are not read from files of this kind");
    if (ImageObject object; ReadImageObject(file, object) && object.images.empty())
        throw FileException("the object has no images");
    const auto* format = FindPictureFormat(file, kind);
    if (format && format->matches && format->matches(file))
        throw FileException(fmt::format("this {} file is damaged, or of a variety that is not read", format->name));
    throw FileException("it is no picture, or it is damaged");
}

// Position of a layer given by number or name; -1 when there is none.
int FindLayer(const std::vector<std::string>& layers, const std::string& wanted) {
    for (std::size_t i = 0; i < layers.size(); ++i) {
        if (layers[i] == wanted) return static_cast<int>(i);
    }
    int number = 0;
    const auto* end = wanted.data() + wanted.size();
    const auto result = std::from_chars(wanted.data(), end, number);
    const bool inside =
        result.ec == std::errc() && result.ptr == end && number >= 1 && number <= static_cast<int>(layers.size());
    return inside ? number - 1 : -1;
}

DibBlock ReadLayer(ByteSpan file, int kind, PictureRequest request, const std::string& wanted, PictureFacts& facts) {
    if (!ReadPicture(file, kind, request, facts)) ThrowUnreadable(file, kind);
    request.layer = FindLayer(facts.layers, wanted);
    if (facts.layers.empty()) throw FileException("it has no layers");
    if (request.layer < 0)
        throw FileException(fmt::format("there is no layer \"{}\", the file has {}{}", Printable(wanted),
                                        facts.layers.size(), DidYouMean(wanted, facts.layers)));
    auto block = ReadPicture(file, kind, request, facts);
    if (!block) throw FileException(fmt::format("the layer \"{}\" is empty", Printable(wanted)));
    return block;
}

PictureSaveOptions SaveOptions(Run& run, const PictureOutput& output, const DibBlock& picture) {
    auto options = SaveOptionsOf(PictureSettings());
    options.progress = run.GetProgress();
    if (output.quality) options.jpegQuality = *output.quality;
    if (output.gifColors) options.gif.colors = *output.gifColors;
    if (output.gifPalette) options.gif.palette = *output.gifPalette;
    if (output.gifThreshold) options.gif.threshold = *output.gifThreshold;
    if (output.gifMatte) options.gif.matte = output.gifMatte->Rgb();
    if (output.gifNoDither) options.gif.dither = false;
    options.jp2Gray = output.jp2Gray;
    if (output.gifOpaque) options.gif.transparency = false;
    const DibView view(picture);
    if (output.lossy)
        options.jp2Rate = Jpeg2000Rate(*output.lossy, view.Stride() * static_cast<std::uint64_t>(view.Height()));
    return options;
}

} // namespace

DibBlock AtDepthFor(const PictureSaver& saver, const DibBlock& picture, ColorRef background) {
    const auto takes = [&](int bits) { return (saver.depths >> bits & 1) != 0; };
    const int bits = DIBBitCount(picture);
    if (takes(bits)) return {};
    if (!takes(24)) return ConvertTo32(picture, false, kNoColor);
    return bits == 32 ? ComposeTo24(picture, background) : ConvertDIBTo24(picture);
}

std::vector<ChoiceRow<std::optional<int>>> PictureFormatChoices() {
    std::vector<ChoiceRow<std::optional<int>>> rows;
    for (const auto& saver : PictureSavers()) rows.push_back({saver.extension, saver.kind});
    return rows;
}

void PictureInput::Declare(VerbSetup& setup) {
    setup.Number("--frame", frame, 1, 1 << 30, "frame or page of the file (default: 1)");
    setup.Option("--layer", layer, "N|NAME", "one layer of a layered file");
    setup.Option("--box", box, "WxH", "the size that a drawing (SVG, WMF, EMF) is fitted into");
    setup.Flag("--composite", composite, "all layers together (the default)");
}

DibBlock ReadPictureInput(Run& run, const std::string& file, const PictureInput& input, PictureFacts& facts) {
    if (input.composite && !input.layer.empty()) throw UsageError("--layer and --composite exclude each other");
    const auto view = FileView::Open(file);
    const int kind = GetFileKind(file);
    auto request = RequestOf(PictureSettings());
    request.progress = run.GetProgress();
    request.frame = input.frame - 1;
    if (input.box != Size{}) request.box = request.drawnFor = input.box;
    request.keepIndices = input.keepIndices;
    if (!input.layer.empty()) return ReadLayer(view.Data(), kind, request, input.layer, facts);
    auto block = ReadPicture(view.Data(), kind, request, facts);
    if (block) return block;
    request.frame = 0;
    if (input.frame > 1 && ReadPicture(view.Data(), kind, request, facts)) {
        throw FileException(fmt::format("there is no frame {}, the last is {}", input.frame, facts.frames));
    }
    ThrowUnreadable(view.Data(), kind);
}

void RequireRenderer(ByteSpan file) {
    if (!CanDrawSvg() && IsSvg(file))
        throw FileException("SVG pictures are drawn by librsvg, which is not installed (Debian: librsvg2-2)");
}

ImageObject ReadObjectInput(ByteSpan file) {
    ImageObject object;
    if (!ReadImageObject(file, object)) throw FileException("this VIO file is damaged");
    return object;
}

PictureFacts ReadPictureFacts(const std::string& file) {
    const auto view = FileView::Open(file);
    const int kind = GetFileKind(file);
    auto request = RequestOf(PictureSettings());
    request.preview = true;
    PictureFacts facts;
    if (!ReadPicture(view.Data(), kind, request, facts)) ThrowUnreadable(view.Data(), kind);
    return facts;
}

void PictureOutput::Declare(VerbSetup& setup) {
    setup.Choice("--as", as, PictureFormatChoices(), "what to write (default: by the name of the output)");
    setup.Number("--quality", quality, 1, 100, "of a JPEG");
    setup.Number("--lossy", lossy, 0, 100, "compress a JPEG 2000 with loss; the higher, the larger the file");
    setup.Flag("--jp2-gray", jp2Gray, "an 8-bit picture as one gray component, its indices the grays");
    setup.Number("--gif-colors", gifColors, 2, 256, "size of a GIF's palette");
    setup.Choice<std::optional<PaletteKind>>("--gif-palette", gifPalette,
                                             {{"adaptive", PaletteKind::Adaptive},
                                              {"web", PaletteKind::WebSafe},
                                              {"windows", PaletteKind::Windows},
                                              {"mac", PaletteKind::MacOs}},
                                             "colours of a GIF");
    setup.Flag("--gif-no-dither", gifNoDither, "nearest colours of a GIF, without diffusion");
    setup.Flag("--gif-opaque", gifOpaque, "no transparent colour in a GIF");
    setup.Number("--gif-threshold", gifThreshold, 0, 255, "alpha from which on a pixel of a GIF is opaque");
    setup.Option("--gif-matte", gifMatte, "COLOR", "what half transparent pixels of a GIF are composed on");
    setup.Option("--background", background, "COLOR", "what transparency is composed on where the format has none");
}

int PictureOutput::KindFor(const Run& run, const std::string& input, bool several) const {
    if (as) return *as;
    const auto& name = run.Options().output;
    const bool toFile = !several && !name.empty() && name != "-" && !FolderExists(name);
    if (toFile && PictureSaverOfKind(GetFileKind(name))) return GetFileKind(name);
    if (toFile && !ExtensionOf(name).empty()) {
        const int kind = GetFileKind(name);
        const bool converted = kind == kKindImageObject || FindIconFileForm(kind);
        throw UsageError(fmt::format("pictures are not written as \"{}\" ({})", ExtensionOf(name),
                                     converted ? "`convert` makes such files" : "--as says the format"));
    }
    return PictureSaverOfKind(GetFileKind(input)) && toFile ? int{GetFileKind(input)} : int{kKindPng};
}

std::string WritePictureOutput(Run& run, const std::string& input, std::string_view suffix, const DibBlock& picture,
                               const PictureOutput& output, bool several, const PictureFacts& facts) {
    const auto* saver = PictureSaverOfKind(output.KindFor(run, input, several));
    const auto path = OutputPath(run, input, suffix, saver->extension, several);
    if (facts.kind == kKindPsd && facts.layers.size() > 1 && SameFile(path, input))
        throw FileException(LoadText(str::kLayeredPsdNotWritten));
    auto options = SaveOptions(run, output, picture);
    options.extension = ExtensionOf(path);
    const bool keyed = facts.transparentIndex >= 0 && DIBBitCount(picture) == 8;
    const bool samePalette = saver->kind == kKindGif && facts.paletteBits > 0 && !output.ChangesGifPalette();
    DibBlock converted;
    if (keyed && samePalette) {
        options.gif.transparentIndex = facts.transparentIndex;
        options.gif.colors = 1 << facts.paletteBits;
    } else if (keyed) {
        converted = KeyTo32(picture, facts.transparentIndex);
    }
    const auto background =
        output.background ? ColorRefFromRgb(output.background->Rgb()) : PictureSettings().background;
    if (auto other = AtDepthFor(*saver, converted ? converted : picture, background)) converted = std::move(other);
    Bytes file;
    const int code = EncodePicture(converted ? converted : picture, saver->kind, options, file);
    if (code != 0 || file.empty())
        throw FileException(fmt::format("it cannot be written as {} (error code {})", saver->name, code));
    WriteOutput(run, path, file);
    if (!run.NotesOf(path)) return {};
    return fmt::format("{}  {}x{}, {} bits\n", Printable(path), DIBWidth(picture), DIBHeight(picture),
                       saver->writtenBits(DIBBitCount(converted ? converted : picture), options));
}

} // namespace pelorin::cli
