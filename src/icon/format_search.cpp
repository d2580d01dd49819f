#include "icon/format_search.h"

#include "icon/standard_formats.h"

#include <array>
#include <cstdlib>

namespace pelorin {

namespace {

// One row a depth of the dialogs: the value that the score is to come near, and the bits that must be exceeded.
struct WantedDepth {
    int value, limit;
};
constexpr std::array<WantedDepth, 5> kWindowsDepths = {{{65, 32}, {48, 24}, {32, 8}, {18, 4}, {1, 1}}};
constexpr std::array<WantedDepth, 4> kMacintoshDepths = {{{65, 32}, {32, 8}, {18, 4}, {1, 1}}};

std::span<const WantedDepth> WantedDepths(bool macintosh) {
    if (macintosh) return kMacintoshDepths;
    return kWindowsDepths;
}

template <class List>
auto Clamped(const List& list, int index) {
    return list[static_cast<std::size_t>(std::clamp(index, 0, static_cast<int>(list.size()) - 1))];
}

int Index(std::size_t i) {
    return static_cast<int>(i);
}

// Among formats of exactly this size, that with the most bits above the limit.
int ExactSize(std::span<const IconFormat> formats, Size size, bool byHeight, int limit) {
    int best = -1, bits = limit;
    for (std::size_t i = 0; i < formats.size(); ++i) {
        const auto& f = formats[i];
        const bool same = byHeight ? f.height == size.height : f.width == size.width && f.height == size.height;
        if (same && f.bits > bits) {
            best = Index(i);
            bits = f.bits;
        }
    }
    return best;
}

// The first format of the wanted side with more bits; else the widest with alpha.
int SideOrWidestAlpha(std::span<const IconFormat> formats, Size size, bool byHeight, int limit) {
    int widest = -1;
    for (std::size_t i = 0; i < formats.size(); ++i) {
        const auto& f = formats[i];
        const bool same = byHeight ? f.height == size.height : f.width == size.width;
        if (same && f.bits > limit) return Index(i);
        if (f.bits == 32 && (widest < 0 || f.width > formats[static_cast<std::size_t>(widest)].width))
            widest = Index(i);
    }
    return widest;
}

int SearchSource(std::span<const IconFormat> formats, Size size, const WantedDepth& depth, bool macintosh) {
    if (const int exact = ExactSize(formats, size, macintosh, depth.limit); exact >= 0) return exact;
    if (const int near = SideOrWidestAlpha(formats, size, macintosh, depth.limit); near >= 0) return near;
    return FindBestFormat(formats, macintosh ? size.height : size.width, depth.value);
}

} // namespace

int DepthValue(int bits) {
    switch (bits) {
    case 1: return 2;
    case 4: return 16;
    case 8: return 32;
    case 24: return 48;
    default: return 64;
    }
}

int FindBestFormat(std::span<const IconFormat> formats, int size, int depthValue) {
    int best = -1, bestScore = 0;
    for (std::size_t i = 0; i < formats.size(); ++i) {
        const auto& f = formats[i];
        const int score =
            std::abs(size - f.width) + std::abs(size - f.height) + 2 * std::abs(DepthValue(f.bits) - depthValue);
        if (best < 0 || score < bestScore) {
            best = Index(i);
            bestScore = score;
        }
    }
    return best;
}

int FindBestForView(std::span<const IconFormat> formats, int sizeIndex, int depthIndex) {
    constexpr std::array<int, 3> sizes = {16, 32, 48};
    constexpr std::array<int, 4> depths = {1, 18, 33, 49};
    return FindBestFormat(formats, Clamped(sizes, sizeIndex), Clamped(depths, depthIndex));
}

int FindBestSource(std::span<const IconFormat> formats, int sizeIndex, int depthIndex, bool macintosh) {
    const auto sizes = OfferedSizes(macintosh);
    const Size size = !macintosh && sizeIndex == Index(sizes.size()) ? sizes.front() : Clamped(sizes, sizeIndex);
    return SearchSource(formats, size, Clamped(WantedDepths(macintosh), depthIndex), macintosh);
}

int FindBestSourceFor(std::span<const IconFormat> formats, const IconFormat& wanted, bool macintosh) {
    const auto depths = OfferedDepths(macintosh);
    const auto depth = std::find(depths.begin(), depths.end(), wanted.bits);
    const int depthIndex = depth == depths.end() ? 0 : static_cast<int>(depth - depths.begin());
    return SearchSource(formats, {wanted.width, wanted.height}, Clamped(WantedDepths(macintosh), depthIndex),
                        macintosh);
}

} // namespace pelorin
