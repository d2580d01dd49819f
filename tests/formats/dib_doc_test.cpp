#include "core/services.h"
#include "core/user_prompt.h"
#include "formats/dib_doc.h"
#include "formats/load_file.h"
#include "formats/save_image.h"
#include "support/dib_builder.h"
#include "support/psd_builder.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;

// The options where a program would keep them.
struct Options {
    int jpegQuality = 80, photoCdSize = 2, width = 512, height = 512;
    ColorRef matte = 0xFFFFFF, key = 0xFF0000, background = 0xFFFFFF;
    bool transparency = true, dither = true, lossy = false, useKey = false;
    int colors = 0, palette = 0, threshold = 20, compression = 10;

    DibDocSettings Refer() {
        return {jpegQuality, photoCdSize, width, height,      matte,  transparency, dither,    colors,
                palette,     threshold,   lossy, compression, useKey, key,          background};
    }
};

// Answers every dialog alike, and chooses.
class Dialogs final : public DibDocDialogs {
public:
    bool answer = true;
    int asked = 0;
    ColorRef background = 0x0000FF; // red

    bool AskKeyColor(const DibBlock&, DibDocSettings& settings) override {
        settings.useKeyColor = true;
        settings.keyColor = 0xFFFFFF;
        return Answer();
    }
    bool AskBackground(const DibBlock&, DibDocSettings& settings) override {
        settings.background = background;
        return Answer();
    }
    bool AskGifOptions(const DibBlock&, DibDocSettings&) override { return Answer(); }
    bool AskJpeg2000Options(const DibBlock&, DibDocSettings& settings) override {
        settings.jp2Lossy = true;
        return Answer();
    }

private:
    bool Answer() {
        ++asked;
        return answer;
    }
};

class DibDocTest : public testing::Test {
protected:
    DibDocTest() {
        services.prompt = &prompt;
        g_nSaveKind = 0;
    }

    void Show(DibBlock block) { document.SetImage(CDIB(std::move(block))); }
    // A picture with some detail, so that compression has something to lose.
    static DibBlock Detail() {
        auto block = CreateDIB(64, 64, 24);
        const DibRows rows(block);
        for (int y = 0; y < 64; ++y) {
            for (int x = 0; x < 192; ++x) rows.Row(y)[x] = static_cast<std::uint8_t>((x * 7) ^ (y * 5));
        }
        return block;
    }

    ScriptedPrompt prompt;
    Services services;
    Options options;
    Dialogs dialogs;
    test::TempFolder folder;
    CDibDoc document{services, options.Refer(), &dialogs};
};

TEST_F(DibDocTest, OpensAndReportsWhatCannotBeRead) {
    ASSERT_EQ(SavePicture(Detail(), 15, folder.Path("a.png")), 0);
    ASSERT_TRUE(document.OnOpenDocument(folder.Path("a.png")));
    EXPECT_EQ(document.GetFacts().format, "PNG");
    EXPECT_FALSE(document.IsModified());
    document.SetPathName(folder.Path("a.png"), false);
    ASSERT_TRUE(document.OnOpenDocument(""));

    EXPECT_FALSE(document.OnOpenDocument(folder.File("b.png", "no picture")));
    EXPECT_TRUE(document.GetImage().Empty());
    EXPECT_EQ(g_LastImageWidth, 0);
    ASSERT_EQ(prompt.Shown().size(), 1u);
    EXPECT_EQ(prompt.Shown()[0].text, "An error occured while reading the source file");
    EXPECT_EQ(prompt.Shown()[0].icon, PromptIcon::Stop);
}

TEST_F(DibDocTest, TypeOfASave) {
    struct Case {
        const char* name;
        int remembered;
        const char* format; ///< null: refused without a word
    };
    const Case cases[] = {
        {"a.png", 0, "PNG"}, {"a.jpg", 15, "JPEG"}, {"a.j2k", 0, "JPEG 2000"}, {"a", 0, "BMP"},
        {"a.xyz", 0, "BMP"}, {"b.xyz", 15, "PNG"},  {"a.tga", 0, nullptr},     {"a.exe", 15, nullptr},
    };
    for (const auto& c : cases) {
        Show(Detail());
        g_nSaveKind = c.remembered;
        EXPECT_EQ(document.OnSaveDocument(folder.Path(c.name)), c.format != nullptr) << c.name;
        EXPECT_EQ(document.IsModified(), c.format == nullptr) << c.name;
        PictureFacts facts;
        EXPECT_EQ(static_cast<bool>(ReadPicture(ReadFileStart(folder.Path(c.name), 1 << 20), 0, {}, facts)),
                  c.format != nullptr);
        EXPECT_EQ(facts.format, c.format ? c.format : "") << c.name;
    }
    EXPECT_TRUE(prompt.Shown().empty());
}

TEST_F(DibDocTest, APhotoshopFileWithLayersIsNotOverwritten) {
    const auto layers = [](std::size_t count) {
        const test::psd::Layer layer{{0, 0, 1, 1}, test::psd::FlatPlanes(1, 1, 2, 3)};
        return test::psd::LayerBlock(static_cast<int>(count), std::vector(count, layer));
    };
    const auto file = test::psd::MakeFile({4, 1, 1}, layers(2), {0, 0, 1, 2, 3, 4});
    const auto path = folder.File("a.psd", AsText(file));
    ASSERT_TRUE(document.OnOpenDocument(path));
    EXPECT_FALSE(document.OnSaveDocument(path));
    EXPECT_EQ(ReadFileStart(path, 1 << 20), file);
    ASSERT_EQ(prompt.TakeTexts().size(), 1u);
    EXPECT_TRUE(document.OnSaveDocument(folder.Path("b.psd"))) << "a copy is allowed";

    folder.File("a.psd", AsText(test::psd::MakeFile({4, 1, 1}, layers(1), {0, 0, 1, 2, 3, 4})));
    ASSERT_TRUE(document.OnOpenDocument(path));
    EXPECT_TRUE(document.OnSaveDocument(path)) << "one layer is all that is written";
}

TEST_F(DibDocTest, FailedSaveIsToldAndCountsAsDone) {
    Show(Detail());
    EXPECT_TRUE(document.OnSaveDocument(folder.Path("missing/a.png")));
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(prompt.TakeTexts(),
              std::vector<std::string>{
                  "Vantrel Pelorin|Error while saving the image. Please check destination drive and try again."});

    // A picture with alpha is no JPEG.
    Show(CreateDIB(4, 4, 32));
    EXPECT_TRUE(document.OnSaveDocument(folder.Path("a.jpg")));
    EXPECT_EQ(prompt.TakeTexts().size(), 1u);
    EXPECT_FALSE(FileExists(folder.Path("a.jpg")));
}

TEST_F(DibDocTest, JpegAsksWhenTheFileCannotBeMade) {
    const auto path = folder.Path("missing/a.jpg");
    prompt.Answer(PromptAnswer::Retry);
    prompt.Answer(PromptAnswer::Ignore);
    EXPECT_EQ(SavePicture(Detail(), 10, path, {}, &prompt), 1);
    const auto& shown = prompt.Shown();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[1].buttons, PromptButtons::AbortRetryIgnore);
    EXPECT_EQ(shown[1].text,
              "Erreur lors de la création du fichier image JPEG. Vérifiez que l'unité de destination n'est "
              "pas protégée en écriture.\n" +
                  path);
    EXPECT_EQ(SavePicture(Detail(), 10, path, {}, &prompt), 2) << "abort is the harmless answer";
    EXPECT_EQ(SavePicture(Detail(), 15, path, {}, &prompt), 1);
    EXPECT_EQ(SavePicture(Detail(), 3, path, {}, &prompt), 4);
}

TEST_F(DibDocTest, LossyJpeg2000OnlyRightAfterItsDialog) {
    Show(Detail());
    const auto sizeOfSave = [&] {
        EXPECT_TRUE(document.OnSaveDocument(folder.Path("a.jp2")));
        return FileSize(folder.Path("a.jp2"));
    };
    options.lossy = true;
    const auto lossless = sizeOfSave();
    ASSERT_TRUE(document.ChooseSaveOptions(36));
    EXPECT_LT(sizeOfSave(), lossless);
    EXPECT_EQ(sizeOfSave(), lossless) << "the next save takes and clears what was chosen";
    dialogs.answer = false;
    EXPECT_FALSE(document.ChooseSaveOptions(36));
    EXPECT_TRUE(document.ChooseSaveOptions(3)) << "no dialog";
    EXPECT_EQ(sizeOfSave(), lossless);
}

TEST_F(DibDocTest, ChangesOfDepth) {
    auto mono = CreateDIB(2, 1, 1);
    SetDIBTable(mono, std::array<Rgb, 2>{0xFFFFFF, 0xFF0000});
    DibRows(mono).Row(0)[0] = 0x40;
    Show(std::move(mono));
    ASSERT_TRUE(document.ChangeTo32Bits());
    EXPECT_TRUE(options.useKey) << "the answers are kept";
    EXPECT_EQ(At(document.GetImage().Block(), 0, 0) >> 24, 0u) << "white is the key";
    EXPECT_EQ(At(document.GetImage().Block(), 1, 0), 0xFFFF0000u);
    EXPECT_FALSE(document.ChangeTo32Bits());

    ASSERT_TRUE(document.ChangeTo24Bits());
    EXPECT_EQ(At(document.GetImage().Block(), 0, 0), 0xFFFF0000u) << "red shows through";
    EXPECT_FALSE(document.ChangeTo24Bits());

    dialogs.answer = false;
    EXPECT_FALSE(document.ChangeTo32Bits());
    EXPECT_EQ(document.GetImage().GetBitCount(), 24);
    EXPECT_TRUE(prompt.Shown().empty());
}

TEST_F(DibDocTest, GifViewWithTransparency) {
    const auto show = [&] {
        CDIB image(test::Picture32(2, {0xFF102030, 0x00FFFFFF}));
        image.m_nPaletteBits = 1;
        image.m_pSourcePalette = {16, 32, 48, 255, 255, 255};
        image.m_nTransparentIndex = 1;
        document.SetImage(std::move(image));
    };
    show();
    EXPECT_TRUE(document.IsGifView());
    EXPECT_EQ(document.GetViewBitCount(), 1);
    ASSERT_TRUE(document.ChangeTo32Bits());
    EXPECT_EQ(dialogs.asked, 0);
    EXPECT_FALSE(document.IsGifView());
    EXPECT_EQ(document.GetViewBitCount(), 32);

    show();
    prompt.Answer(PromptAnswer::No);
    prompt.Answer(PromptAnswer::Yes);
    EXPECT_FALSE(document.ChangeTo24Bits());
    EXPECT_TRUE(document.IsGifView());
    EXPECT_EQ(prompt.TakeTexts(), std::vector<std::string>{"GIF Transparency Warning|This operation will result in GIF "
                                                           "transparency loss. Do you want to continue?"});
    ASSERT_TRUE(document.ChangeTo24Bits());
    EXPECT_EQ(At(document.GetImage().Block(), 1, 0), 0xFFFF0000u);
    EXPECT_FALSE(document.IsGifView());
}

TEST_F(DibDocTest, GifKeepsItsPaletteAndTransparencyOverSaves) {
    Show(test::Picture32(3, {0xFFFF0000, 0x00000000, 0xFFFFFF00}));
    const auto path = folder.Path("a.gif");
    ASSERT_TRUE(document.OnSaveDocument(path));
    EXPECT_TRUE(document.IsGifView()) << "what is shown comes from the file";
    EXPECT_EQ(document.GetFacts().format, "GIF");
    EXPECT_EQ(document.GetImage().GetBitCount(), 32);
    EXPECT_EQ(g_LastImageBits, 32) << "of the finished picture, not of the file";
    EXPECT_EQ(At(document.GetImage().Block(), 1, 0) >> 24, 0u);

    // Saved again, the picture goes back onto its own palette. Its pixels have a red of 128 and more, so none is lost.
    const auto bits = document.GetImage().m_nPaletteBits;
    ASSERT_TRUE(document.OnSaveDocument(folder.Path("b.gif")));
    EXPECT_EQ(document.GetImage().m_nPaletteBits, bits);
    const auto& block = document.GetImage().Block();
    EXPECT_EQ(At(block, 0, 0), 0xFFFF0000u);
    EXPECT_EQ(At(block, 1, 0) >> 24, 0u);
    EXPECT_EQ(At(block, 2, 0), 0xFFFFFF00u);

    // Without a word of its own the reader gives alpha too.
    PictureFacts facts;
    EXPECT_EQ(DIBBitCount(LoadPicture(path, {}, facts)), 32);
    PictureRequest request;
    request.keepIndices = true;
    EXPECT_EQ(DIBBitCount(LoadPicture(path, request, facts)), 8);
    EXPECT_GE(facts.transparentIndex, 0);
    EXPECT_TRUE(prompt.Shown().empty());
}

TEST(SaveImage, KindGoesByTheFilterListInUse) {
    const auto plain = LoadText(str::kFilterExportPlain), psd = LoadText(str::kFilterExportPsd);
    EXPECT_EQ(KindOfFilter(plain, 1), 3);
    EXPECT_EQ(KindOfFilter(plain, 2), 15);
    EXPECT_EQ(KindOfFilter(plain, 5), 36);
    EXPECT_EQ(KindOfFilter(psd, 2), 19);
    EXPECT_EQ(KindOfFilter(psd, 4), 10);
    EXPECT_EQ(KindOfFilter(plain, 0), 0);
    EXPECT_EQ(KindOfFilter(plain, 6), 0);
}

// Keeps the last text that was shown.
class LastText final : public Progress {
public:
    std::string text;
    void Begin(std::string_view shown, std::uint64_t) override { text = shown; }
    void Step(std::uint64_t) override {}
    void End() override {}
};

TEST(Progress, TextsOfReadersAndWriters) {
    struct Case {
        int kind;
        const char *writing, *reading;
    };
    const Case cases[] = {
        {3, "Writing BMP...", "Reading BMP..."},
        {10, "Writing  JPEG...", "Reading JPEG..."},
        {15, "Writing PNG...", "Reading PNG"},
        {36, "Writing  JPEG...", "Reading JPEG 2000"},
        {7, "", "Reading GIF"},
    };
    for (const auto& c : cases) {
        LastText progress;
        PictureSaveOptions options;
        options.progress = &progress;
        Bytes file;
        ASSERT_EQ(EncodePicture(CreateDIB(4, 4, 24), c.kind, options, file), 0);
        EXPECT_EQ(progress.text, c.writing);
        PictureRequest request;
        request.progress = &progress;
        PictureFacts facts;
        EXPECT_TRUE(ReadPicture(file, c.kind, request, facts));
        EXPECT_EQ(progress.text, c.reading);
    }
}

TEST(LoadFromFile, PublishesTheFilesSizeForJpeg) {
    const test::TempFolder folder;
    const auto path = folder.Path("a.jpg");
    ASSERT_EQ(SavePicture(CreateDIB(400, 400, 24), 10, path), 0);
    CDIB dib;
    PictureRequest request;
    request.preview = true;
    ASSERT_TRUE(LoadFromFile(dib, path, request));
    EXPECT_EQ(dib.GetWidth(), 50);
    EXPECT_EQ(g_LastImageWidth, 400);
    EXPECT_EQ(g_LastImageBits, 24);

    // The content decides, whatever picture the name promises; a name of another kind is refused.
    const auto mono = CreateDIB(3, 2, 1);
    ASSERT_EQ(SavePicture(mono, 3, path), 0);
    PictureFacts facts;
    ASSERT_TRUE(LoadFromFile(dib, path, {}, &facts));
    EXPECT_EQ(facts.format, "BMP");
    EXPECT_EQ(facts.bits, 1);
    EXPECT_EQ(g_LastImageWidth, 3);
    EXPECT_EQ(g_LastImageBits, 24);
    ASSERT_EQ(SavePicture(mono, 3, folder.Path("a.dll")), 0);
    for (const auto& name : {folder.Path("a.dll"), std::string(), folder.Path("missing.bmp"), folder.Path()}) {
        EXPECT_FALSE(LoadFromFile(dib, name)) << name;
        EXPECT_TRUE(dib.Empty());
        EXPECT_EQ(g_LastImageWidth, 0);
    }
}

} // namespace
} // namespace pelorin
