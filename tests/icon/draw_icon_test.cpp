#include "icon/draw_icon.h"
#include "icon/icon_object.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

CVnIcon IconOf(int side, std::initializer_list<Argb> pixels) {
    CIconObject object(32, side, side, true, false);
    EXPECT_TRUE(object.SetImage(test::Picture32(side, pixels)));
    object.UpdateStored();
    CVnIcon icon;
    icon.Copy(object.m_Stored);
    return icon;
}

TEST(DrawIcon, TransparentPartsLetTheTargetShow) {
    auto icon = IconOf(2, {0xFFFF0000, 0x00000000, 0x8000FF00, 0xFF0000FF});
    Surface target(4, 4);
    target.Fill(0xFFFFFF);
    ASSERT_TRUE(DrawIcon(icon, target, {1, 1}));
    EXPECT_EQ(target.At(1, 1) & 0xFFFFFF, 0xFF0000u);
    EXPECT_EQ(target.At(2, 1) & 0xFFFFFF, 0xFFFFFFu);
    EXPECT_EQ(target.At(1, 2) & 0xFFFFFF, 0x7FFF7Fu) << "half way, truncated";
    EXPECT_EQ(target.At(2, 2) & 0xFFFFFF, 0x0000FFu);
    EXPECT_EQ(target.At(3, 3) & 0xFFFFFF, 0xFFFFFFu);
}

TEST(DrawIcon, TheScaledPictureIsKeptAndMadeAnew) {
    auto icon = IconOf(2, {0xFFFF0000, 0xFFFF0000, 0xFFFF0000, 0xFFFF0000});
    Surface target(16, 8);
    EXPECT_EQ(DrawIconFitted(icon, target, {0, 0, 16, 8}), (Rect{7, 3, 9, 5})) << "never enlarged";
    EXPECT_EQ(icon.m_nCacheWidth, 2);
    EXPECT_EQ(DrawIconFitted(icon, target, {3, 3, 4, 9}), (Rect{3, 5, 4, 6}));
    EXPECT_EQ(icon.m_nCacheWidth, 1);
    icon.Copy(IconOf(2, {0xFF0000FF, 0xFF0000FF, 0xFF0000FF, 0xFF0000FF}));
    ASSERT_TRUE(DrawIconScaled(icon, target, {0, 0}, {1, 1}));
    EXPECT_EQ(target.At(0, 0) & 0xFFFFFF, 0x0000FFu) << "the picture of the new block";
}

TEST(DrawIcon, ABrokenBlockPaintsNothing) {
    CVnIcon icon;
    Surface target(2, 2);
    EXPECT_FALSE(DrawIcon(icon, target, {0, 0}));
    EXPECT_TRUE(DrawIconFitted(icon, target, {0, 0, 2, 2}).Empty());
}

} // namespace
} // namespace pelorin
