#include "formats/jpeg_bits.h"

namespace pelorin {

void JpegBits::Open(ByteSpan scan) {
    m_scan = scan;
    m_taken = 0;
    m_turn = 0;
    Begin();
}

void JpegBits::Begin() {
    m_atMarker = false;
    Fill(0);
    m_window = {m_data.data(), 0, 0};
    m_window.Refill();
}

// Adds data, without stuffing, behind the `kept` bytes at the front.
void JpegBits::Fill(std::size_t kept) {
    m_filled = kept;
    while (m_filled < kPiece && !m_atMarker) {
        const auto room = std::min(kPiece - m_filled, m_scan.size() - m_taken);
        const auto* from = m_scan.data() + m_taken;
        const auto* stop = room == 0 ? nullptr : static_cast<const std::uint8_t*>(std::memchr(from, 0xFF, room));
        const auto count = stop ? static_cast<std::size_t>(stop - from) : room;
        std::copy_n(from, count, m_data.data() + m_filled);
        m_filled += count;
        m_taken += count;
        if (m_taken == m_scan.size()) m_atMarker = true;
        if (!stop) continue;
        if (m_taken + 1 == m_scan.size()) {
            m_atMarker = true;
        } else if (m_scan[m_taken + 1] == 0xFF) {
            ++m_taken;
        } else if (m_scan[m_taken + 1] == 0) {
            m_data[m_filled++] = 0xFF;
            m_taken += 2;
        } else {
            m_atMarker = true;
        }
    }
    if (m_atMarker) std::fill_n(m_data.data() + m_filled, kMostBytes, std::uint8_t{0});
    m_low = m_data.data() + (m_atMarker ? m_filled : m_filled - kMostBytes);
}

bool JpegBits::More() {
    if (m_atMarker) return Inside();
    const auto kept = static_cast<std::size_t>(m_data.data() + m_filled - m_window.next);
    std::copy_n(m_window.next, kept, m_data.data());
    Fill(kept);
    m_window.next = m_data.data();
    return true;
}

bool JpegBits::Restart() {
    const bool follows = m_atMarker && m_taken + 1 < m_scan.size() && m_scan[m_taken + 1] == 0xD0 + m_turn;
    if (!follows || !Inside()) return false;
    m_taken += 2;
    m_turn = (m_turn + 1) % 8;
    Begin();
    return true;
}

} // namespace pelorin
