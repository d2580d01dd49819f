#include "core/file_dialogs.h"
#include "core/services.h"
#include "core/user_prompt.h"
#include "formats/image_doc.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

// Chooses these files one after the other, then leaves.
class Locator final : public FileDialogs {
public:
    std::vector<std::string> files;
    std::size_t asked = 0;

    std::string ChooseToOpen(FileDialogRequest& request) override {
        filter = request.filter;
        return asked < files.size() ? files[asked++] + std::string(1, '\0') : std::string();
    }
    std::string ChooseToSave(FileDialogRequest&) override { return {}; }
    std::string filter;
};

class ImageDocTest : public testing::Test {
protected:
    ImageDocTest() {
        services.prompt = &prompt;
        services.dialogs = &locator;
    }
    ScriptedPrompt prompt;
    Locator locator;
    Services services;
    test::TempFolder folder;
    CImageDoc document{services, {8, 4}};
};

TEST_F(ImageDocTest, ANewDocumentAndItsCopy) {
    ASSERT_TRUE(document.OnNewDocument());
    auto& object = document.GetImageObject();
    EXPECT_EQ(document.AddLayer(object.images[0]).m_strName, "Layer 1");
    ASSERT_EQ(object.images.size(), 1u);
    EXPECT_EQ(object.images[0].m_strName, "Image1");
    EXPECT_EQ(object.images[0].m_Size, (Size{8, 4}));
    VniLayerFields expected;
    expected.m_strName = "Background";
    EXPECT_EQ(static_cast<const VniLayerFields&>(object.images[0].m_arrLayers[0]), expected);

    const auto path = folder.Path("a.vio");
    ASSERT_TRUE(document.SaveACopy(path));
    CImageDoc other(services);
    ASSERT_TRUE(other.OnOpenDocument(path));
    EXPECT_EQ(other.GetImageObject().size, (Size{8, 4}));
    EXPECT_EQ(other.GetImageObject().images[0].m_arrLayers.size(), 2u);
    EXPECT_FALSE(document.SaveACopy(folder.Path("missing/a.vio")));
    EXPECT_EQ(prompt.TakeTexts().size(), 1u);
}

TEST_F(ImageDocTest, SaveEmptiesNothing) {
    ASSERT_TRUE(document.OnNewDocument());
    EXPECT_TRUE(document.OnSaveDocument(folder.Path("new.vio")));
    EXPECT_TRUE(FileExists(folder.Path("new.vio")));
    EXPECT_TRUE(document.OnSaveDocument(folder.Path("new.vio"))) << "it is still empty";
    EXPECT_TRUE(prompt.TakeTexts().empty());

    const auto full = folder.File("full.vio", "content");
    EXPECT_FALSE(document.OnSaveDocument(full));
    EXPECT_EQ(FileSize(full), 7u);
    EXPECT_FALSE(document.OnSaveDocument(folder.Path("a.png")));
    EXPECT_FALSE(FileExists(folder.Path("a.png")));
    EXPECT_EQ(prompt.TakeTexts(),
              std::vector<std::string>(2, "Vantrel Pelorin|Error while saving the image. Please check destination "
                                          "drive and try again."));
}

TEST_F(ImageDocTest, AnotherFileIsAskedForUntilOneCanBeRead) {
    ASSERT_TRUE(document.OnNewDocument());
    ASSERT_TRUE(document.SaveACopy(folder.Path("good.vio")));
    locator.files = {folder.File("bad.vio", "bad"), folder.Path("good.vio")};
    EXPECT_TRUE(document.OnOpenDocument(folder.Path("missing.vio")));
    EXPECT_EQ(locator.asked, 2u);
    EXPECT_EQ(locator.filter, "Image Objects (*.vio)|*.vio||");
    EXPECT_FALSE(document.OnOpenDocument(folder.Path("missing.vio"))) << "the person left";
    EXPECT_TRUE(document.GetImageObject().images.empty());
    EXPECT_TRUE(prompt.TakeTexts().empty());
    services.dialogs = nullptr;
    EXPECT_FALSE(document.OnOpenDocument(folder.Path("bad.vio")));
    EXPECT_EQ(prompt.TakeTexts().size(), 1u);
}

} // namespace
} // namespace pelorin
