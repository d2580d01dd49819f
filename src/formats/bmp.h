// Windows bitmaps (BMP, DIB, RLE).
//
// Layout of a file, little-endian:
//   0    'BM', u32 file size, u16 0, u16 0, u32 offset of the rows (0: behind the table)
//   14   a header that begins with its own size. 40 bytes: BITMAPINFOHEADER as in pixel/dib.h; longer ones (52, 56, 64,
//        108, 124) begin in the same way. 12 bytes: u16 width, height, planes, bit count.
//   ...  colour table: 4 bytes an entry, 3 with the 12-byte header; or, with compression 3, three u32 masks
//   ...  rows, the bottom picture row first (the top one first when the height is negative), each padded to 4 bytes
// Compression 0 is none, 1 run lengths of 8-bit pixels, 2 of 4-bit pixels, 3 "bit fields" (masks say where the channels
// lie; they are kept and not obeyed); higher numbers are read as none.
//
// Run lengths: pairs of count and value; a count of 0 is followed by 0 (end of row), 1 (end of picture), 2 and two
// bytes (move right and up), or n > 2 and n literal pixels, padded to an even number. What no run covers is index 0.
#pragma once

#include "formats/picture_reader.h"
#include "formats/picture_writer.h"

namespace pelorin {

[[nodiscard]] bool IsBmp(ByteSpan file);

/// The file as a block: 40-byte header with colours used and important filled in, the table or the masks, bottom-up
/// rows without run lengths. Depth and table are the file's. Empty for 4-bit run lengths and when the rows are not all
/// there; a run-length picture may end early.
[[nodiscard]] DibBlock ReadRawBmp(ByteSpan file, Progress* progress = nullptr);
/// The same as a picture: 32 bits where the file has a pixel with alpha, else 24.
[[nodiscard]] DibBlock ReadBmp(ByteSpan file, const PictureRequest& request, PictureFacts& facts);
/// `ReadRawBmp` from disk, with a 32-bit picture without alpha turned into 24 bits; other depths stay. Empty on
/// failure.
[[nodiscard]] DibBlock ReadDIBFile(std::string_view path);

/// The file of a block, its pixels as they stand; a 32-bit block keeps its alpha. 0 done, 3 a block whose rows are not
/// whole, 20 an empty block. A block with another than the 40-byte header gives 0 and no bytes.
[[nodiscard]] int WriteBmp(const DibBlock& block, const PictureSaveOptions& options, Bytes& out);
/// `WriteBmp` to disk; 4 when the file cannot be written. The image size that was computed is stored in the block too.
[[nodiscard]] std::uint16_t SaveDIBFile(DibBlock& block, std::string_view path);

} // namespace pelorin
