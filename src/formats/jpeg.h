// JPEG files (JPG, JPE, JPEG) by the JPEG library.
//
// A file is a chain of markers FF xx: SOI (D8) first, SOFn with size and components, tables, one or more scans, EOI
// (D9). Components are grey, YCbCr or RGB, or four inks (CMYK, YCCK); files of the maker whose APP14 marker says
// "Adobe" keep their inks inverted.
#pragma once

#include "formats/picture_reader.h"
#include "formats/picture_writer.h"

namespace pelorin {

[[nodiscard]] bool IsJpeg(ByteSpan file);

/// 24 bits; a grey file has its component in all three channels. A file that ends early gives what is there. In preview
/// mode the library decodes at 1/1 where a side is below 100, at 1/2 below 200, 1/4 below 300, else at 1/8; `facts` has
/// the file's own size, with 24 bits.
[[nodiscard]] DibBlock ReadJpeg(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

/// 8 bits at full size, with Floyd-Steinberg dither: on the palette given (256 colours; what it lacks is black), else
/// on one that the library chooses in two passes, which for a grey file is a grey one. Empty for files of four inks.
[[nodiscard]] DibBlock ReadJpegIndexed(ByteSpan file, const CPalette* palette, Progress* progress = nullptr);

/// Takes 1, 4, 8 and 24 bits. Quality 1 to 100 is `options.jpegQuality`. 0 done, 3 for another depth or a failure.
[[nodiscard]] int WriteJpeg(const DibBlock& block, const PictureSaveOptions& options, Bytes& out);

} // namespace pelorin
