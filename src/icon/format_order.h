// The orders in which the formats of an icon stand: on disk, and before a person's eyes.
//
// Keys compare by <; equal ones keep their places, as with an exchange of neighbours until nothing changes.
#pragma once

#include "icon/icon_format.h"

#include <tuple>

namespace pelorin {

/// On disk: ascending depth, descending width, descending height.
[[nodiscard]] constexpr auto SavingKey(const IconFormat& f) {
    return std::tuple(f.bits, -f.width, -f.height);
}

/// On disk, as shells like it: all depths below 32 by ascending width and depth, then those of 32 by ascending width.
[[nodiscard]] constexpr auto ExplorerKey(const IconFormat& f) {
    const bool last = f.bits == 32;
    return std::tuple(last, f.width, last ? 0 : f.bits);
}

/// In lists: descending depth, width, height.
[[nodiscard]] constexpr auto DisplayKey(const IconFormat& f) {
    return std::tuple(-f.bits, -f.width, -f.height);
}

} // namespace pelorin
