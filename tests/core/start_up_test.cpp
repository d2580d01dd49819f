// Start and stop of the program with doors in memory.

#include "base/files.h"
#include "core/application.h"
#include "core/language.h"
#include "core/settings.h"
#include "core/switches.h"
#include "core/temp_files.h"
#include "core/user_prompt.h"
#include "platform/memory/memory_doors.h"
#include "platform/memory/memory_settings_store.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

struct NotingDocument final : CDocument {
    using CDocument::CDocument;
    bool OnNewDocument() override {
        m_bMacintosh = g_bNoDialogOnNew; // what a test can look at later
        return true;
    }
    bool OnOpenDocument(const std::string&) override { return true; }
};

struct NotingFrame final : MainFrame {
    bool Create(const std::string& path) override {
        calls += "create " + path + ";";
        return works;
    }
    void ShowSplash() override { calls += "splash;"; }
    void CloseSplash() override { calls += "close;"; }
    void SearchWeb(const std::string& phrase) override { calls += "search " + phrase + ";"; }
    std::string calls;
    bool works = true;
};

struct OneModule final : LanguageModules {
    std::map<int, std::string> ReadTexts(const std::string& path) override {
        asked = path;
        return texts;
    }
    std::string asked;
    std::map<int, std::string> texts = {{55658, "{nom}"}};
};

class StartUp : public testing::Test {
protected:
    void SetUp() override { MakeApp(); }
    void TearDown() override {
        app.reset();
        SetLanguageTexts({});
        ResetSettings();
        g_szTempFolder.clear();
    }
    void MakeApp() {
        Services services;
        services.prompt = &prompt;
        services.folders = &folders;
        services.settings = &store;
        services.locale = &locale;
        CPelorinApp::Parts parts;
        parts.frame = &frame;
        parts.instance = &instance;
        parts.languages = &modules;
        app = std::make_unique<CPelorinApp>(services, parts);
        for (int i = 0; i < kDocKindCount; ++i) {
            const CDocTemplate::Factory factory = [](Services& given) -> std::unique_ptr<CDocument> {
                return std::make_unique<NotingDocument>(given);
            };
            app->AddDocTemplate(
                std::make_unique<CDocTemplate>(app->GetServices(), InfoOf(static_cast<DocKind>(i)).stringId, factory));
        }
    }
    const auto& Documents(DocKind kind) { return app->GetTemplate(kind).GetDocuments(); }
    std::string TempFile(const char* name) {
        (void)CreateFolders(root.Path("local/Vantrel"));
        return root.File("local/Vantrel/" + std::string(name), "x");
    }

    test::TempFolder root;
    MemoryStandardFolders folders{root.Path()};
    MemorySettingsStore store;
    MemoryLocale locale;
    MemorySingleInstance::Hall hall;
    MemorySingleInstance instance{hall};
    ScriptedPrompt prompt;
    NotingFrame frame;
    OneModule modules;
    std::unique_ptr<CPelorinApp> app;
};

TEST_F(StartUp, AFreshUserGetsANewIcon) {
    const auto leftover = TempFile("vnpl0001.tmp");
    ASSERT_TRUE(app->InitInstance({}));
    EXPECT_EQ(frame.calls, "splash;create ;close;");
    ASSERT_EQ(Documents(DocKind::Icon).size(), 1u);
    EXPECT_TRUE(Documents(DocKind::Icon)[0]->m_bMacintosh); // made without the dialog
    EXPECT_FALSE(g_bNoDialogOnNew);
    EXPECT_EQ(Documents(DocKind::Icon)[0]->GetTitle(), "ICO File1");
    EXPECT_TRUE(Documents(DocKind::Explorer).empty());
    EXPECT_FALSE(FileExists(leftover));
    EXPECT_EQ(g_szDataFolder, root.Path("data/Vantrel/Pelorin/"));
    EXPECT_EQ(g_szTempFolder, root.Path("local/Vantrel/"));
    EXPECT_TRUE(FolderExists(root.Path("documents/Vantrel Librarian")));
    EXPECT_EQ(app->GetMediaTypes().GetTypes().size(), 22u);

    app->GetRecentFiles().Add("/a.ico");
    const auto mine = TempFile("vnpl0002.tmp");
    app->ExitInstance();
    EXPECT_FALSE(FileExists(mine));
    EXPECT_NE(store.Committed().find("[RecentFileList]\n0=/a.ico\n"), std::string::npos);
    EXPECT_NE(store.Committed().find("JpegQuality=80\n"), std::string::npos);
}

TEST_F(StartUp, ASecondStartHandsItsCommandLineOverAndTouchesNothing) {
    MemorySingleInstance first(hall);
    ASSERT_TRUE(first.Claim());
    const auto inUse = TempFile("vnpl0001.tmp");
    EXPECT_FALSE(app->InitInstance({"/librarian: x", "phrase"}));
    ASSERT_EQ(hall.waiting.size(), 1u);
    EXPECT_EQ(hall.waiting[0], (CommandLine{"/librarian: x", "phrase"}));
    EXPECT_TRUE(FileExists(inUse));
    EXPECT_EQ(frame.calls, "");
    // One that does not answer is not waited for.
    instance.m_fault.FailCall(1);
    EXPECT_TRUE(app->InitInstance({}));
}

TEST_F(StartUp, SettingsDecideWhatOpens) {
    store = MemorySettingsStore("[prefs]\nNewExplorerAtStartup=1\nNewProjectAtStartup=0\nShowSplashScreen=0\n"
                                "[RecentFileList]\n0=/x\n");
    ASSERT_TRUE(app->InitInstance({"/LIBRARIAN: /some/where "}));
    EXPECT_EQ(frame.calls, "create /some/where;close;");
    EXPECT_EQ(Documents(DocKind::Explorer).size(), 1u);
    EXPECT_TRUE(Documents(DocKind::Icon).empty());
    EXPECT_EQ(app->GetRecentFiles().Get(), std::vector<std::string>{"/x"});
}

TEST_F(StartUp, TheCommandLineIsOneRequest) {
    store = MemorySettingsStore("[prefs]\nNewProjectAtStartup=1\n");
    ASSERT_TRUE(app->InitInstance({"red", "car", "icons"}));
    EXPECT_EQ(frame.calls, "splash;create ;close;search red car icons;close;");
    EXPECT_TRUE(Documents(DocKind::Icon).empty());
    // Several files from the desktop are several requests.
    app->OpenFromCommandLine({root.File("a b.ico", "x"), root.File("c.png", "x")});
    EXPECT_EQ(Documents(DocKind::Icon).size(), 1u);
    EXPECT_EQ(Documents(DocKind::Image).size(), 1u);
}

TEST_F(StartUp, OnlyAPatchInTheTemporaryFolderIsDeleted) {
    const auto patch = TempFile("patch.exe");
    const auto other = root.File("other.exe", "x");
    ASSERT_TRUE(app->InitInstance({"/delpatch:" + patch}));
    EXPECT_FALSE(FileExists(patch));
    EXPECT_EQ(Documents(DocKind::Icon).size(), 1u); // then as without a command line
    for (const auto& argument : {"/delpatch:" + other, "/delpatch:" + root.Path("local/Vantrel/../../other.exe"),
                                 std::string("/delpatch:"), "x /delpatch:" + other}) {
        MakeApp();
        (void)app->InitInstance({argument});
        EXPECT_TRUE(FileExists(other)) << argument;
    }
    EXPECT_EQ(ParseSwitches({"/delpatch:p", "/librarian:l"}).librarian, "");
    EXPECT_EQ(ParseSwitches({"see /delpatch:p"}).patch, "");
}

TEST_F(StartUp, RelativeNamesBecomeWholeForAnotherProcess) {
    root.File("here.ico", "x");
    EXPECT_EQ(MakeAbsolute({"here.ico", "/delpatch:x", "", "not there.ico", root.Path("here.ico")}, root.Path()),
              (CommandLine{root.Path("here.ico"), "/delpatch:x", "", "not there.ico", root.Path("here.ico")}));
}

TEST_F(StartUp, Languages) {
    EXPECT_EQ(LanguageModuleName(2), "ResFra.dll");
    EXPECT_EQ(LanguageModuleName(26), "ResUkr.dll");
    for (const int none : {-1, 0, 1, 27}) EXPECT_EQ(LanguageModuleName(none), "") << none;
    EXPECT_EQ(AutomaticLanguage(0x0C), 2);
    EXPECT_EQ(AutomaticLanguage(0x24), 25);
    EXPECT_EQ(AutomaticLanguage(0x09), 1);
    EXPECT_EQ(AutomaticLanguage(0x01), 1);
    for (int primary = 0; primary < 0x100; ++primary) {
        EXPECT_NE(AutomaticLanguage(static_cast<std::uint16_t>(primary)), 15);
    }

    // The person's language has no module here: told once the window is there, and English stays.
    locale.m_primary = 0x0C;
    ASSERT_TRUE(app->InitInstance({}));
    EXPECT_EQ(prompt.Shown().back().number, 992);
    EXPECT_EQ(g_nLanguage, 1);

    (void)CreateFolders(root.Path("data/Vantrel/Pelorin"));
    root.File("data/Vantrel/Pelorin/ResFra.dll", "x");
    EXPECT_TRUE(app->LoadLanguage(0));
    EXPECT_EQ(g_nLanguage, 2);
    EXPECT_EQ(LoadText(55658), "{nom}");
    EXPECT_TRUE(app->LoadLanguage(1));
    EXPECT_EQ(LoadText(55658), "{filename}");
    modules.texts.clear(); // another version's module
    EXPECT_FALSE(app->LoadLanguage(2));
    EXPECT_FALSE(app->LoadLanguage(99));
    EXPECT_EQ(g_nLanguage, 1);
}

TEST_F(StartUp, WhatGoesWrongIsTold) {
    frame.works = false;
    EXPECT_FALSE(app->InitInstance({}));
    frame.works = true;
    MakeApp();
    ASSERT_TRUE(app->InitInstance({}));
    store.m_fault.FailCall(1);
    app->ExitInstance();
    EXPECT_EQ(prompt.TakeTexts().back(), "Vantrel Pelorin|Unable to save the settings: the disk is full.");
}

} // namespace
} // namespace pelorin
