// Bytes taken for a bitmap block, as they come out of an archive or an icon, through everything that takes blocks.
#include "pixel/alpha_mask.h"
#include "pixel/cdib.h"
#include "pixel/depth.h"
#include "pixel/dither.h"
#include "pixel/format_pipeline.h"
#include "pixel/map_palette.h"
#include "pixel/quantize.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    constexpr std::size_t kLargest = 1 << 16;
    if (size < 4 || size > kLargest) return 0;
    const std::uint8_t choice = data[size - 1];
    const auto block = DibBlock::FromBytes({data, size - 1});

    const auto keyed = ConvertTo32(block, (choice & 1) != 0, choice * 0x010203u);
    if (DibView(block).GetSize() != DibView(ConvertToOpaque32(block)).GetSize()) __builtin_trap();
    (void)ConvertTo15(block);
    (void)KeyTo32(block, choice);
    (void)AlphaToGrey(block);
    const auto composed = ComposeTo24(block, choice * 0x030201u);
    (void)DitherTo8(block, choice / 16 + 1, choice % 16 + 1, choice % 6, (choice & 1) != 0);
    (void)ThresholdToMono(block);
    int count = choice;
    (void)QuantizeTwoImages(block, composed, count, true);
    (void)ReduceColors(composed, choice, true, static_cast<PaletteKind>(choice % 4), (choice & 8) != 0);
    (void)SplitByThreshold(block);
    (void)SplitColorAlpha(block, (choice & 1) != 0);

    Bytes bytes(data, data + size - 1);
    const Surface plane(std::clamp(DIBWidth(block), 0, 64), std::clamp(DIBHeight(block), 0, 64));
    (void)MergeToIconBlock(plane, plane, bytes, (choice & 1) != 0);

    FormatRequest request;
    request.width = choice % 16 + 1;
    request.height = choice / 16 + 1;
    request.bits = choice % 33;
    request.resample = (choice & 2) != 0;
    (void)RunFormatPipeline(block, request);

    CDIB dib(CopyHandle(block));
    (void)dib.KeepSourcePalette(choice % 10);
    ArchiveWriter archive;
    dib.Serialize(archive);
    CDIB again;
    ArchiveReader reader(archive.View());
    again.Serialize(reader);
    if (DibView(dib.Block()).GetSize() != DibView(again.Block()).GetSize()) __builtin_trap();
    dib.m_nTransparentIndex = choice;
    (void)dib.ApplyTransparentIndex();
    (void)dib.ApplySourcePalette();
    (void)dib.Crop(choice, 3, 0, choice);
    Surface target(9, 9);
    (void)dib.DrawFitted(target, {-3, -3, choice, 12}, {choice % 33, (choice & 4) != 0});
    return 0;
}
