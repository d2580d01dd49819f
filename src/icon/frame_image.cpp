#include "icon/frame_image.h"

#include "formats/png.h"

namespace pelorin {

namespace {

struct Header {
    int width = 0, height = 0; ///< of the image
    std::uint32_t planes = 0, bitCount = 0;
    std::uint32_t used = 0;

    /// Wraps around only for a bit count that is no depth.
    [[nodiscard]] int Product() const { return static_cast<int>(planes * bitCount); }
    /// A product that is no depth is an accident of the planes.
    [[nodiscard]] int Depth() const { return IsDepth(Product()) ? Product() : static_cast<int>(bitCount); }
    [[nodiscard]] static bool IsDepth(int bits) {
        return bits == 1 || bits == 4 || bits == 8 || bits == 15 || bits == 16 || bits == 24 || bits == 32;
    }
};

bool ReadHeader(ByteSpan image, Header& header) {
    ByteReader in(image);
    const auto size = in.U32LE();
    header.width = in.I32LE();
    header.height = in.I32LE() / 2;
    header.planes = in.U16LE();
    header.bitCount = in.U16LE();
    in.Skip(16);
    header.used = in.U32LE();
    in.Skip(4);
    return in.Ok() && size == kDibHeaderSize && Header::IsDepth(header.Depth());
}

// Entries of the table in the file, for a layout with the whole one.
std::uint32_t TableInFile(const Header& header, const IconBlockLayout& layout, std::uint32_t entryBytes) {
    const auto full = static_cast<std::uint32_t>(layout.colors);
    const bool cut =
        header.used > 0 && header.used < full && entryBytes == layout.size - std::size_t{4} * (full - header.used);
    return cut ? header.used : full;
}

// Missing bytes stay as they are.
void CopyPart(ByteSpan from, std::size_t at, std::uint8_t* to, std::size_t size) {
    if (at < from.size()) std::memcpy(to, from.data() + at, std::min(size, from.size() - at));
}

// Rows of two bytes a pixel as rows of three.
bool CopyWideRows(ByteSpan from, const Header& header, std::uint8_t* to) {
    auto block = CreateDIB(header.width, header.height, 16);
    if (!block) return false;
    StoreU16LE(block.Data() + 14, static_cast<std::uint16_t>(header.Depth()));
    CopyPart(from, kDibHeaderSize, block.Data() + kDibHeaderSize, block.Size() - kDibHeaderSize);
    const auto wide = ConvertDIBTo24(block);
    if (!wide) return false;
    std::memcpy(to, wide.Data() + kDibHeaderSize, wide.Size() - kDibHeaderSize);
    return true;
}

void FillBlock(ByteSpan file, const IconBlockLayout& layout, std::size_t table, std::size_t colorBytes, Bytes& block) {
    std::memcpy(block.data(), file.data(), kDibHeaderSize);
    StoreU16LE(&block[12], 1);
    StoreU16LE(&block[14], static_cast<std::uint16_t>(layout.bits));
    StoreU32LE(&block[32], static_cast<std::uint32_t>(layout.colors));
    CopyPart(file, kDibHeaderSize, block.data() + kDibHeaderSize, table);
    const auto rows = kDibHeaderSize + table, mask = layout.andRows;
    CopyPart(file, rows, block.data() + layout.xorRows, std::min(colorBytes, mask - layout.xorRows));
    CopyPart(file, rows + colorBytes, block.data() + mask, layout.size - mask);
}

bool ReadPlain(ByteSpan file, const IcoDirectoryEntry& entry, ShortImage ifShort, FrameImage& image) {
    Header header;
    if (!ReadHeader(file, header)) return false;
    const int depth = header.Depth(), colors = IconColors(depth);
    const IconBlockLayout layout(header.width, header.height, colors, depth == 32);
    if (layout.size == 0) return false;
    const auto table = std::size_t{4} * TableInFile(header, layout, entry.bytes);
    const auto colorBytes = DibStride(header.width, depth) * static_cast<std::size_t>(header.height);
    if (ifShort == ShortImage::Refuse && file.size() < kDibHeaderSize + table + colorBytes) return false;

    if (!image.icon.Create(header.width, header.height, colors, depth == 32)) return false;
    FillBlock(file, layout, table, colorBytes, image.icon.m_hImage);
    image.bits = header.Product();
    return layout.bits == depth || CopyWideRows(file, header, image.icon.m_hImage.data() + layout.xorRows);
}

} // namespace

bool ReadFrameImage(ByteSpan file, const IcoDirectoryEntry& entry, ShortImage ifShort, FrameImage& image) {
    if (entry.offset >= file.size()) return false;
    const auto bytes = file.subspan(entry.offset);
    if (!IsPng(bytes)) return ReadPlain(bytes, entry, ifShort, image);
    if (!ReadIcoImage(file, entry, image.icon)) return false;
    image.bits = image.icon.BitCount();
    return true;
}

} // namespace pelorin
