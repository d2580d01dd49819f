#include "formats/psd.h"
#include "formats/psd_planes.h"
#include "pixel/depth.h"

namespace pelorin {

namespace {

constexpr int kNotConverted = 1;
// In the order in which layer and merged image have them.
constexpr int kChannels[] = {kPsdRed, kPsdGreen, kPsdBlue, kPsdAlpha};
constexpr std::size_t kHeaderBytes = 26, kRecordBytes = 16 + 2 + 4 * 6 + 12 + 4;

void WriteHeader(ByteWriter& file, const DibView& view) {
    file.Text("8BPS");
    file.U16BE(1);
    file.Zeros(6);
    file.U16BE(std::size(kChannels));
    file.I32BE(view.Height());
    file.I32BE(view.Width());
    file.U16BE(8);
    file.U16BE(3);
}

void WriteRecord(ByteWriter& file, const DibView& view) {
    const auto pixels = static_cast<std::uint32_t>(view.Width()) * static_cast<std::uint32_t>(view.Height());
    file.Zeros(8);
    file.I32BE(view.Height());
    file.I32BE(view.Width());
    file.U16BE(std::size(kChannels));
    for (const int id : kChannels) {
        file.U16BE(static_cast<std::uint32_t>(id));
        file.U32BE(pixels + 2);
    }
    file.Text("8BIMnorm");
    for (const int byte : {255, 0, 0xC0, 0}) file.U8(static_cast<std::uint32_t>(byte));
    file.U32BE(0);
}

void WritePlane(ByteWriter& file, const DibView& view, int byte) {
    auto* to = file.Grow(static_cast<std::size_t>(view.Width()) * static_cast<std::size_t>(view.Height()));
    for (int y = 0; y < view.Height(); ++y) {
        const auto* from = view.PictureRow(y) + byte;
        for (int x = 0; x < view.Width(); ++x, from += 4) *to++ = *from;
    }
}

// The length of the block of layers is always even: records have 58 bytes, and four planes of one size follow.
void WriteLayers(ByteWriter& file, const DibView& view) {
    const auto section = file.Size();
    file.Zeros(8);
    file.U16BE(1);
    WriteRecord(file, view);
    for (const int id : kChannels) {
        file.U16BE(static_cast<std::uint32_t>(PsdCompression::Plain));
        WritePlane(file, view, PsdByteOf(id));
    }
    file.PatchU32BE(section + 4, static_cast<std::uint32_t>(file.Size() - section - 8));
    file.U32BE(0);
    file.PatchU32BE(section, static_cast<std::uint32_t>(file.Size() - section - 4));
}

} // namespace

int WritePsd(const DibBlock& block, const PictureSaveOptions& options, Bytes& out) {
    DibBlock converted;
    if (DIBBitCount(block) != 32) converted = ConvertTo32(block, false, kNoColor);
    const DibView view(converted ? converted : block);
    if (!view || view.BitCount() != 32) return kNotConverted;
    ProgressScope progress(options.progress, "Writing PSD...", 2);
    ByteWriter file(kHeaderBytes + kRecordBytes + 64 + view.Stride() * static_cast<std::size_t>(view.Height()) * 2);
    WriteHeader(file, view);
    file.Zeros(8);
    WriteLayers(file, view);
    progress.Step(1);
    file.U16BE(static_cast<std::uint32_t>(PsdCompression::Plain));
    for (const int id : kChannels) WritePlane(file, view, PsdByteOf(id));
    out = file.Take();
    return 0;
}

} // namespace pelorin
