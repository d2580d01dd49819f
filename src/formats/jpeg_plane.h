// One component of a JPEG at an eighth of its size: one sample for each block of 8 x 8, its mean. Where the component
// is sampled at half the picture's rate or less, a block gives 2 x 2 samples: otherwise detail would be lost that the
// small picture has room for.
#pragma once

#include "formats/jpeg_blocks.h"

namespace pelorin {

/// A block's coefficients on their way to 2 x 2 samples: those of a column in one sum each for the even and the odd
/// part, in units of 1 / 32768 of a sample's eighth.
using JpegQuarters = std::array<std::uint32_t, 17>;

class JpegPlane {
public:
    using Steps = std::array<std::uint16_t, 64>; ///< what coefficients are multiplied by, in the file's order

    /// Room for `columns` x `rows` blocks. Without `keepBlocks` whole blocks come by but once.
    void Open(std::size_t columns, std::size_t rows, bool four, bool keepBlocks);
    void SetSteps(const Steps& steps);

    [[nodiscard]] bool Four() const { return m_four; }
    [[nodiscard]] std::size_t Columns() const { return m_columns; }

    /// The first coefficient of a block that gives one sample.
    [[nodiscard]] std::int16_t& First(std::size_t column, std::size_t row) {
        return m_firsts[row * m_columns + column];
    }
    /// A block of four samples that is kept.
    [[nodiscard]] JpegBlock& Kept(std::size_t column, std::size_t row) { return m_blocks[row * m_columns + column]; }
    [[nodiscard]] bool KeepsBlocks() const { return !m_blocks.empty(); }

    /// Of a block of four samples that is not kept: coefficient `k` of the file's order is added, then samples are
    /// made.
    void Add(JpegQuarters& sums, std::size_t k, int value) const {
        sums[m_weights[k].sum] += static_cast<std::uint32_t>(value) * m_weights[k].factor;
    }
    void Put(std::size_t column, std::size_t row, const JpegQuarters& sums);
    /// The same for a block that has nothing but its first coefficient.
    void PutFlat(std::size_t column, std::size_t row, int first);

    /// Makes samples of what was kept.
    void Finish();
    [[nodiscard]] const std::uint8_t* Row(std::size_t y) const { return m_samples.data() + y * m_stride; }

private:
    struct Weight {
        std::uint32_t factor = 0;
        std::uint32_t sum = 0;
    };

    std::size_t m_columns = 0, m_stride = 0;
    bool m_four = false;
    int m_firstStep = 0;
    std::array<Weight, 64> m_weights;
    std::vector<std::int16_t> m_firsts;
    std::vector<JpegBlock> m_blocks;
    Bytes m_samples;
};

} // namespace pelorin
