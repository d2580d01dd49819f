#include "formats/pcx.h"
#include "support/dib_builder.h"
#include "support/hostile.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::ReadCopy;

struct Shape {
    int width, height, bits, planes, planeBytes;
    int version = 5, encoding = 1;
    std::vector<std::uint8_t> colors = {}; // the first bytes of the 48
};

Bytes MakeFile(const Shape& shape, const Bytes& behind) {
    ByteWriter out;
    out.U8(10);
    out.U8(static_cast<std::uint32_t>(shape.version));
    out.U8(static_cast<std::uint32_t>(shape.encoding));
    out.U8(static_cast<std::uint32_t>(shape.bits));
    out.U16LE(100); // the picture need not begin at 0
    out.U16LE(50);
    out.U16LE(static_cast<std::uint32_t>(100 + shape.width - 1));
    out.U16LE(static_cast<std::uint32_t>(50 + shape.height - 1));
    out.U32LE(0);
    out.Raw(shape.colors);
    out.Zeros(48 - shape.colors.size() + 1);
    out.U8(static_cast<std::uint32_t>(shape.planes));
    out.U16LE(static_cast<std::uint32_t>(shape.planeBytes));
    out.Zeros(128 - out.Size());
    out.Raw(behind);
    return out.Take();
}

Bytes WithTail(Bytes rows, Rgb entry7) {
    rows.push_back(12);
    const auto at = rows.size() + 7 * 3;
    rows.resize(rows.size() + 768);
    rows[at] = static_cast<std::uint8_t>(entry7 >> 16);
    rows[at + 1] = static_cast<std::uint8_t>(entry7 >> 8);
    rows[at + 2] = static_cast<std::uint8_t>(entry7);
    return rows;
}

TEST(Pcx, EveryDepthHasItsPixelsAndColors) {
    struct Case {
        const char* what;
        Shape shape;
        Bytes behind;
        int bits;
        std::vector<Argb> row;
    };
    const Case cases[] = {
        {"two colours, none stated", {3, 1, 1, 1, 2}, {0x40, 0}, 1, {0xFF000000, 0xFFFFFFFF, 0xFF000000}},
        {"two colours of the file", {2, 1, 1, 1, 2, 5, 1, {1, 2, 3, 9, 8, 7}}, {0x40, 0}, 1, {0xFF010203, 0xFF090807}},
        {"the adapter's first two mean black and white",
         {2, 1, 1, 1, 2, 5, 1, {0, 0, 0, 0, 0, 0xAA}},
         {0x40, 0},
         1,
         {0xFF000000, 0xFFFFFFFF}},
        {"packed four colours",
         {4, 1, 2, 1, 2, 5, 1, {0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0, 4}},
         {0x1B, 0},
         4,
         {0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004}},
        {"four colours of the adapter, blue ground, set without brightness",
         {4, 1, 2, 1, 2, 2, 1, {0x10, 0, 0, 0x40}},
         {0x1B, 0},
         4,
         {0xFF0000AA, 0xFF00AAAA, 0xFFAA00AA, 0xFFAAAAAA}},
        {"packed sixteen colours", {2, 1, 4, 1, 2, 3}, {0x4F, 0}, 4, {0xFFAA0000, 0xFFFFFFFF}},
        {"four planes, lowest bit first",
         {2, 1, 1, 4, 2, 3},
         {0x80, 0, 0x40, 0, 0, 0, 0, 0},
         4,
         {0xFF0000AA, 0xFF00AA00}},
        {"256 colours from the tail", {2, 1, 8, 1, 2}, WithTail({7, 0}, 0x102030), 8, {0xFF102030, 0xFF000000}},
        {"six bits without a tail: sixteen colours, then black",
         {2, 1, 2, 3, 2, 5, 1, {0, 0, 0, 1, 2, 3}},
         {0x40, 0, 0x10, 0, 0x10, 0},
         8,
         {0xFF010203, 0xFF000000}},
        {"256 greys without a tail", {2, 1, 8, 1, 2}, {7, 0xC1, 0xFE}, 8, {0xFF070707, 0xFFFEFEFE}},
        {"three planes", {2, 1, 8, 3, 2}, {1, 2, 3, 4, 5, 6}, 24, {0xFF010305, 0xFF020406}},
        {"four planes with alpha", {1, 1, 8, 4, 2}, {1, 0, 3, 0, 5, 0, 0x80, 0}, 32, {0x80010305}},
        {"an alpha plane of zeros is none", {1, 1, 8, 4, 2}, {1, 0, 3, 0, 5, 0, 0, 0}, 24, {0xFF010305}},
        {"not encoded", {2, 1, 8, 1, 2, 5, 0}, {0xC1, 0xFF}, 8, {0xFFC1C1C1, 0xFFFFFFFF}},
    };
    for (const auto& c : cases) {
        const auto block = ReadCopy(ReadPcx, MakeFile(c.shape, c.behind));
        ASSERT_TRUE(block) << c.what;
        EXPECT_EQ(DIBBitCount(block), c.bits) << c.what;
        for (int x = 0; x < static_cast<int>(c.row.size()); ++x) {
            EXPECT_EQ(At(block, x, 0), c.row[static_cast<std::size_t>(x)]) << c.what << ", column " << x;
        }
    }
}

TEST(Pcx, RunsGoOnOverRowsAndCountsOfZeroAreNothing) {
    const auto block = ReadCopy(ReadPcx, MakeFile({2, 2, 8, 1, 2}, {0xC0, 9, 0xC3, 7, 5}));
    ASSERT_TRUE(block);
    EXPECT_EQ(At(block, 1, 0), 0xFF070707u);
    EXPECT_EQ(At(block, 0, 1), 0xFF070707u);
    EXPECT_EQ(At(block, 1, 1), 0xFF050505u);
}

TEST(Pcx, RefusesWhatMakesNoSense) {
    const Bytes row = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_FALSE(ReadCopy(ReadPcx, MakeFile({8, 1, 8, 1, 7}, row))) << "a row shorter than its pixels";
    EXPECT_FALSE(ReadCopy(ReadPcx, MakeFile({0, 1, 8, 1, 8}, row)));
    EXPECT_FALSE(ReadCopy(ReadPcx, MakeFile({4, 1, 8, 2, 4}, row)));
    EXPECT_FALSE(ReadCopy(ReadPcx, MakeFile({8, 2, 8, 1, 8}, row))) << "the second row is missing";
    EXPECT_FALSE(ReadCopy(ReadPcx, MakeFile({60000, 60000, 1, 1, 7500}, row))) << "eight bytes cannot hold that";
    EXPECT_FALSE(IsPcx(AsBytes("\x0A\x05\x01\x08 text")));
}

TEST(Pcx, SurvivesDamage) {
    test::ExpectSurvivesDamage(ReadPcx,
                               MakeFile({5, 3, 1, 4, 2}, {0xC6, 0x55, 1, 2, 3, 4, 0xC3, 7, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    test::ExpectSurvivesDamage(ReadPcx, MakeFile({2, 1, 8, 1, 2}, WithTail({7, 0}, 1)), 130);
}

} // namespace
} // namespace pelorin
