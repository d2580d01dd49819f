#include "pixel/convolve.h"

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

// The source rows of a window as 16-bit values with the edge pixels repeated on both sides.
class PaddedRows {
public:
    PaddedRows(const Surface& source, const ConvolutionKernel& kernel)
        : m_source(source),
          m_before(kernel.nWidth / 2),
          m_after(kernel.nWidth - 1 - m_before),
          m_slots(static_cast<std::size_t>(kernel.nHeight)) {}

    // Row `y`, held to the picture; good as long as no row is asked for that is a window's height away.
    const std::int16_t* Row(int y) {
        y = std::clamp(y, 0, m_source.Height() - 1);
        auto& slot = m_slots[static_cast<std::size_t>(y) % m_slots.size()];
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
        slot.values.resize(lanes + static_cast<std::size_t>(m_before + m_after) * 4);
        const auto* from = m_source.Row(y);
        auto* to = slot.values.data();
        for (int i = 0; i < m_before; ++i, to += 4) std::copy_n(from, 4, to);
        for (std::size_t i = 0; i < lanes; ++i) to[i] = from[i];
        to += lanes;
        for (int i = 0; i < m_after; ++i, to += 4) std::copy_n(from + lanes - 4, 4, to);
    }

    const Surface& m_source;
    int m_before, m_after;
    std::vector<Slot> m_slots;
};

constexpr std::size_t kLanes = 256; // values that are worked on together, few enough to stay near

void SumTaps(PaddedRows& rows, const ConvolutionKernel& kernel, const std::vector<Tap>& taps, int y, std::size_t from,
             std::size_t count, std::int16_t* sums) {
    std::fill_n(sums, kLanes, std::int16_t{0});
    for (const auto& tap : taps) {
        const auto* p = rows.Row(y - kernel.nHeight / 2 + tap.row) + std::ptrdiff_t{4} * tap.column + from;
        const auto weight = static_cast<std::int16_t>(tap.weight);
        for (std::size_t i = 0; i < count; ++i) sums[i] = static_cast<std::int16_t>(sums[i] + p[i] * weight);
    }
}

void Divide(std::int16_t* values, std::size_t count, const Reciprocal& by, int bias) {
    if (by.factor != 0) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto sign = static_cast<std::int16_t>(values[i] >> 15);
            const auto magnitude = static_cast<std::uint16_t>((values[i] ^ sign) - sign);
            const auto quotient = static_cast<std::uint16_t>((std::uint32_t{magnitude} * by.factor >> 16) >> by.shift);
            values[i] = static_cast<std::int16_t>((quotient ^ sign) - sign);
        }
    }
    if (bias == 0) return;
    for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<std::int16_t>(values[i] + bias);
}

void Blend(std::int16_t* values, const std::uint8_t* original, std::size_t count, int blend) {
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = static_cast<std::int16_t>((original[i] * blend + values[i] * (100 - blend)) / 100);
    }
}

void FilterInWords(const Surface& bitmap, const ConvolutionKernel& kernel, const std::vector<Tap>& taps, int blend,
                   Surface& result) {
    PaddedRows rows(bitmap, kernel);
    const Reciprocal reciprocal(kernel.nDivisor);
    std::int16_t values[kLanes];
    for (int y = 0; y < bitmap.Height(); ++y) {
        const auto* original = bitmap.Row(y);
        auto* to = result.Row(y);
        for (std::size_t from = 0; from < bitmap.Stride(); from += kLanes) {
            const auto count = std::min(kLanes, bitmap.Stride() - from);
            SumTaps(rows, kernel, taps, y, from, count, values);
            Divide(values, count, reciprocal, kernel.nBias);
            if (blend > 0) Blend(values, original + from, count, blend);
            for (std::size_t i = 0; i < count; ++i) {
                to[from + i] = static_cast<std::uint8_t>(std::clamp<std::int16_t>(values[i], 0, 255));
            }
        }
    }
}

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
    (FitsWords(kernel, taps) ? FilterInWords : FilterInWide)(bitmap, kernel, taps, blend, result);
    return result;
}

} // namespace pelorin
