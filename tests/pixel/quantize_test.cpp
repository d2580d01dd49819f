#include "pixel/quantize.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>

namespace pelorin {
namespace {

using test::Picture32;

// An octree as one would draw it on a board: nodes by pointers, a list a level, a look at the whole after each pixel.
class SlowOctree {
public:
    explicit SlowOctree(int limit) : m_limit(limit) {}

    void Add(int red, int green, int blue) {
        auto* at = &m_root;
        for (int level = 0;; ++level) {
            if (!*at) {
                *at = std::make_shared<Node>();
                if (level == 6) {
                    (*at)->leaf = true;
                    ++m_leaves;
                } else {
                    m_lists[level].push_back(*at);
                }
            }
            if ((*at)->leaf) break;
            const int weight = 0x80 >> level;
            at = &(*at)->children[(red & weight ? 4 : 0) + (green & weight ? 2 : 0) + (blue & weight ? 1 : 0)];
        }
        (*at)->Count(1, red, green, blue);
        while (m_leaves > m_limit) Reduce();
    }

    [[nodiscard]] std::vector<Rgb> Colors() const {
        std::vector<Rgb> out;
        Walk(m_root, out);
        return out;
    }

private:
    struct Node {
        bool leaf = false;
        std::int64_t n = 0, r = 0, g = 0, b = 0;
        std::map<int, std::shared_ptr<Node>> children;
        void Count(std::int64_t pixels, std::int64_t red, std::int64_t green, std::int64_t blue) {
            n += pixels;
            r += red;
            g += green;
            b += blue;
        }
    };
    using Link = std::shared_ptr<Node>;

    void Reduce() {
        int level = 5;
        while (level > 0 && m_lists[level].empty()) --level;
        const Link node = m_lists[level].back();
        m_lists[level].pop_back();
        for (const auto& [place, child] : node->children) {
            if (!child) continue;
            node->Count(child->n, child->r, child->g, child->b);
            --m_leaves;
        }
        node->children.clear();
        node->leaf = true;
        ++m_leaves;
    }

    static void Walk(const Link& node, std::vector<Rgb>& out) {
        if (!node) return;
        if (node->leaf)
            out.push_back(static_cast<Rgb>(node->r / node->n << 16 | node->g / node->n << 8 | node->b / node->n));
        for (const auto& [place, child] : node->children) Walk(child, out);
    }

    int m_limit, m_leaves = 0;
    Link m_root;
    std::map<int, std::vector<Link>> m_lists;
};

DibBlock Noise(int width, int height, int bits, unsigned seed, unsigned mask = 0xFFFFFFFF) {
    auto block = CreateDIB(width, height, bits);
    std::mt19937 random(seed);
    const DibRows rows(block);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width * bits / 8; ++x) rows.Row(y)[x] = static_cast<std::uint8_t>(random() & mask);
    }
    return block;
}

void FeedSlow(SlowOctree& tree, const DibBlock& block) {
    const DibView view(block);
    const int step = view.BitCount() / 8;
    for (int y = 0; y < view.Height(); ++y) {
        for (int x = 0; x < view.Width(); ++x) {
            const auto* p = view.Row(y) + x * step;
            tree.Add(p[2], p[1], p[0]);
        }
    }
}

TEST(Quantize, AgreesWithTheSlowTree) {
    struct Row {
        int width, height, bits, colors;
        unsigned mask;
    };
    const Row rows[] = {{1, 1, 24, 256, 0xFF},    {3, 2, 32, 256, 0xFF},   {33, 7, 24, 256, 0xFF},
                        {33, 7, 24, 16, 0xFF},    {33, 7, 32, 2, 0xF0},    {33, 7, 24, 1, 0xFF},
                        {97, 61, 24, 256, 0x3F},  {97, 61, 32, 255, 0xFF}, {64, 64, 24, 7, 0xC3},
                        {200, 100, 24, 256, 0xFF}};
    unsigned seed = 1;
    for (const auto& row : rows) {
        for (const bool reserveWhite : {false, true}) {
            SCOPED_TRACE(testing::Message() << row.width << "x" << row.height << " to " << row.colors);
            const auto block = Noise(row.width, row.height, row.bits, seed++, row.mask);
            SlowOctree slow(row.colors);
            if (reserveWhite) {
                for (int i = 0; i < 100; ++i) slow.Add(0, 0, 0);
                for (int i = 0; i < 100; ++i) slow.Add(255, 255, 255);
            }
            FeedSlow(slow, block);
            auto expected = slow.Colors();
            expected.resize(256);
            if (reserveWhite && expected[255] != 0xFFFFFF) {
                const auto white = std::find(expected.begin(), expected.end(), Rgb{0xFFFFFF});
                if (white != expected.end()) *white = expected[255];
                expected[255] = 0xFFFFFF;
            }
            int count = row.colors;
            const auto table = QuantizeImage(block, count, reserveWhite);
            ASSERT_TRUE(table);
            EXPECT_EQ(std::vector<Rgb>(table->begin(), table->end()), expected);
            EXPECT_EQ(count, row.colors) << "never more leaves than asked for";
        }
    }
}

TEST(Quantize, TwoPicturesShareOneTree) {
    const auto a = Noise(33, 7, 24, 5), b = Noise(17, 9, 32, 6);
    SlowOctree slow(64);
    FeedSlow(slow, a);
    FeedSlow(slow, b);
    auto expected = slow.Colors();
    expected.resize(256);
    int count = 64;
    const auto table = QuantizeTwoImages(a, b, count, false);
    ASSERT_TRUE(table);
    EXPECT_EQ(std::vector<Rgb>(table->begin(), table->end()), expected);
}

TEST(Quantize, ColoursBelowTheFourLevelsFallTogether) {
    // The two low bits of a channel are not looked at, but they count in the mean.
    const auto block = Picture32(4, {0xFF101010, 0xFF131313, 0xFF131313, 0xFF131313});
    int count = 256;
    const auto table = QuantizeImage(block, count, false);
    EXPECT_EQ((*table)[0], 0x121212u) << "(16 + 3 * 19) / 4 = 18.25";
    EXPECT_EQ((*table)[1], 0u);
    EXPECT_EQ(count, 256);
}

TEST(Quantize, ReservedWhiteStandsLast) {
    int count = 256;
    const auto flat = QuantizeImage(Picture32(1, {0xFF808080}), count, true);
    EXPECT_EQ((*flat)[0], 0u);
    EXPECT_EQ((*flat)[1], 0x808080u);
    EXPECT_EQ((*flat)[2], 0u) << "white stood here; what was last has come in its place";
    EXPECT_EQ((*flat)[255], 0xFFFFFFu);
    EXPECT_EQ(std::count((*flat).begin(), (*flat).end(), Rgb{0}), 254);
    // White that is no longer pure is not found, and entry 255 is lost to the reserved one.
    const auto tinted = QuantizeImage(Picture32(1, {0xFFFCFCFC}), count, true);
    EXPECT_EQ((*tinted)[1], 0xFEFEFEu);
    EXPECT_EQ((*tinted)[255], 0xFFFFFFu);
}

TEST(Quantize, OtherDepthsAndCounts) {
    int count = 7;
    EXPECT_FALSE(QuantizeImage({}, count, true));
    EXPECT_FALSE(QuantizeImage(CreateDIB(2, 2, 8), count, true));
    EXPECT_FALSE(QuantizeTwoImages(CreateDIB(2, 2, 24), CreateDIB(2, 2, 16), count, true));
    EXPECT_EQ(count, 7);
    for (const int odd : {0, -1, 257, INT32_MAX}) {
        count = odd;
        EXPECT_TRUE(QuantizeImage(CreateDIB(2, 2, 24), count, false));
        EXPECT_EQ(count, 256);
    }
}

} // namespace
} // namespace pelorin
