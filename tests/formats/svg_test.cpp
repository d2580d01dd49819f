#include "formats/load_image.h"
#include "formats/svg.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>
#include <zlib.h>

namespace pelorin {
namespace {

using test::At;

Bytes Text(std::string_view text) {
    return {text.begin(), text.end()};
}

// Left half opaque red, right half blue of half the strength.
constexpr std::string_view kHalves = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20\" height=\"10\">"
                                     "<rect width=\"10\" height=\"10\" fill=\"#ff0000\"/>"
                                     "<rect x=\"10\" width=\"10\" height=\"10\" fill=\"#0000ff\" fill-opacity=\"0.5\"/>"
                                     "</svg>";

Bytes Gzip(std::string_view text) {
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY), Z_OK);
    Bytes packed(text.size() + 64);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

TEST(SvgFile, IsToldByItsFirstElement) {
    for (const auto* text :
         {"<svg/>", "\xEF\xBB\xBF \n<svg width='1'>", "<?xml version='1.0'?>\n<!-- a > b -->\n<svg\n>",
          "<!DOCTYPE svg PUBLIC \"-//W3C//DTD SVG 1.1//EN\" \"x.dtd\" [ <!ENTITY ns \"a>b\"> ]>\n<svg>",
          "<x:svg xmlns:x='http://www.w3.org/2000/svg'/>"})
        EXPECT_TRUE(IsSvg(Text(text))) << text;
    for (const auto* text :
         {"", "<", "<!--", "<?xml", "svg", "<html><svg/></html>", "<svgx/>", "<!DOCTYPE [", "<!-- <svg> -->"})
        EXPECT_FALSE(IsSvg(Text(text))) << text;
    EXPECT_TRUE(IsSvg(Gzip(kHalves)));
    EXPECT_FALSE(IsSvg(Gzip("<html/>")));
    auto cut = Gzip(kHalves);
    cut.resize(19);
    EXPECT_FALSE(IsSvg(cut));
}

class SvgPicture : public ::testing::Test {
protected:
    void SetUp() override {
        if (!CanDrawSvg()) GTEST_SKIP() << "librsvg is not installed";
    }
    DibBlock Read(const Bytes& file, Size box = {}) {
        PictureRequest request;
        request.drawnFor = box;
        return ReadPicture(file, 0, request, m_facts);
    }
    PictureFacts m_facts;
};

TEST_F(SvgPicture, HasItsOwnSizeAndStraightAlpha) {
    for (const auto& file : {Text(kHalves), Gzip(kHalves)}) {
        const auto block = Read(file);
        ASSERT_EQ(DIBWidth(block), 20);
        ASSERT_EQ(DIBHeight(block), 10);
        ASSERT_EQ(DIBBitCount(block), 32);
        EXPECT_EQ(At(block, 4, 5), 0xFFFF0000u);
        const auto half = At(block, 15, 5);
        EXPECT_NEAR(half >> 24, 128, 1);
        EXPECT_EQ(half & 0xFFFFFF, 0x0000FFu);
        EXPECT_EQ(m_facts.format, "SVG");
    }
}

TEST_F(SvgPicture, FillsABoxAndKeepsItsShape) {
    const auto block = Read(Text(kHalves), {100, 100});
    ASSERT_EQ(DIBWidth(block), 100);
    ASSERT_EQ(DIBHeight(block), 50);
    EXPECT_EQ(At(block, 49, 25), 0xFFFF0000u) << "drawn, not scaled: the border is sharp";
    EXPECT_EQ(At(block, 50, 25) & 0xFFFFFF, 0x0000FFu);
    EXPECT_EQ(m_facts.width, 20);
    EXPECT_EQ(DIBWidth(Read(Text(kHalves), {1, 1})), 1);
}

TEST_F(SvgPicture, SizesThatAreNotWrittenInPixels) {
    const auto sized = [&](std::string_view attributes) {
        const auto text = "<svg xmlns=\"http://www.w3.org/2000/svg\" " + std::string(attributes) + "/>";
        const auto block = Read(Text(text));
        EXPECT_TRUE(block) << text;
        return Size{DIBWidth(block), DIBHeight(block)};
    };
    EXPECT_EQ(sized("width='1in' height='0.5in'"), (Size{96, 48}));
    EXPECT_EQ(sized("width='20.2' height='9.9'"), (Size{21, 10}));
    EXPECT_EQ(sized("viewBox='0 0 30 40'"), (Size{30, 40}));
    EXPECT_EQ(sized("width='100%' height='100%' viewBox='0 0 30 40'"), (Size{30, 40}));
    EXPECT_EQ(sized(""), (Size{512, 512}));
    const auto vast = sized("width='1000000' height='10'");
    EXPECT_EQ(vast, (Size{8192, 1})) << "fitted into the largest side";
}

TEST_F(SvgPicture, DamageGivesNothingAndNoFileIsReadThroughIt) {
    EXPECT_FALSE(Read(Text("<svg")));
    EXPECT_FALSE(Read(Text("<svg xmlns='http://www.w3.org/2000/svg'><rect></svg>")));
    const std::string outside =
        "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
        "width='8' height='8'><image width='8' height='8' xlink:href='file://" PELORIN_SOURCE_DIR
        "/resources/samples/pelorus.png'/></svg>";
    const auto block = Read(Text(outside));
    ASSERT_TRUE(block);
    EXPECT_EQ(At(block, 4, 4), 0u);
}

} // namespace
} // namespace pelorin
