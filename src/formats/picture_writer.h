// What every picture writer is given.
//
// A writer is a function `int WriteXxx(const DibBlock&, const PictureSaveOptions&, Bytes& out)`. It lays the whole file
// out in memory and returns 0, or a small number of its own that says what failed. It touches no file: the dispatcher
// in `formats/save_image.h` puts the bytes on disk, so that a failed save never harms an older file. A row in
// `formats/save_image.cpp` makes it known.
#pragma once

#include "base/progress.h"
#include "pixel/map_palette.h"

namespace pelorin {

/// How a picture becomes a GIF.
struct GifSaveOptions {
    /// Size of the palette: 2, 4, ... 256; 0: 256 colours, and a block of 8 bits or less keeps the palette it has.
    int colors = 0;
    PaletteKind palette = PaletteKind::Adaptive;
    bool dither = true;
    /// Colour under half-transparent pixels, as 0x00RRGGBB.
    Rgb matte = 0xFFFFFF;
    /// Keep transparency: one entry of the palette is given to it.
    bool transparency = true;
    /// A pixel is transparent when its alpha is below this (0 to 255).
    int threshold = 120;
    /// Entry of an 8-bpp block that is transparent already, -1 for none. The block is then written as it stands, with
    /// the first `colors` entries of its table.
    int transparentIndex = -1;
};

/// How much time a PNG file takes to be made, and how well it fits the picture.
enum class PngEffort {
    Usual,    ///< every row with the filter that suits it best
    Smallest, ///< the time to find the smallest file, for icons, which are read more often than written
    Small,    ///< rows as they are: quicker, and smaller too where a small picture has flat areas and hard edges
};

struct PictureSaveOptions {
    int jpegQuality = 80;
    GifSaveOptions gif{};
    /// Size of a JPEG 2000 file as a fraction of the raw pixels; 0: lossless.
    double jp2Rate = 0;
    /// An 8-bpp block becomes one grey JPEG 2000 component whose samples are the indices.
    bool jp2Gray = false;
    PngEffort png = PngEffort::Usual;
    /// Extension of the file that is written, without the dot; set by the dispatcher. JPEG 2000 asks for it.
    std::string_view extension{};
    Progress* progress = nullptr;
};

using PictureWriter = int (*)(const DibBlock& block, const PictureSaveOptions& options, Bytes& out);

} // namespace pelorin
