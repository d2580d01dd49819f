// Pictures of every depth through every writer and back: what a format promises to keep is there again.
#include "core/file_kinds.h"
#include "formats/load_image.h"
#include "formats/save_image.h"
#include "pixel/visit_depth.h"

namespace {

using namespace pelorin;

constexpr int kDepths[] = {1, 4, 8, 24, 32};

DibBlock TakePicture(ByteReader& in) {
    const int bits = kDepths[in.U8() % std::size(kDepths)], width = in.U8() % 80 + 1, height = in.U8() % 80 + 1;
    auto block = CreateDIB(width, height, bits);
    const DibRows rows(block);
    if (!rows) return {};
    if (bits <= 8) {
        std::array<Rgb, 256> table{};
        for (std::size_t i = 0; i < std::size_t{1} << bits; ++i) table[i] = in.U8() * 0x010101u ^ in.U8() % 64u << 8;
        SetDIBTable(block, table);
    }
    // Pixels repeat where the input is too short for them.
    const auto pixels = in.Rest();
    std::size_t next = 0;
    for (int y = 0; y < height && !pixels.empty(); ++y) {
        const auto bytes = static_cast<std::size_t>((width * bits + 7) / 8);
        for (std::size_t x = 0; x < bytes; ++x) rows.Row(y)[x] = pixels[next++ % pixels.size()];
    }
    return block;
}

std::vector<Argb> Colors(const DibBlock& block) {
    const DibView view(block);
    std::vector<Argb> colors;
    VisitDepth(view, [&](const auto& pixel) {
        for (int y = 0; y < view.Height(); ++y) {
            for (int x = 0; x < view.Width(); ++x) colors.push_back(pixel(view.PictureRow(y), x));
        }
    });
    return colors;
}

PictureSaveOptions TakeOptions(ByteReader& in) {
    PictureSaveOptions options;
    const unsigned flags = in.U8(), gif = in.U8();
    options.jpegQuality = in.U8() % 100 + 1;
    options.gif.colors = (gif & 15) == 0 ? 0 : 1 << (gif & 7);
    options.gif.palette = static_cast<PaletteKind>(gif >> 4 & 3);
    options.gif.dither = (flags & 1) != 0;
    options.gif.transparency = (flags & 2) != 0;
    options.gif.threshold = in.U8();
    options.gif.transparentIndex = (flags & 4) != 0 ? in.U8() : -1;
    options.jp2Rate = (flags & 8) != 0 ? 0.3 : 0;
    options.extension = (flags & 16) != 0 ? "j2k" : "jp2";
    options.png = static_cast<PngEffort>((flags >> 5) % 3);
    return options;
}

// An indexed picture, on a palette that it has room in, keeps its colours.
bool GifKeeps(const DibBlock& block, const GifSaveOptions& gif) {
    if (DIBBitCount(block) > 8) return false;
    if (gif.transparentIndex >= 0) return true;
    return gif.palette == PaletteKind::Adaptive && (gif.colors == 0 || gif.colors >= 1 << DIBBitCount(block));
}

bool Keeps(const DibBlock& block, int kind, const PictureSaveOptions& options) {
    const int bits = DIBBitCount(block);
    switch (kind) {
    case kKindGif: return GifKeeps(block, options.gif);
    case kKindPng: return bits != 1; // comes back in black and white
    case kKindJpeg2000: return options.jp2Rate == 0;
    case kKindBmp:
    case kKindPsd: return true;
    default: return false;
    }
}

bool HasAlpha(const std::vector<Argb>& colors) {
    return std::any_of(colors.begin(), colors.end(), [](Argb c) { return c >> 24 != 0; });
}

// A 32-bit picture as a GIF is transparent exactly where its alpha is below the threshold.
bool HolesFit(const std::vector<Argb>& colors, const DibBlock& back, int transparent, int threshold) {
    const DibView view(back);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const auto x = i % static_cast<std::size_t>(view.Width()), y = i / static_cast<std::size_t>(view.Width());
        const int index = view.PictureRow(static_cast<int>(y))[x];
        if ((index == transparent) != (static_cast<int>(colors[i] >> 24) < threshold)) return false;
    }
    return true;
}

void Try(const DibBlock& block, const PictureSaver& saver, const PictureSaveOptions& options) {
    Bytes file;
    if (saver.write(block, options, file) != 0) __builtin_trap();
    PictureRequest request;
    request.keepIndices = true;
    PictureFacts facts;
    const auto back = ReadPicture(file, saver.kind, request, facts);
    if (!DibView(back) || DIBWidth(back) != DIBWidth(block) || DIBHeight(back) != DIBHeight(block)) __builtin_trap();
    auto before = Colors(block), after = Colors(back);
    if (saver.kind == kKindGif && DIBBitCount(block) == 32 && options.gif.transparency && DIBBitCount(back) == 8 &&
        !HolesFit(before, back, facts.transparentIndex, options.gif.threshold))
        __builtin_trap();
    if (!Keeps(block, saver.kind, options)) return;
    // A BMP without any alpha has none.
    if (saver.kind == kKindBmp && !HasAlpha(before)) {
        for (auto& color : before) color |= 0xFF000000u;
    }
    if (before != after) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteReader in({data, size});
    const auto savers = PictureSavers();
    const auto& saver = savers[in.U8() % savers.size()];
    const auto options = TakeOptions(in);
    const auto block = TakePicture(in);
    if (block && (saver.depths >> DIBBitCount(block) & 1) != 0) Try(block, saver, options);
    return 0;
}
