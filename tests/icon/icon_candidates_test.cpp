#include "icon/icon_candidates.h"
#include "support/dib_builder.h"
#include "support/ico_builder.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::BuildIco;
using test::PlainIconBlock;

TEST(IconCandidates, StandByWidthAndDepth) {
    auto planes = PlainIconBlock(16, 16, 4);
    planes[12] = 3; // counts as 12 bits
    const auto file = BuildIco({{.image = PlainIconBlock(32, 32, 8)},
                                {.image = PlainIconBlock(16, 16, 8)},
                                {.image = planes},
                                {.image = PlainIconBlock(48, 48, 1)},
                                {.image = PlainIconBlock(32, 32, 32)},
                                {.image = PlainIconBlock(16, 16, 1)}},
                               2);
    std::vector<CIcoCurObject> list;
    ASSERT_TRUE(ReadCandidates(file, list));
    std::vector<std::pair<int, int>> order;
    for (const auto& candidate : list) order.emplace_back(candidate.m_nWidth, candidate.m_nBits);
    EXPECT_EQ(order, (std::vector<std::pair<int, int>>{{16, 1}, {16, 8}, {16, 12}, {32, 8}, {32, 32}, {48, 1}}));
    EXPECT_EQ(list[0].m_nFrames, 1);
    EXPECT_EQ(list[0].m_Dib.GetBitCount(), 32);

    list.clear();
    EXPECT_FALSE(ReadCandidates(BuildIco({}), list));
    EXPECT_FALSE(ReadCandidates(BuildIco({{.image = {1, 2, 3}}}), list));
}

TEST(IconCandidates, PreviewIsPaintedOnWhite) {
    // Two pixels of 1 bit: black and transparent.
    const auto mono = test::BuildIconBlock(
        {.width = 2, .bits = 1, .behind = {0, 0, 0, 0, 255, 255, 255, 0, 0, 0, 0, 0, 0x40, 0, 0, 0}});
    const test::TempFolder folder;
    const auto preview = LoadBestPreview(folder.File("a.ico", AsText(BuildIco({{.image = mono}}))));
    EXPECT_EQ(DIBBitCount(preview), 24);
    EXPECT_EQ(test::At(preview, 0, 0), 0xFF000000u);
    EXPECT_EQ(test::At(preview, 1, 0), 0xFFFFFFFFu);
    EXPECT_FALSE(LoadBestPreview(folder.Path("missing.ico")));
    EXPECT_FALSE(LoadBestPreview(folder.File("b.ico", "no icon")));
}

} // namespace
} // namespace pelorin
