// Windows metafiles (WMF, EMF): pictures as a list of drawing commands.
//
// Three forms, told apart in this order, little-endian:
//   enhanced    u32 at byte 40 is " EMF". Records are u32 type, u32 length, parameters; the first is the header: bounds
//               in pixels, frame in 1/100 mm, signature, and the size of the device in pixels and in millimetres
//   placeable   begins with u32 0x9AC6CDD7, u16 handle, the i16 corners of the picture, u16 units to the inch, u32 0,
//               u16 checksum; a plain metafile follows
//   plain       u16 1 or 2, u16 9 (words of the header), u16 version, u32 words, u16 objects, u32 longest record, u16
//   0.
//               Records are u32 length in words, u16 function, parameters (the last argument of the call first)
//
// The rooms of the player, in `formats/metafile/`: `player` (records of both kinds), `painter` (the drawing context:
// objects, mapping, paths, clips, text, bitmaps), `raster` and `curves` (figures into pixels), `canvas` (pixels, clip,
// raster operations), `shrink` (bitmaps drawn smaller), `face` (letters).
#pragma once

#include "formats/picture_reader.h"

namespace pelorin {

[[nodiscard]] bool IsMetafile(ByteSpan file);

/// 32 bits. The file is played on magenta and on green: where both pictures agree a pixel is opaque, elsewhere it is
/// white with alpha 0. The picture is fitted to `PictureRequest::box` (0 x 0: 512 x 512); a preview has its natural
/// size instead, unless that is larger than the box. Commands that are unknown are left out. Empty for what is no
/// metafile.
[[nodiscard]] DibBlock ReadMetafile(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

} // namespace pelorin
