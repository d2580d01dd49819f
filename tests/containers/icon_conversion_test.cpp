#include "containers/icns_file.h"
#include "containers/icon_conversion.h"
#include "containers/mac_crc.h"
#include "containers/mac_files.h"
#include "containers/mac_scan.h"
#include "containers/stuffit.h"
#include "icon/planes.h"
#include "support/icon_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::MakeIcon;

std::string NamesOf(const std::vector<IconFormat>& formats) {
    std::string names;
    for (const auto& f : formats) {
        names += (names.empty() ? "" : " ") + std::to_string(f.width) + "x" + std::to_string(f.height) + "x" +
                 std::to_string(f.bits);
    }
    return names;
}

TEST(IconConversion, KeepsWhatFitsMakesWhatIsAskedForAndTellsTheRest) {
    const struct {
        const char* what;
        std::vector<IconFormat> source, wanted;
        bool fromMac, toMac;
        const char *result, *lost;
    } cases[] = {
        {"to the Macintosh",
         {{48, 48, 32}, {24, 24, 32}, {32, 32, 24}, {16, 16, 4}},
         {},
         false,
         true,
         "16x16x4 48x48x32",
         "32x32x24 24x24x32"},
        {"to Windows", {{128, 128, 32}, {16, 12, 1}}, {}, true, false, "16x12x1 128x128x32", ""},
        {"one of those that are there", {{48, 48, 32}, {32, 32, 32}}, {{32, 32, 32}}, false, true, "32x32x32", ""},
        {"made from a format that is left out",
         {{64, 64, 32}},
         {{32, 32, 32}, {16, 12, 8}},
         false,
         true,
         "16x12x8 32x32x32",
         ""},
        {"asked for in vain", {{48, 48, 32}}, {{48, 48, 32}, {24, 24, 32}}, false, true, "48x48x32", "24x24x32"},
        {"nothing left", {{24, 24, 8}}, {}, false, true, "", "24x24x8"},
    };
    for (const auto& c : cases) {
        auto source = MakeIcon("x", c.source);
        source->m_nInfo = c.fromMac ? 1 : 0;
        IconConversion conversion;
        conversion.macintosh = c.toMac;
        if (c.toMac) conversion.allows = IcnsAllows;
        conversion.formats = c.wanted;
        std::vector<IconFormat> lost;
        const auto icon = ConvertIcon(*source, conversion, lost);
        EXPECT_EQ(NamesOf(FormatsOf(icon)), c.result) << c.what;
        EXPECT_EQ(NamesOf(lost), c.lost) << c.what;
        EXPECT_EQ(icon.m_nInfo, c.toMac ? 1u : 0u) << c.what;
    }
}

TEST(IconConversion, SharedAlphaFormatsComeBackFromTheMacintosh) {
    const auto source = MakeIcon("x", {{128, 128, 32}, {48, 48, 32}, {32, 32, 32}, {16, 16, 32}, {256, 256, 32}});
    std::vector<IconFormat> lost;
    const auto mac = ConvertIcon(*source, {.macintosh = true, .allows = IcnsAllows, .formats = {}, .making = {}}, lost);
    std::vector<CIconGroup> read;
    ASSERT_TRUE(ReadMacintoshIcons(BuildIcnsFile(mac), read));
    const auto back = ConvertIcon(read[0], {}, lost);
    EXPECT_TRUE(lost.empty());
    ASSERT_EQ(back.GetCount(), 5);
    for (int i = 0; i < 5; ++i) {
        Surface images[2], alphas[2];
        ASSERT_TRUE(ToBitmaps(*source->GetIcon(i), images[0], alphas[0]));
        ASSERT_TRUE(ToBitmaps(*back.GetIcon(i), images[1], alphas[1]));
        EXPECT_EQ(images[0], images[1]) << i;
        EXPECT_EQ(alphas[0], alphas[1]) << i;
        EXPECT_EQ(back.GetIcon(i)->m_bCompressed, back.GetIcon(i)->m_nWidth == 256) << "as new Windows icons have it";
    }
}

TEST(StuffIt, HoldsTheForksAsTheyAre) {
    const auto icon = MakeIcon("x", {{16, 16, 1}, {32, 32, 32}});
    const auto family = BuildIcnsFile(*icon), fork = BuildResourceFork(*icon);
    const std::pair<std::string, Bytes> files[] = {
        {"dir/plain.icns", family}, {"fork.rsrc", fork}, {std::string(70, 'n') + ".bin", BuildMacBinary(*icon, "n")}};
    std::vector<StuffItEntry> entries(1);
    entries[0].name = "without a fork";
    for (const auto& [path, bytes] : files) {
        auto entry = StuffItEntryOf(path, bytes);
        ASSERT_TRUE(entry) << path;
        entries.push_back(std::move(*entry));
    }
    EXPECT_FALSE(StuffItEntryOf("a.ico", AsBytes("rubbish")));
    const auto archive = BuildStuffIt(entries);
    ByteReader r(archive);
    EXPECT_EQ(AsText(r.Take(4)), "SIT!");
    EXPECT_EQ(r.U16BE(), 3);
    EXPECT_EQ(r.U32BE(), archive.size());
    EXPECT_EQ(AsText(r.Take(4)), "rLau");
    EXPECT_EQ(r.U8(), 1);
    r.Skip(7);
    const std::string names[] = {"plain", "fork", std::string(63, 'n')};
    for (int i = 0; i < 3; ++i) {
        const auto header = r.Take(112);
        ASSERT_TRUE(r.Ok());
        const auto* h = header.data();
        EXPECT_EQ(LoadU16BE(h), 0) << "both forks stored";
        EXPECT_EQ(AsText(header.subspan(3, h[2])), names[i]);
        EXPECT_EQ(AsText(header.subspan(66, 8)), "iconVNPL");
        EXPECT_EQ(LoadU32BE(h + 76), 0xB256493Au);
        EXPECT_EQ(LoadU32BE(h + 80), 0xB256493Au);
        EXPECT_EQ(LoadU16BE(h + 110), StuffItCrc(header.first(110)));
        const Bytes& wanted = i == 0 ? family : fork;
        EXPECT_EQ(LoadU32BE(h + 84), i == 0 ? 0 : fork.size());
        EXPECT_EQ(LoadU32BE(h + 88), i == 0 ? family.size() : 0);
        EXPECT_EQ(LoadU32BE(h + 92), LoadU32BE(h + 84));
        EXPECT_EQ(LoadU32BE(h + 96), LoadU32BE(h + 88));
        const auto bytes = r.Take(wanted.size());
        EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), wanted);
        EXPECT_EQ(LoadU16BE(h + (i == 0 ? 102 : 100)), StuffItCrc(wanted));
    }
    EXPECT_TRUE(r.AtEnd());
    EXPECT_TRUE(BuildStuffIt({}).empty());
}

} // namespace
} // namespace pelorin
