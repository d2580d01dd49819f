#include "icon/format_search.h"
#include "icon/standard_formats.h"

#include <gtest/gtest.h>

#include <vector>

namespace pelorin {
namespace {

TEST(StandardFormats, DefaultsAreThoseOfANewIcon) {
    int windows = 0, macintosh = 0;
    for (std::size_t i = 0; i < StandardFormats(false).size(); ++i) windows += IsDefaultFormat(false, i) ? 1 : 0;
    for (std::size_t i = 0; i < StandardFormats(true).size(); ++i) macintosh += IsDefaultFormat(true, i) ? 1 : 0;
    EXPECT_EQ(windows, 9);
    EXPECT_EQ(macintosh, 13);
    EXPECT_EQ(StandardFormats(false).size(), 23u);
    EXPECT_EQ(StandardFormats(true).size(), 18u);
    EXPECT_EQ(StandardFormats(false)[14], (IconFormat{256, 256, 4}));
    EXPECT_EQ(StandardFormats(true)[13], (IconFormat{16, 12, 8}));
}

TEST(StandardFormats, RulesOfTheMacintosh) {
    const struct {
        IconFormat format;
        FormatRule rule;
    } cases[] = {
        {{128, 128, 8}, FormatRule::OnlyAlpha128}, {{128, 128, 32}, FormatRule::Allowed},
        {{256, 256, 1}, FormatRule::OnlyAlpha256}, {{512, 512, 4}, FormatRule::OnlyAlpha512},
        {{16, 12, 32}, FormatRule::NoAlpha},       {{16, 12, 8}, FormatRule::Allowed},
        {{48, 48, 1}, FormatRule::Allowed},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CheckFormat(c.format, true), c.rule) << c.format.width << " " << c.format.bits;
        EXPECT_EQ(CheckFormat(c.format, false), FormatRule::Allowed);
    }
    EXPECT_FALSE(MayBeCompressed(256, 255));
}

TEST(FormatSearch, TheEarliestStaysAtATie) {
    const std::vector<IconFormat> formats = {{16, 16, 8}, {48, 48, 8}, {16, 16, 8}};
    EXPECT_EQ(FindBestFormat(formats, 32, 32), 0);
    EXPECT_EQ(FindBestFormat(formats, 33, 32), 1);
    EXPECT_EQ(FindBestFormat({}, 16, 64), -1);
}

TEST(FormatSearch, DepthWeighsTwice) {
    // 8 bits at 16 pixels: 32 + 2 x 32 away; 32 bits at 48 pixels: 64 away.
    const std::vector<IconFormat> formats = {{16, 16, 8}, {48, 48, 32}};
    EXPECT_EQ(FindBestFormat(formats, 16, 64), 0) << "64 against 64: the first";
    EXPECT_EQ(FindBestFormat(formats, 17, 64), 1);
}

TEST(FormatSearch, SourceOfANewFormat) {
    const std::vector<IconFormat> formats = {{48, 48, 4}, {48, 48, 32}, {48, 48, 8}, {32, 16, 24}, {64, 64, 32}};
    EXPECT_EQ(FindBestSourceFor(formats, {48, 48, 4}, false), 1) << "same size, most bits above the wanted depth";
    EXPECT_EQ(FindBestSourceFor(formats, {32, 32, 8}, false), 3) << "the same width is enough where no size fits";
    EXPECT_EQ(FindBestSourceFor(formats, {16, 16, 8}, false), 4) << "else the widest with alpha";
    EXPECT_EQ(FindBestSourceFor(formats, {48, 48, 32}, false), 4)
        << "nothing is above 32 bits, so the widest with alpha";
    const std::vector<IconFormat> opaque = {{48, 48, 4}, {16, 16, 1}};
    EXPECT_EQ(FindBestSourceFor(opaque, {24, 24, 32}, false), 1) << "else the score: 142 against 146";
}

TEST(FormatSearch, MacintoshComparesHeights) {
    const std::vector<IconFormat> formats = {{16, 16, 8}, {16, 12, 8}};
    EXPECT_EQ(FindBestSource(formats, 4, 2, true), 1);
    EXPECT_EQ(FindBestSource(formats, 3, 2, true), 0);
}

} // namespace
} // namespace pelorin
