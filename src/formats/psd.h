// Photoshop pictures (PSD): 8 bits a channel in red, green and blue, with layers.
//
// Layout, big-endian:
//   0    "8BPS", u16 version 1, 6 zeros, u16 channels, u32 height, u32 width, u16 bits a channel (8), u16 mode (3: RGB)
//   26   colour mode data, image resources, layers and masks: each a u32 length and so many bytes
//   ...  merged image: u16 compression, then planes of the whole picture, the top row first: red, green, blue, and
//        a fourth channel that counts as alpha
// Layers and masks (psd_layers.h tells of the parts):
//   0    u32 length of what follows up to the general mask information, i16 number of layers, negative when the fourth
//        merged channel is the alpha of the whole
//   ...  layer records, then the channels of all layers, then u32 length of the general mask information
//
// Compression: 0 plain, 1 PackBits behind a table of u16 lengths, one a row of each plane. Runs of the merged image go
// over row borders where the file has it so. Other kinds are not read.
#pragma once

#include "formats/picture_reader.h"
#include "formats/picture_writer.h"
#include "formats/psd_layers.h"

namespace pelorin {

[[nodiscard]] bool IsPsd(ByteSpan file);

/// The merged image: 24 bits, on white, with exactly three channels, else 32. `layers` receives the layers, bottom
/// first; null: they are skipped. Empty for other modes and depths and for a file that is not whole.
[[nodiscard]] DibBlock ReadPsdImage(ByteSpan file, CPsdLayers* layers, Progress* progress = nullptr);

/// The picture of a file for everybody: the merged image, or, where the file has one layer only, that layer with its
/// mask applied, as only the layer has real transparency. A layer that is asked for comes on the whole canvas.
[[nodiscard]] DibBlock ReadPsd(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

/// A file with one layer and a merged image of the same pixels, neither compressed. Every depth but 16 bits is taken.
/// 1 when the picture cannot be brought to 32 bits.
[[nodiscard]] int WritePsd(const DibBlock& block, const PictureSaveOptions& options, Bytes& out);

} // namespace pelorin
