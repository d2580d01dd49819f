// Palette mapping as one would do it by hand, to compare the fast one with: no cache but a map of cells, no tables, all
// rows of the picture kept at once.
#pragma once

#include "pixel/dib.h"

#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <tuple>
#include <vector>

namespace pelorin::test {

struct Chosen {
    int index;
    std::array<int, 3> color; // red, green, blue
};

/// The nearest palette entry; the first colour of a cell answers for the whole cell.
class SlowNearest {
public:
    SlowNearest(std::vector<Rgb> palette, int count) {
        for (int i = 0; i < count; ++i) {
            const Rgb c = palette[static_cast<std::size_t>(i)];
            m_sorted.emplace_back(c >> 16 & 255, c >> 8 & 255, c & 255, i);
        }
        std::sort(m_sorted.begin(), m_sorted.end());
    }

    Chosen operator()(int r, int g, int b) {
        const auto cell = std::make_tuple(r / 8, g / 8, b / 8);
        if (!m_cells.contains(cell)) m_cells[cell] = Search(r, g, b);
        const auto& [red, green, blue, index] = m_sorted[m_cells[cell]];
        return {index, {red, green, blue}};
    }

private:
    // Every entry is looked at in the order start, start - 1, start + 1, start - 2, ...; the first smallest wins.
    std::size_t Search(int r, int g, int b) const {
        long low = 0, high = static_cast<long>(m_sorted.size()) - 1, start = 0;
        while (low != high) {
            const long middle = (low + high) / 2;
            const int red = std::get<0>(m_sorted[static_cast<std::size_t>(middle)]);
            start = middle;
            if (red == r) break;
            if (red > r) {
                high = middle;
            } else {
                low = start = middle + 1;
            }
        }
        std::vector<long> order = {start};
        for (long step = 1; step < static_cast<long>(m_sorted.size()); ++step) {
            order.push_back(start - step);
            order.push_back(start + step);
        }
        std::size_t best = 0;
        double bestDistance = 1e9;
        for (const long at : order) {
            if (at < 0 || at >= static_cast<long>(m_sorted.size())) continue;
            const auto& [red, green, blue, index] = m_sorted[static_cast<std::size_t>(at)];
            const double distance = std::hypot(red - r, green - g, blue - b);
            if (distance < bestDistance - 1e-9) {
                bestDistance = distance;
                best = static_cast<std::size_t>(at);
            }
        }
        return best;
    }

    std::vector<std::tuple<int, int, int, int>> m_sorted;
    std::map<std::tuple<int, int, int>, std::size_t> m_cells;
};

using Plane = std::vector<std::vector<std::array<int, 3>>>; // rows in stored order; red, green, blue

/// Indices by rows in stored order. `choose` answers for a clamped colour.
inline std::vector<std::vector<int>> SlowDiffusion(Plane plane, const std::function<Chosen(int, int, int)>& choose) {
    const std::size_t height = plane.size(), width = plane[0].size();
    std::vector<std::vector<int>> out(height, std::vector<int>(width));
    const auto share = [](int error, int weight) {
        const double exact = std::abs(error) * weight / 16.0;
        const int rounded = static_cast<int>(std::floor(exact + 0.5));
        return error < 0 ? -rounded : rounded;
    };
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            auto color = plane[y][x];
            for (auto& c : color) c = c < 0 ? 0 : c > 255 ? 255 : c;
            const auto chosen = choose(color[0], color[1], color[2]);
            out[y][x] = chosen.index;
            for (std::size_t c = 0; c < 3; ++c) {
                const int error = color[c] - chosen.color[c];
                if (x + 1 < width) plane[y][x + 1][c] += share(error, 7);
                if (y + 1 == height) continue;
                plane[y + 1][x][c] += share(error, 5);
                if (x > 0) plane[y + 1][x - 1][c] += share(error, 3);
                if (x + 1 < width) plane[y + 1][x + 1][c] += share(error, 1);
            }
        }
    }
    return out;
}

} // namespace pelorin::test
