// Pictures in and out of files, with the options that every verb on pictures shares.
#pragma once

#include "cli/run.h"
#include "cli/syntax.h"
#include "formats/picture_reader.h"
#include "formats/save_image.h"
#include "formats/vio.h"
#include "pixel/color.h"

namespace pelorin::cli {

/// Which picture of a file.
struct PictureInput {
    int frame = 1;
    std::string layer; ///< number from 1, or name; empty: the composite
    bool composite = false;
    Size box{};               ///< what a drawing is fitted into; 0 x 0: its own size
    bool keepIndices = false; ///< as in `PictureRequest`

    void Declare(VerbSetup& setup);
};

/// The picture of the file, with what the reader told. Throws `FileException` with the reason when there is none.
[[nodiscard]] DibBlock ReadPictureInput(Run& run, const std::string& file, const PictureInput& input,
                                        PictureFacts& facts);
/// Throws what to install when the file is a drawing and nothing here draws one.
void RequireRenderer(ByteSpan file);
/// The image object of a file of that kind; throws when it is damaged.
[[nodiscard]] ImageObject ReadObjectInput(ByteSpan file);
/// Only what the reader tells; a small picture is decoded where that is quicker.
[[nodiscard]] PictureFacts ReadPictureFacts(const std::string& file);

/// The formats that pictures are written in, as values of an option.
[[nodiscard]] std::vector<ChoiceRow<std::optional<int>>> PictureFormatChoices();
/// The picture at a depth that the format takes, transparency composed on `background` where it has none; empty when
/// the picture is at such a depth already.
[[nodiscard]] DibBlock AtDepthFor(const PictureSaver& saver, const DibBlock& picture, ColorRef background);

/// How a picture is written; what is not given comes from the settings.
struct PictureOutput {
    std::optional<int> as; ///< file kind
    std::optional<int> quality, lossy;
    std::optional<int> gifColors, gifThreshold;
    std::optional<PaletteKind> gifPalette;
    std::optional<Color> gifMatte, background;
    bool gifNoDither = false, gifOpaque = false, jp2Gray = false;

    /// True when an option asks for another palette of a GIF than the one that it comes with.
    [[nodiscard]] bool ChangesGifPalette() const {
        return gifColors || gifPalette || gifThreshold || gifMatte || gifNoDither || gifOpaque;
    }
    void Declare(VerbSetup& setup);
    /// The file kind to write: `--as`, else that of the output's name, else that of `input` when it can be written,
    /// else PNG. Throws `UsageError` for a name of a kind that is not written.
    [[nodiscard]] int KindFor(const Run& run, const std::string& input, bool several) const;
};

/// Writes the picture by the rules of `OutputPath`, at a depth that the format takes: transparency is composed on the
/// background where the format has none. `facts` are those of the file that the picture came from as it stands; a GIF
/// then keeps its palette on the way to a GIF. Gives the note on what was written. Throws `FileException`; so for a
/// Photoshop file with several layers that would be written over.
[[nodiscard]] std::string WritePictureOutput(Run& run, const std::string& input, std::string_view suffix,
                                             const DibBlock& picture, const PictureOutput& output, bool several,
                                             const PictureFacts& facts);

} // namespace pelorin::cli
