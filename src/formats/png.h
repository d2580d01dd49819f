// Portable Network Graphics.
//
// Layout of a file, big-endian: the eight bytes 89 'P' 'N' 'G' 0D 0A 1A 0A, then chunks: u32 length, four letters, the
// data, u32 checksum. IHDR (size, bits a sample, colour type, interlace) comes first, PLTE holds red, green, blue
// triples, tRNS transparency, gAMA the gamma, IDAT the deflated rows, IEND nothing.
// Colour types: 0 gray, 2 colours, 3 palette, 4 gray and alpha, 6 colours and alpha.
//
// Published as ISO/IEC 15948; the decoding is libpng's, straight from and to memory.
#pragma once

#include "formats/picture_reader.h"
#include "formats/picture_writer.h"

namespace pelorin {

[[nodiscard]] bool IsPng(ByteSpan file);

/// The picture at the start of `file`. Samples of 16 bits are cut to 8; the gamma is brought to that of a screen of 2.2
/// (from 0.45 where the file has none). Depth of the block:
/// - gray of 1, 4, 8 bits: the same, with a ramp from black to white as its table; gray of 2 bits: 8
/// - palette of 4 and 8 bits: the same with the file's palette; of 2 bits: 8; of 1 bit: 1 with black and white,
///   whatever the palette says
/// - colours: 24; colours and alpha, gray and alpha, and everything with transparency: 32
/// Empty when the file is damaged, ends before the last row, or is above `kMaxPixels`.
[[nodiscard]] DibBlock ReadPng(ByteSpan file, const PictureRequest& request, PictureFacts& facts);
/// The same without being asked and told.
[[nodiscard]] DibBlock ReadPng(ByteSpan file);

/// The file of a block of 1, 4, 8, 24 or 32 bits: 0, else 1. At 1, 4 and 8 bits the palette always has 256 entries,
/// black behind those of the block; every reader drops those that the depth cannot use.
[[nodiscard]] int WritePng(const DibBlock& block, const PictureSaveOptions& options, Bytes& out);

} // namespace pelorin
