#include "formats/png.h"
#include "icon/icon_pictures.h"
#include "support/dib_builder.h"
#include "support/ico_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::BuildIco;
using test::PlainIconBlock;

DibBlock Read(const Bytes& file, bool cursor, PictureFacts& facts) {
    return cursor ? ReadCursorPicture(file, {}, facts) : ReadIconPicture(file, {}, facts);
}

TEST(IconPictures, WidestThenDeepestImageOfAnIcon) {
    Bytes png;
    ASSERT_EQ(WritePng(test::Picture32(2, {0xFF102030, 0x40FFFFFF}), {}, png), 0);
    PictureFacts facts;
    const auto alone = Read(BuildIco({{.image = png}}), false, facts);
    EXPECT_EQ(At(alone, 1, 0), 0x40FFFFFFu) << "transparency stays";

    (void)Read(BuildIco({{.image = PlainIconBlock(16, 16, 32)},
                         {.image = PlainIconBlock(48, 48, 4)},
                         {.image = PlainIconBlock(48, 48, 8)},
                         {.image = PlainIconBlock(32, 32, 32)}}),
               false, facts);
    EXPECT_EQ(facts.width, 48);
    EXPECT_EQ(facts.bits, 8);
}

TEST(IconPictures, CursorIsDrawnOnWhite) {
    // A blue square that is transparent all over but for its first row of 32 pixels.
    auto block = PlainIconBlock(32, 32, 1);
    StoreU32LE(&block[44], 0x0000FF);
    for (std::size_t i = 0; i < 31 * 4; ++i) block[block.size() - 32 * 4 + i] = 0xFF;
    PictureFacts facts;
    const auto picture = Read(BuildIco({{.image = PlainIconBlock(64, 64, 32)}, {.image = block}}, 2), true, facts);
    ASSERT_EQ(DIBBitCount(picture), 24);
    EXPECT_EQ(DIBWidth(picture), 32);
    EXPECT_EQ(At(picture, 5, 31), 0xFFFFFFFFu);
    EXPECT_EQ(facts.bits, 1);

    const auto scaled = Read(BuildIco({{.image = PlainIconBlock(64, 64, 8)}}, 2), true, facts);
    EXPECT_EQ(DIBWidth(scaled), 32);
    EXPECT_EQ(facts.width, 64);
}

TEST(IconPictures, RowsTellIconsFromCursors) {
    const auto rows = IconPictureFormats();
    const auto icon = BuildIco({{.image = PlainIconBlock(8, 8, 4)}}),
               cursor = BuildIco({{.image = PlainIconBlock(8, 8, 4)}}, 2);
    for (const auto& row : rows) {
        EXPECT_EQ(row.matches(icon), row.name == "ICO");
        EXPECT_EQ(row.matches(cursor), row.name == "CUR");
        PictureFacts facts;
        EXPECT_FALSE(row.read(Bytes(30), {}, facts));
    }
}

} // namespace
} // namespace pelorin
