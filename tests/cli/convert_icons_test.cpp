#include "base/files.h"
#include "core/file_kinds.h"
#include "formats/save_image.h"
#include "support/random_pictures.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using ::testing::HasSubstr;

class ConvertIcons : public ::testing::Test {
protected:
    void SetUp() override {
        const auto picture = DIBFromSurface(test::RandomSurface(64, 64, 3));
        ASSERT_EQ(SavePicture(picture, kKindPng, m_folder.Path("a.png")), 0);
        Good({"create", "a.png", "-o", "a.ico", "--formats", "48x48x32,32x32x8,24x24x32"});
    }
    test::ProgramResult Run(const std::vector<std::string>& arguments) const {
        return test::RunProgram("pelorin-cli", arguments, m_folder.Path());
    }
    std::string Good(const std::vector<std::string>& arguments) const {
        const auto result = Run(arguments);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return result.out;
    }

    test::TempFolder m_folder;
};

TEST_F(ConvertIcons, LossesAreToldAndCanBeRefused) {
    const auto refused = Run({"convert", "a.ico", "a.icns", "--no"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, HasSubstr("would be lost: 24x24 - XP (RGB/A) (--yes gives them up)"));
    EXPECT_FALSE(FileExists(m_folder.Path("a.icns")));
    const auto told = Run({"convert", "a.ico", "a.icns"});
    EXPECT_EQ(told.exitCode, 0);
    EXPECT_EQ(told.err, "pelorin-cli: a.ico: warning: these formats are lost: 24x24 - XP (RGB/A)\n");
    const auto none = Run({"convert", "a.ico", "b.icns", "--formats", "24x24x32"});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_THAT(none.err, HasSubstr("--formats makes others"));
}

TEST_F(ConvertIcons, EveryFormIsReadBack) {
    for (const char* name : {"b.icns", "b.rsrc", "b.rsc", "b.bin"}) {
        Good({"convert", "a.ico", name, "-q"});
        EXPECT_THAT(Good({"list", name}), HasSubstr("48x48 - RGB/A")) << name;
        EXPECT_THAT(Good({"list", name}), HasSubstr("ih32 h8mk")) << name;
        EXPECT_THAT(Good({"list", "--json", name}), HasSubstr("\"elements\": \"icl8 ICN#\"")) << name;
        // The 1-bit mask of the 8-bit image reads back as an image of its own.
        EXPECT_THAT(Good({"convert", name, "back.ico", "-f"}), HasSubstr("(3 formats)")) << name;
        Good({"convert", name, "one.png", "-f", "--formats", "32x32x8"});
        EXPECT_THAT(Good({"image", "list", "one.png"}), HasSubstr("32x32")) << name;
    }
    Good({"convert", "b.icns", "a.ico", "a.png", "-o", "all.icl"});
    EXPECT_THAT(Good({"list", "all.icl"}), HasSubstr("   3  "));
    EXPECT_THAT(Good({"convert", "all.icl", "-o", "out/x.icns"}), HasSubstr("all_3.icns"));
    EXPECT_THAT(Good({"convert", "b.icns", "b.bin", "-o", "b.sit"}), HasSubstr("2 files"));
    EXPECT_EQ(Run({"convert", "a.ico", "-o", "c.sit"}).exitCode, 1);
    EXPECT_THAT(Good({"convert", "a.png", "p.icns"}), HasSubstr("13 formats"));
}

TEST_F(ConvertIcons, SingleFormatsOfMacintoshIcons) {
    Good({"convert", "a.ico", "b.icns", "-q"});
    Good({"format", "add", "b.icns", "--formats", "16x12x4", "-o", "more.bin"});
    EXPECT_THAT(Good({"list", "--json", "more.bin"}), HasSubstr("\"kind\": \"macbinary\""));
    EXPECT_THAT(Good({"list", "more.bin"}), HasSubstr("icm4 icm#"));
    const auto refused = Run({"format", "add", "b.icns", "--formats", "24x24x32", "-o", "x.icns"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, HasSubstr("a Macintosh icon has no format 24x24x32"));
    EXPECT_FALSE(FileExists(m_folder.Path("x.icns")));
}

TEST_F(ConvertIcons, AFamilyAboveTheLimitIsRefusedAloud) {
    std::string family = "icns" + std::string("\x00\x20\x00\x00", 4);
    family.resize(0x200000);
    m_folder.File("large.icns", family);
    const auto result = Run({"list", "large.icns"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, HasSubstr("larger than 1 MB"));
}

} // namespace
} // namespace pelorin
