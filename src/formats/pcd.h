// Photo CD pictures (PCD).
//
// A file is a row of sectors of 2048 bytes, and holds one picture in up to five sizes:
//   sector 1    "PCD_IPI"; byte 0xE02 of the file: bits 0 and 1 how often the picture is to be turned left by 90
//   degrees sector 4    192 x 128 sector 23   384 x 256 sector 96   768 x 512, the base sector 388  what is to be added
//   to the base, doubled in size, for 1536 x 1024 behind it   what is to be added to that, doubled again, for 3072 x
//   2048
// The first three are plain: for each two rows of the picture the brightness of both, then, at half the width, one row
// of the first and one of the second colour difference.
//
// Additions are Huffman-coded. First come the code tables, one (brightness) for the fourfold size and three for the
// sixteenfold: u8 codes less 1, then for each u8 length less 1, u16 code in the highest bits, i8 value to add. From the
// next sector on come the rows, each behind the mark FF FF FE and 16 bits: 2 of plane (0 brightness, 2 and 3 the colour
// differences), 13 of row, one unused. Rows are counted in brightness rows; the row behind the last one is the end. The
// tables for the sixteenfold size stand 12 sectors behind the last of the fourfold.
//
// Doubling: between two values stands their mean, between four theirs, each rounded up; the last ones are repeated.
// Colours: L = 1.3584 Y, A = 2.2179 (C1 - 156), B = 1.8215 (C2 - 137); red = L + B, green = L - 0.194 A - 0.509 B,
// blue = L + A, cut off at 0 and 255. White paper is Y = 182; what is above shines.
#pragma once

#include "formats/picture_reader.h"

namespace pelorin {

[[nodiscard]] bool IsPcd(ByteSpan file);

/// A 24-bit picture. `PictureRequest::photoCdSize` asks for 0: 192 x 128, 1: 384 x 256, 2: 768 x 512, 3: 1536 x 1024,
/// 4: 3072 x 2048 (numbers outside count as the nearest). A file that does not hold this size whole gives the largest
/// below that it does hold: nothing is scaled up. Empty when there is none.
[[nodiscard]] DibBlock ReadPcd(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

} // namespace pelorin
