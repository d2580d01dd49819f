#include "icon/icon_object.h"

#include "icon/standard_formats.h"
#include "pixel/compose.h"
#include "pixel/crop.h"
#include "pixel/depth.h"
#include "pixel/format_pipeline.h"
#include "pixel/map_palette.h"

namespace pelorin {

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;

CPalette PaletteFrom(const ColorTable& table) {
    return {{table.begin(), table.end()}};
}

Surface FilledSurface(int width, int height, std::uint32_t value) {
    Surface surface(width, height);
    surface.Fill(value);
    return surface;
}

Rgb ColorAt(const Surface& surface, int x, int y) {
    return surface.At(x, y) & kWhite;
}

// Lays the floating selection over copies of the planes. Its transparent pixels let the image show.
void MergeFloating(const CIconObject& object, Surface& image, Surface& mask) {
    const auto& at = object.m_rcSelection;
    const int width = object.m_selImage.Width(), height = object.m_selImage.Height();
    if (object.m_bAlpha) {
        (void)ComposeLayers(image, mask, at.left, at.top, width, height, object.m_selImage, object.m_selMask,
                            {.compose = true});
        return;
    }
    const Rect inside =
        Rect{at.left, at.top, at.left + width, at.top + height}.Intersect({0, 0, image.Width(), image.Height()});
    for (int y = inside.top; y < inside.bottom; ++y) {
        for (int x = inside.left; x < inside.right; ++x) {
            if (ColorAt(object.m_selMask, x - at.left, y - at.top) != 0) continue;
            image.Put(x, y, ColorAt(object.m_selImage, x - at.left, y - at.top));
            mask.Put(x, y, 0);
        }
    }
}

DibBlock MergedPlanes(const Surface& image, const Surface& mask, bool alpha) {
    auto block = CreateDIB(image.Width(), image.Height(), 32);
    if (!block) return {};
    const bool merged = alpha ? MergeAlpha(image, mask, block.Span(), true) : MergeMask(image, mask, block.Span());
    return merged ? std::move(block) : DibBlock();
}

// A plane of the wanted size with `part` in its top left corner; the rest as a new format has it.
Surface Padded(Surface part, Size size, std::uint32_t rest) {
    if (part.GetSize() == size) return part;
    auto whole = FilledSurface(size.width, size.height, rest);
    PutBitmapAt(whole, part, 0, 0);
    return whole;
}

} // namespace

CIconObject::CIconObject(int bits, int width, int height, bool alpha, bool macintosh) {
    if (bits != 0) (void)SetFormat(bits, width, height, alpha, macintosh);
}

CIconObject::CIconObject(const CVnIcon& icon, bool macintosh) {
    m_bMacintosh = macintosh;
    m_Stored.Copy(icon);
    TakeStored();
}

bool CIconObject::SetFormat(int bits, int width, int height, bool alpha, bool macintosh) {
    if (!IsIconDepth(bits) || !m_Stored.Create(width, height, IconColors(bits), alpha || bits == 32)) return false;
    m_nBitCount = bits;
    m_nColors = IconColors(bits);
    m_nWidth = width;
    m_nHeight = height;
    m_sizeEdit = {width, height};
    m_bAlpha = m_Stored.m_bAlpha;
    m_bMacintosh = macintosh;
    m_strDescription = FormatDescription(width, height, bits, macintosh);
    m_strShortDescription = FormatShortDescription(width, height, bits);
    CreateBitmaps();
    return true;
}

void CIconObject::CreateBitmaps() {
    m_bHasPalette = m_nBitCount == 8;
    m_Palette = {};
    if (m_bHasPalette) m_Palette = PaletteFrom(m_bMacintosh ? kMacOsPalette : SpectrumPalette());
    m_bmpImage = FilledSurface(m_nWidth, m_nHeight, m_bAlpha ? kWhite : 0);
    m_bmpMask = FilledSurface(m_nWidth, m_nHeight, m_bAlpha ? 0 : kWhite);
}

void CIconObject::TakeStored() {
    m_nWidth = m_Stored.m_nWidth;
    m_nHeight = m_Stored.m_nHeight;
    m_sizeEdit = {m_nWidth, m_nHeight};
    m_nColors = m_Stored.m_nColors;
    m_nBitCount = m_Stored.BitCount();
    m_bAlpha = m_Stored.m_bAlpha;
    m_nHotSpotX = m_Stored.m_nHotSpotX;
    m_nHotSpotY = m_Stored.m_nHotSpotY;
    m_Palette = PaletteOfBlock(m_Stored);
    m_bHasPalette = m_nBitCount == 8;
    m_strDescription = FormatDescription(m_nWidth, m_nHeight, m_nBitCount, m_bMacintosh);
    m_strShortDescription = FormatShortDescription(m_nWidth, m_nHeight, m_nBitCount);
    (void)ToBitmaps(m_Stored, m_bmpImage, m_bmpMask);
}

void CIconObject::UpdateStored() {
    // A PNG file that was made of the block stays while the block stays the same.
    const auto before = m_Stored.m_hImage;
    auto png = m_Stored.m_pPngData;
    if (!m_Stored.Create(m_nWidth, m_nHeight, m_nColors, m_bAlpha)) return;
    m_Stored.m_nHotSpotX = m_nHotSpotX;
    m_Stored.m_nHotSpotY = m_nHotSpotY;
    (void)FromBitmaps(m_Stored, m_bmpImage, m_bmpMask, m_Palette);
    if (!png.empty() && m_Stored.m_hImage == before) m_Stored.m_pPngData = std::move(png);
}

bool CIconObject::ReadFromMemory(ByteSpan data, std::uint32_t bytes, int bits) {
    CVnIcon read;
    if (!read.ReadFromMemory(data, bytes, bits)) return false;
    m_Stored = std::move(read);
    TakeStored();
    return true;
}

std::uint32_t CIconObject::ImageBytes() const {
    const auto height = static_cast<std::uint32_t>(m_nHeight);
    const auto rows = static_cast<std::uint32_t>(DibStride(m_nWidth, m_nBitCount)) * height;
    if (m_nBitCount == 32) return static_cast<std::uint32_t>(kDibHeaderSize) + rows;
    const std::uint32_t table = m_nBitCount <= 8 ? 4u << m_nBitCount : 0;
    return static_cast<std::uint32_t>(kDibHeaderSize) + table + rows +
           static_cast<std::uint32_t>(DibStride(m_nWidth, 1)) * height;
}

IconState CIconObject::State() const {
    return {m_bmpImage, m_bmpMask, m_selImage, m_selMask, m_Palette, m_rcSelection};
}

void CIconObject::Restore(const IconState& state) {
    m_bmpImage = state.image;
    m_bmpMask = state.mask;
    m_selImage = state.floatingImage;
    m_selMask = state.floatingMask;
    m_Palette = state.palette;
    m_rcSelection = state.selection;
    m_bFloating = HasFloatingSelection();
}

DibBlock CIconObject::GetDIB32(bool wholeImage) const {
    if (HasFloatingSelection()) {
        if (!wholeImage) return MergedPlanes(m_selImage, m_selMask, m_bAlpha);
        Surface image = m_bmpImage, mask = m_bmpMask;
        MergeFloating(*this, image, mask);
        return MergedPlanes(image, mask, m_bAlpha);
    }
    auto block = MergedPlanes(m_bmpImage, m_bmpMask, m_bAlpha);
    if (wholeImage || !HasSelection()) return block;
    return CropDIB(block, m_rcSelection.left, m_rcSelection.top, m_rcSelection.right, m_rcSelection.bottom);
}

DibBlock CIconObject::GetDIB(ColorRef background) const {
    const auto composed = ComposeTo24(GetDIB32(), background);
    if (m_nBitCount == 24) return ComposeTo24(composed, kNoColor);
    if (m_nBitCount == 32) return ConvertToOpaque32(composed);
    // The stored block knows how to put colours on the format's table; its rows are those of a picture.
    CVnIcon stored;
    if (!composed || !stored.Create(m_nWidth, m_nHeight, m_nColors, false)) return {};
    const auto opaque = SurfaceFromDIB(composed);
    if (!FromBitmaps(stored, opaque, Surface(m_nWidth, m_nHeight), m_Palette)) return {};
    auto block = CreateDIB(m_nWidth, m_nHeight, m_nBitCount);
    if (!block || block.Size() > stored.m_hImage.size()) return {};
    std::memcpy(block.Data() + kDibHeaderSize, stored.m_hImage.data() + kDibHeaderSize, block.Size() - kDibHeaderSize);
    return block;
}

bool CIconObject::SetImage(const DibBlock& picture, const SetImageOptions& options) {
    SourcePicture source(picture);
    return SetImage(source, options);
}

bool CIconObject::SetImage(SourcePicture& picture, const SetImageOptions& options) {
    const Size size{m_nWidth, m_nHeight};
    const auto& fitted = picture.Fitted(size, options.resample);
    if (!fitted) return false;
    FormatRequest request;
    request.width = DIBWidth(fitted);
    request.height = DIBHeight(fitted);
    request.bits = m_nBitCount;
    request.dither = options.dither;
    request.useStandardPalette = options.macPalette;
    request.paletteMode = options.keepPalette ? PaletteMode::Keep : PaletteMode::Given;
    // The picture's own table goes with it only where none was asked for.
    const auto& palette = options.palette ? *options.palette : picture.SourcePalette();
    if (m_nBitCount == 8 && (options.palette || picture.SourceBits() == 8)) request.palette = palette.colors;
    request.useKey = options.key != kNoColor;
    request.keyColor = options.key;
    request.tolerance = options.tolerance;
    auto planes = RunFormatPipeline(fitted, request);
    if (!planes) return false;

    (void)FilterAfterScaling(planes.color, planes.mask, picture.SourceSize(), m_nBitCount, options.filter);
    m_bmpImage = Padded(std::move(planes.color), size, m_bAlpha ? kWhite : 0);
    m_bmpMask = Padded(std::move(planes.mask), size, m_bAlpha ? 0 : kWhite);
    if (m_nBitCount == 8 && !planes.palette.Empty()) m_Palette = std::move(planes.palette);
    if (m_nBitCount < 8) m_Palette = {};
    m_bDirty = true;
    return true;
}

bool CIconObject::SetImageOf(const CIconObject& other, const SetImageOptions& options) {
    if (!SetImage(other.GetDIB32(), options)) return false;
    ForgetSelection();
    return true;
}

void CIconObject::ForgetSelection() {
    m_selImage = {};
    m_selMask = {};
    m_rcSelection = {};
    m_bFloating = false;
}

void CIconObject::DropFloating() {
    if (!HasFloatingSelection()) return;
    m_undo.Push(State());
    MergeFloating(*this, m_bmpImage, m_bmpMask);
    ForgetSelection();
}

bool CIconObject::ConvertPalette(const CPalette& palette) {
    if (m_nBitCount != 8 || palette.Empty() || palette == m_Palette) return false;
    DropFloating();
    const auto mapped =
        MapToPalette(DIB24FromSurface(m_bmpImage), palette.colors, static_cast<int>(palette.colors.size()), true);
    auto planes = SplitByColor(ConvertDIBTo24(mapped), kNoColor, 0);
    if (!planes) return false;
    m_undo.Push(State());
    m_Palette = palette;
    m_bmpImage = std::move(planes.color);
    m_bDirty = true;
    return true;
}

} // namespace pelorin
