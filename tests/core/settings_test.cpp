#include "base/files.h"
#include "core/settings.h"
#include "platform/memory/memory_settings_store.h"
#include "platform/standard_folders.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <set>

namespace pelorin {
namespace {

class Settings : public testing::Test {
protected:
    void SetUp() override { ResetSettings(); }
    void TearDown() override { ResetSettings(); }
};

std::string Row(const std::array<bool, 41>& flags, std::size_t from, std::size_t count) {
    std::string text;
    for (std::size_t i = from; i < from + count; ++i) text += flags[i] ? '1' : '0';
    return text;
}

TEST_F(Settings, AFreshUserGetsTheDefaults) {
    LoadSettings(MemorySettingsStore());
    EXPECT_EQ(g_nJpegQuality, 80);
    EXPECT_TRUE(g_bNewProjectAtStartup);
    EXPECT_FALSE(g_bWinExplorerCompatibleOrder);
    EXPECT_EQ(g_crTransparentColor1, 0xEBEBEBu);
    EXPECT_EQ(g_crUseTransparentColorToCreateIconFromImageValue, 0xFB00FFu);
    EXPECT_EQ(g_crSavedBkRGBColor, 0xF1000000u);
    EXPECT_EQ(g_n8bppSavedBkIndex, 0xFFFF);
    EXPECT_EQ(g_strHeaderString, "{filename}");
    EXPECT_EQ(g_strAddTextFont, "MS Sans Serif");
    EXPECT_TRUE(g_arrFavoriteList.empty());
    for (std::size_t i = 0; i < 23; ++i) EXPECT_EQ(g_arrCreateFormatFromImage[i], i < 12 && i % 4 != 2) << i;
    for (std::size_t i = 0; i < 18; ++i) EXPECT_EQ(g_arrCreateFormatFromImageMac[i], i < 13) << i;
    EXPECT_EQ(Row(g_arrBatchNormalizeIconsSel, 0, 24), "110111011101110011100000");
    EXPECT_EQ(Row(g_arrBatchNormalizeIconsSel, 24, 17), "11111110111011101");
    EXPECT_EQ(g_arrPalColor[9], 0x0000FFu); // red stands lowest
}

// What is saved is what is loaded: every value of every type, taken to another value first.
TEST_F(Settings, EveryValueComesBack) {
    std::set<std::string> names;
    for (const auto& setting : AllSettings()) {
        EXPECT_TRUE(names.insert(setting.key).second) << setting.key << " stands twice";
        const bool isText = TypeName(setting) == "text";
        TakeStoredText(setting, isText ? " text of " + setting.key + "\n" : StoredText(setting) == "0" ? "1" : "0");
    }
    g_arrFavoriteList = {"/a", "b=c", " d "};
    g_mapDefaultIcons = {{"{20D04FE0}DefaultIcon", "a.dll,-5"}};
    MemorySettingsStore store(
        "[FavoriteList]\n3=stale\n4=stale\nnote=kept\n[DefaultIcons]\nstale=1\n[other]\nkept=1\n");
    SaveSettings(store);
    std::vector<std::string> saved;
    for (const auto& setting : AllSettings()) saved.push_back(StoredText(setting));

    ResetSettings();
    LoadSettings(MemorySettingsStore(store.Committed()));
    for (std::size_t i = 0; i < saved.size(); ++i) EXPECT_EQ(StoredText(AllSettings()[i]), saved[i]);
    EXPECT_EQ(g_arrFavoriteList, (std::vector<std::string>{"/a", "b=c", " d "}));
    EXPECT_EQ(g_mapDefaultIcons.size(), 1u);
    EXPECT_EQ(g_mapDefaultIcons["{20D04FE0}DefaultIcon"], "a.dll,-5");
    EXPECT_EQ(store.Read("FavoriteList", "note"), "kept");
    EXPECT_EQ(store.Read("other", "kept"), "1");
}

TEST_F(Settings, StoredForms) {
    LoadSettings(
        MemorySettingsStore("[prefs]\nGridColor=255\nTransparentColor1=\nTransparentColor2=0xFF\nJpegQuality=12x\n"
                            "TempSpace=4000\nShowWelcome=7\nPhotoCDSize=-3\n"
                            "[colors]\nSavedFgRGBColor=4043309056\nSavedBkRGBColor=-251658240\n"
                            "[specs]\nLibrarianLocation=/old/place\nPreviewTempDir=/old/store\n"
                            "[folders]\nPreviewTempDir=/new/store\n"
                            "[CoolBarList]\n0=a\n1=b\n2=\n3=d\n"));
    EXPECT_EQ(g_crGridColor, 0x0000FFu);
    EXPECT_EQ(g_crTransparentColor1, 0xEBEBEBu);
    EXPECT_EQ(g_crTransparentColor2, 0xFFFFFFu);
    EXPECT_EQ(g_nJpegQuality, 80);
    EXPECT_EQ(g_nTempSpace, 4000); // who reads it clamps it
    EXPECT_TRUE(g_bShowWelcome);
    EXPECT_EQ(g_nPhotoCDSize, -3);
    EXPECT_EQ(g_crSavedFgRGBColor, 0xF1000000u);
    EXPECT_EQ(g_crSavedBkRGBColor, 0xF1000000u);
    EXPECT_EQ(g_strLibrarianLocation, "/old/place");
    EXPECT_EQ(g_strPreviewTempDir, "/new/store");
    EXPECT_EQ(g_arrCoolBarList, (std::vector<std::string>{"a", "b"}));

    MemorySettingsStore store;
    g_crGridColor = 0x0000FF;
    SaveSettings(store);
    EXPECT_EQ(store.Read("prefs", "GridColor"), "255");
    EXPECT_EQ(store.Read("colors", "SavedBkRGBColor"), "-251658240");
    EXPECT_EQ(store.Read("folders", "LibrarianLocation"), "/old/place");
    EXPECT_EQ(store.Read("specs", "CreateFormatFromImage22"), "0");
    EXPECT_EQ(store.Read("specs", "BatchNormalizeIconsSel41"), "1");
}

TEST_F(Settings, WhatAPersonMayWrite) {
    const struct {
        std::string_view name, text, shown; // nothing shown: refused
    } cases[] = {
        {"JpegQuality", "95", "95"},
        {"prefs/jpegquality", "0", "0"},
        {"JpegQuality", "101", ""},
        {"JpegQuality", "-1", ""},
        {"JpegQuality", "9.5", ""},
        {"JpegQuality", "", ""},
        {"JpegQuality", "99999999999999999999", ""},
        {"ShowWelcome", "off", "0"},
        {"ShowWelcome", "TRUE", "1"},
        {"ShowWelcome", "2", ""},
        {"GridColor", "#FF8000", "#FF8000"},
        {"GridColor", "ff8000", "#FF8000"},
        {"GridColor", "#FFF", ""},
        {"GridColor", "12345g", ""},
        {"GridColor", "transparent", "transparent"},
        {"CreateFormatFromImageMac17", "1", "1"},
        {"EmailTo", " any text ", " any text "},
    };
    for (const auto& c : cases) {
        const auto* setting = FindSetting(c.name);
        ASSERT_NE(setting, nullptr) << c.name;
        const auto before = StoredText(*setting);
        const auto error = SetFromPerson(*setting, c.text);
        EXPECT_EQ(error.has_value(), c.shown.empty()) << c.name << " " << c.text;
        if (error) {
            EXPECT_EQ(StoredText(*setting), before);
        } else {
            EXPECT_EQ(DisplayText(*setting), c.shown);
        }
    }
    EXPECT_TRUE(SetFromPerson(*FindSetting("GridColor"), "#FF8000") == std::nullopt && g_crGridColor == 0x0080FF);
    EXPECT_EQ(DefaultDisplayText(*FindSetting("UseTransparentColorToCreateIconFromImageValue")), "#FF00FB");
    EXPECT_EQ(DefaultDisplayText(*FindSetting("HeaderString")), "{filename}");
    EXPECT_EQ(FindSetting("NoSuchKey"), nullptr);
    EXPECT_EQ(FindSetting("CreateFormatFromImage23"), nullptr);
}

struct Folders final : StandardFolders {
    std::string root;
    std::string Program() const override { return root + "program/"; }
    std::string Config() const override { return {}; }
    std::string Data() const override { return {}; }
    std::string LocalData() const override { return root + "local/"; }
    std::string Temp() const override { return {}; }
    std::string Documents() const override { return root + "documents/"; }
};

TEST_F(Settings, EmptyPlacesAreFilledAndMade) {
    const test::TempFolder root;
    Folders folders;
    folders.root = root.Path();
    g_strFullTrashDirIconFileName = "mine.icl";
    g_nFullTrashDirIconIndex = 9;
    CompleteSettingsPaths(folders, "/tmp/");
    EXPECT_EQ(g_strEmptyTrashDirIconFileName, root.Path("program/vnlibico.dll"));
    EXPECT_EQ(g_nEmptyTrashDirIconIndex, 1);
    EXPECT_EQ(g_nFullTrashDirIconIndex, 9);
    EXPECT_EQ(g_strLastDriveIconFile, root.Path("program/drives.icl"));
    EXPECT_EQ(g_strPreviewTempDir, root.Path("local/Vantrel/Temporary Preview Files"));
    EXPECT_EQ(g_strLibrarianLocation, root.Path("documents/Vantrel Librarian/"));
    EXPECT_TRUE(ListFolder(root.Path()).empty());
    CreateSettingsFolders();
    EXPECT_TRUE(FolderExists(root.Path("documents/Vantrel Librarian")));
    EXPECT_TRUE(FolderExists(g_strPreviewTempDir));

    const struct {
        std::string stored, used;
    } roots[] = {{"/srv/lib", "/srv/lib/"},
                 {"C:\\lib", "C:\\lib/"},
                 {"\\\\server\\lib\\", "\\\\server\\lib\\"},
                 {"bare", root.Path("documents/Vantrel Librarian/")},
                 {"a/b", root.Path("documents/Vantrel Librarian/")}};
    for (const auto& c : roots) {
        g_strLibrarianLocation = c.stored;
        CompleteSettingsPaths(folders, "/tmp/");
        EXPECT_EQ(g_strLibrarianRoot, c.used);
        EXPECT_EQ(g_strLibrarianLocation, c.stored);
    }
}

} // namespace
} // namespace pelorin
