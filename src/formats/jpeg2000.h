// JPEG 2000: codestreams (J2K, J2C, JPC) and the box files around them (JP2, JPX), by OpenJPEG.
//
// A codestream is a chain of markers, big-endian: SOC (FF4F); SIZ (FF51) with size, tiles and components; COD and COC
// (FF52, FF53) with wavelet levels, code blocks and precincts; tile-parts, each SOT (FF90) with its length, SOD (FF93)
// and packets; EOC (FFD9). A JP2 file is boxes: u32 length, four letters, content (length 1: a u64 length follows; 0:
// to the end). "jP  " comes first, "jp2h" says what the components mean, "jp2c" is the codestream.
#pragma once

#include "formats/picture_reader.h"
#include "formats/picture_writer.h"

namespace pelorin {

[[nodiscard]] bool IsJpeg2000(ByteSpan file);

/// Grey files give 8 bits with a grey ramp, colour files 24, or 32 with alpha when they have exactly four components.
/// Samples keep their number: below 8 bits they stay small. Empty for other colour families, for components of more
/// than 8 bits, and for components that do not cover the whole picture point by point. A bare codestream counts as
/// colour from three components on. In preview mode wavelet levels are left out: none where a side is below 100, one
/// below 200, two below 300, else three, as far as the file has them.
[[nodiscard]] DibBlock ReadJpeg2000(ByteSpan file, const PictureRequest& request, PictureFacts& facts);
[[nodiscard]] DibBlock ReadJpeg2000(ByteSpan file);

/// Takes 1, 4, 8, 24 and 32 bits; 1, 4 and (without `jp2Gray`) 8 are written as 24. A codestream for the extensions
/// j2k, j2c and jpc, a JP2 file for every other. 0 done; 2 the library could not make the picture, 3 a block of another
/// depth or without memory, 6 encoding failed.
[[nodiscard]] int WriteJpeg2000(const DibBlock& block, const PictureSaveOptions& options, Bytes& out);

/// The `jp2Rate` for a position of the compression slider; the fewer bytes of pixels there are, the more of them stay.
[[nodiscard]] double Jpeg2000Rate(int compression, std::uint64_t pixelBytes);

} // namespace pelorin
