#include "containers/icl_doc.h"
#include "containers/icon_container_view.h"
#include "containers/icon_import.h"
#include "containers/mac_files.h"
#include "containers/program_file.h"
#include "core/services.h"
#include "core/user_prompt.h"
#include "support/icon_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::MakeIcon;
using test::ReadBytes;
using test::TestFolder;

constexpr IconFormat k16{16, 16, 4}, k32{32, 32, 32};

struct Library {
    explicit Library(const std::vector<std::string>& names = {}) {
        services.prompt = &prompt;
        IconGroups icons;
        int seed = 0;
        for (const auto& name : names) icons.push_back(MakeIcon(name, {k16}, ++seed));
        document.Insert(-1, std::move(icons));
        document.SetModifiedFlag(false);
    }
    [[nodiscard]] std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (int i = 0; i < document.GetCount(); ++i) names.push_back(document.GetIcon(i)->m_strName);
        return names;
    }
    TestFolder folder;
    ScriptedPrompt prompt;
    Services services;
    CFileIclDoc document{services};
    CFileIclView view{document};
};

using Names = std::vector<std::string>;

TEST(IclView, SortPutsTheRunWhereTheFirstSelectedIconStood) {
    const struct {
        Names names;
        std::vector<int> selected;
        Names sorted;
        std::vector<int> selection;
    } cases[] = {
        {{"a", "b", "z", "d", "e", "f", "c"}, {2, 6}, {"a", "b", "c", "z", "d", "e", "f"}, {2, 3}},
        {{"x", "", "b", "", "a"}, {0, 1, 2, 3, 4}, {"", "", "a", "b", "x"}, {0, 1, 2, 3, 4}},
        {{"b", "a%s", "a"}, {0, 1, 2}, {"a", "a%s", "b"}, {0, 1, 2}},
    };
    for (const auto& c : cases) {
        Library library(c.names);
        library.view.Select(c.selected);
        EXPECT_TRUE(library.view.SortByName());
        EXPECT_EQ(library.Names(), c.sorted);
        EXPECT_EQ(library.view.GetSelection(), c.selection);
        EXPECT_TRUE(library.document.IsModified());
    }
    Library library({"b", "a"});
    library.view.Select({1});
    EXPECT_FALSE(library.view.SortByName());
    EXPECT_EQ(library.prompt.Shown()[0].text,
              "There is only one icon selected.\nDo you want to apply the sort on all icons?");
    library.prompt.Answer(PromptAnswer::Yes);
    EXPECT_TRUE(library.view.SortByName());
    EXPECT_EQ(library.Names(), (Names{"a", "b"}));
}

TEST(IclView, Rename) {
    Library library({"a", "b", "c"});
    library.view.Select({1});
    library.view.Rename("100% %s");
    EXPECT_EQ(library.Names(), (Names{"a", "100% %s", "c"}));
    library.view.SelectAll();
    library.view.Rename("No %d ", 9, 3);
    EXPECT_EQ(library.Names(), (Names{"No %d 009", "No %d 010", "No %d 011"}));
    library.view.Rename("", 1, 0);
    EXPECT_EQ(library.Names(), (Names{"Icon1", "Icon2", "Icon3"}));
}

TEST(IclView, StatusLine) {
    Library library;
    EXPECT_EQ(library.view.TotalText(), "No Icon");
    EXPECT_EQ(library.view.SelectionText(), "No Icon Selected");
    Library full({"a", "", "c"});
    EXPECT_EQ(full.view.TotalText(), "Total: 3 Icons");
    full.view.Select({1, 1, 7, -1});
    EXPECT_EQ(full.view.SelectionText(), "Selection: Icon 2 (1 format)");
    full.view.SelectAll();
    EXPECT_EQ(full.view.SelectionText(), "Selection: 3 Icons");
}

TEST(IclView, ImportNamesAfterTheFile) {
    Library library({"x", "y"});
    const auto& folder = library.folder;
    ASSERT_TRUE(MakeIcon("", {k16, k32})->SaveAsIcoFile(folder / "ball.ico"));
    test::Icons three;
    for (const char* name : {"", "Own", ""}) three.push_back(MakeIcon(name, {k16}));
    ResourceUpdater updater;
    ASSERT_EQ(WriteLibraryPe(folder / "ball.three.icl", test::Pointers(three), updater), LibraryError::None);
    ASSERT_EQ(WriteLibraryPe(folder / "empty.icl", {}, updater), LibraryError::None);

    EXPECT_TRUE(library.view.Import({folder / "ball.ico"}, 1));
    EXPECT_EQ(library.Names(), (Names{"x", "Ball", "y"}));
    EXPECT_EQ(library.view.GetSelection(), (std::vector<int>{1}));
    EXPECT_TRUE(library.view.Import({folder / "ball.three.icl"}, -1, true));
    EXPECT_EQ(library.Names(), (Names{"x", "Ball.three 1", "Own", "Ball.three 3", "y"}));
    EXPECT_TRUE(library.prompt.Shown().empty());

    // A 16-bit program knows no names of icons, and there is no library without a place for them.
    WriteLibraryNe(folder / "old.icl", test::Pointers(three));
    auto old = ReadBytes(folder / "old.icl");
    StoreU16LE(old.data() + 0x90 + 0x26, 0);
    WriteFileSafely(folder / "old.icl", old);
    WriteFileSafely(folder / "old.exe", old);
    EXPECT_TRUE(LoadIconsOf(folder / "old.icl").empty());
    EXPECT_TRUE(library.view.Import({folder / "old.exe"}, 0));
    EXPECT_EQ(library.Names(), (Names{"Old 1", "Old 2", "Old 3", "x", "Ball.three 1", "Own", "Ball.three 3", "y"}));
    EXPECT_TRUE(library.view.Delete());

    EXPECT_FALSE(library.view.Import({folder / "empty.icl"}));
    EXPECT_EQ(library.prompt.Shown().back().text, "The specified file does not contains icons or is invalid");
    EXPECT_TRUE(library.view.Import({folder / "none.ico", folder / "ball.ico", folder / "empty.icl"}));
    EXPECT_EQ(library.prompt.Shown().back().text, "One or more selected files had no icon.");
    EXPECT_EQ(library.prompt.Shown().size(), 2u);
    EXPECT_EQ(library.document.GetCount(), 6);
}

TEST(IclView, ExportCleansNamesAndAsksBeforeReplacing) {
    Library library({"a:b|c", "", "same", "same"});
    library.view.SelectAll();
    EXPECT_EQ(library.view.ExportDefaultName(), "a_b_c");
    EXPECT_EQ(library.view.ExportTo(library.folder.Path(), ExportAs::WindowsIcon), 3);
    EXPECT_EQ(ListFolder(library.folder.Path()), (Names{"Icon 2.ico", "a_b_c.ico", "same.ico"}));
    EXPECT_EQ(library.prompt.Shown()[0].text,
              "The file \"" + (library.folder / "same.ico") + "\" already exists.\nDo you really want to Replace it?");
    library.view.Select({1});
    EXPECT_EQ(library.view.ExportDefaultName(), "Untitled");
    // A Macintosh file has the form that its name asks for.
    library.view.Select({0, 1});
    EXPECT_EQ(library.view.ExportTo(library.folder.Path(), ExportAs::MacintoshIcon), 2);
    EXPECT_TRUE(AsText(ReadBytes(library.folder / "a_b_c.icns")).starts_with("icns"));
    EXPECT_TRUE(library.view.Export(library.folder / "fork.rsrc", ExportAs::MacintoshIcon));
    EXPECT_TRUE(IsResourceFork(ReadBytes(library.folder / "fork.rsrc")));
    EXPECT_FALSE(library.view.Export("/proc/no.icns", ExportAs::MacintoshIcon));
    EXPECT_THAT(library.prompt.Shown().back().text, ::testing::HasSubstr("/proc/no.icns"));
}

TEST(IclDoc, OpensAsItWasSavedAndKeepsItsForm) {
    for (const auto form : {LibraryForm::Pe, LibraryForm::Ne}) {
        Library library({"a", ""});
        library.document.m_form = form;
        const auto path = library.folder / "new/lib.icl";
        EXPECT_FALSE(library.document.OnSaveDocument(path)) << "the folder is not there, and No is the answer";
        EXPECT_EQ(library.prompt.Shown()[0].text,
                  "The folder \"" + (library.folder / "new/") + "\" does not exist.\nDo you want to create it?");
        library.prompt.Answer(PromptAnswer::Yes);
        library.document.SetModifiedFlag();
        ASSERT_TRUE(library.document.OnSaveDocument(path));
        EXPECT_FALSE(library.document.IsModified());
        EXPECT_EQ(library.document.GetPathName(), path);

        Library again;
        ASSERT_TRUE(again.document.OnOpenDocument(path));
        EXPECT_EQ(again.document.m_form, form);
        EXPECT_EQ(again.Names(), (Names{"a", ""}));
        WriteFileSafely(path, Bytes{});
        ASSERT_TRUE(again.document.OnOpenDocument(path)) << "an empty library";
        EXPECT_EQ(again.document.GetCount(), 0);
        EXPECT_TRUE(again.prompt.Shown().empty());
    }
}

TEST(IclDoc, AMacintoshFileIsSavedElsewhere) {
    Library library;
    std::vector<CIconGroup> groups;
    groups.push_back(std::move(*MakeIcon("m", {k16})));
    library.document.SetContent(std::make_unique<IconGroupsContent>(std::move(groups)));
    const auto path = library.folder / "mac.rsrc";
    WriteFileSafely(path, Bytes{1});
    ASSERT_TRUE(library.document.OnOpenDocument(path));
    library.document.SetPathName(path, false);
    EXPECT_EQ(library.Names(), Names{"m"});
    EXPECT_FALSE(library.document.OnSaveDocument(path));
    EXPECT_EQ(library.prompt.Shown()[0].title, "Unable to save as Macintosh Icon Library format");
    EXPECT_EQ(ReadBytes(path), Bytes{1});
    library.document.m_pfnAskPath = [](CIconContainerDoc& document) { return document.GetPathName() + ".icl"; };
    library.prompt.Answer(PromptAnswer::Yes);
    ASSERT_TRUE(library.document.OnSaveDocument(path));
    EXPECT_EQ(LoadIcons(FindIcons(ReadBytes(path + ".icl")), {}).size(), 1u);
}

std::unique_ptr<CDocument> MakeIconDoc(Services& services) {
    return std::make_unique<CIconDoc>(services);
}

/// A library with editors on its icons.
struct Edited : Library {
    explicit Edited(const std::vector<std::string>& names) : Library(names) {
        document.m_arrEditorTemplates = {&editors};
        document.SetTitle("My.icl");
    }
    CIconDoc* Change(int index) {
        auto* editor = view.OpenIcon(index);
        EXPECT_TRUE(editor && editor->AddFormat(k32, -1, false));
        if (editor) editor->SetModifiedFlag();
        return editor;
    }
    CDocTemplate editors{services, str::kDocIco, MakeIconDoc};
};

TEST(IclDoc, EditorsAreAskedForBeforeASave) {
    Edited library({"a", ""});
    const auto path = library.folder / "lib.icl";
    auto* first = library.Change(0);
    ASSERT_EQ(library.view.OpenIcon(0), first) << "one editor a cell";
    auto* second = library.Change(1);
    EXPECT_EQ(second->GetTitle(), "(Icon 2 in Icon Library My.icl) - Icon (embedded in \"My.icl\")");

    library.prompt.Answer(PromptAnswer::Cancel);
    EXPECT_FALSE(library.document.OnSaveDocument(path));
    EXPECT_EQ(library.prompt.Shown()[0].text, "Save changes in all edit windows associated with the library My.icl ?");
    EXPECT_FALSE(FileExists(path));
    library.prompt.Answer(PromptAnswer::Yes);
    EXPECT_TRUE(library.document.OnSaveDocument(path));
    EXPECT_FALSE(first->IsModified() || second->IsModified());
    const auto icons = LoadIcons(FindIcons(ReadBytes(path)), {});
    ASSERT_EQ(icons.size(), 2u);
    EXPECT_EQ(icons[0]->GetCount(), 2);
    EXPECT_EQ(icons[1]->GetCount(), 2);
    EXPECT_EQ(icons[1]->m_strName, "");
}

TEST(IclDoc, EditorsFollowTheirIconsAndCloseWithThem) {
    Edited library({"c", "a", "b"});
    auto* editor = library.Change(0);
    library.view.SelectAll();
    library.view.SortByName();
    ASSERT_EQ(library.Names(), (Names{"a", "b", "c"}));
    EXPECT_EQ(editor->m_nEmbeddedIndex, 2);

    library.view.Select({2});
    library.prompt.Answer(PromptAnswer::Cancel);
    EXPECT_FALSE(library.view.Delete());
    EXPECT_EQ(library.document.GetCount(), 3);
    library.prompt.Answer(PromptAnswer::No);
    EXPECT_TRUE(library.view.Delete());
    EXPECT_EQ(library.Names(), (Names{"a", "b"}));
    EXPECT_TRUE(library.editors.GetDocuments().empty());

    auto* copy = library.view.OpenAsNewIcon(1);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->m_pContainerDoc, nullptr);
    EXPECT_EQ(library.view.OpenIcon(5), nullptr);
}

TEST(IclDoc, ClosingAsksAboutChanges) {
    const struct {
        PromptAnswer answer;
        bool closes, saved;
    } cases[] = {
        {PromptAnswer::Yes, true, true}, {PromptAnswer::No, true, false}, {PromptAnswer::Cancel, false, false}};
    for (const auto& c : cases) {
        Library library({"a"});
        const auto path = library.folder / "lib.icl";
        library.document.SetPathName(path, false);
        EXPECT_TRUE(library.document.SaveModified()) << "nothing was changed";
        library.document.SetModifiedFlag();
        library.prompt.Answer(c.answer);
        EXPECT_EQ(library.document.SaveModified(), c.closes);
        EXPECT_EQ(library.prompt.Shown()[0].text, "Save changes in the library \"" + path + "\" ?");
        EXPECT_EQ(FileExists(path), c.saved);
    }
}

} // namespace
} // namespace pelorin
