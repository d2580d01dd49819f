#include "cli/icon_conversion.h"

#include "base/text.h"
#include "cli/document_output.h"
#include "cli/icon_input.h"
#include "cli/output.h"
#include "cli/picture_io.h"
#include "cli/text_table.h"
#include "containers/icl_doc.h"
#include "containers/icon_conversion.h"
#include "containers/icon_import.h"
#include "containers/stuffit.h"
#include "core/services.h"
#include "core/settings.h"
#include "core/temp_files.h"
#include "formats/load_image.h"
#include "icon/icon_doc.h"
#include "icon/source_file.h"
#include "platform/doors.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

IconConversion ConversionFor(const IconFileForm* form, const std::vector<IconFormat>& formats, bool macintosh) {
    IconConversion conversion;
    conversion.macintosh = macintosh;
    conversion.allows = form ? form->allows : nullptr;
    conversion.formats = formats;
    conversion.making.set.dither = g_bDitheringWhileCopyNewformatIcon;
    conversion.making.set.macPalette = macintosh;
    conversion.making.compress = g_bCompressVista256x256NewIcon;
    conversion.making.explorerOrder = g_bWinExplorerCompatibleOrder;
    return conversion;
}

CIconGroup IconFromPicture(const std::string& file, const std::vector<IconFormat>& formats, bool macintosh) {
    auto making = StoredFromImageOptions(macintosh);
    if (!formats.empty()) making.formats = formats;
    const SourceFile source(file);
    RequireRenderer(source.Data());
    const auto sourceFor = [&](Size size) {
        auto picture = PrepareIconSource(source.Read(size), making.key);
        if (!picture) throw FileException("this is neither a file that carries icons nor a picture that can be read");
        return picture;
    };
    auto made = CreateFormats(source, sourceFor, {}, making);
    auto icon = GroupOf(made, g_bWinExplorerCompatibleOrder);
    icon.m_nInfo = macintosh ? 1 : 0;
    return icon;
}

// Formats that the target cannot hold: a warning, or, where --no was given, an error.
void TellLost(Run& run, const std::string& file, const std::vector<IconFormat>& lost, bool macintosh) {
    if (lost.empty()) return;
    std::string names;
    for (const auto& f : lost)
        names += (names.empty() ? "" : ", ") + FormatDescription(f.width, f.height, f.bits, macintosh);
    if (run.Options().answer == false)
        throw FileException(fmt::format("these formats would be lost: {} (--yes gives them up)", names));
    run.Warn(file, fmt::format("these formats are lost: {}", names));
}

} // namespace

CIconGroup ConvertToForm(Run& run, const std::string& file, const CIconGroup& source, const IconFileForm& form,
                         const std::vector<IconFormat>& formats) {
    std::vector<IconFormat> lost;
    auto icon = ConvertIcon(source, ConversionFor(&form, formats, form.macintosh), lost);
    TellLost(run, file, lost, source.m_nInfo != 0);
    if (icon.GetCount() == 0) {
        throw FileException(
            "none of its formats fits; `convert` with --formats makes others, as in --formats 32x32x32");
    }
    return icon;
}

Bytes BuildIconFile(const CIconGroup& icon, const IconFileForm& form, std::string_view path) {
    auto bytes = form.write(icon, path);
    if (bytes.empty()) throw FileException("the icon cannot be kept in a file of this kind");
    return bytes;
}

namespace {

class ToForm {
public:
    ToForm(Run& run, const std::vector<std::string>& files, const IconFileForm& form,
           const std::vector<IconFormat>& formats)
        : m_run(run), m_form(form), m_formats(formats), m_severalFiles(files.size() > 1) {}

    void Convert(const std::string& file) {
        const auto view = FileView::Open(file);
        if (!FindIconSource(view.Data(), file == "-" ? kKindNone : GetFileKind(file))) {
            Write(file, IconFromPicture(file, m_formats, m_form.macintosh), "", m_severalFiles);
            return;
        }
        VisitIcons(OpenIconInput(file), [&](CIconGroup& group, int number, bool only) {
            Write(file, group, only ? "" : fmt::format("_{}", number), m_severalFiles || !only);
            return true;
        });
    }

private:
    void Write(const std::string& file, const CIconGroup& source, const std::string& suffix, bool several) {
        const auto icon = ConvertToForm(m_run, file, source, m_form, m_formats);
        // Several icons go into a folder.
        const auto path = OutputPath(m_run, file, suffix, m_form.extension, several);
        const auto bytes = BuildIconFile(icon, m_form, path);
        WriteOutput(m_run, path, bytes);
        if (m_run.Options().dryRun || path == "-") return;
        m_run.Note(fmt::format("{}  {}, {}", Printable(path), icon.GetSizeText(), BytesText(bytes.size())));
    }

    Run& m_run;
    const IconFileForm& m_form;
    const std::vector<IconFormat>& m_formats;
    bool m_severalFiles;
};

IconGroups IconsForLibrary(Run& run, const std::string& file, const std::vector<IconFormat>& formats) {
    auto icons = ImportIcons(file, KindBy::Content);
    if (icons.empty()) {
        icons.push_back(std::make_unique<CIconGroup>(IconFromPicture(file, formats, false)));
        icons.back()->m_strName = StemOf(file);
    }
    if (formats.empty()) return icons;
    for (auto& icon : icons) {
        std::vector<IconFormat> lost;
        auto changed = ConvertIcon(*icon, ConversionFor(nullptr, formats, icon->m_nInfo != 0), lost);
        TellLost(run, file, lost, icon->m_nInfo != 0);
        changed.m_strName = icon->m_strName;
        *icon = std::move(changed);
    }
    return icons;
}

void ToLibrary(Run& run, const std::vector<std::string>& files, const std::vector<IconFormat>& formats) {
    RunPrompt prompt(run);
    Services services;
    services.prompt = &prompt;
    services.progress = run.GetProgress();
    if (g_szTempFolder.empty()) g_szTempFolder = FindTempFolder(*MakeSystemDoors().folders);
    CFileIclDoc library(services);
    run.ForEach(files, [&](const std::string& file) { library.Insert(-1, IconsForLibrary(run, file, formats)); });
    if (library.GetCount() == 0) return;
    const auto& path = run.Options().output;
    run.Attempt(path, [&] {
        if (!SaveDocument(run, library, prompt, path, &library.m_strReason)) return;
        run.Note(
            fmt::format("{}  {}, {}", Printable(path), Counted(library.GetCount(), "icon"), BytesText(FileSize(path))));
    });
}

void ToArchive(Run& run, const std::vector<std::string>& files) {
    std::vector<StuffItEntry> entries;
    run.ForEach(files, [&](const std::string& file) {
        auto entry = StuffItEntryOf(file, FileView::Open(file).Data());
        if (!entry) throw FileException("only Macintosh icon files go into an archive; convert it to .rsrc first");
        entries.push_back(std::move(*entry));
    });
    if (entries.empty()) return;
    const auto& path = run.Options().output;
    run.Attempt(path, [&] {
        const auto bytes = BuildStuffIt(entries);
        if (bytes.empty()) throw FileException("the files hold nothing for an archive");
        WriteOutput(run, path, bytes);
        if (!run.Options().dryRun)
            run.Note(
                fmt::format("{}  {}, {}", Printable(path), Counted(entries.size(), "file"), BytesText(bytes.size())));
    });
}

} // namespace

IconTarget IconTargetOf(const std::string& output) {
    const auto kind = GetFileKind(output);
    IconTarget target;
    target.form = FindIconFileForm(kind);
    target.isLibrary = kind == kKindIconLibrary;
    target.isArchive = EqualsNoCase(ExtensionOf(output), "sit");
    return target;
}

void ConvertToIcons(Run& run, const std::vector<std::string>& files, const IconTarget& target,
                    const std::vector<IconFormat>& formats) {
    if (target.isLibrary) {
        ToLibrary(run, files, formats);
    } else if (target.isArchive) {
        ToArchive(run, files);
    } else {
        ToForm conversion(run, files, *target.form, formats);
        run.ForEach(files, [&](const std::string& file) { conversion.Convert(file); });
    }
}

DibBlock PictureOfIcons(const std::string& file, const std::vector<IconFormat>& formats) {
    const auto view = FileView::Open(file);
    const auto* source = FindIconSource(view.Data(), file == "-" ? kKindNone : GetFileKind(file));
    if (!source || (formats.empty() && PictureFormatOfKind(source->kind))) return {};
    DibBlock picture;
    VisitIcons(OpenIconInput(file), [&](CIconGroup& group, int, bool) {
        const CVnIcon* best = nullptr;
        for (const auto& icon : group.m_arrIcons) {
            const IconFormat format{icon->m_nWidth, icon->m_nHeight, icon->ShownBitCount()};
            if (!formats.empty() && std::ranges::count(formats, format) == 0) continue;
            const bool better = !best || icon->m_nWidth > best->m_nWidth ||
                                (icon->m_nWidth == best->m_nWidth && format.bits > best->ShownBitCount());
            if (better) best = icon.get();
        }
        if (best) picture = IconBlockPicture(best->m_hImage);
        return false;
    });
    if (!picture) throw FileException("its first icon has no such format");
    return picture;
}

} // namespace pelorin::cli
