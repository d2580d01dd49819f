#include "formats/load_image.h"

#include "core/file_kinds.h"
#include "formats/bmp.h"
#include "formats/gif.h"
#include "formats/iff.h"
#include "formats/jpeg.h"
#include "formats/jpeg2000.h"
#include "formats/metafile.h"
#include "formats/pcd.h"
#include "formats/pcx.h"
#include "formats/png.h"
#include "formats/psd.h"
#include "formats/svg.h"
#include "formats/tga.h"
#include "formats/tiff.h"
#include "formats/vio.h"
#include "pixel/depth.h"

#include <deque>

namespace pelorin {

namespace {

// A deque, so that rows that were handed out stay where they are.
std::deque<PictureFormat>& Formats() {
    static std::deque<PictureFormat> formats = {
        {kKindBmp, "BMP", IsBmp, ReadBmp},
        {kKindGif, "GIF", IsGif, ReadGif},
        {kKindIff, "IFF", IsIff, ReadIff},
        {kKindJpeg, "JPEG", IsJpeg, ReadJpeg},
        {kKindJpeg2000, "JPEG 2000", IsJpeg2000, ReadJpeg2000},
        {kKindLbm, "LBM", IsIff, ReadIff},
        {kKindPcd, "Photo CD", IsPcd, ReadPcd},
        {kKindPcx, "PCX", IsPcx, ReadPcx},
        {kKindPng, "PNG", IsPng, ReadPng},
        {kKindPsd, "PSD", IsPsd, ReadPsd},
        {kKindTga, "TGA", IsTga, ReadTga},
        {kKindWmf, "WMF", IsMetafile, ReadMetafile},
        {kKindTiff, "TIFF", IsTiff, ReadTiff},
        {kKindImageObject, "VIO", IsVio, ReadVio},
        {kKindNone, "SVG", IsSvg, ReadSvg, true},
    };
    return formats;
}

bool Matches(const PictureFormat* row, ByteSpan file) {
    return row && row->matches && row->matches(file);
}

DibBlock ReadWith(const PictureFormat& row, ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    facts = {};
    auto block = row.read(file, request, facts);
    if (!block) {
        facts = {};
        return {};
    }
    facts.kind = row.kind;
    facts.format = row.name;
    if (facts.width == 0) facts.width = DIBWidth(block);
    if (facts.height == 0) facts.height = DIBHeight(block);
    if (facts.bits == 0) facts.bits = DIBBitCount(block);
    const bool keyed = facts.transparentIndex >= 0 && DIBBitCount(block) == 8 && !request.keepIndices;
    return keyed ? KeyTo32(block, facts.transparentIndex) : std::move(block);
}

} // namespace

void AddPictureFormats(std::span<const PictureFormat> rows) {
    Formats().insert(Formats().end(), rows.begin(), rows.end());
}

const PictureFormat* PictureFormatOfKind(int kind) {
    for (const auto& row : Formats()) {
        if (kind != 0 && row.kind == kind) return &row;
    }
    return nullptr;
}

bool MayBePicture(int kind) {
    return kind == kKindNone || PictureFormatOfKind(kind) != nullptr;
}

const PictureFormat* FindPictureFormat(ByteSpan file, int kind) {
    const auto* named = PictureFormatOfKind(kind);
    if (Matches(named, file)) return named;
    for (const auto& row : Formats()) {
        if (Matches(&row, file)) return &row;
    }
    return named;
}

DibBlock ReadPicture(ByteSpan file, int kind, const PictureRequest& request, PictureFacts& facts) {
    const auto* format = FindPictureFormat(file, kind);
    auto block = format ? ReadWith(*format, file, request, facts) : DibBlock();
    // A signature of two bytes can be chance: the name has the last word.
    const auto* named = PictureFormatOfKind(kind);
    if (!block && named && named != format) block = ReadWith(*named, file, request, facts);
    if (!block) facts = {};
    return block;
}

} // namespace pelorin
