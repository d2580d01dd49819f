#include "pixel/resample_kernels.h"

#include <array>
#include <cmath>
#include <vector>

namespace pelorin {

namespace {

constexpr int kSteps = 1000; // a source pixel is this many parts wide and high

// Totals of one output pixel. 32 bits would do for icons, but a photo shrunk to 16 x 16 overflows them.
using Cell = std::array<std::int64_t, 4>;

// Where a source line crosses from one output pixel to the next, and how many thousandths of it belong to the next.
struct Boundary {
    int at;
    int part;
};

// The boundaries along one direction. The running end is summed up, not multiplied: the results depend on its rounding.
std::vector<Boundary> FindBoundaries(int source, int target, double scale) {
    std::vector<Boundary> found;
    found.reserve(static_cast<std::size_t>(target));
    double end = scale - 1;
    for (int i = 0; i < source && static_cast<int>(found.size()) < target; ++i) {
        if (i < end) continue;
        found.push_back({i, static_cast<int>((i - end) * kSteps)});
        end += scale;
    }
    return found;
}

// Byte-wise sums of rows: 16 bits wide while they are added, since that is twice as fast, then moved into 32.
class RowTotals {
public:
    explicit RowTotals(std::size_t bytes) : m_part(bytes), m_total(bytes) {}

    void Add(const std::uint8_t* row) {
        auto* part = m_part.data();
        const auto count = m_part.size();
        for (std::size_t i = 0; i < count; ++i) part[i] = static_cast<std::uint16_t>(part[i] + row[i]);
        if (++m_rows == 256) Spill();
    }
    [[nodiscard]] const std::uint32_t* Total() {
        Spill();
        return m_total.data();
    }
    void Clear() { std::fill(m_total.begin(), m_total.end(), 0u); }

private:
    void Spill() {
        if (m_rows == 0) return;
        auto* part = m_part.data();
        auto* total = m_total.data();
        for (std::size_t i = 0; i < m_part.size(); ++i) total[i] += part[i];
        std::fill(m_part.begin(), m_part.end(), std::uint16_t{0});
        m_rows = 0;
    }

    std::vector<std::uint16_t> m_part;
    std::vector<std::uint32_t> m_total;
    int m_rows = 0;
};

// Sums the pixels `from` to `to`, exclusive.
template <class T>
Cell SumPixels(const T* line, int from, int to) {
    std::uint64_t sums[4] = {};
    for (const T* p = line + std::ptrdiff_t{4} * from; p != line + std::ptrdiff_t{4} * to; p += 4) {
        for (int c = 0; c < 4; ++c) sums[c] += p[c];
    }
    Cell cell;
    for (std::size_t c = 0; c < 4; ++c) cell[c] = static_cast<std::int64_t>(sums[c]);
    return cell;
}

class AreaAverager {
public:
    AreaAverager(Size source, Size target, AlphaUse alpha, std::uint8_t* out)
        : m_source(source),
          m_target(target),
          m_alpha(alpha),
          m_out(out),
          m_scaleX(static_cast<double>(source.width) / target.width),
          m_scaleY(static_cast<double>(source.height) / target.height),
          m_divisor(std::trunc(1000.0 * m_scaleX * m_scaleY)),
          m_columns(FindBoundaries(source.width, target.width, m_scaleX)),
          m_current(static_cast<std::size_t>(target.width) + 1),
          m_next(m_current.size()) {}

    void Run(RowSource& rows) {
        RowTotals totals(static_cast<std::size_t>(m_source.width) * 4);
        int row = 0, output = 0;
        for (const auto& boundary : FindBoundaries(m_source.height, m_target.height, m_scaleY)) {
            for (; row < boundary.at; ++row) totals.Add(rows.Row(row));
            AddPlainRows(totals);
            FinishRow(rows.Row(row++), boundary.part, output++);
        }
        if (output == m_target.height) return;
        for (; row < m_source.height; ++row) totals.Add(rows.Row(row));
        AddPlainRows(totals);
        for (int x = 0; x < m_target.width; ++x) Store(output, x);
    }

private:
    // Rows that lie wholly in one output row add up without any rounding, so they are taken together.
    void AddPlainRows(RowTotals& totals) {
        const auto* line = totals.Total();
        int from = 0;
        std::size_t x = 0;
        for (const auto& boundary : m_columns) {
            const auto sums = SumPixels(line, from, boundary.at);
            const auto* p = line + std::ptrdiff_t{4} * boundary.at;
            for (std::size_t c = 0; c < 4; ++c) {
                const std::int64_t edge = p[c];
                m_current[x][c] += kSteps * sums[c] + (kSteps - boundary.part) * edge;
                m_current[x + 1][c] += boundary.part * edge;
            }
            from = boundary.at + 1;
            ++x;
        }
        const auto sums = SumPixels(line, from, m_source.width);
        for (std::size_t c = 0; c < 4; ++c) m_current[x][c] += kSteps * sums[c];
        totals.Clear();
    }

    // A source row of which `part` thousandths belong to the next output row; it completes the present one.
    void FinishRow(const std::uint8_t* line, int part, int output) {
        const int here = kSteps - part;
        int from = 0;
        int x = 0;
        for (const auto& boundary : m_columns) {
            AddPlainColumns(line, from, boundary.at, part, x);
            const auto* p = line + std::ptrdiff_t{4} * boundary.at;
            auto& current = m_current[static_cast<std::size_t>(x)];
            auto& currentRight = m_current[static_cast<std::size_t>(x) + 1];
            auto& next = m_next[static_cast<std::size_t>(x)];
            auto& nextRight = m_next[static_cast<std::size_t>(x) + 1];
            const int left = kSteps - boundary.part;
            for (std::size_t c = 0; c < 4; ++c) {
                current[c] += here * left * p[c] / kSteps;
                next[c] += part * left * p[c] / kSteps;
                currentRight[c] += here * boundary.part * p[c] / kSteps;
                nextRight[c] = part * boundary.part * p[c] / kSteps; // clears what an earlier row has left here
            }
            Store(output, x);
            from = boundary.at + 1;
            ++x;
        }
        AddPlainColumns(line, from, m_source.width, part, x);
        if (x < m_target.width) Store(output, x);
        std::swap(m_current, m_next);
        m_next[0] = {};
    }

    void AddPlainColumns(const std::uint8_t* line, int from, int to, int part, int x) {
        const auto sums = SumPixels(line, from, to);
        for (std::size_t c = 0; c < 4; ++c) {
            m_current[static_cast<std::size_t>(x)][c] += (kSteps - part) * sums[c];
            m_next[static_cast<std::size_t>(x)][c] += part * sums[c];
        }
    }

    void Store(int y, int x) {
        auto* p =
            m_out +
            (static_cast<std::size_t>(y) * static_cast<std::size_t>(m_target.width) + static_cast<std::size_t>(x)) * 4;
        const auto& cell = m_current[static_cast<std::size_t>(x)];
        // Both are whole numbers far below 2^53, for which this is the truncated quotient; it is faster than in 64
        // bits.
        for (std::size_t c = 0; c < 4; ++c) {
            p[c] = static_cast<std::uint8_t>(static_cast<int>(static_cast<double>(cell[c]) / m_divisor));
        }
        if (m_alpha == AlphaUse::Unused) p[3] = 0;
    }

    Size m_source, m_target;
    AlphaUse m_alpha;
    std::uint8_t* m_out;
    double m_scaleX, m_scaleY;
    double m_divisor;
    std::vector<Boundary> m_columns;
    std::vector<Cell> m_current, m_next;
};

} // namespace

void AverageArea(RowSource& rows, Size source, Size target, AlphaUse alpha, std::uint8_t* out) {
    AreaAverager(source, target, alpha, out).Run(rows);
}

} // namespace pelorin
