#include "pixel/nearest_color.h"

#include "pixel/color.h"

#include <tuple>

namespace pelorin {

NearestColor::NearestColor(const ColorTable& palette, int count)
    : m_count(std::clamp(count, 1, 256)), m_cache(std::size_t{1} << 15, kUnknown) {
    for (int i = 0; i < m_count; ++i) {
        const Rgb color = palette[static_cast<std::size_t>(i)];
        m_entries[static_cast<std::size_t>(i)] = {
            static_cast<std::uint8_t>(RedOf(color)), static_cast<std::uint8_t>(GreenOf(color)),
            static_cast<std::uint8_t>(BlueOf(color)), static_cast<std::uint8_t>(i)};
    }
    std::sort(m_entries.begin(), m_entries.begin() + m_count, [](const auto& a, const auto& b) {
        return std::tie(a.red, a.green, a.blue, a.index) < std::tie(b.red, b.green, b.blue, b.index);
    });
}

// An entry of this red if the halving meets one, else the place where it would stand.
int NearestColor::StartOf(int red) const {
    int low = 0;
    int high = m_count - 1;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const int found = m_entries[static_cast<std::size_t>(middle)].red;
        if (found == red) return middle;
        if (found > red) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

// Walks from the start down and up by turns; among equally near entries the first one visited wins. The entries are
// sorted by red, so a direction is done once red alone is as far away as the best entry.
std::uint16_t NearestColor::Search(int red, int green, int blue) const {
    const int start = StartOf(red);
    int best = start;
    int bestDistance = INT32_MAX;
    const auto goesOn = [&](int at) {
        const auto& entry = m_entries[static_cast<std::size_t>(at)];
        const int dr = entry.red - red;
        const int dg = entry.green - green;
        const int db = entry.blue - blue;
        const int distance = dr * dr + dg * dg + db * db;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = at;
        }
        return dr * dr < bestDistance;
    };
    (void)goesOn(start);
    int down = start - 1;
    int up = start + 1;
    while (bestDistance > 0 && (down >= 0 || up < m_count)) {
        if (down >= 0) down = goesOn(down) ? down - 1 : -1;
        if (up < m_count) up = goesOn(up) ? up + 1 : m_count;
    }
    return static_cast<std::uint16_t>(best);
}

} // namespace pelorin
