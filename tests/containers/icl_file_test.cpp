#include "containers/icl_file.h"
#include "containers/icon_resources.h"
#include "containers/ne_file.h"
#include "containers/pe_icons.h"
#include "containers/program_file.h"
#include "core/temp_files.h"
#include "core/user_prompt.h"
#include "formats/program_resources.h"
#include "support/icon_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::FailingUpdater;
using test::Icons;
using test::MakeIcon;
using test::Pointers;
using test::ReadBytes;
using test::SameIcon;
using test::TestFolder;

Icons ThreeIcons() {
    Icons icons;
    icons.push_back(MakeIcon("Ball", {{48, 48, 32}, {32, 32, 4}}));
    icons.push_back(MakeIcon("", {{16, 16, 1}}));
    icons.push_back(MakeIcon("Mac", {{256, 256, 8}, {32, 32, 8}}));
    icons[2]->m_nInfo = 1;
    return icons;
}

/// The icons, names and flags that a file gives back.
void ExpectSame(const Icons& wanted, const std::string& path, LibraryForm form) {
    const auto file = ReadBytes(path);
    EXPECT_EQ(FormOfLibrary(file), form);
    const auto icons = LoadIcons(FindIcons(file), {});
    ASSERT_EQ(icons.size(), wanted.size());
    for (std::size_t i = 0; i < icons.size(); ++i) EXPECT_TRUE(SameIcon(*icons[i], *wanted[i])) << i;
}

TEST(Library, BothFormsGiveBackWhatWasWritten) {
    const TestFolder folder;
    for (const auto form : {LibraryForm::Pe, LibraryForm::Ne}) {
        for (const int count : {1, 500, 5000}) {
            Icons icons;
            for (int i = 0; i < count; ++i) {
                icons.push_back(MakeIcon(i % 7 == 3 ? "" : "Icon " + std::to_string(i), {{16, 16, 4}, {16, 16, 1}}, i));
            }
            ScriptedPrompt prompt;
            ResourceUpdater updater;
            ASSERT_TRUE(SaveLibrary(folder / "many.icl", Pointers(icons), form, updater, prompt));
            ExpectSame(icons, folder / "many.icl", form);
        }
        auto icons = ThreeIcons();
        ScriptedPrompt prompt;
        ResourceUpdater updater;
        ASSERT_TRUE(SaveLibrary(folder / "three.icl", Pointers(icons), form, updater, prompt));
        ExpectSame(icons, folder / "three.icl", form);
        EXPECT_EQ(icons[0]->m_arrIcons[0]->m_nResourceId, 1);
        EXPECT_EQ(icons[2]->m_arrIcons[1]->m_nResourceId, 5);
        EXPECT_EQ(ListFolder(folder.Path()).size(), 2u) << "the temporary file is gone";
    }
}

TEST(Library, NamesAreCutTo255AndMayHoldAnything) {
    const TestFolder folder;
    const std::string names[] = {std::string(300, 'x'), "100 % %s %n", "a:b", "\xC3\xA9t\xC3\xA9",
                                 std::string(254, 'y') + "\xC3\xA9"};
    for (const auto form : {LibraryForm::Pe, LibraryForm::Ne}) {
        Icons icons;
        for (const auto& name : names) icons.push_back(MakeIcon(name, {{16, 16, 1}}));
        ScriptedPrompt prompt;
        ResourceUpdater updater;
        ASSERT_TRUE(SaveLibrary(folder / "names.icl", Pointers(icons), form, updater, prompt));
        const auto file = ReadBytes(folder / "names.icl");
        const auto found = FindIcons(file);
        ASSERT_EQ(found.groups.size(), 5u);
        EXPECT_EQ(found.groups[0].name, std::string(255, 'x'));
        for (const int i : {1, 2, 3}) EXPECT_EQ(found.groups[static_cast<std::size_t>(i)].name, names[i]);
        EXPECT_EQ(found.groups[4].name, std::string(254, 'y')) << "no half characters";
    }
}

TEST(LibraryNe, BytesOfASmallLibrary) {
    const TestFolder folder;
    auto icons = ThreeIcons();
    icons.resize(2);
    icons[0]->m_nInfo = 1;
    ASSERT_TRUE(FitsLibraryNe(Pointers(icons)));
    WriteLibraryNe(folder / "small.icl", Pointers(icons));
    const auto file = ReadBytes(folder / "small.icl");
    const auto u16 = [&](std::size_t at) { return LoadU16LE(file.data() + at); };

    EXPECT_EQ(AsText(ByteSpan(file).first(3)), "MZP");
    EXPECT_EQ(u16(12), 0xFFFF);
    EXPECT_EQ(u16(16), 0xB8);
    EXPECT_EQ(u16(24), 0x40);
    EXPECT_EQ(LoadU32LE(file.data() + 60), 0x90u);
    EXPECT_EQ(AsText(ByteSpan(file).subspan(80, 52)), "This program must be run under Microsoft Windows.\r\n$");
    const std::uint8_t header[88] = {
        'N',  'E', 5,    10, 0xB2, 0,    10,   0, 0,    0, 0,    0, 9,    0x83, 3,    0,    0,    4,
        0,    0,   0,    0,  1,    0,    0,    0, 0,    0, 3,    0, 1,    0,    0x1A, 0,    0x40, 0,
        0x58, 0,   0,    0,  0xA8, 0,    0xAA, 0, 0x4C, 1, 0,    0, 1,    0,    9,    0,    0,    0,
        2,    0,   0,    0,  0,    0,    0,    0, 0,    3, 1,    0, 0x99, 0x0F, 0x50, 0x1D, 0x99, 0x0F,
        0x0A, 0,   0x10, 0,  0x50, 0x1D, 0x10, 0, 0x0B, 0, 0x10, 3, 0x71, 0x0D, 0x10, 3};
    for (std::size_t i = 0; i < sizeof header; ++i) {
        if (i == 0x26 || i == 0x27) continue; // the names' place
        EXPECT_EQ(file[0x90 + i], header[i]) << i;
    }
    EXPECT_EQ(u16(232), 10);
    EXPECT_EQ(u16(234), 0x8003);
    EXPECT_EQ(u16(236), 3);
    const std::size_t groups = 242 + 3 * 12, names = groups + 8 + 2 * 12 + 2;
    EXPECT_EQ(u16(groups), 0x800E);
    EXPECT_EQ(u16(groups + 2), 2);
    EXPECT_EQ(u16(names - 2), 0);
    EXPECT_EQ(u16(0x90 + 0x26), names - 0x90);
    EXPECT_EQ(AsText(ByteSpan(file).subspan(names, 11)), "\3ICL\4Ball\1@");
    EXPECT_EQ(u16(names + 11), 0);

    // Saving order of the first icon: 32x32x4 (744 bytes), 48x48x32 (9,640 bytes), then its directory, then the
    // second's.
    const struct {
        std::size_t entry;
        int place, units, id;
    } entries[] = {{242, 1, 1, 1}, {254, 2, 10, 2}, {266, 13, 1, 3}, {groups + 8, 12, 1, 1}, {groups + 20, 14, 1, 2}};
    for (const auto& e : entries) {
        EXPECT_EQ(u16(e.entry), e.place);
        EXPECT_EQ(u16(e.entry + 2), e.units);
        EXPECT_EQ(u16(e.entry + 4), 0x1C30);
        EXPECT_EQ(u16(e.entry + 6), 0x8000 + e.id);
        EXPECT_EQ(LoadU32LE(file.data() + e.entry + 8), 0u);
    }
    const std::uint8_t directory[34] = {0, 0, 1, 0,  2,  0, 32, 32, 16, 1,  1, 0,    4,    0, 0xE8, 2, 0,
                                        0, 1, 0, 48, 48, 0, 1,  1,  0,  32, 0, 0xA8, 0x25, 0, 0,    2, 0};
    EXPECT_TRUE(std::equal(std::begin(directory), std::end(directory), file.begin() + 12 * 1024));
    EXPECT_EQ(file.size(), 15u * 1024);
    for (std::size_t i = 12 * 1024 + 34; i < 13 * 1024; ++i) ASSERT_EQ(file[i], 0) << "padding";
}

TEST(LibraryNe, WhatDoesNotFitIsRefusedBeforeAnythingIsWritten) {
    const TestFolder folder;
    Icons icons;
    icons.push_back(MakeIcon("Big", {{256, 256, 32}})); // 265 units of an image
    auto many = Pointers(icons);
    many.resize(1);
    std::vector<CIconGroup*> repeated(250, many[0]);
    EXPECT_FALSE(FitsLibraryNe(repeated));
    Icons small;
    small.push_back(MakeIcon("", {{16, 16, 1}}));
    EXPECT_FALSE(FitsLibraryNe(std::vector<CIconGroup*>(32768, small[0].get())));

    const Bytes old = {1, 2, 3};
    WriteFileSafely(folder / "old.icl", old);
    ScriptedPrompt prompt;
    ResourceUpdater updater;
    EXPECT_FALSE(SaveLibrary(folder / "old.icl", repeated, LibraryForm::Ne, updater, prompt));
    EXPECT_EQ(ReadBytes(folder / "old.icl"), old);
    ASSERT_EQ(prompt.Shown().size(), 1u);
    EXPECT_EQ(prompt.Shown()[0].text, "Unable to save changes to file \"" + (folder / "old.icl") + "\".");
    EXPECT_EQ(prompt.Shown()[0].icon, PromptIcon::Stop);
}

TEST(LibraryPe, AnEmptyLibraryIsTheBlankDll) {
    const TestFolder folder;
    ResourceUpdater updater;
    ASSERT_EQ(WriteLibraryPe(folder / "empty.icl", {}, updater), LibraryError::None);
    const auto blank = ExtractVnzbResource("BLANKDLL");
    ASSERT_TRUE(blank);
    EXPECT_EQ(blank->size(), 40960u);
    EXPECT_EQ(ReadBytes(folder / "empty.icl"), *blank);
    const auto image = PeImage::Parse(*blank);
    ASSERT_TRUE(image);
    ASSERT_EQ(image->Sections().size(), 4u);
    EXPECT_EQ(image->Sections()[0].name, ".text");
    EXPECT_EQ(image->Sections()[3].name, ".reloc");
    EXPECT_EQ(image->Optional(28), 0x10000000u);
    EXPECT_EQ(image->Directory(PeDirectory::Resources).address, 0u);
}

TEST(LibraryPe, NameTableAndDirectories) {
    const TestFolder folder;
    auto icons = ThreeIcons();
    ResourceUpdater updater;
    ASSERT_EQ(WriteLibraryPe(folder / "l.icl", Pointers(icons), updater), LibraryError::None);
    const auto file = ReadBytes(folder / "l.icl");
    const auto tree = ReadResourceTree(PeImage::Parse(file).value());
    const auto* names = tree.Find(kResourceLibraryNames, 1, 0);
    ASSERT_TRUE(names);
    EXPECT_EQ(AsText(names->bytes), "\3ICL\4Ball\1\3\3Mac");
    const auto* group = tree.Find(kResourceGroupIcon, 3, 0);
    ASSERT_TRUE(group);
    const std::uint8_t wanted[] = {0, 0, 1, 0,  2,  0, 0, 0, 0, 1, 1, 0,    8, 0, 0x28, 0x24, 1,
                                   0, 4, 0, 32, 32, 0, 1, 1, 0, 8, 0, 0xA8, 8, 0, 0,    5,    0};
    EXPECT_TRUE(std::equal(group->bytes.begin(), group->bytes.end(), std::begin(wanted), std::end(wanted)));
}

TEST(LibraryPe, EveryStepThatFailsHasItsNumber) {
    const TestFolder folder;
    const Bytes old = {1, 2, 3};
    const std::string path = folder / "target.icl";
    const struct {
        const char* name;
        FailingUpdater::Fault fault;
        int error;
        int discards;
    } cases[] = {
        {"begin", {.begin = true}, 3, 0},         {"first directory", {.update = 1}, 4, 0},
        {"third directory", {.update = 3}, 4, 0}, {"first image", {.update = 4}, 6, 1},
        {"names", {.update = 9}, 6, 1},           {"end", {.end = true}, 10, 0},
    };
    for (const auto& c : cases) {
        WriteFileSafely(path, old);
        auto icons = ThreeIcons();
        FailingUpdater updater(c.fault);
        ScriptedPrompt prompt;
        EXPECT_FALSE(SaveLibrary(path, Pointers(icons), LibraryForm::Pe, updater, prompt)) << c.name;
        ASSERT_EQ(prompt.Shown().size(), 1u);
        EXPECT_EQ(prompt.Shown()[0].text,
                  fmt::sprintf("Unable to save changes to file \"%s\". (error code %03d)", path, c.error));
        EXPECT_EQ(updater.Discards(), c.discards) << c.name;
        EXPECT_EQ(ReadBytes(path), old) << c.name;
        EXPECT_EQ(ListFolder(folder.Path()).size(), 1u) << c.name;
    }
    {
        auto icons = ThreeIcons();
        icons[1]->m_arrIcons[0]->m_hImage.clear();
        ResourceUpdater updater;
        EXPECT_EQ(WriteLibraryPe(path, Pointers(icons), updater), LibraryError::NoImageData);
        EXPECT_EQ(WriteLibraryPe(folder / "no/such/folder.icl", {}, updater), LibraryError::NotCopied);
        g_szTempFolder = folder / "gone/";
        EXPECT_EQ(WriteLibraryPe(path, {}, updater), LibraryError::NoTemplate);
        EXPECT_EQ(ReadBytes(path), old);
    }
}

TEST(LibraryRead, DamagedFilesGiveNoIconsOrFewer) {
    const TestFolder folder;
    auto icons = ThreeIcons();
    ResourceUpdater updater;
    ASSERT_EQ(WriteLibraryPe(folder / "a", Pointers(icons), updater), LibraryError::None);
    WriteLibraryNe(folder / "b", Pointers(icons));
    for (const char* name : {"a", "b"}) {
        const auto whole = ReadBytes(folder / name);
        const std::size_t step = whole.size() / 200;
        for (std::size_t length = 0; length < whole.size(); length += step) {
            EXPECT_LE(FindIcons(ByteSpan(whole).first(length)).groups.size(), 3u);
        }
        // Every byte of the headers in turn takes the worst values.
        for (std::size_t at = 0; at < 500; ++at) {
            for (const int value : {0, 0x7F, 0xFF}) {
                auto file = whole;
                file[at] = static_cast<std::uint8_t>(value);
                (void)LoadIcons(FindIcons(file), {});
                (void)LoadIcons(FindIcons(file, false), {});
            }
        }
    }
    const auto ne = ReadBytes(folder / "b");
    const struct {
        std::size_t at;
        std::uint8_t value;
    } refused[] = {{0x90 + 0x3F, 2}, {0x90, 'X'}, {232, 17}};
    for (const auto& r : refused) {
        auto file = ne;
        file[r.at] = r.value;
        EXPECT_TRUE(FindIcons(file).groups.empty()) << r.at;
    }
}

TEST(LibraryRead, NamesOfAnyModuleButNotThoseOfAProgram) {
    const TestFolder folder;
    const auto icons = ThreeIcons();
    WriteLibraryNe(folder / "lib", Pointers(icons));
    auto file = ReadBytes(folder / "lib");
    const auto names = 0x90u + LoadU16LE(file.data() + 0x90 + 0x26);
    ASSERT_EQ(AsText(file).substr(names, 4), "\3ICL");
    file[names + 1] = 'X';
    EXPECT_EQ(LoadIcons(FindIcons(file), {})[0]->m_strName, "Ball") << "a library of another maker";
    // The table of a program has a number behind each name.
    constexpr std::string_view kProgram("\4PROG\0\0\4Ball\1\0", 14);
    std::copy(kProgram.begin(), kProgram.end(), file.begin() + names);
    EXPECT_EQ(LoadIcons(FindIcons(file), {})[0]->m_strName, "");
}

// Sixty thousand icons that share one directory of ten thousand images.
TEST(LibraryRead, DirectoriesThatAreSharedDoNotMultiply) {
    constexpr std::uint32_t kGroups = 60'000, kShift = 4, kEnd = 0x90 + 0x58 + 2 + 8 + 12 * kGroups + 2;
    ByteWriter out;
    out.Text("MZ");
    out.Zeros(0x90 - out.Size());
    out.Text("NE");
    out.Zeros(0x56);
    out.PatchU16LE(0x3C, 0x90);
    out.PatchU16LE(0x90 + 0x24, 0x58);
    out.PatchU16LE(0x90 + 0x3E, 0x0300);
    out.U16LE(kShift);
    out.U16LE(0x8000 | kResourceGroupIcon);
    out.U16LE(kGroups);
    out.U32LE(0);
    const auto place = (kEnd >> kShift) + 1;
    for (std::uint32_t i = 0; i < kGroups; ++i) {
        out.U16LE(place);
        out.U16LE(0xFFFF);
        out.U32LE(0x80010000);
        out.U32LE(0);
    }
    out.U16LE(0);
    out.Zeros((place << kShift) - out.Size());
    GroupDirectoryEntry entry;
    entry.id = 1;
    out.Raw(WriteGroupDirectory(std::vector(10'000, entry)));
    EXPECT_TRUE(FindIcons(out.View()).groups.empty());
}

} // namespace
} // namespace pelorin
