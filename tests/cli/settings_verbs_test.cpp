#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using ::testing::HasSubstr;

class SettingsVerbs : public testing::Test {
protected:
    test::ProgramResult Cli(const std::vector<std::string>& arguments, const std::string& before = {}) const {
        const auto prefix = "export HOME=" + folder.Path("home") + " XDG_CONFIG_HOME= XDG_DATA_HOME= XDG_CACHE_HOME=; ";
        return test::RunProgram("pelorin-cli", arguments, folder.Path(), prefix + before);
    }
    test::TempFolder folder;
};

TEST_F(SettingsVerbs, SetGetListReset) {
    EXPECT_EQ(Cli({"settings", "get", "JpegQuality", "prefs/GridColor"}).out, "80\n#A0A0A0\n");
    EXPECT_TRUE(ListFolder(folder.Path("home")).empty()); // asking leaves nothing behind
    EXPECT_EQ(Cli({"settings", "set", "JpegQuality", "92"}).exitCode, 0);
    EXPECT_EQ(Cli({"settings", "set", "GridColor", "FF8000"}).exitCode, 0);
    EXPECT_EQ(Cli({"settings", "set", "FavoriteList", "/a b", "/c"}).exitCode, 0);
    const auto store = folder.Path("home/.config/Vantrel/Pelorin/settings.ini");
    EXPECT_EQ(AsText(FileView::Open(store).Data()),
              "[prefs]\nJpegQuality=92\nGridColor=33023\n\n[FavoriteList]\n0=/a b\n1=/c\n");
    EXPECT_EQ(Cli({"settings", "list", "--changed"}).out, "prefs/JpegQuality  92        number\n"
                                                          "prefs/GridColor    #FF8000   colour\n"
                                                          "FavoriteList       /a b; /c  list\n");
    EXPECT_THAT(Cli({"settings", "get", "JpegQuality", "--json"}).out,
                HasSubstr("\"type\": \"number\",\n    \"value\": 92,\n    \"default\": 80,\n    \"least\": 0,"));
    EXPECT_EQ(Cli({"settings", "reset", "JpegQuality"}).exitCode, 0);
    EXPECT_EQ(Cli({"settings", "get", "JpegQuality"}).out, "80\n");
    EXPECT_EQ(Cli({"settings", "reset", "--all"}).exitCode, 0);
    EXPECT_EQ(Cli({"settings", "list", "--changed"}).out, "");
}

TEST_F(SettingsVerbs, WrongUsageSaysWhatWouldBeRight) {
    const struct {
        std::vector<std::string> arguments;
        std::string error;
    } cases[] = {
        {{"settings", "get", "JpegQualty"}, "there is no setting \"JpegQualty\"; did you mean JpegQuality?"},
        {{"settings", "set", "JpegQuality", "high"}, "prefs/JpegQuality takes a whole number"},
        {{"settings", "set", "JpegQuality", "101"}, "prefs/JpegQuality takes a number from 0 to 100"},
        {{"settings", "set", "ShowGrid", "2"}, "specs/ShowGrid takes 0 or 1"},
        {{"settings", "set", "GridColor", "reddish"}, "prefs/GridColor takes a colour"},
        {{"settings", "list", "nowhere"}, "there is no section \"nowhere\""},
        {{"settings", "reset"}, "needs names, or --all"},
    };
    for (const auto& c : cases) {
        const auto result = Cli(c.arguments);
        EXPECT_EQ(result.exitCode, 2) << c.error;
        EXPECT_THAT(result.err, HasSubstr(c.error));
    }
    EXPECT_TRUE(ListFolder(folder.Path("home")).empty());
}

TEST_F(SettingsVerbs, AStoreThatCannotBeWrittenStaysAsItWas) {
    ASSERT_EQ(Cli({"settings", "set", "JpegQuality", "92"}).exitCode, 0);
    const auto result = Cli({"settings", "set", "EmailMessage", std::string(5000, 'x')}, "ulimit -f 1; ");
    EXPECT_NE(result.exitCode, 0);
    EXPECT_EQ(Cli({"settings", "list", "--changed"}).out, "prefs/JpegQuality  92  number\n");
}

TEST_F(SettingsVerbs, Open) {
    folder.File("a.ico", "x");
    folder.File("a.xyz", "x");
    const auto result = Cli({"open", "a.ico", "a.xyz", ".", "blue folder"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "a.ico  icon (Windows Icon File)\n.  explorer\nblue folder  a search in the web\n");
    EXPECT_EQ(result.err, "pelorin-cli: a.xyz: The file \"a.xyz\" cannot be opened. This file type is not supported by "
                          "Vantrel Pelorin.\n");
    EXPECT_THAT(Cli({"open", "--json", "a.ico"}).out, HasSubstr("\"receiver\": \"icon\",\n    \"kind\": 8"));
}

} // namespace
} // namespace pelorin
