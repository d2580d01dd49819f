#include "formats/png.h"
#include "icon/ico_file.h"
#include "support/dib_builder.h"
#include "support/ico_builder.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::BuildIco;
using test::PlainIconBlock;
using test::ProgramResult;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class IconVerbs : public ::testing::Test {
protected:
    [[nodiscard]] ProgramResult Run(const std::vector<std::string>& arguments, const std::string& prefix = {}) const {
        return test::RunProgram("pelorin-cli", arguments, m_folder.Path(), prefix);
    }
    void Put(const std::string& name, const Bytes& bytes) const { WriteFileSafely(m_folder.Path(name), bytes); }
    [[nodiscard]] Bytes Get(const std::string& name) const {
        const auto view = FileView::Open(m_folder.Path(name));
        return {view.Data().begin(), view.Data().end()};
    }
    [[nodiscard]] std::vector<std::string> Names() const { return ListFolder(m_folder.Path()); }

    test::TempFolder m_folder;
};

Bytes SampleIco() {
    Bytes png;
    EXPECT_EQ(WritePng(test::Picture32(2, {0xFF102030, 0x80FFFFFF}), {}, png), 0);
    return BuildIco({{.image = PlainIconBlock(16, 16, 32)}, {.image = png}, {.image = PlainIconBlock(32, 32, 4)}});
}

TEST_F(IconVerbs, ListAsJsonAndText) {
    Put("a \"b\"\n.ico", SampleIco());
    const auto json = Run({"list", "--json", "a \"b\"\n.ico"});
    EXPECT_EQ(json.exitCode, 0);
    EXPECT_THAT(
        json.out,
        StartsWith("[\n  {\n    \"file\": \"a \\\"b\\\"\\n.ico\",\n    \"kind\": \"ico\",\n    \"icons\": [\n      {\n"
                   "        \"name\": \"\",\n        \"formats\": [\n          {\n            \"width\": 16,\n"
                   "            \"height\": 16,\n            \"bits\": 32,\n            \"colors\": 0,\n"
                   "            \"compressed\": false,\n            \"bytes\": 1128,\n"
                   "            \"description\": \"16x16 - XP (RGB/A)\"\n          },"));
    EXPECT_THAT(json.out, HasSubstr("\"compressed\": true"));
    const auto text = Run({"list", "a \"b\"\n.ico"});
    EXPECT_EQ(text.out, "a \"b\"\\x0A.ico  (3 formats)\n"
                        "  1  16x16 - XP (RGB/A)  32-bit  1128 bytes\n"
                        "  2  2x1 - XP (RGB/A)    32-bit    74 bytes  PNG\n"
                        "  3  32x32 - 16 colors   4-bit    744 bytes\n");
}

TEST_F(IconVerbs, OneLineForEachFailureAndTheRestIsDone) {
    Put("good.ico", SampleIco());
    Put("bad.ico", BuildIco({{.image = Bytes(50)}}));
    Put("empty.ico", {});
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{"list"}, {"list", "--json"}, {"extract"}, {"resave", "-o", "out"}}) {
        auto all = arguments;
        for (const char* name : {"bad.ico", "good.ico", "empty.ico", "missing.ico"}) all.emplace_back(name);
        const auto result = Run(all);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 3) << result.err;
        for (const char* name : {"bad", "empty", "missing"})
            EXPECT_THAT(result.err, HasSubstr(std::string("pelorin-cli: ") + name + ".ico: "));
        EXPECT_THAT(result.out, HasSubstr("good"));
    }
}

TEST_F(IconVerbs, WrongUsage) {
    struct Case {
        std::vector<std::string> arguments;
        std::string err;
    };
    const Case cases[] = {
        {{"lst"}, "pelorin-cli: there is no verb \"lst\"; did you mean list?\n"},
        {{"list"}, "pelorin-cli: FILE is required"},
        {{"list", "--jsno", "x"}, "pelorin-cli: there is no option --jsno; did you mean --json?\n"},
        {{"extract", "x", "--as", "pgn"},
         "pelorin-cli: --as: \"pgn\" is none of bmp, gif, jpg, jp2, png, psd, ico, icns, rsrc, bin; did you mean "
         "png?\n"},
        {{"extract", "x", "--index", "0"}, "pelorin-cli: --index: 0 is not between 1 and "},
        {{"extract", "x", "--index", "1x"}, "pelorin-cli: --index: \"1x\" is not a whole number\n"},
        {{"extract", "x", "--format", "16x16"}, "pelorin-cli: --format: \"16x16\" is not a format; write"},
        {{"extract", "x", "--format", "16x16x15"}, "pelorin-cli: --format: \"16x16x15\" is not a format: the depth"},
        {{"extract", "x", "--all", "--index", "1"}, "pelorin-cli: --index and --all exclude each other\n"},
        {{"resave", "x", "--in-place", "-o", "y"}, "pelorin-cli: --in-place and --output exclude each other\n"},
        {{"resave", "x", "--backup"}, "pelorin-cli: --backup goes with --in-place\n"},
        {{"resave", "x", "--yes", "--no"}, "pelorin-cli: --yes and --no exclude each other\n"},
    };
    for (const auto& c : cases) {
        const auto result = Run(c.arguments);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_THAT(result.err, StartsWith(c.err));
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
        EXPECT_EQ(result.out, "");
    }
}

TEST_F(IconVerbs, FilesAreNeverReplacedUnlessAsked) {
    Put("in.ico", SampleIco());
    EXPECT_EQ(Run({"resave", "in.ico"}).exitCode, 0);
    EXPECT_THAT(Names(), ElementsAre("in (2).ico", "in.ico"));
    EXPECT_EQ(Get("in.ico"), SampleIco());
    Put("out.ico", {1, 2, 3});
    const auto refused = Run({"resave", "in.ico", "-o", "out.ico"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, HasSubstr("--force"));
    EXPECT_EQ(Get("out.ico"), (Bytes{1, 2, 3}));
    EXPECT_EQ(Run({"resave", "in.ico", "-o", "out.ico", "--dry-run", "--force"}).exitCode, 0);
    EXPECT_EQ(Get("out.ico"), (Bytes{1, 2, 3}));
    EXPECT_EQ(Run({"resave", "in.ico", "-o", "out.ico", "--force"}).exitCode, 0);
    EXPECT_EQ(Get("out.ico"), Get("in (2).ico"));
    EXPECT_EQ(Run({"resave", "in.ico", "--in-place", "--backup=.old"}).exitCode, 0);
    EXPECT_EQ(Get("in.ico"), Get("out.ico"));
    EXPECT_EQ(Get("in.ico.old"), SampleIco());
    // A second resave changes nothing, and standard output takes the same bytes.
    EXPECT_EQ(Run({"resave", "out.ico", "-o", "again.ico"}).exitCode, 0);
    EXPECT_EQ(Get("again.ico"), Get("out.ico"));
    const auto piped = Run({"resave", "out.ico", "-o", "-"});
    EXPECT_EQ(Bytes(piped.out.begin(), piped.out.end()), Get("out.ico"));
}

TEST_F(IconVerbs, ExplorerOrder) {
    Put("in.ico", SampleIco());
    ASSERT_EQ(Run({"resave", "in.ico", "-o", "a.ico"}).exitCode, 0);
    ASSERT_EQ(Run({"resave", "in.ico", "-o", "b.ico", "--explorer-order"}).exitCode, 0);
    IcoDirectory directory;
    ASSERT_TRUE(ReadIcoDirectory(Get("a.ico"), directory));
    EXPECT_THAT(std::vector<int>({directory.entries[0].width, directory.entries[1].width, directory.entries[2].width}),
                ElementsAre(32, 16, 2));
    ASSERT_TRUE(ReadIcoDirectory(Get("b.ico"), directory));
    EXPECT_THAT(std::vector<int>({directory.entries[0].width, directory.entries[1].width, directory.entries[2].width}),
                ElementsAre(32, 2, 16));
}

TEST_F(IconVerbs, Extract) {
    Put("in.ico", SampleIco());
    EXPECT_EQ(Run({"extract", "in.ico", "-o", "all"}).out,
              "all/in_16x16x32.png\nall/in_2x1x32.png\nall/in_32x32x4.png\n");
    EXPECT_EQ(test::At(ReadPng(Get("all/in_2x1x32.png")), 1, 0), 0x80FFFFFFu);
    // Two images of one format never share a file, not even where files may be replaced.
    Put("twins.ico", BuildIco({{.image = PlainIconBlock(2, 2, 1)}, {.image = PlainIconBlock(2, 2, 1)}}));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Run({"extract", "twins.ico", "--force"}).out, "twins_2x2x1.png\ntwins_2x2x1 (2).png\n");
    }
    EXPECT_EQ(Run({"extract", "in.ico", "--index", "2", "-o", "two.bmp", "--as", "bmp"}).exitCode, 0);
    EXPECT_THAT(std::string(AsText(Get("two.bmp"))), StartsWith("BM"));
    EXPECT_EQ(Run({"extract", "in.ico", "--format", "32x32x4", "--as", "ico", "-o", "part.ico"}).exitCode, 0);
    CIconGroup group;
    ASSERT_TRUE(ReadIcoGroup(Get("part.ico"), group));
    EXPECT_EQ(group.GetCount(), 1);
    // The name of the output tells what is written; what it cannot hold is composed, or lost with a warning.
    EXPECT_EQ(Run({"extract", "in.ico", "--index", "2", "-o", "three.jpg"}).exitCode, 0);
    EXPECT_THAT(std::string(AsText(Get("three.jpg"))), StartsWith("\xFF\xD8"));
    EXPECT_EQ(Run({"extract", "in.ico", "-o", "whole.ico"}).out, "whole.ico\n");
    const auto mac = Run({"extract", "in.ico", "-o", "mac.icns"});
    EXPECT_EQ(mac.exitCode, 0);
    EXPECT_THAT(mac.err, HasSubstr("these formats are lost: "));
    EXPECT_THAT(std::string(AsText(Get("mac.icns"))), StartsWith("icns"));
    EXPECT_EQ(Run({"extract", "in.ico", "--as", "icns", "--no"}).exitCode, 1);
    for (const char* wrong : {"--index=4", "--format=64x64x32"}) {
        const auto result = Run({"extract", "in.ico", wrong});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_THAT(result.err, StartsWith("pelorin-cli: in.ico: "));
    }
}

TEST_F(IconVerbs, InfoTellsWhatIsOdd) {
    auto file = BuildIco({{.image = PlainIconBlock(16, 16, 32), .bits = 8, .width = 48, .height = 16}});
    file.resize(file.size() - 4);
    Put("in.cur", file);
    const auto result = Run({"info", "in.cur"});
    EXPECT_EQ(result.exitCode, 0);
    for (const char* text :
         {"Windows Icon File (ico)", "the directory says 48x16, the image 16x16",
          "the directory says 8 bits, the image 32", "cut off", "the name says \"Windows Static Cursor File\""}) {
        EXPECT_THAT(result.out, HasSubstr(text));
    }
    // What cannot be opened is told as far as it goes, and is a failure.
    Put("bad.ico", BuildIco({{.image = Bytes(50)}}));
    const auto bad = Run({"info", "bad.ico"});
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_THAT(bad.out, HasSubstr("there is no image at its place"));
    EXPECT_THAT(bad.err, StartsWith("pelorin-cli: bad.ico: "));
}

TEST_F(IconVerbs, AnInterruptEndsWith130) {
    EXPECT_EQ(Run({"list", "-"}, "sleep 2 | timeout --preserve-status -s INT 0.3").exitCode, 130);
}

TEST_F(IconVerbs, AFullDiskLeavesTheOldFile) {
    Put("in.ico", BuildIco({{.image = PlainIconBlock(256, 256, 32)}}));
    Put("out.ico", {1, 2, 3});
    const auto result = Run({"resave", "in.ico", "-o", "out.ico", "--force"}, "ulimit -f 16;");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, StartsWith("pelorin-cli: in.ico: cannot write \"out.ico\": "));
    EXPECT_EQ(Get("out.ico"), (Bytes{1, 2, 3}));
    EXPECT_THAT(Names(), ElementsAre("in.ico", "out.ico"));
}

} // namespace
} // namespace pelorin
