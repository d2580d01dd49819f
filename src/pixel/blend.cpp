#include "pixel/blend.h"

#include "pixel/pixel_word.h"

namespace pelorin {

namespace {

Argb BlendPixel(Argb target, Argb source, int alpha) {
    return MakePixel(Blend255(BlueOf(source), BlueOf(target), alpha), Blend255(GreenOf(source), GreenOf(target), alpha),
                     Blend255(RedOf(source), RedOf(target), alpha), AlphaOf(target));
}

// The source columns (or rows) that the visible part of a place shows; -1 where the source has none.
struct Mapping {
    int first = 0; // on the target
    std::vector<int> from;
};

Mapping MapSide(int placeFrom, int placeTo, int limit, int partFrom, int partTo, int sourceLimit) {
    Mapping mapping;
    const std::int64_t placeSize = std::int64_t{placeTo} - placeFrom, partSize = std::int64_t{partTo} - partFrom;
    if (placeSize <= 0 || partSize <= 0) return mapping;
    mapping.first = std::max(placeFrom, 0);
    for (int i = mapping.first; i < std::min(placeTo, limit); ++i) {
        const std::int64_t at = partFrom + (std::int64_t{i} - placeFrom) * partSize / placeSize;
        mapping.from.push_back(at >= 0 && at < sourceLimit ? static_cast<int>(at) : -1);
    }
    return mapping;
}

// `row(y)` gives the source's picture row `y` as a function from column to the pixel with its alpha on top.
template <class SourceRow>
void BlendStretched(Surface& target, const Rect& place, Size source, const Rect& part, SourceRow&& row) {
    const auto columns = MapSide(place.left, place.right, target.Width(), part.left, part.right, source.width);
    const auto rows = MapSide(place.top, place.bottom, target.Height(), part.top, part.bottom, source.height);
    for (std::size_t y = 0; y < rows.from.size(); ++y) {
        if (rows.from[y] < 0) continue;
        const auto pixel = row(rows.from[y]);
        auto* to = target.PictureRow(rows.first + static_cast<int>(y)) + std::ptrdiff_t{4} * columns.first;
        for (const int column : columns.from) {
            if (column >= 0) {
                const Argb from = pixel(column);
                StorePixel(to, BlendPixel(LoadPixel(to), from, AlphaOf(from)));
            }
            to += 4;
        }
    }
}

// Rows of anything that has picture rows of four bytes a pixel.
template <class Picture>
auto OwnAlpha(const Picture& picture) {
    return [&picture](int y) {
        return [from = picture.PictureRow(y)](int x) { return LoadPixel(from + std::ptrdiff_t{4} * x); };
    };
}

Rect OrWhole(const Rect& part, Size size) {
    return part.Empty() ? Rect{0, 0, size.width, size.height} : part;
}

} // namespace

void BlendConstant(Surface& target, const Rect& place, const Surface& source, const Rect& part, int alpha) {
    const Argb top = static_cast<Argb>(std::clamp(alpha, 0, 255)) << 24;
    BlendStretched(target, place, source.GetSize(), part, [&](int y) {
        return [from = source.PictureRow(y), top](int x) {
            return (LoadPixel(from + std::ptrdiff_t{4} * x) & 0xFFFFFFu) | top;
        };
    });
}

bool BlendDIBOver(Surface& target, Rect place, const DibBlock& block32, Rect part) {
    part = OrWhole(part, DibView(block32).GetSize());
    const auto end = [](int placeFrom, int placeTo, int partFrom, int partTo) {
        const auto size = std::int64_t{partTo} - partFrom, room = std::int64_t{placeTo} - placeFrom;
        return placeFrom + (room > 0 ? std::min(size, room) : size);
    };
    place.right =
        static_cast<int>(std::min<std::int64_t>(end(place.left, place.right, part.left, part.right), INT32_MAX));
    place.bottom =
        static_cast<int>(std::min<std::int64_t>(end(place.top, place.bottom, part.top, part.bottom), INT32_MAX));
    part.right = part.left + (place.right - place.left);
    part.bottom = part.top + (place.bottom - place.top);
    return BlendStretchedDIBOver(target, place, block32, part);
}

bool BlendStretchedDIBOver(Surface& target, Rect place, const DibBlock& block32, Rect part) {
    const DibView source(block32);
    if (!source || source.BitCount() != 32) return false;
    part = OrWhole(part, source.GetSize());
    if (place.Empty()) place = {place.left, place.top, place.left + part.Width(), place.top + part.Height()};
    BlendStretched(target, place, source.GetSize(), part, OwnAlpha(source));
    return true;
}

void BlendAlphaInFourth(Surface& target, int x, int y, const Surface& source) {
    const auto end = [](int from, int size) {
        return static_cast<int>(std::min<std::int64_t>(std::int64_t{from} + size, INT32_MAX));
    };
    const Rect place{x, y, end(x, source.Width()), end(y, source.Height())};
    BlendStretched(target, place, source.GetSize(), {0, 0, place.Width(), place.Height()}, OwnAlpha(source));
}

bool BlendWithAlphaBitmap(Surface& target, const Rect& place, const Surface& color, const Surface& alpha,
                          const Rect& part) {
    if (color.GetSize() != alpha.GetSize()) return false;
    BlendStretched(target, place, color.GetSize(), part, [&](int y) {
        return [from = color.PictureRow(y), grey = alpha.PictureRow(y)](int x) {
            const auto i = std::ptrdiff_t{4} * x;
            return (LoadPixel(from + i) & 0xFFFFFFu) | static_cast<Argb>(grey[i]) << 24;
        };
    });
    return true;
}

bool CopyColorKeepAlpha(Surface& target, const Surface& source) {
    if (target.GetSize() != source.GetSize()) return false;
    const auto* from = source.Span().data();
    auto* to = target.Span().data();
    const auto size = target.Span().size();
    for (std::size_t i = 0; i < size; i += 4) {
        StorePixel(to + i, (LoadPixel(to + i) & 0xFF000000u) | (LoadPixel(from + i) & 0x00FFFFFFu));
    }
    return true;
}

} // namespace pelorin
