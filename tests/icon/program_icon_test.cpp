#include "formats/program_resources.h"
#include "icon/ico_file.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

TEST(ProgramIcon, TheIconOfLibrariesIsAnIconFile) {
    const auto file = ExtractVnzbResource("TYPEICLSMALLICO");
    ASSERT_TRUE(file);
    CIconGroup group;
    ASSERT_TRUE(ReadIcoGroup(*file, group));
    ASSERT_EQ(group.GetCount(), 2);
    EXPECT_EQ(group.GetIcon(0)->m_nWidth, 32);
    EXPECT_EQ(group.GetIcon(1)->m_nWidth, 16);
    EXPECT_EQ(BuildIcoFile(group), *file) << "it is laid out as our own icon files are";
}

} // namespace
} // namespace pelorin
