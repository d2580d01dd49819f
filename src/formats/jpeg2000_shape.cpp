#include "formats/jpeg2000_shape.h"

#include "pixel/dib.h"

#include <optional>

namespace pelorin {

namespace {

constexpr std::uint32_t kBoxHeader = 0x6A703268, kBoxPalette = 0x70636C72, kBoxCodestream = 0x6A703263;
constexpr std::uint16_t kSoc = 0xFF4F, kSiz = 0xFF51, kCod = 0xFF52, kCoc = 0xFF53, kSot = 0xFF90, kSod = 0xFF93;

constexpr std::uint32_t kMaxComponents = 16, kMaxPaletteChannels = 4;
constexpr std::uint64_t kMaxSamples = std::uint64_t{kMaxPixels} * 3;
// The least that a file spends on a tile: the SOT segment and SOD.
constexpr std::uint64_t kTileBytes = 14;

struct Box {
    std::uint32_t type = 0;
    ByteSpan content;
};

// The box at the reader's place; none at the end or when its length makes no sense.
std::optional<Box> NextBox(ByteReader& in) {
    std::uint64_t length = in.U32BE();
    Box box;
    box.type = in.U32BE();
    std::uint64_t header = 8;
    if (length == 1) {
        length = in.U64BE();
        header = 16;
    }
    if (!in.Ok() || (length != 0 && length < header)) return std::nullopt;
    box.content = length == 0 ? in.Rest() : in.TakeUpTo(length - header);
    return box;
}

// A palette turns one component into as many as it has columns.
bool PaletteIsSmall(ByteSpan header) {
    ByteReader in(header);
    while (const auto box = NextBox(in)) {
        ByteReader palette(box->content);
        palette.Skip(2);
        if (box->type == kBoxPalette && palette.U8() > kMaxPaletteChannels) return false;
    }
    return true;
}

ByteSpan FindCodestream(ByteSpan file) {
    ByteReader in(file);
    if (file.size() >= 2 && LoadU16BE(file.data()) == kSoc) return file;
    while (const auto box = NextBox(in)) {
        if (box->type == kBoxHeader && !PaletteIsSmall(box->content)) return {};
        if (box->type == kBoxCodestream) return box->content;
    }
    return {};
}

struct Grid {
    Jpeg2000Shape shape;
    std::uint64_t tilesAcross = 0, tilesDown = 0;
};

bool ReadSiz(ByteReader in, Grid& grid) {
    in.Skip(2);
    const std::uint64_t right = in.U32BE(), bottom = in.U32BE(), left = in.U32BE(), top = in.U32BE();
    const std::uint64_t tileWidth = in.U32BE(), tileHeight = in.U32BE(), tileLeft = in.U32BE(), tileTop = in.U32BE();
    grid.shape.components = in.U16BE();
    if (!in.Ok() || left >= right || top >= bottom || tileWidth == 0 || tileHeight == 0) return false;
    if (tileLeft > left || tileTop > top || grid.shape.components == 0) return false;
    grid.shape.width = static_cast<std::uint32_t>(right - left);
    grid.shape.height = static_cast<std::uint32_t>(bottom - top);
    grid.tilesAcross = (right - tileLeft + tileWidth - 1) / tileWidth;
    grid.tilesDown = (bottom - tileTop + tileHeight - 1) / tileHeight;
    return true;
}

bool SizIsInProportion(const Grid& grid, std::uint64_t fileSize) {
    const auto pixels = std::uint64_t{grid.shape.width} * grid.shape.height;
    return grid.shape.width <= INT32_MAX && grid.shape.height <= INT32_MAX && pixels <= std::uint64_t{kMaxPixels} &&
           grid.shape.components <= kMaxComponents && pixels * grid.shape.components <= kMaxSamples &&
           grid.tilesAcross * grid.tilesDown <= fileSize / kTileBytes;
}

// Pieces that a length falls into; every tile may cut one in two.
std::uint64_t Pieces(std::uint64_t length, int exponent, std::uint64_t tiles) {
    return (length >> exponent) + 2 * tiles;
}

// The common end of COD and COC: levels, code blocks, precincts.
bool CodingIsInProportion(ByteReader& in, bool precincts, int layers, Grid& grid, std::uint64_t fileSize) {
    const int levels = in.U8();
    const int blockWidth = in.U8() + 2, blockHeight = in.U8() + 2;
    in.Skip(2);
    if (!in.Ok() || levels > 32 || blockWidth > 10 || blockHeight > 10) return false;
    grid.shape.levels = std::min(grid.shape.levels, levels);
    std::uint64_t packets = 0, blocks = 0;
    for (int r = 0; r <= levels; ++r) {
        const auto size = precincts ? in.U8() : std::uint8_t{0xFF};
        const int across = size & 15, down = size >> 4;
        const std::uint64_t width = grid.shape.width >> std::min(levels - r, 31);
        const std::uint64_t height = grid.shape.height >> std::min(levels - r, 31);
        // All resolutions but the lowest have precincts of half the size in each band.
        const int half = r > 0 ? 1 : 0;
        const int blockX = std::min(blockWidth, std::max(across - half, 0));
        const int blockY = std::min(blockHeight, std::max(down - half, 0));
        packets += Pieces(width, across, grid.tilesAcross) * Pieces(height, down, grid.tilesDown);
        blocks += Pieces(width, blockX, grid.tilesAcross) * Pieces(height, blockY, grid.tilesDown);
    }
    const std::uint64_t times = grid.shape.components;
    constexpr std::uint64_t mebi = std::uint64_t{1} << 20;
    return in.Ok() && packets * times * static_cast<std::uint64_t>(layers) <= mebi / 16 + 16 * fileSize &&
           blocks * times <= mebi + 8 * fileSize;
}

// One segment of a main or tile-part header; layers are those of the last COD.
bool ReadSegment(std::uint16_t marker, ByteReader in, Grid& grid, int& layers, std::uint64_t fileSize) {
    if (marker == kCod) {
        const bool precincts = in.U8() & 1;
        in.Skip(1);
        layers = in.U16BE();
        in.Skip(1);
        return CodingIsInProportion(in, precincts, layers, grid, fileSize);
    }
    if (marker == kCoc) {
        in.Skip(grid.shape.components > 256 ? 2 : 1);
        const bool precincts = in.U8() & 1;
        return CodingIsInProportion(in, precincts, layers, grid, fileSize);
    }
    return true;
}

} // namespace

bool ReadJpeg2000Shape(ByteSpan file, Jpeg2000Shape& shape) {
    const auto stream = FindCodestream(file);
    ByteReader in(stream);
    if (in.U16BE() != kSoc || in.U16BE() != kSiz) return false;
    Grid grid;
    const auto siz = in.U16BE();
    if (siz < 2 || !ReadSiz(in.Sub(in.Pos(), siz - 2u), grid) || !SizIsInProportion(grid, file.size())) return false;
    in.Skip(siz - 2u);

    int layers = 1;
    std::uint64_t partStart = 0, partLength = 0;
    while (in.Left() >= 2) {
        const auto start = in.Pos();
        const auto marker = in.U16BE();
        if (marker == kSod) {
            // Over the packets to the next tile-part; without a length they go on to the end.
            if (partLength < 14 || partStart + partLength <= start) break;
            in.Seek(std::min<std::uint64_t>(partStart + partLength, stream.size()));
            continue;
        }
        if (marker < 0xFF01 || in.Left() < 2) break;
        const auto length = in.U16BE();
        if (length < 2) break;
        auto segment = in.Sub(in.Pos(), length - 2u);
        if (marker == kSot) {
            segment.Skip(2);
            partStart = start;
            partLength = segment.U32BE();
        } else if (!ReadSegment(marker, segment, grid, layers, file.size())) {
            return false;
        }
        in.Skip(length - 2u);
        if (!in.Ok()) break;
    }
    shape = grid.shape;
    return true;
}

} // namespace pelorin
