#include "pixel/flood_region.h"

#include "pixel/pixel_word.h"

#include <cstdlib>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace pelorin {

namespace {

// What is known of a pixel. A filled one has no other mark.
constexpr std::uint8_t kNearOld = 1;
constexpr std::uint8_t kFilled = 2;
constexpr std::uint8_t kPassedDown = 4, kPassedUp = 8; // looked at from a filled column above or beneath

int Distance(Argb a, Argb b) {
    return std::abs(RedOf(a) - RedOf(b)) + std::abs(GreenOf(a) - GreenOf(b)) + std::abs(BlueOf(a) - BlueOf(b));
}

#if defined(__SSE2__)
// Byte sums of four pixels' differences, one a 32-bit lane.
__m128i Distances(__m128i pixels, __m128i color) {
    const auto difference = _mm_or_si128(_mm_subs_epu8(pixels, color), _mm_subs_epu8(color, pixels));
    const auto blueRed = _mm_and_si128(difference, _mm_set1_epi32(0x00FF00FF));
    const auto green = _mm_and_si128(_mm_srli_epi32(difference, 8), _mm_set1_epi32(0xFF));
    return _mm_add_epi32(_mm_madd_epi16(blueRed, _mm_set1_epi16(1)), green);
}

// The marks of four pixels: distances below the limit.
__m128i Marks(const std::uint8_t* p, __m128i color, __m128i limit) {
    const auto pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    return _mm_cmplt_epi32(Distances(pixels, color), limit);
}
#endif

void MarkRow(const std::uint8_t* from, int width, Rgb oldColor, int tolerance, std::uint8_t* to) {
    int x = 0;
#if defined(__SSE2__)
    const auto color = _mm_set1_epi32(static_cast<int>(oldColor)), limit = _mm_set1_epi32(tolerance + 1);
    for (; x + 16 <= width; x += 16, from += 64) {
        const auto low = _mm_packs_epi32(Marks(from, color, limit), Marks(from + 16, color, limit));
        const auto high = _mm_packs_epi32(Marks(from + 32, color, limit), Marks(from + 48, color, limit));
        const auto marks = _mm_and_si128(_mm_packs_epi16(low, high), _mm_set1_epi8(kNearOld));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + x), marks);
    }
#endif
    for (; x < width; ++x, from += 4) to[x] = Distance(LoadPixel(from), oldColor) <= tolerance ? kNearOld : 0;
}

std::uint64_t Eight(const std::uint8_t* p) {
    std::uint64_t word;
    std::memcpy(&word, p, 8);
    return word;
}

// The first column from `x` on, up to `end`, whose mark is not the one at `x`.
int RunEnd(const std::uint8_t* row, int x, int end) {
    const auto mark = row[x];
    const std::uint64_t eight = mark * std::uint64_t{0x0101010101010101};
    while (x + 8 <= end && Eight(row + x) == eight) x += 8;
    while (x < end && row[x] == mark) ++x;
    return x;
}

int NearEnd(const std::uint8_t* row, int x, int end) {
    while (x < end && (row[x] & kNearOld)) x = RunEnd(row, x, end);
    return x;
}

int NearBegin(const std::uint8_t* row, int x) {
    while (x >= 8 && (Eight(row + x - 8) & 0x0101010101010101u) == 0x0101010101010101u) x -= 8;
    while (x > 0 && (row[x - 1] & kNearOld)) --x;
    return x;
}

} // namespace

FloodRegion::FloodRegion(const DibView& picture32, Rgb newColor, Rgb oldColor, int tolerance)
    : m_picture(picture32),
      m_newColor(newColor & 0xFFFFFF),
      m_oldColor(oldColor & 0xFFFFFF),
      m_tolerance(std::clamp(tolerance, -1, 3 * 255)),
      m_known(static_cast<std::size_t>(picture32.Height())),
      m_marks(std::make_unique_for_overwrite<std::uint8_t[]>(static_cast<std::size_t>(picture32.Width()) *
                                                             static_cast<std::size_t>(picture32.Height()))) {}

std::uint8_t* FloodRegion::Row(int y) {
    auto* marks = m_marks.get() + static_cast<std::size_t>(m_picture.Width()) * static_cast<std::size_t>(y);
    auto& known = m_known[static_cast<std::size_t>(y)];
    if (!known) MarkRow(m_picture.PictureRow(y), m_picture.Width(), m_oldColor, m_tolerance, marks);
    known = 1;
    return marks;
}

// Asked of pixels that are not filled, so the picture still has their colour.
bool FloodRegion::IsNearNew(int x, int y) const {
    return Distance(LoadPixel(m_picture.PictureRow(y) + std::ptrdiff_t{4} * x), m_newColor) <= m_tolerance;
}

void FloodRegion::Run(int x, int y, const Paint& paint) {
    if (x < 0 || y < 0 || x >= m_picture.Width() || y >= m_picture.Height() || m_newColor == m_oldColor) return;
    m_stack.push_back({x, y});
    while (!m_stack.empty()) {
        const auto at = m_stack.back();
        m_stack.pop_back();
        auto* row = Row(at.y);
        if (!(row[at.x] & kNearOld)) continue;
        const int from = NearBegin(row, at.x), to = NearEnd(row, at.x, m_picture.Width());
        std::fill(row + from, row + to, kFilled);
        LookAlong(at.y - 1, from, to, -1);
        LookAlong(at.y + 1, from, to, 1);
        paint(at.y, from, to);
    }
}

// The neighbours of a freshly filled run on the row above or beneath it.
void FloodRegion::LookAlong(int y, int from, int to, int step) {
    if (y < 0 || y >= m_picture.Height()) return;
    const auto* row = Row(y);
    for (int x = from; x < to;) {
        if (row[x] & kNearOld) {
            m_stack.push_back({x, y});
            x = NearEnd(row, x, to);
        } else if (row[x] == kFilled) {
            x = RunEnd(row, x, to);
        } else {
            PassThrough(x++, y, step);
        }
    }
}

// Along the pixels near the new colour that follow a filled column. One that was filled or passed in this direction
// before has been followed to its end already.
void FloodRegion::PassThrough(int x, int y, int step) {
    const std::uint8_t passed = step > 0 ? kPassedDown : kPassedUp;
    for (; y >= 0 && y < m_picture.Height(); y += step) {
        auto* row = Row(y);
        if (row[x] == kFilled || (row[x] & passed) || !IsNearNew(x, y)) return;
        row[x] |= passed;
        if (x > 0 && (row[x - 1] & kNearOld)) m_stack.push_back({x - 1, y});
        if (x + 1 < m_picture.Width() && (row[x + 1] & kNearOld)) m_stack.push_back({x + 1, y});
    }
}

} // namespace pelorin
