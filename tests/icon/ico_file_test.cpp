#include "base/files.h"
#include "formats/png.h"
#include "icon/ico_file.h"
#include "support/dib_builder.h"
#include "support/ico_builder.h"
#include "support/png_builder.h"
#include "support/random_pictures.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace pelorin {
namespace {

using test::BuildIco;
using test::BuildIconBlock;
using test::PlainIconBlock;
using ::testing::ElementsAre;

Bytes PngOf(const DibBlock& block) {
    Bytes file;
    EXPECT_EQ(WritePng(block, {}, file), 0);
    return file;
}

std::vector<std::string> Formats(const CIconGroup& group) {
    std::vector<std::string> out;
    for (const auto& icon : group.m_arrIcons) {
        out.push_back(FormatShortDescription(icon->m_nWidth, icon->m_nHeight, icon->BitCount()));
    }
    return out;
}

// A PNG of noise without row filters, which is not how images are packed here.
test::PngParts UnfilteredNoise(int level, bool hiddenColors = false) {
    constexpr int kSide = 64;
    const auto surface = test::RandomSurface(kSide, kSide, 7);
    test::PngParts parts{.width = kSide, .height = kSide, .level = level};
    for (int y = 0; y < kSide; ++y) {
        parts.rows.push_back(0);
        for (int x = 0; x < kSide; ++x) {
            const auto* pixel = surface.Row(y) + std::ptrdiff_t{4} * x;
            const bool shown = pixel[3] != 0 || hiddenColors;
            for (int i = 0; i < 4; ++i) parts.rows.push_back(shown ? pixel[i] : 0);
        }
    }
    return parts;
}

Bytes WrittenAgain(const Bytes& png, int bits = 32) {
    CVnIcon icon, copy;
    EXPECT_TRUE(icon.ReadFromMemory(png, static_cast<std::uint32_t>(png.size()), bits));
    copy.Copy(icon);
    return copy.WriteCompressed();
}

TEST(IcoFile, AWellPackedPngThatIsNotTouchedGoesOutAsItCame) {
    const auto best = test::BuildPng(UnfilteredNoise(9));
    EXPECT_EQ(WrittenAgain(best), best);

    CVnIcon icon;
    ASSERT_TRUE(icon.ReadFromMemory(best, static_cast<std::uint32_t>(best.size()), 32));
    icon.m_hImage[kDibHeaderSize] ^= 1;
    const auto changed = icon.WriteCompressed();
    CVnIcon again;
    ASSERT_TRUE(again.ReadFromMemory(changed, static_cast<std::uint32_t>(changed.size()), 32));
    EXPECT_EQ(again.m_hImage, icon.m_hImage) << "what was touched is packed anew";

    const auto loose = test::BuildPng(UnfilteredNoise(6));
    EXPECT_NE(WrittenAgain(loose), loose) << "it can be packed better";
    EXPECT_TRUE(std::ranges::equal(ReadPng(WrittenAgain(loose)).Span(), ReadPng(best).Span()));
    EXPECT_NE(WrittenAgain(best, 8), best) << "other colours";
    const auto hidden = test::BuildPng(UnfilteredNoise(9, true));
    EXPECT_NE(WrittenAgain(hidden), hidden) << "colours that nobody sees are not kept";
    auto bright = UnfilteredNoise(9);
    bright.gamma = 100000;
    EXPECT_NE(WrittenAgain(test::BuildPng(bright)), test::BuildPng(bright)) << "values that stand for others";
    auto longer = best;
    longer.push_back(0);
    EXPECT_NE(WrittenAgain(longer), longer) << "something behind it";
}

TEST(IcoFile, SizesComeFromTheImagesAndDepthsOfPngsFromTheDirectory) {
    const auto png = PngOf(test::Picture32(2, {0xFF102030, 0x80FFFFFF}));
    const auto file = BuildIco({{.image = png, .bits = 0, .width = 99},
                                {.image = png, .bits = 8},
                                {.image = PlainIconBlock(3, 5, 4), .bits = 32, .width = 7, .height = 7, .colors = 2},
                                {.image = png, .bits = 1}});
    CIconGroup group;
    ASSERT_TRUE(ReadIcoGroup(file, group));
    EXPECT_THAT(Formats(group), ElementsAre("2x1 - Mono", "3x5 - 16", "2x1 - 256", "2x1 - RGB/A"));
    EXPECT_TRUE(group.GetIcon(0)->m_bCompressed);
    EXPECT_FALSE(group.GetIcon(1)->m_bCompressed);
    EXPECT_EQ(group.GetIcon(3)->StoredBytes(), png.size());
    EXPECT_EQ(group.GetIcon(3)->m_nBytes, 40u + 8 + 4);
}

TEST(IcoFile, CursorsReadAsIconsWithoutHotSpot) {
    const auto png = PngOf(test::Picture32(1, {0xFF102030}));
    CIconGroup group;
    // A compressed cursor takes the hot spot's y as its depth.
    ASSERT_TRUE(ReadIcoGroup(
        BuildIco({{.image = png, .bits = 4, .planes = 3}, {.image = PlainIconBlock(4, 4, 1), .bits = 9}}, 2), group));
    EXPECT_THAT(Formats(group), ElementsAre("4x4 - Mono", "1x1 - 16"));
    EXPECT_EQ(group.GetIcon(0)->m_nHotSpotX, -1);
    EXPECT_EQ(LoadU16LE(&BuildIcoFile(group)[2]), 1);
    EXPECT_FALSE(ReadIcoGroup(BuildIco({{.image = png, .bits = 7}}, 2), group));
}

TEST(IcoFile, SharedOffsetsAreReadOnceForEachEntry) {
    auto file = BuildIco({{.image = PlainIconBlock(2, 2, 8)}, {.image = {}}, {.image = {}}});
    for (const std::size_t entry : {1, 2}) StoreU32LE(&file[6 + 16 * entry + 12], 6 + 48);
    CIconGroup group;
    ASSERT_TRUE(ReadIcoGroup(file, group));
    EXPECT_EQ(group.GetCount(), 3);
}

TEST(IcoFile, OddImages) {
    struct Case {
        const char* what;
        test::IconBlockParts block;
        int colors;
        std::uint32_t bytes; ///< 0: refused
    };
    const Case cases[] = {
        {"4 bits, colours used 0", {.width = 2, .doubledHeight = 2, .bits = 4}, 16, 40 + 64 + 4 + 4},
        {"4 bits, colours used 3", {.width = 2, .doubledHeight = 2, .bits = 4, .colorsUsed = 3}, 3, 40 + 12 + 0 + 4},
        {"odd height", {.width = 2, .doubledHeight = 3, .bits = 32}, 0, 40 + 8 + 4},
        {"a header of 12 bytes", {.width = 2, .doubledHeight = 2, .headerSize = 12}, 0, 0},
        {"no width", {.width = 0}, 0, 0},
        {"negative width", {.width = -16}, 0, 0},
        {"top row first", {.width = 2, .doubledHeight = -2}, 0, 0},
        {"no height", {.width = 2, .doubledHeight = 1}, 0, 0},
        {"huge", {.width = 0x7FFFFFFF, .doubledHeight = 0x7FFFFFFF}, 0, 0},
        {"wide", {.width = 0x7FFFFFFF, .doubledHeight = 2, .bits = 1}, 0, 0},
        {"a table beyond the file", {.width = 2, .doubledHeight = 2, .bits = 8, .colorsUsed = 0x20000000}, 0, 0},
        {"a negative table", {.width = 2, .doubledHeight = 2, .bits = 8, .colorsUsed = 0xFFFFFFFF}, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        CVnIcon icon;
        EXPECT_EQ(icon.ReadFromMemory(BuildIconBlock(c.block), 0, 0), c.bytes != 0);
        EXPECT_EQ(icon.m_nBytes, c.bytes);
        EXPECT_EQ(icon.m_hImage.size(), c.bytes);
        EXPECT_EQ(icon.m_nColors, c.colors);
    }
}

// A cut in the header or the directory is an error; in the rows of a block it leaves zeros; in a PNG it is an error.
TEST(IcoFile, TruncatedAtEveryByte) {
    auto block = PlainIconBlock(3, 3, 24);
    std::fill(block.begin() + 40, block.end(), std::uint8_t{0xEE});
    const auto png = PngOf(test::Picture32(2, {0xFF102030, 0x80FFFFFF}));
    const auto whole = BuildIco({{.image = png}, {.image = block}});
    const std::size_t pngEnd = 6 + 32 + png.size(), headerEnd = pngEnd + 40;
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        CIconGroup group;
        const bool good = ReadIcoGroup(ByteSpan(whole).first(size), group);
        ASSERT_EQ(good, size >= headerEnd) << size;
        EXPECT_EQ(group.GetCount(), good ? 2 : 0);
        if (!good) continue;
        const auto& image = group.GetIcon(0)->m_hImage;
        ASSERT_EQ(image.size(), block.size());
        for (std::size_t i = 40; i < image.size(); ++i) ASSERT_EQ(image[i], i < size - pngEnd ? 0xEE : 0);
    }
}

// Every field of header and directory at 0, 1 and its maximum: accepted or refused, never more.
TEST(IcoFile, HostileDirectories) {
    const auto good =
        BuildIco({{.image = PngOf(test::Picture32(1, {0xFF102030}))}, {.image = PlainIconBlock(2, 2, 8), .bits = 8}});
    struct Case {
        std::size_t at, bytes;
        const char* refusedAt; ///< letters of "01M" at which the file must be refused; the others must be read
    };
    const Case cases[] = {
        {0, 2, ""},     {2, 2, "0M"}, {4, 2, "0M"}, {6, 1, ""},   {7, 1, ""},
        {8, 1, ""},     {9, 1, ""},   {10, 2, ""},  {12, 2, "M"}, // depth of the PNG
        {14, 4, "01"},                                            // bytes of the PNG: too few fail, too many do not
        {18, 4, "01M"},                                           // its place
        {28, 2, ""},    {30, 4, ""},                              // a block's depth and bytes are not asked
        {34, 4, "01M"},
    };
    for (const auto& c : cases) {
        for (const char value : {'0', '1', 'M'}) {
            auto file = good;
            for (std::size_t i = 0; i < c.bytes; ++i) {
                file[c.at + i] = value == 'M' ? 0xFF : value == '1' && i == 0 ? 1 : 0;
            }
            CIconGroup group;
            const bool refused = std::string_view(c.refusedAt).find(value) != std::string_view::npos;
            EXPECT_EQ(ReadIcoGroup(file, group), !refused) << c.at << " " << value;
        }
    }
}

// 65,535 entries that all point at one large image ask for more than any picture may have.
TEST(IcoFile, ManyEntriesDoNotMultiplyMemory) {
    auto file = BuildIco(std::vector<test::IcoImageParts>(65535));
    const auto offset = static_cast<std::uint32_t>(file.size());
    for (std::size_t i = 0; i < 65535; ++i) StoreU32LE(&file[6 + 16 * i + 12], offset);
    const auto image = BuildIconBlock({.width = 2048, .doubledHeight = 4096, .bits = 1});
    file.insert(file.end(), image.begin(), image.end());
    CIconGroup group;
    EXPECT_FALSE(ReadIcoGroup(file, group));
}

TEST(IcoFile, GoldenDirectory) {
    CIconGroup group;
    for (const auto& f : {IconFormat{256, 256, 32}, {16, 17, 8}, {48, 48, 24}, {1, 1, 1}}) {
        CVnIcon icon;
        ASSERT_TRUE(icon.ReadFromMemory(PlainIconBlock(f.width, f.height, f.bits), 0, 0));
        group.Add(icon);
    }
    for (const int bits : {4, 32}) {
        CVnIcon odd;
        ASSERT_TRUE(
            odd.ReadFromMemory(BuildIconBlock({.width = 2, .doubledHeight = 2, .bits = bits, .colorsUsed = 3}), 0, 0));
        group.Append(std::move(odd));
    }
    const auto file = BuildIcoFile(group);
    const Bytes expected = {
        0,  0,  1, 0, 6, 0,                                            //
        1,  1,  2, 0, 1, 0, 1,  0, 56,   0,    0, 0, 102,  0,    0, 0, //
        16, 17, 0, 0, 1, 0, 8,  0, 0x7C, 5,    0, 0, 158,  0,    0, 0, //
        48, 48, 0, 0, 1, 0, 24, 0, 0xA8, 0x1C, 0, 0, 0x1A, 6,    0, 0, //
        0,  0,  0, 0, 1, 0, 32, 0, 0x28, 0x20, 4, 0, 0xC2, 0x22, 0, 0, //
        2,  1,  3, 0, 1, 0, 4,  0, 56,   0,    0, 0, 0xEA, 0x42, 4, 0, //
        2,  1,  3, 0, 1, 0, 4,  0, 64,   0,    0, 0, 0x22, 0x43, 4, 0, //
    };
    ASSERT_GT(file.size(), expected.size());
    EXPECT_EQ(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(expected.size())), expected);
}

TEST(IcoFile, PngStaysPngAndASecondSaveIsTheSame) {
    const auto png = PngOf(test::Picture32(2, {0xFF102030, 0x80FFFFFF, 0x00445566, 0x01000000}));
    const auto file = BuildIco(
        {{.image = png}, {.image = PlainIconBlock(4, 4, 8)}, {.image = png, .bits = 8}, {.image = png, .bits = 24}});
    CIconGroup group, again;
    ASSERT_TRUE(ReadIcoGroup(file, group));
    const auto first = BuildIcoFile(group);
    ASSERT_TRUE(ReadIcoGroup(first, again));
    EXPECT_EQ(BuildIcoFile(again), first);
    ASSERT_EQ(again.GetCount(), 4);
    int compressed = 0;
    for (const auto& icon : again.m_arrIcons) compressed += icon->m_bCompressed;
    EXPECT_EQ(compressed, 3);
    // The 24-bit one came out black where it is not transparent.
    const auto picture = IconBlockPicture(again.GetIcon(2)->m_hImage);
    EXPECT_EQ(again.GetIcon(2)->BitCount(), 24);
    EXPECT_EQ(test::At(picture, 0, 0), 0xFF000000u);
    EXPECT_EQ(test::At(picture, 0, 1) >> 24, 0u);
}

TEST(IcoFile, AFullDiskLeavesTheOldFile) {
    const test::TempFolder folder;
    const auto path = folder.Path("old.ico");
    const auto old = BuildIco({{.image = PlainIconBlock(4, 4, 8)}});
    WriteFileSafely(path, old);
    CIconGroup group;
    CVnIcon icon;
    ASSERT_TRUE(icon.ReadFromMemory(PlainIconBlock(256, 256, 32), 0, 0));
    group.Add(icon);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    const rlimit small{4096, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool saved = group.SaveAsIcoFile(path);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    signal(SIGXFSZ, handler);
    EXPECT_FALSE(saved);
    const auto view = FileView::Open(path);
    EXPECT_EQ(Bytes(view.Data().begin(), view.Data().end()), old);
    EXPECT_THAT(ListFolder(folder.Path()), ElementsAre("old.ico"));
    EXPECT_TRUE(group.SaveAsIcoFile(path));
    std::vector<CIconGroup> groups;
    EXPECT_TRUE(LoadIcoIntoGroups(path, groups));
    EXPECT_EQ(groups.size(), 1u);
}

TEST(IcoFile, MacintoshKindsGoToTheirReader) {
    std::vector<std::string> asked;
    const MacintoshIconReader reader = [&](std::string_view path, std::vector<CIconGroup>&) {
        asked.emplace_back(path);
        return true;
    };
    std::vector<CIconGroup> groups;
    for (const char* name : {"a.icns", "b.RSC", "c.bin", "._d", "ICON_"}) {
        EXPECT_TRUE(LoadIcoIntoGroups(name, groups, reader)) << name;
    }
    EXPECT_FALSE(LoadIcoIntoGroups("missing.ico", groups, reader));
    EXPECT_FALSE(LoadIcoIntoGroups("a.icns", groups));
    EXPECT_EQ(asked.size(), 5u);
    EXPECT_TRUE(groups.empty());
}

} // namespace
} // namespace pelorin
