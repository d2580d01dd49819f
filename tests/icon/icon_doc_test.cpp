#include "base/files.h"
#include "core/file_dialogs.h"
#include "core/services.h"
#include "core/settings.h"
#include "core/temp_files.h"
#include "core/user_prompt.h"
#include "icon/ico_file.h"
#include "icon/icon_doc.h"
#include "icon/icon_file_forms.h"
#include "icon/standard_formats.h"
#include "support/dib_builder.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace pelorin {
namespace {

// Chooses the paths that a test wrote down, and then none.
class ScriptedDialogs final : public FileDialogs {
public:
    std::vector<std::string> paths;
    std::vector<FileDialogRequest> asked;

    std::string ChooseToOpen(FileDialogRequest&) override { return {}; }
    std::string ChooseToSave(FileDialogRequest& request) override {
        asked.push_back(request);
        return asked.size() <= paths.size() ? paths[asked.size() - 1] : std::string();
    }
};

class ScriptedContainer final : public IIconContainer {
public:
    std::vector<int> updated;
    int formats = 0;
    ContainerKind GetContainerKind() const override { return ContainerKind::Library; }
    std::string GetContainerName() const override { return "tools.icl"; }
    bool UpdateIcon(int index, const CIconGroup& icon) override {
        updated.push_back(index);
        formats = icon.GetCount();
        return true;
    }
};

class IconDoc : public ::testing::Test {
protected:
    void SetUp() override {
        ResetSettings();
        m_services.prompt = &m_prompt;
        m_services.dialogs = &m_dialogs;
    }

    std::string Path(const std::string& name) const { return m_folder.Path(name); }
    // An icon with 16 x 16 at 4 bits and 32 x 32 at 32 bits.
    std::string SampleFile(const std::string& name) const {
        CIconGroup group;
        for (const auto& [side, bits] : {std::pair{16, 4}, std::pair{32, 32}}) {
            CIconObject object(bits, side, side, false, false);
            object.UpdateStored();
            group.Add(object.m_Stored);
        }
        WriteFileSafely(Path(name), BuildIcoFile(group));
        return Path(name);
    }
    std::vector<IconFormat> FormatsInFile(const std::string& path) const {
        CIconGroup group;
        EXPECT_TRUE(ReadIcoGroup(FileView::Open(path).Data(), group));
        std::vector<IconFormat> formats;
        for (const auto& icon : group.m_arrIcons)
            formats.push_back({icon->m_nWidth, icon->m_nHeight, icon->BitCount()});
        return formats;
    }
    void Open(CIconDoc& doc, const std::string& path) {
        ASSERT_TRUE(doc.OnOpenDocument(path));
        doc.SetPathName(path, true);
    }

    ScriptedPrompt m_prompt;
    ScriptedDialogs m_dialogs;
    Services m_services;
    test::TempFolder m_folder;
};

TEST_F(IconDoc, APlainNewIconHasTheFormatOfTheSettings) {
    CIconDoc doc(m_services);
    ASSERT_TRUE(doc.OnNewDocument());
    EXPECT_EQ(doc.Formats(), (std::vector<IconFormat>{{48, 48, 32}}));
    EXPECT_FALSE(doc.IsModified());
    g_nNewIconSize = 0;
    ASSERT_TRUE(doc.OnNewDocument());
    EXPECT_TRUE(doc.GetFormat(0)->m_Stored.m_bCompressed) << "256 x 256 is compressed as the setting says";
}

TEST_F(IconDoc, FromAPictureTheStoredFormats) {
    CIconDoc doc(m_services);
    auto content = std::make_unique<NewIconContent>();
    content->picture = PrepareIconSource(test::Picture32(2, {0xFFFF0000, 0xFF00FF00}), kNoColor);
    ASSERT_EQ(DIBHeight(content->picture), 2) << "made square";
    content->fromImage = StoredFromImageOptions(false);
    doc.SetContent(std::move(content));
    ASSERT_TRUE(doc.OnNewDocument());
    EXPECT_EQ(doc.GetFormatCount(), 9);
    EXPECT_EQ(doc.Formats().front(), (IconFormat{48, 48, 32})) << "display order";
    EXPECT_EQ(doc.Formats().back(), (IconFormat{16, 16, 4}));
    EXPECT_TRUE(doc.IsModified());
}

TEST_F(IconDoc, AllFormatsSwitchedOffLeaveTheDefault) {
    CIconDoc doc(m_services);
    auto content = std::make_unique<NewIconContent>();
    content->picture = test::Picture32(1, {0xFFFF0000});
    doc.SetContent(std::move(content));
    ASSERT_TRUE(doc.OnNewDocument());
    EXPECT_EQ(doc.Formats(), (std::vector<IconFormat>{{48, 48, 32}}));
}

TEST_F(IconDoc, ASingleFormatComesBeforeTheBulk) {
    CIconDoc doc(m_services);
    auto content = std::make_unique<NewIconContent>();
    content->picture = test::Picture32(1, {0xFF0000FF});
    content->single = IconFormat{20, 20, 24};
    content->fromImage = StoredFromImageOptions(false);
    doc.SetContent(std::move(content));
    ASSERT_TRUE(doc.OnNewDocument());
    EXPECT_EQ(doc.Formats(), (std::vector<IconFormat>{{20, 20, 24}}));
}

TEST_F(IconDoc, SaveWritesSavingOrderAndLeavesTheDisplayOrder) {
    CIconDoc doc(m_services);
    const auto path = SampleFile("a.ico");
    Open(doc, path);
    ASSERT_TRUE(doc.AddFormat({256, 256, 32}, 0, true));
    const auto shown = doc.Formats();
    ASSERT_TRUE(doc.OnFileSave());
    EXPECT_EQ(doc.Formats(), shown);
    EXPECT_EQ(shown, (std::vector<IconFormat>{{256, 256, 32}, {32, 32, 32}, {16, 16, 4}}));
    EXPECT_EQ(FormatsInFile(path), (std::vector<IconFormat>{{16, 16, 4}, {256, 256, 32}, {32, 32, 32}}));
    CIconDoc again(m_services);
    Open(again, path);
    EXPECT_TRUE(again.GetFormat(0)->m_Stored.m_bCompressed);
    EXPECT_FALSE(doc.IsModified());
}

TEST_F(IconDoc, ABadFileIsTold) {
    WriteFileSafely(Path("bad.ico"), AsBytes("this is no icon"));
    CIconDoc doc(m_services);
    EXPECT_FALSE(doc.OnOpenDocument(Path("bad.ico")));
    EXPECT_TRUE(doc.m_bLoadError);
    ASSERT_EQ(m_prompt.Shown().size(), 1u);
    EXPECT_EQ(m_prompt.Shown()[0].text,
              "Error while reading the specified icon file. The file does not contains icons, has "
              "an invalid format or is corrupted.");
    EXPECT_TRUE(doc.OnOpenDocument(""));
}

TEST_F(IconDoc, AnEmbeddedIconGoesBackAndSaveAsEndsThat) {
    ScriptedContainer container;
    CIconDoc doc(m_services);
    auto content = std::make_unique<NewIconContent>();
    content->embedded = std::make_unique<EmbeddedIcon>();
    content->embedded->container = &container;
    content->embedded->index = 7;
    content->embedded->icon.m_strName = "Hammer";
    CIconObject object(8, 16, 16, false, false);
    object.UpdateStored();
    content->embedded->icon.Add(object.m_Stored);
    doc.SetContent(std::move(content));
    ASSERT_TRUE(doc.OnNewDocument());
    EXPECT_EQ(doc.GetTitle(), "Hammer - Icon (embedded in \"tools.icl\")");

    ASSERT_TRUE(doc.AddFormat({32, 32, 32}, 0, true));
    ASSERT_TRUE(doc.OnFileSave());
    EXPECT_EQ(container.updated, (std::vector<int>{7}));
    EXPECT_EQ(container.formats, 2);
    EXPECT_TRUE(m_dialogs.asked.empty()) << "no file is touched";

    m_dialogs.paths = {Path("hammer.ico")};
    ASSERT_TRUE(doc.OnFileSaveAs());
    EXPECT_EQ(m_dialogs.asked[0].name, "Hammer");
    EXPECT_EQ(doc.m_pContainerDoc, nullptr);
    EXPECT_EQ(doc.GetPathName(), Path("hammer.ico"));
    EXPECT_EQ(container.updated.size(), 1u);
}

TEST_F(IconDoc, ATemporaryFileAsksForAName) {
    g_szTempFolder = m_folder.Path();
    CIconDoc doc(m_services);
    Open(doc, SampleFile("vnpl0001.ico"));
    EXPECT_TRUE(doc.m_bTemporaryOpen);
    EXPECT_FALSE(doc.IsInRecentList());
    EXPECT_EQ(doc.GetTitle(), "vnpl0001");
    EXPECT_FALSE(doc.OnFileSave());
    EXPECT_EQ(m_dialogs.asked.size(), 1u);
    g_szTempFolder.clear();
}

TEST_F(IconDoc, OverwriteQuestion) {
    const auto other = SampleFile("other.ico");
    CIconDoc doc(m_services);
    ASSERT_TRUE(doc.OnNewDocument());
    m_dialogs.paths = {other, Path("free")};
    m_prompt.Answer(PromptAnswer::No);
    ASSERT_TRUE(doc.OnFileSaveAs());
    EXPECT_EQ(m_dialogs.asked.size(), 2u) << "No goes back to the dialog";
    EXPECT_EQ(doc.GetPathName(), Path("free.ico"));
    EXPECT_EQ(FormatsInFile(other).size(), 2u) << "untouched";
    EXPECT_EQ(m_dialogs.asked[0].name, "Untitled");

    m_dialogs.asked.clear();
    m_dialogs.paths = {other};
    m_prompt.Answer(PromptAnswer::Cancel);
    EXPECT_FALSE(doc.OnFileSaveAs());
    EXPECT_EQ(FormatsInFile(other).size(), 2u);
}

TEST_F(IconDoc, AMissingFolderIsMadeOnlyWhenWanted) {
    CIconDoc doc(m_services);
    ASSERT_TRUE(doc.OnNewDocument());
    const auto path = Path("new/folder/a.ico");
    m_prompt.Answer(PromptAnswer::No);
    EXPECT_FALSE(doc.DoSave(path));
    EXPECT_EQ(m_prompt.Shown().back().text, "Unable to save the document \"" + path + "\".");
    m_prompt.Answer(PromptAnswer::Yes);
    EXPECT_TRUE(doc.DoSave(path));
    EXPECT_TRUE(FileExists(path));
}

TEST_F(IconDoc, AReadOnlyFileIsSavedUnderAnotherName) {
    CIconDoc doc(m_services);
    const auto path = SampleFile("a.ico");
    Open(doc, path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    m_dialogs.paths = {Path("b.ico")};
    EXPECT_TRUE(doc.OnFileSave());
    EXPECT_EQ(doc.GetPathName(), Path("b.ico"));
    EXPECT_EQ(m_dialogs.asked[0].title, "Save Icon As...");
}

// Stands in for the Macintosh forms of a higher folder: it holds 32 x 32 and nothing else.
Bytes WriteCount(const CIconGroup& icon, std::string_view) {
    return {'m', 'a', 'c', static_cast<std::uint8_t>(icon.GetCount())};
}

class WatchedDoc final : public CIconDoc {
public:
    using CIconDoc::CIconDoc;
    int changes = 0;
    void OnSystemChanged() override { ++changes; }
};

TEST_F(IconDoc, SavingForTheMacintoshTellsWhatIsLost) {
    static constexpr IconFileForm form = {kKindIcns, "icns",     true,
                                          nullptr,   WriteCount, [](const IconFormat& f) { return f.width == 32; }};
    AddIconFileForms(std::span(&form, 1));
    WatchedDoc doc(m_services);
    Open(doc, SampleFile("a.ico"));
    m_dialogs.paths = {Path("a.icns"), Path("a.icns")};
    m_prompt = ScriptedPrompt{PromptAnswer::No};
    EXPECT_FALSE(doc.OnFileSaveAs(CIconDoc::SaveAs::Macintosh));
    EXPECT_EQ(m_prompt.Shown()[0].title, "Apple® Macintosh® Icon Compatibility");
    EXPECT_EQ(m_prompt.Shown()[0].text,
              "The following image format(s) are not compatible with Apple® Macintosh® Icon format:\n\n"
              "     - 16x16 - 16 colors\n\nIf you continue, the above format(s) will be lost. Continue anyway?");
    EXPECT_FALSE(FileExists(Path("a.icns")));
    EXPECT_FALSE(doc.m_bMacintosh);

    m_prompt = ScriptedPrompt{PromptAnswer::Yes};
    EXPECT_TRUE(doc.OnFileSaveAs(CIconDoc::SaveAs::Macintosh));
    EXPECT_EQ(m_dialogs.asked[1].title, "Save Icon As Macintosh® Format...");
    EXPECT_TRUE(doc.m_bMacintosh);
    EXPECT_EQ(doc.changes, 1);
    EXPECT_EQ(AsText(FileView::Open(Path("a.icns")).Data()), std::string_view("mac\2", 4))
        << "the writer skips what it cannot hold";
    EXPECT_EQ(doc.GetFormatCount(), 2) << "the formats themselves stay";

    m_prompt = ScriptedPrompt{};
    ASSERT_TRUE(doc.RemoveFormat(doc.FindFormat({32, 32, 32})));
    EXPECT_FALSE(doc.OnFileSave()) << "nothing would be left";
    EXPECT_EQ(m_prompt.Shown()[0].title, "Unable to save as Apple® Macintosh® Icon");
}

TEST_F(IconDoc, RulesOfAddedFormats) {
    CIconDoc doc(m_services);
    doc.m_bMacintosh = true;
    ASSERT_TRUE(doc.OnNewDocument());
    ASSERT_EQ(doc.Formats(), (std::vector<IconFormat>{{128, 128, 32}}));
    EXPECT_EQ(doc.AddFormatAsked({256, 256, 8}, -1), -1) << "No";
    m_prompt.Answer(PromptAnswer::Ok);
    m_prompt = ScriptedPrompt{PromptAnswer::Yes};
    EXPECT_EQ(doc.AddFormatAsked({256, 256, 8}, -1), 0);
    EXPECT_EQ(doc.GetFormat(0)->m_nBitCount, 32);
    EXPECT_EQ(m_prompt.Shown()[0].title, "Apple® Macintosh® 256x256 image format");
    EXPECT_EQ(doc.AddFormatAsked({16, 12, 32}, -1), -1);
    EXPECT_EQ(doc.AddFormatAsked({256, 256, 32}, -1), 0) << "selects the one that is there";
    EXPECT_EQ(m_prompt.Shown().back().text, "The image format \"256x256 - RGB/A\" already exists in this icon.");
    EXPECT_FALSE(doc.GetFormat(0)->m_Stored.m_bCompressed) << "never on the Macintosh";
}

TEST_F(IconDoc, SeveralFormatsComeFromPicturesAndFromTheIcon) {
    CIconDoc doc(m_services);
    Open(doc, SampleFile("a.ico"));
    std::vector<FormatRow> rows(3);
    rows[0].format = {24, 24, 24};
    rows[1].format = {20, 20, 32};
    Surface own(20, 20);
    own.Fill(0xFF112233);
    rows[1].picture = DIBFromSurface(own);
    rows[2].format = {32, 32, 32};
    EXPECT_EQ(doc.AddSeveralFormats(std::move(rows)), 2);
    EXPECT_EQ(test::At(doc.GetFormat(doc.FindFormat({20, 20, 32}))->GetDIB32(), 19, 19), 0xFF112233u);
    EXPECT_EQ(test::At(doc.GetFormat(doc.FindFormat({24, 24, 24}))->GetDIB32(), 0, 0), 0u);
    EXPECT_FALSE(doc.SetCompressed(0, true));
    EXPECT_EQ(m_prompt.Shown().back().title, "Windows Vista® Compressed Format");
}

TEST_F(IconDoc, ClosingAChangedIconAsks) {
    CIconDoc doc(m_services);
    const auto path = SampleFile("a.ico");
    Open(doc, path);
    EXPECT_TRUE(doc.CanClose());
    ASSERT_TRUE(doc.RemoveFormat(0));
    EXPECT_FALSE(doc.RemoveFormat(0)) << "the last format stays";
    m_prompt = ScriptedPrompt{PromptAnswer::Cancel, PromptAnswer::No, PromptAnswer::Yes};
    EXPECT_FALSE(doc.CanClose());
    EXPECT_TRUE(doc.CanClose());
    EXPECT_EQ(FormatsInFile(path).size(), 2u);
    EXPECT_TRUE(doc.CanClose());
    EXPECT_EQ(FormatsInFile(path).size(), 1u);
}

} // namespace
} // namespace pelorin
