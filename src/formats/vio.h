// Image objects (.vio): pictures of layers, with some fields that describe the whole.
//
// Layout, little-endian. A string is a u32 length with the closing zero counted, and so many bytes; a block is a u32
// length and so many bytes of a headless VNZB block (vnzb.h), length 0 for none; a bool is a byte; a colour is red,
// green, blue; a rectangle is i32 left, top, right, bottom, all sides inside.
//   "VNHO", u16 version, i32 width, i32 height, u32 length of a section and the section, block of the information text,
//   u32 images
//   an image: string name, string second name, i32 width, i32 height, u32 layers
//   a layer:  string name, i32 id, i32 opacity, bool visible, i32 reserved, i32 kind, i32 width and height of the
//             raster, block of the raster (red, green, blue, alpha, the top row first), block of the text, rectangle on
//             the image; shadow: bool, colour, i32 opacity, angle, distance, size; glow: bool, colour, i32 opacity,
//             width, size; third effect: bool, colour, i32 opacity, two sizes
// The information text is fields "<Title>...</Title>", one after the other; it is no XML, nothing in it is escaped.
#pragma once

#include "formats/picture_reader.h"
#include "pixel/color.h"

#include <memory>

namespace pelorin {

struct VniShadow {
    bool on = false;
    ColorRef color = 0;
    int opacity = 75, angle = 135, distance = 5, size = 5;
    friend bool operator==(const VniShadow&, const VniShadow&) = default;
};
struct VniGlow {
    bool on = false;
    ColorRef color = 0;
    int opacity = 75, width = 10, size = 10;
    friend bool operator==(const VniGlow&, const VniGlow&) = default;
};
struct VniEffect {
    bool on = false;
    ColorRef color = 0;
    int opacity = 75, firstSize = 5, secondSize = 5;
    friend bool operator==(const VniEffect&, const VniEffect&) = default;
};

enum VniLayerKind : int { kVniRaster = 0 }; ///< 1 and 2 are kinds of text, which nobody draws

/// One layer. Texts are the file's bytes as they stand.
struct VniLayerFields {
    std::string m_strName;
    int m_nId = 0;
    int m_nOpacity = 100; ///< 0 to 100
    bool m_bVisible = true;
    int m_nReserved = 0;
    int m_nKind = kVniRaster;
    Size m_RasterSize;
    Bytes m_Raster; ///< 4 bytes a pixel: red, green, blue, alpha; the top row first. Empty: none
    std::string m_strText;
    InclusiveRect m_Rect{0, 0, 0, 0}; ///< on the image
    VniShadow m_Shadow;
    VniGlow m_Glow;
    VniEffect m_Effect;
    friend bool operator==(const VniLayerFields&, const VniLayerFields&) = default;
};

class CVniLayer : public VniLayerFields {
public:
    /// The layer as it is drawn, 32 bits, with room for its effects around it; made when it is first asked for. Empty
    /// when there is no such picture.
    [[nodiscard]] const DibBlock& GetRendered();
    /// After every change of the layer.
    void DropRendered() { m_hRendered = {}; }

private:
    DibBlock m_hRendered;
};

/// The first one is the lowest.
class CVniLayers : public std::vector<CVniLayer> {};

class CVniImage {
public:
    std::string m_strName, m_strSecondName;
    Size m_Size;
    CVniLayers m_arrLayers;

    /// All visible layers on one another, 32 bits. Empty for an image without size, or when the layers together are
    /// drawn many times larger than image and rasters are.
    [[nodiscard]] DibBlock Composite();
};

class CVniImages : public std::vector<CVniImage> {};

/// What describes the object. The passwords are ordinary text; nothing asks for them.
struct VioInfo {
    std::string title{}, description{}, author{}, authorUrl{}, keywords{}, licenseText{}, purchaseUrl{},
        fileInfoPassword{}, mainPassword{};
    int type = 0, licenseType = 0, accessType = 0;
    friend bool operator==(const VioInfo&, const VioInfo&) = default;
};
/// Fields that are missing are empty or 0.
[[nodiscard]] VioInfo ParseVioInfo(std::string_view text);
[[nodiscard]] std::string FormatVioInfo(const VioInfo& info);
/// Name in words of lower case ("author_url") and value of the fields that are not empty or 0, without the passwords.
[[nodiscard]] std::vector<std::pair<std::string, std::string>> DescribeVioInfo(const VioInfo& info);

struct ImageObject {
    int version = 1;
    Size size;
    Bytes section; ///< what the object carries and nobody reads
    VioInfo info;
    CVniImages images;
};

/// Adds an image of the object's size: "Image1", "Image2", ...
CVniImage& AddVniImage(ImageObject& object);
/// Puts a layer without pixels on top of the image: "Background", "Layer 1", ...
CVniLayer& AddVniLayer(CVniImage& image);
/// Adds an image whose one layer is the picture. An object without a size takes the picture's. False, with the object
/// as it was, for a picture that cannot become 32 bits.
[[nodiscard]] bool AddVniPicture(ImageObject& object, const DibBlock& picture);

[[nodiscard]] bool IsVio(ByteSpan file);
/// False, with the object in no defined state, for a file that is damaged.
[[nodiscard]] bool ReadImageObject(ByteSpan file, ImageObject& object);
/// The whole file; empty when a raster cannot be packed.
[[nodiscard]] Bytes WriteImageObject(const ImageObject& object);

/// The image `request.frame`, all layers together, or one of its layers as it is drawn.
[[nodiscard]] DibBlock ReadVio(ByteSpan file, const PictureRequest& request, PictureFacts& facts);

// ---- between rasters and blocks ----

/// The pixels of a block as a raster; blocks that are not of 32 bits become so first. Empty when that cannot be.
[[nodiscard]] Bytes RasterFromDIB(const DibBlock& block);
/// The block of a raster; empty when the bytes are too few for the size.
[[nodiscard]] DibBlock DIBFromRaster(ByteSpan raster, Size size);

} // namespace pelorin
