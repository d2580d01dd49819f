#include "base/files.h"
#include "core/strings.h"
#include "formats/bmp.h"

namespace pelorin {

namespace {

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::uint32_t kCoreHeaderSize = 12, kSmallestHeader = 16;

enum Compression : std::uint32_t { kPlain = 0, kRle8 = 1, kRle4 = 2, kBitFields = 3, kAlphaBitFields = 6 };

struct Header {
    std::uint32_t rowsOffset = 0, size = 0;
    std::int32_t width = 0, height = 0;
    int bits = 0;
    std::uint32_t compression = 0, imageSize = 0, colors = 0;
    std::int32_t xPerMetre = 0, yPerMetre = 0;
    bool topDown = false;

    [[nodiscard]] bool Core() const { return size == kCoreHeaderSize; }
    [[nodiscard]] bool Masks() const { return compression == kBitFields; }
    [[nodiscard]] std::size_t Stride() const { return DibStride(width, bits); }
    [[nodiscard]] std::size_t PlainSize() const { return Stride() * static_cast<std::size_t>(height); }
};

// The fields of the header; those that a shorter one does not have stay 0.
bool ReadFields(ByteReader& in, Header& header) {
    in.Seek(10);
    header.rowsOffset = in.U32LE();
    header.size = in.U32LE();
    if (header.Core()) {
        header.width = in.U16LE();
        header.height = in.U16LE();
        in.Skip(2);
        header.bits = in.U16LE();
        return in.Ok();
    }
    if (header.size < kSmallestHeader) return false;
    Bytes fields(kDibHeaderSize);
    const auto there = in.Take(std::min<std::size_t>(header.size, kDibHeaderSize) - 4);
    std::copy(there.begin(), there.end(), fields.begin() + 4);
    header.width = static_cast<std::int32_t>(LoadU32LE(&fields[4]));
    header.height = static_cast<std::int32_t>(LoadU32LE(&fields[8]));
    header.bits = LoadU16LE(&fields[14]);
    header.compression = LoadU32LE(&fields[16]);
    header.imageSize = LoadU32LE(&fields[20]);
    header.xPerMetre = static_cast<std::int32_t>(LoadU32LE(&fields[24]));
    header.yPerMetre = static_cast<std::int32_t>(LoadU32LE(&fields[28]));
    header.colors = LoadU32LE(&fields[32]);
    return in.Ok();
}

bool IsReadable(const Header& header) {
    constexpr int depths[] = {1, 4, 8, 15, 16, 24, 32};
    if (std::find(std::begin(depths), std::end(depths), header.bits) == std::end(depths)) return false;
    if (header.width <= 0 || header.height <= 0) return false;
    if (std::int64_t{header.width} * header.height > kMaxPixels) return false;
    switch (header.compression) {
    case kRle8: return header.bits == 8 && !header.topDown;
    case kRle4: return false;
    case kBitFields: return header.bits >= 15;
    default: return true;
    }
}

// Top-down heights become positive, and the colour count is what the block will hold.
bool Normalise(Header& header, std::size_t bytesForTable) {
    if (header.height < 0 && header.height > INT32_MIN) {
        header.height = -header.height;
        header.topDown = true;
    }
    // Masks with one for alpha lie where the others do, and none of them is obeyed.
    if (header.compression == kAlphaBitFields) header.compression = kBitFields;
    // Numbers that nobody knows are no compression; whether there are rows behind them, the file's length tells.
    if (header.compression > kBitFields) header.compression = kPlain;
    if (!IsReadable(header)) return false;
    if (header.colors == 0 && header.bits < 15) header.colors = 1u << header.bits;
    const std::size_t entry = header.Core() ? 3 : 4;
    const bool fits = header.colors <= bytesForTable / entry;
    // A true-colour picture does without the table of hints.
    if (header.bits >= 15 && (!fits || header.Masks())) header.colors = 0;
    return fits || header.bits >= 15;
}

DibBlock MakeBlock(const Header& header) {
    const std::size_t table = header.Masks() ? 12 : std::size_t{header.colors} * 4;
    auto block = DibBlock::Allocate(kDibHeaderSize + table + header.PlainSize());
    if (!block) return {};
    auto* p = block.Data();
    StoreU32LE(p, kDibHeaderSize);
    StoreU32LE(p + 4, static_cast<std::uint32_t>(header.width));
    StoreU32LE(p + 8, static_cast<std::uint32_t>(header.height));
    StoreU16LE(p + 12, 1);
    StoreU16LE(p + 14, static_cast<std::uint16_t>(header.bits));
    StoreU32LE(p + 16, header.Masks() ? kBitFields : kPlain);
    StoreU32LE(p + 20, static_cast<std::uint32_t>(header.PlainSize()));
    StoreU32LE(p + 24, static_cast<std::uint32_t>(header.xPerMetre));
    StoreU32LE(p + 28, static_cast<std::uint32_t>(header.yPerMetre));
    StoreU32LE(p + 32, header.colors);
    StoreU32LE(p + 36, header.colors);
    return block;
}

// The table widened to 4 bytes an entry, or the masks.
bool ReadTable(ByteReader& in, const Header& header, DibBlock& block) {
    auto* to = block.Data() + kDibHeaderSize;
    if (header.Masks() || !header.Core()) {
        const auto from = in.Take(header.Masks() ? 12 : std::uint64_t{header.colors} * 4);
        std::copy(from.begin(), from.end(), to);
        return in.Ok();
    }
    const auto from = in.Take(std::uint64_t{header.colors} * 3);
    for (std::size_t i = 0; i < from.size(); i += 3, to += 4)
        std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(i), 3, to);
    return in.Ok();
}

bool ReadPlainRows(ByteReader& in, const Header& header, const DibRows& rows, ProgressScope& progress) {
    // Some writers leave out the padding of the last row.
    const auto stride = rows.Stride();
    const auto lastRow =
        (static_cast<std::size_t>(header.width) * static_cast<std::size_t>(header.bits == 15 ? 16 : header.bits) + 7) /
        8;
    if (in.Left() < header.PlainSize() - stride + lastRow) return false;
    for (int y = 0; y < rows.Height(); ++y) {
        const auto from = in.TakeUpTo(stride);
        std::copy(from.begin(), from.end(), header.topDown ? rows.PictureRow(y) : rows.Row(y));
        progress.Step(in.Pos());
        if (progress.StopAsked()) return false;
    }
    return true;
}

// Puts runs into the rows; pixels behind a row's end and rows above the picture are dropped.
void ExpandRle8(ByteReader& in, const DibRows& rows) {
    int x = 0, y = 0;
    const auto room = [&] { return y < rows.Height() ? static_cast<std::size_t>(std::max(0, rows.Width() - x)) : 0; };
    while (y < rows.Height()) {
        const std::size_t count = in.U8();
        const std::uint8_t code = in.U8();
        if (!in.Ok()) return;
        if (count != 0) {
            std::fill_n(rows.Row(y) + x, std::min(count, room()), code);
            x = std::min(x + static_cast<int>(count), rows.Width());
        } else if (code == 0) {
            x = 0;
            ++y;
        } else if (code == 1) {
            return;
        } else if (code == 2) {
            x = std::min(x + in.U8(), rows.Width());
            y += in.U8();
        } else {
            const auto literal = in.TakeUpTo(code);
            std::copy_n(literal.begin(), std::min(literal.size(), room()), rows.Row(y) + x);
            x = std::min(x + int{code}, rows.Width());
            in.TakeUpTo(code & 1u);
        }
    }
}

} // namespace

bool IsBmp(ByteSpan file) {
    return AsText(file).starts_with("BM");
}

DibBlock ReadRawBmp(ByteSpan file, Progress* watcher) {
    if (!IsBmp(file)) return {};
    ProgressScope progress(watcher, LoadText(str::kReadingBmp), file.size());
    ByteReader in(file);
    Header header;
    if (!ReadFields(in, header)) return {};
    // Masks stand behind the first 40 bytes, whether a longer header counts them as its own or not.
    const bool masks = header.compression == kBitFields || header.compression == kAlphaBitFields;
    const std::size_t table = kFileHeaderSize + (masks ? kDibHeaderSize : header.size);
    if (table > file.size() || !Normalise(header, file.size() - table)) return {};
    // A run is two bytes, so that is the least that a row needs.
    if (header.compression == kRle8 && file.size() < static_cast<std::size_t>(header.height) / 255) return {};
    if (header.compression != kRle8 && file.size() < header.PlainSize() - 3) return {};

    auto block = MakeBlock(header);
    in.Seek(table);
    if (!block || !ReadTable(in, header, block)) return {};
    if (header.rowsOffset != 0) {
        in.Seek(header.rowsOffset);
    } else if (masks && header.size > kDibHeaderSize + 12) {
        in.Seek(kFileHeaderSize + header.size);
    }
    const DibRows rows(block);
    if (!rows || !in.Ok()) return {};
    if (header.compression == kRle8) {
        ExpandRle8(in, rows);
    } else if (!ReadPlainRows(in, header, rows, progress)) {
        return {};
    }
    return block;
}

DibBlock ReadBmp(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    auto block = ReadRawBmp(file, request.progress);
    if (request.frame != 0 || request.layer > 0) return {};
    facts.bits = DIBBitCount(block);
    if (!block || DIBHasAlpha(block)) return block;
    auto converted = ConvertDIBTo24(block);
    return converted ? std::move(converted) : std::move(block);
}

DibBlock ReadDIBFile(std::string_view path) {
    try {
        const auto file = FileView::Open(path);
        auto block = ReadRawBmp(file.Data());
        if (DIBBitCount(block) != 32 || DIBHasAlpha(block)) return block;
        return ConvertDIBTo24(block);
    } catch (const FileException&) {
        return {};
    }
}

} // namespace pelorin
