// CompuServe pictures (GIF), on giflib.
//
// Layout of a file, little-endian:
//   0    "GIF87a" or "GIF89a", u16 screen width, height, u8 flags (bit 7 colour map follows, bits 0 to 2 its bits less
//   1),
//        u8 background index, u8 aspect, colour map (red, green, blue)
//   ...  extensions: u8 0x21, u8 kind, blocks of up to 255 bytes behind their length, u8 0. Kind 0xF9 goes with the
//   next
//        frame: u8 flags (bits 2 to 4 disposal, bit 0 transparency), u16 delay in 1/100 s, u8 transparent index
//   ...  frames: u8 0x2C, u16 left, top, width, height, u8 flags (bit 7 own colour map, bit 6 interlaced), colour map,
//        u8 bits of a code, blocks of codes
//   end  u8 0x3B
// Disposal says what becomes of a frame before the next is drawn: 0 and 1 it stays, 2 its place becomes transparent, 3
// its place becomes what it was.
#pragma once

#include "formats/picture_reader.h"
#include "formats/picture_writer.h"

namespace pelorin {

[[nodiscard]] bool IsGif(ByteSpan file);

/// The first frame comes at 8 bits with the indices of the file, on the whole screen, and `facts` tell its transparent
/// index and the bits of its palette; what the frame leaves free takes the transparent index, or, without one, an index
/// that nothing uses (which is then the transparent one). Later frames come as the animation shows them, at 32 bits; so
/// does a first frame that leaves something free and uses all 256 indices. Empty when the frame is not there whole.
[[nodiscard]] DibBlock ReadGif(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

/// One frame. Blocks of 8 bits and less keep table and indices where the options allow it; others are reduced: what is
/// more transparent than the threshold takes the last entry of the palette, the rest is composed on the matte colour.
/// 0 done, 3 a block whose rows are not whole, 4 the encoder failed, 20 an empty block.
[[nodiscard]] int WriteGif(const DibBlock& block, const PictureSaveOptions& options, Bytes& out);

} // namespace pelorin
