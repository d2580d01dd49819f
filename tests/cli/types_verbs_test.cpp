#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using ::testing::HasSubstr;

TEST(TypesVerbs, ListAndAssociate) {
    const test::TempFolder folder;
    const auto prefix = "export HOME=" + folder.Path("home") +
                        " XDG_CONFIG_HOME= XDG_DATA_HOME= XDG_DATA_DIRS=" + folder.Path("sys") + "; ";
    const auto cli = [&](const std::vector<std::string>& arguments) {
        return test::RunProgram("pelorin-cli", arguments, folder.Path(), prefix);
    };
    const auto list = cli({"types", "list"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_THAT(list.out, HasSubstr(" 8  ico"));
    EXPECT_THAT(list.out, HasSubstr("32  icns,rsc,rsrc,bin"));
    EXPECT_THAT(cli({"types", "list", "--json"}).out, HasSubstr("\"kind\": 8,\n    \"name\": \"Windows Icon File\""));
    EXPECT_EQ(cli({"types", "associate", "gif"}).exitCode, 2);
    EXPECT_TRUE(ListFolder(folder.Path("home")).empty());
    if (!FileExists(PELORIN_BIN_DIR "/pelorin")) {
        const auto refused = cli({"types", "associate", "ico"});
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_THAT(refused.err, HasSubstr("the workbench is not installed here"));
        EXPECT_TRUE(ListFolder(folder.Path("home")).empty());
    }
}

} // namespace
} // namespace pelorin
