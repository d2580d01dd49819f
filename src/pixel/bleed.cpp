#include "pixel/bleed.h"

#include "pixel/pixel_word.h"

namespace pelorin {

namespace {

constexpr int kReach = 8; // columns and rows before the pixel; one less behind it

// Alpha below 8 has none of these bits.
constexpr Argb kVisibleBits = 0xF8000000u;

bool HasInvisible(const std::uint8_t* row, int width) {
    unsigned found = 0;
    for (int x = 0; x < width; ++x) found |= (LoadPixel(row + std::ptrdiff_t{4} * x) & kVisibleBits) == 0 ? 1u : 0u;
    return found != 0;
}

} // namespace

BledRows::BledRows(const DibView& picture) : m_picture(picture) {}

const std::uint8_t* BledRows::Row(int y) {
    const auto* row = m_picture.Row(y);
    if (!HasInvisible(row, m_picture.Width())) return row;
    if (m_columns.empty()) {
        m_columns.resize(static_cast<std::size_t>(m_picture.Width()));
        m_row.resize(static_cast<std::size_t>(m_picture.Width()) * 4);
    }
    MoveWindow(y);
    FillRow(row);
    return m_row.data();
}

void BledRows::MoveWindow(int y) {
    const int low = std::max(0, y - kReach);
    const int high = std::max(low, std::min(m_picture.Height() - 1, y + kReach));
    if (low >= m_high) {
        std::fill(m_columns.begin(), m_columns.end(), Sums{});
        m_low = m_high = low;
    }
    for (; m_low < low; ++m_low) AddRow(m_low, 0xFFFF);
    for (; m_high < high; ++m_high) AddRow(m_high, 1);
}

// `sign` is 1 to add the row's visible pixels and 65535 to take them away again.
void BledRows::AddRow(int y, std::uint16_t sign) {
    const auto* from = m_picture.Row(y);
    const auto width = static_cast<std::size_t>(m_picture.Width());
    for (std::size_t x = 0; x < width; ++x, from += 4) {
        const unsigned factor = (from[3] & 0xF8) != 0 ? sign : 0u;
        auto& sums = m_columns[x].value;
        for (int c = 0; c < 3; ++c) sums[c] = static_cast<std::uint16_t>(sums[c] + from[c] * factor);
        sums[3] = static_cast<std::uint16_t>(sums[3] + factor);
    }
}

void BledRows::FillRow(const std::uint8_t* from) {
    const int width = m_picture.Width();
    std::uint32_t sums[4] = {};
    const auto change = [&](int x, bool add) {
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t value = m_columns[static_cast<std::size_t>(x)].value[c];
            sums[c] += add ? value : 0u - value;
        }
    };
    for (int x = 0; x < std::min(kReach - 1, width - 1); ++x) change(x, true);
    for (int x = 0; x < width; ++x) {
        if (x + kReach - 1 < width - 1) change(x + kReach - 1, true);
        if (x > kReach) change(x - kReach - 1, false);
        Argb pixel = LoadPixel(from + std::ptrdiff_t{4} * x);
        if ((pixel & kVisibleBits) == 0) {
            pixel &= 0xFF000000u;
            if (const auto count = sums[3]) pixel |= sums[0] / count | (sums[1] / count) << 8 | (sums[2] / count) << 16;
        }
        StorePixel(m_row.data() + std::ptrdiff_t{4} * x, pixel);
    }
}

} // namespace pelorin
