#include "formats/jpeg_plane.h"

namespace pelorin {

namespace {

// What the inverse transform leaves, as a sample. Values far outside wrap, as the library's do.
std::uint8_t ToSample(int value) {
    value = ((value & 1023) ^ 512) - 512;
    return static_cast<std::uint8_t>(std::clamp(value + 128, 0, 255));
}

// Sums of a sound file have room in 32 bits; those of others may wrap.
int Descale(std::uint32_t value, int bits) {
    return static_cast<int>(value + (1u << (bits - 1))) >> bits;
}

// The 2 x 2 transform, by columns, then rows. In each direction the even part comes from coefficient 0, the odd part
// from 1, 3, 5 and 7; the others cancel out. In units of 1 / 8192 of the transform's scale.
constexpr std::array<std::int32_t, 8> kWeights = {1 << 15, 29692, 0, -10426, 0, 6967, 0, -5906};
constexpr std::uint32_t kUnused = 16;

std::uint32_t Weighted(int value, std::size_t coefficient) {
    return static_cast<std::uint32_t>(value) * static_cast<std::uint32_t>(kWeights[coefficient]);
}

// Two samples side by side, from what the columns came to.
void PutPair(std::uint8_t* to, int c0, int c1, int c3, int c5, int c7) {
    const auto even = Weighted(c0, 0), odd = Weighted(c1, 1) + Weighted(c3, 3) + Weighted(c5, 5) + Weighted(c7, 7);
    to[0] = ToSample(Descale(even + odd, 20));
    to[1] = ToSample(Descale(even - odd, 20));
}

} // namespace

void JpegPlane::Open(std::size_t columns, std::size_t rows, bool four, bool keepBlocks) {
    m_columns = columns;
    m_four = four;
    const std::size_t side = four ? 2 : 1;
    m_stride = columns * side;
    m_samples.resize(m_stride * rows * side);
    if (four && keepBlocks) m_blocks.resize(columns * rows);
    if (!four) m_firsts.resize(columns * rows);
}

void JpegPlane::SetSteps(const Steps& steps) {
    m_firstStep = steps[0];
    for (std::size_t k = 0; k < 64; ++k) {
        const std::size_t x = kJpegZigzag[k] % 8, y = kJpegZigzag[k] / 8;
        const bool used = kWeights[x] != 0 && kWeights[y] != 0;
        m_weights[k].factor = static_cast<std::uint32_t>(kWeights[y]) * steps[k];
        m_weights[k].sum = used ? static_cast<std::uint32_t>(x * 2 + (y > 0 ? 1 : 0)) : kUnused;
    }
}

void JpegPlane::Put(std::size_t column, std::size_t row, const JpegQuarters& sums) {
    auto* top = m_samples.data() + 2 * row * m_stride + 2 * column;
    const auto above = [&](std::size_t x) { return Descale(sums[2 * x] + sums[2 * x + 1], 13); };
    const auto below = [&](std::size_t x) { return Descale(sums[2 * x] - sums[2 * x + 1], 13); };
    PutPair(top, above(0), above(1), above(3), above(5), above(7));
    PutPair(top + m_stride, below(0), below(1), below(3), below(5), below(7));
}

void JpegPlane::PutFlat(std::size_t column, std::size_t row, int first) {
    auto* to = m_samples.data() + 2 * row * m_stride + 2 * column;
    to[0] = to[1] = to[m_stride] = to[m_stride + 1] =
        ToSample(Descale(static_cast<std::uint32_t>(first * m_firstStep), 3));
}

void JpegPlane::Finish() {
    for (std::size_t i = 0; i < m_firsts.size(); ++i)
        m_samples[i] = ToSample(Descale(static_cast<std::uint32_t>(m_firsts[i] * m_firstStep), 3));
    for (std::size_t i = 0; i < m_blocks.size(); ++i) {
        JpegQuarters sums{};
        for (std::size_t k = 0; k < 64; ++k) {
            if (const int value = m_blocks[i][kJpegZigzag[k]]; value != 0) Add(sums, k, value);
        }
        Put(i % m_columns, i / m_columns, sums);
    }
}

} // namespace pelorin
