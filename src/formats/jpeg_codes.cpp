#include "formats/jpeg_codes.h"

namespace pelorin {

namespace {

JpegCodeTable::Code MakeCode(int symbol, int length) {
    return {static_cast<std::uint8_t>(symbol), static_cast<std::uint8_t>(length),
            static_cast<std::uint8_t>(length + (symbol & 15))};
}

} // namespace

bool JpegCodeTable::Build(const JpegCodes& codes, bool first) {
    if (!codes.there) return false;
    m_windowLengths = {};
    m_windowBits = {};
    int code = 0, offset = 0;
    for (int length = 1; length <= 16; ++length) {
        const auto n = static_cast<std::size_t>(length);
        const int count = codes.counts[n];
        if (offset + count > 256 || code + count > 1 << length) return false;
        m_begin[n] = code;
        m_end[n] = code + count;
        m_offset[n] = offset;
        for (int i = 0; i < count; ++i, ++code, ++offset) {
            const int symbol = codes.symbols[static_cast<std::size_t>(offset)];
            if (first && symbol > 15) return false;
            m_symbols[static_cast<std::size_t>(offset)] = static_cast<std::uint8_t>(symbol);
            if (length > kSymbolWindow) continue;
            const auto at = std::ptrdiff_t{code} << (kSymbolWindow - length);
            const auto windows = 1 << (kSymbolWindow - length);
            const auto made = MakeCode(symbol, length);
            std::fill_n(m_windowSymbols.begin() + at, windows, made.symbol);
            std::fill_n(m_windowLengths.begin() + at, windows, made.length);
            std::fill_n(m_windowBits.begin() + at, windows, made.bits);
        }
        code <<= 1;
    }
    return true;
}

JpegCodeTable::Code JpegCodeTable::LongSymbol(std::uint64_t window) const {
    for (std::size_t length = kSymbolWindow + 1; length <= 16; ++length) {
        const auto code = static_cast<int>(window >> (64 - length));
        if (code >= m_begin[length] && code < m_end[length]) {
            const auto at = static_cast<std::size_t>(m_offset[length] + code - m_begin[length]);
            return MakeCode(m_symbols[at], static_cast<int>(length));
        }
    }
    return {};
}

// Follows the codes through each window for as long as they are wholly inside.
void JpegCodeTable::BuildSteps() {
    for (std::size_t i = 0; i < m_stepBits.size(); ++i) {
        const auto window = std::uint64_t{i} << (64 - kStepsWindow);
        int used = 0, passes = 0;
        while (used < kStepsWindow) {
            auto code = Symbol(window << used);
            if (code.length == 0) code = LongSymbol(window << used);
            if (code.length == 0 || used + code.length > kStepsWindow || used + code.bits > kMostBits) break;
            if (EndsBlock(code.symbol)) {
                used += code.length;
                passes += kEnd;
                break;
            }
            const int next = passes + (code.symbol >> 4) + 1;
            if (next > 63) break;
            passes = next;
            used += code.bits;
        }
        m_stepBits[i] = static_cast<std::uint8_t>(used);
        m_stepPasses[i] = static_cast<std::uint8_t>(used == 0 ? kNone : passes);
    }
}

} // namespace pelorin
