#include "formats/jpeg_blocks.h"

namespace pelorin {

namespace {

std::int16_t Shifted(int value, int low) {
    return static_cast<std::int16_t>(static_cast<unsigned>(value) << low);
}

// Blocks, this one among them, that have nothing more in the band.
unsigned BlocksWithout(JpegWindow& bits, int symbol) {
    const int run = symbol >> 4;
    return (1u << run) + bits.Take(run);
}

bool ReadBandStart(JpegWindow& bits, const JpegCodeTable& table, const JpegBand& band, unsigned& blocks,
                   JpegBlock& block) {
    for (int k = band.from; k <= band.to; ++k) {
        const auto code = bits.Symbol(table);
        if (code.length == 0) return false;
        if (JpegCodeTable::EndsBlock(code.symbol)) {
            bits.Drop(code.length);
            blocks = BlocksWithout(bits, code.symbol) - 1;
            break;
        }
        k += code.symbol >> 4;
        if (k > band.to) return false;
        if ((code.symbol & 15) != 0)
            block[kJpegZigzag[static_cast<std::size_t>(k)]] = Shifted(bits.ValueOf(code), band.low);
        bits.Drop(code.bits);
    }
    return true;
}

/// One more bit of the coefficients of a band.
class BandRefiner {
public:
    BandRefiner(JpegWindow& bits, const JpegBand& band, JpegBlock& block)
        : m_bits(bits), m_band(band), m_block(block) {}

    [[nodiscard]] bool Read(const JpegCodeTable& table, unsigned& blocks) {
        int k = m_band.from;
        while (blocks == 0 && k <= m_band.to) {
            m_bits.Refill();
            const auto code = m_bits.Symbol(table);
            m_bits.Drop(code.length);
            const int size = code.symbol & 15;
            if (code.length == 0 || size > 1) return false;
            if (JpegCodeTable::EndsBlock(code.symbol)) {
                blocks = BlocksWithout(m_bits, code.symbol);
                break;
            }
            // Behind so many zeros that stay zero comes a new value of 1 or -1, which is told before the other bits.
            const int value = size == 0 ? 0 : m_bits.Take(1) != 0 ? 1 : -1;
            k = Pass(k, code.symbol >> 4);
            if (k <= m_band.to) {
                At(k) = Shifted(value, m_band.low);
            } else if (size != 0) {
                return false;
            }
            ++k;
        }
        if (blocks > 0) {
            Pass(k, 64);
            --blocks;
        }
        m_bits.Refill();
        return true;
    }

private:
    std::int16_t& At(int k) { return m_block[kJpegZigzag[static_cast<std::size_t>(k)]]; }

    // The place behind `zeros` zeros; whatever else lies before it gets its bit.
    int Pass(int k, int zeros) {
        for (; k <= m_band.to; ++k) {
            auto& value = At(k);
            if (value == 0) {
                if (zeros-- == 0) break;
            } else if (m_bits.Take(1) != 0 && (value >> m_band.low & 1) == 0) {
                value = static_cast<std::int16_t>(value + Shifted(value > 0 ? 1 : -1, m_band.low));
            }
        }
        return k;
    }

    JpegWindow& m_bits;
    const JpegBand& m_band;
    JpegBlock& m_block;
};

} // namespace

bool ReadJpegBand(JpegWindow& bits, const JpegCodeTable& table, const JpegBand& band, unsigned& blocks,
                  JpegBlock& block) {
    if (band.more) return BandRefiner(bits, band, block).Read(table, blocks);
    if (blocks > 0) {
        --blocks;
        return true;
    }
    return ReadBandStart(bits, table, band, blocks, block);
}

} // namespace pelorin
