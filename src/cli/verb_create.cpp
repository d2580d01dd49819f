#include "base/text.h"
#include "cli/output.h"
#include "cli/picture_io.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "core/file_kinds.h"
#include "core/settings.h"
#include "icon/icon_doc.h"
#include "icon/icon_file_forms.h"
#include "icon/source_file.h"
#include "icon/standard_formats.h"
#include "pixel/depth.h"

#include <fmt/format.h>

#include <set>

namespace pelorin::cli {

namespace {

enum class Preset { Default, All, Modern, Xp, Favicon };
enum class Compress { Auto, Always, Never };

struct CreateOptions {
    std::vector<std::string> pictures;
    std::vector<IconFormat> formats;
    Preset preset = Preset::Default;
    std::vector<std::string> perSize;
    std::optional<Color> key, background;
    std::optional<int> filter;
    bool macintosh = false, noDither = false;
    Compress compress = Compress::Auto;
};

// Square formats with alpha.
std::vector<IconFormat> AlphaFormats(std::initializer_list<int> sides) {
    std::vector<IconFormat> formats;
    for (const int side : sides) formats.push_back({side, side, 32});
    return formats;
}

// The rows of the standard table that are switched on.
template <class Wanted>
std::vector<IconFormat> TableFormats(bool macintosh, const Wanted& wanted) {
    std::vector<IconFormat> formats;
    const auto table = StandardFormats(macintosh);
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (wanted(i)) formats.push_back(table[i]);
    }
    return formats;
}

std::vector<IconFormat> PresetFormats(Preset preset, bool macintosh) {
    constexpr std::size_t kXpRows = 12; // 48, 32, 24 and 16 pixels at 32, 8 and 4 bits
    switch (preset) {
    case Preset::All: return TableFormats(macintosh, [](std::size_t) { return true; });
    case Preset::Modern:
        return macintosh ? AlphaFormats({512, 256, 128, 48, 32, 16}) : AlphaFormats({256, 64, 48, 32, 24, 16});
    case Preset::Xp:
        return TableFormats(macintosh,
                            [&](std::size_t i) { return macintosh ? IsDefaultFormat(true, i) : i < kXpRows; });
    case Preset::Favicon: return AlphaFormats({48, 32, 16});
    default:
        return TableFormats(macintosh, [&](std::size_t i) {
            return macintosh ? g_arrCreateFormatFromImageMac[i] : g_arrCreateFormatFromImage[i];
        });
    }
}

std::vector<IconFormat> WantedFormats(const CreateOptions& options, const IconFileForm& form) {
    auto formats = options.formats.empty() ? PresetFormats(options.preset, options.macintosh) : options.formats;
    std::vector<IconFormat> unique;
    for (const auto& format : formats) {
        if (std::find(unique.begin(), unique.end(), format) == unique.end()) unique.push_back(format);
        if (form.allows != nullptr && !form.allows(format)) {
            throw UsageError(
                fmt::format("a Macintosh icon has no format {}x{}x{}", format.width, format.height, format.bits));
        }
    }
    // The stored choice may be empty; no icon ends without a format.
    if (unique.empty()) unique = AlphaFormats({48});
    return unique;
}

FromImageOptions MakingOptions(const CreateOptions& options, const Run& run, const IconFileForm& form) {
    auto making = StoredFromImageOptions(options.macintosh);
    making.formats = WantedFormats(options, form);
    if (options.noDither) making.dither = false;
    if (options.key) making.key = ColorRefFromRgb(options.key->Rgb());
    if (options.filter) making.filter = {true, *options.filter};
    making.compress =
        options.compress == Compress::Always || (options.compress == Compress::Auto && g_bCompressVista256x256NewIcon);
    making.jobs = options.pictures.size() == 1 ? run.Options().jobs : 1;
    return making;
}

// The picture made ready for an icon, a scalable one for formats of `size`; throws with what is wrong.
DibBlock ReadSource(const SourceFile& file, Size size, const CreateOptions& options) {
    RequireRenderer(file.Data());
    auto picture = file.Read(size);
    if (!picture) throw FileException("this is not a picture that can be read, or it is damaged");
    if (options.background) picture = ComposeTo24(picture, ColorRefFromRgb(options.background->Rgb()));
    picture = PrepareIconSource(std::move(picture), options.key ? ColorRefFromRgb(options.key->Rgb()) : kNoColor);
    if (!picture) throw FileException("the picture is too large to be made square");
    return picture;
}

// The pictures that the command line names for single sizes.
std::vector<SizeArt> ReadArt(const CreateOptions& options) {
    std::vector<SizeArt> art;
    for (const auto& text : options.perSize) {
        const auto equals = text.find('=');
        if (equals == std::string::npos) throw UsageError("--per-size takes SIZE=PICTURE, as in 16=small.png");
        SizeArt own;
        ParseValue(std::string_view(text).substr(0, equals), own.size);
        const auto path = text.substr(equals + 1);
        try {
            own.picture = ReadSource(SourceFile(path), own.size, options);
        } catch (const FileException& error) {
            throw FileException(fmt::format("{}: {}", path, error.what()));
        }
        art.push_back(std::move(own));
    }
    return art;
}

std::string Joined(const std::set<int, std::greater<>>& numbers) {
    std::string text;
    for (const int number : numbers) text += (text.empty() ? "" : ", ") + std::to_string(number);
    return text;
}

// "logo.ico  9 formats, 22 KB  (48, 32, 16 at 32, 8, 4 bits)"
std::string Summary(const std::string& path, const CIconGroup& group, std::size_t bytes) {
    std::set<int, std::greater<>> sides, depths;
    for (const auto& icon : group.m_arrIcons) {
        sides.insert(icon->m_nWidth);
        depths.insert(icon->BitCount());
    }
    return fmt::format("{}  {} format{}, {}  ({} at {} bits)", Printable(path), group.GetCount(),
                       group.GetCount() == 1 ? "" : "s", BytesText(bytes), Joined(sides), Joined(depths));
}

// The form that the icons are written in: told by -o where that names a file, else by the system.
const IconFileForm& WantedForm(const CreateOptions& options, const std::string& output) {
    const auto* named = FindIconFileForm(GetFileKind(output));
    if (named != nullptr && (named->macintosh || !options.macintosh)) return *named;
    const auto* form = FindIconFileForm(options.macintosh ? kKindIcns : kKindIco);
    if (form == nullptr) throw UsageError("this program was built without Macintosh icons");
    return *form;
}

std::string CreateOne(Run& run, const std::string& picture, const CreateOptions& options,
                      const FromImageOptions& making, std::span<const SizeArt> art, const IconFileForm& form) {
    const ProgressScope progress(run.GetProgress(), "icons", 1);
    const SourceFile file(picture);
    auto formats = CreateFormats(
        file, [&](Size size) { return ReadSource(file, size, options); }, art, making);
    if (formats.empty()) throw FileException("no format could be made of this picture");
    auto group = GroupOf(formats, g_bWinExplorerCompatibleOrder);
    group.m_nInfo = options.macintosh ? 1 : 0;
    const auto path = OutputPath(run, picture, "", form.extension, options.pictures.size() > 1);
    const auto bytes = form.write(group, path);
    if (bytes.empty()) throw FileException("the icon cannot be kept in a file of this kind");
    WriteOutput(run, path, bytes);
    return run.NotesOf(path) ? Summary(path, group, bytes.size()) + "\n" : std::string();
}

} // namespace

VerbAction SetUpCreate(VerbSetup& setup) {
    auto options = std::make_shared<CreateOptions>();
    setup.Inputs("PICTURE", options->pictures, "pictures of any format; each becomes one icon");
    setup.Option("--formats", options->formats, "WxHxBITS,...", "the formats wanted, instead of a preset");
    setup.Choice<Preset>("--preset", options->preset,
                         {{"default", Preset::Default},
                          {"all", Preset::All},
                          {"modern", Preset::Modern},
                          {"xp", Preset::Xp},
                          {"favicon", Preset::Favicon}},
                         "a set of formats; default is the stored choice");
    setup.Flag("--mac", options->macintosh, "a Macintosh icon");
    setup.Option("--per-size", options->perSize, "SIZE=PICTURE", "another picture for the formats of one size");
    setup.Option("--key", options->key, "COLOR", "a colour that becomes transparent in pictures without alpha");
    setup.Number("--filter", options->filter, 0, 20,
                 "smooth (0 to 9) or sharpen (11 to 20) what was scaled; 10 is neither");
    setup.Flag("--no-dither", options->noDither, "reduce colours without dithering");
    setup.Choice<Compress>("--compress", options->compress,
                           {{"auto", Compress::Auto}, {"always", Compress::Always}, {"never", Compress::Never}},
                           "PNG compression of formats from 256x256 on; auto does as the setting says");
    setup.Option("--background", options->background, "COLOR", "lay the picture on this colour first");
    setup.MakesFiles();
    setup.UsesCores();
    setup.Footer("Examples:\n"
                 "  pelorin-cli create logo.png -o logo.ico\n"
                 "  pelorin-cli create logo.svg -o logo.icns\n"
                 "  pelorin-cli create photos/*.jpg -o icons/ --preset modern\n"
                 "  pelorin-cli create logo.png --per-size 16=small.png --formats 256x256x32,32x32x32,16x16x32");
    return [options](Run& run) {
        const auto& form = WantedForm(*options, run.Options().output);
        options->macintosh = form.macintosh;
        const auto making = MakingOptions(*options, run, form);
        std::vector<SizeArt> art;
        if (!run.Attempt("--per-size", [&] { art = ReadArt(*options); })) return;
        run.ForEachAtOnce("icons", options->pictures, [&](const std::string& picture) {
            return CreateOne(run, picture, *options, making, art, form);
        });
    };
}

} // namespace pelorin::cli
