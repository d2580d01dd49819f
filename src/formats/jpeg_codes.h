// The Huffman codes of a JPEG, for reading symbols fast and for stepping over them.
//
// A code stands for a symbol and is followed by a value of as many bits as the symbol's lower half says. For the first
// coefficient of a block the symbol is that number alone, and the value a difference to the last block. For the others
// it is run << 4 | size: `run` zeros, then the value; 0x00 ends the block, 0xF0 is 16 zeros.
#pragma once

#include "base/bytes.h"

#include <array>

namespace pelorin {

/// Codes as a file states them: `counts[n]` have n bits, n from 1 to 16; symbols in ascending order of the codes.
struct JpegCodes {
    std::array<std::uint8_t, 17> counts{};
    std::array<std::uint8_t, 256> symbols{};
    bool there = false;
};

/// One table of codes, for looking up by the next bits.
class JpegCodeTable {
public:
    static constexpr int kSymbolWindow = 10; ///< bits that `Symbol` looks at
    static constexpr int kStepsWindow = 12;  ///< bits that steps are looked up by
    static constexpr int kMostBits = 20;     ///< what steps take at most

    struct Code {
        std::uint8_t symbol = 0;
        std::uint8_t length = 0; ///< 0: longer than the window, or no code
        std::uint8_t bits = 0;   ///< of code and value
    };
    /// What is added to the coefficients passed by steps of which the last one ends the block, and what stands for
    /// none.
    static constexpr int kEnd = 128, kNone = 255;
    /// The sum of coefficients passed by steps says that the block was left where it ends.
    [[nodiscard]] static bool LeftAtEnd(int passed) { return passed == 63 || (passed >= kEnd && passed < kEnd + 63); }

    /// False when these are no codes, or not those of first coefficients where `first` says so.
    [[nodiscard]] bool Build(const JpegCodes& codes, bool first);
    /// For steps; costs as much as some thousand blocks of reading.
    void BuildSteps();

    [[nodiscard]] Code Symbol(std::uint64_t window) const {
        const auto at = window >> (64 - kSymbolWindow);
        return {m_windowSymbols[at], m_windowLengths[at], m_windowBits[at]};
    }
    /// The code at the front of the window if it is a long one; a length of 0 when there is none.
    [[nodiscard]] Code LongSymbol(std::uint64_t window) const;

    /// Steps are as many symbols as the window shows, with values that may stand out of it: the bits of all, and the
    /// coefficients that they pass, with kEnd and kNone. Two tables, since the bits are what all else waits for, and
    /// the processor finds a byte sooner than anything wider.
    [[nodiscard]] int StepBits(std::uint64_t window) const { return m_stepBits[window >> (64 - kStepsWindow)]; }
    [[nodiscard]] int StepPasses(std::uint64_t window) const { return m_stepPasses[window >> (64 - kStepsWindow)]; }

    /// A symbol behind which the block holds nothing more.
    [[nodiscard]] static bool EndsBlock(int symbol) { return (symbol & 15) == 0 && symbol != 0xF0; }

private:
    // In tables of single bytes: the bits are what all else waits for, and a processor finds a byte the soonest.
    std::array<std::uint8_t, 1 << kSymbolWindow> m_windowSymbols{}, m_windowLengths{}, m_windowBits{};
    std::array<std::uint8_t, 1 << kStepsWindow> m_stepBits{}, m_stepPasses{};
    std::array<std::int32_t, 17> m_begin{}, m_end{}, m_offset{}; ///< codes of a length, and where its symbols begin
    std::array<std::uint8_t, 256> m_symbols{};
};

} // namespace pelorin
