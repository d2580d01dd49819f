#include "pixel/cdib.h"

#include "pixel/crop.h"
#include "pixel/depth.h"
#include "pixel/map_palette.h"
#include "pixel/quantize.h"
#include "pixel/resample.h"

namespace pelorin {

CDIB::CDIB(const CDIB& other) {
    *this = other;
}

CDIB& CDIB::operator=(const CDIB& other) {
    if (this == &other) return *this;
    Attach(CopyHandle(other.m_hDIB));
    m_nFrameRate = other.m_nFrameRate;
    m_nTransparentIndex = other.m_nTransparentIndex;
    m_nPaletteBits = other.m_nPaletteBits;
    m_pSourcePalette = m_nPaletteBits != 0 ? other.m_pSourcePalette : Bytes();
    return *this;
}

void CDIB::Attach(DibBlock block) {
    m_hDIB = std::move(block);
    m_Palette = CreateDIBPalette(m_hDIB);
}

bool CDIB::Replace(DibBlock block) {
    if (!block) return false;
    Attach(std::move(block));
    return true;
}

void CDIB::CopyFrom(const DibBlock& block) {
    auto copy = CopyHandle(block); // the block may be our own
    Clear();
    Attach(std::move(copy));
}

void CDIB::Clear() {
    m_hDIB = {};
    m_Palette = {};
    m_pSourcePalette = {};
}

bool CDIB::SetBits(ByteSpan header, ByteSpan bits) {
    const int width = DIBWidth(header);
    const int height = DIBHeight(header);
    const int depth = DIBBitCount(header);
    if (header.size() < kDibHeaderSize || width <= 0 || height <= 0 || depth <= 0 || depth > 32) return false;
    if (std::int64_t{width} * height > kMaxPixels) return false;
    const auto rows = DibStride(width, depth) * static_cast<std::size_t>(height);
    if (bits.size() < rows) return false;
    // A byte is counted for the table of every depth but 1 and 24. Callers come with 24 bits; the block of any other
    // depth is that byte longer than its rows need.
    const std::size_t table = depth > 1 && depth != 24 ? 1 : 0;
    auto block = DibBlock::Allocate(kDibHeaderSize + table + rows);
    if (!block) return false;
    std::copy_n(header.begin(), kDibHeaderSize, block.Data());
    std::copy_n(bits.begin(), rows, block.Data() + kDibHeaderSize);
    m_nPaletteBits = 0;
    m_pSourcePalette = {};
    return Replace(std::move(block));
}

void CDIB::Serialize(ArchiveWriter& ar) const {
    const DibView view(m_hDIB);
    ar.U32(view ? 1 : 0);
    if (!view) return;
    const auto size = view.RowsOffset() + view.Stride() * static_cast<std::size_t>(view.Height());
    ar.U32(static_cast<std::uint32_t>(size));
    ar.Raw(m_hDIB.Span().first(size));
}

void CDIB::Serialize(ArchiveReader& ar) {
    if (ar.U32() == 0) {
        Clear();
        return;
    }
    const auto size = ar.U32();
    Attach(DibBlock::FromBytes(ar.Raw(size)));
}

int CDIB::GetPixel(int x, int y, std::uint8_t* alpha) const {
    const DibView view(m_hDIB);
    if (view.BitCount() != 24 && view.BitCount() != 32) return -1;
    if (x < 0 || y < 0 || x >= view.Width() || y >= view.Height()) return -1;
    const auto* pixel = view.PictureRow(y) + std::ptrdiff_t{x} * (view.BitCount() / 8);
    if (alpha != nullptr) *alpha = view.BitCount() == 32 ? pixel[3] : std::uint8_t{255};
    return pixel[0] << 16 | pixel[1] << 8 | pixel[2];
}

bool CDIB::HasIndex(int index) const {
    const DibView view(m_hDIB);
    if (view.BitCount() != 8 || index < 0 || index > 255) return false;
    for (int y = 0; y < view.Height(); ++y) {
        if (std::memchr(view.Row(y), index, static_cast<std::size_t>(view.Width())) != nullptr) return true;
    }
    return false;
}

bool CDIB::Crop(int x1, int y1, int x2, int y2) {
    if (GetWidth() <= 0 || GetHeight() <= 0) return false;
    const auto inside = [](int value, int size) { return std::clamp(value, 0, size - 1); };
    const auto [left, right] = std::minmax({inside(x1, GetWidth()), inside(x2, GetWidth())});
    const auto [top, bottom] = std::minmax({inside(y1, GetHeight()), inside(y2, GetHeight())});
    return Replace(CropDIB(m_hDIB, left, top, right, bottom));
}

bool CDIB::MakeSquare() {
    return Replace(CenterOnSquare(m_hDIB));
}

bool CDIB::ResizeCanvas(int width, int height, int offsetX, int offsetY, int cutWidth, int cutHeight,
                        std::uint32_t fill) {
    if (GetWidth() <= 0 || GetHeight() <= 0) return false;
    // A place far outside shows nothing, wherever it is; keeping it near keeps its sums within an int.
    constexpr int far = 1 << 29;
    const int left = std::clamp(offsetX, -far, far);
    const int top = std::clamp(offsetY, -far, far);
    const int right = left + std::clamp(cutWidth, 0, GetWidth());
    const int bottom = top + std::clamp(cutHeight, 0, GetHeight());
    return Replace(PlaceOnCanvas(m_hDIB, width, height, {left, top, right, bottom}, fill));
}

bool CDIB::MultiplyAlpha(const CDIB& other) {
    return Replace(pelorin::MultiplyAlpha(m_hDIB, other.m_hDIB));
}

bool CDIB::Resize(int width, int height) {
    return Replace(ResampleDIB(m_hDIB, width, height));
}

bool CDIB::ConvertTo32(bool applyKey, ColorRef keyColor) {
    return Replace(pelorin::ConvertTo32(m_hDIB, applyKey, keyColor));
}

bool CDIB::ConvertTo24(ColorRef background) {
    return GetBitCount() >= 8 && Replace(ComposeTo24(m_hDIB, background));
}

bool CDIB::ReduceTo8Bit() {
    if (GetBitCount() == 8) return true;
    const auto composed = ComposeTo24(m_hDIB, MakeColorRef(255, 255, 255));
    int count = 256;
    const auto table = QuantizeImage(composed, count, false);
    return table && Replace(MapToPalette(composed, *table, 256, true));
}

bool CDIB::ReduceToPalette(std::span<const Rgb> colors) {
    if (GetBitCount() == 8) return true;
    const auto composed = ComposeTo24(m_hDIB, MakeColorRef(255, 255, 255));
    const int count = static_cast<int>(std::min<std::size_t>(colors.size(), 256));
    return Replace(MapToPalette(composed, colors, count, true));
}

bool CDIB::KeepSourcePalette(int bits) {
    const DibView view(m_hDIB);
    if (view.BitCount() != 8 || bits < 1 || bits > 8 || view.TableCount() < 1 << bits) return false;
    m_nPaletteBits = bits;
    m_pSourcePalette.clear();
    for (int i = 0; i < 1 << bits; ++i) {
        for (const int channel : {RedOf(view.Color(i)), GreenOf(view.Color(i)), BlueOf(view.Color(i))}) {
            m_pSourcePalette.push_back(static_cast<std::uint8_t>(channel));
        }
    }
    return true;
}

bool CDIB::ApplySourcePalette() {
    if (m_nPaletteBits == 0 || m_pSourcePalette.empty()) return false;
    return Replace(MapAlphaImageToTable(m_hDIB, m_nPaletteBits, m_pSourcePalette, m_nTransparentIndex));
}

bool CDIB::ApplyTransparentIndex() {
    return m_nTransparentIndex != -1 && Replace(KeyTo32(m_hDIB, m_nTransparentIndex));
}

} // namespace pelorin
