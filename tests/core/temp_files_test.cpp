#include "base/files.h"
#include "core/temp_files.h"
#include "platform/standard_folders.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

struct Folders final : StandardFolders {
    std::string local, temp, data;
    std::string Program() const override { return {}; }
    std::string Config() const override { return {}; }
    std::string Documents() const override { return {}; }
    std::string Data() const override { return data; }
    std::string LocalData() const override { return local; }
    std::string Temp() const override { return temp; }
};

TEST(TempFiles, NamesAreFreeAndOfTheForm) {
    const test::TempFolder folder;
    g_szTempFolder = folder.Path();
    const auto first = MakeTempName("", "ico");
    const auto second = MakeTempName("abc", "tmp");
    g_szTempFolder.clear();
    EXPECT_TRUE(FileNameOf(first).starts_with("vnpl"));
    EXPECT_EQ(FileNameOf(first).size(), std::string_view("vnpl0000.ico").size());
    EXPECT_TRUE(FileNameOf(second).starts_with("abc"));
    EXPECT_NE(StemOf(first).substr(4), StemOf(second).substr(3));
    EXPECT_FALSE(FileExists(first));
    EXPECT_EQ(MakeTempName("", "ico"), "");
}

TEST(TempFiles, ClearingTakesFilesOfThePrefixOnly) {
    const test::TempFolder folder;
    for (const char* name : {"vnpl0001.tmp", "VNPL", "vnplx", "xvnpl.tmp", "vnp.tmp"}) folder.File(name, "x");
    CreateFolders(folder.Path("vnpl-folder"));
    ClearTempFiles(folder.Path());
    EXPECT_EQ(ListFolder(folder.Path()), (std::vector<std::string>{"vnp.tmp", "vnpl-folder", "xvnpl.tmp"}));
}

TEST(TempFiles, FirstFolderThatTakesAFileWins) {
    const test::TempFolder root;
    Folders folders;
    folders.local = root.Path("local/");
    folders.temp = root.Path("temp/");
    folders.data = root.Path("data/");
    EXPECT_EQ(FindTempFolder(folders), root.Path("local/Vantrel/"));
    EXPECT_TRUE(ListFolder(root.Path("local/Vantrel")).empty()); // the probe is gone

    folders.local = root.File("a-file") + "/"; // no folder can be made below a file
    EXPECT_EQ(FindTempFolder(folders), root.Path("temp/"));
    folders.temp = "";
    EXPECT_EQ(FindTempFolder(folders), root.Path("data/Vantrel/"));
    folders.data = root.Path("a-file/data/");
    EXPECT_EQ(FindTempFolder(folders), "");
}

} // namespace
} // namespace pelorin
