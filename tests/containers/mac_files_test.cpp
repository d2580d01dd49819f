#include "containers/icns_file.h"
#include "containers/mac_crc.h"
#include "containers/mac_files.h"
#include "containers/mac_icon_rows.h"
#include "containers/mac_scan.h"
#include "core/user_prompt.h"
#include "support/icns_builder.h"
#include "support/icon_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::BuildIcns;
using test::MakeIcon;
using test::TestFolder;

/// A resource as the map tells of it.
struct Resource {
    std::string type;
    int id;
    std::uint32_t offset; ///< in the data area
    bool named;
};

/// Reads a resource fork by its map, as other programs do.
class ForkReader {
public:
    explicit ForkReader(ByteSpan fork) : m_fork(fork) {
        ByteReader r(fork);
        m_data = r.U32BE();
        const auto map = r.U32BE();
        m_dataLength = r.U32BE();
        const auto mapLength = r.U32BE();
        EXPECT_EQ(map + mapLength, fork.size());
        m_map = fork.subspan(map, mapLength);
        ReadMap();
    }
    [[nodiscard]] ByteSpan Map() const { return m_map; }
    [[nodiscard]] std::uint32_t DataLength() const { return m_dataLength; }
    [[nodiscard]] const std::vector<Resource>& Resources() const { return m_resources; }
    [[nodiscard]] ByteSpan Block(const Resource& resource) const {
        const auto at = m_data + resource.offset;
        return m_fork.subspan(at + 4, LoadU32BE(m_fork.data() + at));
    }

private:
    void ReadMap() {
        const auto typeList = LoadU16BE(m_map.data() + 24), nameList = LoadU16BE(m_map.data() + 26);
        EXPECT_EQ(nameList, m_map.size()) << "no names";
        ByteReader types(m_map.subspan(typeList));
        const int typeCount = types.U16BE() + 1;
        for (int i = 0; i < typeCount; ++i) {
            const std::string type(AsText(types.Take(4)));
            const int count = types.U16BE() + 1;
            ByteReader references(m_map.subspan(typeList));
            references.Seek(types.U16BE());
            for (int j = 0; j < count; ++j) {
                const int id = references.U16BE();
                const bool named = references.U16BE() != 0xFFFF;
                m_resources.push_back({type, id, references.U32BE() & 0xFFFFFF, named});
                EXPECT_EQ(references.U32BE(), 0u);
            }
            EXPECT_TRUE(references.Ok());
        }
        EXPECT_TRUE(types.Ok());
    }

    ByteSpan m_fork, m_map;
    std::uint32_t m_data = 0, m_dataLength = 0;
    std::vector<Resource> m_resources;
};

const std::vector<IconFormat> kFormats = {{32, 32, 32}, {32, 32, 8}, {16, 16, 4}, {16, 16, 1}};

TEST(ResourceFork, MapLeadsToTheWholeFamily) {
    const auto icon = MakeIcon("x", kFormats);
    const auto family = BuildIcnsFile(*icon);
    const auto file = BuildResourceFork(*icon);
    ASSERT_TRUE(IsResourceFork(file));
    const ForkReader fork(file);
    EXPECT_EQ(fork.DataLength(), family.size() + 4);
    EXPECT_EQ(Bytes(file.begin(), file.begin() + 16), Bytes(fork.Map().begin(), fork.Map().begin() + 16));
    EXPECT_EQ(Bytes(file.begin() + 16, file.begin() + 0x100), Bytes(0xF0));
    EXPECT_EQ(LoadU32BE(fork.Map().data() + 16), 0x534F5254u);
    EXPECT_EQ(LoadU32BE(fork.Map().data() + 20), 0x03680000u);

    std::string types;
    int id = 0xBFB9;
    for (const auto& resource : fork.Resources()) {
        types += resource.type + " ";
        EXPECT_EQ(resource.id, id++);
        EXPECT_FALSE(resource.named);
        // Each reference stands for the place of its own tag.
        EXPECT_EQ(AsText(ByteSpan(file).subspan(0x104 + resource.offset, 4)), resource.type);
    }
    EXPECT_EQ(types, "icns icl8 ICN# ics# ics4 il32 l8mk ");
    const auto block = fork.Block(fork.Resources()[0]);
    EXPECT_EQ(Bytes(block.begin(), block.end()), family);
}

TEST(MacBinary, HeaderForkAndCheckSum) {
    EXPECT_EQ(MacBinaryCrc(AsBytes("123456789")), 0x31C3);
    EXPECT_EQ(StuffItCrc(AsBytes("123456789")), 0xBB3D);
    const auto icon = MakeIcon("x", kFormats);
    const auto fork = BuildResourceFork(*icon);
    const std::string seventy(70, 'n'), accents = std::string(62, 'a') + "\xC3\xA9\xC3\xA9";
    const struct {
        std::string path, name;
    } cases[] = {{"folder/Ball.tar.bin", "Ball.tar"},
                 {seventy + ".bin", std::string(63, 'n')},
                 {accents + ".bin", std::string(62, 'a')},
                 {"", ""}};
    for (const auto& c : cases) {
        const auto file = BuildMacBinary(*icon, c.path);
        ASSERT_EQ(file.size() % 128, 0u);
        ASSERT_GE(file.size(), 128 + fork.size());
        const auto all = AsText(file);
        EXPECT_EQ(file[1], c.name.size());
        EXPECT_EQ(all.substr(2, c.name.size()), c.name);
        EXPECT_EQ(all.substr(65, 9), "rsrcVPLS\x05");
        EXPECT_EQ(LoadU32BE(&file[83]), 0u);
        EXPECT_EQ(LoadU32BE(&file[87]), fork.size());
        EXPECT_EQ(LoadU32BE(&file[91]), 0x7C25B080u);
        EXPECT_EQ(LoadU32BE(&file[95]), 0x7C25B080u);
        EXPECT_EQ(all.substr(102, 4), "mBIN");
        EXPECT_EQ(LoadU16BE(&file[122]), 0x8181);
        EXPECT_EQ(LoadU16BE(&file[124]), MacBinaryCrc(ByteSpan(file).first(124)));
        EXPECT_EQ(Bytes(file.begin() + 128, file.begin() + 128 + static_cast<int>(fork.size())), fork);
        for (auto at = 128 + fork.size(); at < file.size(); ++at) EXPECT_EQ(file[at], 0);
        EXPECT_TRUE(IsMacBinary(file));
    }
}

std::vector<std::size_t> Scan(ByteSpan file) {
    std::vector<std::size_t> positions;
    ScanForFamilies(file, [&](std::size_t position) {
        positions.push_back(position);
        return true;
    });
    return positions;
}

Bytes WithTags(std::size_t size, const std::vector<std::pair<std::size_t, std::string_view>>& tags) {
    Bytes file(size, 'x');
    for (const auto& [at, tag] : tags)
        std::copy(tag.begin(), tag.end(), file.begin() + static_cast<std::ptrdiff_t>(at));
    return file;
}

TEST(MacScan, FindsTagsButNotInTheLastThreeKilobytes) {
    constexpr std::size_t kPiece = 0x80000;
    const struct {
        const char* what;
        Bytes file;
        std::vector<std::size_t> positions;
    } cases[] = {
        {"nothing", {}, {}},
        {"a small file", WithTags(0xC00, {{0, "icns"}}), {}},
        {"one byte more", WithTags(0xC01, {{0, "icns"}}), {0}},
        {"around the border", WithTags(5000, {{5000 - 0xC01, "icns"}, {5000 - 0xC00 + 3, "icns"}}), {5000 - 0xC01}},
        {"the border itself", WithTags(5000, {{5000 - 0xC00, "icns"}}), {}},
        {"icns before odrp in each piece",
         WithTags(kPiece * 3, {{10, "odrp"}, {20, "icns"}, {kPiece + 1, "icns"}, {kPiece + 9, "odrp"}, {30, "icns"}}),
         {20, 30, 10, kPiece + 1, kPiece + 9}},
        {"a tag across two pieces", WithTags(kPiece * 2, {{kPiece - 2, "icns"}}), {kPiece - 2}},
        {"behind a MacBinary header", WithTags(5000, {{0x20, "icns"}, {0x66, "mBIN"}, {0x90, "icns"}}), {0x90}},
    };
    for (const auto& c : cases) EXPECT_EQ(Scan(c.file), c.positions) << c.what;
}

std::string IconsIn(ByteSpan file) {
    std::vector<CIconGroup> groups;
    if (!ReadMacintoshIcons(file, groups)) return "none";
    std::string text;
    for (const auto& group : groups) text += std::to_string(group.GetCount()) + (group.m_nInfo == 1 ? "m " : " ");
    return text;
}

TEST(MacScan, ReadsEveryFormThatIsWrittenSmallAndLarge) {
    const auto small = MakeIcon("x", {{16, 16, 1}}), large = MakeIcon("x", {{128, 128, 32}, {16, 16, 1}});
    for (const int kind : {kKindIcns, kKindRsrc, kKindMacBinary}) {
        EXPECT_EQ(IconsIn(BuildMacFile(*small, kind, "a")), "1m ") << kind;
        EXPECT_EQ(IconsIn(BuildMacFile(*large, kind, "a")), "2m ") << kind;
    }
    // Families one behind the other, and what only looks like one; the last one lies in the tail.
    auto many = WithTags(500, {{3, "icns are fine"}, {90, "icnsicns"}});
    for (const auto* icon : {&small, &large, &small}) {
        const auto family = BuildIcnsFile(**icon);
        many.insert(many.end(), family.begin(), family.end());
    }
    EXPECT_EQ(IconsIn(many), "1m 2m ");
    EXPECT_EQ(IconsIn(AsBytes("rubbish")), "none");
}

// Tags within each other ask for the same bytes again and again.
TEST(MacScan, NestedFamiliesEndBeforeTheyCostTime) {
    ByteWriter file;
    while (file.Size() < 0x80000) {
        file.Text("icns");
        file.U32BE(0x80000);
    }
    EXPECT_EQ(IconsIn(file.View()), "none");
}

TEST(MacScan, AFamilyAboveTheLimitIsRefusedAloud) {
    auto family = BuildIcnsFile(*MakeIcon("x", {{128, 128, 32}}));
    family.resize(0x100001);
    StoreU32BE(family.data() + 4, 0x100001);
    EXPECT_THROW((void)VisitMacintoshIcons(family, [](CIconGroup&) { return true; }), FileException);
    EXPECT_EQ(IconsIn(family), "none");
}

TEST(MacIconRows, FilesAreToldByContentWhereTheirNamesAreNotEnough) {
    AddIconSources(MacintoshIconSources());
    const auto icon = MakeIcon("x", kFormats);
    const auto wide = MakeIcon("x", {{128, 128, 32}, {48, 48, 32}, {48, 48, 8}, {32, 32, 32}});
    const struct {
        const char* what;
        Bytes file;
        int namedKind, kind;
    } cases[] = {
        {"a family by its tag", BuildIcnsFile(*icon), kKindNone, kKindIcns},
        {"a fork by its structure", BuildResourceFork(*icon), kKindNone, kKindRsrc},
        {"a fork that begins like an icon file", BuildResourceFork(*wide), kKindNone, kKindRsrc},
        {"MacBinary by its signature", BuildMacBinary(*icon, "a"), kKindNone, kKindMacBinary},
        {"any file by the name of a fork", Bytes(200, 'x'), kKindRsrc, kKindRsrc},
        {"any file by the name of a family", Bytes(200, 'x'), kKindIcns, kKindIcns},
        {"any file by the name of an icontainer", Bytes(200, 'x'), kKindIcontainer, kKindIcontainer},
        {"not any .bin", Bytes(200, 'x'), kKindMacBinary, kKindNone},
    };
    for (const auto& c : cases) {
        const auto* source = FindIconSource(c.file, c.namedKind);
        EXPECT_EQ(source ? int{source->kind} : int{kKindNone}, c.kind) << c.what;
    }
    auto fork = BuildResourceFork(*icon);
    for (std::size_t size = 0; size < fork.size(); size += 7) EXPECT_FALSE(IsResourceFork(ByteSpan(fork).first(size)));
}

TEST(MacIconRows, TellsWhatIsOddAboutAFamily) {
    const auto inspect = MacintoshIconSources()[0].inspect;
    IconFileReport report;
    inspect(BuildIcns({{"il32", Bytes(5)}, {"ics4", Bytes(3)}, {"ic08", Bytes(9)}, {"TOC ", Bytes(8)}}), report);
    ASSERT_EQ(report.facts.size(), 2u);
    EXPECT_EQ(report.facts[0].text, "at 0, 65 bytes");
    EXPECT_EQ(report.facts[1].text, "il32 5, ics4 3, ic08 9, TOC  8");
    EXPECT_EQ(
        report.oddities,
        (std::vector<std::string>{"ics4 has 3 bytes instead of 128", "ic08 holds something instead of JPEG 2000",
                                  "TOC  is not known here and is passed over", "il32 has no mask and gives no image"}));
}

TEST(SaveAsMacFile, ChoosesTheFormByTheNameAndSaysWhatDoesNotFit) {
    const TestFolder folder;
    const auto icon = MakeIcon("x", kFormats);
    const struct {
        const char* name;
        Bytes bytes;
    } cases[] = {{"a.icns", BuildIcnsFile(*icon)},
                 {"a.rsrc", BuildResourceFork(*icon)},
                 {"a.RSC", BuildResourceFork(*icon)},
                 {"a.bin", BuildMacBinary(*icon, "a.bin")}};
    for (const auto& c : cases) {
        ASSERT_TRUE(SaveAsMacFile(*icon, folder / c.name, nullptr)) << c.name;
        EXPECT_EQ(test::ReadBytes(folder / c.name), c.bytes) << c.name;
    }
    ScriptedPrompt prompt;
    EXPECT_FALSE(SaveAsMacFile(*MakeIcon("x", {{24, 24, 32}}), folder / "none.icns", &prompt));
    ASSERT_EQ(prompt.Shown().size(), 1u);
    EXPECT_EQ(prompt.Shown()[0].number, 55226);
    EXPECT_EQ(prompt.Shown()[0].icon, PromptIcon::Stop);
    EXPECT_FALSE(FileExists(folder / "none.icns"));
    EXPECT_FALSE(SaveAsMacFile(*icon, folder / "missing/a.icns", &prompt));
}

} // namespace
} // namespace pelorin
