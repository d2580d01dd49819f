#include "base/files.h"
#include "formats/load_file.h"
#include "formats/save_image.h"
#include "support/dib_builder.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using ::testing::HasSubstr;

class ImageVerb : public ::testing::Test {
protected:
    void SetUp() override {
        // Left half red, right half blue with half its alpha.
        auto block = CreateDIB(8, 4, 32);
        const DibRows rows(block);
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 8; ++x) StoreU32LE(rows.Row(y) + 4 * x, x < 4 ? 0xFFFF0000u : 0x800000FFu);
        }
        Bytes file;
        ASSERT_EQ(EncodePicture(block, 15, {}, file), 0);
        WriteFileSafely(JoinPath(m_folder.Path(), "in.png"), file);
    }
    test::ProgramResult Run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "image");
        return test::RunProgram("pelorin-cli", arguments, m_folder.Path());
    }
    DibBlock Load(const std::string& name) const {
        PictureFacts facts;
        return LoadPicture(JoinPath(m_folder.Path(), name), {}, facts);
    }

    test::TempFolder m_folder;
};

TEST_F(ImageVerb, OperationsRunInTheOrderGiven) {
    ASSERT_EQ(Run({"in.png", "a.png", "--crop", "2,0,4,4", "--flip", "h", "--shadow"}).exitCode, 0);
    const auto a = Load("a.png");
    EXPECT_EQ(DibView(a).GetSize(), (Size{6, 6}));
    EXPECT_EQ(test::At(a, 2, 1), 0xFFFF0000u);
    ASSERT_EQ(Run({"in.png", "-o", "b.png", "--flip", "h", "--crop", "2,0,4,4", "--invert"}).exitCode, 0);
    EXPECT_EQ(test::At(Load("b.png"), 0, 0), 0x80FFFF00u);
}

TEST_F(ImageVerb, PalettesAndFormatsWithoutAlpha) {
    const auto mono = Run({"in.png", "m.png", "--mono"});
    EXPECT_THAT(mono.out, HasSubstr("m.png  8x4, 8 bits"));
    ASSERT_EQ(Run({"in.png", "p.bmp", "--reduce", "4", "--palette", "m.png"}).exitCode, 0);
    EXPECT_EQ(test::At(Load("p.bmp"), 0, 0), 0xFF000000u) << "red is nearer to black than to white";
    ASSERT_EQ(Run({"in.png", "j.jpg"}).exitCode, 0);
    EXPECT_EQ(DIBBitCount(Load("j.jpg")), 24);
}

TEST_F(ImageVerb, DepthsThatArePersonsChoice) {
    ASSERT_EQ(Run({"in.png", "f.png", "--depth", "24,00FF00"}).exitCode, 0);
    EXPECT_EQ(DIBBitCount(Load("f.png")), 24);
    EXPECT_EQ(test::At(Load("f.png"), 7, 0), 0xFF007F80u);
    ASSERT_EQ(Run({"f.png", "w.png", "--depth", "32"}).exitCode, 0);
    EXPECT_EQ(DIBBitCount(Load("w.png")), 32);
    ASSERT_EQ(Run({"in.png", "w.png", "-f", "--depth", "24"}).exitCode, 0);
    EXPECT_EQ(test::At(Load("w.png"), 7, 0), 0xFF7F7FFFu) << "white unless the settings say otherwise";
    ASSERT_EQ(Run({"f.png", "g.jp2", "--mono", "--jp2-gray"}).exitCode, 0);
    EXPECT_EQ(DIBBitCount(Load("g.jp2")), 8);
    ASSERT_EQ(Run({"f.png", "c.jp2", "--mono"}).exitCode, 0);
    EXPECT_EQ(DIBBitCount(Load("c.jp2")), 24);
}

TEST_F(ImageVerb, WhatIsTransparentEverywhereStaysSo) {
    Bytes file;
    ASSERT_EQ(EncodePicture(CreateDIB(3, 2, 32), 15, {}, file), 0);
    WriteFileSafely(m_folder.Path("clear.png"), file);
    ASSERT_EQ(Run({"clear.png", "c.png", "--resize", "2x2"}).exitCode, 0);
    EXPECT_EQ(DIBBitCount(Load("c.png")), 32);
    EXPECT_EQ(test::At(Load("c.png"), 0, 0), 0u);
}

TEST_F(ImageVerb, SaysWhatIsWrong) {
    struct Row {
        std::vector<std::string> arguments;
        int exitCode;
        const char* text;
    };
    const Row rows[] = {
        {{"in.png", "x.png", "--filter", "blurr"}, 2, "did you mean"},
        {{"in.png", "x.png", "--brightness", "200"}, 2, "--brightness: 200 is not between"},
        {{"in.png", "x.vio"}, 2, "`convert` makes such files"},
        {{"in.png", "x.png", "--depth", "16"}, 2, "--depth: 32, 24"},
        {{"in.png", "x.png", "--smooth"}, 2, "--smooth stands behind"},
        {{"in.png", "x.png", "--reduce", "8", "--palette", "none.act"}, 2, "none.act"},
        {{"in.png", "x.png", "--crop", "9,0,4,4"}, 1, "--crop 9,0,4,4 cannot be done"},
        {{"none.png", "x.png"}, 1, "pelorin-cli: none.png: "},
        {{"in.png", "x.doc"}, 2, "are not written as \"doc\""},
        {{"in.png", "in.png"}, 1, "--force"},
    };
    for (const auto& row : rows) {
        const auto result = Run(row.arguments);
        EXPECT_EQ(result.exitCode, row.exitCode) << result.err;
        EXPECT_THAT(result.err, HasSubstr(row.text));
    }
    EXPECT_FALSE(FileExists(JoinPath(m_folder.Path(), "x.png")));
}

} // namespace
} // namespace pelorin
