#include "base/files.h"
#include "formats/load_image.h"
#include "formats/save_image.h"
#include "formats/vio.h"
#include "support/dib_builder.h"
#include "support/psd_builder.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using ::testing::HasSubstr;

class PictureVerbs : public ::testing::Test {
protected:
    [[nodiscard]] test::ProgramResult Run(const std::vector<std::string>& arguments) const {
        return test::RunProgram("pelorin-cli", arguments, m_folder.Path());
    }
    void Put(const std::string& name, int kind, const DibBlock& block) const {
        ASSERT_EQ(SavePicture(block, kind, m_folder.Path(name)), 0);
    }
    [[nodiscard]] DibBlock Get(const std::string& name, PictureFacts& facts) const {
        return ReadPicture(ReadFileStart(m_folder.Path(name), 1 << 20), 0, {}, facts);
    }

    test::TempFolder m_folder;
};

TEST_F(PictureVerbs, ListShowsWhatTheFilesAre) {
    Put("a.png", 15, CreateDIB(5, 3, 8));
    Put("b.jpg", 10, CreateDIB(400, 300, 24));
    const auto text = Run({"image", "list", "a.png", "b.jpg"});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_EQ(text.out, "a.png  PNG       5x3   8-bit\n"
                        "b.jpg  JPEG  400x300  24-bit\n");
    const auto json = Run({"image", "list", "--json", "b.jpg", "missing.png"});
    EXPECT_EQ(json.exitCode, 1);
    EXPECT_EQ(json.out, "[\n  {\n    \"file\": \"b.jpg\",\n    \"format\": \"JPEG\",\n    \"width\": 400,\n"
                        "    \"height\": 300,\n    \"bits\": 24,\n    \"frames\": 1,\n    \"delays_ms\": [],\n    "
                        "\"layers\": []\n  }\n]\n");
    EXPECT_THAT(json.err, HasSubstr("pelorin-cli: missing.png: "));
}

TEST_F(PictureVerbs, ConvertGoesByTheNamesAndTheContent) {
    const auto source = test::Picture32(2, {0xFF102030, 0x00FFFFFF});
    Put("a.png", 15, source);
    PictureFacts facts;
    for (const auto& [name, format] : {std::pair{"b.bmp", "BMP"}, {"b.jp2", "JPEG 2000"}}) {
        EXPECT_EQ(Run({"convert", "a.png", "-o", name}).exitCode, 0);
        const auto back = Get(name, facts);
        EXPECT_EQ(facts.format, format);
        EXPECT_EQ(test::At(back, 0, 0), 0xFF102030u);
        EXPECT_EQ(test::At(back, 1, 0), 0x00FFFFFFu);
    }
    // What a JPEG cannot hold is composed on the background.
    EXPECT_EQ(Run({"convert", "a.png", "-o", "c.jpg", "--quality", "100", "--background", "#000000"}).exitCode, 0);
    EXPECT_EQ(DIBBitCount(Get("c.jpg", facts)), 24);

    EXPECT_EQ(Run({"convert", "a.png", "-o", "b.bmp"}).exitCode, 1) << "nothing is replaced";
    EXPECT_EQ(Run({"convert", "a.png", "-o", "b.bmp", "--force"}).exitCode, 0);
    EXPECT_EQ(Run({"convert", "a.png", "-o", "b.xyz"}).exitCode, 2);
    EXPECT_EQ(Run({"convert", "a.png", "-o", "b.xyz", "--as", "bmp"}).exitCode, 0);
    EXPECT_TRUE(Get("b.xyz", facts));
    EXPECT_EQ(facts.format, "BMP");
}

TEST_F(PictureVerbs, OptionsReachTheWriters) {
    auto picture = CreateDIB(64, 64, 24);
    const DibRows rows(picture);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 192; ++x) rows.Row(y)[x] = static_cast<std::uint8_t>((x * 7) ^ (y * 5));
    }
    Put("a.bmp", 3, picture);
    const auto size = [&](const std::string& name, std::vector<std::string> more) {
        std::vector<std::string> arguments = {"convert", "a.bmp", "-f", "-o", name};
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_EQ(Run(arguments).exitCode, 0);
        return FileSize(m_folder.Path(name));
    };
    EXPECT_LT(size("a.jpg", {"--quality", "10"}), size("a.jpg", {"--quality", "95"}));
    EXPECT_LT(size("a.jp2", {"--lossy", "1"}), size("a.jp2", {"--lossy", "12"}));
    EXPECT_LT(size("a.jp2", {"--lossy", "12"}), size("a.jp2", {}));
}

TEST_F(PictureVerbs, ObjectsTakeAllPictures) {
    Put("a.png", 15, test::Picture32(2, {0xFF102030, 0x40FFFFFF}));
    Put("b.bmp", 3, CreateDIB(3, 2, 24));
    const auto made = Run({"convert", "a.png", "b.bmp", "-o", "c.vio"});
    EXPECT_EQ(made.exitCode, 0);
    EXPECT_THAT(made.out, HasSubstr("c.vio  2 images, "));
    EXPECT_EQ(Run({"convert", "c.vio", "-o", "c.vio"}).exitCode, 1) << "nothing is replaced";

    // An object goes over whole, one image of it or the composite as a picture.
    ImageObject object;
    ASSERT_TRUE(ReadImageObject(ReadFileStart(m_folder.Path("c.vio"), 1 << 20), object));
    object.info.authorUrl = "http://a";
    object.images[0].m_strSecondName = "second";
    AddVniLayer(object.images[0]).m_strText = "text";
    const auto whole = WriteImageObject(object);
    WriteFileSafely(m_folder.Path("d.vio"), whole);
    EXPECT_EQ(Run({"convert", "d.vio", "-o", "e.vio"}).exitCode, 0);
    EXPECT_EQ(ReadFileStart(m_folder.Path("e.vio"), 1 << 20), whole);
    EXPECT_EQ(Run({"convert", "d.vio", "--frame", "2", "-o", "f.vio"}).exitCode, 0);
    PictureFacts facts;
    EXPECT_EQ(DIBWidth(Get("f.vio", facts)), 3);
    EXPECT_EQ(facts.frames, 1);
    EXPECT_EQ(Run({"convert", "f.vio", "d.vio", "missing.png", "-o", "g.vio"}).exitCode, 1);
    EXPECT_TRUE(Get("g.vio", facts));
    EXPECT_EQ(facts.frames, 3);

    const auto info = Run({"info", "--json", "d.vio"});
    EXPECT_THAT(info.out, HasSubstr("\"author_url\": \"http://a\",\n      \"images\": [\n        \"Image1\","));
    object.images.clear();
    object.size.height = 9;
    WriteFileSafely(m_folder.Path("empty.vio"), WriteImageObject(object));
    EXPECT_THAT(Run({"info", "empty.vio"}).out, HasSubstr("height      9"));
    EXPECT_THAT(Run({"info", "--json", "empty.vio"}).out, HasSubstr("\"height\": 9,\n"));
    EXPECT_THAT(Run({"image", "list", "empty.vio"}).err, HasSubstr("the object has no images"));
}

TEST_F(PictureVerbs, ManyAtOnceGoByTheirOrder) {
    // The first of each pair takes much longer.
    std::vector<std::string> files;
    for (int i = 0; i < 4; ++i) {
        const auto folder = "d" + std::to_string(i) + "/";
        ASSERT_TRUE(CreateFolders(m_folder.Path(folder)));
        Put(folder + "a.png", 15, CreateDIB(i % 2 == 0 ? 900 : 3 + i, 900, 24));
        files.push_back(folder + "a.png");
    }
    std::vector<std::string> arguments = {"image", "-j", "4", "-o", "out"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    const auto result = Run(arguments);
    EXPECT_EQ(result.out, "out/a.png  900x900, 24 bits\nout/a (2).png  4x900, 24 bits\n"
                          "out/a (3).png  900x900, 24 bits\nout/a (4).png  6x900, 24 bits\n");
    for (const auto* verb : {"create", "image", "convert"}) {
        const auto refused = Run({verb, files[1], files[3], "-o", "-"});
        EXPECT_EQ(refused.exitCode, 2) << verb;
        EXPECT_EQ(refused.err, "pelorin-cli: several files cannot go to standard output\n");
    }
}

TEST_F(PictureVerbs, LayersAreNotLostUnseen) {
    using namespace test::psd;
    const auto layers = LayerBlock(
        2, {{{0, 0, 1, 1}, FlatPlanes(1, 1, 2, 3), "ground"}, {{0, 0, 1, 1}, FlatPlanes(1, 4, 5, 6), "sky"}});
    WriteFileSafely(m_folder.Path("a.psd"), MakeFile({3, 1, 1}, layers, {0, 0, 10, 20, 30}));
    for (const auto* verb : {"convert", "image"}) {
        const auto result = Run({verb, "a.psd", "-o", "a.psd", "--force", "--layer", "2"});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_THAT(result.err, HasSubstr("Photoshop images with Layers. However, you can continue"));
        EXPECT_EQ(Run({verb, "a.psd", "-o", "b.psd", "--force", "--layer", "sky"}).exitCode, 0);
    }
    PictureFacts facts;
    EXPECT_EQ(test::At(Get("b.psd", facts), 0, 0), 0xFF040506u);
    EXPECT_EQ(facts.layers.size(), 1u);
    EXPECT_THAT(Run({"convert", "a.psd", "--layer", "skj", "-o", "x.png"}).err,
                HasSubstr("there is no layer \"skj\", the file has 2; did you mean sky?"));
}

TEST_F(PictureVerbs, RefusalsSayWhy) {
    Put("a.png", 15, CreateDIB(5, 3, 8));
    (void)m_folder.File("b.png", "no picture");
    (void)m_folder.File("c.psd", "8BPS");
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"convert", "a.png", "--frame", "2", "-o", "x.bmp"}, "there is no frame 2, the last is 1"},
        {{"convert", "a.png", "--layer", "sky", "-o", "x.bmp"}, "it has no layers"},
        {{"convert", "b.png", "-o", "x.bmp"}, "it is no picture, or it is damaged"},
        {{"image", "list", "b.png"}, "it is no picture, or it is damaged"},
        {{"image", "list", "c.psd"}, "this PSD file is damaged, or of a variety that is not read"},
    };
    for (const auto& [arguments, reason] : cases) {
        const auto result = Run(arguments);
        EXPECT_EQ(result.exitCode, 1) << reason;
        EXPECT_THAT(result.err, HasSubstr(reason));
    }
    EXPECT_EQ(Run({"convert", "a.png", "--layer", "1", "--composite", "-o", "x.bmp"}).exitCode, 2);
}

} // namespace
} // namespace pelorin
