#include "containers/icns_images.h"
#include "containers/icns_rle.h"
#include "formats/jpeg2000.h"
#include "formats/jpeg2000_shape.h"
#include "pixel/surface.h"
#include "pixel/visit_depth.h"

namespace pelorin {

namespace {

// Fields of the bitmap header that differ from those of other new blocks.
constexpr std::size_t kSizeImage = 20, kImportantColors = 36;

// An empty image of the kind, with the layout of its block.
struct Target {
    CVnIcon icon;
    IconBlockLayout layout;

    explicit Target(const IcnsElementKind& kind)
        : layout(kind.width, kind.height, IconColors(kind.colorBits), kind.colorBits == 24) {
        icon.Create(kind.width, kind.height, layout.colors, layout.bits == 32);
        icon.m_hImage = EmptyIconBlock(layout);
        const auto pixels = layout.bits == 32 ? layout.size - layout.xorRows : layout.andRows - layout.xorRows;
        StoreU32LE(icon.m_hImage.data() + kSizeImage, static_cast<std::uint32_t>(pixels));
        StoreU32LE(icon.m_hImage.data() + kImportantColors, static_cast<std::uint32_t>(layout.colors));
    }
    // Rows from the top of the picture.
    std::uint8_t* ColorRow(int y) { return Row(layout.xorRows, layout.xorStride, y); }
    std::uint8_t* MaskRow(int y) { return Row(layout.andRows, layout.andStride, y); }

private:
    std::uint8_t* Row(std::size_t rows, std::size_t stride, int y) {
        return icon.m_hImage.data() + rows + stride * static_cast<std::size_t>(layout.height - 1 - y);
    }
};

// What stands under a mask that lets nothing through.
template <int Bits>
constexpr unsigned kHiddenIndex = Bits == 4 ? 0 : 0xFF;

template <int Bits>
void HideMasked(std::uint8_t* row, const std::uint8_t* mask, int width) {
    for (int x = 0; x < width; ++x) {
        if (IndexAt<1>(mask, x) == 0) PutIndex<Bits>(row, x, kHiddenIndex<Bits>);
    }
}

CVnIcon FromIndices(const IcnsElementKind& kind, ByteSpan color, ByteSpan mask) {
    Target target(kind);
    const auto table = IcnsPalette(kind.colorBits);
    for (std::size_t i = 0; i < table.size(); ++i) {
        StoreU32LE(target.icon.m_hImage.data() + kDibHeaderSize + i * 4, table[i]);
    }
    const auto stride = color.size() / static_cast<std::size_t>(kind.height);
    const auto maskStride = mask.size() / static_cast<std::size_t>(kind.height);
    for (int y = 0; y < kind.height; ++y) {
        const auto* maskRow = mask.data() + maskStride * static_cast<std::size_t>(y);
        auto* row = target.ColorRow(y);
        std::memcpy(row, color.data() + stride * static_cast<std::size_t>(y), stride);
        if (kind.colorBits == 4) HideMasked<4>(row, maskRow, kind.width);
        if (kind.colorBits == 8) HideMasked<8>(row, maskRow, kind.width);
        auto* hidden = target.MaskRow(y);
        for (std::size_t i = 0; i < maskStride; ++i) hidden[i] = static_cast<std::uint8_t>(~maskRow[i]);
    }
    return std::move(target.icon);
}

std::optional<CVnIcon> FromPlanes(const IcnsElementKind& kind, ByteSpan color, ByteSpan mask) {
    const auto pixels = kind.Pixels();
    Bytes planes(pixels * 3);
    ByteReader in(color);
    in.Skip(PaddingOf(kind));
    for (std::size_t i = 0; i < 3; ++i) {
        if (!DecodeIcnsPlane(in, MutableByteSpan(planes).subspan(i * pixels, pixels))) return {};
    }
    Target target(kind);
    const auto* red = planes.data();
    const auto* green = red + pixels;
    const auto* blue = green + pixels;
    const auto* alpha = mask.data();
    for (int y = 0; y < kind.height; ++y) {
        auto* to = target.ColorRow(y);
        for (int x = 0; x < kind.width; ++x, to += 4) {
            to[0] = *blue++;
            to[1] = *green++;
            to[2] = *red++;
            to[3] = *alpha++;
        }
    }
    return std::move(target.icon);
}

std::optional<CVnIcon> FromStream(const IcnsElementKind& kind, ByteSpan stream) {
    // A stream of another size is not decoded at all: it could be of any size.
    Jpeg2000Shape shape;
    if (!IsJpeg2000(stream) || !ReadJpeg2000Shape(stream, shape)) return {};
    if (static_cast<int>(shape.width) != kind.width || static_cast<int>(shape.height) != kind.height) return {};
    const auto picture = SurfaceFromDIB(ReadJpeg2000(stream));
    if (picture.Width() != kind.width || picture.Height() != kind.height) return {};
    Target target(kind);
    for (int y = 0; y < kind.height; ++y) std::memcpy(target.ColorRow(y), picture.PictureRow(y), picture.Stride());
    return std::move(target.icon);
}

} // namespace

std::optional<CVnIcon> ImageFromIcns(const IcnsElementKind& kind, ByteSpan color, ByteSpan mask) {
    switch (kind.coding) {
    case IcnsCoding::Planes: return FromPlanes(kind, color, mask);
    case IcnsCoding::Jpeg2000: return FromStream(kind, color);
    default: return FromIndices(kind, color, mask);
    }
}

} // namespace pelorin
