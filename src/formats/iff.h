// Amiga and Deluxe Paint pictures (IFF, LBM).
//
// A file is a FORM: "FORM", u32 length, a four-letter type, and chunks: four letters, u32 length, bytes, padded to an
// even length; all numbers big-endian. Pictures are of type "ILBM" (planar) or "PBM " (one byte a pixel); in other
// FORMs, LISTs and CATs the first picture inside is taken.
//   BMHD  u16 width, height, x, y, u8 planes, u8 masking, u8 compression, u8 0, u16 transparent index, u8 x and y
//   aspect,
//         u16 page width and height
//   CMAP  colours: red, green, blue; without it the indices are greys
//   CAMG  u32 mode of the display: 0x800 hold-and-modify, 0x80 half-brite
//   BODY  rows, the top one first; in a row the planes stand one behind the other, each padded to 16 bits, the lowest
//   bit
//         of the index first, and a mask plane last where masking is 1. Rows of a "PBM " are padded to 16 bits.
// 24 and 32 planes are red, green, blue, alpha with 8 bits each. Masking: 0 none, 1 a plane (set bits are opaque), 2
// the transparent index, 3 that index as far as it reaches in from the edges.
//
// Compression 1: a byte n from 0 to 127 is followed by n + 1 literal bytes, from -1 to -127 by one byte that stands
// 1 - n times; -128 is nothing.
//
// Hold-and-modify: the two highest bits of a pixel say whether the others are an index (0) or new high bits of the blue
// (1), red (2) or green (3) of the pixel at the left; a row begins with colour 0. Half-brite: 64 colours, of which the
// second 32 are the first at half their value.
#pragma once

#include "formats/picture_reader.h"

namespace pelorin {

[[nodiscard]] bool IsIff(ByteSpan file);

/// 1, 4 or 8 bits for indexed pictures, 24 for hold-and-modify and 24 planes, 32 where there is a mask or alpha. Empty
/// when rows are missing or the FORM holds no picture.
[[nodiscard]] DibBlock ReadIff(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

} // namespace pelorin
