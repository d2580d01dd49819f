#include "formats/gif.h"
#include "pixel/depth.h"
#include "pixel/map_palette.h"
#include "pixel/visit_depth.h"

#include <gif_lib.h>

#include <bit>
#include <memory>

namespace pelorin {

namespace {

enum WriteCode { kDone = 0, kBadRows = 3, kEncoderFailed = 4, kNoPicture = 20 };

constexpr int kMaxColors = 256, kMaxSide = 65535;

// A picture in the form that the file has: the top row first.
struct Indexed {
    int width = 0, height = 0;
    Bytes indices;
    std::array<Rgb, 256> table{};
    int colors = 0;
    int transparent = -1;
};

template <int Bits>
void CopyIndices(const DibView& view, Bytes& indices) {
    for (int y = 0; y < view.Height(); ++y) {
        const auto* row = view.PictureRow(y);
        for (int x = 0; x < view.Width(); ++x) indices.push_back(static_cast<std::uint8_t>(IndexAt<Bits>(row, x)));
    }
}

Indexed TakeIndices(const DibView& view) {
    Indexed picture{view.Width(), view.Height(), {}, view.Table()};
    picture.indices.reserve(static_cast<std::size_t>(view.Width()) * static_cast<std::size_t>(view.Height()));
    switch (view.BitCount()) {
    case 1: CopyIndices<1>(view, picture.indices); break;
    case 4: CopyIndices<4>(view, picture.indices); break;
    default: CopyIndices<8>(view, picture.indices);
    }
    return picture;
}

// The smallest size of a colour map (a power of 2, at least 2) with an entry for every index.
int SizeFor(const Indexed& picture) {
    const auto highest = *std::max_element(picture.indices.begin(), picture.indices.end());
    const auto needed = std::max<unsigned>({highest, static_cast<unsigned>(std::max(0, picture.transparent)), 1u}) + 1;
    return static_cast<int>(std::bit_ceil(needed));
}

// An indexed block as it stands, where the options ask for nothing else.
bool KeepIndices(const DibView& view, const GifSaveOptions& options, Indexed& picture) {
    if (view.BitCount() > 8) return false;
    const bool final = options.transparentIndex >= 0;
    if (!final && options.palette != PaletteKind::Adaptive) return false;
    picture = TakeIndices(view);
    picture.transparent = options.transparentIndex < kMaxColors ? options.transparentIndex : -1;
    const int needed = SizeFor(picture);
    if (!final && options.colors != 0 && needed > options.colors) return false;
    const int stated = options.colors != 0 ? options.colors : 1 << view.BitCount();
    picture.colors = static_cast<int>(std::bit_ceil(static_cast<unsigned>(std::clamp(stated, needed, kMaxColors))));
    return true;
}

bool IsTransparent(const std::uint8_t* pixel, const GifSaveOptions& options) {
    return pixel[3] < options.threshold;
}

bool HasTransparency(const DibView& view, const GifSaveOptions& options) {
    if (view.BitCount() != 32 || !options.transparency) return false;
    for (int y = 0; y < view.Height(); ++y) {
        const auto* row = view.Row(y);
        for (int x = 0; x < view.Width(); ++x) {
            if (IsTransparent(row + std::ptrdiff_t{4} * x, options)) return true;
        }
    }
    return false;
}

// Any block on the palette that the options ask for.
bool Reduce(const DibBlock& block, const GifSaveOptions& options, Indexed& picture) {
    const DibView source(block);
    const bool transparent = HasTransparency(source, options);
    // With a slot for transparency two colours go before any is left to search.
    const int asked = options.colors == 0 ? kMaxColors : std::clamp(options.colors, transparent ? 4 : 2, kMaxColors);
    const auto kind = options.palette;
    // Fixed palettes have all their colours, whatever is asked for.
    const int colors = kind == PaletteKind::Adaptive ? asked : kMaxColors;
    const auto plain = ComposeTo24(block, ColorRefFromRgb(options.matte));
    const auto reduced = ReduceColors(plain, colors, options.dither, kind, transparent);
    const DibView view(reduced);
    if (!view) return false;
    picture = TakeIndices(view);
    if (transparent) {
        picture.transparent = colors - 1;
        auto next = picture.indices.begin();
        for (int y = 0; y < source.Height(); ++y) {
            const auto* row = source.PictureRow(y);
            for (int x = 0; x < source.Width(); ++x, ++next) {
                if (IsTransparent(row + std::ptrdiff_t{4} * x, options)) *next = static_cast<std::uint8_t>(colors - 1);
            }
        }
    }
    picture.colors = std::max(SizeFor(picture), static_cast<int>(std::bit_ceil(static_cast<unsigned>(colors))));
    return true;
}

int WriteBytes(GifFileType* gif, const GifByteType* bytes, int count) {
    static_cast<ByteWriter*>(gif->UserData)->Raw({bytes, static_cast<std::size_t>(count)});
    return count;
}

struct FreeColorMap {
    void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};
using OwnedColorMap = std::unique_ptr<ColorMapObject, FreeColorMap>;

OwnedColorMap MakeColorMap(const Indexed& picture) {
    OwnedColorMap map(GifMakeMapObject(picture.colors, nullptr));
    for (int i = 0; map && i < picture.colors; ++i) {
        const auto color = picture.table[static_cast<std::size_t>(i)];
        map->Colors[i] = {static_cast<GifByteType>(color >> 16), static_cast<GifByteType>(color >> 8),
                          static_cast<GifByteType>(color)};
    }
    return map;
}

// The library writes the older version's name unless the frame has an extension.
bool Encode(Indexed& picture, ByteWriter& out) {
    auto* gif = EGifOpen(&out, WriteBytes, nullptr);
    if (!gif) return false;
    GifByteType control[4];
    ExtensionBlock extension{4, control, GRAPHICS_EXT_FUNC_CODE};
    SavedImage image{};
    image.ImageDesc.Width = picture.width;
    image.ImageDesc.Height = picture.height;
    image.RasterBits = picture.indices.data();
    if (picture.transparent >= 0) {
        const GraphicsControlBlock block{DISPOSAL_UNSPECIFIED, false, 0, picture.transparent};
        EGifGCBToExtension(&block, control);
        image.ExtensionBlocks = &extension;
        image.ExtensionBlockCount = 1;
    }
    gif->SWidth = picture.width;
    gif->SHeight = picture.height;
    gif->SColorResolution = 8;
    // The library puts a copy of the map in the place of ours, which stays ours to free.
    const auto map = MakeColorMap(picture);
    gif->SColorMap = map.get();
    gif->SavedImages = &image;
    gif->ImageCount = 1;
    if (map && EGifSpew(gif) == GIF_OK) return true;
    if (gif->SColorMap == map.get()) gif->SColorMap = nullptr;
    gif->SavedImages = nullptr;
    gif->ImageCount = 0;
    EGifCloseFile(gif, nullptr);
    return false;
}

} // namespace

int WriteGif(const DibBlock& block, const PictureSaveOptions& options, Bytes& out) {
    if (!block) return kNoPicture;
    const DibView view(block);
    if (!view) return kBadRows;
    if (view.Width() > kMaxSide || view.Height() > kMaxSide) return kEncoderFailed;
    Indexed picture;
    if (!KeepIndices(view, options.gif, picture) && !Reduce(block, options.gif, picture)) return kBadRows;
    ByteWriter file;
    if (!Encode(picture, file)) return kEncoderFailed;
    out = file.Take();
    return kDone;
}

} // namespace pelorin
