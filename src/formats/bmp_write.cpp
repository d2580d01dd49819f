#include "base/files.h"
#include "core/strings.h"
#include "formats/bmp.h"

namespace pelorin {

namespace {

constexpr std::size_t kFileHeaderSize = 14, kImageSizeField = 20;
constexpr std::uint32_t kBitFields = 3;

struct Parts {
    std::size_t front = 0; ///< header and table, or header and masks
    std::size_t rows = 0;
};

bool Measure(const DibBlock& block, Parts& parts) {
    const auto* p = block.Data();
    const auto compression = LoadU32LE(p + 16);
    parts.front = kDibHeaderSize + (compression == kBitFields ? 12 : PaletteSize(block));
    if (compression == 1 || compression == 2) {
        parts.rows = LoadU32LE(p + kImageSizeField);
    } else {
        const DibView view(block);
        if (!view) return false;
        parts.front = view.RowsOffset();
        parts.rows = view.Stride() * static_cast<std::size_t>(view.Height());
    }
    return parts.front <= block.Size() && parts.rows <= block.Size() - parts.front;
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
    const auto size = kFileHeaderSize + parts.front + parts.rows;
    const ProgressScope progress(options.progress, LoadText(str::kWritingBmp), size);
    ByteWriter file(size);
    file.Text("BM");
    file.U32LE(static_cast<std::uint32_t>(size));
    file.U32LE(0);
    file.U32LE(static_cast<std::uint32_t>(kFileHeaderSize + parts.front));
    file.Raw(block.Span().first(parts.front + parts.rows));
    file.PatchU32LE(kFileHeaderSize + kImageSizeField, static_cast<std::uint32_t>(parts.rows));
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
