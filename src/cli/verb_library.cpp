#include "base/text.h"
#include "cli/document_output.h"
#include "cli/icon_choice.h"
#include "cli/output.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "containers/icon_container_view.h"
#include "containers/icon_import.h"
#include "containers/program_file.h"
#include "core/file_kinds.h"
#include "core/services.h"
#include "core/temp_files.h"
#include "icon/icon_format.h"
#include "platform/doors.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

struct LibraryOptions {
    std::string file;
    std::vector<std::string> rest;
    std::optional<LibraryForm> form;
    std::string name;
    int first = 1, digits = 0;
    std::optional<int> position;
};

using Shared = std::shared_ptr<LibraryOptions>;

void AddForm(VerbSetup& setup, const Shared& options) {
    setup.Choice<std::optional<LibraryForm>>("--form", options->form,
                                             {{"pe", LibraryForm::Pe}, {"ne", LibraryForm::Ne}},
                                             "32-bit or 16-bit form (default: that of the file, pe for a new one)");
}

std::vector<IconLabel> LabelsOf(const CFileIclDoc& document) {
    std::vector<IconLabel> labels;
    for (int i = 0; i < document.GetCount(); ++i) labels.push_back({i + 1, 0, document.GetIcon(i)->m_strName});
    return labels;
}

/// A library that is open for changes, and the way to its new file.
class LibraryInput {
public:
    LibraryInput(Run& run, const LibraryOptions& options, bool isNew = false)
        : m_run(run), m_prompt(run), m_options(options) {
        m_services.prompt = &m_prompt;
        m_services.progress = run.GetProgress();
        if (g_szTempFolder.empty()) g_szTempFolder = FindTempFolder(*MakeSystemDoors().folders);
        if (!isNew) {
            if (!document.OnOpenDocument(options.file)) throw Failure("the file cannot be opened");
            document.SetPathName(options.file, false);
            const auto file = FileView::Open(options.file);
            if (FindExecutableSignature(file.Data()).kind == ExecutableKind::None) {
                throw FileException("this is not an icon library");
            }
            const auto found = FindLibraryIcons(file.Data());
            m_isProgram = GetFileKind(options.file) != kKindIconLibrary && !found.hasLibraryNames;
            // What is not read now would be gone with the next save.
            const bool lost = found.groups.empty() && !found.idTable.empty();
            if (lost || !found.complete) throw FileException("the library is damaged, its icons cannot be read");
        }
        if (options.form) document.m_form = *options.form;
    }

    [[nodiscard]] FileException Failure(std::string_view otherwise) const {
        return FileException(m_prompt.Reason(otherwise));
    }

    void Choose(const std::vector<std::string>& texts) { view.Select(ChooseIcons(LabelsOf(document), texts)); }

    /// Files without icons are told; true when any icon came in.
    bool Import(int position) {
        int imported = 0;
        for (const auto& path : m_options.rest) {
            m_run.Attempt(path, [&] {
                auto icons = ImportIcons(path, KindBy::Content);
                if (icons.empty()) throw FileException("the file has no icons or is damaged");
                const int count = static_cast<int>(icons.size());
                document.Insert(position < 0 ? -1 : position + imported, std::move(icons));
                imported += count;
            });
        }
        return imported > 0;
    }

    /// To the file that the options say.
    void Save() { SaveTo(OutputPath(m_run, m_options.file, "", ExtensionOf(m_options.file), false)); }

    void SaveTo(const std::string& path) {
        if (m_isProgram && SameFile(path, m_options.file)) {
            throw FileException("this is a program, of which a library would keep the icons alone: "
                                "write to another file, or change its icons with the program verbs");
        }
        if (!SaveDocument(m_run, document, m_prompt, path, &document.m_strReason)) return;
        m_run.Note(fmt::format("{}  {}, {}", Printable(path), Counted(document.GetCount(), "icon"),
                               BytesText(FileSize(path))));
    }

private:
    Run& m_run;
    RunPrompt m_prompt;
    const LibraryOptions& m_options;
    Services m_services;
    bool m_isProgram = false;

public:
    CFileIclDoc document{m_services};
    CFileIclView view{document};
};

void Create(Run& run, const LibraryOptions& options) {
    if (!run.Options().output.empty()) throw UsageError("the library to make is the first argument, without --output");
    LibraryInput library(run, options, true);
    if (!library.Import(-1) && !options.rest.empty()) throw FileException("none of the files has icons");
    library.SaveTo(options.file);
}

void Add(Run& run, const LibraryOptions& options) {
    LibraryInput library(run, options);
    if (!library.Import(options.position ? *options.position - 1 : -1)) throw FileException("there is nothing to add");
    library.Save();
}

void Remove(Run& run, const LibraryOptions& options) {
    LibraryInput library(run, options);
    library.Choose(options.rest);
    library.view.Delete();
    library.Save();
}

void Rename(Run& run, const LibraryOptions& options) {
    LibraryInput library(run, options);
    library.Choose(options.rest);
    library.view.Rename(options.name, options.first, options.digits);
    library.Save();
}

void Sort(Run& run, const LibraryOptions& options) {
    LibraryInput library(run, options);
    if (options.rest.empty()) {
        library.view.SelectAll();
        if (library.view.GetSelection().size() > 1) library.view.SortByName();
    } else {
        library.Choose(options.rest);
        // A single one may stand for all: the view asks.
        if (!library.view.SortByName() && !run.Options().answer) throw library.Failure("nothing was sorted");
    }
    library.Save();
}

void Extract(Run& run, const LibraryOptions& options) {
    LibraryInput library(run, options);
    if (options.rest.empty()) {
        library.view.SelectAll();
    } else {
        library.Choose(options.rest);
    }
    const auto& selection = library.view.GetSelection();
    if (selection.empty()) throw FileException("the library has no icons");
    const auto view = FileView::Open(options.file);
    const auto found = FindIcons(view.Data());
    for (const int index : selection) {
        const auto name = std::string(ClipUtf8(CleanFileName(library.document.CellName(index)), 200));
        // The derived name is that of the icon, so an input of that name stands in.
        const auto path = OutputPath(run, name + ".icl", "", "ico", selection.size() > 1);
        WriteOutput(run, path, CopyAsIco(found.groups.at(static_cast<std::size_t>(index))));
        if (!run.Options().dryRun && path != "-") run.Note(Printable(path));
    }
}

VerbAction OnLibrary(const Shared& options, void (*work)(Run& run, const LibraryOptions& options)) {
    return [options, work](Run& run) { run.Attempt(options->file, [&] { work(run, *options); }); };
}

VerbAction SetUpChange(VerbSetup& setup, const Shared& options, void (*work)(Run& run, const LibraryOptions& options)) {
    setup.RewritesFiles();
    AddForm(setup, options);
    return OnLibrary(options, work);
}

} // namespace

VerbAction SetUpList(VerbSetup& setup);

VerbAction SetUpLibraryCreate(VerbSetup& setup) {
    auto options = std::make_shared<LibraryOptions>();
    setup.Input("LIBRARY", options->file, "the library to make");
    setup.Inputs("FILE", options->rest, "files whose icons go into it, in this order", false);
    setup.MakesFiles();
    AddForm(setup, options);
    return OnLibrary(options, Create);
}

VerbAction SetUpLibraryList(VerbSetup& setup) {
    return SetUpList(setup);
}

VerbAction SetUpLibraryAdd(VerbSetup& setup) {
    auto options = std::make_shared<LibraryOptions>();
    setup.Input("LIBRARY", options->file, "icon library");
    setup.Inputs("FILE", options->rest, "files whose icons are added");
    setup.Number("--at", options->position, 1, 1 << 30, "position of the first new icon (default: behind the last)");
    return SetUpChange(setup, options, Add);
}

VerbAction SetUpLibraryRemove(VerbSetup& setup) {
    auto options = std::make_shared<LibraryOptions>();
    setup.Input("LIBRARY", options->file, "icon library");
    setup.Inputs("ICON", options->rest, kIconChoiceHelp);
    return SetUpChange(setup, options, Remove);
}

VerbAction SetUpLibraryRename(VerbSetup& setup) {
    auto options = std::make_shared<LibraryOptions>();
    setup.Input("LIBRARY", options->file, "icon library");
    setup.Input("NAME", options->name, "the new name; several icons get it with numbers behind");
    setup.Inputs("ICON", options->rest, kIconChoiceHelp);
    setup.Number("--first", options->first, 0, 1 << 30, "first number (1)");
    setup.Number("--digits", options->digits, 0, 9, "digits that numbers are filled up to (0: none)");
    return SetUpChange(setup, options, Rename);
}

VerbAction SetUpLibrarySort(VerbSetup& setup) {
    auto options = std::make_shared<LibraryOptions>();
    setup.Input("LIBRARY", options->file, "icon library");
    setup.Inputs("ICON", options->rest, "only these icons", false);
    return SetUpChange(setup, options, Sort);
}

VerbAction SetUpLibraryExtract(VerbSetup& setup) {
    auto options = std::make_shared<LibraryOptions>();
    setup.Input("LIBRARY", options->file, "icon library");
    setup.Inputs("ICON", options->rest, kIconChoiceHelp, false);
    setup.MakesFiles();
    return OnLibrary(options, Extract);
}

} // namespace pelorin::cli
