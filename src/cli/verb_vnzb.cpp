#include "base/text.h"
#include "cli/output.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "formats/program_resources.h"
#include "formats/vnzb.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

constexpr std::string_view kExtension = "vnzb";

struct VnzbOptions {
    std::vector<std::string> files;
    std::string resource;
};

void Write(Run& run, const std::string& path, ByteSpan bytes) {
    WriteOutput(run, path, bytes);
    if (run.Options().dryRun || path == "-") return;
    run.Note(fmt::format("{}  {}", Printable(path), BytesText(bytes.size())));
}

// The packed file keeps the whole name of the other: "a.bin.vnzb".
void Pack(Run& run, const std::string& file, bool several) {
    const auto view = FileView::Open(file);
    const auto block = CompressVnzb(view.Data());
    if (block.empty()) throw FileException("it is too large to be packed");
    const auto extension = ExtensionOf(file);
    const auto suffix = extension.empty() ? std::string() : "." + std::string(extension);
    Write(run, OutputPath(run, file, suffix, kExtension, several), block);
}

void Unpack(Run& run, const std::string& file, bool several) {
    const auto view = FileView::Open(file);
    // The person asks for the whole content, however large.
    const auto content = UncompressVnzb(view.Data(), UINT32_MAX);
    if (!content) throw FileException("it is no VNZB block, or it is damaged");
    const auto inner = EqualsNoCase(ExtensionOf(file), kExtension) ? StemOf(file) : FileNameOf(file);
    const auto extension = EqualsNoCase(ExtensionOf(file), kExtension) ? ExtensionOf(inner) : std::string_view();
    Write(run, OutputPath(run, inner, "", extension.empty() ? "bin" : extension, several), *content);
}

void UnpackResource(Run& run, const std::string& name) {
    run.Attempt(name, [&] {
        const auto content = ExtractVnzbResource(name);
        if (!content) throw FileException("the program has no such resource");
        Write(run, OutputPath(run, name, "", "bin", false), *content);
    });
}

} // namespace

VerbAction SetUpVnzbPack(VerbSetup& setup) {
    auto options = std::make_shared<VnzbOptions>();
    setup.Inputs("FILE", options->files, "files to pack, each into a block of its own");
    setup.MakesFiles();
    return [options](Run& run) {
        const bool several = options->files.size() > 1;
        run.ForEach(options->files, [&](const std::string& file) { Pack(run, file, several); });
    };
}

VerbAction SetUpVnzbUnpack(VerbSetup& setup) {
    auto options = std::make_shared<VnzbOptions>();
    setup.Inputs("FILE", options->files, "files that are VNZB blocks", false);
    setup.Option("--resource", options->resource, "NAME", "a block that is part of the program");
    setup.MakesFiles();
    return [options](Run& run) {
        if (options->files.empty() == options->resource.empty()) {
            throw UsageError("either files or --resource says what to unpack");
        }
        if (!options->resource.empty()) UnpackResource(run, options->resource);
        const bool several = options->files.size() > 1;
        run.ForEach(options->files, [&](const std::string& file) { Unpack(run, file, several); });
    };
}

} // namespace pelorin::cli
