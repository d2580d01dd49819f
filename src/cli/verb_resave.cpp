#include "cli/icon_input.h"
#include "cli/output.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "icon/ico_file.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

struct ResaveOptions {
    std::vector<std::string> files;
    bool explorerOrder = false;
};

std::string Resave(Run& run, const std::string& input, const ResaveOptions& options) {
    CIconGroup group;
    if (!ReadIcoGroup(FileView::Open(input).Data(), group)) {
        throw FileException("this is not a Windows icon or cursor file, or it is damaged");
    }
    group.Sort(options.explorerOrder);
    const auto file = BuildIcoFile(group);
    if (file.empty()) throw FileException("the icon is too large for an icon file");
    const auto path = OutputPath(run, input, "", "ico", options.files.size() > 1);
    WriteOutput(run, path, file);
    if (!run.NotesOf(path)) return {};
    return fmt::format("{}  {}, {}\n", Printable(path), group.GetSizeText(), BytesText(file.size()));
}

} // namespace

VerbAction SetUpResave(VerbSetup& setup) {
    auto options = std::make_shared<ResaveOptions>();
    setup.Inputs("ICON", options->files, "icon files; cursors become icons");
    setup.RewritesFiles();
    setup.UsesCores();
    setup.Flag("--explorer-order", options->explorerOrder, "formats in the order that old file managers want");
    return [options](Run& run) {
        run.ForEachAtOnce("icons", options->files,
                          [&](const std::string& file) { return Resave(run, file, *options); });
    };
}

} // namespace pelorin::cli
