#include "cli/icon_input.h"
#include "cli/output.h"
#include "cli/picture_io.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "core/settings.h"
#include "icon/group_formats.h"
#include "icon/icon_file_forms.h"
#include "icon/source_file.h"
#include "icon/standard_formats.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

struct FormatOptions {
    std::string icon, picture;
    std::vector<IconFormat> formats;
    std::optional<IconFormat> from;
    bool noDither = false, off = false;
};

std::string NameOf(const IconFormat& format) {
    return fmt::format("{}x{}x{}", format.width, format.height, format.bits);
}

[[noreturn]] void NoSuchFormat(const CIconGroup& group, const IconFormat& format) {
    std::string present;
    for (const auto& f : FormatsOf(group)) present += (present.empty() ? "" : ", ") + NameOf(f);
    throw FileException(fmt::format("the icon has no format {}; it has {}", NameOf(format), present));
}

// The form of the output: told by its name, else that of the input. Throws where a format would be lost in it.
const IconFileForm& TargetForm(const std::string& path, const IconFileForm& input, const CIconGroup& group) {
    const auto* named = FindIconFileForm(GetFileKind(path));
    const auto& form = named ? *named : input;
    if (form.macintosh != input.macintosh)
        throw FileException("convert brings icons from one system to the other; do that first");
    for (const auto& format : FormatsOf(group)) {
        if (form.allows != nullptr && !form.allows(format))
            throw FileException(fmt::format("a Macintosh icon has no format {}", NameOf(format)));
    }
    return form;
}

// Reads the one icon of a file, lets `change` work on it, and writes it where it is wanted.
void ChangeIcon(Run& run, const FormatOptions& options, const std::function<void(CIconGroup&)>& change) {
    run.Attempt(options.icon, [&] {
        const auto* form = FindIconFileForm(GetFileKind(options.icon));
        if (form == nullptr)
            throw FileException("this is no file of one icon; for libraries and programs there are verbs of their own");
        std::vector<CIconGroup> groups;
        if (!form->read(FileView::Open(options.icon).Data(), groups))
            throw FileException("the icon cannot be read, or is damaged");
        if (groups.size() != 1) throw FileException("the file has more than one icon");
        auto& group = groups.front();
        change(group);
        const auto path = OutputPath(run, options.icon, "", form->extension, false);
        const auto bytes = TargetForm(path, *form, group).write(group, path);
        if (bytes.empty()) throw FileException("the icon cannot be kept in a file of this kind");
        WriteOutput(run, path, bytes);
        if (path != "-")
            run.Note(fmt::format("{}  {}, {}", Printable(path), group.GetSizeText(), BytesText(bytes.size())));
    });
}

MakeFormatOptions Making(const FormatOptions& options, bool macintosh) {
    MakeFormatOptions making;
    making.set.dither = !options.noDither && g_bDitheringWhileCopyNewformatIcon;
    making.set.macPalette = macintosh;
    making.compress = g_bCompressVista256x256NewIcon;
    making.explorerOrder = g_bWinExplorerCompatibleOrder;
    return making;
}

// The picture that new formats are made of: read once, or, when it is a drawing, drawn for each size.
class FormatSource {
public:
    explicit FormatSource(const std::string& path) : m_path(path), m_file(path) { RequireRenderer(m_file.Data()); }

    const DibBlock& For(const IconFormat& format) {
        if (!m_picture || m_file.Scalable())
            m_picture = PrepareIconSource(m_file.Read({format.width, format.height}), kNoColor);
        if (!m_picture) throw FileException(fmt::format("{}: this is not a picture that can be read", m_path));
        return m_picture;
    }

private:
    std::string m_path;
    SourceFile m_file;
    DibBlock m_picture;
};

void AddFormats(CIconGroup& group, const FormatOptions& options) {
    const bool macintosh = group.m_nInfo != 0;
    const auto making = Making(options, macintosh);
    std::optional<FormatSource> picture;
    if (!options.picture.empty()) picture.emplace(options.picture);
    const int source = options.from ? FindFormat(group, *options.from) : -1;
    if (options.from && source < 0) NoSuchFormat(group, *options.from);
    for (const auto& format : options.formats) {
        if (CheckFormat(format, macintosh) != FormatRule::Allowed) {
            throw FileException(fmt::format("a Macintosh icon has no format {}", NameOf(format)));
        }
        if (FindFormat(group, format) >= 0) {
            throw FileException(fmt::format("the image format \"{}\" already exists in this icon",
                                            FormatDescription(format.width, format.height, format.bits, macintosh)));
        }
        const bool made = picture ? PutFormat(group, format, picture->For(format), making)
                                  : AddFormatFromIcon(group, format, source, making);
        if (!made) throw FileException(fmt::format("the format {} cannot be made", NameOf(format)));
    }
}

void CompressFormats(CIconGroup& group, const FormatOptions& options) {
    auto wanted = options.formats;
    if (wanted.empty()) {
        for (const auto& f : FormatsOf(group)) {
            if (MayBeCompressed(f.width, f.height)) wanted.push_back(f);
        }
    }
    if (wanted.empty())
        throw FileException("the icon has no format of at least 256x256, and smaller ones are not compressed");
    for (const auto& format : wanted) {
        const int index = FindFormat(group, format);
        if (index < 0) NoSuchFormat(group, format);
        if (!options.off && !MayBeCompressed(format.width, format.height)) {
            throw FileException("PNG compression is for formats of at least 256x256");
        }
        group.GetIcon(index)->m_bCompressed = !options.off;
    }
}

std::shared_ptr<FormatOptions> SetUpCommon(VerbSetup& setup) {
    auto options = std::make_shared<FormatOptions>();
    setup.Input("ICON", options->icon, "an icon file");
    setup.RewritesFiles();
    return options;
}

} // namespace

VerbAction SetUpFormatAdd(VerbSetup& setup) {
    auto options = SetUpCommon(setup);
    setup.Option("--formats", options->formats, "WxHxBITS,...", "the formats to add");
    setup.Option("--picture", options->picture, "PICTURE", "where they are made from; else from the icon itself");
    setup.Option("--from", options->from, "WxHxBITS", "the format that lends its picture; else the nearest");
    setup.Flag("--no-dither", options->noDither, "reduce colours without dithering");
    return [options](Run& run) {
        if (options->formats.empty())
            throw UsageError("--formats says which formats to add, as in --formats 256x256x32");
        if (options->from && !options->picture.empty()) throw UsageError("--from and --picture exclude each other");
        ChangeIcon(run, *options, [&](CIconGroup& group) { AddFormats(group, *options); });
    };
}

VerbAction SetUpFormatRemove(VerbSetup& setup) {
    auto options = SetUpCommon(setup);
    setup.Option("--formats", options->formats, "WxHxBITS,...", "the formats to take out");
    return [options](Run& run) {
        if (options->formats.empty()) throw UsageError("--formats says which formats to take out");
        ChangeIcon(run, *options, [&](CIconGroup& group) {
            for (const auto& format : options->formats) {
                if (FindFormat(group, format) < 0) NoSuchFormat(group, format);
                if (!RemoveFormat(group, format)) throw FileException("the last format of an icon cannot be removed");
            }
        });
    };
}

VerbAction SetUpFormatReplace(VerbSetup& setup) {
    auto options = SetUpCommon(setup);
    setup.Option("--formats", options->formats, "WxHxBITS,...", "the formats that get another picture");
    setup.Option("--picture", options->picture, "PICTURE", "the picture");
    setup.Flag("--no-dither", options->noDither, "reduce colours without dithering");
    return [options](Run& run) {
        if (options->formats.empty() || options->picture.empty())
            throw UsageError("--formats and --picture are both needed");
        ChangeIcon(run, *options, [&](CIconGroup& group) {
            FormatSource picture(options->picture);
            for (const auto& format : options->formats) {
                const int index = FindFormat(group, format);
                if (index < 0) NoSuchFormat(group, format);
                auto making = Making(*options, group.m_nInfo != 0);
                making.compress = group.GetIcon(index)->m_bCompressed;
                if (!PutFormat(group, format, picture.For(format), making))
                    throw FileException("the format cannot be made");
            }
        });
    };
}

VerbAction SetUpFormatCompress(VerbSetup& setup) {
    auto options = SetUpCommon(setup);
    setup.Option("--formats", options->formats, "WxHxBITS,...", "the formats; else all from 256x256 on");
    setup.Flag("--off", options->off, "store them uncompressed");
    return [options](Run& run) {
        ChangeIcon(run, *options, [&](CIconGroup& group) { CompressFormats(group, *options); });
    };
}

} // namespace pelorin::cli
