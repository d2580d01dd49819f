#include "pixel/pixel_word.h"
#include "pixel/resample_kernels.h"

#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace pelorin {

namespace {

// An output column or row lies between two source ones.
struct Place {
    int first, second;
    double toFirst, toSecond; // weights, together 1
};

std::vector<Place> FindPlaces(int source, int work, int kept) {
    std::vector<Place> places;
    places.reserve(static_cast<std::size_t>(kept));
    const double scale = static_cast<double>(source) / work;
    for (int i = 0; i < kept; ++i) {
        const double position = i * scale;
        const int first = static_cast<int>(position);
        const double fraction = position - first;
        places.push_back({first, std::min(source - 1, first + 1), 1 - fraction, fraction});
    }
    return places;
}

// What the two pixels of a column mean for the colour rule; only columns with both kinds need it.
constexpr std::uint8_t kHasInvisible = 1; // alpha below 8: takes the colour of the reference
constexpr std::uint8_t kHasReference = 2; // alpha at least 9
constexpr std::uint8_t kNeedsRule = kHasInvisible | kHasReference;
constexpr int kVisibleAlpha = 8;
constexpr int kReferenceAlpha = 9;

std::uint8_t ClassOf(int alpha) {
    return static_cast<std::uint8_t>((alpha < kVisibleAlpha ? kHasInvisible : 0) |
                                     (alpha >= kReferenceAlpha ? kHasReference : 0));
}

class Bilinear {
public:
    Bilinear(const std::uint8_t* pixels, Size source, Size work, Size kept, AlphaUse alpha)
        : m_pixels(pixels),
          m_stride(static_cast<std::size_t>(source.width) * 4),
          m_alpha(alpha),
          m_columns(FindPlaces(source.width, work.width, kept.width)),
          m_rows(FindPlaces(source.height, work.height, kept.height)),
          m_line(m_stride),
          m_classes(static_cast<std::size_t>(source.width)) {}

    void Run(std::uint8_t* out) {
        for (const auto& row : m_rows) {
            const auto* upper = m_pixels + m_stride * static_cast<std::size_t>(row.first);
            const auto* lower = m_pixels + m_stride * static_cast<std::size_t>(row.second);
            MixRows(upper, lower, row);
            MixColumns(out);
            if (m_alpha == AlphaUse::Straight && Classify(upper, lower)) MendColors(upper, lower, row, out);
            out += m_columns.size() * 4;
        }
    }

private:
    void MixRows(const std::uint8_t* upper, const std::uint8_t* lower, const Place& row) {
        auto* line = m_line.data();
        for (std::size_t i = 0; i < m_stride; ++i) line[i] = upper[i] * row.toFirst + lower[i] * row.toSecond;
    }

    void MixColumns(std::uint8_t* out) const {
        const Argb keep = m_alpha == AlphaUse::Straight ? 0xFFFFFFFFu : 0x00FFFFFFu;
        for (const auto& column : m_columns) {
            StorePixel(out, MixPixel(m_line.data() + std::ptrdiff_t{4} * column.first,
                                     m_line.data() + std::ptrdiff_t{4} * column.second, column) &
                                keep);
            out += 4;
        }
    }

    static Argb MixPixel(const double* first, const double* second, const Place& column) {
#if defined(__SSE2__)
        const auto a = _mm_set1_pd(column.toFirst), b = _mm_set1_pd(column.toSecond);
        const auto low = _mm_add_pd(_mm_mul_pd(_mm_loadu_pd(first), a), _mm_mul_pd(_mm_loadu_pd(second), b));
        const auto high = _mm_add_pd(_mm_mul_pd(_mm_loadu_pd(first + 2), a), _mm_mul_pd(_mm_loadu_pd(second + 2), b));
        const auto whole = _mm_unpacklo_epi64(_mm_cvttpd_epi32(low), _mm_cvttpd_epi32(high));
        const auto words = _mm_packs_epi32(whole, whole);
        return static_cast<Argb>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
#else
        int c[4];
        for (int i = 0; i < 4; ++i) c[i] = static_cast<int>(first[i] * column.toFirst + second[i] * column.toSecond);
        return MakePixel(c[0], c[1], c[2], c[3]);
#endif
    }

    // True when some output pixel of this row may need the colour rule.
    bool Classify(const std::uint8_t* upper, const std::uint8_t* lower) {
        std::uint8_t all = 0;
        for (std::size_t x = 0; x < m_classes.size(); ++x) {
            m_classes[x] = ClassOf(upper[4 * x + 3]) | ClassOf(lower[4 * x + 3]);
            all |= m_classes[x];
        }
        return all == kNeedsRule;
    }

    void MendColors(const std::uint8_t* upper, const std::uint8_t* lower, const Place& row, std::uint8_t* out) const {
        for (const auto& column : m_columns) {
            const auto classes =
                m_classes[static_cast<std::size_t>(column.first)] | m_classes[static_cast<std::size_t>(column.second)];
            if (classes == kNeedsRule) {
                const auto a = std::ptrdiff_t{4} * column.first, b = std::ptrdiff_t{4} * column.second;
                StorePixel(out, MixFour({LoadPixel(upper + a), LoadPixel(upper + b), LoadPixel(lower + a),
                                         LoadPixel(lower + b)},
                                        row, column));
            }
            out += 4;
        }
    }

    // The four source pixels in the order in which the reference is looked for. One of them is a reference.
    static Argb MixFour(std::array<Argb, 4> four, const Place& row, const Place& column) {
        Argb reference = four[3];
        for (std::size_t i = 3; i-- > 0;) reference = AlphaOf(four[i]) >= kReferenceAlpha ? four[i] : reference;
        for (auto& p : four) {
            if (AlphaOf(p) < kVisibleAlpha) p = (p & 0xFF000000u) | (reference & 0x00FFFFFFu);
        }
        double first[4], second[4];
        for (int c = 0; c < 4; ++c) {
            const auto channel = [&](std::size_t i) { return static_cast<int>(four[i] >> 8 * c & 255); };
            first[c] = channel(0) * row.toFirst + channel(2) * row.toSecond;
            second[c] = channel(1) * row.toFirst + channel(3) * row.toSecond;
        }
        return MixPixel(first, second, column);
    }

    const std::uint8_t* m_pixels;
    std::size_t m_stride;
    AlphaUse m_alpha;
    std::vector<Place> m_columns, m_rows;
    std::vector<double> m_line;
    std::vector<std::uint8_t> m_classes;
};

} // namespace

void InterpolateBilinear(const std::uint8_t* pixels, Size source, Size work, Size kept, AlphaUse alpha,
                         std::uint8_t* out) {
    Bilinear(pixels, source, work, kept, alpha).Run(out);
}

} // namespace pelorin
