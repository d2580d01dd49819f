// The blocks of the kinds of scans that a JPEG may have.
//
// A sequential scan has whole blocks. A progressive file sends a block's coefficients in bands and bit by bit: scans of
// first coefficients, then scans of a band of one component; the first of a band has its values without the lowest
// `low` bits, each later one adds a bit. In bands a symbol of run << 4, run below 15, ends the band in this block and
// in as many more as (1 << run) + `run` bits - 1 say.
#pragma once

#include "formats/jpeg_bits.h"

namespace pelorin {

/// An 8 x 8 block of coefficients, row by row; in files they come in `kJpegZigzag`'s order.
using JpegBlock = std::array<std::int16_t, 64>;

inline constexpr std::array<std::uint8_t, 64> kJpegZigzag = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

/// Coefficients `from` to `to` in the file's order, without their `low` lowest bits; `more` when the bits above those
/// have come already.
struct JpegBand {
    int from = 0, to = 63;
    bool more = false;
    int low = 0;
};

/// The difference of the first coefficient; false, here and below, when the bits are no code.
[[nodiscard]] inline bool ReadJpegFirst(JpegWindow& bits, const JpegCodeTable& table, int& difference) {
    const auto code = bits.Symbol(table);
    difference = bits.ValueOf(code);
    bits.Drop(code.bits);
    return code.length != 0;
}

/// The same, and passes over all other coefficients.
[[nodiscard, gnu::always_inline]] inline bool ReadJpegFirstAlone(JpegWindow& bits, const JpegCodeTable& firsts,
                                                                 const JpegCodeTable& others, int& difference) {
    auto w = bits; // in registers
    if (!ReadJpegFirst(w, firsts, difference)) return false;
    for (int k = 0;;) {
        int bitCount = others.StepBits(w.window), passes = others.StepPasses(w.window);
        w.Refill(); // while the tables are being looked into
        auto before = w;
        int kBefore = k;
        w.Drop(bitCount);
        k += passes;
        if (k < 63) {
            bitCount = others.StepBits(w.window);
            passes = others.StepPasses(w.window);
            before = w;
            kBefore = k;
            w.Drop(bitCount);
            k += passes;
            if (k < 63) continue;
        }
        if (JpegCodeTable::LeftAtEnd(k)) break;
        // The last steps lead into the next block, or the code is a long one: on by one symbol.
        w = before;
        k = kBefore;
        const auto code = w.Symbol(others);
        w.Drop(code.bits);
        k += (code.symbol >> 4) + 1;
        if (code.length == 0) return false;
        if (k == 63 || JpegCodeTable::EndsBlock(code.symbol)) break;
        if (k > 63) return false;
    }
    bits = w;
    return true;
}

/// Reads them: `put(k, value)` for those that are not 0, k in the file's order.
template <class Put>
[[nodiscard]] bool ReadJpegOthers(JpegWindow& bits, const JpegCodeTable& table, Put put) {
    auto w = bits;
    for (std::size_t k = 0; k < 63;) {
        const auto code = w.Symbol(table);
        const int value = w.ValueOf(code);
        w.Drop(code.bits);
        if (code.length == 0) return false;
        if (JpegCodeTable::EndsBlock(code.symbol)) break;
        k += (code.symbol >> 4) + 1u;
        if (k > 63) return false;
        put(k, value);
    }
    w.Refill();
    bits = w;
    return true;
}

/// Reads a block's share of a band. `blocks` counts those to come that have no share.
[[nodiscard]] bool ReadJpegBand(JpegWindow& bits, const JpegCodeTable& table, const JpegBand& band, unsigned& blocks,
                                JpegBlock& block);

} // namespace pelorin
