#include "containers/exe_doc.h"
#include "containers/icon_container_view.h"
#include "containers/pe_icons.h"
#include "containers/program_file.h"
#include "core/services.h"
#include "core/user_prompt.h"
#include "support/icon_builder.h"
#include "support/pe_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::FailingUpdater;
using test::MakeIcon;
using test::ReadBytes;
using test::SomeBytes;
using test::TestFolder;

const Bytes kManifest = SomeBytes(200, 3);

/// Puts icons into a tree by hand: what a linker would have made.
class TreeBuilder {
public:
    void Image(int id, int language, const IconFormat& format, int seed = 0) {
        auto icon = MakeIcon("", {format}, seed);
        m_bytes.push_back(icon->GetIcon(0)->m_hImage);
        m_tree.Set(kResourceIcon, static_cast<std::uint16_t>(id), static_cast<std::uint16_t>(language), m_bytes.back());
    }
    void Group(const ResourceKey& key, int language, const std::vector<std::pair<int, IconFormat>>& images) {
        std::vector<GroupDirectoryEntry> entries;
        for (const auto& [id, format] : images) {
            GroupDirectoryEntry entry;
            entry.bits = static_cast<std::uint16_t>(format.bits);
            entry.bytes = 1;
            entry.id = static_cast<std::uint16_t>(id);
            entries.push_back(entry);
        }
        m_bytes.push_back(WriteGroupDirectory(entries));
        m_tree.Set(kResourceGroupIcon, key, static_cast<std::uint16_t>(language), m_bytes.back());
    }
    [[nodiscard]] Bytes File(const Bytes& tail = {}) {
        m_tree.Set(24, 1, 0, kManifest);
        test::PeSpec spec;
        spec.is64Bit = true;
        spec.sections.push_back({".text", SomeBytes(300), 0x60000020});
        test::AddResources(spec, m_tree);
        spec.sections.push_back({".reloc", Bytes(12), 0x42000040});
        spec.tail = tail;
        return test::BuildPe(spec);
    }

private:
    ResourceTree m_tree;
    std::list<Bytes> m_bytes;
};

constexpr IconFormat k16{16, 16, 4}, k32{32, 32, 8}, k48{48, 48, 32};

/// Two icons: number 7 with images 1, 2, 4 (4 in two languages), and "MAIN" with image 5. Image 9 belongs to nobody.
TreeBuilder SampleIcons() {
    TreeBuilder builder;
    builder.Image(1, 1033, k16);
    builder.Image(2, 1033, k32);
    builder.Image(4, 1033, k48);
    builder.Image(4, 1031, k48, 1);
    builder.Image(5, 1033, k32, 2);
    builder.Image(9, 1033, k16);
    builder.Group(7, 1033, {{1, k16}, {2, k32}, {4, k48}});
    builder.Group(ResourceKey(u"MAIN"), 1031, {{5, k32}});
    return builder;
}

/// A document on a file in a folder of its own.
struct Opened {
    explicit Opened(const Bytes& file, const std::string& name = "prog.exe") : path(folder / name) {
        services.prompt = &prompt;
        WriteFileSafely(path, file);
        opened = document.OnOpenDocument(path);
        document.SetPathName(path, false);
    }
    [[nodiscard]] ResourceTree Tree() {
        now = ReadBytes(path);
        return ReadResourceTree(PeImage::Parse(now).value());
    }
    [[nodiscard]] std::vector<int> Ids(std::uint16_t type) {
        std::vector<int> ids;
        const auto tree = Tree();
        if (const auto* found = tree.Find(type)) {
            for (const auto& name : found->names) ids.push_back(name.key.named ? -1 : name.key.id);
        }
        return ids;
    }
    TestFolder folder;
    ScriptedPrompt prompt;
    Services services;
    CFileExeDoc document{services};
    std::string path;
    Bytes now;
    bool opened = false;
};

TEST(ExeDoc, ReadsGroupsNamesAndLanguages) {
    Opened o(SampleIcons().File());
    ASSERT_TRUE(o.opened);
    EXPECT_EQ(o.document.GetMode(), ProgramMode::Full);
    ASSERT_EQ(o.document.GetCount(), 2);
    const auto& named = *o.document.GetIcon(0);
    EXPECT_EQ(named.m_strName, "MAIN");
    EXPECT_EQ(named.m_nResourceId, -1);
    EXPECT_EQ(named.m_nLanguage, 1031);
    const auto& numbered = *o.document.GetIcon(1);
    EXPECT_EQ(numbered.m_strName, "prog 002");
    EXPECT_EQ(numbered.m_nResourceId, 7);
    EXPECT_EQ(numbered.GetCount(), 4) << "two languages of one image are two images";
    EXPECT_EQ(o.document.CellDescription(1), "(Icon 2 in Program File prog.exe)");
}

TEST(ExeDoc, AGroupWithAnEmptyNameKeepsIt) {
    TreeBuilder builder;
    builder.Image(1, 0, k16);
    builder.Group(ResourceKey(u""), 0, {{1, k16}});
    Opened o(builder.File());
    ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("", {k32})));
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    const auto tree = o.Tree();
    EXPECT_EQ(tree.Find(kResourceGroupIcon)->names.size(), 1u);
    EXPECT_TRUE(tree.Find(kResourceGroupIcon, ResourceKey(u""), 0));
    EXPECT_EQ(o.document.ExportName(0), "prog 001");
}

TEST(ExeDoc, AFileWithoutIconsIsNotOpened) {
    TreeBuilder none;
    for (const auto& file : {none.File(), Bytes{'M', 'Z'}, Bytes{}}) {
        Opened o(file);
        EXPECT_FALSE(o.opened);
        ASSERT_EQ(o.prompt.Shown().size(), 1u);
        EXPECT_EQ(o.prompt.Shown()[0].text, "The specified file does not contains icons or is invalid");
        EXPECT_EQ(o.prompt.Shown()[0].icon, PromptIcon::Stop);
    }
}

TEST(ExeDoc, ReplacingTakesFreeNumbersAndRemovesOrphans) {
    Opened o(SampleIcons().File(), "prog.exe");
    ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("other", {k16, k32, {64, 64, 32}}, 5)));
    EXPECT_TRUE(o.document.IsModified());
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    EXPECT_FALSE(o.document.IsModified());
    // 5 and 9 went; 1, 2 and 4 are in use.
    EXPECT_EQ(o.Ids(kResourceIcon), (std::vector<int>{1, 2, 3, 4, 5, 6}));
    const auto tree = o.Tree();
    EXPECT_TRUE(tree.Find(kResourceIcon, 3, 1031)) << "new images take the language of the group";
    EXPECT_TRUE(tree.Find(kResourceGroupIcon, ResourceKey(u"MAIN"), 1031));
    const auto* manifest = tree.Find(24, 1, 0);
    ASSERT_TRUE(manifest);
    EXPECT_TRUE(std::equal(manifest->bytes.begin(), manifest->bytes.end(), kManifest.begin(), kManifest.end()));

    // The document goes on with what it wrote.
    ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("", {k16})));
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    EXPECT_EQ(o.Ids(kResourceIcon), (std::vector<int>{1, 2, 3, 4}));
    const auto again = LoadIcons(FindIcons(o.now), "prog");
    ASSERT_EQ(again.size(), 2u);
    EXPECT_EQ(again[0]->m_strName, "MAIN");
    EXPECT_EQ(again[0]->GetCount(), 1);
    EXPECT_EQ(again[1]->GetCount(), 4);
}

// Names are any 16-bit units; text in between would make two of them one.
TEST(ExeDoc, ANameThatIsNoTextStaysUnitForUnit) {
    const std::u16string first = u"A\xD800", second = u"A\xDC00";
    TreeBuilder builder;
    builder.Image(1, 0, k16);
    builder.Image(2, 0, k32);
    builder.Group(ResourceKey(first), 0, {{1, k16}});
    builder.Group(ResourceKey(second), 0, {{2, k32}});
    Opened o(builder.File());
    ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("", {k48})));
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    ASSERT_TRUE(o.document.OnOpenDocument(o.path));
    ASSERT_EQ(o.document.GetCount(), 2);
    EXPECT_EQ(o.document.GetIcon(0)->GetIcon(0)->m_nWidth, 48);
    EXPECT_EQ(o.document.GetIcon(0)->m_strName, "A\uFFFD");
    EXPECT_EQ(o.document.FindGroup(ResourceKey(std::u16string(u"a\xDC00"))), 1) << "in whatever case";
    ASSERT_TRUE(o.document.RemoveIcons({1}));
    ASSERT_TRUE(o.document.AddIcon(*MakeIcon("", {k16}), ResourceKey(std::u16string(u"\u00E9\xD800")), 0));
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    const auto tree = o.Tree();
    EXPECT_EQ(tree.Find(kResourceGroupIcon)->names.size(), 2u);
    EXPECT_TRUE(tree.Find(kResourceGroupIcon, ResourceKey(first), 0));
    EXPECT_TRUE(tree.Find(kResourceGroupIcon, ResourceKey(std::u16string(u"\u00C9\xD800")), 0)) << "capitals";
}

// Packers leave images and groups to the program that unpacks itself; they are none of ours, and not to be lost.
TEST(ExeDoc, ImagesAndGroupsThatTheFileDoesNotHoldStay) {
    auto builder = SampleIcons();
    builder.Image(6, 0, k16);
    builder.Group(1, 0, {{6, k16}});
    auto file = builder.File();
    const auto image = PeImage::Parse(file).value();
    const auto& section = image.Sections()[1];
    const auto tree = ReadResourceTree(image);
    StoreU32LE(file.data() + image.SectionTableOffset() + 8, 0x1000);
    for (const auto& [type, id] : {std::pair(kResourceIcon, 6), {kResourceIcon, 9}, {kResourceGroupIcon, 1}}) {
        const auto& data = tree.Find(type)->Find(static_cast<std::uint16_t>(id))->languages.front().bytes;
        const auto rva =
            static_cast<std::uint32_t>(data.data() - file.data()) - section.rawOffset + section.virtualAddress;
        auto* entry = file.data() + section.rawOffset;
        while (LoadU32LE(entry) != rva) entry += 4;
        StoreU32LE(entry, image.Sections()[0].virtualAddress + 0x400);
    }
    Opened o(file);
    ASSERT_EQ(o.document.GetCount(), 2);
    EXPECT_EQ(o.document.FreeGroupId(), 2);
    ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("", {k16, k48})));
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    EXPECT_EQ(o.Ids(kResourceIcon), (std::vector<int>{1, 2, 3, 4, 5, 6, 9}));
    EXPECT_EQ(o.Ids(kResourceGroupIcon), (std::vector<int>{-1, 1, 7}));
}

// A library that was saved as a DLL is a program when it is opened; its names go by the order of the icons.
TEST(ExeDoc, NamesOfALibraryFollowTheirIcons) {
    const TestFolder folder;
    test::Icons icons;
    for (const char* name : {"one", "", "three", "four"}) icons.push_back(MakeIcon(name, {k16}));
    ResourceUpdater updater;
    ASSERT_EQ(WriteLibraryPe(folder / "lib", test::Pointers(icons), updater), LibraryError::None);
    Opened o(ReadBytes(folder / "lib"), "lib.dll");
    const auto names = [&] {
        std::vector<std::string> found;
        for (const auto& icon : FindIcons(ReadBytes(o.path)).groups) found.push_back(icon.name);
        return found;
    };
    ASSERT_TRUE(o.document.ReplaceIcon(3, *MakeIcon("", {k32})));
    ASSERT_TRUE(o.document.RemoveIcons({0}));
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    EXPECT_EQ(names(), (std::vector<std::string>{"", "three", "four"}));
    ASSERT_TRUE(o.document.RemoveIcons({1}));
    ASSERT_TRUE(o.document.AddIcon(*MakeIcon("x", {k16}), 1, 0));
    ASSERT_TRUE(o.document.AddIcon(*MakeIcon("x", {k16}), ResourceKey(u"NAMED"), 0));
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    EXPECT_EQ(names(), (std::vector<std::string>{"NAMED", "", "", "four"}));
}

TEST(ExeDoc, AnEditedIconKeepsTheNumbersOfItsFormats) {
    Opened o(SampleIcons().File());
    // One format was removed in the editor, one added: the freed number is taken again.
    ASSERT_TRUE(o.document.UpdateIcon(1, *MakeIcon("", {k16, k48, {64, 64, 8}})));
    EXPECT_FALSE(o.document.UpdateIcon(2, *MakeIcon("", {k16}))) << "no such cell";
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    EXPECT_EQ(o.Ids(kResourceIcon), (std::vector<int>{1, 2, 4, 5}));
    const auto icons = LoadIcons(FindIcons(o.now), {});
    ASSERT_EQ(icons.size(), 2u);
    EXPECT_EQ(icons[1]->GetCount(), 4) << "image 4 is still there in its other language";
}

TEST(ExeDoc, RemovingAndAdding) {
    Opened o(SampleIcons().File());
    EXPECT_EQ(o.document.FreeGroupId(), 1);
    ASSERT_TRUE(o.document.RemoveIcons({1}));
    ASSERT_TRUE(o.document.AddIcon(*MakeIcon("", {k48}), GroupKey(o.document.FreeGroupId(), {}), 0));
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    EXPECT_EQ(o.Ids(kResourceGroupIcon), (std::vector<int>{-1, 1}));
    EXPECT_EQ(o.Ids(kResourceIcon), (std::vector<int>{1, 5}));
    const auto before = o.now;

    ASSERT_TRUE(o.document.RemoveIcons({0, 1}));
    EXPECT_FALSE(o.document.OnSaveDocument(o.path)) << "not the last one";
    EXPECT_EQ(o.prompt.Shown().back().text, "Unable to save changes to file \"" + o.path + "\". (error code 109)");
    EXPECT_EQ(ReadBytes(o.path), before);
}

TEST(ExeDoc, DataBehindTheImageIsKeptOnceInBothModes) {
    const auto tail = SomeBytes(5001, 8);
    for (const bool full : {false, true}) {
        Opened o(SampleIcons().File(tail));
        ASSERT_EQ(o.document.GetMode(), ProgramMode::Restricted);
        EXPECT_FALSE(o.document.RemoveIcons({0}));
        o.prompt.Answer(full ? PromptAnswer::Yes : PromptAnswer::No);
        o.document.ShowModeNotice();
        o.document.ShowModeNotice();
        ASSERT_EQ(o.prompt.Shown().size(), 1u) << "asked once";
        EXPECT_EQ(o.prompt.Shown()[0].title, "Program File with Extra Data");
        EXPECT_EQ(o.document.GetMode(), full ? ProgramMode::Full : ProgramMode::Restricted);

        const auto other = MakeIcon("", {k32, {128, 128, 32}});
        EXPECT_EQ(o.document.ReplaceIcon(0, *other), full);
        if (!full) {
            EXPECT_EQ(o.prompt.Shown().back().number, 55994);
            ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("", {k32}, 9)));
        }
        ASSERT_TRUE(o.document.OnSaveDocument(o.path));
        const auto tree = o.Tree();
        const auto image = PeImage::Parse(o.now).value();
        EXPECT_EQ(image.RawEnd() + tail.size(), o.now.size());
        EXPECT_TRUE(std::equal(tail.rbegin(), tail.rend(), o.now.rbegin()));
    }
}

TEST(ExeDoc, EveryStepThatFailsHasItsNumberAndLeavesTheFile) {
    const struct {
        const char* name;
        FailingUpdater::Fault fault;
        const char* suffix;
        int discards;
    } cases[] = {
        {"begin", {.begin = true}, " (error code 103)", 0},
        {"orphan", {.update = 1}, " (error code 106)", 1},
        {"directory", {.update = 3}, " (error code 104)", 0},
        {"image", {.update = 4}, " (error code 106)", 1},
        {"end", {.end = true}, "\nPlease try to use the command \"Save As\" specifying another filename.", 0},
    };
    const auto file = SampleIcons().File();
    for (const auto& c : cases) {
        Opened o(file);
        FailingUpdater updater(c.fault);
        o.document.m_pUpdater = &updater;
        ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("", {k16})));
        EXPECT_FALSE(o.document.OnSaveDocument(o.path)) << c.name;
        EXPECT_EQ(o.prompt.Shown().back().text, "Unable to save changes to file \"" + o.path + "\"." + c.suffix)
            << c.name;
        EXPECT_EQ(updater.Discards(), c.discards) << c.name;
        EXPECT_EQ(ReadBytes(o.path), file) << c.name;
        EXPECT_TRUE(o.document.IsModified());

        // The next try starts from where the file is.
        o.document.m_pUpdater = nullptr;
        ASSERT_TRUE(o.document.OnSaveDocument(o.path)) << c.name;
        EXPECT_EQ(o.Ids(kResourceIcon), (std::vector<int>{1, 2, 3, 4})) << c.name;
    }
    Opened o(file);
    EXPECT_FALSE(o.document.OnSaveDocument("/proc/no.exe"));
    EXPECT_EQ(o.prompt.Shown().back().text, "Unable to save changes to file \"/proc/no.exe\". (error code 113)");
    ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("", {k16})));
    o.document.GetIcon(0)->GetIcon(0)->m_hImage.clear();
    EXPECT_FALSE(o.document.OnSaveDocument(o.path));
    EXPECT_EQ(o.prompt.Shown().back().text, "Unable to save changes to file \"" + o.path + "\". (error code 105)");
}

TEST(ExeDoc, SaveAsLeavesTheOldFileAndWarnsOnlyOverItself) {
    const auto file = SampleIcons().File();
    Opened o(file);
    bool warn = true;
    o.document.m_pWarnOverwrite = &warn;
    ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("", {k16})));
    EXPECT_FALSE(o.document.OnSaveDocument(o.path)) << "the scripted answer is No";
    EXPECT_EQ(ReadBytes(o.path), file);
    EXPECT_TRUE(warn);
    o.prompt.SetChecks();
    EXPECT_FALSE(o.document.OnSaveDocument(o.path));
    EXPECT_FALSE(warn) << "the check counts whatever is answered";
    warn = true;
    const auto other = o.folder / "copy.exe";
    const auto asked = o.prompt.Shown().size();
    ASSERT_TRUE(o.document.OnSaveDocument(other));
    EXPECT_EQ(o.prompt.Shown().size(), asked);
    EXPECT_EQ(o.document.GetPathName(), other);
    EXPECT_EQ(ReadBytes(o.path), file);
    EXPECT_EQ(LoadIcons(FindIcons(ReadBytes(other)), {})[0]->GetCount(), 1);
}

TEST(ExeDoc, AFailedSaveOverAnotherFileLeavesThatFileWhole) {
    const auto file = SampleIcons().File();
    const struct {
        FailingUpdater::Fault fault;
        const char* suffix;
    } cases[] = {
        {{}, nullptr},
        {{.begin = true}, " (error code 103)"},
        {{.end = true}, "\nPlease try to use the command \"Save As\" specifying another filename."},
        {{.write = true}, " (error code 113)"},
    };
    for (const auto& c : cases) {
        Opened o(file);
        FailingUpdater updater(c.fault);
        o.document.m_pUpdater = &updater;
        const auto other = o.folder / "other.exe", fresh = o.folder / "new.exe";
        WriteFileSafely(other, AsBytes("precious"));
        ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("", {k16})));
        EXPECT_EQ(o.document.OnSaveDocument(other), !c.suffix);
        EXPECT_EQ(ReadBytes(o.path), file);
        EXPECT_EQ(AsText(ReadBytes(other)) == "precious", c.suffix != nullptr);
        EXPECT_EQ(ListFolder(o.folder.Path()).size(), 2u) << "nothing else is left";
        if (c.suffix) {
            EXPECT_EQ(o.prompt.Shown().back().text, "Unable to save changes to file \"" + other + "\"." + c.suffix);
            EXPECT_FALSE(o.document.OnSaveDocument(fresh));
            EXPECT_EQ(ReadBytes(fresh), file) << "a new file stays as a copy";
            continue;
        }
        EXPECT_EQ(LoadIcons(FindIcons(ReadBytes(other)), {})[0]->GetCount(), 1);
        EXPECT_EQ(o.document.GetPathName(), other);
    }
}

TEST(ExeDoc, ASignedFileIsAskedAboutFirst) {
    auto file = SampleIcons().File(SomeBytes(512, 4));
    const auto image = PeImage::Parse(file).value();
    auto* entry = file.data() + image.DirectoryOffset(PeDirectory::Certificates);
    StoreU32LE(entry, static_cast<std::uint32_t>(image.RawEnd()));
    StoreU32LE(entry + 4, 512);
    for (const bool agree : {false, true}) {
        Opened o(file);
        EXPECT_EQ(o.document.GetMode(), ProgramMode::Restricted) << "certificates count as data behind the image";
        ASSERT_TRUE(o.document.ReplaceIcon(0, *MakeIcon("", {k32})));
        o.prompt.Answer(agree ? PromptAnswer::Yes : PromptAnswer::No);
        EXPECT_EQ(o.document.OnSaveDocument(o.path), agree);
        EXPECT_EQ(o.prompt.Shown().back().title, "Signed Program File");
        const auto now = ReadBytes(o.path);
        const auto after = PeImage::Parse(now).value();
        EXPECT_EQ(IsSigned(after), !agree);
        EXPECT_EQ(now.size(), agree ? after.RawEnd() : file.size());
        EXPECT_EQ(o.document.GetExtraBytes(), agree ? 0u : 512u) << "a signature that went is not told as kept";
    }
}

TEST(ExeDoc, WithoutUpdateOnlyTheSameFormatsGoIn) {
    TestFolder folder;
    test::Icons icons;
    icons.push_back(MakeIcon("", {k16, k32}));
    icons.push_back(MakeIcon("", {k48}));
    WriteLibraryNe(folder / "lib", test::Pointers(icons));
    ResourceUpdater updater;
    ASSERT_EQ(WriteLibraryPe(folder / "pe", test::Pointers(icons), updater), LibraryError::None);
    for (const char* name : {"lib", "pe"}) {
        const auto file = ReadBytes(folder / name);
        Opened o(file);
        o.document.m_bCanUpdate = false;
        ASSERT_TRUE(o.document.OnOpenDocument(o.path));
        EXPECT_EQ(o.document.GetMode(), name[0] == 'l' ? ProgramMode::NeFile : ProgramMode::PeWithoutUpdate);
        EXPECT_FALSE(o.document.RemoveIcons({0}));
        EXPECT_FALSE(o.document.ReplaceIcon(0, *MakeIcon("", {k16})));
        EXPECT_EQ(o.prompt.Shown().back().number, 55994);
        const auto fresh = MakeIcon("", {k32, k16}, 77);
        ASSERT_TRUE(o.document.ReplaceIcon(0, *fresh));
        ASSERT_TRUE(o.document.OnSaveDocument(o.path));
        const auto now = ReadBytes(o.path);
        ASSERT_EQ(now.size(), file.size());
        const auto after = LoadIcons(FindIcons(now, false), {});
        ASSERT_EQ(after.size(), 2u);
        EXPECT_EQ(after[0]->GetIcon(0)->m_hImage, fresh->GetIcon(0)->m_hImage);
        EXPECT_EQ(after[0]->GetIcon(1)->m_hImage, fresh->GetIcon(1)->m_hImage);
        EXPECT_EQ(after[1]->GetIcon(0)->m_hImage, icons[1]->GetIcon(0)->m_hImage);
    }
}

TEST(ExeDoc, PositionsOfTheSimplerReaderCountFromTheFirstImage) {
    TreeBuilder builder;
    for (const int id : {5, 6, 8}) builder.Image(id, 0, k16, id);
    builder.Group(1, 0, {{5, k16}, {7, k16}});
    const auto icons = LoadIcons(FindIcons(builder.File(), false), {});
    ASSERT_EQ(icons.size(), 1u);
    ASSERT_EQ(icons[0]->GetCount(), 2);
    EXPECT_EQ(icons[0]->GetIcon(1)->m_hImage, MakeIcon("", {k16}, 8)->GetIcon(0)->m_hImage) << "the third image";
    EXPECT_EQ(LoadIcons(FindIcons(builder.File()), {})[0]->GetCount(), 1) << "by number there is no 7";

    // A directory of 50 images and more is passed over, by what it says of itself.
    auto file = builder.File();
    for (const auto& [count, groups] : {std::pair{49, 1u}, {50, 0u}, {0xFFFF, 0u}}) {
        const auto tree = ReadResourceTree(PeImage::Parse(file).value());
        const auto at = tree.Find(kResourceGroupIcon, 1, 0)->bytes.data() - file.data();
        StoreU16LE(file.data() + at + 4, static_cast<std::uint16_t>(count));
        EXPECT_EQ(FindIcons(file, false).groups.size(), groups) << count;
    }
}

TEST(ExeDoc, ACompressedImageNeedsItsSizeInTheDirectory) {
    CVnIcon icon;
    ASSERT_TRUE(icon.Create(256, 256, 0, true));
    StoreU32LE(icon.m_hImage.data(), kDibHeaderSize);
    StoreU32LE(icon.m_hImage.data() + 4, 256);
    StoreU32LE(icon.m_hImage.data() + 8, 512);
    StoreU16LE(icon.m_hImage.data() + 14, 32);
    const auto png = icon.WriteCompressed();
    for (const bool stated : {true, false}) {
        test::PeSpec spec;
        ResourceTree tree;
        GroupDirectoryEntry entry;
        entry.bits = 32;
        entry.bytes = stated ? static_cast<std::uint32_t>(png.size()) : 0;
        entry.id = 1;
        const auto directory = WriteGroupDirectory({&entry, 1});
        tree.Set(kResourceIcon, 1, 0, png);
        tree.Set(kResourceGroupIcon, 1, 0, directory);
        test::AddResources(spec, tree);
        EXPECT_EQ(FindIcons(test::BuildPe(spec)).groups.size(), stated ? 1u : 0u);
    }
}

TEST(ExeDoc, ADamagedImageStaysInTheFile) {
    CVnIcon icon;
    ASSERT_TRUE(icon.ReadFromMemory(MakeIcon("", {{256, 256, 32}})->GetIcon(0)->m_hImage, 0, 0));
    auto png = icon.WriteCompressed();
    std::fill(png.begin() + 60, png.end() - 20, std::uint8_t{0});
    const auto block = MakeIcon("", {k16})->GetIcon(0)->m_hImage;
    std::vector<GroupDirectoryEntry> entries(2);
    for (std::uint16_t i = 0; i < 2; ++i) {
        entries[i].id = static_cast<std::uint16_t>(i + 1);
        entries[i].bytes = static_cast<std::uint32_t>(png.size());
        entries[i].bits = 32;
    }
    const auto directory = WriteGroupDirectory(entries);
    ResourceTree tree;
    tree.Set(kResourceIcon, 1, 0, block);
    tree.Set(kResourceIcon, 2, 0, png);
    tree.Set(kResourceIcon, 3, 0, block);
    tree.Set(kResourceGroupIcon, 1, 0, directory);
    test::PeSpec spec;
    test::AddResources(spec, tree);
    Opened o(test::BuildPe(spec));
    ASSERT_EQ(o.document.GetCount(), 1);
    ASSERT_EQ(o.document.GetIcon(0)->GetCount(), 1);
    ASSERT_TRUE(o.document.AddIcon(*MakeIcon("", {k48}), 2, 0));
    ASSERT_TRUE(o.document.OnSaveDocument(o.path));
    EXPECT_EQ(o.Ids(kResourceIcon), (std::vector<int>{1, 2, 3})) << "3 was free, 2 was not";
    EXPECT_EQ(o.Tree().Find(kResourceIcon, 2, 0)->bytes.size(), png.size());
}

// One image in very many languages, none of which is an image, and a directory that names it again and again.
TEST(ExeDoc, DirectoriesThatShareTheirImagesDoNotMultiply) {
    ResourceTree tree;
    const Bytes noImage(8);
    for (int language = 0; language < 20'000; ++language)
        tree.Set(kResourceIcon, 1, static_cast<std::uint16_t>(language), noImage);
    GroupDirectoryEntry entry;
    entry.id = 1;
    const auto directory = WriteGroupDirectory(std::vector(60'000, entry));
    tree.Set(kResourceGroupIcon, 1, 0, directory);
    test::PeSpec spec;
    test::AddResources(spec, tree);
    const auto found = FindIcons(test::BuildPe(spec));
    EXPECT_FALSE(found.complete);
    EXPECT_LT(found.unreadIds.size(), 10'000'000u);
}

TEST(ExeView, ReplaceTakesTheFirstIconOfAFile) {
    Opened o(SampleIcons().File());
    CFileExeView view(o.document);
    const auto ico = o.folder / "new.ico";
    ASSERT_TRUE(MakeIcon("", {k48}, 3)->SaveAsIcoFile(ico));
    EXPECT_FALSE(view.Replace(ico)) << "nothing is selected";
    view.Select({1});
    EXPECT_FALSE(view.Replace(o.folder / "none.ico"));
    EXPECT_EQ(o.prompt.Shown().back().text, "The specified file does not contains icons or is invalid");
    ASSERT_TRUE(view.Replace(ico));
    EXPECT_EQ(o.document.GetIcon(1)->m_strName, "prog 002");
    EXPECT_EQ(o.document.GetIcon(1)->m_nResourceId, 7);
    EXPECT_EQ(o.document.GetIcon(1)->GetIcon(0)->m_nResourceId, -1);
    view.SelectAll();
    EXPECT_EQ(view.ExportTo(o.folder.Path(), ExportAs::WindowsIcon), 2);
    EXPECT_TRUE(FileExists(o.folder / "MAIN.ico"));
    EXPECT_TRUE(FileExists(o.folder / "prog 002.ico"));
}

} // namespace
} // namespace pelorin
