#include "core/file_dialogs.h"
#include "core/services.h"
#include "core/settings.h"
#include "core/user_prompt.h"
#include "formats/png.h"
#include "icon/new_icon.h"
#include "icon/standard_formats.h"
#include "platform/memory/memory_clipboard.h"
#include "support/dib_builder.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

class OneFile final : public FileDialogs {
public:
    std::string path;
    std::string ChooseToOpen(FileDialogRequest&) override { return path.empty() ? path : path + '\0'; }
    std::string ChooseToSave(FileDialogRequest&) override { return {}; }
};

class Chooser final : public FormatChoice {
public:
    std::vector<IconFormat> formats;
    bool accepts = true;
    bool Choose(NewIconChoice& choice) override {
        choice.options.formats = formats;
        return accepts;
    }
};

class NewIcon : public ::testing::Test {
protected:
    void SetUp() override {
        ResetSettings();
        m_services.prompt = &m_prompt;
        m_services.dialogs = &m_dialogs;
    }
    static std::unique_ptr<CDocument> Make(Services& services) { return std::make_unique<CIconDoc>(services); }

    ScriptedPrompt m_prompt;
    OneFile m_dialogs;
    Services m_services;
    CDocTemplate m_windows{m_services, str::kDocIco, Make};
    CDocTemplate m_macintosh{m_services, str::kDocIcns, Make, true};
    Chooser m_choice;
    NewIconCommands m_commands{m_services, m_windows, m_macintosh, &m_choice};
};

TEST_F(NewIcon, FromAFile) {
    test::TempFolder folder;
    Bytes png;
    ASSERT_EQ(WritePng(test::Picture32(4, {0xFFFF0000, 0xFFFF0000, 0xFFFF0000, 0xFFFF0000}), {}, png), 0);
    m_dialogs.path = folder.File("wide.png", AsText(png));
    m_choice.formats = {{4, 4, 32}};
    auto* doc = m_commands.OnNewFromImage();
    ASSERT_NE(doc, nullptr);
    EXPECT_EQ(doc->Formats(), m_choice.formats);
    const auto picture = doc->GetFormat(0)->GetDIB32();
    EXPECT_EQ(test::At(picture, 0, 0) >> 24, 0u) << "made square, transparent above";
    EXPECT_EQ(test::At(picture, 0, 1), 0xFFFF0000u);
    EXPECT_TRUE(doc->IsModified());
    EXPECT_EQ(g_strCurrentOpenDirectory, folder.Path());

    m_dialogs.path = folder.File("bad.png", "nothing");
    EXPECT_EQ(m_commands.OnNewFromImage(), nullptr);
    EXPECT_EQ(m_prompt.Shown().size(), 1u);
    m_dialogs.path.clear();
    EXPECT_EQ(m_commands.OnNewFromImage(), nullptr);
    EXPECT_EQ(m_prompt.Shown().size(), 1u) << "leaving the dialog is no mistake";
}

TEST_F(NewIcon, FromTheClipboardThePrivateFormatFirst) {
    MemoryClipboard clipboard;
    EXPECT_FALSE(ClipboardHasPicture(clipboard));
    EXPECT_EQ(m_commands.OnNewFromClipboard(clipboard), nullptr);
    clipboard.Put(kClipboardDib, test::Picture32(1, {0xFF0000FF}).Span());
    clipboard.Put("Vantrel DIB32 Data", test::Picture32(1, {0xFF00FF00}).Span());
    EXPECT_TRUE(ClipboardHasPicture(clipboard));
    EXPECT_EQ(test::At(PictureFromClipboard(clipboard), 0, 0), 0xFF00FF00u);
    clipboard.Put("Vantrel DIB32 Data", AsBytes("damaged"));
    EXPECT_EQ(test::At(PictureFromClipboard(clipboard), 0, 0), 0xFF0000FFu);
    m_choice.formats = {{2, 2, 24}};
    ASSERT_NE(m_commands.OnNewFromClipboard(clipboard), nullptr);
    m_choice.accepts = false;
    EXPECT_EQ(m_commands.OnNewFromClipboard(clipboard), nullptr);
}

TEST_F(NewIcon, TheChosenSystemAndTheStoredChoice) {
    g_nNewIconType = 1;
    g_bShowNewFromImageInfo = false;
    auto* doc = m_commands.OnNewFromPicture(test::Picture32(1, {0xFF00FF00}));
    ASSERT_NE(doc, nullptr);
    EXPECT_TRUE(doc->m_bMacintosh);
    EXPECT_EQ(doc->GetFormatCount(), 13);

    StoreFormatChoice({{256, 256, 32}, {16, 16, 1}}, false, m_prompt);
    EXPECT_EQ(m_prompt.Shown().back().text, "New default settings saved.");
    EXPECT_EQ(StoredFromImageOptions(false).formats, (std::vector<IconFormat>{{256, 256, 32}, {16, 16, 1}}));
    EXPECT_EQ(StoredFromImageOptions(true).formats.size(), 13u);
    EXPECT_EQ(m_commands.OnNewIcon(false, {20, 20, 8})->Formats(), (std::vector<IconFormat>{{20, 20, 8}}));
}

} // namespace
} // namespace pelorin
