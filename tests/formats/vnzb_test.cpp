#include "base/trace.h"
#include "formats/bmp.h"
#include "formats/program_resources.h"
#include "formats/vnzb_file.h"
#include "support/dib_builder.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

Bytes SomeContent(std::size_t size) {
    Bytes content(size);
    for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<std::uint8_t>(i * i >> 3);
    return content;
}

TEST(Vnzb, EverySizeComesBack) {
    for (const std::size_t size : {0u, 1u, 5u, 100u, 70000u}) {
        const auto content = SomeContent(size);
        const auto block = CompressVnzb(content);
        ASSERT_GE(block.size(), 8u);
        EXPECT_EQ(AsText(ByteSpan(block).first(4)), "VNZB");
        EXPECT_EQ(LoadU32LE(block.data() + 4), size);
        EXPECT_EQ(LoadU16BE(block.data() + 8), 0x789C) << "zlib's default level";
        EXPECT_EQ(UncompressVnzb(block), content) << size;

        const auto headless = CompressVnzbHeadless(content);
        EXPECT_TRUE(std::equal(headless.begin(), headless.end(), block.begin() + 4, block.end()));
        EXPECT_EQ(UncompressVnzbHeadless(headless), content);
    }
}

TEST(Vnzb, ARecordedSizeBelowTheContentFailsAndOneAboveIsHarmless) {
    auto block = CompressVnzb(SomeContent(1000));
    for (const std::uint32_t recorded : {0u, 1u, 999u}) {
        StoreU32LE(block.data() + 4, recorded);
        EXPECT_FALSE(UncompressVnzb(block)) << recorded;
    }
    auto one = CompressVnzb(SomeContent(1));
    StoreU32LE(one.data() + 4, 0);
    EXPECT_FALSE(UncompressVnzb(one)) << "also where the content is a single byte";
    StoreU32LE(block.data() + 4, 0xFFFFFFFF);
    const auto content = UncompressVnzb(block);
    ASSERT_TRUE(content) << "4 GiB are not taken for a stream of a kilobyte";
    EXPECT_EQ(content->size(), 1000u);
}

TEST(Vnzb, DamageGivesNothing) {
    const auto block = CompressVnzb(SomeContent(1000));
    for (std::size_t size = 0; size < block.size(); ++size) EXPECT_FALSE(UncompressVnzb(ByteSpan(block).first(size)));
    auto magic = block;
    magic[3] = 'b';
    EXPECT_FALSE(UncompressVnzb(magic));
    EXPECT_FALSE(UncompressVnzb(block, 999)) << "above the caller's limit";
}

std::string traced;

TEST(Vnzb, FilesAndTheirTraceLines) {
    const test::TempFolder folder;
    const auto path = folder.Path("a.bin"), packed = folder.Path("a.vnzb");
    const auto content = SomeContent(3000);
    ASSERT_TRUE(CompressToVnzbFile(ByteSpan(content), packed));
    const auto block = LoadFileToBuffer(packed);
    EXPECT_EQ(block, CompressVnzb(content));
    ASSERT_TRUE(UncompressVnzbToFile(*block, path));
    EXPECT_EQ(LoadFileToBuffer(path), content);
    ASSERT_TRUE(CompressToVnzbFile(path, folder.Path("b.vnzb")));
    EXPECT_EQ(LoadFileToBuffer(folder.Path("b.vnzb")), block);
    SafeFile open(folder.Path("c.bin"));
    EXPECT_TRUE(UncompressVnzbToFile(*block, open));
    open.Commit();
    EXPECT_EQ(LoadFileToBuffer(folder.Path("c.bin")), content);

    EXPECT_FALSE(UncompressVnzbToFile(ByteSpan(*block).first(20), path));
    EXPECT_EQ(LoadFileToBuffer(path), content) << "a damaged block leaves the file as it was";

    const auto before = SetTraceSink([](std::string_view line) { traced += line; });
    EXPECT_FALSE(UncompressVnzbToFile(*block, "/nowhere/at/all"));
    EXPECT_FALSE(CompressToVnzbFile(ByteSpan(content), "/nowhere/at/all"));
    EXPECT_FALSE(LoadFileToBuffer("/nowhere/at/all"));
    SetTraceSink(before);
    EXPECT_EQ(traced, "[UncompressVnzbToFile()]: Can't create file /nowhere/at/all, error = 2\n"
                      "[CompressToVnzbFile()]: Can't create file /nowhere/at/all, error = 2\n"
                      "[LoadFileToBuffer()]: Can't OPEN file /nowhere/at/all, error = 2\n");
}

TEST(ProgramResources, AreFoundByTypeAndName) {
    const auto dll = ExtractVnzbResource("BLANKDLL");
    ASSERT_TRUE(dll);
    EXPECT_EQ(dll->size(), 40960u);
    EXPECT_TRUE(FindProgramResource("VNZB", "TYPEICLSMALLICO"));
    EXPECT_FALSE(FindProgramResource("RGBA", "TYPEICLSMALLICO"));
    EXPECT_FALSE(ExtractVnzbResource("BLANK"));

    const test::TempFolder folder;
    ASSERT_TRUE(ExtractVnzbResourceToPath("BLANKDLL", folder.Path("a.dll")));
    EXPECT_EQ(LoadFileToBuffer(folder.Path("a.dll")), dll);
    EXPECT_FALSE(ExtractVnzbResourceToPath("BLANK", folder.Path("b.dll")));
    EXPECT_FALSE(FileExists(folder.Path("b.dll")));
    SafeFile file(folder.Path("c.dll"));
    EXPECT_EQ(ExtractVnzbResource("BLANKDLL", file), 40960u);
}

TEST(ProgramResources, Pictures) {
    Bytes bmp;
    ASSERT_EQ(WriteBmp(test::Picture32(1, {0x80112233}), {}, bmp), 0);
    const auto packed = CompressVnzb(bmp);
    EXPECT_EQ(test::At(PictureOfResource({"RGBA", "A", bmp}), 0, 0), 0x80112233u);
    EXPECT_EQ(test::At(PictureOfResource({"RGBAZ", "A", packed}), 0, 0), 0x80112233u);
    EXPECT_FALSE(PictureOfResource({"RGBAZ", "A", bmp}));
    EXPECT_FALSE(PictureOfResource({"VNZB", "A", packed}));
}

} // namespace
} // namespace pelorin
