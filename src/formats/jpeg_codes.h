// The codes of a baseline JPEG's coefficients, read fast or stepped over.
//
// A block is the code of its first coefficient's size and so many bits of its difference to the last block's, then for
// the others symbols of run << 4 | size: `run` zeros, then a value of `size` bits; 0x00 ends the block, 0xF0 is 16
// zeros. In the file a byte FF of data is followed by 00; restart markers FF D0 to D7 cut the data into pieces.
#pragma once

#include "base/bytes.h"

#include <array>

namespace pelorin {

/// One table of codes, for looking up by the next bits.
class JpegCodeTable {
public:
    static constexpr int kWindow = 11;

    struct Code {
        std::uint8_t symbol = 0;
        std::uint8_t length = 0; ///< 0: longer than the window
    };
    /// As many whole symbols as the window shows.
    struct Steps {
        std::uint8_t bits = 0;    ///< of codes and values together; 0: not even one code
        std::uint8_t advance = 0; ///< coefficients passed, before the end of the block if it is among the steps
        bool ends = false;
    };

    /// `counts[n]` codes have n bits, n from 1 to 16; `symbols` in ascending order of the codes. False when these are
    /// no codes.
    [[nodiscard]] bool Build(const std::uint8_t* counts, const std::uint8_t* symbols);

    [[nodiscard]] const Code& Short(std::uint64_t window) const { return m_codes[window]; }
    [[nodiscard]] const Steps& Several(std::uint64_t window) const { return m_steps[window]; }
    /// A symbol behind which the block holds nothing more.
    [[nodiscard]] static bool EndsBlock(int symbol) { return (symbol & 15) == 0 && symbol != 0xF0; }
    /// The code at the front of 16 bits; a length of 0 when there is none.
    [[nodiscard]] Code Long(unsigned bits16) const;

private:
    void BuildSteps();

    std::array<Code, 1 << kWindow> m_codes{};
    std::array<Steps, 1 << kWindow> m_steps{};
    std::array<std::int32_t, 17> m_first{}, m_last{}, m_offset{}; ///< codes of a length, and where its symbols begin
    std::array<std::uint8_t, 256> m_symbols{};
};

/// The next bits of the scan. Small enough to be copied into registers for the length of a block.
struct JpegWindow {
    const std::uint8_t* next = nullptr;
    const std::uint8_t* limit = nullptr; ///< `next` stays before it; eight bytes can be read there
    std::uint64_t window = 0;            ///< the next bits, from the top
    int bits = 0;                        ///< how many of them are known to be there

    // At least 56 bits are there afterwards. Without a branch, which nothing could predict: bits that are in the window
    // already are put there once more.
    void Refill() {
        window |= (std::uint64_t{LoadU32BE(next)} << 32 | LoadU32BE(next + 4)) >> bits;
        next = std::min(next + (static_cast<unsigned>(63 - bits) >> 3), limit);
        bits |= 56;
    }
    void Drop(int count) {
        window <<= count;
        bits -= count;
    }
    [[nodiscard]] std::uint64_t Front() const { return window >> (64 - JpegCodeTable::kWindow); }
    JpegCodeTable::Code Next(const JpegCodeTable& table) {
        auto code = table.Short(Front());
        if (code.length == 0) code = table.Long(static_cast<unsigned>(window >> 48));
        Drop(code.length);
        return code;
    }
    // A value of `size` bits; those with a leading 0 are negative.
    int Value(int size) {
        const auto raw = static_cast<int>(window >> 1 >> (63 - size));
        Drop(size);
        return raw < (1 << size) >> 1 ? raw - (1 << size) + 1 : raw;
    }
};

/// The bits of a whole scan. Every read gives false when the bits are no code.
class JpegBits {
public:
    void Open(ByteSpan scan);
    /// On to the next piece; false when there is none.
    [[nodiscard]] bool Restart();
    /// False once more was read than there is.
    [[nodiscard]] bool Inside() const {
        return (m_window.next - m_data.data()) * 8 - m_window.bits <=
               static_cast<std::ptrdiff_t>(m_pieces[m_piece] * 8);
    }

    /// A block of which only the first coefficient's difference is wanted.
    [[nodiscard]] bool ReadFirst(const JpegCodeTable& dc, const JpegCodeTable& ac, int& difference) {
        auto w = m_window;
        const bool good = ReadDc(w, dc, difference) && SkipAc(w, ac);
        m_window = w;
        return good;
    }
    /// A whole block: the difference, and `put(k, value)` for the other coefficients that are not 0, k in the file's
    /// order.
    template <class Put>
    [[nodiscard]] bool ReadAll(const JpegCodeTable& dc, const JpegCodeTable& ac, int& difference, Put&& put) {
        auto w = m_window;
        const bool good = ReadDc(w, dc, difference) && ReadAc(w, ac, put);
        m_window = w;
        return good;
    }

private:
    static bool ReadDc(JpegWindow& w, const JpegCodeTable& table, int& difference) {
        w.Refill();
        const auto code = w.Next(table);
        if (code.length == 0 || code.symbol > 15) return false;
        difference = w.Value(code.symbol);
        return true;
    }

    static bool SkipAc(JpegWindow& w, const JpegCodeTable& table) {
        int k = 0;
        for (;;) {
            if (w.bits < 32) w.Refill();
            const auto& steps = table.Several(w.Front());
            // Steps that would leave the block belong partly to the next one.
            if (steps.bits != 0 && k + steps.advance + (steps.ends ? 1 : 0) <= 63) {
                w.Drop(steps.bits);
                k += steps.advance;
                if (steps.ends || k == 63) return true;
                continue;
            }
            const auto code = w.Next(table);
            if (code.length == 0) return false;
            if (JpegCodeTable::EndsBlock(code.symbol)) return true;
            k += (code.symbol >> 4) + 1;
            w.Drop(code.symbol & 15);
            if (k >= 63) return k == 63;
        }
    }

    template <class Put>
    static bool ReadAc(JpegWindow& w, const JpegCodeTable& table, Put& put) {
        for (int k = 0; k < 63;) {
            if (w.bits < 32) w.Refill();
            const auto code = w.Next(table);
            if (code.length == 0) return false;
            if (JpegCodeTable::EndsBlock(code.symbol)) return true;
            k += (code.symbol >> 4) + 1;
            if (k > 63) return false;
            if ((code.symbol & 15) != 0) put(k, w.Value(code.symbol & 15));
        }
        return true;
    }

    Bytes m_data;                      ///< all pieces without stuffing, with zeros behind the last
    std::vector<std::size_t> m_pieces; ///< ends
    std::size_t m_piece = 0;
    JpegWindow m_window;
};

} // namespace pelorin
