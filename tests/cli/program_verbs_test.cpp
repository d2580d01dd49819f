#include "base/files.h"
#include "containers/exe_doc.h"
#include "containers/program_file.h"
#include "core/services.h"
#include "core/user_prompt.h"
#include "formats/png.h"
#include "support/icon_builder.h"
#include "support/pe_builder.h"
#include "support/run_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::MakeIcon;
using test::ProgramResult;
using test::ReadBytes;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ContainerVerbs : public ::testing::Test {
protected:
    [[nodiscard]] ProgramResult Run(const std::vector<std::string>& arguments) const {
        return test::RunProgram("pelorin-cli", arguments, m_folder.Path());
    }
    void PutIcon(const std::string& name, const std::vector<IconFormat>& formats, int seed = 0) const {
        ASSERT_TRUE(MakeIcon("", formats, seed)->SaveAsIcoFile(m_folder.Path(name)));
    }
    [[nodiscard]] Bytes Get(const std::string& name) const { return ReadBytes(m_folder.Path(name)); }
    [[nodiscard]] std::vector<std::string> IconNames(const std::string& file) const {
        std::vector<std::string> names;
        const auto bytes = Get(file);
        for (const auto& icon : FindIcons(bytes).groups) names.push_back(icon.name);
        return names;
    }
    /// A program without resources, with data behind the image.
    void PutProgram(const std::string& name) const {
        test::PeSpec spec;
        spec.sections.push_back({".text", test::SomeBytes(900), 0x60000020});
        spec.tail = m_tail;
        WriteFileSafely(m_folder.Path(name), test::BuildPe(spec));
    }
    test::TestFolder m_folder;
    Bytes m_tail = test::SomeBytes(3000, 4);
};

constexpr IconFormat k16{16, 16, 4}, k32{32, 32, 32};

TEST_F(ContainerVerbs, ALibraryFromItsCreationToItsIcons) {
    PutIcon("ball.ico", {k16, k32}, 1);
    PutIcon("cube.ico", {k32}, 2);
    for (const std::string form : {"pe", "ne"}) {
        const auto lib = form + ".icl";
        auto ran = Run({"library", "create", lib, "cube.ico", "ball.ico", "--form", form});
        EXPECT_EQ(ran.exitCode, 0) << ran.err;
        EXPECT_EQ(Get(lib)[LoadU16LE(Get(lib).data() + 0x3C)], form == "pe" ? 'P' : 'N');
        EXPECT_THAT(IconNames(lib), ElementsAre("Cube", "Ball"));
        EXPECT_THAT(Run({"list", lib}).out, HasSubstr("Ball  (2 formats)"));
        EXPECT_EQ(Run({"library", "create", lib, "cube.ico"}).exitCode, 1) << "it exists";

        EXPECT_EQ(Run({"library", "sort", lib, "--in-place"}).exitCode, 0);
        EXPECT_THAT(IconNames(lib), ElementsAre("Ball", "Cube"));
        EXPECT_THAT(Run({"library", "sort", lib, "1", "--in-place"}).err, HasSubstr("only one icon selected"));
        EXPECT_EQ(Run({"library", "sort", lib, "1", "--in-place", "--yes"}).exitCode, 0);
        EXPECT_EQ(Run({"library", "add", lib, "cube.ico", "--at", "1", "--in-place", "--backup"}).exitCode, 0);
        EXPECT_THAT(IconNames(lib), ElementsAre("Cube", "Ball", "Cube"));
        EXPECT_THAT(IconNames(lib + ".bak"), ElementsAre("Ball", "Cube"));
        EXPECT_EQ(Run({"library", "rename", lib, "a%s ", "1-2", "--digits", "2", "-o", "named.icl", "-f"}).exitCode, 0);
        EXPECT_THAT(IconNames("named.icl"), ElementsAre("a%s 01", "a%s 02", "Cube"));
        EXPECT_EQ(Run({"library", "remove", lib, "cube", "--in-place"}).exitCode, 0);
        EXPECT_THAT(IconNames(lib), ElementsAre("Ball"));
        EXPECT_THAT(Run({"library", "list", lib}).out, HasSubstr(lib + "  Ball  (2 formats)\n"));
        EXPECT_EQ(Run({"library", "extract", lib, "-o", form + "/"}).exitCode, 0);
        EXPECT_EQ(Get(form + "/Ball.ico"), Get("ball.ico"));
        // Single images come out on all cores, and are told in the order of the file.
        ASSERT_EQ(Run({"library", "add", lib, "cube.ico", "--in-place"}).exitCode, 0);
        ran = Run({"extract", lib, "--as", "png", "-o", form + "/"});
        const auto start = form + "/" + form;
        EXPECT_EQ(ran.out, start + "_1_16x16x4.png\n" + start + "_1_32x32x32.png\n" + start + "_2_32x32x32.png\n");
        EXPECT_EQ(DIBBitCount(ReadPng(Get(start + "_2_32x32x32.png"))), 32);
        ran = Run({"extract", lib, "--as", "png", "-o", form + "/", "--index", "1"});
        EXPECT_THAT(ran.out, HasSubstr("_1_16x16x4 (2).png")) << "what is there stays";
    }
    EXPECT_THAT(Run({"library", "remove", "pe.icl", "nobody"}).err, HasSubstr("there is no icon called \"nobody\""));
    EXPECT_EQ(Run({"library", "list", "ball.ico"}).exitCode, 0);
    EXPECT_EQ(Run({"library", "sort", "ball.ico", "--in-place"}).exitCode, 1);
}

TEST_F(ContainerVerbs, AProgramGetsChangesAndLosesIcons) {
    PutProgram("setup.exe");
    PutIcon("a.ico", {k16}, 1);
    PutIcon("b.ico", {k16, k32}, 2);
    EXPECT_THAT(Run({"program", "replace", "setup.exe", "1", "a.ico"}).err, HasSubstr("does not contains icons"));
    EXPECT_EQ(Run({"program", "add", "setup.exe", "a.ico", "b.ico", "--in-place"}).exitCode, 0);
    auto ran = Run({"program", "add", "setup.exe", "b.ico", "--name", "MAIN", "--language", "1033", "--in-place"});
    EXPECT_EQ(ran.exitCode, 0) << ran.err;
    EXPECT_THAT(ran.out, HasSubstr("behind the image kept"));
    const auto listed = Run({"program", "list", "setup.exe", "--json"}).out;
    EXPECT_THAT(listed, HasSubstr("\"kind\": \"exe\",\n    \"form\": \"pe\",\n    \"extra_bytes\": 3000"));
    EXPECT_THAT(listed, HasSubstr("\"name\": \"MAIN\",\n        \"id\": -1,\n        \"language\": 1033,"));

    ran = Run({"program", "replace", "setup.exe", "main", "a.ico", "-o", "new.exe"});
    EXPECT_EQ(ran.exitCode, 0) << ran.err;
    EXPECT_THAT(ran.out, HasSubstr("icon 1 \"MAIN\": 1 format in, 2 out"));
    EXPECT_EQ(Run({"program", "extract", "new.exe", "MAIN", "-o", "main.ico"}).exitCode, 0);
    EXPECT_EQ(Get("main.ico"), Get("a.ico"));
    EXPECT_EQ(Run({"program", "remove", "new.exe", "#1", "#2", "--in-place"}).exitCode, 0);
    EXPECT_THAT(IconNames("new.exe"), ElementsAre("MAIN"));
    EXPECT_THAT(Run({"program", "remove", "new.exe", "1", "--in-place"}).err, HasSubstr("(error code 109)"));
    EXPECT_THAT(Run({"program", "remove", "new.exe", "1", "-o", "none.exe"}).err, HasSubstr("(error code 109)"));
    EXPECT_FALSE(FileExists(m_folder.Path("none.exe")));
    EXPECT_THAT(Run({"program", "replace", "new.exe", "1", "b.ico", "--restricted"}).err,
                HasSubstr("strictly identical"));

    EXPECT_EQ(Run({"program", "copy-icons", "setup.exe", "new.exe", "--in-place"}).exitCode, 0);
    EXPECT_THAT(IconNames("new.exe"), ElementsAre("MAIN", "", ""));
    for (const char* name : {"setup.exe", "new.exe"}) {
        const auto file = Get(name);
        EXPECT_TRUE(std::equal(m_tail.rbegin(), m_tail.rend(), file.rbegin())) << name;
        EXPECT_EQ(PeImage::Parse(file).value().RawEnd() + m_tail.size(), file.size()) << name;
    }
}

TEST_F(ContainerVerbs, IconsAreTakenFromFilesOfAnyName) {
    PutProgram("p.exe");
    PutIcon("a.ico", {k16}, 1);
    PutIcon("b.ico", {k32}, 2);
    WriteFileSafely(m_folder.Path("icons.dat"), Get("a.ico"));
    WriteFileSafely(m_folder.Path("picture.png"), Get("b.ico"));
    EXPECT_EQ(Run({"program", "add", "p.exe", "icons.dat", "picture.png", "--in-place"}).exitCode, 0);
    WriteFileSafely(m_folder.Path("program.bin"), Get("p.exe"));
    EXPECT_EQ(Run({"library", "create", "l.icl", "icons.dat", "program.bin"}).exitCode, 0);
    EXPECT_THAT(IconNames("l.icl"), ElementsAre("Icons", "program 001", "program 002"));
}

TEST_F(ContainerVerbs, WhatCannotBeMeantIsRefused) {
    PutProgram("p.exe");
    PutIcon("a.ico", {k16}, 1);
    ASSERT_EQ(Run({"program", "add", "p.exe", "a.ico", "--in-place"}).exitCode, 0);
    const auto file = Get("p.exe");
    const struct {
        std::vector<std::string> arguments;
        int exitCode;
        const char* told;
    } cases[] = {
        {{"library", "rename", "p.exe", "New", "1", "--in-place"}, 1, "p.exe: this is a program"},
        {{"library", "sort", "p.exe", "-o", "p.exe", "--force"}, 1, "p.exe: this is a program"},
        {{"library", "create", "l.icl", "a.ico", "-o", "m.icl"}, 2, "without --output"},
        {{"library", "create", "/proc/x.icl", "a.ico"}, 1, "(error code 011): No such file"},
        {{"library", "create", "/proc/x.icl", "a.ico", "--form", "ne"}, 1, "\"/proc/x.icl\". (No such file"},
        {{"program", "add", "p.exe", "a.ico", "--id", "3", "--name", "x"}, 2, "exclude each other"},
        {{"program", "add", "p.exe", "a.ico", "--id", "1"}, 1, "an icon of that number or name already"},
        {{"program", "replace", "p.exe", "1", "none.ico"}, 1, "p.exe: cannot take icons from \"none.ico\": No such"},
        {{"program", "copy-icons", "none.exe", "p.exe", "--in-place"}, 1, "none.exe: No such file"},
        {{"program", "extract", "a.ico"}, 1, "a.ico: this is not a program file"},
        {{"program", "remove", "p.exe", "1", "--in-place"}, 1, "(error code 109): a program file keeps at least one"},
    };
    for (const auto& c : cases) {
        const auto ran = Run(c.arguments);
        EXPECT_EQ(ran.exitCode, c.exitCode) << c.told;
        EXPECT_THAT(ran.err, HasSubstr(c.told));
        EXPECT_EQ(Get("p.exe"), file) << c.told;
    }
    EXPECT_EQ(ListFolder(m_folder.Path()).size(), 2u) << "no file was made";
    EXPECT_EQ(Run({"library", "rename", "p.exe", "New", "1", "-o", "p.icl"}).exitCode, 0);
    EXPECT_THAT(IconNames("p.icl"), ElementsAre("New"));
    EXPECT_EQ(Run({"library", "rename", "p.icl", "Newer", "1", "--in-place"}).exitCode, 0);
}

TEST_F(ContainerVerbs, AFileWithoutIconsIsToldInALine) {
    PutProgram("none.exe");
    PutIcon("a.ico", {k16}, 1);
    for (const std::string form : {"pe", "ne"}) {
        ASSERT_EQ(Run({"library", "create", form + ".icl", "--form", form}).exitCode, 0);
        EXPECT_EQ(Run({"library", "list", form + ".icl"}).out, form + ".icl  no icons\n");
        EXPECT_EQ(Run({"list", form + ".icl"}).out, form + ".icl  no icons\n");
    }
    const std::string told = "none.exe  The specified file does not contains icons or is invalid\n";
    for (const char* verb : {"library", "program"}) EXPECT_EQ(Run({verb, "list", "none.exe"}).out, told);
    const auto listed = Run({"list", "none.exe", "a.ico"});
    EXPECT_EQ(listed.exitCode, 0);
    EXPECT_THAT(listed.out, ::testing::StartsWith(told + "a.ico  (1 format)\n"));
    EXPECT_THAT(Run({"list", "--json", "none.exe"}).out, HasSubstr("\"kind\": \"exe\",\n    \"icons\": []"));

    // A library whose icons are all beyond its end is not one without icons.
    ASSERT_EQ(Run({"library", "create", "cut.icl", "a.ico", "--form", "ne"}).exitCode, 0);
    auto file = Get("cut.icl");
    file.resize(600);
    WriteFileSafely(m_folder.Path("cut.icl"), file);
    EXPECT_THAT(Run({"library", "add", "cut.icl", "a.ico", "--in-place"}).err, HasSubstr("the library is damaged"));
    EXPECT_EQ(Get("cut.icl"), file);
}

TEST_F(ContainerVerbs, IconsOfA16BitFileAreOnlyReplacedByTheLike) {
    PutIcon("a.ico", {k16}, 1);
    PutIcon("b.ico", {k32}, 2);
    PutIcon("c.ico", {k16}, 3);
    ASSERT_EQ(Run({"library", "create", "l.icl", "a.ico", "--form", "ne"}).exitCode, 0);
    const auto file = Get("l.icl");
    const std::string only = "l.icl: In the file \"l.icl\" icons can only be replaced by others of the same formats.\n";
    EXPECT_THAT(Run({"program", "add", "l.icl", "c.ico", "--in-place"}).err, HasSubstr(only));
    EXPECT_THAT(Run({"program", "remove", "l.icl", "1", "--in-place"}).err, HasSubstr(only));
    EXPECT_THAT(Run({"program", "replace", "l.icl", "1", "b.ico", "--in-place"}).err,
                HasSubstr("strictly identical. (icon 1 \"A\": 16x16 16 colors; new: 32x32 XP (RGB/A))"));
    EXPECT_EQ(Get("l.icl"), file);
    EXPECT_EQ(Run({"program", "replace", "l.icl", "1", "c.ico", "--in-place"}).exitCode, 0);
    EXPECT_EQ(Get("l.icl").size(), file.size());
}

TEST_F(ContainerVerbs, ASignedProgramNeedsAWord) {
    PutProgram("p.exe");
    PutIcon("a.ico", {k16}, 1);
    ASSERT_EQ(Run({"program", "add", "p.exe", "a.ico", "--in-place"}).exitCode, 0);
    auto file = Get("p.exe");
    const auto image = PeImage::Parse(file).value();
    auto* entry = file.data() + image.DirectoryOffset(PeDirectory::Certificates);
    StoreU32LE(entry, static_cast<std::uint32_t>(image.RawEnd()));
    StoreU32LE(entry + 4, static_cast<std::uint32_t>(m_tail.size()));
    WriteFileSafely(m_folder.Path("p.exe"), file);
    const auto refused = Run({"program", "replace", "p.exe", "1", "a.ico", "--in-place"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, HasSubstr("--drop-signature"));
    EXPECT_THAT(Run({"program", "replace", "p.exe", "1", "a.ico", "--in-place", "--no"}).err,
                HasSubstr("and continue? (--no)"));
    EXPECT_EQ(Get("p.exe"), file);
    EXPECT_EQ(Run({"program", "replace", "p.exe", "1", "a.ico", "--in-place", "--drop-signature"}).exitCode, 0);
    EXPECT_FALSE(IsSigned(PeImage::Parse(Get("p.exe")).value()));
}

} // namespace
} // namespace pelorin
