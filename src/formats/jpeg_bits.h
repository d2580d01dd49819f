// The bits of one scan of a JPEG.
//
// In the file a byte FF of data is followed by 00. Restart markers FF D0 to D7, in turn, cut the data into pieces that
// are coded each on its own. Any other marker ends the scan; in front of a marker any number of FF may stand.
#pragma once

#include "formats/jpeg_codes.h"

namespace pelorin {

/// The next bits. Small enough to be copied into registers for the length of a block.
struct JpegWindow {
    const std::uint8_t* next = nullptr; ///< eight bytes can be read there
    std::uint64_t window = 0;           ///< the next bits, from the top
    int bits = 0;                       ///< how many of them are known to be there

    /// At least 56 bits are there afterwards. Without a branch, which nothing could predict: bits that are in the
    /// window already are put there once more.
    void Refill() {
        window |= LoadU64BE(next) >> bits;
        next += (63 - bits) >> 3;
        bits |= 56;
    }
    void Drop(int count) {
        window <<= count;
        bits -= count;
    }
    /// The next 0 to 16 bits.
    unsigned Take(int count) {
        if (bits < count) Refill();
        const auto taken = static_cast<unsigned>(window >> 1 >> (63 - count));
        Drop(count);
        return taken;
    }
    /// The code at the front, which is not dropped yet; of length 0 when there is none. To be called with
    /// `JpegCodeTable::kSymbolWindow` bits known; refills, and the look into the table goes on meanwhile.
    JpegCodeTable::Code Symbol(const JpegCodeTable& table) {
        const auto code = table.Symbol(window);
        Refill();
        if (code.length == 0) [[unlikely]]
            return table.LongSymbol(window);
        return code;
    }
    /// The value of the code at the front; those with a leading 0 are negative.
    [[nodiscard]] int ValueOf(const JpegCodeTable::Code& code) const {
        const int size = code.symbol & 15;
        const auto raw = static_cast<int>(window << code.length >> 1 >> (63 - size));
        return raw < (1 << size) >> 1 ? raw - (1 << size) + 1 : raw;
    }
};

/// Takes the data of a scan out of the file piece by piece, so that what is read lies in the cache.
class JpegBits {
public:
    /// Bytes that may be read between two calls of `Reserve`: ten blocks of 64 symbols of 31 bits, and what `Refill`
    /// looks ahead.
    static constexpr std::size_t kMostBytes = 10 * 64 * 4 + 64;

    JpegBits() : m_data(kPiece + kMostBytes) {}

    /// `scan` begins behind the header of the scan and may go on behind its end.
    void Open(ByteSpan scan);
    /// Makes room for `kMostBytes` of reading; bits behind the end are 0. False once more was read than there is.
    [[nodiscard]] bool Reserve() { return m_window.next < m_low || More(); }
    /// Passes to the next piece; false when the marker of this turn does not follow.
    [[nodiscard]] bool Restart();
    /// How much of the scan was taken so far; not more than there is of it.
    [[nodiscard]] std::size_t Taken() const { return m_taken; }

    /// Between blocks with at least 16 bits known.
    [[nodiscard]] JpegWindow& Window() { return m_window; }

private:
    static constexpr std::size_t kPiece = 32768;

    void Begin();
    void Fill(std::size_t kept);
    [[nodiscard]] bool More();
    [[nodiscard]] bool Inside() const {
        return (m_window.next - m_data.data()) * 8 - m_window.bits <= static_cast<std::ptrdiff_t>(m_filled * 8);
    }

    JpegWindow m_window;
    ByteSpan m_scan;
    std::size_t m_taken = 0;
    Bytes m_data;
    std::size_t m_filled = 0;
    bool m_atMarker = false;             ///< everything of this piece is in `m_data`
    const std::uint8_t* m_low = nullptr; ///< from here on there may be too little to read
    unsigned m_turn = 0;
};

} // namespace pelorin
