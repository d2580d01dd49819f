#include "formats/reader_support.h"
#include "formats/vio.h"
#include "formats/vio_blend.h"
#include "pixel/depth.h"
#include "pixel/resample.h"
#include "pixel/visit_depth.h"

#include <cmath>
#include <numbers>

namespace pelorin {

namespace {

// What the drawn layers of a composite may have together: a small file can stretch a pixel to any size.
constexpr std::int64_t kMostLayerPixels = 2 * kMaxPixels, kFreeLayerPixels = std::int64_t{4} << 20;
constexpr std::int64_t kLayerPixelsPerPixel = 64;

std::int64_t LayerBudget(const CVniImage& image) {
    std::int64_t rasters = 0;
    for (const auto& layer : image.m_arrLayers) rasters += static_cast<std::int64_t>(layer.m_Raster.size() / 4);
    const auto pixels = std::int64_t{image.m_Size.width} * image.m_Size.height + rasters;
    // Layers of the size of their rasters are drawn however many there are.
    return std::clamp(pixels * kLayerPixelsPerPixel, kFreeLayerPixels, kMostLayerPixels) + 2 * rasters;
}

// 64 bits, because the fields are whatever a file says.
struct Margins {
    std::int64_t left = 0, top = 0, right = 0, bottom = 0;
};

Margins MarginsOf(const VniLayerFields& layer) {
    Margins margins;
    if (const auto& shadow = layer.m_Shadow; shadow.on) {
        const double angle = (static_cast<double>(shadow.angle) - 180) * std::numbers::pi / 180;
        const std::int64_t dx = std::llround(std::cos(angle) * shadow.distance);
        const std::int64_t dy = std::llround(std::sin(angle) * shadow.distance);
        margins = {shadow.size - dx, shadow.size - dy, shadow.size + dx, shadow.size + dy};
    }
    const auto& glow = layer.m_Glow;
    const std::int64_t least = glow.on ? std::int64_t{glow.width} + glow.size / 2 : 0;
    for (auto* side : {&margins.left, &margins.top, &margins.right, &margins.bottom}) {
        *side = std::max({*side, least, std::int64_t{0}});
    }
    return margins;
}

// The layer's rectangle with its margins, as numbers that cannot overflow.
struct Extent {
    std::int64_t width, height; ///< of the rectangle
    std::int64_t outerWidth, outerHeight;
    [[nodiscard]] bool Sane() const { return IsPictureSize(width, height) && IsPictureSize(outerWidth, outerHeight); }
};

Extent ExtentOf(const VniLayerFields& layer, const Margins& margins) {
    const auto& r = layer.m_Rect;
    const auto width = std::int64_t{r.right} - r.left + 1, height = std::int64_t{r.bottom} - r.top + 1;
    return {width, height, width + margins.left + margins.right, height + margins.top + margins.bottom};
}

DibBlock RasterAtSize(const VniLayerFields& layer, int width, int height) {
    auto block = DIBFromRaster(layer.m_Raster, layer.m_RasterSize);
    if (!block || (layer.m_RasterSize.width == width && layer.m_RasterSize.height == height)) return block;
    return ResampleDIB(block, width, height);
}

DibBlock RenderLayer(const VniLayerFields& layer) {
    const auto margins = MarginsOf(layer);
    const auto extent = ExtentOf(layer, margins);
    if (!extent.Sane()) return {};
    auto block = CreateDIB(static_cast<int>(extent.outerWidth), static_cast<int>(extent.outerHeight), 32);
    const DibRows rows(block);
    if (!rows || layer.m_nKind != kVniRaster) return block;
    const auto raster = RasterAtSize(layer, static_cast<int>(extent.width), static_cast<int>(extent.height));
    if (const DibView view(raster); view) BlendVniLayer(rows, view, margins.left, margins.top, 100);
    return block;
}

// Red and blue change places.
void CopySwapped(std::uint8_t* to, const std::uint8_t* from, int pixels) {
    for (int x = 0; x < pixels; ++x, to += 4, from += 4) {
        const auto v = LoadU32LE(from);
        StoreU32LE(to, (v & 0xFF00FF00) | (v & 0xFF) << 16 | (v >> 16 & 0xFF));
    }
}

} // namespace

const DibBlock& CVniLayer::GetRendered() {
    if (!m_hRendered) m_hRendered = RenderLayer(*this);
    return m_hRendered;
}

DibBlock CVniImage::Composite() {
    auto block = CreateDIB(m_Size.width, m_Size.height, 32);
    const DibRows rows(block);
    if (!rows) return {};
    auto budget = LayerBudget(*this);
    for (auto& layer : m_arrLayers) {
        if (!layer.m_bVisible) continue;
        const auto margins = MarginsOf(layer);
        const auto extent = ExtentOf(layer, margins);
        if (!extent.Sane()) continue;
        budget -= extent.outerWidth * extent.outerHeight;
        if (budget < 0) return {};
        if (const DibView view(layer.GetRendered()); view) {
            BlendVniLayer(rows, view, layer.m_Rect.left - margins.left, layer.m_Rect.top - margins.top,
                          layer.m_nOpacity);
        }
    }
    return block;
}

Bytes RasterFromDIB(const DibBlock& block) {
    DibBlock converted;
    if (DIBBitCount(block) != 32) converted = ConvertTo32(block, false, kNoColor);
    const DibView view(converted ? converted : block);
    if (!view || view.BitCount() != 32) return {};
    Bytes raster(view.Stride() * static_cast<std::size_t>(view.Height()));
    for (int y = 0; y < view.Height(); ++y) {
        CopySwapped(raster.data() + view.Stride() * static_cast<std::size_t>(y), view.PictureRow(y), view.Width());
    }
    return raster;
}

DibBlock DIBFromRaster(ByteSpan raster, Size size) {
    if (!IsPictureSize(size.width, size.height)) return {};
    const auto stride = DibStride(size.width, 32);
    if (raster.size() < stride * static_cast<std::size_t>(size.height)) return {};
    auto block = CreateDIB(size.width, size.height, 32);
    const DibRows rows(block);
    for (int y = 0; rows && y < size.height; ++y) {
        CopySwapped(rows.PictureRow(y), raster.data() + stride * static_cast<std::size_t>(y), size.width);
    }
    return block;
}

} // namespace pelorin
