#include "base/text.h"
#include "cli/document_output.h"
#include "cli/icon_choice.h"
#include "cli/icon_input.h"
#include "cli/json_writer.h"
#include "cli/output.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "containers/exe_doc.h"
#include "containers/icon_import.h"
#include "containers/program_file.h"
#include "core/services.h"
#include "icon/format_order.h"
#include "icon/icon_sources.h"

#include <fmt/format.h>

#include <numeric>

namespace pelorin::cli {

namespace {

struct ProgramOptions {
    std::string file, icon, source;
    std::vector<std::string> rest;
    std::optional<int> language, id;
    std::string name;
    bool dropSignature = false, restricted = false;
};

using Shared = std::shared_ptr<ProgramOptions>;

void AddLanguage(VerbSetup& setup, const Shared& options) {
    setup.Number("--language", options->language, 0, 0xFFFF, "only icons in this language (1033: English, 0: neutral)");
}

void AddChanges(VerbSetup& setup, const Shared& options) {
    setup.RewritesFiles();
    setup.Flag("--drop-signature", options->dropSignature, "change a signed file, and remove its signature");
    setup.Flag("--restricted", options->restricted,
               "in a file with data behind the program, only replace icons by others of the same formats");
}

std::vector<IconLabel> LabelsOf(const CIconContainerDoc& document) {
    std::vector<IconLabel> labels;
    for (int i = 0; i < document.GetCount(); ++i) {
        const auto& icon = *document.GetIcon(i);
        labels.push_back({icon.m_nResourceId, icon.m_nLanguage, icon.m_strName});
    }
    return labels;
}

std::vector<IconLabel> LabelsOf(const IconResources& found) {
    std::vector<IconLabel> labels;
    for (const auto& icon : found.groups) labels.push_back({icon.id, icon.language, icon.name});
    return labels;
}

std::string FormatsOf(CIconGroup& icon) {
    std::vector<IconFormat> formats;
    for (const auto* image : IconsForDisplay(icon)) {
        formats.push_back({image->m_nWidth, image->m_nHeight, image->ShownBitCount()});
    }
    return FormatsText(formats, icon.m_nInfo != 0);
}

/// A program file that is open for changes, and the way to its new file.
class ProgramInput {
public:
    ProgramInput(Run& run, const ProgramOptions& options, bool mayBeEmpty = false)
        : m_run(run), m_prompt(run), m_file(options.file) {
        m_services.prompt = &m_prompt;
        m_services.progress = run.GetProgress();
        m_prompt.NameOption(str::kAskDropSignature, "--drop-signature");
        document.m_bMayBeEmpty = mayBeEmpty;
        document.m_pixels = Pixels::None;
        document.m_bDropSignature = options.dropSignature;
        if (!document.OnOpenDocument(options.file)) throw FileException(m_prompt.Reason("the file cannot be opened"));
        document.SetPathName(options.file, false);
        if (!options.restricted) document.OpenInFullMode();
    }

    /// True when the file was written; `what` is told then.
    void Save(const std::string& what) {
        const auto path = OutputPath(m_run, m_file, "", ExtensionOf(m_file), false);
        if (!SaveDocument(m_run, document, m_prompt, path, &document.m_strReason)) return;
        const auto extra = document.GetExtraBytes();
        m_run.Note(fmt::format("{}  {}{}", Printable(path), what,
                               extra == 0 ? "" : fmt::format("; {} behind the image kept", BytesText(extra))));
    }
    /// Why icons cannot come or go.
    [[nodiscard]] FileException Refusal() const {
        return FileException(m_prompt.Reason(FormatText(str::kReplaceOnly, m_file)));
    }
    /// Why a cell does not take an icon.
    [[nodiscard]] FileException Refusal(int index, CIconGroup& fresh) const {
        auto& old = *document.GetIcon(index);
        return FileException(fmt::format("{} (icon {} \"{}\": {}; new: {})", Refusal().what(), index + 1,
                                         document.CellName(index), FormatsOf(old), FormatsOf(fresh)));
    }

private:
    Run& m_run;
    RunPrompt m_prompt;
    Services m_services;
    std::string m_file;

public:
    CFileExeDoc document{m_services};
};

/// Throws when icons were left out.
void TellIfIncomplete(const IconResources& found) {
    if (!found.complete) throw FileException("the file's icons multiply beyond all sense, not all of them were read");
}

FileView OpenProgram(const std::string& file) {
    auto view = FileView::Open(file);
    if (FindExecutableSignature(view.Data()).kind != ExecutableKind::None) return view;
    throw FileException("this is not a program file");
}

IconGroups IconsFrom(const std::string& path) {
    try {
        auto icons = LoadIconsOf(path, KindBy::Content);
        if (icons.empty()) throw FileException("it holds no icons");
        return icons;
    } catch (const FileException& error) {
        throw FileException(fmt::format("cannot take icons from \"{}\": {}", path, error.what()));
    }
}

// ---- program list ----

/// In the order in which all lists show formats.
std::vector<IconImageRef> ForDisplay(std::vector<IconImageRef> images) {
    const auto key = [](const IconImageRef& image) {
        return DisplayKey({image.width, image.height, image.ShownBits()});
    };
    std::ranges::stable_sort(images, {}, key);
    return images;
}

void WriteFormats(JsonWriter& json, const IconGroupRef& icon) {
    json.Key("formats");
    json.BeginArray();
    for (const auto& image : ForDisplay(icon.images)) {
        json.BeginObject();
        json.Field("width", image.width);
        json.Field("height", image.height);
        json.Field("bits", image.ShownBits());
        json.Field("colors", image.colors);
        json.Field("compressed", image.compressed);
        json.Field("bytes", static_cast<std::int64_t>(image.StoredSize()));
        json.Field("description", FormatDescription(image.width, image.height, image.ShownBits(), icon.macintosh));
        json.Field("id", image.id);
        json.Field("language", image.language);
        json.EndObject();
    }
    json.EndArray();
}

void WriteProgram(JsonWriter& json, const std::string& file, ByteSpan bytes, const IconResources& found) {
    const auto image = PeImage::Parse(bytes);
    json.BeginObject();
    json.Field("file", file);
    const auto* source = FindIconSource(bytes, GetFileKind(file));
    json.Field("kind", source ? source->name : "exe");
    json.Field("form", image ? "pe" : "ne");
    json.Field("extra_bytes", static_cast<std::int64_t>(image ? FindExtraData(*image).size() : 0));
    json.Field("signed", image && IsSigned(*image));
    json.Key("icons");
    json.BeginArray();
    for (const auto& icon : found.groups) {
        json.BeginObject();
        json.Field("name", icon.name);
        json.Field("id", icon.id);
        json.Field("language", icon.language);
        WriteFormats(json, icon);
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
}

std::string ProgramTable(const IconResources& found) {
    TextTable table("rlrl");
    int number = 0;
    for (const auto& icon : found.groups) {
        std::vector<IconFormat> formats;
        for (const auto& image : ForDisplay(icon.images)) {
            formats.push_back({image.width, image.height, image.ShownBits()});
        }
        auto label = icon.id >= 0 ? fmt::format("#{}", icon.id) : std::string();
        if (!icon.name.empty()) label += (label.empty() ? "" : " ") + Printable(icon.name);
        table.Row({fmt::format("{}", ++number), label, fmt::format("{}", icon.language),
                   FormatsText(formats, icon.macintosh)});
    }
    return table.Text();
}

void ListPrograms(Run& run, const std::vector<std::string>& files) {
    JsonWriter json;
    const bool asJson = run.Options().json;
    if (asJson) json.BeginArray();
    run.ForEach(files, [&](const std::string& file) {
        const auto view = OpenProgram(file);
        const auto found = FindIcons(view.Data());
        if (asJson) {
            WriteProgram(json, file, view.Data(), found);
            run.Print(json.Take());
        } else if (found.groups.empty() && found.complete) {
            run.Print(NoIconsLine(file, FindIconSource(view.Data(), GetFileKind(file))));
        } else {
            if (files.size() > 1) run.Print(Printable(file) + ":\n");
            run.Print(ProgramTable(found));
        }
        TellIfIncomplete(found);
    });
    if (asJson) json.EndArray();
    run.Print(json.Take());
}

// ---- program extract ----

void ExtractFrom(Run& run, const ProgramOptions& options) {
    const auto view = OpenProgram(options.file);
    const auto found = FindIcons(view.Data());
    const auto labels = LabelsOf(found);
    auto wanted = options.rest;
    if (wanted.empty() && !labels.empty()) wanted.push_back(fmt::format("1-{}", labels.size()));
    if (wanted.empty()) throw FileException("the file has no icons");
    const auto chosen = ChooseIcons(labels, wanted, options.language);
    for (const int index : chosen) {
        const auto path = OutputPath(run, options.file, fmt::format("_{}", index + 1), "ico", chosen.size() > 1);
        WriteOutput(run, path, CopyAsIco(found.groups[static_cast<std::size_t>(index)]));
        if (!run.Options().dryRun && path != "-") run.Note(Printable(path));
    }
    TellIfIncomplete(found);
}

// ---- changes ----

void ReplaceIn(Run& run, const ProgramOptions& options) {
    ProgramInput input(run, options);
    const auto icons = IconsFrom(options.source);
    const auto chosen = ChooseIcons(LabelsOf(input.document), {options.icon}, options.language);
    std::string what;
    for (const int index : chosen) {
        const int before = input.document.GetIcon(index)->GetCount();
        if (!input.document.ReplaceIcon(index, *icons.front())) throw input.Refusal(index, *icons.front());
        if (!what.empty()) what += ", ";
        what += fmt::format("icon {} \"{}\": {} in, {} out", index + 1, input.document.CellName(index),
                            Counted(icons.front()->GetCount(), "format"), before);
    }
    input.Save(what);
}

void AddTo(Run& run, const ProgramOptions& options) {
    if (options.id && !options.name.empty()) throw UsageError("--id and --name exclude each other");
    ProgramInput input(run, options, true);
    auto& document = input.document;
    int added = 0;
    for (const auto& path : options.rest) {
        for (const auto& icon : IconsFrom(path)) {
            const bool first = added++ == 0;
            if (!first && !options.name.empty()) throw UsageError("--name is for one icon");
            const int id = options.id ? *options.id + added - 1 : document.FreeGroupId();
            if (id > 0xFFFF) throw FileException("no number is left for the icon");
            const auto key = GroupKey(options.name.empty() ? id : -1, Utf8ToUtf16(options.name));
            if (document.FindGroup(key) >= 0) throw FileException("there is an icon of that number or name already");
            if (!document.AddIcon(*icon, key, options.language.value_or(0))) throw input.Refusal();
        }
    }
    input.Save(Counted(added, "icon") + " added");
}

void RemoveFrom(Run& run, const ProgramOptions& options) {
    ProgramInput input(run, options);
    const auto chosen = ChooseIcons(LabelsOf(input.document), options.rest, options.language);
    if (!input.document.RemoveIcons(chosen)) throw input.Refusal();
    input.Save(fmt::format("{} removed, {} left", Counted(chosen.size(), "icon"), input.document.GetCount()));
}

/// Icons of the same number or name and language are replaced, all others are added.
void CopyIcons(Run& run, const ProgramOptions& options) {
    ProgramInput input(run, options, true);
    auto& document = input.document;
    FileView view;
    IconResources found;
    run.Attempt(options.source, [&] {
        view = OpenProgram(options.source);
        found = FindIcons(view.Data());
        if (found.groups.empty()) throw FileException("the file has no icons");
    });
    if (found.groups.empty()) return;
    int replaced = 0, added = 0;
    for (const auto& ref : found.groups) {
        const auto icon = LoadIcon(ref);
        if (!icon) continue;
        const auto key = GroupKey(ref.id, ref.resourceName);
        const int at = document.FindGroup(key, ref.language);
        const bool there = at >= 0;
        const bool done = there ? document.ReplaceIcon(at, *icon) : document.AddIcon(*icon, key, ref.language);
        if (!done) throw there ? input.Refusal(at, *icon) : input.Refusal();
        ++(there ? replaced : added);
    }
    input.Save(fmt::format("{} replaced, {} added", Counted(replaced, "icon"), added));
}

/// The verbs work on one program file each.
VerbAction OnFile(const Shared& options, void (*work)(Run& run, const ProgramOptions& options)) {
    return [options, work](Run& run) { run.Attempt(options->file, [&] { work(run, *options); }); };
}

} // namespace

VerbAction SetUpProgramList(VerbSetup& setup) {
    auto files = std::make_shared<std::vector<std::string>>();
    setup.Inputs("FILE", *files, "program files or libraries");
    setup.Reports();
    setup.Footer("Columns: position, number and name, language, formats.");
    return [files](Run& run) { ListPrograms(run, *files); };
}

VerbAction SetUpProgramExtract(VerbSetup& setup) {
    auto options = std::make_shared<ProgramOptions>();
    setup.Input("FILE", options->file, "program file");
    setup.Inputs("ICON", options->rest, kIconChoiceHelp, false);
    setup.MakesFiles();
    AddLanguage(setup, options);
    return OnFile(options, ExtractFrom);
}

VerbAction SetUpProgramReplace(VerbSetup& setup) {
    auto options = std::make_shared<ProgramOptions>();
    setup.Input("FILE", options->file, "program file");
    setup.Input("ICON", options->icon, "the icon to replace: a position from 1, #ID, or a name");
    setup.Input("SOURCE", options->source, "a file whose first icon takes its place");
    AddChanges(setup, options);
    AddLanguage(setup, options);
    return OnFile(options, ReplaceIn);
}

VerbAction SetUpProgramAdd(VerbSetup& setup) {
    auto options = std::make_shared<ProgramOptions>();
    setup.Input("FILE", options->file, "program file");
    setup.Inputs("SOURCE", options->rest, "files whose icons are added");
    AddChanges(setup, options);
    setup.Number("--id", options->id, 1, 0xFFFF, "number of the first icon (default: the smallest that is free)");
    setup.Option("--name", options->name, "NAME", "a name in place of a number");
    setup.Number("--language", options->language, 0, 0xFFFF, "language of the new icons (default: 0, neutral)");
    return OnFile(options, AddTo);
}

VerbAction SetUpProgramRemove(VerbSetup& setup) {
    auto options = std::make_shared<ProgramOptions>();
    setup.Input("FILE", options->file, "program file");
    setup.Inputs("ICON", options->rest, kIconChoiceHelp);
    AddChanges(setup, options);
    AddLanguage(setup, options);
    return OnFile(options, RemoveFrom);
}

VerbAction SetUpProgramCopyIcons(VerbSetup& setup) {
    auto options = std::make_shared<ProgramOptions>();
    setup.Input("FROM", options->source, "program file whose icons are copied");
    setup.Input("TO", options->file, "program file that they go into");
    AddChanges(setup, options);
    return OnFile(options, CopyIcons);
}

} // namespace pelorin::cli
