// Where requests to open something end, with scripted documents.

#include "base/files.h"
#include "core/application.h"
#include "core/file_dialogs.h"
#include "core/settings.h"
#include "core/user_prompt.h"
#include "platform/memory/memory_doors.h"
#include "platform/memory/memory_settings_store.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

struct Icons final : IconListContent {
    explicit Icons(int icons) : count(icons) {}
    int Count() const override { return count; }
    int count;
};

// Takes any file that does not say "broken"; tells how many icons were handed to it.
struct ScriptedDocument final : CDocument {
    using CDocument::CDocument;
    bool OnOpenDocument(const std::string& path) override {
        return !FileExists(path) || FileSize(path) != std::string_view("broken").size();
    }
    void SetContent(std::unique_ptr<DocumentContent> content) override { given = dynamic_cast<Icons&>(*content).count; }
    int given = -1;
};

struct ScriptedHooks final : OpenHooks {
    std::unique_ptr<IconListContent> ReadIconList(const std::string&) override {
        return icons < 0 ? nullptr : std::make_unique<Icons>(icons);
    }
    bool HasMacintoshIcon(const std::string&) override { return icons > 0; }
    CDocument* OpenTransferFile(const std::string& path) override {
        calls += "transfer " + path;
        return nullptr;
    }
    bool AskNewIcon(const std::string& name, bool macintosh) override {
        calls += "new " + name + (macintosh ? " mac" : "");
        return agrees;
    }
    bool HasBrowser() override { return browser; }
    bool HasMediaFramework() override { return framework; }

    int icons = -1;
    bool agrees = true, browser = false, framework = false;
    std::string calls;
};

struct ScriptedFrame final : MainFrame {
    void CloseSplash() override { calls += "splash;"; }
    void ActivateDocument(CDocument& document) override { activated = &document; }
    void ShowWaitCursor(bool on) override { wait += on ? 1 : -1; }
    void SearchWeb(const std::string& phrase) override { calls += "search " + phrase + ";"; }
    void EditMediaType(int kind) override { calls += "edit type " + std::to_string(kind) + ";"; }

    std::string calls;
    CDocument* activated = nullptr;
    int wait = 0;
};

struct ScriptedDialogs final : FileDialogs {
    std::string ChooseToOpen(FileDialogRequest& request) override {
        asked = request;
        request.filterIndex = 4;
        return answer;
    }
    std::string ChooseToSave(FileDialogRequest&) override { return {}; }
    FileDialogRequest asked;
    std::string answer;
};

class OpenDocument : public testing::Test {
protected:
    void SetUp() override {
        ResetSettings();
        services.prompt = &prompt;
        services.launcher = &launcher;
        services.dialogs = &dialogs;
        CPelorinApp::Parts parts;
        parts.frame = &frame;
        parts.hooks = &hooks;
        app = std::make_unique<CPelorinApp>(services, parts);
        for (int i = 0; i < kDocKindCount; ++i) {
            const auto kind = static_cast<DocKind>(i);
            const CDocTemplate::Factory factory = [](Services& given) -> std::unique_ptr<CDocument> {
                return std::make_unique<ScriptedDocument>(given);
            };
            app->AddDocTemplate(std::make_unique<CDocTemplate>(app->GetServices(), InfoOf(kind).stringId, factory,
                                                               kind == DocKind::MacIcon));
        }
        app->OpenDocumentFile("end-of-start.ocx");
        (void)prompt.TakeTexts();
        frame.calls.clear();
    }
    void TearDown() override {
        EXPECT_EQ(frame.wait, 0);
        ResetSettings();
    }

    // The order of the template that received it, from 1; 0 for none.
    int Open(const std::string& text) {
        const auto* document = app->OpenDocumentFile(text);
        if (document == nullptr) return 0;
        for (int i = 0; i < kDocKindCount; ++i) {
            if (document->GetDocTemplate() == &app->GetTemplate(static_cast<DocKind>(i))) return i + 1;
        }
        return -1;
    }
    std::string Texts() {
        std::string all;
        for (const auto& text : prompt.TakeTexts()) all += text + "\n";
        return all;
    }

    test::TempFolder folder;
    Services services;
    ScriptedPrompt prompt;
    MemoryLauncher launcher;
    ScriptedDialogs dialogs;
    ScriptedFrame frame;
    ScriptedHooks hooks;
    std::unique_ptr<CPelorinApp> app;
};

TEST_F(OpenDocument, EveryKindHasItsReceiver) {
    const struct {
        const char* extensions; // with a blank behind each
        int receiver;
    } rows[] = {
        {"ico ", 1},
        {"icns rsrc rsc bin macbin ", 2},
        {"icl il nil icontainer ", 3},
        {"exe dll drv cpl scr ", 7},
        {"psd ani bmp cur gif iff jpg lbm pcd pcx png tga tif wmf jp2 ", 8},
        {"vio ", 9},
        {"ocx del ", 0},
    };
    hooks.icons = 1;
    for (const auto& row : rows) {
        for (std::string_view rest = row.extensions; !rest.empty(); rest.remove_prefix(rest.find(' ') + 1)) {
            const auto name = "a." + std::string(rest.substr(0, rest.find(' ')));
            EXPECT_EQ(Open(folder.File(name, "x")), row.receiver) << name;
        }
    }
    EXPECT_EQ(Open(folder.Path()), 4);
    EXPECT_EQ(Open("Q:\\"), 4);
    EXPECT_EQ(Texts(), "");
    EXPECT_TRUE(app->GetTemplate(DocKind::MacIcon).GetDocuments()[0]->m_bMacintosh);
}

TEST_F(OpenDocument, AMacintoshFileWithManyIconsIsALibrary) {
    const auto path = folder.File("a.icns", "x");
    for (const auto& [icons, receiver] : {std::pair{-1, 2}, {0, 2}, {1, 2}, {2, 3}}) {
        hooks.icons = icons;
        auto* document = dynamic_cast<ScriptedDocument*>(app->OpenDocumentFile(path));
        ASSERT_NE(document, nullptr);
        EXPECT_EQ(document->GetDocTemplate(), &app->GetTemplate(receiver == 2 ? DocKind::MacIcon : DocKind::Library));
        EXPECT_EQ(document->given, icons > 1 ? icons : -1);
        document->GetDocTemplate()->RemoveDocument(document);
    }
    hooks.icons = 5;
    auto* container = dynamic_cast<ScriptedDocument*>(app->OpenDocumentFile(folder.File("b.icontainer", "x")));
    ASSERT_NE(container, nullptr);
    EXPECT_EQ(container->given, 5);

    hooks.icons = 0;
    const auto binary = folder.File("c.bin", "x");
    EXPECT_EQ(Open(binary), 0);
    EXPECT_EQ(Texts(), "Vantrel Pelorin|The file \"" + binary +
                           "\" cannot be opened.\nThis file type is not supported by Vantrel Pelorin.\n");
}

TEST_F(OpenDocument, WhatHasNoReceiverIsTold) {
    const auto text = folder.File("a.xyz", "x");
    EXPECT_EQ(Open(text), 0);
    EXPECT_EQ(prompt.Shown().back().icon, PromptIcon::Warning);
    EXPECT_EQ(Texts(), "Vantrel Pelorin|The file \"" + text +
                           "\" cannot be opened.\nThis file type is not supported by Vantrel Pelorin.\n");
    EXPECT_EQ(Open("missing.png"), 0);
    EXPECT_EQ(Texts(),
              "File Not Found!|The file \"missing.png\" cannot be opened or is not found. Please check pathname "
              "and try again.\n");
    for (const char* empty : {"", "  ", "\"\""}) {
        EXPECT_EQ(Open(empty), 0);
        EXPECT_EQ(Texts(), "Vantrel Pelorin|You must specify a string to perform the Internet search.\n");
    }
    EXPECT_EQ(Open("blue \"round\" icons"), 0);
    EXPECT_EQ(frame.calls, "search blue round icons;");
    EXPECT_EQ(Open("missing.xyz"), 0);
    EXPECT_EQ(frame.calls, "search blue round icons;search missing.xyz;");
    for (const char* name : {"a.pict", "a.fpx", "a.qtif"}) {
        const auto path = folder.File(name, "x");
        EXPECT_EQ(Open(path), 0);
        EXPECT_EQ(prompt.Shown().back().number, str::kMediaFrameworkMissing);
        hooks.framework = true;
        EXPECT_EQ(Open(path), 8);
        hooks.framework = false;
    }
    EXPECT_EQ(Open(folder.File("broken.ico", "broken")), 0);
    EXPECT_TRUE(app->GetTemplate(DocKind::Icon).GetDocuments().empty());
}

TEST_F(OpenDocument, WebAddressesAndPages) {
    const auto page = folder.File("a.html", "x");
    for (const char* address : {"http:x", "\"HTTPS://x.y\"", "www.x", "FTP:a", "ftp.b"}) EXPECT_EQ(Open(address), 0);
    EXPECT_EQ(Open(page), 0);
    EXPECT_EQ(launcher.m_calls, (std::vector<std::string>{"open http:x", "open HTTPS://x.y", "open www.x", "open FTP:a",
                                                          "open ftp.b", "open " + page}));
    hooks.browser = true;
    EXPECT_EQ(Open("www.x"), 5);
    EXPECT_EQ(Open(page), 5);
    g_bBrowseExternally = true;
    EXPECT_EQ(Open("www.y"), 0);
    EXPECT_EQ(Texts(), "");
    launcher.m_fault.FailCall(1);
    EXPECT_EQ(Open("www.z"), 0);
    EXPECT_EQ(Texts(), "Vantrel Pelorin|Error while opening the document.\n");
}

TEST_F(OpenDocument, OpeningTwiceActivatesTheFirst) {
    const auto path = folder.File("a.ico", "x");
    auto* first = app->OpenDocumentFile(path);
    frame.activated = nullptr;
    EXPECT_EQ(app->OpenDocumentFile("\"" + path + "\""), first);
    EXPECT_EQ(app->OpenDocumentFile(folder.Path("./a.ico")), first);
    EXPECT_EQ(frame.activated, first);
    auto* there = app->OpenDocumentFile(folder.Path());
    EXPECT_EQ(app->OpenDocumentFile(folder.Path()), there);
    // An untitled document has no path that an empty text could be.
    app->GetTemplate(DocKind::Icon).OpenDocumentFile({});
    EXPECT_EQ(Open(""), 0);
}

TEST_F(OpenDocument, AMissingIconOrLibraryCanBeMade) {
    const auto path = folder.Path("new.ico");
    app->GetRecentFiles().Add(path);
    EXPECT_EQ(Open(path), 0); // the script says no
    EXPECT_EQ(prompt.Shown().back().number, str::kAskCreateIcon);
    EXPECT_TRUE(app->GetRecentFiles().Get().empty());

    hooks.agrees = false;
    prompt.Answer(PromptAnswer::Yes);
    EXPECT_EQ(Open(path), 0);
    hooks.agrees = true;
    prompt.Answer(PromptAnswer::Yes);
    EXPECT_EQ(Open(path), 1);
    const auto& made = *app->GetTemplate(DocKind::Icon).GetDocuments()[0];
    EXPECT_EQ(made.GetPathName(), path);
    EXPECT_TRUE(made.IsModified());
    EXPECT_FALSE(FileExists(path));
    EXPECT_EQ(app->GetRecentFiles().Get(), std::vector<std::string>{path});

    prompt.Answer(PromptAnswer::Yes);
    EXPECT_EQ(Open(folder.Path("new.bin")), 2);
    prompt.Answer(PromptAnswer::Yes);
    EXPECT_EQ(Open(folder.Path("new.icl")), 3);
    EXPECT_EQ(prompt.Shown().back().number, str::kAskCreateLibrary);
    EXPECT_EQ(hooks.calls, "new new.iconew new.iconew new.bin mac");
    EXPECT_EQ(Open(folder.Path("new.icontainer")), 0);
    EXPECT_EQ(prompt.Shown().back().number, str::kFileNotFound);
    EXPECT_EQ(Open(folder.Path("x.plp")), 0);
    EXPECT_TRUE(hooks.calls.ends_with("transfer " + folder.Path("x.plp")));
}

TEST_F(OpenDocument, RecentFiles) {
    for (int i = 0; i < 12; ++i) Open(folder.File("f" + std::to_string(i) + ".ico", "x"));
    EXPECT_EQ(app->GetRecentFiles().Get().size(), 10u);
    EXPECT_EQ(app->GetRecentFiles().Get()[0], folder.Path("f11.ico"));
    app->GetRecentFiles().Add(folder.Path("F5.ICO"));
    EXPECT_EQ(app->GetRecentFiles().Get()[0], folder.Path("F5.ICO"));
    EXPECT_EQ(app->GetRecentFiles().Get().size(), 10u);
    app->m_bRecentEnabled = false;
    Open(folder.File("later.png", "x"));
    EXPECT_EQ(RecentFiles({"a", "", "A", "b"}).Get(), (std::vector<std::string>{"a", "b"}));
}

TEST_F(OpenDocument, TheOpenCommand) {
    const auto a = folder.File("a.ico", "x"), b = folder.File("b c.png", "x");
    dialogs.answer = folder.Path() + '\0' + "a.ico" + '\0' + "b c.png" + '\0' + '\0';
    app->OnFileOpen();
    EXPECT_EQ(app->GetTemplate(DocKind::Icon).GetDocuments()[0]->GetPathName(), a);
    EXPECT_EQ(app->GetTemplate(DocKind::Image).GetDocuments()[0]->GetPathName(), b);
    EXPECT_EQ(g_strCurrentOpenDirectory, folder.Path());
    EXPECT_TRUE(dialogs.asked.filter.starts_with("All Supported Files|*.ico;*.icns;"));
    EXPECT_NE(dialogs.asked.filter.find("|All Files (*.*)|*.*|Windows Icon Files (*.ico)|*.ico|"), std::string::npos);
    EXPECT_TRUE(dialogs.asked.filter.ends_with("||"));
    dialogs.answer = "";
    app->OnFileOpen();
    EXPECT_EQ(dialogs.asked.filterIndex, 4);
    EXPECT_EQ(dialogs.asked.folder, folder.Path());

    EXPECT_EQ(SplitChosenFiles(a), std::vector<std::string>{a});
    EXPECT_EQ(SplitChosenFiles(a + '\0' + '\0'), std::vector<std::string>{a});
    EXPECT_TRUE(SplitChosenFiles({}).empty());
    EXPECT_TRUE(SplitChosenFiles(std::string(3, '\0')).empty());
}

TEST_F(OpenDocument, ExternalEditors) {
    const auto path = folder.File("a.htm", "x");
    prompt.Answer(PromptAnswer::Yes);
    EXPECT_FALSE(app->OpenWithEditor(path, true));
    EXPECT_EQ(Texts(), "Vantrel Pelorin|No external editor defined for this media file type. Do you want to specify it "
                       "now?\n");
    EXPECT_EQ(frame.calls, "edit type 24;");
}

} // namespace
} // namespace pelorin
