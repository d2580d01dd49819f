#include "formats/jpeg_codes.h"

namespace pelorin {

bool JpegCodeTable::Build(const std::uint8_t* counts, const std::uint8_t* symbols) {
    int code = 0, offset = 0;
    for (int length = 1; length <= 16; ++length) {
        const int count = counts[length];
        if (offset + count > 256 || code + count > 1 << length) return false;
        const auto n = static_cast<std::size_t>(length);
        m_first[n] = code;
        m_last[n] = code + count;
        m_offset[n] = offset;
        for (int i = 0; i < count; ++i, ++code, ++offset) {
            m_symbols[static_cast<std::size_t>(offset)] = symbols[offset];
            if (length > kWindow) continue;
            const auto from = static_cast<std::size_t>(code) << (kWindow - length);
            const Code entry{symbols[offset], static_cast<std::uint8_t>(length)};
            std::fill_n(m_codes.begin() + static_cast<std::ptrdiff_t>(from), std::size_t{1} << (kWindow - length),
                        entry);
        }
        code <<= 1;
    }
    BuildSteps();
    return true;
}

JpegCodeTable::Code JpegCodeTable::Long(unsigned bits16) const {
    for (std::size_t length = 1; length <= 16; ++length) {
        const auto code = static_cast<int>(bits16 >> (16 - length));
        if (code >= m_first[length] && code < m_last[length]) {
            return {m_symbols[static_cast<std::size_t>(m_offset[length] + code - m_first[length])],
                    static_cast<std::uint8_t>(length)};
        }
    }
    return {};
}

// Follows the codes through each window for as long as they are wholly inside; the last one's value may stand out.
void JpegCodeTable::BuildSteps() {
    for (std::size_t window = 0; window < m_steps.size(); ++window) {
        auto& steps = m_steps[window];
        int used = 0, advance = 0;
        while (used < kWindow) {
            const auto rest = (window << used) & (m_steps.size() - 1);
            const auto& code = m_codes[rest];
            if (code.length == 0 || used + code.length > kWindow) break;
            used += code.length;
            if (EndsBlock(code.symbol)) {
                steps.ends = true;
                break;
            }
            const int next = advance + (code.symbol >> 4) + 1;
            if (next > 63) {
                used -= code.length;
                break;
            }
            advance = next;
            used += code.symbol & 15;
        }
        steps.bits = static_cast<std::uint8_t>(used);
        steps.advance = static_cast<std::uint8_t>(advance);
    }
}

void JpegBits::Open(ByteSpan scan) {
    m_data.clear();
    m_data.reserve(scan.size() + 16);
    m_pieces.clear();
    std::size_t at = 0;
    while (at < scan.size()) {
        const auto* found = static_cast<const std::uint8_t*>(std::memchr(scan.data() + at, 0xFF, scan.size() - at));
        const auto end = found ? static_cast<std::size_t>(found - scan.data()) : scan.size();
        m_data.insert(m_data.end(), scan.begin() + static_cast<std::ptrdiff_t>(at),
                      scan.begin() + static_cast<std::ptrdiff_t>(end));
        const int marker = end + 1 < scan.size() ? scan[end + 1] : 0xD9;
        at = end + 2;
        if (marker == 0) {
            m_data.push_back(0xFF);
        } else if (marker == 0xFF) {
            at = end + 1; // fill bytes in front of a marker
        } else if (marker >= 0xD0 && marker <= 0xD7) {
            m_pieces.push_back(m_data.size());
        } else {
            break;
        }
    }
    m_pieces.push_back(m_data.size());
    m_data.resize(m_data.size() + 16);
    m_piece = 0;
    m_window = {m_data.data(), m_data.data() + m_data.size() - 8, 0, 0};
}

bool JpegBits::Restart() {
    if (m_piece + 1 >= m_pieces.size()) return false;
    m_window = {m_data.data() + m_pieces[m_piece], m_window.limit, 0, 0};
    ++m_piece;
    return true;
}

} // namespace pelorin
