#include "icon/stored_icon.h"

#include "formats/png.h"
#include "pixel/surface.h"

namespace pelorin {

namespace {

constexpr std::uint32_t kPngSignature = 0x474E5089;

// The first bytes of a zlib stream tell how hard the packer tried: 3 in the top bits for its upper levels.
bool IsPackedHard(ByteSpan stream) {
    return stream.size() >= 2 && stream[1] >> 6 == 3;
}

/// True for a PNG file that need not be packed anew: 8-bit RGBA whose values stand for themselves, packed with effort,
/// and nothing behind or beside the picture but the marks that many programs leave.
bool IsWellPackedPng(ByteSpan png) {
    constexpr std::uint32_t kUsualGamma = 45455;
    constexpr std::size_t kDepthAt = 24, kChunkFrame = 12;
    ByteReader in(png);
    in.Skip(kDepthAt);
    const auto depth = in.U8(), type = in.U8();
    in.Skip(2);
    if (depth != 8 || type != 6 || in.U8() != 0) return false;
    in.Seek(8);
    bool hasData = false, packedHard = false;
    while (in.Left() >= kChunkFrame) {
        const auto length = in.U32BE();
        const auto name = AsText(in.Take(4));
        const auto data = in.Take(length);
        in.Skip(4);
        if (name == "IEND") return packedHard && in.Ok() && in.AtEnd();
        const bool mark =
            name == "sRGB" || name == "pHYs" || (name == "gAMA" && ByteReader(data).U32BE() == kUsualGamma);
        if (!mark && name != "IHDR" && name != "IDAT") return false;
        if (name == "IDAT" && !hasData) {
            hasData = true;
            packedHard = IsPackedHard(data);
        }
    }
    return false;
}

std::size_t HashOfPixels(const DibBlock& picture) {
    return std::hash<std::string_view>()(AsText(picture.Span().subspan(DIBRowsOffset(picture.Span()))));
}

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
    m_pPngRead = other.m_pPngRead;
    m_nHashRead = other.m_nHashRead;
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
    m_pPngRead.reset();
    if (png.size() < m_nBytes && IsWellPackedPng(png)) {
        m_pPngRead = std::make_shared<const Bytes>(png.begin(), png.end());
        m_nHashRead = HashOfPixels(picture);
    }
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
    m_pPngRead.reset();
    std::memcpy(m_hImage.data(), data.data(), std::min<std::size_t>(m_nBytes, data.size()));
    return true;
}

Bytes CVnIcon::WriteCompressed() {
    const auto picture = IconBlockToDIB32(m_hImage);
    if (m_pPngRead && HashOfPixels(picture) == m_nHashRead) return *m_pPngRead;
    Bytes file;
    PictureSaveOptions options;
    options.png = PngEffort::Smallest;
    if (WritePng(picture, options, file) != 0) file.clear();
    return file;
}

} // namespace pelorin
