#include "formats/load_file.h"

#include "base/files.h"
#include "core/file_kinds.h"

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

} // namespace

DibBlock LoadPicture(std::string_view path, const PictureRequest& request, PictureFacts& facts) {
    facts = {};
    const int kind = GetFileKind(path);
    if (path.empty() || !MayBePicture(kind)) return {};
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
    // The palette is noted before the transparent index is applied.
    auto indexed = request;
    indexed.keepIndices = true;
    auto block = LoadPicture(path, indexed, facts);
    if (block) {
        dib.Attach(std::move(block));
        if (facts.kind == kKindAni) dib.m_nFrameRate = facts.delay;
        dib.m_nTransparentIndex = facts.transparentIndex;
        if (facts.paletteBits > 0) (void)dib.KeepSourcePalette(facts.paletteBits);
        (void)dib.ApplyTransparentIndex();
    }
    Publish(dib.Block(), facts);
    if (factsOut) *factsOut = std::move(facts);
    return !dib.Empty();
}

} // namespace pelorin
