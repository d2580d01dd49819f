#include "formats/metafile/shrink.h"

#include "pixel/dib.h"

namespace pelorin::metafile {

namespace {

constexpr Rgb kColors = 0xFFFFFF;

bool IsBlackAndWhite(const Surface& source, const Rect& part) {
    for (int y = part.top; y < part.bottom; ++y) {
        for (int x = part.left; x < part.right; ++x) {
            const auto color = source.At(x, y) & kColors;
            if (color != 0 && color != kColors) return false;
        }
    }
    return true;
}

// The colour of all pixels of a box.
Rgb Together(const Surface& source, const Rect& box, Shrinking how) {
    Rgb both = kColors, either = 0;
    std::uint64_t sums[3] = {}, count = 0;
    for (int y = box.top; y < box.bottom; ++y) {
        for (int x = box.left; x < box.right; ++x, ++count) {
            const auto color = source.At(x, y) & kColors;
            both &= color;
            either |= color;
            for (unsigned i = 0; i < 3; ++i) sums[i] += color >> 8 * i & 255;
        }
    }
    if (how == Shrinking::Black) return both;
    if (how == Shrinking::White) return either;
    return static_cast<Rgb>(sums[2] / count << 16 | sums[1] / count << 8 | sums[0] / count);
}

// Where the pixels of each column or row begin, and the end of the last one.
std::vector<int> Borders(int from, int length, int count) {
    std::vector<int> borders;
    for (std::int64_t i = 0; i <= count; ++i) borders.push_back(from + static_cast<int>(i * length / count));
    return borders;
}

} // namespace

Surface Shrunk(const Surface& source, const Rect& part, Size size, Shrinking how) {
    if (how == Shrinking::One || (how != Shrinking::Average && !IsBlackAndWhite(source, part))) return {};
    const auto columns = Borders(part.left, part.Width(), size.width),
               rows = Borders(part.top, part.Height(), size.height);
    Surface small(size.width, size.height);
    for (int y = 0; y < size.height; ++y) {
        const auto row = static_cast<std::size_t>(y);
        for (int x = 0; x < size.width; ++x) {
            const auto column = static_cast<std::size_t>(x);
            small.Put(x, y,
                      0xFF000000u |
                          Together(source, {columns[column], rows[row], columns[column + 1], rows[row + 1]}, how));
        }
    }
    return small;
}

} // namespace pelorin::metafile
