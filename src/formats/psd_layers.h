// The layers of a Photoshop picture.
//
// A layer record, big-endian:
//   0    i32 top, left, bottom, right; u16 channels, each i16 id and u32 length of its data
//   ...  "8BIM", four letters of the blend mode, u8 opacity, u8 clipping, u8 flags, u8 0
//   ...  u32 length of the rest: u32 length of the mask (0: none) and its data: i32 top, left, bottom, right, u8
//   colour,
//        u8 flags; u32 length and blending ranges; the name with its length in front, padded to 4; further blocks, each
//        "8BIM", four letters, u32 length
// A channel's data: u16 compression (0 plain, 1 PackBits behind a table of row lengths), then the plane, the top row
// first. Ids: 0 red, 1 green, 2 blue, -1 alpha, -2 mask.
#pragma once

#include "pixel/dib.h"

#include <string>
#include <vector>

namespace pelorin {

enum PsdChannelId : int { kPsdRed = 0, kPsdGreen = 1, kPsdBlue = 2, kPsdAlpha = -1, kPsdMask = -2 };

/// Flags of a mask. Bit 0 says that the mask moves with its layer; its rectangle is on the canvas either way.
enum PsdMaskFlag : int { kPsdMaskDisabled = 2, kPsdMaskInverted = 4 };

enum class PsdCompression { Plain = 0, PackBits = 1 };

struct PsdChannel {
    int id = 0;
    PsdCompression compression = PsdCompression::Plain;
    ByteSpan data; ///< behind the compression word; a part of the file
};

struct CPsdLayer {
    std::string m_strName;  ///< key of the blend mode: "norm"
    std::string m_strTitle; ///< what the layer is called, UTF-8; may be empty
    Rect m_Rect;            ///< on the canvas; may reach out of it
    std::vector<PsdChannel> m_arrChannels;
    std::string m_strSignature;
    int m_nOpacity = 255, m_nClipping = 0, m_nFlags = 0;
    bool m_bHasMask = false;
    Rect m_MaskRect; ///< on the canvas
    int m_nMaskColor = 0, m_nMaskFlags = 0;

    [[nodiscard]] bool HasChannel(int id) const;
};

/// Bottom layer first. The pixels stay packed in the file's bytes, which must outlive the list, until they are asked
/// for: layers are as many as a file likes to have, and each is as large as the canvas once it is placed there.
class CPsdLayers : public std::vector<CPsdLayer> {};

/// Reads the records of the section "layers and masks". Layers without pixels, and those behind a channel whose
/// compression is unknown, are left out. False when a record makes no sense at all: then the whole file is given up.
[[nodiscard]] bool ReadPsdLayers(ByteSpan section, CPsdLayers& layers);

/// A layer's own pixels, 32 bits, of the size of its rectangle; opaque where it has no alpha channel.
[[nodiscard]] DibBlock PsdLayerPixels(const CPsdLayer& layer);
/// The layer on the canvas, transparent black around it; with `applyMask` its alpha is multiplied by the mask, unless
/// that is switched off.
[[nodiscard]] DibBlock PsdLayerOnCanvas(const CPsdLayer& layer, Size canvas, bool applyMask);
/// The mask on the canvas as an opaque grey picture, black around it; empty when the layer has none.
[[nodiscard]] DibBlock PsdMaskOnCanvas(const CPsdLayer& layer, Size canvas);

} // namespace pelorin
