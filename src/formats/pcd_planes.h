// The planes of a Photo CD picture at one of its sizes, before they become colours.
#pragma once

#include "base/bytes.h"

namespace pelorin {

struct PcdPlane {
    int width = 0, height = 0;
    Bytes values; ///< the top row first

    PcdPlane() = default;
    PcdPlane(int w, int h) : width(w), height(h), values(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}
    [[nodiscard]] std::uint8_t* Row(int y) {
        return values.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
    [[nodiscard]] const std::uint8_t* Row(int y) const {
        return values.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
};

struct PcdPlanes {
    PcdPlane luma;
    PcdPlane chroma[2]; ///< half as wide and high

    explicit operator bool() const { return !luma.values.empty(); }
};

/// Twice as wide and high, with means between the values.
[[nodiscard]] PcdPlane DoublePcdPlane(const PcdPlane& plane);

/// The planes of the wanted size (0 to 4), or of the largest below it that is there whole; empty when there is none.
[[nodiscard]] PcdPlanes ReadPcdPlanes(ByteSpan file, int size);

/// Adds coded differences to planes that have been doubled. `in` stands at a code table; afterwards it stands behind
/// the sector with the last row. False, with the planes in any state, when tables make no sense or rows are missing.
[[nodiscard]] bool AddPcdDifferences(ByteReader& in, PcdPlanes& planes, bool withChroma);

} // namespace pelorin
