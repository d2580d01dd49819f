#include "pixel/bleed.h"

#include "pixel/pixel_word.h"

#include <array>

namespace pelorin {

namespace {

constexpr int kReach = 8; // columns and rows before the pixel; one less behind it

// Alpha below 8 has none of these bits.
constexpr Argb kVisibleBits = 0xF8000000u;

constexpr int kMostCounted = 4 * kReach * kReach;

// 2^32 / n, rounded up: the product with a sum below 2^16 has its quotient by n in the upper half, exactly.
constexpr auto kReciprocals = [] {
    std::array<std::uint64_t, kMostCounted + 1> table{};
    for (std::uint64_t n = 1; n < table.size(); ++n) table[n] = ((std::uint64_t{1} << 32) + n - 1) / n;
    return table;
}();

bool IsInvisible(Argb pixel) {
    return (pixel & kVisibleBits) == 0;
}

bool HasInvisible(const std::uint8_t* row, int width) {
    unsigned found = 0;
    for (int x = 0; x < width; ++x) found |= IsInvisible(LoadPixel(row + std::ptrdiff_t{4} * x)) ? 1u : 0u;
    return found != 0;
}

} // namespace

BledRows::BledRows(const DibView& picture) : m_picture(picture) {}

const std::uint8_t* BledRows::Row(int y) {
    const auto* row = m_picture.Row(y);
    if (!HasInvisible(row, m_picture.Width())) return row;
    const auto bytes = static_cast<std::size_t>(m_picture.Width()) * 4;
    m_columns.resize(bytes);
    m_visible.resize(bytes);
    m_row.resize(bytes);
    MoveWindow(y);
    FillRow(row);
    return m_row.data();
}

void BledRows::MoveWindow(int y) {
    const int low = std::max(0, y - kReach);
    const int high = std::max(low, std::min(m_picture.Height() - 1, y + kReach));
    if (low >= m_high) {
        std::fill(m_columns.begin(), m_columns.end(), std::uint16_t{0});
        m_low = m_high = low;
    }
    for (; m_low < low; ++m_low) RemoveRow(m_low);
    for (; m_high < high; ++m_high) AddRow(m_high);
}

// The row with a 1 in place of the alpha of visible pixels, and with all bytes 0 for the others.
const std::uint8_t* BledRows::VisibleRow(int y) {
    const auto* from = m_picture.Row(y);
    auto* to = m_visible.data();
    for (int x = 0; x < m_picture.Width(); ++x) {
        const Argb pixel = LoadPixel(from + std::ptrdiff_t{4} * x);
        StorePixel(to + std::ptrdiff_t{4} * x, IsInvisible(pixel) ? 0 : (pixel & 0xFFFFFFu) | 0x01000000u);
    }
    return to;
}

void BledRows::AddRow(int y) {
    const auto* row = VisibleRow(y);
    auto* sums = m_columns.data();
    const auto count = m_columns.size();
    for (std::size_t i = 0; i < count; ++i) sums[i] = static_cast<std::uint16_t>(sums[i] + row[i]);
}

void BledRows::RemoveRow(int y) {
    const auto* row = VisibleRow(y);
    auto* sums = m_columns.data();
    const auto count = m_columns.size();
    for (std::size_t i = 0; i < count; ++i) sums[i] = static_cast<std::uint16_t>(sums[i] - row[i]);
}

void BledRows::FillRow(const std::uint8_t* from) {
    std::memcpy(m_row.data(), from, m_row.size());
    const int width = m_picture.Width();
    const auto invisible = [&](int x) { return IsInvisible(LoadPixel(from + std::ptrdiff_t{4} * x)); };
    for (int x = 0; x < width; ++x) {
        if (!invisible(x)) continue;
        int end = x + 1;
        while (end < width && invisible(end)) ++end;
        FillRun(x, end);
        x = end;
    }
}

// Columns `from` to `to`, all of them invisible.
void BledRows::FillRun(int from, int to) {
    std::array<std::uint32_t, 4> sums{};
    int low = std::max(0, from - kReach), high = low;
    for (int x = from; x < to; ++x) {
        for (const int end = std::min(m_picture.Width() - 1, x + kReach); high < end; ++high) {
            for (std::size_t c = 0; c < 4; ++c) sums[c] += m_columns[static_cast<std::size_t>(high) * 4 + c];
        }
        for (; low < x - kReach; ++low) {
            for (std::size_t c = 0; c < 4; ++c) sums[c] -= m_columns[static_cast<std::size_t>(low) * 4 + c];
        }
        auto* p = m_row.data() + std::ptrdiff_t{4} * x;
        const auto reciprocal = kReciprocals[sums[3]]; // 0 when nothing visible is near: black
        for (std::size_t c = 0; c < 3; ++c) p[c] = static_cast<std::uint8_t>(sums[c] * reciprocal >> 32);
    }
}

} // namespace pelorin
