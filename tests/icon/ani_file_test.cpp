#include "icon/ani_file.h"
#include "icon/riff.h"
#include "support/dib_builder.h"
#include "support/hostile.h"
#include "support/ico_builder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::BuildIco;
using test::BuildIconBlock;

// One pixel of 32 bits.
Bytes Frame(std::uint8_t blue, int type = 2) {
    return BuildIco({{.image = BuildIconBlock({.behind = {blue, 2, 3, 200, 0, 0, 0, 0}}), .bits = 9, .planes = 7}},
                    type);
}

struct Ani {
    std::vector<Bytes> frames = {Frame(10), Frame(20)};
    std::uint32_t steps = 2, flags = 1, headerFrames = 2;
    std::vector<std::uint32_t> rates{}, sequence{};
    std::string title{}, artist{};
    bool sequenceLast = false;
};

Bytes Numbers(const std::vector<std::uint32_t>& numbers) {
    ByteWriter out;
    for (const auto n : numbers) out.U32LE(n);
    return out.Take();
}

Bytes FrameList(const std::vector<Bytes>& frames) {
    ByteWriter list;
    ChunkWriteFourCC(list, "fram");
    ChunkWrite(list, "junk", Bytes{1, 2, 3});
    for (const auto& frame : frames) ChunkWrite(list, "icon", frame);
    return list.Take();
}

Bytes Build(const Ani& ani) {
    ByteWriter body;
    ChunkWriteFourCC(body, "ACON");
    ByteWriter info;
    ChunkWriteFourCC(info, "INFO");
    ChunkWrite(info, "INAM", AsBytes(ani.title));
    ChunkWrite(info, "ICOP", AsBytes("odd"));
    ChunkWrite(info, "IART", AsBytes(ani.artist));
    ChunkWrite(body, "LIST", info.View());
    ChunkWrite(body, "anih", Numbers({36, ani.headerFrames, ani.steps, 0, 0, 0, 0, 6, ani.flags}));
    const auto tables = [&] {
        if (!ani.rates.empty()) ChunkWrite(body, "rate", Numbers(ani.rates));
        if (!ani.sequence.empty()) ChunkWrite(body, "seq ", Numbers(ani.sequence));
    };
    if (!ani.sequenceLast) tables();
    ChunkWrite(body, "LIST", FrameList(ani.frames));
    if (ani.sequenceLast) tables();
    ByteWriter file;
    ChunkWrite(file, "RIFF", body.View());
    return file.Take();
}

// Blue of every step, with its rate: 10 + 60 for a frame of 10 that is shown for a second.
std::vector<std::pair<int, int>> StepsOf(const Ani& ani) {
    std::vector<CAniObject> list;
    const int count = ReadAniFile(Build(ani), list);
    EXPECT_EQ(static_cast<std::size_t>(count), list.size());
    std::vector<std::pair<int, int>> steps;
    for (const auto& object : list) {
        steps.emplace_back(BlueOf(At(object.m_Dib.Block(), 0, 0)), object.m_Dib.m_nFrameRate);
    }
    return steps;
}

TEST(Riff, PaddingAndLimits) {
    ByteWriter out;
    ChunkWrite(out, "abcd", Bytes{1, 2, 3});
    EXPECT_EQ(out.View().size(), 12u);
    ChunkWrite(out, "even", Bytes{4, 5});
    const Bytes bytes = out.Take();
    ByteReader in(bytes);
    RiffChunk chunk;
    ASSERT_TRUE(ChunkReadHeader(in, chunk));
    const auto data = ChunkReadLimited(in, chunk, 2);
    EXPECT_EQ(Bytes(data.begin(), data.end()), (Bytes{1, 2}));
    ASSERT_TRUE(ChunkReadHeader(in, chunk));
    EXPECT_EQ(chunk.id, "even");
    ChunkSkip(in, chunk);
    EXPECT_FALSE(ChunkReadHeader(in, chunk));
    EXPECT_EQ(Checksum(Bytes{255, 255, 2}), 512u);
}

TEST(Ani, FrameInMemory) {
    const Bytes bytes = {1, 2, 3};
    ByteReader in(bytes);
    ByteReader shorter(bytes);
    EXPECT_TRUE(ReadIconFrame(shorter, 4).empty());
    const auto frame = ReadIconFrame(in, 3);
    Bytes expected(39);
    expected[12] = 6;
    std::memcpy(&expected[24], "icon\3", 5);
    std::memcpy(&expected[32], bytes.data(), 3);
    EXPECT_EQ(frame, expected);
}

TEST(Ani, StepsRatesAndSequence) {
    using Steps = std::vector<std::pair<int, int>>;
    EXPECT_EQ(StepsOf({}), (Steps{{10, 6}, {20, 6}}));
    EXPECT_EQ(StepsOf({.steps = 3, .rates = {1, 2, 3}, .sequence = {1, 0, 1}}), (Steps{{20, 1}, {10, 2}, {20, 3}}))
        << "a frame used twice stands twice";
    EXPECT_EQ(StepsOf({.steps = 3, .rates = {1}, .sequence = {1, 7}}), (Steps{{20, 1}}))
        << "short tables leave the rest, and frames that are not there leave no step";
    EXPECT_EQ(StepsOf({.steps = 1, .sequence = {1, 1, 1}}), (Steps{{20, 6}})) << "no more steps than the header says";
    EXPECT_EQ(StepsOf({.sequence = {1, 1}, .sequenceLast = true}), (Steps{{10, 6}, {20, 6}}));
    EXPECT_EQ(StepsOf({.frames = {Frame(10), {1, 2, 3}}}), Steps()) << "a frame that is no icon ends everything";
    EXPECT_EQ(StepsOf({.flags = 2}), Steps()) << "raw frames";
    EXPECT_EQ(StepsOf({.headerFrames = 0}), Steps());
    EXPECT_EQ(StepsOf({.steps = 0xFFFFFFFF}), Steps());
}

TEST(Ani, PixelsGoByAlphaOrMask) {
    std::vector<CAniObject> list;
    // Two pixels of 1 bit, red and blue; the second is transparent.
    const auto mono =
        BuildIconBlock({.width = 2, .bits = 1, .behind = {0, 0, 255, 0, 255, 0, 0, 0, 0x40, 0, 0, 0, 0x40, 0, 0, 0}});
    ASSERT_EQ(ReadAniFile(Build({.frames = {Frame(10, 1), BuildIco({{.image = mono}})}}), list), 2);
    EXPECT_EQ(At(list[0].m_Dib.Block(), 0, 0), 0xC803020Au);
    EXPECT_EQ(At(list[1].m_Dib.Block(), 0, 0), 0xFFFF0000u);
    EXPECT_EQ(At(list[1].m_Dib.Block(), 1, 0), 0u);
}

Argb FirstPixel(const test::IconBlockParts& parts, std::uint16_t planes, std::uint32_t entryBytes = 0) {
    auto block = BuildIconBlock(parts);
    StoreU16LE(&block[12], planes);
    auto file = BuildIco({{.image = block}});
    if (entryBytes != 0) StoreU32LE(&file[14], entryBytes);
    std::vector<CAniObject> list;
    if (ReadAniFile(Build({.frames = {file}, .steps = 1}), list) != 1) return 0;
    return At(list[0].m_Dib.Block(), 0, 0);
}

// The pixels' depth is planes x bit count, and the table goes by the depth, not by the colours used.
TEST(Ani, DepthAndTable) {
    Bytes table(64);
    table[4 * 5 + 2] = 200; // entry 5 is red
    auto four = table;
    four.insert(four.end(), {0x50, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(FirstPixel({.bits = 4, .behind = four}, 1), 0xFFC80000u);
    EXPECT_EQ(FirstPixel({.bits = 4, .colorsUsed = 6, .behind = four}, 1), 0xFFC80000u);
    EXPECT_EQ(FirstPixel({.bits = 1, .colorsUsed = 2, .behind = four}, 4), 0xFFC80000u);
    EXPECT_EQ(FirstPixel({.bits = 4, .behind = four}, 0), 0xFFC80000u) << "no planes are one plane";
    auto cut = Bytes(table.begin(), table.begin() + 24);
    cut.insert(cut.end(), {0x50, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(FirstPixel({.bits = 4, .colorsUsed = 6, .behind = cut}, 1, 72), 0xFFC80000u)
        << "the directory's size shows that the table is cut";
    EXPECT_EQ(FirstPixel({.bits = 16, .behind = {0, 0xF8, 0, 0, 0, 0, 0, 0}}, 1), 0xFFF80000u);
    EXPECT_EQ(FirstPixel({.bits = 16, .behind = {0, 0xF8, 0, 0, 0x80, 0, 0, 0}}, 1), 0u) << "masked";
    EXPECT_EQ(FirstPixel({.bits = 2, .behind = Bytes(100)}, 1), 0u);
}

TEST(Ani, AListMayClaimTooMuch) {
    auto file = Build({.title = "t"});
    ASSERT_EQ(AsText(ByteSpan(file).subspan(12, 4)), "LIST");
    StoreU32LE(&file[16], LoadU32LE(&file[16]) + 2);
    std::vector<CAniObject> list;
    AniInfo info;
    EXPECT_EQ(ReadAniFile(file, list, &info), 2);
    EXPECT_EQ(info.title, "t");
}

TEST(Ani, TextsAreCut) {
    std::vector<CAniObject> list;
    AniInfo info;
    ASSERT_EQ(ReadAniFile(Build({.title = std::string(100, 'x'), .artist = std::string("odd\0rest", 8)}), list, &info),
              2);
    EXPECT_EQ(info.title, std::string(80, 'x'));
    EXPECT_EQ(info.artist, "odd");
    EXPECT_EQ(info.defaultRate, 6);
}

TEST(Ani, AsPictureAndAsIcons) {
    const auto file = Build({.rates = {4, 5}, .sequence = {1, 1}});
    EXPECT_TRUE(IsAni(file));
    PictureFacts facts;
    PictureRequest request;
    request.frame = 1;
    EXPECT_EQ(At(ReadAni(file, request, facts), 0, 0), 0xC8030214u);
    EXPECT_EQ(facts.frames, 2);
    EXPECT_EQ(facts.delay, 5);
    EXPECT_EQ(facts.delaysMs, (std::vector<int>{66, 83}));
    request.frame = 2;
    EXPECT_FALSE(ReadAni(file, request, facts));

    std::vector<int> blues;
    EXPECT_TRUE(VisitAniFrames(file, [&](CIconGroup& group) {
        blues.push_back(group.GetIcon(0)->m_hImage[40]);
        return true;
    }));
    EXPECT_EQ(blues, (std::vector{10, 20})) << "each frame once, in the order of the file";
    CIconGroup first;
    ASSERT_TRUE(ReadAniPreview(file, first));
    EXPECT_EQ(first.GetIcon(0)->m_hImage[40], 10);
}

TEST(Ani, SurvivesDamage) {
    const auto file = Build({.steps = 2, .rates = {1, 2}, .sequence = {1, 0}, .title = "t"});
    test::ExpectSurvivesDamage(ReadAni, file);
    for (std::size_t size = 0; size < file.size(); ++size) {
        const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
        std::vector<CAniObject> list;
        EXPECT_EQ(ReadAniFile(cut, list), 0) << size << " bytes";
    }
    // One frame of 2048 x 2048 that is shown again and again.
    auto large = BuildIconBlock({.width = 2048, .doubledHeight = 4096});
    std::vector<CAniObject> list;
    EXPECT_EQ(ReadAniFile(Build({.frames = {BuildIco({{.image = large}})}, .steps = 1}), list), 0)
        << "no pixels at all";
    const auto odd =
        BuildIconBlock({.width = 2048, .doubledHeight = 4096, .bits = 4, .colorsUsed = 3, .behind = Bytes(12)});
    EXPECT_EQ(ReadAniFile(Build({.frames = {BuildIco({{.image = odd}})}, .steps = 1}), list), 0) << "no depth";
    large.resize(large.size() + std::size_t{2048} * 2048 * 4);
    EXPECT_EQ(ReadAniFile(Build({.frames = {BuildIco({{.image = large}})}, .steps = 1}), list), 1);
    list.clear();
    const Ani many{.frames = {BuildIco({{.image = large}})}, .steps = 40, .sequence = std::vector<std::uint32_t>(40)};
    EXPECT_EQ(ReadAniFile(Build(many), list), 0);
}

} // namespace
} // namespace pelorin
