#include "containers/resource_update.h"
#include "support/pe_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::AddressOf;
using test::BuildPe;
using test::PeSpec;
using test::PlaceOf;
using test::SomeBytes;

const Bytes kManifest = SomeBytes(300, 5), kVersion = SomeBytes(77, 6), kText = SomeBytes(13, 7);

ResourceTree SampleTree() {
    ResourceTree tree;
    tree.Set(24, 1, 1033, kManifest);
    tree.Set(16, 1, 1031, kVersion);
    tree.Set(16, 1, 1033, kText);
    tree.Set(ResourceKey(u"TYPELIB"), ResourceKey(u"Two"), 0, kText);
    tree.Set(ResourceKey(u"TYPELIB"), ResourceKey(u"ONE"), 0, kVersion);
    return tree;
}

/// .text, .rsrc, and with `behind` a .reloc that holds a block for .text.
PeSpec SampleSpec(bool is64Bit, bool behind, std::uint32_t unit = 0, std::uint32_t sizeOfHeaders = 0x400) {
    PeSpec spec;
    spec.is64Bit = is64Bit;
    spec.sizeOfHeaders = sizeOfHeaders;
    if (unit != 0) spec.fileAlignment = spec.sectionAlignment = unit;
    spec.sections.push_back({".text", SomeBytes(700), 0x60000020});
    test::AddResources(spec, SampleTree());
    if (behind) {
        ByteWriter relocations;
        relocations.U32LE(AddressOf(spec, 0));
        relocations.U32LE(16);
        relocations.Zeros(8);
        spec.directories.push_back({PeDirectory::Relocations, AddressOf(spec, 2), 16});
        spec.sections.push_back({".reloc", relocations.Take(), 0x42000040});
    }
    return spec;
}

Bytes Join(const FileSplice& splice) {
    Bytes out;
    for (const auto piece : splice.Pieces()) out.insert(out.end(), piece.begin(), piece.end());
    return out;
}

struct Changed {
    ResourceChange result = ResourceChange::NotAnImage;
    Bytes file;
    [[nodiscard]] PeImage Image() const { return PeImage::Parse(file).value(); }
};

/// The file with one more resource of so many bytes.
Changed AddOne(const Bytes& file, const Bytes& added, bool dropSignature = false) {
    Changed changed;
    const auto image = PeImage::Parse(file);
    if (!image) return changed;
    auto tree = ReadResourceTree(*image);
    tree.Sort();
    tree.Set(kResourceIcon, 9, 0, added);
    FileSplice splice(file);
    changed.result = ReplaceResources(*image, tree, dropSignature, splice);
    changed.file = Join(splice);
    return changed;
}

Bytes Section(const PeImage& image, std::string_view name) {
    for (const auto& section : image.Sections()) {
        if (section.name != name) continue;
        const auto bytes = image.File().subspan(section.rawOffset, section.rawSize);
        return {bytes.begin(), bytes.end()};
    }
    return {};
}

void ExpectSampleTree(const ResourceTree& tree) {
    const auto is = [&](const ResourceKey& type, const ResourceKey& name, std::uint16_t language, const Bytes& bytes) {
        const auto* data = tree.Find(type, name, language);
        return data && std::equal(data->bytes.begin(), data->bytes.end(), bytes.begin(), bytes.end());
    };
    EXPECT_TRUE(is(24, 1, 1033, kManifest));
    EXPECT_TRUE(is(16, 1, 1031, kVersion));
    EXPECT_TRUE(is(16, 1, 1033, kText));
    EXPECT_TRUE(is(ResourceKey(u"TYPELIB"), ResourceKey(u"Two"), 0, kText));
    EXPECT_TRUE(is(ResourceKey(u"TYPELIB"), ResourceKey(u"ONE"), 0, kVersion));
}

/// What must hold for every changed file, whatever was done to it.
void ExpectSound(const PeImage& image) {
    std::uint64_t next = 0;
    for (const auto& section : image.Sections()) {
        EXPECT_TRUE(next == 0 || section.virtualAddress == next) << section.name << ": loaders want no gaps";
        next = test::AlignedTo(section.Memory().End(), image.SectionAlignment());
        EXPECT_EQ(section.rawOffset % image.FileAlignment(), 0u) << section.name;
    }
    EXPECT_EQ(image.Optional(56), next) << "size of the image";
    Bytes copy(image.File().begin(), image.File().end());
    StoreU32LE(copy.data() + image.OptionalOffset() + 64, 0);
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < copy.size(); i += 2) {
        sum += copy[i] + (i + 1 < copy.size() ? copy[i + 1] * 256u : 0u);
        sum = (sum & 0xFFFF) + (sum >> 16);
    }
    EXPECT_EQ(image.Optional(64), sum + copy.size()) << "checksum";
}

TEST(PeChecksum, DoesNotCareHowTheBytesAreCut) {
    // Longer than what one core is given, and of an odd length.
    const auto bytes = SomeBytes((5u << 20) + 3, 11);
    std::uint32_t plain = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        plain += bytes[i] * (i % 2 != 0 ? 256u : 1u);
        plain = (plain & 0xFFFF) + (plain >> 16);
    }
    for (const std::size_t first : {0u, 1u, 2u, 17u, (4u << 20) + 1}) {
        PeChecksum sum;
        sum.Add(ByteSpan(bytes).first(first));
        sum.Add(ByteSpan(bytes).subspan(first));
        EXPECT_EQ(sum.Value(), plain + bytes.size()) << first;
    }
}

TEST(ResourceTree, IsWrittenInTheOrderThatLoadersSearchIn) {
    auto spec = SampleSpec(false, false);
    const auto file = BuildPe(spec);
    const auto tree = ReadResourceTree(PeImage::Parse(file).value());
    ExpectSampleTree(tree);
    ASSERT_EQ(tree.types.size(), 3u);
    EXPECT_EQ(tree.types[0].key, ResourceKey(u"TYPELIB"));
    EXPECT_EQ(tree.types[0].names[0].key, ResourceKey(u"ONE"));
    EXPECT_EQ(tree.types[1].key, ResourceKey(16));
    EXPECT_EQ(tree.types[1].names[0].languages[0].language, 1031);
    EXPECT_EQ(tree.types[2].key, ResourceKey(24));
}

TEST(ReplaceResources, FindsRoomAndKeepsAllElse) {
    const struct {
        const char* name;
        bool behind;
        std::size_t added;
        const char* tree; // section that holds the tree afterwards
        std::size_t sections;
    } cases[] = {
        {"fits into the section's file size", true, 40, ".rsrc", 3},
        {"fits into the section's memory", true, 2000, ".rsrc", 3},
        {"the section is the last", false, 50000, ".rsrc", 2},
        {"something follows", true, 50001, ".rsrc", 4},
    };
    for (const bool is64Bit : {false, true}) {
        for (const auto& c : cases) {
            SCOPED_TRACE(c.name);
            auto spec = SampleSpec(is64Bit, c.behind);
            spec.tail = SomeBytes(1001, 9);
            spec.symbolTable = PlaceOf(spec, spec.sections.size()) + 100;
            const auto file = BuildPe(spec);
            const auto before = PeImage::Parse(file).value();
            const auto added = SomeBytes(c.added, 3);
            const auto changed = AddOne(file, added);
            ASSERT_EQ(changed.result, ResourceChange::Done);
            const auto after = changed.Image();
            ExpectSound(after);

            const auto tree = ReadResourceTree(after);
            ExpectSampleTree(tree);
            const auto* data = tree.Find(kResourceIcon, 9, 0);
            ASSERT_TRUE(data);
            EXPECT_TRUE(std::equal(data->bytes.begin(), data->bytes.end(), added.begin(), added.end()));

            ASSERT_EQ(after.Sections().size(), c.sections);
            EXPECT_EQ(after
                          .Sections()[static_cast<std::size_t>(
                              after.SectionAt(after.Directory(PeDirectory::Resources).address))]
                          .name,
                      c.tree);
            EXPECT_EQ(Section(after, ".text"), Section(before, ".text"));
            EXPECT_EQ(Section(after, ".reloc"), Section(before, ".reloc"));
            EXPECT_EQ(after.Directory(PeDirectory::Relocations).address,
                      before.Directory(PeDirectory::Relocations).address);
            EXPECT_TRUE(std::equal(spec.tail.rbegin(), spec.tail.rend(), changed.file.rbegin()));
            EXPECT_EQ(after.RawEnd() + spec.tail.size(), changed.file.size())
                << "the tail once, right behind the image";
            EXPECT_EQ(after.SymbolTable(), after.RawEnd() + 100);

            std::int64_t raw = 0;
            for (const auto& section : after.Sections()) raw += section.rawSize;
            for (const auto& section : before.Sections()) raw -= section.rawSize;
            EXPECT_EQ(std::int64_t{after.Optional(8)} - before.Optional(8), raw) << "size of initialised data";

            // A second change finds the moved section at the end and lets it grow there.
            const auto again = AddOne(changed.file, SomeBytes(90000));
            ASSERT_EQ(again.result, ResourceChange::Done);
            ExpectSound(again.Image());
            ExpectSampleTree(ReadResourceTree(again.Image()));
            EXPECT_EQ(again.Image().Sections().size(), c.behind ? 4u : 2u);
        }
    }
}

TEST(ReplaceResources, MovesDebugPlacesThatStandBehindTheChange) {
    PeSpec spec;
    Bytes text = SomeBytes(0x200);
    spec.sections.push_back({".text", text, 0x60000020});
    test::AddResources(spec, SampleTree());
    const auto behind = PlaceOf(spec, 2) + 16, inText = PlaceOf(spec, 0) + 100;
    StoreU32LE(spec.sections[0].bytes.data() + 24, behind);
    StoreU32LE(spec.sections[0].bytes.data() + 28 + 24, inText);
    spec.directories.push_back({PeDirectory::Debug, AddressOf(spec, 0), 56});
    spec.tail = SomeBytes(64);
    const auto changed = AddOne(BuildPe(spec), SomeBytes(5000));
    ASSERT_EQ(changed.result, ResourceChange::Done);
    const auto place = changed.Image().Sections()[0].rawOffset;
    EXPECT_EQ(LoadU32LE(changed.file.data() + place + 24), changed.Image().RawEnd() + 16);
    EXPECT_EQ(LoadU32LE(changed.file.data() + place + 28 + 24), inText);
    ExpectSound(changed.Image());
}

TEST(ReplaceResources, ASignatureIsDroppedOnlyWhenAskedTo) {
    auto spec = SampleSpec(true, true);
    const auto place = PlaceOf(spec, 3);
    spec.tail = SomeBytes(600);
    spec.directories.push_back({PeDirectory::Certificates, place + 8, 500});
    const auto file = BuildPe(spec);
    EXPECT_EQ(AddOne(file, kText).result, ResourceChange::Signed);
    const auto changed = AddOne(file, kText, true);
    ASSERT_EQ(changed.result, ResourceChange::Done);
    const auto after = changed.Image();
    ExpectSound(after);
    EXPECT_FALSE(IsSigned(after));
    EXPECT_EQ(after.Directory(PeDirectory::Certificates).address, 0u);
    Bytes left(spec.tail.begin(), spec.tail.begin() + 8);
    left.insert(left.end(), spec.tail.begin() + 508, spec.tail.end());
    EXPECT_TRUE(std::equal(left.begin(), left.end(), changed.file.begin() + static_cast<std::ptrdiff_t>(after.RawEnd()),
                           changed.file.end()));
}

TEST(ReplaceResources, MakesRoomForASectionHeader) {
    auto spec = SampleSpec(false, true);
    spec.sizeOfHeaders = 0x200; // 0x178 + 3 x 40 = 0x1F0: full
    const auto tableEnd = 0x80 + 24 + 224 + 3 * 40;
    ASSERT_EQ(tableEnd, 0x1F0);
    const auto big = SomeBytes(9000);
    {
        const auto changed = AddOne(BuildPe(spec), big);
        ASSERT_EQ(changed.result, ResourceChange::Done);
        ExpectSound(changed.Image());
        EXPECT_EQ(changed.Image().SizeOfHeaders(), 0x400u);
        ExpectSampleTree(ReadResourceTree(changed.Image()));
    }
    spec.sizeOfHeaders = 0x400;
    spec.behindSectionTable = SomeBytes(32);
    {
        EXPECT_EQ(AddOne(BuildPe(spec), big).result, ResourceChange::NoRoom) << "bytes that nobody explains";
        EXPECT_EQ(AddOne(BuildPe(spec), kText).result, ResourceChange::Done) << "no section is needed";
    }
    spec.directories.push_back({PeDirectory::BoundImports, static_cast<std::uint32_t>(tableEnd), 32});
    {
        const auto changed = AddOne(BuildPe(spec), big);
        ASSERT_EQ(changed.result, ResourceChange::Done);
        const auto bound = changed.Image().Directory(PeDirectory::BoundImports);
        EXPECT_EQ(bound.address, static_cast<std::uint32_t>(tableEnd + 40));
        EXPECT_TRUE(std::equal(spec.behindSectionTable.begin(), spec.behindSectionTable.end(),
                               changed.file.begin() + bound.address));
        ExpectSound(changed.Image());
    }
}

// Drivers and boot loaders: a byte stands in the file where it stands in memory.
TEST(ReplaceResources, AFlatImageGrowsAtItsEndAlone) {
    for (const bool behind : {false, true}) {
        auto spec = SampleSpec(true, behind, 0x20);
        spec.tail = SomeBytes(333, 2);
        const auto file = BuildPe(spec);
        const auto changed = AddOne(file, SomeBytes(50000, 3));
        ASSERT_EQ(changed.result, ResourceChange::Done);
        const auto after = changed.Image();
        ExpectSound(after);
        ExpectSampleTree(ReadResourceTree(after));
        EXPECT_EQ(after.Sections().size(), behind ? 4u : 2u);
        for (const auto& section : after.Sections()) EXPECT_EQ(section.rawOffset, section.virtualAddress);
        EXPECT_TRUE(std::equal(spec.tail.rbegin(), spec.tail.rend(), changed.file.rbegin()));
        EXPECT_EQ(after.RawEnd() + spec.tail.size(), changed.file.size());
        EXPECT_EQ(AddOne(changed.file, SomeBytes(70000)).result, ResourceChange::Done) << "and once more";

        auto elsewhere = file;
        StoreU32LE(elsewhere.data() + PeImage::Parse(file).value().SectionTableOffset() + 20,
                   spec.sizeOfHeaders - 0x20);
        EXPECT_EQ(AddOne(elsewhere, SomeBytes(50000, 3)).result, ResourceChange::NoRoom);
    }
    const auto full = SampleSpec(true, true, 0x20, 0x200); // 0x188 + 3 x 40 = 0x200
    EXPECT_EQ(AddOne(BuildPe(full), SomeBytes(50000)).result, ResourceChange::NoRoom);
}

// Packers leave entries for what they unpack in memory.
TEST(ReplaceResources, EntriesForMemoryThatTheFileDoesNotHoldStay) {
    auto file = BuildPe(SampleSpec(false, true));
    const auto image = PeImage::Parse(file).value();
    const auto version = ReadResourceTree(image).Find(16, 1, 1031)->bytes;
    const auto& section = image.Sections()[1];
    const auto rva =
        static_cast<std::uint32_t>(version.data() - file.data()) - section.rawOffset + section.virtualAddress;
    auto* entry = file.data() + section.rawOffset;
    while (LoadU32LE(entry) != rva) entry += 4;
    const auto unheld = image.Sections()[0].virtualAddress + 0x800;
    StoreU32LE(entry, unheld);
    EXPECT_EQ(AddOne(file, kText).result, ResourceChange::Damaged) << "behind the section's memory";
    StoreU32LE(file.data() + image.SectionTableOffset() + 8, 0x1000);
    for (const std::size_t added : {40, 50000}) {
        const auto changed = AddOne(file, SomeBytes(added));
        ASSERT_EQ(changed.result, ResourceChange::Done);
        ExpectSound(changed.Image());
        const auto tree = ReadResourceTree(changed.Image());
        const auto* data = tree.Find(16, 1, 1031);
        ASSERT_TRUE(data);
        EXPECT_EQ(data->unheld.address, unheld);
        EXPECT_EQ(data->unheld.size, kVersion.size());
        EXPECT_TRUE(tree.Find(24, 1, 1033)->unheld.size == 0);
    }
    StoreU32LE(entry, section.virtualAddress + section.rawSize);
    EXPECT_EQ(AddOne(file, kText).result, ResourceChange::Damaged) << "the memory of the resources themselves";
}

TEST(ReplaceResources, HeadersThatReachIntoSectionsStillEndInsideTheFile) {
    for (const bool behind : {false, true}) {
        const auto grown = AddOne(BuildPe(SampleSpec(false, behind)), SomeBytes(9000));
        ASSERT_EQ(grown.result, ResourceChange::Done);
        auto file = grown.file;
        StoreU32LE(file.data() + grown.Image().OptionalOffset() + 60, 0x1000);
        const auto shrunk = AddOne(file, kText);
        ASSERT_EQ(shrunk.result, ResourceChange::Done);
        EXPECT_EQ(shrunk.file.size(), file.size());
        ExpectSound(shrunk.Image());
        const auto again = AddOne(shrunk.file, SomeBytes(20000));
        ASSERT_EQ(again.result, ResourceChange::Done);
        ExpectSampleTree(ReadResourceTree(again.Image()));
    }
}

TEST(ReplaceResources, LeavesASectionAloneThatIsNotOnlyResources) {
    const auto grow = [](PeSpec& spec) {
        auto& bytes = spec.sections[1].bytes;
        bytes.resize(bytes.size() + 64);
        const auto import = SomeBytes(100, 21);
        bytes.insert(bytes.end(), import.begin(), import.end());
    };
    for (const bool named : {true, false}) {
        auto spec = SampleSpec(false, false);
        const auto size = static_cast<std::uint32_t>(spec.sections[1].bytes.size());
        grow(spec);
        if (named) spec.directories.push_back({static_cast<PeDirectory>(1), AddressOf(spec, 1) + size + 64, 100});
        const auto changed = AddOne(BuildPe(spec), kText);
        ASSERT_EQ(changed.result, ResourceChange::Done);
        const auto after = changed.Image();
        ExpectSound(after);
        EXPECT_EQ(Section(after, ".oldrsrc"), Section(PeImage::Parse(BuildPe(spec)).value(), ".rsrc"));
        ExpectSampleTree(ReadResourceTree(after));
    }
}

TEST(ReplaceResources, RefusesWhatCannotBeChangedSafely) {
    const auto sound = BuildPe(SampleSpec(false, true));
    const auto table = PeImage::Parse(sound).value().SectionTableOffset();
    const auto optional = PeImage::Parse(sound).value().OptionalOffset();
    const auto tree = PeImage::Parse(sound).value().Sections()[1].rawOffset;
    const struct {
        const char* name;
        std::size_t at;
        std::uint32_t value;
    } cases[] = {
        {"not an MZ file", 0, 0},
        {"the header's place has a high half", 0x3C, 0x10080},
        {"file alignment is no power of two", optional + 36, 0x300},
        {"sections overlap in memory", table + 40 + 12, 0x1000},
        {"sections overlap in the file", table + 40 + 20, 0x400},
        {"a section reaches behind the file", table + 80 + 16, 0x100000},
        {"a section reaches around 4 GB", table + 80 + 16, 0xFFFFFE00},
        {"a section lies in the headers", table + 20, 0x10},
        {"headers longer than the file", optional + 60, 0x1000000},
        {"the tree names itself", tree + 20, 0x80000000},
        {"a type leads to data", tree + 20, 0x100},
        {"more entries than bytes", tree + 12, 0xFFFFFFFF},
    };
    for (const auto& c : cases) {
        auto file = sound;
        StoreU32LE(file.data() + c.at, c.value);
        EXPECT_NE(AddOne(file, kText).result, ResourceChange::Done) << c.name;
    }
    for (std::size_t length = 0; length < sound.size() - 0x200; length += 7) {
        EXPECT_NE(AddOne(Bytes(sound.begin(), sound.begin() + static_cast<std::ptrdiff_t>(length)), kText).result,
                  ResourceChange::Done)
            << length;
    }
}

// A thousand names in one directory of languages: loaders find them all.
TEST(ResourceTree, ADirectoryMayBelongToManyNames) {
    constexpr std::uint32_t kNames = 1000, kLanguages = 40 + 8 * kNames, kEntry = kLanguages + 24;
    PeSpec spec;
    ByteWriter tree;
    const auto directory = [&](std::uint32_t count) {
        tree.Zeros(14);
        tree.U16LE(count);
    };
    directory(1);
    tree.U32LE(10);
    tree.U32LE(0x80000018);
    directory(kNames);
    for (std::uint32_t i = 1; i <= kNames; ++i) {
        tree.U32LE(i);
        tree.U32LE(0x80000000 | kLanguages);
    }
    directory(1);
    tree.U32LE(1033);
    tree.U32LE(kEntry);
    for (const auto field : {AddressOf(spec, 0), 16u, 0u, 0u}) tree.U32LE(field);
    spec.directories.push_back({PeDirectory::Resources, AddressOf(spec, 0), static_cast<std::uint32_t>(tree.Size())});
    spec.sections.push_back({".rsrc", tree.Take()});
    const auto file = BuildPe(spec);
    ResourceTreeFacts facts;
    EXPECT_EQ(ReadResourceTree(PeImage::Parse(file).value(), &facts).types.at(0).names.size(), kNames);
    EXPECT_TRUE(facts.whole && facts.complete);
    const auto changed = AddOne(file, kText);
    ASSERT_EQ(changed.result, ResourceChange::Done);
    EXPECT_EQ(ReadResourceTree(changed.Image()).types.at(1).names.size(), kNames);
}

TEST(ResourceTree, DirectoriesThatShareTheirEntriesDoNotMultiply) {
    // Every entry of every level leads to one and the same directory.
    PeSpec spec;
    ByteWriter tree;
    tree.Zeros(14);
    tree.U16LE(0x4000);
    for (std::uint32_t i = 0; i < 0x4000; ++i) {
        tree.U32LE(i);
        tree.U32LE(0x80000000);
    }
    spec.directories.push_back({PeDirectory::Resources, AddressOf(spec, 0), static_cast<std::uint32_t>(tree.Size())});
    spec.sections.push_back({".rsrc", tree.Take()});
    const auto file = BuildPe(spec);
    ResourceTreeFacts facts;
    EXPECT_TRUE(ReadResourceTree(PeImage::Parse(file).value(), &facts).types.empty());
    EXPECT_FALSE(facts.whole || facts.complete);
}

TEST(ReplaceResources, AnEmptyResourceMayStandBehindTheLastByte) {
    // One of these sizes fills the section to its last byte, so that what follows stands behind it.
    for (std::size_t size = 8; size <= 512; size += 8) {
        const Bytes filler(size, 1);
        ResourceTree tree;
        tree.Set(10, 1, 0, filler);
        tree.Set(24, 1, 0, {});
        PeSpec spec;
        spec.sections.push_back({".text", SomeBytes(700), 0x60000020});
        test::AddResources(spec, tree);
        const auto changed = AddOne(BuildPe(spec), kText);
        ASSERT_EQ(changed.result, ResourceChange::Done) << size;
        ResourceTreeFacts facts;
        EXPECT_TRUE(ReadResourceTree(changed.Image(), &facts).Find(24, 1, 0)) << size;
        EXPECT_TRUE(facts.whole) << size;
    }
}

TEST(ResourceUpdate, WritesTheFileOnlyAtAnEndThatIsMeant) {
    const std::string path = testing::TempDir() + "update.exe";
    const auto file = BuildPe(SampleSpec(false, true));
    WriteFileSafely(path, file);
    const auto now = [&] {
        const auto view = FileView::Open(path);
        return Bytes(view.Data().begin(), view.Data().end());
    };
    ResourceUpdater updater;
    auto update = updater.BeginUpdateResource(path);
    ASSERT_TRUE(update);
    EXPECT_TRUE(updater.UpdateResource(*update, 16, 1, 1033, {}));
    EXPECT_TRUE(updater.UpdateResource(*update, 16, 7, 0, {})) << "gone is gone";
    EXPECT_TRUE(updater.EndUpdateResource(std::move(update), true));
    EXPECT_EQ(now(), file);

    update = updater.BeginUpdateResource(path);
    EXPECT_TRUE(updater.UpdateResource(*update, 16, 1, 1033, {}));
    EXPECT_TRUE(updater.EndUpdateResource(std::move(update), false));
    const auto written = now();
    const auto tree = ReadResourceTree(PeImage::Parse(written).value());
    EXPECT_FALSE(tree.Find(16, 1, 1033));
    EXPECT_TRUE(tree.Find(16, 1, 1031));

    ExpectSound(PeImage::Parse(written).value());

    update = updater.BeginUpdateResource(path);
    update->WriteTo(path + ".copy");
    EXPECT_TRUE(updater.UpdateResource(*update, 16, 1, 1031, {}));
    EXPECT_TRUE(updater.EndUpdateResource(std::move(update), false));
    EXPECT_EQ(now(), written) << "what was read stays";
    const auto copy = FileView::Open(path + ".copy");
    const auto image = PeImage::Parse(copy.Data()).value();
    EXPECT_FALSE(ReadResourceTree(image).Find(16, 1, 1031));
    ExpectSound(image);

    update = updater.BeginUpdateResource(path);
    update->WriteTo("/proc/no.exe");
    EXPECT_THROW(updater.EndUpdateResource(std::move(update), false), FileException);

    std::string reason;
    EXPECT_FALSE(updater.BeginUpdateResource(path + ".no", false, &reason));
    EXPECT_FALSE(reason.empty());
    DeleteFile(path);
    DeleteFile(path + ".copy");
}

} // namespace
} // namespace pelorin
