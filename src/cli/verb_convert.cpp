#include "base/files.h"
#include "cli/picture_io.h"
#include "cli/verb.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

struct ConvertOptions {
    std::vector<std::string> files;
    PictureInput input;
    PictureOutput output;
};

void Convert(Run& run, const ConvertOptions& options, const std::string& file) {
    PictureFacts facts;
    const auto picture = ReadPictureInput(run, file, options.input, facts);
    const auto path = WritePictureOutput(run, file, {}, picture, options.output, options.files.size() > 1, facts);
    if (run.Options().dryRun || path == "-") return;
    run.Note(fmt::format("{}  {}x{}, {} bits", Printable(path), DIBWidth(picture), DIBHeight(picture),
                         DIBBitCount(picture)));
}

} // namespace

VerbAction SetUpConvert(VerbSetup& setup) {
    auto options = std::make_shared<ConvertOptions>();
    setup.Inputs("FILE", options->files, "pictures of any format that is read");
    setup.MakesFiles();
    options->input.keepIndices = true;
    options->input.Declare(setup);
    options->output.Declare(setup);
    return [options](Run& run) {
        run.ForEach(options->files, [&](const std::string& file) { Convert(run, *options, file); });
    };
}

} // namespace pelorin::cli
