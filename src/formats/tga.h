// Truevision pictures (TGA).
//
// Layout of a file, little-endian:
//   0    u8 length of the identification, u8 colour map there (0, 1), u8 type
//   3    colour map: u16 first entry, u16 entries, u8 bits of an entry (15, 16, 24, 32)
//   8    u16 x and y of the lower left corner, u16 width, u16 height, u8 bits of a pixel, u8 descriptor
//   18   identification, colour map, pixels
//   end  version 2: u32 offset of the extension area, u32 offset of the developer area, "TRUEVISION-XFILE.", 0
// Types: 1 colour-mapped, 2 true colour, 3 grey; 9, 10, 11 the same with run lengths. Descriptor: bits 0 to 3 number of
// alpha bits, bit 4 rows run from right to left, bit 5 the top row first, bits 6 and 7 rows interleaved by 1, 2 or 4.
// Colours: blue, green, red, alpha; at 15 and 16 bits a u16 with 5 bits each, red on top, and one bit of alpha above.
//
// Run lengths: a byte with the high bit set repeats the one pixel behind it (low seven bits + 1) times; without it, so
// many pixels follow. Runs may go on over the end of a row.
//
// Byte 494 of the extension area says what the alpha is: 0 none, 1 and 2 undefined, 3 straight, 4 premultiplied.
#pragma once

#include "formats/picture_reader.h"

namespace pelorin {

/// True for a file with the signature at its end. Older ones have none: there the name decides.
[[nodiscard]] bool IsTga(ByteSpan file);

/// 8 bits for greys and for colour maps without alpha, else 24, or 32 where there is alpha. Empty when pixels are
/// missing.
[[nodiscard]] DibBlock ReadTga(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

} // namespace pelorin
