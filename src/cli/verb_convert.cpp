#include "base/files.h"
#include "cli/icon_conversion.h"
#include "cli/picture_io.h"
#include "cli/verb.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

struct ConvertOptions {
    std::vector<std::string> files;
    std::vector<IconFormat> formats;
    PictureInput input;
    PictureOutput output;
};

void Convert(Run& run, const ConvertOptions& options, const std::string& file) {
    PictureFacts facts;
    auto picture = PictureOfIcons(file, options.formats);
    if (!picture) picture = ReadPictureInput(run, file, options.input, facts);
    const auto path = WritePictureOutput(run, file, {}, picture, options.output, options.files.size() > 1, facts);
    if (run.Options().dryRun || path == "-") return;
    run.Note(fmt::format("{}  {}x{}, {} bits", Printable(path), DIBWidth(picture), DIBHeight(picture),
                         DIBBitCount(picture)));
}

} // namespace

VerbAction SetUpConvert(VerbSetup& setup) {
    auto options = std::make_shared<ConvertOptions>();
    setup.Inputs("FILE", options->files, "pictures and files that carry icons; of two the second is the output");
    setup.MakesFiles();
    setup.SecondInputIsOutput(options->files);
    setup.Option(
        "--formats", options->formats, "WxHxBITS,...",
        "formats of the icons that are written, made where they are missing; or the one that becomes a picture");
    options->input.keepIndices = true;
    options->input.Declare(setup);
    options->output.Declare(setup);
    setup.Footer("Written are, by the name of the output: icons (ico, icns, rsrc, rsc, bin), an icon library (icl), an "
                 "archive of\nMacintosh icons (sit), or pictures. Formats that the target cannot hold are lost with a "
                 "warning; --no refuses instead.\n\nExamples:\n"
                 "  pelorin-cli convert app.ico app.icns\n"
                 "  pelorin-cli convert app.icns app.ico --formats 48x48x32,32x32x32,16x16x32");
    return [options](Run& run) {
        const auto target = options->output.as ? IconTarget() : IconTargetOf(run.Options().output);
        if (target.IsIcon()) {
            ConvertToIcons(run, options->files, target, options->formats);
            return;
        }
        run.ForEach(options->files, [&](const std::string& file) { Convert(run, *options, file); });
    };
}

} // namespace pelorin::cli
