#include "app/doc_templates.h"
#include "app/open_report.h"
#include "app/system_hooks.h"
#include "containers/exe_doc.h"
#include "containers/icl_doc.h"
#include "containers/icl_file.h"
#include "core/settings.h"
#include "core/user_prompt.h"
#include "icon/icon_doc.h"
#include "support/icon_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

struct ThreeIcons final : OpenHooks {
    std::unique_ptr<IconListContent> ReadIconList(const std::string&) override {
        return std::make_unique<IconGroupsContent>(std::vector<CIconGroup>(3));
    }
    bool HasMacintoshIcon(const std::string&) override { return true; }
};

TEST(OpenReport, SaysWhatWouldHappen) {
    const test::TempFolder folder;
    for (const char* name : {"a.ico", "a.icns", "a.ocx", "a.htm", "a.png", "a.xyz", "a.plp"}) folder.File(name, "x");
    const struct {
        std::string text, action, receiver, described;
    } cases[] = {
        {folder.Path("a.ico"), "open", "icon", "icon (Windows Icon File)"},
        {"\"" + folder.Path("a.ico") + "\"", "open", "icon", "icon (Windows Icon File)"},
        {folder.Path("a.icns"), "open", "icon library", "icon library (Apple Macintosh Icon, 3 icons)"},
        {folder.Path(), "open", "explorer", "explorer"},
        {folder.Path("a.png"), "open", "image", "image (Portable Network Graphic)"},
        {folder.Path("a.ocx"), "nothing", "", "nothing opens files of this kind (ActiveX Control)"},
        {folder.Path("a.plp"), "transfer", "", "a picture handed over by a plug-in"},
        {folder.Path("a.htm"), "viewer", "", "the program that is set for this kind of file (Internet Web HTML File)"},
        {folder.Path("new.icl"), "create", "icon library",
         "icon library (Vantrel Icon Library, new, if you agree to make it)"},
        {"www.example.org", "system", "", "the system's own program for addresses"},
        {"some phrase", "search", "", "a search in the web"},
        {" ", "refuse", "", "You must specify a string to perform the Internet search."},
        {"gone.png", "refuse", "",
         "The file \"gone.png\" cannot be opened or is not found. Please check pathname and try again."},
        {folder.Path("a.xyz"), "refuse", "",
         "The file \"" + folder.Path("a.xyz") +
             "\" cannot be opened.\nThis file type is not supported by Vantrel Pelorin."},
    };
    ThreeIcons hooks;
    for (const auto& c : cases) {
        const auto report = ReportOpen(c.text, {}, hooks);
        EXPECT_EQ(report.action, c.action) << c.text;
        EXPECT_EQ(report.receiver, c.receiver) << c.text;
        EXPECT_EQ(DescribeOpen(report), c.described) << c.text;
    }
}

// What has no reader is no reason to fall: a Macintosh file that cannot be read has no list of icons.
TEST(OpenReport, FilesThatCannotBeReadHaveNoIcons) {
    const test::TempFolder folder;
    SystemHooks hooks;
    for (const char* name : {"a.icns", "a.bin", "a.icontainer", "a.rsrc"}) {
        EXPECT_EQ(hooks.ReadIconList(folder.File(name, "rubbish")), nullptr) << name;
        EXPECT_FALSE(hooks.HasMacintoshIcon(folder.Path(name))) << name;
    }
    EXPECT_EQ(hooks.ReadIconList(folder.Path("missing.icns")), nullptr);
}

TEST(DocTemplates, StandInTheOrderOfTheirKinds) {
    ScriptedPrompt prompt;
    Services services;
    services.prompt = &prompt;
    CPelorinApp app(services, {});
    RegisterDocTemplates(app);
    ASSERT_EQ(app.GetTemplateCount(), kDocKindCount);
    std::string ids, with;
    for (int i = 0; i < kDocKindCount; ++i) {
        const auto& row = app.GetTemplate(static_cast<DocKind>(i));
        EXPECT_EQ(row.IsMacintosh(), i == 1);
        if (row.HasDocuments()) with += std::to_string(i + 1);
        ids += std::to_string(row.GetStringId()) + " ";
    }
    EXPECT_EQ(ids, "101 113 104 110 112 111 105 109 114 ");
    EXPECT_EQ(with, "123789");
}

TEST(DocTemplates, AProgramIsSavedOverItselfAsTheSettingSays) {
    const test::TestFolder folder;
    const auto path = folder.Path("lib.dll");
    const auto icon = test::MakeIcon("", {{16, 16, 4}});
    ResourceUpdater updater;
    ASSERT_EQ(WriteLibraryPe(path, std::array{icon.get()}, updater), LibraryError::None);
    ScriptedPrompt prompt;
    Services services;
    services.prompt = &prompt;
    CPelorinApp app(services, {});
    RegisterDocTemplates(app);
    auto* program = dynamic_cast<CFileExeDoc*>(app.OpenDocumentFile(path));
    ASSERT_NE(program, nullptr);
    g_bWarnOverwriteProgram = true;
    EXPECT_FALSE(program->OnSaveDocument(path)) << "the harmless answer";
    prompt.SetChecks();
    prompt.Answer(PromptAnswer::Yes);
    EXPECT_TRUE(program->OnSaveDocument(path));
    EXPECT_FALSE(g_bWarnOverwriteProgram);
    EXPECT_EQ(prompt.Shown().size(), 2u);
    EXPECT_TRUE(program->OnSaveDocument(path));
    EXPECT_EQ(prompt.Shown().size(), 2u) << "not asked any more";
    g_bWarnOverwriteProgram = true;
}

// The icons that were counted to find the receiver are those that it shows.
TEST(DocTemplates, AMacintoshFileWithManyIconsArrivesAsALibrary) {
    const test::TempFolder folder;
    ScriptedPrompt prompt;
    Services services;
    services.prompt = &prompt;
    ThreeIcons hooks;
    CPelorinApp::Parts parts;
    parts.hooks = &hooks;
    CPelorinApp app(services, parts);
    RegisterDocTemplates(app);
    auto* library = dynamic_cast<CFileIclDoc*>(app.OpenDocumentFile(folder.File("a.icns", "x")));
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->GetCount(), 3);
    EXPECT_TRUE(prompt.Shown().empty());
}

} // namespace
} // namespace pelorin
