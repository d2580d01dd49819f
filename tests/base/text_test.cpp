#include "base/geometry.h"
#include "base/text.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

TEST(Text, DecodesUtf8OrElseWindows1252) {
    struct Row {
        std::string_view raw, expected;
    };
    const Row rows[] = {
        {"plain", "plain"},
        {"na\xC3\xAFve", "na\xC3\xAFve"},
        {"na\xEFve", "na\xC3\xAFve"},
        {"\x80\x99\x81", "\xE2\x82\xAC\xE2\x84\xA2\xC2\x81"},             // euro, trade mark, and a place left open
        {"\xC3", "\xC3\x83"},                                             // a sequence that is cut off
        {"\xC0\xAF", "\xC3\x80\xC2\xAF"},                                 // overlong
        {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xE2\x82\xAC"},                 // a surrogate
        {"\xF4\x90\x80\x80", "\xC3\xB4\xC2\x90\xE2\x82\xAC\xE2\x82\xAC"}, // above U+10FFFF
        {"\xF0\x9F\x8E\xA8", "\xF0\x9F\x8E\xA8"},
        {"", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DecodeText(row.raw), row.expected);
        EXPECT_EQ(IsValidUtf8(row.raw), row.raw == row.expected);
    }
}

TEST(Text, Utf16ThereAndBack) {
    const std::string text = "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xA8";
    const std::u16string wide = {u'A', 0xE9, 0x20AC, 0xD83C, 0xDFA8};
    EXPECT_EQ(Utf8ToUtf16(text), wide);
    EXPECT_EQ(Utf16ToUtf8(wide), text);
    const std::u16string broken = {0xDC00, u'x', 0xD800, u'y', 0xD83C};
    EXPECT_EQ(Utf16ToUtf8(broken), "\xEF\xBF\xBDx\xEF\xBF\xBDy\xEF\xBF\xBD");
    EXPECT_EQ(Utf8ToUtf16("a\xFFz"), (std::u16string{u'a', 0xFFFD, u'z'}));
}

TEST(Text, CaseFoldsAsciiOnly) {
    EXPECT_TRUE(EqualsNoCase("ICO", "ico"));
    EXPECT_FALSE(EqualsNoCase("\xC3\x89", "\xC3\xA9")) << "other letters stay apart";
    EXPECT_EQ(ToUpper("\xC3\xA9z"), "\xC3\xA9Z");
    EXPECT_LT(CompareNoCase("a", "B"), 0);
    EXPECT_GT(CompareNoCase("ab", "A"), 0);
    EXPECT_GT(CompareNoCase("\xC3", "z"), 0) << "bytes above 127 are large, not negative";
    EXPECT_TRUE(StartsWithNoCase("ICON_x", "icon_"));
    EXPECT_FALSE(StartsWithNoCase("ic", "icon"));
}

TEST(Text, RaisesTheFirstLetterOfSeveralAlphabets) {
    const struct {
        std::string_view text, raised;
    } rows[] = {{"", ""},
                {"ball x", "Ball x"},
                {"Ball", "Ball"},
                {"1a", "1a"},
                {"éa", "Éa"},
                {"÷", "÷"},
                {"ÿ", "Ÿ"},
                {"œuf", "Œuf"},
                {"šat", "Šat"},
                {"žena", "Žena"},
                {"Ša", "Ša"},
                {"łó", "Łó"},
                {"ωmega", "Ωmega"},
                {"άλφα", "Άλφα"},
                {"икона", "Икона"},
                {"ёж", "Ёж"},
                {"日本", "日本"},
                {"\xFF"
                 "a",
                 "\xFF"
                 "a"},
                {"😀a", "😀a"},
                {"ß", "ß"}};
    for (const auto& row : rows) EXPECT_EQ(RaiseFirstLetter(row.text), row.raised);
}

TEST(Text, PiecesOfText) {
    EXPECT_EQ(Trim(" \t a b\r\n"), "a b");
    EXPECT_EQ(Trim(" \n"), "");
    EXPECT_EQ(Split("a;;b;", ';'), (std::vector<std::string>{"a", "", "b", ""}));
    EXPECT_EQ(Split("", ';'), std::vector<std::string>{""});
    EXPECT_EQ(ReplaceAll("aaa", "a", "aa"), "aaaaaa") << "what was put in is not looked at again";
    EXPECT_EQ(ReplaceAll("x", "", "y"), "x");
    const std::string euro = "a\xE2\x82\xAC";
    const std::size_t fits[] = {0, 1, 1, 1, 4, 4};
    for (std::size_t limit = 0; limit < 6; ++limit) EXPECT_EQ(ClipUtf8(euro, limit).size(), fits[limit]);
    EXPECT_EQ(EditDistance("extract", "Extarct"), 1u);
    EXPECT_EQ(EditDistance("ca", "abc"), 3u);
    EXPECT_EQ(EditDistance("", "abc"), 3u);
}

TEST(Geometry, MulDivRoundsHalvesAwayFromZero) {
    struct Row {
        int a, b, c, expected;
    };
    const Row rows[] = {{1, 1, 2, 1},
                        {-1, 1, 2, -1},
                        {1, -1, 2, -1},
                        {1, 1, -2, -1},
                        {1, 1, 3, 0},
                        {2, 1, 3, 1},
                        {-5, 1, -2, 3},
                        {7, 3, 0, -1},
                        {INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX},
                        {INT32_MAX, 2, 1, -1},
                        {INT32_MIN, 1, 1, INT32_MIN},
                        {INT32_MIN, 1, -1, -1}};
    for (const auto& row : rows) EXPECT_EQ(MulDiv(row.a, row.b, row.c), row.expected) << row.a << " " << row.b;
}

TEST(Geometry, SelectionsIncludeTheirSides) {
    EXPECT_TRUE(InclusiveRect().None());
    EXPECT_EQ(InclusiveRect().Width(), 0);
    EXPECT_EQ((InclusiveRect{2, 3, 2, 5}.Width()), 1);
    EXPECT_EQ((InclusiveRect{2, 3, 2, 5}.Height()), 3);
    EXPECT_TRUE((Rect{0, 0, 4, 4}.Intersect({4, 0, 9, 9}).Empty()));
}

} // namespace
} // namespace pelorin
