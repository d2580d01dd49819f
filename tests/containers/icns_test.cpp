#include "base/files.h"
#include "containers/icns_file.h"
#include "containers/icns_rle.h"
#include "formats/jpeg2000.h"
#include "icon/planes.h"
#include "support/icns_builder.h"
#include "support/icon_builder.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <map>

namespace pelorin {
namespace {

using test::BuildIcns;
using test::FlatPlanes;
using Parts = std::vector<test::IcnsElementParts>;

Bytes Repeat(std::uint8_t value, std::size_t count) {
    return Bytes(count, value);
}
Bytes Join(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}
Bytes Counting(std::size_t count) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(i);
    return bytes;
}

Bytes Encoded(const Bytes& plane) {
    Bytes out;
    EncodeIcnsPlane(plane, out);
    return out;
}

bool Read(ByteSpan family, CIconGroup& group) {
    auto pixels = kMaxPixels;
    return ReadIcnsFamily(family, group, pixels);
}

std::string FormatsOf(const CIconGroup& group) {
    std::string text;
    for (const auto& icon : group.m_arrIcons) {
        text += (text.empty() ? "" : " ") + std::to_string(icon->m_nWidth) + "x" + std::to_string(icon->m_nHeight) +
                "x" + std::to_string(icon->BitCount());
    }
    return text;
}
std::string FormatsIn(ByteSpan family) {
    CIconGroup group;
    return Read(family, group) ? FormatsOf(group) : "none";
}

Bytes Written(const CIconGroup& icon) {
    ByteWriter out;
    return WriteIcnsFamily(icon, out) ? out.Take() : Bytes();
}

/// Types in the order of the file, with their payloads.
std::vector<std::pair<std::string, Bytes>> ElementsOf(ByteSpan family) {
    std::vector<std::pair<std::string, Bytes>> elements;
    EXPECT_TRUE(VisitIcnsElements(family, [&](std::string_view type, ByteSpan payload) {
        elements.emplace_back(type, Bytes(payload.begin(), payload.end()));
    }));
    return elements;
}
std::string TypesIn(ByteSpan family) {
    std::string types;
    for (const auto& [type, payload] : ElementsOf(family)) types += (types.empty() ? "" : " ") + type;
    return types;
}

/// An image whose block is filled by `put(layout, block)`.
template <class Put>
CVnIcon MakeImage(int width, int height, int bits, Put&& put) {
    const IconBlockLayout layout(width, height, IconColors(bits), bits == 32);
    CVnIcon icon;
    icon.Create(width, height, layout.colors, bits == 32);
    icon.m_hImage = EmptyIconBlock(layout);
    put(layout, icon.m_hImage);
    return icon;
}

// ---- run lengths ----

TEST(IcnsRle, PacketsAreLaidFromTheEnd) {
    const struct {
        const char* what;
        Bytes plane, packets;
    } cases[] = {
        {"130 equal bytes", Repeat(7, 130), {0x01, 7, 7, 0xFD, 7}},
        {"128 equal bytes", Repeat(7, 128), {0xFD, 7}},
        {"129 equal bytes", Repeat(7, 129), {0x00, 7, 0xFD, 7}},
        {"131 equal bytes", Repeat(7, 131), {0x80, 7, 0xFD, 7}},
        {"259 equal bytes", Repeat(7, 259), {0x80, 7, 0xFD, 7, 0xFD, 7}},
        {"two equal bytes", {5, 5}, {0x01, 5, 5}},
        {"a run between literals", {1, 2, 9, 9, 9, 3}, {0x01, 1, 2, 0x80, 9, 0x00, 3}},
        {"short runs join the literals", {1, 1, 2, 2, 3}, {0x04, 1, 1, 2, 2, 3}},
        {"the first literals are the short packet", Counting(130),
         Join({{0x01, 0, 1},
               {0x7F},
               [] {
                   auto rest = Counting(130);
                   return Bytes(rest.begin() + 2, rest.end());
               }()})},
        // The pair crosses the border of 128: its second byte, which comes first on the walk, ends the packet.
        {"a pair over the border", Join({{4, 4}, Counting(127)}), Join({{0x00, 4}, {0x7F, 4}, Counting(127)})},
        {"nothing", {}, {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Encoded(c.plane), c.packets) << c.what;
        Bytes plane(c.plane.size());
        ByteReader in(c.packets);
        EXPECT_TRUE(DecodeIcnsPlane(in, plane)) << c.what;
        EXPECT_EQ(plane, c.plane) << c.what;
        EXPECT_TRUE(in.AtEnd()) << c.what;
    }
}

TEST(IcnsRle, AnyPlaneComesBackAndNoRunIsAboveItsLimit) {
    unsigned seed = 1;
    for (int round = 0; round < 300; ++round) {
        Bytes plane;
        while (plane.size() < 700) {
            seed = seed * 1664525 + 1013904223;
            plane.insert(plane.end(), 1 + (seed >> 20) % (round % 2 ? 5 : 300),
                         static_cast<std::uint8_t>(seed >> 9 & 3));
        }
        const auto packets = Encoded(plane);
        Bytes back(plane.size());
        ByteReader in(packets);
        ASSERT_TRUE(DecodeIcnsPlane(in, back));
        ASSERT_EQ(back, plane);
        ASSERT_TRUE(in.AtEnd());
        for (std::size_t at = 0; at < packets.size(); at += packets[at] < 0x80 ? packets[at] + 2u : 2u)
            ASSERT_LE(packets[at], 0xFD);
    }
}

TEST(IcnsRle, APacketAboveThePlaneEndsIt) {
    Bytes plane(4, 0xEE);
    const Bytes run = {0x00, 1, 0x84, 2, 0x03, 9, 8, 7, 6};
    ByteReader in(run);
    EXPECT_TRUE(DecodeIcnsPlane(in, plane));
    EXPECT_EQ(plane, (Bytes{1, 0xEE, 0xEE, 0xEE})) << "it keeps what it had";
    Bytes next(4);
    EXPECT_TRUE(DecodeIcnsPlane(in, next));
    EXPECT_EQ(next, (Bytes{9, 8, 7, 6})) << "the next plane goes on behind the packet";
    for (const Bytes& cut : {Bytes{}, Bytes{0x83}, Bytes{0x03, 1, 2}, Bytes{0x00, 1}}) {
        ByteReader short_(cut);
        EXPECT_FALSE(DecodeIcnsPlane(short_, plane));
    }
}

// ---- reading ----

TEST(IcnsRead, PixelsOfEveryDepth) {
    // Top left pixel set and shown; the one right of it set and hidden; all others clear and shown.
    Bytes bits(32), mask = Repeat(0xFF, 32), nibbles(128), bytes(256), alpha = Repeat(0x80, 256);
    bits[0] = 0xC0;
    mask[0] = 0xBF;
    nibbles[0] = 0x33;
    bytes[0] = bytes[1] = 35;
    alpha[1] = 0;
    // Red: two literals, then 254 equal bytes; green and blue: 256 equal bytes.
    const Bytes packed = {0x01, 10, 11, 0xFD, 12, 0xFB, 12, 0xFD, 20, 0xFD, 20, 0xFD, 30, 0xFD, 30};
    CIconGroup group;
    ASSERT_TRUE(
        Read(BuildIcns(
                 {{"ics#", Join({bits, mask})}, {"ics4", nibbles}, {"ics8", bytes}, {"is32", packed}, {"s8mk", alpha}}),
             group));
    EXPECT_EQ(group.m_nInfo, 1u);
    ASSERT_EQ(FormatsOf(group), "16x16x1 16x16x4 16x16x8 16x16x32");
    const struct {
        Rgb shown, hidden, other;
    } colors[] = {{0x000000, 0x000000, 0xFFFFFF}, {0xDD0000, 0xFFFFFF, 0xFFFFFF}, {0xFF0000, 0x000000, 0xFFFFFF}};
    for (int i = 0; i < 3; ++i) {
        const auto& icon = *group.GetIcon(i);
        Surface image, hidden;
        ASSERT_TRUE(ToBitmaps(icon, image, hidden));
        EXPECT_EQ(image.At(0, 0), colors[i].shown) << i;
        EXPECT_EQ(image.At(1, 0), colors[i].hidden) << i;
        EXPECT_EQ(image.At(15, 15), colors[i].other) << i;
        EXPECT_EQ(hidden.At(0, 0), 0u) << i;
        EXPECT_EQ(hidden.At(1, 0), 0xFFFFFFu) << i;
        EXPECT_EQ(hidden.At(15, 15), 0u) << i;
    }
    EXPECT_EQ(kMacOsPalette[35], 0xFF0000u);
    // A hidden pixel keeps its colour at 32 bits, and the AND rows stay clear.
    const auto& block = group.GetIcon(3)->m_hImage;
    const auto layout = IconBlockLayout::Of(block);
    const auto* top = block.data() + layout.xorRows + layout.xorStride * 15;
    EXPECT_EQ(LoadU32LE(top), 0x800A141Eu);
    EXPECT_EQ(LoadU32LE(top + 4), 0x000B141Eu);
    EXPECT_EQ(LoadU32LE(block.data() + layout.xorRows), 0x800C141Eu);
    for (auto at = layout.andRows; at < block.size(); ++at) ASSERT_EQ(block[at], 0);
}

TEST(IcnsRead, ImagesNeedTheirMasks) {
    const Bytes pair32 = Repeat(0xFF, 256), pairMini = Repeat(0xFF, 48), mask32 = Repeat(0, 128);
    const auto planes = FlatPlanes(1024, 1, 2, 3);
    const struct {
        const char* what;
        Parts elements;
        const char* formats;
        int count;
    } cases[] = {
        {"true colour without alpha", {{"il32", planes}, {"ICN#", pair32}}, "32x32x1", 2},
        {"true colour with alpha behind", {{"il32", planes}, {"l8mk", Repeat(9, 1024)}}, "32x32x32", 1},
        {"alpha of another size", {{"il32", planes}, {"s8mk", Repeat(9, 256)}}, "none", 1},
        {"indices with the mask of a pair",
         {{"icl4", Bytes(512)}, {"icl8", Bytes(1024)}, {"ICN#", pair32}},
         "32x32x1 32x32x4 32x32x8",
         3},
        {"a mask alone", {{"icl4", Bytes(512)}, {"ICNm", mask32}}, "32x32x4", 1},
        {"indices without a mask", {{"icl4", Bytes(512)}, {"ich8", Bytes(2304)}}, "none", 2},
        {"mini icons", {{"icm4", Bytes(96)}, {"icm8", Bytes(192)}, {"icm#", pairMini}}, "16x12x1 16x12x4 16x12x8", 3},
        {"it32 with its four bytes",
         {{"it32", Join({{9, 9, 9, 9}, FlatPlanes(16384, 1, 2, 3)})}, {"t8mk", Repeat(9, 16384)}},
         "128x128x32",
         1},
        {"unknown ones are passed over",
         {{"TOC ", Bytes(16)}, {"ics#", Repeat(1, 64)}, {"ic10", Bytes(5)}},
         "16x16x1",
         1},
    };
    for (const auto& c : cases) {
        const auto family = BuildIcns(c.elements);
        EXPECT_EQ(FormatsIn(family), c.formats) << c.what;
        EXPECT_EQ(CountIcnsImages(family), c.count) << c.what;
    }
    // The better mask decides wherever it stands.
    CIconGroup group;
    ASSERT_TRUE(Read(BuildIcns({{"ICN#", pair32}, {"icl4", Bytes(512)}, {"ICNm", mask32}}), group));
    Surface image, hidden;
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(ToBitmaps(*group.GetIcon(i), image, hidden));
        EXPECT_EQ(hidden.At(3, 3), 0xFFFFFFu) << i;
    }
}

TEST(IcnsRead, WhatIsDamagedIsLeftOutAndTheRestLoads) {
    const test::IcnsElementParts good{"ics#", Repeat(0xFF, 64)};
    const auto alpha = test::IcnsElementParts{"l8mk", Repeat(9, 1024)};
    Bytes overrun = FlatPlanes(1024, 1, 2, 3);
    overrun.resize(overrun.size() - 1);
    const struct {
        const char* what;
        Parts elements;
        const char* formats;
    } cases[] = {
        {"a plane of the wrong size", {{"ics4", Bytes(127)}, good, {"ics8", Bytes(257)}}, "16x16x1"},
        {"half a pair", {{"ICN#", Bytes(128)}, good}, "16x16x1"},
        {"planes that end early", {{"il32", overrun}, alpha, good}, "16x16x1"},
        {"it32 without its zeros", {{"it32", Bytes(3)}, {"t8mk", Bytes(16384)}, good}, "16x16x1"},
        {"a stream that is none", {{"ic08", Repeat(1, 50)}, good, {"ic09", Bytes()}}, "16x16x1"},
        {"a length behind the family's end", {good, {"ics4", Bytes(128), 1000}}, "16x16x1"},
        {"a length below that of the header", {good, {"ics4", {}, -3}, good}, "16x16x1"},
        {"a length of 0", {good, {"ics4", {}, -8}}, "none"},
        {"a length above the limit", {good, {"ics4", Bytes(128), 0x100000}}, "none"},
        {"nothing but the header", {}, "none"},
    };
    for (const auto& c : cases) EXPECT_EQ(FormatsIn(BuildIcns(c.elements)), c.formats) << c.what;

    auto family = BuildIcns({good, good});
    for (const std::uint32_t total : {0u, 0x100001u, 0xFFFFFFFFu}) {
        StoreU32BE(family.data() + 4, total);
        EXPECT_EQ(FormatsIn(family), "none") << total;
        EXPECT_EQ(CountIcnsImages(family), 0) << total;
    }
    StoreU32BE(family.data() + 4, 0x100000);
    EXPECT_EQ(FormatsIn(family), "16x16x1 16x16x1") << "the file ends before the family does";
    StoreU32BE(family.data() + 4, 8 + 72);
    EXPECT_EQ(FormatsIn(family), "16x16x1") << "the family ends before the file does";
    EXPECT_EQ(FormatsIn(BuildIcns({good}, "odrp")), "16x16x1");
    EXPECT_EQ(FormatsIn(BuildIcns({good}, "icnv")), "none");
}

// A hundred thousand images that look for their masks.
TEST(IcnsRead, ManyElementsCostNoMoreThanTheirBytes) {
    EXPECT_EQ(FormatsIn(BuildIcns(Parts(100'000, {"is32", {}}))), "none");
}

TEST(IcnsRead, StreamsMustHaveTheSizeOfTheirKind) {
    Bytes streams[3];
    const int sides[] = {256, 512, 128};
    for (int i = 0; i < 3; ++i) {
        const auto picture = DIBFromSurface(test::FlatSurface(sides[i], sides[i], 0x40102030));
        ASSERT_EQ(WriteJpeg2000(picture, {}, streams[i]), 0);
    }
    EXPECT_EQ(FormatsIn(BuildIcns({{"ic08", streams[0]}, {"ic09", streams[1]}})), "512x512x32 256x256x32");
    EXPECT_EQ(FormatsIn(BuildIcns({{"ic08", streams[2]}, {"ic09", streams[0]}})), "none");
    // Pixels that may still be made are counted.
    CIconGroup group;
    std::int64_t pixels = 256 * 256;
    EXPECT_TRUE(ReadIcnsFamily(BuildIcns({{"ic08", streams[0]}, {"ic08", streams[0]}}), group, pixels));
    EXPECT_EQ(group.GetCount(), 1);
    EXPECT_EQ(pixels, 0);
    // A stream without alpha is opaque.
    Bytes opaque;
    const auto picture = ConvertDIBTo24(DIBFromSurface(test::FlatSurface(256, 256, 0x102030)));
    ASSERT_EQ(WriteJpeg2000(picture, {}, opaque), 0);
    ASSERT_TRUE(Read(BuildIcns({{"ic08", opaque}}), group));
    const auto& block = group.GetIcon(0)->m_hImage;
    EXPECT_EQ(LoadU32LE(block.data() + kDibHeaderSize), 0xFF102030u);
}

TEST(IcnsRead, TheFirstFamilyOfAFileIsFound) {
    const auto family = BuildIcns({{"ics#", Bytes(64)}});
    const struct {
        const char* what;
        Bytes before;
        std::optional<std::size_t> position;
    } cases[] = {
        {"at the start", {}, 0},
        {"somewhere", Repeat('x', 1000), 1000},
        {"behind a part of the tag", {'i', 'c', 'i', 'c', 'n', 'i'}, 6},
        {"behind a zero byte, within the header", Join({{0}, Repeat('x', 10)}), {}},
        {"behind a header that begins with a zero byte", Bytes(128), 128},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FindIcnsFamily(Join({c.before, family})), c.position) << c.what;
        EXPECT_EQ(CountIcnsImages(Join({c.before, family})), c.position ? 1 : 0) << c.what;
    }
    EXPECT_EQ(FindIcnsFamily({}), std::nullopt);
    EXPECT_EQ(CountIcnsImages(family, 5), 0);
    EXPECT_EQ(CountIcnsImages(family, family.size() + 1), 0);
}

// ---- writing ----

TEST(IcnsWrite, BytesOfASmallFamily) {
    // Two colours in the top row, the second pixel hidden; one image a depth.
    CIconGroup icon;
    icon.Append(MakeImage(16, 12, 1, [](const IconBlockLayout& layout, Bytes& block) {
        StoreU32LE(&block[40], 0x808080); // light enough to be white
        StoreU32LE(&block[44], 0x7F7F80); // dark enough to be black
        block[layout.xorRows + layout.xorStride * 11] = 0xC0;
        block[layout.andRows + layout.andStride * 11] = 0x40;
    }));
    icon.Append(MakeImage(16, 12, 4, [](const IconBlockLayout& layout, Bytes& block) {
        StoreU32LE(&block[40], 0xFFFFFF);
        StoreU32LE(&block[44], 0xD00000);
        block[layout.xorRows + layout.xorStride * 11] = 0x10;
        block[layout.andRows + layout.andStride * 11] = 0x01; // another mask, which comes too late
    }));
    std::vector<IcnsRecord> records;
    ByteWriter out;
    out.Zeros(3);
    ASSERT_TRUE(WriteIcnsFamily(icon, out, &records));
    ByteWriter wanted;
    wanted.Zeros(3);
    wanted.Text("icns");
    wanted.U32BE(8 + 56 + 104);
    wanted.Text("icm#");
    wanted.U32BE(56);
    wanted.U16BE(0x8000); // the black pixel that is hidden counts as light grey
    wanted.Zeros(22);
    wanted.U16BE(0xBFFF);
    wanted.Raw(Repeat(0xFF, 22));
    wanted.Text("icm4");
    wanted.U32BE(104);
    wanted.U8(0x30);
    wanted.Zeros(2);
    wanted.U8(0x0C); // so does the white one here
    wanted.Zeros(92);
    EXPECT_EQ(out.Take(), wanted.Take());
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].type, "icns");
    EXPECT_EQ(records[0].position, 3u);
    EXPECT_EQ(records[2].type, "icm4");
    EXPECT_EQ(records[2].position, 3u + 8 + 56);
}

TEST(IcnsWrite, ElementsByRankAndOnlyFormatsThatFit) {
    const struct {
        const char* what;
        std::vector<IconFormat> formats;
        const char* types;
    } cases[] = {
        {"all of a system's",
         {{128, 128, 32},
          {48, 48, 32},
          {32, 32, 32},
          {16, 16, 32},
          {48, 48, 8},
          {32, 32, 8},
          {16, 16, 8},
          {48, 48, 4},
          {32, 32, 4},
          {16, 16, 4},
          {48, 48, 1},
          {32, 32, 1},
          {16, 16, 1},
          {16, 12, 8},
          {16, 12, 4},
          {16, 12, 1},
          {256, 256, 32},
          {512, 512, 32}},
         "h8mk ic08 ic09 ich# ich4 ich8 icl4 icl8 icm# icm4 icm8 ICN# ics# ics4 ics8 ih32 il32 is32 it32 l8mk s8mk "
         "t8mk"},
        {"masks without 1-bit images", {{32, 32, 8}, {16, 16, 4}}, "icl8 ICN# ics# ics4"},
        {"24 bits are left out", {{32, 32, 24}, {16, 16, 32}}, "is32 s8mk"},
        {"sizes that no family has", {{24, 24, 32}, {128, 128, 8}, {16, 12, 32}, {16, 16, 1}}, "ics#"},
    };
    for (const auto& c : cases) {
        const auto icon = test::MakeIcon("x", c.formats);
        EXPECT_EQ(TypesIn(Written(*icon)), c.types) << c.what;
        int allowed = 0;
        for (const auto& format : c.formats) allowed += IcnsAllows(format) ? 1 : 0;
        CIconGroup back;
        ASSERT_TRUE(Read(Written(*icon), back)) << c.what;
        // A mask that stands alone reads back as an image of its own.
        EXPECT_EQ(back.GetCount(), allowed + (std::string_view(c.what).starts_with("masks") ? 2 : 0)) << c.what;
    }
    EXPECT_TRUE(Written(*test::MakeIcon("x", {{32, 32, 24}, {24, 24, 8}})).empty());
    EXPECT_TRUE(Written(CIconGroup()).empty());
    EXPECT_EQ(IcnsRank("icns"), 0);
}

TEST(IcnsWrite, TheFirstMaskOfASizeStays) {
    const auto hidden = [](int column) {
        return [column](const IconBlockLayout& layout, Bytes& block) {
            for (int y = 0; y < 16; ++y) {
                block[layout.andRows + layout.andStride * static_cast<std::size_t>(y)] =
                    static_cast<std::uint8_t>(0x80 >> column);
            }
        };
    };
    for (const bool pairFirst : {true, false}) {
        CIconGroup icon;
        if (pairFirst) icon.Append(MakeImage(16, 16, 1, hidden(1)));
        icon.Append(MakeImage(16, 16, 8, hidden(2)));
        if (!pairFirst) icon.Append(MakeImage(16, 16, 1, hidden(1)));
        const auto elements = ElementsOf(Written(icon));
        ASSERT_EQ(elements.size(), 2u);
        EXPECT_EQ(elements[0].first, "ics#");
        EXPECT_EQ(elements[0].second[0], 0xBF) << "the image of the pair, black where it is shown";
        EXPECT_EQ(elements[0].second[32], pairFirst ? 0xBF : 0xDF);
    }
    // A mask alone stands for the image too.
    CIconGroup icon;
    icon.Append(MakeImage(16, 16, 8, hidden(2)));
    const auto pair = ElementsOf(Written(icon))[0].second;
    EXPECT_EQ(Bytes(pair.begin(), pair.begin() + 32), Bytes(pair.begin() + 32, pair.end()));
}

TEST(IcnsWrite, AlphaImagesComeBackPixelForPixel) {
    CIconGroup icon;
    std::map<int, Bytes> blocks;
    for (const int side : {16, 32, 48, 128, 256}) {
        icon.Append(MakeImage(side, side, 32, [&](const IconBlockLayout& layout, Bytes& block) {
            const auto noise = test::RandomSurface(side, side, static_cast<unsigned>(side));
            std::copy(noise.Span().begin(), noise.Span().end(), block.begin() + static_cast<int>(layout.xorRows));
        }));
        blocks[side] = icon.m_arrIcons.back()->m_hImage;
    }
    CIconGroup back;
    const auto family = Written(icon);
    ASSERT_TRUE(Read(family, back));
    ASSERT_EQ(back.GetCount(), 5);
    for (const auto& image : back.m_arrIcons) {
        const auto& block = image->m_hImage;
        const auto& wanted = blocks[image->m_nWidth];
        EXPECT_TRUE(
            std::equal(block.begin() + kDibHeaderSize, block.end(), wanted.begin() + kDibHeaderSize, wanted.end()))
            << image->m_nWidth;
    }
    EXPECT_EQ(Written(back), family) << "and so does the family";
    for (const auto& [type, payload] : ElementsOf(family)) {
        if (type == "it32") {
            EXPECT_EQ(Bytes(payload.begin(), payload.begin() + 4), Bytes(4));
        }
    }
}

TEST(IcnsWrite, AFamilyReadAndWrittenAgainIsTheSame) {
    CIconGroup icon, back;
    for (const auto& [width, height] : {std::pair{16, 12}, {16, 16}, {32, 32}, {48, 48}}) {
        for (const int bits : {1, 4, 8}) {
            icon.Append(MakeImage(width, height, bits, [bits](const IconBlockLayout& layout, Bytes& block) {
                unsigned seed = 7;
                const auto noise = [&] {
                    return static_cast<std::uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
                };
                if (bits > 1) std::generate(block.begin() + kDibHeaderSize, block.end(), noise);
                std::fill(block.begin() + static_cast<int>(layout.andRows), block.end(), std::uint8_t{0x5A});
            }));
        }
    }
    const auto family = Written(icon);
    ASSERT_TRUE(Read(family, back));
    EXPECT_EQ(Written(back), family) << "what stands under the mask comes out the same as well";
}

TEST(IcnsWrite, AFamilyThatCouldNotBeReadAgainIsRefused) {
    CIconGroup icon;
    icon.Append(MakeImage(512, 512, 32, [](const IconBlockLayout& layout, Bytes& block) {
        unsigned seed = 5;
        for (auto at = layout.xorRows; at < layout.andRows; ++at)
            block[at] = static_cast<std::uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
    }));
    ByteWriter out;
    EXPECT_THROW((void)WriteIcnsFamily(icon, out), FileException);
}

} // namespace
} // namespace pelorin
