// PC Paintbrush pictures (PCX).
//
// Layout of a file, little-endian:
//   0    u8 10, u8 version (0, 2, 3, 4, 5), u8 encoding (0 plain, 1 run lengths), u8 bits of a sample (1, 2, 4, 8)
//   4    u16 left, top, right, bottom: all four belong to the picture
//   12   u16 x and y dots per inch, 16 colours (red, green, blue), u8 0, u8 planes, u16 bytes of a row of one plane
//   68   u16 kind of palette (1 colour, 2 grey), padding to 128
//   128  rows, the top one first; in a row the planes stand one behind the other
//   end  256-colour pictures: u8 12, 256 colours (red, green, blue), the last 769 bytes of the file
// Run lengths: a byte with both high bits set is a count (low six bits) for the byte behind it; others stand for
// themselves. Planes are bits of the index (the first is the lowest), or, at 8 bits a sample, red, green, blue, alpha.
//
// Versions 0 and 3 carry no colours of their own. Four-colour pictures before version 5 hold the registers of the old
// graphics adapter in place of colours: the background in the high half of byte 16, the colour set in byte 19.
#pragma once

#include "formats/picture_reader.h"

namespace pelorin {

[[nodiscard]] bool IsPcx(ByteSpan file);

/// 1, 4, 8, 24 or 32 bits: the smallest depth that holds the file's (2 becomes 4). Empty when rows are missing.
[[nodiscard]] DibBlock ReadPcx(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

} // namespace pelorin
