#include "icon/stored_icon.h"

#include "formats/png.h"
#include "pixel/surface.h"

namespace pelorin {

namespace {

constexpr std::uint32_t kPngSignature = 0x474E5089;

} // namespace

int CVnIcon::ShownBitCount() const {
    const int bits = BitCount();
    return bits != 0 ? bits : DIBBitCount(m_hImage);
}

std::uint32_t CVnIcon::BlockSize(int width, int height, int colors, bool alpha) {
    return static_cast<std::uint32_t>(IconBlockLayout(width, height, colors, alpha).size);
}

bool CVnIcon::Create(int width, int height, int colors, bool alpha) {
    const auto size = BlockSize(width, height, colors, alpha);
    if (size == 0) return false;
    m_nWidth = width;
    m_nHeight = height;
    m_nColors = colors;
    m_bAlpha = alpha;
    m_nBytes = size;
    m_hImage.assign(size, 0);
    m_pPngData.clear();
    m_nCacheWidth = m_nCacheHeight = 0;
    return true;
}

void CVnIcon::Copy(const CVnIcon& other) {
    m_nWidth = other.m_nWidth;
    m_nHeight = other.m_nHeight;
    m_nColors = other.m_nColors;
    m_nBytes = other.m_nBytes;
    m_nReserved = other.m_nReserved;
    m_bAlpha = other.m_bAlpha;
    m_bCompressed = other.m_bCompressed;
    m_nHotSpotX = other.m_nHotSpotX;
    m_nHotSpotY = other.m_nHotSpotY;
    m_nResourceId = other.m_nResourceId;
    m_nLanguage = other.m_nLanguage;
    m_nFileOffset = other.m_nFileOffset;
    m_nFileBytes = other.m_nFileBytes;
    m_nPngBytesRead = other.m_nPngBytesRead;
    m_hImage = other.m_hImage;
    m_hPreview = {};
    m_nPreviewInfo = m_nSavedOffset = m_nSavedIndex = 0;
    m_DrawCache.Clear();
    m_nCacheWidth = m_nCacheHeight = 0;
    m_pPngData.clear();
}

bool CVnIcon::ReadPngImage(ByteSpan png, int bits) {
    auto picture = ReadPng(png);
    if (DIBBitCount(picture) != 32) picture = DIBFromSurface(SurfaceFromDIB(picture));
    auto block = DIB32ToIconBlock(picture, bits);
    if (block.empty()) return false;
    m_nWidth = DIBWidth(picture);
    m_nHeight = DIBHeight(picture);
    m_nColors = IconColors(bits);
    m_bAlpha = bits == 32;
    m_nBytes = static_cast<std::uint32_t>(block.size());
    m_hImage = std::move(block);
    m_bCompressed = true;
    m_nPngBytesRead = static_cast<std::uint32_t>(png.size());
    return true;
}

bool CVnIcon::ReadFromMemory(ByteSpan data, std::uint32_t bytes, int bits) {
    ByteReader r(data);
    const auto first = r.U32LE();
    if (r.Ok() && first == kPngSignature) {
        return bytes != 0 && ReadPngImage(data.first(std::min<std::size_t>(bytes, data.size())), bits == 0 ? 32 : bits);
    }
    IconBlockHeader header;
    if (!ReadIconBlockHeader(data, header)) return false;
    if (!Create(header.width, header.height, header.colors, header.Alpha())) return false;
    m_bCompressed = false;
    m_nPngBytesRead = 0;
    std::memcpy(m_hImage.data(), data.data(), std::min<std::size_t>(m_nBytes, data.size()));
    return true;
}

Bytes CVnIcon::WriteCompressed() {
    Bytes file;
    PictureSaveOptions options;
    options.png = PngEffort::Smallest;
    if (WritePng(IconBlockToDIB32(m_hImage), options, file) != 0) file.clear();
    return file;
}

} // namespace pelorin
