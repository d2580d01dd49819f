#include "containers/icns_images.h"
#include "containers/icns_rle.h"
#include "formats/jpeg2000.h"
#include "icon/planes.h"
#include "pixel/alpha_mask.h"
#include "pixel/color.h"
#include "pixel/nearest_color.h"
#include "pixel/visit_depth.h"

namespace pelorin {

namespace {

constexpr Rgb kColorBits = 0xFFFFFF;
// What a transparent pixel of 1, 4 or 8 bits counts as, whatever stands under the mask.
constexpr Rgb kHiddenColor = 0xC0C0C0;

// The planes of an icon, with alpha as such at every depth.
struct Source {
    Surface image, mask;
    bool alpha;

    [[nodiscard]] Rgb Color(int x, int y) const {
        return alpha || Alpha(x, y) != 0 ? image.At(x, y) & kColorBits : kHiddenColor;
    }
    [[nodiscard]] std::uint8_t Alpha(int x, int y) const {
        const auto level = static_cast<std::uint8_t>(mask.At(x, y));
        return alpha ? level : static_cast<std::uint8_t>(~level);
    }
};

// Calls `put(row, x, y)` from the top left to the bottom right; the rows have `Bits` bits a pixel.
template <class Put>
Bytes MakeRows(const Source& source, int bits, Put&& put) {
    const auto stride = (static_cast<std::size_t>(source.image.Width()) * static_cast<std::size_t>(bits) + 7) / 8;
    Bytes rows(stride * static_cast<std::size_t>(source.image.Height()));
    for (int y = 0; y < source.image.Height(); ++y) {
        auto* row = rows.data() + stride * static_cast<std::size_t>(y);
        for (int x = 0; x < source.image.Width(); ++x) put(row, x, y);
    }
    return rows;
}

Bytes OneBitMask(const Source& source) {
    return MakeRows(source, 1,
                    [&](std::uint8_t* row, int x, int y) { PutIndex<1>(row, x, source.Alpha(x, y) != 0 ? 1 : 0); });
}

Bytes BlackPixels(const Source& source) {
    return MakeRows(source, 1, [&](std::uint8_t* row, int x, int y) {
        const auto color = source.Color(x, y);
        PutIndex<1>(row, x, (RedOf(color) + GreenOf(color) + BlueOf(color)) / 3 < 128 ? 1 : 0);
    });
}

template <int Bits>
Bytes NearestPixels(const Source& source) {
    const auto palette = IcnsPalette(Bits);
    NearestColor nearest(TableOf(palette), static_cast<int>(palette.size()));
    return MakeRows(source, Bits, [&](std::uint8_t* row, int x, int y) {
        const auto color = source.Color(x, y);
        PutIndex<Bits>(row, x, nearest.Find(RedOf(color), GreenOf(color), BlueOf(color)).index);
    });
}

// `shift`: where the channel stands in a colour.
Bytes Channel(const Source& source, int shift) {
    return MakeRows(source, 8, [&](std::uint8_t* row, int x, int y) {
        row[x] = static_cast<std::uint8_t>(source.image.At(x, y) >> shift);
    });
}

IcnsPlanes ColorPlanes(const Source& source) {
    IcnsPlanes planes;
    for (const int shift : {16, 8, 0}) EncodeIcnsPlane(Channel(source, shift), planes.color);
    planes.mask = MakeRows(source, 8, [&](std::uint8_t* row, int x, int y) { row[x] = source.Alpha(x, y); });
    return planes;
}

std::optional<IcnsPlanes> Stream(const Source& source) {
    auto block = CreateDIB(source.image.Width(), source.image.Height(), 32);
    IcnsPlanes planes;
    if (!block || !MergeAlpha(source.image, source.mask, block.Span(), true)) return {};
    if (WriteJpeg2000(block, {}, planes.color) != 0) return {};
    return planes;
}

} // namespace

std::optional<IcnsPlanes> IcnsFromImage(const IcnsElementKind& kind, const CVnIcon& icon) {
    Source source{{}, {}, icon.m_bAlpha};
    if (!ToBitmaps(icon, source.image, source.mask)) return {};
    switch (kind.coding) {
    case IcnsCoding::Planes: return ColorPlanes(source);
    case IcnsCoding::Jpeg2000: return Stream(source);
    default: break;
    }
    auto colors = kind.colorBits == 1   ? BlackPixels(source)
                  : kind.colorBits == 4 ? NearestPixels<4>(source)
                                        : NearestPixels<8>(source);
    return IcnsPlanes{std::move(colors), OneBitMask(source)};
}

} // namespace pelorin
