#include "formats/png.h"
#include "formats/svg.h"
#include "icon/group_formats.h"
#include "icon/ico_file.h"
#include "support/dib_builder.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::ProgramResult;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// One colour, so that every format of every size must show it.
Bytes PlainPng(int width, int height, Argb color) {
    Surface surface(width, height);
    surface.Fill(color);
    Bytes png;
    EXPECT_EQ(WritePng(DIBFromSurface(surface), {}, png), 0);
    return png;
}

class CreateVerbs : public ::testing::Test {
protected:
    [[nodiscard]] ProgramResult Run(const std::vector<std::string>& arguments) const {
        return test::RunProgram("pelorin-cli", arguments, m_folder.Path());
    }
    void Put(const std::string& name, const Bytes& bytes) const { WriteFileSafely(m_folder.Path(name), bytes); }
    [[nodiscard]] CIconGroup Icon(const std::string& name) const {
        CIconGroup group;
        EXPECT_TRUE(ReadIcoGroup(FileView::Open(m_folder.Path(name)).Data(), group)) << name;
        return group;
    }
    // The colour in the middle of one format.
    [[nodiscard]] Argb Middle(const std::string& name, const IconFormat& format) const {
        const auto group = Icon(name);
        const auto* icon = group.GetIcon(FindFormat(group, format));
        if (icon == nullptr) return 0xDEAD;
        return test::At(CIconObject(*icon, false).GetDIB32(), format.width / 2, format.height / 2);
    }

    test::TempFolder m_folder;
};

TEST_F(CreateVerbs, DefaultFormatsOfAPicture) {
    Put("logo.png", PlainPng(64, 64, 0xFFFF0000));
    const auto result = Run({"create", "logo.png"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("logo.ico  9 formats"));
    EXPECT_THAT(FormatsOf(Icon("logo.ico")),
                ElementsAre(IconFormat{48, 48, 4}, IconFormat{32, 32, 4}, IconFormat{16, 16, 4}, IconFormat{48, 48, 8},
                            IconFormat{32, 32, 8}, IconFormat{16, 16, 8}, IconFormat{48, 48, 32},
                            IconFormat{32, 32, 32}, IconFormat{16, 16, 32}));
    for (const auto& format : FormatsOf(Icon("logo.ico"))) {
        // Area averaging truncates, so a level may come out a step or two lower.
        EXPECT_GE(Middle("logo.ico", format), 0xFFFD0000u);
        EXPECT_EQ(Middle("logo.ico", format) & 0xFFFF, 0u);
    }
}

TEST_F(CreateVerbs, WhatIsNotSaidTheStoredChoiceDecides) {
    Put("logo.png", PlainPng(16, 16, 0xFFFF0000));
    const auto home = "export HOME=" + m_folder.Path("home") + "; ";
    const auto run = [&](const std::vector<std::string>& arguments) {
        return test::RunProgram("pelorin-cli", arguments, m_folder.Path(), home).exitCode;
    };
    ASSERT_EQ(run({"settings", "set", "CreateFormatFromImage12", "1"}), 0);
    ASSERT_EQ(run({"settings", "set", "CompressVista256x256NewIcon", "0"}), 0);
    ASSERT_EQ(run({"create", "logo.png"}), 0);
    const auto icon = Icon("logo.ico");
    ASSERT_EQ(icon.GetCount(), 10);
    EXPECT_FALSE(icon.GetIcon(FindFormat(icon, {256, 256, 32}))->m_bCompressed);
}

TEST_F(CreateVerbs, AWidePictureKeepsItsProportions) {
    Put("wide.png", PlainPng(64, 16, 0xFF00FF00));
    ASSERT_EQ(Run({"create", "wide.png", "--formats", "64x64x32,64x64x24"}).exitCode, 0);
    const auto group = Icon("wide.ico");
    for (const auto& icon : group.m_arrIcons) {
        const auto picture = CIconObject(*icon, false).GetDIB32();
        EXPECT_EQ(test::At(picture, 32, 32), 0xFF00FF00u);
        EXPECT_EQ(test::At(picture, 32, 10) >> 24, 0u) << "transparent above";
        EXPECT_EQ(test::At(picture, 32, 60) >> 24, 0u) << "and below";
    }
}

TEST_F(CreateVerbs, OtherArtForOneSize) {
    Put("big.png", PlainPng(64, 64, 0xFFFF0000));
    Put("small.png", PlainPng(16, 16, 0xFF0000FF));
    ASSERT_EQ(Run({"create", "big.png", "--per-size", "16=small.png", "-o", "out.ico"}).exitCode, 0);
    EXPECT_EQ(Middle("out.ico", {16, 16, 32}), 0xFF0000FFu);
    EXPECT_EQ(Middle("out.ico", {16, 16, 4}), 0xFF0000FFu);
    EXPECT_EQ(Middle("out.ico", {32, 32, 32}), 0xFFFF0000u);
}

// A drawing of 16 units whose middle line is a pixel wide at 16 and three pixels at 48: only what is drawn for the size
// has a sharp line in both.
TEST_F(CreateVerbs, DrawingsAreDrawnForEachSize) {
    if (!CanDrawSvg()) GTEST_SKIP() << "librsvg is not installed";
    const std::string_view drawing = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 16 16\">"
                                     "<rect width=\"16\" height=\"16\" fill=\"#00ff00\"/>"
                                     "<rect x=\"7\" width=\"1\" height=\"16\" fill=\"#ff0000\"/></svg>";
    Put("logo.svg", {drawing.begin(), drawing.end()});
    Put("small.png", PlainPng(32, 32, 0xFF0000FF));
    const auto column = [&](const CIconGroup& group, int side, int x) {
        const auto* icon = group.GetIcon(FindFormat(group, {side, side, 32}));
        return icon ? test::At(CIconObject(*icon, false).GetDIB32(), x, side / 2) : Argb{0xDEAD};
    };
    ASSERT_EQ(Run({"create", "logo.svg", "--per-size", "32=small.png", "-o", "a.ico"}).exitCode, 0);
    ASSERT_EQ(Run({"convert", "logo.svg", "-o", "b.ico"}).exitCode, 0);
    ASSERT_EQ(Run({"create", "small.png", "--formats", "8x8x32", "-o", "c.ico"}).exitCode, 0);
    ASSERT_EQ(Run({"format", "add", "c.ico", "--formats", "48x48x32,16x16x32", "--picture", "logo.svg", "--in-place"})
                  .exitCode,
              0);
    for (const auto* name : {"a.ico", "b.ico", "c.ico"}) {
        const auto group = Icon(name);
        EXPECT_EQ(column(group, 16, 7), 0xFFFF0000u) << name;
        EXPECT_EQ(column(group, 16, 8), 0xFF00FF00u) << name;
        EXPECT_EQ(column(group, 48, 20), 0xFF00FF00u) << name;
        EXPECT_EQ(column(group, 48, 21), 0xFFFF0000u) << name;
        EXPECT_EQ(column(group, 48, 23), 0xFFFF0000u) << name;
        EXPECT_EQ(column(group, 48, 24), 0xFF00FF00u) << name;
    }
    EXPECT_EQ(Middle("a.ico", {32, 32, 32}), 0xFF0000FFu) << "art of its own goes first";
    ASSERT_EQ(Run({"image", "logo.svg", "--box", "64", "-o", "d.png"}).exitCode, 0);
    const auto picture = ReadPng(FileView::Open(m_folder.Path("d.png")).Data());
    EXPECT_EQ(DIBWidth(picture), 64);
    ASSERT_EQ(Run({"image", "logo.svg", "-o", "e.png"}).exitCode, 0);
    EXPECT_EQ(DIBWidth(ReadPng(FileView::Open(m_folder.Path("e.png")).Data())), 16) << "else its own size";
    EXPECT_EQ(test::At(picture, 31, 9), 0xFFFF0000u);
}

TEST_F(CreateVerbs, KeyAndBackground) {
    Surface surface(16, 16);
    surface.Fill(0xFFFB00FF);
    Bytes png;
    ASSERT_EQ(WritePng(DIB24FromSurface(surface), {}, png), 0);
    Put("pink.png", png);
    ASSERT_EQ(Run({"create", "pink.png", "--formats", "16x16x32", "-o", "plain.ico"}).exitCode, 0);
    ASSERT_EQ(Run({"create", "pink.png", "--formats", "16x16x32", "--key", "FB00FF", "-o", "keyed.ico"}).exitCode, 0);
    EXPECT_EQ(Middle("plain.ico", {16, 16, 32}), 0xFFFB00FFu);
    EXPECT_EQ(Middle("keyed.ico", {16, 16, 32}) >> 24, 0u);
    Put("clear.png", PlainPng(16, 16, 0x00123456));
    ASSERT_EQ(
        Run({"create", "clear.png", "--formats", "16x16x32", "--background", "white", "-o", "white.ico"}).exitCode, 0);
    EXPECT_EQ(Middle("white.ico", {16, 16, 32}), 0xFFFFFFFFu);
}

TEST_F(CreateVerbs, CompressionIsForLargeFormats) {
    Put("logo.png", PlainPng(16, 16, 0xFFFF0000));
    const auto flags = [&](const std::string& name) {
        std::vector<bool> out;
        for (const auto& icon : Icon(name).m_arrIcons) out.push_back(icon->m_bCompressed);
        return out;
    };
    const std::vector<std::string> create = {"create", "logo.png", "--formats", "256x256x32,48x48x32", "-f"};
    ASSERT_EQ(Run(create).exitCode, 0);
    EXPECT_THAT(flags("logo.ico"), ElementsAre(true, false));
    auto never = create;
    never.insert(never.end(), {"--compress", "never"});
    ASSERT_EQ(Run(never).exitCode, 0);
    EXPECT_THAT(flags("logo.ico"), ElementsAre(false, false));
    EXPECT_EQ(Run({"format", "compress", "logo.ico", "--in-place"}).exitCode, 0);
    EXPECT_THAT(flags("logo.ico"), ElementsAre(true, false));
    const auto refused = Run({"format", "compress", "logo.ico", "--formats", "48x48x32", "--in-place"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, HasSubstr("at least 256x256"));
}

TEST_F(CreateVerbs, ManyPicturesAndOneThatFails) {
    Put("a.png", PlainPng(16, 16, 0xFFFF0000));
    Put("b.png", PlainPng(16, 16, 0xFF00FF00));
    Put("bad.png", Bytes{1, 2, 3});
    const auto result = Run({"create", "a.png", "bad.png", "b.png", "-o", "icons/", "-j", "2"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, HasSubstr("pelorin-cli: bad.png: "));
    EXPECT_THAT(ListFolder(m_folder.Path("icons")), ElementsAre("a.ico", "b.ico"));
    EXPECT_EQ(Run({"create", "a.png", "-o", "icons/a.ico"}).exitCode, 1) << "never over an existing file";
    EXPECT_EQ(Run({"create", "a.png", "--formats", "48x48x16"}).exitCode, 2);
}

TEST_F(CreateVerbs, AddedFormatsLeaveTheOthersToTheByte) {
    Put("logo.png", PlainPng(32, 32, 0xFF3366CC));
    ASSERT_EQ(Run({"create", "logo.png", "--formats", "32x32x32,16x16x8"}).exitCode, 0);
    const auto before = Icon("logo.ico");
    ASSERT_EQ(Run({"format", "add", "logo.ico", "--formats", "24x24x24", "--in-place"}).exitCode, 0);
    const auto after = Icon("logo.ico");
    EXPECT_EQ(after.GetCount(), 3);
    for (const auto& format : FormatsOf(before)) {
        EXPECT_EQ(after.GetIcon(FindFormat(after, format))->m_hImage,
                  before.GetIcon(FindFormat(before, format))->m_hImage);
    }
    EXPECT_EQ(Middle("logo.ico", {24, 24, 24}), 0xFF3366CCu) << "from the format with alpha";
    EXPECT_EQ(Run({"format", "add", "logo.ico", "--formats", "24x24x24", "--in-place"}).exitCode, 1);
    Put("green.png", PlainPng(8, 8, 0xFF00FF00));
    ASSERT_EQ(Run({"format", "replace", "logo.ico", "--formats", "24x24x24", "--picture", "green.png", "--in-place"})
                  .exitCode,
              0);
    EXPECT_EQ(Middle("logo.ico", {24, 24, 24}), 0xFF00FF00u);
    ASSERT_EQ(Run({"format", "remove", "logo.ico", "--formats", "24x24x24,16x16x8", "--in-place"}).exitCode, 0);
    const auto last = Run({"format", "remove", "logo.ico", "--formats", "32x32x32", "--in-place"});
    EXPECT_EQ(last.exitCode, 1);
    EXPECT_THAT(last.err, HasSubstr("last format"));
    EXPECT_EQ(Icon("logo.ico").GetCount(), 1);
}

} // namespace
} // namespace pelorin
