// Remembers what was worked out for a colour, for loops in which the same colours come again and again.
#pragma once

#include "pixel/color.h"

#include <vector>

namespace pelorin {

/// A direct-mapped memory of results that depend on a 24-bit colour alone. It never changes a result.
template <class Value>
class ColorMemo {
public:
    ColorMemo() : m_slots(std::size_t{1} << kBits) {}

    /// The value of `color`, by `compute(color)` where it is not remembered. The reference holds until the next call.
    template <class Compute>
    const Value& Get(Rgb color, Compute&& compute) {
        color &= 0xFFFFFF;
        auto& slot = m_slots[color * 2654435761u >> (32 - kBits)];
        if (slot.color != color) slot = {color, compute(color)};
        return slot.value;
    }

private:
    static constexpr unsigned kBits = 12;
    struct Slot {
        Rgb color = 0xFFFFFFFF;
        Value value{};
    };
    std::vector<Slot> m_slots;
};

} // namespace pelorin
