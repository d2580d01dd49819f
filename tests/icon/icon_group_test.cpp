#include "icon/icon_group.h"
#include "support/ico_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using ::testing::ElementsAre;

CVnIcon Icon(int width, int height, int bits) {
    CVnIcon icon;
    EXPECT_TRUE(icon.Create(width, height, IconColors(bits), bits == 32));
    return icon;
}

CIconGroup Group(std::initializer_list<IconFormat> formats, bool explorerOrder = false) {
    CIconGroup group;
    for (const auto& f : formats) group.Add(Icon(f.width, f.height, f.bits), explorerOrder);
    return group;
}

std::vector<std::string> Formats(const CIconGroup& group) {
    std::vector<std::string> out;
    for (const auto& icon : group.m_arrIcons)
        out.push_back(FormatShortDescription(icon->m_nWidth, icon->m_nHeight, icon->BitCount()));
    return out;
}

TEST(IconGroup, Orders) {
    const std::initializer_list<IconFormat> formats = {{16, 16, 32}, {48, 48, 8},  {32, 32, 4}, {32, 24, 8},
                                                       {32, 32, 8},  {48, 48, 32}, {16, 16, 1}, {16, 16, 24}};
    auto group = Group(formats);
    EXPECT_THAT(Formats(group), ElementsAre("16x16 - Mono", "32x32 - 16", "48x48 - 256", "32x32 - 256", "32x24 - 256",
                                            "16x16 - 16,8M", "48x48 - RGB/A", "16x16 - RGB/A"));
    EXPECT_THAT(group.GetDisplayOrder(), ElementsAre(6, 7, 5, 2, 3, 4, 1, 0));
    EXPECT_THAT(Formats(Group(formats, true)),
                ElementsAre("16x16 - Mono", "16x16 - 16,8M", "32x32 - 16", "32x24 - 256", "32x32 - 256", "48x48 - 256",
                            "16x16 - RGB/A", "48x48 - RGB/A"));
}

// In the explorer's order two 32-bit formats of one width keep their places.
TEST(IconGroup, EqualFormatsKeepTheirPlaces) {
    auto group = Group({{32, 48, 32}, {32, 16, 32}}, true);
    EXPECT_THAT(Formats(group), ElementsAre("32x48 - RGB/A", "32x16 - RGB/A"));
    group = Group({{32, 16, 32}, {32, 48, 32}}, true);
    EXPECT_THAT(Formats(group), ElementsAre("32x16 - RGB/A", "32x48 - RGB/A"));
    EXPECT_THAT(Group({{16, 16, 8}}).GetDisplayOrder(), ElementsAre(0));
}

TEST(IconGroup, FindBest) {
    auto group = Group({{16, 16, 1}, {32, 32, 4}, {16, 16, 8}, {48, 48, 24}, {32, 32, 32}, {256, 256, 32}});
    const auto best = [&](int size, int depth) {
        const auto* icon = group.GetIcon(group.FindBest(size, depth));
        return icon ? FormatShortDescription(icon->m_nWidth, icon->m_nHeight, icon->BitCount()) : "none";
    };
    EXPECT_EQ(best(0, 3), "32x32 - RGB/A"); // 32 + 0; the 24-bit one of 48 pixels: 64 + 32
    EXPECT_EQ(best(0, 2), "16x16 - 256");
    EXPECT_EQ(best(0, 0), "16x16 - Mono");
    EXPECT_EQ(best(3, 3), "256x256 - RGB/A");
    EXPECT_EQ(best(1, 1), "32x32 - 16");
    EXPECT_EQ(best(4, 0), "none");
    EXPECT_EQ(CIconGroup().FindBest(0, 0), -1);
    // A tie goes to the first: 24 lies between 16 and 32, at equal depth.
    group = Group({{32, 32, 32}, {16, 16, 32}});
    EXPECT_EQ(group.FindBestValues(24, 64), 0);
}

TEST(IconGroup, TextsAndSerials) {
    auto group = Group({{16, 16, 1}});
    EXPECT_EQ(group.GetSizeText(), "(1 format)");
    EXPECT_EQ(group.GetSizeText(7), "(#7, 1 format)");
    group.Add(Icon(16, 16, 4));
    EXPECT_EQ(group.GetSizeText(), "(2 formats)");
    EXPECT_EQ(group.GetSizeText(7), "(#7, 2 formats)");
    EXPECT_EQ(group.GetShownName(), "Untitled");
    EXPECT_EQ(FormatDescription(48, 32, 32), "48x32 - XP (RGB/A)");
    EXPECT_EQ(FormatDescription(48, 48, 32, true), "48x48 - RGB/A");
    EXPECT_EQ(FormatDescription(16, 16, 24), "16x16 - 16,8M colors");
    group.m_strSource = "here";
    const CIconGroup copy(group);
    EXPECT_NE(copy.m_nSerial, group.m_nSerial);
    EXPECT_EQ(copy.m_strSource, "here");
    EXPECT_EQ(copy.GetCount(), 2);
}

TEST(IconGroup, ArchiveHoldsBlocksAndTheirSizes) {
    auto group = Group({{2, 1, 1}, {1, 1, 32}});
    group.GetIcon(0)->m_hImage = test::PlainIconBlock(2, 1, 1);
    group.GetIcon(1)->m_hImage = test::PlainIconBlock(1, 1, 32);
    ArchiveWriter out;
    group.Serialize(out);
    const auto bytes = out.Take();
    ASSERT_EQ(bytes.size(), 2u + 4 + 56 + 4 + 48);
    EXPECT_EQ(LoadU16LE(bytes.data()), 2);
    EXPECT_EQ(LoadU32LE(&bytes[2]), 56u);
    EXPECT_EQ(LoadU32LE(&bytes[62]), 48u);

    CIconGroup back;
    ArchiveReader in(bytes);
    back.Serialize(in);
    EXPECT_THAT(Formats(back), ElementsAre("2x1 - Mono", "1x1 - RGB/A"));
    EXPECT_EQ(in.Left(), 0u);
    // Cut anywhere it throws or gives less; it never reads beyond.
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        CIconGroup part;
        ArchiveReader cut(ByteSpan(bytes).first(size));
        try {
            part.Serialize(cut);
        } catch (const ArchiveException&) {
        }
        EXPECT_LE(part.GetCount(), 2);
    }
}

} // namespace
} // namespace pelorin
