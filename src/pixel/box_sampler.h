// How the previews and the dithering reducer read a picture at another size: rows to the nearest, columns averaged.
#pragma once

#include "base/geometry.h"
#include "pixel/visit_depth.h"

#include <vector>

namespace pelorin {

/// Columns `from` to `end` - 1 of the source, at least one.
struct ColumnSpan {
    int from, end;
};

class BoxSampler {
public:
    BoxSampler(Size source, Size target) : m_source(source), m_target(target) {
        m_columns.reserve(static_cast<std::size_t>(target.width));
        for (int x = 0; x < target.width; ++x) {
            const int from = std::min(MulDiv(x, source.width, target.width), source.width - 1);
            const int end = std::min(MulDiv(x + 1, source.width, target.width), source.width - 1);
            m_columns.push_back({from, std::max(end, from + 1)});
        }
    }

    [[nodiscard]] int SourceRow(int y) const {
        return std::min(MulDiv(y, m_source.height, m_target.height), m_source.height - 1);
    }
    /// The same reading the first column of each span alone.
    [[nodiscard]] BoxSampler WithoutMeans() const {
        BoxSampler single = *this;
        for (auto& span : single.m_columns) span.end = span.from + 1;
        return single;
    }
    [[nodiscard]] const std::vector<ColumnSpan>& Columns() const { return m_columns; }

private:
    Size m_source, m_target;
    std::vector<ColumnSpan> m_columns;
};

/// Means of the four channels over a span of columns, truncated.
template <class PixelAt>
[[nodiscard]] Argb MeanOf(const PixelAt& pixel, const std::uint8_t* row, ColumnSpan span) {
    if (span.end - span.from == 1) return pixel(row, span.from);
    std::array<std::uint64_t, 4> sums{};
    for (int x = span.from; x < span.end; ++x) {
        const Argb color = pixel(row, x);
        for (unsigned c = 0; c < 4; ++c) sums[c] += color >> 8 * c & 0xFF;
    }
    const auto count = static_cast<std::uint64_t>(span.end - span.from);
    Argb mean = 0;
    for (unsigned c = 0; c < 4; ++c) mean |= static_cast<Argb>(sums[c] / count) << 8 * c;
    return mean;
}

/// A channel moved half way to white.
[[nodiscard]] constexpr int Lightened(int channel) {
    return channel + (256 - channel) / 2;
}

} // namespace pelorin
