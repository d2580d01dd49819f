#include "base/files.h"
#include "cli/picture_chain.h"
#include "cli/picture_io.h"
#include "cli/verb.h"
#include "pixel/depth.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

struct ImageOptions {
    std::vector<std::string> files;
    std::vector<OrderedOption> operations;
    PictureInput input;
    PictureOutput output;
};

// As the operations want it: a transparent index becomes alpha. A picture that is transparent everywhere stays so: what
// a format's unused fourth byte means, its reader has told already.
DibBlock ReadForChain(Run& run, const std::string& file, const PictureInput& input, PictureFacts& facts) {
    auto block = ReadPictureInput(run, file, input, facts);
    if (DIBBitCount(block) == 8 && facts.transparentIndex >= 0) block = KeyTo32(block, facts.transparentIndex);
    // The palette is not the file's any more.
    facts.transparentIndex = -1;
    facts.paletteBits = 0;
    return block;
}

std::string Change(Run& run, const std::string& file, const ImageOptions& options,
                   const std::vector<NamedStep>& chain) {
    PictureFacts facts;
    auto picture = ReadForChain(run, file, options.input, facts);
    for (const auto& [text, step] : chain) {
        picture = step(picture);
        if (!picture) throw FileException(fmt::format("{} cannot be done to this picture", text));
    }
    return WritePictureOutput(run, file, {}, picture, options.output, options.files.size() > 1, facts);
}

} // namespace

VerbAction SetUpImage(VerbSetup& setup) {
    auto options = std::make_shared<ImageOptions>();
    setup.Inputs("PICTURE", options->files, "picture files; of two names without -o the second is the output");
    setup.MakesFiles();
    setup.UsesCores();
    setup.SecondInputIsOutput(options->files);
    options->input.Declare(setup);
    options->output.Declare(setup);
    AddPictureOperations(setup, options->operations);
    setup.Footer("The operations are carried out in the order given, each on what the one before it made:\n"
                 "  pelorin-cli image photo.jpg icon.png --fit 48x48 --square --shadow\n"
                 "  pelorin-cli image *.png -o small/ --resize 32 --filter sharpen --reduce 16 --dither");
    return [options](Run& run) {
        const auto chain = MakePictureChain(options->operations);
        run.ForEachAtOnce("pictures", options->files,
                          [&](const std::string& file) { return Change(run, file, *options, chain); });
    };
}

} // namespace pelorin::cli
