#include "base/files.h"
#include "formats/vnzb.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using ::testing::HasSubstr;

class VnzbVerbs : public ::testing::Test {
protected:
    [[nodiscard]] test::ProgramResult Run(const std::vector<std::string>& arguments) const {
        return test::RunProgram("pelorin-cli", arguments, m_folder.Path());
    }
    [[nodiscard]] Bytes Get(const std::string& name) const { return ReadFileStart(m_folder.Path(name), 1 << 20); }

    test::TempFolder m_folder;
};

TEST_F(VnzbVerbs, ThereAndBack) {
    const std::string content(5000, 'x');
    ASSERT_TRUE(CreateFolders(m_folder.Path("in")));
    m_folder.File("in/a.bin", content);
    m_folder.File("in/plain", content);
    EXPECT_EQ(Run({"vnzb", "pack", "in/a.bin", "in/plain"}).exitCode, 0);
    const auto block = Get("a.bin.vnzb");
    EXPECT_EQ(block, CompressVnzb(AsBytes(content)));
    EXPECT_EQ(Get("plain.vnzb"), block);

    EXPECT_EQ(Run({"vnzb", "unpack", "a.bin.vnzb", "plain.vnzb"}).exitCode, 0);
    EXPECT_EQ(AsText(Get("a.bin")), content);
    EXPECT_EQ(AsText(Get("plain.bin")), content);
    EXPECT_EQ(Run({"vnzb", "unpack", "a.bin.vnzb", "-o", "-"}).out, content);
}

TEST_F(VnzbVerbs, LargeContentsAreUnpacked) {
    Bytes content(300000);
    for (std::size_t i = 0, seed = 1; i < content.size(); ++i, seed = seed * 1103515245 + 12345)
        content[i] = static_cast<std::uint8_t>(seed >> 16);
    auto block = CompressVnzb(content);
    StoreU32LE(block.data() + 4, 0x12000000); // a size that may be true
    m_folder.File("a.vnzb", AsText(block));
    EXPECT_EQ(Run({"vnzb", "unpack", "a.vnzb", "-o", "a.bin"}).exitCode, 0);
    EXPECT_EQ(Get("a.bin"), content);
}

TEST_F(VnzbVerbs, ResourcesAndRefusals) {
    EXPECT_EQ(Run({"vnzb", "unpack", "--resource", "BLANKDLL", "-o", "b.dll"}).exitCode, 0);
    EXPECT_EQ(Get("b.dll").size(), 40960u);
    const auto unknown = Run({"vnzb", "unpack", "--resource", "NONE"});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_THAT(unknown.err, HasSubstr("NONE: the program has no such resource"));
    const auto damaged = Run({"vnzb", "unpack", m_folder.File("x.vnzb", "VNZB")});
    EXPECT_EQ(damaged.exitCode, 1);
    EXPECT_THAT(damaged.err, HasSubstr("it is no VNZB block, or it is damaged"));
    EXPECT_FALSE(FileExists(m_folder.Path("x.bin")));
    EXPECT_EQ(Run({"vnzb", "unpack"}).exitCode, 2);
}

} // namespace
} // namespace pelorin
