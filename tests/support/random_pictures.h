// Pictures of noise in which the alphas are those at which some rule changes its mind.
#pragma once

#include "pixel/surface.h"

#include <random>

namespace pelorin::test {

inline constexpr std::uint8_t kTellingAlphas[] = {0, 5, 7, 8, 9, 127, 128, 255};

inline Surface RandomSurface(int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    Surface surface(width, height);
    for (std::size_t i = 0; i < surface.Span().size(); ++i) {
        surface.Span()[i] = i % 4 == 3 ? kTellingAlphas[random() % 8] : static_cast<std::uint8_t>(random());
    }
    return surface;
}

/// Every byte the same in all pixels of a surface.
inline Surface FlatSurface(int width, int height, std::uint32_t pixel) {
    Surface surface(width, height);
    surface.Fill(pixel);
    return surface;
}

inline Bytes BytesOf(const DibBlock& block) {
    return Bytes(block.Span().begin(), block.Span().end());
}
inline Bytes BytesOf(const Surface& surface) {
    return Bytes(surface.Span().begin(), surface.Span().end());
}

} // namespace pelorin::test
