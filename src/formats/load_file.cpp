#include "formats/load_file.h"

#include "base/files.h"
#include "core/file_kinds.h"
#include "pixel/depth.h"

namespace pelorin {

std::atomic<int> g_LastImageWidth = 0, g_LastImageHeight = 0, g_LastImageBits = 0;

namespace {

void Publish(const DibBlock& block, const PictureFacts& facts) {
    // Only a JPEG may come smaller than its file and still counts whole.
    const bool own = block && facts.kind == kKindJpeg;
    g_LastImageWidth = own ? facts.width : DIBWidth(block);
    g_LastImageHeight = own ? facts.height : DIBHeight(block);
    g_LastImageBits = own ? facts.bits : DIBBitCount(block);
}

// The first 1 << bits entries of an 8-bpp table as red, green, blue.
Bytes SourcePalette(const DibBlock& block, int bits) {
    const DibView view(block);
    Bytes palette;
    if (view.BitCount() != 8 || bits > 8 || view.TableCount() < 1 << bits) return palette;
    for (int i = 0; i < 1 << bits; ++i) {
        for (const int shift : {16, 8, 0}) palette.push_back(static_cast<std::uint8_t>(view.Color(i) >> shift));
    }
    return palette;
}

} // namespace

DibBlock LoadPicture(std::string_view path, const PictureRequest& request, PictureFacts& facts) {
    facts = {};
    const int kind = GetFileKind(path);
    if (path.empty() || (kind != kKindNone && !PictureFormatOfKind(kind))) return {};
    try {
        const auto file = FileView::Open(path);
        return ReadPicture(file.Data(), kind, request, facts);
    } catch (const FileException&) {
        return {};
    }
}

bool LoadFromFile(CDIB& dib, std::string_view path, const PictureRequest& request, PictureFacts* factsOut) {
    PictureFacts facts;
    dib = CDIB();
    auto block = LoadPicture(path, request, facts);
    Publish(block, facts);
    if (factsOut) *factsOut = facts;
    if (!block) return false;
    dib.Attach(std::move(block));
    if (facts.kind == kKindAni) dib.m_nFrameRate = facts.delay;
    dib.m_nTransparentIndex = facts.transparentIndex;
    if (facts.paletteBits > 0) {
        dib.m_nPaletteBits = facts.paletteBits;
        dib.m_pSourcePalette = SourcePalette(dib.Block(), facts.paletteBits);
    }
    if (facts.transparentIndex >= 0 && dib.GetBitCount() == 8) dib.Attach(KeyTo32(dib.Block(), facts.transparentIndex));
    return true;
}

} // namespace pelorin
