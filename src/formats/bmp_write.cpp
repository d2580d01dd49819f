#include "base/files.h"
#include "core/strings.h"
#include "formats/bmp.h"

namespace pelorin {

namespace {

constexpr std::size_t kFileHeaderSize = 14, kCompressionField = 16, kImageSizeField = 20;
constexpr std::uint32_t kBitFields = 3;

struct Parts {
    std::size_t front = 0; ///< header and table, or header and masks
    std::size_t rows = 0;
    bool dropMasks = false; ///< the masks are left out of the file
};

bool Measure(const DibBlock& block, Parts& parts) {
    const auto* p = block.Data();
    const auto compression = LoadU32LE(p + kCompressionField);
    if (compression == 1 || compression == 2) {
        parts.front = kDibHeaderSize + PaletteSize(block);
        parts.rows = LoadU32LE(p + kImageSizeField);
        return parts.front <= block.Size() && parts.rows <= block.Size() - parts.front;
    }
    const DibView view(block);
    if (!view) return false;
    parts.front = view.RowsOffset();
    parts.rows = view.Stride() * static_cast<std::size_t>(view.Height());
    // A header with three masks has no place for the alpha's, so that other programs would not see it.
    parts.dropMasks = compression == kBitFields && view.BitCount() == 32;
    return true;
}

bool HasInfoHeader(const DibBlock& block) {
    return block.Size() >= kDibHeaderSize && LoadU32LE(block.Data()) == kDibHeaderSize;
}

} // namespace

int WriteBmp(const DibBlock& block, const PictureSaveOptions& options, Bytes& out) {
    if (!block) return 20;
    if (!HasInfoHeader(block)) return 0;
    Parts parts;
    if (!Measure(block, parts)) return 3;
    const auto front = parts.dropMasks ? kDibHeaderSize : parts.front;
    const auto size = kFileHeaderSize + front + parts.rows;
    const ProgressScope progress(options.progress, LoadText(str::kWritingBmp), size);
    ByteWriter file(size);
    file.Text("BM");
    file.U32LE(static_cast<std::uint32_t>(size));
    file.U32LE(0);
    file.U32LE(static_cast<std::uint32_t>(kFileHeaderSize + front));
    file.Raw(block.Span().first(front));
    file.Raw(block.Span().subspan(parts.front, parts.rows));
    file.PatchU32LE(kFileHeaderSize + kImageSizeField, static_cast<std::uint32_t>(parts.rows));
    if (parts.dropMasks) file.PatchU32LE(kFileHeaderSize + kCompressionField, 0);
    out = file.Take();
    return 0;
}

std::uint16_t SaveDIBFile(DibBlock& block, std::string_view path) {
    Bytes file;
    const int code = WriteBmp(block, {}, file);
    if (code != 0 || file.empty()) return static_cast<std::uint16_t>(code);
    StoreU32LE(block.Data() + kImageSizeField, LoadU32LE(&file[kFileHeaderSize + kImageSizeField]));
    try {
        WriteFileSafely(path, file);
    } catch (const FileException&) {
        return 4;
    }
    return 0;
}

} // namespace pelorin
