#include "pixel/convolve.h"

#include <array>
#include <cstdlib>

namespace pelorin {

namespace {

// One weight of the window: where it reads, in padded rows, and how much it counts.
struct Tap {
    int row, column;
    std::int32_t weight;
};

std::vector<Tap> TapsOf(const ConvolutionKernel& kernel) {
    std::vector<Tap> taps;
    for (int row = 0; row < kernel.nHeight; ++row) {
        for (int column = 0; column < kernel.nWidth; ++column) {
            const auto weight = kernel.aCoefficients[static_cast<std::size_t>(row * kernel.nWidth + column)];
            if (weight != 0) taps.push_back({row, column, weight});
        }
    }
    return taps;
}

bool IsKernel(const ConvolutionKernel& kernel) {
    if (kernel.nWidth <= 0 || kernel.nHeight <= 0 || kernel.nDivisor == 0) return false;
    return static_cast<std::uint64_t>(kernel.nWidth) * static_cast<std::uint64_t>(kernel.nHeight) ==
           kernel.aCoefficients.size();
}

// True when every intermediate value of a sum, a quotient and a bias fits 16 bits.
bool FitsWords(const ConvolutionKernel& kernel, const std::vector<Tap>& taps) {
    std::int64_t magnitude = 0;
    for (const auto& tap : taps) magnitude += std::abs(std::int64_t{tap.weight});
    return magnitude * 255 + std::abs(std::int64_t{kernel.nBias}) <= INT16_MAX && kernel.nDivisor > 0 &&
           kernel.nDivisor <= INT16_MAX;
}

// Truncating division of 16-bit values by a constant: the magnitude times a reciprocal. With 2^s >= d, the reciprocal
// 2^(15 + s) / d, rounded up, is exact for magnitudes below 2^15.
struct Reciprocal {
    std::uint16_t factor = 0;
    int shift = 0;

    explicit Reciprocal(int divisor) {
        int bits = 0;
        while (1 << bits < divisor) ++bits;
        if (bits == 0) return; // by 1: not asked
        factor =
            static_cast<std::uint16_t>(((std::uint64_t{1} << (15 + bits)) + static_cast<std::uint64_t>(divisor) - 1) /
                                       static_cast<std::uint64_t>(divisor));
        shift = bits - 1;
    }
};

// The source rows of an N x N window as 16-bit values with the edge pixels repeated on both sides.
template <int N>
class PaddedRows {
public:
    explicit PaddedRows(const Surface& source) : m_source(source) {}

    // Row `y`, held to the picture; good as long as no row is asked for that is N rows away.
    const std::int16_t* Row(int y) {
        y = std::clamp(y, 0, m_source.Height() - 1);
        auto& slot = m_slots[static_cast<std::size_t>(y) % N];
        if (slot.row != y) Load(slot, y);
        return slot.values.data();
    }

private:
    struct Slot {
        int row = -1;
        std::vector<std::int16_t> values;
    };

    void Load(Slot& slot, int y) {
        slot.row = y;
        const auto lanes = m_source.Stride();
        slot.values.resize(lanes + 4 * (N - 1));
        const auto* from = m_source.Row(y);
        auto* to = slot.values.data();
        for (int i = 0; i < N / 2; ++i, to += 4) std::copy_n(from, 4, to);
        for (std::size_t i = 0; i < lanes; ++i) to[i] = from[i];
        to += lanes;
        for (int i = 0; i < N / 2; ++i, to += 4) std::copy_n(from + lanes - 4, 4, to);
    }

    const Surface& m_source;
    std::array<Slot, N> m_slots;
};

constexpr std::size_t kLanes = 256; // values that are worked on together, few enough to stay near

void Blend(std::int16_t* values, const std::uint8_t* original, std::size_t count, int blend) {
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = static_cast<std::int16_t>((original[i] * blend + values[i] * (100 - blend)) / 100);
    }
}

void StoreBytes(const std::int16_t* values, std::size_t count, std::uint8_t* to) {
    for (std::size_t i = 0; i < count; ++i)
        to[i] = static_cast<std::uint8_t>(std::clamp<std::int16_t>(values[i], 0, 255));
}

// A kernel of N x N in 16-bit values. Columns of the kernel that are alike are summed once, downwards, and then used at
// each place where the kernel has them.
template <int N>
class WordFilter {
public:
    WordFilter(const Surface& bitmap, const ConvolutionKernel& kernel, int blend)
        : m_bitmap(bitmap),
          m_rows(bitmap),
          m_reciprocal(kernel.nDivisor),
          m_bias(static_cast<std::int16_t>(kernel.nBias)),
          m_blend(blend) {
        for (std::size_t column = 0; column < N; ++column) {
            Weights weights;
            for (std::size_t row = 0; row < N; ++row) {
                weights[row] = static_cast<std::int16_t>(kernel.aCoefficients[row * N + column]);
            }
            const auto found = std::find(m_weights.begin(), m_weights.end(), weights);
            m_lineOf[column] = static_cast<std::size_t>(found - m_weights.begin());
            if (found == m_weights.end()) m_weights.push_back(weights);
        }
    }

    void Run(Surface& result) {
        std::int16_t values[kLanes];
        for (int y = 0; y < m_bitmap.Height(); ++y) {
            std::array<const std::int16_t*, N> rows;
            for (int i = 0; i < N; ++i) rows[static_cast<std::size_t>(i)] = m_rows.Row(y - N / 2 + i);
            for (std::size_t from = 0; from < m_bitmap.Stride(); from += kLanes) {
                const auto count = std::min(kLanes, m_bitmap.Stride() - from);
                for (std::size_t i = 0; i < m_weights.size(); ++i) {
                    SumDown(rows, from, count + kPadding, m_weights[i], m_lines[i].data());
                }
                SumAcross(count, values);
                if (m_blend > 0) Blend(values, m_bitmap.Row(y) + from, count, m_blend);
                StoreBytes(values, count, result.Row(y) + from);
            }
        }
    }

private:
    using Weights = std::array<std::int16_t, N>;
    static constexpr std::size_t kPadding = 4 * (N - 1);

    static void SumDown(const std::array<const std::int16_t*, N>& rows, std::size_t from, std::size_t count,
                        const Weights& weights, std::int16_t* __restrict to) {
        const auto [r, w] = std::pair(rows, weights);
        for (std::size_t i = 0; i < count; ++i) {
            int sum = 0;
            for (std::size_t k = 0; k < N; ++k) sum += r[k][from + i] * w[k];
            to[i] = static_cast<std::int16_t>(sum);
        }
    }

    void SumAcross(std::size_t count, std::int16_t* __restrict values) const {
        std::array<const std::int16_t*, N> p;
        for (std::size_t k = 0; k < N; ++k) p[k] = m_lines[m_lineOf[k]].data() + 4 * k;
        const unsigned factor = m_reciprocal.factor;
        const int shift = m_reciprocal.shift;
        const std::int16_t bias = m_bias;
        if (factor == 0) {
            for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<std::int16_t>(Sum(p, i) + bias);
            return;
        }
        for (std::size_t i = 0; i < count; ++i) {
            const std::int16_t sum = Sum(p, i);
            const auto sign = static_cast<std::int16_t>(sum >> 15);
            const auto magnitude = static_cast<std::uint16_t>((sum ^ sign) - sign);
            const auto quotient =
                static_cast<std::uint16_t>(static_cast<std::uint16_t>(magnitude * factor >> 16) >> shift);
            values[i] = static_cast<std::int16_t>(((quotient ^ sign) - sign) + bias);
        }
    }

    static std::int16_t Sum(const std::array<const std::int16_t*, N>& p, std::size_t i) {
        int sum = 0;
        for (std::size_t k = 0; k < N; ++k) sum += p[k][i];
        return static_cast<std::int16_t>(sum);
    }

    const Surface& m_bitmap;
    PaddedRows<N> m_rows;
    Reciprocal m_reciprocal;
    std::int16_t m_bias;
    int m_blend;
    std::vector<Weights> m_weights;      // of the columns that differ
    std::array<std::size_t, N> m_lineOf; // for each column of the kernel
    std::array<std::array<std::int16_t, kLanes + kPadding>, N> m_lines;
};

// For kernels of any weight: one value after the other, in 64 bits.
void FilterInWide(const Surface& bitmap, const ConvolutionKernel& kernel, const std::vector<Tap>& taps, int blend,
                  Surface& result) {
    for (int y = 0; y < bitmap.Height(); ++y) {
        for (int x = 0; x < bitmap.Width(); ++x) {
            for (int c = 0; c < 4; ++c) {
                std::int64_t sum = 0;
                for (const auto& tap : taps) {
                    const int row = std::clamp(y - kernel.nHeight / 2 + tap.row, 0, bitmap.Height() - 1);
                    const int column = std::clamp(x - kernel.nWidth / 2 + tap.column, 0, bitmap.Width() - 1);
                    sum += std::int64_t{tap.weight} * bitmap.Row(row)[4 * column + c];
                }
                std::int64_t value = sum / kernel.nDivisor + kernel.nBias;
                if (blend > 0) value = (bitmap.Row(y)[4 * x + c] * std::int64_t{blend} + value * (100 - blend)) / 100;
                result.Row(y)[4 * x + c] = static_cast<std::uint8_t>(std::clamp<std::int64_t>(value, 0, 255));
            }
        }
    }
}

} // namespace

Surface ApplyKernel(const Surface& bitmap, const ConvolutionKernel& kernel, int blend) {
    if (!bitmap || !IsKernel(kernel)) return {};
    blend = std::clamp(blend, 0, 100);
    Surface result(bitmap.Width(), bitmap.Height());
    const auto taps = TapsOf(kernel);
    const bool words = FitsWords(kernel, taps) && kernel.nWidth == kernel.nHeight;
    if (words && kernel.nWidth == 3) {
        WordFilter<3>(bitmap, kernel, blend).Run(result);
    } else if (words && kernel.nWidth == 5) {
        WordFilter<5>(bitmap, kernel, blend).Run(result);
    } else {
        FilterInWide(bitmap, kernel, taps, blend, result);
    }
    return result;
}

} // namespace pelorin
