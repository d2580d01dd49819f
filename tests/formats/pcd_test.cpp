#include "formats/pcd.h"
#include "formats/pcd_planes.h"
#include "support/dib_builder.h"
#include "support/hostile.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;

constexpr std::size_t kSector = 2048;
constexpr Size kSizes[] = {{192, 128}, {384, 256}, {768, 512}, {1536, 1024}, {3072, 2048}};

std::uint8_t Plain(int plane, int x, int y) {
    return static_cast<std::uint8_t>(plane == 0 ? 40 + (x / 4 + y / 3) % 140 : plane == 1 ? 156 + x % 9 : 137 - y % 9);
}
int Difference(int plane, int x, int y) {
    return (x * 7 + y * 13 + plane) % 11 - 5;
}

void PutPlain(Bytes& file, std::size_t sector, Size size) {
    file.resize(std::max(file.size(), sector * kSector));
    for (int y = 0; y < size.height; y += 2) {
        for (const int row : {y, y + 1}) {
            for (int x = 0; x < size.width; ++x) file.push_back(Plain(0, x, row));
        }
        for (const int plane : {1, 2}) {
            for (int x = 0; x < size.width / 2; ++x) file.push_back(Plain(plane, x, y / 2));
        }
    }
}

class BitWriter {
public:
    explicit BitWriter(Bytes& out) : m_out(out) {}
    void Put(std::uint32_t value, int count) {
        for (int bit = count - 1; bit >= 0; --bit) {
            if (m_used % 8 == 0) m_out.push_back(0);
            m_out.back() = static_cast<std::uint8_t>(m_out.back() | (value >> bit & 1) << (7 - m_used % 8));
            ++m_used;
        }
    }

private:
    Bytes& m_out;
    std::size_t m_used = 0;
};

// Every value has a code of nine bits that begins with 0: no row of codes looks like a mark.
void PutDifferences(Bytes& file, Size size, int planes) {
    for (int p = 0; p < planes; ++p) {
        file.push_back(255);
        for (unsigned value = 0; value < 256; ++value) {
            for (const unsigned byte : {8u, value >> 1, value << 7 & 255, value})
                file.push_back(static_cast<std::uint8_t>(byte));
        }
    }
    file.resize((file.size() + kSector - 1) / kSector * kSector);
    BitWriter bits(file);
    const auto mark = [&](int plane, int row) {
        bits.Put(0xFFFFFE, 24);
        bits.Put(static_cast<std::uint32_t>(plane == 0 ? 0 : plane + 1), 2);
        bits.Put(static_cast<std::uint32_t>(row), 13);
        bits.Put(0, 1);
    };
    for (int y = 0; y < size.height; ++y) {
        for (int p = 0; p < planes; ++p) {
            if (p > 0 && y % 2 == 1) continue;
            mark(p, y);
            for (int x = 0; x < (p == 0 ? size.width : size.width / 2); ++x) {
                bits.Put(static_cast<std::uint32_t>(Difference(p, x, p == 0 ? y : y / 2)) & 255, 9);
            }
            bits.Put(1, 1 + y % 7); // rows need not begin at a byte
        }
    }
    mark(0, size.height);
}

const Bytes& WholeFile() {
    static const Bytes file = [] {
        Bytes bytes(2 * kSector);
        std::copy_n("PCD_IPI", 7, bytes.begin() + kSector);
        PutPlain(bytes, 4, kSizes[0]);
        PutPlain(bytes, 23, kSizes[1]);
        PutPlain(bytes, 96, kSizes[2]);
        bytes.resize(388 * kSector);
        PutDifferences(bytes, kSizes[3], 1);
        bytes.resize((bytes.size() + kSector - 1) / kSector * kSector + 12 * kSector);
        PutDifferences(bytes, kSizes[4], 3);
        return bytes;
    }();
    return file;
}

PcdPlane Plus(PcdPlane plane, int number) {
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            auto& value = plane.Row(y)[x];
            value = static_cast<std::uint8_t>(std::clamp(value + Difference(number, x, y), 0, 255));
        }
    }
    return plane;
}

TEST(Pcd, DoublingPutsMeansBetween) {
    PcdPlane plane(2, 2);
    plane.values = {10, 21, 0, 3};
    EXPECT_EQ(DoublePcdPlane(plane).values, (Bytes{10, 16, 21, 21, 5, 9, 12, 12, 0, 2, 3, 3, 0, 2, 3, 3}));
}

TEST(Pcd, PlainSizesAreAsTheFileHasThem) {
    for (int size = 0; size < 3; ++size) {
        const auto planes = ReadPcdPlanes(WholeFile(), size);
        ASSERT_EQ(planes.luma.width, kSizes[size].width);
        ASSERT_EQ(planes.luma.height, kSizes[size].height);
        EXPECT_EQ(planes.luma.Row(101)[77], Plain(0, 77, 101));
        EXPECT_EQ(planes.chroma[0].Row(51)[40], Plain(1, 40, 51));
        EXPECT_EQ(planes.chroma[1].Row(51)[40], Plain(2, 40, 51));
    }
}

TEST(Pcd, CodedSizesAddToTheDoubledOnes) {
    const auto base = ReadPcdPlanes(WholeFile(), 2);
    const auto fourfold = ReadPcdPlanes(WholeFile(), 3);
    const auto wanted = Plus(DoublePcdPlane(base.luma), 0);
    EXPECT_TRUE(fourfold.luma.values == wanted.values);
    EXPECT_TRUE(fourfold.chroma[1].values == DoublePcdPlane(base.chroma[1]).values) << "only brightness is added to";

    const auto sixteenfold = ReadPcdPlanes(WholeFile(), 4);
    EXPECT_TRUE(sixteenfold.luma.values == Plus(DoublePcdPlane(wanted), 0).values);
    for (int p = 0; p < 2; ++p) {
        EXPECT_TRUE(sixteenfold.chroma[p].values == Plus(DoublePcdPlane(fourfold.chroma[p]), p + 1).values) << p;
    }
}

DibBlock ReadSize(ByteSpan file, int size) {
    PictureRequest request;
    request.photoCdSize = size;
    PictureFacts facts;
    return ReadPcd(file, request, facts);
}

TEST(Pcd, ColorsAndTurns) {
    auto file = WholeFile();
    const auto set = [&](int y, int c1, int c2) {
        const auto at = 4 * kSector;
        file[at] = static_cast<std::uint8_t>(y);
        for (const std::size_t x : {0u, 1u}) {
            // The neighbours take part in doubling: the corner itself is the pixel's own.
            file[at + 2 * 192 + x] = static_cast<std::uint8_t>(c1);
            file[at + 2 * 192 + 96 + x] = static_cast<std::uint8_t>(c2);
        }
        return At(ReadSize(file, 0), 0, 0);
    };
    EXPECT_EQ(set(0, 156, 137), 0xFF000000u);
    EXPECT_EQ(set(182, 156, 137), 0xFFF7F7F7u);
    EXPECT_EQ(set(250, 156, 137), 0xFFFFFFFFu);
    EXPECT_EQ(set(100, 156, 187), 0xFFE35988u); // 135.84 + 91.075, - 46.36, + 0
    EXPECT_EQ(set(100, 136, 137), 0xFF88905Bu); // 135.84 - 44.36 in blue, + 8.61 in green

    struct Case {
        int turns, width, x, y;
    };
    for (const auto& c : {Case{0, 192, 0, 0}, Case{1, 128, 0, 191}, Case{2, 192, 191, 127}, Case{3, 128, 127, 0}}) {
        file[0xE02] = static_cast<std::uint8_t>(0xFC | c.turns);
        const auto block = ReadSize(file, 0);
        EXPECT_EQ(DIBWidth(block), c.width);
        EXPECT_EQ(At(block, c.x, c.y), 0xFF88905Bu) << c.turns;
    }
}

TEST(Pcd, WhatIsNotThereWholeGivesTheSizeBelow) {
    const ByteSpan file = WholeFile();
    struct Case {
        std::size_t bytes;
        int wanted, width;
    };
    const Case cases[] = {
        {file.size(), 9, 3072},          {file.size() - 40, 4, 1536},
        {900 * kSector, 4, 768},         {388 * kSector + 5, 3, 768},
        {388 * kSector - 99999, 2, 384}, {23 * kSector, 2, 192},
        {4 * kSector + 100, 2, 0},       {kSector + 3, 2, 0},
        {file.size(), -1, 192},
    };
    for (const auto& c : cases) EXPECT_EQ(DIBWidth(ReadSize(file.first(c.bytes), c.wanted)), c.width) << c.bytes;
}

TEST(Pcd, DamagedTablesAndMarks) {
    auto file = WholeFile();
    const auto tables = 388 * kSector;
    for (const std::size_t at :
         {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{700}, kSector + 3, 3 * kSector}) {
        const auto before = file[tables + at];
        for (const unsigned value : {0u, 0xFFu, before ^ 0x10u}) {
            file[tables + at] = static_cast<std::uint8_t>(value);
            EXPECT_TRUE(DibView(ReadSize(file, 3)));
        }
        file[tables + at] = before;
    }
}

} // namespace
} // namespace pelorin
