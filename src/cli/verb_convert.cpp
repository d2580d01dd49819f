#include "base/files.h"
#include "base/text.h"
#include "cli/icon_conversion.h"
#include "cli/output.h"
#include "cli/picture_io.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "core/file_kinds.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

struct ConvertOptions {
    std::vector<std::string> files;
    std::vector<IconFormat> formats;
    PictureInput input;
    PictureOutput output;
};

DibBlock ReadSource(Run& run, const ConvertOptions& options, const std::string& file, bool keepIndices,
                    PictureFacts& facts) {
    if (auto picture = PictureOfIcons(file, options.formats)) return picture;
    auto input = options.input;
    input.keepIndices = keepIndices;
    return ReadPictureInput(run, file, input, facts);
}

std::string Convert(Run& run, const ConvertOptions& options, const std::string& file) {
    PictureFacts facts;
    const auto picture = ReadSource(run, options, file, true, facts);
    return WritePictureOutput(run, file, {}, picture, options.output, options.files.size() > 1, facts);
}

// The images of an object go over as they stand, with their layers; the first object gives its description too.
bool AddImagesOf(const std::string& file, bool first, ImageObject& object) {
    const auto view = FileView::Open(file);
    if (!IsVio(view.Data())) return false;
    auto added = ReadObjectInput(view.Data());
    if (first) {
        object = std::move(added);
    } else {
        std::move(added.images.begin(), added.images.end(), std::back_inserter(object.images));
    }
    return true;
}

// All files into one object; what is no object becomes an image of one layer.
void ConvertToObject(Run& run, const ConvertOptions& options) {
    ImageObject object;
    bool first = true;
    const bool whole = options.input.frame == 1 && options.input.layer.empty() && !options.input.composite;
    run.ForEach(options.files, [&](const std::string& file) {
        PictureFacts facts;
        if ((!whole || !AddImagesOf(file, first, object)) &&
            !AddVniPicture(object, ReadSource(run, options, file, false, facts)))
            throw FileException("it cannot be brought to 32 bits");
        first = false;
    });
    if (first) return;
    const auto& path = run.Options().output;
    run.Attempt(path, [&] {
        const auto bytes = WriteImageObject(object);
        if (bytes.empty()) throw FileException("the pictures cannot be packed");
        WriteOutput(run, path, bytes);
        if (run.Options().dryRun) return;
        run.Note(fmt::format("{}  {}, {}", Printable(path), Counted(object.images.size(), "image"),
                             BytesText(bytes.size())));
    });
}

} // namespace

VerbAction SetUpConvert(VerbSetup& setup) {
    auto options = std::make_shared<ConvertOptions>();
    setup.Inputs("FILE", options->files, "pictures and files that carry icons; of two the second is the output");
    setup.MakesFiles();
    setup.UsesCores();
    setup.SecondInputIsOutput(options->files);
    setup.Option(
        "--formats", options->formats, "WxHxBITS,...",
        "formats of the icons that are written, made where they are missing; or the one that becomes a picture");
    options->input.Declare(setup);
    options->output.Declare(setup);
    setup.Footer(
        "Written are, by the name of the output: icons (ico, icns, rsrc, rsc, bin), an icon library (icl), an "
        "archive of\nMacintosh icons (sit), an image object with all the pictures (vio), or pictures. Formats that "
        "the target cannot\nhold are lost with a warning; --no refuses instead.\n\nExamples:\n"
        "  pelorin-cli convert app.ico app.icns\n"
        "  pelorin-cli convert app.icns app.ico --formats 48x48x32,32x32x32,16x16x32");
    return [options](Run& run) {
        if (!options->output.as && GetFileKind(run.Options().output) == kKindImageObject)
            return ConvertToObject(run, *options);
        const auto target = options->output.as ? IconTarget() : IconTargetOf(run.Options().output);
        if (target.IsIcon()) {
            ConvertToIcons(run, options->files, target, options->formats);
            return;
        }
        run.ForEachAtOnce("pictures", options->files,
                          [&](const std::string& file) { return Convert(run, *options, file); });
    };
}

} // namespace pelorin::cli
