#include "formats/packbits.h"
#include "formats/psd.h"
#include "formats/psd_planes.h"
#include "formats/reader_support.h"
#include "pixel/depth.h"

#include <fmt/format.h>

namespace pelorin {

namespace {

constexpr std::string_view kSignature = "8BPS";
constexpr int kMostChannels = 16, kRgbMode = 3;
constexpr ColorRef kWhite = 0xFFFFFF;
constexpr int kPlanes[] = {kPsdRed, kPsdGreen, kPsdBlue, kPsdAlpha};

struct Header {
    int channels = 0;
    Size size;

    [[nodiscard]] std::size_t Pixels() const {
        return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
    }
};

bool ReadHeader(ByteReader& in, Header& header) {
    if (!in.StartsWith(kSignature)) return false;
    in.Skip(4);
    if (in.U16BE() != 1) return false;
    in.Skip(6);
    header.channels = in.U16BE();
    const auto height = in.U32BE(), width = in.U32BE();
    const int depth = in.U16BE(), mode = in.U16BE();
    if (!in.Ok() || !IsPictureSize(width, height)) return false;
    header.size = {static_cast<int>(width), static_cast<int>(height)};
    return header.channels <= kMostChannels && depth == 8 && mode == kRgbMode;
}

// The section's bytes; the reader moves behind them.
ByteSpan TakeSection(ByteReader& in) {
    const auto length = in.U32BE();
    return in.Take(length);
}

// Whether the bytes left can hold the planes at all, so that no memory is taken for what is not there.
bool CanHoldPlanes(const ByteReader& in, const Header& header, PsdCompression compression) {
    const auto planes = static_cast<std::size_t>(std::min(header.channels, 4));
    const std::size_t bytes = planes * header.Pixels();
    return in.Left() >= (compression == PsdCompression::PackBits ? bytes / 64 : bytes);
}

void FillPlanes(ByteReader& in, const DibRows& rows, const Header& header, PsdCompression compression,
                ProgressScope& progress) {
    PackBitsReader runs(in);
    for (int plane = 0; plane < 4 && in.Ok(); ++plane) {
        const int byte = PsdByteOf(kPlanes[plane]);
        if (plane >= header.channels) {
            FillPlane(rows, byte, [&] { return static_cast<std::uint8_t>(byte == 3 ? 255 : 0); });
        } else if (compression == PsdCompression::PackBits) {
            FillPlane(rows, byte, [&] { return runs.Next(); });
            runs.DropRun();
        } else {
            FillPlane(rows, byte, [&] { return in.U8(); });
        }
        progress.Step(static_cast<std::uint64_t>(plane) + 1);
    }
}

DibBlock ReadMerged(ByteReader& in, const Header& header, Progress* watcher) {
    const int word = in.U16BE();
    if (!in.Ok() || word > static_cast<int>(PsdCompression::PackBits)) return {};
    const auto compression = static_cast<PsdCompression>(word);
    if (compression == PsdCompression::PackBits) {
        in.Skip(std::uint64_t{2} * static_cast<unsigned>(header.channels) * static_cast<unsigned>(header.size.height));
    }
    if (!in.Ok() || !CanHoldPlanes(in, header, compression)) return {};
    auto block = CreateDIB(header.size.width, header.size.height, 32);
    const DibRows rows(block);
    if (!rows) return {};
    ProgressScope progress(watcher, ReadingText("PSD"), 4);
    FillPlanes(in, rows, header, compression, progress);
    if (!in.Ok() || progress.StopAsked()) return {};
    return header.channels == 3 ? ComposeTo24(block, kWhite) : std::move(block);
}

// The three sections between header and merged image.
bool ReadSections(ByteReader& in, CPsdLayers* layers) {
    (void)TakeSection(in);
    (void)TakeSection(in);
    const auto section = TakeSection(in);
    if (!in.Ok()) return false;
    return !layers || ReadPsdLayers(section, *layers);
}

} // namespace

bool IsPsd(ByteSpan file) {
    return ByteReader(file).StartsWith(kSignature);
}

DibBlock ReadPsdImage(ByteSpan file, CPsdLayers* layers, Progress* progress) {
    ByteReader in(file);
    Header header;
    if (!ReadHeader(in, header) || !ReadSections(in, layers)) return {};
    return ReadMerged(in, header, progress);
}

DibBlock ReadPsd(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    CPsdLayers layers;
    auto merged = request.frame == 0 ? ReadPsdImage(file, &layers, request.progress) : DibBlock();
    const int wanted = request.layer < 0 && layers.size() == 1 ? 0 : request.layer;
    if (!merged || wanted >= static_cast<int>(layers.size())) return {};
    for (std::size_t i = 0; i < layers.size(); ++i) {
        const auto& title = layers[i].m_strTitle;
        facts.layers.push_back(title.empty() ? fmt::format("Layer {}", i + 1) : title);
    }
    if (wanted < 0) return merged;
    const Size canvas{DIBWidth(merged), DIBHeight(merged)};
    return PsdLayerOnCanvas(layers[static_cast<std::size_t>(wanted)], canvas, true);
}

} // namespace pelorin
